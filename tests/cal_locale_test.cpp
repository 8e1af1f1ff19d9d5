// The "intl" record and what is derived from the short date format, date
// texts under several conventions, reading of partial and malformed dates,
// and the host's reading of the locale environment.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <random>
#include <string>

#include "cal_locale_files.h"
#include "host/intl.h"
#include "host/time.h"
#include "support.h"
#include "vanto/amount.h"
#include "vanto/date.h"
#include "vanto/locale.h"
#include "vanto/ui/msgbox.h"

namespace fs = std::filesystem;

namespace {

// 20 November 2026, a Friday.
const vnt::host::LocalTime kNow{2026, 11, 20, 10, 30, 0, 0, 5};

// "digits|country|decimal thousands time|currency|language|short date", "~" for an absent character.
std::string record(const VNT_SYS_INFO& i) {
    auto ch = [](char c) { return c ? std::string(1, c) : std::string("~"); };
    return std::to_string(i.iCurrDigits) + "|" + std::to_string(i.iCountry) + "|" + ch(i.cDecimal) +
           ch(i.cThousand) + ch(i.cTime) + "|" + i.szCurrency + "|" + i.szLanguage + "|" + i.szShortDate;
}

class Locale : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        vnt::host::setClock(&kNow);
        Vnt_UiSetPresenter(&boxes_);
    }
    void TearDown() override {
        Vnt_UiSetPresenter(nullptr);
        vnt::test::resetAll();
    }
    // Loads a record whose only setting is the short date format.
    void use(const char* shortDate) {
        table_ = VntIntlTable{};
        if (shortDate) table_.set("sShortDate", shortDate);
        Vnt_SysSetIntlSource(&table_);
        Vnt_SysInfo(VNT_SI_RELOAD);
    }
    VntIntlTable table_;
    VntScriptedPresenter boxes_;
};

TEST_F(Locale, RecordDefaultsAndLimits) {
    EXPECT_EQ(Vnt_SysDateOrder(), -1);
    EXPECT_STREQ(Vnt_SysDateFormat(), "%02d_%02d_%02d");
    use(nullptr);
    EXPECT_EQ(record(Vnt_SysInfo(VNT_SI_GET)), "2|49|~~~|||dd.MM.yyyy");
    VntIntlTable t{{"iCurrDigits", "3x"}, {"iCountry", "-41"}, {"sDecimal", ",;"}, {"sThousand", ""},
                   {"sTime", ":"}, {"sCurrency", "EURO123"}, {"sLanguage", "DEUX"},
                   {"sShortDate", "dd.MM.yyyy.dd.MM.yyyy"}};
    Vnt_SysSetIntlSource(&t);
    EXPECT_EQ(Vnt_SysInfo(VNT_SI_GET).iCurrDigits, 2) << "loaded once, until reloaded";
    EXPECT_EQ(record(Vnt_SysInfo(VNT_SI_RELOAD)), "3|-41|,~:|EURO12|DEU|dd.MM.yyyy.dd.M");
    EXPECT_EQ(Vnt_SysSetIntlSource(nullptr), &t);
}

TEST_F(Locale, FormatDerivedFromShortDate) {
    // Two different separators: the first two fields run to the first one.
    const struct { const char *shortDate, *expected; } rows[] = {
        {"dd.MM.yyyy", "1 %02d.%02d.%04d .."}, {"d/M/yy", "1 %01d/%01d/%02d //"}, {"yyyy-MM-dd", "2 %04d-%02d-%02d --"},
        {"MM/dd/yyyy", "0 %02d/%02d/%04d //"}, {"M/d/yyyy", "0 %01d/%01d/%04d //"}, {"yy.MM.dd", "2 %02d.%02d.%02d .."},
        {"Md", "0 %02d_%00d_%00d .."},         {"dd-MM yyyy", "1 %02d-%07d %00d - "}, {"d. M. yyyy", "1 %01d.%02d %00d . "},
    };
    for (const auto& r : rows) {
        use(r.shortDate);
        const VNT_SYS_INFO& i = Vnt_SysInfo(VNT_SI_GET);
        EXPECT_EQ(std::to_string(Vnt_SysDateOrder()) + " " + Vnt_SysDateFormat() + " " + i.cDateSep1 + i.cDateSep2,
                  r.expected) << r.shortDate;
        EXPECT_FALSE(Vnt_SysIsShortYear()) << r.shortDate;
    }
    EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(Locale, DateText) {
    const struct { const char* shortDate; int y, m, d; bool two, full; const char* expected; } rows[] = {
        {"dd.MM.yyyy", 1999, 3, 5, false, true, "05.03.1999"}, {"dd.MM.yyyy", 1999, 3, 5, false, false, "05.03.1999"},
        {"d/M/yy", 1999, 3, 5, false, true, "5/3/1999"},       {"d/M/yy", 1999, 3, 5, false, false, "5/3/99"},
        {"d/M/yy", 2005, 12, 31, true, false, "31/12/05"},     {"d/M/yy", 2005, 3, 5, true, false, "05/03/05"},
        {"MM/dd/yyyy", 1999, 3, 5, false, true, "03/05/1999"}, {"yyyy-MM-dd", 1999, 3, 5, false, false, "1999-03-05"},
        {"yy-M-d", 1999, 3, 5, false, false, "99-3-5"},        {"d. M. yyyy", 1999, 3, 5, false, true, "5.03 1999"},
        {"dd.MM.yyyy", 65535, 255, 255, false, true, "20.11.2026"}, {"dd.MM.yyyy", 5, 1, 2, false, true, "02.01.0005"},
        {"dd.MM.yyyy", 99, 1, 2, false, true, ""},             {"dd.MM.yyyy", 1999, 99, 2, false, true, ""},
        {"dd.MM.yyyy", 99, 99, 99, false, true, ""},  // the empty date clears all 20 bytes
    };
    for (const auto& r : rows) {
        use(r.shortDate);
        char buf[20];
        std::memset(buf, 'x', sizeof buf);
        Vnt_SysDateToStr(r.y, r.m, r.d, &buf, r.two, r.full);
        EXPECT_EQ(std::string(buf, strnlen(buf, sizeof buf)), r.expected) << r.shortDate << " " << r.y;
        EXPECT_TRUE(*r.expected || std::string(buf, sizeof buf) == std::string(20, '\0')) << r.y << " " << r.m;
    }
}

TEST_F(Locale, ReadingDates) {
    // Expected: "year-month-day result" and where reading stopped.
    const struct { const char *shortDate, *in, *expected, *rest; } rows[] = {
        {"dd.MM.yyyy", "05.03.1999", "1999-3-5 0", ""},      {"dd.MM.yyyy", "5.3.99", "1999-3-5 1", ""},
        {"dd.MM.yyyy", " \t05/03-1999 rest", "1999-3-5 0", "rest"}, {"dd.MM.yyyy", "3", "2026-11-3 1", ""},
        {"dd.MM.yyyy", "45.03.1999", "2003-5-4 1", "1999"},  {"dd.MM.yyyy", "", "99-99-99 1", ""},
        {"dd.MM.yyyy", "  ", "99-99-99 1", ""},              {"dd.MM.yyyy", "*.*.2001", "2001-11-20 1", ""},
        {"dd.MM.yyyy", "**2001", "2001-11-20 1", ""},
        {"dd.MM.yyyy", "x.7.2001", "2007-11-20 1", "2001"},  // "x" and "." unset day and month
        {"dd.MM.yyyy", "31.02.2001", "2001-2-28 1", ""},     {"dd.MM.yyyy", "00.00.2001", "2001-11-20 1", ""},
        {"dd.MM.yyyy", "05.03.0", "2000-3-5 1", ""},
        {"dd.MM.yyyy", "05.03.19999", "19999-3-5 0", "9"},   // a year is read whole
        {"dd.MM.yyyy", "123.4.2001", "2004-3-12 1", "2001"}, // "3" is surplus, then the month
        {"dd.MM.yyyy", "5x3.99", "2003-11-5 1", "99"},       {"MM/dd/yyyy", "03/05/1999", "1999-3-5 0", ""},
        {"MM/dd/yyyy", "13/05/1999", "2005-1-3 1", "1999"},  {"yyyy-MM-dd", "1999-03-05", "1999-3-5 0", ""},
        {"yyyy-MM-dd", "99-3-5", "1999-3-5 1", ""},          {"yyyy-MM-dd", "2024", "2024-11-20 1", ""},
    };
    for (const auto& r : rows) {
        use(r.shortDate);
        VNT_DATE d{};
        const char* end = nullptr;
        const std::string result = Vnt_SysDateFromStr(d, r.in, &end) ? " 1" : " 0";
        EXPECT_EQ(std::to_string(d.year) + "-" + std::to_string(d.month) + "-" + std::to_string(d.day) + result,
                  r.expected) << r.shortDate << " '" << r.in << "'";
        EXPECT_STREQ(end, r.rest) << r.in;
    }
    use("dd.MM.yyyy");
    VNT_DATE d{};
    EXPECT_TRUE(!Vnt_SysDateFromUSStr(d, "03/05/1999", nullptr) && d.month * 100 + d.day == 305) << "month first whatever the locale";
    EXPECT_TRUE(Vnt_SysDateFromStr(d, nullptr, nullptr) && d.year == 99);
    EXPECT_STREQ(Vnt_SysDateFormat(), "%02d.%02d.%04d") << "the US form leaves the locale as it was";
}

// Whole records as a German and an American system give them: the record
// itself, dates both ways, and money, all from the installed source.
TEST_F(Locale, GermanAndAmericanRecords) {
    const struct { VntIntlTable source; const char *record, *dateText, *typed, *money; } rows[] = {
        {{{"iCurrDigits", "2"}, {"iCountry", "49"}, {"sDecimal", ","}, {"sThousand", "."}, {"sTime", ":"},
          {"sCurrency", "EUR"}, {"sLanguage", "DEU"}, {"sShortDate", "dd.MM.yyyy"}},
         "2|49|,.:|EUR|DEU|dd.MM.yyyy", "05.03.1999", "24.12.01", "1234,57"},
        {{{"iCurrDigits", "2"}, {"iCountry", "1"}, {"sDecimal", "."}, {"sThousand", ","}, {"sTime", ":"},
          {"sCurrency", "$"}, {"sLanguage", "ENU"}, {"sShortDate", "M/d/yyyy"}},
         "2|1|.,:|$|ENU|M/d/yyyy", "3/5/1999", "12/24/01", "1234.57"},
    };
    for (const auto& r : rows) {
        VntIntlTable source = r.source;
        Vnt_SysSetIntlSource(&source);
        EXPECT_EQ(record(Vnt_SysInfo(VNT_SI_RELOAD)), r.record);
        const VNT_DATE march{1999, 3, 5};
        char buf[20];
        EXPECT_TRUE(Vnt_DateToStr(buf, &march) && std::string(buf) == r.dateText) << buf;
        VNT_DATE d{};
        Vnt_DateFromStr(&d, r.typed);
        EXPECT_EQ(d.year * 10000 + d.month * 100 + d.day, 20011224) << r.record;
        EXPECT_STREQ(VntDate(2001, 12, 24).DateToStr(nullptr), VntDate(d.year, d.month, d.day).text);
        std::string money;
        double v = 0;
        EXPECT_TRUE(Vnt_MoneyToStr(money, 1234.565, true) && money == r.money) << money;
        EXPECT_TRUE(!Vnt_MoneyFromStr(r.money, &v) && v == 1234.57) << v;
    }
    Vnt_SysSetIntlSource(nullptr);
    EXPECT_TRUE(boxes_.shown.empty());
}

#if defined(_WIN32)
// The Win32 host reads the user's regional settings. Wine gives en-US
// unless started with LC_ALL set; either way the values have the forms
// the library parses.
TEST(HostIntl, RegionalSettings) {
    const auto value = [](const char* key) { std::string v; return vnt::host::intlValue(key, v) ? v : "<none>"; };
    const std::string lang = value("sLanguage"), date = value("sShortDate"), dec = value("sDecimal");
    EXPECT_EQ(lang.size(), 3u) << lang;
    EXPECT_TRUE(dec == "." || dec == ",") << dec;
    EXPECT_NE(date.find_first_of("dMy"), std::string::npos) << date;
    EXPECT_GT(std::atoi(value("iCountry").c_str()), 0);
    EXPECT_EQ(value("sNoSuchKey"), "<none>");
    if (lang == "ENU") {
        EXPECT_EQ(value("sDecimal") + value("sThousand") + value("iCountry"), ".,1");
    }
    if (lang == "DEU") {
        EXPECT_EQ(value("sDecimal") + value("sThousand") + value("iCountry"), ",.49");
    }
    EXPECT_GE(vnt::host::osVersion(), 501u);
}
#else
// The host reads the locale environment; names of locales that are not
// installed fall back to the common conventions.
class HostIntl : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* v : kVars)
            saved_.push_back(std::getenv(v) ? std::optional<std::string>(std::getenv(v)) : std::nullopt);
        for (const char* v : kVars) unsetenv(v);
    }
    void TearDown() override {
        for (std::size_t i = 0; i < saved_.size(); ++i)
            saved_[i] ? setenv(kVars[i], saved_[i]->c_str(), 1) : unsetenv(kVars[i]);
    }
    static std::string value(const char* key) { std::string v; return vnt::host::intlValue(key, v) ? v : "<none>"; }
    static std::string values(std::initializer_list<const char*> keys) {
        std::string all;
        for (const char* key : keys) all += value(key) + "|";
        return all;
    }
    static constexpr const char* kVars[] = {"LC_ALL", "LANG", "LC_NUMERIC", "LC_TIME", "LC_MONETARY",
                                            "LC_MESSAGES", "LC_TELEPHONE", "LOCPATH"};
    std::vector<std::optional<std::string>> saved_;
};

TEST_F(HostIntl, LocaleEnvironment) {
    // A codeset no machine has keeps these rows on the stand-in table.
    const struct { const char *lang, *expected; } rows[] = {  // short date, decimal, language, country, time
        {"de_DE.VNT", "dd.MM.yyyy|,|DEU|49|:|"}, {"de_AT.VNT", "dd.MM.yyyy|,|DEA|43|:|"},
        {"en_US.VNT", "MM/dd/yyyy|.|ENU|1|:|"},  {"en_GB.VNT@x", "dd/MM/yyyy|.|ENG|44|:|"},
        {"sw_KE.VNT", "<none>|<none>|SWX|<none>|:|"}, {"C", "<none>|.|<none>|<none>|:|"},
        {"C.UTF-8", "<none>|.|<none>|<none>|:|"},     {"", "<none>|.|<none>|<none>|:|"},
    };
    for (const auto& r : rows) {
        setenv("LANG", r.lang, 1);
        EXPECT_EQ(values({"sShortDate", "sDecimal", "sLanguage", "iCountry", "sTime"}), r.expected) << r.lang;
    }
    setenv("LANG", "en_US.VNT", 1);
    setenv("LC_TIME", "de_DE.VNT", 1);
    EXPECT_EQ(value("sShortDate"), "dd.MM.yyyy") << "the category's own variable wins over LANG";
    setenv("LC_ALL", "en_GB.VNT", 1);
    EXPECT_EQ(value("sShortDate") + value("sNoSuchKey"), "dd/MM/yyyy<none>") << "LC_ALL wins over both";
    EXPECT_GT(Vnt_SysWinVer(), 100);
}

#ifdef __GLIBC__
// A locale as the machine would have it installed, written into the test's
// own directory: its values win over the stand-in conventions of its
// language, and its date format is translated to the pattern letters.
TEST_F(HostIntl, InstalledLocale) {
    using vnt::test::writeLocaleCategory;
    const vnt::test::LocalePathLeaks cLibrary;
    const fs::path dir = fs::temp_directory_path() / ("vanto_intl_" + std::to_string(std::random_device{}()));
    auto install = [&](const std::string& sub, const char* dateFormat) {
        const fs::path at = dir / sub;
        setenv("LOCPATH", at.c_str(), 1);
        return vnt::test::writeCommaNumeric(at, "de_VNT", ' ') &&
               writeLocaleCategory(at, "de_VNT", "LC_TIME", LC_TIME, _NL_ITEM_INDEX(_NL_NUM_LC_TIME),
                                   {{D_FMT, dateFormat}, {T_FMT, "%H.%M.%S"}}) &&
               writeLocaleCategory(at, "de_VNT", "LC_MONETARY", LC_MONETARY, _NL_ITEM_INDEX(_NL_NUM_LC_MONETARY),
                                   {{FRAC_DIGITS, "\3"}, {CRNCYSTR, "-EUR"}}) &&
               writeLocaleCategory(at, "de_VNT", "LC_TELEPHONE", LC_TELEPHONE,
                                   _NL_ITEM_INDEX(_NL_NUM_LC_TELEPHONE), {{_NL_TELEPHONE_INT_PREFIX, "41"}});
    };
    setenv("LANG", "de_VNT", 1);
    ASSERT_TRUE(install("base", "%Y-%m-%d"));
    EXPECT_EQ(values({"sDecimal", "sThousand", "sShortDate", "sTime", "iCurrDigits", "sCurrency", "iCountry",
                      "sLanguage"}),
              ",| |yyyy-MM-dd|.|3|EUR|41|DEU|") << "the language's code from the stand-ins, the rest installed";

    // With no source of its own the library takes the record from there.
    vnt::cal::reset();
    EXPECT_EQ(record(Vnt_SysInfo(VNT_SI_RELOAD)), "3|41|, .|EUR|DEU|yyyy-MM-dd");
    EXPECT_STREQ(Vnt_SysDateFormat(), "%04d-%02d-%02d");

    const struct { const char *dateFormat, *shortDate; } formats[] = {
        {"%d.%m.%Y", "dd.MM.yyyy"},    {"%e/%m/%y", "d/MM/yy"}, {"%D", "MM/dd/yy"}, {"%F", "yyyy-MM-dd"},
        {"%Od.%Om.%EY", "dd.MM.yyyy"}, {"%d %B %Y", "<none>"},  {"", "<none>"},
    };
    int n = 0;
    for (const auto& f : formats) {
        ASSERT_TRUE(install(std::to_string(n++), f.dateFormat));
        EXPECT_EQ(value("sShortDate"), f.shortDate) << f.dateFormat;
    }
    vnt::cal::reset();
    std::error_code ec;
    fs::remove_all(dir, ec);
}
#endif
#endif  // _WIN32

}  // namespace
