// The cursor of a record set.
#include "db/cursor.h"

#include <climits>
#include <cstddef>

#include "base/names.h"
#include "vanto/msg.h"

namespace vnt::db {
namespace {

Kind kindOf(SQLSMALLINT type) {
    switch (type) {
    case SQL_BIT: case SQL_TINYINT: case SQL_SMALLINT: case SQL_INTEGER: case SQL_BIGINT:
        return Kind::Integer;
    case SQL_REAL: case SQL_FLOAT: case SQL_DOUBLE:
        return Kind::Double;
    case SQL_DECIMAL: case SQL_NUMERIC:
        return Kind::Decimal;
    case SQL_TYPE_DATE: case SQL_DATE:
        return Kind::Date;
    case SQL_TYPE_TIME: case SQL_TIME:
        return Kind::Time;
    case SQL_TYPE_TIMESTAMP: case SQL_TIMESTAMP:
        return Kind::Timestamp;
    case SQL_BINARY: case SQL_VARBINARY: case SQL_LONGVARBINARY:
        return Kind::Binary;
    default:
        return Kind::Text;
    }
}

}  // namespace

void misuse(int line, const std::string& what) {
    Vnt__MsgErr("db/VntRecordset", line, ("!Internal Error: " + what).c_str());
}

bool Cursor::allocate(SQLHDBC dbc, const std::string& sql) {
    run_ = sql;
    SQLHSTMT st = SQL_NULL_HSTMT;
    if (!check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &st), SQL_HANDLE_DBC, dbc, run_)) return false;
    stmt_ = st;
    return true;
}

bool Cursor::start(bool forwardOnly) {
    scroll_ = false;
    if (!forwardOnly) {
        // A driver that cannot scroll refuses or changes the cursor type; the
        // record set then reads forward and keeps the rows itself.
        const SQLRETURN rc =
            SQLSetStmtAttr(stmt_, SQL_ATTR_CURSOR_TYPE, reinterpret_cast<SQLPOINTER>(SQL_CURSOR_STATIC), 0);
        SQLULEN type = SQL_CURSOR_FORWARD_ONLY;
        scroll_ = SQL_SUCCEEDED(rc) && SQL_SUCCEEDED(SQLGetStmtAttr(stmt_, SQL_ATTR_CURSOR_TYPE, &type, 0, nullptr)) &&
                  type != SQL_CURSOR_FORWARD_ONLY;
    }
    std::string text = toUtf8(run_);
    if (!check(SQLExecDirect(stmt_, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS), SQL_HANDLE_STMT, stmt_, run_))
        return false;
    return describe();
}

bool Cursor::describe() {
    SQLSMALLINT n = 0;
    SQLNumResultCols(stmt_, &n);
    if (n <= 0) {
        misuse(__LINE__, "the statement of a record set gives no records: " + shortText(run_));
        return false;
    }
    for (SQLSMALLINT c = 1; c <= n; ++c) {
        SQLCHAR name[256] = {};
        SQLSMALLINT len = 0, nullable = 0;
        Column col;
        if (!check(SQLDescribeCol(stmt_, static_cast<SQLUSMALLINT>(c), name, sizeof name, &len, &col.sqlType,
                                  &col.size, &col.decimals, &nullable),
                   SQL_HANDLE_STMT, stmt_, run_))
            return false;
        col.name = fromUtf8(reinterpret_cast<const char*>(name));
        col.kind = kindOf(col.sqlType);
        if (col.kind == Kind::Text) {
            // SQLite's driver describes a DECIMAL column as VARCHAR; its type
            // name still tells, and the amount rules then apply.
            SQLCHAR type[64] = {};
            SQLSMALLINT tlen = 0;
            if (SQL_SUCCEEDED(SQLColAttribute(stmt_, static_cast<SQLUSMALLINT>(c), SQL_DESC_TYPE_NAME, type,
                                              sizeof type, &tlen, nullptr))) {
                const std::string_view t(reinterpret_cast<const char*>(type));
                if (vnt::sameText(t.substr(0, 7), "DECIMAL") || vnt::sameText(t.substr(0, 7), "NUMERIC"))
                    col.kind = Kind::Decimal;
            }
        }
        cols_.push_back(std::move(col));
    }
    return true;
}

void Cursor::forgetRows() {
    cache_.clear();
    changed_.clear();
    cursorDone_ = false;
    count_ = -1;
    pos_ = 0;
    bof_ = eof_ = true;
    haveCur_ = false;
}

bool Cursor::rerun() {
    forgetRows();
    SQLFreeStmt(stmt_, SQL_CLOSE);
    std::string text = toUtf8(run_);
    if (!check(SQLExecDirect(stmt_, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS), SQL_HANDLE_STMT, stmt_, run_))
        return false;
    move(SQL_FETCH_FIRST);
    return true;
}

void Cursor::close() {
    if (stmt_) {
        SQLFreeHandle(SQL_HANDLE_STMT, stmt_);
        stmt_ = SQL_NULL_HSTMT;
    }
    cols_.clear();
    run_.clear();
    forgetRows();
    cur_ = Row{};
}

void Cursor::changeCurrent(const Row& row) {
    cur_ = row;
    changed_[pos_] = row;
}

// -- reading rows --------------------------------------------------------------

// Text and DECIMAL fields in wide characters, in pieces of any length.
bool Cursor::readText(SQLUSMALLINT col, Value& v) {
    std::vector<SQLWCHAR> all;
    SQLWCHAR buf[512];
    for (;;) {
        SQLLEN ind = 0;
        const SQLRETURN rc = SQLGetData(stmt_, col, SQL_C_WCHAR, buf, sizeof buf, &ind);
        if (rc == SQL_NO_DATA) break;
        if (!check(rc, SQL_HANDLE_STMT, stmt_, run_)) return false;
        if (ind == SQL_NULL_DATA) return true;
        const std::size_t room = sizeof buf / sizeof buf[0] - 1;
        const bool whole = ind != SQL_NO_TOTAL && static_cast<std::size_t>(ind) / sizeof(SQLWCHAR) <= room;
        const std::size_t got = whole ? static_cast<std::size_t>(ind) / sizeof(SQLWCHAR) : room;
        if (whole && all.empty()) {  // the usual case: in one piece, no gathering
            v.null = false;
            vnt::db::fromWide(buf, got, v.text);
            return true;
        }
        all.insert(all.end(), buf, buf + got);
        if (whole) break;
    }
    v.null = false;
    vnt::db::fromWide(all.data(), all.size(), v.text);
    return true;
}

bool Cursor::readBinary(SQLUSMALLINT col, Value& v) {
    std::string all;
    char buf[1024];
    for (;;) {
        SQLLEN ind = 0;
        const SQLRETURN rc = SQLGetData(stmt_, col, SQL_C_BINARY, buf, sizeof buf, &ind);
        if (rc == SQL_NO_DATA) break;
        if (!check(rc, SQL_HANDLE_STMT, stmt_, run_)) return false;
        if (ind == SQL_NULL_DATA) return true;
        const bool whole = ind != SQL_NO_TOTAL && static_cast<std::size_t>(ind) <= sizeof buf;
        all.append(buf, whole ? static_cast<std::size_t>(ind) : sizeof buf);
        if (whole) break;
    }
    v.null = false;
    v.text = std::move(all);
    return true;
}

template <class T>
bool Cursor::readFixed(SQLUSMALLINT col, SQLSMALLINT cType, T& out, Value& v) {
    SQLLEN ind = 0;
    if (!check(SQLGetData(stmt_, col, cType, &out, sizeof out, &ind), SQL_HANDLE_STMT, stmt_, run_)) return false;
    v.null = ind == SQL_NULL_DATA;
    return true;
}

// The current row of the cursor into `r`, whose buffers are reused. A
// field that cannot be read is shown and stays null.
void Cursor::readRow(Row& r) {
    r.values.resize(cols_.size());
    r.deleted = false;
    for (std::size_t k = 0; k < cols_.size(); ++k) {
        Value& v = r.values[k];
        v.null = true;
        v.text.clear();
        v.kind = cols_[k].kind;
        const auto col = static_cast<SQLUSMALLINT>(k + 1);
        switch (v.kind) {
        case Kind::Text:
        case Kind::Decimal:
            readText(col, v);
            break;
        case Kind::Binary:
            readBinary(col, v);
            break;
        case Kind::Integer: {
            SQLBIGINT i = 0;
            if (readFixed(col, SQL_C_SBIGINT, i, v)) v.i = i;
            break;
        }
        case Kind::Double:
            readFixed(col, SQL_C_DOUBLE, v.d, v);
            break;
        case Kind::Date: {
            SQL_DATE_STRUCT d{};
            if (readFixed(col, SQL_C_TYPE_DATE, d, v)) v.ts = {d.year, d.month, d.day, 0, 0, 0, 0};
            break;
        }
        case Kind::Time: {
            SQL_TIME_STRUCT t{};
            if (readFixed(col, SQL_C_TYPE_TIME, t, v)) v.ts = {0, 0, 0, t.hour, t.minute, t.second, 0};
            break;
        }
        case Kind::Timestamp: {
            SQL_TIMESTAMP_STRUCT t{};
            if (readFixed(col, SQL_C_TYPE_TIMESTAMP, t, v))
                v.ts = {t.year, t.month, t.day, t.hour, t.minute, t.second, t.fraction};
            break;
        }
        }
    }
}

// -- moving --------------------------------------------------------------------

Cursor::Fetch Cursor::fetch(SQLSMALLINT orientation) {
    const SQLRETURN rc = scroll_ ? SQLFetchScroll(stmt_, orientation, 0) : SQLFetch(stmt_);
    if (rc == SQL_NO_DATA) return Fetch::End;
    return check(rc, SQL_HANDLE_STMT, stmt_, run_) ? Fetch::Row : Fetch::Error;
}

// Read forward: makes the cache hold `n` rows, or all there are.
void Cursor::fill(long n) {
    while (static_cast<long>(cache_.size()) < n && !cursorDone_) {
        if (fetch(SQL_FETCH_NEXT) == Fetch::Row) readRow(cache_.emplace_back());
        else cursorDone_ = true;
    }
    if (cursorDone_) count_ = static_cast<long>(cache_.size());
}

// Makes row `p` current: a row changed here as changed, else a copy of
// `row` or, without one, the cursor's row (read into the current
// record's buffers: moving allocates little).
void Cursor::land(long p, const Row* row) {
    pos_ = p;
    bof_ = eof_ = false;
    if (auto it = changed_.find(p); it != changed_.end()) cur_ = it->second;
    else if (row) cur_ = *row;
    else readRow(cur_);
    haveCur_ = true;
}
void Cursor::atBof() {
    pos_ = 0;
    bof_ = true;
    eof_ = count_ == 0;
    haveCur_ = false;
}
void Cursor::atEof() {
    pos_ = count_ + 1;
    eof_ = true;
    bof_ = count_ == 0;
    haveCur_ = false;
}

// The number of rows, counted by walking the cursor once (only when the
// driver cannot tell the position of the last row).
long Cursor::countRows() {
    long n = 0;
    for (Fetch f = fetch(SQL_FETCH_FIRST); f == Fetch::Row; f = fetch(SQL_FETCH_NEXT)) ++n;
    return n;
}

bool Cursor::move(SQLSMALLINT orientation) {
    if (!stmt_) return false;
    if (!scroll_) {
        long target = 0;
        switch (orientation) {
        case SQL_FETCH_FIRST: target = 1; break;
        case SQL_FETCH_NEXT: if (eof_) return false; target = pos_ + 1; break;
        case SQL_FETCH_PRIOR: if (bof_) return false; target = pos_ - 1; break;
        default: fill(LONG_MAX); target = static_cast<long>(cache_.size()); break;
        }
        if (target >= 1) fill(target);
        if (target >= 1 && target <= static_cast<long>(cache_.size())) {
            land(target, &cache_[static_cast<std::size_t>(target - 1)]);
            return true;
        }
        if (orientation == SQL_FETCH_PRIOR) atBof();
        else atEof();
        return false;
    }
    if ((orientation == SQL_FETCH_NEXT && eof_) || (orientation == SQL_FETCH_PRIOR && bof_)) return false;
    const Fetch f = fetch(orientation);
    if (f == Fetch::Error) return false;
    if (f == Fetch::End) {
        switch (orientation) {
        case SQL_FETCH_NEXT: count_ = pos_; atEof(); break;
        case SQL_FETCH_PRIOR: atBof(); break;
        default: count_ = 0; atBof(); atEof(); break;
        }
        return false;
    }
    long p = 0;
    switch (orientation) {
    case SQL_FETCH_FIRST: p = 1; break;
    case SQL_FETCH_NEXT: p = pos_ + 1; break;
    case SQL_FETCH_PRIOR: p = pos_ - 1; break;
    default: {
        SQLULEN n = 0;
        if (count_ < 0 && SQL_SUCCEEDED(SQLGetStmtAttr(stmt_, SQL_ATTR_ROW_NUMBER, &n, 0, nullptr)) && n > 0)
            count_ = static_cast<long>(n);
        if (count_ < 0) {
            count_ = countRows();
            if (fetch(SQL_FETCH_LAST) != Fetch::Row) return false;
        }
        p = count_;
    }
    }
    land(p, nullptr);
    return true;
}

}  // namespace vnt::db
