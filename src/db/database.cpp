// VntDatabase: one ODBC connection.

#include <algorithm>
#include <vector>

#include "base/names.h"
#include "db/db_state.h"
#include "db/odbc.h"
#include "vanto/db.h"
#include "vanto/msg.h"

struct VntDatabase::Sets {
    std::vector<VntRecordset*> open;
};

VntDatabase::VntDatabase() : sets_(std::make_unique<Sets>()) {}

VntDatabase::~VntDatabase() { Close(); }

void VntDatabase::attach(VntRecordset* rs) {
    if (std::find(sets_->open.begin(), sets_->open.end(), rs) == sets_->open.end()) sets_->open.push_back(rs);
}

void VntDatabase::detach(VntRecordset* rs) { std::erase(sets_->open, rs); }

bool VntDatabase::OpenEx(const char* connect, bool readOnly) { return Open(nullptr, false, readOnly, connect, false); }

bool VntDatabase::Open(const char* dsn, bool exclusive, bool readOnly, const char* connect, bool /*useCursorLib*/) {
    using namespace vnt::db;
    Close();
    if (exclusive) {
        Vnt__MsgErr("db/VntDatabase", __LINE__, "!Internal Error: exclusive access to a database is not supported.");
        return false;
    }
    std::string_view rest = connect ? connect : "";
    if (rest.size() >= 4 && vnt::sameText(rest.substr(0, 4), "ODBC") && (rest.size() == 4 || rest[4] == ';'))
        rest.remove_prefix(std::min<std::size_t>(5, rest.size()));
    std::string full = "ODBC;";
    if (dsn && *dsn) full += std::string("DSN=") + dsn + ";";
    full += rest;
    const std::string shown = Vnt_DbMaskConnect(full.c_str());

    std::string drv = driverConnect(full);
    if (const std::string why = unusableDriver(drv); !why.empty()) {
        fail(shown, "IM002", why);
        return false;
    }
    SQLHENV env = environment();
    if (!env) return false;
    SQLHDBC dbc = SQL_NULL_HDBC;
    if (!check(SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc), SQL_HANDLE_ENV, env, shown)) return false;
    ++state().connections;
    auto drop = [&] {
        SQLFreeHandle(SQL_HANDLE_DBC, dbc);
        --state().connections;
    };
    if (readOnly &&
        !check(SQLSetConnectAttr(dbc, SQL_ATTR_ACCESS_MODE, reinterpret_cast<SQLPOINTER>(SQL_MODE_READ_ONLY), 0),
               SQL_HANDLE_DBC, dbc, shown)) {
        drop();
        return false;
    }
    const SQLRETURN rc = SQLDriverConnect(dbc, nullptr, reinterpret_cast<SQLCHAR*>(drv.data()), SQL_NTS, nullptr, 0,
                                          nullptr, SQL_DRIVER_NOPROMPT);
    if (!check(rc, SQL_HANDLE_DBC, dbc, shown)) {
        drop();
        return false;
    }
    dbc_ = dbc;
    connect_ = std::move(full);
    readOnly_ = readOnly;

    SQLCHAR info[256] = {};
    SQLSMALLINT len = 0;
    driver_ = SQL_SUCCEEDED(SQLGetInfo(dbc, SQL_DRIVER_NAME, info, sizeof info, &len))
                  ? fromUtf8(reinterpret_cast<const char*>(info))
                  : std::string();
    info[0] = '\0';
    quote_ = SQL_SUCCEEDED(SQLGetInfo(dbc, SQL_IDENTIFIER_QUOTE_CHAR, info, sizeof info, &len)) && info[0]
                 ? static_cast<char>(info[0])
                 : ' ';
    SQLUSMALLINT txn = SQL_TC_NONE;
    canTransact_ = SQL_SUCCEEDED(SQLGetInfo(dbc, SQL_TXN_CAPABLE, &txn, sizeof txn, nullptr)) && txn != SQL_TC_NONE;
    return true;
}

void VntDatabase::Close() {
    // Their statements must go before the connection can.
    const std::vector<VntRecordset*> open = sets_->open;
    for (VntRecordset* rs : open) rs->Close();
    sets_->open.clear();
    if (!dbc_) return;
    SQLHDBC dbc = dbc_;
    dbc_ = nullptr;
    vnt::db::check(SQLDisconnect(dbc), SQL_HANDLE_DBC, dbc, "SQLDisconnect");
    SQLFreeHandle(SQL_HANDLE_DBC, dbc);
    --vnt::db::state().connections;
    connect_.clear();
    driver_.clear();
    rowsAffected_ = -1;
}

bool VntDatabase::ExecuteSQL(const char* sql) {
    using namespace vnt::db;
    if (!dbc_ || !sql) {
        Vnt__MsgErr("db/VntDatabase", __LINE__,
                    !dbc_ ? "!Internal Error: ExecuteSQL on a database that is not open."
                          : "!Internal Error: ExecuteSQL without a statement.");
        return false;
    }
    SQLHSTMT st = SQL_NULL_HSTMT;
    if (!check(SQLAllocHandle(SQL_HANDLE_STMT, dbc_, &st), SQL_HANDLE_DBC, dbc_, sql)) return false;
    std::string text = toUtf8(sql);
    const SQLRETURN rc = SQLExecDirect(st, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS);
    const bool ok = rc == SQL_NO_DATA || check(rc, SQL_HANDLE_STMT, st, sql);
    if (ok) {
        SQLLEN rows = -1;
        rowsAffected_ = rc != SQL_NO_DATA && SQL_SUCCEEDED(SQLRowCount(st, &rows)) ? static_cast<long>(rows) : 0;
    }
    SQLFreeHandle(SQL_HANDLE_STMT, st);
    return ok;
}
