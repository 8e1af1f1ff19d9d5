// The Win32 host: whole-file reads and atomic writes, temporary files of
// writers, creating and removing files and directories, renaming.
#include "host/win32/host_call.h"

#include <cstdlib>
#include <cstring>

namespace vnt::host {
namespace {

/*
 * Writes the whole buffer as the file `libPath`. An injected full disk
 * takes what fits, then the write fails as a real one would.
 */
bool writeAll(HANDLE h, const std::string& data, const char* libPath) {
    std::size_t done = 0;
    while (done < data.size()) {
        if (faultHit(Op::Write, libPath)) return fail(ERROR_IO_DEVICE);
        const std::size_t want = faultWriteRoom(libPath, data.size() - done);
        if (want == 0) return fail(ERROR_DISK_FULL);
        std::size_t wrote = 0;
        if (!writeAtHandle(h, done, data.data() + done, want, wrote)) return false;
        done += wrote;
    }
    return true;
}

/*
 * The process that made a temporary file name of ours (".<name>.<pid>.<n>.tmp"),
 * or 0 when the name is not one.
 */
DWORD tempOwner(const wchar_t* name) {
    const std::size_t len = std::wcslen(name);
    if (name[0] != L'.' || len < 9 || std::wcscmp(name + len - 4, L".tmp") != 0) return 0;
    std::size_t end = len - 4;
    auto number = [&](std::size_t& e, unsigned long long& value) {
        std::size_t b = e;
        while (b > 1 && name[b - 1] >= L'0' && name[b - 1] <= L'9') --b;
        if (b == e || e - b > 18 || name[b - 1] != L'.') return false;
        value = 0;
        for (std::size_t i = b; i < e; ++i) value = value * 10 + static_cast<unsigned>(name[i] - L'0');
        e = b - 1;
        return true;
    };
    unsigned long long counter, pid;
    if (!number(end, counter) || !number(end, pid) || end < 2) return 0;
    return pid > 0 && pid <= 0xFFFFFFFFull ? static_cast<DWORD>(pid) : 0;
}

// A process that cannot be opened for lack of rights still runs; one whose
// object lives on in another's handle has ended all the same.
bool processRuns(DWORD pid) {
    HANDLE p = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, pid);
    if (p == nullptr) return ::GetLastError() != ERROR_INVALID_PARAMETER;
    DWORD code = 0;
    const bool runs = !::GetExitCodeProcess(p, &code) || code == STILL_ACTIVE;
    ::CloseHandle(p);
    return runs;
}

}  // namespace

bool readFile(const char* libPath, std::string& data, bool* missing) {
    data.clear();
    if (missing) *missing = false;
    std::wstring host;
    if (libPath == nullptr || !toHostWide(libPath, host)) {
        if (missing) *missing = true;
        return fail(ERROR_FILE_NOT_FOUND);
    }
    File f;
    if (!f.openRead(libPath)) {
        if (missing) *missing = lastError().kind == ErrorKind::NotFound;
        return false;
    }
    char buf[16384];
    setLastError(ErrorKind::None);
    for (;;) {
        const std::size_t got = f.read(buf, sizeof buf);
        if (got == 0) break;
        data.append(buf, got);
    }
    // A read that stopped on an error, rather than at the end, fails.
    if (lastError()) {
        data.clear();
        return false;
    }
    return true;
}

int removeStaleTemps(const std::string& hostDir) {
    std::wstring dir;
    if (!toWide(hostDir, dir)) return 0;
    if (!dir.empty() && dir.back() != L'\\' && dir.back() != L'/') dir += L'\\';
    WIN32_FIND_DATAW fd;
    HANDLE find = ::FindFirstFileExW((dir + L".*.tmp").c_str(), FindExInfoBasic, &fd, FindExSearchNameMatch, nullptr, 0);
    if (find == INVALID_HANDLE_VALUE) return 0;
    const DWORD self = ::GetCurrentProcessId();
    int removed = 0;
    do {
        const DWORD owner = tempOwner(fd.cFileName);
        if (owner == 0 || owner == self || processRuns(owner)) continue;
        if (::DeleteFileW((dir + fd.cFileName).c_str())) ++removed;
    } while (::FindNextFileW(find, &fd));
    ::FindClose(find);
    return removed;
}

/*
 * Creates a new temporary file of this process beside the target (host
 * path), exclusively; the temporary files of dead writers go first.
 */
HANDLE createTemp(const std::wstring& host, std::wstring& tmp, const char* libName) {
    std::wstring dir, base;
    splitHostWide(host, dir, base);
    if (base.empty()) {
        fail(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    removeStaleTemps(toUtf8(dir.c_str(), static_cast<int>(dir.size())));
    static unsigned counter = 0;
    const std::wstring pid = std::to_wstring(::GetCurrentProcessId());
    for (int attempt = 0; attempt < 100; ++attempt) {
        tmp = dir + (dir.back() == L'\\' ? L"" : L"\\") + L"." + base + L"." + pid + L"." + std::to_wstring(++counter) + L".tmp";
        if (faultHit(Op::Open, libName)) {
            fail(ERROR_IO_DEVICE);
            return INVALID_HANDLE_VALUE;
        }
        HANDLE h = openHost(tmp, GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
        if (h != INVALID_HANDLE_VALUE) return h;
        const ErrorKind k = lastError().kind;
        if (k != ErrorKind::Exists) return INVALID_HANDLE_VALUE;
    }
    return INVALID_HANDLE_VALUE;
}

/*
 * Writes through a new file beside the target, created exclusively under a
 * name of this process and flushed to the disk, then moved over the target.
 */
bool writeFileAtomic(const char* libPath, const std::string& data) {
    std::wstring host;
    if (libPath == nullptr || !toHostWide(libPath, host)) return fail(ERROR_FILE_NOT_FOUND);
    std::wstring tmp;
    HANDLE h = createTemp(host, tmp, libPath);
    if (h == INVALID_HANDLE_VALUE) return false;
    bool ok = writeAll(h, data, libPath) && (::FlushFileBuffers(h) || failLast());
    Error e = lastError();
    if (!::CloseHandle(h) && ok) {
        failLast();
        ok = false;
        e = lastError();
    }
    if (ok && faultHit(Op::Rename, libPath)) {
        fail(ERROR_IO_DEVICE);
        ok = false;
        e = lastError();
    }
    if (ok && !::MoveFileExW(tmp.c_str(), host.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        failLast();
        ok = false;
        e = lastError();
    }
    if (!ok) {
        ::DeleteFileW(tmp.c_str());
        setLastError(e);
    }
    return ok;
}

bool makeDir(const char* libPath) {
    std::wstring host;
    if (libPath == nullptr || !toHostWide(libPath, host)) return fail(ERROR_FILE_NOT_FOUND);
    if (isHostDir(host)) return true;
    if (::CreateDirectoryW(host.c_str(), nullptr)) return true;
    failLast();
    return isHostDir(host);
}

// Creates the missing directories from the top down.
bool makeDirs(const char* libPath) {
    std::wstring host;
    if (libPath == nullptr || !toHostWide(libPath, host)) return fail(ERROR_FILE_NOT_FOUND);
    if (isHostDir(host)) return true;
    for (std::size_t pos = 3; pos <= host.size(); ++pos) {
        if (pos < host.size() && host[pos] != L'\\') continue;
        const std::wstring part = host.substr(0, pos);
        if (isHostDir(part)) continue;
        if (!::CreateDirectoryW(part.c_str(), nullptr) && !isHostDir(part)) return failLast();
    }
    return isHostDir(host);
}

bool removeFile(const char* libPath) {
    std::wstring host;
    if (!hostCall(libPath, Op::Remove, host)) return false;
    return ::DeleteFileW(host.c_str()) ? true : failLast();
}

bool fileExists(const char* libPath) {
    std::wstring host;
    if (libPath == nullptr || !toHostWide(libPath, host)) return false;
    const DWORD a = ::GetFileAttributesW(host.c_str());
    return a != INVALID_FILE_ATTRIBUTES && !(a & FILE_ATTRIBUTE_DIRECTORY);
}

bool renameFile(const char* fromLibPath, const char* toLibPath) {
    std::wstring from, to;
    if (!toHostWide(fromLibPath, from) || !toHostWide(toLibPath, to)) return fail(ERROR_FILE_NOT_FOUND);
    if (faultHit(Op::Rename, toLibPath)) return fail(ERROR_IO_DEVICE);
    if (isHostDir(to) && !isHostDir(from)) return fail(ERROR_ACCESS_DENIED);
    return ::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) ? true : failLast();
}

bool replaceFile(const char* fromLibPath, const char* toLibPath, ReplaceFail& how) {
    how = ReplaceFail::Rename;
    std::wstring from, to;
    if (!toHostWide(fromLibPath, from) || !toHostWide(toLibPath, to)) return fail(ERROR_FILE_NOT_FOUND);
    if (faultHit(Op::Remove, toLibPath)) {
        how = ReplaceFail::Target;
        return fail(ERROR_ACCESS_DENIED);
    }
    if (faultHit(Op::Rename, toLibPath)) return fail(ERROR_IO_DEVICE);
    if (isHostDir(to)) {
        how = ReplaceFail::Target;
        return fail(ERROR_ACCESS_DENIED);
    }
    if (::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        how = ReplaceFail::None;
        return true;
    }
    failLast();
    // Errors that a removal of the old file would have met as well.
    switch (lastError().kind) {
        case ErrorKind::Access:
        case ErrorKind::Busy:
        case ErrorKind::Exists: how = ReplaceFail::Target; break;
        default: break;
    }
    return false;
}

}  // namespace vnt::host
