// The POSIX host: whole-file reads and atomic writes, directories, the
// desktop's opener and waiting while the window system runs.
#include "host/host.h"
#include "host/posix/host_call.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace vnt::host {
namespace {

bool isHostDir(const std::string& host) {
    struct stat st;
    return ::stat(host.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

/*
 * Writes the whole buffer as the file `libPath`. An injected full disk
 * takes what fits, then the write fails with ENOSPC as a real one would.
 */
bool writeAll(int fd, const std::string& data, const char* libPath) {
    std::size_t done = 0;
    while (done < data.size()) {
        if (faultHit(Op::Write, libPath)) {
            errno = EIO;
            return false;
        }
        const std::size_t want = faultWriteRoom(libPath, data.size() - done);
        if (want == 0) {
            errno = ENOSPC;
            return false;
        }
        ssize_t r = ::write(fd, data.data() + done, want);
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) {
            if (r == 0) errno = EIO;
            return false;
        }
        done += static_cast<std::size_t>(r);
    }
    return true;
}

// The full path of `name` on PATH when it is an executable file there.
bool findOnPath(const char* name, std::string& found) {
    const char* path = std::getenv("PATH");
    if (path == nullptr) return false;
    std::string all = path;
    std::size_t start = 0;
    while (start <= all.size()) {
        std::size_t end = all.find(':', start);
        if (end == std::string::npos) end = all.size();
        std::string dir = all.substr(start, end - start);
        if (dir.empty()) dir = ".";
        std::string cand = dir + "/" + name;
        struct stat st;
        if (::stat(cand.c_str(), &st) == 0 && S_ISREG(st.st_mode) && ::access(cand.c_str(), X_OK) == 0) {
            found = cand;
            return true;
        }
        start = end + 1;
    }
    return false;
}

}  // namespace

bool readFile(const char* libPath, std::string& data, bool* missing) {
    data.clear();
    if (missing) *missing = false;
    std::string host;
    if (libPath == nullptr || !toHost(libPath, host)) {
        errno = ENOENT;
        if (missing) *missing = true;
        return false;
    }
    File f;
    if (!f.openRead(libPath)) {
        if (missing) *missing = (errno == ENOENT || errno == ENOTDIR);
        return false;
    }
    char buf[16384];
    for (;;) {
        errno = 0;
        std::size_t got = f.read(buf, sizeof buf);
        if (got == 0) break;
        data.append(buf, got);
    }
    // A read that stopped on an error, rather than at the end, fails.
    if (errno != 0) {
        int e = errno;
        data.clear();
        errno = e;
        return false;
    }
    return true;
}

namespace {

/*
 * The process that made a temporary file name of ours (".<name>.<pid>.<n>.tmp"),
 * or 0 when the name is not one.
 */
pid_t tempOwner(const char* name) {
    const std::size_t len = std::strlen(name);
    if (name[0] != '.' || len < 9 || std::strcmp(name + len - 4, ".tmp") != 0) return 0;
    std::size_t end = len - 4;
    auto number = [&](std::size_t& e, unsigned long long& value) {
        std::size_t b = e;
        while (b > 1 && name[b - 1] >= '0' && name[b - 1] <= '9') --b;
        if (b == e || e - b > 18 || name[b - 1] != '.') return false;
        value = std::strtoull(std::string(name + b, e - b).c_str(), nullptr, 10);
        e = b - 1;
        return true;
    };
    unsigned long long counter, pid;
    if (!number(end, counter) || !number(end, pid) || end < 2) return 0;
    return pid > 0 && pid <= 0x7FFFFFFF ? static_cast<pid_t>(pid) : 0;
}

// Host directory and last component of a host path.
void splitHost(const std::string& host, std::string& dir, std::string& base) {
    std::size_t slash = host.rfind('/');
    dir = slash == std::string::npos ? "." : host.substr(0, slash == 0 ? 1 : slash);
    base = slash == std::string::npos ? host : host.substr(slash + 1);
}

}  // namespace

int removeStaleTemps(const std::string& hostDir) {
    DIR* d = ::opendir(hostDir.c_str());
    if (d == nullptr) return 0;
    const int saved = errno;
    int removed = 0;
    while (const dirent* e = ::readdir(d)) {
        const pid_t owner = tempOwner(e->d_name);
        // A process that cannot be signalled for lack of rights still runs.
        if (owner == 0 || owner == ::getpid() || ::kill(owner, 0) == 0 || errno != ESRCH) continue;
        if (::unlinkat(::dirfd(d), e->d_name, 0) == 0) ++removed;
    }
    ::closedir(d);
    errno = saved;
    return removed;
}

/*
 * Creates a new temporary file of this process beside the target (host
 * path), exclusively; the temporary files of dead writers go first. The
 * file takes the target's permissions when the target exists.
 */
int createTemp(const std::string& host, std::string& tmp, const char* libName) {
    std::string dir, base;
    splitHost(host, dir, base);
    if (base.empty()) {
        errno = EISDIR;
        return -1;
    }
    removeStaleTemps(dir);
    static unsigned counter = 0;
    int fd = -1;
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        tmp = (dir == "/" ? "" : dir) + "/." + base + "." + std::to_string(::getpid()) + "." +
              std::to_string(++counter) + ".tmp";
        if (faultHit(Op::Open, libName)) {
            errno = EIO;
            return -1;
        }
        do fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        while (fd < 0 && errno == EINTR);
        if (fd < 0 && errno != EEXIST) return -1;
    }
    if (fd < 0) return -1;
    struct stat st;
    if (::stat(host.c_str(), &st) == 0 && S_ISREG(st.st_mode)) ::fchmod(fd, st.st_mode & 07777);
    return fd;
}

/*
 * Writes through a new file beside the target, created exclusively under a
 * name of this process and flushed to the disk, then renames it over the
 * target.
 */
bool writeFileAtomic(const char* libPath, const std::string& data) {
    std::string host;
    if (libPath == nullptr || !toHost(libPath, host)) {
        errno = ENOENT;
        return false;
    }
    std::string tmp;
    const int fd = createTemp(host, tmp, libPath);
    if (fd < 0) return false;
    bool ok = writeAll(fd, data, libPath) && ::fsync(fd) == 0;
    int e = errno;
    if (::close(fd) != 0 && ok) {
        ok = false;
        e = errno;
    }
    if (ok && faultHit(Op::Rename, libPath)) {
        ok = false;
        e = EIO;
    }
    if (ok && ::rename(tmp.c_str(), host.c_str()) != 0) {
        ok = false;
        e = errno;
    }
    if (!ok) {
        ::unlink(tmp.c_str());
        errno = e;
    }
    return ok;
}


// The host name of a directory to create; false (ENOENT) when the name has
// none. `exists` tells whether it is a directory already.
static bool dirToCreate(const char* libPath, std::string& host, bool& exists) {
    if (libPath == nullptr || !toHost(libPath, host)) {
        errno = ENOENT;
        return false;
    }
    exists = isHostDir(host);
    return true;
}

bool makeDir(const char* libPath) {
    std::string host;
    bool exists;
    if (!dirToCreate(libPath, host, exists)) return false;
    if (exists) return true;
    if (::mkdir(host.c_str(), 0777) == 0) return true;
    return errno == EEXIST && isHostDir(host);
}

/*
 * Creates the missing directories from the top down. toHost has already
 * matched the existing part of the name without regard to case, so only the
 * components that do not exist at all are created, as written.
 */
bool makeDirs(const char* libPath) {
    std::string host;
    bool exists;
    if (!dirToCreate(libPath, host, exists)) return false;
    if (exists) return true;
    for (std::size_t pos = 1; pos <= host.size(); ++pos) {
        if (pos < host.size() && host[pos] != '/') continue;
        std::string part = host.substr(0, pos);
        if (isHostDir(part)) continue;
        if (::mkdir(part.c_str(), 0777) != 0 && !(errno == EEXIST && isHostDir(part))) return false;
    }
    return isHostDir(host);
}

bool removeFile(const char* libPath) {
    std::string host;
    if (!hostCall(libPath, Op::Remove, host)) return false;
    return ::unlink(host.c_str()) == 0;
}

bool fileExists(const char* libPath) {
    std::string host;
    if (libPath == nullptr || !toHost(libPath, host)) return false;
    struct stat st;
    return ::stat(host.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool openDocument(const char* libPath) {
    std::string host, opener;
    if (libPath == nullptr || !toHost(libPath, host)) {
        errno = ENOENT;
        return false;
    }
    if (!findOnPath("xdg-open", opener)) {
        errno = ENOENT;
        return false;
    }
    std::string arg0 = "xdg-open";
    std::vector<char*> argv = {arg0.data(), host.data(), nullptr};
    return spawnChild(opener, false, argv, std::string());
}

void sleepMs(long ms) {
    if (ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

}  // namespace vnt::host
