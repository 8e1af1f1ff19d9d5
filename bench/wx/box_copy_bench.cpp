// The library's own windows against the work they accompany: a 15-line
// message box shown and closed, and a 1 GiB copy with the wx progress
// dialog beside the same copy with the headless progress view (the dialog
// must keep at least 0.8x of that throughput: see the "ratio" counter).
//
// The copy's data lies in one temporary directory, removed at the end.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <wx/app.h>
#include <wx/dialog.h>
#include <wx/modalhook.h>

#include "vanto/filecopy.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/progress.h"

namespace fs = std::filesystem;

namespace {

// The system library, for the copier's lines and the box's captions.
struct Library {
    VNT_MSG sys = nullptr;
    Library() {
        VNT_PATH lib;
        if (!Vnt_LfnFromHost(lib, VANTO_SYSLIB_EN) || !Vnt_MsgItfInit(nullptr, 0, lib)) std::abort();
        sys = Vnt_MsgHInit();
    }
    ~Library() {
        Vnt_MsgHTerm(&sys);
        Vnt_MsgItfTerm();
    }
};

// Ends every modal dialog as soon as its loop serves events.
class Closer : public wxModalDialogHook {
public:
    Closer() { Register(); }
    ~Closer() override { Unregister(); }
    int shown = 0;

protected:
    int Enter(wxDialog* d) override {
        ++shown;
        wxTheApp->CallAfter([d] { d->EndModal(1); });
        return wxID_NONE;
    }
    void Exit(wxDialog*) override {}
};

void BM_Box15LinesShowClose(benchmark::State& state) {
    Library lib;
    std::string text = "Erste Zeile";
    for (int i = 2; i <= 15; ++i) text += "\nZeile " + std::to_string(i);
    Closer closer;
    for (auto _ : state) {
        if (Vnt_MsgH(lib.sys, VntMsgRef(text.c_str())) != VNT_RESP_OK) state.SkipWithError("box not answered");
    }
    if (closer.shown != static_cast<int>(state.iterations())) state.SkipWithError("not every box was shown");
}
BENCHMARK(BM_Box15LinesShowClose)->Unit(benchmark::kMillisecond)->UseRealTime();

constexpr std::uint64_t kLarge = 1ull << 30;

struct CopyData {
    fs::path dir = fs::temp_directory_path() / ("vanto_wx_copy_bench_" + std::to_string(std::random_device{}()));
    CopyData() {
        fs::create_directories(dir);
        std::vector<char> block(1 << 20);
        std::mt19937 rng(7);
        for (char& c : block) c = static_cast<char>(rng());
        std::ofstream out(dir / "large.bin", std::ios::binary);
        for (std::uint64_t n = 0; n < kLarge; n += block.size()) out.write(block.data(), std::streamsize(block.size()));
        Vnt_LfnVolMap('B', dir.c_str());
    }
    ~CopyData() {
        Vnt_LfnVolUnmap('B');
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

// Seconds of one 1 GiB copy with the progress view in use.
double copyOnce(CopyData& d) {
    const auto t0 = std::chrono::steady_clock::now();
    VntFileCopy fc;
    const bool ok = fc.Copy(R"(B:\large.bin)", R"(B:\large.copy)") == kLarge;
    const double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    fs::remove(d.dir / "large.copy");
    return ok ? s : -1;
}

// Copies alternate between the two views, each going first in turn, so
// that the disk's and the machine's changing load fall on both alike.
void BM_Copy1GiBWxDialogVsHeadless(benchmark::State& state) {
    Library lib;
    CopyData data;
    VntConsoleProgressView quiet;  // the headless view, drawing nowhere
    quiet.sink = [](const std::string&) {};
    double wx = 0, headless = 0;
    bool headlessFirst = false;
    for (auto _ : state) {
        double a = 0, b = 0;
        for (int turn = 0; turn < 2; ++turn) {
            if ((turn == 0) == headlessFirst) {
                VntProgressView* dialog = Vnt_UiSetProgress(&quiet);
                b = copyOnce(data);
                Vnt_UiSetProgress(dialog);
            } else {
                a = copyOnce(data);
            }
        }
        headlessFirst = !headlessFirst;
        if (a < 0 || b < 0) {
            state.SkipWithError("copy failed");
            break;
        }
        wx += a;
        headless += b;
    }
    const double gib = static_cast<double>(state.iterations());
    state.counters["wx_MiB_s"] = gib * 1024 / wx;
    state.counters["headless_MiB_s"] = gib * 1024 / headless;
    state.counters["ratio"] = headless / wx;
}
BENCHMARK(BM_Copy1GiBWxDialogVsHeadless)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(4);

}  // namespace
