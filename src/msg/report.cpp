// Reports: internal errors of the library's consistency checks, the host's
// last error, structured exceptions, and the message library reader's own
// reports, all shown through the message box.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/format.h"
#include "base/strbuf.h"
#include "host/error.h"
#include "host/process.h"
#include "msg/msg_internal.h"
#include "msg/report_internal.h"
#include "msg/sysmsg.h"
#include "msg/upcalls.h"
#include "vanto/msg.h"
#include "vanto/vtm.h"

namespace {

// Where Vnt_MsgErrLastError says it reports from, whatever the caller: a
// fixed place that support knows from the details page (kept for
// compatibility).
constexpr const char* kLastErrorSource = "Msg/Vnt_msg";
constexpr int kLastErrorLine = 179;

constexpr std::size_t kDescSize = 60;        // description of an internal error
constexpr std::size_t kCallerTextMax = 512;  // caller's part of a last-error report

// Everything the reports keep for the whole process.
struct ReportState {
    char desc[kDescSize] = {};  // description of the internal error being reported
    bool busy = false;          // an internal error is being reported
};

ReportState& state() {
    static ReportState s;
    return s;
}

// Descriptions of the codes -1..-13 (index: -code - 1); -13 has none.
constexpr const char* kCodeDesc[] = {
    "Mem",      "CtlWin",   "WinListAdd",  "WinListDelete", "SlistAdd",
    "SlistRem", "SlistElt", "SlistUpdate", "Win=NULL",      "CreateWin",
    "ResStr",   "DBSubst",  "",
};

// Shows a literal text through the common message path. Vnt__Msg takes its
// arguments as a va_list, hence the variadic frame around it.
VNT_RESP showLiteral(const char* text, ...) {
    va_list ap;
    va_start(ap, text);
    VNT_RESP r = Vnt__Msg(nullptr, VntMsgRef(text), ap, 0, -1);
    va_end(ap);
    return r;
}

/*
 * The reader's report hook: the report becomes a message of the box. The
 * text is used as a format, so a '%' it carries (a file name may) is
 * doubled. The reader ends the process itself when the answer is not OK.
 */
VNT_RESP readerReport(const char* text) {
    std::string literal;
    for (const char* p = text ? text : ""; *p; ++p) {
        literal += *p;
        if (*p == '%') literal += '%';
    }
    return showLiteral(literal.c_str());
}

// Exception names, searched in order; code 0 ends the table.
struct ExceptName {
    uint32_t code;
    const char* name;
};
constexpr ExceptName kExceptNames[] = {
    {0xC0000005, "EXCEPTION_ACCESS_VIOLATION"},
    {0xC000008C, "EXCEPTION_ARRAY_BOUNDS_EXCEEDED"},
    {0x80000003, "EXCEPTION_BREAKPOINT"},
    {0x80000002, "EXCEPTION_DATATYPE_MISALIGNMENT"},
    {0xC000008D, "EXCEPTION_FLT_DENORMAL_OPERAND"},
    {0xC000008E, "EXCEPTION_FLT_DIVIDE_BY_ZERO"},
    {0xC000008F, "EXCEPTION_FLT_INEXACT_RESULT"},
    {0xC0000090, "EXCEPTION_FLT_INVALID_OPERATION"},
    {0xC0000091, "EXCEPTION_FLT_OVERFLOW"},
    {0xC0000092, "EXCEPTION_FLT_STACK_CHECK"},
    {0xC0000093, "EXCEPTION_FLT_UNDERFLOW"},
    {0xC000001D, "EXCEPTION_ILLEGAL_INSTRUCTION"},
    {0xC0000006, "EXCEPTION_IN_PAGE_ERROR"},
    {0xC0000094, "EXCEPTION_INT_DIVIDE_BY_ZERO"},
    {0xC0000095, "EXCEPTION_INT_OVERFLOW"},
    {0xC0000026, "EXCEPTION_INVALID_DISPOSITION"},
    {0xC0000025, "EXCEPTION_NONCONTINUABLE_EXCEPTION"},
    {0xC0000096, "EXCEPTION_PRIV_INSTRUCTION"},
    {0x80000004, "EXCEPTION_SINGLE_STEP"},
    {0xC00000FD, "EXCEPTION_STACK_OVERFLOW"},
    {0, nullptr},
};
constexpr uint32_t kAccessViolation = 0xC0000005;

const char* exceptName(uint32_t code) {
    for (const ExceptName* e = kExceptNames; e->code != 0; ++e)
        if (e->code == code) return e->name;
    return "UNKNOWN EXCEPTION";
}

// Severity from the top two bits of the code. "UNKNOWN" is never chosen;
// the word is kept for completeness.
const char* severityWord(uint32_t code) {
    static const char* const words[] = {"SUCCESS", "INFORMATIONAL", "WARNING", "ERROR", "UNKNOWN"};
    return words[code >> 30];
}

std::string flagsText(uint32_t flags) {
    if (flags == 0) return "EXCEPTION_CONTINUABLE";
    if (flags == 1) return "EXCEPTION_NONCONTINUABLE";
    return vnt::format("EXCEPTION_[NON]CONTINUABLE undefined?! (Flags: 0x%lX)", static_cast<unsigned long>(flags));
}

}  // namespace

namespace vnt::msg {

void connectReader() { Vnt_VtmSetReport(readerReport); }

void resetReports() {
    ReportState& s = state();
    s = ReportState{};
    connectReader();
}

}  // namespace vnt::msg

/*
 * Reports internal error `code`: the description is the code's own for
 * -1..-13 and system message 62003 for every other; the report is system
 * message 62002 in the box's internal-error mode. A report raised while one
 * is under way (from the box itself, say) is swallowed.
 */
bool Vnt__InternalError(bool condition, int code, const char* sourceFile, int line) {
    ReportState& s = state();
    s.desc[0] = '\0';
    if (!condition) return false;
    if (s.busy) return true;
    s.busy = true;
    if (code <= -1 && code >= -13)
        vnt::copyBounded(s.desc, kCodeDesc[-code - 1]);
    else
        vnt::copyBounded(s.desc, Vnt_MsgHLoad(nullptr, vnt::msg::sys::kInternalDesc));
    const char* text = Vnt_MsgHSprintf(nullptr, vnt::msg::sys::kInternalError, code, s.desc);
    Vnt__MsgErr(sourceFile, line, text, nullptr, 0);
    s.busy = false;
    return true;
}

/*
 * Shows `text` as an internal-error report: exclamation icon, OK and
 * Support, the details page from description, file and line. A leading '!'
 * and then a leading '&' are dropped: the report's mode sets the icon.
 */
VNT_RESP Vnt__MsgErr(const char* sourceFile, int line, const char* text, const char* description,
                     long helpId) {
    const char* t = text ? text : "";
    if (*t == '!') ++t;
    if (*t == '&') ++t;
    vnt::msg::ShowRequest req;
    req.text = t;
    req.internalError = true;
    req.helpContext = helpId;
    req.description = description;
    req.sourceFile = sourceFile;
    req.line = line;
    return vnt::msg::showBox(req);
}

/*
 * Reports the last error of the library's host calls: the caller's text
 * (at most 512 characters), the code and the host's description of it, in
 * a ring buffer. The error is cleared afterwards, so it is reported once.
 */
bool Vnt_MsgErrLastError(const char* text) {
    const vnt::host::Error error = vnt::host::lastError();
    if (!error) return false;
    std::string report;
    if (text && *text) {
        report.assign(text, strnlen(text, kCallerTextMax));
        report += "\n\n";
    }
    report += vnt::format("(Code = %lu)\n\n", error.code);
    report += vnt::host::errorText(error);
    char* buf = vnt::msg::ringTake();
    vnt::copyBounded(buf, vnt::msg::kTextSize, report);
    Vnt__MsgErr(kLastErrorSource, kLastErrorLine, buf, nullptr, 0);
    vnt::host::setLastError(vnt::host::ErrorKind::None);
    return true;
}

/*
 * The body of an exception filter: describes the exception (origin,
 * severity, code, context, place, name, flags) in system message 60450 and
 * asks in the plain box. Abort (2) ends the application, Retry (1)
 * continues execution (-1), anything else goes on searching (0).
 */
int Vnt_ExceptHandleException__(const char* sourceFile, int line, const VNT_EXCEPTION_RECORD* info,
                                const char* context) {
    if (Vnt__InternalError(info == nullptr, 1, "Vnt_Except", __LINE__)) return 0;
    namespace sys = vnt::msg::sys;
    const std::string ctx = context && *context ? context : Vnt_MsgHLoad(nullptr, sys::kExceptContext);
    const uint32_t code = info->code;
    const char* origin = (code & 0x20000000u) ? "USER" : "SYSTEM";
    std::string name = exceptName(code);
    if (code == kAccessViolation)
        name = Vnt_MsgHSprintf(nullptr, sys::kExceptAccess, name.c_str(),
                               reinterpret_cast<const void*>(info->info[1]));
    const std::string flags = flagsText(info->flags);
    const std::string text =
        Vnt_MsgHSprintf(nullptr, sys::kExceptReport, origin, severityWord(code), static_cast<unsigned long>(code),
                        ctx.c_str(), sourceFile ? sourceFile : "", line, info->address, name.c_str(),
                        flags.c_str());
    // The four-argument form: the text is final, no formatting on the way.
    const VNT_RESP r = Vnt_MsgBox(text.c_str(), nullptr, nullptr, false);
    if (r == VNT_RESP_CANCEL) {
        vnt::host::writeExitReason(3, "an exception report was answered Abort: " + text);
        vnt::msg::endApplication(3);
    }
    return r == VNT_RESP_OK ? -1 : 0;
}
