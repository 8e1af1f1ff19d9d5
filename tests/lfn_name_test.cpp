// Pure name functions: tests on names, joining, splitting, extensions, dot
// resolution, command-line tokens, display forms and the volume of a path.
// One table per function, one row per case.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "base/strbuf.h"
#include "vanto/lfn.h"

namespace {

const std::string kLong(300, 'n');

TEST(LfnName, Predicates) {
    struct Row { const char* in; bool wild, abs, rel, root, path, hasVol, isVol; long sep; };
    const Row rows[] = {
        // input         wild   abs    rel    root   path   hasVol isVol  separator position
        {"",             false, false, true,  false, false, false, false, 0},
        {".",            false, false, true,  false, false, false, false, 1},
        {"x",            false, false, true,  false, false, false, false, 1},
        {"C:x",          false, false, true,  false, true,  true,  false, 2},
        {"C:",           false, false, true,  false, true,  true,  true,  2},
        {R"(C:\)",       false, true,  false, true,  true,  true,  false, 2},
        {R"(\)",         false, true,  false, true,  true,  false, false, 0},
        {R"(\x)",        false, true,  false, false, true,  false, false, 0},
        {R"(C:\x)",      false, true,  false, false, true,  true,  false, 2},
        {R"(C:\a\..\b)", false, false, false, false, true,  true,  false, 7},
        {R"(\\)",        false, true,  false, false, true,  false, false, 1},
        {"*.txt",        true,  false, true,  false, false, false, false, 5},
        {R"(C:\a?b)",    true,  true,  false, false, true,  true,  false, 2},
        {"1:x",          false, false, true,  false, true,  true,  false, 2},  // any character
        {"a/b",          false, false, true,  false, false, false, false, 3},  // no separator
        {nullptr,        false, false, false, false, false, false, false, 0},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.in ? r.in : "null");
        const char *sep = "", *after = "", *volAfter = "";
        const std::vector<bool> got = {Vnt_LfnNameIsWild(r.in), Vnt_LfnNameIsAbsPath(r.in), Vnt_LfnNameIsRelPath(r.in),
            Vnt_LfnNameIsRoot(r.in), Vnt_LfnNameIsPath(r.in, &sep), Vnt_LfnNameHasVol(r.in, &after),
            Vnt_LfnNameIsVol(r.in, &volAfter)};
        EXPECT_EQ(got, (std::vector<bool>{r.wild, r.abs, r.rel, r.root, r.path, r.hasVol, r.isVol}));
        EXPECT_EQ(sep - r.in, r.sep);
        EXPECT_TRUE(after == volAfter && after - r.in == (r.hasVol ? 2 : 0));
        char buf[VNT_MAX_PATH], *mSep = nullptr, *mAfter = nullptr;  // the overloads for writable names
        vnt::copyBounded(buf, r.in);
        EXPECT_TRUE(Vnt_LfnNameIsPath(buf, &mSep) == r.path && mSep - buf == r.sep);
        EXPECT_TRUE(Vnt_LfnNameHasVol(buf, &mAfter) == r.hasVol && Vnt_LfnNameIsVol(buf, &mAfter) == r.isVol &&
                    mAfter - buf == (r.hasVol ? 2 : 0));
    }
}

TEST(LfnName, Make) {
    struct Row { std::size_t size; const char *initial, *dir, *file, *ext; std::string expected; bool ok; };
    const Row rows[] = {
        {260, "", R"(C:\dir)", "file", "txt", R"(C:\dir\file.txt)", true},
        {260, R"(C:\dir\file.txt)", nullptr, nullptr, ".bak", R"(C:\dir\file.bak)", true},
        {260, "", R"(C:\dir\)", R"(\file)", nullptr, R"(C:\dir\file)", true},
        {260, "", "C:", "x", nullptr, "C:x", true},
        {260, "", "C:", R"(\x)", nullptr, R"(C:\x)", true},
        {260, "", R"(C:\dir)", R"(D:\x)", nullptr, R"(C:\dir\x)", true},
        {260, "", "", "D:x", nullptr, "D:x", true},
        {260, "", nullptr, R"(C:\a)", "txt", R"(C:\a.txt)", true},
        {260, "", R"(C:\a)", "", nullptr, R"(C:\a)", true},
        {260, R"(C:\a.b\file)", nullptr, nullptr, "txt", R"(C:\a.b\file.txt)", true},
        {260, "", "", "a.b.c", "x", "a.b.x", true},
        {260, "file", nullptr, nullptr, "123456789", "file.12345678", true},
        {260, "C:.b", nullptr, nullptr, "x", "C:.b.x", true},
        {1, "", "C:", "x", nullptr, "", false},
        // Kept for compatibility: eight characters of room are reserved for any extension.
        {20, "", R"(C:\dir)", "file", "txt", R"(C:\dir\file.txt)", false},
        {21, "", R"(C:\dir)", "file", "txt", R"(C:\dir\file.txt)", true},
        {15, "", R"(C:\dir)", "file", "txt", R"(C:\dir\file.tx)", false},
        {6, "abcd", nullptr, nullptr, "txt", "abcdt", false},
        {10, "keep", R"(C:\abcdefg)", "x", nullptr, "keep", false},
        {10, "", R"(C:\abcde)", "x", nullptr, R"(C:\abcde\)", false},
        {260, "", R"(C:\d)", kLong.c_str(), nullptr, R"(C:\d\)" + kLong.substr(0, 254), false},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(std::string(r.dir ? r.dir : "null") + " + " + (r.file ? r.file : "null"));
        std::vector<char> buf(r.size + 8, '#');  // guard bytes catch overruns
        vnt::copyBounded(buf.data(), r.size, r.initial);
        EXPECT_EQ(Vnt_LfnNameMake(buf.data(), r.size, r.dir, r.file, r.ext), r.ok);
        EXPECT_EQ(std::string(buf.data()), r.expected);
        EXPECT_EQ(std::string(buf.data() + r.size, 8), std::string(8, '#'));
    }
    char buf[VNT_MAX_PATH] = R"(C:\dir)";  // arguments may lie in the target
    EXPECT_TRUE(Vnt_LfnNameMake(buf, buf, "file", "txt") && std::string(buf) == R"(C:\dir\file.txt)") << buf;
}

TEST(LfnName, SplitAndVolume) {
    struct Row { const char *in, *dir, *file, *ext, *vol; };
    const Row rows[] = {
        {R"(C:\a.b\file)", R"(C:\a.b)", "file", "", "C:"},
        {R"(C:\file)", R"(C:\)", "file", "", "C:"},  {R"(\file)", R"(\)", "file", "", ""},
        {"C:file", "C:", "file", "", "C:"},            {"x.txt", "", "x.txt", "txt", ""},
        {R"(C:\d\a.b.c)", R"(C:\d)", "a.b.c", "c", "C:"},
        {R"(dir\)", "dir", "", "", ""},                {"C:.b", "C:", ".b", "", "C:"},
        {R"(dir\x:y)", "dir", "x:y", "", R"(dir\x:)"},
        {R"(\\srv\share\f.x)", R"(\\srv\share)", "f.x", "x", R"(\\srv\share)"},
        {R"(\\srv\)", R"(\\srv)", "", "", R"(\\srv)"},        {"", "", "", "", ""},
        {R"(\\srv/share/x)", R"(\)", "srv/share/x", "", R"(\\srv/share)"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.in);
        char dir[VNT_MAX_PATH] = "old", file[VNT_MAX_PATH] = "old", ext[VNT_MAX_PATH] = "old";
        Vnt_LfnNameSplit(r.in, dir, file, ext);
        EXPECT_EQ(std::string(dir) + "|" + file + "|" + ext, std::string(r.dir) + "|" + r.file + "|" + r.ext);
        char vol[VNT_MAX_PATH] = "old", self[VNT_MAX_PATH];  // without a path the buffer is the input
        vnt::copyBounded(self, r.in);
        EXPECT_TRUE(Vnt_LfnVolFromPath(vol, r.in) && Vnt_LfnVolFromPath(self));
        EXPECT_EQ(std::string(vol) + "|" + self, std::string(r.vol) + "|" + r.vol);
    }
    char buf[VNT_MAX_PATH] = R"(C:\d\f.txt)", ext[VNT_MAX_PATH];  // the input may be an output
    Vnt_LfnNameSplit(buf, buf, nullptr, ext);
    EXPECT_EQ(std::string(buf) + "|" + ext, R"(C:\d|txt)");
}

TEST(LfnName, ExtReplacesFromTheFirstDot) {
    struct Row { const char* in; std::size_t size; const char *ext, *expected, *old; };
    const Row rows[] = {
        {"a.b.c", 260, "x", "a.x", "b.c"},  // kept for compatibility: the first dot
        {"file.html", 260, "bak", "file.bak", "htm"},      {"file", 260, "txt", "file.txt", ""},
        {R"(C:\d.x\f.a.b)", 260, "c", R"(C:\d.x\f.c)", "a.b"}, {"f.txt", 260, nullptr, "f.txt", "txt"},
        {"a.b.c", 260, "", "a", "b.c"},                    {"f.txt", 260, ".bak", "f.bak", "txt"},
        {"file", 9, "abc", "file.abc", ""},                {"file", 8, "abc", "file", nullptr},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(std::string(r.in) + " size " + std::to_string(r.size));
        std::vector<char> buf(r.size + 8, '#');
        vnt::copyBounded(buf.data(), r.size, r.in);
        const char* old = Vnt_LfnNameExtS(buf.data(), r.size, r.ext);
        EXPECT_EQ(old ? std::string(old) : "(null)", r.old ? r.old : "(null)");
        EXPECT_STREQ(buf.data(), r.expected);
        EXPECT_EQ(std::string(buf.data() + r.size, 8), std::string(8, '#'));
    }
    char a[VNT_MAX_PATH] = "a.one", b[VNT_MAX_PATH] = "b.two";
    EXPECT_EQ(Vnt_LfnNameExt(a, "x"), Vnt_LfnNameExt(b, "y"));  // one static buffer
    EXPECT_EQ(Vnt_LfnNameExtS(nullptr, 10, "x"), nullptr);

    struct AddRow { std::string in; const char* ext; std::string expected; bool ok; };
    const AddRow adds[] = {
        {"file.txt", "bak", "file.bak", true},  // kept for compatibility: replaced, not added
        {"file", "bak", "file.bak", true}, {"file.", "bak", "file.bak", true}, {"", "bak", ".bak", true},
        {kLong.substr(0, 257), "bak", kLong.substr(0, 257) + ".", false},  // the dot stays
        {kLong.substr(0, 258), "b", kLong.substr(0, 258), false},
    };
    for (const AddRow& r : adds) {
        char buf[VNT_MAX_PATH];
        vnt::copyBounded(buf, r.in);
        EXPECT_EQ(Vnt_LfnNameExtAdd(buf, r.ext) != nullptr, r.ok) << r.in.size();
        EXPECT_EQ(std::string(buf), r.expected);
    }
}

TEST(LfnName, DotResolution) {
    struct Row { const char *in, *expected; };  // expected null: fails
    const Row rows[] = {
        {R"(C:\a\b\..\c\.\d)", R"(C:\a\c\d)"}, {R"(C:\..)", nullptr},
        {R"(C:\a\..)", R"(C:\)"},              {R"(C:\a\b\..)", R"(C:\a)"},
        {R"(\a\..)", R"(\)"},                  {R"(C:\a\b\..\..\c)", R"(C:\c)"},
        {R"(C:\a\.)", R"(C:\a)"},              {R"(.\x)", "x"},
        {R"(a.\b)", R"(a\b)"},                 {R"(C:\a\)", R"(C:\a)"},
        {R"(C:\)", R"(C:\)"},                  {R"(C:\a.b\c.d)", R"(C:\a.b\c.d)"},
        {R"(..\x)", nullptr},                  {R"(C:\a\..x)", nullptr},
        {R"(a\..)", nullptr},                  {R"(\\srv\share\..\x)", R"(\\srv\x)"},
        {R"(C:\.)", "C:"},  // the backslash goes with a final "\.", even the root's
    };
    for (const Row& r : rows) {
        char buf[VNT_MAX_PATH];
        vnt::copyBounded(buf, r.in);
        EXPECT_EQ(Vnt_LfnNameMakeAbs(buf), r.expected != nullptr) << r.in;
        EXPECT_STREQ(r.expected ? buf : nullptr, r.expected) << r.in;
    }
}

TEST(LfnName, Extract) {
    struct Row { std::string line; bool remove, whole; std::string token, rest, lineAfter; bool ok; };
    const std::string q = R"("C:\My Dir\app.exe" -x 1)", app = R"(C:\My Dir\app.exe)";
    const Row rows[] = {
        {q, false, false, app, "-x 1", q, true},
        {q, true, false, app, "-x 1", " -x 1", true},
        {"  app.exe   a b", false, false, "app.exe", "a b", "  app.exe   a b", true},
        {app + "  ", false, true, app, "", app + "  ", true},
        {"  x y", false, true, "  x y", "", "  x y", true},  // whole keeps leading blanks
        {R"("C:\a b)", true, false, R"(C:\a b)", "", "", true},
        {R"("a b  " c)", false, false, "a b", "c", R"("a b  " c)", true},
        {R"("a"b c)", true, false, "a", "b c", " b c", true}, {"\tapp\t\targ", true, false, "app", "arg", " arg", true},
        {R"("" x)", false, false, "", "x", R"("" x)", false},
        {R"("a b" c d)", false, true, "a b", "c d", R"("a b" c d)", true},
        {kLong + " r", false, false, kLong.substr(0, 259), "r", kLong + " r", false},
    };
    for (const Row& r : rows) {
        std::vector<char> line(r.line.c_str(), r.line.c_str() + r.line.size() + 1);
        char dst[VNT_MAX_PATH] = "old", *rest = nullptr;
        EXPECT_EQ(Vnt_LfnNameExtract(dst, line.data(), r.remove, &rest, r.whole), r.ok) << r.line;
        ASSERT_TRUE(rest >= line.data() && rest <= line.data() + std::strlen(line.data())) << r.line;
        EXPECT_EQ(std::string(dst) + "|" + rest + "|" + line.data(), r.token + "|" + r.rest + "|" + r.lineAfter);
    }
    char dst[VNT_MAX_PATH], *rest = dst;
    EXPECT_FALSE(Vnt_LfnNameExtract(dst, nullptr, true, &rest) || rest != nullptr);
}

TEST(LfnName, OutShortensInARingOfThree) {
    std::string az;
    for (int i = 0; i < 259; ++i) az += static_cast<char>('a' + i % 26);
    const std::string s50 = az.substr(0, 50), s38 = az.substr(0, 38);
    struct Row { std::string in; long width; std::string expected; };
    const Row rows[] = {
        {s50, 0, "abc..." + s50.substr(50 - 31)},  // 37 characters
        {az.substr(0, 37), 0, az.substr(0, 37)},  {s38, 0, "abc..." + s38.substr(38 - 31)},
        {s50, 10, "abc..." + s50.substr(47)},     {s50, 261, "abc..." + s50.substr(19)},
        {az, 260, az},                            {s50, 5, "abc..."},
    };
    for (const Row& r : rows)
        EXPECT_EQ(Vnt_LfnNameOut(r.in.c_str(), r.width), r.expected) << r.in.size() << " w" << r.width;
    // Kept for compatibility: three results stand side by side, the fourth reuses the first.
    const char *a = Vnt_LfnNameOut("one"), *b = Vnt_LfnNameOut("two"), *c = Vnt_LfnNameOut(nullptr);
    EXPECT_TRUE(a != b && b != c && a != c);
    EXPECT_EQ(Vnt_LfnNameOut("four"), a);
    EXPECT_EQ(std::string(a) + "|" + b + "|" + c, "four|two|");
}

}  // namespace
