// Starting programs.
#include "host/host.h"
#include "host/posix/host_call.h"

#include <cerrno>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "base/names.h"
#include "vanto/text.h"

namespace vnt::host {

namespace {

// The argument text as a command line splits it: at blanks and tabs, with
// double quotes grouping (and themselves dropped).
std::vector<std::string> splitArgs(const char* args) {
    std::vector<std::string> out;
    if (args == nullptr) return out;
    std::string cur;
    bool inQuote = false, any = false;
    for (const char* p = args; *p; ++p) {
        if (*p == '"') {
            inQuote = !inQuote;
            any = true;
        } else if (!inQuote && (*p == ' ' || *p == '\t')) {
            if (any) out.push_back(Vnt_TxtToUtf8(cur));
            cur.clear();
            any = false;
        } else {
            cur += *p;
            any = true;
        }
    }
    if (any) out.push_back(Vnt_TxtToUtf8(cur));
    return out;
}

bool bareName(const std::string& name) { return name.find_first_of("\\:") == std::string::npos; }

// "x.exe" has no extension on POSIX: the name without it.
bool withoutExe(const std::string& name, std::string& out) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.find_first_of("\\:", dot) != std::string::npos) return false;
    const std::string ext = name.substr(dot + 1);
    if (!vnt::sameText(ext, "exe")) return false;
    out = name.substr(0, dot);
    return true;
}

bool spawn(const std::string& program, bool searchPath, const char* args, const std::string& hostDir) {
    std::vector<std::string> parts = splitArgs(args);
    std::string arg0 = program.substr(program.rfind('/') == std::string::npos ? 0 : program.rfind('/') + 1);
    std::vector<char*> argv = {arg0.data()};
    for (std::string& a : parts) argv.push_back(a.data());
    argv.push_back(nullptr);
    return spawnChild(program, searchPath, argv, hostDir);
}

}  // namespace

bool startProgram(const char* libPath, const char* args, const char* libWorkDir) {
    if (libPath == nullptr || !*libPath) {
        errno = ENOENT;
        return false;
    }
    if (faultHit(Op::Load, libPath)) {
        errno = EIO;
        return false;
    }
    std::string hostDir;
    if (libWorkDir && *libWorkDir && !toHost(libWorkDir, hostDir)) {
        errno = ENOENT;
        return false;
    }
    std::string name = libPath, plain;
    if (bareName(name)) {
        if (spawn(Vnt_TxtToUtf8(name), true, args, hostDir)) return true;
        return withoutExe(name, plain) && spawn(Vnt_TxtToUtf8(plain), true, args, hostDir);
    }
    std::string host;
    struct stat st;
    if (!toHost(name.c_str(), host) || ::stat(host.c_str(), &st) != 0) {
        if (!withoutExe(name, plain) || !toHost(plain.c_str(), host) || ::stat(host.c_str(), &st) != 0) {
            errno = ENOENT;
            return false;
        }
        name = plain;
    }
    if (!S_ISREG(st.st_mode)) {
        errno = EACCES;
        return false;
    }
    if (::access(host.c_str(), X_OK) == 0) return spawn(host, false, args, hostDir);
    return openDocument(name.c_str());
}

}  // namespace vnt::host
