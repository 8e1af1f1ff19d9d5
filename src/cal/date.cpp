// Calendar dates: the free Vnt_Date functions, the week settings, and VntDate.
//
// Day counting uses closed formulas (day numbers of the proleptic Gregorian
// calendar) wherever they give what the stepping rules give; the rules' own
// month-by-month loops run only where they differ: while the February rule
// of month stepping can still fire inside day stepping, and for months out
// of range.
#include "vanto/date.h"
#include "vanto/lfn.h"

#include <cstdint>
#include <cstring>

#include "base/format.h"
#include "base/names.h"
#include "base/strbuf.h"
#include "cal/cal_state.h"
#include "cal/odbc_timestamp.h"
#include "host/time.h"
#include "vanto/ini.h"
#include "vanto/locale.h"
#include "vanto/msg.h"
#include "vanto/text.h"

namespace {

using i64 = std::int64_t;

constexpr i64 kDaysPer400Years = 146097;

// Days before each month of a common year; index 12 is the whole year.
constexpr int kCumDays[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
constexpr unsigned char kMonthLen[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// Divisible by 400 is divisible by 100 and by 16; the masks hold for negative years too.
constexpr bool isLeap(i64 y) { return (y & 3) == 0 && (y % 100 != 0 || (y & 15) == 0); }

// 0 for a month outside 1-12.
constexpr int monthLen(i64 y, int m) {
    if (m < 1 || m > 12) return 0;
    return m == 2 && isLeap(y) ? 29 : kMonthLen[m];
}

// The lengths of months 1 to m - 1 (months above 12 count 0).
constexpr int daysBefore(i64 y, int m) {
    if (m <= 1) return 0;
    if (m > 13) m = 13;
    return kCumDays[m - 1] + (m > 2 && isLeap(y) ? 1 : 0);
}

constexpr i64 floorDiv(i64 a, i64 b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0); }

// Day numbers are unsigned 32-bit counts from 1 March of the year -102400
// (a whole number of 400-year cycles before year 0), so that every division
// is by a constant on unsigned values and no count can go below 0 for the
// years a record can hold, give or take 98,000 years of offsets.
constexpr i64 kShiftYears = 400 * 256;
constexpr i64 kFarDays = 36000000;

// The day number of the first of month m (1-12) of year y.
constexpr std::uint32_t dayNumber(i64 y, int m) {
    const std::uint32_t ys = static_cast<std::uint32_t>(y + kShiftYears) - (m <= 2 ? 1 : 0);
    const std::uint32_t era = ys / 400, yoe = ys % 400;
    const std::uint32_t doy = (153u * static_cast<std::uint32_t>(m > 2 ? m - 3 : m + 9) + 2) / 5;
    return era * 146097u + yoe * 365 + yoe / 4 - yoe / 100 + doy;
}

struct Civil {
    i64 y;
    int m, d;
};

// The date of a day number, by multiplications only (Neri and Schneider's
// Euclidean affine functions): centuries, the year of the century with the
// day of the year from 1 March, then month and day.
constexpr Civil civilOf(std::uint32_t z) {
    const std::uint32_t n1 = 4 * z + 3;
    const std::uint32_t century = n1 / 146097u, dayOfCentury = n1 % 146097u / 4;
    const std::uint64_t n2 = std::uint64_t{2939745} * (4 * dayOfCentury + 3);
    const std::uint32_t yearOfCentury = static_cast<std::uint32_t>(n2 >> 32);
    const std::uint32_t dayOfYear = static_cast<std::uint32_t>(n2) / 2939745u / 4;  // 0 is 1 March
    const std::uint32_t n3 = 2141 * dayOfYear + 197913;
    const bool janFeb = dayOfYear >= 306;
    const int m = static_cast<int>(n3 >> 16) - (janFeb ? 12 : 0);
    const int d = static_cast<int>((n3 & 0xFFFF) / 2141) + 1;
    return {i64{century} * 100 + yearOfCentury + (janFeb ? 1 : 0) - kShiftYears, m, d};
}

// The date `offset` days after the first of month m (1-12) of year y; the
// year field keeps its low 16 bits. Offsets too far for the day numbers
// first give up their whole 400-year cycles.
inline void setFromOffset(VNT_DATE& date, i64 y, int m, i64 offset) {
    i64 cycles = 0;
    if (offset > kFarDays || offset < -kFarDays) {
        cycles = offset / kDaysPer400Years;
        offset %= kDaysPer400Years;
    }
    const Civil c = civilOf(static_cast<std::uint32_t>(dayNumber(y, m) + offset));
    date.year = static_cast<std::uint16_t>(c.y + 400 * cycles);
    date.month = static_cast<std::uint8_t>(c.m);
    date.day = static_cast<std::uint8_t>(c.d);
}

// Two-digit years: 0-29 are 2000-2029, 30-99 are 1930-1999. (Inside the
// library not through the exported function, which can be interposed and
// so is never inlined.)
constexpr std::uint16_t expandYear(unsigned year) {
    return static_cast<std::uint16_t>(year < 30 ? year + 2000 : year < 100 ? year + 1900 : year);
}

VNT_DATE today() {
    VNT_DATE d{};
    Vnt_Date(&d);
    return d;
}

VNT_TIME now() {
    const vnt::host::LocalTime t = vnt::host::localNow();
    return VNT_TIME{static_cast<std::uint8_t>(t.hour), static_cast<std::uint8_t>(t.minute),
                    static_cast<std::uint8_t>(t.second), static_cast<std::uint8_t>(t.millisecond / 10)};
}

int compareDates(const VNT_DATE& a, const VNT_DATE& b) {
    if (a.year != b.year) return a.year < b.year ? -1 : 1;
    if (a.month != b.month) return a.month < b.month ? -1 : 1;
    if (a.day != b.day) return a.day < b.day ? -1 : 1;
    return 0;
}

// 29 February of a common year becomes 1 March.
void februaryRule(VNT_DATE& d) {
    if (d.month == 2 && d.day == 29 && !isLeap(d.year)) {
        d.month = 3;
        d.day = 1;
    }
}

// Month stepping without the text: the year moves by whole years, the
// February rule applies, other days beyond the month's end stay.
void stepMonths(VNT_DATE& d, i64 n) {
    const i64 m = i64{d.month} - 1 + n;
    const i64 years = floorDiv(m, 12);
    d.year = static_cast<std::uint16_t>(d.year + years);
    d.month = static_cast<std::uint8_t>(m - years * 12 + 1);
    februaryRule(d);
}

// Day stepping without the text. The rule steps month by month with the
// February rule while the day field still holds its old value, so a day
// field of 29 can skip a common February; that, and months out of range,
// run the rule's own loop (a common February comes within two years, so it
// is short). Everything else is plain calendar arithmetic from the first of
// the month, which is what the loop gives there, even for days out of range.
void stepDays(VNT_DATE& d, i64 n) {
    i64 i = i64{d.day} - 1 + n;
    const bool forward = i >= 0;
    while (d.day == 29 || d.month < 1 || d.month > 12) {
        if (forward) {
            const int len = monthLen(d.year, d.month);
            if (i < len) break;
            i -= len;
            stepMonths(d, 1);
        } else {
            if (i >= 0) break;
            stepMonths(d, -1);
            i += monthLen(d.year, d.month);
        }
    }
    if (i >= 0 && i < monthLen(d.year, d.month))
        d.day = static_cast<std::uint8_t>(i + 1);
    else
        setFromOffset(d, d.year, d.month, i);
}

// `n` single day steps (all one way). After the first the date is a valid
// calendar date, and single steps from there are plain calendar arithmetic.
void stepDaysSingly(VNT_DATE& d, i64 n) {
    if (n == 0) return;
    const i64 one = n > 0 ? 1 : -1;
    stepDays(d, one);
    if (n != one) setFromOffset(d, d.year, d.month, i64{d.day} - 1 + (n - one));
}

// Hour stepping: whole days are single day steps. True when the date moved.
bool stepHours(VNT_DATE& d, VNT_TIME& t, i64 n) {
    const i64 h = i64{t.hour} + n;
    const i64 days = floorDiv(h, 24);
    stepDaysSingly(d, days);
    t.hour = static_cast<std::uint8_t>(h - days * 24);
    return days != 0;
}

// Day of the week from year and day of the year; outside 1-7 for years
// before 1583.
int dayOfWeekRaw(i64 y, int dayOfYear) {
    i64 n = (y - 1583) * 365;
    if (y >= 1583) n += ((y - 1) / 4 - 395) + ((y - 1) / 400 - 3) - ((y - 1) / 100 - 15);
    n += dayOfYear - 1;
    return static_cast<int>((n + 5) % 7 + 1);
}

int dayOfYear(const VNT_DATE& d) {
    if (d.day == 0 || d.day > 31) return 0;
    return daysBefore(d.year, d.month) + d.day;
}

// The day of the week; an impossible result is reported (when asked to)
// and counts as Sunday.
int dayOfWeek(const VNT_DATE& d, bool report) {
    const int dow = dayOfWeekRaw(d.year, dayOfYear(d));
    if (dow >= 1 && dow <= 7) return dow;
    if (report)
        Vnt_MsgBox("!InternalError: Invalid DayOfWeek (%d)!\n\n(Year=%d, Month=%d, Day=%d)", dow,
                   int{d.year}, int{d.month}, int{d.day});
    return 7;
}

// ---------------------------------------------------------------------------
// Week settings
// ---------------------------------------------------------------------------

constexpr const char* kLongNames[7] = {"Monday", "Tuesday", "Wednesday", "Thursday",
                                       "Friday", "Saturday", "Sunday"};
constexpr const char* kShortNames[7] = {"Mo", "Tu", "We", "Th", "Fr", "Sa", "Su"};

// Up to 7 non-empty items of a token list into names[1..7], each cut to
// the width of the slot; empty items are passed over.
template <std::size_t N>
void readNames(VntIni& ini, const char* entry, char (&names)[8][N]) {
    ini.ReadStr(entry, "", nullptr, 0);
    char item[N];
    int next = 1;
    for (char* t = ini.TokenFirst("", item, N); t && next <= 7; t = ini.TokenNext("", item, N))
        if (item[0]) vnt::copyBounded(names[next++], item);
}

void readWeek(vnt::cal::WeekSettings& w) {
    // Without an application file the defaults stand: it is opened without a
    // report, and the section is chosen only once it is open (choosing it
    // searches the file at once).
    VntIni ini(nullptr, nullptr, VNTINI_APP | VNTINI_ACCESS_RO);
    if (!ini.Open(nullptr, VNTINI_KEEP, false)) return;
    ini.SetSection("VntDate", -1);
    readNames(ini, "DaysShort", w.shortNames);
    readNames(ini, "DaysLong", w.longNames);
    char first[64];
    ini.ReadStr("FirstWeekDay", "", first, sizeof first);
    for (int i = 1; i <= 7; ++i) {
        if (vnt::sameText(first, w.longNames[i])) {
            w.firstDay = i;
            break;
        }
    }
    w.minDays = static_cast<int>(ini.ReadInt("MinDaysForFirstWeek", w.minDays));
}

// Once per process (until the subsystem's reset).
void loadWeek(vnt::cal::WeekSettings& w) {
    w.loaded = true;
    for (int i = 0; i < 7; ++i) {
        vnt::copyBounded(w.longNames[i + 1], kLongNames[i]);
        vnt::copyBounded(w.shortNames[i + 1], kShortNames[i]);
    }
    readWeek(w);
    for (int i = 0; i < 7; ++i) w.order[i] = (w.firstDay - 1 + i) % 7 + 1;
}

const vnt::cal::WeekSettings& week() {
    vnt::cal::WeekSettings& w = vnt::cal::state().week;
    if (!w.loaded) loadWeek(w);
    return w;
}

}  // namespace

// ---------------------------------------------------------------------------
// Free functions
// ---------------------------------------------------------------------------

void Vnt_Date(VNT_DATE* date) {
    if (!date) return;
    const vnt::host::LocalTime t = vnt::host::localNow();
    date->year = static_cast<std::uint16_t>(t.year);
    date->month = static_cast<std::uint8_t>(t.month);
    date->day = static_cast<std::uint8_t>(t.day);
}

bool Vnt_DateIsValid(const VNT_DATE& date, bool checkRange) {
    if (date.month < 1 || date.month > 12) return false;
    if (date.day < 1 || date.day > monthLen(date.year, date.month)) return false;
    return !checkRange || (date.year >= 1980 && date.year <= 2050);
}

bool Vnt_DateValidate(VNT_DATE* date, bool useToday, bool checkRange) {
    if (!date) return false;
    const VNT_DATE before = *date;
    VNT_DATE now{};
    bool haveToday = false;
    auto todayPart = [&]() -> const VNT_DATE& {
        if (!haveToday) now = today(), haveToday = true;
        return now;
    };
    date->year = expandYear(date->year);
    if ((date->month == 0 || date->month > 12) && useToday) date->month = todayPart().month;
    if (date->month < 1) date->month = 1;
    if (date->month > 12) date->month = 12;
    const int len = monthLen(date->year, date->month);
    if (date->day == 0 || date->day > len) {
        if (useToday)
            date->day = todayPart().day;  // as it is, even when the month is shorter
        else
            date->day = static_cast<std::uint8_t>(date->day == 0 ? 1 : len);
    }
    if (checkRange && (date->year < 1980 || date->year > 2050)) date->year = todayPart().year;
    return compareDates(before, *date) == 0;
}

unsigned short Vnt_DateYearToLong(unsigned short year) { return expandYear(year); }

long Vnt_DateDiffDays(VNT_DATE* from, VNT_DATE* to) {
    if (!from || !to) return 0;
    // The rule exchanges the records when `from` is later (on the years as
    // given, before they are expanded), expands both years and exchanges
    // them back: each record keeps its own date with its year expanded.
    // Worked on in copies, each record stored once.
    VNT_DATE f = *from, t = *to;
    const bool swapped = compareDates(f, t) > 0;
    if (swapped) std::swap(f, t);
    f.year = expandYear(f.year);
    t.year = expandYear(t.year);
    const i64 fy = f.year, ty = t.year;
    const int fm = f.month, tm = t.month;
    i64 days;
    if (fy != ty) {
        // Whole years strictly between, none when the expansion reversed them.
        // (Leap days before a year y: y / 4 - y / 100 + y / 400, years from 1 on.)
        auto leapDaysBefore = [](i64 y) { return (y - 1) / 4 - (y - 1) / 100 + (y - 1) / 400; };
        days = fy < ty ? (ty - fy - 1) * 365 + leapDaysBefore(ty) - leapDaysBefore(fy + 1) : 0;
        days += (isLeap(fy) ? 366 : 365) - daysBefore(fy, fm + 1);  // months after from's
        days += daysBefore(ty, tm);                                 // months before to's
        days += monthLen(fy, fm) - f.day + t.day;
    } else {
        days = (fm < tm ? daysBefore(fy, tm) - daysBefore(fy, fm) : 0) + t.day - f.day;
    }
    if (swapped) {
        days = -days;
        std::swap(f, t);
    }
    *from = f;
    *to = t;
    return static_cast<long>(days);
}

void Vnt_DatePlusDays(VNT_DATE* src, VNT_DATE* dst, long days) {
    if (!src || !dst) return;
    // Worked on in a copy and stored once (src and dst may be the same).
    VNT_DATE d = *src;
    d.year = expandYear(d.year);
    src->year = d.year;
    if (days < 0 && d.day + days >= 1) {
        // Going back, a day that stays 1 or more is taken as it is, in range or not.
        d.day = static_cast<std::uint8_t>(d.day + days);
    } else if (days != 0) {
        // Month 0 behaves as January; a month above 12 as January of the next year.
        i64 y = d.year;
        int m = d.month;
        if (m < 1) m = 1;
        if (m > 12) m = 1, ++y;
        // Far counts give up their whole 400-year cycles first, so that
        // adding the day cannot overflow.
        const i64 cycles = days > kFarDays || days < -kFarDays ? days / kDaysPer400Years : 0;
        setFromOffset(d, y, m, i64{d.day} - 1 + (days - cycles * kDaysPer400Years));
        d.year = static_cast<std::uint16_t>(d.year + 400 * cycles);
    }
    *dst = d;
}

bool Vnt_DateToStr(char* buf, unsigned size, const VNT_DATE* date) {
    const VNT_DATE d = date ? *date : today();
    char text[20];
    Vnt_SysDateToStr(d.year, d.month, d.day, &text, false, true);
    if (buf && size) vnt::copyBounded(buf, size, text);
    return std::strlen(text) < size;
}

bool Vnt_DateToStr(char (&buf)[20], const VNT_DATE* date) { return Vnt_DateToStr(buf, sizeof buf, date); }

void Vnt_DateToStr(const VNT_DATE* date, char* buf, int size) {
    Vnt_DateToStr(buf, size > 0 ? static_cast<unsigned>(size) : 0u, date);
}

void Vnt_DateToStr(int year, int month, int day, char (*buf)[20]) {
    Vnt_SysDateToStr(year, month, day, buf, false, true);
}

void Vnt_DateToUSStr(char (&buf)[20], const VNT_DATE* date) {
    const VNT_DATE d = date ? *date : today();
    vnt::copyBounded(buf, vnt::format("%02d/%02d/%04d", int{d.month}, int{d.day}, int{d.year}));
}

void Vnt_DateFromStr(VNT_DATE* date, const char* text) {
    if (date) Vnt_SysDateFromStr(*date, text, nullptr);
}

void Vnt_DateFromUSStr(VNT_DATE* date, const char* text) {
    if (date) Vnt_SysDateFromUSStr(*date, text, nullptr);
}

// ---------------------------------------------------------------------------
// VntDate
// ---------------------------------------------------------------------------

VntDate::VntDate(bool today_) : date{}, time{}, packed(0), text{} {
    if (today_) Vnt_Date(&date);
    renewText();
}

VntDate::VntDate(unsigned short year, unsigned char month, unsigned char day)
    : date{}, time(now()), packed(0), text{} {
    if (year == 0xFFFF || month == 0 || day == 0) Vnt_Date(&date);
    if (year != 0xFFFF) date.year = year;
    if (month != 0) date.month = month;
    if (day != 0) date.day = day;
    renewText();
}

VntDate::VntDate(const VntDate& other) = default;

VntDate& VntDate::operator=(const VntDate& other) = default;

void VntDate::renewText() { Vnt_DateToStr(text, &date); }

void VntDate::Set(const VNT_DATE& d) {
    date = d;
    renewText();
}

void VntDate::Set(int year, int month, int day) {
    Set(VNT_DATE{static_cast<std::uint16_t>(year), static_cast<std::uint8_t>(month),
                 static_cast<std::uint8_t>(day)});
}

// The time stamp's fraction is in nanoseconds, ours in hundredths.
void VntDate::Set(const tagTIMESTAMP_STRUCT& ts) {
    time = VNT_TIME{static_cast<std::uint8_t>(ts.hour), static_cast<std::uint8_t>(ts.minute),
                    static_cast<std::uint8_t>(ts.second), static_cast<std::uint8_t>(ts.fraction / 10000000u)};
    Set(ts.year, ts.month, ts.day);
}

void VntDate::SetDate(unsigned short year, unsigned char month, unsigned char day) {
    if (year != 0xFFFF) date.year = expandYear(year);
    if (month >= 1 && month <= 12) date.month = month;
    if (day >= 1 && day <= monthLen(date.year, date.month)) date.day = day;
    renewText();
}

void VntDate::SetDate(VNT_DATE d) { SetDate(d.year, d.month, d.day); }
void VntDate::SetYear(unsigned short year) { SetDate(year, 0, 0); }
void VntDate::SetMonth(unsigned char month) { SetDate(0xFFFF, month, 0); }
void VntDate::SetDay(unsigned char day) { SetDate(0xFFFF, 0, day); }

void VntDate::SetTime(int hour, int minute, int second, int fraction) {
    if (hour >= 0) time.hour = static_cast<std::uint8_t>(hour);
    if (minute >= 0) time.minute = static_cast<std::uint8_t>(minute);
    if (second >= 0) time.second = static_cast<std::uint8_t>(second);
    if (fraction >= 0) time.fraction = static_cast<std::uint8_t>(fraction);
}

void VntDate::SetTime(VNT_TIME t) { time = t; }
void VntDate::SetT(const VNT_TIME& t) { time = t; }
void VntDate::SetHour(int hour) { SetTime(hour, -1, -1, -1); }
void VntDate::SetMinute(int minute) { SetTime(-1, minute, -1, -1); }
void VntDate::SetSecond(int second) { SetTime(-1, -1, second, -1); }
void VntDate::SetFraction(int fraction) { SetTime(-1, -1, -1, fraction); }

void VntDate::GetDate() {
    Vnt_Date(&date);
    renewText();
}

void VntDate::GetTime() { time = now(); }
void VntDate::GetDate(VNT_DATE& d) { Vnt_Date(&d); }
void VntDate::GetTime(VNT_TIME& t) { t = now(); }

VntDate& VntDate::operator=(const VNT_DATE& d) {
    Set(d);
    return *this;
}

VntDate& VntDate::operator=(const VNT_TIME& t) {
    SetT(t);
    return *this;
}

VntDate& VntDate::operator=(const tagTIMESTAMP_STRUCT& ts) {
    Set(ts);
    return *this;
}

VntDate& VntDate::operator=(int value) {
    Set(value, value, value);
    return *this;
}

const VNT_DATE* VntDate::DatePtr() const {
    return date.year == 0 || date.month == 0 || date.day == 0 ? nullptr : &date;
}

unsigned long VntDate::Pack() {
    packed = static_cast<std::uint32_t>(Pack(time, date));
    return packed;
}

// Packed: the file-time form, date in the high 16 bits, time in the low.
unsigned long VntDate::Pack(const VNT_TIME& t, const VNT_DATE& d) {
    return static_cast<unsigned long>(Vnt_LfnDatePack(d)) << 16 | Vnt_LfnTimePack(t);
}

void VntDate::Unpack(unsigned long value) {
    Unpack(&time, &date, value);
    renewText();
}

void VntDate::Unpack(VNT_TIME* t, VNT_DATE* d, unsigned long value) {
    VNT_DATE date{};
    VNT_TIME time{};
    Vnt_LfnDateUnpack(static_cast<std::uint16_t>(value >> 16), &date);
    Vnt_LfnTimeUnpack(static_cast<std::uint16_t>(value), &time);
    if (date.day == 0 || date.month == 0) {
        date = today();
        time = now();
    }
    if (d) *d = date;
    if (t) *t = time;
}

int VntDate::DateCompare(VntDate& other) const { return compareDates(date, other.date); }

bool VntDate::DateIsOk(bool checkRange) const {
    if (checkRange && date.year < 1980) return false;
    return date.year <= 3000 && Vnt_DateIsValid(date, false);
}

bool VntDate::DateIsValid(bool checkRange) const { return Vnt_DateIsValid(date, checkRange); }

bool VntDate::DateValidate() {
    if (Vnt_DateValidate(&date, false, true)) return true;
    renewText();
    return false;
}

DAY VntDate::DayOfWeek() {
    week();
    return static_cast<DAY>(dayOfWeek(date, true));
}

const char* VntDate::DayOfWeekStr() const { return week().longNames[dayOfWeek(date, true)]; }

unsigned short VntDate::DayOfYear() const { return static_cast<unsigned short>(dayOfYear(date)); }

int VntDate::WeekOfYear() const {
    if (date.day > 31 || date.month > 12) return 0;
    const vnt::cal::WeekSettings& w = week();
    const int f = w.firstDay, minDays = w.minDays;
    auto relative = [f](int dow) { return (dow - 1 + 8 - f) % 7; };
    const int yearLen = isLeap(date.year) ? 366 : 365;
    int d = dayOfYear(date);
    // The days of the week of the date, 1 January and 31 December: from
    // 1583 on one formula and steps of the day of the year; before, each
    // its own, with the impossible one reported once.
    int dow, jan1, dec31;
    if (date.year >= 1583) {
        jan1 = dayOfWeekRaw(date.year, 1);
        dow = (jan1 + 5 + d) % 7 + 1;
        dec31 = (jan1 + 5 + yearLen) % 7 + 1;
    } else {
        dow = dayOfWeek(date, true);
        jan1 = dayOfWeek(VNT_DATE{date.year, 1, 1}, false);
        dec31 = dayOfWeek(VNT_DATE{date.year, 12, 31}, false);
    }
    const int rel = relative(dow), j = relative(jan1), e = relative(dec31);
    const int t = 7 - minDays;
    const int k = (7 - j) % 7;  // days before the first day F of the year
    int weekNo = 0;
    if (k > 0) {
        if (k >= minDays) weekNo = 1;
        d -= k;
    }
    weekNo += (d + 6 - rel) / 7;
    if (weekNo == 53 && j != t && e != t) return 1;
    if (weekNo == 0) {
        const int prevE = (j + 6) % 7;
        const int prevJ = isLeap(i64{date.year} - 1) ? (prevE + 6) % 7 : prevE;
        return prevJ == t || prevE == t ? 53 : 52;
    }
    return weekNo;
}

int VntDate::DaysPerYear() const { return isLeap(date.year) ? 366 : 365; }

unsigned char VntDate::DaysPerMonth(int month) const {
    return static_cast<unsigned char>(monthLen(date.year, month == 0 ? date.month : month));
}

void VntDate::DayIncDec(int n) {
    stepDays(date, n);
    renewText();
}

void VntDate::MonthIncDec(int n) {
    stepMonths(date, n);
    renewText();
}

// Keeps the low 8 bits of the year; applications rely on it.
void VntDate::YearIncDec(int n) {
    const bool wasLeap = isLeap(date.year);
    date.year = static_cast<std::uint16_t>((i64{date.year} + n) & 0xFF);
    if (wasLeap) februaryRule(date);
    renewText();
}

void VntDate::HoursIncDec(int n) {
    if (stepHours(date, time, n)) renewText();
}

// Whole hours are single hour steps. After the first the hour is in range,
// and from there the rest are one step of that many hours.
void VntDate::MinutesIncDec(int n) {
    const i64 m = i64{time.minute} + n;
    const i64 hours = floorDiv(m, 60);
    time.minute = static_cast<std::uint8_t>(m - hours * 60);
    if (hours == 0) return;
    const i64 one = hours > 0 ? 1 : -1;
    bool moved = stepHours(date, time, one);
    if (hours != one) moved = stepHours(date, time, hours - one) || moved;
    if (moved) renewText();
}

long VntDate::DiffDays(const VntDate& other) const { return DiffDays(other.date); }

long VntDate::DiffDays(VNT_DATE other) const {
    VNT_DATE from = date;
    return Vnt_DateDiffDays(&from, &other);
}

void VntDate::PlusDays(long days, VNT_DATE* out) {
    VNT_DATE src = date;
    Vnt_DatePlusDays(&src, out ? out : &date, days);
    if (!out || out == &date) renewText();
}

long VntDate::TimeDiff(unsigned long later, unsigned long earlier, long* days, long* hours, long* minutes) {
    long d = 0, h = 0, m = 0;
    if (later != 0 && earlier != 0) {
        VNT_DATE ld, ed;
        VNT_TIME lt, et;
        Unpack(&lt, &ld, later);
        Unpack(&et, &ed, earlier);
        const int years = ld.year - ed.year;
        if (years == 0 || years == 1) {
            d = dayOfYear(ld) - dayOfYear(ed) + (years ? (isLeap(ed.year) ? 366 : 365) : 0);
            h = lt.hour - et.hour;
            m = lt.minute - et.minute;
            if (m < 0) m += 60, --h;
            if (h < 0) h += 24, --d;
        }
    }
    if (days) *days = d;
    if (hours) *hours = h;
    if (minutes) *minutes = m;
    return d * 1440 + h * 60 + m;
}

const char* VntDate::DateToStr(const VNT_DATE* d) {
    Vnt_DateToStr(text, d ? d : &date);
    return text;
}

const char* VntDate::DateToUSStr(const VNT_DATE* d) {
    Vnt_DateToUSStr(text, d ? d : &date);
    return text;
}

// The text is kept as given (19 characters), not replaced by the date's form.
void VntDate::StrToDate(const char* s, VNT_DATE* out) {
    vnt::copyBounded(text, s);
    Vnt_DateFromStr(out ? out : &date, text);
}

void VntDate::DateFromStr(const char* s, VNT_DATE* out) { StrToDate(s, out); }
