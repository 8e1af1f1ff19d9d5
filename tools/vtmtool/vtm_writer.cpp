// vtmtool/vtm_writer.cpp - builds message library files in memory and writes
// them to disk atomically.
#include "vtmtool/vtm_writer.h"

#include <cerrno>
#include <cstdio>
#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#endif
#include <cstring>
#include <limits>
#include <random>
#include <system_error>

namespace vtmtool {
namespace {

// Header field offsets (all integers little-endian).
constexpr std::size_t kOffMagic = 0;
constexpr std::size_t kOffVersionText = 8;
constexpr std::size_t kOffVersion = 12;
constexpr std::size_t kOffName = 24;
constexpr std::size_t kOffSegCount = 36;
constexpr std::size_t kOffBase = 40;
constexpr std::size_t kOffSize = 44;
constexpr std::size_t kOffIndex = 48;
constexpr std::size_t kOffText = 52;
constexpr std::size_t kOffEntries = 56;
constexpr std::size_t kOffSystem = 60;
constexpr std::size_t kOffPreCount = 64;
constexpr std::size_t kOffPreSize = 68;
constexpr std::size_t kOffLastPre = 72;

// Offsets are signed 32-bit fields in the file.
constexpr uint64_t kMaxFileSize = static_cast<uint64_t>(std::numeric_limits<int32_t>::max());

void put32(std::vector<unsigned char>& out, std::size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) out[at + i] = static_cast<unsigned char>(v >> (8 * i));
}

void put16(std::vector<unsigned char>& out, std::size_t at, uint16_t v) {
    out[at] = static_cast<unsigned char>(v);
    out[at + 1] = static_cast<unsigned char>(v >> 8);
}

std::string quoted(const std::string& s) { return "\"" + s + "\""; }

// Checks a library or segment name: at most 8 bytes, no NUL.
void checkName(const std::string& name, const char* what, long segment) {
    if (name.size() > kMaxNameLength)
        throw WriteError(std::string(what) + " name " + quoted(name) + " is longer than 8 characters",
                         WriteError::Field::Name, segment);
    if (name.find('\0') != std::string::npos)
        throw WriteError(std::string(what) + " name contains a NUL character",
                         WriteError::Field::Name, segment);
}

void checkVersion(int32_t version, const char* what, long segment) {
    if (version < 10 || version > 199)
        throw WriteError(std::string(what) + " version " + std::to_string(version) +
                             " is outside 10..199",
                         WriteError::Field::Version, segment);
}

// Appends a 204-byte header with the magic, version and name; every other
// byte is zero until the caller fills the offsets.
std::size_t appendHeader(std::vector<unsigned char>& out, const std::string& name,
                         int32_t version) {
    std::size_t at = out.size();
    out.resize(at + kHeaderSize, 0);
    std::memcpy(&out[at + kOffMagic], "VANTOVTM", 8);
    std::string vtext = std::to_string(version);  // 2..3 digits, NUL-padded to 4
    std::memcpy(&out[at + kOffVersionText], vtext.data(), vtext.size());
    put32(out, at + kOffVersion, static_cast<uint32_t>(version));
    if (!name.empty()) std::memcpy(&out[at + kOffName], name.data(), name.size());
    return at;
}

std::string describeEntry(const Message& m, std::size_t index) {
    return "message " + std::to_string(m.id) + " (entry " + std::to_string(index + 1) + ")";
}

// Validates one library against the reader's rules and appends it at the end
// of `out`, its offsets absolute within `out`. `segment` is its index in a
// container (-1 for a plain library) and only locates errors.
void appendLibrary(std::vector<unsigned char>& out, const Library& lib, long segment) {
    const char* what = segment < 0 ? "library" : "segment";
    checkName(lib.name, what, segment);
    checkVersion(lib.version, what, segment);

    const std::size_t n = lib.messages.size();
    if (lib.preload < -1)
        throw WriteError("preload count " + std::to_string(lib.preload) + " is negative",
                         WriteError::Field::Preload, segment);
    if (lib.preload > 0 && static_cast<std::size_t>(lib.preload) > n)
        throw WriteError("preload count " + std::to_string(lib.preload) + " is above the " +
                             std::to_string(n) + " entries of the " + what,
                         WriteError::Field::Preload, segment);
    const std::size_t preCount = lib.preload == -1 ? n : static_cast<std::size_t>(lib.preload);

    uint64_t textBytes = 0;
    uint64_t preSize = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const Message& m = lib.messages[i];
        const long mi = static_cast<long>(i);
        if (m.id == 0)
            throw WriteError("message ID 0 (entry " + std::to_string(i + 1) +
                                 ") is not allowed; IDs are 1..65535",
                             WriteError::Field::Message, segment, mi);
        if (m.text.size() > kMaxTextBytes)
            throw WriteError(describeEntry(m, i) + ": text is " + std::to_string(m.text.size()) +
                                 " bytes long, more than 1024",
                             WriteError::Field::Message, segment, mi);
        if (m.text.find('\0') != std::string::npos)
            throw WriteError(describeEntry(m, i) + ": text contains a NUL character",
                             WriteError::Field::Message, segment, mi);
        textBytes += m.text.size() + 1;
        if (i < preCount) preSize += m.text.size() + 1;
    }

    // The reader takes every ID up to the last preloaded one as preloaded and
    // every ID above it as read from the file; the entries must agree.
    const uint16_t lastPreId = preCount ? lib.messages[preCount - 1].id : 0;
    for (std::size_t i = 0; i + 1 < preCount; ++i) {
        if (lib.messages[i].id >= lastPreId)
            throw WriteError(describeEntry(lib.messages[i], i) +
                                 " is preloaded, so its ID must be below the last preloaded ID " +
                                 std::to_string(lastPreId),
                             WriteError::Field::Message, segment, static_cast<long>(i));
    }
    for (std::size_t i = preCount; i < n; ++i) {
        if (lib.messages[i].id <= lastPreId)
            throw WriteError(describeEntry(lib.messages[i], i) +
                                 " is not preloaded, so its ID must be above the last preloaded ID " +
                                 std::to_string(lastPreId),
                             WriteError::Field::Message, segment, static_cast<long>(i));
    }
    if (lib.systemFlag != 0 && preCount < n)
        throw WriteError(std::string("a system library must preload all its entries (") +
                             std::to_string(preCount) + " of " + std::to_string(n) + " preloaded)",
                         WriteError::Field::System, segment);
    if (preSize > kMaxPreloadSize)
        throw WriteError("preload area is " + std::to_string(preSize) +
                             " bytes, more than 65535; preload fewer entries",
                         WriteError::Field::Preload, segment);

    const uint64_t base = out.size();
    const uint64_t indexOffset = base + kHeaderSize;
    const uint64_t textOffset = indexOffset + kEntrySize * static_cast<uint64_t>(n);
    const uint64_t end = textOffset + textBytes;
    if (end > kMaxFileSize)
        throw WriteError(std::string("the file would exceed 2 GiB at this ") + what,
                         WriteError::Field::None, segment);

    std::size_t at = appendHeader(out, lib.name, lib.version);
    put32(out, at + kOffSegCount, 0);
    put32(out, at + kOffBase, static_cast<uint32_t>(base));
    put32(out, at + kOffSize, static_cast<uint32_t>(end - base));
    put32(out, at + kOffIndex, static_cast<uint32_t>(indexOffset));
    put32(out, at + kOffText, static_cast<uint32_t>(textOffset));
    put32(out, at + kOffEntries, static_cast<uint32_t>(n));
    put32(out, at + kOffSystem, static_cast<uint32_t>(lib.systemFlag));
    put32(out, at + kOffPreCount, static_cast<uint32_t>(preCount));
    put32(out, at + kOffPreSize, static_cast<uint32_t>(preSize));
    put32(out, at + kOffLastPre, lastPreId);

    // Index: positions count from the text offset, which is also the start
    // of the preload area.
    std::size_t idx = out.size();
    out.resize(idx + kEntrySize * n, 0);
    uint32_t pos = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const Message& m = lib.messages[i];
        put32(out, idx + kEntrySize * i, pos);
        put16(out, idx + kEntrySize * i + 4, m.id);
        put16(out, idx + kEntrySize * i + 6, static_cast<uint16_t>(m.text.size() + 1));
        pos += static_cast<uint32_t>(m.text.size() + 1);
    }
    for (const Message& m : lib.messages) {
        out.insert(out.end(), m.text.begin(), m.text.end());
        out.push_back(0);
    }
}

// ASCII case folding, as the reader compares names.
bool sameName(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        unsigned char x = static_cast<unsigned char>(a[i]);
        unsigned char y = static_cast<unsigned char>(b[i]);
        if (x >= 'a' && x <= 'z') x = static_cast<unsigned char>(x - 32);
        if (y >= 'a' && y <= 'z') y = static_cast<unsigned char>(y - 32);
        if (x != y) return false;
    }
    return true;
}

}  // namespace

std::vector<unsigned char> writeLibrary(const Library& lib) {
    std::vector<unsigned char> out;
    appendLibrary(out, lib, -1);
    return out;
}

std::vector<unsigned char> writeContainer(const Container& box) {
    checkName(box.name, "container", -1);
    checkVersion(box.version, "container", -1);
    const std::size_t k = box.segments.size();
    if (k == 0) throw WriteError("a container needs at least one segment", WriteError::Field::Segments);
    if (k > kMaxSegments)
        throw WriteError("a container holds at most 256 segments, not " + std::to_string(k),
                         WriteError::Field::Segments, static_cast<long>(kMaxSegments));
    for (std::size_t i = 0; i < k; ++i) {
        const Library& seg = box.segments[i];
        const long si = static_cast<long>(i);
        if (seg.name.empty()) throw WriteError("segment " + std::to_string(i + 1) + " has no name",
                             WriteError::Field::Name, si);
        if (seg.systemFlag != 0)
            throw WriteError("segment " + quoted(seg.name) +
                                 " has the system flag; only a plain library may be the system library",
                             WriteError::Field::System, si);
        for (std::size_t j = 0; j < i; ++j)
            if (sameName(seg.name, box.segments[j].name))
                throw WriteError("segment name " + quoted(seg.name) + " is used twice",
                                 WriteError::Field::Name, si);
    }

    std::vector<unsigned char> out;
    std::size_t at = appendHeader(out, box.name, box.version);
    const std::size_t dir = out.size();
    out.resize(dir + kDirEntrySize * k, 0);
    for (std::size_t i = 0; i < k; ++i) {
        put32(out, dir + kDirEntrySize * i, static_cast<uint32_t>(out.size()));
        const std::string& name = box.segments[i].name;
        checkName(name, "segment", static_cast<long>(i));  // before the copy below
        std::memcpy(&out[dir + kDirEntrySize * i + 4], name.data(), name.size());
        appendLibrary(out, box.segments[i], static_cast<long>(i));
    }
    put32(out, at + kOffSegCount, static_cast<uint32_t>(k));
    put32(out, at + kOffBase, 0);
    put32(out, at + kOffSize, static_cast<uint32_t>(out.size()));
    put32(out, at + kOffIndex, static_cast<uint32_t>(dir));
    put32(out, at + kOffText, static_cast<uint32_t>(dir + kDirEntrySize * k));
    put32(out, at + kOffEntries, static_cast<uint32_t>(k));
    return out;
}

namespace {
// Opens a path in the system's own form (UTF-16 on Windows, where a narrow
// name would go through the ANSI code page). `exclusive` creates a new
// file for writing and fails where one exists.
std::FILE* openPath(const std::filesystem::path& path, bool write, bool exclusive) {
#if defined(_WIN32)
    if (exclusive) {
        int fd = -1;
        if (_wsopen_s(&fd, path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _SH_DENYNO, _S_IREAD | _S_IWRITE) != 0)
            return nullptr;
        std::FILE* f = _fdopen(fd, "wb");
        if (f == nullptr) _close(fd);
        return f;
    }
    return _wfopen(path.c_str(), write ? L"wb" : L"rb");
#else
    return std::fopen(path.c_str(), exclusive ? "wbx" : write ? "wb" : "rb");
#endif
}
}  // namespace

// Writes into "<name>.<random>.tmp" beside the target, then renames. The
// temporary name is created exclusively ("x"), so two writers never share one.
void writeFileAtomic(const std::filesystem::path& path, const std::vector<unsigned char>& bytes) {
    namespace fs = std::filesystem;
    const std::string shown = path.string();
    std::random_device rd;
    std::FILE* f = nullptr;
    fs::path tmp;
    for (int attempt = 0; attempt < 16 && f == nullptr; ++attempt) {
        static const char kHex[] = "0123456789abcdef";
        std::string suffix = ".";
        for (uint32_t r = rd(), i = 0; i < 8; ++i, r >>= 4) suffix += kHex[r & 15u];
        suffix += ".tmp";
        tmp = path;
        tmp += suffix;
        f = openPath(tmp, true, true);
        if (f == nullptr && errno != EEXIST) break;
    }
    if (f == nullptr) {
        std::error_code ec(errno, std::generic_category());
        throw std::runtime_error("cannot create a temporary file beside '" + shown +
                                 "': " + ec.message());
    }
    bool ok = bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    int err = ok ? 0 : errno;
    if (std::fflush(f) != 0 && ok) ok = false, err = errno;
    if (std::fclose(f) != 0 && ok) ok = false, err = errno;
    std::error_code ec;
    if (ok) {
        fs::rename(tmp, path, ec);
        if (!ec) return;
    } else {
        ec = std::error_code(err, std::generic_category());
    }
    std::error_code ignored;
    fs::remove(tmp, ignored);
    throw std::runtime_error("cannot write '" + shown + "': " + ec.message());
}

std::string readFile(const std::filesystem::path& path) {
    std::FILE* f = openPath(path, false, false);
    if (f == nullptr) {
        std::error_code ec(errno, std::generic_category());
        throw std::runtime_error("cannot read '" + path.string() + "': " + ec.message());
    }
    std::string data;
    char chunk[65536];
    std::size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, f)) > 0) data.append(chunk, got);
    const bool failed = std::ferror(f) != 0;
    const int err = errno;
    std::fclose(f);
    if (failed)
        throw std::runtime_error("cannot read '" + path.string() + "': " +
                                 std::error_code(err, std::generic_category()).message());
    return data;
}

}  // namespace vtmtool
