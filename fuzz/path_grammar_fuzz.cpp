// Fuzz target: the path grammar. The input holds up to three texts separated
// by NUL bytes (a name, a directory or base, an extension); they are joined,
// split, given extensions, resolved, completed and converted to host paths
// and back on a volume mapped to a scratch directory. Every result must stay
// terminated inside its buffer, and a resolved name must hold no "." or ".."
// component.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>

#include "vanto/lfn.h"

namespace {

namespace fs = std::filesystem;

// A scratch tree on volume F: (under /dev/shm when there is one); no other
// volume is mapped, so no input reaches the rest of the file system.
struct Scratch {
    fs::path dir;
    Scratch() {
        fs::path base = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        dir = base / ("vanto_path_fuzz_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir / "Daten" / "M1");
        fs::create_directories(dir / "x.y");
        for (char c = 'A'; c <= 'Z'; ++c) Vnt_LfnVolUnmap(c);
        if (!Vnt_LfnVolMap('F', dir.c_str())) std::abort();
        Vnt_LfnDirSet("F:\\Daten");
    }
    ~Scratch() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

// Says which condition failed, then ends as a finding.
void check(bool ok, int line = __builtin_LINE()) {
    if (ok) return;
    std::fprintf(stderr, "path_grammar_fuzz: check at line %d failed\n", line);
    std::abort();
}

bool terminated(const char* buf, std::size_t size) { return std::memchr(buf, '\0', size) != nullptr; }

// No "." or ".." component after the volume. A name that is only "." has no
// separator before its dot, which the resolution keeps.
bool resolved(const char* name) {
    if (std::strcmp(name, ".") == 0) return true;
    const char* p = name;
    while (*p) {
        const char* end = std::strchr(p, '\\');
        const std::size_t n = end ? static_cast<std::size_t>(end - p) : std::strlen(p);
        if ((n == 1 && p[0] == '.') || (n == 2 && p[0] == '.' && p[1] == '.')) return false;
        if (!end) break;
        p = end + 1;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Scratch scratch;
    // Three texts of at most 259 characters each, as the path buffers hold.
    std::string part[3];
    std::size_t at = 0;
    for (std::string& p : part) {
        while (at < size && data[at] != 0) {
            if (p.size() < VNT_MAX_PATH - 1) p.push_back(static_cast<char>(data[at]));
            ++at;
        }
        ++at;
    }
    const char* name = part[0].c_str();
    const char* dir = part[1].c_str();
    const char* ext = part[2].empty() ? nullptr : part[2].c_str();

    VNT_PATH buf, d, f, e;
    Vnt_LfnNameMake(buf, dir, name, ext);
    check(terminated(buf, sizeof buf));
    char small[12];
    Vnt_LfnNameMake(small, sizeof small, dir, name, ext);
    check(terminated(small, sizeof small));

    Vnt_LfnNameSplit(name, d, f, e);
    check(terminated(d, sizeof d) && terminated(f, sizeof f) && terminated(e, sizeof e));
    Vnt_LfnNameSplit(buf, buf, nullptr, nullptr);  // in place
    check(terminated(buf, sizeof buf));

    std::memcpy(buf, name, part[0].size() + 1);
    Vnt_LfnNameExt(buf, ext);
    check(terminated(buf, sizeof buf));
    std::memcpy(buf, name, part[0].size() + 1);
    Vnt_LfnNameExtAdd(buf, ext ? ext : "bak");
    check(terminated(buf, sizeof buf));

    std::memcpy(buf, name, part[0].size() + 1);
    if (Vnt_LfnNameMakeAbs(buf)) check(resolved(buf));
    check(terminated(buf, sizeof buf));
    // Completion (no base) leaves UNC names as they are and ignores what the
    // dot resolution says, so a name it leaves with dots in must be UNC or
    // one the resolution refuses.
    if (Vnt_LfnNameMakeAbs(buf, name, part[1].empty() ? nullptr : dir)) {
        VNT_PATH again;
        std::memcpy(again, buf, sizeof buf);
        const bool unc = buf[0] == '\\' && buf[1] == '\\';
        check(resolved(buf) || (part[1].empty() && (unc || !Vnt_LfnNameMakeAbs(again))));
    }
    check(terminated(buf, sizeof buf));

    std::memcpy(buf, name, part[0].size() + 1);
    Vnt_LfnNameComplete(buf);
    check(terminated(buf, sizeof buf));
    Vnt_LfnNameIsPath(name), Vnt_LfnNameIsWild(name), Vnt_LfnNameIsAbsPath(name), Vnt_LfnNameIsRoot(name);
    for (long width : {0L, 5L, 8L, 40L}) check(std::strlen(Vnt_LfnNameOut(name, width)) < VNT_MAX_PATH);

    // A name that reaches the host comes back to a name that reaches the same place.
    char host[4096], again[4096];
    if (Vnt_LfnToHost(name, host, sizeof host)) {
        check(terminated(host, sizeof host));
        VNT_PATH back;
        if (Vnt_LfnFromHost(back, host)) {
            check(Vnt_LfnToHost(back, again, sizeof again));
            check(std::strcmp(host, again) == 0);
        }
    }
    return 0;
}
