// The client dialogs 30021-30026 as windows: each button driven through wx
// events with "dsn.ini" compared as a whole after it, the nested entry,
// choice and directory dialogs, the list locked while a second registry is
// alive, Vnt_DlgDsn through the installed port, and a picture of every
// dialog in German and English (build tree, folder "shots") whose controls
// must neither clip their texts nor overlap.
#include "../dsn_lists.h"
#include "wx_support.h"

#include "../scratch.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <map>

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/listbox.h>
#include <wx/radiobut.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/uiaction.h>

#include "vanto/app.h"
#include "vanto/db.h"
#include "vanto/dsn.h"
#include "vanto/module.h"
#include "vanto/ui/help.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
#include "vanto/wx/dsndlg.h"

namespace {

namespace fs = std::filesystem;
using vnt::wxtest::picture;
using vnt::wxtest::pump;
using vnt::wxtest::pumpUntil;
using vnt::wxtest::soon;

using namespace vnt::test::dsnlist;

// A dialog of the library shown now, by its resource number.
template <class T>
T* shown(long number) {
    for (wxWindow* w : wxTopLevelWindows)
        if (auto* d = dynamic_cast<T*>(w); d && d->IsShown() && d->ResourceNumber() == number) return d;
    return nullptr;
}

// A control's event as wx delivers it after the user's change.
void fire(wxWindow* c, wxEventType type, int value = 0) {
    wxCommandEvent e(type, c->GetId());
    e.SetEventObject(c);
    e.SetInt(value);
    c->GetEventHandler()->ProcessEvent(e);
}

template <class T = wxWindow>
T* ctl(wxWindow* dlg, int id) {
    auto* c = dlg ? dynamic_cast<T*>(dlg->FindWindow(id)) : nullptr;
    EXPECT_NE(c, nullptr) << "no control " << id;
    return c;
}

void click(wxWindow* dlg, int id) {
    wxWindow* b = ctl(dlg, id);
    ASSERT_TRUE(b && b->IsEnabled()) << "control " << id << " is missing or disabled";
    fire(b, wxEVT_BUTTON);
}

void choose(wxWindow* dlg, int index) {
    auto* list = ctl<wxListBox>(dlg, VNT_DSN_IDC_LIST);
    if (index < 0) list->DeselectAll();
    else list->SetSelection(index);
    fire(list, wxEVT_LISTBOX, index);
}

void tick(wxWindow* dlg, int id, bool on) {
    ctl<wxCheckBox>(dlg, id)->SetValue(on);
    fire(dlg->FindWindow(id), wxEVT_CHECKBOX, on);
}

bool ticked(wxWindow* dlg, int id) { return ctl<wxCheckBox>(dlg, id)->GetValue(); }

void type(wxWindow* dlg, int id, const char* utf8) { ctl<wxTextCtrl>(dlg, id)->SetValue(wxString::FromUTF8(utf8)); }

std::string listShown(wxWindow* dlg) {
    auto* list = dynamic_cast<wxListBox*>(dlg->FindWindow(VNT_DSN_IDC_LIST));
    std::string s;
    for (unsigned i = 0; i < list->GetCount(); ++i) s += std::string(list->GetString(i).utf8_str()) + ";";
    return s + "@" + std::to_string(list->GetSelection());
}

class ClientDialogs : public vnt::wxtest::WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        site();
    }
    void TearDown() override {
        Vnt_AppConnClose();
        if (!cwd_.empty()) vnt::host::setCurDir(cwd_);
        Vnt_UiSetPresenter(oldBox_);
        Vnt_UiSetWindow(oldWin_);
        Vnt_UiSetHelp(oldHelp_);
        WxTest::TearDown();
        vnt::host::setProgramFile("");
        fs::remove_all(dir_);
    }
    // The installation on drive T: with three clients (the third's driver
    // does not exist), databases for the first two, the modules 23 and 24.
    void site(bool english = false) {
        if (english) {
            Vnt_UiSetPresenter(oldBox_);
            Vnt_UiSetWindow(oldWin_);
            Vnt_UiSetHelp(oldHelp_);
            if (!cwd_.empty()) vnt::host::setCurDir(cwd_);
            openLibrary(true);
        }
        dir_ = vnt::test::scratchDir("vanto_wxdsn_");
        for (const char* d : {"INI", "USR/Std", "Daten/M1", "Daten/M2", "Daten/M3", "Daten/M4", "Daten/Neu"})
            fs::create_directories(dir_ / d);
        for (const char* d : {"Daten/M1", "Daten/M2", "Daten/M4"}) std::ofstream(dir_ / d / "vanto.db");
        ASSERT_TRUE(Vnt_LfnVolMap('T', dir_.c_str()));
        vnt::host::setProgramFile("T:\\Fibu");
        vnt::test::writeAppSettings(dir_, {"DsnPathSpec=Database", "DsnDBFileName=vanto.db", "DsnIsFile=1"});
        fresh();
        fs::copy_file(fs::path(VANTO_TEST_MODULE_DIR) / "libModStack.so", dir_ / "libModStack.so",
                      fs::copy_options::overwrite_existing);
        cwd_ = vnt::host::curDir();
        ASSERT_TRUE(vnt::host::setCurDir("T:\\"));
        vnt::test::writeIniLibrary(dir_, "Modules.vtm",
                                   {"23, ModStack.dll, Einrichten, ModMain, 0", "24, ModStack.dll, Installation, ModMain, 0"});
        ASSERT_TRUE(vnt::app::loadModuleTable());
        oldBox_ = Vnt_UiSetPresenter(&box);
        oldWin_ = Vnt_UiSetWindow(&win);
        oldHelp_ = Vnt_UiSetHelp(&help);
        win.SetMainWindow(main_ = win.CreateFake("main"));
    }
    void fresh() {
        std::ofstream(dir_ / "INI/dsn.ini", std::ios::binary) << listText({kM, kS, kK});
        std::ofstream(dir_ / "USR/Std/User.ini", std::ios::binary) << "[DSN]\r\nDefault=Schulze KG\r\n";
        vnt::ini::profileReset();
        while (Vnt_AppModQueuePop() != 0) {}
        box.shown.clear();
        win.beeps = 0;
    }
    std::string get(const std::string& name = "INI/dsn.ini") const {
        std::ifstream in(dir_ / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    std::string boxes() const {
        std::string s;
        for (const auto& b : box.shown) s += b.text + "|";
        return s;
    }
    /// The user's request as Vnt_DsnSelect makes it.
    static VntClientSelectRequest request() {
        VntClientSelectRequest r;
        r.defaultClient = "Schulze KG";
        return r;
    }

    fs::path dir_;
    std::string cwd_;
    VntScriptedPresenter box;
    VntHeadlessWindowPort win;
    VntHelpRecorder help;
    VNT_HWND main_ = nullptr;

private:
    VntMsgPresenter* oldBox_ = nullptr;
    VntWindowPort* oldWin_ = nullptr;
    VntHelpPort* oldHelp_ = nullptr;
};

TEST_F(ClientDialogs, ListButtonsChangeTheFileWhenSaved) {
    const int kYes = VNT_BTN_YES;
    const struct {
        const char* what;
        int chosen, button;
        std::vector<int> answers;
        const char* listAfter;
        std::vector<Client> file;
    } rows[] = {
        {"delete", 1, VNT_DSN_IDC_DELETE, {kYes}, "M\xC3\xBCller GmbH;Kaputt;@1", {kM, kK}},
        {"up", 2, VNT_DSN_IDC_UP, {}, "M\xC3\xBCller GmbH;Kaputt;Schulze KG;@1", {kM, kK, kS}},
        {"down", 0, VNT_DSN_IDC_DOWN, {}, "Schulze KG;M\xC3\xBCller GmbH;Kaputt;@1", {kS, kM, kK}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.what);
        fresh();
        DsnIni reg(this);
        ASSERT_TRUE(reg.LoadSettings());
        VntDsnSelection model(reg, request());
        VntDsnSelectDlg dlg(model, nullptr);
        ASSERT_TRUE(dlg.IsOk());
        dlg.Show();
        pump(20);
        EXPECT_EQ(listShown(&dlg), "M\xC3\xBCller GmbH;Schulze KG;Kaputt;@-1") << "none chosen at the start";
        choose(&dlg, r.chosen);
        for (int a : r.answers) box.answers.push_back({a});
        click(&dlg, r.button);
        EXPECT_EQ(listShown(&dlg), r.listAfter);
        EXPECT_EQ(win.beeps, 0);
        EXPECT_EQ(box.shown.size(), r.answers.size());
        EXPECT_EQ(get(), listText({kM, kS, kK})) << "not saved yet";
        click(&dlg, VNT_DSN_IDC_SAVE);
        EXPECT_EQ(get(), listText(r.file));
    }
}

TEST_F(ClientDialogs, EntryDialogsChoicesAndTheDirectoryTree) {
    const Client kV{"*=Vierter", "DtaPth=T:\\Daten\\M4"};
    const struct {
        const char* what;
        int button;          // edit (the chosen client) or insert
        const char* name;    // UTF-8; null: left as it is
        const char* browse;  // a directory chosen in 30026 for the path, else null
        const char* path;    // typed path, else null
        bool atEnd;
        long choice;         // the dialog that asks, 0: none
        int radio;           // the choice taken there
        int modules;         // installation and set-up run (both answer 1)
        bool closed;         // the entry dialog closed
        std::vector<Client> file;
    } rows[] = {
        {"rename", VNT_DSN_IDC_EDIT, "Schulze & Co", nullptr, nullptr, false, 0, 0, 0, true,
         {kM, {"*=Schulze & Co", kS[1]}, kK}},
        {"path from the tree", VNT_DSN_IDC_EDIT, nullptr, "T:\\Daten\\M4", nullptr, false, 0, 0, 0, true,
         {kM, {kS[0], "DtaPth=T:\\Daten\\M4"}, kK}},
        {"moved where nothing is: cancelled", VNT_DSN_IDC_EDIT, nullptr, nullptr, "T:\\Daten\\Neu", false, 30024,
         wxID_CANCEL, 0, false, {kM, kS, kK}},
        {"new at the end", VNT_DSN_IDC_INSERT, "Vierter", "T:\\Daten\\M4", nullptr, true, 30025, VNT_DSN_IDC_ONLY, 0,
         true, {kM, kS, kK, kV}},
        {"a name that is taken", VNT_DSN_IDC_INSERT, "kaputt", nullptr, "T:\\Daten\\M4", false, 0, 0, 0, false,
         {kM, kS, kK}},
        {"moved where nothing is: installed and set up", VNT_DSN_IDC_EDIT, nullptr, nullptr, "T:\\Daten\\Neu", false,
         30024, VNT_DSN_IDC_INSTALL, 2, true, {kM, {kS[0], "DtaPth=T:\\Daten\\Neu"}, kK}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.what);
        fresh();
        for (int i = 0; i < r.modules; ++i) Vnt_AppModQueuePush(1);
        DsnIni reg(this);
        ASSERT_TRUE(reg.LoadSettings());
        VntDsnSelection model(reg, request());
        VntDsnSelectDlg dlg(model, nullptr);
        dlg.Show();
        pump(20);
        choose(&dlg, 1);
        const long entryNumber = r.button == VNT_DSN_IDC_EDIT ? 30022 : 30023;
        bool entrySeen = false, choiceSeen = false, stayed = false;
        std::string treePath;
        soon([&] {
            auto* entry = shown<VntDsnEntryDlg>(entryNumber);
            ASSERT_NE(entry, nullptr);
            entrySeen = true;
            if (r.name) type(entry, VNT_DSN_IDC_NAME, r.name);
            if (r.path) type(entry, VNT_DSN_IDC_PATH, r.path);
            if (r.atEnd) tick(entry, VNT_DSN_IDC_ATEND, true);
            if (r.browse) {
                soon([&] {
                    auto* tree = shown<VntDsnDirDlg>(30026);
                    ASSERT_NE(tree, nullptr);
                    EXPECT_TRUE(tree->SelectPath(r.browse));
                    click(tree, wxID_OK);
                    treePath = tree->Path();
                });
                click(entry, VNT_DSN_IDC_BROWSE);
            }
            if (r.choice) {
                soon([&] {
                    auto* choice = shown<VntDsnChoiceDlg>(r.choice);
                    ASSERT_NE(choice, nullptr);
                    choiceSeen = true;
                    ASSERT_TRUE(ctl<wxRadioButton>(choice, VNT_DSN_IDC_ONLY)->GetValue()) << "the first is preselected";
                    if (r.radio != wxID_CANCEL) ctl<wxRadioButton>(choice, r.radio)->SetValue(true);
                    click(choice, r.radio == wxID_CANCEL ? wxID_CANCEL : wxID_OK);
                });
            }
            click(entry, wxID_OK);
            if (entry->IsShown()) {  // refused or cancelled: it stays, the user gives up
                stayed = true;
                click(entry, wxID_CANCEL);
            }
        });
        click(&dlg, r.button);
        EXPECT_TRUE(entrySeen);
        EXPECT_EQ(choiceSeen, r.choice != 0);
        EXPECT_EQ(stayed, !r.closed);
        EXPECT_EQ(treePath, r.browse ? r.browse : "");
        EXPECT_EQ(Vnt_AppModQueuePop(), 0) << "the modules ran";
        EXPECT_STREQ(Vnt_AppDSN(), r.modules ? "Schulze KG" : "") << "connected at the new path";
        click(&dlg, VNT_DSN_IDC_SAVE);
        EXPECT_EQ(get(), listText(r.file)) << boxes();
    }
    EXPECT_STREQ(Vnt_AppDataPath(), "T:\\Daten\\Neu");
}

TEST_F(ClientDialogs, VntDlgDsnShowsTheSelectionOkConnectsAndKeepsTheChoices) {
    ASSERT_NE(dynamic_cast<VntWxClientSelect*>(&Vnt_UiClientSelect()), nullptr) << "installed by Vnt_WxInit";
    bool sawDefault = true, seen = false;
    soon([&] {
        auto* dlg = shown<VntDsnSelectDlg>(30021);
        ASSERT_NE(dlg, nullptr);
        seen = true;
        click(dlg, wxID_OK);  // none chosen: nothing happens
        ASSERT_TRUE(dlg->IsShown());
        choose(dlg, 2);
        box.answers = {{VNT_BTN_YES}};
        click(dlg, VNT_DSN_IDC_DELETE);
        choose(dlg, 1);
        EXPECT_TRUE(ticked(dlg, VNT_DSN_IDC_DEFAULT)) << "the default";
        choose(dlg, 0);
        sawDefault = ticked(dlg, VNT_DSN_IDC_DEFAULT);
        tick(dlg, VNT_DSN_IDC_DEFAULT, true);
        tick(dlg, VNT_DSN_IDC_NOSHOW, true);
        EXPECT_TRUE(ticked(dlg, VNT_DSN_IDC_NOSHOW));
        click(dlg, wxID_OK);
    });
    VntDatabase* db = nullptr;
    EXPECT_TRUE(Vnt_DlgDsn("ODBC;", &db, false, true)) << boxes();
    EXPECT_TRUE(seen);
    ASSERT_NE(db, nullptr);
    EXPECT_TRUE(db->IsOpen());
    EXPECT_STREQ(Vnt_AppDSN(), "M\xFCller GmbH");
    EXPECT_FALSE(sawDefault) << "the default client is another";
    EXPECT_EQ(get(), listText({kM, kS}));
    // The dialog's place is kept as well (where the window system put it).
    EXPECT_THAT(get("USR/Std/User.ini"),
                ::testing::MatchesRegex("\\[DSN\\]\r\nDefault=M\xFCller GmbH\r\nShowDlg=0\r\nX=[0-9]+\r\nY=[0-9]+\r\n"));
    int changes = 0;
    for (const auto& m : win.Messages(main_)) changes += m.msg == 0x7F15;
    EXPECT_GE(changes, 1) << "the main window heard of the new connection";
}

TEST_F(ClientDialogs, CancelAsksAboutChangesAndEscapeCloses) {
    ASSERT_TRUE(Vnt_DsnConnectClient("Schulze KG")) << boxes();
    const std::string before = Vnt_AppConnGet();
    box.shown.clear();
    soon([&] {
        auto* dlg = shown<VntDsnSelectDlg>(30021);
        ASSERT_NE(dlg, nullptr);
        choose(dlg, 1);
        box.answers = {{VNT_BTN_YES}, {VNT_BTN_NO}, {VNT_BTN_YES}};
        click(dlg, VNT_DSN_IDC_DELETE);
        dlg->Close();  // the close box asks as Cancel does
        EXPECT_TRUE(dlg->IsShown()) << "No keeps the selection open";
        dlg->FindWindow(VNT_DSN_IDC_LIST)->SetFocus();
        wxUIActionSimulator().Char(WXK_ESCAPE);
    });
    // Cancel ends Vnt_DlgDsn's loop (and the program without a client):
    // one round of the selection shows it.
    EXPECT_EQ(Vnt_DsnSelect("ODBC;", false, true), VNT_RESP_CANCEL);
    EXPECT_EQ(box.shown.size(), 3u) << "delete, then the same question for the close box and Escape: " << boxes();
    EXPECT_EQ(get(), listText({kM, kS, kK})) << "nothing written";
    EXPECT_EQ(Vnt_AppConnGet(), before);
    EXPECT_STREQ(Vnt_AppDSN(), "Schulze KG");
}

TEST_F(ClientDialogs, ListLockedWhileASecondRegistryIsAlive) {
    for (bool second : {false, true}) {
        SCOPED_TRACE(second ? "second registry" : "alone");
        std::unique_ptr<DsnIni> outer(second ? new DsnIni : nullptr);
        DsnIni reg(this);
        ASSERT_TRUE(reg.LoadSettings());
        VntDsnSelection model(reg, request());
        VntDsnSelectDlg dlg(model, nullptr);
        for (int id = VNT_DSN_IDC_DEFAULT; id <= VNT_DSN_IDC_DOWN; ++id)
            EXPECT_EQ(dlg.FindWindow(id)->IsEnabled(), !second) << id;
        for (int id : {int(VNT_DSN_IDC_LIST), int(wxID_OK), int(wxID_CANCEL), int(VNT_DSN_IDC_HELP)})
            EXPECT_TRUE(dlg.FindWindow(id)->IsEnabled()) << id;
    }
}

// Opens where it was left and keeps its new place; Supplement starts the
// installation for the chosen client's missing path; Help opens its topic.
TEST_F(ClientDialogs, PlaceSupplementAndHelp) {
    fs::remove(dir_ / "Daten/M2/vanto.db");
    std::ofstream(dir_ / "USR/Std/User.ini", std::ios::binary) << "[DSN]\r\nDefault=Schulze KG\r\nX=123\r\nY=77\r\n";
    vnt::ini::profileReset();
    DsnIni reg(this);
    ASSERT_TRUE(reg.LoadSettings());
    VntDsnSelection model(reg, request());
    VntDsnSelectDlg dlg(model, nullptr);
    dlg.Show();
    pump(50);
    EXPECT_EQ(dlg.GetPosition(), wxPoint(123, 77));
    choose(&dlg, 1);
    EXPECT_TRUE(ticked(&dlg, VNT_DSN_IDC_DEFAULT)) << "the default client";
    box.answers = {{VNT_BTN_YES}, {VNT_BTN_YES}};
    Vnt_AppModSetResult(0);
    Vnt_AppModQueuePush(7);  // what module 24 answers
    click(&dlg, VNT_DSN_IDC_SUPPLEMENT);
    ASSERT_EQ(box.shown.size(), 2u) << "60362, then 60358 for the missing path";
    EXPECT_NE(box.shown[1].text.find("T:\\Daten\\M2"), std::string::npos) << box.shown[1].text;
    EXPECT_EQ(Vnt_AppModResult(), 7) << "module 24 ran";
    EXPECT_EQ(get(), listText({kM, kS, kK}));
    click(&dlg, VNT_DSN_IDC_HELP);
    ASSERT_EQ(help.requests.size(), 1u);
    EXPECT_EQ(help.requests[0].command, VntHelpCommand::Context);
    EXPECT_EQ(help.requests[0].context, 30021);
    dlg.Move(140, 90);
    pump(50);
    click(&dlg, wxID_CANCEL);
    EXPECT_FALSE(dlg.IsShown());
    EXPECT_EQ(get("USR/Std/User.ini"), "[DSN]\r\nDefault=Schulze KG\r\nX=140\r\nY=90\r\n");
}

// ---------------------------------------------------------------------------
// Pictures
// ---------------------------------------------------------------------------

// Buttons, check boxes and field labels carry access keys, each key once
// per dialog; only the texts the resource has without one ("OK",
// "Abbrechen" of 30021 and 30026, and their English forms) go without.
void checkAccessKeys(wxWindow* dlg, const std::string& where) {
    std::map<wxUniChar, std::string> keys;
    std::function<void(wxWindow*)> walk = [&](wxWindow* w) {
        for (wxWindow* c : w->GetChildren()) {
            walk(c);
            const bool field = dynamic_cast<wxStaticText*>(c) && (c->GetId() == 1040 || c->GetId() == 1041);
            if (!dynamic_cast<wxButton*>(c) && !dynamic_cast<wxCheckBox*>(c) && !field) continue;
            const wxString label = c->GetLabel();
            const std::string text(label.utf8_str());
            const int amp = label.Find('&');
            if (amp == wxNOT_FOUND || amp + 1 >= int(label.size())) {
                EXPECT_TRUE(text == "OK" || text == "Abbrechen" || text == "Cancel") << where << ": no key in " << text;
                continue;
            }
            const wxUniChar key = wxString(label[amp + 1]).Lower()[0];
            EXPECT_TRUE(keys.emplace(key, text).second) << where << ": " << text << " and " << keys[key];
        }
    };
    walk(dlg);
}



TEST_F(ClientDialogs, PicturesOfEveryDialogInBothLanguages) {
    struct Lang { const char* code; std::vector<std::string> titles; };
    const Lang langs[] = {
        {"DEU", {"Mandantenauswahl", "Mandanteneintrag \xC3\xA4ndern", "Neuen Mandanten anlegen",
                 "Mandanteneintrag bearbeiten", "Neuen Mandanteneintrag erzeugen", "Verzeichnisauswahl"}},
        {"ENU", {"Client selection", "Change client entry", "Create new client", "Edit client entry",
                 "Create new client entry", "Select directory"}},
    };
    for (const Lang& l : langs) {
        SCOPED_TRACE(l.code);
        if (std::string(l.code) == "ENU") {
            fs::remove_all(dir_);
            site(true);
        }
        DsnIni reg(this);
        ASSERT_TRUE(reg.LoadSettings());
        VntDsnSelection model(reg, request());
        std::vector<std::unique_ptr<VntDlg>> dlgs;
        auto* sel = new VntDsnSelectDlg(model, nullptr);
        dlgs.emplace_back(sel);
        VntDsnEntryEdit change(model, 1), add(model, -1);
        dlgs.emplace_back(new VntDsnEntryDlg(change, nullptr));
        dlgs.emplace_back(new VntDsnEntryDlg(add, nullptr));
        dlgs.emplace_back(new VntDsnChoiceDlg(30024, nullptr));
        dlgs.emplace_back(new VntDsnChoiceDlg(30025, nullptr));
        auto* tree = new VntDsnDirDlg(Vnt_DsnDirStart("T:\\Daten\\M1\\vanto.db"), nullptr);
        dlgs.emplace_back(tree);
        for (std::size_t i = 0; i < dlgs.size(); ++i) {
            VntDlg* d = dlgs[i].get();
            ASSERT_TRUE(d->IsOk()) << i;
            SCOPED_TRACE(d->ResourceNumber());
            EXPECT_EQ(std::string(d->GetTitle().utf8_str()), l.titles[i]);
            if (d == sel) choose(sel, 1);
            d->Show();
            pump(30);
            vnt::wxtest::checkLayout(d, "dlg" + std::to_string(d->ResourceNumber()));
            checkAccessKeys(d, "dlg" + std::to_string(d->ResourceNumber()));
            picture(d, "dlg" + std::to_string(d->ResourceNumber()) + "_" + l.code);
            d->Hide();
        }
        EXPECT_EQ(std::string(tree->Path()), "") << "nothing chosen yet";
        for (auto& d : dlgs) d.release()->Destroy();
        pump(20);
    }
}

TEST_F(ClientDialogs, FieldLabelsAccessKeysReachTheirFields) {
    DsnIni reg(this);
    ASSERT_TRUE(reg.LoadSettings());
    VntDsnSelection model(reg, request());
    VntDsnEntryEdit change(model, 1);
    VntDsnEntryDlg dlg(change, nullptr);
    dlg.Show();
    pump(50);
    dlg.FindWindow(wxID_OK)->SetFocus();
    pump(20);
    wxUIActionSimulator().Char('p', wxMOD_ALT);
    EXPECT_TRUE(pumpUntil([&] { return wxWindow::FindFocus() == dlg.FindWindow(VNT_DSN_IDC_PATH); }, 1000));
    wxUIActionSimulator().Char('b', wxMOD_ALT);
    EXPECT_TRUE(pumpUntil([&] { return wxWindow::FindFocus() == dlg.FindWindow(VNT_DSN_IDC_NAME); }, 1000));
}

}  // namespace
