// Pure name functions: tests on names, joining, splitting, extensions, dot
// resolution, command-line tokens, display forms and the volume of a path.
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "base/strbuf.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"

namespace {

class LfnName : public ::testing::Test {
protected:
    void SetUp() override { vnt::lfn::resetState(); }
};

std::string repeat(char c, std::size_t n) { return std::string(n, c); }

// ---------------------------------------------------------------------------
// Tests on names
// ---------------------------------------------------------------------------

struct PredicateRow {
    const char* name;
    const char* input;
    bool wild, abs, rel, root, path, hasVol, isVol;
    long sepAt;  // separator position given by Vnt_LfnNameIsPath
};
void PrintTo(const PredicateRow& r, std::ostream* os) { *os << r.name; }

const PredicateRow kPredicates[] = {
    // name                  input             wild   abs    rel    root   path   hasVol isVol  sep
    {"empty",                "",               false, false, true,  false, false, false, false, 0},
    {"dot",                  ".",              false, false, true,  false, false, false, false, 1},
    {"dot_backslash",        R"(.\x)",         false, false, true,  false, true,  false, false, 1},
    {"plain",                "x",              false, false, true,  false, false, false, false, 1},
    {"vol_relative",         "C:x",            false, false, true,  false, true,  true,  false, 2},
    {"bare_volume",          "C:",             false, false, true,  false, true,  true,  true,  2},
    {"volume_root",          R"(C:\)",         false, true,  false, true,  true,  true,  false, 2},
    {"backslash_root",       R"(\)",           false, true,  false, true,  true,  false, false, 0},
    {"rooted",               R"(\x)",          false, true,  false, false, true,  false, false, 0},
    {"volume_absolute",      R"(C:\x)",        false, true,  false, false, true,  true,  false, 2},
    {"dotdot_not_absolute",  R"(C:\a\..\b)",   false, false, false, false, true,  true,  false, 7},
    {"dotdot_inside_name",   R"(\a..b)",       false, false, false, false, true,  false, false, 0},
    {"two_backslashes",      R"(\\)",          false, true,  false, false, true,  false, false, 1},
    {"unc",                  R"(\\srv\share)", false, true,  false, false, true,  false, false, 5},
    {"relative_dir",         R"(a\b.c)",       false, false, true,  false, true,  false, false, 1},
    {"star",                 "*.txt",          true,  false, true,  false, false, false, false, 5},
    {"question",             R"(C:\a?b)",      true,  true,  false, false, true,  true,  false, 2},
    {"digit_volume",         "1:x",            false, false, true,  false, true,  true,  false, 2},
    {"slash_is_no_separator", "C:/x",          false, false, true,  false, true,  true,  false, 2},
};

class LfnPredicate : public ::testing::TestWithParam<PredicateRow> {};

TEST_P(LfnPredicate, AllTests) {
    const PredicateRow& r = GetParam();
    EXPECT_EQ(Vnt_LfnNameIsWild(r.input), r.wild);
    EXPECT_EQ(Vnt_LfnNameIsAbsPath(r.input), r.abs);
    EXPECT_EQ(Vnt_LfnNameIsRelPath(r.input), r.rel);
    EXPECT_EQ(Vnt_LfnNameIsRoot(r.input), r.root);

    const char* sep = nullptr;
    EXPECT_EQ(Vnt_LfnNameIsPath(r.input, &sep), r.path);
    long expectSep = r.path ? r.sepAt : static_cast<long>(std::strlen(r.input));
    EXPECT_EQ(sep - r.input, expectSep);
    EXPECT_EQ(Vnt_LfnNameIsPath(r.input), r.path);

    const char* after = nullptr;
    EXPECT_EQ(Vnt_LfnNameHasVol(r.input, &after), r.hasVol);
    EXPECT_EQ(after - r.input, r.hasVol ? 2 : 0);
    EXPECT_EQ(Vnt_LfnNameIsVol(r.input, &after), r.isVol);
    EXPECT_EQ(after - r.input, r.hasVol ? 2 : 0);

    // The non-const overloads give the same answers and positions.
    char buf[VNT_MAX_PATH];
    vnt::copyBounded(buf, r.input);
    char* msep = nullptr;
    EXPECT_EQ(Vnt_LfnNameIsPath(buf, &msep), r.path);
    EXPECT_EQ(msep - buf, expectSep);
    char* mafter = nullptr;
    EXPECT_EQ(Vnt_LfnNameHasVol(buf, &mafter), r.hasVol);
    EXPECT_EQ(Vnt_LfnNameIsVol(buf, &mafter), r.isVol);
}

INSTANTIATE_TEST_SUITE_P(Rows, LfnPredicate, ::testing::ValuesIn(kPredicates),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnName, NullNamesAreNoAndDoNotCrash) {
    EXPECT_FALSE(Vnt_LfnNameIsWild(nullptr));
    EXPECT_FALSE(Vnt_LfnNameIsAbsPath(nullptr));
    EXPECT_FALSE(Vnt_LfnNameIsRelPath(nullptr));
    EXPECT_FALSE(Vnt_LfnNameIsRoot(nullptr));
    const char* sep = "x";
    EXPECT_FALSE(Vnt_LfnNameIsPath(nullptr, &sep));
    EXPECT_EQ(sep, nullptr);
    EXPECT_FALSE(Vnt_LfnNameHasVol(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(Vnt_LfnNameIsVol(static_cast<const char*>(nullptr)));
}

// ---------------------------------------------------------------------------
// Joining
// ---------------------------------------------------------------------------

struct MakeRow {
    const char* name;
    std::size_t size;
    const char* initial;  // what the target holds before
    const char* dir;
    const char* file;
    const char* ext;
    const char* expected;
    bool ok;
};
void PrintTo(const MakeRow& r, std::ostream* os) { *os << r.name; }

const MakeRow kMake[] = {
    {"dir_name_ext", 260, "", R"(C:\dir)", "file", "txt", R"(C:\dir\file.txt)", true},
    {"ext_only_changes_target", 260, R"(C:\dir\file.txt)", nullptr, nullptr, ".bak",
     R"(C:\dir\file.bak)", true},
    {"all_null_keeps_target", 260, "keep", nullptr, nullptr, nullptr, "keep", true},
    {"one_separator", 260, "", R"(C:\dir\)", R"(\file)", nullptr, R"(C:\dir\file)", true},
    {"separator_inserted", 260, "", R"(C:\dir)", R"(\file)", nullptr, R"(C:\dir\file)", true},
    {"bare_volume_relative", 260, "", "C:", "x", nullptr, "C:x", true},
    {"bare_volume_rooted", 260, "", "C:", R"(\x)", nullptr, R"(C:\x)", true},
    {"rooted_volume_dir", 260, "", R"(C:\)", "x", nullptr, R"(C:\x)", true},
    {"backslash_dir", 260, "", R"(\)", "x", nullptr, R"(\x)", true},
    {"name_volume_dropped", 260, "", R"(C:\dir)", "D:x", nullptr, R"(C:\dir\x)", true},
    {"rooted_name_volume_dropped", 260, "", R"(C:\dir)", R"(D:\x)", nullptr, R"(C:\dir\x)", true},
    {"empty_dir_keeps_name_volume", 260, "", "", "D:x", nullptr, "D:x", true},
    // An empty directory still takes one leading backslash off the name.
    {"empty_dir_drops_backslash", 260, "", "", R"(\x)", nullptr, "x", true},
    {"null_dir_name_is_base", 260, "", nullptr, R"(C:\a)", "txt", R"(C:\a.txt)", true},
    {"dir_only", 260, "old", R"(C:\a)", nullptr, nullptr, R"(C:\a)", true},
    {"empty_name_no_separator", 260, "", R"(C:\a)", "", nullptr, R"(C:\a)", true},
    {"dot_in_directory", 260, R"(C:\a.b\file)", nullptr, nullptr, "txt", R"(C:\a.b\file.txt)",
     true},
    {"last_dot_replaced", 260, "", "", "a.b.c", "x", "a.b.x", true},
    {"plain_name_dot", 260, "x.y", nullptr, nullptr, "z", "x.z", true},
    {"empty_ext_leaves_dot", 260, "file.txt", nullptr, nullptr, "", "file.", true},
    {"ext_cut_to_eight", 260, "file", nullptr, nullptr, "123456789", "file.12345678", true},
    // A dot right after the colon is not after the separator position.
    {"dot_at_volume_separator", 260, "C:.b", nullptr, nullptr, "x", "C:.b.x", true},
    {"size_one", 1, "", "C:", "x", nullptr, "", false},
    {"size_zero", 0, "", "C:", "x", nullptr, "", false},
    // Kept for compatibility: eight characters of room are reserved for
    // any extension, so "txt" is written but the call reports failure.
    {"ext_reservation_fails", 20, "", R"(C:\dir)", "file", "txt", R"(C:\dir\file.txt)", false},
    {"ext_reservation_met", 21, "", R"(C:\dir)", "file", "txt", R"(C:\dir\file.txt)", true},
    {"ext_cut_to_room", 15, "", R"(C:\dir)", "file", "txt", R"(C:\dir\file.tx)", false},
    {"no_room_for_dot", 6, "abcd", nullptr, nullptr, "txt", "abcdt", false},
    {"base_fills_target_unchanged", 10, "keep", R"(C:\abcdefg)", "x", nullptr, "keep", false},
    {"base_one_short_name_lost", 10, "", R"(C:\abcde)", "x", nullptr, R"(C:\abcde\)", false},
    {"name_cut_still_delivered", 12, "", R"(C:\d)", "abcdefghij", nullptr, R"(C:\d\abcdef)",
     false},
    {"base_cut_without_name", 6, "", R"(C:\abcdef)", nullptr, nullptr, R"(C:\ab)", true},
};

class LfnMake : public ::testing::TestWithParam<MakeRow> {};

TEST_P(LfnMake, Joins) {
    const MakeRow& r = GetParam();
    // Guard bytes after the target catch any write past its size.
    std::vector<char> buf(r.size + 8, '#');
    if (r.size) vnt::copyBounded(buf.data(), r.size, r.initial);
    EXPECT_EQ(Vnt_LfnNameMake(buf.data(), r.size, r.dir, r.file, r.ext), r.ok);
    if (r.size) {
        EXPECT_STREQ(buf.data(), r.expected);
    }
    for (std::size_t i = r.size; i < buf.size(); ++i) ASSERT_EQ(buf[i], '#') << "overrun at " << i;
}

INSTANTIATE_TEST_SUITE_P(Rows, LfnMake, ::testing::ValuesIn(kMake),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnName, MakeCutsOverlongNamesAt259) {
    char buf[VNT_MAX_PATH];
    const std::string longName = repeat('a', 300);
    EXPECT_FALSE(Vnt_LfnNameMake(buf, R"(C:\d)", longName.c_str(), nullptr));
    EXPECT_EQ(std::strlen(buf), 259u);
    EXPECT_EQ(std::string(buf, 5), R"(C:\d\)");

    // A full-length name leaves no room for the extension.
    vnt::copyBounded(buf, repeat('b', 259));
    EXPECT_FALSE(Vnt_LfnNameMake(buf, nullptr, nullptr, "txt"));
    EXPECT_EQ(buf, repeat('b', 259));
}

TEST_F(LfnName, MakeArgumentsMayLieInTheTarget) {
    char buf[VNT_MAX_PATH] = R"(C:\dir)";
    EXPECT_TRUE(Vnt_LfnNameMake(buf, buf, "file", "txt"));
    EXPECT_STREQ(buf, R"(C:\dir\file.txt)");

    vnt::copyBounded(buf, "name");
    EXPECT_TRUE(Vnt_LfnNameMake(buf, R"(C:\x)", buf, nullptr));
    EXPECT_STREQ(buf, R"(C:\x\name)");
}

// ---------------------------------------------------------------------------
// Splitting
// ---------------------------------------------------------------------------

struct SplitRow {
    const char* name;
    const char* input;
    const char* dir;
    const char* file;
    const char* ext;
};
void PrintTo(const SplitRow& r, std::ostream* os) { *os << r.name; }

const SplitRow kSplit[] = {
    {"dot_in_directory", R"(C:\a.b\file)", R"(C:\a.b)", "file", ""},
    {"volume_root_dir", R"(C:\file)", R"(C:\)", "file", ""},
    {"backslash_root_dir", R"(\file)", R"(\)", "file", ""},
    {"volume_relative", "C:file", "C:", "file", ""},
    {"no_directory", "x.txt", "", "x.txt", "txt"},
    {"last_dot_is_ext", R"(C:\d\a.b.c)", R"(C:\d)", "a.b.c", "c"},
    {"empty", "", "", "", ""},
    {"bare_volume", "C:", "C:", "", ""},
    {"root_only", R"(C:\)", R"(C:\)", "", ""},
    {"trailing_backslash", R"(dir\)", "dir", "", ""},
    {"unc", R"(\\srv\share\f.x)", R"(\\srv\share)", "f.x", "x"},
    {"leading_dot_file", ".profile", "", ".profile", "profile"},
    {"dot_at_volume_separator", "C:.b", "C:", ".b", ""},
    {"double_backslash_after_volume", R"(C:\\f)", R"(C:\)", "f", ""},
};

class LfnSplit : public ::testing::TestWithParam<SplitRow> {};

TEST_P(LfnSplit, Splits) {
    const SplitRow& r = GetParam();
    char dir[VNT_MAX_PATH] = "old", file[VNT_MAX_PATH] = "old", ext[VNT_MAX_PATH] = "old";
    Vnt_LfnNameSplit(r.input, dir, file, ext);
    EXPECT_STREQ(dir, r.dir);
    EXPECT_STREQ(file, r.file);
    EXPECT_STREQ(ext, r.ext);
}

INSTANTIATE_TEST_SUITE_P(Rows, LfnSplit, ::testing::ValuesIn(kSplit),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnName, SplitOutputsMayBeTheInputOrNull) {
    char buf[VNT_MAX_PATH] = R"(C:\d\f.txt)";
    char ext[VNT_MAX_PATH] = "old";
    Vnt_LfnNameSplit(buf, nullptr, buf, ext);
    EXPECT_STREQ(buf, "f.txt");
    EXPECT_STREQ(ext, "txt");

    vnt::copyBounded(buf, R"(C:\d\f.txt)");
    char file[VNT_MAX_PATH];
    Vnt_LfnNameSplit(buf, buf, file, nullptr);
    EXPECT_STREQ(buf, R"(C:\d)");
    EXPECT_STREQ(file, "f.txt");

    vnt::copyBounded(buf, R"(C:\d\f.txt)");
    Vnt_LfnNameSplit(buf, nullptr, nullptr, buf);
    EXPECT_STREQ(buf, "txt");
}

TEST_F(LfnName, SplitCutsOverlongInputAt259) {
    const std::string in = R"(C:\d\)" + repeat('f', 300);
    char dir[VNT_MAX_PATH], file[VNT_MAX_PATH];
    Vnt_LfnNameSplit(in.c_str(), dir, file, nullptr);
    EXPECT_STREQ(dir, R"(C:\d)");
    EXPECT_EQ(std::strlen(file), 259u - 5u);
}

// ---------------------------------------------------------------------------
// Extensions
// ---------------------------------------------------------------------------

struct ExtRow {
    const char* name;
    const char* input;
    std::size_t size;
    const char* ext;       // new extension, may be null
    const char* expected;  // the name afterwards
    const char* old;       // result; null when it did not fit
};
void PrintTo(const ExtRow& r, std::ostream* os) { *os << r.name; }

const ExtRow kExtS[] = {
    {"first_dot_starts_ext", "a.b.c", 260, "x", "a.x", "b.c"},
    {"replace", "file.txt", 260, "bak", "file.bak", "txt"},
    {"old_cut_to_three", "file.html", 260, "bak", "file.bak", "htm"},
    {"append", "file", 260, "txt", "file.txt", ""},
    {"dot_in_directory", R"(C:\d.x\file)", 260, "txt", R"(C:\d.x\file.txt)", ""},
    {"first_dot_after_last_backslash", R"(C:\d.x\f.a.b)", 260, "c", R"(C:\d.x\f.c)", "a.b"},
    {"null_ext_reads_only", "f.txt", 260, nullptr, "f.txt", "txt"},
    {"empty_ext_cuts", "a.b.c", 260, "", "a", "b.c"},
    {"dot_ext_cuts", "a.b", 260, ".", "a", "b"},
    {"leading_dot_skipped", "f.txt", 260, ".bak", "f.bak", "txt"},
    {"leading_dot_file", ".txt", 260, "bak", ".bak", "txt"},
    {"fits_exactly", "file", 9, "abc", "file.abc", ""},
    {"one_too_many", "file", 8, "abc", "file", nullptr},
    {"no_room_replacing", "file.t", 8, "abcd", "file.t", nullptr},
};

class LfnExtS : public ::testing::TestWithParam<ExtRow> {};

TEST_P(LfnExtS, ReplacesFromFirstDot) {
    const ExtRow& r = GetParam();
    std::vector<char> buf(r.size + 8, '#');
    vnt::copyBounded(buf.data(), r.size, r.input);
    const char* old = Vnt_LfnNameExtS(buf.data(), r.size, r.ext);
    if (r.old == nullptr) {
        EXPECT_EQ(old, nullptr);
    } else {
        ASSERT_NE(old, nullptr);
        EXPECT_STREQ(old, r.old);
    }
    EXPECT_STREQ(buf.data(), r.expected);
    for (std::size_t i = r.size; i < buf.size(); ++i) ASSERT_EQ(buf[i], '#') << "overrun at " << i;
}

INSTANTIATE_TEST_SUITE_P(Rows, LfnExtS, ::testing::ValuesIn(kExtS),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnName, ExtOldExtensionIsOneStaticBuffer) {
    char a[VNT_MAX_PATH] = "a.one";
    char b[VNT_MAX_PATH] = "b.two";
    const char* r1 = Vnt_LfnNameExt(a, "x");
    const char* r2 = Vnt_LfnNameExt(b, "y");
    EXPECT_EQ(r1, r2);
    EXPECT_STREQ(r1, "two");
    EXPECT_EQ(Vnt_LfnNameExtS(nullptr, 10, "x"), nullptr);
}

struct ExtAddRow {
    const char* name;
    std::string input;
    const char* ext;
    std::string expected;
    bool ok;
};
void PrintTo(const ExtAddRow& r, std::ostream* os) { *os << r.name; }

class LfnExtAdd : public ::testing::TestWithParam<ExtAddRow> {};

TEST_P(LfnExtAdd, AppendsOrReplaces) {
    const ExtAddRow& r = GetParam();
    char buf[VNT_MAX_PATH];
    vnt::copyBounded(buf, r.input);
    EXPECT_EQ(Vnt_LfnNameExtAdd(buf, r.ext) != nullptr, r.ok);
    EXPECT_EQ(std::string(buf), r.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LfnExtAdd,
    ::testing::Values(
        // Kept for compatibility: an existing extension is replaced.
        ExtAddRow{"replaces_existing", "file.txt", "bak", "file.bak", true},
        ExtAddRow{"appends", "file", "bak", "file.bak", true},
        ExtAddRow{"ends_in_dot", "file.", "bak", "file.bak", true},
        ExtAddRow{"empty_name", "", "bak", ".bak", true},
        ExtAddRow{"long_fits", repeat('n', 255), "bak", repeat('n', 255) + ".bak", true},
        // The dot goes on before the size check of the extension fails.
        ExtAddRow{"too_long_keeps_dot", repeat('n', 257), "bak", repeat('n', 257) + ".", false},
        ExtAddRow{"no_dot_at_258", repeat('n', 258), "b", repeat('n', 258), false}),
    [](const auto& info) { return std::string(info.param.name); });

// ---------------------------------------------------------------------------
// Dot resolution
// ---------------------------------------------------------------------------

struct DotsRow {
    const char* name;
    const char* input;
    const char* expected;  // checked only on success
    bool ok;
};
void PrintTo(const DotsRow& r, std::ostream* os) { *os << r.name; }

const DotsRow kDots[] = {
    {"mixed", R"(C:\a\b\..\c\.\d)", R"(C:\a\c\d)", true},
    {"above_root", R"(C:\..)", nullptr, false},
    {"to_volume_root", R"(C:\a\..)", R"(C:\)", true},
    {"trailing_dotdot", R"(C:\a\b\..)", R"(C:\a)", true},
    {"to_backslash_root", R"(\a\..)", R"(\)", true},
    {"two_levels", R"(C:\a\b\..\..\c)", R"(C:\c)", true},
    {"two_levels_too_many", R"(C:\a\..\..)", nullptr, false},
    {"trailing_dot", R"(C:\a\.)", R"(C:\a)", true},
    {"repeated_dot", R"(C:\a\.\.\b)", R"(C:\a\b)", true},
    {"leading_dot", R"(.\x)", "x", true},
    {"name_ending_in_dot", R"(a.\b)", R"(a\b)", true},
    {"trailing_backslash", R"(C:\a\)", R"(C:\a)", true},
    {"volume_root_kept", R"(C:\)", R"(C:\)", true},
    {"backslash_root_kept", R"(\)", R"(\)", true},
    {"dot_inside_name", R"(C:\a.b\c.d)", R"(C:\a.b\c.d)", true},
    {"lone_dot", ".", ".", true},
    {"dotdot_at_start", R"(..\x)", nullptr, false},
    {"dotdot_part_of_name", R"(C:\a\..x)", nullptr, false},
    {"three_dots", R"(C:\a\...\b)", nullptr, false},
    {"dotdot_after_volume", "C:..", nullptr, false},
    {"relative_above_start", R"(a\..)", nullptr, false},
    {"unc", R"(\\srv\share\..\x)", R"(\\srv\x)", true},
    // The backslash goes with a final "\.", even the root's.
    {"volume_root_dot", R"(C:\.)", "C:", true},
};

class LfnDots : public ::testing::TestWithParam<DotsRow> {};

TEST_P(LfnDots, Resolves) {
    const DotsRow& r = GetParam();
    char buf[VNT_MAX_PATH];
    vnt::copyBounded(buf, r.input);
    EXPECT_EQ(Vnt_LfnNameMakeAbs(buf), r.ok);
    if (r.ok) {
        EXPECT_STREQ(buf, r.expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, LfnDots, ::testing::ValuesIn(kDots),
                         [](const auto& info) { return std::string(info.param.name); });

// ---------------------------------------------------------------------------
// Command-line tokens
// ---------------------------------------------------------------------------

struct ExtractRow {
    const char* name;
    std::string line;
    bool remove, whole;
    std::string token;
    const char* rest;       // what the rest pointer shows
    std::string lineAfter;  // the line afterwards
    bool ok;
};
void PrintTo(const ExtractRow& r, std::ostream* os) { *os << r.name; }

class LfnExtract : public ::testing::TestWithParam<ExtractRow> {};

TEST_P(LfnExtract, TakesFirstToken) {
    const ExtractRow& r = GetParam();
    std::vector<char> line(r.line.begin(), r.line.end());
    line.push_back('\0');
    char dst[VNT_MAX_PATH] = "old";
    char* rest = nullptr;
    EXPECT_EQ(Vnt_LfnNameExtract(dst, line.data(), r.remove, &rest, r.whole), r.ok);
    EXPECT_EQ(std::string(dst), r.token);
    ASSERT_NE(rest, nullptr);
    EXPECT_STREQ(rest, r.rest);
    EXPECT_EQ(std::string(line.data()), r.lineAfter);
    EXPECT_GE(rest, line.data());
    EXPECT_LE(rest, line.data() + std::strlen(line.data()));
}

const std::string kQuoted = R"("C:\My Dir\app.exe" -x 1)";

INSTANTIATE_TEST_SUITE_P(
    Rows, LfnExtract,
    ::testing::Values(
        ExtractRow{"quoted_with_args", kQuoted, false, false, R"(C:\My Dir\app.exe)", "-x 1",
                   kQuoted, true},
        ExtractRow{"quoted_removed", kQuoted, true, false, R"(C:\My Dir\app.exe)", "-x 1",
                   " -x 1", true},
        ExtractRow{"plain_token", "  app.exe   a b", false, false, "app.exe", "a b",
                   "  app.exe   a b", true},
        ExtractRow{"tabs", "\tapp\t\targ", true, false, "app", "arg", " arg", true},
        ExtractRow{"only_token_removed", "app.exe", true, false, "app.exe", "", "", true},
        ExtractRow{"whole_line", R"(C:\My Dir\app.exe  )", false, true, R"(C:\My Dir\app.exe)",
                   "", R"(C:\My Dir\app.exe  )", true},
        // With `whole` leading blanks are not skipped and stay in the token.
        ExtractRow{"whole_keeps_leading_blanks", "  x y", false, true, "  x y", "", "  x y",
                   true},
        ExtractRow{"whole_quoted", R"("a b" c d)", false, true, "a b", "c d", R"("a b" c d)",
                   true},
        ExtractRow{"unclosed_quote", R"("C:\a b)", true, false, R"(C:\a b)", "", "", true},
        ExtractRow{"blanks_inside_quotes_trimmed", R"("a b  " c)", false, false, "a b", "c",
                   R"("a b  " c)", true},
        ExtractRow{"quote_glued_to_rest", R"("a"b c)", true, false, "a", "b c", " b c", true},
        ExtractRow{"empty_line", "", true, false, "", "", "", false},
        ExtractRow{"blanks_only", " \t ", false, false, "", "", " \t ", false},
        ExtractRow{"empty_quotes", R"("" x)", false, false, "", "x", R"("" x)", false},
        ExtractRow{"overlong_token_cut", repeat('t', 300) + " r", false, false,
                   repeat('t', 259), "r", repeat('t', 300) + " r", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnName, ExtractRestPointsIntoLine) {
    char line[] = R"("C:\p q\a.exe" -x)";
    char dst[VNT_MAX_PATH];
    char* rest = nullptr;
    ASSERT_TRUE(Vnt_LfnNameExtract(dst, line, true, &rest));
    EXPECT_EQ(rest, line + 1);  // after the one blank the line now starts with

    char line2[] = "app arg";
    ASSERT_TRUE(Vnt_LfnNameExtract(dst, line2, false, &rest));
    EXPECT_EQ(rest, line2 + 4);

    // The rest pointer is optional; a null line is refused.
    char line3[] = "a b";
    EXPECT_TRUE(Vnt_LfnNameExtract(dst, line3, true));
    EXPECT_STREQ(line3, " b");
    EXPECT_FALSE(Vnt_LfnNameExtract(dst, nullptr, true, &rest));
    EXPECT_STREQ(dst, "");
    EXPECT_EQ(rest, nullptr);
}

// ---------------------------------------------------------------------------
// Display form
// ---------------------------------------------------------------------------

std::string letters(std::size_t n) {
    std::string s;
    for (std::size_t i = 0; i < n; ++i) s += static_cast<char>('a' + i % 26);
    return s;
}

struct OutRow {
    const char* name;
    std::string input;
    long width;
    std::string expected;
};
void PrintTo(const OutRow& r, std::ostream* os) { *os << r.name; }

class LfnOut : public ::testing::TestWithParam<OutRow> {};

TEST_P(LfnOut, Shortens) {
    const OutRow& r = GetParam();
    EXPECT_EQ(std::string(Vnt_LfnNameOut(r.input.c_str(), r.width)), r.expected);
}

const std::string k50 = letters(50);

INSTANTIATE_TEST_SUITE_P(
    Rows, LfnOut,
    ::testing::Values(
        OutRow{"default_width", k50, 0, k50.substr(0, 3) + "..." + k50.substr(50 - 31)},
        OutRow{"short_whole", letters(37), 0, letters(37)},
        OutRow{"equal_to_width_shortened", letters(38), 0,
               "abc..." + letters(38).substr(38 - 31)},
        OutRow{"width_10", k50, 10, "abc..." + k50.substr(47)},
        OutRow{"over_260_means_38", k50, 261, k50.substr(0, 3) + "..." + k50.substr(19)},
        OutRow{"width_260", letters(259), 260, letters(259)},
        OutRow{"negative_means_38", k50, -5, k50.substr(0, 3) + "..." + k50.substr(19)},
        OutRow{"tiny_width_no_tail", k50, 5, "abc..."},
        OutRow{"width_8", k50, 8, "abc...x"},
        OutRow{"empty", "", 0, ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnName, OutRingOfThree) {
    const char* a = Vnt_LfnNameOut("one");
    const char* b = Vnt_LfnNameOut("two");
    const char* c = Vnt_LfnNameOut("three");
    // Three results stand side by side, as in one message with three names.
    EXPECT_NE(a, b);
    EXPECT_NE(b, c);
    EXPECT_NE(a, c);
    EXPECT_STREQ(a, "one");
    EXPECT_STREQ(b, "two");
    EXPECT_STREQ(c, "three");
    const char* d = Vnt_LfnNameOut("four");
    EXPECT_EQ(d, a);
    EXPECT_STREQ(a, "four");
    EXPECT_STREQ(b, "two");
    EXPECT_STREQ(Vnt_LfnNameOut(nullptr), "");
    EXPECT_EQ(Vnt_LfnNameOut("x"), c);
}

TEST_F(LfnName, OutResetStartsRingAtFirstBuffer) {
    const char* a = Vnt_LfnNameOut("one");
    Vnt_LfnNameOut("two");
    vnt::lfn::resetState();
    EXPECT_EQ(Vnt_LfnNameOut("again"), a);
}

// ---------------------------------------------------------------------------
// Volume of a path
// ---------------------------------------------------------------------------

struct VolRow {
    const char* name;
    const char* input;
    const char* expected;
};
void PrintTo(const VolRow& r, std::ostream* os) { *os << r.name; }

const VolRow kVolFromPath[] = {
    {"drive", R"(C:\a\b)", "C:"},
    {"bare_drive", "C:", "C:"},
    {"colon_anywhere", R"(dir\x:y)", R"(dir\x:)"},
    {"unc_share", R"(\\srv\share\dir)", R"(\\srv\share)"},
    {"unc_server_only", R"(\\srv)", R"(\\srv)"},
    {"unc_server_trailing", R"(\\srv\)", R"(\\srv)"},
    {"unc_forward_slashes", R"(\\srv/share/x)", R"(\\srv/share)"},
    {"rooted", R"(\x)", ""},
    {"relative", "x", ""},
    {"empty", "", ""},
};

class LfnVolFromPath : public ::testing::TestWithParam<VolRow> {};

TEST_P(LfnVolFromPath, Extracts) {
    const VolRow& r = GetParam();
    char buf[VNT_MAX_PATH] = "old";
    EXPECT_TRUE(Vnt_LfnVolFromPath(buf, r.input));
    EXPECT_STREQ(buf, r.expected);
    // Without a path the buffer itself is the input.
    vnt::copyBounded(buf, r.input);
    EXPECT_TRUE(Vnt_LfnVolFromPath(buf));
    EXPECT_STREQ(buf, r.expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, LfnVolFromPath, ::testing::ValuesIn(kVolFromPath),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
