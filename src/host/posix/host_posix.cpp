// The POSIX host: the volume table, per-volume current directories, library
// path <-> host path conversion, files and injectable faults.
//
// A library path "X:\a\b" names the host path <dir of X>/a/b. Applications
// and their data were written for a case-insensitive file system, so a
// component that does not exist as written is matched without regard to case.
#include "host/host.h"
#include "base/names.h"
#include "host/posix/host_call.h"
#include "vanto/text.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vnt::host {
namespace {

constexpr int kVolumes = 26;

struct HostState {
    bool ready = false;
    std::string volDir[kVolumes];  // host directory of each letter; "" = unmapped
    std::string volCwd[kVolumes];  // remembered current directory ("X:\..."); "" = root
    int curVol = 'Z' - 'A';        // current volume
    std::string programFile;       // set by setProgramFile; "" = ask the system
    std::string libraryFile;       // set by setLibraryFile; "" = ask the loader
};

HostState& state() {
    static HostState s;
    return s;
}

int volIndex(char letter) {
    unsigned char c = Vnt_TxtUpper(static_cast<unsigned char>(letter));
    return (c >= 'A' && c <= 'Z') ? c - 'A' : -1;
}

bool isDir(const std::string& hostPath) {
    struct stat st;
    return ::stat(hostPath.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool exists(const std::string& hostPath) {
    struct stat st;
    return ::lstat(hostPath.c_str(), &st) == 0;
}

// Splits at every separator and resolves "." and ".." lexically; ".." above
// the top stays at the top, as at a root directory.
void pushComponents(std::string_view text, std::string_view seps, std::vector<std::string>& out) {
    std::size_t i = 0;
    while (i <= text.size()) {
        std::size_t j = text.find_first_of(seps, i);
        if (j == std::string_view::npos) j = text.size();
        std::string_view c = text.substr(i, j - i);
        if (c == "..") {
            if (!out.empty()) out.pop_back();
        } else if (!c.empty() && c != ".") {
            out.emplace_back(c);
        }
        i = j + 1;
    }
}

// Absolute, normalised host form of a directory ("/" or "/a/b").
std::string normaliseHost(std::string_view path) {
    std::vector<std::string> parts;
    if (path.empty() || path[0] != '/') {
        char buf[4096];
        if (::getcwd(buf, sizeof buf)) pushComponents(buf, "/", parts);
    }
    pushComponents(path, "/", parts);
    std::string out;
    for (const auto& p : parts) out += "/" + p;
    return out.empty() ? "/" : out;
}

std::string volRoot(int v) { return std::string(1, static_cast<char>('A' + v)) + ":\\"; }

// Chooses the volume whose directory holds `abs` (longest mapping wins) and
// gives the rest of the path after it.
bool splitByVolume(const std::string& abs, int& vol, std::string_view& rest) {
    HostState& s = state();
    std::size_t best = 0;
    vol = -1;
    for (int v = 0; v < kVolumes; ++v) {
        const std::string& d = s.volDir[v];
        if (d.empty()) continue;
        std::size_t len = d == "/" ? 0 : d.size();
        bool holds = d == "/" || abs == d ||
                     (abs.compare(0, d.size(), d) == 0 && abs.size() > d.size() && abs[d.size()] == '/');
        if (holds && (vol < 0 || len > best)) {
            vol = v;
            best = len;
        }
    }
    if (vol < 0) return false;
    rest = std::string_view(abs).substr(best);
    return true;
}

void ensureReady() {
    HostState& s = state();
    if (s.ready) return;
    s.ready = true;
    s.volDir['Z' - 'A'] = "/";
    char buf[4096];
    std::string lib;
    if (::getcwd(buf, sizeof buf) && fromHost(buf, lib) && lib.size() >= 3) {
        int v = volIndex(lib[0]);
        s.curVol = v;
        s.volCwd[v] = lib;
    }
}

// Case-insensitive comparison of a host name (UTF-8) with a library name
// component (Windows-1252). Names without a Windows-1252 form never match.
bool sameName(const char* hostName, const std::string& libName) {
    std::string conv;
    return Vnt_TxtFromUtf8(hostName, conv) && vnt::sameText(conv, libName);
}

// The host name of `comp` inside the directory `dir`: as written when that
// exists, else the first entry equal to it without regard to case.
bool matchComponent(const std::string& dir, const std::string& comp, std::string& found) {
    DIR* d = ::opendir(dir.c_str());
    if (!d) return false;
    bool ok = false;
    while (dirent* e = ::readdir(d)) {
        if (sameName(e->d_name, comp)) {
            found = e->d_name;
            ok = true;
            break;
        }
    }
    ::closedir(d);
    return ok;
}

}  // namespace

// ---------------------------------------------------------------------------
// Volumes and the current directory
// ---------------------------------------------------------------------------

bool volMap(char letter, const char* hostDir) {
    ensureReady();
    int v = volIndex(letter);
    if (v < 0 || hostDir == nullptr || *hostDir == '\0') return false;
    std::string dir = normaliseHost(hostDir);
    if (!isDir(dir)) return false;
    HostState& s = state();
    s.volDir[v] = dir;
    s.volCwd[v].clear();
    return true;
}

bool volUnmap(char letter) {
    ensureReady();
    int v = volIndex(letter);
    if (v < 0 || state().volDir[v].empty()) return false;
    state().volDir[v].clear();
    state().volCwd[v].clear();
    return true;
}

bool volKnown(char letter) {
    ensureReady();
    int v = volIndex(letter);
    return v >= 0 && !state().volDir[v].empty() && isDir(state().volDir[v]);
}

std::string volCurDir(char letter) {
    ensureReady();
    int v = volIndex(letter);
    if (v < 0 || state().volDir[v].empty()) return {};
    const std::string& cwd = state().volCwd[v];
    return cwd.empty() ? volRoot(v) : cwd;
}

std::string curDir() {
    ensureReady();
    return volCurDir(static_cast<char>('A' + state().curVol));
}

// Library path of `libPath` made absolute against the current directories:
// the volume index and the normalised components.
static bool absoluteLib(const char* libPath, int& vol, std::vector<std::string>& parts) {
    ensureReady();
    HostState& s = state();
    std::string_view p(libPath ? libPath : "");
    if (p.size() >= 2 && (p[0] == '\\' || p[0] == '/') && (p[1] == '\\' || p[1] == '/'))
        return false;  // UNC names have no host form here
    vol = s.curVol;
    if (p.size() >= 2 && p[1] == ':') {
        vol = volIndex(p[0]);
        if (vol < 0) return false;
        p.remove_prefix(2);
    }
    if (s.volDir[vol].empty()) return false;
    if (p.empty() || (p[0] != '\\' && p[0] != '/')) {
        const std::string& cwd = s.volCwd[vol];
        if (cwd.size() > 3) pushComponents(std::string_view(cwd).substr(3), "\\", parts);
    }
    pushComponents(p, "\\/", parts);
    return true;
}

bool setCurDir(const std::string& libPath) {
    int vol;
    std::vector<std::string> parts;
    if (!absoluteLib(libPath.c_str(), vol, parts)) return false;
    std::string lib = volRoot(vol);
    for (std::size_t i = 0; i < parts.size(); ++i) lib += (i ? "\\" : "") + parts[i];
    std::string host;
    if (!toHost(lib.c_str(), host) || !isDir(host)) return false;
    // The process follows, so that programs it starts and relative host
    // names see the same directory.
    if (::chdir(host.c_str()) != 0) return false;
    HostState& s = state();
    s.volCwd[vol] = lib;
    s.curVol = vol;
    return true;
}

bool toHost(const char* libPath, std::string& hostPath) {
    int vol;
    std::vector<std::string> parts;
    if (!absoluteLib(libPath, vol, parts)) return false;
    std::string out = state().volDir[vol];
    std::vector<std::string> host(parts.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
        host[i] = Vnt_TxtToUtf8(parts[i]);
        if (host[i].find('/') != std::string::npos) return false;
    }
    auto join = [&](std::size_t upto) {
        std::string r = out == "/" ? "" : out;
        for (std::size_t i = 0; i < upto; ++i) r += "/" + host[i];
        return r.empty() ? std::string("/") : r;
    };
    std::string whole = join(host.size());
    if (host.empty() || exists(whole)) {
        hostPath = whole;
        return true;
    }
    // Walk the components; stop looking once one is missing altogether, so
    // that names of files yet to be created keep the case they were given.
    std::string dir = join(0);
    for (std::size_t i = 0; i < host.size(); ++i) {
        std::string cand = (dir == "/" ? "" : dir) + "/" + host[i];
        if (!exists(cand)) {
            std::string found;
            if (!matchComponent(dir, parts[i], found)) {
                for (std::size_t k = i; k < host.size(); ++k) dir = (dir == "/" ? "" : dir) + "/" + host[k];
                hostPath = dir;
                return true;
            }
            cand = (dir == "/" ? "" : dir) + "/" + found;
        }
        dir = cand;
    }
    hostPath = dir;
    return true;
}

bool fromHost(const char* hostPath, std::string& libPath) {
    if (hostPath == nullptr || *hostPath == '\0') return false;
    ensureReady();  // also called from the first set-up, which has set `ready` by then
    std::string abs = normaliseHost(hostPath);
    int vol;
    std::string_view rest;
    if (!splitByVolume(abs, vol, rest)) return false;
    std::string lib = volRoot(vol);
    if (!rest.empty()) rest.remove_prefix(1);  // the '/' after the volume's directory
    std::string conv;
    if (!Vnt_TxtFromUtf8(rest, conv)) return false;
    if (conv.find('\\') != std::string::npos) return false;  // not representable
    for (char& c : conv)
        if (c == '/') c = '\\';
    libPath = lib + conv;
    return true;
}

// ---------------------------------------------------------------------------
// Files
// ---------------------------------------------------------------------------

File& File::operator=(File&& o) noexcept {
    if (this != &o) {
        close();
        handle_ = o.handle_;
        pos_ = o.pos_;
        faultName_ = std::move(o.faultName_);
        o.handle_ = kNoHandle;
    }
    return *this;
}

bool File::openRead(const char* libPath) {
    close();
    std::string host;
    if (!hostCall(libPath, Op::Open, host)) return false;
    int fd;
    do fd = ::open(host.c_str(), O_RDONLY | O_CLOEXEC);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) return false;
    struct stat st;
    if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
        ::close(fd);
        errno = EISDIR;
        return false;
    }
    opened(fd, libPath);
    return true;
}

void File::opened(Handle fd, const char* libPath) {
    handle_ = fd;
    pos_ = 0;
    if (faultByName()) faultName_ = libPath;
}

// Reads at `pos` until n bytes came, the file ended or an error occurred.
static std::size_t readFull(int fd, void* buf, std::size_t n, std::uint64_t pos, const char* name) {
    if (fd < 0) return 0;
    if (faultHit(Op::Read, name)) {
        errno = EIO;
        return 0;
    }
    std::size_t got = 0;
    auto* p = static_cast<char*>(buf);
    while (got < n) {
        ssize_t r = ::pread(fd, p + got, n - got, static_cast<off_t>(pos + got));
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) break;
        got += static_cast<std::size_t>(r);
    }
    return got;
}

std::size_t File::read(void* buf, std::size_t n) {
    std::size_t got = readFull(fdOf(handle_), buf, n, pos_, faultName());
    pos_ += got;
    return got;
}

std::size_t File::readAt(void* buf, std::size_t n, std::uint64_t pos) { return readFull(fdOf(handle_), buf, n, pos, faultName()); }

bool File::seek(std::uint64_t pos) {
    if (fdOf(handle_) < 0) return false;
    if (faultHit(Op::Seek, faultName())) {
        errno = EIO;
        return false;
    }
    // Positions past the end are allowed, as with lseek; the next read gets 0.
    if (pos > static_cast<std::uint64_t>(INT64_MAX)) {
        errno = EINVAL;
        return false;
    }
    pos_ = pos;
    return true;
}

std::int64_t File::size() {
    struct stat st;
    if (fdOf(handle_) < 0 || ::fstat(fdOf(handle_), &st) != 0) return -1;
    return static_cast<std::int64_t>(st.st_size);
}

void File::close() {
    if (fdOf(handle_) >= 0) ::close(fdOf(handle_));
    handle_ = kNoHandle;
    pos_ = 0;
    faultName_.clear();
}


namespace {
std::string runningExecutable() {
    std::string buf(4096, '\0');
    ssize_t n = ::readlink("/proc/self/exe", buf.data(), buf.size() - 1);
    if (n <= 0) return {};
    buf.resize(static_cast<std::size_t>(n));
    std::string lib;
    return fromHost(buf.c_str(), lib) ? lib : std::string();
}
}  // namespace

std::string programFile() {
    if (!state().programFile.empty()) return state().programFile;
    return runningExecutable();
}

std::string libraryFile() {
    if (!state().libraryFile.empty()) return state().libraryFile;
    Dl_info info{};
    if (::dladdr(reinterpret_cast<void*>(&libraryFile), &info) == 0 || !info.dli_fname) return {};
    // Linked into the program itself, the loader names it as it was started.
    if (info.dli_fname[0] != '/') return runningExecutable();
    std::string lib;
    return fromHost(info.dli_fname, lib) ? lib : std::string();
}

void writeExitReason(int code, const std::string& reason) {
    std::string program = programFile();
    if (const std::size_t cut = program.find_last_of("\\:"); cut != std::string::npos) program.erase(0, cut + 1);
    std::string line = (program.empty() ? std::string("vantortl") : program) + ": exit code " + std::to_string(code) + ": ";
    for (const char c : reason) line += (c == '\n' || c == '\r') ? ' ' : c;
    while (!line.empty() && line.back() == ' ') line.pop_back();
    writeStderr(Vnt_TxtToUtf8(line) + "\n");
}

// ---------------------------------------------------------------------------
// The terminal
// ---------------------------------------------------------------------------

bool interactiveTerminal() { return ::isatty(STDERR_FILENO) == 1 && ::isatty(STDIN_FILENO) == 1; }

void writeStderr(const std::string& utf8) {
    std::size_t done = 0;
    while (done < utf8.size()) {
        ssize_t r = ::write(STDERR_FILENO, utf8.data() + done, utf8.size() - done);
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) return;
        done += static_cast<std::size_t>(r);
    }
}

bool readLine(std::string& line) {
    line.clear();
    char c;
    for (;;) {
        ssize_t r = ::read(STDIN_FILENO, &c, 1);
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) return !line.empty();
        if (c == '\n') return true;
        if (c != '\r') line += c;
    }
}

// ---------------------------------------------------------------------------
// Faults and reset
// ---------------------------------------------------------------------------

void setProgramFile(const std::string& libPath) { state().programFile = libPath; }
void setLibraryFile(const std::string& libPath) { state().libraryFile = libPath; }

void reset() {
    HostState& s = state();
    // The process's working directory is left where it is; the table is
    // rebuilt from it on the next use.
    s = HostState{};
    setClock(nullptr);
    faultReset();
    watchReset();
    setLastError(ErrorKind::None);
}

}  // namespace vnt::host
