// The cursor of a record set: runs its statement, describes the columns and
// moves through the rows, scrolling where the driver can and otherwise
// reading forward and keeping the rows read.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "db/odbc.h"
#include "db/value.h"

namespace vnt::db {

/// Reports a misuse of a record set (an internal error of the caller).
void misuse(int line, const std::string& what);

struct Column {
    std::string name;
    SQLSMALLINT sqlType = SQL_VARCHAR;
    SQLULEN size = 0;
    SQLSMALLINT decimals = 0;
    Kind kind = Kind::Text;
};

struct Row {
    std::vector<Value> values;
    bool deleted = false;
};

class Cursor {
public:
    /// Takes a statement handle on `dbc` for `sql`; false, with a report,
    /// when the driver gives none.
    bool allocate(SQLHDBC dbc, const std::string& sql);
    /// Runs the statement (scrolling unless `forwardOnly` or the driver
    /// cannot) and describes its columns; move(SQL_FETCH_FIRST) then makes
    /// the first row current. False, with a report, when the driver refuses
    /// or the statement gives no columns.
    bool start(bool forwardOnly);
    /// Runs the statement again from the start.
    bool rerun();
    /// Ends the statement and forgets everything.
    void close();

    /// SQL_FETCH_FIRST, _NEXT, _PRIOR or _LAST; false when no row is there
    /// (at BOF or EOF then) or the driver fails.
    bool move(SQLSMALLINT orientation);

    bool isOpen() const { return stmt_ != SQL_NULL_HSTMT; }
    bool scrolls() const { return scroll_; }
    const std::string& statement() const { return run_; }
    const std::vector<Column>& columns() const { return cols_; }
    bool bof() const { return bof_; }
    bool eof() const { return eof_; }
    /// The current row; null at BOF or EOF.
    const Row* current() const { return haveCur_ ? &cur_ : nullptr; }
    /// Replaces the current row (an update or delete made through it); it
    /// stays so when visited again.
    void changeCurrent(const Row& row);

private:
    enum class Fetch { Row, End, Error };

    bool readText(SQLUSMALLINT col, Value& v);
    bool readBinary(SQLUSMALLINT col, Value& v);
    template <class T>
    bool readFixed(SQLUSMALLINT col, SQLSMALLINT cType, T& out, Value& v);
    void readRow(Row& r);
    bool describe();
    Fetch fetch(SQLSMALLINT orientation);
    void fill(long n);
    void land(long p, const Row* row);
    void atBof();
    void atEof();
    long countRows();
    void forgetRows();

    SQLHSTMT stmt_ = SQL_NULL_HSTMT;
    std::string run_;             // the statement run
    std::vector<Column> cols_;
    bool scroll_ = false;

    long pos_ = 0;                // 0 before the first record, count + 1 after the last
    long count_ = -1;             // rows of the result, -1 while unknown
    bool bof_ = true, eof_ = true;
    bool haveCur_ = false;
    Row cur_;
    std::map<long, Row> changed_; // records updated or deleted, by position
    std::vector<Row> cache_;      // read forward: the rows read so far
    bool cursorDone_ = false;
};

}  // namespace vnt::db
