// Message handles: opening libraries by name (the system library and the
// search for the others), reference counts checked against the init
// counter, the message interface and the switch counters.
#include <cstdint>

#include "base/strbuf.h"
#include "msg/msg_state.h"
#include "msg/report_internal.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"

namespace vnt::msg {

bool alive(VNT_MSG lib) { return lib && vtm::state().live.count(lib) != 0; }

namespace {

// Reports a library that could not be opened, unless switched off.
void reportNotFound(const char* name) {
    if (textState().notFoundOff > 0) return;
    Vnt_MsgH(nullptr, "!Could not find Message Library \"%s\"", name && *name ? name : "(unknown)");
}

// The name with "VTM" added when it has no extension, cut at 259 characters.
void withExtension(VNT_PATH& out, const char* name) {
    vnt::copyBounded(out, name);
    VNT_PATH ext;
    Vnt_LfnNameSplit(out, nullptr, nullptr, ext);
    if (!ext[0]) Vnt_LfnNameExtAdd(out, "VTM");
}

/*
 * Opens a main library by name: as it stands (current directory or a full
 * path), then, unless it is the system library, by its file name in the
 * program directory and two and four levels above it. A file that is there
 * but cannot be read ends the search: the first hit counts.
 */
VNT_MSG openByName(const char* name, bool system) {
    VNT_PATH file;
    withExtension(file, name);
    VNT_MSG lib = Vnt_VtmOpen(file);
    if (lib || system || Vnt_VtmStatus() != VNT_VTM_E_OPEN) return lib;

    VNT_PATH base, dir;
    Vnt_LfnNameSplit(file, nullptr, base, nullptr);
    if (!base[0] || !Vnt_LfnProgDirName(dir, sizeof dir)) return nullptr;
    for (const char* up : {".", "..\\..", "..\\..\\..\\.."}) {
        VNT_PATH where, path;
        Vnt_LfnNameMake(where, dir, up, nullptr);
        if (!Vnt_LfnNameMakeAbs(where)) continue;  // above the root
        if (!Vnt_LfnNameMake(path, where, base, nullptr)) continue;
        lib = Vnt_VtmOpen(path);
        if (lib || Vnt_VtmStatus() != VNT_VTM_E_OPEN) return lib;
    }
    return nullptr;
}

/*
 * Takes one reference of the system library, opening it on first use; the
 * init counter counts it. Null (reported) when it cannot be opened.
 */
VNT_MSG takeSystem() {
    TextState& st = textState();
    if (!alive(st.sys)) {
        st.sys = openByName(st.sysName.c_str(), true);
        if (!st.sys) {
            reportNotFound(st.sysName.c_str());
            return nullptr;
        }
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
    VNT_MSG lib = openByName(name, false);
    if (!lib) {
        reportNotFound(name);
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
