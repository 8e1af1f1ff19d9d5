// The common start of a host call on a library path.
#pragma once

#include <cerrno>
#include <string>
#include <vector>

#include "host/host.h"

namespace vnt::host {

/// The descriptor a File holds as its handle.
inline int fdOf(File::Handle handle) { return static_cast<int>(handle); }

/// Converts `libPath` to its host path and consults the fault table for `op`.
/// False (errno ENOENT for a name without host form, EIO for an injected
/// fault) when the call must not go on.
inline bool hostCall(const char* libPath, Op op, std::string& host) {
    if (libPath == nullptr || !toHost(libPath, host)) {
        errno = ENOENT;
        return false;
    }
    if (faultHit(op, libPath)) {
        errno = EIO;
        return false;
    }
    return true;
}

/// Starts `program` with `argv` (null-terminated), in `hostDir` unless it is
/// empty, looked up on PATH when `searchPath`; the child joins the one list
/// of started processes. False with errno set when it cannot start.
bool spawnChild(const std::string& program, bool searchPath, std::vector<char*>& argv, const std::string& hostDir);
/// Collects the started processes that have ended (without waiting).
void reapChildren();
/// Creates a new temporary file of this process beside the host path `host`
/// (".<name>.<pid>.<n>.tmp", exclusively; Op::Open faults apply), with the
/// target's permissions when it exists, after removing the temporary files
/// of dead writers. Returns the descriptor (-1, errno set, on failure) and
/// the name in `tmp`; `libName` is the target's name for faults.
int createTemp(const std::string& host, std::string& tmp, const char* libName);

}  // namespace vnt::host
