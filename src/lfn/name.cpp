// Pure name functions of the path grammar: tests, joining, splitting,
// extensions, dot resolution, command-line tokens and display forms. None of
// them looks at the file system.
#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "base/names.h"
#include "base/strbuf.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"

namespace vnt::lfn {

State& state() {
    static State s;
    return s;
}

void resetState() { state() = State{}; }

}  // namespace vnt::lfn

namespace {

using vnt::copyBounded;

constexpr std::size_t kMaxName = VNT_MAX_PATH - 1;  // 259
constexpr long kDefaultOutWidth = 38;
constexpr std::size_t kMaxExtWritten = 8;

// Length of a string, looking at no more than `max` characters.
std::size_t boundedLen(const char* s, std::size_t max) {
    const void* nul = std::memchr(s, '\0', max);
    return nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - s) : max;
}

bool hasVolPrefix(const char* s) { return s != nullptr && s[0] != '\0' && s[1] == ':'; }

bool startsAtRoot(const char* s) {
    if (s == nullptr) return false;
    return s[0] == '\\' || (hasVolPrefix(s) && s[2] == '\\');
}

bool isSlash(char c) { return c == '\\' || c == '/'; }

// Separator position of a name: the last backslash; else the position after
// the colon of a volume prefix; else the end. Returns whether the name is a
// path (has either).
bool separatorPos(const char* s, std::size_t& pos) {
    const char* bs = std::strrchr(s, '\\');
    if (bs != nullptr) {
        pos = static_cast<std::size_t>(bs - s);
        return true;
    }
    if (hasVolPrefix(s)) {
        pos = 2;
        return true;
    }
    pos = std::strlen(s);
    return false;
}

// Index of the extension dot by the last-dot rule shared by joining and
// splitting: the last '.' counts when it lies after the separator position or
// the name has no separator at all. npos when there is none.
std::size_t lastDotExt(const char* s) {
    const char* dot = std::strrchr(s, '.');
    if (dot == nullptr) return std::string_view::npos;
    std::size_t sep = 0;
    bool isPath = separatorPos(s, sep);
    std::size_t at = static_cast<std::size_t>(dot - s);
    if (at > sep || !isPath) return at;
    return std::string_view::npos;
}

}  // namespace

// ---------------------------------------------------------------------------
// Tests on names
// ---------------------------------------------------------------------------

bool Vnt_LfnNameIsWild(const char* name) {
    return name != nullptr && std::strpbrk(name, "*?") != nullptr;
}

bool Vnt_LfnNameIsAbsPath(const char* name) {
    return startsAtRoot(name) && std::strstr(name, "..") == nullptr;
}

bool Vnt_LfnNameIsRelPath(const char* name) {
    if (name == nullptr) return false;
    if (name[0] == '.') return true;
    if (name[0] != '\\' && !hasVolPrefix(name)) return true;
    if (name[0] == '\\') return false;
    return name[2] != '\\';
}

bool Vnt_LfnNameIsRoot(const char* name) {
    if (name == nullptr) return false;
    if (name[0] == '\\' && name[1] == '\0') return true;
    return hasVolPrefix(name) && name[2] == '\\' && name[3] == '\0';
}

bool Vnt_LfnNameIsPath(const char* name, const char** sep) {
    if (name == nullptr) {
        if (sep) *sep = nullptr;
        return false;
    }
    std::size_t pos = 0;
    bool isPath = separatorPos(name, pos);
    if (sep) *sep = name + pos;
    return isPath;
}

bool Vnt_LfnNameIsPath(char* name, char** sep) {
    const char* p = nullptr;
    bool r = Vnt_LfnNameIsPath(static_cast<const char*>(name), &p);
    if (sep) *sep = name ? name + (p - name) : nullptr;
    return r;
}

bool Vnt_LfnNameHasVol(const char* name, const char** after) {
    bool r = hasVolPrefix(name);
    if (after) *after = r ? name + 2 : name;
    return r;
}

bool Vnt_LfnNameHasVol(char* name, char** after) {
    bool r = hasVolPrefix(name);
    if (after) *after = r ? name + 2 : name;
    return r;
}

bool Vnt_LfnNameIsVol(const char* name, const char** after) {
    bool vol = hasVolPrefix(name);
    if (after) *after = vol ? name + 2 : name;
    return vol && name[2] == '\0';
}

bool Vnt_LfnNameIsVol(char* name, char** after) {
    bool vol = hasVolPrefix(name);
    if (after) *after = vol ? name + 2 : name;
    return vol && name[2] == '\0';
}

// ---------------------------------------------------------------------------
// Joining, splitting, extensions
// ---------------------------------------------------------------------------

/*
 * Joins directory, name and extension in a scratch string and copies the
 * result into the target at the end, so any argument may point into the
 * target itself. A base that already fills the target stops before anything
 * is written; a cut name or extension still delivers the joined text.
 */
bool Vnt_LfnNameMake(char* buf, std::size_t size, const char* dir, const char* name,
                     const char* ext) {
    if (buf == nullptr || size < 2) return false;
    const std::size_t limit = size - 1;
    if (dir == nullptr && name == nullptr && ext == nullptr) return true;

    // "D:\x" under "C:\dir": the name's volume gives way to the directory's.
    if (hasVolPrefix(name) && dir != nullptr && dir[0] != '\0' && hasVolPrefix(dir)) name += 2;

    const char* base = dir;
    if (base == nullptr) {
        base = name;
        name = nullptr;
    }
    if (base == nullptr) base = buf;  // only an extension: work on the target
    const bool root = startsAtRoot(base) || startsAtRoot(name);

    std::string work;
    try {
        work.reserve(size + 100);
    } catch (const std::bad_alloc&) {
        return false;
    }
    bool ok = true;
    work.assign(base, boundedLen(base, limit));

    if (name != nullptr && name[0] != '\0') {
        if (work.size() > size - 2) return false;  // no room for even one character
        if (Vnt_LfnNameIsVol(work.c_str())) {
            if (root) work += '\\';  // "C:" + "x" is "C:x", "C:" + "\x" is "C:\x"
        } else if (!work.empty() && work.back() != '\\') {
            work += '\\';
        }
        if (name[0] == '\\') ++name;
        std::size_t room = limit - work.size();
        std::size_t len = std::strlen(name);
        if (len > room) {
            len = room;
            ok = false;
        }
        work.append(name, len);
    }

    if (ext != nullptr) {
        std::size_t dot = lastDotExt(work.c_str());
        if (dot != std::string_view::npos) {
            work.resize(dot + 1);
        } else if (work.size() + 1 < limit) {
            work += '.';
        }
        if (ext[0] == '.') ++ext;
        std::size_t len = std::min(std::strlen(ext), kMaxExtWritten);
        std::size_t room = limit > work.size() ? limit - work.size() : 0;
        // Kept for compatibility: less than eight characters of room is a
        // failure even when this extension would have fitted.
        if (room < kMaxExtWritten) {
            len = std::min(len, room);
            ok = false;
        }
        work.append(ext, len);
    }

    copyBounded(buf, size, std::string_view(work).substr(0, limit));
    return ok;
}

bool Vnt_LfnNameMake(char (&buf)[VNT_MAX_PATH], const char* dir, const char* name,
                     const char* ext) {
    return Vnt_LfnNameMake(buf, VNT_MAX_PATH, dir, name, ext);
}

/*
 * Splits a name at its separator position. Works on a copy, so the input may
 * also be one of the outputs.
 */
void Vnt_LfnNameSplit(const char* name, char* dir, char* file, char* ext) {
    char in[VNT_MAX_PATH];
    copyBounded(in, name);
    if (dir) dir[0] = '\0';
    if (file) file[0] = '\0';
    if (ext) ext[0] = '\0';

    std::size_t sep = 0;
    std::string_view all(in);
    if (separatorPos(in, sep)) {
        if (file) {
            std::size_t from = in[sep] == '\\' ? sep + 1 : sep;
            copyBounded(file, VNT_MAX_PATH, all.substr(from));
        }
        if (dir) {
            // The directory keeps its backslash only when it is a root.
            std::size_t end = in[sep] == '\\' ? sep + 1 : sep;
            char d[VNT_MAX_PATH];
            copyBounded(d, all.substr(0, end));
            std::size_t dl = std::strlen(d);
            if (dl > 0 && d[dl - 1] == '\\' && !Vnt_LfnNameIsRoot(d)) d[dl - 1] = '\0';
            if (Vnt_LfnNameIsVol(d) && startsAtRoot(in)) {
                d[2] = '\\';
                d[3] = '\0';
            }
            copyBounded(dir, VNT_MAX_PATH, d);
        }
    } else if (file) {
        copyBounded(file, VNT_MAX_PATH, in);
    }

    if (ext) {
        std::size_t dot = lastDotExt(in);
        if (dot != std::string_view::npos) copyBounded(ext, VNT_MAX_PATH, all.substr(dot + 1));
    }
}

/*
 * Replaces the extension that starts at the FIRST dot of the file part. The
 * first three characters of the old one are handed back in a static buffer.
 */
const char* Vnt_LfnNameExtS(char* name, std::size_t size, const char* ext) {
    if (name == nullptr || size == 0) return nullptr;
    const std::size_t len = boundedLen(name, size);
    if (len == size) return nullptr;  // not a terminated name
    const char* bs = nullptr;
    for (std::size_t i = 0; i < len; ++i)
        if (name[i] == '\\') bs = name + i;
    const char* from = bs ? bs + 1 : name;
    const char* dot = std::strchr(from, '.');
    const std::size_t at = dot ? static_cast<std::size_t>(dot - name) : len;

    char* old = vnt::lfn::state().oldExt;
    copyBounded(old, sizeof vnt::lfn::state().oldExt, dot ? dot + 1 : "");
    if (ext == nullptr) return old;

    if (ext[0] == '.') ++ext;
    const std::size_t extLen = std::strlen(ext);
    if (extLen == 0) {
        name[at] = '\0';
        return old;
    }
    if (at + 1 + extLen >= size) return nullptr;  // at >= size - 1 - extLen
    name[at] = '.';
    copyBounded(name + at + 1, size - at - 1, ext);
    return old;
}

const char* Vnt_LfnNameExt(char (&buf)[VNT_MAX_PATH], const char* ext) {
    return Vnt_LfnNameExtS(buf, VNT_MAX_PATH, ext);
}

/*
 * Appends a dot first, then replaces the extension from the first dot: a name
 * that already has one gets it replaced ("file.txt" + "bak" is "file.bak"),
 * which callers rely on.
 */
const char* Vnt_LfnNameExtAdd(char (&buf)[VNT_MAX_PATH], const char* ext) {
    std::size_t len = boundedLen(buf, VNT_MAX_PATH);
    if (len > 0 && len < 258 && buf[len - 1] != '.') {
        buf[len] = '.';
        buf[len + 1] = '\0';
    }
    return Vnt_LfnNameExtS(buf, VNT_MAX_PATH, ext);
}

// ---------------------------------------------------------------------------
// Dot resolution, command-line tokens, display form, volume of a path
// ---------------------------------------------------------------------------

/*
 * Resolves "." and ".." components left to right, in place. A ".." that is not
 * a whole component or that would climb above the first component fails;
 * the buffer may then be partly rewritten.
 */
bool Vnt_LfnNameMakeAbs(char (&buf)[VNT_MAX_PATH]) {
    buf[kMaxName] = '\0';
    auto erase = [&](std::size_t from, std::size_t to) {  // removes [from, to)
        std::memmove(buf + from, buf + to, std::strlen(buf + to) + 1);
    };

    std::size_t i = 0;
    while (true) {
        const char* dot = std::strchr(buf + i, '.');
        if (dot == nullptr) break;
        i = static_cast<std::size_t>(dot - buf);
        const char next = buf[i + 1];
        if (next == '\\') {
            if (i == 0 || buf[i - 1] == '\\') {
                erase(i, i + 2);  // ".\" component
            } else {
                erase(i, i + 1);  // "name.\": the trailing dot goes
            }
        } else if (next == '.') {
            if (i == 0 || buf[i - 1] != '\\') return false;
            if (buf[i + 2] != '\\' && buf[i + 2] != '\0') return false;
            // Find the backslash that opens the component before "\..".
            std::size_t prev = i - 1;
            std::size_t open = prev;
            bool found = false;
            while (open > 0) {
                --open;
                if (buf[open] == '\\') {
                    found = true;
                    break;
                }
            }
            if (!found) return false;  // above the root: "C:\.."
            if (buf[i + 2] == '\0') {
                buf[open + 1] = '\0';  // "C:\a\.." leaves "C:\"
            } else {
                erase(open, i + 2);
            }
            i = open;
        } else if (next == '\0') {
            if (i > 0 && buf[i - 1] == '\\') buf[i - 1] = '\0';
            break;
        } else {
            ++i;
        }
    }

    std::size_t len = std::strlen(buf);
    const char* rest = hasVolPrefix(buf) ? buf + 2 : buf;
    if (len > 0 && buf[len - 1] == '\\' && std::strcmp(rest, "\\") != 0) buf[len - 1] = '\0';
    return true;
}

/*
 * Takes the first token of a command line: quoted up to the next quote, else
 * up to the next blank (or with `whole` to the end of the line).
 */
bool Vnt_LfnNameExtract(char (&dst)[VNT_MAX_PATH], char* line, bool remove, char** rest,
                        bool whole) {
    dst[0] = '\0';
    if (line == nullptr) {
        if (rest) *rest = nullptr;
        return false;
    }
    char* p = line;
    if (!whole)
        while (vnt::isBlank(*p)) ++p;

    char* tokBegin = p;
    char* tokEnd = nullptr;
    char* after = nullptr;
    if (*p == '"') {
        tokBegin = p + 1;
        char* close = std::strchr(p + 1, '"');
        tokEnd = close ? close : p + std::strlen(p);
        after = close ? close + 1 : tokEnd;
    } else if (whole) {
        tokEnd = p + std::strlen(p);
        after = tokEnd;
    } else {
        char* e = p;
        while (*e != '\0' && !vnt::isBlank(*e)) ++e;
        tokEnd = e;
        after = e;
    }
    while (tokEnd > tokBegin && vnt::isBlank(tokEnd[-1])) --tokEnd;
    const std::size_t tokLen = static_cast<std::size_t>(tokEnd - tokBegin);
    copyBounded(dst, std::string_view(tokBegin, tokLen));
    while (vnt::isBlank(*after)) ++after;

    if (remove) {
        if (*after != '\0') {
            std::memmove(line + 1, after, std::strlen(after) + 1);
            line[0] = ' ';
            after = line + 1;
        } else {
            line[0] = '\0';
            after = line;
        }
    }
    if (rest) *rest = after;
    return tokLen > 0 && tokLen <= kMaxName;
}

/*
 * Shortened display form for messages, in the next of three static buffers
 * so that up to three names can stand in one message. This host never
 * lower-cases (its version counts as 395 or above).
 */
const char* Vnt_LfnNameOut(const char* name, long width) {
    vnt::lfn::State& st = vnt::lfn::state();
    char* out = st.outRing[st.outNext];
    st.outNext = (st.outNext + 1) % 3;

    if (width <= 0 || width > static_cast<long>(VNT_MAX_PATH)) width = kDefaultOutWidth;
    if (name == nullptr) name = "";
    const std::string_view s(name);
    const std::size_t w = static_cast<std::size_t>(width);
    if (s.size() < w) {
        copyBounded(out, VNT_MAX_PATH, s);
        return out;
    }
    // Widths below 8 leave room for no tail: "abc..." only.
    const std::size_t tail = w > 7 ? w - 7 : 0;
    std::string shortened;
    shortened.reserve(6 + tail);
    shortened.append(s.substr(0, 3)).append("...").append(s.substr(s.size() - tail));
    copyBounded(out, VNT_MAX_PATH, shortened);
    return out;
}

/*
 * Volume of a path: up to the first colon, else the "\\server\share" prefix
 * of a UNC name (either slash separates there), else empty.
 */
bool Vnt_LfnVolFromPath(char (&buf)[VNT_MAX_PATH], const char* path) {
    const char* src = path ? path : buf;
    std::string_view s(src, boundedLen(src, kMaxName));
    std::size_t n = 0;
    if (std::size_t colon = s.find(':'); colon != std::string_view::npos) {
        n = colon + 1;
    } else if (s.size() >= 2 && s[0] == '\\' && s[1] == '\\') {
        n = 2;
        while (n < s.size() && !isSlash(s[n])) ++n;  // server
        if (n + 1 < s.size()) {
            ++n;
            while (n < s.size() && !isSlash(s[n])) ++n;  // share
        }
    }
    copyBounded(buf, s.substr(0, n));
    return true;
}
