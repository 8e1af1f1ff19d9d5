// The database layer on SQLite: connecting a client of "dsn.ini" and closing
// it again, and reading 10,000 rows (number, text, amount, date) through a
// record set beside the same query through the ODBC C API directly. The
// counter ns/row of the two read benchmarks gives the wrapper's cost.
#include <benchmark/benchmark.h>
#include <sql.h>
#include <sqlext.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <cstdio>
#include <source_location>
#include <string>

#include "db/db_state.h"
#include "host/host.h"
#include "ini/ini_stream.h"
#include "vanto/app.h"
#include "vanto/db.h"
#include "vanto/dsn.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "bench_support.h"
#include "vanto/ui/msgbox.h"
#include "vtmtool/vtm_writer.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRows = 10000;
constexpr const char* kQuery = "SELECT id, name, betrag, datum FROM zeilen ORDER BY id";

[[noreturn]] void fail(const std::source_location where = std::source_location::current()) {
    std::fprintf(stderr, "db_bench: the installation could not be set up (line %u)\n", unsigned(where.line()));
    std::abort();
}

// An installation with one SQLite client in a temporary directory, its
// table filled once.
struct Installation {
    vnt::bench::SilentPresenter silent;
    fs::path dir = fs::temp_directory_path() / ("vanto_dbbench_" + std::to_string(std::random_device{}()));
    Installation() {
        fs::remove_all(dir);
        fs::create_directories(dir / "INI");
        fs::create_directories(dir / "Daten" / "M1");
        vtmtool::Library l{"APPINI", 60, 0, -1, {}};
        for (const char* s : {"[Settings]", "DsnPathSpec=Database", "DsnDBFileName=vanto.db", "DsnIsFile=1"})
            l.messages.push_back({uint16_t(l.messages.size() + 1), s});
        vtmtool::writeFileAtomic(dir / "INI" / "App.vtm", vtmtool::writeLibrary(l));
        VNT_PATH data;
        if (!Vnt_LfnFromHost(data, (dir / "Daten" / "M1").c_str())) fail();
        std::ofstream(dir / "INI" / "dsn.ini", std::ios::binary)
            << "[Settings]\r\nDefaultDriver=SQLite3\r\nCount=1\r\n[Dsn1]\r\n*=Bench\r\nDtaPth=" << data << "\r\n";
        VNT_PATH prog;
        if (!Vnt_LfnFromHost(prog, (dir / "Bench").c_str())) fail();
        vnt::host::setProgramFile(prog);
        // Another benchmark of the run may have started an installation of
        // its own: its application file and client settings go.
        vnt::ini::reset();
        vnt::db::reset();
        Vnt_UiSetPresenter(&silent);
        VNT_PATH sys;
        if (!Vnt_LfnFromHost(sys, VANTO_SYSLIB_EN) || !Vnt_MsgItfInit(nullptr, 0, sys)) fail();
        held = Vnt_MsgHInit();
        if (!Vnt_DsnConnectClient("Bench")) fail();
        VntDatabase* db = Vnt_AppGetConnect();
        const std::string fill =
            "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE x < " + std::to_string(kRows) +
            ") INSERT INTO zeilen SELECT x, 'Kunde M\xFCller ' || x, x * 0.25, '2024-02-29' FROM c";
        if (!db->ExecuteSQL("CREATE TABLE zeilen (id INTEGER PRIMARY KEY, name VARCHAR(40), betrag NUMERIC(10,2),"
                            " datum DATE)") ||
            !db->ExecuteSQL(fill.c_str()))
            fail();
        Vnt_AppConnClose();
    }
    ~Installation() {
        Vnt_AppConnClose();
        fs::remove_all(dir);
    }
    VNT_MSG held = nullptr;
};

Installation& installation() {
    static Installation inst;
    return inst;
}

// Time per row (the reporter shows it with its unit prefix: "250n").
void perRow(benchmark::State& state) {
    state.counters["ns/row"] = benchmark::Counter(double(state.iterations()) * kRows,
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_DbConnectCloseThroughRegistry(benchmark::State& state) {
    installation();
    for (auto _ : state) {
        if (!Vnt_DsnConnectClient("Bench")) state.SkipWithError("connect failed");
        Vnt_AppConnClose();
    }
}

// Options: 0 (scrolling cursor) or VNT_RS_FORWARDONLY.
void BM_DbReadRowsRecordset(benchmark::State& state) {
    installation();
    if (!Vnt_DsnConnectClient("Bench")) state.SkipWithError("connect failed");
    VntRecordset rs;
    Vnt_AppGetConnect(&rs);
    long sum = 0;
    for (auto _ : state) {
        if (!rs.Open(kQuery, VNT_RS_READONLY | static_cast<unsigned>(state.range(0)))) {
            state.SkipWithError("open failed");
            break;
        }
        const int id = rs.GetFieldIndex("id"), name = rs.GetFieldIndex("name"), betrag = rs.GetFieldIndex("betrag"),
                  datum = rs.GetFieldIndex("datum");
        long n = 0, v = 0;
        double amount = 0;
        std::string text;
        VNT_DATE date{};
        for (; !rs.IsEOF(); rs.MoveNext(), ++n) {
            rs.GetFieldValue(id, v);
            rs.GetFieldValue(name, text);
            rs.GetFieldValue(betrag, amount);
            rs.GetFieldValue(datum, date);
            sum += v + static_cast<long>(text.size()) + date.day;
        }
        if (n != kRows) state.SkipWithError("row count");
        rs.Close();
    }
    benchmark::DoNotOptimize(sum);
    perRow(state);
    Vnt_AppConnClose();
}

// The same query through the ODBC C API on the same connection: texts as
// wide characters, as the record set reads them; the amount as a double
// (Arg 0) or, as the record set keeps a DECIMAL, as the driver's text that
// is then converted (Arg 1); Arg 3 also asks for the static cursor that a
// scrolling record set uses (compare with BM_DbReadRowsRecordset/0).
void BM_DbReadRowsOdbcDirect(benchmark::State& state) {
    installation();
    if (!Vnt_DsnConnectClient("Bench")) state.SkipWithError("connect failed");
    SQLHDBC dbc = Vnt_AppGetConnect()->Handle();
    long sum = 0;
    for (auto _ : state) {
        SQLHSTMT st = SQL_NULL_HSTMT;
        SQLAllocHandle(SQL_HANDLE_STMT, dbc, &st);
        if (state.range(0) & 2)
            SQLSetStmtAttr(st, SQL_ATTR_CURSOR_TYPE, reinterpret_cast<SQLPOINTER>(SQL_CURSOR_STATIC), 0);
        if (!SQL_SUCCEEDED(SQLExecDirect(st, (SQLCHAR*)kQuery, SQL_NTS))) {
            state.SkipWithError("query failed");
            break;
        }
        long n = 0;
        while (SQL_SUCCEEDED(SQLFetch(st))) {
            SQLINTEGER v = 0;
            SQLWCHAR text[64];
            double amount = 0;
            SQL_DATE_STRUCT date{};
            SQLLEN ind = 0;
            SQLGetData(st, 1, SQL_C_SLONG, &v, 0, &ind);
            SQLGetData(st, 2, SQL_C_WCHAR, text, sizeof text, &ind);
            if ((state.range(0) & 1) == 0) {
                SQLGetData(st, 3, SQL_C_DOUBLE, &amount, 0, &ind);
            } else {
                char digits[40];
                SQLGetData(st, 3, SQL_C_CHAR, digits, sizeof digits, &ind);
                amount = std::strtod(digits, nullptr);
            }
            SQLGetData(st, 4, SQL_C_TYPE_DATE, &date, 0, &ind);
            sum += v + static_cast<long>(ind) + date.day;
            ++n;
        }
        if (n != kRows) state.SkipWithError("row count");
        SQLFreeHandle(SQL_HANDLE_STMT, st);
    }
    benchmark::DoNotOptimize(sum);
    perRow(state);
    Vnt_AppConnClose();
}

}  // namespace

BENCHMARK(BM_DbConnectCloseThroughRegistry)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DbReadRowsRecordset)->Arg(0)->Arg(VNT_RS_FORWARDONLY)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DbReadRowsOdbcDirect)->Arg(0)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);
