// The current directory (with its one-slot save), volume existence, and the
// name functions that complete a name against the current directory.
#include <cstring>
#include <string>

#include "base/names.h"
#include "base/strbuf.h"
#include "host/path.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"
#include "vanto/text.h"

namespace {

using vnt::copyBounded;

char upperAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

bool hasVolPrefix(const char* s) { return s != nullptr && s[0] != '\0' && s[1] == ':'; }

using vnt::lfn::hasLetterVol;

}  // namespace

// ---------------------------------------------------------------------------
// Volumes and the current directory
// ---------------------------------------------------------------------------

bool Vnt_LfnVolFind(const char* path) {
    return hasLetterVol(path) && vnt::host::volKnown(path[0]);
}

/*
 * Sets the current directory. The host keeps one current directory per
 * volume, so a bare "X:" goes to the one remembered for X, "X:rel" is taken
 * against it, and a name without a volume against the current one. Dots are
 * resolved here so that the host only ever sees absolute names.
 */
bool Vnt_LfnDirSet(const char* path) {
    if (path == nullptr || path[0] == '\0') return false;
    if (std::memchr(path, '\0', VNT_MAX_PATH) == nullptr) return false;  // overlong

    char full[VNT_MAX_PATH];
    if (hasLetterVol(path)) {
        const char letter = upperAscii(path[0]);
        if (!vnt::host::volKnown(letter)) return false;
        if (path[2] == '\0') {
            const std::string remembered = vnt::host::volCurDir(letter);
            return !remembered.empty() && vnt::host::setCurDir(remembered);
        }
        if (path[2] == '\\') {
            copyBounded(full, path);
        } else {
            const std::string cur = vnt::host::volCurDir(letter);
            if (cur.empty() || !Vnt_LfnNameMake(full, cur.c_str(), path, nullptr)) return false;
        }
        full[0] = letter;
    } else if (hasVolPrefix(path) || (path[0] == '\\' && path[1] == '\\')) {
        return vnt::host::setCurDir(path);  // not a drive letter: as it stands
    } else {
        const std::string cur = vnt::host::curDir();
        if (cur.empty()) return false;
        const char* dir = cur.c_str();
        char vol[VNT_MAX_PATH];
        if (path[0] == '\\') {
            Vnt_LfnVolFromPath(vol, dir);  // "\x" is on the current volume
            dir = vol;
        }
        if (!Vnt_LfnNameMake(full, dir, path, nullptr)) return false;
    }
    if (!Vnt_LfnNameMakeAbs(full)) return false;
    return vnt::host::setCurDir(full);
}

bool Vnt_LfnDirSave(char* buf) {
    const std::string cur = vnt::host::curDir();
    if (cur.empty() || cur.size() >= VNT_MAX_PATH) return false;
    copyBounded(buf ? buf : vnt::lfn::state().savedDir, VNT_MAX_PATH, cur);
    return true;
}

bool Vnt_LfnDirRestore(const char* path) {
    if (path != nullptr && path[0] != '\0') return Vnt_LfnDirSet(path);
    char saved[VNT_MAX_PATH];
    copyBounded(saved, vnt::lfn::state().savedDir);
    return Vnt_LfnDirSet(saved);
}

// ---------------------------------------------------------------------------
// Absolute names
// ---------------------------------------------------------------------------

/*
 * Completes a name against the current directory of its volume. Changing to
 * a volume is how its remembered directory is read, so the current directory
 * is saved first (into the one static slot, overwriting what a caller saved
 * there) and restored at the end.
 */
bool Vnt_LfnNameComplete(char (&buf)[VNT_MAX_PATH]) {
    buf[VNT_MAX_PATH - 1] = '\0';
    if (hasVolPrefix(buf) && !Vnt_LfnVolFind(buf)) return false;
    if (buf[0] == '\\' && buf[1] == '\\') return true;  // UNC names stand as they are
    if (!Vnt_LfnDirSave()) return false;

    auto fail = [] {
        Vnt_LfnDirRestore();
        return false;
    };
    if (Vnt_LfnNameIsVol(buf)) {
        if (!Vnt_LfnDirSet(buf)) return fail();
        copyBounded(buf, vnt::host::curDir());
    } else if (!hasVolPrefix(buf)) {
        char vol[VNT_MAX_PATH];
        Vnt_LfnVolFromPath(vol, vnt::host::curDir().c_str());
        Vnt_LfnNameMake(buf, vol, buf, nullptr);
    }
    if (Vnt_LfnNameIsRelPath(buf)) {
        char vol[VNT_MAX_PATH];
        Vnt_LfnVolFromPath(vol, buf);
        if (!Vnt_LfnDirSet(vol)) return fail();
        Vnt_LfnNameMake(buf, vnt::host::curDir().c_str(), buf, nullptr);
    }
    Vnt_LfnNameMakeAbs(buf);
    Vnt_LfnDirRestore();
    return true;
}

/*
 * With a base: the leading part the name shares with the base (compared
 * without regard to case) is skipped, and the rest is joined under the base.
 * The match is by characters, not components, and a rooted name that shares
 * nothing is still put under the base; both are kept for compatibility.
 */
bool Vnt_LfnNameMakeAbs(char (&dst)[VNT_MAX_PATH], const char* name, const char* base) {
    if (base == nullptr) {
        copyBounded(dst, name);
        return name != nullptr && Vnt_LfnNameComplete(dst);
    }
    // Copies first: name or base may lie in dst.
    const std::string n = name ? std::string(name) : std::string();
    const std::string b(base);
    std::size_t skip = 0;
    const bool sameVol = hasVolPrefix(n.c_str()) && hasVolPrefix(b.c_str()) &&
                         upperAscii(n[0]) == upperAscii(b[0]);
    if (sameVol || (!n.empty() && n[0] == '\\')) {
        while (skip < n.size() && skip < b.size() &&
               vnt::foldCase(n[skip]) == vnt::foldCase(b[skip]))
            ++skip;
    }
    dst[0] = '\0';
    const bool joined = Vnt_LfnNameMake(dst, b.c_str(), n.c_str() + skip, nullptr);
    const bool resolved = Vnt_LfnNameMakeAbs(dst);
    return joined && resolved;
}
