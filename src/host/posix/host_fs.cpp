// Renaming files.
#include "host/host.h"

#include <cerrno>
#include <cstdio>

namespace vnt::host {

bool renameFile(const char* fromLibPath, const char* toLibPath) {
    std::string from, to;
    if (!toHost(fromLibPath, from) || !toHost(toLibPath, to)) {
        errno = ENOENT;
        return false;
    }
    if (faultHit(Op::Rename, toLibPath)) {
        errno = EIO;
        return false;
    }
    return std::rename(from.c_str(), to.c_str()) == 0;
}

bool replaceFile(const char* fromLibPath, const char* toLibPath, ReplaceFail& fail) {
    fail = ReplaceFail::Rename;
    std::string from, to;
    if (!toHost(fromLibPath, from) || !toHost(toLibPath, to)) {
        errno = ENOENT;
        return false;
    }
    if (faultHit(Op::Remove, toLibPath)) {
        fail = ReplaceFail::Target;
        errno = EACCES;
        return false;
    }
    if (faultHit(Op::Rename, toLibPath)) {
        errno = EIO;
        return false;
    }
    if (std::rename(from.c_str(), to.c_str()) == 0) {
        fail = ReplaceFail::None;
        return true;
    }
    // Errors that a removal of the old file would have met as well.
    switch (errno) {
        case EACCES: case EPERM: case EBUSY: case EISDIR: case ENOTEMPTY: case EEXIST: case EROFS: case ETXTBSY:
            fail = ReplaceFail::Target;
            break;
        default:
            break;
    }
    return false;
}

}  // namespace vnt::host
