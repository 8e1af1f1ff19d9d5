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
    if (faultHit(Op::Rename)) {
        errno = EIO;
        return false;
    }
    return std::rename(from.c_str(), to.c_str()) == 0;
}

}  // namespace vnt::host
