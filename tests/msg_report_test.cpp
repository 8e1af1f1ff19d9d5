// Reports through the scripted presenter with the German system library:
// internal errors (code table, system messages 62002/62003, re-entrance),
// Vnt__MsgErr, the host's last error, exception reports and their verdicts,
// and the reader's reports reaching the box.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/host.h"
#include "msg/msg_internal.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"
#include "vanto/vtm.h"

namespace {

bool contains(const std::string& s, const std::string& part) { return s.find(part) != std::string::npos; }

void resetAll() {
    vnt::vtm::reset();
    vnt::host::reset();
    vnt::host::setLastError(0);
    vnt::msg::resetTexts();
    vnt::msg::resetBox();
    vnt::msg::resetReports();
}

class Reports : public ::testing::Test {
protected:
    void SetUp() override {
        resetAll();
        old_ = Vnt_UiSetPresenter(&box);
        char lib[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(lib, VANTO_SYSLIB_DE));
        ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, lib));
        sys_ = Vnt_MsgHInit();
        ASSERT_NE(sys_, nullptr) << "German system library not loaded from " << VANTO_SYSLIB_DE;
    }
    void TearDown() override {
        if (sys_) Vnt_MsgHTerm(&sys_);
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(old_);
        resetAll();
    }

    // The one box shown so far.
    const VntBoxModel& onlyBox() {
        EXPECT_EQ(box.shown.size(), 1u);
        static const VntBoxModel none;
        return box.shown.empty() ? none : box.shown.back();
    }

    VntScriptedPresenter box;

private:
    VntMsgPresenter* old_ = nullptr;
    VNT_MSG sys_ = nullptr;
};

// ---------------------------------------------------------------------------
// Internal errors
// ---------------------------------------------------------------------------

TEST_F(Reports, InternalErrorWithFalseConditionShowsNothing) {
    EXPECT_FALSE(Vnt__InternalError(false, -9, "Msg/Probe", 42));
    EXPECT_TRUE(box.shown.empty());
    EXPECT_TRUE(box.plainShown.empty());
}

TEST_F(Reports, InternalErrorDescribesItsCode) {
    struct Row {
        const char* name;
        int code;
        const char* says;
    };
    const Row rows[] = {
        {"first of the table", -1, "Interner Fehler (Code -1) Mem\n"},
        {"window null", -9, "Interner Fehler (Code -9) Win=NULL\n"},
        {"database substitution", -12, "Interner Fehler (Code -12) DBSubst\n"},
        {"last of the table has no description", -13, "Interner Fehler (Code -13) \n"},
        {"below the table: system message 62003", -14,
         "Interner Fehler (Code -14) Programminterne Pr\xFC" "fung fehlgeschlagen\n"},
        {"positive code: system message 62003", 5,
         "Interner Fehler (Code 5) Programminterne Pr\xFC" "fung fehlgeschlagen\n"},
        {"zero: system message 62003", 0, "Interner Fehler (Code 0) Programminterne Pr\xFC" "fung"},
    };
    for (const Row& r : rows) {
        box.shown.clear();
        EXPECT_TRUE(Vnt__InternalError(true, r.code, "Msg/Probe", 42)) << r.name;
        ASSERT_EQ(box.shown.size(), 1u) << r.name;
        const VntBoxModel& m = box.shown[0];
        EXPECT_TRUE(contains(m.text, r.says)) << r.name << ": " << m.text;
        EXPECT_FALSE(contains(m.text, "!Interner")) << r.name << ": the '!' is the report's, not the text's";
        EXPECT_TRUE(m.internalError) << r.name;
        EXPECT_EQ(m.icon, VNT_ICON_EXCLAMATION) << r.name;
        // The details page names the place of the check.
        EXPECT_TRUE(contains(m.details, "Quelldatei/Zeile: Msg/Probe/42")) << r.name << ": " << m.details;
    }
}

TEST_F(Reports, InternalErrorOffersOkAndSupport) {
    ASSERT_TRUE(Vnt__InternalError(true, -2, "Msg/Probe", 1));
    std::vector<int> ids;
    for (const VntBoxButton& b : onlyBox().buttons) ids.push_back(b.id);
    EXPECT_EQ(ids, (std::vector<int>{VNT_BTN_OK, VNT_BTN_SUPPORT}));
}

bool nestedResult = false;

TEST_F(Reports, ReportRaisedDuringAReportIsSwallowed) {
    nestedResult = false;
    box.during = [](const VntBoxModel&) { nestedResult = Vnt__InternalError(true, -1, "Msg/Nested", 7); };
    EXPECT_TRUE(Vnt__InternalError(true, -9, "Msg/Outer", 3));
    EXPECT_TRUE(nestedResult) << "the nested check still fails as a guard";
    ASSERT_EQ(box.shown.size(), 1u) << "the nested report must not show a box";
    EXPECT_TRUE(contains(box.shown[0].text, "Win=NULL"));
    // Once the report is over, the next one shows again.
    box.during = nullptr;
    EXPECT_TRUE(Vnt__InternalError(true, -1, "Msg/After", 4));
    ASSERT_EQ(box.shown.size(), 2u);
    EXPECT_TRUE(contains(box.shown[1].details, "Msg/After/4"));
}

// ---------------------------------------------------------------------------
// Vnt__MsgErr
// ---------------------------------------------------------------------------

TEST_F(Reports, MsgErrDropsExclamationThenAmpersand) {
    struct Row {
        const char* name;
        const char* text;
        const char* shows;  // the text's first line
    };
    const Row rows[] = {
        {"null text", nullptr, ""},
        {"exclamation dropped", "!Plain", "Plain"},
        // Without the drop the box would take the '!' as the icon and show "?Frage".
        {"exclamation before an icon character", "!?Frage", "Frage"},
        {"ampersand before an icon character", "&?Frage", "Frage"},
        {"exclamation and ampersand", "!&?Frage", "Frage"},
    };
    for (const Row& r : rows) {
        box.shown.clear();
        Vnt__MsgErr("Msg/Probe", 9, r.text, nullptr, 0);
        ASSERT_EQ(box.shown.size(), 1u) << r.name;
        const VntBoxModel& m = box.shown[0];
        EXPECT_EQ(m.lines.empty() ? std::string() : m.lines[0], r.shows) << r.name;
        EXPECT_TRUE(m.internalError) << r.name;
    }
}

TEST_F(Reports, MsgErrFillsTheDetailsPage) {
    Vnt__MsgErr("Lfn/Name", 1234, "!Etwas ging schief.", "Kein Speicher", 77);
    const VntBoxModel& m = onlyBox();
    EXPECT_TRUE(contains(m.details, "Kein Speicher")) << m.details;
    EXPECT_TRUE(contains(m.details, "Quelldatei/Zeile: Lfn/Name/1234")) << m.details;
    EXPECT_EQ(m.helpContext, 77);
}

// ---------------------------------------------------------------------------
// The host's last error
// ---------------------------------------------------------------------------

TEST_F(Reports, LastErrorZeroReportsNothing) {
    vnt::host::setLastError(0);
    EXPECT_FALSE(Vnt_MsgErrLastError("Datei fehlt"));
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Reports, LastErrorIsReportedOnceWithCodeAndHostText) {
    const std::string hostText = vnt::host::errorText(2);
    ASSERT_FALSE(hostText.empty());
    const std::string longText(600, 'a');
    struct Row {
        const char* name;
        const char* text;
        std::string says;
    };
    const Row rows[] = {
        {"with a text", "Datei fehlt", "Datei fehlt\n\n(Code = 2)\n\n" + hostText},
        {"without a text", nullptr, "(Code = 2)\n\n" + hostText},
        {"text cut at 512 characters", longText.c_str(), std::string(512, 'a') + "\n\n(Code = 2)\n\n"},
    };
    for (const Row& r : rows) {
        box.shown.clear();
        vnt::host::setLastError(2);
        EXPECT_TRUE(Vnt_MsgErrLastError(r.text)) << r.name;
        EXPECT_EQ(vnt::host::lastError(), 0u) << r.name << ": the error is cleared";
        ASSERT_EQ(box.shown.size(), 1u) << r.name;
        const VntBoxModel& m = box.shown[0];
        EXPECT_TRUE(contains(m.text, r.says)) << r.name << ": " << m.text;
        EXPECT_FALSE(contains(m.text, std::string(513, 'a'))) << r.name;
        EXPECT_TRUE(m.internalError) << r.name;
        EXPECT_TRUE(contains(m.details, "Msg/Vnt_msg/179")) << r.name << ": " << m.details;
        // Reported once: nothing is left to report.
        EXPECT_FALSE(Vnt_MsgErrLastError(r.text)) << r.name;
        EXPECT_EQ(box.shown.size(), 1u) << r.name;
    }
}

// ---------------------------------------------------------------------------
// Exceptions
// ---------------------------------------------------------------------------

TEST_F(Reports, ExceptionReportDescribesTheException) {
    struct Row {
        const char* name;
        uint32_t code;
        uint32_t flags;
        uintptr_t accessed;
        const char* context;
        std::vector<std::string> says;
    };
    const Row rows[] = {
        {"user code outside the table", 0xE0000001, 0, 0, "Buchen",
         {"(USER, ERROR): 0xE0000001", "Buchen", "UNKNOWN EXCEPTION", "EXCEPTION_CONTINUABLE",
          "Quelldatei/Zeile: App/Main/12"}},
        {"access violation names the address", 0xC0000005, 1, 0x1234, "Buchen",
         {"(SYSTEM, ERROR): 0xC0000005", "EXCEPTION_ACCESS_VIOLATION (Zugriff auf Adresse 0x1234)",
          "EXCEPTION_NONCONTINUABLE"}},
        {"warning", 0x80000003, 5, 0, "Buchen",
         {"(SYSTEM, WARNING): 0x80000003", "EXCEPTION_BREAKPOINT",
          "EXCEPTION_[NON]CONTINUABLE undefined?! (Flags: 0x5)"}},
        {"informational", 0x40000001, 0, 0, "Buchen", {"(SYSTEM, INFORMATIONAL)", "UNKNOWN EXCEPTION"}},
        {"code 0 ends the table", 0, 0, 0, "Buchen", {"(SYSTEM, SUCCESS): 0x00000000", "UNKNOWN EXCEPTION"}},
        {"last name of the table", 0xC00000FD, 0, 0, "Buchen", {"EXCEPTION_STACK_OVERFLOW"}},
        {"no context: system message 32905", 0xC0000094, 0, 0, nullptr,
         {"Unerwarteter Programmfehler", "EXCEPTION_INT_DIVIDE_BY_ZERO"}},
        {"empty context: system message 32905", 0xC0000094, 0, 0, "", {"Unerwarteter Programmfehler"}},
        {"context is shown as it stands", 0xC0000094, 0, 0, "100% %s %n", {"\n100% %s %n\n"}},
    };
    for (const Row& r : rows) {
        box.plainShown.clear();
        box.plainAnswers = {VNT_BTN_IGNORE};
        const VNT_EXCEPTION_RECORD rec{r.code, r.flags, nullptr, {1, r.accessed}};
        EXPECT_EQ(Vnt_ExceptHandleException__("App/Main", 12, &rec, r.context), 0) << r.name;
        EXPECT_TRUE(box.shown.empty()) << r.name << ": the plain box, not the message box";
        ASSERT_EQ(box.plainShown.size(), 1u) << r.name;
        for (const std::string& part : r.says)
            EXPECT_TRUE(contains(box.plainShown[0].text, part)) << r.name << ": no \"" << part << "\" in\n"
                                                                << box.plainShown[0].text;
    }
}

TEST_F(Reports, ExceptionVerdictFollowsTheAnswer) {
    const VNT_EXCEPTION_RECORD rec{0xC0000005, 0, nullptr, {0, 0}};
    box.plainAnswers = {VNT_BTN_RETRY};
    EXPECT_EQ(Vnt_ExceptHandleException__("App/Main", 1, &rec, "x"), -1) << "continue execution";
    box.plainAnswers = {VNT_BTN_IGNORE};
    EXPECT_EQ(Vnt_ExceptHandleException__("App/Main", 1, &rec, "x"), 0) << "go on searching";
}

TEST_F(Reports, ExceptionWithoutRecordIsAnInternalError) {
    EXPECT_EQ(Vnt_ExceptHandleException__("App/Main", 1, nullptr, "x"), 0);
    EXPECT_TRUE(box.plainShown.empty());
    EXPECT_TRUE(onlyBox().internalError);
}

using ReportsDeathTest = Reports;

TEST_F(ReportsDeathTest, ExceptionAbortEndsTheProcessWithCode3) {
    const VNT_EXCEPTION_RECORD rec{0xC0000005, 0, nullptr, {0, 0}};
    box.plainAnswers = {VNT_BTN_ABORT};
    EXPECT_EXIT(Vnt_ExceptHandleException__("App/Main", 1, &rec, "x"), ::testing::ExitedWithCode(3), "");
}

// ---------------------------------------------------------------------------
// The reader's reports
// ---------------------------------------------------------------------------

TEST_F(Reports, ReaderReportsGoToTheBox) {
    // An ID the system library does not hold.
    Vnt_MsgHLoad(nullptr, 40000);
    const VntBoxModel& m = onlyBox();
    EXPECT_TRUE(contains(m.text, "VTMINTRF: Internal Error.\nMessage ID 40000 not found.")) << m.text;
    EXPECT_EQ(m.icon, VNT_ICON_EXCLAMATION);
    EXPECT_FALSE(m.internalError);
}

TEST_F(Reports, ReaderReportTextIsShownAsItStands) {
    // The hook in place is the box's; a '%' in a report is not a directive.
    VNT_VTM_REPORT hook = Vnt_VtmSetReport(nullptr);
    Vnt_VtmSetReport(hook);
    ASSERT_NE(hook, nullptr);
    EXPECT_EQ(hook("!okVTMINTRF: Internal Error.\nError reading \"Z:\\100%s %n.vtm\""), VNT_RESP_OK);
    EXPECT_TRUE(contains(onlyBox().text, "Error reading \"Z:\\100%s %n.vtm\"")) << onlyBox().text;
}

TEST_F(ReportsDeathTest, ReaderReportNotConfirmedEndsTheProcessWithCode3) {
    box.answers = {VntBoxAnswer{VNT_BTN_CANCEL, false}};
    EXPECT_EXIT(Vnt_MsgHLoad(nullptr, 40000), ::testing::ExitedWithCode(3), "");
}

}  // namespace
