// Message library reader: process-wide state, reports, switches, close and
// the accessors for tools. Opening lives in vtm_open.cpp, reading in
// vtm_read.cpp.
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "base/names.h"
#include "base/strbuf.h"
#include "host/process.h"
#include "msg/upcalls.h"
#include "msg/vtm_internal.h"

namespace vnt::vtm {

State& state() {
    static State s;
    return s;
}

/*
 * Builds the ID map: a direct table for large libraries, else a hash table
 * with a power-of-two number of slots, at least twice the entry count, which
 * keeps probe runs short.
 */
void IdIndex::build(const unsigned char* entries, std::size_t count) {
    clear();
    if (count == 0) return;
    auto idAt = [entries](std::size_t n) { return getU16(entries + n * kEntrySize + 4); };
    if (count > 65535) {
        direct32_.assign(65536, kNone32);
        for (std::size_t n = count; n-- > 0;) direct32_[idAt(n)] = uint32_t(n);  // first wins
        direct32_[0] = kNone32;
        return;
    }
    if (count >= kDirectFrom) {
        direct16_.assign(65536, kNone16);
        for (std::size_t n = count; n-- > 0;) direct16_[idAt(n)] = uint16_t(n);
        direct16_[0] = kNone16;
        return;
    }
    unsigned bits = 3;
    while ((std::size_t(1) << bits) < count * 2) ++bits;
    slots_.assign(std::size_t(1) << bits, Slot{0, 0});
    shift_ = 32 - bits;
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t n = 0; n < count; ++n) {
        uint16_t id = idAt(n);
        if (id == 0) continue;
        for (std::size_t i = slotOf(id);; i = (i + 1) & mask) {
            if (slots_[i].id == id) break;  // an earlier entry has it: first match wins
            if (slots_[i].id == 0) {
                slots_[i] = Slot{id, uint16_t(n)};
                break;
            }
        }
    }
}

void IdIndex::clear() {
    slots_ = {};
    direct16_ = {};
    direct32_ = {};
    shift_ = 31;
}

static VNT_RESP defaultReport(const char* text) {
    std::fprintf(stderr, "%s\n", text);
    return VNT_RESP_OK;
}

void report(const std::string& detail) {
    State& s = state();
    std::string text = "!VTMINTRF: Internal Error.\n" + detail;
    VNT_VTM_REPORT hook = s.report ? s.report : defaultReport;
    // An answer other than OK ends the process at once; kept for compatibility.
    if (hook(text.c_str()) != VNT_RESP_OK) {
        vnt::host::writeExitReason(3, "a report was not confirmed: " + text.substr(1));
        vnt::msg::endApplication(3);
    }
    s.msgBuf[0] = '\0';
}

bool namesEqual(const char* a, const char* b) { return vnt::sameTextN(a, b, 8); }

VNT_VTM_LIB* chainMain(VNT_VTM_LIB* lib) {
    while (lib->chainPrev) lib = lib->chainPrev;
    return lib->isSegment ? nullptr : lib;
}

void destroy(VNT_VTM_LIB* lib) {
    state().live.erase(lib);
    delete lib;
}

/*
 * Releases a library whose reference count fell below 1: unregisters the
 * system library, closes a main library's file, detaches segments that are
 * still open (they lose their file and their main library) and unlinks it.
 */
static void release(VNT_VTM_LIB* lib) {
    State& s = state();
    if (s.system == lib) s.system = nullptr;
    if (!lib->isSegment) {
        lib->file = nullptr;
        lib->ownFile.reset();
        if (lib->chainNext) {
            report("segments still open");
            for (VNT_VTM_LIB* seg = lib->chainNext; seg; seg = seg->chainNext) seg->file = nullptr;
            lib->chainNext->chainPrev = nullptr;  // the segments stay chained among themselves
            lib->chainNext = nullptr;
        }
        (lib->listPrev ? lib->listPrev->listNext : s.head) = lib->listNext;
        (lib->listNext ? lib->listNext->listPrev : s.tail) = lib->listPrev;
    } else {
        if (lib->chainPrev) lib->chainPrev->chainNext = lib->chainNext;
        if (lib->chainNext) lib->chainNext->chainPrev = lib->chainPrev;
    }
    destroy(lib);
}

void reset() {
    State& s = state();
    std::vector<VNT_VTM_LIB*> all(s.live.begin(), s.live.end());
    for (VNT_VTM_LIB* lib : all) delete lib;
    s.live.clear();
    s.head = s.tail = s.system = nullptr;
    s.status = 0;
    std::memset(s.msgBuf, 0, sizeof s.msgBuf);
    std::memset(s.headerBuf, 0, sizeof s.headerBuf);
    std::memset(s.nameBuf, 0, sizeof s.nameBuf);
    s.quiet = s.raw = s.noRepair = false;
    s.noShare = 0;
    s.report = nullptr;
}

std::size_t liveCount() { return state().live.size(); }

static int toggle(bool& sw, int mode) {
    int old = sw ? 1 : 0;
    if (mode == 0) sw = false;
    if (mode == 1) sw = true;
    return old;
}

}  // namespace vnt::vtm

using namespace vnt::vtm;

/*
 * Drops one reference. A segment's close also drops the reference it holds
 * on its main library; when that was the main library's last one, the main
 * library goes as well (after the segment, so no "segments still open").
 */
void Vnt_VtmClose(VNT_MSG lib) {
    if (!lib) return;
    VNT_VTM_LIB* main = lib->isSegment ? chainMain(lib) : nullptr;
    lib->refCount--;
    if (main) main->refCount--;
    if (lib->refCount < 1) release(lib);
    if (main && main->refCount < 1) release(main);
}

const char* Vnt_VtmName(VNT_MSG lib) {
    State& s = state();
    if (!lib) lib = s.system;
    vnt::copyBounded(s.nameBuf, lib ? std::string_view(lib->name, fieldLen(lib->name))
                                    : std::string_view{});
    return s.nameBuf;
}

long Vnt_VtmStatus() { return state().status; }

const char* Vnt_VtmStatusText(long status) {
    switch (status) {
    case 0: return "success";
    case 1: return "file could not be opened";
    case 2: return "header or head bytes could not be read in full";
    case 3: return "index could not be read in full";
    case 4: return "preload area could not be read in full";
    case 5: return "unknown magic";
    case 6: return "magic \"VANTOMSP\"";
    case 7: return "version text and version differ";
    case 8: return "version below 10";
    case 9: return "version above 199";
    case 10: return "more than 256 segments";
    case 11: return "library has no entries, or last preload ID not within the preload count";
    case 12: return "preload size above 65535, or preloaded texts overrun the preload size";
    case 13: return "segment name not in the directory";
    case 14: return "segment header's name differs from the requested name";
    case 15: return "out of memory";
    case 16: return "index offset below the base offset";
    case 99: return "magic \"VANTOVTP\"";
    case 100: return "library not open";
    case 101: return "message ID not found, or last preload ID met at the wrong entry";
    case 102: return "stored length wrong";
    case 103: return "text position or index offset invalid, or seek failed";
    case 104: return "a message text could not be read in full";
    default: return "unknown status";
    }
}

int Vnt_VtmSwQuiet(int mode) { return toggle(state().quiet, mode); }
int Vnt_VtmSwRaw(int mode) { return toggle(state().raw, mode); }
int Vnt_VtmSwNoRepair(int mode) { return toggle(state().noRepair, mode); }

int Vnt_VtmNoShare(int delta) {
    State& s = state();
    long n = long(s.noShare) + delta;
    s.noShare = n < 0 ? 0 : n > 1000000 ? 1000000 : int(n);
    return s.noShare;
}

bool Vnt_VtmInfo(VNT_MSG lib, VNT_VTM_INFO* info) {
    if (!lib || !info) return false;
    VNT_VTM_INFO& i = *info;
    i.version = lib->version;
    i.segmentCount = lib->segCount;
    i.baseOffset = lib->baseOffset;
    i.librarySize = lib->libSize;
    i.indexOffset = lib->indexOffset;
    i.textOffset = lib->textOffset;
    i.entryCount = lib->entryCount;
    i.systemFlag = lib->systemFlag;
    i.preloadCount = lib->preloadCount;
    i.preloadSize = lib->preloadSize;
    i.lastPreloadId = lib->lastPreloadId;
    i.cursor = lib->cursor;
    i.refCount = lib->refCount;
    i.headLength = lib->headLength;
    i.fileOpen = lib->file != nullptr;
    i.isSegment = lib->isSegment;
    i.isSystem = state().system == lib;
    vnt::copyBounded(i.name, std::string_view(lib->name, fieldLen(lib->name)));
    std::memcpy(i.annex, lib->block.data() + hdr::kAnnex, hdr::kAnnexLen);
    return true;
}

bool Vnt_VtmEntry(VNT_MSG lib, long n, VNT_VTM_ENTRY* entry) {
    if (!lib || !entry || n < 0 || n >= lib->messageCount()) return false;
    entry->position = lib->entryPosition(n);
    entry->id = lib->entryId(n);
    entry->length = lib->entryLength(n);
    entry->preloaded = entry->id <= lib->lastPreloadId;
    return true;
}

bool Vnt_VtmSegEntry(VNT_MSG lib, long n, VNT_VTM_SEGENTRY* entry) {
    if (!lib || !entry || lib->segCount < 1 || n < 0) return false;
    if (n >= lib->segCount || n >= lib->entryCount) return false;
    const unsigned char* e = lib->index() + n * kDirEntrySize;
    entry->offset = getI32(e);
    vnt::copyBounded(entry->name, std::string_view(reinterpret_cast<const char*>(e + 4),
                                                   fieldLen(reinterpret_cast<const char*>(e + 4))));
    return true;
}

VNT_MSG Vnt_VtmSystem() { return state().system; }

VNT_VTM_REPORT Vnt_VtmSetReport(VNT_VTM_REPORT hook) {
    State& s = state();
    VNT_VTM_REPORT old = s.report ? s.report : defaultReport;
    s.report = hook;
    return old;
}
