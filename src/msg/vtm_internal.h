// Private side of the message library reader: the in-memory library, the
// reader's process-wide state and the helpers its source files share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/format.h"
#include "host/file.h"
#include "vanto/vtm.h"

namespace vnt::vtm {

// File layout.
inline constexpr std::size_t kHeaderSize = 204;
inline constexpr std::size_t kEntrySize = 8;      // index entry of a plain library
inline constexpr std::size_t kDirEntrySize = 12;  // directory entry of a container
inline constexpr std::size_t kSpareIndex = 28;    // zero bytes after the index
inline constexpr std::size_t kSparePreload = 100; // zero bytes after the preload area
inline constexpr std::size_t kMsgBufSize = 1025;  // message buffer (a terminator follows)
inline constexpr uint32_t kMaxPreloadSize = 65535;
inline constexpr int32_t kMaxSegments = 256;

// Header field offsets.
namespace hdr {
inline constexpr std::size_t kMagic = 0, kVersionText = 8, kVersion = 12, kName = 24,
                             kSegCount = 36, kBase = 40, kLibSize = 44, kIndexOfs = 48,
                             kTextOfs = 52, kEntryCount = 56, kSysFlag = 60, kPreloadCount = 64,
                             kPreloadSize = 68, kLastPreloadId = 72, kRuntime = 76,
                             kRuntimeLen = 28, kAnnex = 104, kAnnexLen = 60, kCursor = 164;
}

inline uint32_t getU32(const unsigned char* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}
inline int32_t getI32(const unsigned char* p) { return static_cast<int32_t>(getU32(p)); }
inline uint16_t getU16(const unsigned char* p) { return uint16_t(p[0] | p[1] << 8); }
inline void putU32(unsigned char* p, uint32_t v) {
    p[0] = uint8_t(v); p[1] = uint8_t(v >> 8); p[2] = uint8_t(v >> 16); p[3] = uint8_t(v >> 24);
}
// Length of a name field of at most 8 characters (terminated or not).
inline std::size_t fieldLen(const char* p) {
    const void* nul = std::memchr(p, 0, 8);
    return nul ? std::size_t(static_cast<const char*>(nul) - p) : 8;
}
inline void putU16(unsigned char* p, uint16_t v) { p[0] = uint8_t(v); p[1] = uint8_t(v >> 8); }

// Constant-time map from message ID to the number of its first index entry,
// sized for the library's entry count: small libraries (the common case, and
// segments) get an open-addressing table of 4-byte slots at most half full;
// from 16384 entries on, a direct table over all 65536 IDs costs no more per
// entry and keeps random lookups in a large library cache-friendly.
class IdIndex {
public:
    // Builds the map over `count` entries of 8 bytes at `entries`; the first
    // entry of each ID wins. IDs of 0 are not entered (0 is never looked up).
    void build(const unsigned char* entries, std::size_t count);
    // Entry number of the first entry with `id`, or -1.
    long find(uint16_t id) const {
        if (id == 0) return -1;
        if (!direct16_.empty()) return direct16_[id] == kNone16 ? -1 : long(direct16_[id]);
        if (!direct32_.empty()) return direct32_[id] == kNone32 ? -1 : long(direct32_[id]);
        if (slots_.empty()) return -1;
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = slotOf(id);; i = (i + 1) & mask) {
            if (slots_[i].id == id) return long(slots_[i].entry);
            if (slots_[i].id == 0) return -1;
        }
    }
    void clear();

private:
    static constexpr std::size_t kDirectFrom = 16384;
    static constexpr uint16_t kNone16 = 0xFFFF;
    static constexpr uint32_t kNone32 = 0xFFFFFFFF;
    struct Slot {
        uint16_t id;     // 0: empty
        uint16_t entry;  // first entry number with this ID (below kDirectFrom)
    };
    // Fibonacci hashing: the top bits of id * 2^32/phi pick the slot.
    std::size_t slotOf(uint16_t id) const { return (uint32_t(id) * 2654435761u) >> shift_; }
    std::vector<Slot> slots_;
    unsigned shift_ = 31;  // 32 - log2(slot count)
    std::vector<uint16_t> direct16_;  // 16384..65535 entries
    std::vector<uint32_t> direct32_;  // more than 65535 entries (repeated IDs)
};

}  // namespace vnt::vtm

// One open library or segment: the header fields the reader works with, the
// head of the file with the index behind it, the preload area and the links.
struct VNT_VTM_LIB {
    // Header fields (the block keeps the bytes as read).
    int32_t version = 0;
    int32_t segCount = 0;        // 0 plain library, 1..256 container
    int32_t baseOffset = 0;      // absolute offset of this header
    int32_t libSize = 0;         // bytes from the base offset
    int32_t indexOffset = 0;     // absolute offset of the index (directory)
    int32_t textOffset = 0;      // absolute offset of the text area
    int32_t entryCount = 0;      // index (directory) entries
    int32_t systemFlag = 0;
    int32_t preloadCount = 0;    // after validation: clamped to 0..entryCount
    uint32_t preloadSize = 0;    // after validation: clamped to the text area
    uint32_t lastPreloadId = 0;
    int32_t headLength = 0;      // index offset minus base offset
    char name[8] = {};           // library name field, NUL-padded, not terminated

    // Runtime.
    int32_t refCount = 0;
    int32_t cursor = 0;          // entry number of the last delivered entry
    bool isSegment = false;
    std::vector<unsigned char> block;    // head bytes, then the index, then 28 zero bytes
    std::vector<unsigned char> preload;  // preload area plus 100 zero bytes (empty: none)
    vnt::vtm::IdIndex ids;               // ID -> first entry (plain libraries only)
    std::unique_ptr<vnt::host::File> ownFile;  // main library: the open file
    vnt::host::File* file = nullptr;     // the open file (the parent's for a segment); null once closed
    std::string path;                    // file name given to the open (the parent's for a segment)
    VNT_VTM_LIB* chainPrev = nullptr;    // chain of a main library and its open segments
    VNT_VTM_LIB* chainNext = nullptr;
    VNT_VTM_LIB* listPrev = nullptr;     // process-wide list of open main libraries
    VNT_VTM_LIB* listNext = nullptr;

    std::size_t indexPos = 0;            // where the index starts in the block
    int64_t fileSize = 0;                // size of the file when it was opened

    unsigned char* index() { return block.data() + indexPos; }
    // Message entries of a plain library; a container has none (its index is
    // a directory of segments).
    long messageCount() const { return segCount < 1 && entryCount > 0 ? entryCount : 0; }
    uint16_t entryId(long n) { return vnt::vtm::getU16(index() + n * 8 + 4); }
    uint16_t entryLength(long n) { return vnt::vtm::getU16(index() + n * 8 + 6); }
    uint32_t entryPosition(long n) { return vnt::vtm::getU32(index() + n * 8); }
    void setEntryLength(long n, uint16_t v) { vnt::vtm::putU16(index() + n * 8 + 6, v); }
    void setEntryPosition(long n, uint32_t v) { vnt::vtm::putU32(index() + n * 8, v); }
    // Bytes of the text area: library size minus the head before the text offset.
    int64_t textAreaSize() const {
        return int64_t(libSize) - (int64_t(textOffset) - int64_t(baseOffset));
    }
};

namespace vnt::vtm {

// Everything the reader keeps for the whole process.
struct State {
    VNT_VTM_LIB* head = nullptr;         // open main libraries, in open order
    VNT_VTM_LIB* tail = nullptr;
    VNT_VTM_LIB* system = nullptr;       // the registered system library
    long status = 0;                     // of the last open or read
    char msgBuf[kMsgBufSize + 1] = {};   // texts read from a file
    unsigned char headerBuf[kHeaderSize] = {};  // header being opened
    char nameBuf[9] = {};                // Vnt_VtmName
    bool quiet = false;
    bool raw = false;                    // the last three effects of quiet
    bool noRepair = false;
    int noShare = 0;                     // counted: opens are not shared while above 0
    VNT_VTM_REPORT report = nullptr;     // null: the default (stderr, OK)
    std::unordered_set<VNT_VTM_LIB*> live;  // every library allocated and not yet freed
};

State& state();

/// Frees every open library and restores the state of a fresh process
/// (switches off, default report hook). For tests.
void reset();

/// Number of libraries and segments currently allocated. For tests.
std::size_t liveCount();

/// Passes "!VTMINTRF: Internal Error.\n" + `detail` to the report hook; ends
/// the process with exit code 3 unless it answers OK. Empties the message
/// buffer.
void report(const std::string& detail);

using vnt::format;

/// Comparison without regard to case (vnt::sameTextN) of two 8-character
/// name fields; each ends at its first NUL or after 8 characters.
bool namesEqual(const char* a, const char* b);

/// The main library at the start of `lib`'s chain; null for a segment whose
/// main library was released.
VNT_VTM_LIB* chainMain(VNT_VTM_LIB* lib);

/// Frees a library that is no longer linked anywhere.
void destroy(VNT_VTM_LIB* lib);

/// Reads entry `n` of `lib` (preloaded or from the file), with the status
/// and reports of a read by ID.
const char* readEntry(VNT_VTM_LIB* lib, long n);

}  // namespace vnt::vtm
