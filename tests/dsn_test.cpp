// The client registry on real "dsn.ini" files: the settings read once with
// their consistency reports, counting and naming the clients, appending,
// replacing and removing them, and the file written back, compared as a
// whole, with the question when another program changed it meanwhile.
#include "conn_fixture.h"

#include <chrono>

namespace fs = std::filesystem;
using ::testing::HasSubstr;

namespace {

class Dsn : public vnt::test::Site<> {
protected:
    void SetUp() override {
        Site::SetUp();
        app({"DsnPathSpec=Database", "DsnDBFileName=vanto.db", "DsnIsFile=1"});
    }
    void list(const std::string& text) { put("INI/dsn.ini", text); }
    // Makes the list older, as if it had been loaded long ago.
    void age(int hours) {
        const fs::path f = dir_ / "INI" / "dsn.ini";
        fs::last_write_time(f, fs::last_write_time(f) - std::chrono::hours(hours));
    }
    static std::string names(const DsnIni& d) {
        std::string s;
        for (int i = 0; i < d.Count(); ++i) s += std::string(d.Entry(i)->name) + "=" + d.Entry(i)->path + ";";
        return s;
    }
};

TEST_F(Dsn, MissingListAndTheSettingsReadOnce) {
    DsnIni d;
    EXPECT_TRUE(DsnIni::LiveCount() == 1 && !d.LoadSettings() && box.shown.size() == 1u);
    EXPECT_THAT(lastBox(), HasSubstr("The client list \"T:\\INI\\dsn.ini\" was not found."));
    EXPECT_TRUE(d.LoadEntries() && d.Count() == 0) << "no file: an empty list";

    // The consistency of "DsnIsFile" and "DsnDBFileName", reported once.
    const struct { std::vector<std::string> settings; const char* report; } rows[] = {
        {{}, "isFile == true, but dbFile is empty."},
        {{"DsnIsFile=0", "DsnDBFileName=x.db"}, "isFile == false, but dbFile is not empty."},
        {{"DsnIsFile=0"}, nullptr},
    };
    list("[Settings]\r\n");
    for (const auto& r : rows) {
        app(r.settings);
        box.shown.clear();
        DsnIni a, b;
        EXPECT_TRUE(a.LoadSettings() && b.LoadSettings());
        ASSERT_EQ(box.shown.size(), r.report ? 1u : 0u);
        if (r.report) { EXPECT_THAT(lastBox(), HasSubstr(r.report)); }
        EXPECT_EQ(std::string(DsnIni::PathSpec()) + "|" + a.DefaultDriver(), "DBQ|Microsoft Access Driver (*.mdb)");
    }
    // The filter serves as description and pattern of a file dialog.
    const char* f = DsnIni::FileFilter();
    EXPECT_EQ(std::string(f, 25), std::string("*.dat;*.mdb\0*.dat;*.mdb\0\0", 25));
    const std::string longFilter(130, 'x');
    app({"DsnFileFilter=" + longFilter});
    EXPECT_TRUE(DsnIni::FileFilter() == longFilter && DsnIni::FileFilter()[131] == '\0') << "too long to double";
}

TEST_F(Dsn, ClientsCountedAndNamedByTheirKeys) {
    const struct { const char* name; const char* file; const char* clients; } rows[] = {
        {"count 0, three sections", "[Settings]\r\nCount=0\r\n[Dsn1]\r\n*=A\r\n[Dsn2]\r\n*=B\r\n[Dsn3]\r\n*=C\r\n",
         "A=;B=;C=;"},
        {"count 0 with a gap", "[Settings]\r\n[Dsn1]\r\n*=A\r\n[Dsn2]\r\n*=B\r\n[Dsn4]\r\n*=D\r\n", "A=;B=;"},
        {"count below the sections", "[Settings]\r\nCount=1\r\n[Dsn1]\r\n*=A\r\n[Dsn2]\r\n*=B\r\n", "A=;"},
        {"a client without a name ends the list",
         "[Settings]\r\nCount=3\r\n[Dsn1]\r\nDSN=A\r\n[Dsn2]\r\nDriver=x\r\n[Dsn3]\r\n*=C\r\n", "A=;"},
        {"name and path keys in their order",
         "[Settings]\r\nCount=5\r\n"
         "[Dsn1]\r\nDBQ=T:\\q\r\nDatapath=T:\\p\r\nDatabase=T:\\s\r\nDtaPth=T:\\d\r\nDSN=n\r\n*=Stern\r\n"
         "[Dsn2]\r\nDBQ=T:\\q\r\nDatapath=T:\\p\r\nDatabase=T:\\s\r\nDSN=n\r\n"
         "[Dsn3]\r\nDBQ=T:\\q\r\nDatapath=T:\\p\r\nDatabase=T:\\s\r\n"
         "[Dsn4]\r\nDBQ=T:\\q\r\nDatapath=T:\\p\r\n"
         "[Dsn5]\r\n*= \r\nDBQ=T:\\q\r\n",
         "Stern=T:\\d;n=T:\\s;T:\\s=T:\\s;T:\\p=T:\\p;T:\\q=T:\\q;"},
    };
    for (const auto& r : rows) {
        list(r.file);
        DsnIni d;
        ASSERT_TRUE(d.LoadSettings() && d.LoadEntries()) << r.name;
        EXPECT_EQ(names(d), r.clients) << r.name;  // one per counted client
    }
    // FindEntry reads the file: any case, numbers from 1.
    list("[Settings]\r\n[Dsn1]\r\n*=M\xFCller\r\n[Dsn2]\r\nDBQ=T:\\x\r\n[Dsn4]\r\n*=Fern\r\n");
    DsnIni d;  // "Fern" lies behind a gap
    for (const auto& [name, number] : std::vector<std::pair<const char*, int>>{
             {"M\xDCLLER", 1}, {"t:\\X", 2}, {"Fern", 0}, {nullptr, 0}})
        EXPECT_EQ(d.FindEntry(name), number) << (name ? name : "null");
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Dsn, ClientOfAFileWrittenBackWithItsDirectory) {
    put("m1/kunde.mdb", "");
    list("[Settings]\r\nDefaultDriver=SQLite3\r\nCount=1\r\n\r\n[Dsn1]\r\nDBQ=T:\\m1\\kunde.mdb\r\nUID=anna\r\n");
    DsnIni d(&box);  // owned: the entries come with the settings
    ASSERT_TRUE(d.LoadSettings() && d.HasEntries());
    EXPECT_EQ(d.DefaultDriver() + ("|" + names(d)) + "|" + d.Entry(0)->section,
              "SQLite3|T:\\m1\\kunde.mdb=T:\\m1;|DBQ=T:\\m1\\kunde.mdb\nUID=anna\n");
    EXPECT_TRUE(d.WriteEntries() && get().find("DtaPth") == std::string::npos) << "unchanged: nothing written";

    ASSERT_TRUE(d.AppendEntry("Neu", "T:\\m2", -1, false) == 1 && d.IsModified() && d.WriteEntries());
    EXPECT_EQ(get(), "[Settings]\r\nDefaultDriver=SQLite3\r\nCount=2\r\n\r\n[Dsn1]\r\nUID=anna\r\nDtaPth=T:\\m1\r\n"
                     "[Dsn2]\r\n*=Neu\r\nDtaPth=T:\\m2\r\n");
    EXPECT_TRUE(!d.IsModified() && box.shown.empty());
    // Read again: the client keeps its directory, and shows it as its name.
    DsnIni again;
    ASSERT_TRUE(again.LoadSettings() && again.LoadEntries());
    EXPECT_EQ(names(again), "T:\\m1=T:\\m1;Neu=T:\\m2;");
}

TEST_F(Dsn, AppendReplaceRemoveAndWrite) {
    const std::string file = "[Settings]\r\nCount=3\r\n; clients\r\n[Dsn1]\r\n*=Alpha\r\nDatapath=T:\\a\r\nDriver=SQLite3\r\n"
                             "[Dsn2]\r\n*=T:\\b\r\nDtaPth=T:\\b\r\n[Dsn3]\r\nDSN=Gamma\r\nDBQ=T:\\g\r\n[Dsn4]\r\n*=Stale\r\n";
    list(file);
    DsnIni d;
    ASSERT_TRUE(d.LoadSettings() && d.LoadEntries() && d.CountSections() == 4);

    // Without the replace flag an existing name or path is an internal error.
    EXPECT_TRUE(d.AppendEntry("ALPHA", "T:\\neu") == -1 && d.AppendEntry("Neu", "t:\\B") == -1);
    EXPECT_THAT(box.shown, ::testing::ElementsAre(::testing::Field(&VntBoxModel::text, HasSubstr("code 3")),
                                                  ::testing::Field(&VntBoxModel::text, HasSubstr("code 4"))));
    EXPECT_TRUE(!d.IsModified() && d.WriteEntries() && get() == file) << "the file stays as it was";
    // Replacing changes name and path only, and is not marked.
    EXPECT_EQ(d.AppendEntry("Beta", "T:\\b", -1, true), 1);
    EXPECT_TRUE(!d.IsModified() && std::string(d.Entry(1)->name) == "Beta");

    EXPECT_TRUE(d.AppendEntry(nullptr, "T:\\z", 0) == 0 && d.AppendEntry("Omega", "T:\\o", 99) == 4);
    EXPECT_EQ(names(d), "=T:\\z;Alpha=T:\\a;Beta=T:\\b;Gamma=T:\\g;Omega=T:\\o;");
    // Without an index the last goes: the index of the new last.
    EXPECT_EQ(std::vector<int>({d.RemoveEntry(2), d.RemoveEntry(), d.RemoveEntry(7)}), std::vector<int>({2, 2, -1}));
    ASSERT_TRUE(d.WriteEntries());
    EXPECT_EQ(get(), "[Settings]\r\nCount=3\r\n; clients\r\n[Dsn1]\r\nDtaPth=T:\\z\r\n"
                     "[Dsn2]\r\n*=Alpha\r\nDriver=SQLite3\r\nDtaPth=T:\\a\r\n[Dsn3]\r\nDSN=Gamma\r\n*=Gamma\r\nDtaPth=T:\\g\r\n");
    EXPECT_EQ(box.shown.size(), 2u) << "no question: the file was not changed by others";

    DsnIni none;  // entries not loaded
    EXPECT_TRUE(none.AppendEntry("x", "y") == -1 && !none.WriteEntries() && none.RemoveEntry() == -1);
}

TEST_F(Dsn, ChangedAndMovedClientsKeepTheirOtherLines) {
    list("[Settings]\r\nCount=3\r\n[Dsn1]\r\nDSN=Alpha\r\nDBQ=T:\\a\r\nDatabase=T:\\a\\x.db\r\nDriver=SQLite3\r\n"
         "[Dsn2]\r\n*=Beta\r\nDtaPth=T:\\b\r\nUID=b\r\n[Dsn3]\r\n*=Gamma\r\nDtaPth=T:\\g\r\n");
    DsnIni d;
    ASSERT_TRUE(d.LoadSettings() && d.LoadEntries());
    // Out of range on either side: nothing changes.
    EXPECT_FALSE(d.ChangeEntry(-1, "x", "y") || d.ChangeEntry(3, "x", "y") || d.MoveEntry(0, 3) ||
                 d.MoveEntry(-1, 0) || d.MoveEntry(3, 0) || d.IsModified());
    EXPECT_TRUE(d.ChangeEntry(1, "Beta", "t:\\B")) << "same path in another case: the lines stay";
    EXPECT_TRUE(d.MoveEntry(2, 0) && d.MoveEntry(0, 2) && d.MoveEntry(0, 2));
    EXPECT_EQ(names(d), "Beta=t:\\B;Gamma=T:\\g;Alpha=T:\\a\\x.db;");
    // A new name drops the old "DSN"; a new path the old path lines.
    EXPECT_TRUE(d.ChangeEntry(2, "Alpha Neu", "T:\\n"));
    ASSERT_TRUE(d.WriteEntries());
    EXPECT_EQ(get(), "[Settings]\r\nCount=3\r\n[Dsn1]\r\n*=Beta\r\nDtaPth=t:\\B\r\nUID=b\r\n[Dsn2]\r\n*=Gamma\r\n"
                     "DtaPth=T:\\g\r\n[Dsn3]\r\nDriver=SQLite3\r\n*=Alpha Neu\r\nDtaPth=T:\\n\r\n");
}

TEST_F(Dsn, ChangedOnDiskAsksBeforeWriting) {
    const std::string mine = "[Settings]\r\nCount=1\r\n[Dsn1]\r\n*=A\r\nDtaPth=T:\\a\r\n";
    const std::string theirs = "[Settings]\r\nCount=1\r\n[Dsn1]\r\n*=Fremd\r\nDtaPth=T:\\f\r\n";
    const std::string both = "[Settings]\r\nCount=2\r\n[Dsn1]\r\n*=A\r\nDtaPth=T:\\a\r\n[Dsn2]\r\n*=B\r\nDtaPth=T:\\b\r\n";
    const struct { int button; bool result; const std::string& file; } rows[] = {
        {VNT_BTN_CANCEL, false, theirs}, {VNT_BTN_NO, true, theirs}, {VNT_BTN_YES, true, both}};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.button);
        list(mine);
        age(3);
        DsnIni d;
        ASSERT_TRUE(d.LoadSettings() && d.LoadEntries());
        list(theirs);  // another program, now
        ASSERT_EQ(d.AppendEntry("B", "T:\\b"), 1);
        box.shown.clear();
        box.answers = {{r.button, false}};
        EXPECT_TRUE(d.WriteEntries() == r.result && box.shown.size() == 1u && get() == r.file) << get();
        EXPECT_THAT(lastBox(), HasSubstr("T:\\INI\\dsn.ini\" was changed by another program"));
    }
}

TEST_F(Dsn, PathsOfDatabaseFiles) {
    put("d/kunde.db", "");
    fs::create_directories(dir_ / "leer");
    VNT_PATH file, dataDir;
    // With "DsnIsFile" and "DsnDBFileName" = vanto.db: the file and its directory.
    for (const auto& [path, both] : std::vector<std::pair<const char*, const char*>>{
             {"T:\\d\\kunde.db", "T:\\d\\kunde.db|T:\\d"},
             {"T:\\leer", "T:\\leer\\vanto.db|T:\\leer"},
             {"T:\\neu", "T:\\neu\\vanto.db|T:\\neu"}}) {
        ASSERT_TRUE(DsnIni::ResolvePath(path, &file, &dataDir));
        EXPECT_EQ(std::string(file) + "|" + dataDir, both);
    }
    EXPECT_FALSE(DsnIni::ResolvePath("", &file, nullptr));
    app({"DsnIsFile=0"});
    ASSERT_TRUE(DsnIni::ResolvePath("T:\\d\\kunde.db", &file, &dataDir));
    EXPECT_EQ(std::string(file) + "|" + dataDir, "T:\\d\\kunde.db|T:\\d\\kunde.db") << "the path as it is";
    app({});
    box.shown.clear();
    ASSERT_TRUE(DsnIni::ResolvePath("T:\\leer", &file, nullptr));
    EXPECT_STREQ(file, "T:\\leer") << "no file name: the path itself";
    EXPECT_EQ(box.shown.size(), 1u) << "the inconsistency, reported when read";
}

}  // namespace
