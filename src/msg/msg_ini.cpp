// The smallest profile read and write: sections "[name]" with "key=value"
// lines, found without regard to case, written through a temporary file.
#include "msg/msg_ini.h"

#include <string_view>
#include <vector>

#include "host/host.h"
#include "vanto/lfn.h"
#include "vanto/text.h"

namespace vnt::msg::ini {
namespace {

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (Vnt_TxtUpper(static_cast<unsigned char>(a[i])) != Vnt_TxtUpper(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

// The file's lines without their ends (LF or CR LF).
std::vector<std::string> splitLines(const std::string& data) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < data.size()) {
        std::size_t nl = data.find('\n', start);
        std::size_t end = nl == std::string::npos ? data.size() : nl;
        std::size_t stop = end > start && data[end - 1] == '\r' ? end - 1 : end;
        lines.emplace_back(data, start, stop - start);
        if (nl == std::string::npos) break;
        start = nl + 1;
    }
    return lines;
}

// The section a line opens ("[ Msg ]" => "Msg"), or false.
bool sectionOf(std::string_view line, std::string_view& name) {
    line = trim(line);
    if (line.empty() || line.front() != '[') return false;
    std::size_t close = line.find(']');
    if (close == std::string_view::npos) return false;
    name = trim(line.substr(1, close - 1));
    return true;
}

// The key and value of a "key=value" line; comments (';') are no entries.
bool entryOf(std::string_view line, std::string_view& key, std::string_view& value) {
    std::string_view t = trim(line);
    if (t.empty() || t.front() == ';' || t.front() == '[') return false;
    std::size_t eq = t.find('=');
    if (eq == std::string_view::npos) return false;
    key = trim(t.substr(0, eq));
    value = trim(t.substr(eq + 1));
    return true;
}

// Lines [first, end) of the first section named `section`; false when none.
bool findSection(const std::vector<std::string>& lines, std::string_view section, std::size_t& first,
                 std::size_t& end) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string_view name;
        if (!sectionOf(lines[i], name) || !sameName(name, section)) continue;
        first = i + 1;
        end = first;
        while (end < lines.size() && !sectionOf(lines[end], name)) ++end;
        return true;
    }
    return false;
}

// Index of the first line of [first, end) holding `key`; `end` when none.
std::size_t findKey(const std::vector<std::string>& lines, std::size_t first, std::size_t end,
                    std::string_view key) {
    for (std::size_t i = first; i < end; ++i) {
        std::string_view k, v;
        if (entryOf(lines[i], k, v) && sameName(k, key)) return i;
    }
    return end;
}

bool hasLineEnd(std::string_view s) { return s.find_first_of("\r\n") != std::string_view::npos; }

}  // namespace

bool read(const char* file, const char* section, const char* key, std::string& value) {
    value.clear();
    if (file == nullptr || section == nullptr || key == nullptr) return false;
    std::string data;
    if (!host::readFile(file, data)) return false;
    const std::vector<std::string> lines = splitLines(data);
    std::size_t first, end;
    if (!findSection(lines, section, first, end)) return false;
    std::size_t at = findKey(lines, first, end, key);
    if (at == end) return false;
    std::string_view k, v;
    entryOf(lines[at], k, v);
    value.assign(v);
    return true;
}

/*
 * Reads the file (a missing one is empty; one that cannot be read is left
 * alone rather than replaced by a file holding only the new key), changes or
 * adds the one line and writes the whole file anew with CR LF line ends.
 */
bool write(const char* file, const char* section, const char* key, const char* value) {
    if (file == nullptr || section == nullptr || key == nullptr || value == nullptr) return false;
    std::string_view sec = trim(section), k = trim(key), val = trim(value);
    if (sec.empty() || k.empty() || hasLineEnd(sec) || hasLineEnd(k) || hasLineEnd(val) ||
        sec.find(']') != std::string_view::npos || k.find('=') != std::string_view::npos)
        return false;
    std::string data;
    bool missing = false;
    if (!host::readFile(file, data, &missing) && !missing) return false;
    std::vector<std::string> lines = splitLines(data);
    const std::string entry = std::string(k) + "=" + std::string(val);
    std::size_t first, end;
    if (!findSection(lines, sec, first, end)) {
        lines.push_back("[" + std::string(sec) + "]");
        lines.push_back(entry);
    } else {
        std::size_t at = findKey(lines, first, end, k);
        if (at != end) {
            lines[at] = entry;
        } else {
            // After the section's last non-blank line, before blank lines
            // that separate it from the next section.
            std::size_t pos = end;
            while (pos > first && trim(lines[pos - 1]).empty()) --pos;
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(pos), entry);
        }
    }
    std::string out;
    for (const std::string& l : lines) out += l + "\r\n";
    VNT_PATH dir;
    Vnt_LfnNameSplit(file, dir, nullptr, nullptr);
    if (dir[0] != '\0' && !host::makeDirs(dir)) return false;
    return host::writeFileAtomic(file, out);
}

bool msgIniPath(std::string& path) {
    path.clear();
    VNT_PATH dir;
    if (!Vnt_LfnProgDirName(dir, sizeof dir)) return false;
    std::string p = dir;
    if (!p.empty() && p.back() != '\\') p += '\\';
    p += "USR\\Std\\Msg.ini";
    if (p.size() >= VNT_MAX_PATH) return false;
    path = p;
    return true;
}

}  // namespace vnt::msg::ini
