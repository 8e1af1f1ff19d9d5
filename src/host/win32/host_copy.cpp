// Writing files and copying their contents.
#include "host/win32/host_call.h"

namespace vnt::host {

bool File::openWrite(const char* libPath) {
    close();
    std::wstring host;
    if (!hostCall(libPath, Op::Open, host)) return false;
    HANDLE h = openHost(host, GENERIC_WRITE, CREATE_ALWAYS);
    if (h == INVALID_HANDLE_VALUE) return false;
    opened(numberOf(h), libPath);
    return true;
}

bool File::openReplacement(const char* targetLibPath, std::string& tempLibPath) {
    close();
    std::wstring host;
    if (!hostCall(targetLibPath, Op::Open, host)) return false;
    // The old target must be one this process could have written over.
    const DWORD attrs = ::GetFileAttributesW(host.c_str());
    if (attrs != INVALID_FILE_ATTRIBUTES) {
        if (attrs & FILE_ATTRIBUTE_DIRECTORY) return fail(ERROR_ACCESS_DENIED);
        HANDLE probe = openHost(host, GENERIC_WRITE, OPEN_EXISTING);
        if (probe == INVALID_HANDLE_VALUE) return false;
        ::CloseHandle(probe);
    }
    std::wstring tmp;
    HANDLE h = createTemp(host, tmp, targetLibPath);
    if (h == INVALID_HANDLE_VALUE) return false;
    if (!fromHostWide(tmp, tempLibPath)) {
        ::CloseHandle(h);
        ::DeleteFileW(tmp.c_str());
        return fail(ERROR_FILE_NOT_FOUND);
    }
    opened(numberOf(h), targetLibPath);
    return true;
}

bool File::sync() {
    if (handle_ == kNoHandle) return fail(ERROR_INVALID_HANDLE);
    return ::FlushFileBuffers(handleOf(handle_)) ? true : failLast();
}

bool File::write(const void* buf, std::size_t n) {
    if (handle_ == kNoHandle) return fail(ERROR_INVALID_HANDLE);
    if (faultHit(Op::Write, faultName())) return fail(ERROR_IO_DEVICE);
    // An injected full disk takes what fits and refuses the rest.
    const std::size_t room = faultWriteRoom(faultName(), n);
    std::size_t done = 0;
    const bool ok = writeAtHandle(handleOf(handle_), pos_, static_cast<const char*>(buf), room, done);
    pos_ += done;
    if (ok && room < n) return fail(ERROR_DISK_FULL);
    return ok;
}

std::size_t File::copyFrom(File& src, void* buf, std::size_t n, CopyFail& fail_) {
    fail_ = CopyFail::None;
    if (src.handle_ == kNoHandle || faultHit(Op::Read, src.faultName())) {
        fail(src.handle_ == kNoHandle ? ERROR_INVALID_HANDLE : ERROR_IO_DEVICE);
        fail_ = CopyFail::Read;
        return 0;
    }
    if (handle_ == kNoHandle || faultHit(Op::Write, faultName())) {
        fail(handle_ == kNoHandle ? ERROR_INVALID_HANDLE : ERROR_IO_DEVICE);
        fail_ = CopyFail::Write;
        return 0;
    }
    // An injected full disk copies what fits, then refuses.
    if (n > 0 && (n = faultWriteRoom(faultName(), n)) == 0) {
        fail(ERROR_DISK_FULL);
        fail_ = CopyFail::Write;
        return 0;
    }
    bool failed;
    const std::size_t got = readAtHandle(handleOf(src.handle_), buf, n, src.pos_, failed);
    if (failed) {
        fail_ = CopyFail::Read;
        return 0;
    }
    src.pos_ += got;
    std::size_t done = 0;
    const bool ok = writeAtHandle(handleOf(handle_), pos_, static_cast<const char*>(buf), got, done);
    pos_ += done;
    if (!ok) {
        fail_ = CopyFail::Write;
        return 0;
    }
    return got;
}

bool File::copyTimeFrom(File& other) {
    FILETIME access, write;
    if (handle_ == kNoHandle || other.handle_ == kNoHandle ||
        !::GetFileTime(handleOf(other.handle_), nullptr, &access, &write))
        return false;
    return ::SetFileTime(handleOf(handle_), nullptr, &access, &write) != 0;
}

bool File::reserve(std::uint64_t size) {
    if (handle_ == kNoHandle || size == 0) return false;
    FILE_ALLOCATION_INFO info{};
    info.AllocationSize.QuadPart = static_cast<LONGLONG>(size);
    return ::SetFileInformationByHandle(handleOf(handle_), FileAllocationInfo, &info, sizeof info) != 0;
}

// The cache manager reads ahead on its own once a file is read in order.
void File::adviseSequential() {}

}  // namespace vnt::host
