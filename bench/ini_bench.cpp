// Profile functions: reading 1,000 different keys of a 1,000-entry file, the
// first call after a flush (the file is read and parsed) and warm (served
// from the cache, with notification and with the stamp check standing in
// for it), writing one key of that file, and rewriting one of its sections.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "ini/profile.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"

namespace fs = std::filesystem;

namespace {

// Ten sections of 100 keys; removed when the program ends.
struct IniFile {
    fs::path dir = fs::temp_directory_path() / ("vanto_ini_bench_" + std::to_string(std::random_device{}()));
    std::string lib;
    std::vector<std::pair<std::string, std::string>> keys;  // section, key
    IniFile() {
        fs::create_directories(dir);
        std::ofstream out(dir / "Bench.ini", std::ios::binary);
        for (int s = 0; s < 10; ++s) {
            out << "[Section" << s << "]\r\n";
            for (int k = 0; k < 100; ++k) {
                keys.push_back({"section" + std::to_string(s), "KEY" + std::to_string(s * 100 + k)});
                out << "Key" << s * 100 + k << " = Value number " << s * 100 + k << "\r\n";
            }
            out << "\r\n";
        }
        out.close();
        char s[VNT_MAX_PATH] = {};
        Vnt_LfnFromHost(s, (dir / "Bench.ini").c_str());
        lib = s;
    }
    ~IniFile() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

const IniFile& file() {
    static const IniFile f;
    return f;
}

void readAll(const IniFile& f) {
    char buf[64];
    for (const auto& [sec, key] : f.keys)
        benchmark::DoNotOptimize(Vnt_ProfileGetString(sec.c_str(), key.c_str(), "", buf, sizeof buf, f.lib.c_str()));
    benchmark::ClobberMemory();
}

void BM_ProfileFirstCallAfterFlush(benchmark::State& state) {
    const IniFile& f = file();
    vnt::ini::profileReset();
    char buf[64];
    for (auto _ : state) {
        Vnt_ProfileFlush(f.lib.c_str());
        benchmark::DoNotOptimize(Vnt_ProfileGetString("Section5", "Key550", "", buf, sizeof buf, f.lib.c_str()));
    }
}
BENCHMARK(BM_ProfileFirstCallAfterFlush);

// Per key: the first of the 1,000 reads pays for the parse.
void BM_Profile1000KeysCold(benchmark::State& state) {
    const IniFile& f = file();
    vnt::ini::profileReset();
    for (auto _ : state) {
        Vnt_ProfileFlush(f.lib.c_str());
        readAll(f);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(f.keys.size()));
}
BENCHMARK(BM_Profile1000KeysCold);

// Per key, from the cache; argument 1: change notification, 0: stamp check.
void BM_Profile1000KeysWarm(benchmark::State& state) {
    const IniFile& f = file();
    vnt::ini::profileReset();
    vnt::ini::profileUseNotify(state.range(0) != 0);
    readAll(f);
    const unsigned long loads = vnt::ini::profileLoads();
    for (auto _ : state) readAll(f);
    state.SetItemsProcessed(state.iterations() * static_cast<long>(f.keys.size()));
    if (vnt::ini::profileLoads() != loads) state.SkipWithError("warm reads parsed the file again");
    vnt::ini::profileReset();
}
BENCHMARK(BM_Profile1000KeysWarm)->Arg(1)->Arg(0);

// Each iteration changes the value, so each one replaces the file.
void BM_ProfileWriteOneKey(benchmark::State& state) {
    const IniFile& f = file();
    vnt::ini::profileReset();
    long n = 0;
    for (auto _ : state) {
        const std::string v = "Value " + std::to_string(++n);
        if (!Vnt_ProfileWriteString("Section5", "Key550", v.c_str(), f.lib.c_str())) state.SkipWithError("write failed");
    }
}
BENCHMARK(BM_ProfileWriteOneKey);

// The engine's section rewrite: one section of 100 lines written anew in
// the 1,000-entry file (the rest copied, the file replaced).
void BM_SectionRewrite(benchmark::State& state) {
    const IniFile& f = file();
    for (auto _ : state) {
        VntIni ini(f.lib.c_str(), nullptr, VNTINI_DAT);
        if (!ini.SectionWriteBegin("Section5")) state.SkipWithError("rewrite failed");
        for (int k = 0; k < 100; ++k) {
            std::snprintf(ini.Line(), 1024, "Key%d = Value number %d", 500 + k, 500 + k);
            ini.WriteBuf();
        }
        ini.SectionWriteEnd(true);
    }
}
BENCHMARK(BM_SectionRewrite);

}  // namespace
