// The file copier beside "cp --preserve=timestamps" on the same data in the
// same run: one 1 GiB file, and a tree of 10,000 small files in 100
// directories. Both read from the page cache (the sources are written once
// before the runs), so the figures compare the copying itself.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "vanto/filecopy.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/progress.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t kLarge = 1ull << 30;
constexpr int kDirs = 100, kFilesPerDir = 100;

struct Data {
    fs::path dir = fs::temp_directory_path() / ("vanto_copy_bench_" + std::to_string(std::random_device{}()));
    std::uint64_t treeBytes = 0;
    VntConsoleProgressView quiet;  // draws nowhere
    VNT_MSG sys = nullptr;
    Data() {
        fs::create_directories(dir / "tree");
        std::vector<char> block(1 << 20);
        std::mt19937 rng(7);
        for (char& c : block) c = static_cast<char>(rng());
        {
            std::ofstream out(dir / "large.bin", std::ios::binary);
            for (std::uint64_t n = 0; n < kLarge; n += block.size()) out.write(block.data(), std::streamsize(block.size()));
        }
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
        fs::remove_all(dir);
    }
};

Data& data() {
    static Data d;
    return d;
}

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0) std::abort();
}

void BM_CopyLargeFile_Vanto(benchmark::State& state) {
    Data& d = data();
    for (auto _ : state) {
        VntFileCopy fc;
        if (fc.Copy(R"(B:\large.bin)", R"(B:\large.copy)") != kLarge) state.SkipWithError("copy failed");
        state.PauseTiming();
        fs::remove(d.dir / "large.copy");
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLarge));
}

void BM_CopyLargeFile_Cp(benchmark::State& state) {
    Data& d = data();
    const std::string cmd = "cp --preserve=timestamps '" + (d.dir / "large.bin").string() + "' '" +
                            (d.dir / "large.copy").string() + "'";
    for (auto _ : state) {
        run(cmd);
        state.PauseTiming();
        fs::remove(d.dir / "large.copy");
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLarge));
}

void BM_CopyTree_Vanto(benchmark::State& state) {
    Data& d = data();
    for (auto _ : state) {
        VntFileCopy fc;
        fc.SetFolders(nullptr, R"(B:\copy)");
        if (!fc.TreeCopy(R"(B:\tree)")) state.SkipWithError("tree copy failed");
        state.PauseTiming();
        fs::remove_all(d.dir / "copy");
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kDirs * kFilesPerDir);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.treeBytes));
}

void BM_CopyTree_Cp(benchmark::State& state) {
    Data& d = data();
    const std::string cmd =
        "cp -r --preserve=timestamps '" + (d.dir / "tree").string() + "' '" + (d.dir / "copy").string() + "'";
    for (auto _ : state) {
        run(cmd);
        state.PauseTiming();
        fs::remove_all(d.dir / "copy");
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kDirs * kFilesPerDir);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.treeBytes));
}

}  // namespace

BENCHMARK(BM_CopyLargeFile_Vanto)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK(BM_CopyLargeFile_Cp)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK(BM_CopyTree_Vanto)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK(BM_CopyTree_Cp)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
