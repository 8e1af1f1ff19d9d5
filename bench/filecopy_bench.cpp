// The file copier beside "cp --preserve=timestamps" on the same data in the
// same run: one 1 GiB file, and a tree of 10,000 small files in 100
// directories. Both read from the page cache (the sources are written once
// before the runs), so the figures compare the copying itself.
//
// The data lies in one temporary directory that is made only for the
// benchmarks selected, and removed when the program ends, also when it is
// interrupted or a copy fails: at most the 1 GiB source and one copy of it
// are on disk at a time.
#include <benchmark/benchmark.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include "vanto/filecopy.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/progress.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t kLarge = 1ull << 30;
constexpr int kDirs = 100, kFilesPerDir = 100;

// The directory of this run; removed by the handlers below.
fs::path gDir;

void removeData() {
    std::error_code ec;
    if (!gDir.empty()) fs::remove_all(gDir, ec);
}

extern "C" void onSignal(int sig) {
    removeData();
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}

struct Data {
    fs::path dir;
    bool largeMade = false, treeMade = false;
    std::uint64_t treeBytes = 0;
    std::vector<char> block = std::vector<char>(1 << 20);
    VntConsoleProgressView quiet;  // draws nowhere
    VNT_MSG sys = nullptr;

    Data() {
        dir = fs::temp_directory_path() / ("vanto_copy_bench_" + std::to_string(std::random_device{}()));
        gDir = dir;
        std::atexit(removeData);
        for (int sig : {SIGINT, SIGTERM, SIGHUP, SIGABRT}) std::signal(sig, onSignal);
        fs::create_directories(dir);
        std::mt19937 rng(7);
        for (char& c : block) c = static_cast<char>(rng());
        quiet.sink = [](const std::string&) {};
        Vnt_UiSetProgress(&quiet);
        Vnt_LfnVolMap('B', dir.c_str());
        // The copier's progress lines are texts of the system library.
        VNT_PATH lib;
        if (!Vnt_LfnFromHost(lib, VANTO_SYSLIB_EN) || !Vnt_MsgItfInit(nullptr, 0, lib)) std::abort();
        sys = Vnt_MsgHInit();
    }
    ~Data() {
        Vnt_MsgHTerm(&sys);
        Vnt_MsgItfTerm();
        Vnt_UiSetProgress(nullptr);
        removeData();
    }
    void large() {
        if (largeMade) return;
        std::ofstream out(dir / "large.bin", std::ios::binary);
        for (std::uint64_t n = 0; n < kLarge; n += block.size()) out.write(block.data(), std::streamsize(block.size()));
        largeMade = true;
    }
    void tree() {
        if (treeMade) return;
        std::mt19937 rng(11);
        for (int d = 0; d < kDirs; ++d) {
            const fs::path sub = dir / "tree" / ("dir" + std::to_string(d));
            fs::create_directories(sub);
            for (int f = 0; f < kFilesPerDir; ++f) {
                const std::size_t len = 512 + (rng() % 4096);
                std::ofstream(sub / ("file" + std::to_string(f) + ".dat"), std::ios::binary)
                    .write(block.data() + f, std::streamsize(len));
                treeBytes += len;
            }
        }
        treeMade = true;
    }
};

Data& data() {
    static Data d;
    return d;
}

bool run(const std::string& command) { return std::system(command.c_str()) == 0; }

std::string quoted(const fs::path& p) { return "'" + p.string() + "'"; }

void BM_CopyLargeFile_Vanto(benchmark::State& state) {
    Data& d = data();
    d.large();
    for (auto _ : state) {
        VntFileCopy fc;
        const bool ok = fc.Copy(R"(B:\large.bin)", R"(B:\large.copy)") == kLarge;
        state.PauseTiming();
        fs::remove(d.dir / "large.copy");
        state.ResumeTiming();
        if (!ok) {
            state.SkipWithError("copy failed");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLarge));
}

void BM_CopyLargeFile_Cp(benchmark::State& state) {
    Data& d = data();
    d.large();
    const std::string cmd = "cp --preserve=timestamps " + quoted(d.dir / "large.bin") + " " + quoted(d.dir / "large.copy");
    for (auto _ : state) {
        const bool ok = run(cmd);
        state.PauseTiming();
        fs::remove(d.dir / "large.copy");
        state.ResumeTiming();
        if (!ok) {
            state.SkipWithError("cp failed");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLarge));
}

void BM_CopyTree_Vanto(benchmark::State& state) {
    Data& d = data();
    d.tree();
    for (auto _ : state) {
        VntFileCopy fc;
        fc.SetFolders(nullptr, R"(B:\copy)");
        const bool ok = fc.TreeCopy(R"(B:\tree)");
        state.PauseTiming();
        fs::remove_all(d.dir / "copy");
        state.ResumeTiming();
        if (!ok) {
            state.SkipWithError("tree copy failed");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * kDirs * kFilesPerDir);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.treeBytes));
}

void BM_CopyTree_Cp(benchmark::State& state) {
    Data& d = data();
    d.tree();
    const std::string cmd = "cp -r --preserve=timestamps " + quoted(d.dir / "tree") + " " + quoted(d.dir / "copy");
    for (auto _ : state) {
        const bool ok = run(cmd);
        state.PauseTiming();
        fs::remove_all(d.dir / "copy");
        state.ResumeTiming();
        if (!ok) {
            state.SkipWithError("cp failed");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * kDirs * kFilesPerDir);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.treeBytes));
}

}  // namespace

BENCHMARK(BM_CopyLargeFile_Vanto)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK(BM_CopyLargeFile_Cp)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK(BM_CopyTree_Vanto)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK(BM_CopyTree_Cp)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
