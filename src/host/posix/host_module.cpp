// Loaded module libraries.
#include "host/host.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/stat.h>

#include "base/names.h"
#include "vanto/text.h"

namespace vnt::host {

namespace {
std::string& lastModuleError() {
    static std::string text;
    return text;
}

// dlopen with the loader's text kept for moduleError().
void* openHost(const std::string& hostName) {
    void* h = ::dlopen(hostName.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!h) {
        const char* e = ::dlerror();
        lastModuleError() = e ? e : "unknown error";
    }
    return h;
}

}  // namespace

void* moduleOpen(const std::string& hostName) {
    if (faultHit(Op::Load, hostName.c_str())) {
        errno = EIO;
        lastModuleError() = "simulated load failure";
        return nullptr;
    }
    void* h = openHost(hostName);
    if (!h && errno == 0) errno = ENOENT;
    return h;
}

/*
 * A module named "x.dll" is the shared library "x.so", or "libx.so" as the
 * host's build tools name libraries; the directory part stays.
 */
std::vector<std::string> moduleFileNames(const char* libName) {
    const std::string name = libName ? libName : "";
    // Library grammar: the directory part ends at the last '\\' or a volume's ':'.
    const std::size_t cut = name.find_last_of("\\:");
    const std::string dir = cut == std::string::npos ? std::string{} : name.substr(0, cut + 1);
    std::string base = cut == std::string::npos ? name : name.substr(cut + 1);
    const std::size_t dot = base.rfind('.');
    if (dot != std::string::npos && (vnt::sameText(base.c_str() + dot + 1, "dll") || vnt::sameText(base.c_str() + dot + 1, "so")))
        base.resize(dot);
    if (base.empty()) return {};
    return {dir + base + ".so", dir + "lib" + base + ".so"};
}

/*
 * The error reported is that of the first candidate that exists (it is
 * there but did not load: its missing symbols matter), else that of the
 * first candidate.
 */
void* moduleLoad(const char* libName) {
    if (libName == nullptr || !*libName) {
        errno = ENOENT;
        lastModuleError() = "no module name";
        return nullptr;
    }
    if (faultHit(Op::Load, libName)) {
        errno = EIO;
        lastModuleError() = "simulated load failure";
        return nullptr;
    }
    const bool bare = std::strpbrk(libName, "\\:") == nullptr;
    std::string firstError, existingError;
    bool anyExists = false;
    for (const std::string& cand : moduleFileNames(libName)) {
        std::string host;
        if (bare) host = Vnt_TxtToUtf8(cand);  // through the host's library search
        else if (!toHost(cand.c_str(), host)) continue;
        if (void* h = openHost(host)) return h;
        struct stat st;
        const bool exists = !bare && ::stat(host.c_str(), &st) == 0;
        if (firstError.empty()) firstError = lastModuleError();
        if (exists && !anyExists) existingError = lastModuleError();
        anyExists = anyExists || exists;
    }
    lastModuleError() = anyExists ? existingError : (firstError.empty() ? "name has no host form" : firstError);
    errno = anyExists ? ENOEXEC : ENOENT;
    return nullptr;
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

void* moduleSymbol(void* handle, const char* name, std::size_t* size) {
    if (size) *size = 0;
    if (!handle || !name || !*name) return nullptr;
    ::dlerror();
    void* p = ::dlsym(handle, name);
    if (!p) {
        const char* e = ::dlerror();
        lastModuleError() = e ? e : "symbol not found";
        return nullptr;
    }
    if (size) {
        Dl_info info;
        ElfW(Sym)* sym = nullptr;
        if (::dladdr1(p, &info, reinterpret_cast<void**>(&sym), RTLD_DL_SYMENT) && sym)
            *size = static_cast<std::size_t>(sym->st_size);
    }
    return p;
}

}  // namespace vnt::host
