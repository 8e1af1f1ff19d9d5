// The menu helper on real wx menus: the state rules (checks, enabling and
// greying, the deliberate mode 2), texts and shortcuts, inserting, the
// title search with its nested-popup rule, the live count, and the system
// menu with its shortcut texts, F9 and the modifier+F10.
#include "wx_support.h"


#include <wx/dcmemory.h>
#include <wx/dcscreen.h>
#include <wx/frame.h>
#include <wx/menu.h>
#include <wx/textctrl.h>
#include <wx/uiaction.h>

#include "menu_state.h"
#include "vanto/locale.h"
#include "vanto/wx/menu.h"

namespace {

using vnt::wxtest::pump;
using vnt::wxtest::pumpUntil;

enum : int { ID_OPEN = 101, ID_SAVE, ID_RULER, ID_GRID, ID_NESTED, ID_AFTER, ID_ABOUT, ID_PLAIN };

// Datei: Öffnen, Speichern | Ansicht: Lineal (check), Raster (check),
// Mehr > (Verschachtelt), Danach | Hilfe: Info
wxFrame* menuFrame(long style = wxDEFAULT_FRAME_STYLE) {
    auto* f = new wxFrame(nullptr, wxID_ANY, "Fibu", wxPoint(0, 0), wxSize(420, 260), style);
    auto* file = new wxMenu;
    file->Append(ID_OPEN, wxString::FromUTF8("\xC3\x96&ffnen\tCtrl+O"));
    file->Append(ID_SAVE, "&Speichern");
    file->Append(ID_PLAIN, "&Drucken");
    auto* view = new wxMenu;
    view->AppendCheckItem(ID_RULER, "&Lineal");
    view->AppendCheckItem(ID_GRID, "&Raster");
    auto* more = new wxMenu;
    more->Append(ID_NESTED, "&Verschachtelt");
    view->AppendSubMenu(more, "&Mehr");
    view->Append(ID_AFTER, "&Danach");
    auto* help = new wxMenu;
    help->Append(ID_ABOUT, "&Info");
    auto* bar = new wxMenuBar;
    bar->Append(file, "&Datei");
    bar->Append(view, "&Ansicht");
    bar->Append(help, "&Hilfe");
    f->SetMenuBar(bar);
    new wxTextCtrl(f, wxID_ANY, "");
    return f;
}

class Menus : public vnt::wxtest::WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        vnt::wx::menuStateReset();
        language("DEU");
        frame = menuFrame();
        frame->Show();
        pump(30);
    }
    void TearDown() override {
        Vnt_SysSetIntlSource(nullptr);
        Vnt_SysInfo(VNT_SI_RELOAD);
        vnt::wx::menuStateReset();
        WxTest::TearDown();
    }
    // The locale's "sLanguage"; the texts are chosen anew.
    void language(const char* lang) {
        intl_.set("sLanguage", lang);
        Vnt_SysSetIntlSource(&intl_);
        Vnt_SysInfo(VNT_SI_RELOAD);
        vnt::wx::menuStateReset();
    }
    // The items of a menu as "text|state" lines (separators "-").
    static std::string items(wxMenu* m) {
        std::string out;
        for (wxMenuItem* i : m->GetMenuItems()) {
            if (i->IsSeparator()) out += "-\n";
            else if (i->IsSubMenu()) out += "> " + std::string(i->GetItemLabel().utf8_str()) + "\n";
            else out += std::to_string(VntMenu::CommandOf(i->GetId())) + " " + std::string(i->GetItemLabel().utf8_str()) +
                        (i->IsEnabled() ? "" : " (off)") + "\n";
        }
        return out;
    }
    VntIntlTable intl_;
    wxFrame* frame = nullptr;
};

TEST_F(Menus, CheckEnableAndGreyFollowTheStateWord) {
    VntMenu m(frame);
    ASSERT_TRUE(m.IsValid());
    // ItemCheck: toggle answers the new state, the others the old one.
    EXPECT_FALSE(m.ItemCheck(ID_RULER, 1)) << "was unchecked";
    EXPECT_TRUE(m.ItemChecked(ID_RULER));
    EXPECT_FALSE(m.ItemCheck(ID_RULER, 2)) << "a checked item toggled: unchecked, false";
    EXPECT_FALSE(m.ItemChecked(ID_RULER));
    EXPECT_TRUE(m.ItemCheck(ID_RULER, 2));
    EXPECT_TRUE(m.ItemCheck(ID_RULER, 0)) << "had been checked";
    EXPECT_FALSE(m.ItemCheck(ID_OPEN, 1)) << "a plain item cannot be checked";

    // ItemEnable, mode 2 kept as it is: any state flag enables.
    struct Row { const char* name; long id; const char* setup; int mode; bool result; bool enabled; };
    const Row rows[] = {
        {"mode 0 disables", ID_SAVE, "", 0, false, false},
        {"mode 1 enables a disabled one", ID_SAVE, "disable", 1, false, true},
        {"mode 1 on a greyed one answers true", ID_SAVE, "grey", 1, true, true},
        {"mode 2 enables a greyed one", ID_SAVE, "grey", 2, true, true},
        {"mode 2 enables a disabled one", ID_SAVE, "disable", 2, false, true},
        {"mode 2 disables a plain enabled one", ID_SAVE, "", 2, false, false},
        {"mode 2 leaves a checked one enabled", ID_GRID, "check", 2, false, true},
    };
    for (const Row& r : rows) {
        m.ItemEnable(r.id, 1);
        m.ItemCheck(ID_GRID, 0);
        const std::string s = r.setup;
        if (s == "disable") m.ItemEnable(r.id, 0);
        if (s == "grey") m.ItemGray(r.id, 1);
        if (s == "check") m.ItemCheck(r.id, 1);
        EXPECT_EQ(m.ItemEnable(r.id, r.mode), r.result) << r.name;
        EXPECT_EQ(m.ItemEnabled(r.id), r.enabled) << r.name;
        EXPECT_EQ(frame->GetMenuBar()->IsEnabled(static_cast<int>(r.id)), r.enabled) << r.name << ": wx agrees";
    }
    // ItemGray: un-greying fails on a disabled item, works on a greyed one.
    m.ItemEnable(ID_SAVE, 1);
    EXPECT_FALSE(m.ItemGray(ID_SAVE, 1));
    EXPECT_FALSE(m.ItemEnabled(ID_SAVE));
    EXPECT_TRUE(m.ItemGray(ID_SAVE, 2)) << "kept grey; it was exactly greyed";
    EXPECT_FALSE(m.ItemEnabled(ID_SAVE));
    EXPECT_TRUE(m.ItemGray(ID_SAVE, 0));
    EXPECT_TRUE(m.ItemEnabled(ID_SAVE));
    m.ItemEnable(ID_SAVE, 0);
    EXPECT_FALSE(m.ItemGray(ID_SAVE, 0)) << "disabled, not only greyed";
    EXPECT_FALSE(m.ItemEnabled(ID_SAVE));
    EXPECT_FALSE(m.ItemGray(4711, 1)) << "no such item";
}

TEST_F(Menus, TextsExtendAndShortcuts) {
    VntMenu m(frame);
    struct Row { const char* name; const char* suffix; bool result; const char* text; };
    const Row rows[] = {
        {"a new shortcut replaces the old", "\tF3", true, "\xD6&ffnen\tF3"},
        {"a suffix without a tab is appended", " (alt)", true, "\xD6&ffnen\tCtrl+O (alt)"},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(m.ItemTextExtend(ID_OPEN, r.suffix), r.result) << r.name;
        EXPECT_STREQ(m.Text(), r.text) << r.name;
        EXPECT_EQ(m.ItemTextGet(ID_OPEN), 14) << r.name << ": the item is not changed";
    }
    EXPECT_TRUE(m.ItemShortcut(ID_SAVE, "Ctrl+S"));
    EXPECT_EQ(m.ItemTextGet(ID_SAVE), 17);
    EXPECT_STREQ(m.Text(), "&Speichern\tCtrl+S");
    EXPECT_EQ(frame->GetMenuBar()->FindItem(ID_SAVE)->GetItemLabel(), "&Speichern\tCtrl+S");
    // The shortcut is cut to 48 characters, the text to 255.
    EXPECT_TRUE(m.ItemShortcut(ID_PLAIN, std::string(60, 'x').c_str()));
    EXPECT_EQ(m.ItemTextGet(ID_PLAIN), 8 + 1 + 48);
    const std::string long254(254, 'a');
    ASSERT_TRUE(m.ItemTextSet(ID_PLAIN, long254.c_str()));
    EXPECT_FALSE(m.ItemTextExtend(ID_PLAIN, "bc")) << "only one character fits";
    EXPECT_EQ(std::string(m.Text()), long254 + "b");
    ASSERT_TRUE(m.ItemTextSet(ID_PLAIN, nullptr));
    EXPECT_FALSE(m.ItemTextExtend(ID_PLAIN, "c")) << "the text already fills 255";
    EXPECT_EQ(std::strlen(m.Text()), 255u);
    EXPECT_FALSE(m.ItemTextExtend(4711, "x")) << "no item, no text";
    // flags -1 keep the state; other flags set it.
    m.ItemEnable(ID_SAVE, 0);
    EXPECT_TRUE(m.ItemTextSet(ID_SAVE, "&Sichern", -1));
    EXPECT_FALSE(m.ItemEnabled(ID_SAVE));
    EXPECT_TRUE(m.ItemTextSet(ID_SAVE, "&Sichern", 0));
    EXPECT_TRUE(m.ItemEnabled(ID_SAVE));
}

TEST_F(Menus, TitlesNestedPopupsAndPositions) {
    VntMenu m(frame);
    EXPECT_EQ(m.TitleFind(ID_SAVE), 0);
    EXPECT_EQ(m.TitleTextGet(ID_SAVE), -1) << "a command under the first title";
    EXPECT_EQ(m.TitleTextGet(ID_ABOUT), 6);
    EXPECT_STREQ(m.Text(), "&Hilfe");
    EXPECT_EQ(m.TitleFind(ID_RULER), 1);
    EXPECT_EQ(m.TitleFind(ID_NESTED), 2) << "the position of the nested popup in its parent";
    EXPECT_EQ(m.TitleFind(ID_AFTER), -1) << "after a nested popup: not looked at";
    EXPECT_EQ(m.TitleFind(4711), -1);
    EXPECT_TRUE(m.TitleEnable(ID_ABOUT, false));
    EXPECT_FALSE(frame->GetMenuBar()->IsEnabledTop(2));
    EXPECT_TRUE(m.TitleEnable(ID_ABOUT, true));
    EXPECT_TRUE(frame->GetMenuBar()->IsEnabledTop(2));
    EXPECT_FALSE(m.ByPosition(2)) << "lookup by identifier";

    // Narrowed to a title's popup; by position.
    VntMenu view(ID_GRID, frame);
    ASSERT_EQ(view.ItemCount(), 4);
    EXPECT_EQ(view.ItemFind(ID_GRID), 1);
    EXPECT_EQ(view.ItemFind(ID_NESTED), -1) << "top-level items only";
    EXPECT_EQ(view.ItemId(2), -1) << "a popup";
    EXPECT_FALSE(view.ByPosition(1));
    EXPECT_EQ(view.ItemTextGet(3), 7);
    EXPECT_STREQ(view.Text(), "&Danach");
    EXPECT_TRUE(view.ByPosition(0));
    // Inserting: at the top, at the end, before an item, a separator.
    EXPECT_TRUE(view.ItemInsert(201, 0, "&Oben"));
    EXPECT_TRUE(view.ItemInsert(202, -1, "&Unten"));
    EXPECT_TRUE(view.ItemInsert(203, ID_NESTED, "&Davor"));
    EXPECT_TRUE(view.ItemInsert(0, ID_GRID, nullptr));
    EXPECT_FALSE(view.ItemInsert(204, 4711, "x"));
    EXPECT_EQ(items(view.Menu()), "201 &Oben\n103 &Lineal\n-\n104 &Raster\n> &Mehr\n106 &Danach\n202 &Unten\n");
    wxMenu* nested = nullptr;
    ASSERT_NE(view.Menu()->FindItem(ID_NESTED, &nested), nullptr);
    EXPECT_EQ(items(nested), "203 &Davor\n105 &Verschachtelt\n");
    EXPECT_TRUE(view.ItemModify(202, 0, "&Ganz unten"));
    EXPECT_TRUE(view.ItemDelete(201));
    EXPECT_FALSE(view.ItemExists(201));
    EXPECT_EQ(view.ItemFind(202), view.ItemCount() - 1);

    // Titles: insert with a popup, delete by a command under it.
    auto* extra = new wxMenu;
    extra->Append(301, "&Extra");
    EXPECT_TRUE(m.TitleInsert(1, "&Werkzeuge", extra));
    EXPECT_EQ(frame->GetMenuBar()->GetMenuLabel(1), "&Werkzeuge");
    EXPECT_TRUE(m.TitleDelete(301));
    EXPECT_EQ(frame->GetMenuBar()->GetMenuCount(), 3u);
    EXPECT_FALSE(m.TitleInsert(0, "&Ohne", nullptr)) << "a bar takes popups only";
    const VNT_RES_STRING strings[] = {{4711, "&Extras"}};
    Vnt_ResRegister(nullptr, strings, 1);
    EXPECT_TRUE(m.TitleInsert(-1, 4711, new wxMenu)) << "a title by string number";
    EXPECT_EQ(frame->GetMenuBar()->GetMenuLabel(3), "&Extras");
    auto* orphan = new wxMenu;
    EXPECT_FALSE(m.TitleInsert(-1, 4712, orphan)) << "no such string";
    delete orphan;

    VntMenu none;
    EXPECT_FALSE(none.IsValid());
    EXPECT_EQ(none.ItemFind(ID_SAVE), 0) << "no menu";
    EXPECT_EQ(none.ItemTextGet(ID_SAVE), 0);
    EXPECT_FALSE(none.ItemCheck(ID_RULER, 1));
    EXPECT_TRUE(none.CloseOk());
    EXPECT_TRUE(none.CreatePopup());
    EXPECT_TRUE(none.ItemInsert(7, -1, "&Sieben"));
    EXPECT_EQ(none.ItemFind(7), 0);
    none.Destroy();
    EXPECT_EQ(none.Handle(), nullptr);
}

TEST_F(Menus, TheLiveCountRisesWithTermAndNeverFallsBelowZero) {
    const int base = VntMenu::LiveCount();
    {
        VntMenu a, b(frame);
        EXPECT_EQ(VntMenu::LiveCount(), base + 2);
        EXPECT_TRUE(a.Term());
        EXPECT_EQ(VntMenu::LiveCount(), base + 3) << "Term counts like a construction";
    }
    EXPECT_EQ(VntMenu::LiveCount(), base + 1);
    vnt::wx::menuState().live = 0;
    { VntMenu c; }
    { VntMenu d; d.Term(); }
    EXPECT_EQ(VntMenu::LiveCount(), 1);
    vnt::wx::menuState().live = 0;
    { VntMenu e; vnt::wx::menuState().live = 0; }
    EXPECT_EQ(VntMenu::LiveCount(), 0) << "never below 0";
}

TEST_F(Menus, SystemMenuTextsFollowTheLanguage) {
    // German locales say "Strg", all others "Ctrl".
    for (const char* lang : {"DEU", "deu", "ENU", "FRA"}) {
        SCOPED_TRACE(lang);
        const std::string ctrl = std::string(lang) == "ENU" || std::string(lang) == "FRA" ? "Ctrl" : "Strg";
        language(lang);
        wxFrame* f = menuFrame();
        VntMenu sys(f, true, -1);
        ASSERT_TRUE(sys.IsValid());
        EXPECT_EQ(sys.ItemTextGet(VNT_SC_MAXIMIZE), static_cast<int>(("Ma&ximieren\t" + ctrl + "+F10").size()));
        EXPECT_EQ(sys.Text(), "Ma&ximieren\t" + ctrl + "+F10");
        sys.ItemTextGet(VNT_SC_RESTORE);
        EXPECT_EQ(sys.Text(), "&Wiederherstellen\t" + ctrl + "+F10");
        sys.ItemTextGet(VNT_SC_MINIMIZE);
        EXPECT_STREQ(sys.Text(), "Mi&nimieren\tF9");
        EXPECT_TRUE(sys.ItemExists(VNT_SC_TASKLIST));
        EXPECT_EQ(sys.StyleFlags() & VNT_MENU_MINIMIZE, VNT_MENU_MINIMIZE);
        f->Destroy();
    }
    // The library's language gives the words; the locale only the modifier.
    openLibrary(true);
    language("DEU");
    wxFrame* f = menuFrame();
    VntMenu sys(f, true, -1);
    EXPECT_EQ(items(sys.Menu()),
              "61728 &Restore\tCtrl+F10\n61456 &Move (off)\n61472 Mi&nimize\tF9\n61488 Ma&ximize\tCtrl+F10\n-\n"
              "61536 &Close\tAlt+F4\n-\n61744 S&witch To...\n");
    f->Destroy();
}

TEST_F(Menus, AWindowWithoutTheMaximiseStyleLosesItsMaximizeItemOnce) {
    wxFrame* f = menuFrame(wxDEFAULT_FRAME_STYLE & ~wxMAXIMIZE_BOX);
    VntMenu sys(f, true, -1);
    EXPECT_FALSE(sys.ItemExists(VNT_SC_MAXIMIZE));
    EXPECT_TRUE(sys.ItemExists(VNT_SC_MINIMIZE));
    const std::string first = items(sys.Menu());
    VntMenu again(f, true, -1);
    EXPECT_EQ(items(again.Menu()), first) << "binding twice changes nothing further";
    EXPECT_FALSE(sys.Maximize(true, 1)) << "not maximisable";
    // Neither box: the Minimize item goes too; style flags put them back.
    wxFrame* plain = menuFrame(wxCAPTION | wxCLOSE_BOX);
    VntMenu bare(plain, true, -1);
    EXPECT_FALSE(bare.ItemExists(VNT_SC_MINIMIZE));
    EXPECT_FALSE(bare.ItemExists(VNT_SC_MAXIMIZE));
    EXPECT_EQ(bare.StyleFlags(), 0);
    EXPECT_TRUE(bare.CloseOk());
    bare.ItemEnable(VNT_SC_CLOSE, 0);
    EXPECT_FALSE(bare.CloseOk()) << "Close disabled";
    VntMenu styled(plain, true, VNT_MENU_MAXIMIZE | VNT_MENU_MINIMIZE);
    EXPECT_TRUE(styled.ItemExists(VNT_SC_MINIMIZE));
    EXPECT_TRUE(styled.ItemExists(VNT_SC_MAXIMIZE));
    f->Destroy();
    plain->Destroy();
}

TEST_F(Menus, F9AndCtrlF10KeepTheFrameAndTheItemsInStep) {
    VntMenu sys(frame, true, -1);
    ASSERT_TRUE(sys.InstallSysKeys());
    for (wxWindow* c : frame->GetChildren())
        if (dynamic_cast<wxTextCtrl*>(c)) c->SetFocus();
    pump(30);
    auto state = [&] {
        return std::string(sys.IsMinimized() ? "min" : "") + (sys.IsMaximized() ? "max" : "") + " maxItem=" +
               (sys.ItemEnabled(VNT_SC_MAXIMIZE) ? "on" : "off") + " minItem=" +
               (sys.ItemEnabled(VNT_SC_MINIMIZE) ? "on" : "off") + " restore=" +
               (sys.ItemEnabled(VNT_SC_RESTORE) ? "on" : "off");
    };
    EXPECT_EQ(state(), " maxItem=on minItem=on restore=on");
    struct Row { const char* name; int code; int mods; const char* after; };
    const Row rows[] = {
        {"Ctrl+F10 maximises", WXK_F10, wxMOD_CONTROL, "max maxItem=off minItem=on restore=on"},
        {"Ctrl+F10 again restores", WXK_F10, wxMOD_CONTROL, " maxItem=on minItem=on restore=off"},
        {"F9 minimises", WXK_F9, wxMOD_NONE, "min maxItem=on minItem=off restore=on"},
        {"Ctrl+F10 from minimised maximises", WXK_F10, wxMOD_CONTROL, "max maxItem=off minItem=on restore=on"},
        {"Shift+F9 is not the key", WXK_F9, wxMOD_SHIFT, "max maxItem=off minItem=on restore=on"},
    };
    // Keys as the user types them, through the window's accelerators.
    for (const Row& r : rows) {
        wxUIActionSimulator().Char(r.code, r.mods);
        pump(60);
        EXPECT_EQ(state(), r.after) << r.name;
    }
    // DoSysKeys, for windows that pass their own key events, has the same rules.
    wxKeyEvent k(wxEVT_CHAR_HOOK);
    k.m_keyCode = WXK_F10;
    EXPECT_FALSE(sys.DoSysKeys(k)) << "F10 alone";
    k.m_controlDown = true;
    EXPECT_TRUE(sys.DoSysKeys(k));
    EXPECT_EQ(state(), " maxItem=on minItem=on restore=off") << "Ctrl+F10 restores the maximised frame";
    EXPECT_TRUE(sys.DoSysMenu(VNT_SC_MAXIMIZE));
    EXPECT_TRUE(sys.DoSysMenu(VNT_SC_RESTORE));
    EXPECT_EQ(state(), " maxItem=on minItem=on restore=off");
    EXPECT_FALSE(sys.DoSysMenu(VNT_SC_CLOSE));
    EXPECT_TRUE(sys.Minimize(false, 2));
    EXPECT_EQ(state(), "min maxItem=on minItem=off restore=on") << "mode 2 toggles";
}


// The screen's top-left part, with the menu that is open: read from the X
// server by ImageMagick's "import" (a screen DC repeats its first picture
// under Xvfb); the screen DC where "import" is missing.
std::string screenPicture(const wxSize& size, const std::string& name) {
    const std::string file = vnt::wxtest::shotDir() + "/" + name + ".png";
    const wxString cmd = wxString::Format("import -window root -crop %dx%d+0+0 +repage %s", size.x, size.y, file);
    wxArrayString out, err;
    if (wxExecute(cmd, out, err, wxEXEC_SYNC | wxEXEC_NODISABLE) == 0) return file;
    wxBitmap bmp(size);
    {
        wxScreenDC from;
        wxMemoryDC to(bmp);
        to.Blit(0, 0, size.x, size.y, &from, 0, 0);
    }
    return vnt::wxtest::savePicture(bmp, name);
}

TEST_F(Menus, PicturesOfAFrameWithItsSystemMenuInBothLanguages) {
    for (bool english : {false, true}) {
        openLibrary(english);
        language(english ? "ENU" : "DEU");
        wxFrame* f = menuFrame();
        f->SetTitle(english ? "Accounts" : "Fibu");
        if (english) {
            wxMenuBar* bar = f->GetMenuBar();
            bar->SetMenuLabel(0, "&File");
            bar->SetMenuLabel(1, "&View");
            bar->SetMenuLabel(2, "&Help");
        }
        f->Show();
        pump(50);
        VntMenu sys(f, true, -1);
        sys.Maximize(false, 1);  // as a maximised window shows it
        // The system menu opens at the frame's corner; the picture is taken
        // while it is open, then Escape closes it.
        wxMenu* menu = sys.Menu();
        std::string file;
        f->CallAfter([&] {
            pump(200);
            file = screenPicture(wxSize(420, 260), std::string("sysmenu_") + (english ? "ENU" : "DEU"));
            wxUIActionSimulator().Char(WXK_ESCAPE);
        });
        f->PopupMenu(menu, 10, 10);
        pump(50);
        std::printf("picture: %s\n", file.c_str());
        EXPECT_FALSE(file.empty());
        f->Destroy();
        pump(20);
    }
}

}  // namespace
