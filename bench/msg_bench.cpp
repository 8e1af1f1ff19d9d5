// Message texts through a handle: Vnt_MsgHLoad and Vnt_MsgHSprintf of
// preloaded texts (in place, no file access) and of texts read from the
// file, and of system texts reached through an application handle.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>
#include <string>

#include "host/host.h"
#include "msg/msg_internal.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"
#include "vtmtool/vtm_writer.h"

namespace fs = std::filesystem;

namespace {

constexpr long kHalf = 100;  // IDs 1..100 preloaded, 101..200 read from the file

std::string libPath(const fs::path& p) {
    VNT_PATH b{};
    Vnt_LfnFromHost(b, p.c_str());
    return b;
}

// The libraries, written once into a directory that goes when the program ends.
struct Files {
    fs::path dir = fs::temp_directory_path() / ("vanto_msg_bench_" + std::to_string(std::random_device{}()));
    Files() {
        fs::create_directories(dir);
        vtmtool::Library sys{"VNT60LIB", 60, 1, -1, {}};
        for (long id = 40001; id <= 40000 + kHalf; ++id)
            sys.messages.push_back({uint16_t(id), "System message %d of %s"});
        vtmtool::writeFileAtomic(dir / "VNT60LIB.VTM", vtmtool::writeLibrary(sys));
        vtmtool::Library app{"BENCH", 60, 0, kHalf, {}};
        for (long id = 1; id <= 2 * kHalf; ++id)
            app.messages.push_back({uint16_t(id), "Message %d of the library %s, a text of common length"});
        vtmtool::writeFileAtomic(dir / "BENCH.VTM", vtmtool::writeLibrary(app));
    }
    ~Files() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

// A fresh message system with the application library open; boxes are
// scripted, so any report would show up in `box.shown`.
struct Session {
    VntScriptedPresenter box;
    VNT_MSG h = nullptr;
    Session() {
        static const Files files;
        vnt::host::reset(), vnt::vtm::reset();
        vnt::msg::resetTexts(), vnt::msg::resetBox(), vnt::msg::resetReports();
        Vnt_UiSetPresenter(&box);
        Vnt_MsgItfInit(nullptr, 0, libPath(files.dir / "VNT60LIB.VTM").c_str());
        h = Vnt_MsgHInit(nullptr, libPath(files.dir / "BENCH").c_str());
    }
    ~Session() {
        Vnt_MsgHTerm(&h);
        Vnt_UiSetPresenter(nullptr);
        vnt::vtm::reset(), vnt::msg::resetTexts();
    }
    bool failed(benchmark::State& st) {
        if (h && box.shown.empty()) return false;
        st.SkipWithError("library not open or a report was shown");
        return true;
    }
};

void load(benchmark::State& st, long first) {
    Session s;
    if (s.failed(st)) return;
    long i = 0;
    for (auto _ : st) benchmark::DoNotOptimize(Vnt_MsgHLoad(s.h, first + (i++ % kHalf)));
    s.failed(st);
}

void formatted(benchmark::State& st, long first) {
    Session s;
    if (s.failed(st)) return;
    long i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(Vnt_MsgHSprintf(s.h, first + (i % kHalf), int(i), "BENCH"));
        ++i;
    }
    s.failed(st);
}

void BM_MsgHLoadPreloaded(benchmark::State& st) { load(st, 1); }
void BM_MsgHLoadFile(benchmark::State& st) { load(st, kHalf + 1); }
void BM_MsgHLoadSystem(benchmark::State& st) { load(st, 40001); }
void BM_MsgHSprintfPreloaded(benchmark::State& st) { formatted(st, 1); }
void BM_MsgHSprintfFile(benchmark::State& st) { formatted(st, kHalf + 1); }
void BM_MsgHSprintfSystem(benchmark::State& st) { formatted(st, 40001); }

BENCHMARK(BM_MsgHLoadPreloaded);
BENCHMARK(BM_MsgHLoadFile);
BENCHMARK(BM_MsgHLoadSystem);
BENCHMARK(BM_MsgHSprintfPreloaded);
BENCHMARK(BM_MsgHSprintfFile);
BENCHMARK(BM_MsgHSprintfSystem);

}  // namespace
