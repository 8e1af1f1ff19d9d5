// Writers killed at random moments: a process writing profile values,
// section rewrites and whole sections, and a process copying a file, are
// killed with SIGKILL again and again. After every kill the file on disk is
// one complete version with every entry, the copy's target is the old or the
// complete new file, and the temporary files left behind do not pile up.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support.h"
#include "vanto/filecopy.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/stat.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/progress.h"

namespace fs = std::filesystem;

namespace {

constexpr int kKeep = 120;   // entries of the section no writer changes
constexpr int kRw = 40;      // lines of the section rewritten as a whole
constexpr int kIniKills = 200, kCopyKills = 100;

std::string slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "(missing)";
}

std::string lib(const fs::path& p) {
    VNT_PATH b{};
    return Vnt_LfnFromHost(b, p.c_str()) ? b : "(not mappable)";
}

std::string keepText() {
    std::string t;
    for (int i = 0; i < kKeep; ++i) t += "keep" + std::to_string(i) + "=value " + std::to_string(i * 7) + "\n";
    return t;
}

// The sections of a file as its lines, CR LF ends taken off.
std::map<std::string, std::vector<std::string>> sections(const std::string& text) {
    std::map<std::string, std::vector<std::string>> out;
    std::vector<std::string>* cur = nullptr;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        std::string line = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        start = end == std::string::npos ? text.size() : end + 1;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty()) continue;
        if (line.front() == '[') cur = &out[line.substr(1, line.size() - 2)];
        else if (cur) cur->push_back(line);
    }
    return out;
}

// Why the file is not one complete version; empty when it is.
std::string iniFault(const std::string& text) {
    if (text == "(missing)") return "the file is missing";
    auto s = sections(text);
    const auto keep = sections("[Keep]\n" + keepText())["Keep"];
    if (s["Keep"] != keep) return "section Keep lost entries";
    if (s["Counter"].size() != 1 || s["Counter"][0].rfind("n=", 0) != 0) return "the counter is lost";
    const auto& rw = s["Rw"];
    if (rw.size() != kRw) return "section Rw has " + std::to_string(rw.size()) + " lines";
    const std::string n = rw[0].substr(rw[0].find('=') + 1);
    for (int i = 0; i < kRw; ++i)
        if (rw[i] != "r" + std::to_string(i) + "=" + n) return "section Rw mixes versions";
    return "";
}

// The writer: profile values, section rewrites and whole files of sections,
// in turn, until it is killed.
[[noreturn]] void iniWriter(const std::string& file) {
    const std::string keep = keepText();
    for (unsigned long n = 1;; ++n) {
        const std::string num = std::to_string(n);
        if (n % 3 == 0) {
            Vnt_ProfileWriteString("Counter", "n", num.c_str(), file.c_str());
        } else if (n % 3 == 1) {
            VntIni ini(file.c_str(), nullptr);
            if (ini.SectionWriteBegin("Rw")) {
                for (int i = 0; i < kRw; ++i) {
                    std::snprintf(ini.Line(), 1024, "r%d=%lu", i, n);
                    ini.WriteBuf();
                }
                ini.SectionWriteEnd(true);
            }
        } else {
            std::string rw;
            for (int i = 0; i < kRw; ++i) rw += "r" + std::to_string(i) + "=" + num + "\n";
            VntIniX ini(file.c_str(), nullptr);
            if (ini.OpenWrite()) {
                ini.WriteSection(keep.c_str(), "Keep");
                ini.WriteSection(rw.c_str(), "Rw");
                ini.WriteSection(("n=" + num).c_str(), "Counter");
                ini.Close(true);
            }
        }
    }
}

class CrashSafety : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        dir_ = fs::temp_directory_path() / ("vanto_crash_" + std::to_string(::getpid()));
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    void TearDown() override {
        vnt::test::resetAll();
        fs::remove_all(dir_);
    }
    // Starts `child` in a process of its own and kills it after a random time
    // of up to `maxUs` microseconds.
    template <class F>
    void runAndKill(F child, int maxUs) {
        const pid_t pid = ::fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) child();
        std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution<int>(0, maxUs)(rng_)));
        ::kill(pid, SIGKILL);
        int status = 0;
        ::waitpid(pid, &status, 0);
    }
    // Files in `dir` other than `keep`.
    std::vector<std::string> others(const fs::path& dir, const std::string& keep) const {
        std::vector<std::string> out;
        for (const auto& e : fs::directory_iterator(dir))
            if (e.path().filename() != keep) out.push_back(e.path().filename().string());
        return out;
    }

    fs::path dir_;
    std::mt19937 rng_{std::random_device{}()};
};

TEST_F(CrashSafety, IniWritersKilledAtRandom) {
    const fs::path host = dir_ / "Test.ini";
    std::ofstream(host, std::ios::binary) << "[Keep]\r\n" << keepText() << "[Rw]\r\n" << [] {
        std::string rw;
        for (int i = 0; i < kRw; ++i) rw += "r" + std::to_string(i) + "=0\r\n";
        return rw;
    }() << "[Counter]\r\nn=0\r\n";
    ASSERT_EQ(iniFault(slurp(host)), "");
    const std::string file = lib(host);
    std::size_t mostLeft = 0;
    for (int k = 0; k < kIniKills; ++k) {
        runAndKill([&] { iniWriter(file); }, 6000);
        const std::string fault = iniFault(slurp(host));
        ASSERT_EQ(fault, "") << "after kill " << k + 1;
        const auto left = others(dir_, "Test.ini");
        mostLeft = std::max(mostLeft, left.size());
        ASSERT_LE(left.size(), 2u) << "after kill " << k + 1 << ": " << left.front() << " ...";
    }
    // A writer that ends cleanly removes what the killed ones left.
    Vnt_ProfileFlush(nullptr);
    ASSERT_TRUE(Vnt_ProfileWriteString("Counter", "n", "end", file.c_str()));
    VntIni ini(file.c_str(), nullptr);
    ASSERT_TRUE(ini.SectionWriteBegin("Rw"));
    for (int i = 0; i < kRw; ++i) {
        std::snprintf(ini.Line(), 1024, "r%d=end", i);
        ini.WriteBuf();
    }
    ini.SectionWriteEnd(true);
    EXPECT_EQ(iniFault(slurp(host)), "");
    EXPECT_EQ(others(dir_, "Test.ini"), std::vector<std::string>{});
    std::printf("%d kills; at most %zu temporary files at once\n", kIniKills, mostLeft);
}

TEST_F(CrashSafety, FileCopyKilledAtRandom) {
    fs::create_directories(dir_ / "src"), fs::create_directories(dir_ / "dst");
    std::string fresh(1 << 20, '\0'), old(300000, 'o');
    for (std::size_t i = 0; i < fresh.size(); ++i) fresh[i] = static_cast<char>('a' + (i * 7 + i / 991) % 26);
    std::ofstream(dir_ / "src/a", std::ios::binary) << fresh;
    std::ofstream(dir_ / "dst/a", std::ios::binary) << old;
    ASSERT_TRUE(Vnt_LfnVolMap('T', dir_.c_str()));
    VNT_PATH sys;
    ASSERT_TRUE(Vnt_LfnFromHost(sys, VANTO_SYSLIB_EN) && Vnt_MsgItfInit(nullptr, 0, sys));
    VntScriptedPresenter box;
    VntScriptedProgressView view;
    Vnt_UiSetPresenter(&box), Vnt_UiSetProgress(&view);
    int copied = 0, untouched = 0;
    for (int k = 0; k < kCopyKills; ++k) {
        runAndKill([] {
            VntFileCopy fc;
            for (;;) fc.Copy(R"(T:\src\a)", R"(T:\dst\a)");
        }, 30000);
        const std::string target = slurp(dir_ / "dst/a");
        ASSERT_TRUE(target == old || target == fresh)
            << "after kill " << k + 1 << ": a partial target of " << target.size() << " bytes";
        (target == fresh ? copied : untouched)++;
        ASSERT_LE(others(dir_ / "dst", "a").size(), 1u) << "after kill " << k + 1;
    }
    // The next copy, not killed, finds no newer partial target to skip.
    VntFileCopy fc;
    fc.SetOverwrite(2);
    EXPECT_EQ(fc.Copy(R"(T:\src\a)", R"(T:\dst\a)"), fresh.size());
    EXPECT_EQ(fc.Error(), VNT_FC_OK);
    EXPECT_TRUE(slurp(dir_ / "dst/a") == fresh);
    EXPECT_EQ(others(dir_ / "dst", "a"), std::vector<std::string>{});
    Vnt_UiSetPresenter(nullptr), Vnt_UiSetProgress(nullptr);
    Vnt_MsgItfTerm();
    std::printf("%d kills: %d left the old target, %d the new one\n", kCopyKills, untouched, copied);
}

}  // namespace
