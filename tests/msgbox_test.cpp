// The message box through the scripted presenter: the box model of each
// family of the prefix grammar, answers per box type, nesting and the plain
// fallback of a third box, the memory of switched-off messages in
// "Msg.ini", the details page behind Support, Help requests, the plain box
// with its fixed answers, and the copy and editor actions.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "host/host.h"
#include "msg/msg_ini.h"
#include "msg/msg_internal.h"
#include "msg/msgbox_internal.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/help.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
#include "vtmtool/vtm_writer.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kCheckbox = "Diese Meldung k\xFC" "nftig &nicht mehr anzeigen.";

std::string slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void put(const fs::path& p, const std::string& s) {
    fs::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary) << s;
}

// "&Ja(6) &Nein(7)": the buttons left to right.
std::string buttons(const VntBoxModel& m) {
    std::string s;
    for (const VntBoxButton& b : m.buttons) s += (s.empty() ? "" : " ") + b.caption + "(" + std::to_string(b.id) + ")";
    return s;
}

// A window system that remembers what the box asked of it.
class TestWindows final : public VntWindowPort {
public:
    long Send(VNT_HWND, unsigned, uintptr_t, intptr_t) override { return 0; }
    bool Post(VNT_HWND, unsigned, uintptr_t, intptr_t) override { return false; }
    bool IsWindow(VNT_HWND) override { return false; }
    void Destroy(VNT_HWND) override {}
    void Activate(VNT_HWND) override {}
    VNT_HWND Focus() override { return focus; }
    void SetFocus(VNT_HWND w) override { focusSet.push_back(w); }
    VNT_HWND ActiveWindow() override { return nullptr; }
    VNT_HWND MainWindow() override { return nullptr; }
    void PumpEvents() override {
        ++pumps;
        if (onPump) onPump();
    }
    void BusyCursor(bool on) override { busy += on ? "+" : "-"; }
    void Beep() override {}
    bool SetClipboardText(const std::string& text) override {
        clipboard = text;
        return true;
    }
    std::string ClipboardText() override { return clipboard; }

    VNT_HWND focus = nullptr;
    std::vector<VNT_HWND> focusSet;
    int pumps = 0;
    void (*onPump)() = nullptr;
    std::string busy, clipboard;
};

void resetAll() {
    vnt::vtm::reset();
    vnt::host::reset();
    vnt::host::faultReset();
    vnt::msg::resetTexts();
    vnt::msg::resetBox();
    vnt::msg::resetReports();
}

// The system library of these tests: the details template and help keys.
const std::vector<vtmtool::Message> kSystemTexts = {
    {62001, "Beschreibung: %s\nDatei: %s\nZeile: %d"},
    {62005, "Meldungsdetails"},
    {62006, "Meldungen"},
};

class MsgBox : public ::testing::Test {
protected:
    void SetUp() override {
        resetAll();
        base_ = fs::temp_directory_path() /
                ("vanto_msgbox_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(base_);
        fs::create_directories(base_ / "prog");
        char lib[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(lib, (base_ / "prog" / "Fibu").c_str()));
        vnt::host::setProgramFile(lib);
        oldPresenter_ = Vnt_UiSetPresenter(&box);
        oldHelp_ = Vnt_UiSetHelp(&help);
        oldWindow_ = Vnt_UiSetWindow(&win);
    }
    void TearDown() override {
        if (sys_) Vnt_MsgHTerm(&sys_);
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(oldPresenter_);
        Vnt_UiSetHelp(oldHelp_);
        Vnt_UiSetWindow(oldWindow_);
        resetAll();
        fs::remove_all(base_);
    }

    // Opens a system library of `texts` (none: a missing one) and sets the title.
    void startMessages(const std::vector<vtmtool::Message>* texts = &kSystemTexts) {
        const fs::path file = base_ / "VNT60LIB.VTM";
        if (texts) vtmtool::writeFileAtomic(file, vtmtool::writeLibrary({"VNT60LIB", 60, 1, -1, *texts}));
        char lib[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(lib, file.c_str()));
        ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, lib));
        if (texts) {
            sys_ = Vnt_MsgHInit();
            ASSERT_NE(sys_, nullptr);
        }
        Vnt_MsgSetTitle("Fibu");
        vnt::msg::box::boxState().copyWaitMs = 0;
        vnt::msg::box::boxState().editWaitMs = 0;
    }

    static VNT_RESP show(const char* text, VntMsgRef ref = 1234, const char* lib = "APPMSG") {
        vnt::msg::ShowRequest r;
        r.text = text;
        r.libName = lib;
        r.ref = ref;
        return vnt::msg::showBox(r);
    }

    fs::path msgIni() const { return base_ / "prog" / "USR" / "Std" / "Msg.ini"; }

    VntScriptedPresenter box;
    VntHelpRecorder help;
    TestWindows win;
    fs::path base_;

private:
    VntMsgPresenter* oldPresenter_ = nullptr;
    VntHelpPort* oldHelp_ = nullptr;
    VntWindowPort* oldWindow_ = nullptr;
    VNT_MSG sys_ = nullptr;
};

// ---------------------------------------------------------------------------
// The box model
// ---------------------------------------------------------------------------

TEST_F(MsgBox, ModelFollowsThePrefixGrammar) {
    startMessages();
    enum Mode { Normal, Report, Details };
    struct Row {
        const char* name;
        const char* text;
        Mode mode;
        long typeOverride, help;
        int icon;
        long type;
        const char* buttons;
        const char* shown;  // the first line
        int escape;
    };
    constexpr int I = VNT_ICON_INFORMATION, E = VNT_ICON_EXCLAMATION, Q = VNT_ICON_QUESTION, S = VNT_ICON_STOP;
    const char* ok = "&OK(1)";
    const char* okc = "&OK(1) &Abbrechen(2)";
    const char* ync = "&Ja(6) &Nein(7) &Abbrechen(2)";
    const char* yn = "&Ja(6) &Nein(7)";
    const Row rows[] = {
        // Icons and the buttons they default to.
        {"no prefix", "Hallo", Normal, -1, 0, I, 64, ok, "Hallo", 2},
        {"question", "?Speichern?", Normal, -1, 0, Q, 35, ync, "Speichern?", 2},
        {"exclamation", "!Achtung", Normal, -1, 0, E, 49, okc, "Achtung", 2},
        {"stop", "#Fehler", Normal, -1, 0, S, 16, ok, "Fehler", 2},
        {"information", "iHinweis", Normal, -1, 0, I, 64, ok, "Hinweis", 2},
        {"no icon", "-Ohne", Normal, -1, 0, VNT_ICON_NONE, 0, ok, "Ohne", 2},
        {"one & after the icon", "!&&Text", Normal, -1, 0, E, 49, okc, "&Text", 2},
        {"& without an icon character stays", "&okText", Normal, -1, 0, I, 64, ok, "&okText", 2},
        // Button codes.
        {"ok", "!okNur OK", Normal, -1, 0, E, 48, ok, "Nur OK", 2},
        {"okc", "iokcText", Normal, -1, 0, I, 65, okc, "Text", 2},
        {"oc", "?ocText", Normal, -1, 0, Q, 33, okc, "Text", 2},
        {"ari", "#ariText", Normal, -1, 0, S, 18, "&Wiederholen(4) &Ignorieren(5) &Abbrechen(3)", "Text", 2},
        {"rc", "!rcText", Normal, -1, 0, E, 53, "&Wiederholen(4) &Abbrechen(2)", "Text", 2},
        {"ync", "!yncText", Normal, -1, 0, E, 51, ync, "Text", 2},
        {"yn: closing is No", "#ynFehler", Normal, -1, 0, S, 20, yn, "Fehler", 7},
        {"o before a letter is dropped (kept)", "?oderText", Normal, -1, 0, Q, 35, ync, "derText", 2},
        {"o before a blank stays", "o Text", Normal, -1, 0, I, 64, ok, "o Text", 2},
        // Help part, before or after the code.
        {"h: contents", "hokText", Normal, -1, 0, I, 64 | 16384, "&OK(1) &Hilfe(9)", "Text", 2},
        {"h after the code", "?ynh[12]Text", Normal, -1, 0, Q, 36 | 16384, "&Ja(6) &Nein(7) &Hilfe(9)", "Text", 7},
        {"h keyword", "!h[Buchen]rcText", Normal, -1, 0, E, 53 | 16384, "&Wiederholen(4) &Abbrechen(2) &Hilfe(9)", "Text", 2},
        {"h without ] is the letter alone", "h[12", Normal, -1, 0, I, 64 | 16384, "&OK(1) &Hilfe(9)", "[12", 2},
        {"caller's help context", "Text", Normal, -1, 77, I, 64 | 16384, "&OK(1) &Hilfe(9)", "Text", 2},
        // Labels.
        {"three labels", "?Datei?|~Speichern|~Verwerfen|Zur\xFC" "ck", Normal, -1, 0, Q, 35,
         "&Speichern(6) &Verwerfen(7) Zur\xFC" "ck(2)", "Datei?", 2},
        {"two labels", "?Weiter?|~Weiter|~Stop", Normal, -1, 0, Q, 36, "&Weiter(6) &Stop(7)", "Weiter?", 7},
        {"one label, question: Cancel on No", "?Drucken?|~Drucken", Normal, -1, 0, Q, 36,
         "&Drucken(6) &Abbrechen(7)", "Drucken?", 7},
        {"one label, exclamation", "!Fertig|Schlie\xDF" "en", Normal, -1, 0, E, 52,
         "Schlie\xDF" "en(6) &Abbrechen(7)", "Fertig", 7},
        {"one label, information: on OK", "Info|~Gut", Normal, -1, 0, I, 64, "&Gut(1)", "Info", 2},
        {"more than three labels", "?a|b|c|d|e", Normal, -1, 0, Q, 35, "b(6) c(7) d(2)", "a", 2},
        {"labels: no button code is read", "?ynText|A|B", Normal, -1, 0, Q, 36, "A(6) B(7)", "ynText", 7},
        // Type override.
        {"override Yes/No", "?Frage", Normal, 4, 0, Q, 36, yn, "Frage", 7},
        {"override OK", "?Frage", Normal, 0, 0, Q, 32, ok, "Frage", 2},
        {"override with icon bits", "Text", Normal, 48 | 1, 0, E, 49, okc, "Text", 2},
        {"override with Help", "Text", Normal, 16384, 0, I, 64 | 16384, "&OK(1) &Hilfe(9)", "Text", 2},
        // Reports: OK and Support, the exclamation icon for '-', '?' and none.
        {"report", "Fehler", Report, -1, 0, E, 49, "&OK(1) &Support(100)", "Fehler", 2},
        {"report with '?'", "?ynFrage|A", Report, -1, 0, E, 52, "&OK(1) &Support(100)", "Frage|A", 2},
        {"report with '-'", "-Text", Report, -1, 0, E, 49, "&OK(1) &Support(100)", "Text", 2},
        {"report keeps stop", "#Text", Report, -1, 0, S, 16, "&OK(1) &Support(100)", "Text", 2},
        {"report with help", "!Text", Report, -1, 5, E, 49 | 16384, "&OK(1) &Support(100) &Hilfe(9)", "Text", 2},
        // The details page: information, OK and Help.
        {"details page", "!ynDetails", Details, -1, 0, I, 68 | 16384, "&OK(1) &Hilfe(9)", "Details", 2},
    };
    for (const Row& r : rows) {
        const VntBoxModel m = Vnt_MsgBoxModel(r.text, r.mode == Report, r.mode == Details, r.typeOverride, r.help);
        EXPECT_EQ(m.icon, r.icon) << r.name;
        EXPECT_EQ(m.type, r.type) << r.name;
        EXPECT_EQ(buttons(m), r.buttons) << r.name;
        ASSERT_FALSE(m.lines.empty()) << r.name;
        EXPECT_EQ(m.lines[0], r.shown) << r.name;
        EXPECT_EQ(m.escapeButton, r.escape) << r.name;
        EXPECT_EQ(m.title, "Fibu") << r.name;
        EXPECT_FALSE(m.checkbox) << r.name;
    }
}

TEST_F(MsgBox, ModelCheckboxAndHelpTarget) {
    startMessages();
    struct Row {
        const char* name;
        const char* text;
        bool report;
        bool checkbox, below, left;
        const char* shown;
        long helpContext;
        const char* keyword;
    };
    const Row rows[] = {
        {"checkbox: above, right", "?xWirklich?", false, true, false, false, "Wirklich?", 0, ""},
        {"below and left", "?x.<Text", false, true, true, true, "Text", 0, ""},
        {"key, then above and right", "!x[Nr7]^>Text", false, true, false, false, "Text", 0, ""},
        {"a third layout character is text", "x<.^Text", false, true, true, true, "^Text", 0, ""},
        {"layout without a checkbox is text", "?.Text", false, false, false, false, ".Text", 0, ""},
        {"after & and before the code", "!&xokText", false, true, false, false, "Text", 0, ""},
        {"a report cannot be switched off", "xText", true, false, false, false, "Text", 0, ""},
        {"help contents", "hText", false, false, false, false, "Text", -1, ""},
        {"help context", "h[42]Text", false, false, false, false, "Text", 42, ""},
        {"help keyword, 39 characters kept", "h[0123456789012345678901234567890123456789X]ok Text", false,
         false, false, false, " Text", 0, "012345678901234567890123456789012345678"},
    };
    for (const Row& r : rows) {
        const VntBoxModel m = Vnt_MsgBoxModel(r.text, r.report);
        EXPECT_EQ(m.checkbox, r.checkbox) << r.name;
        EXPECT_EQ(m.checkboxBelow, r.below) << r.name;
        EXPECT_EQ(m.checkboxLeft, r.left) << r.name;
        EXPECT_EQ(m.checkboxCaption, r.checkbox ? kCheckbox : "") << r.name;
        ASSERT_EQ(m.lines.size(), 1u) << r.name;
        EXPECT_EQ(m.lines[0], r.shown) << r.name;
        EXPECT_EQ(m.helpContext, r.helpContext) << r.name;
        EXPECT_EQ(m.helpKeyword, r.keyword) << r.name;
    }
    // The caller's context is the message's own and wins over the text's.
    EXPECT_EQ(Vnt_MsgBoxModel("h[5]Text", false, false, -1, 77).helpContext, 77);
}

TEST_F(MsgBox, ModelBreaksTheTextIntoLines) {
    startMessages();
    // (A text must not begin with a control letter such as "x".)
    const std::string w9 = "abcdefgh ";  // nine characters with the blank
    std::string fifteen;
    for (int i = 1; i <= 20; ++i) fifteen += "Zeile " + std::to_string(i) + "\n";
    struct Row {
        const char* name;
        std::string text;
        std::vector<std::string> lines;
    };
    const Row rows[] = {
        {"empty", "", {}},
        {"line feeds always break", "a\nb\r\nc", {"a", "b", "c"}},
        {"empty lines inside stay, at the end go", "a\n\nb\n\n", {"a", "", "b"}},
        {"79 characters fit", std::string(79, 'v'), {std::string(79, 'v')}},
        {"at the last blank within 79", std::string(70, 'v') + " " + std::string(8, 'y') + " zz",
         {std::string(70, 'v') + " " + std::string(8, 'y'), "zz"}},
        {"blank right after 79 characters", std::string(79, 'v') + "  next", {std::string(79, 'v'), "next"}},
        {"a word over the width is cut", std::string(100, 'w'), {std::string(79, 'w'), std::string(21, 'w')}},
        {"words over several lines", w9 + w9 + w9 + w9 + w9 + w9 + w9 + w9 + w9 + "end",
         {(w9 + w9 + w9 + w9 + w9 + w9 + w9 + w9).substr(0, 71), "abcdefgh end"}},
        {"prefix is not shown", "?ynErste\nZweite", {"Erste", "Zweite"}},
    };
    for (const Row& r : rows) EXPECT_EQ(Vnt_MsgBoxModel(r.text.c_str()).lines, r.lines) << r.name;

    const VntBoxModel m = Vnt_MsgBoxModel(fifteen.c_str());
    ASSERT_EQ(m.lines.size(), 15u);
    EXPECT_EQ(m.lines.back(), "Zeile 15");
    EXPECT_EQ(m.text, fifteen) << "the whole text stays for copying";
    for (const std::string& l : Vnt_MsgBoxModel(std::string(2000, 'q').c_str()).lines) EXPECT_LE(l.size(), 79u);
}

// ---------------------------------------------------------------------------
// Answers
// ---------------------------------------------------------------------------

TEST_F(MsgBox, AnswersMapToOkCancelAndNo) {
    startMessages();
    constexpr int kUnknown = 42;
    struct Row {
        const char* text;
        int pressed;
        VNT_RESP expected;
    };
    const Row rows[] = {
        {"okText", VNT_BTN_OK, 1},         {"okText", VNT_BTN_CANCEL, 2},  // closed
        {"okcText", VNT_BTN_OK, 1},        {"okcText", VNT_BTN_CANCEL, 2},
        {"ariText", VNT_BTN_ABORT, 2},     {"ariText", VNT_BTN_RETRY, 1},  {"ariText", VNT_BTN_IGNORE, 7},
        {"ariText", VNT_BTN_CANCEL, 2},    {"yncText", VNT_BTN_YES, 1},    {"yncText", VNT_BTN_NO, 7},
        {"yncText", VNT_BTN_CANCEL, 2},    {"ynText", VNT_BTN_YES, 1},     {"ynText", VNT_BTN_NO, 7},
        {"ynText", VNT_BTN_CANCEL, 7},     {"rcText", VNT_BTN_RETRY, 1},   {"rcText", VNT_BTN_CANCEL, 2},
        {"?Los?|~Los", VNT_BTN_NO, 7},     {"?Los?|~Los", VNT_BTN_CANCEL, 7},
        {"ynText", kUnknown, 7},           {"okcText", kUnknown, 2},
        {"okText", VNT_BTN_SUPPORT, 2},  // no Support button: as closing
    };
    for (const Row& r : rows) {
        box.answers = {{r.pressed, false}};
        EXPECT_EQ(show(r.text), r.expected) << r.text << " pressed " << r.pressed;
    }
    EXPECT_EQ(box.shown.size(), std::size(rows)) << "one box each";
}

TEST_F(MsgBox, BoxThatCannotOpenAnswersMinusOne) {
    startMessages();
    win.focus = reinterpret_cast<VNT_HWND>(0x5a5a);
    box.failNext = true;
    EXPECT_EQ(show("?Frage"), -1);
    ASSERT_EQ(box.plainShown.size(), 1u);
    EXPECT_EQ(box.plainShown[0].text, "Vnt_Msg-Interface: Internal Error 302");
    EXPECT_EQ(box.plainShown[0].title, "Vnt_Msg-Interface");
    EXPECT_EQ(win.focusSet, std::vector<VNT_HWND>{win.focus}) << "the focus goes back all the same";
    // The level was given back: two boxes can open again.
    box.answers = {{VNT_BTN_YES, false}};
    EXPECT_EQ(show("?Frage"), 1);
}

TEST_F(MsgBox, DefaultButtonIndexReachesThePresenter) {
    startMessages();
    for (int asked : {2, 5, -1}) {
        vnt::msg::ShowRequest r;
        r.text = "?Frage";
        r.defaultButton = asked;
        vnt::msg::showBox(r);
        EXPECT_EQ(box.shown.back().defaultButton, asked == 2 ? 2 : -1) << asked;
    }
}

// ---------------------------------------------------------------------------
// Nesting
// ---------------------------------------------------------------------------

VNT_RESP nestedAnswer = 0;
VNT_RESP thirdAnswer = 0;

TEST_F(MsgBox, SecondBoxNestsAndThirdFallsBackToThePlainBox) {
    startMessages();
    nestedAnswer = thirdAnswer = 0;
    box.during = [](const VntBoxModel& m) {
        if (m.level == 1) {
            nestedAnswer = show("?ynInnen");
        } else {
            vnt::msg::ShowRequest r;
            r.text = "Dritte";
            r.sourceFile = "Msg/Probe";
            r.line = 33;
            thirdAnswer = vnt::msg::showBox(r);
        }
    };
    box.answers = {{VNT_BTN_NO, false}, {VNT_BTN_OK, false}};  // the inner box first
    EXPECT_EQ(show("Aussen"), 1);
    EXPECT_EQ(nestedAnswer, 7);
    EXPECT_EQ(thirdAnswer, 7);
    ASSERT_EQ(box.shown.size(), 2u);
    EXPECT_EQ(box.shown[0].level, 1);
    EXPECT_EQ(box.shown[1].level, 2);
    ASSERT_EQ(box.plainShown.size(), 1u);
    EXPECT_EQ(box.plainShown[0].text,
              "Interner Fehler! (Msg/Probe / 33). Bitte schlie\xDF" "en Sie das Programm und starten Sie es neu.");
    EXPECT_EQ(box.plainShown[0].type, 48);
    EXPECT_EQ(box.plainShown[0].title, "");

    // English strings; a third box without a source file.
    box = VntScriptedPresenter{};
    box.during = [](const VntBoxModel& m) { thirdAnswer = m.level == 1 ? show("Zwei") : show("Drei"); };
    Vnt_ResSetLanguage("ENU");
    EXPECT_EQ(show("Eins"), 1);
    Vnt_ResSetLanguage("DEU");
    ASSERT_EQ(box.plainShown.size(), 1u);
    EXPECT_EQ(box.plainShown[0].text,
              "Internal Error! ((unknown) / 0). Please close and restart the application.");
}

// ---------------------------------------------------------------------------
// Switched-off messages
// ---------------------------------------------------------------------------

TEST_F(MsgBox, TickedCheckboxSwitchesTheMessageOff) {
    startMessages();
    box.answers = {{VNT_BTN_YES, true}};
    EXPECT_EQ(show("?xWirklich?"), 1);
    EXPECT_EQ(slurp(msgIni()), "[Msg]\r\nAPPMSG.1234=0\r\n");
    // Switched off: answered 1 without a box, for any button it had.
    EXPECT_EQ(show("?xWirklich?"), 1);
    EXPECT_EQ(box.shown.size(), 1u);
    // Another message of the same library still shows.
    box.answers = {{VNT_BTN_NO, false}};
    EXPECT_EQ(show("?xAndere?", 1235), 7);
    EXPECT_EQ(box.shown.size(), 2u);
    EXPECT_EQ(slurp(msgIni()), "[Msg]\r\nAPPMSG.1234=0\r\n") << "unticked writes nothing";
    // Cancel with the checkbox ticked is one of the buttons 1..7 too.
    box.answers = {{VNT_BTN_CANCEL, true}};
    EXPECT_EQ(show("?xAndere?", 1235, "VNT60LIB"), 2);
    EXPECT_EQ(slurp(msgIni()), "[Msg]\r\nAPPMSG.1234=0\r\nVNT60LIB.1235=0\r\n");
    // Without the checkbox marker the memory is not asked.
    EXPECT_EQ(show("?Wirklich?"), 1);
    EXPECT_EQ(box.shown.size(), 4u);
}

TEST_F(MsgBox, MemoryIsReadAsTheFileSays) {
    startMessages();
    struct Row {
        const char* name;
        const char* file;
        bool off;
    };
    const Row rows[] = {
        {"0", "[Msg]\nAPPMSG.1234=0\n", true},
        {"case and blanks", "[ msg ]\r\n  appmsg.1234 =  0  \r\n", true},
        {"00 reads 0", "[Msg]\nAPPMSG.1234=00\n", true},
        {"1 shows", "[Msg]\nAPPMSG.1234=1\n", false},
        {"empty shows", "[Msg]\nAPPMSG.1234=\n", false},
        {"text shows", "[Msg]\nAPPMSG.1234=aus\n", false},
        {"first key wins", "[Msg]\nAPPMSG.1234=1\nAPPMSG.1234=0\n", false},
        {"first section wins", "[Msg]\nX=1\n[Msg]\nAPPMSG.1234=0\n", false},
        {"other section", "[Other]\nAPPMSG.1234=0\n", false},
        {"comment", "[Msg]\n;APPMSG.1234=0\n", false},
        {"other library", "[Msg]\nVNT60LIB.1234=0\n", false},
    };
    for (const Row& r : rows) {
        put(msgIni(), r.file);
        box.shown.clear();
        box.answers = {{VNT_BTN_NO, false}};
        EXPECT_EQ(show("?xFrage"), r.off ? 1 : 7) << r.name;
        EXPECT_EQ(box.shown.size(), r.off ? 0u : 1u) << r.name;
    }
}

TEST_F(MsgBox, LiteralTextWithCheckboxIsReportedAndUsesIdZero) {
    startMessages();
    box.answers = {{VNT_BTN_OK, false}, {VNT_BTN_YES, true}};  // the report, then the box
    EXPECT_EQ(show("?xLiteral", "?xLiteral"), 1);
    ASSERT_EQ(box.shown.size(), 2u);
    const VntBoxModel& report = box.shown[0];
    EXPECT_TRUE(report.internalError);
    EXPECT_EQ(report.level, 2);
    EXPECT_EQ(report.text, "Internal error (301): Checkbox messages MUST use a message ID (not a string address).");
    EXPECT_EQ(report.details, "Beschreibung: (unknown)\nDatei: Msg/DlgMsg\nZeile: 1703");
    EXPECT_EQ(slurp(msgIni()), "[Msg]\r\nAPPMSG.0=0\r\n");
}

TEST_F(MsgBox, MemoryThatCannotBeWrittenLeavesTheAnswer) {
    startMessages();
    put(base_ / "prog" / "USR", "a file where the directory belongs");
    box.answers = {{VNT_BTN_YES, true}};
    EXPECT_EQ(show("?xFrage"), 1);
    EXPECT_FALSE(fs::exists(msgIni()));
}

// The profile read and write behind the memory.
TEST_F(MsgBox, ProfileWriteKeepsTheRestOfTheFile) {
    startMessages();
    struct Row {
        const char* name;
        const char* before;  // null: no file
        const char* after;
    };
    const Row rows[] = {
        {"new file", nullptr, "[Msg]\r\nK.1=0\r\n"},
        {"empty file", "", "[Msg]\r\nK.1=0\r\n"},
        {"section at the end", "[Other]\nA=1", "[Other]\r\nA=1\r\n[Msg]\r\nK.1=0\r\n"},
        {"key after the section's last line", "[Msg]\nA=1\n\n[Other]\nB=2\n",
         "[Msg]\r\nA=1\r\nK.1=0\r\n\r\n[Other]\r\nB=2\r\n"},
        {"replaced, in the writer's spelling", "[msg]\r\n k.1 = 1 \r\n", "[msg]\r\nK.1=0\r\n"},
        {"first of two", "[Msg]\nK.1=1\n[Msg]\nK.1=2\n", "[Msg]\r\nK.1=0\r\n[Msg]\r\nK.1=2\r\n"},
        {"comments stay", "; Kommentar\n[Msg]\n;K.1=5\nX", "; Kommentar\r\n[Msg]\r\n;K.1=5\r\nX\r\nK.1=0\r\n"},
    };
    std::string path;
    ASSERT_TRUE(vnt::msg::ini::msgIniPath(path));
    for (const Row& r : rows) {
        fs::remove_all(base_ / "prog" / "USR");
        if (r.before) put(msgIni(), r.before);
        EXPECT_TRUE(vnt::msg::ini::write(path.c_str(), "Msg", "K.1", "0")) << r.name;
        EXPECT_EQ(slurp(msgIni()), r.after) << r.name;
        std::string v;
        EXPECT_TRUE(vnt::msg::ini::read(path.c_str(), "MSG", "k.1", v) && v == "0") << r.name;
    }
    // Refused: names that would break the file; the file stays as it was.
    const std::string before = slurp(msgIni());
    const struct { const char *sec, *key, *val; } bad[] = {
        {"Msg", "a=b", "0"}, {"Msg", "a\nb", "0"}, {"M]sg", "a", "0"},
        {"Msg", "a", "0\r\n[X]"}, {"", "a", "0"}, {"Msg", " ", "0"}};
    for (const auto& b : bad) EXPECT_FALSE(vnt::msg::ini::write(path.c_str(), b.sec, b.key, b.val)) << b.key;
    EXPECT_EQ(slurp(msgIni()), before);
    std::string v;
    EXPECT_FALSE(vnt::msg::ini::read(path.c_str(), "Msg", "missing", v));
    EXPECT_FALSE(vnt::msg::ini::read((path + "x").c_str(), "Msg", "K.1", v));
}

TEST_F(MsgBox, ProfileWriteFailsCleanly) {
    startMessages();
    std::string path;
    ASSERT_TRUE(vnt::msg::ini::msgIniPath(path));
    put(msgIni(), "[Msg]\r\nA=1\r\n");
    // The second open is the new file's: the first reads the old one.
    const struct { vnt::host::Op op; int nth; } faults[] = {
        {vnt::host::Op::Open, 2}, {vnt::host::Op::Write, 1}, {vnt::host::Op::Rename, 1}};
    for (const auto [op, nth] : faults) {
        vnt::host::faultAt(op, nth);
        EXPECT_FALSE(vnt::msg::ini::write(path.c_str(), "Msg", "B", "0")) << int(op);
        vnt::host::faultReset();
        EXPECT_EQ(slurp(msgIni()), "[Msg]\r\nA=1\r\n") << int(op);
        int files = 0;
        for (const auto& e : fs::directory_iterator(msgIni().parent_path())) files += e.is_regular_file();
        EXPECT_EQ(files, 1) << "no temporary file left after " << int(op);
    }
    // A file that cannot be read is not replaced by one holding only the key.
    fs::remove(msgIni());
    fs::create_directories(msgIni());
    EXPECT_FALSE(vnt::msg::ini::write(path.c_str(), "Msg", "B", "0"));
    EXPECT_TRUE(fs::is_directory(msgIni()));
}

// ---------------------------------------------------------------------------
// Details page and Help
// ---------------------------------------------------------------------------

TEST_F(MsgBox, SupportShowsTheDetailsPageThenTheReportAgain) {
    startMessages();
    vnt::msg::ShowRequest r;
    r.text = "Datei kaputt";
    r.internalError = true;
    r.description = "Kopf fehlt";
    r.sourceFile = "Msg/Probe.cpp";
    r.line = 42;
    // Support, then Help and OK on the details page, then OK on the report.
    box.answers = {{VNT_BTN_SUPPORT, false}, {VNT_BTN_HELP, false}, {VNT_BTN_OK, false}, {VNT_BTN_OK, false}};
    EXPECT_EQ(vnt::msg::showBox(r), 1);
    ASSERT_EQ(box.shown.size(), 4u);
    const std::string details = "Beschreibung: Kopf fehlt\nDatei: Msg/Probe.cpp\nZeile: 42";
    EXPECT_EQ(box.shown[0].details, details);
    const VntBoxModel& page = box.shown[1];
    EXPECT_TRUE(page.detailsMode);
    EXPECT_EQ(page.level, 2);
    EXPECT_EQ(page.icon, VNT_ICON_INFORMATION);
    EXPECT_EQ(buttons(page), "&OK(1) &Hilfe(9)");
    EXPECT_EQ(page.lines, (std::vector<std::string>{"Beschreibung: Kopf fehlt", "Datei: Msg/Probe.cpp", "Zeile: 42"}));
    EXPECT_TRUE(box.shown[2].detailsMode) << "the page again after Help";
    EXPECT_TRUE(box.shown[3].internalError && box.shown[3].level == 1) << "then the report again";
    ASSERT_EQ(help.requests.size(), 1u);
    EXPECT_EQ(help.requests[0].command, VntHelpCommand::Key);
    EXPECT_EQ(help.requests[0].key, "Meldungsdetails");

    // Without description and file the defaults stand in.
    box = VntScriptedPresenter{};
    vnt::msg::ShowRequest bare;
    bare.text = "x";
    bare.internalError = true;
    vnt::msg::showBox(bare);
    EXPECT_EQ(box.shown[0].details, "Beschreibung: (unknown)\nDatei: (unknown)\nZeile: 0");
}

TEST_F(MsgBox, DetailsTemplateFallsBackToTheSupportText) {
    // A template whose directives do not fit the arguments is not used.
    const std::vector<vtmtool::Message> wrong = {{62001, "Zeile %d in %s"}};
    startMessages(&wrong);
    vnt::msg::ShowRequest r;
    r.text = "Fehler";
    r.internalError = true;
    r.description = "Kopf fehlt";
    r.sourceFile = "Msg/Probe.cpp";
    r.line = 42;
    vnt::msg::showBox(r);
    ASSERT_EQ(box.shown.size(), 1u);
    const std::string& d = box.shown[0].details;
    EXPECT_EQ(d.rfind("Bei wiederholtem Auftreten", 0), 0u) << d;
    EXPECT_NE(d.find("\n\nKopf fehlt\n\nQuelldatei/Zeile: Msg/Probe.cpp/42"), std::string::npos) << d;
}

TEST_F(MsgBox, WithoutSystemLibraryTheBoxStillShows) {
    // Fetching the template reports the missing library; that report comes
    // while the template is being fetched and answers 1 without a box.
    startMessages(nullptr);
    vnt::msg::ShowRequest r;
    r.text = "!Achtung";
    r.sourceFile = "Msg/Probe.cpp";
    r.line = 9;
    box.answers = {{VNT_BTN_CANCEL, false}};
    EXPECT_EQ(vnt::msg::showBox(r), 2);
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_EQ(box.shown[0].lines, std::vector<std::string>{"Achtung"});
    EXPECT_NE(box.shown[0].details.find("Quelldatei/Zeile: Msg/Probe.cpp/9"), std::string::npos);
}

TEST_F(MsgBox, HelpButtonOpensTheProgramsHelp) {
    startMessages();
    struct Row {
        const char* name;
        const char* text;
        long helpContext, typeOverride;
        VntHelpCommand command;
        long context;
        const char* key;
    };
    const Row rows[] = {
        {"contents", "hText", 0, -1, VntHelpCommand::Contents, 0, ""},
        {"context of the text", "h[42]Text", 0, -1, VntHelpCommand::Context, 42, ""},
        {"keyword", "h[Buchen]Text", 0, -1, VntHelpCommand::PartialKey, 0, "Buchen"},
        {"context of the caller", "Text", 7, -1, VntHelpCommand::Context, 7, ""},
        {"caller's contents", "Text", -1, -1, VntHelpCommand::Contents, 0, ""},
        {"no context at all", "Text", 0, 16384, VntHelpCommand::Key, 0, "Meldungen"},
    };
    std::string file;
    ASSERT_TRUE(Vnt_HelpFileName(file));
    EXPECT_EQ(file.substr(file.size() - 15), "\\prog\\Fibu.html");
    for (const Row& r : rows) {
        help.requests.clear();
        box.answers = {{VNT_BTN_HELP, false}, {VNT_BTN_OK, false}};
        vnt::msg::ShowRequest q;
        q.text = r.text;
        q.helpContext = r.helpContext;
        q.typeOverride = r.typeOverride;
        EXPECT_EQ(vnt::msg::showBox(q), 1) << r.name;
        ASSERT_EQ(help.requests.size(), 1u) << r.name;
        EXPECT_EQ(help.requests[0].file, file) << r.name;
        EXPECT_EQ(help.requests[0].command, r.command) << r.name;
        EXPECT_EQ(help.requests[0].context, r.context) << r.name;
        EXPECT_EQ(help.requests[0].key, r.key) << r.name;
    }
    // Help pressed on a box without a Help button ends it as closing does.
    help.requests.clear();
    box.answers = {{VNT_BTN_HELP, false}};
    EXPECT_EQ(show("ynText"), 7);
    EXPECT_TRUE(help.requests.empty());
}

// ---------------------------------------------------------------------------
// The plain box
// ---------------------------------------------------------------------------

VNT_RESP plainWithArgs(bool fixed, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    VNT_RESP r = Vnt_MsgBox(fmt, reinterpret_cast<char*>(&args), nullptr, fixed);
    va_end(args);
    return r;
}

TEST_F(MsgBox, PlainBoxTakesIconAndCodeAndFormats) {
    startMessages();
    box.plainAnswers = {VNT_BTN_NO};
    EXPECT_EQ(Vnt_MsgBox("?ynWeiter mit %d von %s?", 5, "7"), 7);
    ASSERT_EQ(box.plainShown.size(), 1u);
    EXPECT_EQ(box.plainShown[0].text, "Weiter mit 5 von 7?");
    EXPECT_EQ(box.plainShown[0].type, 4 | 32);
    EXPECT_EQ(box.plainShown[0].title, "Fibu") << "the box title fills the empty application title";
    EXPECT_STREQ(Vnt_MsgBoxAppTitle(nullptr), "Fibu");

    struct Row {
        const char* text;
        const char* shown;
        long type;
    };
    const Row rows[] = {
        {"-Ohne Symbol", "Ohne Symbol", 0},  {"!Achtung", "Achtung", 1 | 48},  {"?Frage", "Frage", 3 | 32},
        {"#ariStop", "Stop", 2 | 16},        {"Zu 100% sicher", "Zu 100% sicher", 64},
        {"x.<Text", "x.<Text", 64},  // the plain box knows no checkbox
    };
    for (const Row& r : rows) {
        box.plainShown.clear();
        Vnt_MsgBox(r.text, nullptr, nullptr, false);
        ASSERT_EQ(box.plainShown.size(), 1u) << r.text;
        EXPECT_EQ(box.plainShown[0].text, r.shown) << r.text;
        EXPECT_EQ(box.plainShown[0].type, r.type) << r.text;
    }

    box.plainShown.clear();
    EXPECT_EQ(plainWithArgs(false, "!okSoll %s %d?", "Zeile", 12), 1);
    EXPECT_EQ(box.plainShown.at(0).text, "Soll Zeile 12?");
    const std::string longArg(3000, 'a');
    Vnt_MsgBox("%s", longArg.c_str());
    EXPECT_EQ(box.plainShown.back().text.size(), 1023u);

    Vnt_MsgBoxAppTitle("Buchhaltung");
    Vnt_MsgBox("Text", nullptr, nullptr, false);
    EXPECT_EQ(box.plainShown.back().title, "Buchhaltung");
    EXPECT_EQ(std::string(Vnt_MsgBoxAppTitle(std::string(200, 't').c_str())).size(), 119u);
}

TEST_F(MsgBox, PlainBoxFixedAnswerAndFailure) {
    startMessages();
    // Kept for compatibility: with a fixed answer the button does not count.
    const struct { const char* text; VNT_RESP fixed; } rows[] = {
        {"okA", 7}, {"okcA", 2}, {"ariA", 2}, {"yncA", 2}, {"ynA", 7}, {"rcA", 2},
    };
    for (const auto& r : rows) {
        box.plainAnswers = {VNT_BTN_OK};
        EXPECT_EQ(Vnt_MsgBox(r.text, nullptr, nullptr, true), r.fixed) << r.text;
        box.plainAnswers = {VNT_BTN_YES};
        EXPECT_EQ(Vnt_MsgBox(r.text, nullptr, nullptr, false), 1) << r.text;
    }
    box.plainAnswers = {VNT_BTN_CANCEL};
    EXPECT_EQ(Vnt_MsgBox("ynA", nullptr, nullptr, false), 7) << "closing a Yes/No box is No";
    box.plainAnswers = {0};
    EXPECT_EQ(Vnt_MsgBox("okA", nullptr, nullptr, false), -1);
}

// ---------------------------------------------------------------------------
// Copy and editor
// ---------------------------------------------------------------------------

TEST_F(MsgBox, CopyPutsTextAndDetailsOnTheClipboard) {
    startMessages();
    VntBoxModel m = Vnt_MsgBoxModel("!okZeile 1\nZeile 2");
    m.details = "Datei: x.cpp";
    EXPECT_TRUE(Vnt_MsgBoxCopy(m));
    EXPECT_EQ(win.clipboard, "Zeile 1\nZeile 2\n\nDatei: x.cpp");
    EXPECT_EQ(win.busy, "+-");
    EXPECT_GE(win.pumps, 1);
}

fs::path editorOut;

TEST_F(MsgBox, EditorGetsTheTextInATemporaryFile) {
    startMessages();
    // A desktop opener that copies the file it is given.
    const fs::path bin = base_ / "bin";
    editorOut = base_ / "opened.txt";
    put(bin / "xdg-open", "#!/bin/sh\ncp \"$1\" \"" + editorOut.string() + ".part\" && mv \"" + editorOut.string() +
                              ".part\" \"" + editorOut.string() + "\"\n");
    fs::permissions(bin / "xdg-open", fs::perms::owner_all);
    const char* oldPath = std::getenv("PATH");
    const std::string savedPath = oldPath ? oldPath : "";
    ::setenv("PATH", (bin.string() + ":/usr/bin:/bin").c_str(), 1);
    // Events are pumped while the editor reads: wait there until it has.
    win.onPump = [] {
        for (int i = 0; i < 1000 && !fs::exists(editorOut); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    };
    VntBoxModel m = Vnt_MsgBoxModel("#Fehler \xE4 1");
    m.details = "Zeile: 3";
    EXPECT_TRUE(Vnt_MsgBoxEdit(m));
    EXPECT_EQ(slurp(editorOut), "Fehler \xE4 1\n\nZeile: 3");
    EXPECT_TRUE(fs::is_directory(base_ / "prog" / "TEMP"));
    EXPECT_FALSE(fs::exists(base_ / "prog" / "TEMP" / "VantoErr.tmp")) << "removed after the wait";
    EXPECT_EQ(win.busy, "+-");

    // Without an opener: false, and no file stays behind.
    ::setenv("PATH", (base_ / "prog").c_str(), 1);
    win.onPump = nullptr;
    EXPECT_FALSE(Vnt_MsgBoxEdit(m));
    EXPECT_FALSE(fs::exists(base_ / "prog" / "TEMP" / "VantoErr.tmp"));
    ::setenv("PATH", savedPath.c_str(), 1);
}

}  // namespace
