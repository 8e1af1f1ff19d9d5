// The Win32 host: volumes and current directories, library path <-> host
// path conversion, reading files, the program's and the library's files.
//
// A volume letter is the real drive of that letter unless it is mapped to a
// directory (volMap, as "subst" does), which then stands in for the drive.
// The file system compares names without regard to case itself, so no
// component needs to be matched here.
#include "host/win32/host_call.h"

#include <cstdint>
#include <cwctype>
#include <string_view>
#include <vector>

#include "vanto/text.h"

namespace vnt::host {
namespace {

constexpr int kVolumes = 26;

struct HostState {
    bool ready = false;
    std::wstring volDir[kVolumes];  // directory a letter is mapped to ("" = the real drive)
    std::string volCwd[kVolumes];   // remembered current directory ("X:\..."); "" = root
    int curVol = 'C' - 'A';         // current volume
    std::string programFile;        // set by setProgramFile; "" = ask the system
    std::string libraryFile;        // set by setLibraryFile; "" = ask the loader
};

HostState& state() {
    static HostState s;
    return s;
}

int volIndex(char letter) {
    const unsigned char c = Vnt_TxtUpper(static_cast<unsigned char>(letter));
    return (c >= 'A' && c <= 'Z') ? c - 'A' : -1;
}

std::string volRoot(int v) { return std::string(1, static_cast<char>('A' + v)) + ":\\"; }

bool realDrive(int v) { return (::GetLogicalDrives() >> v) & 1u; }

// The host directory a volume stands for ("C:\" for a real drive, "" for none).
std::wstring volHost(int v) {
    const HostState& s = state();
    if (!s.volDir[v].empty()) return s.volDir[v];
    if (!realDrive(v)) return {};
    return std::wstring(1, static_cast<wchar_t>(L'A' + v)) + L":\\";
}

// Absolute, normalised host form: "C:\a\b" (no separator at the end but
// after a drive), without a "\\?\" prefix.
bool fullHost(const std::wstring& path, std::wstring& out) {
    std::wstring buf(MAX_PATH, L'\0');
    for (int i = 0; i < 2; ++i) {
        const DWORD n = ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(buf.size()), buf.data(), nullptr);
        if (n == 0) return failLast();
        if (n < buf.size()) {
            buf.resize(n);
            if (buf.rfind(L"\\\\?\\", 0) == 0 && buf.size() > 6 && buf[5] == L':') buf.erase(0, 4);
            while (buf.size() > 3 && buf.back() == L'\\') buf.pop_back();
            out = buf;
            return true;
        }
        buf.assign(n, L'\0');
    }
    return fail(ERROR_FILENAME_EXCED_RANGE);
}

// Equal without regard to case, as the file system compares names.
bool samePathPrefix(const std::wstring& path, const std::wstring& dir) {
    if (path.size() < dir.size()) return false;
    return ::CompareStringOrdinal(path.c_str(), static_cast<int>(dir.size()), dir.c_str(), static_cast<int>(dir.size()), TRUE) ==
           CSTR_EQUAL;
}

// Splits at every separator and resolves "." and ".." lexically; ".." above
// the top stays at the top, as at a root directory.
void pushComponents(std::string_view text, std::string_view seps, std::vector<std::string>& out) {
    std::size_t i = 0;
    while (i <= text.size()) {
        std::size_t j = text.find_first_of(seps, i);
        if (j == std::string_view::npos) j = text.size();
        const std::string_view c = text.substr(i, j - i);
        if (c == "..") {
            if (!out.empty()) out.pop_back();
        } else if (!c.empty() && c != ".") {
            out.emplace_back(c);
        }
        i = j + 1;
    }
}

void ensureReady() {
    HostState& s = state();
    if (s.ready) return;
    s.ready = true;
    wchar_t buf[MAX_PATH + 1];
    const DWORD n = ::GetCurrentDirectoryW(MAX_PATH + 1, buf);
    std::string lib;
    if (n > 0 && n <= MAX_PATH && fromHostWide(std::wstring(buf, n), lib) && lib.size() >= 3) {
        const int v = volIndex(lib[0]);
        s.curVol = v;
        s.volCwd[v] = lib;
    }
}

// Library path made absolute against the current directories: the volume
// index and the normalised components.
bool absoluteLib(const char* libPath, int& vol, std::vector<std::string>& parts) {
    ensureReady();
    HostState& s = state();
    std::string_view p(libPath ? libPath : "");
    if (p.size() >= 2 && (p[0] == '\\' || p[0] == '/') && (p[1] == '\\' || p[1] == '/'))
        return false;  // UNC names are not volumes
    vol = s.curVol;
    if (p.size() >= 2 && p[1] == ':') {
        vol = volIndex(p[0]);
        if (vol < 0) return false;
        p.remove_prefix(2);
    }
    if (volHost(vol).empty()) return false;
    if (p.empty() || (p[0] != '\\' && p[0] != '/')) {
        const std::string& cwd = s.volCwd[vol];
        if (cwd.size() > 3) pushComponents(std::string_view(cwd).substr(3), "\\", parts);
    }
    pushComponents(p, "\\/", parts);
    return true;
}

}  // namespace

// ---------------------------------------------------------------------------
// Text at the boundary
// ---------------------------------------------------------------------------

bool toWide(std::string_view utf8, std::wstring& out) {
    out.clear();
    if (utf8.empty()) return true;
    const int n = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    if (n <= 0) return false;
    out.resize(static_cast<std::size_t>(n));
    ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), static_cast<int>(utf8.size()), out.data(), n);
    return true;
}

std::string toUtf8(const wchar_t* text, int len) {
    if (text == nullptr || len == 0) return {};
    const int n = ::WideCharToMultiByte(CP_UTF8, 0, text, len, nullptr, 0, nullptr, nullptr);
    if (n <= 0) return {};
    std::string out(static_cast<std::size_t>(n), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, len, out.data(), n, nullptr, nullptr);
    if (len < 0 && !out.empty() && out.back() == '\0') out.pop_back();
    return out;
}

// ---------------------------------------------------------------------------
// Volumes and the current directory
// ---------------------------------------------------------------------------

bool volMap(char letter, const char* hostDir) {
    ensureReady();
    const int v = volIndex(letter);
    std::wstring w, dir;
    if (v < 0 || hostDir == nullptr || *hostDir == '\0' || !toWide(hostDir, w) || !fullHost(w, dir) || !isHostDir(dir))
        return false;
    HostState& s = state();
    s.volDir[v] = dir;
    s.volCwd[v].clear();
    return true;
}

bool volUnmap(char letter) {
    ensureReady();
    const int v = volIndex(letter);
    if (v < 0 || state().volDir[v].empty()) return false;
    state().volDir[v].clear();
    state().volCwd[v].clear();
    return true;
}

bool volKnown(char letter) {
    ensureReady();
    const int v = volIndex(letter);
    if (v < 0) return false;
    const std::wstring dir = volHost(v);
    return !dir.empty() && isHostDir(dir);
}

std::string volCurDir(char letter) {
    ensureReady();
    const int v = volIndex(letter);
    if (v < 0 || volHost(v).empty()) return {};
    const std::string& cwd = state().volCwd[v];
    return cwd.empty() ? volRoot(v) : cwd;
}

std::string curDir() {
    ensureReady();
    return volCurDir(static_cast<char>('A' + state().curVol));
}

bool setCurDir(const std::string& libPath) {
    int vol;
    std::vector<std::string> parts;
    if (!absoluteLib(libPath.c_str(), vol, parts)) return false;
    std::string lib = volRoot(vol);
    for (std::size_t i = 0; i < parts.size(); ++i) lib += (i ? "\\" : "") + parts[i];
    std::wstring host;
    if (!toHostWide(lib.c_str(), host) || !isHostDir(host)) return false;
    // The process follows, so that programs it starts and relative host
    // names see the same directory.
    if (!::SetCurrentDirectoryW(host.c_str())) return failLast();
    HostState& s = state();
    s.volCwd[vol] = lib;
    s.curVol = vol;
    return true;
}

bool toHostWide(const char* libPath, std::wstring& hostPath) {
    int vol;
    std::vector<std::string> parts;
    if (!absoluteLib(libPath, vol, parts)) return false;
    std::wstring out = volHost(vol);
    for (const std::string& part : parts) {
        std::wstring w;
        // A ":" inside a name would reach an alternate stream of a file.
        if (part.find(':') != std::string::npos || !toWide(Vnt_TxtToUtf8(part), w)) return false;
        if (out.back() != L'\\') out += L'\\';
        out += w;
    }
    hostPath = out;
    return true;
}

bool toHost(const char* libPath, std::string& hostPath) {
    std::wstring w;
    if (!toHostWide(libPath, w)) return false;
    hostPath = toUtf8(w.c_str(), static_cast<int>(w.size()));
    return true;
}

/*
 * The volume mapped to the longest directory holding the path wins; a path
 * no mapping holds is on its own drive, unless that letter is mapped
 * elsewhere (then the drive is out of reach).
 */
bool fromHostWide(const std::wstring& hostPath, std::string& libPath) {
    ensureReady();  // also called from the first set-up, which has set `ready` by then
    std::wstring abs;
    if (hostPath.empty() || !fullHost(hostPath, abs)) return false;
    const HostState& s = state();
    int vol = -1;
    std::size_t best = 0;
    for (int v = 0; v < kVolumes; ++v) {
        const std::wstring& d = s.volDir[v];
        if (d.empty() || !samePathPrefix(abs, d)) continue;
        const bool holds = abs.size() == d.size() || d.back() == L'\\' || abs[d.size()] == L'\\';
        if (holds && (vol < 0 || d.size() > best)) {
            vol = v;
            best = d.size();
        }
    }
    if (vol < 0) {
        if (abs.size() < 3 || abs[1] != L':' || abs[2] != L'\\') return false;
        vol = volIndex(static_cast<char>(abs[0] < 128 ? abs[0] : 0));
        if (vol < 0 || !s.volDir[vol].empty()) return false;
        best = 2;
    }
    std::wstring_view rest = std::wstring_view(abs).substr(best);
    while (!rest.empty() && rest.front() == L'\\') rest.remove_prefix(1);
    std::string conv;
    if (!Vnt_TxtFromUtf8(toUtf8(rest.data(), static_cast<int>(rest.size())), conv)) return false;
    libPath = volRoot(vol) + conv;
    return true;
}

bool fromHost(const char* hostPath, std::string& libPath) {
    std::wstring w;
    if (hostPath == nullptr || *hostPath == '\0' || !toWide(hostPath, w)) return false;
    ensureReady();
    return fromHostWide(w, libPath);
}

// ---------------------------------------------------------------------------
// Common helpers of the host's calls
// ---------------------------------------------------------------------------

bool hostCall(const char* libPath, Op op, std::wstring& host) {
    if (libPath == nullptr || !toHostWide(libPath, host)) return fail(ERROR_FILE_NOT_FOUND);
    if (faultHit(op, libPath)) return fail(ERROR_IO_DEVICE);
    return true;
}

HANDLE openHost(const std::wstring& path, DWORD access, DWORD disposition, DWORD flags) {
    HANDLE h = ::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             disposition, flags, nullptr);
    if (h == INVALID_HANDLE_VALUE) failLast();
    return h;
}

bool isHostDir(const std::wstring& path) {
    const DWORD a = ::GetFileAttributesW(path.c_str());
    return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY);
}

void splitHostWide(const std::wstring& path, std::wstring& dir, std::wstring& base) {
    const std::size_t sep = path.find_last_of(L"\\/");
    if (sep == std::wstring::npos) {
        dir = L".";
        base = path;
        return;
    }
    dir = path.substr(0, sep == 2 && path[1] == L':' ? 3 : sep);
    base = path.substr(sep + 1);
}

LocalTime localOf(const FILETIME& utc) {
    SYSTEMTIME u{}, l{};
    LocalTime t;
    if (!::FileTimeToSystemTime(&utc, &u) || !::SystemTimeToTzSpecificLocalTime(nullptr, &u, &l)) return t;
    t.year = l.wYear;
    t.month = l.wMonth;
    t.day = l.wDay;
    t.hour = l.wHour;
    t.minute = l.wMinute;
    t.second = l.wSecond;
    t.millisecond = l.wMilliseconds;
    t.weekday = l.wDayOfWeek == 0 ? 7 : l.wDayOfWeek;
    return t;
}

std::size_t readAtHandle(HANDLE h, void* buf, std::size_t n, std::uint64_t pos, bool& failed) {
    failed = false;
    std::size_t got = 0;
    auto* p = static_cast<char*>(buf);
    while (got < n) {
        OVERLAPPED at{};
        const std::uint64_t where = pos + got;
        at.Offset = static_cast<DWORD>(where);
        at.OffsetHigh = static_cast<DWORD>(where >> 32);
        const DWORD want = static_cast<DWORD>(n - got < (1u << 30) ? n - got : (1u << 30));
        DWORD r = 0;
        if (!::ReadFile(h, p + got, want, &r, &at)) {
            const DWORD e = ::GetLastError();
            if (e != ERROR_HANDLE_EOF) {
                failed = true;
                fail(e);
            }
            break;
        }
        if (r == 0) break;
        got += r;
    }
    return got;
}

bool writeAtHandle(HANDLE h, std::uint64_t pos, const char* p, std::size_t n, std::size_t& done) {
    done = 0;
    while (done < n) {
        OVERLAPPED at{};
        const std::uint64_t where = pos + done;
        at.Offset = static_cast<DWORD>(where);
        at.OffsetHigh = static_cast<DWORD>(where >> 32);
        const DWORD want = static_cast<DWORD>(n - done < (1u << 30) ? n - done : (1u << 30));
        DWORD w = 0;
        if (!::WriteFile(h, p + done, want, &w, &at)) return failLast();
        if (w == 0) return fail(ERROR_DISK_FULL);
        done += w;
    }
    return true;
}

// ---------------------------------------------------------------------------
// Files: reading
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
    std::wstring host;
    if (!hostCall(libPath, Op::Open, host)) return false;
    HANDLE h = openHost(host, GENERIC_READ, OPEN_EXISTING);
    if (h == INVALID_HANDLE_VALUE) return false;
    BY_HANDLE_FILE_INFORMATION info;
    if (!::GetFileInformationByHandle(h, &info) || (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
        ::CloseHandle(h);
        return fail(ERROR_ACCESS_DENIED);
    }
    opened(numberOf(h), libPath);
    return true;
}

void File::opened(Handle h, const char* libPath) {
    handle_ = h;
    pos_ = 0;
    if (faultByName()) faultName_ = libPath;
}

namespace {
std::size_t readFull(File::Handle h, void* buf, std::size_t n, std::uint64_t pos, const char* name) {
    if (h == File::kNoHandle) return 0;
    if (faultHit(Op::Read, name)) {
        fail(ERROR_IO_DEVICE);
        return 0;
    }
    bool failed;
    return readAtHandle(handleOf(h), buf, n, pos, failed);
}
}  // namespace

std::size_t File::read(void* buf, std::size_t n) {
    const std::size_t got = readFull(handle_, buf, n, pos_, faultName());
    pos_ += got;
    return got;
}

std::size_t File::readAt(void* buf, std::size_t n, std::uint64_t pos) { return readFull(handle_, buf, n, pos, faultName()); }

bool File::seek(std::uint64_t pos) {
    if (handle_ == kNoHandle) return false;
    if (faultHit(Op::Seek, faultName())) return fail(ERROR_IO_DEVICE);
    // Positions past the end are allowed; the next read gets 0.
    if (pos > static_cast<std::uint64_t>(INT64_MAX)) return fail(ERROR_INVALID_PARAMETER);
    pos_ = pos;
    return true;
}

std::int64_t File::size() {
    LARGE_INTEGER sz;
    if (handle_ == kNoHandle || !::GetFileSizeEx(handleOf(handle_), &sz)) return -1;
    return static_cast<std::int64_t>(sz.QuadPart);
}

void File::close() {
    if (handle_ != kNoHandle) ::CloseHandle(handleOf(handle_));
    handle_ = kNoHandle;
    pos_ = 0;
    faultName_.clear();
}

// ---------------------------------------------------------------------------
// The program and the library
// ---------------------------------------------------------------------------

namespace {
std::string moduleLibPath(HMODULE mod) {
    std::wstring buf(MAX_PATH, L'\0');
    for (;;) {
        const DWORD n = ::GetModuleFileNameW(mod, buf.data(), static_cast<DWORD>(buf.size()));
        if (n == 0) return {};
        if (n < buf.size()) {
            buf.resize(n);
            break;
        }
        if (buf.size() >= 32768) return {};
        buf.resize(buf.size() * 2);
    }
    std::string lib;
    ensureReady();
    return fromHostWide(buf, lib) ? lib : std::string();
}
}  // namespace

std::string programFile() {
    if (!state().programFile.empty()) return state().programFile;
    return moduleLibPath(nullptr);
}

std::string libraryFile() {
    if (!state().libraryFile.empty()) return state().libraryFile;
    HMODULE mod = nullptr;
    if (!::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                              reinterpret_cast<LPCWSTR>(&libraryFile), &mod))
        return {};
    return moduleLibPath(mod);
}

void setProgramFile(const std::string& libPath) { state().programFile = libPath; }
void setLibraryFile(const std::string& libPath) { state().libraryFile = libPath; }

void writeExitReason(int code, const std::string& reason) {
    std::string program = programFile();
    if (const std::size_t cut = program.find_last_of("\\:"); cut != std::string::npos) program.erase(0, cut + 1);
    std::string line = (program.empty() ? std::string("vantortl") : program) + ": exit code " + std::to_string(code) + ": ";
    for (const char c : reason) line += (c == '\n' || c == '\r') ? ' ' : c;
    while (!line.empty() && line.back() == ' ') line.pop_back();
    writeStderr(Vnt_TxtToUtf8(line) + "\n");
}

// ---------------------------------------------------------------------------
// Reset
// ---------------------------------------------------------------------------

void reset() {
    // The process's working directory is left where it is; the table is
    // rebuilt from it on the next use.
    state() = HostState{};
    setClock(nullptr);
    faultReset();
    watchReset();
    setLastError(ErrorKind::None);
}

}  // namespace vnt::host
