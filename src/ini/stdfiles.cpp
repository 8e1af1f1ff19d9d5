// The standard files: the application settings directory (program
// directory\INI), the user directory (program directory\USR\<user>), the
// data directory, and the library-wide VntIni on "App.vtm".

#include <cstdlib>
#include <string>
#include <string_view>

#include "base/strbuf.h"
#include "ini/ini_stream.h"
#include "lfn/client_paths.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"

namespace vnt::ini {

// Never destroyed: the library-wide object must not close its message
// library after the message system's own state is gone at exit.
EngineState& engine() {
    static EngineState* s = new EngineState;
    return *s;
}

void reset() {
    EngineState& s = engine();
    s.app.reset();  // closes its message library before the buffers go
    s = EngineState{};
}

}  // namespace vnt::ini

namespace {

bool given(const char* s) { return s != nullptr && *s != '\0'; }

const char* deliver(const char* path, char (*dst)[VNT_MAX_PATH]) {
    if (dst) vnt::copyBounded(*dst, path);
    return path;
}

// The library-wide object on the application file, made on first use.
VntIni& appIni() {
    auto& app = vnt::ini::engine().app;
    if (!app) app = std::make_unique<VntIni>(nullptr, nullptr, VNTINI_APP);
    return *app;
}

// Reads a name of the application file into its buffer once. The default
// stands in the buffer while reading, so that a report shown meanwhile
// (which may itself look for the user's files) does not read again.
template <std::size_t N>
const char* appName(char (&buf)[N], const char* entry, const char* def) {
    if (!buf[0]) {
        vnt::copyBounded(buf, def);
        char value[N];
        Vnt_IniAppValue(entry, def, value, N);
        vnt::copyBounded(buf, std::string_view(value));
    }
    return buf;
}

}  // namespace

const char* Vnt_IniAppPath(char (*dst)[VNT_MAX_PATH]) {
    char* path = vnt::ini::engine().appPath;
    if (!path[0]) {
        char prog[VNT_MAX_PATH];
        if (Vnt_LfnProgDirName(prog, sizeof prog)) Vnt_LfnNameMake(path, VNT_MAX_PATH, prog, "INI", nullptr);
    }
    if (path[0]) Vnt_LfnDirCreate(path);
    return deliver(path, dst);
}

const char* Vnt_IniUserPath(char (*dst)[VNT_MAX_PATH]) {
    vnt::ini::EngineState& s = vnt::ini::engine();
    if (!s.userPath[0]) {
        char prog[VNT_MAX_PATH];
        if (Vnt_LfnProgDirName(prog, sizeof prog)) {
            const char* root = appName(s.usrRoot, "USR", "USR");
            const char* user = s.user[0] ? s.user : appName(s.usrStd, "UsrStd", "Std");
            Vnt_LfnNameMake(s.userPath, prog, root, nullptr);
            Vnt_LfnNameMake(s.userPath, s.userPath, user, nullptr);
        }
    }
    // Made again in every call: the user may have removed it meanwhile.
    if (s.userPath[0]) Vnt_LfnDirCreate(s.userPath);
    return deliver(s.userPath, dst);
}

const char* Vnt_IniDatPath(char (*dst)[VNT_MAX_PATH]) { return deliver(vnt::lfn::clientPaths().dataPath, dst); }

char* Vnt_IniAppFile(char (&dst)[VNT_MAX_PATH], const char* name) {
    Vnt_LfnNameMake(dst, Vnt_IniAppPath(), given(name) ? name : "App.vtm", nullptr);
    return dst;
}

char* Vnt_IniAppRWFile(char (&dst)[VNT_MAX_PATH], const char* name) {
    Vnt_LfnNameMake(dst, Vnt_IniAppPath(), given(name) ? name : "AppRW.ini", nullptr);
    return dst;
}

char* Vnt_IniUserFile(char (&dst)[VNT_MAX_PATH], const char* name) {
    const char* file = given(name) ? name : appName(vnt::ini::engine().userIni, "UserIni", "User.ini");
    std::string copy = file;  // the name may lie in dst
    Vnt_LfnNameMake(dst, Vnt_IniUserPath(), copy.c_str(), nullptr);
    return dst;
}

char* Vnt_IniDatFile(char (&dst)[VNT_MAX_PATH], const char* name) {
    const char* file = given(name) ? name : appName(vnt::ini::engine().datIni, "DatIni", "Dat.ini");
    std::string copy = file;
    Vnt_LfnNameMake(dst, Vnt_IniDatPath(), copy.c_str(), nullptr);
    return dst;
}

const char* Vnt_IniUser(const char* user) {
    vnt::ini::EngineState& s = vnt::ini::engine();
    if (user) {
        vnt::copyBounded(s.user, user);
        s.userPath[0] = '\0';
    }
    return s.user;
}

const char* Vnt_IniAppValue(const char* entry, const char* def, char* buf, unsigned size, const char* section) {
    VntIni& app = appIni();
    // An application without its application file works with the defaults:
    // the file is opened without a report, and only read when it opened.
    if (!app.IsOpenVtm() && !app.Open(nullptr, VNTINI_KEEP, false)) {
        vnt::copyBounded(app.Line(), 1024, def);
        if (buf && size) vnt::copyBounded(buf, size, app.Line());
        return app.Line();
    }
    app.SetSection(given(section) ? section : "Settings", -1);
    app.ReadStr(entry, def, buf, size);
    return app.Line();
}

long Vnt_IniAppValue(const char* entry, long def, const char* section) {
    const std::string text = std::to_string(def);
    return std::strtol(Vnt_IniAppValue(entry, text.c_str(), nullptr, 0, section), nullptr, 10);
}
