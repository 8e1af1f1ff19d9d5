// Amounts: the rounding rule against an exact model of it, money and
// percentages, the text forms under a German and an English record, reading
// with either separator, and independence of the C run time's locale.

#include <gtest/gtest.h>

#include "cal_locale_files.h"
#include "support.h"

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "vanto/amount.h"
#include "vanto/lfn.h"
#include "vanto/locale.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"

namespace fs = std::filesystem;

namespace {

const double kInf = std::numeric_limits<double>::infinity();

class Amount : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        old_ = Vnt_UiSetPresenter(&box);
        useLocale(",", "2");
    }
    void TearDown() override {
        Vnt_UiSetPresenter(old_);
        vnt::test::resetAll();
    }
    void useLocale(const char* decimal, const char* currDigits) {
        table_ = VntIntlTable{{"sDecimal", decimal}, {"sThousand", "."}, {"iCurrDigits", currDigits}};
        Vnt_SysSetIntlSource(&table_);
        Vnt_SysInfo(VNT_SI_RELOAD);
    }
    VntScriptedPresenter box;
    VntMsgPresenter* old_ = nullptr;
    VntIntlTable table_;
};

// The rule, stated exactly: the fraction times the single-precision scale is
// formed as an exact integer product, rounded to 53 bits as the machine's
// multiplication does, and its remainder compared with the smallest value
// that single precision rounds to one half (0.5 - 2^-26, the tie going to
// the even 0.5).
__extension__ typedef unsigned __int128 u128;

double modelRound(double x, int d) {
    static const std::uint64_t kScale[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000,
                                           100000000, 1000000000, 10000000000ull,
                                           99999997952ull, 999999995904ull};  // 1e11f, 1e12f
    const double whole = std::trunc(x);
    int e = 0;
    const double m = std::frexp(std::fabs(x), &e);
    const auto mant = static_cast<std::uint64_t>(std::ldexp(m, 53));
    const int k = 53 - e;                      // |x| = mant / 2^k
    if (k <= 0 || k > 100) return whole;       // no fraction, or one far below any half
    const u128 frac = u128(mant) & ((u128(1) << k) - 1);
    const u128 p = frac * kScale[d];           // the product is p / 2^k
    int bits = 0;
    for (u128 t = p; t; t >>= 1) ++bits;
    const int drop = bits > 53 ? bits - 53 : 0;
    u128 q = p >> drop;
    if (drop > 0) {
        const u128 rest = p - (q << drop), half = u128(1) << (drop - 1);
        if (rest > half || (rest == half && (q & 1))) ++q;
    }
    const int t = k - drop;                    // the rounded product is q / 2^t
    u128 units = t <= 0 ? q << -t : q >> t;
    if (t > 0) {
        const u128 rnum = q & ((u128(1) << t) - 1), rden = u128(1) << t;
        if ((rnum << 26) >= ((u128(1) << 25) - 1) * rden) ++units;
    }
    const double step = static_cast<double>(units) / static_cast<double>(kScale[d]);
    return x < 0 ? whole - step : whole + step;
}

TEST_F(Amount, RoundingHalvesAndLimits) {
    useLocale(",", "3");
    // The double of 2.345 lies below it; 2.3449999999 is within single precision of one half, 2.344999999 just
    // outside; 0.13 is not there at 1e15; negative places are the currency places.
    const struct { double value; int decimals; double expect; bool changed; } rows[] = {
        {2.345, 2, 2.35, true}, {-2.345, 2, -2.35, true}, {2.344999, 2, 2.34, true}, {2.3449999999, 2, 2.35, true},
        {2.344999999, 2, 2.34, true}, {0.005, 2, 0.01, true}, {1.005, 2, 1.01, true}, {2.675, 2, 2.68, true},
        {0.49999999999999994, 0, 1.0, true}, {-0.5, 0, -1.0, true}, {2.35, 2, 2.35, false},
        {1e15 + 0.5, 0, 1e15 + 1, true}, {-(1e15 + 0.5), 0, -(1e15 + 1), true},
        {1e15 + 0.125, 2, 1e15 + 0.125, false}, {123456789.125, 2, 123456789.13, true}, {1e300, 4, 1e300, false},
        {2.3455, -1, 2.346, true}, {2.0005, -7, 2.001, true},
    };
    for (const auto& r : rows) {
        double v = r.value;
        EXPECT_EQ(Vnt_FloatRound(&v, r.decimals), r.changed) << r.value << " @" << r.decimals;
        EXPECT_DOUBLE_EQ(v, r.expect) << r.value << " @" << r.decimals;
    }
    for (double x : {0.1234567890123456, 7.000000000000499, -3.14159265358979}) {
        double at15 = x, at12 = x;
        EXPECT_TRUE(Vnt_FloatRound(&at15, 15) == Vnt_FloatRound(&at12, 12) && at15 == at12) << "over 12 places: 12";
    }
    double v = 2.345, w = 2.3455;
    EXPECT_TRUE(Vnt_FloatRound2(&v) && v == 2.35 && Vnt_MoneyRound(&w) && w == 2.346);
    double odd[] = {kInf, -kInf, std::nan("")};
    for (double& o : odd) EXPECT_FALSE(Vnt_FloatRound(&o, 2)) << o;
    EXPECT_TRUE(std::isinf(odd[0]) && odd[1] == -kInf && std::isnan(odd[2]) && box.shown.empty());
}

TEST_F(Amount, RoundingMatchesTheExactModelAndTypedHalvesGoAwayFromZero) {
    std::mt19937_64 rng(20240611);
    std::uniform_real_distribution<double> mantissa(1.0, 10.0), nudge(-3.0, 3.0);
    std::uniform_int_distribution<int> places(0, 12), exponent(-14, 16), coin(0, 1);
    std::uniform_int_distribution<std::int64_t> steps(0, 99999999);
    int mismatches = 0;
    for (int i = 0; i < 200000; ++i) {
        const int d = places(rng);
        double x;
        if (i % 2) {  // anywhere across the magnitudes
            x = mantissa(rng) * std::pow(10.0, exponent(rng));
        } else {      // near a half of the last place, across the single-precision window
            const double unit = std::pow(10.0, -d);
            x = (static_cast<double>(steps(rng) % 100000) + 0.5) * unit + nudge(rng) * 1.5e-8 * unit;
        }
        if (coin(rng)) x = -x;
        double v = x;
        const bool changed = Vnt_FloatRound(&v, d);
        const double expect = modelRound(x, d);
        if ((v != expect || changed != (std::fabs(expect - x) >= 2.220446049250313e-16)) && ++mismatches <= 10)
            ADD_FAILURE() << std::hexfloat << x << " @" << d << ": " << v << " model " << expect;
    }
    EXPECT_EQ(mismatches, 0);

    // What the rule is for: a decimal typed with one place more rounds its half
    // away from zero, although most such decimals have no exact double.
    std::uniform_int_distribution<std::int64_t> digits(-99999999, 99999999);
    for (int i = 0; i < 50000; ++i) {
        const std::int64_t m = digits(rng) / 10 * 10 + (i % 2 ? 5 : i % 10);  // many last digits 5
        const int d = places(rng) % 8;
        const double unit = std::pow(10.0, d);
        double v = static_cast<double>(m) / (unit * 10);
        Vnt_FloatRound(&v, d);
        const std::int64_t away = (std::llabs(m) / 10 + (std::llabs(m) % 10 >= 5)) * (m < 0 ? -1 : 1);
        ASSERT_NEAR(v * unit, static_cast<double>(away), 1e-6) << m << " / 10^" << d + 1;
    }
}

TEST_F(Amount, MoneyPercentagesAndDiscounts) {
    // Kind 0: the percentage (flag: included), 1: the discount (flag: deducted), 2: net to gross and back
    // (flags: included, added). A discount does not round the amount itself; 11.91 is 1.90 of the
    // unrounded 10.005, added to 10.01.
    const struct { int kind; double amount, percent; bool flag, add; double expect; } rows[] = {
        {0, 119.00, 19, true, 0, 19.00}, {0, 100.00, 19, false, 0, 19.00}, {0, 33.33, 19, true, 0, 5.32},
        {0, 10.00, 7, false, 0, 0.70}, {0, 0.03, 16, false, 0, 0.00}, {0, -119.00, 19, true, 0, -19.00},
        {1, 200.00, 10, true, 0, 180.00}, {1, 180.00, 10, false, 0, 200.00}, {1, 99.99, 3, true, 0, 96.99},
        {1, 33.333, 10, true, 0, 30.003}, {2, 100.00, 19, false, true, 119.00}, {2, 119.00, 19, true, false, 100.00},
        {2, 10.005, 19, false, true, 11.91}, {2, 10.00, 10, false, false, 9.00},
    };
    for (const auto& r : rows) {
        double a = r.kind ? r.amount : -1;
        r.kind == 0   ? Vnt_FloatProzBetrag(&a, r.amount, r.percent, r.flag)
        : r.kind == 1 ? Vnt_FloatRabattBetrag(&a, r.percent, r.flag)
                      : Vnt_FloatBetrag(&a, r.percent, r.flag, r.add);
        EXPECT_DOUBLE_EQ(a, r.expect) << r.kind << ": " << r.amount << " " << r.percent << "% " << r.flag << r.add;
    }
    EXPECT_TRUE(Vnt_MoneyIsNull(0.004) && Vnt_MoneyIsNull(-0.004) && Vnt_MoneyIsNull(0.0));
    EXPECT_FALSE(Vnt_MoneyIsNull(0.005) || Vnt_MoneyIsNull(-0.005));
    useLocale(",", "0");
    EXPECT_TRUE(Vnt_MoneyIsNull(0.4) && !Vnt_MoneyIsNull(0.5));
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Amount, TextFormsUnderGermanAndEnglishRecords) {
    // Expected: the text with "," for the decimal character, the result, and the overflows and smalls counted.
    // No sign before a zero; the probe's extra digit of 0.0004 is 0; no thousands separator; 20 places at most.
    const struct { double value; int decimals; unsigned size; bool left; const char* expected; } rows[] = {
        {1234.5, 2, 9, false, " 1234,50 0 0 0"}, {1234.5, 2, 8, false, "1234,50 0 0 0"},
        {1234.5, 2, 7, false, "?????? 1 1 0"}, {1234.5, 2, 7, true, "?????? 1 1 0"},
        {1234.5, 2, 20, true, "1234,50 0 0 0"}, {-1234.5, 1, 8, false, "-1234,5 0 0 0"},
        {-0.05, 2, 10, true, "-0,05 0 0 0"}, {0.004, 2, 10, true, "0,00 1 0 1"}, {-0.004, 2, 6, false, " 0,00 1 0 1"},
        {0.0004, 2, 10, true, "0,00 0 0 1"}, {0.0, 2, 10, true, "0,00 0 0 0"}, {-0.0, 2, 10, true, "0,00 0 0 0"},
        {2.345, 2, 10, true, "2,35 1 0 0"}, {2.5, 0, 5, false, "   3 1 0 0"}, {0.3, 0, 5, true, "0 1 0 1"},
        {9.995, 2, 6, false, "10,00 1 0 0"}, {9.995, 2, 5, false, "???? 1 1 0"},  // the carry does not fit
        {1234567.891, 2, 20, true, "1234567,89 1 0 0"}, {1e20, 2, 60, true, "100000000000000000000,00 0 0 0"},
        {0.5, 25, 30, true, "0,50000000000000000000 0 0 0"}, {1.5, -1, 10, true, "1,50 0 0 0"},
        {kInf, 2, 6, true, "????? 1 1 0"}, {-kInf, 2, 6, false, "????? 1 1 0"}, {std::nan(""), 2, 2, false, "? 1 1 0"},
    };
    for (const char* dec : {",", "."}) {
        useLocale(dec, "2");
        for (const auto& r : rows) {
            std::string expect = r.expected;
            for (char& c : expect) c = c == ',' ? *dec : c;
            char buf[64];
            std::memset(buf, 'x', sizeof buf);
            const long o = Vnt_FloatOverflowCount(), s = Vnt_FloatSmallCount();
            const bool result = Vnt_FloatToStr(buf, r.size, r.value, r.decimals, r.left);
            EXPECT_EQ(std::string(buf) + " " + std::to_string(result) + " " +
                          std::to_string(Vnt_FloatOverflowCount() - o) + " " + std::to_string(Vnt_FloatSmallCount() - s),
                      expect) << r.value << " @" << r.decimals << " in " << r.size;
            EXPECT_EQ(buf[r.size], 'x') << "nothing written past the buffer";
        }
    }
    useLocale("", "3");  // no decimal character known: "."
    std::string text;
    EXPECT_FALSE(Vnt_MoneyToStr(text, 1.5, true));
    EXPECT_EQ(text, "1.500");
    EXPECT_TRUE(Vnt_FloatToStr(text, 2.345, 2, false));
    EXPECT_EQ(text, std::string(55, ' ') + "2.35") << "right-aligned in the 60-byte buffer";
    char buf[8];
    EXPECT_FALSE(Vnt_MoneyToStr(buf, sizeof buf, -1.25, false));
    EXPECT_STREQ(buf, " -1.250");
    // More than 12 places show the 12-place rounding and the binary value
    // after it: 0.1 is rounded on the 1/999999995904 grid of 1e12 in single
    // precision.
    EXPECT_TRUE(Vnt_FloatToStr(text, 0.1, 20, true));
    EXPECT_EQ(text.substr(0, 15), "0.0999999999996");
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Amount, ReadingTakesEitherSeparator) {
    const std::string big(39, '9');
    // Only the first separator is a decimal point; beyond double no field holds it; 39 digits and 3 for
    // the places do not fit 40; of the last, 40 characters are read.
    const struct { const char* text; int decimals; double value; bool result; } rows[] = {
        {"1,25", 2, 1.25, false}, {"1.25", 2, 1.25, false}, {"-3.5kg", 2, -3.5, false}, {"2,345", 2, 2.35, true},
        {"2.345", 2, 2.35, true}, {"  +7,5", 1, 7.5, false}, {"1.234,5", 2, 1.23, true}, {",5", 2, 0.5, false},
        {"5,", 2, 5.0, false}, {"", 2, 0.0, false}, {"abc", 2, 0.0, false}, {"-", 2, 0.0, false},
        {"+-1", 2, 0.0, false}, {"inf", 2, 0.0, false}, {"nan", 2, 0.0, false}, {"0x10", 2, 0.0, false},
        {"1e3", 2, 1000.0, false}, {"2,5E-1", 3, 0.25, false}, {"1e", 2, 1.0, false}, {"1e+2x", 0, 100.0, false},
        {"1e400", 2, 0.0, true}, {"-1e400", 2, 0.0, true}, {"1e-400", 2, 0.0, false}, {big.c_str(), 2, 0.0, true},
        {"0,0004", 2, 0.0, false}, {"1000000000000000000000000000000000000000" "9", 0, 1e39, false},
    };
    for (const char* dec : {",", "."}) {
        useLocale(dec, "2");
        char sink[4];
        Vnt_FloatToStr(sink, sizeof sink, 1e6, 2, true);  // counters not at zero
        Vnt_FloatToStr(sink, sizeof sink, 0.001, 0, true);
        const long overflows = Vnt_FloatOverflowCount(), smalls = Vnt_FloatSmallCount();
        for (const auto& r : rows) {
            double v = -42;
            EXPECT_EQ(Vnt_FloatFromStr(r.text, &v, r.decimals), r.result) << r.text;
            EXPECT_DOUBLE_EQ(v, r.value) << r.text << " with " << dec;
        }
        EXPECT_TRUE(overflows > 0 && smalls > 0);
        EXPECT_TRUE(Vnt_FloatOverflowCount() == overflows && Vnt_FloatSmallCount() == smalls) << "counters restored";
    }
    double v = 0;
    EXPECT_TRUE(Vnt_FloatFromStr("2,3455", 3, &v) && v == 2.346);
    EXPECT_TRUE(Vnt_MoneyFromStr("2.345", &v) && v == 2.35);
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Amount, PlacesFollowTheLocalesDecimalCharacter) {
    // "1.234,5": counted after ",", read up to the second separator; the last: 20 places, rounded at 12.
    const struct { const char *dec, *text; int places; double value; bool result; } rows[] = {
        {",", "3,14159", 5, 3.14159, false}, {",", "3.14159", 0, 3.0, true}, {".", "3.14159", 5, 3.14159, false},
        {".", "3,14159", 0, 3.0, true}, {",", "1.234,5", 1, 1.2, true}, {",", "12,3a4", 1, 12.3, false},
        {",", ",", 0, 0.0, false}, {",", "7", 0, 7.0, false},
        {",", "1,2345678901234567890123456", 25, 1.234567890123, true},
    };
    for (const auto& r : rows) {
        useLocale(r.dec, "2");
        EXPECT_EQ(Vnt_FloatDecPlaces(r.text), r.places) << r.text << " with " << r.dec;
        double v = -1;
        EXPECT_EQ(Vnt_FloatFromStr(r.text, &v, -1), r.result) << r.text << " with " << r.dec;
        EXPECT_NEAR(v, r.value, 1e-12) << r.text << " with " << r.dec;
    }
    EXPECT_EQ(Vnt_FloatDecPlaces(nullptr), 0);
}

TEST_F(Amount, BadArgumentsAreInternalErrors) {
    char lib[VNT_MAX_PATH], buf[4] = "abc";
    ASSERT_TRUE(Vnt_LfnFromHost(lib, VANTO_SYSLIB_DE) && Vnt_MsgItfInit(nullptr, 0, lib));
    VNT_MSG sys = Vnt_MsgHInit();
    ASSERT_NE(sys, nullptr);
    double v = 0;
    const struct { const char* name; bool (*call)(char*, double*); } rows[] = {
        {"size 1", [](char* b, double*) { return Vnt_FloatToStr(b, 1, 1.5, 2, true); }},
        {"size 0", [](char* b, double*) { return Vnt_FloatToStr(b, 0, 1.5, 2, false); }},
        {"no buffer", [](char*, double*) { return Vnt_FloatToStr(nullptr, 10, 1.5, 2, false); }},
        {"no value to round", [](char*, double*) { return Vnt_FloatRound(nullptr, 2); }},
        {"no text", [](char*, double* x) { return Vnt_FloatFromStr(nullptr, x, 2); }},
        {"no value to read", [](char*, double*) { return Vnt_FloatFromStr("1", nullptr, 2); }},
    };
    for (const auto& r : rows) {
        box.shown.clear();
        EXPECT_FALSE(r.call(buf, &v)) << r.name;
        ASSERT_EQ(box.shown.size(), 1u) << r.name;
        const VntBoxModel& m = box.shown[0];
        EXPECT_TRUE(m.internalError && m.text.find("(Code 1)") != std::string::npos) << m.text;
        EXPECT_NE(m.details.find("Cal/Amount/"), std::string::npos) << m.details;
    }
    EXPECT_STREQ(buf, "abc");
    Vnt_FloatProzBetrag(nullptr, 1, 1, true);
    Vnt_FloatRabattBetrag(nullptr, 1, true);
    Vnt_FloatBetrag(nullptr, 1, true, true);
    EXPECT_EQ(box.shown.size(), 4u);
    Vnt_MsgHTerm(&sys);
    Vnt_MsgItfTerm();
}

// The C run time in a locale whose decimal point is "," (written by the test
// where the C library allows): the library's texts and readings under a
// German and an English record stay as they are.
TEST_F(Amount, IndependentOfTheCRunTimesLocale) {
    const std::string saved = std::setlocale(LC_NUMERIC, nullptr);
    const fs::path dir = fs::temp_directory_path() / ("vanto_amount_" + std::to_string(std::random_device{}()));
    bool comma = false;
#ifdef __GLIBC__
    const char* oldPath = std::getenv("LOCPATH");
    const std::string savedPath = oldPath ? oldPath : "";
    if (vnt::test::writeCommaNumeric(dir, "xx_VNT")) {
        setenv("LOCPATH", dir.c_str(), 1);
        comma = std::setlocale(LC_NUMERIC, "xx_VNT") != nullptr;
    }
#endif
    if (!comma) comma = std::setlocale(LC_NUMERIC, "German_Germany.1252") != nullptr;
    char probe[16];
    std::snprintf(probe, sizeof probe, "%.2f", 1.5);
    const double probeRead = std::strtod("1.5", nullptr);

    std::vector<std::string> got;  // text, money, places of "3,14159", and whether both readings are right
    for (const char* dec : {".", ","}) {
        useLocale(dec, "2");
        std::string text, money;
        double read = 0, readComma = 0;
        Vnt_FloatToStr(text, -1234.5, 3, true);
        Vnt_MoneyToStr(money, 0.125, true);
        Vnt_FloatFromStr("2.345", &read, 2);
        Vnt_FloatFromStr("-1,5e2", &readComma, -1);
        got.push_back(text + " " + money + " " + std::to_string(Vnt_FloatDecPlaces("3,14159")) +
                      (read == 2.35 && readComma == -150.0 ? " read" : " misread"));
    }
    std::setlocale(LC_NUMERIC, saved.c_str());
#ifdef __GLIBC__
    oldPath ? setenv("LOCPATH", savedPath.c_str(), 1) : unsetenv("LOCPATH");
#endif
    std::error_code ec;
    fs::remove_all(dir, ec);

    ASSERT_TRUE(comma && std::string(probe) == "1,50" && probeRead == 1.0)
        << "the C run time is not in a locale with a decimal comma: " << probe;
    EXPECT_EQ(got, (std::vector<std::string>{"-1234.500 0.13 0 read", "-1234,500 0,13 5 read"}));
}

}  // namespace
