// The window benchmarks' main: one wx application on a display (run under
// xvfb-run: bench/wx/run.sh); exits 77 without one.
#include <benchmark/benchmark.h>

#include <cstdio>

#include <wx/app.h>
#include <wx/init.h>

#include "vanto/wx/app.h"

namespace {

class BenchApp : public VntWxApp {
public:
    bool OnInit() override { return VntWxApp::OnInit(); }
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    wxApp::SetInstance(new BenchApp);
    int wxArgc = 1;
    char* wxArgv[] = {argv[0], nullptr};
    if (!wxEntryStart(wxArgc, wxArgv)) {
        std::fprintf(stderr, "window benchmarks: no display (run them under xvfb-run)\n");
        return 77;
    }
    if (!wxTheApp->CallOnInit()) {
        wxEntryCleanup();
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    wxTheApp->OnExit();
    wxEntryCleanup();
    return 0;
}
