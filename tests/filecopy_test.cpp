// The file copier on real temporary trees: single copies with their
// overwrite modes, times and attributes, failures in the middle of a copy
// with the retry question, cancelling through the progress view, the pattern
// copy and the tree walk.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "host/host.h"
#include "support.h"
#include "vanto/filecopy.h"
#include "vanto/lfn.h"
#include "vanto/stat.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/progress.h"

namespace fs = std::filesystem;

namespace {

class FileCopy : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        base_ = fs::temp_directory_path() /
                ("vanto_fcopy_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(base_);
        fs::create_directories(base_ / "src");
        fs::create_directories(base_ / "dst");
        ASSERT_TRUE(Vnt_LfnVolMap('T', base_.c_str()));
        VNT_PATH sys;
        ASSERT_TRUE(Vnt_LfnFromHost(sys, VANTO_SYSLIB_EN) && Vnt_MsgItfInit(nullptr, 0, sys));
        // Held open, so that the faults below meet the copy, not the library.
        sys_ = Vnt_MsgHInit();
        Vnt_UiSetPresenter(&box_);
        Vnt_UiSetProgress(&view_);
    }
    void TearDown() override {
        Vnt_MsgHTerm(&sys_);
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(nullptr);
        Vnt_UiSetProgress(nullptr);
        vnt::test::resetAll();
        fs::remove_all(base_);
    }
    void put(const std::string& rel, const std::string& data) {
        fs::create_directories((base_ / rel).parent_path());
        std::ofstream(base_ / rel, std::ios::binary) << data;
    }
    std::string get(const std::string& rel) const {
        std::ifstream in(base_ / rel, std::ios::binary);
        return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "(missing)";
    }
    void age(const std::string& rel, int hours) {
        fs::last_write_time(base_ / rel, fs::last_write_time(base_ / rel) - std::chrono::hours(hours));
    }
    bool sameTime(const std::string& a, const std::string& b) const {
        return fs::last_write_time(base_ / a) == fs::last_write_time(base_ / b);
    }
    // The numbers of the questions asked so far.
    std::vector<std::string> questions() const {
        std::vector<std::string> out;
        for (const auto& b : box_.shown) out.push_back(b.text);
        return out;
    }
    static std::string big(std::size_t n) {
        std::string s(n, '\0');
        for (std::size_t i = 0; i < n; ++i) s[i] = static_cast<char>('a' + (i * 7 + i / 977) % 26);
        return s;
    }

    fs::path base_;
    VNT_MSG sys_ = nullptr;
    VntScriptedPresenter box_;
    VntScriptedProgressView view_;
};

TEST_F(FileCopy, SingleCopyKeepsTimeNotAttributes) {
    const std::string data = big(40000);  // three chunks
    put("src/a.dat", data);
    age("src/a.dat", 50);
    fs::permissions(base_ / "src/a.dat", fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    VntFileCopy fc;
    EXPECT_EQ(fc.Copy(R"(T:\src\a.dat)", R"(T:\dst\new\a.dat)"), data.size());
    EXPECT_EQ(fc.Error(), 0);
    EXPECT_TRUE(get("dst/new/a.dat") == data) << "the target's directory chain is created";
    EXPECT_TRUE(sameTime("src/a.dat", "dst/new/a.dat"));
    EXPECT_NE(fs::status(base_ / "dst/new/a.dat").permissions() & fs::perms::owner_write, fs::perms::none)
        << "the copy gets normal attributes";
    EXPECT_FALSE(view_.Of(VntScriptedProgressView::Kind::Open).empty()) << "a dialog of its own was shown";
    EXPECT_FALSE(view_.open) << "and closed after the copy";

    put("src/empty", "");
    EXPECT_EQ(fc.Copy(R"(T:\src\empty)", R"(T:\dst\empty)"), 0u);
    EXPECT_EQ(fc.Error(), 0);
    EXPECT_EQ(get("dst/empty"), "");

    EXPECT_EQ(fc.Copy(R"(T:\src\none)", R"(T:\dst\none)"), 0u);
    EXPECT_FALSE(fc.IsError() || fc.IsCancel());
    EXPECT_FALSE(fs::exists(base_ / "dst/none"));
    EXPECT_TRUE(box_.shown.empty());
}

TEST_F(FileCopy, OverwriteModes) {
    struct Row { int mode; int targetAgeHours; bool copied; };
    const Row rows[] = {{0, -10, true}, {1, 10, false}, {2, -10, false}, {2, 10, true}};
    for (const Row& r : rows) {
        put("src/f", "new!");
        put("dst/f", "old");
        age("src/f", 20);
        age("dst/f", 20 + r.targetAgeHours);  // negative: the target is newer
        VntFileCopy fc;
        fc.SetOverwrite(r.mode);
        EXPECT_EQ(fc.Copy(R"(T:\src\f)", R"(T:\dst\f)"), 4u) << "mode " << r.mode;
        EXPECT_EQ(get("dst/f"), r.copied ? "new!" : "old") << "mode " << r.mode;
        EXPECT_EQ(fc.Error(), r.copied ? 0 : VNT_FC_SKIPPED) << "mode " << r.mode;
        EXPECT_EQ(view_.lines[0], r.copied ? R"(Copying T:\src\f to T:\dst\f)" : R"(Skipping T:\dst\f)");
        EXPECT_FALSE(fc.IsError() || fc.IsCancel());
    }
}

TEST_F(FileCopy, FailuresAskAndLeaveNoTarget) {
    using vnt::host::Op;
    const std::string data = big(50000);
    const std::string old = "an older target";
    struct Row {
        const char* name;
        Op op;
        int nth;
        int answer;
        int code;
        std::size_t result;
        const char* named;   // the file the question names
        std::string target;  // what is left of the target
    };
    // Opens: the source's time, the source, the target. Reads and writes:
    // one of each per chunk of 16 384 bytes, so these fail mid-copy.
    const Row rows[] = {
        {"read error, cancelled", Op::Read, 2, VNT_BTN_CANCEL, VNT_FC_READ, 0, "dst", "(missing)"},
        {"write error, cancelled", Op::Write, 3, VNT_BTN_CANCEL, VNT_FC_WRITE, 0, "dst", "(missing)"},
        {"write error, answered no", Op::Write, 2, VNT_BTN_NO, VNT_FC_WRITE, 0, "dst", "(missing)"},
        {"read error, retried", Op::Read, 2, VNT_BTN_RETRY, VNT_FC_OK, data.size(), "dst", data},
        {"source cannot be opened", Op::Open, 2, VNT_BTN_CANCEL, VNT_FC_SOURCE, 0, "src", old},
        {"target cannot be opened", Op::Open, 3, VNT_BTN_CANCEL, VNT_FC_TARGET, 0, "dst", old},
    };
    for (const Row& r : rows) {
        put("src/a", data);
        put("dst/a", old);
        box_.shown.clear();
        box_.answers.push_back({r.answer, false});
        vnt::host::faultAt(r.op, r.nth);
        VntFileCopy fc;
        EXPECT_EQ(fc.Copy(R"(T:\src\a)", R"(T:\dst\a)"), r.result) << r.name;
        vnt::host::faultReset();
        EXPECT_EQ(fc.Error(), r.code) << r.name;
        ASSERT_EQ(box_.shown.size(), 1u) << r.name;
        EXPECT_NE(box_.shown[0].text.find("could not be copied"), std::string::npos) << r.name;
        EXPECT_NE(box_.shown[0].text.find(std::string(r.named) + "\\a"), std::string::npos)
            << r.name << ": " << box_.shown[0].text;
        EXPECT_TRUE(get("dst/a") == r.target) << r.name << ": a truncated target goes, an untouched one stays";
    }

    // A file copied onto itself under another spelling is refused, never
    // truncated.
    box_.shown.clear();
    box_.answers.push_back({VNT_BTN_CANCEL, false});
    {
        VntFileCopy self;
        EXPECT_EQ(self.Copy(R"(T:\src\a)", R"(t:\SRC\A)"), 0u);
        EXPECT_EQ(self.Error(), VNT_FC_TARGET);
    }
    EXPECT_EQ(box_.shown.size(), 1u);
    EXPECT_TRUE(get("src/a") == data);

    // A dialog that cannot be opened stops the copy before its first chunk.
    view_.failOpen = true;
    VntFileCopy fc;
    EXPECT_EQ(fc.Copy(R"(T:\src\a)", R"(T:\dst\b)"), 0u);
    EXPECT_EQ(fc.Error(), VNT_FC_NODIALOG);
    EXPECT_FALSE(fs::exists(base_ / "dst/b"));
}

// The source vanishes while the first question is up: the retry finds no
// source, says so and ends without waiting for an answer that could retry.
fs::path gSourceToRemove;

TEST_F(FileCopy, SourceGoneBeforeTheRetry) {
    put("src/a", big(50000));
    gSourceToRemove = base_ / "src/a";
    box_.during = [](const VntBoxModel&) { fs::remove(gSourceToRemove); };
    box_.answers = {{VNT_BTN_RETRY, false}, {VNT_BTN_RETRY, false}};
    vnt::host::faultAt(vnt::host::Op::Read, 2);
    VntFileCopy fc;
    EXPECT_EQ(fc.Copy(R"(T:\src\a)", R"(T:\dst\a)"), 0u);
    EXPECT_EQ(fc.Error(), VNT_FC_SOURCE);
    ASSERT_EQ(questions().size(), 2u);
    EXPECT_NE(questions()[0].find("could not be copied"), std::string::npos) << questions()[0];
    EXPECT_NE(questions()[1].find("\"T:\\src\\a\" was not found"), std::string::npos) << questions()[1];
    EXPECT_FALSE(fs::exists(base_ / "dst/a"));
}

TEST_F(FileCopy, CancelStopsWithoutAQuestion) {
    put("src/a", big(100000));
    view_.cancelAtUpdate = 2;
    view_.answers.push_back(VntScriptedProgressView::Answer::Yes);
    VntFileCopy fc;
    EXPECT_EQ(fc.Copy(R"(T:\src\a)", R"(T:\dst\a)"), 0u);
    EXPECT_TRUE(fc.IsCancel());
    EXPECT_EQ(fc.Error(), VNT_FC_CANCEL);
    EXPECT_TRUE(box_.shown.empty());
    EXPECT_FALSE(fs::exists(base_ / "dst/a"));

    // In a tree walk the cancel ends the walk; a scan can be cancelled
    // between its files.
    put("src/b", "b");
    for (bool scan : {false, true}) {
        SCOPED_TRACE(scan ? "scan" : "copy");
        view_.records.clear();
        view_.cancelAtUpdate = scan ? 1 : 2;
        view_.answers = {VntScriptedProgressView::Answer::Yes};
        VntFileCopy tree;
        tree.SetFolders(nullptr, R"(T:\dst)");
        EXPECT_FALSE(scan ? tree.TreeScan(R"(T:\src)") : tree.TreeCopy(R"(T:\src)"));
        EXPECT_EQ(tree.Error(), VNT_FC_CANCEL);
        EXPECT_TRUE(box_.shown.empty());
        EXPECT_FALSE(fs::exists(base_ / "dst/a") || fs::exists(base_ / "dst/b"));
    }
}

TEST_F(FileCopy, PatternCopyAndBorrowedDialog) {
    for (const char* f : {"b.txt", "a.txt", "c.dat", "D.TXT"}) put(std::string("src/") + f, f);
    VntStat stat;
    VntFileCopy fc(&stat, 0);
    std::vector<std::string> seen;
    char found[VNT_MAX_PATH];
    for (bool ok = fc.CopyFirst(R"(T:\src)", R"(T:\dst)", "*.txt", found); ok; ok = fc.CopyNext(found))
        seen.push_back(found);
    EXPECT_EQ(seen, (std::vector<std::string>{R"(T:\src\a.txt)", R"(T:\src\b.txt)", R"(T:\src\D.TXT)"}));
    EXPECT_EQ(get("dst/D.TXT"), "D.TXT");
    EXPECT_FALSE(fs::exists(base_ / "dst/c.dat"));
    EXPECT_TRUE(stat.IsOpen()) << "a borrowed dialog stays the caller's";
    fc.Close();
    EXPECT_TRUE(stat.IsOpen());

    // A dialog given later ends the pattern copy and replaces the dialog
    // it made.
    VntFileCopy own;
    ASSERT_TRUE(own.CopyFirst(R"(T:\src)", R"(T:\dst)", "*.txt", found));
    VntStat later;
    own.Setup(&later, 0);
    EXPECT_FALSE(own.CopyNext(found));
    EXPECT_EQ(own.Copy("b.txt"), 5u);
    EXPECT_TRUE(later.IsOpen());

    VntFileCopy none;
    EXPECT_FALSE(none.CopyNext(found)) << "no folders: an internal error";
    EXPECT_FALSE(box_.shown.empty());
}

// Walks record what the hooks saw.
struct Recorder : VntFileCopy {
    std::vector<std::string> calls;
    std::string stopAt, skipFile;
    bool hook(const char* kind, char* src, bool* skip) {
        calls.push_back(std::string(kind) + " " + src);
        if (skipFile == src) *skip = true;
        return stopAt != src;
    }
    bool OnScanFile(char* s, char*, bool* k) override { return hook("scan", s, k); }
    bool OnCopyFile(char* s, char*, bool* k) override { return hook("copy", s, k); }
    bool OnScanDir(char* s, char*, bool* k) override { return hook("scandir", s, k); }
    bool OnCopyDir(char* s, char*, bool* k) override { return hook("copydir", s, k); }
};

TEST_F(FileCopy, TreeWalks) {
    const std::string large = big(50 * 1048576 + 123);
    std::map<std::string, std::string> files = {
        {"src/top.txt", "top"}, {"src/a/empty", ""}, {"src/a/b/deep.txt", "deep"},
        {"src/Gr\xC3\xBC\xC3\x9F" "e/\xC3\xA4.txt", "umlauts"}, {"src/z/large.bin", large},
    };
    for (const auto& [rel, data] : files) put(rel, data);
    fs::create_directories(base_ / "src/emptydir");

    Recorder fc;
    ASSERT_TRUE(fc.SetFolders(nullptr, R"(T:\dst)"));
    ASSERT_TRUE(fc.TreeScan(R"(T:\src)"));
    EXPECT_FALSE(fs::exists(base_ / "dst/top.txt")) << "a scan copies nothing";
    double bytes = 0;
    for (const auto& f : files) bytes += static_cast<double>(f.second.size());
    EXPECT_EQ(fc.TotalBytes(), bytes);
    EXPECT_EQ(fc.TotalMiB() * 1048576.0 + fc.TotalRest(), bytes);
    EXPECT_EQ(fc.TotalMiB(), 50u);
    const std::vector<std::string> scanOrder(fc.calls.begin(), fc.calls.begin() + 3);
    EXPECT_EQ(scanOrder, (std::vector<std::string>{"scandir T:\\src\\a", "scandir T:\\src\\a\\b",
                                                   "scan T:\\src\\a\\b\\deep.txt"}))
        << "subdirectories depth first, before the files of a directory";
    EXPECT_EQ(fc.calls.back(), "scan T:\\src\\top.txt");
    EXPECT_EQ(view_.lines[0].rfind("Checking T:\\src\\top.txt", 0), 0u) << view_.lines[0];

    // The copy shows the whole run's bytes against the total of the scan.
    fc.calls.clear();
    view_.records.clear();
    fc.SetCountForAll(-1);
    ASSERT_TRUE(fc.TreeCopy(R"(T:\src)"));
    EXPECT_EQ(view_.lines[0].rfind("Copying T:\\src\\top.txt", 0), 0u) << view_.lines[0];
    EXPECT_EQ(view_.barText, "100%");
    EXPECT_EQ(view_.Of(VntScriptedProgressView::Kind::Bar).front().text, "0%");
    for (const auto& [rel, data] : files) {
        const std::string to = "dst" + rel.substr(3);
        EXPECT_TRUE(get(to) == data) << rel;
        EXPECT_TRUE(sameTime(rel, to)) << rel;
    }
    EXPECT_TRUE(fs::is_directory(base_ / "dst/emptydir"));

    EXPECT_TRUE(fc.TreeCompare(R"(T:\src)"));
    EXPECT_EQ(fc.Differences(), 0u);
    put("dst/top.txt", "changed");
    fs::remove(base_ / "dst/a/empty");
    EXPECT_TRUE(fc.TreeCompare(R"(T:\src)"));
    EXPECT_EQ(fc.Differences(), 2u);

    // A hook stops the walk; a skipped file is not copied.
    fs::remove_all(base_ / "dst");
    fc.calls.clear();
    fc.skipFile = R"(T:\src\a\empty)";
    fc.stopAt = R"(T:\src\top.txt)";
    EXPECT_FALSE(fc.TreeCopy(R"(T:\src)"));
    EXPECT_FALSE(fs::exists(base_ / "dst/a/empty"));
    EXPECT_TRUE(fs::exists(base_ / "dst/a/b/deep.txt"));
    EXPECT_FALSE(fs::exists(base_ / "dst/top.txt"));
}

}  // namespace
