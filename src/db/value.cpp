// Field values of a record set and their conversions.
#include "db/value.h"

#include <charconv>
#include <cmath>
#include <cstddef>

#include "base/format.h"
#include "base/names.h"
#include "vanto/amount.h"

namespace vnt::db {
namespace {

// Numbers and time stamps may stand between blanks and line ends.
std::string_view trim(std::string_view s) { return vnt::trim(s, " \t\r\n"); }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// -- texts of values ---------------------------------------------------------

std::string doubleText(double d) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, d);
    return std::string(buf, r.ptr);
}

std::string dateText(const Stamp& t) { return vnt::format("%04d-%02d-%02d", t.year, t.month, t.day); }

std::string timeText(const Stamp& t) {
    std::string s = vnt::format("%02d:%02d:%02d", t.hour, t.minute, t.second);
    if (t.fraction) {
        std::string f = vnt::format("%09lu", t.fraction % 1000000000ul);
        while (f.back() == '0') f.pop_back();
        s += "." + f;
    }
    return s;
}

}  // namespace

std::string textOf(const Value& v) {
    switch (v.kind) {
    case Kind::Integer: return std::to_string(v.i);
    case Kind::Double: return doubleText(v.d);
    case Kind::Date: return dateText(v.ts);
    case Kind::Time: return timeText(v.ts);
    case Kind::Timestamp: return dateText(v.ts) + " " + timeText(v.ts);
    default: return v.text;
    }
}

namespace {

// A decimal number "  -12,5e3 ": sign, digits, one "." or ",", digits, an
// exponent. `out` gets it with "." and without blanks.
bool numberText(std::string_view s, std::string& out, int& places, bool& exponent) {
    s = trim(s);
    out.clear();
    places = 0;
    exponent = false;
    std::size_t i = 0;
    int digits = 0;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) out += s[i++];
    for (; i < s.size() && isDigit(s[i]); ++i, ++digits) out += s[i];
    if (i < s.size() && (s[i] == '.' || s[i] == ',')) {
        out += '.';
        for (++i; i < s.size() && isDigit(s[i]); ++i, ++digits, ++places) out += s[i];
    }
    if (digits == 0) return false;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        exponent = true;
        out += 'e';
        ++i;
        if (i < s.size() && (s[i] == '-' || s[i] == '+')) out += s[i++];
        const std::size_t start = i;
        for (; i < s.size() && isDigit(s[i]); ++i) out += s[i];
        if (i == start) return false;
    }
    if (!out.empty() && out[0] == '+') out.erase(0, 1);
    return i == s.size();
}

}  // namespace

// The value of a decimal text, read with the amount functions where the text
// fits them, so that "10.5" and "10,5" read the same in every locale.
bool parseNumber(std::string_view s, double& d) {
    std::string n;
    int places;
    bool exponent;
    if (!numberText(s, n, places, exponent)) return false;
    const std::size_t intDigits = n.find_first_of(".e") == std::string::npos ? n.size() : n.find_first_of(".e");
    if (!exponent && places <= 12 && intDigits + 12 + 3 <= 40) {
        Vnt_FloatFromStr(n.c_str(), &d, places);
        return true;
    }
    const auto r = std::from_chars(n.data(), n.data() + n.size(), d);
    return r.ec == std::errc() && std::isfinite(d);
}

namespace {

bool parseInteger(std::string_view s, long long& i) {
    s = trim(s);
    if (!s.empty() && s[0] == '+') s.remove_prefix(1);
    const auto r = std::from_chars(s.data(), s.data() + s.size(), i);
    if (r.ec == std::errc() && r.ptr == s.data() + s.size()) return true;
    double d;
    if (!parseNumber(s, d) || d != std::floor(d) || std::fabs(d) >= 9.2e18) return false;
    i = static_cast<long long>(d);
    return true;
}

// Reads `n` digits at `i` into `out`.
bool digitsAt(std::string_view s, std::size_t& i, int n, int& out) {
    out = 0;
    for (int k = 0; k < n; ++k, ++i) {
        if (i >= s.size() || !isDigit(s[i])) return false;
        out = out * 10 + (s[i] - '0');
    }
    return true;
}

// "hh:mm[:ss[.fffffffff]]" at `i`, to the end of the text.
bool parseTime(std::string_view s, std::size_t i, Stamp& t) {
    if (!digitsAt(s, i, 2, t.hour) || i >= s.size() || s[i++] != ':' || !digitsAt(s, i, 2, t.minute)) return false;
    t.second = 0;
    t.fraction = 0;
    if (i < s.size() && s[i] == ':') {
        ++i;
        if (!digitsAt(s, i, 2, t.second)) return false;
        if (i < s.size() && s[i] == '.') {
            unsigned long scale = 100000000ul;
            for (++i; i < s.size() && isDigit(s[i]); ++i, scale /= 10) t.fraction += (s[i] - '0') * scale;
        }
    }
    return i == s.size() && t.hour < 24 && t.minute < 60 && t.second < 62;
}

// "yyyy-mm-dd", "yyyy-mm-dd hh:mm[:ss[.f]]" ("T" for the blank), or, with
// `timeOnly` allowed, a time alone.
bool parseStamp(std::string_view s, Stamp& t, bool& hasDate, bool& hasTime) {
    s = trim(s);
    t = Stamp{};
    hasDate = hasTime = false;
    std::size_t i = 0;
    if (s.size() >= 3 && s[2] == ':') return (hasTime = parseTime(s, 0, t));
    if (!digitsAt(s, i, 4, t.year) || i >= s.size() || s[i++] != '-' || !digitsAt(s, i, 2, t.month) ||
        i >= s.size() || s[i++] != '-' || !digitsAt(s, i, 2, t.day))
        return false;
    const VNT_DATE d{static_cast<std::uint16_t>(t.year), static_cast<std::uint8_t>(t.month),
                     static_cast<std::uint8_t>(t.day)};
    if (!Vnt_DateIsValid(d, false)) return false;
    hasDate = true;
    if (i == s.size()) return true;
    if (s[i] != ' ' && s[i] != 'T') return false;
    return (hasTime = parseTime(s, i + 1, t));
}

}  // namespace

// The value `src` as a value of kind `to`; `decimals` are the target's
// places (DECIMAL). False when it does not convert.
bool convert(const Value& src, Kind to, int decimals, Value& out) {
    out = Value{};
    out.kind = to;
    if (src.null) return false;
    out.null = false;
    const bool textual = src.kind == Kind::Text || src.kind == Kind::Decimal;
    switch (to) {
    case Kind::Text:
        out.text = textOf(src);
        return true;
    case Kind::Binary:
        out.text = src.text;
        return src.kind == Kind::Text || src.kind == Kind::Binary;
    case Kind::Integer:
        if (src.kind == Kind::Integer) { out.i = src.i; return true; }
        if (src.kind == Kind::Double) {
            if (!std::isfinite(src.d) || src.d != std::floor(src.d) || std::fabs(src.d) >= 9.2e18) return false;
            out.i = static_cast<long long>(src.d);
            return true;
        }
        return textual && parseInteger(src.text, out.i);
    case Kind::Double:
        if (src.kind == Kind::Integer) { out.d = static_cast<double>(src.i); return true; }
        if (src.kind == Kind::Double) { out.d = src.d; return true; }
        return textual && parseNumber(src.text, out.d);
    case Kind::Decimal: {
        if (src.kind == Kind::Integer) { out.text = std::to_string(src.i); return true; }
        if (src.kind == Kind::Double) {
            if (!std::isfinite(src.d)) return false;
            char buf[60];
            if (decimals > 0 && decimals <= 12 && !Vnt_FloatToStr(buf, sizeof buf, src.d, decimals, true)) {
                out.text = buf;
                // The locale's decimal character becomes the driver's ".".
                for (char& c : out.text)
                    if (c != '-' && !isDigit(c)) c = '.';
            } else {
                out.text = doubleText(src.d);
            }
            return true;
        }
        int places;
        bool exponent;
        return textual && numberText(src.text, out.text, places, exponent);
    }
    case Kind::Date:
    case Kind::Time:
    case Kind::Timestamp: {
        Stamp t = src.ts;
        bool hasDate = src.kind == Kind::Date || src.kind == Kind::Timestamp;
        bool hasTime = src.kind == Kind::Time || src.kind == Kind::Timestamp;
        if (src.kind == Kind::Text && !parseStamp(src.text, t, hasDate, hasTime)) return false;
        if (src.kind != Kind::Text && !hasDate && !hasTime) return false;
        if (to == Kind::Date) {
            if (!hasDate) return false;
            t.hour = t.minute = t.second = 0;
            t.fraction = 0;
        } else if (to == Kind::Time) {
            if (!hasTime) return false;
            t.year = t.month = t.day = 0;
        } else if (!hasDate) {
            return false;
        }
        out.ts = t;
        return true;
    }
    }
    return false;
}

namespace {

// A value that is not null.
Value given(Kind kind) {
    Value v;
    v.null = false;
    v.kind = kind;
    return v;
}

Value stampValue(const Stamp& t, Kind kind) {
    Value v = given(kind);
    v.ts = t;
    return v;
}

}  // namespace

Value valueOf(const char* text) {
    Value v = given(Kind::Text);
    v.null = text == nullptr;
    v.text = text ? text : "";
    return v;
}

Value valueOf(long i) {
    Value v = given(Kind::Integer);
    v.i = i;
    return v;
}

Value valueOf(double d) {
    Value v = given(Kind::Double);
    v.d = d;
    return v;
}

Value valueOf(const VNT_DATE& date) {
    return stampValue(Stamp{date.year, date.month, date.day, 0, 0, 0, 0}, Kind::Date);
}

Value valueOf(const tagTIMESTAMP_STRUCT& t) {
    return stampValue(Stamp{t.year, t.month, t.day, t.hour, t.minute, t.second, t.fraction}, Kind::Timestamp);
}

Value valueOf(const VntDate& date) {
    return stampValue(Stamp{date.date.year, date.date.month, date.date.day, date.time.hour, date.time.minute,
                            date.time.second, date.time.fraction * 10000000ul},
                      Kind::Timestamp);
}

}  // namespace vnt::db
