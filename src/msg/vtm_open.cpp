// Message library reader: opening libraries and segments, and the
// validation of the preload area.
#include <algorithm>
#include <cstdint>
#include <new>

#include "base/strbuf.h"
#include "msg/vtm_internal.h"

namespace vnt::vtm {
namespace {

// A read that came short, remembered for the "Error reading" report.
struct ShortRead {
    bool happened = false;
    uint64_t requested = 0;
    uint64_t got = 0;
};

bool readFull(host::File* f, void* buf, std::size_t n, ShortRead& sr) {
    std::size_t got = f->read(buf, n);
    if (got < n) {
        sr = ShortRead{true, n, got};
        return false;
    }
    return true;
}

/*
 * Checks the magic and the version of the header buffer; 0 when it is a
 * message library this reader can use.
 */
long checkMagic(const unsigned char* h) {
    if (std::memcmp(h, "VANTOVTM", 8) == 0) {
        int32_t version = getI32(h + hdr::kVersion);
        if (version < 10) return VNT_VTM_E_VERLOW;
        if (version > 199) return VNT_VTM_E_VERHIGH;
        // The version text: decimal digits, NUL-padded, 4 bytes at most.
        int32_t textValue = 0;
        bool digits = true;
        std::size_t i = 0;
        for (; i < 4 && h[hdr::kVersionText + i]; ++i) {
            unsigned char c = h[hdr::kVersionText + i];
            if (c < '0' || c > '9') digits = false;
            textValue = textValue * 10 + (c - '0');
        }
        for (; i < 4; ++i)
            if (h[hdr::kVersionText + i]) digits = false;  // text after the padding
        if (!digits || textValue != version) return VNT_VTM_E_VERTEXT;
        return VNT_VTM_OK;
    }
    if (std::memcmp(h, "VANTOMSP", 8) == 0) return VNT_VTM_E_MSP;
    if (std::memcmp(h, "VANTOVTP", 8) == 0) return VNT_VTM_E_VTP;
    return VNT_VTM_E_MAGIC;
}

/*
 * Checks the preloaded run of texts and repairs what can be repaired in
 * memory: the stored lengths and the positions of the preloaded entries.
 * Findings set the status; they never make the open fail.
 */
void validatePreload(VNT_VTM_LIB* lib) {
    State& s = state();
    if (s.noRepair || lib->preload.empty()) return;
    const long count = lib->messageCount();
    lib->preloadCount = std::clamp<int32_t>(lib->preloadCount, 0, int32_t(count));
    int64_t area = lib->textAreaSize();
    if (area >= 0 && int64_t(lib->preloadSize) > area) lib->preloadSize = uint32_t(area);
    if (lib->preloadCount == 0) return;

    const char* text = reinterpret_cast<const char*>(lib->preload.data());
    const std::size_t bufSize = lib->preload.size();
    const uint64_t size = lib->preloadSize;
    uint64_t place = 0;  // running total: where the current text starts
    lib->setEntryPosition(0, 0);
    for (long n = 0; n < count; ++n) {
        if (lib->entryId(n) == lib->lastPreloadId) {
            if (n == lib->preloadCount - 1) return;  // the area is consistent
            s.status = VNT_VTM_E_NOTFOUND;
        }
        // The area always ends in zero bytes, so the text ends inside it.
        const void* nul = std::memchr(text + place, 0, bufSize - place);
        uint64_t len = nul ? uint64_t(static_cast<const char*>(nul) - (text + place))
                           : bufSize - place;
        if (place + len > size) {
            s.status = VNT_VTM_E_PRELSIZE;
            return;
        }
        if (n == lib->preloadCount) {
            s.status = VNT_VTM_E_EMPTY;
            return;
        }
        if (lib->entryLength(n) != len + 1) {
            s.status = VNT_VTM_E_LENGTH;
            lib->setEntryLength(n, uint16_t(len + 1));
        }
        if (n > 0) {
            uint32_t expect = lib->entryPosition(n - 1) + lib->entryLength(n - 1);
            if (lib->entryPosition(n) != expect) {
                s.status = VNT_VTM_E_OFFSET;
                lib->setEntryPosition(n, expect);
            }
        }
        place += len + 1;
    }
}

// A step's result for a failure whose status is already set.
constexpr long kStatusSet = -1;

/*
 * Reads the header at `base` and takes its fields: magic and version, the
 * counts and offsets, the name (which a segment must match). The run-time
 * fields of the header are cleared, its base set.
 */
long readHeader(VNT_VTM_LIB* lib, host::File* file, int64_t base, const char* segName, ShortRead& sr) {
    unsigned char* h = state().headerBuf;
    std::memset(h, 0, kHeaderSize);
    if (base < 0 || (lib->isSegment && !file->seek(uint64_t(base)))) return VNT_VTM_E_OFFSET;
    if (!readFull(file, h, kHeaderSize, sr)) return VNT_VTM_E_HEAD;
    std::memset(h + hdr::kRuntime, 0, hdr::kRuntimeLen);
    if (h[hdr::kAnnex] == 0) std::memset(h + hdr::kAnnex, 0, hdr::kAnnexLen);
    std::memset(h + hdr::kCursor, 0, 4);
    putU32(h + hdr::kBase, uint32_t(base));

    if (long st = checkMagic(h)) return st;
    lib->version = getI32(h + hdr::kVersion);
    lib->segCount = getI32(h + hdr::kSegCount);
    lib->baseOffset = int32_t(base);
    lib->libSize = getI32(h + hdr::kLibSize);
    lib->indexOffset = getI32(h + hdr::kIndexOfs);
    lib->textOffset = getI32(h + hdr::kTextOfs);
    lib->entryCount = getI32(h + hdr::kEntryCount);
    lib->systemFlag = getI32(h + hdr::kSysFlag);
    lib->preloadCount = getI32(h + hdr::kPreloadCount);
    lib->preloadSize = getU32(h + hdr::kPreloadSize);
    lib->lastPreloadId = getU32(h + hdr::kLastPreloadId);
    std::memcpy(lib->name, h + hdr::kName, 8);
    if (lib->segCount > kMaxSegments) return VNT_VTM_E_SEGCOUNT;
    if (lib->preloadSize > kMaxPreloadSize) return VNT_VTM_E_PRELSIZE;
    if (segName && (lib->name[0] == 0 || !namesEqual(lib->name, segName))) return VNT_VTM_E_SEGNAME;
    return 0;
}

/*
 * Reads the head (the header and what follows it up to the index) and the
 * index into one block with room to spare. A head larger than the whole
 * file, or an index larger than any library file (its size is a 32-bit
 * field), could never be filled: refused as out of memory. An index that
 * merely runs past the end of this file is a short read of the index
 * (status 3), told without allocating room for what is not there.
 */
long readIndex(VNT_VTM_LIB* lib, host::File* file, int64_t base, int64_t fileSize, ShortRead& sr) {
    int64_t headLen = int64_t(lib->indexOffset) - base;
    if (headLen < 0) return VNT_VTM_E_INDEXOFS;
    lib->headLength = int32_t(headLen);
    const std::size_t entrySize = lib->segCount < 1 ? kEntrySize : kDirEntrySize;
    const int64_t indexBytes = int64_t(lib->entryCount) * int64_t(entrySize);
    if (lib->entryCount < 0 || indexBytes > INT32_MAX || headLen > fileSize) return VNT_VTM_E_MEMORY;
    if (int64_t(lib->indexOffset) + indexBytes > fileSize) {
        const int64_t there = fileSize - int64_t(lib->indexOffset);
        sr = ShortRead{true, uint64_t(indexBytes), uint64_t(there > 0 ? there : 0)};
        return VNT_VTM_E_INDEX;
    }
    lib->indexPos = std::size_t(std::max<int64_t>(headLen, kHeaderSize));
    try {
        lib->block.assign(lib->indexPos + std::size_t(indexBytes) + kSpareIndex, 0);
    } catch (const std::bad_alloc&) {
        return VNT_VTM_E_MEMORY;
    }
    std::memcpy(lib->block.data(), state().headerBuf, kHeaderSize);
    if (headLen > int64_t(kHeaderSize) &&
        !readFull(file, lib->block.data() + kHeaderSize, std::size_t(headLen) - kHeaderSize, sr))
        return VNT_VTM_E_HEAD;

    if (!file->seek(uint64_t(lib->indexOffset))) return VNT_VTM_E_OFFSET;
    if (!readFull(file, lib->index(), std::size_t(indexBytes), sr)) return VNT_VTM_E_INDEX;
    return 0;
}

/*
 * Reads the preload area, directly after the index; builds the lookup of
 * message IDs and checks the preloaded texts against the index.
 */
long readPreload(VNT_VTM_LIB* lib, host::File* file, ShortRead& sr) {
    if (lib->preloadCount > 0) {
        try {
            lib->preload.assign(std::size_t(lib->preloadSize) + kSparePreload, 0);
        } catch (const std::bad_alloc&) {
            return VNT_VTM_E_MEMORY;
        }
        // Only a plain library has text positions (a container's first
        // directory entry holds a segment offset there).
        if (lib->messageCount() > 0) lib->setEntryPosition(0, 0);
        if (!readFull(file, lib->preload.data(), lib->preloadSize, sr)) return VNT_VTM_E_PRELOAD;
    }
    try {
        lib->ids.build(lib->index(), std::size_t(lib->messageCount()));
    } catch (const std::bad_alloc&) {
        return VNT_VTM_E_MEMORY;
    }
    validatePreload(lib);
    return 0;
}

/*
 * A wholly preloaded main library needs its file no more; the first library
 * with the system flag becomes the system library, which must be wholly
 * preloaded (reported otherwise). Neither in the quiet or raw mode.
 */
long claimSystemLibrary(VNT_VTM_LIB* lib) {
    State& s = state();
    const bool keepAll = s.quiet || s.raw;
    const long count = lib->messageCount();
    const bool allPreloaded = count == 0 || lib->entryId(count - 1) <= lib->lastPreloadId;
    if (!lib->isSegment && !keepAll && lib->segCount == 0 && allPreloaded) {
        lib->file = nullptr;
        lib->ownFile.reset();
    }
    if (!keepAll && !s.system && lib->segCount == 0 && lib->systemFlag >= 1) {
        lib->file = nullptr;  // a segment's file stays open for its container
        lib->ownFile.reset();
        if (!allPreloaded) {
            report("SysMsgLib MUST BE PRELOAD.");
            return kStatusSet;
        }
        s.system = lib;
    }
    return 0;
}

// Links a segment at the end of its container's chain, a main library at
// the end of the list of open libraries.
void linkIn(VNT_VTM_LIB* lib, VNT_VTM_LIB* parent) {
    State& s = state();
    if (lib->isSegment) {
        VNT_VTM_LIB* last = parent;
        while (last->chainNext) last = last->chainNext;
        last->chainNext = lib;
        lib->chainPrev = last;
    } else {
        lib->listPrev = s.tail;
        (s.tail ? s.tail->listNext : s.head) = lib;
        s.tail = lib;
    }
}

/*
 * Reads a library (or segment) whose header starts at `base` of `file` and
 * links it in. `ownFile` is the file of a main library (null for a segment,
 * whose file is its parent's); `segName` the requested name of a segment.
 * Null on failure, with the status set, a short read reported and
 * everything freed.
 */
VNT_VTM_LIB* load(std::unique_ptr<host::File> ownFile, host::File* file, const std::string& path,
                  int64_t fileSize, int64_t base, const char* segName, VNT_VTM_LIB* parent) {
    State& s = state();
    auto* lib = new VNT_VTM_LIB;
    s.live.insert(lib);
    lib->isSegment = parent != nullptr;
    lib->ownFile = std::move(ownFile);
    lib->file = file;
    lib->path = path;
    lib->fileSize = fileSize;
    ShortRead sr;

    long status = readHeader(lib, file, base, segName, sr);
    if (!status) status = readIndex(lib, file, base, fileSize, sr);
    if (!status) status = readPreload(lib, file, sr);
    if (!status) status = claimSystemLibrary(lib);
    if (status) {
        if (status != kStatusSet) s.status = status;
        if (sr.happened)
            report(format("Error reading \"%s\"\n(%lu bytes requested, %lu bytes read).",
                          path.c_str(), (unsigned long)sr.requested, (unsigned long)sr.got));
        destroy(lib);  // closes a main library's own file
        return nullptr;
    }
    linkIn(lib, parent);
    lib->refCount++;
    return lib;
}

/*
 * The sharing key of a file name: the part after the last '\', its first 8
 * characters, cut at the first '.' when that leaves 1..7 characters.
 *   "Z:\a\App.vtm" => "App"   "Z:\LongLibrary.vtm" => "LongLibr"   ".vtm" => ".vtm"
 */
void fileKey(const char* path, char (&key)[9]) {
    const char* slash = std::strrchr(path, '\\');
    const char* base = slash ? slash + 1 : path;
    vnt::copyBounded(key, base);
    if (char* dot = std::strchr(key, '.'); dot && dot > key) *dot = '\0';
}

/*
 * A segment name as the caller may give it: reduced to its file-name part,
 * without directory and extension, at most 8 characters.
 *   "Z:\x\APPMSG.vtm" => "APPMSG"   "Modules" => "Modules"
 */
void segmentKey(const char* name, char (&key)[9]) {
    const char* slash = std::strrchr(name, '\\');
    std::string_view base = slash ? slash + 1 : name;
    base = base.substr(0, base.find('.'));
    vnt::copyBounded(key, base);
}

}  // namespace
}  // namespace vnt::vtm

using namespace vnt::vtm;

VNT_MSG Vnt_VtmOpen(const char* path) {
    State& s = state();
    s.status = VNT_VTM_OK;
    if (!path) path = "";
    if (!s.quiet && s.noShare <= 0) {
        char key[9];
        fileKey(path, key);
        for (VNT_VTM_LIB* lib = s.head; lib; lib = lib->listNext) {
            if (lib->name[0] && namesEqual(lib->name, key)) {
                lib->refCount++;
                return lib;
            }
        }
    }
    auto file = std::make_unique<vnt::host::File>();
    if (!file->openRead(path)) {
        s.status = VNT_VTM_E_OPEN;
        return nullptr;
    }
    int64_t size = file->size();
    if (size < 0) {
        s.status = VNT_VTM_E_OPEN;
        return nullptr;
    }
    vnt::host::File* raw = file.get();
    return load(std::move(file), raw, path, size, 0, nullptr, nullptr);
}

/*
 * Opens a segment of a container: an already-open one of the same chain is
 * shared, else it is read from the container's file at the offset its
 * directory gives. Every segment reference holds one reference of the main
 * library; that reference is taken as soon as the name is found and kept even
 * when reading the segment fails (kept for compatibility).
 */
VNT_MSG Vnt_VtmOpenSeg(VNT_MSG parent, const char* name) {
    State& s = state();
    s.status = VNT_VTM_OK;
    if (!parent) parent = s.system;
    if (!parent) {
        s.status = VNT_VTM_E_NOTOPEN;
        return nullptr;
    }
    char want[9];
    segmentKey(name ? name : "", want);

    VNT_VTM_LIB* root = parent;
    while (root->chainPrev) root = root->chainPrev;
    VNT_VTM_LIB* found = nullptr;
    for (VNT_VTM_LIB* seg = root->isSegment ? root : root->chainNext; seg && !found;
         seg = seg->chainNext)
        if (namesEqual(seg->name, want)) found = seg;

    const unsigned char* dirEntry = nullptr;
    if (!found && parent->segCount >= 1 && want[0]) {
        const long n = std::min<long>(parent->segCount, parent->entryCount);
        for (long i = 0; i < n && !dirEntry; ++i) {
            const unsigned char* e = parent->index() + i * kDirEntrySize;
            if (e[4] && namesEqual(reinterpret_cast<const char*>(e + 4), want)) dirEntry = e;
        }
    }
    if (!found && !dirEntry) {
        s.status = VNT_VTM_E_NOSEG;
        return nullptr;
    }
    if (VNT_VTM_LIB* main = root->isSegment ? nullptr : root) main->refCount++;
    if (found) {
        found->refCount++;
        return found;
    }
    if (!parent->file) {
        s.status = VNT_VTM_E_NOTOPEN;
        return nullptr;
    }
    return load(nullptr, parent->file, parent->path, parent->fileSize, getI32(dirEntry), want,
                parent);
}
