// The "intl" record, the date print format derived from it, and date texts.
#include "base/strbuf.h"
#include "cal/cal_state.h"
#include "host/intl.h"
#include "vanto/date.h"
#include "vanto/locale.h"
#include "vanto/msg.h"

#include <cstring>
#include <string>

namespace {

using vnt::cal::LocaleState;

// Where the print format keeps each field's width digit and the separators.
constexpr int kWidthPos[3] = {2, 7, 12};
constexpr int kSepPos[2] = {4, 9};

LocaleState& loc() { return vnt::cal::state().locale; }

bool sourceValue(const char* key, std::string& out) {
    if (VntIntlSource* s = loc().source) return s->value(key, out);
    return vnt::host::intlValue(key, out);
}

// As a profile number is read: the leading digits after an optional sign;
// a missing or empty value gives the default.
int intlInt(const char* key, int def) {
    std::string v;
    if (!sourceValue(key, v) || v.empty()) return def;
    std::size_t i = 0;
    bool neg = false;
    if (v[i] == '-' || v[i] == '+') neg = v[i++] == '-';
    long n = 0;
    for (; i < v.size() && v[i] >= '0' && v[i] <= '9' && n < 100000000; ++i) n = n * 10 + (v[i] - '0');
    return static_cast<int>(neg ? -n : n);
}

// A character setting: the first character of the text, 0 when there is none.
char intlChar(const char* key) {
    std::string v;
    return sourceValue(key, v) && !v.empty() ? v[0] : '\0';
}

template <std::size_t N>
void intlText(const char* key, char (&dst)[N], const char* def) {
    std::string v;
    vnt::copyBounded(dst, sourceValue(key, v) ? v.c_str() : def);
}

bool isDateLetter(char c) { return c == 'd' || c == 'M' || c == 'y'; }

// The width of one field as the print format holds it: a digit character.
char widthDigit(std::size_t n) { return static_cast<char>('0' + (n > 9 ? 9 : n)); }

void deriveFormat(LocaleState& s) {
    const char* f = s.info.szShortDate;
    const std::size_t len = std::strlen(f);
    s.order = f[0] == 'y' ? VNT_DATE_ORDER_YMD : f[0] == 'd' ? VNT_DATE_ORDER_DMY : VNT_DATE_ORDER_MDY;

    s.info.cDateSep1 = s.info.cDateSep2 = '.';
    std::size_t i = 0;
    while (i < len && isDateLetter(f[i])) ++i;
    if (i < len) {
        s.info.cDateSep1 = f[i++];
        s.printFormat[kSepPos[0]] = s.info.cDateSep1;
    }
    while (i < len && isDateLetter(f[i])) ++i;
    if (i < len) {
        s.info.cDateSep2 = f[i];
        s.printFormat[kSepPos[1]] = s.info.cDateSep2;
    }

    // Field widths: the first two fields run to the first separator, the
    // third to the second one or the end; a separator not found runs to the
    // end. Formats with two different separators therefore get odd widths
    // ("dd-MM yyyy" => "%02d-%07d %00d"), as they always have.
    std::size_t pos = 0;
    for (int field = 0; field < 3; ++field) {
        const char sep = field < 2 ? s.info.cDateSep1 : s.info.cDateSep2;
        std::size_t w = 0;
        while (pos + w < len && f[pos + w] != sep) ++w;
        s.printFormat[kWidthPos[field]] = widthDigit(w);
        pos = pos + w + 1 > len ? len : pos + w + 1;
    }

    s.readSeps[0] = s.info.cDateSep1;
    s.readSeps[1] = s.info.cDateSep2;
}

void load() {
    LocaleState& s = loc();
    vnt::copyBounded(s.printFormat, "%02d_%02d_%02d");
    VNT_SYS_INFO& i = s.info;
    i = VNT_SYS_INFO{};
    i.iCurrDigits = intlInt("iCurrDigits", 2);
    i.iCountry = intlInt("iCountry", 49);
    i.cDecimal = intlChar("sDecimal");
    i.cThousand = intlChar("sThousand");
    i.cTime = intlChar("sTime");
    intlText("sCurrency", i.szCurrency, "");
    intlText("sLanguage", i.szLanguage, "");
    intlText("sShortDate", i.szShortDate, "dd.MM.yyyy");
    deriveFormat(s);
    s.loaded = true;
}

void appendPadded(std::string& out, int value, char widthChar) {
    const int width = widthChar >= '0' && widthChar <= '9' ? widthChar - '0' : 0;
    std::string digits = std::to_string(value < 0 ? -static_cast<long>(value) : value);
    const int pad = width - static_cast<int>(digits.size()) - (value < 0 ? 1 : 0);
    if (value < 0) out += '-';
    if (pad > 0) out.append(static_cast<std::size_t>(pad), '0');
    out += digits;
}

// One field of a date text; -1 marks a field left unset.
struct Reader {
    const char* p;
    const char* seps;
    bool surplus = false;

    bool isSep(char c) const { return c && std::strchr(seps, c) != nullptr; }
    static bool digit(char c) { return c >= '0' && c <= '9'; }

    long field(bool isYear, int limit) {
        if (!*p) return -1;
        if (*p == '*') {
            ++p;
            if (*p && *p != '*' && !digit(*p)) ++p;
            return -1;
        }
        if (!digit(*p)) {
            ++p;
            return -1;
        }
        long n = 0;
        if (isYear) {
            const char* q = p;
            while (digit(*q)) {
                if (n < 100000000) n = n * 10 + (*q - '0');
                ++q;
            }
            for (int k = 0; k < 4 && digit(*p); ++k) ++p;
        } else {
            n = *p - '0';
            int used = 1;
            if (digit(p[1])) {
                const long two = n * 10 + (p[1] - '0');
                if (two <= limit) {
                    n = two;
                    used = 2;
                }
            }
            p += used;
            if (digit(*p)) surplus = true;
        }
        if (isSep(*p)) ++p;
        return n;
    }
};

bool readDate(VNT_DATE& date, const char* text, const char** end, int order) {
    LocaleState& s = loc();
    const char* p = text ? text : "";
    while (*p == ' ' || *p == '\t') ++p;
    const bool empty = *p == '\0';

    // Field positions in reading order: 0 day, 1 month, 2 year.
    static constexpr int kOrder[3][3] = {{1, 0, 2}, {0, 1, 2}, {2, 1, 0}};
    long f[3] = {-1, -1, -1};
    Reader r{p, s.readSeps};
    for (int k = 0; k < 3; ++k) {
        const int which = kOrder[order][k];
        f[which] = r.field(which == 2, which == 0 ? 31 : 12);
    }
    if (end) *end = r.p;

    if (empty) {
        date = VNT_DATE{99, 99, 99};
        return true;
    }
    VNT_DATE today{};
    Vnt_Date(&today);
    date.day = f[0] > 0 ? static_cast<std::uint8_t>(f[0]) : today.day;
    date.month = f[1] > 0 ? static_cast<std::uint8_t>(f[1]) : today.month;
    date.year = f[2] >= 0 ? static_cast<std::uint16_t>(f[2]) : today.year;
    Vnt_DateValidate(&date, false, false);
    const bool asRead = date.day == f[0] && date.month == f[1] && date.year == f[2];
    return r.surplus || !asRead;
}

}  // namespace

VntIntlSource::~VntIntlSource() = default;

bool VntIntlTable::value(const char* key, std::string& out) {
    auto it = key ? values_.find(key) : values_.end();
    if (it == values_.end()) return false;
    out = it->second;
    return true;
}

VntIntlSource* Vnt_SysSetIntlSource(VntIntlSource* source) {
    VntIntlSource* old = loc().source;
    loc().source = source;
    return old;
}

const VNT_SYS_INFO& Vnt_SysInfo(VNT_SI_TYPE type) {
    if (type == VNT_SI_RELOAD || !loc().loaded) load();
    return loc().info;
}

bool Vnt_SysInit() {
    Vnt_SysInfo(VNT_SI_RELOAD);
    return true;
}

void Vnt_SysTerm() { loc().loaded = false; }

int Vnt_SysDateOrder() { return loc().order; }

const char* Vnt_SysDateFormat() { return loc().printFormat; }

void Vnt_SysDateToStr(int year, int month, int day, char (*buf)[20], bool twoDigits, bool fullYear) {
    if (!buf) return;
    std::memset(*buf, 0, sizeof *buf);
    if (year == 99 || month == 99 || day == 99) return;
    Vnt_SysInfo(VNT_SI_GET);
    const LocaleState& s = loc();
    if (year == 65535 || month == 255 || day == 255) {
        VNT_DATE today{};
        Vnt_Date(&today);
        if (year == 65535) year = today.year;
        if (month == 255) month = today.month;
        if (day == 255) day = today.day;
    }
    if (Vnt_InternalError(s.order < 0 || s.order > 2, 1)) return;

    // Values and the print format's fields in the locale's order.
    static constexpr int kFields[3][3] = {{2, 0, 1}, {2, 1, 0}, {0, 1, 2}};  // year, month, day
    const int yearField = kFields[s.order][0];
    const int monthField = kFields[s.order][1];
    const int dayField = kFields[s.order][2];
    int values[3];
    char widths[3];
    for (int i = 0; i < 3; ++i) widths[i] = s.printFormat[kWidthPos[i]];
    if (!fullYear && widths[yearField] == '2') year %= 100;
    if (twoDigits) widths[dayField] = widths[monthField] = '2';
    values[yearField] = year;
    values[dayField] = day;
    values[monthField] = month;

    std::string out;
    for (int i = 0; i < 3; ++i) {
        appendPadded(out, values[i], widths[i]);
        if (i < 2) out += s.printFormat[kSepPos[i]];
    }
    vnt::copyBounded(*buf, out);
}

bool Vnt_SysDateFromStr(VNT_DATE& date, const char* text, const char** end) {
    Vnt_SysInfo(VNT_SI_GET);
    return readDate(date, text, end, loc().order);
}

bool Vnt_SysDateFromUSStr(VNT_DATE& date, const char* text, const char** end) {
    Vnt_SysInfo(VNT_SI_GET);
    return readDate(date, text, end, VNT_DATE_ORDER_MDY);
}

bool Vnt_SysIsShortYear() {
    Vnt_SysInfo(VNT_SI_GET);
    const LocaleState& s = loc();
    if (Vnt_InternalError(s.order < 0 || s.order > 2, 1)) return false;
    const char w = s.printFormat[kWidthPos[s.order == VNT_DATE_ORDER_YMD ? 0 : 2]];
    // The width is a digit character, compared as a number: never <= 2.
    return static_cast<unsigned char>(w) <= 2;
}

unsigned short Vnt_SysWinVer() { return static_cast<unsigned short>(vnt::host::osVersion()); }
