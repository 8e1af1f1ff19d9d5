// The edit control's conversions: a table of every type and empty marker,
// every 16-bit value both ways, dates against the date functions over the
// whole range, the date size codes, the type message once per type, and the
// text transfer with plain windows.
#include <gtest/gtest.h>

#include "support.h"

#include <chrono>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>

#include "cal/odbc_timestamp.h"
#include "vanto/amount.h"
#include "vanto/ed.h"
#include "vanto/lfn.h"
#include "vanto/locale.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"

namespace {

bool contains(const std::string& s, const std::string& part) { return s.find(part) != std::string::npos; }

class EdConv : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        old_ = Vnt_UiSetPresenter(&box);
        char lib[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(lib, VANTO_SYSLIB_DE) && Vnt_MsgItfInit(nullptr, 0, lib));
        ASSERT_NE(sys_ = Vnt_MsgHInit(), nullptr);
        Vnt_SysSetIntlSource(&de_);
        Vnt_SysInfo(VNT_SI_RELOAD);
    }
    void TearDown() override {
        Vnt_SysSetIntlSource(nullptr);
        if (sys_) Vnt_MsgHTerm(&sys_);
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(old_);
        vnt::test::resetAll();
    }
    VntIntlTable de_{{"sShortDate", "dd.MM.yyyy"}, {"sDecimal", ","}, {"iCurrDigits", "2"}};
    VntScriptedPresenter box;
    VntMsgPresenter* old_ = nullptr;
    VNT_MSG sys_ = nullptr;
};

TEST_F(EdConv, ValueToTextByTypeAndMarker) {
    const double emptyD = VNT_ED_EMPTY_DOUBLE;
    const std::int32_t e32 = VNT_ED_EMPTY_LONG, l32 = -2147483647 - 1;
    const char ch = 'X';
    const struct {
        const char* name;
        long type;
        const void* ptr;
        double d;
        int size;
        const char* text;
    } rows[] = {
        {"decimal by value", 0, nullptr, 1234.5, 2, "1234,50"},
        {"amount rounds half away", 1, nullptr, -2.345, 2, "-2,35"},
        {"amount, no decimals", 1, nullptr, 7.5, 0, "8"},
        {"decimal through the pointer", 0, &emptyD, 5.0, 2, ""},
        {"decimal marker by value", 1, nullptr, emptyD, 2, ""},
        {"short by value", 2, nullptr, -7, 0, "-7"},
        {"short marker", 2, nullptr, 32484, 0, ""},
        {"short next to the marker", 2, nullptr, 32483, 0, "32483"},
        {"short by value keeps the low 16 bits", 2, nullptr, 70000, 0, "4464"},
        {"long", 3, nullptr, 2147483647.0, 0, "2147483647"},
        {"long lowest", 3, &l32, 0, 0, "-2147483648"},
        {"long marker", 3, &e32, 0, 0, ""},
        {"long marker by value", 3, nullptr, 0x4A4D4120, 0, ""},
        {"long next to the marker", 3, nullptr, 0x4A4D4121, 0, "1246576929"},
        {"character", 4, &ch, 0, 0, "X"},
        {"character by value", 4, nullptr, 'q', 0, "q"},
        {"date without pointer", 7, nullptr, 0, 4, ""},
        {"no value", 8, nullptr, 12, 0, ""},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        EXPECT_STREQ(Vnt__EdSetVal(r.type, r.ptr, r.d, r.size), r.text);
    }
    EXPECT_STRNE(Vnt__EdSetVal(1, nullptr, std::nextafter(VNT_ED_EMPTY_DOUBLE, 0.0), 0), "")
        << "only the marker's own bits are empty";
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(EdConv, TextToValueByType) {
    const struct {
        const char* name;
        long type;
        const char* text;
        int dec;
        double value;
        bool empty;
    } rows[] = {
        {"decimal with comma", 0, "1,235", 2, 1.24, false},
        {"decimal with point", 1, "-12.5", 2, -12.5, false},
        {"decimal, as many decimals as typed", 0, "3,14159", -1, 3.14159, false},
        {"decimal empty", 1, "", 2, 0, true},
        {"decimal blanks are empty", 1, "   ", 2, 0, true},
        {"short keeps the low 16 bits", 2, "70000", 2, 4464, false},
        {"short empty gives 0", 2, "", 2, 0, true},
        {"long stops at a letter", 3, "12abc", 0, 12, false},
        {"long lowest", 3, "-2147483648", 0, -2147483648.0, false},
        {"long wraps past 32 bits", 3, "4294967297", 0, 1, false},
        {"character", 4, "Zx", 0, 'Z', false},
        {"no value", 8, "17", 0, 0, false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        bool empty = !r.empty;
        EXPECT_DOUBLE_EQ(Vnt__EdGetVal(r.type, r.text, nullptr, r.dec, &empty), r.value);
        EXPECT_EQ(empty, r.empty);
    }
    // Stored through the pointer by size: a short of size 4 is not stored.
    std::int16_t s = 5;
    std::int32_t wide = 5;
    double d = 1;
    char c = 0;
    Vnt__EdGetVal(2, "-9", &s, 2, nullptr), Vnt__EdGetVal(2, "-9", &wide, 4, nullptr);
    Vnt__EdGetVal(1, "", &d, 2, nullptr), Vnt__EdGetVal(4, "k", &c, 0, nullptr);
    EXPECT_TRUE(s == -9 && wide == 5 && d == 0.0 && c == 'k') << s << " " << wide << " " << d << " " << c;
    EXPECT_TRUE(box.shown.empty());
}

// Through 16- and 32-bit pointers; the marker shows empty.
TEST_F(EdConv, EverySixteenBitValueRoundTrips) {
    for (int i = -32768; i <= 32767; ++i) {
        const auto v = static_cast<std::int16_t>(i);
        const std::string text = Vnt__EdSetVal(2, &v, 0, 2);
        if (i == VNT_ED_EMPTY_SHORT) {
            ASSERT_EQ(text, "");
            continue;
        }
        ASSERT_EQ(text, std::to_string(i));
        std::int16_t back = 0;
        ASSERT_EQ(Vnt__EdGetVal(2, text.c_str(), &back, 2, nullptr), i);
        ASSERT_EQ(back, v);
        const std::int32_t wide = i + 65536;  // the high half does not count
        ASSERT_EQ(std::string(Vnt__EdSetVal(2, &wide, 0, 4)), text);
    }
}

TEST_F(EdConv, DatesAgreeWithTheDateFunctionsOverTheWholeRange) {
    using namespace std::chrono;
    const sys_days first = year{1583} / January / 1, last = year{3000} / December / 31;
    for (sys_days day = first; day <= last; day += days{1}) {
        const year_month_day ymd{day};
        const VNT_DATE d{static_cast<std::uint16_t>(int(ymd.year())), static_cast<std::uint8_t>(unsigned(ymd.month())),
                         static_cast<std::uint8_t>(unsigned(ymd.day()))};
        char expect[20];
        Vnt_DateToStr(expect, &d);
        const std::string text = Vnt__EdSetVal(7, &d, 0, 4);
        ASSERT_EQ(text, expect);
        ASSERT_STREQ(Vnt__EdSetDate(7, &d), expect);
        VNT_DATE back{};
        ASSERT_EQ(Vnt__EdGetVal(7, text.c_str(), &back, 0, nullptr), 1.0);
        ASSERT_TRUE(back.year == d.year && back.month == d.month && back.day == d.day) << text;
        if ((day - first).count() % 97) continue;
        // The other size codes on a sample.
        tagTIMESTAMP_STRUCT ts{};
        ts.hour = 7;
        Vnt__EdGetVal(7, text.c_str(), &ts, VNT_ED_DATE_TIMESTAMP, nullptr);
        ASSERT_TRUE(ts.year == d.year && ts.month == d.month && ts.day == d.day && ts.hour == 0);
        ASSERT_EQ(std::string(Vnt__EdSetVal(7, &ts, 0, VNT_ED_DATE_TIMESTAMP)), text);
        VntDate vd;
        Vnt__EdGetVal(7, text.c_str(), &vd, VNT_ED_DATE_VNTDATE, nullptr);
        ASSERT_STREQ(vd.text, expect) << "the VntDate's text is renewed";
        ASSERT_EQ(std::string(Vnt__EdSetVal(7, &vd, 0, VNT_ED_DATE_VNTDATE)), text);
        VNT_DATE viaDate{};
        ASSERT_TRUE(Vnt__EdGetDate(7, text.c_str(), &viaDate, nullptr));
        ASSERT_EQ(std::memcmp(&viaDate, &d, sizeof d), 0);
    }
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(EdConv, EmptyDatesAndSizeCodes) {
    // An empty text is all zeros, which shows empty; a two-digit year is expanded.
    VNT_DATE z{1999, 3, 5};
    bool empty = false;
    EXPECT_TRUE(Vnt__EdGetVal(7, "", &z, 0, &empty) == 1.0 && empty && z.year == 0 && z.month == 0 && z.day == 0);
    EXPECT_EQ(std::string(Vnt__EdSetVal(7, &z, 0, 4)) + Vnt__EdSetDate(7, &z) + Vnt__EdSetDate(7, nullptr), "");
    Vnt__EdGetVal(7, "5.3.99", &z, 0, &empty);
    EXPECT_TRUE(!empty && z.year == 1999 && z.month == 3 && z.day == 5);

    const VNT_DATE d{2001, 2, 3};
    for (int size : {3, 4, 5, 15, 47, 49}) {
        SCOPED_TRACE(size);
        box.shown.clear();
        EXPECT_STREQ(Vnt__EdSetVal(7, &d, 0, size), size == 4 ? "03.02.2001" : "");
        ASSERT_EQ(box.shown.size(), size == 4 ? 0u : 1u);
        EXPECT_TRUE(size == 4 || contains(box.shown[0].details, "Vnt_Ed"));
    }
    // Reading into the old time class is refused; nothing is stored.
    box.shown.clear();
    std::uint32_t ctime = 0xDEADBEEF;
    EXPECT_TRUE(Vnt__EdGetVal(7, "03.02.2001", &ctime, VNT_ED_DATE_CTIME, nullptr) == 0.0 && ctime == 0xDEADBEEFu);
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_TRUE(contains(box.shown[0].text, "CTime is no more supported for date controls."));
    // Any other size reads a VNT_DATE.
    VNT_DATE back{};
    EXPECT_TRUE(Vnt__EdGetVal(7, "03.02.2001", &back, 3, nullptr) == 1.0 && back.year == 2001 && back.month == 2 && back.day == 3);
}

TEST_F(EdConv, TypeMessageOncePerTypeInARow) {
    const std::string text = "--> Type 2 does not support 'Get/SetText()'. <---\n(non-text types do not support these";
    std::string s;
    VNT_DATE d{};
    // Each step: the calls, then the boxes shown so far and a part of the last.
    const struct { std::function<void()> calls; std::size_t boxes; std::string part; } steps[] = {
        {[&] { Vnt__EdSetVal(5, nullptr, 1, 0), Vnt__EdGetVal(5, "1", nullptr, 0, nullptr), Vnt__EdSetVal(5, nullptr, 1, 0); },
         1, "--> Type 5 does not support 'Get/SetVal()'. <---\n(text types do not support these operations)"},
        {[&] { Vnt__EdSetVal(9, nullptr, 1, 0); }, 2, "Type 9"},
        {[&] { Vnt__EdSetVal(5, nullptr, 1, 0); }, 3, "Type 5"},  // back: reported again
        {[&] { EXPECT_TRUE(!Vnt__EdGetDate(3, "1.1.2000", &d, nullptr) && !*Vnt__EdSetDate(3, &d)); }, 4,
         "--> Type 3 does not support 'Get/SetVal()'. <---\n(non-text types do not support"},
        {[&] { EXPECT_FALSE(Vnt__EdGetString(2, s, nullptr, nullptr) || Vnt__EdSetString(2, "x", nullptr, nullptr)); },
         5, text},
        {[&] { Vnt__EdSetVal(10, nullptr, 1, 0); }, 6, "Type 10"},  // unknown
    };
    for (const auto& st : steps) {
        st.calls();
        ASSERT_EQ(box.shown.size(), st.boxes);
        EXPECT_TRUE(contains(box.shown.back().text, st.part)) << box.shown.back().text;
    }
}

TEST_F(EdConv, TextTransferWithPlainWindowsAndControls) {
    auto* port = dynamic_cast<VntHeadlessWindowPort*>(&Vnt_UiWindow());
    ASSERT_NE(port, nullptr);
    std::string held(3000, 'a');  // longer than any fixed buffer
    held += "\xE4nde";
    VNT_HWND win = port->CreateFake("edit", [&](VNT_HWND, unsigned msg, uintptr_t w, intptr_t l) -> long {
        if (msg == VNT_WM_GETTEXTLENGTH) return static_cast<long>(held.size());
        if (msg == VNT_WM_GETTEXT) {
            const std::size_t n = std::min<std::size_t>(held.size(), w - 1);
            std::memcpy(reinterpret_cast<char*>(l), held.data(), n);
            reinterpret_cast<char*>(l)[n] = '\0';
            return static_cast<long>(n);
        }
        if (msg == VNT_WM_SETTEXT) held = reinterpret_cast<const char*>(l);
        return 0;
    });
    std::string text;
    for (long type : {5L, 6L, 9L}) {
        SCOPED_TRACE(type);
        EXPECT_TRUE(Vnt__EdGetString(type, text, win, nullptr) && text == held) << text;
    }
    EXPECT_TRUE(Vnt__EdSetString(6, "neu", win, nullptr) && held == "neu");

    struct Ctl : VntEdTextItf {
        std::string t = "vorher";
        std::string EdGetText() const override { return t; }
        void EdSetText(const char* s) override { t = s; }
    } ctl;
    EXPECT_TRUE(Vnt__EdGetString(5, text, nullptr, &ctl) && text == "vorher");
    EXPECT_TRUE(Vnt__EdSetString(5, "nachher", nullptr, &ctl) && ctl.t == "nachher");
    EXPECT_FALSE(Vnt__EdGetString(5, text, nullptr, nullptr)) << "neither window nor control";
    EXPECT_TRUE(box.shown.empty());
}

}  // namespace
