// Message library reader: fetch by ID from preloaded libraries (small and
// full-size, which must cost about the same), fetch from the file, and the
// open and close of a full-size library.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/vtm.h"
#include "vtmtool/vtm_writer.h"

namespace fs = std::filesystem;

namespace {

// Writes a library of `count` messages (IDs 1..count) into a temporary
// directory and returns its library path. The preload area holds at most
// 65535 bytes, so a full-size preloaded library has empty texts. IDs from
// 32768 on are read from the system library, so the full-size library that
// is read from is the system library.
std::string makeLibrary(const std::string& name, long count, long preload, bool emptyTexts,
                        int32_t systemFlag = 0) {
    // The directory goes when the program ends.
    static const struct TempDir {
        fs::path path = fs::temp_directory_path() / ("vanto_vtm_bench_" + std::to_string(std::random_device{}()));
        TempDir() { fs::create_directories(path); }
        ~TempDir() { std::error_code ec; fs::remove_all(path, ec); }
    } tmp;
    const fs::path& dir = tmp.path;
    vtmtool::Library lib;
    lib.name = name;
    lib.preload = preload;
    lib.systemFlag = systemFlag;
    for (long id = 1; id <= count; ++id)
        lib.messages.push_back({uint16_t(id), emptyTexts ? std::string() : "Message number " + std::to_string(id)});
    fs::path file = dir / (name + ".vtm");
    vtmtool::writeFileAtomic(file, vtmtool::writeLibrary(lib));
    VNT_PATH p;
    Vnt_LfnFromHost(p, file.c_str());
    return p;
}

std::vector<long> randomIds(long count) {
    std::mt19937 rng(42);
    std::uniform_int_distribution<long> pick(1, count);
    std::vector<long> ids(4096);
    for (long& id : ids) id = pick(rng);
    return ids;
}

void fetch(benchmark::State& st, VNT_MSG lib, long count) {
    std::vector<long> ids = randomIds(count);
    std::size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(Vnt_VtmRead(lib, ids[i++ & 4095]));
    }
    if (Vnt_VtmStatus() != 0) st.SkipWithError("read failed");
}

void BM_FetchPreloaded100(benchmark::State& st) {
    vnt::vtm::reset();
    VNT_MSG lib = Vnt_VtmOpen(makeLibrary("SMALL", 100, -1, false).c_str());
    if (!lib) return st.SkipWithError("open failed");
    fetch(st, lib, 100);
    vnt::vtm::reset();
}
BENCHMARK(BM_FetchPreloaded100);

void BM_FetchPreloaded65535(benchmark::State& st) {
    vnt::vtm::reset();
    VNT_MSG lib = Vnt_VtmOpen(makeLibrary("FULL", 65535, -1, true, 1).c_str());
    if (!lib) return st.SkipWithError("open failed");
    fetch(st, lib, 65535);
    vnt::vtm::reset();
}
BENCHMARK(BM_FetchPreloaded65535);

void BM_FetchFromFile(benchmark::State& st) {
    vnt::vtm::reset();
    VNT_MSG lib = Vnt_VtmOpen(makeLibrary("FILE", 1000, 0, false).c_str());
    if (!lib) return st.SkipWithError("open failed");
    fetch(st, lib, 1000);
    vnt::vtm::reset();
}
BENCHMARK(BM_FetchFromFile);

void BM_OpenClose65535(benchmark::State& st) {
    vnt::vtm::reset();
    std::string path = makeLibrary("OPENFULL", 65535, -1, true);
    for (auto _ : st) {
        VNT_MSG lib = Vnt_VtmOpen(path.c_str());
        if (!lib) return st.SkipWithError("open failed");
        Vnt_VtmClose(lib);
    }
}
BENCHMARK(BM_OpenClose65535);

}  // namespace
