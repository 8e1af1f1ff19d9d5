// The application frame on the sample installation: starting and ending the
// library (module table, application library, version record, message
// interface, locale), and loading a library module by number (find the
// file, load it, call its entry function, free it again).
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "host/host.h"
#include "vanto/app.h"
#include "vanto/lfn.h"
#include "vanto/module.h"
#include "bench_support.h"
#include "vanto/ui/msgbox.h"

namespace {

struct Installation {
    vnt::bench::SilentPresenter silent;
    Installation() {
        VNT_PATH prog;
        if (!Vnt_LfnFromHost(prog, VANTO_SAMPLE_DIR "/Sample")) std::abort();
        vnt::host::setProgramFile(prog);
        // Started from its directory, as scripts/demo starts it.
        VNT_PATH dir;
        if (!Vnt_LfnFromHost(dir, VANTO_SAMPLE_DIR) || !Vnt_LfnDirSet(dir)) std::abort();
        Vnt_UiSetPresenter(&silent);
    }
};

void BM_AppMainInitTerm(benchmark::State& state) {
    static Installation inst;
    for (auto _ : state) {
        if (!Vnt_AppMainInit()) state.SkipWithError("init failed");
        Vnt_AppMainTerm();
    }
}

void BM_ModLoadLibraryByNumber(benchmark::State& state) {
    static Installation inst;
    if (!Vnt_AppMainInit()) state.SkipWithError("init failed");
    for (auto _ : state)
        if (!Vnt_AppModLoad(10, 1, 2)) state.SkipWithError("load failed");
    Vnt_AppMainTerm();
}

}  // namespace

BENCHMARK(BM_AppMainInitTerm)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ModLoadLibraryByNumber)->Unit(benchmark::kMicrosecond);
