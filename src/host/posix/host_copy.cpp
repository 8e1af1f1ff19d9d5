// Writing files and copying their contents.
#include "host/host.h"
#include "host/posix/host_call.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vnt::host {

bool File::openWrite(const char* libPath) {
    close();
    std::string host;
    if (!hostCall(libPath, Op::Open, host)) return false;
    int fd;
    do fd = ::open(host.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) return false;
    opened(fd, libPath);
    return true;
}

bool File::openReplacement(const char* targetLibPath, std::string& tempLibPath) {
    close();
    std::string host;
    if (!hostCall(targetLibPath, Op::Open, host)) return false;
    // The old target must be one this process could have written over.
    struct stat st;
    if (::stat(host.c_str(), &st) == 0) {
        if (S_ISDIR(st.st_mode)) {
            errno = EISDIR;
            return false;
        }
        int probe;
        do probe = ::open(host.c_str(), O_WRONLY | O_CLOEXEC);
        while (probe < 0 && errno == EINTR);
        if (probe < 0) return false;
        ::close(probe);
    }
    std::string tmp;
    const int fd = createTemp(host, tmp, targetLibPath);
    if (fd < 0) return false;
    if (!fromHost(tmp.c_str(), tempLibPath)) {
        ::unlink(tmp.c_str());
        ::close(fd);
        errno = ENOENT;
        return false;
    }
    opened(fd, targetLibPath);
    return true;
}

bool File::sync() {
    if (fdOf(handle_) < 0) {
        errno = EBADF;
        return false;
    }
    return ::fsync(fdOf(handle_)) == 0;
}

namespace {
// Writes all of `n` bytes at `pos`; false (errno set) when the host refuses.
bool writeAll(int fd, std::uint64_t pos, const char* p, std::size_t n, std::size_t& done) {
    done = 0;
    while (done < n) {
        ssize_t w = ::pwrite(fd, p + done, n - done, static_cast<off_t>(pos + done));
        if (w < 0 && errno == EINTR) continue;
        if (w <= 0) {
            if (w == 0) errno = ENOSPC;
            return false;
        }
        done += static_cast<std::size_t>(w);
    }
    return true;
}
}  // namespace

bool File::write(const void* buf, std::size_t n) {
    if (fdOf(handle_) < 0) {
        errno = EBADF;
        return false;
    }
    if (faultHit(Op::Write, faultName())) {
        errno = EIO;
        return false;
    }
    // An injected full disk takes what fits and refuses the rest.
    const std::size_t room = faultWriteRoom(faultName(), n);
    std::size_t done = 0;
    const bool ok = writeAll(fdOf(handle_), pos_, static_cast<const char*>(buf), room, done);
    pos_ += done;
    if (ok && room < n) errno = ENOSPC;
    return ok && room == n;
}

std::size_t File::copyFrom(File& src, void* buf, std::size_t n, CopyFail& fail) {
    fail = CopyFail::None;
    if (fdOf(src.handle_) < 0 || faultHit(Op::Read, src.faultName())) {
        errno = fdOf(src.handle_) < 0 ? EBADF : EIO;
        fail = CopyFail::Read;
        return 0;
    }
    if (fdOf(handle_) < 0 || faultHit(Op::Write, faultName())) {
        errno = fdOf(handle_) < 0 ? EBADF : EIO;
        fail = CopyFail::Write;
        return 0;
    }
    // An injected full disk copies what fits, then refuses.
    if (n > 0 && (n = faultWriteRoom(faultName(), n)) == 0) {
        errno = ENOSPC;
        fail = CopyFail::Write;
        return 0;
    }
#ifdef __linux__
    // In the kernel: no copy through user space, and reflinks where the file
    // system shares extents. Any failure is retried below through the
    // buffer, which also tells which side failed.
    loff_t in = static_cast<loff_t>(src.pos_), out = static_cast<loff_t>(pos_);
    ssize_t c;
    do c = ::copy_file_range(fdOf(src.handle_), &in, fdOf(handle_), &out, n, 0);
    while (c < 0 && errno == EINTR);
    if (c >= 0) {
        src.pos_ += static_cast<std::uint64_t>(c);
        pos_ += static_cast<std::uint64_t>(c);
        return static_cast<std::size_t>(c);
    }
#endif
    std::size_t got = 0;
    auto* p = static_cast<char*>(buf);
    while (got < n) {
        ssize_t r = ::pread(fdOf(src.handle_), p + got, n - got, static_cast<off_t>(src.pos_ + got));
        if (r < 0 && errno == EINTR) continue;
        if (r < 0) {
            fail = CopyFail::Read;
            return 0;
        }
        if (r == 0) break;
        got += static_cast<std::size_t>(r);
    }
    src.pos_ += got;
    std::size_t done = 0;
    const bool ok = writeAll(fdOf(handle_), pos_, p, got, done);
    pos_ += done;
    if (!ok) {
        fail = CopyFail::Write;
        return 0;
    }
    return got;
}

bool File::copyTimeFrom(File& other) {
    struct stat st;
    if (fdOf(handle_) < 0 || fdOf(other.handle_) < 0 || ::fstat(fdOf(other.handle_), &st) != 0) return false;
    const timespec times[2] = {st.st_atim, st.st_mtim};
    return ::futimens(fdOf(handle_), times) == 0;
}

bool File::reserve(std::uint64_t size) {
    return fdOf(handle_) >= 0 && size > 0 &&
           ::fallocate(fdOf(handle_), FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0;
}

void File::adviseSequential() {
    if (fdOf(handle_) >= 0) ::posix_fadvise(fdOf(handle_), 0, 0, POSIX_FADV_SEQUENTIAL);
}

}  // namespace vnt::host
