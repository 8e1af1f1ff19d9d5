// The common start of a host call on a library path.
#pragma once

#include <cerrno>
#include <string>

#include "host/host.h"

namespace vnt::host {

/// Converts `libPath` to its host path and consults the fault table for `op`.
/// False (errno ENOENT for a name without host form, EIO for an injected
/// fault) when the call must not go on.
inline bool hostCall(const char* libPath, Op op, std::string& host) {
    if (libPath == nullptr || !toHost(libPath, host)) {
        errno = ENOENT;
        return false;
    }
    if (faultHit(op)) {
        errno = EIO;
        return false;
    }
    return true;
}

}  // namespace vnt::host
