// VntIni typed values, DX and token lists: number texts, whole file texts
// after typed writes, rectangles and colours (with their kept oddities),
// and token lists read from and built in the line buffer.
#include <gtest/gtest.h>

#include "support.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "base/strbuf.h"
#include "host/path.h"
#include "ini/ini_stream.h"
#include "ini/profile.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/locale.h"

namespace fs = std::filesystem;

namespace {

class IniValues : public ::testing::Test {
protected:
    static void resetAll() { vnt::test::resetAll(); }
    void SetUp() override {
        resetAll();
        startDir_ = vnt::host::curDir();
        dir_ = fs::temp_directory_path() / ("vanto_inivalues_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir_);
    }
    void TearDown() override {
        resetAll();
        vnt::host::setCurDir(startDir_);
        fs::remove_all(dir_);
    }
    std::string file(const fs::path& p) const { return vnt::test::libPath(dir_ / p); }
    void put(const std::string& s) const { std::ofstream(dir_ / "T.ini", std::ios::binary | std::ios::trunc) << s; }
    // A fresh object on T.ini holding [S] and v=`value` (null: no v).
    std::unique_ptr<VntIni> on(const char* value) {
        put(value ? std::string("[S]\r\nv=") + value + "\r\n" : "[S]\r\n");
        vnt::ini::profileReset();
        return std::make_unique<VntIni>(file("T.ini").c_str(), "S");
    }
    std::string text() const { return vnt::test::fileText(dir_ / "T.ini"); }
    fs::path dir_;
    std::string startDir_;
};

TEST_F(IniValues, NumberTextsAndNarrowMembers) {
    const struct { const char *name, *stored; long want; } rows[] = {
        {"dollar hex", "$ff", 255}, {"0X hex", "0XFF", 255}, {"decimal", "255", 255},
        {"no digits is 0, not the default", "abc", 0}, {"missing gives the default", nullptr, 7},
        {"stops at a non-digit", "12ab", 12}, {"blanks after the sign: 0", "-  4", 0},
        {"negative", "-40x", -40}, {"hex is 32 bits", "$FFFFFFFF", -1},
    };
    for (const auto& r : rows) EXPECT_EQ(on(r.stored)->ReadInt("v", 7), r.want) << r.name;
    auto ini = on("70000");
    short s = 0;
    bool b = false;
    int i = 0;
    ini->DX(false, "v", s, short(3)), ini->DX(false, "v", b), ini->DX(false, "none", i, 9);
    EXPECT_EQ(std::vector<long>({s, b, i}), std::vector<long>({short(70000 & 0xFFFF), 1, 9}));
}

TEST_F(IniValues, TypedWritesGiveWholeFileTexts) {
    const tagRECT rect{10, 20, 5, 30};
    const XYWH same{10, 20, -5, 10};
    // Each row starts from "[S]\r\nv=1\r\n"; `after` is what follows the header.
    const struct { const char* name; std::function<void(VntIni&)> act; const char* after; } rows[] = {
        {"int, numbered", [](VntIni& i) { i.WriteInt("v", -5, 2); }, "v=1\r\nv2=-5\r\n"},
        {"int equal to its default deletes", [](VntIni& i) { i.WriteInt("v", 4, -1, 4); }, ""},
        {"DX long passes its own default", [](VntIni& i) { long v = 3; i.DX(true, "v", v, 3L); }, ""},
        {"DX bool writes 1", [](VntIni& i) { bool v = true; i.DX(true, "v", v); }, "v=1\r\n"},
        {"DX text has no default", [](VntIni& i) { char v[] = "x"; i.DX(true, "v", v, 2, "x"); }, "v=x\r\n"},
        {"DX string empty deletes", [](VntIni& i) { std::string v; i.DX(true, "v", v); }, ""},
        {"rect: negative width as 0", [&](VntIni& i) { i.WriteRect("v", &rect); }, "v=10, 20, 0, 10\r\n"},
        {"rect equal to its default deletes", [&](VntIni& i) { i.WriteRect("v", &rect, -1, &same); }, ""},
        {"colour: a grey of its red part (kept)", [](VntIni& i) { i.WriteColor("v", 0x1E140A); }, "v= 10, 10, 10\r\n"},
        {"colour equal to its default text", [](VntIni& i) { i.WriteColor("v", 0x0A, -1, " 10, 10, 10"); }, ""},
        {"colour equal to its default", [](VntIni& i) { i.WriteColor("v", 0x1E140A, -1, nullptr, 0x1E140A); }, ""},
    };
    for (const auto& r : rows) {
        r.act(*on("1"));
        EXPECT_EQ(text(), std::string("[S]\r\n") + r.after) << r.name;
    }
}

TEST_F(IniValues, DecimalValuesFollowTheLocale) {
    VntIntlTable german{{"sDecimal", ","}};
    Vnt_SysSetIntlSource(&german);
    Vnt_SysInfo(VNT_SI_RELOAD);
    const struct { const char* name; std::function<void(VntIni&)> act; const char* after; } writes[] = {
        {"places and the decimal character", [](VntIni& i) { i.WriteFloat("v", 1234.5, 2); }, "v=1234,50\r\n"},
        {"rounded as text", [](VntIni& i) { i.WriteFloat("v", -2.345, 2); }, "v=-2,35\r\n"},
        {"equal to its default deletes", [](VntIni& i) { i.WriteFloat("v", 2.5, 1, -1, 2.5); }, ""},
        {"NaN deletes", [](VntIni& i) { i.WriteFloat("v", std::nan(""), 2, -1, 1.0); }, ""},
        {"DX writes against 0.0, not its default",
         [](VntIni& i) { double v = 3.0; i.DX(true, "v", v, 3.0, 1); }, "v=3,0\r\n"},
        {"DX 0.0 deletes", [](VntIni& i) { double v = 0.0; i.DX(true, "v", v, 3.0, 1); }, ""},
    };
    for (const auto& r : writes) {
        r.act(*on("1"));
        EXPECT_EQ(text(), std::string("[S]\r\n") + r.after) << r.name;
    }
    const struct { const char* stored; int decimals; double want; } reads[] = {
        {"2,345", 2, 2.35}, {"1,5", -1, 1.5}, {"1.5", 1, 1.5}, {"1.25", -1, 1.0}, {nullptr, 2, 7.25}, {"", 2, 7.25}, {"abc", 2, 0.0}, {"12,5kg", 0, 13.0},
    };
    for (const auto& r : reads) {
        double out = -1;
        on(r.stored)->ReadFloat("v", 7.25, out, r.decimals);
        EXPECT_DOUBLE_EQ(out, r.want) << (r.stored ? r.stored : "(missing)");
        double dx = -1;
        on(r.stored)->DX(false, "v", dx, 7.25, r.decimals);
        EXPECT_DOUBLE_EQ(dx, r.want) << (r.stored ? r.stored : "(missing)");
    }
}

struct Settings : VntIni {
    using VntIni::VntIni;
    long count = 5;
    unsigned long color = 0x0A;
    void DoDataExchange(bool write) override { DX(write, "Count", count, 5L), DX(write, "Color", color, nullptr); }
};

TEST_F(IniValues, WriteReportsAFailedDxWrite) {
    Settings ok(file("T.ini").c_str(), "S");
    ok.count = 6;
    EXPECT_TRUE(ok.Write());
    EXPECT_EQ(text(), "[S]\r\nCount=6\r\nColor= 10, 10, 10\r\n");
    put("not a directory");
    Settings bad(file("T.ini/Sub/B.ini").c_str(), "S");
    EXPECT_FALSE(bad.Write()) << "the failing write throws and Write() catches it";
}

TEST_F(IniValues, RectanglesAndColoursRead) {
    const int32_t U = VNTINI_RECT_UNSET;
    const XYWH def{1, 2, 3, 4};
    const struct { const char* name; const char* stored; const XYWH* def; tagRECT want; } rects[] = {
        {"sizes become edges", "10, 20, 100, 50", nullptr, {10, 20, 110, 70}},
        {"missing: the default as edges", nullptr, &def, {1, 2, 4, 6}},
        {"missing without default: unset", nullptr, nullptr, {U, U, U, U}},
        {"missing parts keep the default's edges", "5", &def, {5, 2, 9, 8}},
        {"tabs and blanks split, no number is 0", "a,7\t8  9", nullptr, {0, 7, 8, 16}},
    };
    for (const auto& r : rects) {
        const tagRECT got = *on(r.stored)->ReadRect("v", r.def);
        EXPECT_EQ(std::vector<int32_t>({got.left, got.top, got.right, got.bottom}),
                  std::vector<int32_t>({r.want.left, r.want.top, r.want.right, r.want.bottom})) << r.name;
    }
    // The bottom is tested on the width (kept): an unset width leaves the height alone.
    const XYWH noWidth{1, 2, U, 4};
    EXPECT_EQ(on(nullptr)->ReadRect("v", &noWidth)->bottom, 4);

    EXPECT_EQ(on("10,20")->ReadColor("v"), 0x140AUL);
    EXPECT_EQ(on("300 1 2")->ReadColor("v"), (300UL & 0xFF) | 1UL << 8 | 2UL << 16);
    EXPECT_EQ(on(nullptr)->ReadColor("v", "1,2,3"), 0x030201UL);
    EXPECT_EQ(on(nullptr)->ReadColor("v", nullptr, 0x123), 0x123UL);
}

TEST_F(IniValues, TokenListsRead) {
    VntIni ini(file("T.ini").c_str(), "S");
    char buf[8];
    vnt::copyBounded(ini.Line(), 1024, "a,,b");
    std::string got = std::string(ini.TokenFirst("d", buf, sizeof buf)) + "/" + buf;
    for (int k = 0; k < 3; ++k) {
        const char* t = ini.TokenNext("d", buf, sizeof buf);
        got += std::string(" ") + (t ? t : "(null)") + "/" + buf;
    }
    EXPECT_EQ(got, "a/a /d b/b (null)/d") << "an empty item gives the default; the end gives null";

    vnt::copyBounded(ini.Line(), 1024, "k = $1F ; 0x1F ;\t 7  ;");
    EXPECT_EQ(ini.TokenSeparator(';'), ';');
    long n[5] = {};
    EXPECT_STREQ(ini.TokenFirst(-1L, &n[0], true), "$1F") << "after the '=', trailing blanks cut";
    for (int k = 1; k < 5; ++k) ini.TokenNext(-1L, &n[k]);
    EXPECT_EQ(std::vector<long>(n, n + 5), std::vector<long>({31, 31, 7, -1, -1}));
    EXPECT_STREQ(ini.TokenSeparators("|", true), ";|");
    EXPECT_STREQ(ini.TokenSeparators(""), ",\t\n");
}

TEST_F(IniValues, TokenListsBuiltWithWidthsAndRoom) {
    VntIni ini(file("T.ini").c_str(), "S");
    ASSERT_TRUE(ini.TokenSetFirst("A", 0) && ini.TokenSetNext(12L, 0) && ini.TokenSetNext("B", -1));
    EXPECT_STREQ(ini.Line(), "A, 12, B");
    int i = 0;
    EXPECT_TRUE(ini.TokenFirst(0, &i) && ini.TokenNext(0, &i) && i == 12) << "it reads back";
    ASSERT_TRUE(ini.TokenSetFirst(-7L, 4) && ini.TokenSetNext("long", 2) && ini.TokenSetNext("x", -1));
    EXPECT_STREQ(ini.Line(), "-7,  long,x") << "padded to width + 1, never cut";

    const std::string full(1000, 'f');
    ASSERT_TRUE(ini.TokenSetFirst(full.c_str()) && ini.TokenSetNext(std::string(21, 'g').c_str()));
    EXPECT_FALSE(ini.TokenSetNext("xy")) << "would reach the end of the buffer";
    EXPECT_FALSE(ini.TokenSetNext("x", 2)) << "the width counts too";
    EXPECT_EQ(std::string(ini.Line()), full + std::string(21, 'g'));
    ASSERT_TRUE(ini.TokenSetNext("x", 0)) << "room for the item: its blank is cut at the end";
    EXPECT_EQ(std::string(ini.Line()).size(), 1023u);
}

}  // namespace
