// Calendar dates: every day from 1583 to 3000 against <chrono>; the stepping
// rules written out month by month against the library's closed formulas,
// for dates in and out of range; week settings from the application file;
// and the deliberate oddities of stepping, validation and differences.
#include <gmock/gmock.h>

#include "support.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/format.h"
#include "cal/odbc_timestamp.h"
#include "vanto/date.h"
#include "vanto/lfn.h"
#include "vanto/locale.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"

namespace fs = std::filesystem;
namespace chr = std::chrono;

namespace {

VNT_DATE D(int y, int m, int d) { return VNT_DATE{std::uint16_t(y), std::uint8_t(m), std::uint8_t(d)}; }
VNT_DATE D(chr::year_month_day ymd) { return D(int(ymd.year()), unsigned(ymd.month()), unsigned(ymd.day())); }
bool same(const VNT_DATE& a, const VNT_DATE& b) { return a.year == b.year && a.month == b.month && a.day == b.day; }
bool same(const VNT_TIME& a, const VNT_TIME& b) { return a.hour == b.hour && a.minute == b.minute; }
std::string S(const VNT_DATE& d) { return vnt::format("%d-%02d-%02d", d.year, d.month, d.day); }
std::string S(const VNT_DATE& d, const VNT_TIME& t) { return S(d) + vnt::format(" %02d:%02d", t.hour, t.minute); }

// A Wednesday, the 31st: "today's day" is longer than many months.
const vnt::host::LocalTime kNow{2024, 7, 31, 10, 20, 30, 450, 3};

class CalDate : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        dir_ = fs::temp_directory_path() / ("vanto_caldate_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir_);
        VNT_PATH b{};
        ASSERT_TRUE(Vnt_LfnFromHost(b, vnt::test::hostStr(dir_ / "Fibu").c_str()));
        vnt::host::setProgramFile(b);
        ASSERT_TRUE(Vnt_LfnFromHost(b, VANTO_SYSLIB_EN) && Vnt_MsgItfInit(nullptr, 0, b));
        vnt::host::setClock(&kNow);
        Vnt_SysSetIntlSource(&intl_);
        old_ = Vnt_UiSetPresenter(&box);
    }
    void TearDown() override {
        vnt::test::resetAll();
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(old_);
        vnt::host::setProgramFile("");
        fs::remove_all(dir_);
    }
    // INI\App.vtm of the program directory, one message a line.
    void appVtm(const std::vector<std::string>& lines) { vnt::test::writeIniLibrary(dir_, "App.vtm", lines); }
    static VntDate at(VNT_DATE d, int hour = 0, int minute = 0) {
        VntDate v;
        v.Set(d);
        v.SetTime(hour, minute, 0, 0);
        return v;
    }

    VntScriptedPresenter box;
    VntMsgPresenter* old_ = nullptr;
    VntIntlTable intl_{{"sShortDate", "dd.MM.yyyy"}};
    fs::path dir_;
};

// The rules as written: month by month, with the February rule of month
// stepping. The library computes most of this in closed form.

namespace literal {

bool leap(int y) { return y % 4 == 0 && (y % 100 != 0 || y % 400 == 0); }
int len(int y, int m) {
    static const int l[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m < 1 || m > 12 ? 0 : m == 2 && leap(y) ? 29 : l[m];
}

void monthIncDec(VNT_DATE& d, int n) {
    int m = d.month - 1 + n, y = d.year;
    while (m < 0) m += 12, --y;
    while (m > 11) m -= 12, ++y;
    d.year = static_cast<std::uint16_t>(y);
    d.month = static_cast<std::uint8_t>(m + 1);
    if (d.month == 2 && d.day == 29 && !leap(d.year)) d.month = 3, d.day = 1;
}

void dayIncDec(VNT_DATE& d, int n) {
    int i = d.day - 1 + n;
    if (i >= 0) {
        while (i >= len(d.year, d.month)) i -= len(d.year, d.month), monthIncDec(d, 1);
    } else {
        while (i < 0) monthIncDec(d, -1), i += len(d.year, d.month);
    }
    d.day = static_cast<std::uint8_t>(i + 1);
}

void hoursIncDec(VNT_DATE& d, VNT_TIME& t, int n) {
    int h = t.hour + n;
    for (; h >= 24; h -= 24) dayIncDec(d, 1);
    for (; h < 0; h += 24) dayIncDec(d, -1);
    t.hour = static_cast<std::uint8_t>(h);
}

void minutesIncDec(VNT_DATE& d, VNT_TIME& t, int n) {
    int m = t.minute + n;
    for (; m >= 60; m -= 60) hoursIncDec(d, t, 1);
    for (; m < 0; m += 60) hoursIncDec(d, t, -1);
    t.minute = static_cast<std::uint8_t>(m);
}

void plusDays(VNT_DATE* src, VNT_DATE* dst, long n) {
    src->year = Vnt_DateYearToLong(src->year);
    *dst = *src;
    long d = dst->day + n;
    int m = dst->month, y = dst->year;
    if (n == 0) return;
    while (n > 0 && d > len(y, m)) d -= len(y, m), (++m > 12 ? (m = 1, ++y) : 0);
    while (n < 0 && d < 1) (--m < 1 ? (m = 12, --y) : 0), d += len(y, m);
    *dst = D(y, m, static_cast<int>(d));
}

// Ordered on the dates as given, with the years expanded after.
long diffDays(VNT_DATE* from, VNT_DATE* to) {
    const bool swapped = std::tie(from->year, from->month, from->day) > std::tie(to->year, to->month, to->day);
    if (swapped) std::swap(from, to);
    from->year = Vnt_DateYearToLong(from->year);
    to->year = Vnt_DateYearToLong(to->year);
    long days = to->day - from->day;
    for (int y = from->year + 1; y < to->year; ++y) days += leap(y) ? 366 : 365;
    if (from->year != to->year) {
        for (int m = from->month; m <= 12; ++m) days += len(from->year, m);
        for (int m = 1; m < to->month; ++m) days += len(to->year, m);
    } else {
        for (int m = from->month; m < to->month; ++m) days += len(from->year, m);
    }
    return swapped ? -days : days;
}

}  // namespace literal

// ISO 8601 week from <chrono> alone: the week belongs to the year of its Thursday.
int isoWeek(chr::sys_days sd) {
    const chr::sys_days thursday = sd + chr::days{4 - int(chr::weekday{sd}.iso_encoding())};
    const chr::year y = chr::year_month_day{thursday}.year();
    return static_cast<int>((thursday - chr::sys_days{y / 1 / 1}).count() / 7 + 1);
}

TEST_F(CalDate, EveryDayFrom1583To3000AgreesWithChrono) {
    const chr::sys_days first{chr::year{1583} / 1 / 1}, last{chr::year{3000} / 12 / 31};
    const chr::sys_days anchors[] = {first, chr::sys_days{chr::year{2000} / 2 / 29}, last};
    const long steps[] = {1, -1, 1000, -1000, 36524, -36524};
    std::map<std::string, long> failures;
    std::string firstFailures;
    auto check = [&](bool ok, const char* what, chr::sys_days sd, long got, long want) {
        if (ok || failures[what]++ > 0) return;
        firstFailures += vnt::format("%s of %s: %ld, not %ld\n", what, S(D(chr::year_month_day{sd})).c_str(), got, want);
    };
    VntDate v;
    long days = 0;
    for (chr::sys_days sd = first; sd <= last; sd += chr::days{1}, ++days) {
        const chr::year_month_day ymd{sd};
        v.date = D(ymd);
        const long dow = chr::weekday{sd}.iso_encoding();
        const long doy = (sd - chr::sys_days{ymd.year() / 1 / 1}).count() + 1;
        const long gotDow = v.DayOfWeek(), gotDoy = v.DayOfYear(), gotWeek = v.WeekOfYear(), week = isoWeek(sd);
        check(gotDow == dow, "DayOfWeek", sd, gotDow, dow);
        check(gotDoy == doy, "DayOfYear", sd, gotDoy, doy);
        check(gotWeek == week, "WeekOfYear", sd, gotWeek, week);
        for (const long n : steps) {
            VNT_DATE src = v.date, dst{};
            Vnt_DatePlusDays(&src, &dst, n);
            check(same(dst, D(chr::year_month_day{sd + chr::days{n}})), "PlusDays", sd, n, 0);
        }
        for (const chr::sys_days a : anchors) {
            VNT_DATE from = v.date, to = D(chr::year_month_day{a});
            const long want = (a - sd).count(), there = Vnt_DateDiffDays(&from, &to), back = Vnt_DateDiffDays(&to, &from);
            check(there == want, "DiffDays to", sd, there, want);
            check(back == -want, "DiffDays from", sd, back, -want);
        }
    }
    EXPECT_EQ(std::to_string(days) + firstFailures, "517914");
    EXPECT_TRUE(box.plainShown.empty() && box.shown.empty());
}

TEST_F(CalDate, ClosedFormsGiveWhatTheRulesGiveInAndOutOfRange) {
    const int years[] = {5, 99, 100, 1900, 1999, 2000, 2001, 2003, 2004, 2100};
    const int days[] = {0, 1, 2, 15, 28, 29, 30, 31, 32, 40, 255};
    const int counts[] = {0, 1, 2, 27, 28, 29, 30, 31, 59, 60, 61, 365, 366, 400, 1461, 5000};
    std::vector<VNT_DATE> dates;
    for (const int y : years)
        for (int m = 0; m <= 14; ++m)
            for (const int d : days) dates.push_back(D(y, m, d));
    dates.push_back(D(2001, 255, 29));

    int checked = 0;
    std::string diffs;
    // `describe` gives "what: got, rule want", made only for a difference.
    auto note = [&](bool same, auto describe) {
        ++checked;
        if (!same && std::count(diffs.begin(), diffs.end(), '\n') < 10) diffs += describe() + "\n";
    };
    VntDate v;
    for (const VNT_DATE& d : dates) {
        for (const int c : counts)
            for (const int n : {c, -c}) {
                VNT_DATE want = d, src = d, dst{}, lsrc = d, ldst{};
                literal::dayIncDec(want, n);
                v.date = d;
                v.DayIncDec(n);
                note(same(v.date, want), [&] { return "DayIncDec " + S(d) + " " + std::to_string(n) + ": " + S(v.date) + ", rule " + S(want); });
                Vnt_DatePlusDays(&src, &dst, n);
                literal::plusDays(&lsrc, &ldst, n);
                note(same(src, lsrc) && same(dst, ldst),
                     [&] { return "PlusDays " + S(d) + " " + std::to_string(n) + ": " + S(dst) + ", rule " + S(ldst); });
            }
        // Hours and minutes step days one at a time, from hours and minutes out of range too.
        for (const int hm : {0, 23, 59, 75, 255})
            for (const int s : {1, 23, 24, 25, 49, 61, 1441, 3000, -1, -23, -24, -25, -49, -61, -1441, -3000})
                for (const bool minutes : {false, true}) {
                    VNT_DATE ld = d;
                    VNT_TIME lt{std::uint8_t(hm), std::uint8_t(hm), 0, 0};
                    v.date = d, v.time = lt;
                    minutes ? literal::minutesIncDec(ld, lt, s) : literal::hoursIncDec(ld, lt, s);
                    minutes ? v.MinutesIncDec(s) : v.HoursIncDec(s);
                    note(same(v.date, ld) && same(v.time, lt), [&] {
                        return vnt::format("%s %s %d %+d: ", minutes ? "Minutes" : "Hours", S(d).c_str(), hm, s) +
                               S(v.date, v.time) + ", rule " + S(ld, lt);
                    });
                }
    }
    // Differences between every pair of a smaller set.
    std::vector<VNT_DATE> few;
    for (const int y : {5, 99, 100, 1999, 2000, 2001, 2005})
        for (const int m : {0, 1, 2, 3, 12, 13})
            for (const int d : {0, 1, 28, 29, 31, 40}) few.push_back(D(y, m, d));
    for (const VNT_DATE& a : few)
        for (const VNT_DATE& b : few) {
            VNT_DATE f = a, t = b, lf = a, lt = b;
            const long got = Vnt_DateDiffDays(&f, &t), want = literal::diffDays(&lf, &lt);
            note(got == want && same(f, lf) && same(t, lt),
                 [&] { return "DiffDays " + S(a) + " " + S(b) + ": " + std::to_string(got) + ", rule " + std::to_string(want); });
        }
    EXPECT_GT(checked, 100000);
    EXPECT_EQ(diffs, "");
}

TEST_F(CalDate, WeeksUnderOtherFirstDaysAndMinimums) {
    // By the steps of the week rule; a first week shorter than 4 days can
    // make a week 54, and only 53 is moved into the next year.
    const struct { int first, min; VNT_DATE date; int week; } rows[] = {
        {SUNDAY, 1, D(2005, 1, 1), 1},     {SUNDAY, 1, D(2005, 1, 2), 2},    {SUNDAY, 1, D(2005, 12, 31), 53},
        {SUNDAY, 1, D(2006, 12, 31), 1},   {SUNDAY, 1, D(2004, 12, 31), 1},  {SUNDAY, 1, D(2012, 12, 29), 52},
        {SUNDAY, 4, D(2005, 1, 1), 52},    {SUNDAY, 4, D(2005, 1, 2), 1},    {SUNDAY, 4, D(2008, 12, 31), 53},
        {SATURDAY, 7, D(2005, 12, 31), 53}, {SATURDAY, 7, D(2006, 1, 1), 53}, {SATURDAY, 7, D(2007, 1, 1), 52},
        {SATURDAY, 7, D(2011, 1, 1), 1},   {MONDAY, 7, D(2005, 1, 2), 52},   {MONDAY, 7, D(2005, 1, 3), 1},
        {MONDAY, 7, D(2012, 12, 31), 53},  {MONDAY, 1, D(2005, 1, 3), 2},    {MONDAY, 1, D(2006, 12, 31), 53},
        {MONDAY, 1, D(2012, 12, 31), 54},  {MONDAY, 4, D(2005, 1, 1), 53},   {MONDAY, 4, D(2008, 12, 31), 1},
        {MONDAY, 4, D(2010, 1, 4), 1},     {MONDAY, 4, D(2010, 13, 4), 0},   {MONDAY, 4, D(2010, 1, 32), 0},
    };
    VntDate(true).WeekOfYear();  // the settings loaded (defaults), then the first day and minimum put in
    for (const auto& r : rows) {
        vnt::cal::state().week.firstDay = r.first, vnt::cal::state().week.minDays = r.min;
        EXPECT_EQ(at(r.date).WeekOfYear(), r.week) << S(r.date) << " first " << r.first << " min " << r.min;
    }
}

TEST_F(CalDate, WeekSettingsComeFromTheApplicationFileOnce) {
    appVtm({"[Settings]", "[VntDate]", "DaysLong = Montag, Dienstag, Mittwoch, Donnerstag, Freitag, Samstag, Sonntag, Extra",
            "DaysShort = Mon,,Di,Mittw", "FirstWeekDay = sONNtag", "MinDaysForFirstWeek = 1"});
    VntDate v(true);  // Wednesday
    EXPECT_STREQ(v.DayOfWeekStr(), "Mittwoch");
    const auto& w = vnt::cal::state().week;
    EXPECT_TRUE(w.loaded && w.firstDay == SUNDAY && w.minDays == 1);
    EXPECT_EQ(std::vector<int>(w.order, w.order + 7), (std::vector<int>{7, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(std::string(w.shortNames[1]) + "|" + w.shortNames[2] + "|" + w.shortNames[3] + "|" + w.shortNames[4],
              "Mon|Di|Mitt|Th") << "empty items passed over, cut to 4, the rest default";
    EXPECT_EQ(at(D(2005, 1, 2)).WeekOfYear(), 2);
    appVtm({"[VntDate]", "FirstWeekDay = Montag"});
    EXPECT_EQ(at(D(2005, 1, 2)).WeekOfYear(), 2) << "read once";
    EXPECT_TRUE(box.plainShown.empty() && box.shown.empty());

    // A day name that is none of the long names leaves Monday; no file: the defaults, silently.
    vnt::cal::reset();
    Vnt_SysSetIntlSource(&intl_);
    appVtm({"[VntDate]", "FirstWeekDay = Caturday", "MinDaysForFirstWeek = 7"});
    EXPECT_EQ(at(D(2005, 1, 2)).WeekOfYear(), 52);
    vnt::cal::reset();
    fs::remove(dir_ / "INI" / "App.vtm");
    EXPECT_EQ(at(D(2005, 1, 1)).WeekOfYear(), 53);
    EXPECT_EQ(at(D(2005, 1, 1)).DayOfWeekStr() + std::string("|") + vnt::cal::state().week.shortNames[7], "Saturday|Su");
    EXPECT_TRUE(box.plainShown.empty() && box.shown.empty());
}

TEST_F(CalDate, DayOfWeekBefore1583IsReportedAsSunday) {
    VntDate v = at(D(1582, 1, 1));
    EXPECT_EQ(v.DayOfWeek(), SUNDAY);
    ASSERT_EQ(box.plainShown.size(), 1u);
    EXPECT_THAT(box.plainShown[0].text, ::testing::HasSubstr("Invalid DayOfWeek (-2)!\n\n(Year=1582, Month=1, Day=1)"));
    v.WeekOfYear();
    EXPECT_EQ(box.plainShown.size(), 2u) << "one report for a week number";
    EXPECT_EQ(at(D(1583, 1, 1)).DayOfWeek(), SATURDAY);
}

TEST_F(CalDate, YearsLengthsAndValidity) {
    const std::pair<int, int> years[] = {{0, 2000}, {29, 2029}, {30, 1930}, {99, 1999}, {100, 100}, {2005, 2005}};
    for (const auto& [in, out] : years) EXPECT_EQ(Vnt_DateYearToLong(static_cast<unsigned short>(in)), out) << in;
    EXPECT_EQ(std::vector<int>({at(D(2000, 1, 1)).DaysPerYear(), at(D(1900, 1, 1)).DaysPerYear(),
                                at(D(2100, 1, 1)).DaysPerYear(), at(D(2024, 1, 1)).DaysPerYear(),
                                at(D(2000, 2, 1)).DaysPerMonth(0), at(D(2001, 2, 1)).DaysPerMonth(0),
                                at(D(2001, 2, 1)).DaysPerMonth(4), at(D(2001, 2, 1)).DaysPerMonth(13)}),
              std::vector<int>({366, 365, 365, 366, 29, 28, 30, 0}));
    // Valid, valid in range, ok, ok in range (2051 is no leap year).
    const struct { VNT_DATE d; const char* flags; } rows[] = {
        {D(2051, 2, 29), "0000"}, {D(2052, 2, 29), "1011"}, {D(1979, 12, 31), "1010"}, {D(3001, 1, 1), "1000"},
        {D(2001, 4, 31), "0000"}, {D(2001, 13, 1), "0000"}, {D(2001, 1, 0), "0000"},   {D(2000, 2, 29), "1111"},
    };
    for (const auto& r : rows) {
        const VntDate v = at(r.d);
        const std::string flags{char('0' + Vnt_DateIsValid(r.d, false)), char('0' + Vnt_DateIsValid(r.d, true)),
                                char('0' + v.DateIsOk(false)), char('0' + v.DateIsOk(true))};
        EXPECT_EQ(flags, r.flags) << S(r.d);
        EXPECT_EQ(v.DateIsValid(true), r.flags[1] == '1') << S(r.d);
    }
    EXPECT_TRUE(Vnt_DateIsValid(D(2051, 3, 1), false) && !Vnt_DateIsValid(D(2051, 3, 1), true));
}

TEST_F(CalDate, ValidateRepairsWithTodayAsItIs) {
    // Today is 31 July 2024.
    const struct { VNT_DATE in; bool useToday, range; VNT_DATE out; } rows[] = {
        {D(2000, 2, 29), true, true, D(2000, 2, 29)},  {D(5, 2, 30), false, false, D(2005, 2, 28)},
        {D(99, 2, 29), false, false, D(1999, 2, 28)},  {D(2001, 13, 5), false, false, D(2001, 12, 5)},
        {D(2001, 0, 0), false, false, D(2001, 1, 1)},  {D(2001, 0, 0), true, false, D(2001, 7, 31)},
        {D(2001, 4, 0), true, false, D(2001, 4, 31)},  {D(2001, 2, 30), true, false, D(2001, 2, 31)},
        {D(1960, 5, 5), false, true, D(2024, 5, 5)},   {D(2051, 5, 5), false, false, D(2051, 5, 5)},
    };
    for (const auto& r : rows) {
        VNT_DATE d = r.in;
        EXPECT_EQ(Vnt_DateValidate(&d, r.useToday, r.range), S(r.in) == S(r.out)) << S(r.in);
        EXPECT_EQ(S(d), S(r.out)) << S(r.in) << " today " << r.useToday << " range " << r.range;
    }
    VntDate v = at(D(1970, 2, 30));
    EXPECT_FALSE(v.DateValidate());
    EXPECT_STREQ(v.text, "28.02.2024") << "month first, then the year from today";
    EXPECT_TRUE(v.DateValidate());
}

TEST_F(CalDate, DifferencesAndAddingDays) {
    // Ordered on the years as given, and not reordered after the years are expanded.
    const struct { VNT_DATE from, to; long days; const char* after; } diffs[] = {
        {D(1999, 12, 31), D(2000, 1, 1), 1, "1999-12-31 2000-01-01"},
        {D(2000, 1, 1), D(1999, 12, 31), -1, "2000-01-01 1999-12-31"},
        {D(99, 12, 31), D(0, 1, 1), -730, "1999-12-31 2000-01-01"},
        {D(5, 3, 1), D(2005, 1, 1), 0, "2005-03-01 2005-01-01"},
        {D(2000, 1, 1), D(2000, 3, 1), 60, "2000-01-01 2000-03-01"},
        {D(1900, 2, 28), D(2100, 3, 1), 73050, "1900-02-28 2100-03-01"},
    };
    for (const auto& r : diffs) {
        VNT_DATE f = r.from, t = r.to;
        EXPECT_EQ(Vnt_DateDiffDays(&f, &t), r.days) << S(r.from) << " " << S(r.to);
        EXPECT_EQ(S(f) + " " + S(t), r.after) << "records as given, years expanded";
    }
    const struct { VNT_DATE src; long n; VNT_DATE dst; } adds[] = {
        {D(2000, 1, 31), 29, D(2000, 2, 29)}, {D(2000, 1, 31), -31, D(1999, 12, 31)},
        {D(2001, 4, 40), 0, D(2001, 4, 40)},  {D(2001, 4, 40), -1, D(2001, 4, 39)},   // back: kept while 1 or more
        {D(2001, 4, 40), 1, D(2001, 5, 11)},  {D(2001, 2, 31), -31, D(2001, 1, 31)},
        {D(99, 1, 1), 1, D(1999, 1, 2)},      {D(2000, 3, 1), 146097L * 100, D(42000, 3, 1)},
        {D(2000, 1, 1), -730485, D(0, 1, 1)},
    };
    for (const auto& r : adds) {
        VNT_DATE src = r.src, dst{};
        Vnt_DatePlusDays(&src, &dst, r.n);
        EXPECT_EQ(S(dst), S(r.dst)) << S(r.src) << " + " << r.n;
        EXPECT_EQ(src.year, Vnt_DateYearToLong(r.src.year)) << "the expanded year written back";
    }
    VNT_DATE big{2000, 1, 1}, out{}, o{};
    Vnt_DatePlusDays(&big, &out, LONG_MAX);  // far beyond 16-bit years: no overflow, some date
    Vnt_DatePlusDays(&big, &out, LONG_MIN);
    VntDate v = at(D(31, 5, 5));
    EXPECT_EQ(std::vector<long>({v.DiffDays(D(1931, 5, 6)), v.DiffDays(at(D(1931, 5, 4)))}), std::vector<long>({1, -1}));
    v.PlusDays(-4, &o);
    EXPECT_EQ(S(o) + " " + S(v.date), "1931-05-01 31-05-05") << "a copy of the date is the source";
    v.PlusDays(27, nullptr);
    EXPECT_STREQ(v.text, "01.06.1931");
    EXPECT_EQ(VntDate::TimeDiff(0, 1, nullptr, nullptr, nullptr), 0);
}

TEST_F(CalDate, SteppingKeepsItsRules) {
    // The February rule inside day stepping and going back through it; for years only after a leap year.
    const auto day = &VntDate::DayIncDec, month = &VntDate::MonthIncDec, year = &VntDate::YearIncDec;
    const struct { VNT_DATE d; void (VntDate::*step)(int); int n; VNT_DATE want; } rows[] = {
        {D(2001, 1, 29), day, 3, D(2001, 3, 1)},       {D(2001, 3, 29), day, -29, D(2001, 3, 31)},
        {D(2004, 1, 29), day, 3, D(2004, 2, 1)},       {D(2001, 1, 28), day, 4, D(2001, 2, 1)},
        {D(2000, 12, 31), day, 1, D(2001, 1, 1)},      {D(2001, 1, 1), day, -1, D(2000, 12, 31)},
        {D(2001, 1, 31), month, 1, D(2001, 2, 31)},    {D(2001, 1, 29), month, 1, D(2001, 3, 1)},
        {D(2000, 1, 29), month, 1, D(2000, 2, 29)},    {D(2000, 11, 15), month, 3, D(2001, 2, 15)},
        {D(2000, 1, 15), month, -1, D(1999, 12, 15)},  {D(2000, 1, 15), month, -25, D(1997, 12, 15)},
        {D(1999, 6, 1), year, 1, D(208, 6, 1)},        {D(2000, 6, 1), year, -1, D(207, 6, 1)},
        {D(2000, 2, 29), year, 1, D(209, 3, 1)},       {D(2004, 2, 29), year, 4, D(216, 2, 29)},
        {D(1999, 2, 29), year, 2, D(209, 2, 29)},
    };
    for (const auto& r : rows) {
        VntDate v = at(r.d);
        (v.*r.step)(r.n);
        EXPECT_EQ(S(v.date), S(r.want)) << S(r.d) << " " << r.n;
        EXPECT_EQ(std::string(v.text), VntDate().DateToStr(&r.want)) << "text renewed";
    }
    const struct { VNT_DATE d; int hour, minute; bool minutes; int n; std::string want; } times[] = {
        {D(1999, 12, 31), 23, 50, true, 20, "2000-01-01 00:10"}, {D(2000, 3, 1), 0, 0, false, -1, "2000-02-29 23:00"},
        {D(2000, 3, 1), 0, 0, true, -61, "2000-02-29 22:59"},    {D(2000, 3, 1), 1, 0, false, 49, "2000-03-03 02:00"},
        {D(2001, 1, 29), 12, 0, false, 72, "2001-02-01 12:00"},   // single day steps: no February rule
    };
    for (const auto& r : times) {
        VntDate v = at(r.d, r.hour, r.minute);
        r.minutes ? v.MinutesInc(r.n) : v.HoursInc(r.n);
        EXPECT_EQ(S(v.date, v.time), r.want) << S(r.d) << " " << r.n;
    }
    VntDate v = at(D(2001, 1, 31));
    v.DaysDec(31), v.MonthsInc(2), v.YearsDec(1);
    EXPECT_EQ(S(v.date), "208-02-31");
}

TEST_F(CalDate, TimeDifferencesAndPacking) {
    auto packed = [](VNT_DATE d, int h, int m) {
        return VntDate::Pack(VNT_TIME{std::uint8_t(h), std::uint8_t(m), 0, 0}, d);
    };
    const struct { unsigned long later, earlier; long result, days, hours, minutes; } rows[] = {
        {packed(D(2000, 1, 1), 0, 10), packed(D(1999, 12, 31), 23, 50), 20, 0, 0, 20},
        {packed(D(2000, 3, 1), 8, 5), packed(D(2000, 2, 28), 9, 30), 2 * 1440 - 85, 1, 22, 35},
        {packed(D(2000, 1, 1), 12, 0), packed(D(2000, 1, 2), 12, 0), -1440, -1, 0, 0},  // earlier later: negative
        {packed(D(2001, 1, 1), 0, 0), packed(D(1999, 12, 31), 0, 0), 0, 0, 0, 0},  // two years apart
        {packed(D(1999, 1, 1), 0, 0), packed(D(2000, 1, 1), 0, 0), 0, 0, 0, 0},
        {0, packed(D(2000, 1, 1), 0, 0), 0, 0, 0, 0},
    };
    for (const auto& r : rows) {
        long d = 9, h = 9, m = 9;
        EXPECT_EQ(VntDate::TimeDiff(r.later, r.earlier, &d, &h, &m), r.result) << std::hex << r.later;
        EXPECT_EQ(std::vector<long>({d, h, m}), std::vector<long>({r.days, r.hours, r.minutes}));
    }
    EXPECT_EQ(std::vector<unsigned long>({packed(D(1999, 12, 31), 23, 59) & 0xFFFF, packed(D(5, 1, 1), 0, 0) >> 25,
                                          packed(D(1900, 1, 1), 0, 0) >> 25}),
              std::vector<unsigned long>({0xBF60u, 25u, 0u}));
    EXPECT_EQ(VntDate::Pack(VNT_TIME{23, 59, 59, 99}, D(99, 12, 31)), (19ul << 25 | 12 << 21 | 31 << 16 | 0xBF7D));
    VntDate v;
    EXPECT_EQ(v.Pack(), v.packed);
    auto full = [&] { return S(v.date, v.time) + vnt::format(":%02d.%d ", v.time.second, v.time.fraction) + v.text; };
    v.Unpack(packed(D(2010, 6, 7), 13, 14) | 21);
    EXPECT_EQ(full(), "2010-06-07 13:14:42.0 07.06.2010");
    v.Unpack(0x12345678 & 0xFE1FFFFF);  // month 0: today and now
    EXPECT_EQ(full().substr(0, 22), "2024-07-31 10:20:30.45");
}

TEST_F(CalDate, SettingConstructingAndText) {
    VntDate none, today(true), partial(0xFFFF, 3, 0), given(2001, 2, 3);
    EXPECT_EQ(S(none.date, none.time) + "|" + S(today.date, today.time), "0-00-00 00:00|2024-07-31 00:00");
    EXPECT_EQ(S(partial.date, partial.time), "2024-03-31 10:20") << "today's parts, the time now";
    EXPECT_EQ(S(given.date), "2001-02-03");
    EXPECT_TRUE(none.DatePtr() == nullptr && today.DatePtr() == &today.date);
    const VntDate& constNone = none;
    const VNT_DATE* asPointer = constNone;
    char todayText[20];
    EXPECT_TRUE(asPointer == nullptr && Vnt_DateToStr(todayText, constNone) && std::string(todayText) == "31.07.2024")
        << "an empty const date is no date: today's text";
    asPointer = given;
    EXPECT_EQ(asPointer, &given.date);

    VntDate v = at(D(2001, 1, 31));
    v.SetDate(5, 2, 30);
    EXPECT_EQ(S(v.date) + " " + v.text, "2005-02-31 31.02.2005") << "a day beyond the new month is not taken";
    v.SetMonth(13), v.SetDay(28), v.SetYear(0xFFFF), v.SetTime(7, -1, 9, -1);
    EXPECT_EQ(S(v.date, v.time) + vnt::format(":%02d", v.time.second), "2005-02-28 07:00:09");
    tagTIMESTAMP_STRUCT ts{};
    ts.year = 2010, ts.month = 11, ts.day = 12, ts.hour = 13, ts.minute = 14, ts.second = 15, ts.fraction = 456789123;
    v = ts;
    EXPECT_EQ(S(v.date, v.time) + vnt::format(":%02d.%02d", v.time.second, v.time.fraction) + " " + v.text,
              "2010-11-12 13:14:15.45 12.11.2010") << "nanoseconds to hundredths";
    v = 0;
    EXPECT_TRUE(v.DatePtr() == nullptr && v.DateCompare(none) == 0);
    v = D(2010, 11, 13);
    EXPECT_EQ(std::vector<int>({v.DateCompare(given), given.DateCompare(v), v.DateCompare(v)}), std::vector<int>({1, -1, 0}));

    char buf[20], tiny[10], mid[20];
    EXPECT_TRUE(Vnt_DateToStr(buf, nullptr) && std::string(buf) == "31.07.2024") << "null: today";
    EXPECT_FALSE(Vnt_DateToStr(tiny, sizeof tiny, &v.date));
    Vnt_DateToStr(&v.date, mid, 11);
    Vnt_DateToStr(1999, 3, 5, &buf);
    EXPECT_EQ(std::string(tiny) + " " + mid + " " + buf + " " + v.DateToUSStr(),
              "13.11.201 13.11.2010 05.03.1999 11/13/2010");
    VNT_DATE out{}, us{};
    v.StrToDate("5.3.99 and more text beyond", &out);
    EXPECT_EQ(S(out) + " " + v.text, "1999-03-05 5.3.99 and more tex") << "19 characters kept";
    v.DateFromStr("7.8.", nullptr);
    Vnt_DateFromUSStr(&us, "12/24/2030");
    EXPECT_EQ(S(v.date) + " " + S(us), "2024-08-07 2030-12-24");
}

}  // namespace
