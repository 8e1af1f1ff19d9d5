// The profile functions: INI entries read from a cache of parsed files and
// written by replacing the whole file.
#include "ini/profile.h"

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/names.h"
#include "base/strbuf.h"
#include "host/error.h"
#include "host/file.h"
#include "host/path.h"
#include "host/watch.h"
#include "ini/ini_stream.h"
#include "vanto/ini.h"
#include "vanto/msg.h"
#include "vanto/text.h"

namespace vnt::ini {
namespace {

using vnt::trim;
// Sections and keys are looked up by their compared form.
std::string upper(std::string_view s) { return vnt::foldText(s); }

enum class Kind { Blank, Comment, Header, Entry, Other };

struct LineInfo {
    Kind kind;
    std::string_view name;   // section of a header, key of an entry (trimmed)
    std::string_view value;  // value of an entry (trimmed, quotes still on)
};

/*
 * What a line is. A header's name runs to its first "]" (or the line's end)
 * and is trimmed, as the platform's profile functions read it; an entry is
 * split at its first "=".
 */
LineInfo classify(std::string_view line) {
    std::string_view t = trim(line);
    if (t.empty()) return {Kind::Blank, {}, {}};
    if (t.front() == ';') return {Kind::Comment, {}, {}};
    if (t.front() == '[') {
        std::size_t close = t.find(']', 1);
        return {Kind::Header, trim(t.substr(1, close == std::string_view::npos ? close : close - 1)), {}};
    }
    std::size_t eq = t.find('=');
    if (eq == std::string_view::npos) return {Kind::Other, {}, {}};
    return {Kind::Entry, trim(t.substr(0, eq)), trim(t.substr(eq + 1))};
}

// A value in matching outer quotes is delivered without them.
std::string_view unquote(std::string_view v) {
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
        return v.substr(1, v.size() - 2);
    return v;
}

// Splits at CR LF, LF or a lone CR; a last line without an end counts. A
// line ends at a NUL in it, as the line reader of the INI engine reads it.
std::vector<std::string> splitLines(const std::string& data) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    auto take = [&](std::size_t from, std::size_t n) {
        std::string_view line = std::string_view(data).substr(from, n);
        lines.emplace_back(line.substr(0, line.find('\0')));
    };
    while (start < data.size()) {
        std::size_t end = data.find_first_of("\r\n", start);
        if (end == std::string::npos) {
            take(start, std::string::npos);
            break;
        }
        take(start, end - start);
        start = end + (data[end] == '\r' && end + 1 < data.size() && data[end + 1] == '\n' ? 2 : 1);
    }
    return lines;
}

// A parsed file: its lines, and an index of the first section of each name
// and the first line of each key in it.
struct Doc {
    struct Section {
        std::string_view name;                            // as spelled (points into lines)
        std::unordered_map<std::string, std::size_t> keys;  // upper key -> line
        std::vector<std::size_t> keyLines;                // first line of each key, in order
    };
    std::vector<std::string> lines;
    std::vector<Section> sections;  // one per name, in the file's order
    std::unordered_map<std::string, std::size_t> byName;

    /*
     * Rebuilds the index. Entries before the first header, and the lines of
     * a repeated section, cannot be reached by a read: the first match wins.
     */
    void index() {
        sections.clear();
        byName.clear();
        Section* cur = nullptr;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            LineInfo li = classify(lines[i]);
            if (li.kind == Kind::Header) {
                auto [it, fresh] = byName.emplace(upper(li.name), sections.size());
                cur = nullptr;
                if (fresh) {
                    sections.push_back({li.name, {}, {}});
                    cur = &sections.back();
                }
            } else if (li.kind == Kind::Entry && cur != nullptr) {
                if (cur->keys.emplace(upper(li.name), i).second) cur->keyLines.push_back(i);
            }
        }
    }

    const Section* find(std::string_view section) const {
        auto it = byName.find(upper(trim(section)));
        return it == byName.end() ? nullptr : &sections[it->second];
    }

    // The trimmed value of the key, quotes still on; false when missing.
    bool value(std::string_view section, std::string_view key, std::string_view& out) const {
        const Section* s = find(section);
        if (s == nullptr) return false;
        auto it = s->keys.find(upper(trim(key)));
        if (it == s->keys.end()) return false;
        out = classify(lines[it->second]).value;
        return true;
    }
};

// One cached file, under the library path it was asked for by.
constexpr long kMsgCannotWrite = 60002;  // file, the system's error text

struct Cached {
    std::string host;   // the host path it resolved to
    std::string base;   // its last component, to match notifications
    int watch = 0;      // watch id of its directory; 0 = compare stamps
    bool stale = true;  // must be read again
    bool toldUnwritable = false;  // a failed write was reported
    host::FileStamp stamp;
    Doc doc;
};

struct ProfileState {
    std::unordered_map<std::string, std::unique_ptr<Cached>> files;
    Cached* last = nullptr;  // the file asked for last, found without building a key
    std::string lastName;
    bool notify = true;
    unsigned long loads = 0;
};

ProfileState& state() {
    static ProfileState s;
    return s;
}

// Marks the files a notification concerns as to be read again.
void onWatchEvent(const host::WatchEvent& ev, void*) {
    for (auto& [lib, c] : state().files) {
        if (ev.overflow || (c->watch != 0 && c->watch == ev.id && (ev.gone || vnt::sameText(ev.name, c->base)))) {
            c->stale = true;
            if (ev.gone) c->watch = 0;
        }
    }
}

// Only names that cannot change their meaning with the current directory
// are cached: "X:\...".
bool cacheable(const char* file) {
    return file[0] != '\0' && file[1] == ':' && file[2] == '\\';
}

/*
 * Reads and parses the file. The directory is watched before the file is
 * read, so a change made while reading is not missed. A missing file is an
 * empty one; any other failure leaves the host's error set.
 */
bool load(Cached& c, const char* file) {
    ProfileState& st = state();
    std::string hostPath;
    if (!host::toHost(file, hostPath)) {
        host::setLastError(host::ErrorKind::NotFound);
        return false;
    }
    c.host = hostPath;
    std::string dir;
    host::hostPathSplit(hostPath, dir, c.base);
    c.watch = 0;
    if (st.notify && cacheable(file)) c.watch = host::watchDir(dir);
    if (c.watch == 0) c.stamp = host::fileStamp(hostPath);
    std::string data;
    bool missing = false;
    if (!host::readFile(file, data, &missing)) {
        // Where a rewrite died before its rename, its complete new content waits.
        const bool taken = missing && takeLeftoverRewrite(file) && host::readFile(file, data, &missing);
        if (!taken && !missing) {
            c.stale = true;
            return false;
        }
    }
    c.doc.lines = splitLines(data);
    c.doc.index();
    c.stale = false;
    ++st.loads;
    return true;
}

/*
 * The parsed file, up to date: pending notifications are taken in first;
 * without a watch, the file's stamp decides. `scratch` holds a file that is
 * not cached. Null when the file exists but cannot be read.
 */
Cached* acquire(const char* file, std::unique_ptr<Cached>& scratch) {
    ProfileState& st = state();
    host::watchDrain(onWatchEvent, nullptr);
    Cached* c;
    if (st.last != nullptr && st.lastName.compare(file) == 0) {
        c = st.last;
    } else if (cacheable(file)) {
        std::unique_ptr<Cached>& slot = st.files[file];
        if (!slot) slot = std::make_unique<Cached>();
        c = st.last = slot.get();
        st.lastName = file;
    } else {
        scratch = std::make_unique<Cached>();
        c = scratch.get();
    }
    if (!c->stale && (c->watch != 0 || host::fileStamp(c->host) == c->stamp)) return c;
    return load(*c, file) ? c : nullptr;
}

// Copies a NUL-separated list ended by a second NUL, cut as the platform does.
unsigned long putList(char* buf, unsigned long size, const std::string& list) {
    if (list.size() + 1 <= size) {
        copyBounded(buf, size, list);
        if (list.empty() && size >= 2) copyBounded(buf + 1, 1, "");
        return static_cast<unsigned long>(list.size());
    }
    if (size <= 2) {
        for (unsigned long i = 0; i < size; ++i) copyBounded(buf + i, 1, "");
        return 0;
    }
    copyBounded(buf, size - 1, list);
    copyBounded(buf + size - 1, 1, "");
    return size - 2;
}

bool hasLineEnd(std::string_view s) { return s.find_first_of("\r\n") != std::string_view::npos; }

// A file name the library's path buffers can hold.
bool fits(const char* file) { return std::strlen(file) < VNT_MAX_PATH; }

/*
 * True when the names can be written so that they read back as written: no
 * line end anywhere; a section neither begins with "[" nor holds "]"; a key
 * holds no "=" and begins with neither "[" (it would read as a header) nor
 * ";" (a comment).
 */
bool writable(std::string_view sec, const char* key, const char* value) {
    if (sec.empty() || hasLineEnd(sec) || sec.front() == '[' || sec.find(']') != std::string_view::npos)
        return false;
    if (key != nullptr) {
        const std::string_view k = trim(key);
        if (k.empty() || hasLineEnd(k) || k.find('=') != std::string_view::npos || k.front() == '[' || k.front() == ';')
            return false;
    }
    return value == nullptr || !hasLineEnd(value);
}

/*
 * Applies one write to the lines; false when nothing changes. Reads see only
 * the first section of a name, so a changed or deleted key is looked for
 * there; deleting a section removes every section of that name.
 */
bool edit(std::vector<std::string>& lines, std::string_view sec, const char* key, const char* value) {
    const std::string secU = upper(sec);
    std::vector<std::pair<std::size_t, std::size_t>> ranges;  // [header, end) of each match
    for (std::size_t i = 0; i < lines.size(); ++i) {
        LineInfo li = classify(lines[i]);
        if (li.kind != Kind::Header) continue;
        if (!ranges.empty() && ranges.back().second == lines.size()) ranges.back().second = i;
        if (upper(li.name) == secU) ranges.push_back({i, lines.size()});
    }
    auto at = [&](std::size_t i) { return lines.begin() + static_cast<std::ptrdiff_t>(i); };
    if (key == nullptr) {
        for (auto r = ranges.rbegin(); r != ranges.rend(); ++r) lines.erase(at(r->first), at(r->second));
        return !ranges.empty();
    }
    const std::string_view k = trim(key);
    if (ranges.empty()) {
        if (value == nullptr) return false;
        lines.push_back("[" + std::string(sec) + "]");
        lines.push_back(std::string(k) + "=" + value);
        return true;
    }
    const auto [head, end] = ranges.front();
    const std::string keyU = upper(k);
    if (value == nullptr) {
        bool any = false;
        for (std::size_t i = end; i-- > head + 1;) {
            LineInfo li = classify(lines[i]);
            if (li.kind == Kind::Entry && upper(li.name) == keyU) {
                lines.erase(at(i));
                any = true;
            }
        }
        return any;
    }
    std::size_t last = head;  // the section's last line that is neither blank nor a comment
    for (std::size_t i = head + 1; i < end; ++i) {
        LineInfo li = classify(lines[i]);
        if (li.kind == Kind::Entry && upper(li.name) == keyU) {
            if (li.value == value) return false;
            // The file's own spelling of the key stays; only the value changes.
            lines[i] = std::string(li.name) + "=" + value;
            return true;
        }
        if (li.kind == Kind::Entry || li.kind == Kind::Other) last = i;
    }
    lines.insert(at(last + 1), std::string(k) + "=" + value);
    return true;
}

bool lookup(const char* section, const char* key, const char* file, std::string& out) {
    if (section == nullptr || key == nullptr || file == nullptr || !fits(file)) return false;
    std::unique_ptr<Cached> scratch;
    Cached* c = acquire(file, scratch);
    std::string_view v;
    if (c == nullptr || !c->doc.value(section, key, v)) return false;
    out.assign(unquote(v));
    return true;
}

}  // namespace

void profileReset() {
    ProfileState& st = state();
    st.files.clear();
    st.last = nullptr;
    st.notify = true;
    st.loads = 0;
    host::watchReset();
}

void profileUseNotify(bool on) {
    state().notify = on;
    state().files.clear();
    state().last = nullptr;
}

unsigned long profileLoads() { return state().loads; }

}  // namespace vnt::ini

using namespace vnt::ini;

unsigned long Vnt_ProfileGetString(const char* section, const char* key, const char* def, char* buf,
                                   unsigned long size, const char* file) {
    if (buf == nullptr || size == 0) return 0;
    std::unique_ptr<Cached> scratch;
    Cached* c = file && fits(file) ? acquire(file, scratch) : nullptr;
    static const Doc kEmpty;
    const Doc& doc = c ? c->doc : kEmpty;
    if (section == nullptr || key == nullptr) {
        std::string list;
        if (section == nullptr) {
            for (const Doc::Section& s : doc.sections) list.append(s.name).push_back('\0');
        } else if (const Doc::Section* s = doc.find(section)) {
            for (std::size_t i : s->keyLines) list.append(classify(doc.lines[i]).name).push_back('\0');
        }
        return putList(buf, size, list);
    }
    std::string_view v;
    if (doc.value(section, key, v)) {
        v = unquote(v);
    } else {
        // Trailing blanks of the default go, as the platform documents.
        v = def ? std::string_view(def) : std::string_view();
        while (!v.empty() && v.back() == ' ') v.remove_suffix(1);
    }
    return static_cast<unsigned long>(vnt::copyBounded(buf, size, v));
}

long Vnt_ProfileGetInt(const char* section, const char* key, long def, const char* file) {
    std::string v;
    if (!lookup(section, key, file, v) || v.empty()) return def;
    std::size_t i = 0;
    bool neg = false;
    if (v[i] == '+' || v[i] == '-') neg = v[i++] == '-';
    long n = 0;
    constexpr long kMax = std::numeric_limits<long>::max();
    for (; i < v.size() && v[i] >= '0' && v[i] <= '9'; ++i) {
        int d = v[i] - '0';
        if (n > (kMax - d) / 10) return neg ? -kMax - 1 : kMax;
        n = n * 10 + d;
    }
    return neg ? -n : n;
}

/*
 * Validates the names, applies the change to a copy of the cached lines and
 * replaces the file with all lines ended in CR LF. The cache takes the new
 * lines only once the file is replaced; on failure it still holds the old
 * file, which is untouched on disk.
 */
bool Vnt_ProfileWriteString(const char* section, const char* key, const char* value, const char* file) {
    if (file == nullptr || *file == '\0' || !fits(file) || section == nullptr) {
        vnt::host::setLastError(vnt::host::ErrorKind::Invalid);
        return false;
    }
    const std::string_view sec = trim(section);
    if (!writable(sec, key, value)) {
        vnt::host::setLastError(vnt::host::ErrorKind::Invalid);
        return false;
    }
    std::unique_ptr<Cached> scratch;
    Cached* c = acquire(file, scratch);
    if (c == nullptr) return false;
    std::vector<std::string> lines = c->doc.lines;
    if (!edit(lines, sec, key, value)) return true;
    std::string out;
    for (const std::string& l : lines) out.append(l).append("\r\n");
    if (!vnt::host::writeFileAtomic(file, out)) {
        vnt::host::Error err = vnt::host::lastError();
        if (!err) err = vnt::host::errorOf(vnt::host::ErrorKind::IO);
        // A read-only installation: said once per file, not lost silently.
        if (!c->toldUnwritable) {
            c->toldUnwritable = true;
            Vnt_MsgSys(kMsgCannotWrite, file, vnt::host::errorText(err).c_str());
        }
        vnt::host::setLastError(err);
        return false;
    }
    // Our own rename is reported too: take it in before the cache is current.
    vnt::host::watchDrain(onWatchEvent, nullptr);
    c->doc.lines = std::move(lines);
    c->doc.index();
    c->stale = false;
    if (c->watch == 0) c->stamp = vnt::host::fileStamp(c->host);
    return true;
}

bool Vnt_ProfileFlush(const char* file) {
    ProfileState& st = state();
    st.last = nullptr;
    if (file == nullptr)
        st.files.clear();
    else
        st.files.erase(file);
    return true;
}
