// Loaded module libraries (LoadLibraryW, GetProcAddress).
#include "host/win32/host_call.h"

#include <cstring>

#include "base/names.h"
#include "vanto/text.h"

namespace vnt::host {

namespace {
std::string& lastModuleError() {
    static std::string text;
    return text;
}

// LoadLibraryW without the system's error boxes, with the loader's text
// kept for moduleError().
HMODULE openHost(const std::wstring& hostName) {
    DWORD old = 0;
    ::SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &old);
    HMODULE h = ::LoadLibraryW(hostName.c_str());
    const DWORD e = h ? ERROR_SUCCESS : ::GetLastError();
    ::SetThreadErrorMode(old, nullptr);
    if (!h) {
        fail(e);
        lastModuleError() = errorText(lastError());
    }
    return h;
}

}  // namespace

void* moduleOpen(const std::string& hostName) {
    if (faultHit(Op::Load, hostName.c_str())) {
        fail(ERROR_IO_DEVICE);
        lastModuleError() = "simulated load failure";
        return nullptr;
    }
    std::wstring w;
    if (!toWide(hostName, w)) {
        fail(ERROR_INVALID_NAME);
        lastModuleError() = errorText(lastError());
        return nullptr;
    }
    return openHost(w);
}

/*
 * A module named "x.dll" (or "x", "x.so") is the library "x.dll", or
 * "libx.dll" as the MinGW tools name libraries; the directory part stays.
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
    return {dir + base + ".dll", dir + "lib" + base + ".dll"};
}

/*
 * The error reported is that of the first candidate that exists (it is
 * there but did not load: what it misses matters), else that of the first
 * candidate.
 */
void* moduleLoad(const char* libName) {
    if (libName == nullptr || !*libName) {
        fail(ERROR_FILE_NOT_FOUND);
        lastModuleError() = "no module name";
        return nullptr;
    }
    if (faultHit(Op::Load, libName)) {
        fail(ERROR_IO_DEVICE);
        lastModuleError() = "simulated load failure";
        return nullptr;
    }
    const bool bare = std::strpbrk(libName, "\\:") == nullptr;
    std::string firstError, existingError;
    bool anyExists = false;
    for (const std::string& cand : moduleFileNames(libName)) {
        std::wstring host;
        if (bare) {
            if (!toWide(Vnt_TxtToUtf8(cand), host)) continue;  // through the system's library search
        } else if (!toHostWide(cand.c_str(), host)) {
            continue;
        }
        if (HMODULE h = openHost(host)) return h;
        const DWORD a = bare ? INVALID_FILE_ATTRIBUTES : ::GetFileAttributesW(host.c_str());
        const bool exists = a != INVALID_FILE_ATTRIBUTES && !(a & FILE_ATTRIBUTE_DIRECTORY);
        if (firstError.empty()) firstError = lastModuleError();
        if (exists && !anyExists) existingError = lastModuleError();
        anyExists = anyExists || exists;
    }
    lastModuleError() = anyExists ? existingError : (firstError.empty() ? "name has no host form" : firstError);
    fail(anyExists ? ERROR_BAD_EXE_FORMAT : ERROR_FILE_NOT_FOUND);
    return nullptr;
}

void moduleClose(void* handle) {
    if (handle) ::FreeLibrary(static_cast<HMODULE>(handle));
}

std::string moduleError() { return lastModuleError(); }

std::string moduleFile(void* handle) {
    if (!handle) return {};
    std::wstring buf(MAX_PATH, L'\0');
    for (;;) {
        const DWORD n = ::GetModuleFileNameW(static_cast<HMODULE>(handle), buf.data(), static_cast<DWORD>(buf.size()));
        if (n == 0) return {};
        if (n < buf.size()) {
            buf.resize(n);
            break;
        }
        if (buf.size() >= 32768) return {};
        buf.resize(buf.size() * 2);
    }
    std::string lib;
    return fromHostWide(buf, lib) ? lib : std::string{};
}

// The export table tells no sizes: `size` is 0.
void* moduleSymbol(void* handle, const char* name, std::size_t* size) {
    if (size) *size = 0;
    if (!handle || !name || !*name) return nullptr;
    FARPROC p = ::GetProcAddress(static_cast<HMODULE>(handle), name);
    if (!p) {
        fail(::GetLastError());
        lastModuleError() = errorText(lastError());
        return nullptr;
    }
    return reinterpret_cast<void*>(p);
}

}  // namespace vnt::host
