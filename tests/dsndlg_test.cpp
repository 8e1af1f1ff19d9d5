// The client dialogs without windows: each button of the selection and the
// entry dialogs' OK on a real "dsn.ini" (the whole file compared after the
// list is saved), the user's choices in "User.ini", the client installation
// and set-up modules, and the directory tree's listing.
#include "dsn_lists.h"
#include "conn_fixture.h"

#include "vanto/app.h"
#include "vanto/dsndlg.h"
#include "vanto/module.h"

#include <optional>
#include <tuple>

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Outcome = VntDsnEntryEdit::Outcome;

namespace {

using namespace vnt::test::dsnlist;
using vnt::test::kSqlite;

class DsnDlg : public vnt::test::Conn {
protected:
    void SetUp() override {
        Conn::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        for (const char* d : {"Daten/M1", "Daten/M2", "Daten/M4"}) put(std::string(d) + "/vanto.db", "");
        fs::create_directories(dir_ / "Daten/Neu");
        useModules({"23, ModStack.dll, Einrichten, ModMain, 0", "24, ModStack.dll, Installation, ModMain, 0"});
        ASSERT_EQ(get(), listText({kM, kS, kK}));
    }
    void TearDown() override {
        sel_.reset();
        reg_.reset();
        Conn::TearDown();
    }
    // The list as the fixture wrote it, the modules' stack empty, no boxes.
    void fresh() {
        putLines("INI/dsn.ini", {"[Settings]", "DefaultDriver=SQLite3", "Count=3", "[Dsn1]", kM[0], kM[1], "[Dsn2]",
                                 kS[0], kS[1], "[Dsn3]", kK[0], kK[1], kK[2]});
        fs::remove(dir_ / "Daten/Neu/vanto.db");
        vnt::ini::profileReset();
        while (Vnt_AppModQueuePop() != 0) {}
        box.shown.clear();
        win.beeps = 0;
    }
    // The selection over a registry loaded anew (the ones before are gone).
    VntDsnSelection& open(const VntClientSelectRequest& request = {}) {
        sel_.reset();
        reg_.reset();
        EXPECT_TRUE(reg_.emplace(this).LoadSettings());
        return sel_.emplace(*reg_, request);
    }
    std::string boxes() const {
        std::string s;
        for (const auto& b : box.shown) s += b.text + "|";
        return s;
    }
    std::optional<DsnIni> reg_;
    std::optional<VntDsnSelection> sel_;
};
INSTANTIATE_TEST_SUITE_P(Sqlite, DsnDlg, ::testing::Values(&kSqlite), vnt::test::byName);

}  // namespace

TEST_P(DsnDlg, ListButtonsChangeTheListOnlyWhenSaved) {
    using Act = bool (VntDsnSelection::*)();
    const int kYes = VNT_BTN_YES, kNo = VNT_BTN_NO;
    const struct {
        const char* what;
        int chosen;
        Act act;
        std::vector<int> answers;
        bool result;
        int chosenAfter, beeps;
        std::vector<Client> list;
    } rows[] = {
        {"delete the middle one", 1, &VntDsnSelection::Delete, {kYes}, true, 1, 0, {kM, kK}},
        {"delete refused", 1, &VntDsnSelection::Delete, {kNo}, false, 1, 0, {kM, kS, kK}},
        {"delete the last: the new last chosen", 2, &VntDsnSelection::Delete, {kYes}, true, 1, 0, {kM, kS}},
        {"delete with none chosen", -1, &VntDsnSelection::Delete, {}, false, -1, 1, {kM, kS, kK}},
        {"up at the top", 0, &VntDsnSelection::MoveUp, {}, false, 0, 1, {kM, kS, kK}},
        {"up below the top", 1, &VntDsnSelection::MoveUp, {}, true, 0, 0, {kS, kM, kK}},
        {"down at the bottom", 2, &VntDsnSelection::MoveDown, {}, false, 2, 1, {kM, kS, kK}},
        {"down above the bottom, with all its lines", 1, &VntDsnSelection::MoveDown, {}, true, 2, 0, {kM, kK, kS}},
        {"down with none chosen", -1, &VntDsnSelection::MoveDown, {}, false, -1, 1, {kM, kS, kK}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.what);
        fresh();
        VntDsnSelection& sel = open();
        sel.Select(r.chosen);
        const std::string name = r.chosen >= 0 ? sel.Registry().Entry(r.chosen)->name : "";
        for (int a : r.answers) box.answers.push_back({a});
        EXPECT_EQ((sel.*r.act)(), r.result);
        EXPECT_EQ(std::tuple(sel.Selected(), win.beeps, box.shown.size()), std::tuple(r.chosenAfter, r.beeps, r.answers.size()));
        for (const auto& b : box.shown) EXPECT_THAT(b.text, HasSubstr("remove the client \"" + name + "\""));
        EXPECT_EQ(get(), listText({kM, kS, kK})) << "nothing written before saving";
        ASSERT_TRUE(sel.Save());
        EXPECT_EQ(get(), listText(r.list));
    }

    // Deleting every client leaves none chosen and an empty list.
    fresh();
    VntDsnSelection& sel = open();
    for (int expect : {0, 0, -1}) {
        sel.Select(0);
        EXPECT_TRUE(sel.Delete() && sel.Selected() == expect) << expect;
    }
    EXPECT_TRUE(sel.Names().empty() && sel.Save() && get() == listText({}));
}

TEST_P(DsnDlg, CancelAsksAboutChangesAndNeverWrites) {
    fresh();
    ASSERT_TRUE(Vnt_DsnConnectClient("M\xFCller GmbH")) << boxes();
    VntDsnSelection& sel = open();
    EXPECT_FALSE(sel.ListLocked());
    sel.Select(0);
    box.answers = {{VNT_BTN_YES}, {VNT_BTN_NO}, {VNT_BTN_YES}};
    ASSERT_TRUE(sel.Delete());
    EXPECT_FALSE(sel.Cancel()) << "No keeps the dialog";
    EXPECT_TRUE(sel.Cancel() && !sel.Registry().IsModified() && get() == listText({kM, kS, kK}));
    EXPECT_STREQ(Vnt_AppDSN(), "M\xFCller GmbH");
    {
        DsnIni inner(this);
        EXPECT_TRUE(sel.ListLocked()) << "a second registry is alive";
    }
    EXPECT_FALSE(sel.ListLocked());
}

TEST_P(DsnDlg, OkWritesTheListConnectsAndKeepsTheUsersChoices) {
    const struct {
        const char* what;
        std::vector<std::string> user;  // section "DSN" before
        int chosen;
        bool defaultTicked;             // as the selection shows it
        bool tickDefault, tickNoShow;   // as the user leaves them
        std::string userAfter;
    } rows[] = {
        {"another client becomes the default", {"Default=Schulze KG", "ShowDlg=1"}, 0, false, true, false,
         "[DSN]\r\nDefault=M\xFCller GmbH\r\nShowDlg=1\r\n"},
        {"both boxes cleared", {"Default=Schulze KG", "ShowDlg=0"}, 1, true, false, false, "[DSN]\r\n"},
        {"no selection at start", {}, 1, false, false, true, "[DSN]\r\nShowDlg=0\r\n"},
        {"nothing changed: nothing written", {"Default=schulze kg", "ShowDlg=0"}, 1, true, true, true,
         "[DSN]\r\nDefault=schulze kg\r\nShowDlg=0\r\n"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.what);
        fresh();
        std::vector<std::string> user{"[DSN]"};
        user.insert(user.end(), r.user.begin(), r.user.end());
        putLines("USR/Std/User.ini", user);
        vnt::ini::profileReset();
        ASSERT_EQ(Vnt_DsnSelect("ODBC;", false, true), VNT_RESP_CANCEL) << "the scripted port answers Cancel";
        const VntClientSelectRequest req = select.requests.back();
        VntDsnSelection& sel = open(req);
        EXPECT_FALSE(sel.Ok()) << "none chosen";
        sel.Select(2);
        box.answers = {{VNT_BTN_YES}};
        ASSERT_TRUE(sel.Delete());
        sel.Select(r.chosen);
        EXPECT_EQ(sel.DefaultTicked(), r.defaultTicked);
        sel.SetDefaultTicked(r.tickDefault);
        sel.SetNoShowTicked(r.tickNoShow);
        ASSERT_TRUE(sel.Ok()) << boxes();
        EXPECT_STREQ(Vnt_AppDSN(), r.chosen ? "Schulze KG" : "M\xFCller GmbH");
        EXPECT_EQ(get() + get("USR/Std/User.ini"), listText({kM, kS}) + r.userAfter);
    }
}

TEST_P(DsnDlg, OkAndSupplementSetUpAClientWhosePathIsMissing) {
    fresh();
    fs::remove(dir_ / "Daten/M2/vanto.db");
    VntDsnSelection& sel = open();
    // Supplement asks first; with none chosen it beeps.
    box.answers = {{VNT_BTN_NO}, {VNT_BTN_YES}};
    EXPECT_FALSE(sel.Supplement() || sel.Supplement());
    EXPECT_TRUE(win.beeps == 1 && box.shown.size() == 2u);

    sel.Select(1);
    box.shown.clear();
    box.answers = {{VNT_BTN_YES}, {VNT_BTN_NO}, {VNT_BTN_YES}, {VNT_BTN_YES}};
    EXPECT_FALSE(sel.Supplement()) << "60358 answered No";
    Vnt_AppModQueuePush(1);
    EXPECT_TRUE(sel.Supplement() && box.shown.size() == 4u) << boxes();
    EXPECT_THAT(box.shown[1].text, HasSubstr("T:\\Daten\\M2"));

    // OK on it: asked again, the installation refuses and the dialog stays.
    for (long install : {0L, 1L}) {
        box.answers = {{VNT_BTN_YES}};
        Vnt_AppModQueuePush(install);
        EXPECT_EQ(sel.Ok(), install == 1) << boxes();
        EXPECT_STREQ(Vnt_AppDSN(), install ? "Schulze KG" : "");
    }
}

TEST_P(DsnDlg, EntryDialogsPlaceTheClientOrStayOpen) {
    const std::string long259(259, 'x'), long260(260, 'x');
    const Client kV{"*=Vierter", "DtaPth=T:\\Daten\\M4"};
    const Client kS2{"*=Schulze & Co", "DtaPth=T:\\Daten\\M2"};
    const Client kSNeu{"*=Schulze KG", "DtaPth=T:\\Daten\\Neu"};
    const std::vector<Client> same{kM, kS, kK};
    const VntDsnChoice C = VntDsnChoice::Cancel, O = VntDsnChoice::Only, I = VntDsnChoice::Install;
    const struct {
        const char* what;
        int index, chosen;
        std::string name, path;
        bool atEnd;
        VntDsnChoice choice;
        std::vector<long> modules;  // results of 24 and 23, in that order
        Outcome out;
        long asked;                 // choice dialog shown, 0 for none
        const char* box;            // part of the message shown, "" for none
        std::vector<Client> list;
        const char* dsn;            // the data source name after
    } rows[] = {
        {"renamed", 1, 1, "Schulze & Co", "T:\\Daten\\M2", false, C, {}, Outcome::Done, 0, "", {kM, kS2, kK}, ""},
        {"nothing changed", 1, 1, "Schulze KG", "T:\\Daten\\M2", false, C, {}, Outcome::Cancelled, 0, "", same, ""},
        {"blanks around the texts", 1, 1, " Schulze KG\t", "  T:\\Daten\\M2 ", false, C, {}, Outcome::Cancelled, 0, "",
         same, ""},
        {"another client's name, any case", 1, 1, "m\xFCLLER gmbh", "T:\\Daten\\M2", false, C, {}, Outcome::Stay, 0,
         "client named \"m\xFCLLER gmbh\" is already", same, ""},
        {"another client's path, any case", 1, 1, "Schulze KG", "t:\\daten\\m1", false, C, {}, Outcome::Stay, 0,
         "already used by the client \"M\xFCller GmbH\"", same, ""},
        {"no path", 1, 1, "Schulze KG", " ", false, C, {}, Outcome::Stay, 0, "enter the client's path", same, ""},
        {"new with no name, another client's path", -1, -1, "", "t:\\daten\\m1", false, C, {}, Outcome::Stay, 0,
         "already used", same, ""},
        {"moved where nothing is: choice cancelled", 1, 1, "Schulze KG", "T:\\Daten\\Neu", false, C, {}, Outcome::Stay,
         30024, "", same, ""},
        {"moved where nothing is: the list only", 1, 1, "Schulze KG", "T:\\Daten\\Neu", false, O, {}, Outcome::Done,
         30024, "", {kM, kSNeu, kK}, ""},
        {"moved, set up: module 23 refuses", 1, 1, "Schulze KG", "T:\\Daten\\Neu", false, I, {1, 0}, Outcome::Stay,
         30024, "", same, ""},
        {"moved, set up", 1, 1, "Schulze KG", "T:\\Daten\\Neu", false, I, {1, 1}, Outcome::Done, 30024, "",
         {kM, kSNeu, kK}, "Schulze KG"},
        {"new where a client is: before the chosen", -1, 1, "Vierter", "T:\\Daten\\M4", false, O, {}, Outcome::Done,
         30025, "", {kM, kV, kS, kK}, ""},
        {"new where a client is: at the end", -1, 1, "Vierter", "T:\\Daten\\M4", true, O, {}, Outcome::Done, 30025, "",
         {kM, kS, kK, kV}, ""},
        {"new, none chosen, no name: its path shows", -1, -1, "", "T:\\Daten\\M4", false, O, {}, Outcome::Done, 30025,
         "", {kM, kS, kK, {"DtaPth=T:\\Daten\\M4"}}, ""},
        {"new where a client is: choice cancelled", -1, 1, "Vierter", "T:\\Daten\\M4", false, C, {}, Outcome::Stay,
         30025, "", same, ""},
        {"new where none is: the installation refuses", -1, 1, "Neu", "T:\\Daten\\Neu", false, C, {0, 1},
         Outcome::Stay, 0, "", same, ""},
        {"new where none is: installed and set up", -1, -1, "Neu", "T:\\Daten\\Neu", false, C, {1, 1}, Outcome::Done,
         0, "", {kM, kS, kK, {"*=Neu", "DtaPth=T:\\Daten\\Neu"}}, "Neu"},
        {"a name of 259 characters", 0, 0, long259, "T:\\Daten\\M1", false, C, {}, Outcome::Done, 0, "",
         {{"*=" + long259, kM[1]}, kS, kK}, ""},
        {"a name of 260 characters is cut", 0, 0, long260, "T:\\Daten\\M1", false, C, {}, Outcome::Done, 0, "",
         {{"*=" + long259, kM[1]}, kS, kK}, ""},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.what);
        Vnt_AppConnClose();
        fresh();
        for (auto m = r.modules.rbegin(); m != r.modules.rend(); ++m) Vnt_AppModQueuePush(*m);
        VntDsnSelection& sel = open();
        sel.Select(r.chosen);
        VntDsnEntryEdit edit(sel, r.index);
        EXPECT_EQ(edit.Dialog(), r.index < 0 ? 30023 : 30022);
        EXPECT_TRUE(r.index < 0 || std::string(edit.Path()) == sel.Registry().Entry(r.index)->path) << edit.Path();
        long asked = 0;
        const Outcome out = edit.Ok(r.name.c_str(), r.path.c_str(), r.atEnd, [&](long dialog) {
            asked = dialog;
            return r.choice;
        });
        EXPECT_EQ(std::tuple(out, asked, box.shown.size(), sel.Selected(), std::string(Vnt_AppDSN())),
                  std::tuple(r.out, r.asked, *r.box ? 1u : 0u, out == Outcome::Done ? edit.Index() : r.chosen, std::string(r.dsn)));
        EXPECT_THAT(boxes(), HasSubstr(r.box));
        ASSERT_TRUE(sel.Save());
        EXPECT_EQ(get(), listText(r.list));
    }
}

TEST_P(DsnDlg, DirectoryTreeListsVolumesAndSubDirectories) {
    fs::create_directories(dir_ / "b");
    fs::create_directories(dir_ / ".versteckt");
    const std::vector<std::string> roots = Vnt_DsnDirRoots();
    EXPECT_THAT(roots, ::testing::Contains("T:\\"));
    EXPECT_TRUE(std::is_sorted(roots.begin(), roots.end()));
    EXPECT_EQ(Vnt_DsnDirChildren("T:\\"), (std::vector<std::string>{"b", "Daten", "INI", "USR"}));
    EXPECT_EQ(Vnt_DsnDirChildren("T:\\Daten"), (std::vector<std::string>{"M1", "M2", "M3", "M4", "Neu"}));
    EXPECT_TRUE(Vnt_DsnDirChildren("T:\\Daten\\M1").empty() && Vnt_DsnDirChildren("T:\\Fehlt").empty()) << "files are no directories";
    const struct { const char* path; const char* start; } rows[] = {
        {"T:\\Daten\\M1\\vanto.db", "T:\\Daten\\M1"}, {"T:\\Daten\\Fehlt\\x", "T:\\Daten"},
        {"T:\\Daten", "T:\\Daten"}, {"T:\\", "T:\\"}, {"", ""}, {"Daten", "T:\\Daten"}, {"Q:\\x", ""},
    };
    for (const auto& r : rows) EXPECT_EQ(Vnt_DsnDirStart(r.path), r.start) << r.path;
}
