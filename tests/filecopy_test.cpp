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

#include "host/fault.h"
#include "support.h"
#include "vanto/filecopy.h"
#include "vanto/lfn.h"
#include "vanto/stat.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/progress.h"
#include "scratch.h"

namespace fs = std::filesystem;
using vnt::host::Op;
using Strings = std::vector<std::string>;

namespace {

// Removed while the first question of a copy is up.
fs::path gSourceToRemove;

class FileCopy : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        base_ = vnt::test::scratchDir("vanto_fcopy_");
        fs::remove_all(base_);
        fs::create_directories(base_ / "src"), fs::create_directories(base_ / "dst");
        ASSERT_TRUE(Vnt_LfnVolMap('T', vnt::test::hostStr(base_).c_str()));
        VNT_PATH sys;
        ASSERT_TRUE(Vnt_LfnFromHost(sys, VANTO_SYSLIB_EN) && Vnt_MsgItfInit(nullptr, 0, sys));
        sys_ = Vnt_MsgHInit();  // held open, so that the faults below meet the copy, not the library
        Vnt_UiSetPresenter(&box_), Vnt_UiSetProgress(&view_);
    }
    void TearDown() override {
        Vnt_MsgHTerm(&sys_), Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(nullptr), Vnt_UiSetProgress(nullptr);
        vnt::test::resetAll(), fs::remove_all(base_);
    }
    void put(const std::string& rel, const std::string& data) { vnt::test::putFile(base_ / rel, data); }
    std::string get(const std::string& rel) const { return vnt::test::fileText(base_ / rel); }
    bool exists(const std::string& rel) const { return fs::exists(base_ / rel); }
    void age(const std::string& rel, int hours) {
        fs::last_write_time(base_ / rel, fs::last_write_time(base_ / rel) - std::chrono::hours(hours));
    }
    bool sameTime(const std::string& a, const std::string& b) const {
        return fs::last_write_time(base_ / a) == fs::last_write_time(base_ / b);
    }
    // The copy's one question names `named` and says it could not be copied.
    void expectOneQuestion(const std::string& named, const char* trace) {
        ASSERT_EQ(box_.shown.size(), 1u) << trace;
        EXPECT_NE(box_.shown[0].text.find("could not be copied"), std::string::npos) << trace;
        EXPECT_NE(box_.shown[0].text.find(named), std::string::npos) << trace << ": " << box_.shown[0].text;
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
    put("src/a.dat", data), age("src/a.dat", 50);
    fs::permissions(base_ / "src/a.dat", fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    VntFileCopy fc;
    EXPECT_TRUE(fc.Copy(R"(T:\src\a.dat)", R"(T:\dst\new\a.dat)") == data.size() && fc.Error() == 0);
    EXPECT_TRUE(get("dst/new/a.dat") == data) << "the target's directory chain is created";
    EXPECT_TRUE(sameTime("src/a.dat", "dst/new/a.dat"));
    EXPECT_NE(fs::status(base_ / "dst/new/a.dat").permissions() & fs::perms::owner_write, fs::perms::none)
        << "the copy gets normal attributes";
    EXPECT_TRUE(!view_.Of(VntScriptedProgressView::Kind::Open).empty() && !view_.open) << "a dialog of its own, closed after";
    put("src/empty", "");
    EXPECT_TRUE(fc.Copy(R"(T:\src\empty)", R"(T:\dst\empty)") == 0u && fc.Error() == 0 && get("dst/empty").empty());
    EXPECT_EQ(fc.Copy(R"(T:\src\none)", R"(T:\dst\none)"), 0u);
    EXPECT_FALSE(fc.IsError() || fc.IsCancel() || exists("dst/none"));
    EXPECT_TRUE(box_.shown.empty());
}

TEST_F(FileCopy, OverwriteModes) {
    struct Row { int mode; int targetAgeHours; bool copied; };
    for (const Row& r : {Row{0, -10, true}, Row{1, 10, false}, Row{2, -10, false}, Row{2, 10, true}}) {
        SCOPED_TRACE("mode " + std::to_string(r.mode) + ", target older by " + std::to_string(r.targetAgeHours));
        put("src/f", "new!"), put("dst/f", "old");
        age("src/f", 20), age("dst/f", 20 + r.targetAgeHours);  // negative: the target is newer
        VntFileCopy fc;
        fc.SetOverwrite(r.mode);
        EXPECT_EQ(fc.Copy(R"(T:\src\f)", R"(T:\dst\f)"), 4u);
        EXPECT_EQ(std::pair(get("dst/f"), fc.Error()), std::pair(std::string(r.copied ? "new!" : "old"), r.copied ? 0 : VNT_FC_SKIPPED));
        EXPECT_EQ(view_.lines[0] + "|" + view_.lines[1],
                  r.copied ? R"(Copying T:\src\f|to T:\dst\f)" : R"(Skipping T:\dst\f|)");
        EXPECT_FALSE(fc.IsError() || fc.IsCancel());
    }
}

TEST_F(FileCopy, FailuresAskAndLeaveTheOldTarget) {
    const std::string data = big(50000), old = "an older target";
    struct Row {
        const char* name;
        Op op;          // Op::Count: the disk is full after `skip` bytes
        const char* on;  // the file the fault hits
        int skip, answer, code;
        std::size_t result;
        const char* named;   // the file the question names
        std::string target;  // what is left of the target
    };
    // Reads and writes go in chunks of 16 384 bytes: skipping one fails mid-copy.
    const char *src = R"(T:\src\a)", *dst = R"(T:\dst\a)";
    const Row rows[] = {
        {"read error, cancelled", Op::Read, src, 1, VNT_BTN_CANCEL, VNT_FC_READ, 0, "dst", old},
        {"write error, cancelled", Op::Write, dst, 2, VNT_BTN_CANCEL, VNT_FC_WRITE, 0, "dst", old},
        {"write error, answered no", Op::Write, dst, 1, VNT_BTN_NO, VNT_FC_WRITE, 0, "dst", old},
        {"disk full mid-copy", Op::Count, dst, 20000, VNT_BTN_CANCEL, VNT_FC_WRITE, 0, "dst", old},
        {"complete copy cannot take the name", Op::Rename, dst, 0, VNT_BTN_CANCEL, VNT_FC_WRITE, 0, "dst", old},
        {"complete copy takes the name on retry", Op::Rename, dst, 0, VNT_BTN_RETRY, VNT_FC_OK, data.size(), "dst", data},
        {"read error, retried", Op::Read, src, 1, VNT_BTN_RETRY, VNT_FC_OK, data.size(), "dst", data},
        {"source cannot be opened", Op::Open, src, 0, VNT_BTN_CANCEL, VNT_FC_SOURCE, 0, "src", old},
        {"target cannot be opened", Op::Open, dst, 0, VNT_BTN_CANCEL, VNT_FC_TARGET, 0, "dst", old},
    };
    for (const Row& r : rows) {
        put("src/a", data), put("dst/a", old);
        box_.shown.clear(), box_.answers.push_back({r.answer, false});
        if (r.op == Op::Count) vnt::host::faultShortWrite(r.on, r.skip);
        else vnt::host::faultOn(r.op, r.on, r.skip);
        VntFileCopy fc;
        EXPECT_EQ(fc.Copy(R"(T:\src\a)", R"(T:\dst\a)"), r.result) << r.name;
        vnt::host::faultReset();
        EXPECT_EQ(fc.Error(), r.code) << r.name;
        expectOneQuestion(std::string(r.named) + "\\a", r.name);
        EXPECT_TRUE(get("dst/a") == r.target) << r.name << ": the old target stays until a copy is complete";
        EXPECT_EQ(std::distance(fs::directory_iterator(base_ / "dst"), {}), 1) << r.name << ": no temporary file stays";
    }

    // A file copied onto itself under another spelling is refused, never
    // truncated.
    box_.shown.clear(), box_.answers.push_back({VNT_BTN_CANCEL, false});
    VntFileCopy fc;
    EXPECT_TRUE(fc.Copy(R"(T:\src\a)", R"(t:\SRC\A)") == 0u && fc.Error() == VNT_FC_TARGET);
    EXPECT_TRUE(box_.shown.size() == 1u && get("src/a") == data);
    // A dialog that cannot be opened stops the copy before its first chunk.
    view_.failOpen = true;
    EXPECT_TRUE(fc.Copy(R"(T:\src\a)", R"(T:\dst\b)") == 0u && fc.Error() == VNT_FC_NODIALOG && !exists("dst/b"));
}

// The source vanishes while the first question is up: the retry finds no
// source, says so and ends without waiting for an answer that could retry.
TEST_F(FileCopy, SourceGoneBeforeTheRetry) {
    put("src/a", big(50000));
    gSourceToRemove = base_ / "src/a";
    box_.during = [](const VntBoxModel&) { fs::remove(gSourceToRemove); };
    box_.answers = {{VNT_BTN_RETRY, false}, {VNT_BTN_RETRY, false}};
    vnt::host::faultOn(Op::Read, R"(T:\src\a)", 1);
    VntFileCopy fc;
    EXPECT_TRUE(fc.Copy(R"(T:\src\a)", R"(T:\dst\a)") == 0u && fc.Error() == VNT_FC_SOURCE);
    ASSERT_EQ(box_.shown.size(), 2u);
    EXPECT_NE(box_.shown[0].text.find("could not be copied"), std::string::npos) << box_.shown[0].text;
    EXPECT_NE(box_.shown[1].text.find("\"T:\\src\\a\" was not found"), std::string::npos) << box_.shown[1].text;
    EXPECT_FALSE(exists("dst/a"));
}

// A cancel confirmed in the progress view ends a copy or a tree walk (a scan
// between its files) without a question and without a partial target.
TEST_F(FileCopy, CancelStopsWithoutAQuestion) {
    put("src/a", big(100000)), put("src/b", "b");
    for (const std::string walk : {"copy", "tree copy", "tree scan"}) {
        SCOPED_TRACE(walk);
        view_.records.clear();
        view_.cancelAtUpdate = walk == "tree scan" ? 1 : 2;
        view_.answers = {VntScriptedProgressView::Answer::Yes};
        VntFileCopy fc;
        if (walk == "copy") {
            EXPECT_TRUE(fc.Copy(R"(T:\src\a)", R"(T:\dst\a)") == 0u && fc.IsCancel());
        } else {
            fc.SetFolders(nullptr, R"(T:\dst)");
            EXPECT_FALSE(walk == "tree scan" ? fc.TreeScan(R"(T:\src)") : fc.TreeCopy(R"(T:\src)"));
        }
        EXPECT_TRUE(fc.Error() == VNT_FC_CANCEL && box_.shown.empty() && !exists("dst/a") && !exists("dst/b"));
    }
}

TEST_F(FileCopy, PatternCopyAndBorrowedDialog) {
    for (const char* f : {"b.txt", "a.txt", "c.dat", "D.TXT"}) put(std::string("src/") + f, f);
    VntStat stat;
    VntFileCopy fc(&stat, 0);
    Strings seen;
    char found[VNT_MAX_PATH];
    for (bool ok = fc.CopyFirst(R"(T:\src)", R"(T:\dst)", "*.txt", found); ok; ok = fc.CopyNext(found))
        seen.push_back(found);
    EXPECT_EQ(seen, (Strings{R"(T:\src\a.txt)", R"(T:\src\b.txt)", R"(T:\src\D.TXT)"}));
    EXPECT_TRUE(get("dst/D.TXT") == "D.TXT" && !exists("dst/c.dat"));
    fc.Close();
    EXPECT_TRUE(stat.IsOpen()) << "a borrowed dialog stays the caller's";

    // A dialog given later ends the pattern copy and replaces the dialog
    // it made.
    VntFileCopy own;
    ASSERT_TRUE(own.CopyFirst(R"(T:\src)", R"(T:\dst)", "*.txt", found));
    VntStat later;
    own.Setup(&later, 0);
    EXPECT_FALSE(own.CopyNext(found));
    EXPECT_TRUE(own.Copy("b.txt") == 5u && later.IsOpen());
    VntFileCopy none;
    EXPECT_TRUE(!none.CopyNext(found) && !box_.shown.empty()) << "no folders: an internal error";
}

// Walks record what the hooks saw.
struct Recorder : VntFileCopy {
    Strings calls;
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
    const std::map<std::string, std::string> files = {
        {"src/top.txt", "top"}, {"src/a/empty", ""}, {"src/a/b/deep.txt", "deep"},
        {"src/Gr\xC3\xBC\xC3\x9F" "e/\xC3\xA4.txt", "umlauts"}, {"src/z/large.bin", big(50 * 1048576 + 123)},
    };
    double bytes = 0;
    for (const auto& [rel, data] : files) put(rel, data), bytes += static_cast<double>(data.size());
    fs::create_directories(base_ / "src/emptydir");

    Recorder fc;
    ASSERT_TRUE(fc.SetFolders(nullptr, R"(T:\dst)"));
    ASSERT_TRUE(fc.TreeScan(R"(T:\src)"));
    EXPECT_FALSE(exists("dst/top.txt")) << "a scan copies nothing";
    EXPECT_TRUE(fc.TotalBytes() == bytes && fc.TotalMiB() == 50u && fc.TotalMiB() * 1048576.0 + fc.TotalRest() == bytes);
    EXPECT_EQ(Strings(fc.calls.begin(), fc.calls.begin() + 3),
              (Strings{"scandir T:\\src\\a", "scandir T:\\src\\a\\b", "scan T:\\src\\a\\b\\deep.txt"}))
        << "subdirectories depth first, before the files of a directory";
    EXPECT_EQ(fc.calls.back(), "scan T:\\src\\top.txt");
    EXPECT_EQ(view_.lines[0].rfind("Checking T:\\src\\top.txt", 0), 0u) << view_.lines[0];

    // The copy shows the whole run's bytes against the total of the scan.
    fc.calls.clear(), view_.records.clear();
    fc.SetCountForAll(-1);
    ASSERT_TRUE(fc.TreeCopy(R"(T:\src)"));
    EXPECT_EQ(view_.lines[0].rfind("Copying T:\\src\\top.txt", 0), 0u) << view_.lines[0];
    EXPECT_EQ(view_.Of(VntScriptedProgressView::Kind::Bar).front().text + " " + view_.barText, "0% 100%");
    for (const auto& [rel, data] : files)
        EXPECT_TRUE(get("dst" + rel.substr(3)) == data && sameTime(rel, "dst" + rel.substr(3))) << rel;
    EXPECT_TRUE(fs::is_directory(base_ / "dst/emptydir"));
    EXPECT_TRUE(fc.TreeCompare(R"(T:\src)") && fc.Differences() == 0u);
    put("dst/top.txt", "changed"), fs::remove(base_ / "dst/a/empty");
    EXPECT_TRUE(fc.TreeCompare(R"(T:\src)") && fc.Differences() == 2u);

    // A hook stops the walk; a skipped file is not copied.
    fs::remove_all(base_ / "dst"), fc.calls.clear();
    fc.skipFile = R"(T:\src\a\empty)", fc.stopAt = R"(T:\src\top.txt)";
    EXPECT_FALSE(fc.TreeCopy(R"(T:\src)"));
    EXPECT_FALSE(exists("dst/a/empty") || exists("dst/top.txt"));
    EXPECT_TRUE(exists("dst/a/b/deep.txt"));
}

}  // namespace
