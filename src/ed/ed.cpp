// The edit control's conversions between text and typed values.

#include "vanto/ed.h"

#include <bit>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/strbuf.h"
#include "cal/odbc_timestamp.h"
#include "ed/ed_state.h"
#include "vanto/amount.h"
#include "vanto/locale.h"
#include "vanto/msg.h"

namespace vnt::ed {

EdState& state() {
    static EdState s;
    return s;
}

void reset() { state() = EdState{}; }

}  // namespace vnt::ed

using vnt::ed::state;

const double VNT_ED_EMPTY_DOUBLE = std::bit_cast<double>(std::uint64_t{0xC413C84846922B8CULL});

VntEdTextItf::~VntEdTextItf() = default;

namespace {

constexpr const char* kSource = "Vnt_Ed";
constexpr const char* kValueOps = "Get/SetVal()";
constexpr const char* kTextOps = "Get/SetText()";

// Internal error codes of this source.
constexpr int kErrDateSize = 1;

bool isEmptyDouble(double v) { return std::bit_cast<std::uint64_t>(v) == 0xC413C84846922B8CULL; }

// The type message, once for a type: a report for the same type as the last
// report stays silent, so that an exchange repeated on a wrong control does
// not show it again and again.
void typeMessage(long type, const char* ops) {
    if (state().lastReportedType == type) return;
    state().lastReportedType = type;
    // The leading "-" is the box's icon character (no icon): the box shows "--> Type ...".
    Vnt_MsgH(nullptr, "---> Type %d does not support '%s'. <---\n(%s these operations)", static_cast<int>(type), ops,
             Vnt_EdIsTextType(type) ? "text types do not support" : "non-text types do not support");
}

bool blankOnly(const char* text) {
    if (!text) return true;
    for (; *text; ++text)
        if (*text != ' ' && *text != '\t') return false;
    return true;
}

// A 32-bit number as the C run time reads it ("12abc" is 12); wider values
// keep their low 32 bits.
std::int32_t readLong(const char* text) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::strtoll(text ? text : "", nullptr, 10)));
}

const char* putText(std::string_view s) {
    vnt::copyBounded(state().valueText, s);
    return state().valueText;
}

const char* putNumber(long long v) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "%lld", v);
    return putText(digits);
}

// The date part of what a date value points at, by its size code.
bool dateOf(const void* value, int size, VNT_DATE& d) {
    if (size == VNT_ED_DATE_TIMESTAMP) {
        const auto* ts = static_cast<const tagTIMESTAMP_STRUCT*>(value);
        d = VNT_DATE{static_cast<std::uint16_t>(ts->year), static_cast<std::uint8_t>(ts->month),
                     static_cast<std::uint8_t>(ts->day)};
        return true;
    }
    if (size == VNT_ED_DATE_CTIME || size == VNT_ED_DATE_VNTDATE) {
        std::memcpy(&d, value, sizeof d);  // both begin like VNT_DATE
        return true;
    }
    Vnt__InternalError(true, kErrDateSize, kSource, __LINE__);
    return false;
}

bool zeroDate(const VNT_DATE& d) { return d.year == 0 && d.month == 0 && d.day == 0; }

const char* dateText(const VNT_DATE& d, char* buf, std::size_t size) {
    if (zeroDate(d)) {
        buf[0] = '\0';
        return buf;
    }
    Vnt_DateToStr(buf, static_cast<unsigned>(size), &d);
    return buf;
}

// Stores a date read from text by the size code.
void storeDate(void* value, int size, const VNT_DATE& d) {
    if (size == VNT_ED_DATE_TIMESTAMP) {
        auto* ts = static_cast<tagTIMESTAMP_STRUCT*>(value);
        *ts = tagTIMESTAMP_STRUCT{};
        ts->year = static_cast<decltype(ts->year)>(d.year);
        ts->month = d.month;
        ts->day = d.day;
    } else if (size == VNT_ED_DATE_VNTDATE) {
        static_cast<VntDate*>(value)->Set(d);
    } else {
        *static_cast<VNT_DATE*>(value) = d;
    }
}

// Reads a date text: empty gives all zeros.
void readDate(const char* text, VNT_DATE& d, bool empty) {
    if (empty) {
        d = VNT_DATE{};
        return;
    }
    Vnt_SysDateFromStr(d, text, nullptr);
}

}  // namespace

bool Vnt_EdIsTextType(long type) { return type == VNT_ED_TEXT || type == VNT_ED_TEXT2 || type == VNT_ED_TEXT3; }

const char* Vnt__EdSetVal(long type, const void* value, double dValue, int sizeOrDec) {
    switch (type) {
    case VNT_ED_DECIMAL:
    case VNT_ED_AMOUNT: {
        const double v = value ? *static_cast<const double*>(value) : dValue;
        if (isEmptyDouble(v)) return putText("");
        Vnt_FloatToStr(state().valueText, sizeof state().valueText, v, sizeOrDec, true);
        return state().valueText;
    }
    case VNT_ED_SHORT: {
        std::int16_t v;
        if (value && sizeOrDec == 2) v = *static_cast<const std::int16_t*>(value);
        else if (value && sizeOrDec == 4) v = static_cast<std::int16_t>(*static_cast<const std::int32_t*>(value));
        else v = static_cast<std::int16_t>(static_cast<std::int32_t>(static_cast<long long>(dValue)));
        return v == VNT_ED_EMPTY_SHORT ? putText("") : putNumber(v);
    }
    case VNT_ED_LONG: {
        const std::int32_t v = value ? *static_cast<const std::int32_t*>(value)
                                     : static_cast<std::int32_t>(static_cast<long long>(dValue));
        return v == VNT_ED_EMPTY_LONG ? putText("") : putNumber(v);
    }
    case VNT_ED_CHAR: {
        const char c[2] = {value ? *static_cast<const char*>(value) : static_cast<char>(dValue), '\0'};
        return putText(c);
    }
    case VNT_ED_DATE: {
        VNT_DATE d{};
        if (!value || !dateOf(value, sizeOrDec, d)) return putText("");
        char buf[20];
        return putText(dateText(d, buf, sizeof buf));
    }
    case VNT_ED_NONE:
        return putText("");
    default:
        typeMessage(type, kValueOps);
        return putText("");
    }
}

double Vnt__EdGetVal(long type, const char* text, void* value, int sizeOrDec, bool* empty) {
    const bool isEmpty = blankOnly(text);
    if (empty) *empty = isEmpty;
    switch (type) {
    case VNT_ED_DECIMAL:
    case VNT_ED_AMOUNT: {
        double v = 0;
        if (!isEmpty) Vnt_FloatFromStr(text, &v, sizeOrDec);
        if (value) *static_cast<double*>(value) = v;
        return v;
    }
    case VNT_ED_SHORT: {
        const auto v = static_cast<std::int16_t>(readLong(text));
        if (value && sizeOrDec == 2) *static_cast<std::int16_t*>(value) = v;
        return v;
    }
    case VNT_ED_LONG: {
        const std::int32_t v = readLong(text);
        if (value) *static_cast<std::int32_t*>(value) = v;
        return v;
    }
    case VNT_ED_CHAR: {
        const char c = text ? text[0] : '\0';
        if (value) *static_cast<char*>(value) = c;
        return static_cast<unsigned char>(c);
    }
    case VNT_ED_DATE: {
        if (sizeOrDec == VNT_ED_DATE_CTIME) {
            Vnt__MsgErr(kSource, __LINE__, "!Internal Error: CTime is no more supported for date controls.");
            return 0;
        }
        if (!value) return 0;
        VNT_DATE d{};
        readDate(text, d, isEmpty);
        storeDate(value, sizeOrDec, d);
        return 1;
    }
    case VNT_ED_NONE:
        return 0;
    default:
        typeMessage(type, kValueOps);
        return 0;
    }
}

const char* Vnt__EdSetDate(long type, const VNT_DATE* date) {
    char* buf = state().dateText;
    buf[0] = '\0';
    if (type != VNT_ED_DATE) {
        typeMessage(type, kValueOps);
        return buf;
    }
    if (!date) return buf;
    return dateText(*date, buf, sizeof state().dateText);
}

bool Vnt__EdGetDate(long type, const char* text, VNT_DATE* date, bool* empty) {
    const bool isEmpty = blankOnly(text);
    if (empty) *empty = isEmpty;
    if (type != VNT_ED_DATE) {
        typeMessage(type, kValueOps);
        return false;
    }
    if (!date) return false;
    readDate(text, *date, isEmpty);
    return true;
}

bool Vnt__EdGetString(long type, std::string& text, VNT_HWND win, const VntEdTextItf* control) {
    if (!Vnt_EdIsTextType(type)) {
        typeMessage(type, kTextOps);
        return false;
    }
    if (win) {
        VntWindowPort& port = Vnt_UiWindow();
        const long len = port.Send(win, VNT_WM_GETTEXTLENGTH, 0, 0);
        std::string buf(static_cast<std::size_t>(len > 0 ? len : 0) + 1, '\0');
        const long got = port.Send(win, VNT_WM_GETTEXT, buf.size(), reinterpret_cast<intptr_t>(buf.data()));
        buf.resize(static_cast<std::size_t>(got > 0 && got < static_cast<long>(buf.size()) ? got : 0));
        text = std::move(buf);
        return true;
    }
    if (!control) return false;
    text = control->EdGetText();
    return true;
}

bool Vnt__EdSetString(long type, const char* text, VNT_HWND win, VntEdTextItf* control) {
    if (!Vnt_EdIsTextType(type)) {
        typeMessage(type, kTextOps);
        return false;
    }
    if (win) {
        Vnt_UiWindow().Send(win, VNT_WM_SETTEXT, 0, reinterpret_cast<intptr_t>(text ? text : ""));
        return true;
    }
    if (!control) return false;
    control->EdSetText(text ? text : "");
    return true;
}
