// The connection of the current client: the connect-string builder, the
// saved-connection text, clients of "dsn.ini" connected (by name, to a path,
// failing back, saved, restored, closed), record sets on the connection, the
// client selection with its exit code 2 and its steps with modules.
#include "conn_fixture.h"

#include <cstdio>
#include <cstdlib>

#include "vanto/app.h"
#include "vanto/db.h"
#include "vanto/module.h"

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using vnt::test::Conn;
using vnt::test::kSqlite;

namespace {

// The current client: name and data path.
std::string current() { return std::string(Vnt_AppDSN()) + "|" + Vnt_AppDataPath(); }
bool isOpen() { return Vnt_AppGetConnect() && Vnt_AppGetConnect()->IsOpen(); }

}  // namespace

// Shared by every back end.

TEST_P(Conn, ClientsConnectByNameAndAFailedOpenBringsThePreviousBack) {
    {
        DsnIni reg;
        ASSERT_TRUE(reg.LoadSettings());
        for (int n = 1; n <= 2; ++n) {
            ASSERT_TRUE(Vnt_DsnConnectClient(reg, n == 1 ? "m\xFCLLER gmbh" : "Schulze KG") && isOpen()) << lastBox();  // any case
            // The name of its section, the path in the library's own form.
            EXPECT_EQ(current(), (n == 1 ? "M\xFCller GmbH|" : "Schulze KG|") + dataDir(n));
            EXPECT_EQ(Vnt_AppDDPath(), progDir()) << "none given";
            EXPECT_THAT(Vnt_AppConnGet(), StartsWith("ODBC;Ddfpath=" + progDir() + ";Datapath=" + dataDir(n) + ";Driver="));
            EXPECT_EQ(changes(), n);
        }
        EXPECT_TRUE(!Vnt_DsnConnectClient(reg, "Niemand") && std::string(Vnt_AppDSN()) == "Schulze KG") << "not in the list";
    }
    const std::string before = Vnt_AppConnGet();
    DsnIni reg;
    ASSERT_TRUE(reg.LoadSettings());
    EXPECT_FALSE(Vnt_DsnConnectClient(reg, "Kaputt"));
    EXPECT_THAT(lastBox(), HasSubstr("SQLSTATE")) << "the driver's diagnostics reach the user";
    EXPECT_TRUE(isOpen() && Vnt_AppConnGet() == before);
    EXPECT_EQ(current(), "Schulze KG|" + dataDir(2));
    EXPECT_EQ(std::string(reg.Name()) + "|" + reg.DataPath(), current()) << "the registry takes the current client back";
    EXPECT_EQ(changes(), 2) << "only the successful connects";
}

TEST_P(Conn, SavedConnectionsRestoreAndCloseClearsThePaths) {
    ASSERT_TRUE(Vnt_DsnConnectClient("M\xFCller GmbH")) << lastBox();
    std::string saved;
    Vnt_AppConnSave(saved);
    EXPECT_EQ(saved, Vnt_AppConnGet() + "\nM\xFCller GmbH\n" + dataDir(1));
    ASSERT_TRUE(Vnt_DsnConnectClient("Schulze KG"));
    ASSERT_TRUE(Vnt_AppConnRestore(saved.c_str()));
    EXPECT_EQ(Vnt_AppConnGet(), Vnt_AppConnGet(saved.c_str()));
    EXPECT_EQ(current(), "M\xFCller GmbH|" + dataDir(1));
    EXPECT_TRUE(changes() == 3 && select.requests.empty()) << "restored without the selection";
    // Closing for a while and opening the same again.
    const std::string kept = Vnt_AppConnectSaveClose();
    EXPECT_TRUE(kept == Vnt_AppConnGet(saved.c_str()) && !Vnt_AppGetConnect());
    EXPECT_STREQ(Vnt_AppDSN(), "M\xFCller GmbH") << "only the connection closed";
    ASSERT_NE(Vnt_AppConnectRestore(), nullptr);
    EXPECT_EQ(Vnt_AppConnGet(), kept);
    EXPECT_EQ(std::string(Vnt_AppConnectSaveClose()), kept);
    EXPECT_EQ(std::string(Vnt_AppConnectSaveClose()), "") << "nothing open";
    ASSERT_NE(Vnt_AppConnectRestore(kept.c_str()), nullptr);
    Vnt_AppConnClose();
    EXPECT_EQ(Vnt_AppGetConnect(), nullptr);
    for (const char* v : {Vnt_AppDSN(), Vnt_AppDataPath(), Vnt_AppDDPath()}) EXPECT_STREQ(v, "");
    EXPECT_EQ(changes(), 4);
    EXPECT_TRUE(!Vnt_AppConnRestore("") && changes() == 5) << "nothing to restore closes";
}

TEST_P(Conn, RecordSetsReadAndWriteUmlautsAmountsAndDates) {
    ASSERT_TRUE(Vnt_DsnConnectClient("M\xFCller GmbH")) << lastBox();
    VntDatabase* db = Vnt_AppGetConnect();
    ASSERT_TRUE(db->ExecuteSQL("DROP TABLE IF EXISTS kunden") &&
                db->ExecuteSQL("CREATE TABLE kunden (id INTEGER PRIMARY KEY, name VARCHAR(40), betrag NUMERIC(12,2),"
                               " datum DATE)"));
    const struct { long id; const char* name; double amount; VNT_DATE date; } rows[] = {
        {1, "M\xFCller \xC4rger", 1234.5, {2024, 2, 29}},
        {2, "Stra\xDF" "e \x80", -0.1, {1999, 12, 31}},
        {3, "\xD6l & \xFC", 9999999.99, {2000, 1, 1}},
    };
    VntRecordset rs;
    EXPECT_FALSE(Vnt_AppGetConnect(nullptr));
    ASSERT_TRUE(Vnt_AppGetConnect(&rs) && rs.Open("SELECT id, name, betrag, datum FROM kunden ORDER BY id"));
    for (const auto& r : rows) {
        ASSERT_TRUE(rs.AddNew());
        EXPECT_TRUE(rs.SetFieldValue("id", r.id) && rs.SetFieldValue("name", r.name) &&
                    rs.SetFieldValue("betrag", r.amount) && rs.SetFieldValue("datum", r.date));
        ASSERT_TRUE(rs.Update()) << lastBox();
    }
    ASSERT_TRUE(rs.Requery() && rs.Edit());
    ASSERT_TRUE(rs.SetFieldValue("name", "Gr\xF6\xDF" "e") && rs.Update()) << lastBox();
    ASSERT_TRUE(rs.Requery());
    for (const auto& r : rows) {
        ASSERT_FALSE(rs.IsEOF()) << r.id;
        std::string name, amount;
        double value = 0;
        VNT_DATE date{};
        EXPECT_TRUE(rs.GetFieldValue("name", name) && rs.GetFieldValue("betrag", value) &&
                    rs.GetFieldValue("betrag", amount) && rs.GetFieldValue("datum", date));
        EXPECT_EQ(name, r.id == 1 ? "Gr\xF6\xDF" "e" : r.name);
        EXPECT_TRUE(value == r.amount && std::stod(amount) == r.amount) << value << " " << amount;
        EXPECT_TRUE(date.year == r.date.year && date.month == r.date.month && date.day == r.date.day) << r.id;
        rs.MoveNext();
    }
    EXPECT_TRUE(rs.IsEOF());
    Vnt_AppConnClose();
    EXPECT_FALSE(rs.IsOpen()) << "closing the client's connection closes its record sets";
}

INSTANTIATE_TEST_SUITE_P(Sqlite, Conn, ::testing::Values(&kSqlite), vnt::test::byName);

// The builder and the saved text.

using ConnBuilder = vnt::test::Site<>;

TEST_F(ConnBuilder, PairsAreAddedBelowTheLimit) {
    char buf[VNT_DSN_CONNECT_SIZE] = {};
    long len = 0;
    EXPECT_TRUE(Vnt_DsnConnectAdd(buf, &len, "Driver", "SQLite3") && Vnt_DsnConnectAdd(buf, &len, nullptr, "A=1") &&
                Vnt_DsnConnectAdd(buf, &len, "UID", ""));
    EXPECT_EQ(buf + std::to_string(len), "ODBC;Driver=SQLite3;A=1;UID=;29");
    // Filled up to 2046 characters, and not one more.
    const struct { std::string add; bool ok; long len; } steps[] = {
        {std::string(2044 - 29 - 1, 'x'), true, 2044}, {"y", true, 2046}, {"", false, 2046}};
    for (const auto& s : steps) {
        EXPECT_EQ(Vnt_DsnConnectAdd(buf, &len, nullptr, s.add.c_str()), s.ok) << s.len;
        EXPECT_EQ(len, s.len);
        ASSERT_EQ(box.shown.size(), s.ok ? 0u : 1u) << s.len;
    }
    EXPECT_EQ(std::string(buf).size(), 2046u) << "unchanged";
    EXPECT_THAT(lastBox() + box.shown.back().details, AllOf(HasSubstr("Internal error (code 1)"), HasSubstr("StaticLow/Connect")));
}

TEST(ConnSavedText, ThreeLinesAndTheirParts) {
    // The saved text; its connect string, client name and data path.
    const struct { const char* saved; const char* parts; } rows[] = {
        {"ODBC;A=1;\nM\xFCller\nT:\\D", "ODBC;A=1;|M\xFCller|T:\\D"},
        {"a", "||"}, {"a\nb", "a|b|"}, {"\nb\nc", "|b|c"}, {"a\nb\nc\nd", "a|b|c\nd"}, {"", "||"}, {nullptr, "||"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(Vnt_AppConnGet(r.saved) + "|" + Vnt_AppConnGetDsn(r.saved) + "|" + Vnt_AppConnGetDatapath(r.saved),
                  r.parts) << (r.saved ? r.saved : "(null)");
}

// SQLite: the embedded default.

using ConnLite = Conn;
INSTANTIATE_TEST_SUITE_P(Sqlite, ConnLite, ::testing::Values(&kSqlite), vnt::test::byName);

TEST_P(ConnLite, TheDatabaseFileLiesInTheDataDirectoryAlsoWhenRelative) {
    ASSERT_TRUE(Vnt_DsnConnectClient("Schulze KG")) << lastBox();
    EXPECT_EQ(Vnt_AppConnGet(), "ODBC;Ddfpath=" + progDir() +
                                    ";Datapath=T:\\Daten\\M2;Driver=SQLite3;UID=;MAXBUFFERSIZE=4096;"
                                    "Database=T:\\Daten\\M2\\vanto.db;");
    EXPECT_TRUE(fs::exists(dir_ / "Daten/M2/vanto.db"));

    // Directly to a path: the name is the path when none is given.
    fs::create_directories(dir_ / "Daten/Neu");
    const struct { const char *name, *path, *current; } direct[] = {{"Neu", "T:\\Daten\\Neu", "Neu|T:\\Daten\\Neu"},
        {"T:\\Daten\\M1", "", "T:\\Daten\\M1|T:\\Daten\\M1"}, {"T:\\Daten\\M1\\vanto.db", nullptr, "T:\\Daten\\M1\\vanto.db|T:\\Daten\\M1"}};
    for (const auto& d : direct) EXPECT_TRUE(Vnt_AppConnect(d.name, d.path) && current() == d.current) << current();
    EXPECT_TRUE(fs::exists(dir_ / "Daten/Neu/vanto.db"));

    // Relative paths reach the driver as host paths.
    const std::string cwd = vnt::host::curDir();
    ASSERT_TRUE(vnt::host::setCurDir("T:\\Daten"));
    putLines("INI/dsn.ini", {"[Settings]", "DefaultDriver=SQLite3", "[Dsn1]", "*=Relativ", "DtaPth=M3", "Ddfpath=..\\INI"});
    const bool ok = Vnt_DsnConnectClient("Relativ");
    vnt::host::setCurDir(cwd);
    ASSERT_TRUE(ok) << lastBox();
    EXPECT_TRUE(fs::exists(dir_ / "Daten/M3/vanto.db")) << "under the library's current directory";
    EXPECT_STREQ(Vnt_AppDataPath(), "M3") << "kept as written";
    EXPECT_THAT(Vnt_AppConnGet(), HasSubstr(";Database=M3\\vanto.db;"));
}

TEST_P(ConnLite, ConnectStringsFollowTheClientsSection) {
    app({"DsnPathSpec=Database", "DsnIsFile=0"});
    putLines("INI/dsn.ini", {"[Settings]", "DefaultDriver=SQLite3", "[Dsn1]", "*=Ordnung", "Timeout=5", "; Notiz",
                             "Driver=SQLite3", "UID=sa", "DSN=Anders", "Ddfpath=T:\\DD", "DtaPth=T:\\Daten\\M1\\x.db",
                             "[Dsn2]", "*=Leer", "Timeout=5", "[Dsn3]", "*=Lang", "DtaPth=T:\\Daten",
                             "X=" + std::string(1000, 'x'), "Y=" + std::string(1000, 'y')});
    DsnIni reg;
    ASSERT_TRUE(reg.LoadSettings());
    ASSERT_TRUE(Vnt_DsnConnectClient(reg, "Ordnung")) << lastBox();
    EXPECT_STREQ(reg.ConnectString(),
                 "ODBC;Ddfpath=T:\\DD;Datapath=T:\\Daten\\M1\\x.db;Driver=SQLite3;UID=sa;MAXBUFFERSIZE=4096;"
                 "Timeout=5;Database=T:\\Daten\\M1\\x.db;");
    EXPECT_EQ(Vnt_AppDSN() + std::string("|") + Vnt_AppDDPath(), "Ordnung|T:\\DD") << "\"*\" before \"DSN\"";
    EXPECT_FALSE(Vnt_DsnConnectClient(reg, "Leer"));
    EXPECT_THAT(lastBox(), HasSubstr("a data path specification could not be found in 'T:\\INI\\dsn.ini'"));
    EXPECT_FALSE(Vnt_DsnConnectClient(reg, "Lang"));
    EXPECT_THAT(box.shown.back().text + box.shown.back().details, HasSubstr("StaticLow/Connect"));
    EXPECT_TRUE(std::string(Vnt_AppDSN()) == "Ordnung" && isOpen()) << "still the client that opened";
}

TEST_P(ConnLite, TheSelectionRunsOnlyWithoutAnOpenConnectionAndReadsTheUsersChoices) {
    select.answers.push_back({VNT_RESP_OK, "Schulze KG"});
    VntDatabase* db = Vnt_AppConnect("");
    ASSERT_TRUE(db && select.requests.size() == 1u);
    EXPECT_EQ(select.requests[0].text + "|" + Vnt_AppDSN(), "ODBC;|Schulze KG") << "message 60300";
    EXPECT_EQ(Vnt_AppConnect("", false, false), db) << "the open one, as it is";
    // A connect string opens directly, also over an open connection when
    // restoring.
    const std::string m2 = Vnt_AppConnGet();
    ASSERT_TRUE(Vnt_DsnConnectClient("M\xFCller GmbH"));
    ASSERT_NE(Vnt_AppConnect(m2.c_str(), true, false), nullptr);
    EXPECT_TRUE(Vnt_AppConnGet() == m2 && select.requests.size() == 1u);

    // What the selection reads of the user's choices.
    const struct { const char* user; bool force; std::size_t shown; const char* dsn; } rows[] = {
        {"Default=Schulze KG\r\nShowDlg=0", false, 0, "Schulze KG"},  // no selection at start
        {"Default=Schulze KG\r\nShowDlg=0", true, 1, ""},              // asked for it
        {"Default=Schulze KG", false, 1, ""},                          // shown by default
    };
    for (const auto& r : rows) {
        Vnt_AppConnClose();
        putLines("USR/Std/User.ini", {"[DSN]", r.user});
        vnt::ini::reset();
        vnt::ini::profileReset();
        select.requests.clear();
        select.answers = {{VNT_RESP_CANCEL, ""}};
        EXPECT_EQ(Vnt_DsnSelect("ODBC;", false, r.force), r.shown ? VNT_RESP_CANCEL : VNT_RESP_OK) << r.user;
        ASSERT_EQ(select.requests.size(), r.shown);
        EXPECT_TRUE(!r.shown || select.requests[0].defaultClient == "Schulze KG");
        EXPECT_STREQ(Vnt_AppDSN(), r.dsn);
    }
    fs::remove(dir_ / "INI/dsn.ini");
    EXPECT_EQ(Vnt_DsnSelect("", false, true), VNT_RESP_CANCEL) << "no client list";
}

using ConnLiteDeathTest = ConnLite;
INSTANTIATE_TEST_SUITE_P(Sqlite, ConnLiteDeathTest, ::testing::Values(&kSqlite), vnt::test::byName);

TEST_P(ConnLiteDeathTest, NoClientEndsTheApplicationWithCode2) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The user cancels the selection.
    // Each end says why on standard error first, in one line.
    const char* const why = ": exit code 2: no client could be connected\n";
    EXPECT_EXIT(Vnt_AppConnect(""), ::testing::ExitedWithCode(2), why);
    // Headless, without a default client and without a terminal.
    Vnt_UiSetClientSelect(nullptr);
    if (!vnt::host::interactiveTerminal()) {
        EXPECT_EXIT(Vnt_DlgDsn("ODBC;", nullptr, false, false), ::testing::ExitedWithCode(2), why);
    }
    // A connect string that fails and no selection either.
    EXPECT_EXIT(Vnt_DlgDsn("ODBC;Driver=NoSuchDriver;", nullptr, false, false), ::testing::ExitedWithCode(2), why);
    // An empty or damaged client list is named, in a box and in the line.
    const std::string clients = get();
    for (const char* list : {"", "\x01\x02garbage\xFF"}) {
        if (vnt::host::interactiveTerminal()) break;
        put("INI/dsn.ini", list);
        EXPECT_EXIT(
            {
                Vnt_DlgDsn("ODBC;", nullptr, false, false);
                std::fprintf(stderr, "not reached\n");
            },
            ::testing::ExitedWithCode(2), "exit code 2: no client could be connected: the client list \"T:.INI.dsn.ini\" names no client\n");
    }
    // A missing list is reported once (the end counts the boxes shown).
    fs::remove(dir_ / "INI/dsn.ini");
    static const std::vector<VntBoxModel>* shown;
    shown = &box.shown;
    EXPECT_EXIT(
        {
            std::atexit(+[] { std::fprintf(stderr, "boxes: %zu\n", shown->size()); });
            Vnt_DlgDsn("ODBC;", nullptr, false, false);
        },
        ::testing::ExitedWithCode(2), "no client could be connected\nboxes: 1\n");
    put("INI/dsn.ini", clients);
    // Headless with the user's default client: connected.
    putLines("USR/Std/User.ini", {"[DSN]", "Default=M\xFCller GmbH"});
    VntDatabase* db = nullptr;
    EXPECT_TRUE(Vnt_DlgDsn("ODBC;", &db, false, false) && db && std::string(Vnt_AppDSN()) == "M\xFCller GmbH");
}

TEST_P(ConnLite, AppendAndRemoveKeepTheirDeliberateRules) {
    EXPECT_TRUE(Vnt_AppConnectDSNAppend("Neu", "T:\\Daten\\Neu"));
    const std::string four = get();
    EXPECT_THAT(four, HasSubstr("[Dsn4]\r\n*=Neu\r\nDtaPth=T:\\Daten\\Neu\r\n"));
    EXPECT_TRUE(Vnt_AppConnectDSNAppend("Anders", "T:\\Daten\\Neu") && get() == four) << "a replacement is not saved";
    EXPECT_TRUE(Vnt_AppConnectDSNRemove("egal", "t:\\daten\\m2"));  // by path, any case
    EXPECT_TRUE(Vnt_AppConnectDSNRemove("Gibt es nicht", ""));      // the last one goes
    DsnIni reg;
    ASSERT_TRUE(reg.LoadEntries() && reg.Count() == 2) << reg.Count();
    EXPECT_EQ(std::string(reg.Entry(0)->name) + "|" + reg.Entry(1)->name, "M\xFCller GmbH|Kaputt");
}

// The selection's steps, with modules.

TEST_P(ConnLite, AFailingClientChainClosesTheConnection) {
    useModules({"-1, ModStack.dll, Kette, ModMain, 0"});
    for (long result : {0, -1}) {
        Vnt_AppModQueuePush(result);
        EXPECT_EQ(Vnt_DsnConnectClient("Schulze KG"), result == 0) << result;
        EXPECT_EQ(Vnt_AppGetConnect() != nullptr, result == 0);
        EXPECT_STREQ(Vnt_AppDSN(), result == 0 ? "Schulze KG" : "");
    }
}

TEST_P(ConnLite, TheModuleLeftOnTheStackStartsAfterTheSelection) {
    useModules({"30, ModStack.dll, Danach, ModMain, 0"});
    // Connected directly (no selection at start) or through the selection.
    for (const char* show : {"0", "1"}) {
        SCOPED_TRACE(show);
        Vnt_AppConnClose();
        putLines("USR/Std/User.ini", {"[DSN]", "Default=Schulze KG", std::string("ShowDlg=") + show});
        vnt::ini::profileReset();
        select.answers = {{VNT_RESP_OK, "M\xFCller GmbH"}};
        Vnt_AppModSetResult(0);
        Vnt_AppModQueuePush(77);  // what module 30 answers
        Vnt_AppModQueuePush(30);
        EXPECT_EQ(Vnt_DsnSelect("ODBC;", false, false), VNT_RESP_OK);
        EXPECT_TRUE(Vnt_AppModResult() == 77 && Vnt_AppModQueuePop() == 0) << "module 30 ran";
        EXPECT_STREQ(Vnt_AppDSN(), *show == '0' ? "Schulze KG" : "M\xFCller GmbH");
    }
}

TEST_P(ConnLite, OkInstallsAMissingClientAndCancelRestores) {
    useModules({"23, ModStack.dll, Einrichten, ModMain, 0", "24, ModStack.dll, Installation, ModMain, 0"});
    ASSERT_TRUE(Vnt_DsnConnectClient("M\xFCller GmbH"));
    const std::string m1 = Vnt_AppConnGet();
    DsnIni reg(this);
    ASSERT_TRUE(reg.LoadSettings() && reg.Count() == 3);
    EXPECT_TRUE(Vnt_DsnPathExists(dataDir(1).c_str()) && !Vnt_DsnPathExists(dataDir(2).c_str())) << "no file for 2 yet";

    // OK on the new client: asked (60358), No stays; Yes runs the
    // installation, whose result 0 stays; a result of 1 connects.
    std::string saved;
    box.answers = {{VNT_BTN_NO}, {VNT_BTN_YES}, {VNT_BTN_YES}};
    for (long install : {-1L, 0L}) {
        if (install >= 0) Vnt_AppModQueuePush(install);
        EXPECT_FALSE(Vnt_DsnSelectOk(reg, 1, saved)) << install;
    }
    Vnt_AppModQueuePush(1);
    ASSERT_TRUE(Vnt_DsnSelectOk(reg, 1, saved)) << lastBox();
    EXPECT_THAT(box.shown[0].text, HasSubstr(dataDir(2)));
    EXPECT_EQ(saved + "|" + Vnt_AppDSN(), m1 + "\nM\xFCller GmbH\n" + dataDir(1) + "|Schulze KG");
    EXPECT_FALSE(Vnt_DsnSelectOk(reg, 7, saved));

    // Cancel: a changed list is asked about first (No stays), then the
    // connection of the start comes back.
    reg.RemoveEntry(2);
    box.answers = {{VNT_BTN_NO}, {VNT_BTN_YES}};
    EXPECT_TRUE(!Vnt_DsnSelectCancel(reg, saved.c_str()) && std::string(Vnt_AppDSN()) == "Schulze KG");
    EXPECT_TRUE(Vnt_DsnSelectCancel(reg, saved.c_str()) && !reg.IsModified());
    EXPECT_TRUE(std::string(Vnt_AppDSN()) == "M\xFCller GmbH" && Vnt_AppConnGet() == m1);
    {
        DsnIni other;  // a second selection alive: nothing is restored
        ASSERT_TRUE(Vnt_DsnConnectClient("Schulze KG"));
        EXPECT_TRUE(Vnt_DsnSelectCancel(reg, saved.c_str()) && std::string(Vnt_AppDSN()) == "Schulze KG");
    }

    // The entry dialog's set-up: installation (24), then module 23.
    const struct { long install, setUp; bool moved, ok; const char* dsn; } rows[] = {
        {0, 1, false, false, "Schulze KG"},  // installation failed: nothing else
        {1, 1, false, true, "Neuer Name"},  // only the name changes
        {1, 0, false, false, "Schulze KG"},  // module 23 refuses: restored
        {1, 1, true, true, "Umgezogen"},     // moved: connected to the new path
    };
    fs::create_directories(dir_ / "Daten/Neu");
    for (const auto& r : rows) {
        ASSERT_TRUE(Vnt_DsnConnectClient("Schulze KG"));
        Vnt_AppModQueuePush(r.setUp);
        Vnt_AppModQueuePush(r.install);
        char former[VNT_MAX_PATH] = "-";
        EXPECT_EQ(Vnt_DsnSetUpClient(reg, r.moved ? "Umgezogen" : "Neuer Name", "T:\\Daten\\Neu", r.moved, &former),
                  r.ok);
        EXPECT_STREQ(Vnt_AppDSN(), r.dsn);
        EXPECT_TRUE(r.ok || !r.install || std::string(former) == "Schulze KG") << former;
        while (Vnt_AppModQueuePop() != 0) {}
    }
    EXPECT_STREQ(Vnt_AppDataPath(), "T:\\Daten\\Neu");
}
