// vanto/db.h - database connections and record sets over ODBC.
//
// VntDatabase is one connection, opened with an ODBC connect string;
// VntRecordset is a query over it that moves through the rows, reads and
// writes fields and keeps an update state. CDatabase and CRecordset name the
// same classes for the applications' code.
//
// Texts. Inside the library every text is Windows-1252. Statements and
// connect strings go to the driver in UTF-8 (the SQLite3 and PostgreSQL
// Unicode drivers read UTF-8 there); field texts are exchanged as wide
// characters (UTF-16) and converted at this edge. A character of the
// database that Windows-1252 cannot hold reads as "?".
//
// Paths. Connect strings hold paths in the library's form ("T:\Daten\a.db");
// the driver knows only host paths, so each value that is an absolute
// library path with a volume ("X:\..."), and any value of "Ddfpath" and of
// the clients' path key ("DsnPathSpec", vanto/dsn.h; these may also be
// relative to the current directory), is handed to the driver as the host
// path (vanto/lfn.h). The connect string of an open database stays as it
// was given.
//
// Errors. Every failing ODBC call is shown to the user with system message
// 60310 (what was done, SQLSTATE, the driver's text) and kept for callers:
// Vnt_DbLastState / Vnt_DbLastError. Misuse by the caller (an unknown field,
// writing outside Edit/AddNew, a value that does not suit a field) is an
// internal error report. Nothing is thrown. One thread only.
#pragma once

#include <memory>
#include <string>

#include "vanto/base.h"
#include "vanto/date.h"

// ---------------------------------------------------------------------------
// Diagnostics
// ---------------------------------------------------------------------------

/// The SQLSTATE of the last ODBC call that failed ("42000", "HY000", ...);
/// "" when none failed since the start or Vnt_DbClearError.
VANTO_API const char* Vnt_DbLastState();
/// The driver's text of that failure (Windows-1252; several diagnostic
/// records are joined by line feeds); "" when none.
VANTO_API const char* Vnt_DbLastError();
/// The driver's native error code of that failure; 0 when none.
VANTO_API long Vnt_DbLastNative();
/// Forgets the last failure.
VANTO_API void Vnt_DbClearError();

/// A connect string fit to be shown: the value of every "PWD" and
/// "PASSWORD" pair (any case) becomes "****", whatever its length; braced
/// values ("{a;b}") count as one value.
///   "ODBC;UID=sa;PWD=geheim;X=1" => "ODBC;UID=sa;PWD=****;X=1"
VANTO_API std::string Vnt_DbMaskConnect(const char* connect);

// ---------------------------------------------------------------------------
// VntDatabase
// ---------------------------------------------------------------------------

class VntRecordset;

/// One database connection.
class VANTO_API VntDatabase {
public:
    VntDatabase();
    /// Closes the connection (and its record sets).
    virtual ~VntDatabase();
    VntDatabase(const VntDatabase&) = delete;
    VntDatabase& operator=(const VntDatabase&) = delete;

    /// Opens a connection. `dsn` (null or "": none) is put in front as
    /// "DSN=<dsn>;"; `connect` is the rest, a leading "ODBC;" (any case)
    /// optional. `readOnly` asks the driver for a read-only connection.
    /// `exclusive` is not supported (internal error, false). There is no
    /// cursor library on this host: `useCursorLib` is ignored, scrolling
    /// comes from the driver (see VntRecordset). An open connection is
    /// closed first. False, with the driver's diagnostics shown, when the
    /// driver refuses.
    bool Open(const char* dsn, bool exclusive = false, bool readOnly = false, const char* connect = "ODBC;",
              bool useCursorLib = true);
    /// Open(null, false, readOnly, connect).
    bool OpenEx(const char* connect, bool readOnly = false);
    bool IsOpen() const { return dbc_ != nullptr; }
    /// Closes the record sets opened on this database, then the connection.
    /// Closing a closed database does nothing.
    void Close();

    /// The connect string the database was opened with, always beginning
    /// with "ODBC;", passwords included: for the library, never to be shown
    /// (see GetConnect). "" when closed. It reopens the same database, which
    /// the driver's completed string may not (SQLite3 drops "Driver=").
    const char* GetConnectRaw() const { return connect_.c_str(); }
    /// The same with passwords masked (Vnt_DbMaskConnect), for showing.
    std::string GetConnect() const { return Vnt_DbMaskConnect(connect_.c_str()); }
    /// The driver's file name as it reports it ("sqlite3odbc.so"); "" when closed.
    const char* DriverName() const { return driver_.c_str(); }

    /// Runs a statement that returns no rows (rows it returns are dropped).
    /// True on success, also when no row was touched.
    bool ExecuteSQL(const char* sql);
    /// Rows touched by the last successful ExecuteSQL (-1 when the driver
    /// cannot tell).
    long RowsAffected() const { return rowsAffected_; }

    /// The ODBC connection handle (SQLHDBC), null when closed; for the
    /// library's own record sets.
    void* Handle() const { return dbc_; }
    /// The driver's identifier quote ('"' for SQLite and PostgreSQL; ' ' when
    /// it has none).
    char QuoteChar() const { return quote_; }
    /// True when the driver offers transactions.
    bool CanTransact() const { return canTransact_; }

private:
    friend class VntRecordset;
    void attach(VntRecordset* rs);
    void detach(VntRecordset* rs);

    void* dbc_ = nullptr;
    std::string connect_;
    std::string driver_;
    char quote_ = '"';
    bool canTransact_ = false;
    bool readOnly_ = false;
    long rowsAffected_ = -1;
    struct Sets;
    std::unique_ptr<Sets> sets_;  ///< the open record sets
};

// ---------------------------------------------------------------------------
// VntRecordset
// ---------------------------------------------------------------------------

/// The kind of a field, from the column's SQL type.
enum class VntDbKind : int {
    Text,       ///< CHAR, VARCHAR, their wide and long forms, and unknown types
    Integer,    ///< BIT, TINYINT, SMALLINT, INTEGER, BIGINT
    Double,     ///< REAL, FLOAT, DOUBLE
    Decimal,    ///< DECIMAL, NUMERIC (also a character column whose type name
                ///< says so, as SQLite's driver reports them): kept as the
                ///< driver's text ("10.5")
    Date,       ///< DATE
    Time,       ///< TIME
    Timestamp,  ///< TIMESTAMP
    Binary,     ///< BINARY, VARBINARY, LONGVARBINARY: bytes as they are
};

/// Open options of a record set.
inline constexpr unsigned VNT_RS_READONLY = 0x1;     ///< no Edit, AddNew or Delete
inline constexpr unsigned VNT_RS_FORWARDONLY = 0x2;  ///< do not ask the driver to scroll

/// Update state of a record set.
enum class VntEditMode : int { None = 0, Edit = 1, AddNew = 2 };

/// A query over a database, positioned on one record at a time.
///
/// Rows. The query is taken when it is opened (a snapshot): the record set
/// asks the driver for a static scrollable cursor; a driver that cannot give
/// one (or the option VNT_RS_FORWARDONLY) is read forward only, and the
/// record set then keeps every row it has read, so that moving back and to
/// the last record work the same way, with memory growing with the rows read.
/// Records added with AddNew appear after Requery.
///
/// Positions. After Open the first record is current; an empty result is at
/// BOF and EOF at once. MoveNext past the last record gives EOF, MovePrev
/// before the first BOF, with no current record; MovePrev from EOF goes to
/// the last record, MoveNext from BOF to the first. A move that cannot be
/// made (MoveNext at EOF) returns false without a report.
///
/// Changes. Edit, AddNew, SetFieldValue..., Update; CancelUpdate or a move
/// drops them. Only fields that were set are written. Changes are written
/// with statements on the update table, found by the key: an UPDATE or
/// DELETE names the record by the values its key fields had when it was
/// read, inside a transaction that is undone unless exactly one row was
/// touched (60312 is shown when none or several were). The update table is
/// the table a record set is opened on by name, or the single table of a
/// plain "SELECT ... FROM table [WHERE|ORDER BY|LIMIT ...]"; the key is the
/// list given with SetKeyColumns, else the table's primary key; every key
/// field must be among the record set's fields. Without a key the records
/// cannot be changed or deleted (60311); adding needs the table only. An
/// updated record shows its new values when it is visited again, a deleted
/// one stays in its place with IsDeleted() true and no field values.
class VANTO_API VntRecordset {
public:
    explicit VntRecordset(VntDatabase* db = nullptr);
    /// Closes the record set.
    virtual ~VntRecordset();
    VntRecordset(const VntRecordset&) = delete;
    VntRecordset& operator=(const VntRecordset&) = delete;

    /// The database the record set works on; set it before Open.
    VntDatabase* m_pDatabase;

    /// Names the key fields ("a, b") that identify a record for Update and
    /// Delete; null or "" goes back to the table's primary key. Takes effect
    /// at the next Open.
    void SetKeyColumns(const char* list);

    /// Runs the query and makes the first record current. `sql` is a SELECT
    /// statement or a bare table name (all its fields). Options: VNT_RS_*.
    /// An open record set is closed first. False, with a report, when there
    /// is no open database or the driver refuses the query.
    bool Open(const char* sql, unsigned options = 0);
    bool IsOpen() const;
    /// Drops any changes not yet updated and ends the query.
    void Close();
    /// Runs the query again from the start (shows added and deleted records
    /// as the database now holds them).
    bool Requery();

    /// True when the driver scrolls (not the read-forward fallback).
    bool CanScroll() const;
    /// True when records can be changed and deleted: an update table with a
    /// key, neither the record set nor the database read-only.
    bool CanUpdate() const;
    /// True when records can be added: an update table, nothing read-only.
    bool CanAppend() const;
    /// The update table ("" when none).
    const char* TableName() const;

    bool IsBOF() const;
    bool IsEOF() const;
    /// True when the current record was deleted (Delete, this record set).
    bool IsDeleted() const;
    bool MoveFirst();
    bool MoveNext();
    bool MovePrev();
    bool MoveLast();

    // -- fields -----------------------------------------------------------
    /// Number of fields; 0 when not open.
    int GetFieldCount() const;
    /// Name of field `index` (from 0), "" when out of range.
    const char* GetFieldName(int index) const;
    /// Index of the field of that name (any case), -1 when none.
    int GetFieldIndex(const char* name) const;
    VntDbKind GetFieldKind(int index) const;

    /// True when the field of the current record (or, during Edit/AddNew,
    /// the edited record) is null; also when there is no current record.
    bool IsFieldNull(int index) const;
    bool IsFieldNull(const char* name) const;

    /// Reads a field of the current record (during Edit/AddNew: of the
    /// edited record) converted to the type asked for. False, with the value
    /// emptied or zeroed, when the field is null, when there is no current
    /// record or it is deleted, or when the value cannot be converted:
    ///  - text: texts as they are; numbers in decimal with "." ("10.5",
    ///    "42"); DECIMAL as the driver gave it; dates "yyyy-mm-dd", times
    ///    "hh:mm:ss", time stamps "yyyy-mm-dd hh:mm:ss" (and ".fffffffff"
    ///    when there is a fraction); bytes as they are;
    ///  - long: whole values only ("10.00" => 10, "10.5" => false);
    ///  - double: numbers, and texts and DECIMALs through Vnt_FloatFromStr
    ///    with the places the text has ("1,5" and "1.5" alike, whatever the
    ///    locale);
    ///  - dates and times: DATE, TIME, TIMESTAMP and texts of the forms
    ///    above ("2024-02-29", "2024-02-29 13:14:15", "T" instead of the
    ///    blank); a date from a time, or a time from a date, is false.
    /// An unknown field is an internal error report.
    bool GetFieldValue(int index, std::string& value) const;
    bool GetFieldValue(const char* name, std::string& value) const;
    bool GetFieldValue(int index, long& value) const;
    bool GetFieldValue(const char* name, long& value) const;
    bool GetFieldValue(int index, double& value) const;
    bool GetFieldValue(const char* name, double& value) const;
    bool GetFieldValue(int index, VNT_DATE& value) const;
    bool GetFieldValue(const char* name, VNT_DATE& value) const;
    bool GetFieldValue(int index, VNT_TIME& value) const;   ///< fraction in hundredths
    bool GetFieldValue(const char* name, VNT_TIME& value) const;
    bool GetFieldValue(int index, tagTIMESTAMP_STRUCT& value) const;
    bool GetFieldValue(const char* name, tagTIMESTAMP_STRUCT& value) const;
    bool GetFieldValue(int index, VntDate& value) const;    ///< date and time
    bool GetFieldValue(const char* name, VntDate& value) const;

    // -- changes ----------------------------------------------------------
    /// Starts changing the current record. False, with a report, without a
    /// current record, on a deleted one, or when records cannot be changed.
    bool Edit();
    /// Starts a new record, all fields null. False when records cannot be
    /// added.
    bool AddNew();
    /// Writes the fields set since Edit/AddNew. After Edit the record keeps
    /// the new values; after AddNew the record current before is current
    /// again. Nothing set writes nothing (true). False, with a report, when
    /// the database refuses; the changes are then still pending.
    bool Update();
    /// Drops the changes of Edit/AddNew.
    void CancelUpdate();
    /// Deletes the current record (see the class comment).
    bool Delete();
    VntEditMode GetEditMode() const;

    /// Sets a field of the edited record, converted to the field's kind as
    /// GetFieldValue converts (a long into a text field gives its decimal
    /// text, a text into a DECIMAL field must be a number, a double into a
    /// DECIMAL field is written with the field's places when the driver
    /// tells them). A null text sets null. False, with an internal error
    /// report, outside Edit/AddNew, for an unknown field, or for a value
    /// the field cannot take.
    bool SetFieldValue(int index, const char* value);
    bool SetFieldValue(const char* name, const char* value);
    bool SetFieldValue(int index, long value);
    bool SetFieldValue(const char* name, long value);
    bool SetFieldValue(int index, int value) { return SetFieldValue(index, static_cast<long>(value)); }
    bool SetFieldValue(const char* name, int value) { return SetFieldValue(name, static_cast<long>(value)); }
    bool SetFieldValue(int index, double value);
    bool SetFieldValue(const char* name, double value);
    bool SetFieldValue(int index, const VNT_DATE& value);
    bool SetFieldValue(const char* name, const VNT_DATE& value);
    bool SetFieldValue(int index, const tagTIMESTAMP_STRUCT& value);
    bool SetFieldValue(const char* name, const tagTIMESTAMP_STRUCT& value);
    bool SetFieldValue(int index, const VntDate& value);  ///< date and time
    bool SetFieldValue(const char* name, const VntDate& value);
    bool SetFieldNull(int index);
    bool SetFieldNull(const char* name);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The names the applications' code uses.
using CDatabase = VntDatabase;
using CRecordset = VntRecordset;
