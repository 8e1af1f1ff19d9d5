// The database layer against real SQLite files through the ODBC driver
// "SQLite3": connect strings and their masking, statements and their
// diagnostics in the message box, record sets moving (scrolling and read
// forward), reading and writing texts with umlauts, amounts and dates, null
// fields, changes by key and deleted records.
#include "conn_fixture.h"

#include "cal/odbc_timestamp.h"
#include "vanto/db.h"

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

class Db : public vnt::test::Site<> {
protected:
    void TearDown() override {
        db_.Close();
        Site::TearDown();
    }
    // The connect string of a database file under the test directory.
    std::string connect() const { return "DRIVER=SQLite3;Database=" + (dir_ / "test.db").string(); }
    // Customers: umlauts, an amount, a date, a time stamp, a null note.
    void customers() {
        ASSERT_TRUE(db_.OpenEx(connect().c_str()));
        for (const char* sql :
             {"CREATE TABLE kunden (id INTEGER PRIMARY KEY, name VARCHAR(40), betrag DECIMAL(10,2), datum DATE,"
              " zeit TIMESTAMP, notiz VARCHAR(20))",
              "INSERT INTO kunden VALUES (1, 'M\xFCller', 10.5, '2024-02-29', '2024-02-29 13:14:15', NULL)",
              "INSERT INTO kunden VALUES (2, 'Stra\xDF" "e', 0.1, '1999-12-31', '1999-12-31 23:59:59', 'x')",
              "INSERT INTO kunden VALUES (3, '\x80uro', -2.35, NULL, NULL, '')"})
            ASSERT_TRUE(db_.ExecuteSQL(sql)) << sql;
    }
    static long id(VntRecordset& rs) {
        long v = 0;
        return rs.GetFieldValue("id", v) ? v : -1;
    }
    static std::string text(VntRecordset& rs, const char* field) {
        std::string v;
        return rs.GetFieldValue(field, v) ? v : "(null)";
    }
    VntDatabase db_;
};

TEST(DbMask, PasswordsAreMaskedWhateverTheirForm) {
    const struct { const char* in; const char* out; } rows[] = {
        {"ODBC;UID=sa;PWD=geheim;X=1", "ODBC;UID=sa;PWD=****;X=1"}, {"pwd=a;Password=bb", "pwd=****;Password=****"},
        {"DSN=x;PWD={a;b}};c};Y=2", "DSN=x;PWD=****;Y=2"},          {"UID=pwd;DATABASE=PWD", "UID=pwd;DATABASE=PWD"},
        {"PWD=", "PWD=****"},                                       {"", ""},
    };
    for (const auto& r : rows) EXPECT_EQ(Vnt_DbMaskConnect(r.in), r.out) << r.in;
    EXPECT_EQ(Vnt_DbMaskConnect(nullptr), "");
}

TEST_F(Db, OpenCloseAndTheConnectString) {
    const std::string raw = "ODBC;" + connect() + ";PWD=geheim";
    ASSERT_TRUE(db_.Open(nullptr, false, false, raw.c_str()) && db_.IsOpen());
    EXPECT_EQ(db_.GetConnectRaw(), raw) << "as given: it reopens the database";
    EXPECT_THAT(db_.GetConnect(), AllOf(HasSubstr("PWD=****"), Not(HasSubstr("geheim"))));
    EXPECT_THAT(db_.DriverName(), HasSubstr("sqlite3"));
    db_.Close(), db_.Close();  // twice does nothing
    EXPECT_TRUE(!db_.IsOpen() && std::string(db_.GetConnectRaw()).empty());

    // Without the prefix; a library path with an umlaut goes to the driver as
    // its host path, and the driver creates the file there.
    ASSERT_TRUE(db_.OpenEx("DRIVER=SQLite3;Database=T:\\Gr\xFC\xDF" "e.db"));
    EXPECT_EQ(std::string(db_.GetConnectRaw()), "ODBC;DRIVER=SQLite3;Database=T:\\Gr\xFC\xDF" "e.db");
    EXPECT_TRUE(db_.ExecuteSQL("CREATE TABLE t (a INTEGER)") && fs::exists(dir_ / "Grüße.db"));

    // A connection that fails keeps the password out of the box.
    EXPECT_FALSE(db_.OpenEx("DRIVER=NoSuchDriver;Database=x;PWD=geheim") || db_.IsOpen());
    ASSERT_EQ(box.shown.size(), 1u) << "and none before";
    EXPECT_STRNE(Vnt_DbLastState(), "");
    EXPECT_THAT(lastBox(), AllOf(HasSubstr("The database reports an error."), HasSubstr("PWD=****"),
                                 HasSubstr(std::string("SQLSTATE ") + Vnt_DbLastState()), Not(HasSubstr("geheim"))));

    EXPECT_FALSE(db_.Open(nullptr, true, false, connect().c_str())) << "exclusive access";
    EXPECT_TRUE(box.shown.size() == 2u && lastBox().find("exclusive") != std::string::npos) << lastBox();
}

// A driver that names no library file is refused before the driver manager
// sees it (unixODBC aborts the process on "/" and on an empty driver it
// cannot look up); a driver file is left to the driver manager. A library
// path is judged as the host path it becomes ("T:\\" has no trailing
// separator there).
TEST_F(Db, DriverNamingNoLibraryIsRefused) {
    const char* const dir = "names a directory";
    const char* const empty = "names an empty driver";
    const struct { const char* connect; const char* says; } rows[] = {
        {"Driver=/", dir},           {"DRIVER={//}", dir},          {"Driver=x;driver= / ;PWD=geheim", dir},
        {"Driver=lib\\", dir},        {"Driver={/x}}/}", dir},        {"Driver=", empty},
        {"Driver={};DSN=x", empty},  {"Driver=x;Driver= ;", empty}, {"Driver=T:\\", nullptr},
        {"X= {;Driver=/;}", dir},   {"Driver=/no/such/lib.so", nullptr}, {"DriverX=/;Driver=NoSuch", nullptr},
        {"Driver={/x/}}};Y=1", nullptr}, {"Driver={}S", empty},     {"Driver={/}x", dir},
        {"Driver=:", dir},           {"Driver=/:/", dir},           {"Driver=a:b", nullptr},
    };
    for (const auto& r : rows) {
        box.shown.clear();
        EXPECT_FALSE(db_.OpenEx(r.connect) || db_.IsOpen()) << r.connect;
        ASSERT_EQ(box.shown.size(), 1u) << r.connect;
        if (r.says) {
            EXPECT_STREQ(Vnt_DbLastState(), "IM002") << r.connect;
            EXPECT_THAT(lastBox(), AllOf(HasSubstr(r.says), Not(HasSubstr("geheim")))) << r.connect;
        } else {
            EXPECT_THAT(lastBox(), AllOf(Not(HasSubstr(dir)), Not(HasSubstr(empty)))) << r.connect;
        }
    }
}

TEST_F(Db, StatementsAndTheirDiagnostics) {
    customers();
    // Each statement and the rows it changed; the last went in UTF-8: SQLite
    // holds the umlaut as two bytes.
    const struct { const char* sql; long rows; } rows[] = {
        {"UPDATE kunden SET notiz = 'y' WHERE id > 1", 2}, {"DELETE FROM kunden WHERE id = 99", 0},
        {"UPDATE kunden SET notiz = notiz WHERE hex(name) = '4DC3BC6C6C6572'", 1}};
    for (const auto& r : rows)
        EXPECT_TRUE(db_.ExecuteSQL(r.sql) && db_.RowsAffected() == r.rows) << r.sql << ": " << db_.RowsAffected();
    Vnt_DbClearError();
    EXPECT_FALSE(db_.ExecuteSQL("SELEKT * FROM kunden"));
    ASSERT_EQ(box.shown.size(), 1u) << "and none before";
    EXPECT_THAT(Vnt_DbLastState() + std::string("|") + Vnt_DbLastError(), AllOf(::testing::StartsWith("HY000|"), HasSubstr("syntax error")));
    EXPECT_THAT(lastBox(), AllOf(HasSubstr("SELEKT * FROM kunden"), HasSubstr("SQLSTATE HY000: "), HasSubstr("syntax error")));
    Vnt_DbClearError();
    EXPECT_TRUE(std::string(Vnt_DbLastState()).empty() && std::string(Vnt_DbLastError()).empty());
}

TEST_F(Db, RecordSetsReadAndMoveScrollingOrForward) {
    customers();
    for (unsigned options : {0u, VNT_RS_FORWARDONLY}) {
        SCOPED_TRACE(options);
        VntRecordset rs(&db_);
        ASSERT_TRUE(rs.Open("SELECT * FROM kunden ORDER BY id", options) && rs.GetFieldCount() == 6);
        EXPECT_TRUE(rs.CanScroll() == (options == 0) && rs.CanUpdate() && std::string(rs.TableName()) == "kunden");
        EXPECT_TRUE(std::string(rs.GetFieldName(1)) == "name" && rs.GetFieldIndex("BETRAG") == 2 &&
                    rs.GetFieldKind(4) == VntDbKind::Timestamp);

        // Each step: the move, its result, then the id (-1: none), BOF, EOF.
        enum Move { First, Next, Prev, Last };
        const struct { Move move; bool ok; long id; bool bof, eof; } steps[] = {
            {Next, true, 2, false, false}, {Next, true, 3, false, false},  {Next, false, -1, false, true},
            {Next, false, -1, false, true}, {Prev, true, 3, false, false}, {First, true, 1, false, false},
            {Prev, false, -1, true, false}, {Prev, false, -1, true, false}, {Next, true, 1, false, false},
            {Last, true, 3, false, false},  {Prev, true, 2, false, false},
        };
        EXPECT_TRUE(id(rs) == 1 && !rs.IsBOF() && !rs.IsEOF()) << "the first record after Open";
        for (const auto& s : steps) {
            const bool ok = s.move == First ? rs.MoveFirst() : s.move == Next ? rs.MoveNext()
                          : s.move == Prev ? rs.MovePrev() : rs.MoveLast();
            EXPECT_TRUE(ok == s.ok && id(rs) == s.id && rs.IsBOF() == s.bof && rs.IsEOF() == s.eof)
                << "move " << s.move << " to " << s.id << ": " << ok << id(rs) << rs.IsBOF() << rs.IsEOF();
        }

        // Record 2: text, amount, date, time stamp.
        double amount = 0;
        VNT_DATE d{};
        tagTIMESTAMP_STRUCT ts{};
        VntDate vd;
        EXPECT_EQ(text(rs, "name"), "Stra\xDF" "e");
        EXPECT_TRUE(rs.GetFieldValue("betrag", amount) && amount == 0.1);
        EXPECT_TRUE(rs.GetFieldValue("datum", d) && d.year == 1999 && d.month == 12 && d.day == 31);
        EXPECT_TRUE(rs.GetFieldValue("zeit", ts) && ts.hour == 23 && ts.second == 59);
        EXPECT_TRUE(rs.GetFieldValue(4, vd) && vd.date.day == 31 && vd.time.minute == 59);
        EXPECT_EQ(text(rs, "zeit") + "|" + text(rs, "datum"), "1999-12-31 23:59:59|1999-12-31");

        // Record 1: the umlaut, and a null field.
        rs.MoveFirst();
        EXPECT_TRUE(text(rs, "name") == "M\xFCller" && rs.IsFieldNull("notiz") && !rs.IsFieldNull("name"));
        std::string s = "old";
        EXPECT_TRUE(!rs.GetFieldValue("notiz", s) && s.empty()) << "null reads as nothing";
        rs.MoveLast();
        EXPECT_TRUE(text(rs, "name") == "\x80uro" && rs.IsFieldNull("datum") && !rs.IsFieldNull("notiz")) << "an empty text is no null";
    }
    VntRecordset empty(&db_);
    ASSERT_TRUE(empty.Open("SELECT * FROM kunden WHERE id < 0"));
    EXPECT_TRUE(empty.IsBOF() && empty.IsEOF() && !empty.MoveNext() && !empty.MoveLast() && empty.IsEOF() &&
                empty.IsFieldNull(0));
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Db, ConversionsOfFieldValues) {
    ASSERT_TRUE(db_.OpenEx(connect().c_str()));
    ASSERT_TRUE(db_.ExecuteSQL("CREATE TABLE v (n INTEGER PRIMARY KEY, t VARCHAR(40))"));
    // A text and what it reads as: a long, a double (0: neither reads), a time stamp.
    const struct { const char* text; long l; double d; const char* stamp; } rows[] = {
        {"42", 42, 42, nullptr},      {" -7 ", -7, -7, nullptr},   {"10.00", 10, 10, nullptr},   {"1,5", 0, 1.5, nullptr},
        {"2.345", 0, 2.345, nullptr}, {"1e3", 1000, 1000, nullptr}, {"abc", 0, 0, nullptr},      {"12abc", 0, 0, nullptr},
        {"2024-02-29", 0, 0, "2024-02-29 00:00:00"}, {"2024-02-29T13:14:15.5", 0, 0, "2024-02-29 13:14:15.5"},
        {"2023-02-29", 0, 0, nullptr}, {"13:14", 0, 0, nullptr},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i)
        ASSERT_TRUE(db_.ExecuteSQL(("INSERT INTO v VALUES (" + std::to_string(i) + ", '" + rows[i].text + "')").c_str()));
    VntRecordset rs(&db_);
    ASSERT_TRUE(rs.Open("v"));
    EXPECT_TRUE(rs.CanUpdate() && std::string(rs.TableName()) == "v") << "a bare table name";
    for (const auto& r : rows) {
        long l = -1;
        double d = -1;
        tagTIMESTAMP_STRUCT ts{};
        EXPECT_TRUE(rs.GetFieldValue("t", l) == (r.l != 0) && l == r.l) << r.text << ": " << l;
        EXPECT_TRUE(rs.GetFieldValue("t", d) == (r.d != 0) && d == r.d) << r.text << ": " << d;
        EXPECT_EQ(rs.GetFieldValue("t", ts), r.stamp != nullptr) << r.text;
        if (r.stamp) {
            // Through the record set's own text of a time stamp.
            ASSERT_TRUE(rs.Edit() && rs.SetFieldValue("t", ts));
            EXPECT_EQ(text(rs, "t"), r.stamp);
            rs.CancelUpdate();
        }
        rs.MoveNext();
    }
    VNT_TIME t{};
    VNT_DATE date{};
    rs.MoveLast();
    EXPECT_TRUE(rs.GetFieldValue("t", t) && t.hour == 13 && t.minute == 14 && !rs.GetFieldValue("t", date)) << "a time, no date";
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Db, ChangesAddsAndDeletes) {
    customers();
    for (unsigned options : {0u, VNT_RS_FORWARDONLY}) {
        SCOPED_TRACE(options);
        VntRecordset rs(&db_);
        ASSERT_TRUE(rs.Open("SELECT id, name, betrag, datum, notiz FROM kunden WHERE id <= 3 ORDER BY id", options));
        ASSERT_TRUE(rs.CanUpdate());

        // Change record 1: a text with umlauts, an amount, a date, a null.
        ASSERT_TRUE(rs.Edit() && rs.GetEditMode() == VntEditMode::Edit);
        const std::string name = options ? "Gr\xF6\xDF" "e" : "\xC4rger";
        EXPECT_TRUE(rs.SetFieldValue("name", name.c_str()) && rs.SetFieldValue("betrag", 12.345) &&
                    rs.SetFieldValue("datum", VNT_DATE{2025, 1, 2}) && rs.SetFieldValue("notiz", "n") &&
                    rs.SetFieldNull("notiz"));
        ASSERT_TRUE(rs.Update() && rs.GetEditMode() == VntEditMode::None);
        EXPECT_EQ(text(rs, "name"), name);
        EXPECT_TRUE(rs.MoveNext() && rs.MovePrev() && rs.IsFieldNull("notiz"));
        EXPECT_EQ(text(rs, "name") + "|" + text(rs, "datum"), name + "|2025-01-02") << "the changed record shows its new values again";

        // In the database: the text in UTF-8 (umlauts as two bytes), the
        // amount as a number.
        VntRecordset check(&db_);
        ASSERT_TRUE(check.Open(
            "SELECT hex(name) AS h, betrag * 1000 AS b, datum, notiz IS NULL AS nul FROM kunden WHERE id = 1"));
        EXPECT_EQ(text(check, "h") + "|" + text(check, "b") + "|" + text(check, "datum") + "|" + text(check, "nul"),
                  std::string(options ? "4772C3B6C39F65" : "C38472676572") + "|12345|2025-01-02|1");
        check.Close();

        // Add a record: it appears after Requery; the record before stays current.
        rs.MoveNext();
        ASSERT_TRUE(rs.AddNew() && rs.IsFieldNull("name"));
        EXPECT_TRUE(rs.SetFieldNull("id") && rs.SetFieldValue("name", "Neu") && rs.SetFieldValue("betrag", "7,5"));
        ASSERT_TRUE(rs.Update() && id(rs) == 2);
        // Delete record 2: it stays in place, deleted.
        ASSERT_TRUE(rs.Delete() && rs.IsDeleted());
        std::string s = "x";
        EXPECT_TRUE(!rs.GetFieldValue("name", s) && s.empty());
        EXPECT_TRUE(rs.MoveNext() && !rs.IsDeleted() && id(rs) == 3);
        EXPECT_TRUE(rs.MovePrev() && rs.IsDeleted()) << "visited again";
        EXPECT_TRUE(!rs.Edit() && box.shown.size() == 1u) << "a deleted record: its message, and none before";
        box.shown.clear();

        ASSERT_TRUE(rs.Requery());
        std::vector<long> ids;
        for (bool more = !rs.IsEOF(); more; more = rs.MoveNext()) ids.push_back(id(rs));
        EXPECT_EQ(ids, (std::vector<long>{1, 3})) << "the new record has an id above 3";
        VntRecordset added(&db_);
        ASSERT_TRUE(added.Open("SELECT name, betrag FROM kunden WHERE id > 3"));
        EXPECT_EQ(text(added, "name") + "|" + text(added, "betrag"), "Neu|7.5");
        // Put record 2 back for the next round.
        ASSERT_TRUE(db_.ExecuteSQL("DELETE FROM kunden WHERE id > 3") &&
                    db_.ExecuteSQL("INSERT INTO kunden (id, name) VALUES (2, 'Zwei')"));
    }
}

TEST_F(Db, WhatCannotBeChangedIsReported) {
    customers();
    ASSERT_TRUE(db_.ExecuteSQL("CREATE TABLE nokey (a INTEGER, b VARCHAR(10))") &&
                db_.ExecuteSQL("INSERT INTO nokey VALUES (1, 'x')"));
    // Each row: the query, its options, what the box says to Edit and Delete.
    const struct { const char* sql; unsigned options; const char* said; } rows[] = {
        {"nokey", 0, "cannot be changed: they come from no single table with a key"},
        {"SELECT k.id, n.a FROM kunden k, nokey n", 0, "cannot be changed"},
        {"SELECT name FROM kunden", 0, "cannot be changed"},  // the key is not among the fields
        {"kunden", VNT_RS_READONLY, "read-only"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.sql);
        box.shown.clear();
        VntRecordset rs(&db_);
        ASSERT_TRUE(rs.Open(r.sql, r.options));
        EXPECT_FALSE(rs.CanUpdate() || rs.Edit() || rs.Delete());
        ASSERT_EQ(box.shown.size(), 2u);
        EXPECT_THAT(box.shown[0].text, HasSubstr(r.said));
    }
    // A key named by the caller makes the table without one changeable.
    VntRecordset named(&db_);
    named.SetKeyColumns("a");
    ASSERT_TRUE(named.Open("SELECT a, b FROM nokey"));
    ASSERT_TRUE(named.Edit() && named.SetFieldValue("b", "y") && named.Update());

    // Misuse: fields outside Edit, unknown fields, values that do not fit.
    box.shown.clear();
    VntRecordset rs(&db_);
    ASSERT_TRUE(rs.Open("kunden"));
    long l = 5;
    EXPECT_FALSE(rs.SetFieldValue("name", "x") || rs.GetFieldValue("nix", l) || rs.Update());
    EXPECT_EQ(l, 0);
    ASSERT_TRUE(rs.Edit());
    EXPECT_FALSE(rs.SetFieldValue("id", "zehn") || rs.SetFieldValue("datum", 3.5) || rs.SetFieldValue(99, 1L));
    ASSERT_EQ(box.shown.size(), 6u);
    for (const char* s : {"without Edit or AddNew", "no field \"nix\"", "Update without Edit", "\"zehn\" does not suit",
                          "\"3.5\" does not suit the field \"datum\"", "no field 99"})
        EXPECT_TRUE(std::any_of(box.shown.begin(), box.shown.end(), [&](auto& b) { return b.text.find(s) != b.text.npos; }))
            << s;

    // The record vanished behind the record set's back: nothing is changed.
    rs.CancelUpdate();
    box.shown.clear();
    ASSERT_TRUE(db_.ExecuteSQL("DELETE FROM kunden WHERE id = 1"));
    ASSERT_TRUE(rs.Edit() && rs.SetFieldValue("name", "weg"));
    EXPECT_TRUE(!rs.Update() && rs.GetEditMode() == VntEditMode::Edit) << "the changes are still pending";
    EXPECT_FALSE(rs.Delete());
    ASSERT_EQ(box.shown.size(), 2u);
    EXPECT_THAT(box.shown[0].text, HasSubstr("The record in \"kunden\" was not changed: 0 records"));

    // A bad query; a database closed under its record sets.
    box.shown.clear();
    VntRecordset bad(&db_);
    EXPECT_FALSE(bad.Open("SELECT * FROM fehlt") || bad.IsOpen());
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_THAT(lastBox(), AllOf(HasSubstr("SELECT * FROM fehlt"), HasSubstr("SQLSTATE HY000"), HasSubstr("no such table")));
    db_.Close();
    EXPECT_FALSE(rs.IsOpen() || named.IsOpen() || bad.Open("kunden"));
    EXPECT_THAT(lastBox(), HasSubstr("without an open database"));
}

}  // namespace
