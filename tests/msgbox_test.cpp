// The message box through the scripted presenter: the box model of the
// prefix grammar, answers, nesting and the third-box fallback, the memory of
// switched-off messages in "Msg.ini", the details page behind Support, Help,
// the plain box and the copy and editor actions.
#include <gtest/gtest.h>

#include "support.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "msg/msgbox_internal.h"
#include "vanto/lfn.h"
#include "vanto/ui/help.h"
#include "vanto/ui/window.h"
#include "vtmtool/vtm_writer.h"
#include "scratch.h"

namespace fs = std::filesystem;
using vnt::msg::showBox;

namespace {

const auto slurp = vnt::test::fileText;
const auto put = vnt::test::putFile;

// One line for a model: icon (I E Q S, '-' none), type (+H: the Help bit),
// the buttons left to right, then what differs from the usual: "esc7"
// (closing answers No), "x.<" (checkbox below, left), "h42" (help context),
// "h[key]" (help keyword).
std::string summary(const VntBoxModel& m) {
    const int i = m.icon - VNT_ICON_INFORMATION;
    std::string s(1, m.icon == VNT_ICON_NONE ? '-' : i >= 0 && i < 4 ? "IEQS"[i] : '?');
    s += std::to_string(m.type & ~16384L) + (m.type & 16384 ? "+H" : "");
    for (const VntBoxButton& b : m.buttons) s += " " + b.caption + "(" + std::to_string(b.id) + ")";
    if (m.escapeButton != VNT_BTN_CANCEL) s += " esc" + std::to_string(m.escapeButton);
    if (m.checkbox) s += std::string(" x") + (m.checkboxBelow ? "." : "^") + (m.checkboxLeft ? "<" : ">");
    if (m.helpContext) s += " h" + std::to_string(m.helpContext);
    if (!m.helpKeyword.empty()) s += " h[" + m.helpKeyword + "]";
    return s;
}

// A window system that remembers the focus, busy cursor and clipboard.
struct TestWindows final : VntHeadlessWindowPort {
    VNT_HWND Focus() override { return focus; }
    void SetFocus(VNT_HWND w) override { focusSet.push_back(w); }
    void PumpEvents() override { if (onPump) onPump(); }
    void BusyCursor(bool on) override { busy += on ? "+" : "-"; }

    VNT_HWND focus = nullptr;
    std::vector<VNT_HWND> focusSet;  // every SetFocus
    void (*onPump)() = nullptr;
    std::string busy;  // "+" on, "-" off
};

class MsgBox : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        base_ = vnt::test::scratchDir("vanto_msgbox_");
        fs::remove_all(base_), fs::create_directories(base_ / "prog");
        vnt::host::setProgramFile(lib(base_ / "prog" / "Fibu"));
        Vnt_UiSetPresenter(&box), Vnt_UiSetHelp(&help), Vnt_UiSetWindow(&win);
    }
    void TearDown() override {
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(nullptr), Vnt_UiSetHelp(nullptr), Vnt_UiSetWindow(nullptr);
        vnt::test::resetAll();
        fs::remove_all(base_);
    }
    static std::string lib(const fs::path& p) { return vnt::test::libPath(p); }
    // Opens the system library (none: a missing one) with the details
    // template `details` and the help keys; the title is "Fibu".
    void startMessages(bool withLibrary = true, const char* details = "Beschreibung: %s\nDatei: %s\nZeile: %d") {
        const fs::path file = base_ / "VNT60LIB.VTM";
        if (withLibrary)
            vtmtool::writeFileAtomic(file, vtmtool::writeLibrary({"VNT60LIB", 60, 1, -1, {{62001, details}, {62005, "Meldungsdetails"}, {62006, "Meldungen"}}}));
        ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, lib(file).c_str()));
        EXPECT_TRUE(!withLibrary || Vnt_MsgHInit() != nullptr);  // closed by the reset
        Vnt_MsgSetTitle("Fibu");
        vnt::msg::box::boxState().copyWaitMs = vnt::msg::box::boxState().editWaitMs = 0;
    }
    static VNT_RESP show(const char* text, VntMsgRef ref = 1234, const char* libName = "APPMSG") { return showBox({.text = text, .libName = libName, .ref = ref}); }
    fs::path msgIni() const { return base_ / "prog" / "USR" / "Std" / "Msg.ini"; }

    VntScriptedPresenter box;
    VntHelpRecorder help;
    TestWindows win;
    fs::path base_;
};

TEST_F(MsgBox, ModelFollowsThePrefixGrammar) {
    startMessages();
    const std::string v79(79, 'v'), key39 = "012345678901234567890123456789012345678";
    // mode: 'n' a message, 'r' an internal error report, 'd' the details page.
    struct Row { const char* name; std::string text; char mode; long override, help; std::string model; std::vector<std::string> lines; };
    const Row rows[] = {
        {"no icon", "-Ohne", 'n', -1, 0, "-0 &OK(1)", {"Ohne"}},
        {"one & after the icon", "!&&Text", 'n', -1, 0, "E49 &OK(1) &Abbrechen(2)", {"&Text"}},
        {"& without an icon stays", "&okText", 'n', -1, 0, "I64 &OK(1)", {"&okText"}},
        {"ok", "!okNur OK", 'n', -1, 0, "E48 &OK(1)", {"Nur OK"}},
        {"okc", "?okcText", 'n', -1, 0, "Q33 &OK(1) &Abbrechen(2)", {"Text"}},
        {"oc after i", "iocText", 'n', -1, 0, "I65 &OK(1) &Abbrechen(2)", {"Text"}},
        {"ari", "#ariText", 'n', -1, 0, "S18 &Wiederholen(4) &Ignorieren(5) &Abbrechen(3)", {"Text"}},
        {"rc", "!rcText", 'n', -1, 0, "E53 &Wiederholen(4) &Abbrechen(2)", {"Text"}},
        {"ync", "!yncText", 'n', -1, 0, "E51 &Ja(6) &Nein(7) &Abbrechen(2)", {"Text"}},
        {"yn: closing is No", "#ynFehler", 'n', -1, 0, "S20 &Ja(6) &Nein(7) esc7", {"Fehler"}},
        {"o before a letter is dropped (kept)", "?oderText", 'n', -1, 0, "Q35 &Ja(6) &Nein(7) &Abbrechen(2)", {"derText"}},
        {"o before a blank stays", "o Text", 'n', -1, 0, "I64 &OK(1)", {"o Text"}},
        {"h after the code", "?ynh[12]Text", 'n', -1, 0, "Q36+H &Ja(6) &Nein(7) &Hilfe(9) esc7 h12", {"Text"}},
        {"h keyword before the code", "!h[Buchen]rcText", 'n', -1, 0, "E53+H &Wiederholen(4) &Abbrechen(2) &Hilfe(9) h[Buchen]", {"Text"}},
        {"h without ] is the letter alone", "h[12", 'n', -1, 0, "I64+H &OK(1) &Hilfe(9) h-1", {"[12"}},
        {"h keyword: 39 characters kept", "h[" + key39 + "9X]ok Text", 'n', -1, 0, "I64+H &OK(1) &Hilfe(9) h[" + key39 + "]", {" Text"}},
        {"the caller's help context wins", "h[5]Text", 'n', -1, 77, "I64+H &OK(1) &Hilfe(9) h77", {"Text"}},
        {"three labels", "?Datei?|~Speichern|~Verwerfen|Zur\xFC" "ck", 'n', -1, 0, "Q35 &Speichern(6) &Verwerfen(7) Zur\xFC" "ck(2)", {"Datei?"}},
        {"two labels", "?Weiter?|~Weiter|~Stop", 'n', -1, 0, "Q36 &Weiter(6) &Stop(7) esc7", {"Weiter?"}},
        {"one label, exclamation", "!Fertig|Schlie\xDF" "en", 'n', -1, 0, "E52 Schlie\xDF" "en(6) &Abbrechen(7) esc7", {"Fertig"}},
        {"one label, information: on OK", "Info|~Gut", 'n', -1, 0, "I64 &Gut(1)", {"Info"}},
        {"more than three labels", "?a|b|c|d|e", 'n', -1, 0, "Q35 b(6) c(7) d(2)", {"a"}},
        {"labels: no button code is read", "?ynText|A|B", 'n', -1, 0, "Q36 A(6) B(7) esc7", {"ynText"}},
        {"override 0", "?Frage", 'n', 0, 0, "Q32 &OK(1)", {"Frage"}},
        {"override with icon bits", "Text", 'n', 48 | 1, 0, "E49 &OK(1) &Abbrechen(2)", {"Text"}},
        {"report: no checkbox", "xFehler", 'r', -1, 0, "E49 &OK(1) &Support(100)", {"Fehler"}},
        {"report: '?' is exclamation, no labels", "?ynFrage|A", 'r', -1, 0, "E52 &OK(1) &Support(100)", {"Frage|A"}},
        {"report keeps stop, with help", "#Text", 'r', -1, 5, "S16+H &OK(1) &Support(100) &Hilfe(9) h5", {"Text"}},
        {"details page", "!ynDetails", 'd', -1, 0, "I68+H &OK(1) &Hilfe(9)", {"Details"}},
        {"checkbox: above, right", "?xWirklich?", 'n', -1, 0, "Q35 &Ja(6) &Nein(7) &Abbrechen(2) x^>", {"Wirklich?"}},
        {"checkbox key, below and left", "?x[Nr7].<Text", 'n', -1, 0, "Q35 &Ja(6) &Nein(7) &Abbrechen(2) x.<", {"Text"}},
        {"checkbox after &, layout, then code", "!&x^>okText", 'n', -1, 0, "E48 &OK(1) x^>", {"Text"}},
        {"a third layout character is text", "x<.^Text", 'n', -1, 0, "I64 &OK(1) x.<", {"^Text"}},
        {"layout without a checkbox is text", "?.Text", 'n', -1, 0, "Q35 &Ja(6) &Nein(7) &Abbrechen(2)", {".Text"}},
        {"empty", "", 'n', -1, 0, "I64 &OK(1)", {}},
        {"line feeds break, empty lines at the end go", "a\n\nb\r\nc\n\n", 'n', -1, 0, "", {"a", "", "b", "c"}},
        {"at the last blank within 79", v79.substr(9) + " " + v79.substr(71) + " zz", 'n', -1, 0, "", {v79.substr(9) + " " + v79.substr(71), "zz"}},
        {"79 characters and blanks after them", v79 + "  next", 'n', -1, 0, "", {v79, "next"}},
        {"words cut at 79, at most 15 lines", std::string(1300, 'q'), 'n', -1, 0, "", std::vector<std::string>(15, std::string(79, 'q'))},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        const VntBoxModel m = Vnt_MsgBoxModel(r.text.c_str(), r.mode == 'r', r.mode == 'd', r.override, r.help);
        EXPECT_TRUE(r.model.empty() || summary(m) == r.model) << summary(m);
        EXPECT_EQ(m.lines, r.lines);
        EXPECT_EQ(std::tie(m.title, m.checkboxCaption), std::make_tuple("Fibu", m.checkbox ? "Diese Meldung k\xFCnftig &nicht mehr anzeigen." : ""));
    }
    Vnt_ResSetLanguage("ENU");  // captions follow the language (the fixture resets it)
    EXPECT_EQ(summary(Vnt_MsgBoxModel("?xyncQuestion")) + " " + Vnt_MsgBoxModel("x").checkboxCaption,
              "Q35 &Yes(6) &No(7) &Cancel(2) x^> Do &not show this message again.");
    EXPECT_EQ(summary(Vnt_MsgBoxModel("ariText")), "I66 &Retry(4) &Ignore(5) &Abort(3)");
}

TEST_F(MsgBox, AnswersMapToOkCancelAndNo) {
    startMessages();
    // 42, like Support and Help here: no button of the box.
    const struct { const char* text; std::vector<std::pair<int, VNT_RESP>> pressed; } rows[] = {
        {"okText", {{VNT_BTN_OK, 1}, {VNT_BTN_CANCEL, 2}, {VNT_BTN_SUPPORT, 2}}}, {"okcText", {{VNT_BTN_OK, 1}, {VNT_BTN_CANCEL, 2}, {42, 2}}},
        {"ariText", {{VNT_BTN_ABORT, 2}, {VNT_BTN_RETRY, 1}, {VNT_BTN_IGNORE, 7}, {VNT_BTN_CANCEL, 2}}},
        {"yncText", {{VNT_BTN_YES, 1}, {VNT_BTN_NO, 7}, {VNT_BTN_CANCEL, 2}}},
        {"ynText", {{VNT_BTN_YES, 1}, {VNT_BTN_NO, 7}, {VNT_BTN_CANCEL, 7}, {42, 7}, {VNT_BTN_HELP, 7}}},
        {"rcText", {{VNT_BTN_RETRY, 1}, {VNT_BTN_CANCEL, 2}}}, {"?Los?|~Los", {{VNT_BTN_NO, 7}, {VNT_BTN_CANCEL, 7}}},
    };
    for (const auto& r : rows)
        for (const auto& [pressed, expected] : r.pressed) {
            box.answers = {{pressed, false}};
            EXPECT_EQ(show(r.text), expected) << r.text << " pressed " << pressed;
        }
    EXPECT_TRUE(help.requests.empty());
    for (int asked : {2, 5, -1}) {
        showBox({.text = "?Frage", .ref = {}, .defaultButton = asked});
        EXPECT_EQ(box.shown.back().defaultButton, asked == 2 ? 2 : -1) << "default button " << asked;
    }
    // A box that cannot be created: error 302, and the focus goes back.
    win.focus = reinterpret_cast<VNT_HWND>(0x5a5a), box.failNext = true;
    EXPECT_EQ(show("?Frage"), -1);
    EXPECT_EQ(std::tie(box.plainShown.at(0).text, box.plainShown[0].title), std::make_tuple("Vnt_Msg-Interface: Internal Error 302", "Vnt_Msg-Interface"));
    EXPECT_EQ(win.focusSet, std::vector<VNT_HWND>{win.focus});
    EXPECT_TRUE(show("?Frage") == 1 && box.shown.back().level == 1) << "the level was given back";
}

VNT_RESP innerAnswer = 0, thirdAnswer = 0;

TEST_F(MsgBox, SecondBoxNestsAndThirdFallsBackToThePlainBox) {
    startMessages();
    box.during = [](const VntBoxModel& m) {
        if (m.level == 1) innerAnswer = show("?ynInnen");
        else thirdAnswer = showBox({.text = "Dritte", .sourceFile = "Msg/Probe", .line = 33, .ref = {}});
    };
    box.answers = {{VNT_BTN_NO, false}, {VNT_BTN_OK, false}};  // the inner box first
    EXPECT_EQ(show("Aussen"), 1);
    ASSERT_EQ(box.shown.size(), 2u);
    EXPECT_EQ(std::make_tuple(innerAnswer, thirdAnswer, box.shown[1].level, box.plainShown.size()), std::make_tuple(7, 7, 2, size_t{1}));
    const std::string text = "Interner Fehler! (Msg/Probe / 33). Bitte schlie\xDF" "en Sie das Programm und starten Sie es neu.";
    EXPECT_EQ(std::tie(box.plainShown.at(0).text, box.plainShown[0].type, box.plainShown[0].title), std::make_tuple(text, 48, ""));
}

// "?xFrage" of APPMSG 1234, answered No with the box ticked: switched off
// messages answer 1 without a box; others show and are switched off.
// (How the file is parsed and rewritten is the profile functions' business.)
TEST_F(MsgBox, MemoryIsReadAndWrittenAsTheFileSays) {
    startMessages();
    const struct { const char *name, *before, *after; } rows[] = {  // before null: no file; after null: off
        {"no file", nullptr, "[Msg]\r\nAPPMSG.1234=0\r\n"},
        {"00 reads 0", "[Msg]\nAPPMSG.1234=00\n", nullptr},
        {"1: replaced in the file's spelling", "[msg]\n appmsg.1234 = 1 \n", "[msg]\r\nappmsg.1234=0\r\n"},
        {"empty value shows", "[Msg]\nAPPMSG.1234=\n", "[Msg]\r\nAPPMSG.1234=0\r\n"},
        {"other library", "[Msg]\nVNT60LIB.1234=0\n", "[Msg]\r\nVNT60LIB.1234=0\r\nAPPMSG.1234=0\r\n"},
    };
    for (const auto& r : rows) {
        if (r.before) put(msgIni(), r.before);  // replaces the last row's file; "no file" comes first
        box.shown.clear(), box.answers = {{VNT_BTN_NO, true}};
        EXPECT_EQ(show("?xFrage"), r.after ? 7 : 1) << r.name;
        EXPECT_EQ(slurp(msgIni()), r.after ? r.after : r.before) << r.name;
        EXPECT_EQ(show("?xFrage"), 1) << r.name << ": off now";
        EXPECT_EQ(box.shown.size(), r.after ? 1u : 0u) << r.name;
    }
}

TEST_F(MsgBox, OnlyTickedCheckboxesOfMessagesSwitchOff) {
    startMessages();
    box.answers = {{VNT_BTN_YES, false}, {VNT_BTN_CANCEL, true}, {VNT_BTN_OK, false}, {VNT_BTN_YES, true}, {VNT_BTN_OK, true}, {VNT_BTN_NO, true}};
    EXPECT_TRUE(show("?xFrage") == 1 && !fs::exists(msgIni())) << "unticked writes nothing";
    EXPECT_EQ(show("?xFrage", 1235, "VNT60LIB"), 2) << "Cancel ticked switches off too";
    // A literal text has no ID: reported (301), then remembered as ID 0.
    EXPECT_EQ(show("?xLiteral", "?xLiteral", "X"), 1);
    EXPECT_TRUE(slurp(msgIni()) == "[Msg]\r\nVNT60LIB.1235=0\r\nX.0=0\r\n" && box.shown.size() == 4u) << slurp(msgIni());
    EXPECT_EQ(std::tie(box.shown.at(2).internalError, box.shown[2].text, box.shown[2].details),
              std::make_tuple(true, "Internal error (301): Checkbox messages MUST use a message ID (not a string address).",
                              "Beschreibung: (unknown)\nDatei: Msg/DlgMsg\nZeile: 1703"));
    EXPECT_TRUE(show("?Frage") == 1 && box.shown.size() == 5u) << "without the marker the memory is not asked";
    // An unreadable file is not replaced by one holding only the key; the answer stands.
    fs::remove(msgIni()), fs::create_directories(msgIni());
    EXPECT_TRUE(show("?xFrage") == 7 && fs::is_directory(msgIni()) && fs::is_empty(msgIni()));
}

TEST_F(MsgBox, SupportShowsTheDetailsPageThenTheReportAgain) {
    startMessages();
    // Support, then Help and OK on the details page, then OK on the report.
    box.answers = {{VNT_BTN_SUPPORT, false}, {VNT_BTN_HELP, false}, {VNT_BTN_OK, false}, {VNT_BTN_OK, false}};
    EXPECT_EQ(showBox({.text = "Kaputt", .internalError = true, .description = "Kopf fehlt", .sourceFile = "Msg/P.cpp", .line = 42, .ref = {}}), 1);
    ASSERT_EQ(box.shown.size(), 4u);
    EXPECT_TRUE(box.shown[1].detailsMode && box.shown[1].level == 2) << "the details page";
    EXPECT_EQ(box.shown[1].lines, (std::vector<std::string>{"Beschreibung: Kopf fehlt", "Datei: Msg/P.cpp", "Zeile: 42"}));
    EXPECT_TRUE(box.shown[2].detailsMode) << "the page again after Help";
    EXPECT_TRUE(box.shown[3].internalError && box.shown[3].level == 1) << "then the report again";
    ASSERT_EQ(help.requests.size(), 1u);
    EXPECT_EQ(std::tie(help.requests[0].command, help.requests[0].key), std::make_tuple(VntHelpCommand::Key, "Meldungsdetails"));
}

// A template whose directives do not fit the arguments is not used; without
// the system library the box still shows (the report of the missing library
// comes while the template is fetched: it answers 1 without a box).
TEST_F(MsgBox, DetailsFallBackToTheSupportText) {
    startMessages(true, "Zeile %d in %s");
    showBox({.text = "Fehler", .internalError = true, .description = "Kopf", .sourceFile = "Msg/P.cpp", .line = 42, .ref = {}});
    const std::string d = box.shown.at(0).details;
    EXPECT_TRUE(d.rfind("Bei wiederholtem Auftreten", 0) == 0 && d.find("\n\nKopf\n\nQuelldatei/Zeile: Msg/P.cpp/42") != std::string::npos) << d;
}

TEST_F(MsgBox, WithoutSystemLibraryTheBoxStillShows) {
    startMessages(false);
    box.answers = {{VNT_BTN_CANCEL, false}};
    EXPECT_EQ(showBox({.text = "!Achtung", .sourceFile = "Msg/P.cpp", .line = 9, .ref = {}}), 2);
    EXPECT_EQ(box.shown.at(0).lines, std::vector<std::string>{"Achtung"}) << "the box, no report of the missing library";
    EXPECT_NE(box.shown[0].details.find("Quelldatei/Zeile: Msg/P.cpp/9"), std::string::npos);
}

TEST_F(MsgBox, HelpButtonOpensTheProgramsHelp) {
    startMessages();
    using C = VntHelpCommand;
    const std::string file = lib(base_ / "prog" / "Fibu.html");
    struct Row { const char *name, *text; long helpContext, override; C command; long context; const char* key; };
    const Row rows[] = {
        {"contents", "hText", 0, -1, C::Contents, 0, ""},
        {"context of the text", "h[42]Text", 0, -1, C::Context, 42, ""},
        {"keyword", "h[Buchen]Text", 0, -1, C::PartialKey, 0, "Buchen"},
        {"context of the caller", "Text", 7, -1, C::Context, 7, ""},
        {"caller's contents", "Text", -1, -1, C::Contents, 0, ""},
        {"no context at all", "Text", 0, 16384, C::Key, 0, "Meldungen"},
    };
    for (const Row& r : rows) {
        help.requests.clear(), box.answers = {{VNT_BTN_HELP, false}, {VNT_BTN_OK, false}};
        EXPECT_EQ(showBox({.text = r.text, .helpContext = r.helpContext, .typeOverride = r.override, .ref = {}}), 1) << r.name;
        ASSERT_EQ(help.requests.size(), 1u) << r.name;
        const VntHelpRequest& q = help.requests[0];
        EXPECT_EQ(std::tie(q.file, q.command, q.context, q.key), std::make_tuple(file, r.command, r.context, std::string(r.key))) << r.name;
    }
}

VNT_RESP plainWithArgs(bool fixed, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    VNT_RESP r = Vnt_MsgBox(fmt, reinterpret_cast<char*>(&args), nullptr, fixed);
    va_end(args);
    return r;
}

TEST_F(MsgBox, PlainBoxTakesIconAndCodeAndFormats) {
    startMessages();
    // OK pressed; kept for compatibility: a fixed answer does not depend on
    // the button, 2 for the types with Cancel or Abort, else 7.
    const struct { const char *text, *shown; long type; VNT_RESP fixed; } rows[] = {
        {"-Ohne", "Ohne", 0, 7}, {"!Achtung", "Achtung", 1 | 48, 2}, {"?Frage", "Frage", 3 | 32, 2}, {"#ariStop", "Stop", 2 | 16, 2},
        {"ynA", "A", 4 | 64, 7}, {"rcA", "A", 5 | 64, 2}, {"x.<Text", "x.<Text", 64, 7},  // the plain box knows no checkbox
        {"Zu 100% sicher", "Zu 100% sicher", 64, 7},  // no arguments: no formatting
    };
    for (const auto& r : rows) {
        EXPECT_EQ(Vnt_MsgBox(r.text, nullptr, nullptr, true), r.fixed) << r.text;
        EXPECT_EQ(std::tie(box.plainShown.back().text, box.plainShown.back().type), std::make_tuple(r.shown, r.type)) << r.text;
    }
    box.plainAnswers = {VNT_BTN_NO, VNT_BTN_YES, VNT_BTN_CANCEL, 0};
    EXPECT_EQ(Vnt_MsgBox("?ynWeiter mit %d von %s?", 5, "7"), 7);
    // The box title fills the empty application title.
    EXPECT_EQ(std::tie(box.plainShown.back().text, box.plainShown.back().title), std::make_tuple("Weiter mit 5 von 7?", "Fibu"));
    EXPECT_EQ(plainWithArgs(false, "!ynSoll %s %d?", "Zeile", 12), 1);
    EXPECT_EQ(box.plainShown.back().text, "Soll Zeile 12?");
    EXPECT_EQ(plainWithArgs(false, "yn%s", std::string(3000, 'a').c_str()), 7) << "closing a Yes/No box is No";
    EXPECT_EQ(box.plainShown.back().text, std::string(1023, 'a'));
    EXPECT_EQ(Vnt_MsgBox("okA", nullptr, nullptr, false), -1) << "no box";
    Vnt_MsgBoxAppTitle("Buchhaltung");
    EXPECT_TRUE(Vnt_MsgBox("Text", nullptr, nullptr, false) == 1 && box.plainShown.back().title == "Buchhaltung");
    EXPECT_EQ(std::string(Vnt_MsgBoxAppTitle(std::string(200, 't').c_str())), std::string(119, 't'));
}

fs::path editorOut;

#if !defined(_WIN32)  // the opener here is a shell script found on PATH
TEST_F(MsgBox, CopyAndEditorGetTheWholeTextAndTheDetails) {
    startMessages();
    const std::string text = "Fehler \xE4 1" + std::string(20, '\n') + "Zeile 21";
    VntBoxModel m = Vnt_MsgBoxModel(("#" + text).c_str());
    m.details = "Datei: x.cpp";
    EXPECT_TRUE(Vnt_MsgBoxCopy(m));
    EXPECT_EQ(win.clipboard, text + "\n\nDatei: x.cpp") << "all lines, not only the fifteen shown";
    // A desktop opener that copies the file it is given; events are pumped
    // while the editor reads: wait there until it has.
    const fs::path bin = base_ / "bin";
    const std::string out = (editorOut = base_ / "opened.txt").string();
    put(bin / "xdg-open", "#!/bin/sh\ncp \"$1\" \"" + out + ".part\" && mv \"" + out + ".part\" \"" + out + "\"\n");
    fs::permissions(bin / "xdg-open", fs::perms::owner_all);
    const std::string savedPath = std::getenv("PATH") ? std::getenv("PATH") : "";
    vnt::test::setEnv("PATH", (bin.string() + ":/usr/bin:/bin").c_str());
    win.onPump = [] { for (int i = 0; i < 1000 && !fs::exists(editorOut); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10)); };
    EXPECT_TRUE(Vnt_MsgBoxEdit(m));
    EXPECT_EQ(slurp(editorOut) + "|" + win.busy, text + "\n\nDatei: x.cpp|+-+-");
    EXPECT_FALSE(fs::exists(base_ / "prog" / "TEMP" / "VantoErr.tmp")) << "removed after the wait";
    // Without an opener: false, and no file stays behind.
    vnt::test::setEnv("PATH", vnt::test::hostStr(base_ / "prog"));
    win.onPump = nullptr;
    EXPECT_TRUE(!Vnt_MsgBoxEdit(m) && fs::is_directory(base_ / "prog" / "TEMP") && !fs::exists(base_ / "prog" / "TEMP" / "VantoErr.tmp"));
    vnt::test::setEnv("PATH", savedPath.c_str());
}
#endif

}  // namespace
