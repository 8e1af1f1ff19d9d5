// Creating and removing directory chains, attributes and last-write times
// of files, the program's directory and temporary file names.
#include <cstring>
#include <string>

#include "base/format.h"
#include "base/strbuf.h"
#include "host/dir.h"
#include "host/time.h"
#include "vanto/lfn.h"

namespace {

using vnt::copyBounded;

bool hasVolPrefix(const char* s) { return s[0] != '\0' && s[1] == ':'; }

// A directory that exists. Roots and bare volumes are no entries of a
// directory, so they are asked of the volume table instead.
bool dirExists(const char* name) {
    if (name[0] == '\\' && name[1] == '\0') return true;
    if (Vnt_LfnNameIsRoot(name) || Vnt_LfnNameIsVol(name)) return Vnt_LfnVolFind(name);
    return Vnt_LfnDirFind(name);
}

/*
 * Creates every missing directory of the chain from the top. The scan
 * starts after "X:\" when there is a volume; a name beginning with "\"
 * without one yields the empty prefix first, which cannot be created, so
 * such a chain is only ever found, never made: kept for compatibility.
 */
bool createChain(const char* name) {
    if (Vnt_LfnNameIsRoot(name) || Vnt_LfnNameIsVol(name)) return true;
    if (dirExists(name)) return true;
    const std::size_t len = std::strlen(name);
    for (std::size_t i = hasVolPrefix(name) ? 3 : 0; i <= len; ++i) {
        if (i < len && name[i] != '\\') continue;
        VNT_PATH prefix;
        copyBounded(prefix, sizeof prefix, std::string_view(name, i));
        if (prefix[0] == '\0') return false;
        if (!dirExists(prefix) && !vnt::host::makeDir(prefix)) return false;
    }
    return true;
}

VNT_TIME timeOf(const vnt::host::LocalTime& t) {
    return {static_cast<std::uint8_t>(t.hour), static_cast<std::uint8_t>(t.minute),
            static_cast<std::uint8_t>(t.second), 0};
}

VNT_DATE dateOf(const vnt::host::LocalTime& t) {
    return {static_cast<std::uint16_t>(t.year), static_cast<std::uint8_t>(t.month),
            static_cast<std::uint8_t>(t.day)};
}

// The packed last-write time of a file: date high, time low.
bool packedTime(const char* file, unsigned long& packed) {
    vnt::host::LocalTime t;
    if (file == nullptr || !vnt::host::fileWriteTime(file, t)) return false;
    packed = (static_cast<unsigned long>(Vnt_LfnDatePack(dateOf(t))) << 16) | Vnt_LfnTimePack(timeOf(t));
    return true;
}

// Sets the last-write time from the packed form, so that what is set reads
// back unchanged (seconds in steps of two, years 1980 to 2107).
bool setPacked(const char* file, unsigned long packed) {
    VNT_TIME t;
    VNT_DATE d;
    Vnt_LfnTimeUnpack(static_cast<std::uint16_t>(packed & 0xFFFF), &t);
    Vnt_LfnDateUnpack(static_cast<std::uint16_t>(packed >> 16), &d);
    vnt::host::LocalTime lt;
    lt.year = d.year;
    lt.month = d.month;
    lt.day = d.day;
    lt.hour = t.hour;
    lt.minute = t.minute;
    lt.second = t.second;
    return file != nullptr && vnt::host::setFileWriteTime(file, lt);
}

}  // namespace

// ---------------------------------------------------------------------------
// Directory chains
// ---------------------------------------------------------------------------

bool Vnt_LfnDirCreate(const char* dir) {
    if (dir == nullptr) return false;
    VNT_PATH name;
    if (!Vnt_LfnNameMake(name, dir, nullptr, nullptr)) return false;
    return createChain(name);
}

bool Vnt_LfnDirCreate(char (&buf)[VNT_MAX_PATH], const char* dir, const char* sub) {
    if (!Vnt_LfnNameMake(buf, dir, sub, nullptr)) return false;
    VNT_PATH name;
    copyBounded(name, buf);
    return createChain(name);
}

bool Vnt_LfnDirCreateFromFile(const char* file) {
    if (file == nullptr) return false;
    VNT_PATH dir;
    Vnt_LfnNameSplit(file, dir, nullptr, nullptr);
    return dir[0] == '\0' || createChain(dir);  // no directory part: the current one
}

/*
 * Removes the directory, then walks up through its parents trying each:
 * a parent that still holds something stays and the walk goes on, so every
 * ancestor that has become empty goes too. Never a root, nor a bare volume
 * (that would be the volume's current directory).
 */
static bool removeChain(const char* dir, char* buf) {
    if (dir == nullptr || dir[0] == '\0') return false;
    VNT_PATH work;
    copyBounded(work, dir);
    int removed = 0;
    while (work[0] != '\0' && !Vnt_LfnNameIsRoot(work) && !Vnt_LfnNameIsVol(work)) {
        const bool ok = vnt::host::removeDir(work);
        VNT_PATH parent;
        Vnt_LfnNameSplit(work, parent, nullptr, nullptr);
        if (ok) {
            ++removed;
            if (buf) copyBounded(buf, VNT_MAX_PATH, parent);
        }
        if (std::strcmp(parent, work) == 0) break;  // no step up left
        copyBounded(work, parent);
    }
    return removed > 0;
}

bool Vnt_LfnDirRemove(const char* dir) { return removeChain(dir, nullptr); }

bool Vnt_LfnDirRemove(char (&buf)[VNT_MAX_PATH]) {
    VNT_PATH dir;
    copyBounded(dir, buf);
    return removeChain(dir, buf);
}

// ---------------------------------------------------------------------------
// Attributes and times
// ---------------------------------------------------------------------------

// Any non-zero word counts, the failure value included: a coarse test
// only, kept for compatibility.
bool Vnt_LfnFileAttrGet(const char* file, unsigned long* out) {
    const unsigned long word = file ? vnt::host::fileAttributes(file) : vnt::host::kAttrInvalid;
    if (out) *out = word != 0 ? 1 : 0;
    return true;
}

bool Vnt_LfnFileAttrSet(const char* file, unsigned long attributes) {
    return file != nullptr && vnt::host::setFileAttributes(file, attributes);
}

bool Vnt_LfnFileTimeGet(const char* file, VNT_TIME* time, VNT_DATE* date) {
    unsigned long packed;
    if (!packedTime(file, packed)) return false;
    Vnt_LfnTimeUnpack(static_cast<std::uint16_t>(packed & 0xFFFF), time);
    Vnt_LfnDateUnpack(static_cast<std::uint16_t>(packed >> 16), date);
    return true;
}

bool Vnt_LfnFileTimeSet(const char* file, const VNT_TIME* time, const VNT_DATE* date) {
    if (file == nullptr || (time == nullptr && date == nullptr)) return false;
    unsigned long packed = 0;
    if ((time == nullptr || date == nullptr) && !packedTime(file, packed)) return false;
    if (time) packed = (packed & 0xFFFF0000ul) | Vnt_LfnTimePack(*time);
    if (date) packed = (packed & 0xFFFFul) | (static_cast<unsigned long>(Vnt_LfnDatePack(*date)) << 16);
    return setPacked(file, packed);
}

bool Vnt_LfnFileTimeGetp(const char* file, unsigned long* out) {
    unsigned long packed;
    if (!packedTime(file, packed)) return false;
    if (out) *out = packed;
    return true;
}

bool Vnt_LfnFileTimeSetp(const char* file, unsigned long packed) { return setPacked(file, packed & 0xFFFFFFFFul); }

// ---------------------------------------------------------------------------
// The program's directory and temporary names
// ---------------------------------------------------------------------------

// Windows belong to no module of their own yet (modules are not loaded
// here), so every window gives the program's directory.
bool Vnt_LfnDirProgram(char* buf, std::size_t size, VNT_HWND /*window*/) {
    return Vnt_LfnProgDirName(buf, size, nullptr);
}

/*
 * "HHMMSS.tmp" in the program's TEMP directory. The name is not tested for
 * existence: callers rely on one name per second, kept for compatibility.
 */
bool Vnt_LfnTempFileName(char (&buf)[VNT_MAX_PATH]) {
    const vnt::host::LocalTime now = vnt::host::localNow();
    VNT_PATH prog, dir;
    if (now.hour < 0 || now.hour > 23 || now.minute < 0 || now.minute > 59 || now.second < 0 ||
        now.second > 59 || !Vnt_LfnProgDirName(prog, sizeof prog)) {
        buf[0] = '\0';
        return false;
    }
    if (!Vnt_LfnDirCreate(dir, prog, "TEMP")) copyBounded(dir, prog);
    const std::string name = vnt::format("%02d%02d%02d.tmp", now.hour, now.minute, now.second);
    return Vnt_LfnNameMake(buf, dir, name.c_str(), nullptr);
}
