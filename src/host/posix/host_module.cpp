// Loaded module libraries.
#include "host/host.h"

#include <cerrno>
#include <string>

#include <dlfcn.h>
#include <link.h>

namespace vnt::host {

namespace {
std::string& lastModuleError() {
    static std::string text;
    return text;
}
}  // namespace

void* moduleOpen(const std::string& hostName) {
    if (faultHit(Op::Load)) {
        errno = EIO;
        lastModuleError() = "simulated load failure";
        return nullptr;
    }
    void* h = ::dlopen(hostName.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!h) {
        const char* e = ::dlerror();
        lastModuleError() = e ? e : "unknown error";
        if (errno == 0) errno = ENOENT;
    }
    return h;
}

void moduleClose(void* handle) {
    if (handle) ::dlclose(handle);
}

std::string moduleError() { return lastModuleError(); }

std::string moduleFile(void* handle) {
    link_map* map = nullptr;
    if (!handle || ::dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || !map || !map->l_name || !*map->l_name)
        return {};
    std::string lib;
    return fromHost(map->l_name, lib) ? lib : std::string{};
}

}  // namespace vnt::host
