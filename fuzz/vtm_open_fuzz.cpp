// Fuzz target: an arbitrary file opened as a message library, iterated, read
// by a few IDs; each named segment of a container opened and iterated too.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <random>

#include "msg/vtm_internal.h"
#include "vanto/vtm.h"

namespace {

namespace fs = std::filesystem;

// The input file, written anew for each input (under /dev/shm when there is one).
struct InputFile {
    fs::path host;
    std::string lib;
    InputFile() {
        fs::path dir = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        host = dir / ("vanto_vtm_fuzz_" + std::to_string(std::random_device{}()) + ".vtm");
        lib = "Z:" + host.string();
        for (char& c : lib)
            if (c == '/') c = '\\';
    }
    ~InputFile() {
        std::error_code ec;
        fs::remove(host, ec);
    }
};

VNT_RESP quietReport(const char*) { return VNT_RESP_OK; }

void iterate(VNT_MSG lib) {
    int guard = 0;
    for (const char* t = Vnt_VtmRead(lib, 0); *t && guard < 100000; t = Vnt_VtmRead(lib, -1), ++guard) {
    }
}

void readSome(VNT_MSG lib) {
    for (long id : {1L, 2L, 100L, 32767L, 32768L, 40000L, 65535L}) Vnt_VtmRead(lib, id);
    VNT_VTM_INFO info{};
    if (Vnt_VtmInfo(lib, &info))
        for (long n = 0; n < info.entryCount && n < 64; ++n) Vnt_VtmEntryText(lib, n);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static InputFile file;
    static const VNT_VTM_REPORT previous = Vnt_VtmSetReport(quietReport);
    (void)previous;
    {
        std::FILE* f = std::fopen(file.host.c_str(), "wb");
        if (!f) return 0;
        if (size) std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    VNT_MSG lib = Vnt_VtmOpen(file.lib.c_str());
    if (lib) {
        iterate(lib);
        readSome(lib);
        VNT_VTM_SEGENTRY seg{};
        for (long i = 0; Vnt_VtmSegEntry(lib, i, &seg); ++i) {
            VNT_MSG s = Vnt_VtmOpenSeg(lib, seg.name);
            if (!s) continue;
            iterate(s);
            readSome(s);
            Vnt_VtmClose(s);
        }
        Vnt_VtmClose(lib);
    }
    // Everything is closed again; only a library a failed segment still
    // holds (kept for compatibility) needs the reader's state made anew.
    if (vnt::vtm::liveCount() != 0) {
        vnt::vtm::reset();
        Vnt_VtmSetReport(quietReport);
    }
    return 0;
}
