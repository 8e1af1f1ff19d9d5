// The POSIX host: change notification through inotify (Linux), and the
// time-size-identity stamp that stands in for it where it is unavailable.
#include "host/host.h"

#include <cerrno>
#include <iterator>
#include <map>
#include <string>

#include <sys/stat.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/inotify.h>
#endif

namespace vnt::host {
namespace {

struct WatchState {
    int fd = -1;                      // the inotify descriptor; -1 = not opened yet
    bool unavailable = false;         // opening it failed once: do not try again
    std::map<std::string, int> byDir; // watched directory -> watch id
    std::map<int, std::string> dirOf; // watch id -> directory
};

WatchState& wstate() {
    static WatchState s;
    return s;
}

}  // namespace

FileStamp fileStamp(const std::string& hostPath) {
    struct stat st;
    if (::stat(hostPath.c_str(), &st) != 0) return {};
    FileStamp s;
    s.mtimeNs = static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    s.size = static_cast<std::int64_t>(st.st_size);
    s.inode = static_cast<std::uint64_t>(st.st_ino);
    s.device = static_cast<std::uint64_t>(st.st_dev);
    return s;
}

void hostPathSplit(const std::string& hostPath, std::string& dir, std::string& base) {
    const std::size_t slash = hostPath.rfind('/');
    dir = slash == std::string::npos ? "." : slash == 0 ? "/" : hostPath.substr(0, slash);
    base = slash == std::string::npos ? hostPath : hostPath.substr(slash + 1);
}

#if defined(__linux__)

int watchDir(const std::string& hostDir) {
    WatchState& w = wstate();
    auto it = w.byDir.find(hostDir);
    if (it != w.byDir.end()) return it->second;
    if (w.unavailable) return 0;
    if (w.fd < 0) {
        w.fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (w.fd < 0) {
            w.unavailable = true;
            return 0;
        }
    }
    int e = errno;  // a failed watch is no error of the caller's
    int wd = ::inotify_add_watch(w.fd, hostDir.c_str(),
                                 IN_CLOSE_WRITE | IN_MOVED_TO | IN_DELETE | IN_MOVED_FROM | IN_CREATE |
                                     IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR);
    errno = e;
    if (wd <= 0) return 0;
    // Two names of one directory share the id: keep the first name for it.
    if (!w.dirOf.count(wd)) w.dirOf[wd] = hostDir;
    w.byDir[hostDir] = wd;
    return wd;
}

/*
 * Reads the pending events in batches until the descriptor has none left.
 * A watch that ended (IN_IGNORED) is forgotten, so the directory is watched
 * anew when it is next asked for.
 */
void watchDrain(void (*sink)(const WatchEvent&, void*), void* ctx) {
    WatchState& w = wstate();
    if (w.fd < 0) return;
    int e = errno;
    alignas(struct inotify_event) char buf[8192];
    for (;;) {
        ssize_t n = ::read(w.fd, buf, sizeof buf);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        for (ssize_t off = 0; off + static_cast<ssize_t>(sizeof(struct inotify_event)) <= n;) {
            const auto* ev = reinterpret_cast<const struct inotify_event*>(buf + off);
            off += static_cast<ssize_t>(sizeof(struct inotify_event) + ev->len);
            WatchEvent out;
            out.id = ev->wd;
            if (ev->mask & IN_Q_OVERFLOW) {
                out.overflow = true;
                out.id = 0;
            } else if (ev->mask & (IN_IGNORED | IN_DELETE_SELF | IN_MOVE_SELF)) {
                // A moved directory keeps its watch: end it, since its old
                // name may soon stand for another directory.
                out.gone = true;
                if ((ev->mask & IN_MOVE_SELF) && w.dirOf.count(ev->wd)) ::inotify_rm_watch(w.fd, ev->wd);
                w.dirOf.erase(ev->wd);
                for (auto it = w.byDir.begin(); it != w.byDir.end();)
                    it = it->second == ev->wd ? w.byDir.erase(it) : std::next(it);
            } else if (ev->len > 0) {
                out.name = ev->name;  // NUL-padded by the kernel
            }
            sink(out, ctx);
        }
    }
    errno = e;
}

void watchReset() {
    WatchState& w = wstate();
    if (w.fd >= 0) ::close(w.fd);
    w = WatchState{};
}

#else  // no notification service: every caller falls back to the stamp

int watchDir(const std::string&) { return 0; }
void watchDrain(void (*)(const WatchEvent&, void*), void*) {}
void watchReset() {}

#endif

}  // namespace vnt::host
