// The message box on wx (dialog 30061) driven through wx events: every box
// type's buttons give the model's answers, Escape and closing give the close
// answer, access keys and F1, the check box switches the message off in
// "Msg.ini", the details page at nesting level 2, copy to the clipboard and
// the context menu, 15 of 40 lines, the place per level; the platform's
// box for Vnt_MsgBox and for the third nested box.
#include "wx_support.h"

#include <filesystem>
#include <fstream>

#include <wx/modalhook.h>
#include <wx/msgdlg.h>
#include <wx/stattext.h>
#include <wx/uiaction.h>

#include "../scratch.h"
#include "msg/msg_internal.h"
#include "msg/msgbox_internal.h"
#include "msgbox.h"
#include "vanto/ui/help.h"
#include "vanto/ui/window.h"

namespace fs = std::filesystem;
using vnt::wx::MsgBoxDialog;
using vnt::wxtest::pump;

namespace {

using Step = std::function<void(MsgBoxDialog&)>;

/*
 * Sees every modal dialog: each box 30061 gets the next step once its loop
 * runs (and its model is kept); a platform box is answered at once with the
 * next plain answer, without showing, as a native dialog must be in tests.
 */
class Driver : public wxModalDialogHook {
public:
    Driver() { Register(); }
    ~Driver() override { Unregister(); }
    std::vector<Step> steps;
    std::vector<VntBoxModel> boxes;      // every box 30061 shown
    std::vector<wxPoint> places;         // where each opened
    std::vector<wxSize> sizes;           // and how big it was
    std::vector<int> plainAnswers;       // wxID_... of the platform boxes
    std::vector<std::string> plainTexts;

protected:
    int Enter(wxDialog* d) override {
        if (auto* m = dynamic_cast<wxMessageDialog*>(d)) {
            plainTexts.push_back(std::string(m->GetMessage().utf8_str()));
            const int a = plainAnswers.empty() ? wxID_OK : plainAnswers.front();
            if (!plainAnswers.empty()) plainAnswers.erase(plainAnswers.begin());
            return a;
        }
        if (auto* b = dynamic_cast<MsgBoxDialog*>(d)) {
            boxes.push_back(b->Model());
            places.push_back(b->GetPosition());
            sizes.push_back(b->GetSize());
            if (next_ < steps.size()) {
                Step s = steps[next_++];
                wxTheApp->CallAfter([b, s] { s(*b); });
            } else {
                wxTheApp->CallAfter([b] { ADD_FAILURE() << "unexpected box"; b->EndModal(VNT_BTN_CANCEL); });
            }
        }
        return wxID_NONE;
    }
    void Exit(wxDialog*) override {}

private:
    std::size_t next_ = 0;
};

// A click on a control, through the pointer.
void click(wxWindow* w) {
    pump(30);
    wxUIActionSimulator sim;
    sim.MouseMove(w->GetScreenRect().GetPosition() + w->GetSize() / 2);
    pump(10);
    sim.MouseClick();
}

// A key pressed while the box has the focus.
void key(MsgBoxDialog& b, int code, int mods = wxMOD_NONE) {
    b.Raise();
    if (wxWindow* f = b.FindWindow(b.Model().buttons.front().id)) f->SetFocus();
    pump(30);
    wxUIActionSimulator().Char(code, mods);
}

Step pressButton(int id) { return [id](MsgBoxDialog& b) { click(b.FindWindow(id)); }; }
Step pressKey(int code, int mods = wxMOD_NONE) { return [code, mods](MsgBoxDialog& b) { key(b, code, mods); }; }

std::string slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class MsgBoxes : public vnt::wxtest::WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        base_ = vnt::test::scratchDir("vanto_wx_msgbox_");
        fs::remove_all(base_), fs::create_directories(base_ / "prog");
        char prog[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(prog, (base_ / "prog" / "Fibu").c_str()));
        vnt::host::setProgramFile(prog);
        oldHelp_ = Vnt_UiSetHelp(&help);
        Vnt_MsgSetTitle("Fibu");
        vnt::msg::box::boxState().copyWaitMs = 0;
    }
    void TearDown() override {
        Vnt_UiSetHelp(oldHelp_);
        vnt::host::setProgramFile("");
        fs::remove_all(base_);
        WxTest::TearDown();
    }
    static VNT_RESP show(const char* text, VntMsgRef ref = 1234) {
        return vnt::msg::showBox({.text = text, .libName = "APPMSG", .ref = ref});
    }
    // The captions of the buttons the dialog shows, left to right.
    static std::string shownButtons(MsgBoxDialog& b) {
        std::vector<wxWindow*> shown;
        for (const VntBoxButton& m : b.Model().buttons)
            if (wxWindow* w = b.FindWindow(m.id); w && w->IsShown()) shown.push_back(w);
        std::sort(shown.begin(), shown.end(), [](wxWindow* x, wxWindow* y) { return x->GetPosition().x < y->GetPosition().x; });
        std::string s;
        for (wxWindow* w : shown) s += (s.empty() ? "" : " ") + std::string(w->GetLabel().utf8_str());
        return s;
    }
    Driver drive;
    VntHelpRecorder help;
    VntHelpPort* oldHelp_ = nullptr;
    fs::path base_;
};

TEST_F(MsgBoxes, EveryTypeAnswersAsTheModelSays) {
    struct Row { const char* text; const char* buttons; Step step; VNT_RESP answer; };
    std::string seen;
    const Row rows[] = {
        {"Nur Info", "&OK", pressButton(1), 1},
        {"!Achtung", "&OK &Abbrechen", pressButton(2), 2},
        {"!okNur OK", "&OK", pressKey(WXK_RETURN), 1},
        {"?Frage", "&Ja &Nein &Abbrechen", pressButton(7), 7},
        {"?Frage", "&Ja &Nein &Abbrechen", pressKey(WXK_ESCAPE), 2},
        {"#ynStop", "&Ja &Nein", pressKey(WXK_ESCAPE), 7},
        {"#ynStop", "&Ja &Nein", pressKey('j'), 1},
        {"!ariPlatte", "&Wiederholen &Ignorieren &Abbrechen", pressKey('i'), 7},
        {"!ariPlatte", "&Wiederholen &Ignorieren &Abbrechen", pressButton(3), 2},
        {"rcNochmal", "&Wiederholen &Abbrechen", pressKey('w', wxMOD_ALT), 1},
        {"?Speichern?|~Speichern|~Verwerfen", "&Speichern &Verwerfen", pressButton(7), 7},
        {"!Closed by the window manager", "&OK &Abbrechen", [](MsgBoxDialog& b) { b.Close(); }, 2},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.text);
        drive.steps.push_back([&, r](MsgBoxDialog& b) {
            seen = shownButtons(b);
            r.step(b);
        });
        EXPECT_EQ(show(r.text), r.answer);
        EXPECT_EQ(seen, r.buttons);
    }
}

TEST_F(MsgBoxes, HelpOpensAndTheBoxComesBack) {
    drive.steps = {pressKey(WXK_F1), pressButton(1)};
    EXPECT_EQ(show("h[42]okMit Hilfe"), 1);
    ASSERT_EQ(drive.boxes.size(), 2u);
    ASSERT_EQ(help.requests.size(), 1u);
    EXPECT_EQ(help.requests[0].command, VntHelpCommand::Context);
    EXPECT_EQ(help.requests[0].context, 42);
    EXPECT_EQ(drive.places[1], drive.places[0]) << "the box comes back where it was";
    EXPECT_EQ(drive.boxes[0].buttons.back().id, VNT_BTN_HELP) << "Help last";
}

TEST_F(MsgBoxes, CheckBoxSwitchesTheMessageOff) {
    drive.steps = {[](MsgBoxDialog& b) {
        ASSERT_NE(b.CheckBox(), nullptr);
        EXPECT_EQ(b.CheckBox()->GetId(), 200) << "the right-aligned one by default";
        EXPECT_GT(b.CheckBox()->GetPosition().y, b.FindWindow(101)->GetPosition().y);
        EXPECT_LT(b.CheckBox()->GetPosition().y, b.FindWindow(6)->GetPosition().y) << "above the buttons";
        click(b.CheckBox());
        pump(30);
        click(b.FindWindow(7));
    }};
    EXPECT_EQ(show("?xNicht mehr fragen?"), 7);
    EXPECT_EQ(slurp(base_ / "prog" / "USR" / "Std" / "Msg.ini"), "[Msg]\r\nAPPMSG.1234=0\r\n");
    EXPECT_EQ(show("?xNicht mehr fragen?"), 1) << "switched off: answered without a box";
    EXPECT_EQ(drive.boxes.size(), 1u);

    // Below the buttons and at the left; left unticked, nothing is written.
    drive.steps.push_back([](MsgBoxDialog& b) {
        EXPECT_EQ(b.CheckBox()->GetId(), 199);
        EXPECT_GT(b.CheckBox()->GetPosition().y, b.FindWindow(1)->GetPosition().y) << "below the buttons";
        click(b.FindWindow(1));
    });
    EXPECT_EQ(show("x.<Unten links", 4711), 1);
    EXPECT_EQ(slurp(base_ / "prog" / "USR" / "Std" / "Msg.ini"), "[Msg]\r\nAPPMSG.1234=0\r\n");
}

// The details page opens on level 2; a box raised while two are open is the platform's.
TEST_F(MsgBoxes, SupportOpensTheDetailsPageOnLevelTwoAndTheThirdBoxIsThePlatformBox) {
    vnt::wx::presenter()->ForgetPlaces();
    drive.steps = {pressButton(VNT_BTN_SUPPORT),
                   [](MsgBoxDialog& b) {
                       EXPECT_EQ(show("!Dritte"), VNT_RESP_NO);
                       click(b.FindWindow(1));
                   },
                   pressButton(1)};
    EXPECT_TRUE(Vnt__InternalError(true, 5, "Msg/Probe", 42));
    ASSERT_EQ(drive.boxes.size(), 3u);
    EXPECT_TRUE(drive.boxes[0].internalError && drive.boxes[0].level == 1);
    EXPECT_TRUE(drive.boxes[1].detailsMode && drive.boxes[1].level == 2);
    EXPECT_NE(drive.boxes[1].text.find("Msg/Probe"), std::string::npos) << drive.boxes[1].text;
    // The first box of each level is centred on the screen, the second level 30 pixels lower right.
    const wxSize screen = wxGetDisplaySize();
    for (int i : {0, 1}) {
        const wxPoint centre = drive.places[i] - wxPoint(30, 30) * i +
                               wxPoint(drive.sizes[i].x / 2, drive.sizes[i].y / 2);
        EXPECT_LE(std::abs(centre.x - screen.x / 2) + std::abs(centre.y - screen.y / 2), 2)
            << "level " << i + 1 << " at " << drive.places[i].x << "," << drive.places[i].y;
    }
    EXPECT_EQ(drive.places[2], drive.places[0]);
    ASSERT_EQ(drive.plainTexts.size(), 1u);
    EXPECT_NE(drive.plainTexts[0].find("Interner Fehler!"), std::string::npos) << drive.plainTexts[0];
}

TEST_F(MsgBoxes, CopyAndContextMenu) {
    drive.steps = {[](MsgBoxDialog& b) {
        std::unique_ptr<wxMenu> menu(b.ContextMenu());
        ASSERT_EQ(menu->GetMenuItemCount(), 2u);
        wxMenuItem* copy = menu->FindItem(MsgBoxDialog::kCopyId);
        EXPECT_EQ(copy->GetItemLabelText(), "Kopieren");
        std::unique_ptr<wxAcceleratorEntry> accel(copy->GetAccel());
        ASSERT_TRUE(accel) << "a shortcut wx understands";
        EXPECT_TRUE(accel->GetFlags() == wxACCEL_CTRL && accel->GetKeyCode() == 'C');
        EXPECT_EQ(std::string(menu->FindItem(MsgBoxDialog::kEditId)->GetItemLabel().utf8_str()), "Im Editor \xC3\xB6" "ffnen");
        key(b, 'C', wxMOD_CONTROL);
        pump(50);
        click(b.FindWindow(1));
    }};
    EXPECT_TRUE(Vnt__InternalError(true, 5, "Msg/Probe", 42));
    const std::string clip = Vnt_UiWindow().ClipboardText();
    EXPECT_EQ(clip, drive.boxes[0].text + "\n\n" + drive.boxes[0].details);
}

TEST_F(MsgBoxes, FortyLinesShowFifteen) {
    std::string text = "Zeile 1";
    for (int i = 2; i <= 40; ++i) text += "\nZeile " + std::to_string(i);
    int visible = 0;
    std::string last;
    drive.steps = {[&](MsgBoxDialog& b) {
        for (int id = 101; id <= 115; ++id) {
            auto* t = static_cast<wxStaticText*>(b.FindWindow(id));
            if (!t->IsShown()) continue;
            ++visible;
            last = std::string(t->GetLabel().utf8_str());
            EXPECT_LT(t->GetRect().GetBottom(), b.FindWindow(1)->GetPosition().y) << "lines above the buttons";
        }
        click(b.FindWindow(1));
    }};
    EXPECT_EQ(show(text.c_str()), 1);
    EXPECT_EQ(visible, 15);
    EXPECT_EQ(last, "Zeile 15");
}

TEST_F(MsgBoxes, EachLevelOpensWhereItWasLast) {
    drive.steps = {[](MsgBoxDialog& b) {
                       b.Move(123, 87);
                       pump(30);
                       click(b.FindWindow(1));
                   },
                   pressButton(1)};
    show("Erste");
    show("Zweite");
    ASSERT_EQ(drive.places.size(), 2u);
    EXPECT_EQ(drive.places[1], wxPoint(123, 87));
}

TEST_F(MsgBoxes, PlainBoxIsThePlatformBox) {
    struct Row { const char* text; int pressed; bool fixed; VNT_RESP answer; };
    for (const Row& r : {Row{"?ynSoll das %s?", wxID_YES, false, 1}, Row{"?ynSoll das %s?", wxID_NO, false, 7},
                         Row{"!ocAbbrechen %s?", wxID_CANCEL, false, 2}, Row{"!ariPlatte %s", wxID_NO, false, 7},
                         Row{"!ariPlatte %s", wxID_CANCEL, false, 2}, Row{"?ynFest %s", wxID_YES, true, 7}}) {
        SCOPED_TRACE(r.text);
        drive.plainAnswers = {r.pressed};
        drive.plainTexts.clear();
        const VNT_RESP got = r.fixed ? Vnt_MsgBox(r.text, nullptr, nullptr, true) : Vnt_MsgBox(r.text, "so");
        EXPECT_EQ(got, r.answer);
        ASSERT_EQ(drive.plainTexts.size(), 1u);
    }
    EXPECT_EQ(drive.plainTexts.back(), "Fest %s") << "no arguments: the text as it stands";
    EXPECT_TRUE(drive.boxes.empty());
}

}  // namespace
