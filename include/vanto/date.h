// vanto/date.h - calendar dates.
//
// Dates are Gregorian and held as small packed records. Two-digit years
// are expanded everywhere a date is taken in: 0-29 are 2000-2029, 30-99 are
// 1930-1999. Weeks follow the week settings of the application file
// (section "VntDate" of "App.vtm": "DaysShort", "DaysLong", "FirstWeekDay",
// "MinDaysForFirstWeek"); with the defaults (Monday, 4 days) they are the
// ISO 8601 weeks. Date texts are those of vanto/locale.h.
#pragma once

#include <cstdint>

#include "vanto/base.h"

/// A date; 0 in any field means "no date".
struct VNT_DATE {
    std::uint16_t year;   ///< full year, e.g. 1999
    std::uint8_t month;   ///< 1-12
    std::uint8_t day;     ///< 1 to the month's length
};
static_assert(sizeof(VNT_DATE) == 4, "VNT_DATE keeps its layout");

/// A time of day.
struct VNT_TIME {
    std::uint8_t hour;      ///< 0-23
    std::uint8_t minute;    ///< 0-59
    std::uint8_t second;    ///< 0-59
    std::uint8_t fraction;  ///< hundredths, unused by packing
};
static_assert(sizeof(VNT_TIME) == 4, "VNT_TIME keeps its layout");

/// The day of the week.
enum DAY : int { MONDAY = 1, TUESDAY, WEDNESDAY, THURSDAY, FRIDAY, SATURDAY, SUNDAY };

/// The database time stamp (ODBC's SQL_TIMESTAMP_STRUCT); its definition
/// comes with the ODBC headers.
struct tagTIMESTAMP_STRUCT;

/// Today's date from the local clock.
VANTO_API void Vnt_Date(VNT_DATE* date);

/// Month 1-12 and day from 1 to the month's length; with `checkRange` also a
/// year from 1980 to 2050. The year is taken as it stands (not expanded).
///   01.03.2051: false with the range, true without    29.02.2051: false (no leap year)
VANTO_API bool Vnt_DateIsValid(const VNT_DATE& date, bool checkRange);

/// Repairs a date in place: the year is expanded; a month 0 or above 12
/// becomes today's month with `useToday`, then it is brought into 1-12; a day
/// 0 or beyond the month becomes today's day with `useToday` (as it is, even
/// when longer than the month), else it is brought into range; with
/// `checkRange` a year outside 1980-2050 becomes today's. True when nothing
/// changed.
VANTO_API bool Vnt_DateValidate(VNT_DATE* date, bool useToday, bool checkRange);

/// Two-digit year expansion: 0-29 => 2000-2029, 30-99 => 1930-1999, 100 and
/// above kept.
VANTO_API unsigned short Vnt_DateYearToLong(unsigned short year);

/// Days from `from` to `to` (negative when `from` is later). Both years are
/// expanded and written back into the records. Which record is the later one
/// is decided on the years as given, before the expansion, kept as it is:
///   31.12.1999 -> 01.01.2000 = 1, the other way round -1
///   31.12.99 -> 01.01.00 = -730 (99 counts as later than 0)
///   01.03.05 -> 01.01.2005 = 0 (months counted only forward within a year)
/// Null records give 0.
VANTO_API long Vnt_DateDiffDays(VNT_DATE* from, VNT_DATE* to);

/// `dst` = `src` + `days` (`src` and `dst` may be the same record). `src`'s
/// year is expanded and written back; 0 days copy the date as it is, even
/// when its day is out of range, and so does going back while the day stays
/// 1 or more (40.04. - 1 = 39.04.). Otherwise a day beyond its month counts
/// on into the next (40.04.2001 + 1 = 11.05.2001), month 0 counts as January
/// and a month above 12 as January of the next year. Years beyond 16 bits
/// keep their low 16 bits.
///   31.01.2000 + 29 = 29.02.2000     31.01.2000 - 31 = 31.12.1999
VANTO_API void Vnt_DatePlusDays(VNT_DATE* src, VNT_DATE* dst, long days);

/// The text of `date` (today's when null) in the locale's form with the full
/// year (Vnt_SysDateToStr(..., false, true)) into `buf` of `size` bytes, cut
/// to fit; true when it fit whole.   ("dd.MM.yyyy") 05.03.1999
VANTO_API bool Vnt_DateToStr(char* buf, unsigned size, const VNT_DATE* date);
/// The same into 20 bytes.
VANTO_API bool Vnt_DateToStr(char (&buf)[20], const VNT_DATE* date);
/// The same, in the argument order of older callers.
VANTO_API void Vnt_DateToStr(const VNT_DATE* date, char* buf, int size);
/// Vnt_SysDateToStr(year, month, day, buf, false, true).
VANTO_API void Vnt_DateToStr(int year, int month, int day, char (*buf)[20]);
/// "MM/DD/YYYY".
VANTO_API void Vnt_DateToUSStr(char (&buf)[20], const VNT_DATE* date);
/// Reads a date text in the locale's order (Vnt_SysDateFromStr).
VANTO_API void Vnt_DateFromStr(VNT_DATE* date, const char* text);
/// Reads a date text in month-day-year order (Vnt_SysDateFromUSStr).
VANTO_API void Vnt_DateFromUSStr(VNT_DATE* date, const char* text);

/// One date and time with its text form.
///
/// Stepping keeps the rules applications rely on: stepping a month applies
/// only the February rule (29 February of a common year becomes 1 March;
/// 31 April stays), stepping days steps months that way, and stepping years
/// keeps the low 8 bits of the year (1999 + 1 gives 208).
class VANTO_API VntDate {
public:
    VNT_DATE date;        ///< the date
    VNT_TIME time;        ///< the time
    std::uint32_t packed; ///< the last result of Pack()
    char text[20];        ///< the date's text, renewed whenever the date changes

    /// Time zero; the date today, or all zero.
    explicit VntDate(bool today = false);
    /// From today's date, taking each given part: a year other than 0xFFFF,
    /// a month and a day other than 0 (as given, not expanded or checked).
    /// The time is now. All three given: exactly that date.
    VntDate(unsigned short year, unsigned char month, unsigned char day);

    // -- setting ----------------------------------------------------------
    /// The date as given (not expanded or checked); the text is renewed.
    void Set(const VNT_DATE& d);
    void Set(int year, int month, int day);
    /// Date and time of a database time stamp; its fraction (nanoseconds)
    /// becomes hundredths (ns / 10,000,000).
    void Set(const tagTIMESTAMP_STRUCT& ts);
    /// A year other than 0xFFFF is taken (expanded); a month only when
    /// 1-12; a day only when from 1 to the length of the (new) month.
    void SetDate(unsigned short year, unsigned char month, unsigned char day);
    /// SetDate(d.year, d.month, d.day); SetYear, SetMonth and SetDay set one
    /// part by the same rules.
    void SetDate(VNT_DATE d);
    void SetYear(unsigned short year);
    void SetMonth(unsigned char month);
    void SetDay(unsigned char day);
    /// A negative part is left as it is.
    void SetTime(int hour, int minute, int second, int fraction);
    void SetTime(VNT_TIME t);
    void SetT(const VNT_TIME& t);
    void SetHour(int hour);
    void SetMinute(int minute);
    void SetSecond(int second);
    void SetFraction(int fraction);
    /// Today's date into this date.
    void GetDate();
    /// The current time into this time.
    void GetTime();
    static void GetDate(VNT_DATE& d);
    static void GetTime(VNT_TIME& t);

    VntDate& operator=(const VNT_DATE& d);
    VntDate& operator=(const VNT_TIME& t);
    VntDate& operator=(const tagTIMESTAMP_STRUCT& ts);
    VntDate& operator=(const VntDate& other);
    VntDate(const VntDate& other);
    /// Year, month and day all set to `value` (0 clears the date).
    VntDate& operator=(int value);

    operator VNT_DATE&() { return date; }
    operator const VNT_DATE&() const { return date; }
    operator VNT_TIME&() { return time; }
    operator VNT_DATE*() { return &date; }
    operator VNT_TIME*() { return &time; }
    /// The date, or null when it is empty (any field 0). A const VntDate
    /// converts to this pointer, so that a function taking an optional date
    /// (null: today) gets null for an empty one.
    const VNT_DATE* DatePtr() const;
    operator const VNT_DATE*() const { return DatePtr(); }

    // -- packing (the file-time form) ------------------------------------
    /// Packs this date and time; the result is also kept in `packed`.
    unsigned long Pack();
    /// Date in the high 16 bits: (year - 1980) mod 128 << 9 | month << 5 |
    /// day, where a year below 80 counts as 20xx, 80-99 as 19xx and any year
    /// still before 1980 as 1980; time in the low 16 bits: hour << 11 |
    /// minute << 5 | second / 2.   31.12.99 23:59:59 => 0x279FBF7D
    static unsigned long Pack(const VNT_TIME& t, const VNT_DATE& d);
    /// Unpacks into this date and time (seconds in steps of 2, fraction 0);
    /// a day or month 0 gives today and now. The text is renewed.
    void Unpack(unsigned long value);
    /// The same into either record (null: not stored).
    static void Unpack(VNT_TIME* t, VNT_DATE* d, unsigned long value);

    // -- tests ------------------------------------------------------------
    /// -1, 0, 1 by year, then month, then day.
    int DateCompare(VntDate& other) const;
    /// With `checkRange` the year at least 1980; the year at most 3000;
    /// month and day valid.
    bool DateIsOk(bool checkRange) const;
    bool DateIsValid(bool checkRange) const;
    /// Vnt_DateValidate(this, false, true); false (text renewed) when it
    /// changed the date.
    bool DateValidate();

    // -- calendar ---------------------------------------------------------
    /// The day of the week; 01.01.1583 is a Saturday. For years before 1583
    /// the count is not defined: an impossible result is reported
    /// ("!InternalError: Invalid DayOfWeek ...") and gives SUNDAY.
    DAY DayOfWeek();
    /// The long name of the day of the week ("DaysLong" of the settings).
    const char* DayOfWeekStr() const;
    /// 1-366; 0 for a day 0 or above 31.
    unsigned short DayOfYear() const;
    /// The week of the year under the week settings; 0 for a day above 31 or
    /// a month above 12. With the defaults these are ISO 8601 weeks:
    ///   01.01.2005 => 53, 31.12.2008 => 1, 4 January => 1
    /// A first week shorter than 4 days counts, and only a week 53 is moved
    /// into the next year, so with a minimum of 1 a week 54 can occur
    /// (31.12.2012 with weeks from Monday).
    int WeekOfYear() const;
    int DaysPerYear() const;
    /// Length of `month` (0: the date's own month) in the date's year.
    unsigned char DaysPerMonth(int month) const;

    // -- stepping (the text is renewed whenever the date moves) ------------
    /// Steps month by month as MonthIncDec does while the day field still
    /// holds its old day:   29.01.2001 + 3 => 01.03.2001
    void DayIncDec(int n);
    /// 31.01. + 1 => 31.02. (kept);  29.01.2001 + 1 => 01.03.2001
    void MonthIncDec(int n);
    /// The year becomes (year + n) mod 256; after a leap year 29.02. of a
    /// common year becomes 01.03.
    void YearIncDec(int n);
    /// Whole days are stepped one by one with DayIncDec(+-1).
    void HoursIncDec(int n);
    /// Whole hours are stepped one by one with HoursIncDec(+-1).
    void MinutesIncDec(int n);
    void DayInc() { DayIncDec(1); }
    void DayDec() { DayIncDec(-1); }
    void MonthInc() { MonthIncDec(1); }
    void MonthDec() { MonthIncDec(-1); }
    void YearInc() { YearIncDec(1); }
    void YearDec() { YearIncDec(-1); }
    void HourInc() { HoursIncDec(1); }
    void HourDec() { HoursIncDec(-1); }
    void MinuteInc() { MinutesIncDec(1); }
    void MinuteDec() { MinutesIncDec(-1); }
    void DaysInc(int n) { DayIncDec(n); }
    void DaysDec(int n) { DayIncDec(-n); }
    void MonthsInc(int n) { MonthIncDec(n); }
    void MonthsDec(int n) { MonthIncDec(-n); }
    void YearsInc(int n) { YearIncDec(n); }
    void YearsDec(int n) { YearIncDec(-n); }
    void HoursInc(int n) { HoursIncDec(n); }
    void HoursDec(int n) { HoursIncDec(-n); }
    void MinutesInc(int n) { MinutesIncDec(n); }
    void MinutesDec(int n) { MinutesIncDec(-n); }

    // -- differences ------------------------------------------------------
    /// Vnt_DateDiffDays(copy of this date, copy of `other`): positive when
    /// `other` is later.
    long DiffDays(const VntDate& other) const;
    long DiffDays(VNT_DATE other) const;
    /// Vnt_DatePlusDays from a copy of this date into `out`, or into this
    /// date when `out` is null.
    void PlusDays(long days, VNT_DATE* out);
    /// Minutes from `earlier` to `later` (packed values, unpacked as Unpack
    /// does; both non-zero and later's year minus earlier's 0 or 1, otherwise
    /// 0 with every part 0). Days by day of the year, hours and minutes
    /// borrowing from the next larger part; seconds are not used; `later`
    /// before `earlier` gives a negative count. The parts go to the pointers
    /// that are given.   31.12.1999 23:50 -> 01.01.2000 00:10 => 20 (0, 0, 20)
    static long TimeDiff(unsigned long later, unsigned long earlier, long* days, long* hours,
                         long* minutes);

    // -- text -------------------------------------------------------------
    /// The text of `d` (this date when null) into `text`, which it returns.
    const char* DateToStr(const VNT_DATE* d = nullptr);
    /// "MM/DD/YYYY" of `d` (this date when null) into `text`.
    const char* DateToUSStr(const VNT_DATE* d = nullptr);
    /// Keeps 19 characters of `s` in `text` (as given, not the date's form)
    /// and reads them into `out` (this date when null) with Vnt_DateFromStr.
    void StrToDate(const char* s, VNT_DATE* out = nullptr);
    /// The same as StrToDate.
    void DateFromStr(const char* s, VNT_DATE* out = nullptr);

private:
    void renewText();
};
