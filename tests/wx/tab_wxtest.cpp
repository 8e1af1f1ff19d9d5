// Tabbed pages and views driven by simulated keys and clicks: page keys,
// refusing hooks, the page limit and password levels, Enter and the arrow
// keys, the dropped combo box list, focus memory, the keyboard rules'
// reference count, and the record view's save question against a real
// SQLite database.
#include "wx_support.h"

#include <filesystem>

#include <wx/combobox.h>
#include <wx/frame.h>
#include <wx/notebook.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>
#include <wx/uiaction.h>

#include "../scratch.h"
#include "tab_state.h"
#include "vanto/db.h"
#include "vanto/locale.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
#include "vanto/wx/dlg.h"
#include "vanto/wx/ed.h"
#include "vanto/wx/res.h"
#include "vanto/wx/tab.h"

namespace fs = std::filesystem;

namespace {

using vnt::wxtest::picture;
using vnt::wxtest::pump;
using vnt::wxtest::pumpUntil;

// A dialog `name` whose controls sit in two columns with a border around.
std::string grid(const std::string& name, const std::string& title, const std::string& items) {
    return "<object class=\"wxDialog\" name=\"" + name + "\"><title>" + title +
           "</title><object class=\"wxBoxSizer\"><orient>wxVERTICAL</orient><object class=\"sizeritem\"><flag>wxEXPAND|"
           "wxALL</flag><border>10</border><object class=\"wxFlexGridSizer\"><cols>2</cols><growablecols>1</growablecols>"
           "<vgap>6</vgap><hgap>10</hgap>\n" + items + "</object></object></object></object>\n";
}
// A grid row: its label (none: an empty cell) and its control.
std::string row(const char* label, const std::string& control, const char* flag = "wxEXPAND") {
    return (*label ? std::string("<object class=\"sizeritem\"><flag>wxALIGN_CENTER_VERTICAL</flag><object class="
                                 "\"wxStaticText\"><label>") + label + "</label></object></object>"
                   : std::string("<object class=\"spacer\"><size>0,0</size></object>")) +
           "<object class=\"sizeritem\"><flag>" + flag + "</flag>" + control + "</object>\n";
}

// The form (notebook 1000) and the pages in both languages: 5201 with fields
// of every kind, 5202..5212 plain pages with an edit and a button, 5213
// typed fields for the record view.
std::string pagesXrc() {
    std::string x = R"(<?xml version="1.0" encoding="UTF-8"?>
<resource version="2.5.3.0">
  <object class="wxDialog" name="dlg5200"><title>Kunden</title><size>620,400</size>
    <object class="wxBoxSizer"><orient>wxVERTICAL</orient>
      <object class="sizeritem"><option>1</option><flag>wxEXPAND|wxALL</flag><border>8</border>
        <object class="wxNotebook" name="1000"/></object></object></object>
)";
    for (const bool en : {false, true}) {
        const std::string lang = en ? "_ENU" : "";
        const std::string kinds = en ? "<item>Company</item><item>Private</item><item>Authority</item>"
                                     : "<item>Firma</item><item>Privat</item><item>Beh\xC3\xB6rde</item>";
        x += grid("dlg5201" + lang, en ? "General" : "Allgemein",
                  row("&amp;Name:", "<object class=\"wxTextCtrl\" name=\"101\"/>") +
                      row(en ? "&amp;Town:" : "&amp;Ort:", "<object class=\"wxTextCtrl\" name=\"102\"/>") +
                      row(en ? "&amp;Kind:" : "&amp;Art:", "<object class=\"wxComboBox\" name=\"104\"><style>wxCB_READONLY"
                                                           "</style><content>" + kinds + "</content><selection>0"
                                                           "</selection></object>") +
                      row("", std::string("<object class=\"wxCheckBox\" name=\"103\"><label>") +
                                  (en ? "A&amp;ctive" : "A&amp;ktiv") + "</label></object>", ""));
        for (int n = 5202; n <= 5212; ++n)
            x += "<object class=\"wxDialog\" name=\"dlg" + std::to_string(n) + lang + "\"><title>" +
                 (en ? "Page " : "Seite ") + std::to_string(n - 5200) +
                 "</title><object class=\"wxBoxSizer\"><orient>wxVERTICAL</orient><object class=\"sizeritem\">"
                 "<flag>wxALL|wxEXPAND</flag><border>10</border><object class=\"wxTextCtrl\" name=\"201\"/></object>"
                 "<object class=\"sizeritem\"><flag>wxALL</flag><border>10</border><object class=\"wxButton\" "
                 "name=\"202\"><label>Los</label></object></object></object></object>\n";
        auto ed = [](const char* id, const char* params) {
            return std::string("<object class=\"VantoEd\" name=\"") + id + "\"><size>160,-1</size>" + params + "</object>";
        };
        x += grid("dlg5213" + lang, en ? "Figures" : "Zahlen",
                  row(en ? "&amp;Turnover:" : "&amp;Umsatz:",
                      ed("301", "<type>1</type><decplaces>2</decplaces><alignh>1</alignh><minval>0</minval>"
                                "<maxval>9999999.99</maxval>"), "") +
                      row(en ? "Customer &amp;since:" : "Kunde &amp;seit:", ed("302", "<type>7</type>"), "") +
                      row(en ? "N&amp;umber:" : "N&amp;ummer:", ed("303", "<type>3</type><alignh>1</alignh>"), ""));
    }
    return x + "</resource>\n";
}

// A page whose hooks answer as the test says and count their calls.
class Page : public VntTabDlg {
public:
    bool refuseLeave = false, refuseEnter = false;
    int leaves = 0, enters = 0;
    bool OnKillFocus() override { return ++leaves, refuseLeave; }
    bool OnSetFocus() override { return ++enters, refuseEnter; }
};

class View : public VntTabViewBase {
public:
    explicit View(wxWindow* form) { form_ = form; }
    int saves = 0;
    bool OnToolSave() override { return ++saves, true; }
};

// A frame with the form of resource 5200 and the view's tab holder on it.
struct Form {
    wxFrame* frame = new wxFrame(nullptr, wxID_ANY, "Kunden", wxPoint(0, 0), wxSize(640, 440));
    wxPanel* panel = new wxPanel(frame, wxID_ANY);
    wxNotebook* book = new wxNotebook(panel, 1000);
    View view{panel};
    std::vector<std::unique_ptr<Page>> owned;
    std::vector<VNTTAB_DLGDEF> table;
    Form() {
        auto* s = new wxBoxSizer(wxVERTICAL);
        s->Add(book, 1, wxEXPAND | wxALL, 8);
        panel->SetSizer(s);
        frame->Show();
    }
    ~Form() {
        view.OnActivate(false);
        frame->Destroy();
    }
    Page* add(long dialog, VNT_PW_LEVEL level = 0) {
        owned.push_back(std::make_unique<Page>());
        table.push_back({static_cast<std::int32_t>(dialog), owned.back().get(), level});
        return owned.back().get();
    }
    bool setup(long initial = 0) {
        table.push_back({0, nullptr, 0});
        const bool ok = view.m_tab.AddItems(panel, 1000, table.data(), &view, initial);
        // The notebook owns the pages it created; refused ones stay ours.
        for (auto& p : owned)
            if (p->GetHandle() != nullptr) p.release();
        panel->Layout();
        view.OnActivate(true);
        pump(60);
        return ok;
    }
    VntTab& tab() { return view.m_tab; }
    wxWindow* ctl(int page, int id) { return tab().GetPage(page)->FindWindow(id); }
};

class Tabs : public vnt::wxtest::WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        oldBox_ = Vnt_UiSetPresenter(&box);
        oldWin_ = Vnt_UiSetWindow(&win);
        static const std::string xrc = pagesXrc();
        ASSERT_TRUE(Vnt_WxAddResources(xrc.c_str(), "tabs"));
        vnt::wx::tabState().trace.clear();
    }
    void TearDown() override {
        Vnt_UiSetPresenter(oldBox_);
        Vnt_UiSetWindow(oldWin_);
        WxTest::TearDown();
    }
    // Simulated keys go to the focus; waits until the events are served.
    static void key(int code, int mods = wxMOD_NONE) {
        wxUIActionSimulator().Char(code, mods);
        pump(40);
    }
    static bool focusIs(wxWindow* w) {
        return pumpUntil([w] { return wxWindow::FindFocus() == w; }, 800);
    }
    VntScriptedPresenter box;
    VntHeadlessWindowPort win;
    VntMsgPresenter* oldBox_ = nullptr;
    VntWindowPort* oldWin_ = nullptr;
};

TEST_F(Tabs, PageKeysChangePagesAndWrap) {
    Form f;
    for (long n = 5201; n <= 5204; ++n) f.add(n);
    ASSERT_TRUE(f.setup());
    ASSERT_EQ(f.tab().GetPageCount(), 4);
    EXPECT_EQ(f.book->GetPageText(0), "Allgemein") << "the caption is the dialog's title";
    f.ctl(0, 101)->SetFocus();
    ASSERT_TRUE(focusIs(f.ctl(0, 101)));
    struct Row { const char* name; int code; int mods; int page; };
    const Row rows[] = {
        {"Ctrl+PageDown", WXK_PAGEDOWN, wxMOD_CONTROL, 1}, {"F12", WXK_F12, wxMOD_NONE, 2},
        {"F12 again", WXK_F12, wxMOD_NONE, 3},            {"F12 on the last wraps", WXK_F12, wxMOD_NONE, 0},
        {"F11 on the first wraps", WXK_F11, wxMOD_NONE, 3}, {"Ctrl+PageUp", WXK_PAGEUP, wxMOD_CONTROL, 2},
        {"Shift+F12 is no page key", WXK_F12, wxMOD_SHIFT, 2},
    };
    for (const Row& r : rows) {
        key(r.code, r.mods);
        EXPECT_TRUE(pumpUntil([&] { return f.tab().GetCurSel() == r.page; }, 800)) << r.name << ": page "
                                                                                    << f.tab().GetCurSel();
        EXPECT_EQ(f.book->GetSelection(), r.page) << r.name;
        EXPECT_TRUE(wxWindow::FindFocus() && f.tab().GetCurrentDlg()->IsDescendant(wxWindow::FindFocus()))
            << r.name << ": the focus is in the page";
    }
    // The tool keys go to the active view's tools, and only with Ctrl.
    key('S', wxMOD_CONTROL);
    EXPECT_EQ(f.view.saves, 1);
    key('S', wxMOD_SHIFT);
    EXPECT_EQ(f.view.saves, 1);
    f.view.OnActivate(false);
    wxKeyEvent ctrlS(wxEVT_CHAR_HOOK);
    ctrlS.m_keyCode = 'S';
    ctrlS.m_controlDown = true;
    EXPECT_FALSE(VntTabViewBase::HandleCurrentBar(ctrlS)) << "no active view";
    f.view.OnActivate(true);
    EXPECT_TRUE(VntTabViewBase::HandleCurrentBar(ctrlS));
    EXPECT_EQ(f.view.saves, 2);
    // The holder's own calls: step 0 counts as 1; out of range beeps.
    EXPECT_TRUE(f.tab().GotoTab(0));
    EXPECT_TRUE(f.tab().GotoNextTab(-1));
    EXPECT_EQ(f.tab().GetCurSel(), 3);
    EXPECT_TRUE(f.tab().GotoNextTab(0));
    EXPECT_EQ(f.tab().GetCurSel(), 0);
    const int beeps = win.beeps;
    EXPECT_FALSE(f.tab().GotoTab(4));
    EXPECT_FALSE(f.tab().GotoTab(-1));
    EXPECT_FALSE(f.tab().GotoTabDlg(5299));
    EXPECT_EQ(win.beeps, beeps + 3);
    EXPECT_TRUE(f.tab().GotoTabDlg(5203));
    EXPECT_EQ(f.tab().GetCurSel(), 2);
}

// The tab's rectangle as the notebook answers hit tests.
wxPoint tabCentre(wxNotebook* book, int index) {
    int x0 = -1, x1 = -1, y = -1;
    for (int yy = 2; yy < 60 && y < 0; yy += 2)
        for (int xx = 0; xx < book->GetSize().x; xx += 2)
            if (book->HitTest(wxPoint(xx, yy)) == index) {
                if (x0 < 0) x0 = xx, y = yy;
                x1 = xx;
            }
    if (y < 0) return wxDefaultPosition;
    return book->ClientToScreen(wxPoint((x0 + x1) / 2, y + 6));
}

TEST_F(Tabs, RefusingHooksKeepOrRestoreTheSelection) {
    Form f;
    Page* first = f.add(5201);
    Page* second = f.add(5202);
    f.add(5203);
    ASSERT_TRUE(f.setup());
    const wxPoint at = tabCentre(f.book, 1);
    ASSERT_NE(at, wxDefaultPosition);
    wxUIActionSimulator sim;
    auto clickTab = [&](int index) {
        sim.MouseMove(tabCentre(f.book, index));
        pump(20);
        sim.MouseClick();
        pump(100);
    };
    first->refuseLeave = true;
    clickTab(1);
    EXPECT_EQ(f.book->GetSelection(), 0) << "the notebook stays on the refusing page";
    EXPECT_EQ(f.tab().GetCurSel(), 0);
    EXPECT_GE(first->leaves, 1);
    EXPECT_EQ(second->enters, 0) << "the page clicked was never entered";
    key(WXK_F12);
    EXPECT_EQ(f.tab().GetCurSel(), 0) << "a page key is refused the same way";

    first->refuseLeave = false;
    second->refuseEnter = true;
    clickTab(1);
    EXPECT_TRUE(pumpUntil([&] { return second->enters > 0; }, 800));
    EXPECT_EQ(f.tab().GetCurSel(), 0) << "entering refused: back to the page before";
    EXPECT_EQ(f.book->GetSelection(), 0);
    second->refuseEnter = false;
    clickTab(1);
    EXPECT_EQ(f.tab().GetCurSel(), 1);
    EXPECT_EQ(f.book->GetSelection(), 1);
}

TEST_F(Tabs, TheEleventhPageIsRefusedAndLevelsAboveZeroGetNoTab) {
    for (long last : {5210L, 5211L}) {  // 10 pages are the limit, not beyond it
        SCOPED_TRACE(last - 5200);
        Form f;
        for (long n = 5201; n <= last; ++n) f.add(n);
        box.shown.clear();
        EXPECT_EQ(f.setup(), last == 5210);
        EXPECT_EQ(f.tab().GetPageCount(), 10) << "the first 10 stay";
        EXPECT_EQ(f.book->GetPageCount(), 10u);
        ASSERT_EQ(box.shown.size(), last == 5210 ? 0u : 1u) << "one report";
        if (last == 5211) {
            EXPECT_NE(box.shown[0].details.find("Tab\\VntTab"), std::string::npos) << box.shown[0].details;
        }
    }
    {
        Form f;
        Page* secret = f.add(5201, 1);
        f.add(5202);
        f.add(5203, 0);
        ASSERT_TRUE(f.setup());
        EXPECT_EQ(f.tab().GetPageCount(), 2);
        EXPECT_EQ(f.book->GetPageText(0), "Seite 2") << "the next entry is the first visible page";
        EXPECT_EQ(f.tab().GetCurSel(), 0);
        EXPECT_TRUE(secret->GetHandle() != nullptr && !secret->IsShown()) << "created all the same, never shown";
        EXPECT_FALSE(f.tab().GotoTabDlg(5201));
    }
    {
        Form f;
        f.add(5299);
        EXPECT_FALSE(f.setup()) << "no such dialog";
        ASSERT_FALSE(box.plainShown.empty());
        EXPECT_EQ(box.plainShown.back().text, "Unknown error creating dialog '5299' in a tab control.");
    }
    View v(nullptr);
    wxFrame* frame = new wxFrame(nullptr, wxID_ANY, "x");
    box.shown.clear();
    box.plainShown.clear();
    EXPECT_FALSE(v.m_tab.Setup(frame, 1000));
    EXPECT_FALSE(box.plainShown.empty() && box.shown.size() < 2) << "report and message";
    frame->Destroy();
}

TEST_F(Tabs, EnterArrowsTheDroppedListAndTheFocusEachPageKeeps) {
    Form f;
    f.add(5201);
    f.add(5202);
    ASSERT_TRUE(f.setup());
    // A page gets its focus and selection back; one seen the first time its first control.
    auto* town = dynamic_cast<wxTextCtrl*>(f.ctl(0, 102));
    town->ChangeValue("Hamburg-Altona");
    town->SetFocus();
    ASSERT_TRUE(focusIs(town));
    town->SetSelection(3, 7);
    pump(30);
    key(WXK_PAGEDOWN, wxMOD_CONTROL);
    ASSERT_EQ(f.tab().GetCurSel(), 1);
    EXPECT_TRUE(focusIs(f.ctl(1, 201)));
    key(WXK_PAGEUP, wxMOD_CONTROL);
    ASSERT_EQ(f.tab().GetCurSel(), 0);
    EXPECT_TRUE(focusIs(town));
    pump(50);
    long from = 0, to = 0;
    town->GetSelection(&from, &to);
    EXPECT_TRUE(from == 3 && to == 7) << from << ".." << to;
    // Controls by page and number; 0 is the notebook, -1 where the focus is.
    struct Row { const char* name; int page, from, code, to, beeps; };
    const Row rows[] = {
        {"Enter on the notebook goes into the page", 0, 0, WXK_RETURN, 101, 0},
        {"Enter in an edit: next control", 0, -1, WXK_RETURN, 102, 0},
        {"Enter again", 0, -1, WXK_RETURN, 104, 0},
        {"Enter on the last control: round to the first through the focus stop", 0, 103, WXK_RETURN, 101, 0},
        {"Down in an edit", 0, 101, WXK_DOWN, 102, 0},
        {"Up in an edit", 0, -1, WXK_UP, 101, 0},
        {"Left in an edit is the caret's", 0, 102, WXK_LEFT, 102, 0},
        {"other keys on the notebook beep", 0, 0, 'q', 0, 1},
        {"Down on the notebook: into the page", 0, -1, WXK_DOWN, 101, 0},
        {"Tab past the last control stays in the page", 0, 103, WXK_TAB, 101, 0},
        {"Down in an edit before a button", 1, 201, WXK_DOWN, 202, 0},
        {"Up on a button", 1, -1, WXK_UP, 201, 0},
        {"Left on a button", 1, 202, WXK_LEFT, 201, 0},
    };
    auto at = [&](int page, int id) { return id == 0 ? static_cast<wxWindow*>(f.book) : f.ctl(page, id); };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        if (f.tab().GetCurSel() != r.page) {
            ASSERT_TRUE(f.tab().GotoTab(r.page));
        }
        if (r.from >= 0) {
            at(r.page, r.from)->SetFocus();
            ASSERT_TRUE(focusIs(at(r.page, r.from)));
        }
        const int beeps = win.beeps;
        key(r.code);
        EXPECT_TRUE(focusIs(at(r.page, r.to)));
        EXPECT_EQ(win.beeps, beeps + r.beeps);
    }
    EXPECT_EQ(f.tab().GetPage(0)->FocusStop(0)->GetPosition(), wxPoint(-100, -100));
    EXPECT_EQ(f.tab().GetPage(0)->FocusStop(1)->GetPosition(), wxPoint(-80, -80));
    // With the combo box's list dropped, Up and Down stay in the list.
    ASSERT_TRUE(f.tab().GotoTab(0));
    auto* kind = dynamic_cast<wxComboBox*>(f.ctl(0, 104));
    ASSERT_NE(kind, nullptr);
    kind->SetFocus();
    ASSERT_TRUE(focusIs(kind));
    kind->Popup();
    ASSERT_TRUE(pumpUntil([&] { return VntTabViewBase::DroppedCombo() == kind; }, 1500)) << "the page saw the drop";
    key(WXK_DOWN);
    key(WXK_DOWN);
    EXPECT_EQ(wxWindow::FindFocus(), kind) << "the focus did not move on";
    EXPECT_EQ(VntTabViewBase::DroppedCombo(), kind) << "the list is still open";
    key(WXK_RETURN);
    EXPECT_TRUE(pumpUntil([&] { return VntTabViewBase::DroppedCombo() == nullptr; }, 1500)) << "closed up";
    EXPECT_EQ(kind->GetSelection(), 2) << "the keys moved in the list";
    f.ctl(0, 101)->SetFocus();
    ASSERT_TRUE(focusIs(f.ctl(0, 101)));
    key(WXK_DOWN);
    EXPECT_TRUE(focusIs(f.ctl(0, 102))) << "closed again, Down in an edit moves on";
}

TEST_F(Tabs, KeyboardRulesFollowTheActiveViewsAndStandAsideForDialogs) {
    auto& trace = vnt::wx::tabState().trace;
    {
        Form a, b;
        a.add(5201);
        a.add(5202);
        b.add(5201);
        ASSERT_TRUE(a.setup());
        EXPECT_EQ(VntTabViewBase::ActiveViews(), 1);
        ASSERT_TRUE(b.setup());
        EXPECT_EQ(VntTabViewBase::ActiveViews(), 2);
        EXPECT_EQ(trace, "  -> VntTabViewBase-Hook installed\n") << "once for both";
        b.view.OnActivate(false);
        EXPECT_EQ(VntTabViewBase::ActiveViews(), 1);
        // The rules act for the current holder only while no library
        // dialog is active.
        a.view.OnActivate(true);
        a.ctl(0, 101)->SetFocus();
        ASSERT_TRUE(focusIs(a.ctl(0, 101)));
        VntDlg dlg(5200, a.frame);
        ASSERT_TRUE(dlg.IsOk());
        dlg.Show();
        pump(30);
        ASSERT_EQ(VntDlg::GetActiveDialog(), &dlg);
        a.ctl(0, 101)->SetFocus();
        pump(30);
        key(WXK_F12);
        EXPECT_EQ(a.tab().GetCurSel(), 0) << "a library dialog is active";
        dlg.Hide();
        pump(30);
        a.ctl(0, 101)->SetFocus();
        ASSERT_TRUE(focusIs(a.ctl(0, 101)));
        key(WXK_F12);
        EXPECT_EQ(a.tab().GetCurSel(), 1);
    }
    EXPECT_EQ(VntTabViewBase::ActiveViews(), 0);
    EXPECT_EQ(trace, "  -> VntTabViewBase-Hook installed\n  -> VntTabViewBase-Hook uninstalled\n");
}

// ---------------------------------------------------------------------------
// The record view over SQLite
// ---------------------------------------------------------------------------

class RecPage : public VntTabDlg {
public:
    bool DoDataExchange(VntDataExchange& dx) override {
        VntRecordset* set = set_;
        auto* name = dynamic_cast<wxTextCtrl*>(FindWindow(101));
        auto* town = dynamic_cast<wxTextCtrl*>(FindWindow(102));
        if (!set || !name || !town) return false;
        if (dx.m_bSaveAndValidate) {
            if (name->GetValue().empty()) return false;  // a name is required
            return set->SetFieldValue("name", name->GetValue().utf8_str().data()) &&
                   set->SetFieldValue("ort", town->GetValue().utf8_str().data());
        }
        std::string n, t;
        set->GetFieldValue("name", n);
        set->GetFieldValue("ort", t);
        name->ChangeValue(wxString::FromUTF8(n));
        town->ChangeValue(wxString::FromUTF8(t));
        return true;
    }
    VntRecordset* set_ = nullptr;
};

// The typed fields, exchanged with the record set's fields.
class FiguresPage : public VntTabDlg {
public:
    bool DoDataExchange(VntDataExchange& dx) override {
        auto* turnover = dynamic_cast<VantoEd*>(FindWindow(301));
        auto* since = dynamic_cast<VantoEd*>(FindWindow(302));
        auto* number = dynamic_cast<VantoEd*>(FindWindow(303));
        if (!set_ || !turnover || !since || !number) return false;
        turnover->DDX(&dx, amount, set_, "umsatz");
        since->DDX(&dx, date, set_, "seit");
        number->DDX(&dx, nr, set_, "nr");
        return !dx.Failed();
    }
    VntRecordset* set_ = nullptr;
    double amount = 0;
    VntDate date;
    std::int32_t nr = 0;
};

class RecView : public VntTabRecView {
public:
    explicit RecView(VntRecordset* set) : VntTabRecView(5200) {
        m_pSet = set;
        main.set_ = set;
        figures.set_ = set;
    }
    void OnInitialUpdate() override {
        table[0] = {5201, &main, 0};
        table[1] = {5213, &figures, 0};
        table[2] = {0, nullptr, 0};
        m_tab.AddItems(form_, 1000, table, this, 0);
    }
    RecPage main;
    FiguresPage figures;
    VNTTAB_DLGDEF table[3];
};

class RecordView : public Tabs {
protected:
    void SetUp() override {
        Tabs::SetUp();
        dbFile_ = vnt::test::scratchDir("tab_recview") / "kunden.db";
        fs::remove(dbFile_);
        mgr_ = std::make_unique<wxDocManager>();
        tpl_ = new wxDocTemplate(mgr_.get(), "Kunden", "*.*", "", "", "Kunden", "Kunden");
        fs::create_directories(dbFile_.parent_path());
        ASSERT_TRUE(db_.OpenEx(("DRIVER=SQLite3;Database=" + dbFile_.string()).c_str()));
        ASSERT_TRUE(db_.ExecuteSQL(
            "CREATE TABLE kunden (id INTEGER PRIMARY KEY, name TEXT, ort TEXT, umsatz DECIMAL(10,2), seit DATE, nr INTEGER)"));
        ASSERT_TRUE(db_.ExecuteSQL("INSERT INTO kunden VALUES (1, 'Schulze KG', 'Bremen', 12345.5, '2019-04-01', 1001)"));
        ASSERT_TRUE(db_.ExecuteSQL("INSERT INTO kunden VALUES (2, 'Meyer GmbH', 'Kiel', NULL, NULL, 1002)"));
    }
    void TearDown() override {
        db_.Close();
        Tabs::TearDown();
        mgr_.reset();
    }
    // A field of record 1 as the database has it now.
    template <class T>
    T stored(const char* field, T missing) {
        VntRecordset rs(&db_);
        T v = missing;
        if (!rs.Open((std::string("SELECT ") + field + " FROM kunden WHERE id = 1").c_str()) || !rs.GetFieldValue(0, v))
            return missing;
        return v;
    }
    // A view of record 1 with its name typed over; the frame.
    RecView* open(wxDocument*& doc) {
        set_ = std::make_unique<VntRecordset>(&db_);
        if (!set_->Open("kunden")) return nullptr;
        doc = new wxDocument;
        doc->SetDocumentTemplate(tpl_);
        mgr_->AddDocument(doc);
        auto* view = new RecView(set_.get());
        view->SetDocument(doc);
        if (!view->OnCreate(doc, 0)) return nullptr;
        pump(50);
        return view;
    }
    std::unique_ptr<wxDocManager> mgr_;
    wxDocTemplate* tpl_ = nullptr;
    fs::path dbFile_;
    VntDatabase db_;
    std::unique_ptr<VntRecordset> set_;
};

TEST_F(RecordView, TheSaveQuestionDecidesWhatHappensToTheRecord) {
    struct Row { const char* name; int button; bool open; const char* stored; };
    const Row rows[] = {
        {"Cancel keeps the view and the record", VNT_BTN_CANCEL, true, "Schulze KG"},
        {"Yes saves", VNT_BTN_YES, false, "Schulze & Partner"},
        {"No discards", VNT_BTN_NO, false, "Schulze KG"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        ASSERT_TRUE(db_.ExecuteSQL("UPDATE kunden SET name = 'Schulze KG' WHERE id = 1"));
        wxDocument* doc = nullptr;
        RecView* view = open(doc);
        ASSERT_NE(view, nullptr);
        wxFrame* frame = view->Frame();
        auto* name = dynamic_cast<wxTextCtrl*>(view->main.FindWindow(101));
        EXPECT_EQ(name->GetValue(), "Schulze KG") << "the record is shown";
        EXPECT_EQ(frame->GetTitle().substr(frame->GetTitle().size() - 12), " - Allgemein");
        name->SetFocus();
        ASSERT_TRUE(focusIs(name));
        name->SelectAll();
        wxUIActionSimulator().Text("Schulze & Partner");
        ASSERT_TRUE(pumpUntil([&] { return name->GetValue() == "Schulze & Partner"; }, 2000)) << name->GetValue();
        box.shown.clear();
        box.answers.push_back({r.button, false});
        const bool closed = frame->Close();
        pump(80);
        ASSERT_EQ(box.shown.size(), 1u);
        EXPECT_EQ(box.shown[0].text, "Sollen die \xC4nderungen gespeichert werden?") << "message 34001";
        EXPECT_EQ(closed, !r.open);
        EXPECT_EQ(stored<std::string>("name", "?"), r.stored);
        EXPECT_DOUBLE_EQ(stored("umsatz", -1.0), 12345.5) << "the typed amount went through the exchange unchanged";
        if (r.open) {
            EXPECT_TRUE(frame->IsShown());
            EXPECT_EQ(name->GetValue(), "Schulze & Partner") << "the typing is kept";
            // Unchanged again, it closes without a question.
            view->OnDiscardChanges();
            EXPECT_EQ(name->GetValue(), "Schulze KG");
            box.shown.clear();
            EXPECT_TRUE(frame->Close());
            pump(50);
            EXPECT_TRUE(box.shown.empty());
        }
        set_.reset();
    }
}

TEST_F(RecordView, MovingOnAsksFirstAFailedExchangeKeepsTheRecordADeletedOneAsksItsOwn) {
    wxDocument* doc = nullptr;
    RecView* view = open(doc);
    ASSERT_NE(view, nullptr);
    auto* name = dynamic_cast<wxTextCtrl*>(view->main.FindWindow(101));
    box.shown.clear();
    EXPECT_TRUE(view->DoTool(VNTTAB_TOOL_NEXT)) << "nothing changed: no question";
    EXPECT_TRUE(box.shown.empty());
    EXPECT_EQ(name->GetValue(), "Meyer GmbH");
    name->ChangeValue("");
    box.answers.push_back({VNT_BTN_YES, false});
    EXPECT_FALSE(view->DoTool(VNTTAB_TOOL_FIRST)) << "the empty name stops the exchange: nothing saved, no move";
    EXPECT_EQ(name->GetValue(), "");
    box.answers.push_back({VNT_BTN_NO, false});
    EXPECT_TRUE(view->DoTool(VNTTAB_TOOL_FIRST));
    EXPECT_EQ(name->GetValue(), "Schulze KG");
    char caption[10];
    EXPECT_TRUE(VntTabViewBase::ToolCaption(VNTTAB_TOOL_SAVE, caption, sizeof caption));
    EXPECT_STREQ(caption, "Speichern");
    EXPECT_TRUE(VntTabViewBase::ToolCaption(VNTTAB_TOOL_PRINTPREVIEW, caption, sizeof caption));
    EXPECT_STREQ(caption, "Seitenans") << "cut to the buffer";
    EXPECT_FALSE(VntTabViewBase::ToolCaption(1, caption, sizeof caption));
    // A deleted record asks its own question.
    set_->CancelUpdate();
    ASSERT_TRUE(set_->Delete());
    box.shown.clear();
    box.plainAnswers = {VNT_BTN_NO};
    box.answers.push_back({VNT_BTN_NO, false});
    EXPECT_FALSE(view->HandleAskSaveChanges());
    const std::string asked = box.plainShown.empty() ? (box.shown.empty() ? "" : box.shown[0].text)
                                                     : box.plainShown[0].text;
    EXPECT_NE(asked.find("record was deleted but then changed"), std::string::npos) << asked;
    box.plainAnswers = {VNT_BTN_YES};
    box.answers.push_back({VNT_BTN_YES, false});
    EXPECT_TRUE(view->HandleAskSaveChanges());
    // A record set that cannot take changes: internal error, no question.
    box.shown.clear();
    box.plainShown.clear();
    VntRecordset readOnly(&db_);
    ASSERT_TRUE(readOnly.Open("kunden", VNT_RS_READONLY));
    view->m_pSet = &readOnly;
    EXPECT_FALSE(view->HandleAskSaveChanges());
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_NE(box.shown[0].details.find("Tab\\VntTabXView"), std::string::npos) << box.shown[0].details;
    view->m_pSet = nullptr;
    EXPECT_TRUE(view->HandleAskSaveChanges()) << "no record set: nothing to ask";
    view->Frame()->Close(true);
    pump(30);
    set_.reset();
}

// ---------------------------------------------------------------------------
// Pictures
// ---------------------------------------------------------------------------



TEST_F(RecordView, PicturesOfTheRecordViewInBothLanguages) {
    VntIntlTable de{{"sShortDate", "dd.MM.yyyy"}, {"sDecimal", ","}, {"sThousand", "."}, {"iCurrDigits", "2"}};
    VntIntlTable en{{"sShortDate", "MM/dd/yyyy"}, {"sDecimal", "."}, {"sThousand", ","}, {"iCurrDigits", "2"}};
    for (const char* lang : {"DEU", "ENU"}) {
        SCOPED_TRACE(lang);
        openLibrary(std::string(lang) == "ENU");
        Vnt_SysSetIntlSource(std::string(lang) == "ENU" ? &en : &de);
        Vnt_SysInfo(VNT_SI_RELOAD);
        Vnt_UiSetPresenter(&box);
        Vnt_UiSetWindow(&win);
        wxDocument* doc = nullptr;
        RecView* view = open(doc);
        ASSERT_NE(view, nullptr);
        doc->SetTitle(std::string(lang) == "ENU" ? "Customers" : "Kunden");
        view->Frame()->OnUpdateFrameTitle();
        view->Frame()->SetPosition(wxPoint(0, 0));
        view->main.FindWindow(102)->SetFocus();
        pump(50);
        picture(view->Frame(), std::string("tabview_") + lang);
        ASSERT_TRUE(view->m_tab.GotoTab(1));
        pump(50);
        EXPECT_FALSE(dynamic_cast<VantoEd*>(view->figures.FindWindow(301))->GetValue().empty()) << "the amount is shown";
        picture(view->Frame(), std::string("tabview_figures_") + lang);
        view->Frame()->Close(true);
        pump(30);
        set_.reset();
    }
    Vnt_SysSetIntlSource(nullptr);
    Vnt_SysInfo(VNT_SI_RELOAD);
}

}  // namespace
