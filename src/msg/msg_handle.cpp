// Message handles: opening libraries by name (the system library and the
// search for the others), reference counts checked against the init
// counter, the message interface and the switch counters.
#include <cstdint>
#include <string>
#include <vector>

#include "base/strbuf.h"
#include "host/intl.h"
#include "host/process.h"
#include "msg/msg_state.h"
#include "msg/report_internal.h"
#include "msg/sysmsg.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/text.h"

namespace vnt::msg {

bool alive(VNT_MSG lib) { return lib && vtm::state().live.count(lib) != 0; }

namespace {

// Where a search looked, and the first file that was there but could not
// be read as a library.
struct Search {
    std::string name;                 // what was asked for
    std::vector<std::string> places;  // every file tried
    std::string damaged;              // a file that is no (readable) library
    long status = 0;                  // the reader's status for it
};

// Reports a library that could not be opened, unless switched off: one
// that is not there with every place looked at, a damaged one with the
// reader's status.
void reportNotFound(const Search& s) {
    if (textState().notFoundOff > 0) return;
    if (!s.damaged.empty()) {
        Vnt_MsgH(nullptr, "!Message Library \"%s\" is damaged: status %ld (%s)", s.damaged.c_str(), s.status,
                 Vnt_VtmStatusText(s.status));
        return;
    }
    std::string where;
    for (const std::string& p : s.places) (where += where.empty() ? "" : "; ") += p;
    Vnt_MsgH(nullptr, "!Could not find Message Library \"%s\"\nLooked for: %s",
             s.name.empty() ? "(unknown)" : s.name.c_str(), where.empty() ? "(nowhere)" : where.c_str());
}

// The name with "VTM" added when it has no extension, cut at 259 characters.
void withExtension(VNT_PATH& out, const char* name) {
    vnt::copyBounded(out, name);
    VNT_PATH ext;
    Vnt_LfnNameSplit(out, nullptr, nullptr, ext);
    if (!ext[0]) Vnt_LfnNameExtAdd(out, "VTM");
}

// Opens `path`; true when the search ends here (opened, or there but damaged).
bool tryOpen(const char* path, Search& s, VNT_MSG& lib) {
    lib = Vnt_VtmOpen(path);
    if (lib) return true;
    VNT_PATH shown;
    vnt::copyBounded(shown, path);
    Vnt_LfnNameComplete(shown);
    if (Vnt_VtmStatus() == VNT_VTM_E_OPEN) {
        s.places.push_back(shown);
        return false;
    }
    s.damaged = shown;
    s.status = Vnt_VtmStatus();
    return true;
}

// `base` in `dir` (a directory in the library's grammar).
bool tryIn(const char* dir, const char* base, Search& s, VNT_MSG& lib) {
    VNT_PATH path;
    return Vnt_LfnNameMake(path, dir, base, nullptr) && tryOpen(path, s, lib);
}

// The language directory of the installed system libraries: "en" for an
// English locale, else "de".
const char* installedLanguage() {
    std::string lang;
    if (vnt::host::intlValue("sLanguage", lang) && lang.size() >= 2 && (lang[0] == 'E' || lang[0] == 'e') &&
        (lang[1] == 'N' || lang[1] == 'n'))
        return "en";
    return "de";
}

/*
 * Opens a main library by name: as it stands (current directory or a full
 * path), then by its file name in the program directory. Other libraries are
 * looked for two and four levels above the program directory as well; the
 * system library, which an installation need not copy beside the program,
 * in the directory named by VANTORTL_MSGDIR and in the installed
 * share/vantortl/<language>/ of this library. A file that is there but
 * cannot be read ends the search: the first hit counts.
 */
VNT_MSG openByName(const char* name, bool system, Search& s) {
    VNT_PATH file;
    withExtension(file, name);
    s.name = name;
    VNT_MSG lib = nullptr;
    if (tryOpen(file, s, lib)) return lib;

    VNT_PATH base, dir;
    Vnt_LfnNameSplit(file, nullptr, base, nullptr);
    if (!base[0]) return nullptr;
    const bool haveDir = Vnt_LfnProgDirName(dir, sizeof dir);
    if (!system) {
        if (!haveDir) return nullptr;
        for (const char* up : {".", "..\\..", "..\\..\\..\\.."}) {
            VNT_PATH where;
            Vnt_LfnNameMake(where, dir, up, nullptr);
            if (!Vnt_LfnNameMakeAbs(where)) continue;  // above the root
            if (tryIn(where, base, s, lib)) return lib;
        }
        return nullptr;
    }
    if (haveDir && tryIn(dir, base, s, lib)) return lib;
    std::string named;
    VNT_PATH envDir;
    if (vnt::host::envValue(kSysLibDirVariable, named) && !named.empty() &&
        Vnt_LfnFromHost(envDir, Vnt_TxtToUtf8(named).c_str()) && tryIn(envDir, base, s, lib))
        return lib;
    const std::string code = vnt::host::libraryFile();
    std::string fromLib = VANTO_SHARE_FROM_LIB;  // set by the build: "../share/vantortl"
    for (char& c : fromLib) c = c == '/' ? '\\' : c;
    VNT_PATH codeDir = {}, shared;
    if (!code.empty()) Vnt_LfnNameSplit(code.c_str(), codeDir, nullptr, nullptr);
    if (codeDir[0] && Vnt_LfnNameMake(shared, codeDir, fromLib.c_str(), nullptr) &&
        Vnt_LfnNameMake(shared, shared, installedLanguage(), nullptr) && Vnt_LfnNameMakeAbs(shared) &&
        tryIn(shared, base, s, lib))
        return lib;
    return nullptr;
}

/*
 * The library's own strings and the box captions speak the system
 * library's language (its message 62000, "DEU" or "ENU"), unless the
 * application chose one. A library without that message changes nothing.
 */
void takeLanguage(VNT_MSG sys) {
    TextState& st = textState();
    if (st.languageSet) return;
    const int quiet = Vnt_VtmSwQuiet(1);  // no "not found" report for an older library
    const std::string lang = Vnt_VtmRead(sys, sys::kLanguage);
    const bool found = Vnt_VtmStatus() == 0;
    Vnt_VtmSwQuiet(quiet);
    if (found && lang.size() >= 2) st.english = (lang[0] == 'E' || lang[0] == 'e') && (lang[1] == 'N' || lang[1] == 'n');
}

/*
 * Takes one reference of the system library, opening it on first use; the
 * init counter counts it. Null (reported) when it cannot be opened.
 */
VNT_MSG takeSystem() {
    TextState& st = textState();
    if (!alive(st.sys)) {
        Search search;
        st.sys = openByName(st.sysName.c_str(), true, search);
        if (!st.sys) {
            reportNotFound(search);
            return nullptr;
        }
        takeLanguage(st.sys);
    } else {
        st.sys->refCount++;
    }
    st.initCount++;
    return st.sys;
}

// Gives back a reference taken by takeSystem, without the term's checks.
void dropSystem() {
    TextState& st = textState();
    if (alive(st.sys)) {
        bool last = st.sys->refCount <= 1;
        Vnt_VtmClose(st.sys);
        if (last) st.sys = nullptr;
    }
    if (st.initCount > 0) st.initCount--;
}

}  // namespace
}  // namespace vnt::msg

using namespace vnt::msg;

/*
 * A handle of the system library, of a main library by name (holding one
 * system library reference as well), or of a segment. A failed open takes
 * nothing, so that the counts stay balanced. The system library is required:
 * without it no main library is opened.
 */
VNT_MSG Vnt_MsgHInit(VNT_MSG parent, const char* name) {
    TextState& st = textState();
    vnt::msg::connectReader();  // from now on the reader reports through the box
    if (name && reinterpret_cast<std::uintptr_t>(name) < 65536) {
        Vnt__InternalError(true, 1000, kSourceMsg, __LINE__);
        return nullptr;
    }
    if (parent) {
        if (Vnt__InternalError(!alive(parent), 999, kSourceMsg, __LINE__) || !name) return nullptr;
        VNT_MSG seg = Vnt_VtmOpenSeg(parent, name);
        if (seg) st.initCount++;
        return seg;
    }
    VNT_MSG sys = takeSystem();
    if (!name || !sys) return sys;
    Search search;
    VNT_MSG lib = openByName(name, false, search);
    if (!lib) {
        reportNotFound(search);
        dropSystem();
        return nullptr;
    }
    if (lib == st.sys) {
        // The system library by its own name: one reference, counted once.
        Vnt_VtmClose(lib);
        return lib;
    }
    st.initCount++;
    return lib;
}

/*
 * Drops one reference. Before a reference of the system library goes, the
 * counts are checked: with the system library at its last reference, the
 * init counter must stand at 1 for the system handle and 2 for a main
 * library (which holds a system reference too).
 */
void Vnt_MsgHTerm(VNT_MSG* handle) {
    TextState& st = textState();
    if (!handle || !*handle) return;
    VNT_MSG h = *handle;
    if (Vnt__InternalError(!alive(h), 999, kSourceMsg, __LINE__)) return;
    const bool isSys = h == st.sys;
    const bool isMain = !isSys && !h->isSegment;
    if (isSys || isMain) {
        const long expected = isSys ? 1 : 2;
        const long sysRefs = alive(st.sys) ? st.sys->refCount : 0;
        Vnt__InternalError(sysRefs == 1 && st.initCount < expected, 998, kSourceMsg, __LINE__);
        Vnt__InternalError(st.initCount == expected && sysRefs == 0, 997, kSourceMsg, __LINE__);
        if (Vnt__InternalError(sysRefs == 1 && st.initCount > expected, 996, kSourceMsg, __LINE__))
            return;
    }
    if (isSys) {
        dropSystem();
        *handle = nullptr;
        return;
    }
    Vnt_VtmClose(h);
    if (isMain) dropSystem();
    if (st.initCount > 0) st.initCount--;
}

bool Vnt_MsgItfInit(VNT_HINSTANCE instance, long titleId, const char* systemLibraryName) {
    TextState& st = textState();
    if (st.started) return false;
    vnt::msg::connectReader();
    if (systemLibraryName && *systemLibraryName) {
        VNT_PATH name;
        vnt::copyBounded(name, systemLibraryName);
        st.sysName = name;
    }
    st.defaultTitle[0] = '\0';
    if (titleId) Vnt_ResLoadString(instance, titleId, st.defaultTitle, kTitleSize);
    st.started = true;
    return true;
}

void Vnt_MsgItfTerm() { textState().started = false; }

/*
 * Counters driven in pairs (raise, then lower). The third counter is
 * lowered when b, not c, is 0: kept for compatibility.
 */
void Vnt__MsgExtCheck(int a, int b, int c) {
    TextState& st = textState();
    if (a == 0) st.notFoundOff++;
    else if (a == 1 && st.notFoundOff > 0) st.notFoundOff--;
    if (b == 0) st.second++;
    else if (b == 1) st.second--;
    if (c == 1) st.third++;
    else if (b == 0) st.third--;
    if (c == 1) Vnt_VtmNoShare(+1);
    else if (c == 0) Vnt_VtmNoShare(-1);
}

int Vnt__MsgExtCounter(int which) {
    const TextState& st = textState();
    switch (which) {
        case 0: return st.notFoundOff;
        case 1: return st.second;
        case 2: return st.third;
        default: return 0;
    }
}
