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

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace vnt::host {
namespace {

bool isHostDir(const std::string& host) {
    struct stat st;
    return ::stat(host.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Free space the next atomic write is to find; negative = as much as the
// disk has. One-shot, so no test leaves it behind for the next.
long& diskFullLeft() {
    static long left = -1;
    return left;
}

/*
 * Writes the whole buffer. `spaceLeft` >= 0 simulates a full disk: that many
 * bytes go out, then the write fails with ENOSPC as a real one would.
 */
bool writeAll(int fd, const std::string& data, long spaceLeft = -1) {
    std::size_t done = 0;
    while (done < data.size()) {
        if (faultHit(Op::Write)) {
            errno = EIO;
            return false;
        }
        std::size_t want = data.size() - done;
        if (spaceLeft >= 0) {
            if (static_cast<std::size_t>(spaceLeft) <= done) {
                errno = ENOSPC;
                return false;
            }
            want = std::min(want, static_cast<std::size_t>(spaceLeft) - done);
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

/*
 * Writes through a new file beside the target, created exclusively under a
 * name of this process, then renames it over the target. The new file takes
 * the target's permissions when the target exists.
 */
bool writeFileAtomic(const char* libPath, const std::string& data) {
    std::string host;
    if (libPath == nullptr || !toHost(libPath, host)) {
        errno = ENOENT;
        return false;
    }
    std::size_t slash = host.rfind('/');
    std::string dir = slash == std::string::npos ? "." : host.substr(0, slash == 0 ? 1 : slash);
    std::string base = slash == std::string::npos ? host : host.substr(slash + 1);
    if (base.empty()) {
        errno = EISDIR;
        return false;
    }
    const long spaceLeft = diskFullLeft();
    diskFullLeft() = -1;
    static unsigned counter = 0;
    std::string tmp;
    int fd = -1;
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        tmp = (dir == "/" ? "" : dir) + "/." + base + "." + std::to_string(::getpid()) + "." +
              std::to_string(++counter) + ".tmp";
        if (faultHit(Op::Open)) {
            errno = EIO;
            return false;
        }
        do fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        while (fd < 0 && errno == EINTR);
        if (fd < 0 && errno != EEXIST) return false;
    }
    if (fd < 0) return false;
    struct stat st;
    if (::stat(host.c_str(), &st) == 0 && S_ISREG(st.st_mode)) ::fchmod(fd, st.st_mode & 07777);
    bool ok = writeAll(fd, data, spaceLeft) && ::fsync(fd) == 0;
    int e = errno;
    if (::close(fd) != 0 && ok) {
        ok = false;
        e = errno;
    }
    if (ok && faultHit(Op::Rename)) {
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

void faultDiskFull(long bytesLeft) { diskFullLeft() = bytesLeft < 0 ? -1 : bytesLeft; }

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
