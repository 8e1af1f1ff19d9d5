// The Win32 host: directory listings with what a search reports of each
// entry, file status, last-write times, attributes, removing directories,
// free space and environment variables.
#include "host/win32/host_call.h"

#include "vanto/text.h"

namespace vnt::host {
namespace {

// The attribute bits the find record carries, as the system gives them.
constexpr DWORD kAttrMask = kAttrReadOnly | kAttrHidden | kAttrDirectory | kAttrArchive;

void fill(DirEntry& e, DWORD attrs, DWORD sizeHigh, DWORD sizeLow, const FILETIME& written) {
    e.attributes = attrs & kAttrMask;
    e.size = (attrs & FILE_ATTRIBUTE_DIRECTORY) ? 0 : (static_cast<std::uint64_t>(sizeHigh) << 32 | sizeLow);
    e.modified = localOf(written);
}

// The last component of a library path.
std::string lastComponent(const char* libPath) {
    std::string p = libPath ? libPath : "";
    while (p.size() > 1 && p.back() == '\\') p.pop_back();
    const std::size_t sep = p.find_last_of("\\:");
    return sep == std::string::npos ? p : p.substr(sep + 1);
}

bool hasWildcard(const std::wstring& s) { return s.find_first_of(L"*?") != std::wstring::npos; }

// Opens a file (not a directory) for its times.
HANDLE openNoDir(const std::wstring& host, DWORD access) {
    HANDLE h = openHost(host, access, OPEN_EXISTING);
    if (h == INVALID_HANDLE_VALUE) return h;
    BY_HANDLE_FILE_INFORMATION info;
    if (!::GetFileInformationByHandle(h, &info) || (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
        ::CloseHandle(h);
        fail(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return h;
}

}  // namespace

bool listDir(const char* libDir, bool (*want)(const std::string&, void*), void* ctx, std::vector<DirEntry>& out) {
    out.clear();
    std::wstring host;
    if (libDir == nullptr || !toHostWide(libDir, host)) return fail(ERROR_FILE_NOT_FOUND);
    if (faultHit(Op::List, libDir)) return fail(ERROR_IO_DEVICE);
    if (!isHostDir(host)) {
        const DWORD a = ::GetFileAttributesW(host.c_str());
        return fail(a == INVALID_FILE_ATTRIBUTES ? ERROR_PATH_NOT_FOUND : ERROR_DIRECTORY);
    }
    WIN32_FIND_DATAW fd;
    const std::wstring pattern = host + (host.back() == L'\\' ? L"*" : L"\\*");
    HANDLE find = ::FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &fd, FindExSearchNameMatch, nullptr, 0);
    if (find == INVALID_HANDLE_VALUE) {
        // A drive's root has no "." and "..": an empty one lists nothing.
        return ::GetLastError() == ERROR_FILE_NOT_FOUND ? true : failLast();
    }
    do {
        DirEntry e;
        if (!Vnt_TxtFromUtf8(toUtf8(fd.cFileName), e.name)) continue;  // no Windows-1252 form
        if (want && !want(e.name, ctx)) continue;
        fill(e, fd.dwFileAttributes, fd.nFileSizeHigh, fd.nFileSizeLow, fd.ftLastWriteTime);
        out.push_back(std::move(e));
    } while (::FindNextFileW(find, &fd));
    ::FindClose(find);
    return true;
}

bool fileInfo(const char* libPath, DirEntry& out) {
    std::wstring host;
    if (!hostCall(libPath, Op::Stat, host)) return false;
    if (hasWildcard(host)) return fail(ERROR_INVALID_NAME);
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!::GetFileAttributesExW(host.c_str(), GetFileExInfoStandard, &data)) return failLast();
    out = DirEntry{};
    // The name as it is on disk, which may differ in case from the one asked for.
    WIN32_FIND_DATAW fd;
    HANDLE find = ::FindFirstFileExW(host.c_str(), FindExInfoBasic, &fd, FindExSearchNameMatch, nullptr, 0);
    if (find != INVALID_HANDLE_VALUE) {
        ::FindClose(find);
        if (!Vnt_TxtFromUtf8(toUtf8(fd.cFileName), out.name)) out.name.clear();
    }
    if (out.name.empty()) out.name = lastComponent(libPath);
    fill(out, data.dwFileAttributes, data.nFileSizeHigh, data.nFileSizeLow, data.ftLastWriteTime);
    return true;
}

unsigned long fileAttributes(const char* libPath) {
    DirEntry e;
    return fileInfo(libPath, e) ? e.attributes : kAttrInvalid;
}

// Only the read-only bit is taken over, as on every host.
bool setFileAttributes(const char* libPath, unsigned long attributes) {
    std::wstring host;
    if (!hostCall(libPath, Op::Write, host)) return false;
    const DWORD a = ::GetFileAttributesW(host.c_str());
    if (a == INVALID_FILE_ATTRIBUTES) return failLast();
    DWORD n = (attributes & kAttrReadOnly) ? (a | FILE_ATTRIBUTE_READONLY) : (a & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    n &= ~static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY);
    if (n == 0) n = FILE_ATTRIBUTE_NORMAL;
    return ::SetFileAttributesW(host.c_str(), n) ? true : failLast();
}

bool fileWriteTime(const char* libPath, LocalTime& out) {
    std::wstring host;
    if (!hostCall(libPath, Op::Open, host)) return false;
    HANDLE h = openNoDir(host, GENERIC_READ);
    if (h == INVALID_HANDLE_VALUE) return false;
    FILETIME written;
    const bool ok = ::GetFileTime(h, nullptr, nullptr, &written) || failLast();
    ::CloseHandle(h);
    if (ok) out = localOf(written);
    return ok;
}

/*
 * Local time to the file's UTC time with the zone's rules of that day; a
 * time the host cannot hold (day 31 of April, year 1600) fails.
 */
bool setFileWriteTime(const char* libPath, const LocalTime& t) {
    std::wstring host;
    if (!hostCall(libPath, Op::Open, host)) return false;
    if (t.year < 1601 || t.year > 30827 || t.month < 1 || t.month > 12 || t.day < 1 || t.day > 31 || t.hour < 0 ||
        t.hour > 23 || t.minute < 0 || t.minute > 59 || t.second < 0 || t.second > 59 || t.millisecond < 0 ||
        t.millisecond > 999)
        return fail(ERROR_INVALID_PARAMETER);
    SYSTEMTIME local{};
    local.wYear = static_cast<WORD>(t.year);
    local.wMonth = static_cast<WORD>(t.month);
    local.wDay = static_cast<WORD>(t.day);
    local.wHour = static_cast<WORD>(t.hour);
    local.wMinute = static_cast<WORD>(t.minute);
    local.wSecond = static_cast<WORD>(t.second);
    local.wMilliseconds = static_cast<WORD>(t.millisecond);
    SYSTEMTIME utc;
    FILETIME ft;
    if (!::TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc) || !::SystemTimeToFileTime(&utc, &ft))
        return fail(ERROR_INVALID_PARAMETER);
    HANDLE h = openNoDir(host, GENERIC_WRITE);
    if (h == INVALID_HANDLE_VALUE) return false;
    const bool ok = ::SetFileTime(h, nullptr, nullptr, &ft) || failLast();
    ::CloseHandle(h);
    return ok;
}

bool removeDir(const char* libPath) {
    std::wstring host;
    if (!hostCall(libPath, Op::Remove, host)) return false;
    return ::RemoveDirectoryW(host.c_str()) ? true : failLast();
}

bool freeSpace(char letter, std::uint64_t& blocks, std::uint64_t& blockSize) {
    const char root[4] = {letter, ':', '\\', '\0'};
    std::wstring host;
    if (!volKnown(letter) || !toHostWide(root, host)) return fail(ERROR_FILE_NOT_FOUND);
    if (faultHit(Op::Stat, root)) return fail(ERROR_IO_DEVICE);
    if (host.back() != L'\\') host += L'\\';
    ULARGE_INTEGER avail, total, free;
    if (!::GetDiskFreeSpaceExW(host.c_str(), &avail, &total, &free)) return failLast();
    // The cluster is the block; a directory standing in for a volume has
    // the cluster size of its drive.
    DWORD sectorsPerCluster = 0, bytesPerSector = 0, freeClusters = 0, clusters = 0;
    wchar_t volume[MAX_PATH + 1];
    blockSize = 4096;
    if (::GetVolumePathNameW(host.c_str(), volume, MAX_PATH + 1) &&
        ::GetDiskFreeSpaceW(volume, &sectorsPerCluster, &bytesPerSector, &freeClusters, &clusters) && sectorsPerCluster &&
        bytesPerSector)
        blockSize = static_cast<std::uint64_t>(sectorsPerCluster) * bytesPerSector;
    blocks = avail.QuadPart / blockSize;
    return true;
}

bool envValue(const char* name, std::string& value) {
    value.clear();
    std::wstring w;
    if (name == nullptr || *name == '\0' || !toWide(Vnt_TxtToUtf8(name), w)) return false;
    std::wstring buf(256, L'\0');
    for (;;) {
        ::SetLastError(ERROR_SUCCESS);
        const DWORD n = ::GetEnvironmentVariableW(w.c_str(), buf.data(), static_cast<DWORD>(buf.size()));
        if (n == 0 && ::GetLastError() == ERROR_ENVVAR_NOT_FOUND) return false;
        if (n < buf.size()) {
            buf.resize(n);
            break;
        }
        buf.assign(n, L'\0');
    }
    return Vnt_TxtFromUtf8(toUtf8(buf.c_str(), static_cast<int>(buf.size())), value);
}

}  // namespace vnt::host
