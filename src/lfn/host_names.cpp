// Public face of the host's volume table and name conversion.
#include "vanto/lfn.h"

#include "base/strbuf.h"
#include "host/path.h"

bool Vnt_LfnVolMap(char letter, const char* hostDir) { return vnt::host::volMap(letter, hostDir); }

bool Vnt_LfnVolUnmap(char letter) { return vnt::host::volUnmap(letter); }

bool Vnt_LfnToHost(const char* path, char* out, std::size_t size) {
    std::string host;
    if (out == nullptr || size == 0 || !vnt::host::toHost(path, host) || host.size() >= size)
        return false;
    vnt::copyBounded(out, size, host);
    return true;
}

bool Vnt_LfnFromHost(char (&buf)[VNT_MAX_PATH], const char* hostPath) {
    std::string lib;
    if (!vnt::host::fromHost(hostPath, lib) || lib.size() >= VNT_MAX_PATH) return false;
    vnt::copyBounded(buf, lib);
    return true;
}
