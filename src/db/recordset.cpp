// VntRecordset: a query over a database, moving through its rows, reading
// and writing fields, with changes written by key-based statements. The
// values and their conversions are in value.cpp, the scan of the statement
// for its table in sql_scan.cpp, the moves in cursor.cpp.

#include <algorithm>
#include <cstddef>
#include <map>
#include <vector>

#include "base/format.h"
#include "base/names.h"
#include "db/cursor.h"
#include "db/db_state.h"
#include "db/odbc.h"
#include "db/sql_scan.h"
#include "db/value.h"
#include "vanto/db.h"
#include "vanto/msg.h"

namespace {

using namespace vnt::db;
using vnt::sameText;

// The library's time stamp is the driver manager's own structure.
static_assert(sizeof(tagTIMESTAMP_STRUCT) == sizeof(SQL_TIMESTAMP_STRUCT) &&
              offsetof(tagTIMESTAMP_STRUCT, fraction) == offsetof(SQL_TIMESTAMP_STRUCT, fraction));

constexpr long kMsgNoTable = 60311;    // table or query
constexpr long kMsgNotOneRow = 60312;  // table, records touched

// -- statement parameters ----------------------------------------------------

struct Param {
    SQLSMALLINT cType = SQL_C_CHAR;
    SQLSMALLINT sqlType = SQL_VARCHAR;
    SQLULEN size = 1;
    SQLSMALLINT decimals = 0;
    std::vector<SQLWCHAR> wide;
    std::string bytes;
    SQLBIGINT i = 0;
    double d = 0;
    SQL_DATE_STRUCT date{};
    SQL_TIME_STRUCT time{};
    SQL_TIMESTAMP_STRUCT ts{};
    SQLLEN ind = 0;

    SQLPOINTER buffer() {
        switch (cType) {
        case SQL_C_WCHAR: return wide.data();
        case SQL_C_SBIGINT: return &i;
        case SQL_C_DOUBLE: return &d;
        case SQL_C_TYPE_DATE: return &date;
        case SQL_C_TYPE_TIME: return &time;
        case SQL_C_TYPE_TIMESTAMP: return &ts;
        default: return bytes.data();
        }
    }
    SQLLEN bufferLength() const {
        switch (cType) {
        case SQL_C_WCHAR: return static_cast<SQLLEN>(wide.size() * sizeof(SQLWCHAR));
        case SQL_C_CHAR: case SQL_C_BINARY: return static_cast<SQLLEN>(bytes.size());
        default: return 0;
        }
    }
};

// A parameter for a value of column `c` (the value has the column's kind).
Param paramOf(const Value& v, const Column& c) {
    Param p;
    p.sqlType = c.sqlType;
    p.size = std::max<SQLULEN>(c.size, 1);
    p.decimals = c.decimals;
    if (v.null) {
        p.ind = SQL_NULL_DATA;
        p.bytes.assign(1, '\0');
        return p;
    }
    switch (v.kind) {
    case Kind::Text:
        p.cType = SQL_C_WCHAR;
        p.wide = vnt::db::toWide(v.text);
        p.ind = static_cast<SQLLEN>((p.wide.size() - 1) * sizeof(SQLWCHAR));
        p.size = std::max<SQLULEN>(p.size, p.wide.size() - 1);
        break;
    case Kind::Decimal:
    case Kind::Binary:
        p.cType = v.kind == Kind::Decimal ? SQL_C_CHAR : SQL_C_BINARY;
        p.bytes = v.text;
        p.ind = static_cast<SQLLEN>(p.bytes.size());
        p.size = std::max<SQLULEN>(p.size, p.bytes.size());
        if (p.bytes.empty()) p.bytes.assign(1, '\0');
        break;
    case Kind::Integer:
        p.cType = SQL_C_SBIGINT;
        p.i = v.i;
        break;
    case Kind::Double:
        p.cType = SQL_C_DOUBLE;
        p.d = v.d;
        break;
    case Kind::Date:
        p.cType = SQL_C_TYPE_DATE;
        p.date = {static_cast<SQLSMALLINT>(v.ts.year), static_cast<SQLUSMALLINT>(v.ts.month),
                  static_cast<SQLUSMALLINT>(v.ts.day)};
        p.size = 10;
        p.decimals = 0;
        break;
    case Kind::Time:
        p.cType = SQL_C_TYPE_TIME;
        p.time = {static_cast<SQLUSMALLINT>(v.ts.hour), static_cast<SQLUSMALLINT>(v.ts.minute),
                  static_cast<SQLUSMALLINT>(v.ts.second)};
        p.size = 8;
        p.decimals = 0;
        break;
    case Kind::Timestamp: {
        // The fraction is cut to the places the column keeps: more would be
        // refused as a truncation.
        const int places = std::clamp<int>(c.decimals, 0, 9);
        unsigned long unit = 1;
        for (int k = places; k < 9; ++k) unit *= 10;
        p.cType = SQL_C_TYPE_TIMESTAMP;
        p.ts = {static_cast<SQLSMALLINT>(v.ts.year), static_cast<SQLUSMALLINT>(v.ts.month),
                static_cast<SQLUSMALLINT>(v.ts.day), static_cast<SQLUSMALLINT>(v.ts.hour),
                static_cast<SQLUSMALLINT>(v.ts.minute), static_cast<SQLUSMALLINT>(v.ts.second),
                static_cast<SQLUINTEGER>(v.ts.fraction / unit * unit)};
        p.decimals = static_cast<SQLSMALLINT>(places);
        p.size = c.size >= 19 ? c.size : static_cast<SQLULEN>(19 + (places ? places + 1 : 0));
        break;
    }
    }
    return p;
}

}  // namespace

struct VntRecordset::Impl {
    VntDatabase* db = nullptr;  // the database opened on
    Cursor cursor;
    std::string table;          // update table
    std::string keyList;        // SetKeyColumns
    unsigned options = 0;
    std::vector<int> keys;      // key fields

    VntEditMode mode = VntEditMode::None;
    Row edit;
    std::vector<bool> dirty;
    VntRecordset* owner = nullptr;

    const std::vector<Column>& cols() const { return cursor.columns(); }
    std::string name() const { return table.empty() ? shortText(cursor.statement()) : table; }
    std::string quoted(const std::string& id) const {
        const char q = db->QuoteChar();
        if (q == ' ') return id;
        std::string out(1, q);
        for (char c : id) {
            out += c;
            if (c == q) out += q;
        }
        return out + q;
    }

    bool move(SQLSMALLINT orientation) {
        mode = VntEditMode::None;
        return cursor.move(orientation);
    }

    // -- writing -----------------------------------------------------------

    // Runs a change with its parameters; it must touch exactly one row, else
    // it is undone (where the driver has transactions) and 60312 is shown.
    bool change(const std::string& sql, std::vector<Param>& params) {
        SQLHDBC dbc = db->Handle();
        const bool txn = db->CanTransact();
        if (txn && !check(SQLSetConnectAttr(dbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0),
                          SQL_HANDLE_DBC, dbc, sql))
            return false;
        SQLHSTMT st = SQL_NULL_HSTMT;
        bool ran = false;
        SQLLEN rows = 0;
        if (check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &st), SQL_HANDLE_DBC, dbc, sql)) {
            bool bound = true;
            for (std::size_t k = 0; k < params.size() && bound; ++k) {
                Param& p = params[k];
                bound = check(SQLBindParameter(st, static_cast<SQLUSMALLINT>(k + 1), SQL_PARAM_INPUT, p.cType, p.sqlType,
                                               p.size, p.decimals, p.buffer(), p.bufferLength(), &p.ind),
                              SQL_HANDLE_STMT, st, sql);
            }
            if (bound) {
                std::string text = vnt::db::toUtf8(sql);
                const SQLRETURN rc = SQLExecDirect(st, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS);
                ran = rc == SQL_NO_DATA || check(rc, SQL_HANDLE_STMT, st, sql);
                if (ran && rc != SQL_NO_DATA && !SQL_SUCCEEDED(SQLRowCount(st, &rows))) rows = -1;
            }
            SQLFreeHandle(SQL_HANDLE_STMT, st);
        }
        const bool ok = ran && rows == 1;
        if (txn) {
            check(SQLEndTran(SQL_HANDLE_DBC, dbc, ok ? SQL_COMMIT : SQL_ROLLBACK), SQL_HANDLE_DBC, dbc, sql);
            check(SQLSetConnectAttr(dbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0),
                  SQL_HANDLE_DBC, dbc, sql);
        }
        if (ran && rows != 1) Vnt_MsgSys(kMsgNotOneRow, name().c_str(), static_cast<long>(rows));
        return ok;
    }

    // " WHERE key = ? AND ..." for the current record, adding its parameters.
    std::string where(std::vector<Param>& params) const {
        const Row& cur = *cursor.current();
        std::string sql = " WHERE ";
        for (std::size_t k = 0; k < keys.size(); ++k) {
            const std::size_t c = static_cast<std::size_t>(keys[k]);
            if (k) sql += " AND ";
            sql += quoted(cols()[c].name);
            if (cur.values[c].null) {
                sql += " IS NULL";
            } else {
                sql += " = ?";
                params.push_back(paramOf(cur.values[c], cols()[c]));
            }
        }
        return sql;
    }

    bool findKeys() {
        keys.clear();
        std::vector<std::string> names;
        if (!keyList.empty()) {
            std::string_view rest = keyList;
            while (!rest.empty()) {
                const std::size_t comma = std::min(rest.find(','), rest.size());
                const std::string_view n = vnt::trim(rest.substr(0, comma), " \t\r\n");
                if (!n.empty()) names.emplace_back(n);
                rest.remove_prefix(std::min(comma + 1, rest.size()));
            }
        } else if (!table.empty()) {
            // The table's primary key, by its parts "schema.table".
            std::string schema, bare = table;
            const std::size_t dot = table.rfind('.');
            if (dot != std::string::npos) {
                schema = unquote(std::string_view(table).substr(0, dot));
                bare = table.substr(dot + 1);
            }
            bare = unquote(bare);
            std::string s8 = vnt::db::toUtf8(schema), t8 = vnt::db::toUtf8(bare);
            SQLHSTMT st = SQL_NULL_HSTMT;
            if (!check(SQLAllocHandle(SQL_HANDLE_STMT, db->Handle(), &st), SQL_HANDLE_DBC, db->Handle(), "SQLPrimaryKeys"))
                return false;
            std::map<int, std::string> ordered;
            const SQLRETURN rc = SQLPrimaryKeys(st, nullptr, 0, schema.empty() ? nullptr : reinterpret_cast<SQLCHAR*>(s8.data()),
                                                schema.empty() ? 0 : SQL_NTS, reinterpret_cast<SQLCHAR*>(t8.data()), SQL_NTS);
            // A driver without primary keys leaves the records unchangeable
            // (60311 when tried), which is no error of its own.
            if (SQL_SUCCEEDED(rc)) {
                while (SQL_SUCCEEDED(SQLFetch(st))) {
                    SQLCHAR col[256] = {};
                    SQLSMALLINT seq = 0;
                    SQLLEN ind = 0, ind2 = 0;
                    SQLGetData(st, 4, SQL_C_CHAR, col, sizeof col, &ind);
                    SQLGetData(st, 5, SQL_C_SSHORT, &seq, sizeof seq, &ind2);
                    ordered[ind2 == SQL_NULL_DATA ? static_cast<int>(ordered.size()) + 1 : seq] =
                        vnt::db::fromUtf8(reinterpret_cast<const char*>(col));
                }
            }
            SQLFreeHandle(SQL_HANDLE_STMT, st);
            for (auto& [seq, n] : ordered) names.push_back(n);
        }
        for (const std::string& n : names) {
            int found = -1;
            for (std::size_t c = 0; c < cols().size() && found < 0; ++c)
                if (sameText(cols()[c].name, n)) found = static_cast<int>(c);
            if (found < 0) {
                if (!keyList.empty()) misuse(__LINE__, "the key field \"" + n + "\" is not a field of the record set.");
                keys.clear();
                return false;
            }
            keys.push_back(found);
        }
        return !keys.empty();
    }

    void close() {
        mode = VntEditMode::None;
        cursor.close();
        if (db) db->detach(owner);
        db = nullptr;
        keys.clear();
        table.clear();
    }

    // The value a read sees: the edited record during Edit/AddNew, else the
    // current record; null when there is none or it is deleted.
    const Value* field(int index) const {
        if (index < 0 || index >= static_cast<int>(cols().size())) {
            misuse(__LINE__, vnt::format("the record set has no field %d.", index));
            return nullptr;
        }
        if (mode != VntEditMode::None) return &edit.values[static_cast<std::size_t>(index)];
        const Row* cur = cursor.current();
        if (!cur || cur->deleted) return nullptr;
        return &cur->values[static_cast<std::size_t>(index)];
    }

    // Converts `v` into field `index` of the edited record.
    bool set(int index, const Value& v, int line) {
        if (mode == VntEditMode::None) {
            misuse(line, "a field is set without Edit or AddNew.");
            return false;
        }
        if (index < 0 || index >= static_cast<int>(cols().size())) {
            misuse(line, vnt::format("the record set has no field %d.", index));
            return false;
        }
        const Column& c = cols()[static_cast<std::size_t>(index)];
        Value out;
        if (v.null) {
            out.kind = c.kind;
        } else if (!convert(v, c.kind, c.decimals, out)) {
            misuse(line, "the value \"" + vnt::db::shortText(textOf(v)) + "\" does not suit the field \"" + c.name + "\".");
            return false;
        }
        edit.values[static_cast<std::size_t>(index)] = std::move(out);
        dirty[static_cast<std::size_t>(index)] = true;
        return true;
    }
};

VntRecordset::VntRecordset(VntDatabase* db) : m_pDatabase(db), impl_(std::make_unique<Impl>()) {
    impl_->owner = this;
}

VntRecordset::~VntRecordset() { Close(); }

void VntRecordset::SetKeyColumns(const char* list) { impl_->keyList = list ? list : ""; }

bool VntRecordset::Open(const char* sql, unsigned options) {
    Impl& m = *impl_;
    Close();
    if (!m_pDatabase || !m_pDatabase->IsOpen()) {
        misuse(__LINE__, "a record set is opened without an open database.");
        return false;
    }
    if (!sql || vnt::trim(sql, " \t\r\n").empty()) {
        misuse(__LINE__, "a record set is opened without a query.");
        return false;
    }
    VntDatabase* db = m_pDatabase;
    m.options = options;
    std::string run;
    m.table = updateTable(sql, run);
    if (!m.cursor.allocate(db->Handle(), run)) return false;
    m.db = db;
    db->attach(this);
    if (!m.cursor.start(options & VNT_RS_FORWARDONLY)) {
        m.close();
        return false;
    }
    if (!m.table.empty() || !m.keyList.empty()) m.findKeys();
    m.move(SQL_FETCH_FIRST);
    return true;
}

bool VntRecordset::IsOpen() const { return impl_->cursor.isOpen(); }

void VntRecordset::Close() { impl_->close(); }

bool VntRecordset::Requery() {
    if (!IsOpen()) {
        misuse(__LINE__, "Requery on a record set that is not open.");
        return false;
    }
    impl_->mode = VntEditMode::None;
    return impl_->cursor.rerun();
}

bool VntRecordset::CanScroll() const { return IsOpen() && impl_->cursor.scrolls(); }

bool VntRecordset::CanAppend() const {
    const Impl& m = *impl_;
    return IsOpen() && !m.table.empty() && !(m.options & VNT_RS_READONLY) && !m.db->readOnly_;
}

bool VntRecordset::CanUpdate() const { return CanAppend() && !impl_->keys.empty(); }

const char* VntRecordset::TableName() const { return impl_->table.c_str(); }

bool VntRecordset::IsBOF() const { return impl_->cursor.bof(); }
bool VntRecordset::IsEOF() const { return impl_->cursor.eof(); }
bool VntRecordset::IsDeleted() const {
    const Row* cur = impl_->cursor.current();
    return cur && cur->deleted;
}
bool VntRecordset::MoveFirst() { return impl_->move(SQL_FETCH_FIRST); }
bool VntRecordset::MoveNext() { return impl_->move(SQL_FETCH_NEXT); }
bool VntRecordset::MovePrev() { return impl_->move(SQL_FETCH_PRIOR); }
bool VntRecordset::MoveLast() { return impl_->move(SQL_FETCH_LAST); }

int VntRecordset::GetFieldCount() const { return static_cast<int>(impl_->cols().size()); }

const char* VntRecordset::GetFieldName(int index) const {
    return index >= 0 && index < GetFieldCount() ? impl_->cols()[static_cast<std::size_t>(index)].name.c_str() : "";
}

int VntRecordset::GetFieldIndex(const char* name) const {
    if (!name) return -1;
    for (std::size_t c = 0; c < impl_->cols().size(); ++c)
        if (sameText(impl_->cols()[c].name, name)) return static_cast<int>(c);
    return -1;
}

VntDbKind VntRecordset::GetFieldKind(int index) const {
    return index >= 0 && index < GetFieldCount() ? impl_->cols()[static_cast<std::size_t>(index)].kind : Kind::Text;
}

namespace {

int indexOf(const VntRecordset& rs, const char* name) {
    const int i = rs.GetFieldIndex(name);
    if (i < 0) misuse(__LINE__, std::string("the record set has no field \"") + (name ? name : "(null)") + "\".");
    return i;
}

// A read by name: an unknown name is reported and reads as nothing.
template <class T>
bool readNamed(const VntRecordset& rs, const char* name, T& value) {
    const int i = indexOf(rs, name);
    if (i < 0) {
        value = T{};
        return false;
    }
    return rs.GetFieldValue(i, value);
}

template <class T>
bool setNamed(VntRecordset& rs, const char* name, const T& value) {
    const int i = indexOf(rs, name);
    return i >= 0 && rs.SetFieldValue(i, value);
}

}  // namespace

bool VntRecordset::IsFieldNull(int index) const {
    const Value* v = impl_->field(index);
    return !v || v->null;
}
bool VntRecordset::IsFieldNull(const char* name) const { return IsFieldNull(indexOf(*this, name)); }

// Each read converts the field into a value of the kind asked for; a field
// already of that kind is taken as it is (the usual case, read per row).
bool VntRecordset::GetFieldValue(int i, std::string& value) const { return readValue(impl_->field(i), value); }
bool VntRecordset::GetFieldValue(int i, long& value) const { return readValue(impl_->field(i), value); }
bool VntRecordset::GetFieldValue(int i, double& value) const { return readValue(impl_->field(i), value); }
bool VntRecordset::GetFieldValue(int i, VNT_DATE& value) const { return readValue(impl_->field(i), value); }
bool VntRecordset::GetFieldValue(int i, VNT_TIME& value) const { return readValue(impl_->field(i), value); }
bool VntRecordset::GetFieldValue(int i, tagTIMESTAMP_STRUCT& value) const { return readValue(impl_->field(i), value); }
bool VntRecordset::GetFieldValue(const char* n, std::string& value) const { return readNamed(*this, n, value); }
bool VntRecordset::GetFieldValue(const char* n, long& value) const { return readNamed(*this, n, value); }
bool VntRecordset::GetFieldValue(const char* n, double& value) const { return readNamed(*this, n, value); }
bool VntRecordset::GetFieldValue(const char* n, VNT_DATE& value) const { return readNamed(*this, n, value); }
bool VntRecordset::GetFieldValue(const char* n, VNT_TIME& value) const { return readNamed(*this, n, value); }
bool VntRecordset::GetFieldValue(const char* n, tagTIMESTAMP_STRUCT& value) const { return readNamed(*this, n, value); }

bool VntRecordset::GetFieldValue(int index, VntDate& value) const {
    tagTIMESTAMP_STRUCT ts{};
    if (!GetFieldValue(index, ts)) return false;
    value.Set(ts);
    return true;
}
bool VntRecordset::GetFieldValue(const char* name, VntDate& value) const {
    const int i = indexOf(*this, name);
    return i >= 0 && GetFieldValue(i, value);
}

// -- changes -------------------------------------------------------------

bool VntRecordset::Edit() {
    Impl& m = *impl_;
    if (!IsOpen()) {
        misuse(__LINE__, "Edit on a record set that is not open.");
        return false;
    }
    const Row* cur = m.cursor.current();
    if (!cur || cur->deleted) {
        misuse(__LINE__, cur ? "Edit on a deleted record." : "Edit without a current record.");
        return false;
    }
    if (!CanUpdate()) {
        if (!CanAppend() && !m.table.empty()) misuse(__LINE__, "Edit on a read-only record set.");
        else Vnt_MsgSys(kMsgNoTable, m.name().c_str());
        return false;
    }
    m.mode = VntEditMode::Edit;
    m.edit = *cur;
    m.dirty.assign(m.cols().size(), false);
    return true;
}

bool VntRecordset::AddNew() {
    Impl& m = *impl_;
    if (!IsOpen()) {
        misuse(__LINE__, "AddNew on a record set that is not open.");
        return false;
    }
    if (!CanAppend()) {
        if (!m.table.empty()) misuse(__LINE__, "AddNew on a read-only record set.");
        else Vnt_MsgSys(kMsgNoTable, m.name().c_str());
        return false;
    }
    m.mode = VntEditMode::AddNew;
    m.edit = Row{};
    m.edit.values.resize(m.cols().size());
    for (std::size_t c = 0; c < m.cols().size(); ++c) m.edit.values[c].kind = m.cols()[c].kind;
    m.dirty.assign(m.cols().size(), false);
    return true;
}

bool VntRecordset::Update() {
    Impl& m = *impl_;
    if (m.mode == VntEditMode::None) {
        misuse(__LINE__, "Update without Edit or AddNew.");
        return false;
    }
    std::vector<Param> params;
    std::string names, marks;
    for (std::size_t c = 0; c < m.cols().size(); ++c) {
        if (!m.dirty[c]) continue;
        params.push_back(paramOf(m.edit.values[c], m.cols()[c]));
        if (!names.empty()) names += ", ", marks += ", ";
        names += m.mode == VntEditMode::Edit ? m.quoted(m.cols()[c].name) + " = ?" : m.quoted(m.cols()[c].name);
        marks += "?";
    }
    if (m.mode == VntEditMode::Edit) {
        if (params.empty()) {
            m.mode = VntEditMode::None;
            return true;
        }
        const std::string sql = "UPDATE " + m.table + " SET " + names + m.where(params);
        if (!m.change(sql, params)) return false;
        m.cursor.changeCurrent(m.edit);
    } else {
        const std::string sql = "INSERT INTO " + m.table +
                                (params.empty() ? std::string(" DEFAULT VALUES") : " (" + names + ") VALUES (" + marks + ")");
        if (!m.change(sql, params)) return false;
    }
    m.mode = VntEditMode::None;
    return true;
}

void VntRecordset::CancelUpdate() { impl_->mode = VntEditMode::None; }

bool VntRecordset::Delete() {
    Impl& m = *impl_;
    m.mode = VntEditMode::None;
    const Row* cur = m.cursor.current();
    if (!IsOpen() || !cur || cur->deleted) {
        misuse(__LINE__, !IsOpen() ? "Delete on a record set that is not open."
                                   : cur ? "Delete of a deleted record." : "Delete without a current record.");
        return false;
    }
    if (!CanUpdate()) {
        if (!CanAppend() && !m.table.empty()) misuse(__LINE__, "Delete on a read-only record set.");
        else Vnt_MsgSys(kMsgNoTable, m.name().c_str());
        return false;
    }
    std::vector<Param> params;
    const std::string sql = "DELETE FROM " + m.table + m.where(params);
    if (!m.change(sql, params)) return false;
    Row gone = *cur;
    gone.deleted = true;
    m.cursor.changeCurrent(gone);
    return true;
}

VntEditMode VntRecordset::GetEditMode() const { return impl_->mode; }

bool VntRecordset::SetFieldValue(int i, const char* value) { return impl_->set(i, valueOf(value), __LINE__); }
bool VntRecordset::SetFieldValue(int i, long value) { return impl_->set(i, valueOf(value), __LINE__); }
bool VntRecordset::SetFieldValue(int i, double value) { return impl_->set(i, valueOf(value), __LINE__); }
bool VntRecordset::SetFieldValue(int i, const VNT_DATE& value) { return impl_->set(i, valueOf(value), __LINE__); }
bool VntRecordset::SetFieldValue(int i, const tagTIMESTAMP_STRUCT& value) {
    return impl_->set(i, valueOf(value), __LINE__);
}
bool VntRecordset::SetFieldValue(int i, const VntDate& value) { return impl_->set(i, valueOf(value), __LINE__); }
bool VntRecordset::SetFieldValue(const char* n, const char* value) { return setNamed(*this, n, value); }
bool VntRecordset::SetFieldValue(const char* n, long value) { return setNamed(*this, n, value); }
bool VntRecordset::SetFieldValue(const char* n, double value) { return setNamed(*this, n, value); }
bool VntRecordset::SetFieldValue(const char* n, const VNT_DATE& value) { return setNamed(*this, n, value); }
bool VntRecordset::SetFieldValue(const char* n, const tagTIMESTAMP_STRUCT& value) { return setNamed(*this, n, value); }
bool VntRecordset::SetFieldValue(const char* n, const VntDate& value) { return setNamed(*this, n, value); }

bool VntRecordset::SetFieldNull(int index) { return impl_->set(index, Value{}, __LINE__); }
bool VntRecordset::SetFieldNull(const char* name) {
    const int i = indexOf(*this, name);
    return i >= 0 && SetFieldNull(i);
}
