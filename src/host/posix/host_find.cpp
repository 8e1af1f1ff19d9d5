// The POSIX host: directory listings with what a search reports of each
// entry, file status, last-write times, attributes, removing directories,
// free space and environment variables.
#include "host/host.h"
#include "host/posix/host_call.h"
#include "vanto/text.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace vnt::host {
namespace {

LocalTime toLocal(const timespec& ts) {
    std::tm tm{};
    LocalTime t;
    if (::localtime_r(&ts.tv_sec, &tm) == nullptr) return t;
    t.year = tm.tm_year + 1900;
    t.month = tm.tm_mon + 1;
    t.day = tm.tm_mday;
    t.hour = tm.tm_hour;
    t.minute = tm.tm_min;
    t.second = tm.tm_sec > 59 ? 59 : tm.tm_sec;
    t.millisecond = static_cast<int>(ts.tv_nsec / 1000000);
    t.weekday = tm.tm_wday == 0 ? 7 : tm.tm_wday;
    return t;
}

// The platform's attribute word of a status and the entry's name.
unsigned long attributesOf(const struct stat& st, const std::string& name) {
    unsigned long a = 0;
    if (S_ISDIR(st.st_mode)) a |= kAttrDirectory;
    if (S_ISREG(st.st_mode)) a |= kAttrArchive;
    if ((st.st_mode & S_IWUSR) == 0) a |= kAttrReadOnly;
    if (!name.empty() && name[0] == '.') a |= kAttrHidden;
    return a;
}

void fill(DirEntry& e, const struct stat& st) {
    e.attributes = attributesOf(st, e.name);
    e.size = S_ISDIR(st.st_mode) ? 0 : static_cast<std::uint64_t>(st.st_size);
    e.modified = toLocal(st.st_mtim);
}

// Status of a name, following links; a dangling link reports itself.
bool statFollow(const std::string& host, struct stat& st) {
    return ::stat(host.c_str(), &st) == 0 || ::lstat(host.c_str(), &st) == 0;
}

// The last component of a library path.
std::string lastComponent(const char* libPath) {
    std::string p = libPath ? libPath : "";
    while (p.size() > 1 && p.back() == '\\') p.pop_back();
    const std::size_t sep = p.find_last_of("\\:");
    return sep == std::string::npos ? p : p.substr(sep + 1);
}

int openNoDir(const std::string& host, int flags) {
    int fd;
    do fd = ::open(host.c_str(), flags | O_CLOEXEC);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) return -1;
    struct stat st;
    if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
        ::close(fd);
        errno = EISDIR;
        return -1;
    }
    return fd;
}

}  // namespace

bool listDir(const char* libDir, bool (*want)(const std::string&, void*), void* ctx,
             std::vector<DirEntry>& out) {
    out.clear();
    std::string host;
    if (libDir == nullptr || !toHost(libDir, host)) {
        errno = ENOENT;
        return false;
    }
    if (faultHit(Op::List, libDir)) {
        errno = EIO;
        return false;
    }
    DIR* d = ::opendir(host.c_str());
    if (d == nullptr) return false;
    const std::string prefix = host == "/" ? "/" : host + "/";
    errno = 0;
    while (dirent* de = ::readdir(d)) {
        DirEntry e;
        if (!Vnt_TxtFromUtf8(de->d_name, e.name)) continue;  // no Windows-1252 form
        if (want && !want(e.name, ctx)) continue;
        struct stat st;
        if (!statFollow(prefix + de->d_name, st)) continue;  // gone meanwhile
        fill(e, st);
        out.push_back(std::move(e));
    }
    ::closedir(d);
    return true;
}

bool fileInfo(const char* libPath, DirEntry& out) {
    std::string host;
    if (!hostCall(libPath, Op::Stat, host)) return false;
    struct stat st;
    if (!statFollow(host, st)) return false;
    out = DirEntry{};
    // The name as it is on disk, which a lookup without regard to case may
    // have found under another spelling.
    const std::size_t slash = host.find_last_of('/');
    if (host.size() < 2 || slash == std::string::npos || !Vnt_TxtFromUtf8(host.substr(slash + 1), out.name))
        out.name = lastComponent(libPath);
    fill(out, st);
    return true;
}

unsigned long fileAttributes(const char* libPath) {
    DirEntry e;
    return fileInfo(libPath, e) ? e.attributes : kAttrInvalid;
}

bool setFileAttributes(const char* libPath, unsigned long attributes) {
    std::string host;
    if (!hostCall(libPath, Op::Write, host)) return false;
    struct stat st;
    if (::stat(host.c_str(), &st) != 0) return false;
    mode_t mode = st.st_mode & 07777;
    mode = (attributes & kAttrReadOnly) ? (mode & ~static_cast<mode_t>(0222)) : (mode | S_IWUSR);
    return ::chmod(host.c_str(), mode) == 0;
}

bool fileWriteTime(const char* libPath, LocalTime& out) {
    std::string host;
    if (!hostCall(libPath, Op::Open, host)) return false;
    const int fd = openNoDir(host, O_RDONLY);
    if (fd < 0) return false;
    struct stat st;
    const bool ok = ::fstat(fd, &st) == 0;
    ::close(fd);
    if (ok) out = toLocal(st.st_mtim);
    return ok;
}

bool setFileWriteTime(const char* libPath, const LocalTime& t) {
    std::string host;
    if (!hostCall(libPath, Op::Open, host)) return false;
    std::tm tm{};
    tm.tm_year = t.year - 1900;
    tm.tm_mon = t.month - 1;
    tm.tm_mday = t.day;
    tm.tm_hour = t.hour;
    tm.tm_min = t.minute;
    tm.tm_sec = t.second;
    tm.tm_isdst = -1;  // let the zone's rules decide
    const std::time_t when = std::mktime(&tm);
    if (when == static_cast<std::time_t>(-1)) {
        errno = EINVAL;
        return false;
    }
    const int fd = openNoDir(host, O_WRONLY);
    if (fd < 0) return false;
    timespec times[2];
    times[0].tv_sec = 0;
    times[0].tv_nsec = UTIME_OMIT;  // the access time stays
    times[1].tv_sec = when;
    times[1].tv_nsec = static_cast<long>(t.millisecond) * 1000000L;
    const bool ok = ::futimens(fd, times) == 0;
    const int e = errno;
    ::close(fd);
    errno = e;
    return ok;
}

bool removeDir(const char* libPath) {
    std::string host;
    if (!hostCall(libPath, Op::Remove, host)) return false;
    return ::rmdir(host.c_str()) == 0;
}

bool freeSpace(char letter, std::uint64_t& blocks, std::uint64_t& blockSize) {
    const char root[4] = {letter, ':', '\\', '\0'};
    std::string host;
    if (!volKnown(letter) || !toHost(root, host)) {
        errno = ENOENT;
        return false;
    }
    if (faultHit(Op::Stat, root)) {
        errno = EIO;
        return false;
    }
    struct statvfs vfs;
    if (::statvfs(host.c_str(), &vfs) != 0) return false;
    blocks = static_cast<std::uint64_t>(vfs.f_bavail);
    blockSize = static_cast<std::uint64_t>(vfs.f_frsize ? vfs.f_frsize : vfs.f_bsize);
    return true;
}

bool envValue(const char* name, std::string& value) {
    value.clear();
    if (name == nullptr || *name == '\0') return false;
    const char* v = std::getenv(name);
    return v != nullptr && Vnt_TxtFromUtf8(v, value);
}

}  // namespace vnt::host
