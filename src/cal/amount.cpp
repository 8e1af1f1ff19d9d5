// Decimal amounts and money: the rounding rule, the percentage and discount
// computations, and the text forms of decimal values.
//
// Texts are made with std::to_chars and read with std::from_chars, which
// never look at the C run time's locale: the decimal character is always
// the one of the library's locale record, put in (and taken out) here.

#include "vanto/amount.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "base/strbuf.h"
#include "cal/cal_state.h"
#include "vanto/msg.h"

namespace {

constexpr const char* kSourceAmount = "Cal/Amount";

// 2^-52: below this a rounded amount counts as zero, and a rounding that
// moves the value by less has not changed it.
constexpr double kEpsilon = 2.220446049250313e-16;

constexpr int kMaxRoundPlaces = 12;
constexpr int kMaxTextPlaces = 20;

// The scales of the rounding rule, held in single precision on purpose:
// 1e11 and 1e12 are not exact there (99999997952, 999999995904), and the
// rounded values at 11 and 12 places are multiples of those scales.
constexpr float kScale[kMaxRoundPlaces + 1] = {1e0f, 1e1f, 1e2f, 1e3f,  1e4f,  1e5f, 1e6f,
                                               1e7f, 1e8f, 1e9f, 1e10f, 1e11f, 1e12f};

// A double's longest fixed text: 309 whole digits, sign, point, 21 places.
constexpr std::size_t kFixedMax = 340;

int currencyPlaces() { return std::max(0, vnt::cal::sysInfo().iCurrDigits); }

// The locale's decimal character; '.' when the record has none or one that
// could not be told apart from the number itself (a digit, a sign, a blank).
char decimalChar() {
    const char c = vnt::cal::sysInfo().cDecimal;
    if (c == '\0' || (c >= '0' && c <= '9') || c == '-' || c == '+' || c == ' ') return '.';
    return c;
}

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads the number at the start of `s` like the C run time's conversion in
// its "C" locale, with `point` as the decimal point: blanks, a sign, digits,
// the point and digits, an exponent. Reading stops at the first character
// that cannot belong to the number; no number gives 0. Infinities, NaNs and
// hexadecimal forms are not amounts and are not read. A value beyond the
// range of double reads as an infinity (a huge exponent) or zero (a tiny one).
double readNumber(const char* s, char point) {
    while (isBlank(*s)) ++s;
    // The number is gathered in the form from_chars takes: '-', digits, '.'.
    // The input is at most 40 characters; longer runs are cut, which only
    // happens to direct callers and then reads the number's first part.
    char norm[96];
    std::size_t n = 0;
    const auto put = [&](char c) {
        if (n < sizeof norm - 1) norm[n++] = c;
    };
    bool negative = false;
    if (*s == '-' || *s == '+') negative = *s++ == '-';
    if (negative) put('-');
    const char* start = s;
    for (; isDigit(*s); ++s) put(*s);
    bool digits = s != start;
    if (*s == point) {
        put('.');
        for (start = ++s; isDigit(*s); ++s) put(*s);
        digits = digits || s != start;
    }
    if (!digits) return 0.0;
    bool negativeExponent = false;
    if (*s == 'e' || *s == 'E') {
        const char* e = s + 1;
        const bool minus = *e == '-';
        if (*e == '-' || *e == '+') ++e;
        if (isDigit(*e)) {
            negativeExponent = minus;
            put('e');
            if (minus) put('-');
            for (; isDigit(*e); ++e) put(*e);
        }
    }
    double value = 0.0;
    const auto [end, ec] = std::from_chars(norm, norm + n, value, std::chars_format::general);
    (void)end;
    if (ec == std::errc::result_out_of_range) {
        // Without an exponent no text of this length leaves the range, so
        // the exponent's sign tells overflow from underflow.
        value = negativeExponent ? 0.0 : HUGE_VAL;
        if (negative) value = -value;
    } else if (ec != std::errc()) {
        value = 0.0;
    }
    return value;
}

// The fixed text of `value` with `places` places, the point replaced by the
// locale's decimal character; returns its length.
std::size_t fixedText(char (&out)[kFixedMax], double value, int places, char point) {
    const auto [end, ec] = std::to_chars(out, out + sizeof out - 1, value, std::chars_format::fixed, places);
    if (ec != std::errc()) {
        out[0] = '\0';
        return 0;
    }
    *end = '\0';
    if (char* p = std::strchr(out, '.')) *p = point;
    return static_cast<std::size_t>(end - out);
}

bool overflow(char* buf, unsigned size) {
    std::memset(buf, '?', size - 1);
    buf[size - 1] = '\0';
    ++vnt::cal::state().amount.overflows;
    return true;
}

}  // namespace

/*
 * The value's fraction is scaled in single precision and split; the
 * remainder, held as a float, decides: at least one half (less 2^-52) rounds
 * away from zero. A remainder within single precision of one half therefore
 * rounds up, so the nearest double of 2.345 (2.34499999...) becomes 2.35.
 */
bool Vnt_FloatRound(double* value, int decimals) {
    if (Vnt__InternalError(value == nullptr, 1, kSourceAmount, __LINE__)) return false;
    const double old = *value;
    const bool negative = old < 0;
    if (decimals < 0) decimals = currencyPlaces();
    decimals = std::clamp(decimals, 0, kMaxRoundPlaces);
    const float scale = kScale[decimals];

    double whole = 0.0;
    const double fraction = std::modf(old, &whole);
    double units = 0.0;
    const float remainder = static_cast<float>(std::modf(std::fabs(fraction) * scale, &units));
    if (remainder >= 0.5 - kEpsilon) units += 1.0;

    *value = negative ? whole - units / scale : whole + units / scale;
    return std::fabs(*value - old) >= kEpsilon;
}

bool Vnt_FloatRound2(double* value) { return Vnt_FloatRound(value, 2); }

bool Vnt_MoneyRound(double* value) { return Vnt_FloatRound(value, currencyPlaces()); }

bool Vnt_MoneyIsNull(double value) {
    Vnt_MoneyRound(&value);
    return std::fabs(value) < kEpsilon;
}

void Vnt_FloatProzBetrag(double* out, double amount, double percent, bool included) {
    if (Vnt__InternalError(out == nullptr, 1, kSourceAmount, __LINE__)) return;
    *out = included ? amount / (100.0 + percent) * percent : amount * percent / 100.0;
    Vnt_MoneyRound(out);
}

void Vnt_FloatRabattBetrag(double* amount, double percent, bool deduct) {
    if (Vnt__InternalError(amount == nullptr, 1, kSourceAmount, __LINE__)) return;
    double discount = deduct ? *amount * percent / 100.0 : *amount / (100.0 - percent) * percent;
    Vnt_MoneyRound(&discount);
    *amount = deduct ? *amount - discount : *amount + discount;
}

void Vnt_FloatBetrag(double* amount, double percent, bool included, bool add) {
    if (Vnt__InternalError(amount == nullptr, 1, kSourceAmount, __LINE__)) return;
    double part = 0.0;
    Vnt_FloatProzBetrag(&part, *amount, percent, included);
    Vnt_MoneyRound(amount);
    *amount = add ? *amount + part : *amount - part;
}

/*
 * The probe with one place more tells whether the text is rounded (its last
 * digit is not 0). The text itself is made from the value rounded by the
 * rule above, so text and Vnt_FloatRound always agree. Whether it fits is
 * judged on that text: a carry (9.995 => 10.00) can make it one digit longer
 * than the unrounded value, and the field must never be overrun.
 */
bool Vnt_FloatToStr(char* buf, unsigned size, double value, int decimals, bool leftAligned) {
    if (Vnt__InternalError(buf == nullptr || size <= 1, 1, kSourceAmount, __LINE__)) return false;
    if (decimals < 0) decimals = currencyPlaces();
    decimals = std::clamp(decimals, 0, kMaxTextPlaces);
    if (!std::isfinite(value)) return overflow(buf, size);

    char text[kFixedMax];
    const std::size_t probeLen = fixedText(text, value, decimals + 1, '.');
    const bool rounded = probeLen > 0 && text[probeLen - 1] != '0';

    double shown = value;
    Vnt_FloatRound(&shown, decimals);
    const bool small = value != 0.0 && shown == 0.0;
    if (shown == 0.0) shown = 0.0;  // no "-" before a zero
    const std::size_t len = fixedText(text, shown, decimals, decimalChar());

    const std::size_t width = size - 1;
    if (len == 0 || len > width) return overflow(buf, size);
    if (small) ++vnt::cal::state().amount.smalls;
    std::size_t at = 0;
    if (!leftAligned) {
        at = width - len;
        std::memset(buf, ' ', at);
    }
    vnt::copyBounded(buf + at, size - at, std::string_view(text, len));
    return rounded;
}

bool Vnt_FloatToStr(std::string& text, double value, int decimals, bool leftAligned) {
    char buf[60];
    const bool result = Vnt_FloatToStr(buf, sizeof buf, value, decimals, leftAligned);
    text = buf;
    return result;
}

bool Vnt_MoneyToStr(char* buf, unsigned size, double value, bool leftAligned) {
    return Vnt_FloatToStr(buf, size, value, currencyPlaces(), leftAligned);
}

bool Vnt_MoneyToStr(std::string& text, double value, bool leftAligned) {
    return Vnt_FloatToStr(text, value, currencyPlaces(), leftAligned);
}

/*
 * The text is read into the subsystem's 41-byte buffer, its first "," or
 * "." made the locale's decimal character, read, written back with
 * `decimals` places and read again: the value is rounded by way of its
 * text. The conversions here are not the caller's, so the counters of the
 * text form are put back as they were.
 */
bool Vnt_FloatFromStr(const char* text, double* value, int decimals) {
    if (Vnt__InternalError(text == nullptr || value == nullptr, 1, kSourceAmount, __LINE__)) return false;
    if (decimals < 0) decimals = Vnt_FloatDecPlaces(text);
    vnt::cal::AmountState& st = vnt::cal::state().amount;
    const char point = decimalChar();
    vnt::copyBounded(st.readBuf, text);
    if (char* p = std::strpbrk(st.readBuf, ",.")) *p = point;
    const double number = readNumber(st.readBuf, point);

    const long overflows = st.overflows, smalls = st.smalls;
    const bool result = Vnt_FloatToStr(st.readBuf, sizeof st.readBuf, number, decimals, true);
    *value = readNumber(st.readBuf, point);
    st.overflows = overflows;
    st.smalls = smalls;
    return result;
}

bool Vnt_FloatFromStr(const char* text, int decimals, double* value) {
    return Vnt_FloatFromStr(text, value, decimals);
}

bool Vnt_MoneyFromStr(const char* text, double* value) {
    return Vnt_FloatFromStr(text, value, currencyPlaces());
}

int Vnt_FloatDecPlaces(const char* text) {
    if (text == nullptr) return 0;
    const char* p = std::strchr(text, decimalChar());
    if (p == nullptr) return 0;
    int places = 0;
    while (isDigit(*++p)) ++places;
    return places;
}

long Vnt_FloatOverflowCount() { return vnt::cal::state().amount.overflows; }

long Vnt_FloatSmallCount() { return vnt::cal::state().amount.smalls; }
