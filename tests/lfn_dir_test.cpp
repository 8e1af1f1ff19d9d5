// The current directory with its one-slot save, volume existence, and the
// completion of names. Volumes T: and U: are mapped to temporary directories.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "base/strbuf.h"
#include "host/host.h"
#include "host/path.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"
#include "scratch.h"

namespace fs = std::filesystem;

namespace {

// The current directory after a call that reported `ok`.
std::string cur(bool ok = true) { return (ok ? "" : "refused at ") + vnt::host::curDir(); }
const char* show(const char* s) { return s ? s : "null"; }

class LfnDir : public ::testing::Test {
protected:
    void SetUp() override {
        base_ = vnt::test::scratchDir("vanto_lfndir_");
        fs::remove_all(base_);
        for (const char* dir : {"t/a/b", "t/Data", "u/sub"}) fs::create_directories(base_ / dir);
        std::ofstream(base_ / "t" / "file.txt") << "x";
        vnt::host::reset(), vnt::lfn::resetState();
        ASSERT_TRUE(Vnt_LfnVolMap('T', vnt::test::hostStr(base_ / "t").c_str()) && Vnt_LfnVolMap('U', vnt::test::hostStr(base_ / "u").c_str()));
        home();
    }
    // U remembers "U:\sub"; T is current at "T:\a".
    static void home() { ASSERT_TRUE(Vnt_LfnDirSet(R"(U:\sub)") && Vnt_LfnDirSet(R"(T:\a)")); }
    void TearDown() override { fs::current_path(cwd_), vnt::host::reset(), fs::remove_all(base_); }
    fs::path cwd_ = fs::current_path(), base_;
};

TEST_F(LfnDir, VolFindAndDirSet) {
    EXPECT_TRUE(Vnt_LfnVolFind(R"(T:\x\y)") && Vnt_LfnVolFind("t:") && Vnt_LfnVolFind(R"(Z:\)"));
    for (const char* no : {R"(Q:\x)", "T", R"(1:\x)", "", R"(\\srv\share)", "x", (const char*)nullptr})
        EXPECT_FALSE(Vnt_LfnVolFind(no)) << show(no);
    struct Row { const char *in, *expected; };
    const Row rows[] = {
        {R"(T:\Data)", R"(T:\Data)"}, {R"(t:\Data)", R"(T:\Data)"}, {"b", R"(T:\a\b)"},
        {"..", R"(T:\)"},             {R"(\Data)", R"(T:\Data)"},   {R"(T:\a\b\..\..\Data\.)", R"(T:\Data)"},
        {"U:", R"(U:\sub)"},          {"U:..", R"(U:\)"},           {"T:b", R"(T:\a\b)"},
    };
    for (const Row& r : rows) {
        home();
        EXPECT_EQ(cur(Vnt_LfnDirSet(r.in)), r.expected) << r.in;
    }
    home();
    const std::string overlong = R"(T:\)" + std::string(300, 'a');
    for (const char* bad : {"nothere", R"(T:\file.txt)", "", R"(Q:\x)", "Q:", R"(1:\x)", R"(T:\..)",
                            R"(..\..)", R"(\\srv\share)", overlong.c_str(), (const char*)nullptr})
        EXPECT_EQ(cur(Vnt_LfnDirSet(bad)), R"(refused at T:\a)") << show(bad);
    ASSERT_TRUE(Vnt_LfnVolUnmap('U'));
    EXPECT_FALSE(Vnt_LfnVolFind("U:") || Vnt_LfnDirSet("U:"));
}

TEST_F(LfnDir, SaveAndRestoreUseOneSlot) {
    char buf[VNT_MAX_PATH] = "", name[VNT_MAX_PATH] = "x";
    EXPECT_EQ(cur(Vnt_LfnDirRestore()), R"(refused at T:\a)");  // nothing saved yet
    ASSERT_TRUE(Vnt_LfnDirSave(buf) && Vnt_LfnDirSave() && std::string(buf) == R"(T:\a)");
    // Kept for compatibility: completion saves into the same slot, so the
    // caller's "T:\a" is lost.
    ASSERT_TRUE(Vnt_LfnDirSet(R"(T:\Data)") && Vnt_LfnNameComplete(name) && std::string(name) == R"(T:\Data\x)");
    ASSERT_TRUE(Vnt_LfnDirSet(R"(U:\)"));
    EXPECT_EQ(cur(Vnt_LfnDirRestore()), R"(T:\Data)");
    EXPECT_EQ(cur(Vnt_LfnDirRestore(buf)), R"(T:\a)");
    EXPECT_EQ(cur(Vnt_LfnDirRestore("")), R"(T:\Data)");  // "" reads the slot again

    // In a directory of 260 characters nothing can be saved.
    const std::string part(200, 'k'), last(56, 'l');
    fs::create_directories(base_ / "t" / part / last);
    ASSERT_TRUE(vnt::host::setCurDir(R"(T:\)" + part + "\\" + last));
    EXPECT_FALSE(Vnt_LfnDirSave(buf) || Vnt_LfnDirSave() || Vnt_LfnNameComplete(name));
    EXPECT_EQ(std::string(buf) + " " + name, R"(T:\a T:\Data\x)");
    EXPECT_EQ(cur(Vnt_LfnDirRestore()), R"(T:\Data)");  // the slot kept it
}

TEST_F(LfnDir, Complete) {
    struct Row { std::string in; bool ok; std::string expected; };
    const Row rows[] = {
        {"x", true, R"(T:\a\x)"},          {R"(x\y\)", true, R"(T:\a\x\y)"}, {R"(\x)", true, R"(T:\x)"},
        {"T:", true, R"(T:\a)"},           {"U:", true, R"(U:\sub)"},        {"u:y", true, R"(U:\sub\y)"},
        {"T:rel", true, R"(T:\a\rel)"},    {R"(..\Data\f)", true, R"(T:\Data\f)"}, {"", true, R"(T:\a)"},
        {R"(T:\a\..\b)", true, R"(T:\b)"}, {R"(U:\no\such)", true, R"(U:\no\such)"},
        {"Q:x", false, "Q:x"},             {R"(1:\x)", false, R"(1:\x)"},
        {R"(\\srv\share\..\x)", true, R"(\\srv\share\..\x)"},  // UNC names stand as they are
        {std::string(259, 'n'), true, R"(T:\a\)" + std::string(254, 'n')},  // cut by the join
    };
    for (const Row& r : rows) {
        char buf[VNT_MAX_PATH];
        vnt::copyBounded(buf, r.in);
        EXPECT_EQ(Vnt_LfnNameComplete(buf), r.ok) << r.in;
        EXPECT_EQ(std::string(buf), r.expected);
        // The current directory and every volume's memory are as before.
        EXPECT_EQ(cur() + " " + vnt::host::volCurDir('U'), R"(T:\a U:\sub)") << r.in;
    }
    fs::remove_all(base_ / "u" / "sub");  // U's remembered directory is gone
    char bare[VNT_MAX_PATH] = "U:", rel[VNT_MAX_PATH] = "U:y";
    EXPECT_FALSE(Vnt_LfnNameComplete(bare) || Vnt_LfnNameComplete(rel));
    EXPECT_EQ(std::string(bare) + " " + rel + " " + cur(), R"(U: U:y T:\a)");
}

TEST_F(LfnDir, MakeAbs) {
    struct Row { const char *in, *base; bool ok; const char* expected; };
    const Row rows[] = {
        {"x", nullptr, true, R"(T:\a\x)"}, {"Q:x", nullptr, false, "Q:x"}, {nullptr, nullptr, false, ""},
        {R"(c:\DATA\x)", R"(C:\data)", true, R"(C:\data\x)"},
        {"C:\\D\xC4TEN\\x", "C:\\d\xE4ten", true, "C:\\d\xE4ten\\x"},  // case of Windows-1252
        {R"(..\y)", R"(C:\d\e)", true, R"(C:\d\y)"}, {R"(..\..\y)", R"(C:\d)", false, nullptr},
        // Kept for compatibility: a rooted name sharing nothing goes under the
        // base, and the shared part is matched by characters, not components.
        {R"(\x)", R"(C:\d)", true, R"(C:\d\x)"}, {R"(C:\datax\f)", R"(C:\data)", true, R"(C:\data\x\f)"},
        {R"(\y\x)", R"(\y)", true, R"(\y\x)"},  // a rooted name shares a rooted base's prefix
        {R"(D:\x)", R"(C:\d)", true, R"(C:\d\x)"}, {nullptr, R"(C:\d\)", true, R"(C:\d)"},
    };
    for (const Row& r : rows) {
        char dst[VNT_MAX_PATH] = "old";
        EXPECT_EQ(Vnt_LfnNameMakeAbs(dst, r.in, r.base), r.ok) << show(r.in);
        EXPECT_STREQ(r.expected ? dst : nullptr, r.expected) << show(r.in);
    }
    char dst[VNT_MAX_PATH] = R"(..\y)";  // name and base may lie in the target
    EXPECT_TRUE(Vnt_LfnNameMakeAbs(dst, dst, R"(C:\d\e)") && std::string(dst) == R"(C:\d\y)") << dst;
    EXPECT_TRUE(Vnt_LfnNameMakeAbs(dst, "x", dst) && std::string(dst) == R"(C:\d\y\x)") << dst;
    EXPECT_TRUE(!Vnt_LfnNameMakeAbs(dst, "x", (R"(C:\)" + std::string(258, 'b')).c_str()) && !*dst) << dst;
}

}  // namespace
