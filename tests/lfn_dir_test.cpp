// The current directory with its one-slot save, volume existence, and the
// completion of names against the current directory of their volume. Volumes
// T: and U: are mapped to temporary directories.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

#include "base/strbuf.h"
#include "host/host.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"

namespace fs = std::filesystem;

namespace {

std::string cur() { return vnt::host::curDir(); }

class LfnDir : public ::testing::Test {
protected:
    void SetUp() override {
        savedCwd_ = fs::current_path();
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        base_ = fs::temp_directory_path() /
                (std::string("vanto_lfn_") + info->test_suite_name() + "_" + info->name());
        fs::remove_all(base_);
        tRoot_ = base_ / "t";
        uRoot_ = base_ / "u";
        fs::create_directories(tRoot_ / "a" / "b");
        fs::create_directories(tRoot_ / "Data" / "M1");
        fs::create_directories(uRoot_ / "sub");
        std::ofstream(tRoot_ / "file.txt") << "x";

        vnt::host::reset();
        vnt::lfn::resetState();
        ASSERT_TRUE(Vnt_LfnVolMap('T', tRoot_.c_str()));
        ASSERT_TRUE(Vnt_LfnVolMap('U', uRoot_.c_str()));
        // Start: U remembers "U:\sub", T is current at "T:\a".
        ASSERT_TRUE(Vnt_LfnDirSet(R"(U:\sub)"));
        ASSERT_TRUE(Vnt_LfnDirSet(R"(T:\a)"));
        ASSERT_EQ(cur(), R"(T:\a)");
    }
    void TearDown() override {
        fs::current_path(savedCwd_);
        vnt::host::reset();
        vnt::lfn::resetState();
        std::error_code ec;
        fs::remove_all(base_, ec);
    }
    fs::path savedCwd_, base_, tRoot_, uRoot_;
};

// ---------------------------------------------------------------------------
// Volumes
// ---------------------------------------------------------------------------

struct VolFindRow {
    const char* name;
    const char* input;
    bool found;
};

const VolFindRow kVolFind[] = {
    {"mapped_path", R"(T:\x\y)", true},
    {"lower_case_letter", "t:", true},
    {"default_z", R"(Z:\)", true},
    {"unmapped", R"(Q:\x)", false},
    {"no_colon", "T", false},
    {"digit", R"(1:\x)", false},
    {"empty", "", false},
    {"unc", R"(\\srv\share)", false},
    {"relative", "x", false},
};

TEST_F(LfnDir, VolFind) {
    for (const VolFindRow& r : kVolFind) EXPECT_EQ(Vnt_LfnVolFind(r.input), r.found) << r.name;
    EXPECT_FALSE(Vnt_LfnVolFind(nullptr));
}

TEST_F(LfnDir, VolFindFollowsTheVolumeTable) {
    ASSERT_TRUE(Vnt_LfnVolUnmap('U'));
    EXPECT_FALSE(Vnt_LfnVolFind("U:"));
    // A mapped directory that has gone away is no volume either.
    fs::current_path(savedCwd_);
    fs::remove_all(tRoot_);
    EXPECT_FALSE(Vnt_LfnVolFind("T:"));
}

// ---------------------------------------------------------------------------
// Setting the current directory
// ---------------------------------------------------------------------------

struct DirSetRow {
    const char* name;
    std::vector<const char*> prep;  // set first, each must succeed
    const char* input;
    bool ok;
    const char* expected;  // current directory afterwards
};
void PrintTo(const DirSetRow& r, std::ostream* os) { *os << r.name; }

class LfnDirSet : public LfnDir, public ::testing::WithParamInterface<DirSetRow> {};

TEST_P(LfnDirSet, Sets) {
    const DirSetRow& r = GetParam();
    for (const char* p : r.prep) ASSERT_TRUE(Vnt_LfnDirSet(p)) << p;
    EXPECT_EQ(Vnt_LfnDirSet(r.input), r.ok);
    EXPECT_EQ(cur(), r.expected);
}

const std::string kOverlong = R"(T:\)" + std::string(300, 'a');

INSTANTIATE_TEST_SUITE_P(
    Rows, LfnDirSet,
    ::testing::Values(
        DirSetRow{"absolute", {}, R"(T:\Data\M1)", true, R"(T:\Data\M1)"},
        DirSetRow{"lower_case_volume", {}, R"(t:\Data)", true, R"(T:\Data)"},
        DirSetRow{"relative", {}, "b", true, R"(T:\a\b)"},
        DirSetRow{"parent", {}, "..", true, R"(T:\)"},
        DirSetRow{"rooted_on_current_volume", {}, R"(\Data)", true, R"(T:\Data)"},
        DirSetRow{"dots_resolved", {}, R"(T:\a\b\..\..\Data\.)", true, R"(T:\Data)"},
        DirSetRow{"trailing_backslash", {}, R"(T:\a\b\)", true, R"(T:\a\b)"},
        DirSetRow{"volume_root", {}, R"(T:\)", true, R"(T:\)"},
        DirSetRow{"bare_volume_remembered", {}, "U:", true, R"(U:\sub)"},
        DirSetRow{"bare_volume_each_its_own", {R"(T:\a\b)", R"(U:\)"}, "T:", true, R"(T:\a\b)"},
        DirSetRow{"volume_relative", {R"(U:\)"}, "T:b", true, R"(T:\a\b)"},
        DirSetRow{"volume_relative_other", {}, "U:..", true, R"(U:\)"},
        DirSetRow{"missing", {}, "nothere", false, R"(T:\a)"},
        DirSetRow{"a_file", {}, R"(T:\file.txt)", false, R"(T:\a)"},
        DirSetRow{"empty", {}, "", false, R"(T:\a)"},
        DirSetRow{"unmapped_volume", {}, R"(Q:\x)", false, R"(T:\a)"},
        DirSetRow{"unmapped_bare_volume", {}, "Q:", false, R"(T:\a)"},
        DirSetRow{"digit_volume", {}, R"(1:\x)", false, R"(T:\a)"},
        DirSetRow{"above_root", {}, R"(T:\..)", false, R"(T:\a)"},
        DirSetRow{"relative_above_root", {}, R"(..\..)", false, R"(T:\a)"},
        DirSetRow{"unc", {}, R"(\\srv\share)", false, R"(T:\a)"},
        DirSetRow{"overlong", {}, kOverlong.c_str(), false, R"(T:\a)"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnDir, DirSetNullIsRefused) {
    EXPECT_FALSE(Vnt_LfnDirSet(nullptr));
    EXPECT_EQ(cur(), R"(T:\a)");
}

// ---------------------------------------------------------------------------
// Save and restore
// ---------------------------------------------------------------------------

TEST_F(LfnDir, SaveIntoBufferAndRestoreFromIt) {
    char buf[VNT_MAX_PATH] = "";
    ASSERT_TRUE(Vnt_LfnDirSave(buf));
    EXPECT_STREQ(buf, R"(T:\a)");
    ASSERT_TRUE(Vnt_LfnDirSet(R"(U:\)"));
    EXPECT_TRUE(Vnt_LfnDirRestore(buf));
    EXPECT_EQ(cur(), R"(T:\a)");
}

TEST_F(LfnDir, RestoreWithoutPathUsesTheSlot) {
    ASSERT_TRUE(Vnt_LfnDirSave());
    ASSERT_TRUE(Vnt_LfnDirSet(R"(T:\Data)"));
    EXPECT_TRUE(Vnt_LfnDirRestore());
    EXPECT_EQ(cur(), R"(T:\a)");
    ASSERT_TRUE(Vnt_LfnDirSet(R"(U:\)"));
    EXPECT_TRUE(Vnt_LfnDirRestore(""));
    EXPECT_EQ(cur(), R"(T:\a)");
    // A non-empty path is simply set.
    EXPECT_TRUE(Vnt_LfnDirRestore(R"(T:\Data\M1)"));
    EXPECT_EQ(cur(), R"(T:\Data\M1)");
}

TEST_F(LfnDir, RestoreOfAnEmptySlotFails) {
    EXPECT_FALSE(Vnt_LfnDirRestore());
    EXPECT_EQ(cur(), R"(T:\a)");
}

TEST_F(LfnDir, SlotIsOneSlotNotAStack) {
    ASSERT_TRUE(Vnt_LfnDirSave());  // T:\a
    ASSERT_TRUE(Vnt_LfnDirSet(R"(T:\Data)"));
    ASSERT_TRUE(Vnt_LfnDirSave());  // overwrites
    ASSERT_TRUE(Vnt_LfnDirSet(R"(U:\)"));
    EXPECT_TRUE(Vnt_LfnDirRestore());
    EXPECT_EQ(cur(), R"(T:\Data)");
    ASSERT_TRUE(Vnt_LfnDirSet(R"(U:\)"));
    EXPECT_TRUE(Vnt_LfnDirRestore());
    EXPECT_EQ(cur(), R"(T:\Data)");
}

// Kept for compatibility: completion saves into the same slot, so a
// caller's saved directory is lost across a completion.
TEST_F(LfnDir, CompletionOverwritesTheSlot) {
    ASSERT_TRUE(Vnt_LfnDirSave());  // T:\a
    ASSERT_TRUE(Vnt_LfnDirSet(R"(T:\Data)"));
    char name[VNT_MAX_PATH] = "x";
    ASSERT_TRUE(Vnt_LfnNameComplete(name));
    EXPECT_STREQ(name, R"(T:\Data\x)");
    ASSERT_TRUE(Vnt_LfnDirSet(R"(U:\)"));
    EXPECT_TRUE(Vnt_LfnDirRestore());
    EXPECT_EQ(cur(), R"(T:\Data)");
}

TEST_F(LfnDir, SaveFailsForACurrentDirectoryOf260OrMore) {
    fs::path deep = tRoot_;
    std::string lib = R"(T:)";
    for (int i = 0; i < 3; ++i) {
        const std::string part(90, static_cast<char>('k' + i));
        deep /= part;
        lib += "\\" + part;
    }
    fs::create_directories(deep);
    ASSERT_GE(lib.size(), VNT_MAX_PATH);
    ASSERT_TRUE(Vnt_LfnDirSave());  // T:\a
    ASSERT_TRUE(vnt::host::setCurDir(lib));
    char buf[VNT_MAX_PATH] = "old";
    EXPECT_FALSE(Vnt_LfnDirSave(buf));
    EXPECT_STREQ(buf, "old");
    EXPECT_FALSE(Vnt_LfnDirSave());
    EXPECT_TRUE(Vnt_LfnDirRestore());  // the slot kept T:\a
    EXPECT_EQ(cur(), R"(T:\a)");
    // Completion needs the save and refuses without touching the name.
    ASSERT_TRUE(vnt::host::setCurDir(lib));
    char name[VNT_MAX_PATH] = "x";
    EXPECT_FALSE(Vnt_LfnNameComplete(name));
    EXPECT_STREQ(name, "x");
}

// ---------------------------------------------------------------------------
// Completion
// ---------------------------------------------------------------------------

struct CompleteRow {
    const char* name;
    std::string input;
    bool ok;
    std::string expected;
};
void PrintTo(const CompleteRow& r, std::ostream* os) { *os << r.name; }

class LfnComplete : public LfnDir, public ::testing::WithParamInterface<CompleteRow> {};

TEST_P(LfnComplete, Completes) {
    const CompleteRow& r = GetParam();
    char buf[VNT_MAX_PATH];
    vnt::copyBounded(buf, r.input);
    EXPECT_EQ(Vnt_LfnNameComplete(buf), r.ok);
    EXPECT_EQ(std::string(buf), r.expected);
    // The current directory and every volume's memory are as before.
    EXPECT_EQ(cur(), R"(T:\a)");
    EXPECT_EQ(vnt::host::volCurDir('U'), R"(U:\sub)");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LfnComplete,
    ::testing::Values(
        CompleteRow{"relative", "x", true, R"(T:\a\x)"},
        CompleteRow{"relative_dir", R"(x\y\)", true, R"(T:\a\x\y)"},
        CompleteRow{"rooted", R"(\x)", true, R"(T:\x)"},
        CompleteRow{"bare_current_volume", "T:", true, R"(T:\a)"},
        CompleteRow{"bare_other_volume", "U:", true, R"(U:\sub)"},
        CompleteRow{"volume_relative", "U:y", true, R"(U:\sub\y)"},
        CompleteRow{"current_volume_relative", "T:rel", true, R"(T:\a\rel)"},
        CompleteRow{"dot", ".", true, R"(T:\a)"},
        CompleteRow{"parent", "..", true, R"(T:\)"},
        CompleteRow{"parent_then_down", R"(..\Data\f)", true, R"(T:\Data\f)"},
        CompleteRow{"empty", "", true, R"(T:\a)"},
        CompleteRow{"absolute_with_dots", R"(T:\a\..\b)", true, R"(T:\b)"},
        CompleteRow{"absolute_need_not_exist", R"(U:\no\such)", true, R"(U:\no\such)"},
        CompleteRow{"lower_case_volume", "u:y", true, R"(U:\sub\y)"},
        CompleteRow{"unmapped_volume", "Q:x", false, "Q:x"},
        CompleteRow{"digit_volume", R"(1:\x)", false, R"(1:\x)"},
        CompleteRow{"unc_untouched", R"(\\srv\share\..\x)", true, R"(\\srv\share\..\x)"},
        // The join cuts at 259; completion still reports success.
        CompleteRow{"overlong_cut", std::string(259, 'n'), true,
                    R"(T:\a\)" + std::string(254, 'n')}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnDir, CompleteOfAVolumeThatCannotBeEnteredFails) {
    fs::remove_all(uRoot_ / "sub");  // U's remembered directory is gone
    char buf[VNT_MAX_PATH] = "U:";
    EXPECT_FALSE(Vnt_LfnNameComplete(buf));
    EXPECT_STREQ(buf, "U:");
    vnt::copyBounded(buf, "U:y");
    EXPECT_FALSE(Vnt_LfnNameComplete(buf));
    EXPECT_STREQ(buf, "U:y");
    EXPECT_EQ(cur(), R"(T:\a)");
}

// ---------------------------------------------------------------------------
// Absolute names against a base
// ---------------------------------------------------------------------------

struct MakeAbsRow {
    const char* name;
    const char* input;
    const char* base;
    bool ok;
    const char* expected;
};
void PrintTo(const MakeAbsRow& r, std::ostream* os) { *os << r.name; }

class LfnMakeAbsBase : public LfnDir, public ::testing::WithParamInterface<MakeAbsRow> {};

TEST_P(LfnMakeAbsBase, Makes) {
    const MakeAbsRow& r = GetParam();
    char dst[VNT_MAX_PATH] = "old";
    EXPECT_EQ(Vnt_LfnNameMakeAbs(dst, r.input, r.base), r.ok);
    if (r.expected) {
        EXPECT_STREQ(dst, r.expected);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LfnMakeAbsBase,
    ::testing::Values(
        MakeAbsRow{"no_base_completes", "x", nullptr, true, R"(T:\a\x)"},
        MakeAbsRow{"no_base_unmapped", "Q:x", nullptr, false, "Q:x"},
        MakeAbsRow{"no_base_null_name", nullptr, nullptr, false, ""},
        MakeAbsRow{"shared_prefix_skipped", R"(C:\data\m1\x.txt)", R"(C:\data)", true,
                   R"(C:\data\m1\x.txt)"},
        MakeAbsRow{"same_name", R"(C:\data)", R"(C:\data)", true, R"(C:\data)"},
        MakeAbsRow{"case_ignored", R"(c:\DATA\x)", R"(C:\data)", true, R"(C:\data\x)"},
        MakeAbsRow{"case_ignored_1252", "C:\\D\xC4TEN\\x", "C:\\d\xE4ten", true,
                   "C:\\d\xE4ten\\x"},
        MakeAbsRow{"relative", "x", R"(C:\d)", true, R"(C:\d\x)"},
        MakeAbsRow{"relative_with_parent", R"(..\y)", R"(C:\d\e)", true, R"(C:\d\y)"},
        MakeAbsRow{"above_root", R"(..\..\y)", R"(C:\d)", false, nullptr},
        // Kept for compatibility: a rooted name that shares nothing with
        // the base goes under it, and the shared part is matched by
        // characters, not by whole components.
        MakeAbsRow{"rooted_joined_under_base", R"(\x)", R"(C:\d)", true, R"(C:\d\x)"},
        MakeAbsRow{"rooted_other_tree", R"(\data\x)", R"(C:\data)", true, R"(C:\data\data\x)"},
        MakeAbsRow{"rooted_shares_backslash", R"(\x)", R"(\y)", true, R"(\y\x)"},
        MakeAbsRow{"partial_component", R"(C:\datax\f)", R"(C:\data)", true,
                   R"(C:\data\x\f)"},
        MakeAbsRow{"other_volume_joined", R"(D:\x)", R"(C:\d)", true, R"(C:\d\x)"},
        MakeAbsRow{"null_name_gives_base", nullptr, R"(C:\d\)", true, R"(C:\d)"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(LfnDir, MakeAbsNameAndBaseMayLieInTheTarget) {
    char dst[VNT_MAX_PATH] = R"(..\y)";
    EXPECT_TRUE(Vnt_LfnNameMakeAbs(dst, dst, R"(C:\d\e)"));
    EXPECT_STREQ(dst, R"(C:\d\y)");
    vnt::copyBounded(dst, R"(C:\base)");
    EXPECT_TRUE(Vnt_LfnNameMakeAbs(dst, "x", dst));
    EXPECT_STREQ(dst, R"(C:\base\x)");
    vnt::copyBounded(dst, "x");
    EXPECT_TRUE(Vnt_LfnNameMakeAbs(dst, dst, nullptr));
    EXPECT_STREQ(dst, R"(T:\a\x)");
}

TEST_F(LfnDir, MakeAbsBaseTooLongLeavesEmptyTarget) {
    const std::string base = R"(C:\)" + std::string(258, 'b');
    char dst[VNT_MAX_PATH] = "old";
    EXPECT_FALSE(Vnt_LfnNameMakeAbs(dst, "x", base.c_str()));
    EXPECT_STREQ(dst, "");
}

}  // namespace
