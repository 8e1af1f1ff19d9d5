// Fuzz target: arbitrary bytes as an INI file for the profile functions
// (the section and key lists and a few reads, then a key written into the
// first section and read back, from the cache and after a flush from disk)
// and for the engine's line reader (every section enumerated and read line
// by line, one section read whole, then rewritten).
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "ini/profile.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/ui/msgbox.h"

namespace {

namespace fs = std::filesystem;

// The input file (under /dev/shm when there is one), written for each input.
struct InputFile {
    fs::path dir;
    fs::path host;
    std::string lib;
    InputFile() {
        fs::path base = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        dir = base / ("vanto_ini_fuzz_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir);
        host = dir / "Fuzz.ini";
        VNT_PATH name;
        if (!Vnt_LfnFromHost(name, host.c_str())) std::abort();
        lib = name;
    }
    ~InputFile() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

std::string list(const char* section, const char* file) {
    static char buf[1 << 16];
    unsigned long n = Vnt_ProfileGetString(section, nullptr, "", buf, sizeof buf, file);
    return std::string(buf, n);
}

std::string get(const char* section, const char* key, const char* file) {
    char buf[256];
    unsigned long n = Vnt_ProfileGetString(section, key, "\n", buf, sizeof buf, file);
    return std::string(buf, n);
}

// The line reader over the whole file, then a rewrite of its first section.
void lines(const char* file) {
    VntIniX ini(file, "S", VNTINI_DAT);
    char name[100], buf[64];
    int sections = 0;
    for (bool ok = ini.SectionFirst(&name); ok && sections < 1000; ok = ini.SectionNext(&name), ++sections)
        for (int n = 0; n < 100000 && ini.ReadStr(buf, sizeof buf); ++n) {
        }
    char whole[512];
    ini.ReadSection(whole, sizeof whole, nullptr);
    ini.CountEntries();
    ini.Close(false);
    if (ini.SectionWriteBegin("Fz")) {
        std::snprintf(ini.Line(), 1024, "k=%d", sections);
        ini.WriteBuf();
        ini.SectionWriteEnd(true);
    }
}

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "ini_profile_fuzz: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static InputFile in;
    static VntScriptedPresenter quiet;  // reports and questions answer OK
    Vnt_UiSetPresenter(&quiet);
    quiet.shown.clear();
    const char* file = in.lib.c_str();
    std::ofstream(in.host, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data),
                                                                     static_cast<std::streamsize>(size));
    // Half the inputs are noticed through the change notification only.
    if (size & 1) Vnt_ProfileFlush(file);

    const std::string sections = list(nullptr, file);
    const std::string first = sections.substr(0, sections.find('\0'));
    const std::string keys = list(first.c_str(), file);
    const std::string key = keys.substr(0, keys.find('\0'));
    get(first.c_str(), key.c_str(), file);
    get(first.c_str(), "a", file);
    Vnt_ProfileGetInt(first.c_str(), key.c_str(), 0, file);
    // Small buffers cut lists and values without writing behind them.
    char tiny[3];
    Vnt_ProfileGetString(nullptr, nullptr, "", tiny, sizeof tiny, file);
    Vnt_ProfileGetString(first.c_str(), key.c_str(), "def", tiny, sizeof tiny, file);

    // Written into the first section (a new one when its name would read
    // back as another line: a line end, "]", or "[" first), read back from
    // the cache and from disk.
    const std::size_t lead = first.find_first_not_of(" \t");
    const bool unwritable = first.empty() || first.find_first_of("\r\n]") != std::string::npos ||
                            (lead != std::string::npos && first[lead] == '[');
    const char* sec = unwritable ? "Fz" : first.c_str();
    const bool ok = Vnt_ProfileWriteString(sec, "FuzzKey", "v 1", file);
    if (std::string(sec).find_first_not_of(" \t") == std::string::npos) {
        if (ok) fail("blank section accepted");
        return 0;
    }
    if (!ok) fail("write failed");
    if (get(sec, "fuzzkey", file) != "v 1") fail("written value not read from the cache");
    const std::string cached = list(nullptr, file);
    Vnt_ProfileFlush(file);
    if (get(sec, "FUZZKEY", file) != "v 1") fail("written value not read from disk");
    if (list(nullptr, file) != cached) fail("cache and disk disagree on the sections");
    if (!Vnt_ProfileWriteString(sec, "FuzzKey", nullptr, file)) fail("delete failed");
    if (get(sec, "FuzzKey", file) == "v 1") fail("deleted key still read");
    lines(file);
    return 0;
}
