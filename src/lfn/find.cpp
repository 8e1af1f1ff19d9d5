// File and directory searches: find records, the current record that the
// accessor functions read, and the search along an environment variable.
//
// A search takes a snapshot of the matching entries of one directory when
// it starts, sorted by name without regard to case (then by bytes), so that
// results come in the same order on every host and file system; the next
// calls walk that snapshot.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "base/names.h"
#include "base/strbuf.h"
#include "host/dir.h"
#include "host/process.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"
#include "vanto/text.h"

namespace {

using vnt::copyBounded;
using vnt::lfn::state;
using Rec = VntLfnFindRec;

constexpr unsigned long kTypeBits = VNT_LFN_ATTR_DIRECTORY | VNT_LFN_ATTR_VOLID;  // 0x18

// "*" any run of characters, "?" exactly one, everything else equal
// without regard to case.
bool wildMatch(const char* p, std::size_t plen, const char* n) {
    std::size_t pi = 0, star = std::string::npos, resume = 0;
    std::size_t ni = 0;
    while (n[ni] != '\0') {
        if (pi < plen && p[pi] == '*') {
            star = ++pi;
            resume = ni;
        } else if (pi < plen && (p[pi] == '?' || vnt::foldCase(p[pi]) == vnt::foldCase(n[ni]))) {
            ++pi;
            ++ni;
        } else if (star != std::string::npos) {
            pi = star;
            ni = ++resume;
        } else {
            return false;
        }
    }
    while (pi < plen && p[pi] == '*') ++pi;
    return pi == plen;
}

// The platform's rule on top: a pattern ending in ".*" also matches the
// name without that extension, so "*.*" matches every name and "a.*"
// matches "a".
bool nameMatches(const char* pattern, const std::string& name) {
    const std::size_t len = std::strlen(pattern);
    if (wildMatch(pattern, len, name.c_str())) return true;
    return len >= 2 && pattern[len - 2] == '.' && pattern[len - 1] == '*' &&
           wildMatch(pattern, len - 2, name.c_str());
}

bool wantEntry(const std::string& name, void* ctx) { return nameMatches(static_cast<const char*>(ctx), name); }

bool byName(const vnt::host::DirEntry& a, const vnt::host::DirEntry& b) {
    const std::size_t n = std::min(a.name.size(), b.name.size());
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char x = vnt::foldCase(a.name[i]), y = vnt::foldCase(b.name[i]);
        if (x != y) return x < y;
    }
    if (a.name.size() != b.name.size()) return a.name.size() < b.name.size();
    return a.name < b.name;
}

// A name without wildcards that can only match itself: not "." or "..",
// nor one with a character the host would take as a separator.
bool isPlainName(const char* file) {
    if (Vnt_LfnNameIsWild(file) || std::strchr(file, '/') != nullptr) return false;
    return std::strspn(file, ".") != std::strlen(file);
}

Rec* currentRec() {
    auto& s = state();
    return s.current ? s.current : &s.defaultRec;
}

// Null stands for the default record in `current` and `previous`.
Rec* asLink(Rec* r) { return r == &state().defaultRec ? nullptr : r; }

bool isLive(const Rec* r) {
    for (const auto& p : state().live)
        if (p.get() == r) return true;
    return false;
}

// Frees a handle's record; records that came after it inherit its
// predecessor.
void freeRecord(Rec* r) {
    auto& s = state();
    if (s.defaultRec.previous == r) s.defaultRec.previous = r->previous;
    for (const auto& p : s.live)
        if (p->previous == r) p->previous = r->previous;
    if (s.current == r) s.current = nullptr;
    std::erase_if(s.live, [r](const std::unique_ptr<Rec>& p) { return p.get() == r; });
}

// A search that failed or ran out: its record goes (the default one only
// loses its listing) and the record current before it is current again.
void release(Rec* r, VNT_LFN_HFIND* handle) {
    Rec* prev = r->previous;
    r->listing.reset();
    if (r != &state().defaultRec) {
        freeRecord(r);
        if (handle) *handle = nullptr;
    }
    state().current = prev;
}

// Takes the next entry of the listing that the record's mask admits into
// the record. Directory searches skip names beginning with ".", which drops
// "." and ".." (hidden directories too, as their short name would).
bool advance(Rec* r) {
    if (!r->listing) return false;
    auto& l = *r->listing;
    while (l.next < l.entries.size()) {
        const vnt::host::DirEntry& e = l.entries[l.next++];
        if ((e.attributes & kTypeBits) != (r->mask & kTypeBits)) continue;
        // No short names here: the long name's first 13 characters stand in.
        char shortName[sizeof r->shortName];
        copyBounded(shortName, e.name);
        if ((r->mask & VNT_LFN_ATTR_DIRECTORY) && shortName[0] == '.') continue;
        r->attributes = static_cast<std::uint32_t>(e.attributes);
        r->length = static_cast<std::uint32_t>(e.size);
        const VNT_TIME t{static_cast<std::uint8_t>(e.modified.hour), static_cast<std::uint8_t>(e.modified.minute),
                         static_cast<std::uint8_t>(e.modified.second), 0};
        const VNT_DATE d{static_cast<std::uint16_t>(e.modified.year), static_cast<std::uint8_t>(e.modified.month),
                         static_cast<std::uint8_t>(e.modified.day)};
        r->time = Vnt_LfnTimePack(t);
        r->date = Vnt_LfnDatePack(d);
        copyBounded(r->longName, e.name);
        copyBounded(r->shortName, shortName);
        return true;
    }
    return false;
}

// Opens the listing of `pattern` into the record and takes its first entry.
bool runFirst(Rec* r, const char* pattern, unsigned long mask) {
    r->listing.reset();
    r->mask = static_cast<std::uint32_t>(mask);
    VNT_PATH dir, file;
    Vnt_LfnNameSplit(pattern, dir, file, nullptr);
    if (file[0] == '\0') return false;
    auto l = std::make_unique<Rec::Listing>();
    if (isPlainName(file)) {
        // One name: asked of the host directly rather than by reading the
        // whole directory, which would make work on large directories
        // quadratic (the file copier looks up every source and target).
        vnt::host::DirEntry e;
        if (!vnt::host::fileInfo(pattern, e)) return false;
        l->entries.push_back(std::move(e));
    } else {
        if (!vnt::host::listDir(dir, wantEntry, file, l->entries)) return false;
        std::sort(l->entries.begin(), l->entries.end(), byName);
    }
    r->listing = std::move(l);
    return advance(r);
}

// The target's file part replaced by the name found.
void deliver(char* target, const char* pattern, const char* found) {
    VNT_PATH dir;
    Vnt_LfnNameSplit(pattern, dir, nullptr, nullptr);
    Vnt_LfnNameMake(target, VNT_MAX_PATH, dir, found, nullptr);
}

bool hasVolPrefix(const char* s) { return s[0] != '\0' && s[1] == ':'; }

/*
 * Starts a search. The record (the default one, or the handle's, made when
 * the handle holds none) becomes current; the pattern is dir joined with
 * name, in the target. A file search of a bare name that fails is tried
 * once more in the program's directory.
 */
bool startSearch(char* buf, const char* dir, const char* name, VNT_LFN_HFIND* handle, bool dirs) {
    auto& s = state();
    Rec* r = &s.defaultRec;
    if (handle) {
        if (*handle && !isLive(*handle)) return false;  // not a handle of a running search
        if (!*handle) {
            s.live.push_back(std::make_unique<Rec>());
            *handle = s.live.back().get();
        }
        r = *handle;
    }
    // The record current now is the one a failure hands back to. A record
    // that is current already keeps what it would hand back to, except the
    // default record, which then simply stays current.
    if (currentRec() != r) r->previous = s.current;
    else if (r == &s.defaultRec) r->previous = nullptr;
    s.current = asLink(r);

    char* target = buf ? buf : s.result;
    const bool keepTarget = dir == nullptr && name == nullptr && !Vnt_LfnNameIsWild(target);
    const unsigned long mask = dirs ? VNT_LFN_MASK_DIRS : VNT_LFN_MASK_FILES;
    bool ok = Vnt_LfnNameMake(target, VNT_MAX_PATH, dir, name, nullptr);
    VNT_PATH pattern;
    copyBounded(pattern, target);
    ok = ok && pattern[0] != '\0' && runFirst(r, pattern, mask);
    if (!ok && !dirs && pattern[0] != '\0' && std::strchr(pattern, '\\') == nullptr && !hasVolPrefix(pattern)) {
        VNT_PATH prog, inProg;
        if (Vnt_LfnProgDirName(prog, sizeof prog) && Vnt_LfnNameMake(inProg, prog, pattern, nullptr) &&
            runFirst(r, inProg, mask)) {
            deliver(target, inProg, r->longName);
            return true;
        }
    }
    if (!ok) {
        release(r, handle);
        return false;
    }
    if (!keepTarget) deliver(target, pattern, r->longName);
    return true;
}

bool nextSearch(VNT_LFN_HFIND* handle, char* buf) {
    auto& s = state();
    Rec* r = &s.defaultRec;
    if (handle) {
        if (!*handle || !isLive(*handle)) return false;
        r = *handle;
    }
    if (!r->listing) return false;  // no search open
    s.current = asLink(r);
    if (advance(r)) {
        char* target = buf ? buf : s.result;
        VNT_PATH pattern;
        copyBounded(pattern, target);
        deliver(target, pattern, r->longName);
        return true;
    }
    release(r, handle);
    return false;
}

}  // namespace

// ---------------------------------------------------------------------------
// Searches
// ---------------------------------------------------------------------------

bool Vnt_LfnDirFind(const char* pattern, char* buf) {
    if (pattern == nullptr) return false;
    VNT_LFN_HFIND h = nullptr;
    VNT_PATH scratch;
    const bool found = startSearch(buf ? buf : scratch, nullptr, pattern, &h, true);
    Vnt_LfnFindClose(&h);
    return found;
}

bool Vnt_LfnDirFindFirst(char* buf, const char* dir, const char* name, VNT_LFN_HFIND* handle) {
    return startSearch(buf, dir, name, handle, true);
}

bool Vnt_LfnDirFindNext(char* buf) { return nextSearch(nullptr, buf); }

bool Vnt_LfnDirFindNext(VNT_LFN_HFIND* handle, char* buf) { return handle && nextSearch(handle, buf); }

bool Vnt_LfnFileFind(const char* pattern, char* buf) {
    return pattern != nullptr && startSearch(buf, nullptr, pattern, nullptr, false);
}

bool Vnt_LfnFileFindFirst(const char* pattern, VNT_LFN_HFIND* handle) {
    return pattern != nullptr && startSearch(nullptr, nullptr, pattern, handle, false);
}

bool Vnt_LfnFileFindFirst(char* buf, const char* dir, const char* name, VNT_LFN_HFIND* handle) {
    return startSearch(buf, dir, name, handle, false);
}

bool Vnt_LfnFileFindNext(char* buf) { return nextSearch(nullptr, buf); }

bool Vnt_LfnFileFindNext(VNT_LFN_HFIND* handle, char* buf) { return handle && nextSearch(handle, buf); }

void Vnt_LfnFindClose(VNT_LFN_HFIND* handle) {
    if (handle == nullptr || *handle == nullptr) return;
    Rec* r = *handle;
    *handle = nullptr;
    if (isLive(r)) freeRecord(r);  // the default record takes over when it was current
}

/*
 * Looks in the current directory, then in the program's directory, then in
 * each directory of the variable's value (";" between them; an entry that
 * begins with "/" is a host directory). Uses the default record.
 */
bool Vnt_LfnFileFindEnv(const char* variable, const char* name, char* buf) {
    auto& s = state();
    if (name == nullptr || name[0] == '\0') return false;
    s.env[0] = '\0';
    std::string value;
    if (variable != nullptr && vnt::host::envValue(variable, value)) copyBounded(s.env, value);

    VNT_PATH dir;
    if (Vnt_LfnDirSave(dir) && Vnt_LfnFileFindFirst(buf, dir, name, nullptr)) return true;
    if (Vnt_LfnProgDirName(dir, sizeof dir) && Vnt_LfnFileFindFirst(buf, dir, name, nullptr)) return true;
    for (const char* p = s.env; *p != '\0';) {
        const char* end = std::strchr(p, ';');
        const std::size_t len = end ? static_cast<std::size_t>(end - p) : std::strlen(p);
        copyBounded(dir, sizeof dir, std::string_view(p, len));
        if (dir[0] == '/') {
            VNT_PATH lib;
            if (!Vnt_LfnFromHost(lib, dir)) dir[0] = '\0';
            else copyBounded(dir, lib);
        }
        if (dir[0] != '\0' && Vnt_LfnFileFindFirst(buf, dir, name, nullptr)) return true;
        p += len;
        if (*p == ';') ++p;
    }
    return false;
}

// ---------------------------------------------------------------------------
// The current record
// ---------------------------------------------------------------------------

unsigned long Vnt_LfnFileAttr() { return currentRec()->attributes; }

unsigned long Vnt_LfnFileLength() { return currentRec()->length; }

std::uint16_t Vnt_LfnFileDate() { return currentRec()->date; }

std::uint16_t Vnt_LfnFileTime() { return currentRec()->time; }

unsigned long Vnt_LfnFileDateTime() {
    const Rec* r = currentRec();
    return (static_cast<unsigned long>(r->date) << 16) | r->time;
}

unsigned long Vnt_LfnFileTimep(unsigned long* out) {
    const unsigned long v = Vnt_LfnFileDateTime();
    if (out) *out = v;
    return v;
}

void Vnt_LfnFileTimeDate(VNT_TIME* time, VNT_DATE* date) {
    const Rec* r = currentRec();
    Vnt_LfnTimeUnpack(r->time, time);
    Vnt_LfnDateUnpack(r->date, date);
}

const char* Vnt_LfnFileName(char* buf) {
    const Rec* r = currentRec();
    if (buf) copyBounded(buf, VNT_MAX_PATH, r->longName);
    return r->longName;
}
