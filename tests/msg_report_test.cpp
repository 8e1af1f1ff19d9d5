// Reports through the scripted presenter with the German system library:
// internal errors (code table, system messages 62002/62003, re-entrance),
// Vnt__MsgErr, the host's last error, exception reports and their verdicts,
// and the reader's reports reaching the box.

#include <gtest/gtest.h>

#include "support.h"

#include <string>
#include <vector>

#include "host/error.h"
#include "msg/msg_internal.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"
#include "vanto/vtm.h"

namespace {

bool contains(const std::string& s, const std::string& part) { return s.find(part) != std::string::npos; }

class Reports : public ::testing::Test {
protected:
    static void resetAll() { vnt::test::resetAll(); }
    void SetUp() override {
        resetAll();
        old_ = Vnt_UiSetPresenter(&box);
        char lib[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(lib, VANTO_SYSLIB_DE) && Vnt_MsgItfInit(nullptr, 0, lib));
        ASSERT_NE(sys_ = Vnt_MsgHInit(), nullptr) << "German system library not loaded from " << VANTO_SYSLIB_DE;
    }
    void TearDown() override {
        if (sys_) Vnt_MsgHTerm(&sys_);
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(old_);
        resetAll();
    }
    // The one box shown since the last clear.
    const VntBoxModel& onlyBox() {
        static const VntBoxModel none;
        EXPECT_EQ(box.shown.size(), 1u);
        return box.shown.size() == 1 ? box.shown[0] : none;
    }

    VntScriptedPresenter box;
    VntMsgPresenter* old_ = nullptr;
    VNT_MSG sys_ = nullptr;
};

TEST_F(Reports, InternalErrorDescribesItsCode) {
    const std::string desc = "Programminterne Pr\xFC" "fung fehlgeschlagen\n";  // system message 62003
    const struct { const char* name; bool condition; int code; std::string says; } rows[] = {
        {"condition false: no report", false, -9, ""},
        {"first of the table", true, -1, "Interner Fehler (Code -1) Mem\n"},
        {"window null", true, -9, "Interner Fehler (Code -9) Win=NULL\n"},
        {"last of the table has no description", true, -13, "Interner Fehler (Code -13) \n"},
        {"below the table", true, -14, "Interner Fehler (Code -14) " + desc},
        {"positive code", true, 5, "Interner Fehler (Code 5) " + desc},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        box.shown.clear();
        EXPECT_EQ(Vnt__InternalError(r.condition, r.code, "Msg/Probe", 42), r.condition);
        ASSERT_TRUE(box.plainShown.empty() && box.shown.size() == (r.condition ? 1u : 0u));
        if (!r.condition) continue;
        const VntBoxModel& m = box.shown[0];
        EXPECT_TRUE(contains(m.text, r.says) && !contains(m.text, "!Interner")) << m.text;  // the '!' is the report's
        EXPECT_TRUE(m.internalError && m.icon == VNT_ICON_EXCLAMATION);
        EXPECT_TRUE(contains(m.details, "Quelldatei/Zeile: Msg/Probe/42")) << m.details;
        EXPECT_TRUE(m.buttons.size() == 2 && m.buttons[0].id == VNT_BTN_OK && m.buttons[1].id == VNT_BTN_SUPPORT);
    }
}

bool nestedResult = false;

TEST_F(Reports, ReportRaisedDuringAReportIsSwallowed) {
    box.during = [](const VntBoxModel&) { nestedResult = Vnt__InternalError(true, -1, "Msg/Nested", 7); };
    EXPECT_TRUE(Vnt__InternalError(true, -9, "Msg/Outer", 3));
    EXPECT_TRUE(nestedResult) << "the nested check still fails as a guard";
    EXPECT_TRUE(contains(onlyBox().text, "Win=NULL")) << "the nested report must not show a box";
    // Once the report is over, the next one shows again.
    box.during = nullptr;
    EXPECT_TRUE(Vnt__InternalError(true, -1, "Msg/After", 4) && box.shown.size() == 2u);
}

TEST_F(Reports, MsgErrDropsExclamationThenAmpersand) {
    // Without the drop the box would take the '!' as the icon and show "?Frage".
    const struct { const char* name; const char* text; const char* shows; } rows[] = {
        {"null text", nullptr, ""},
        {"exclamation before an icon character", "!?Frage", "Frage"},
        {"ampersand before an icon character", "&?Frage", "Frage"},
        {"exclamation and ampersand", "!&?Frage", "Frage"},
    };
    for (const auto& r : rows) {
        box.shown.clear();
        Vnt__MsgErr("Lfn/Name", 1234, r.text, "Kein Speicher", 77);
        const VntBoxModel& m = onlyBox();
        EXPECT_EQ(m.lines.empty() ? std::string() : m.lines[0], r.shows) << r.name;
        EXPECT_TRUE(m.internalError && m.helpContext == 77) << r.name;
        EXPECT_TRUE(contains(m.details, "Kein Speicher") && contains(m.details, "Quelldatei/Zeile: Lfn/Name/1234"))
            << r.name << ": " << m.details;
    }
}

TEST_F(Reports, LastErrorIsReportedOnceWithCodeAndHostText) {
    // A missing file is code 2 on every host.
    using Kind = vnt::host::ErrorKind;
    const std::string hostText = vnt::host::errorText(vnt::host::errorOf(Kind::NotFound)), longText(600, 'a');
    const struct { const char* name; Kind error; const char* text; std::string says; } rows[] = {
        {"no error: no report", Kind::None, "Datei fehlt", ""},
        {"with a text", Kind::NotFound, "Datei fehlt", "Datei fehlt\n\n(Code = 2)\n\n" + hostText},
        {"without a text", Kind::NotFound, nullptr, "(Code = 2)\n\n" + hostText},
        {"text cut at 512 characters", Kind::NotFound, longText.c_str(), std::string(512, 'a') + "\n\n(Code = 2)\n\n"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        box.shown.clear();
        vnt::host::setLastError(r.error);
        EXPECT_EQ(Vnt_MsgErrLastError(r.text), r.error != Kind::None);
        EXPECT_EQ(vnt::host::lastError().kind, Kind::None) << "the error is cleared";
        EXPECT_FALSE(Vnt_MsgErrLastError(r.text)) << "reported once: nothing is left to report";
        ASSERT_EQ(box.shown.size(), r.error != Kind::None ? 1u : 0u);
        if (r.error == Kind::None) continue;
        const VntBoxModel& m = box.shown[0];
        EXPECT_TRUE(contains(m.text, r.says) && !contains(m.text, std::string(513, 'a'))) << m.text;
        EXPECT_TRUE(m.internalError && contains(m.details, "Msg/Vnt_msg/179")) << m.details;
    }
}

TEST_F(Reports, ExceptionReportDescribesTheException) {
    // Retry (1) continues execution, any other answer but Abort goes on searching for a handler.
    const struct { const char* name; uint32_t code, flags; uintptr_t accessed; const char* context;
                   std::vector<std::string> says; int answer = VNT_BTN_IGNORE, verdict = 0; } rows[] = {
        {"user code outside the table", 0xE0000001, 0, 0, "Buchen", {"(USER, ERROR): 0xE0000001", "Buchen",
            "UNKNOWN EXCEPTION", "EXCEPTION_CONTINUABLE", "Quelldatei/Zeile: App/Main/12"}},
        {"access violation names the address", 0xC0000005, 1, 0x1234, "Buchen", {"(SYSTEM, ERROR): 0xC0000005",
            "EXCEPTION_ACCESS_VIOLATION (Zugriff auf Adresse 0x1234)", "EXCEPTION_NONCONTINUABLE"}},
        {"warning, odd flags", 0x80000003, 5, 0, "Buchen", {"(SYSTEM, WARNING): 0x80000003", "EXCEPTION_BREAKPOINT",
            "EXCEPTION_[NON]CONTINUABLE undefined?! (Flags: 0x5)"}},
        {"informational, retry", 0x40000001, 0, 0, "Buchen", {"(SYSTEM, INFORMATIONAL)", "UNKNOWN EXCEPTION"},
            VNT_BTN_RETRY, -1},
        {"code 0 ends the table", 0, 0, 0, "Buchen", {"(SYSTEM, SUCCESS): 0x00000000", "UNKNOWN EXCEPTION"}},
        {"last name of the table", 0xC00000FD, 0, 0, "Buchen", {"EXCEPTION_STACK_OVERFLOW"}},
        {"no context: system message 32905", 0xC0000094, 0, 0, nullptr, {"Unerwarteter Programmfehler"}},
        {"empty context: system message 32905", 0xC0000094, 0, 0, "", {"Unerwarteter Programmfehler"}},
        {"context is shown as it stands", 0xC0000094, 0, 0, "100% %s %n", {"\n100% %s %n\n"}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        box.plainShown.clear();
        box.plainAnswers = {r.answer};
        const VNT_EXCEPTION_RECORD rec{r.code, r.flags, nullptr, {1, r.accessed}};
        EXPECT_EQ(Vnt_ExceptHandleException__("App/Main", 12, &rec, r.context), r.verdict);
        ASSERT_TRUE(box.shown.empty() && box.plainShown.size() == 1u) << "the plain box, not the message box";
        for (const std::string& part : r.says) EXPECT_TRUE(contains(box.plainShown[0].text, part)) << part;
    }
    // Without a record there is nothing to describe: an internal error instead.
    EXPECT_EQ(Vnt_ExceptHandleException__("App/Main", 1, nullptr, "x"), 0);
    EXPECT_TRUE(box.plainShown.size() == 1u && onlyBox().internalError) << "the message box, not the plain box";
}

TEST_F(Reports, ReaderReportsGoToTheBoxAsTheyStand) {
    Vnt_MsgHLoad(nullptr, 40000);  // an ID the system library does not hold
    EXPECT_TRUE(contains(onlyBox().text, "VTMINTRF: Internal Error.\nMessage ID 40000 not found.")) << onlyBox().text;
    EXPECT_TRUE(onlyBox().icon == VNT_ICON_EXCLAMATION && !onlyBox().internalError);
    // The hook in place is the box's; a '%' in a report is not a directive.
    box.shown.clear();
    const VNT_VTM_REPORT hook = Vnt_VtmSetReport(nullptr);  // the fixture connects it again
    ASSERT_NE(hook, nullptr);
    EXPECT_EQ(hook("!okVTMINTRF: Internal Error.\nError reading \"Z:\\100%s %n.vtm\""), VNT_RESP_OK);
    EXPECT_TRUE(contains(onlyBox().text, "Error reading \"Z:\\100%s %n.vtm\"")) << onlyBox().text;
}

using ReportsDeathTest = Reports;

TEST_F(ReportsDeathTest, ExceptionAbortEndsTheProcessWithCode3) {
    const VNT_EXCEPTION_RECORD rec{0xC0000005, 0, nullptr, {0, 0}};
    box.plainAnswers = {VNT_BTN_ABORT};
    EXPECT_EXIT(Vnt_ExceptHandleException__("App/Main", 1, &rec, "x"), ::testing::ExitedWithCode(3),
                ": exit code 3: an exception report was answered Abort: [^\n]*App/Main[^\n]*\n");
}

TEST_F(ReportsDeathTest, ReaderReportNotConfirmedEndsTheProcessWithCode3) {
    box.answers = {VntBoxAnswer{VNT_BTN_CANCEL, false}};
    EXPECT_EXIT(Vnt_MsgHLoad(nullptr, 40000), ::testing::ExitedWithCode(3),
                ": exit code 3: a report was not confirmed: VTMINTRF: Internal Error. [^\n]*40000[^\n]*\n");
}

}  // namespace
