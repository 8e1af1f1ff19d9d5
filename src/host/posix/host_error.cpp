// Host errors: errno mapped to the error kinds of the host interface.
#include <cerrno>
#include <cstring>

#include "host/error.h"

namespace vnt::host {

namespace {

ErrorKind kindOf(int code) {
    switch (code) {
        case 0: return ErrorKind::None;
        case ENOENT:
        case ENOTDIR: return ErrorKind::NotFound;
        case EEXIST:
        case ENOTEMPTY: return ErrorKind::Exists;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR: return ErrorKind::Access;
        case EINVAL:
        case ENAMETOOLONG:
        case EILSEQ: return ErrorKind::Invalid;
        case EIO: return ErrorKind::IO;
        case ENOSPC:
        case EDQUOT: return ErrorKind::NoSpace;
        case EBUSY:
        case ETXTBSY: return ErrorKind::Busy;
        case ENOEXEC:
        case ELIBBAD: return ErrorKind::NotLoadable;
        default: return ErrorKind::Other;
    }
}

int codeOf(ErrorKind kind) {
    switch (kind) {
        case ErrorKind::None: return 0;
        case ErrorKind::NotFound: return ENOENT;
        case ErrorKind::Exists: return EEXIST;
        case ErrorKind::Access: return EACCES;
        case ErrorKind::Invalid: return EINVAL;
        case ErrorKind::IO: return EIO;
        case ErrorKind::NoSpace: return ENOSPC;
        case ErrorKind::Busy: return EBUSY;
        case ErrorKind::NotLoadable: return ENOEXEC;
        case ErrorKind::Other: break;
    }
    return ENOTSUP;
}

}  // namespace

// The last error lives in errno itself, so that every failing POSIX call of
// the host sets it without further code.
Error lastError() { return {kindOf(errno), static_cast<unsigned long>(errno)}; }

void setLastError(ErrorKind kind) { errno = codeOf(kind); }

void setLastError(const Error& error) { errno = static_cast<int>(error.code); }

Error errorOf(ErrorKind kind) { return {kind, static_cast<unsigned long>(codeOf(kind))}; }

std::string errorText(const Error& error) { return std::strerror(static_cast<int>(error.code)); }

std::string lastErrorText() { return std::strerror(errno); }

}  // namespace vnt::host
