// Message library reader: resolving references and reading texts.
#include <algorithm>

#include "msg/vtm_internal.h"

namespace vnt::vtm {
namespace {

constexpr const char* kInvalidOffset = "!Invalid Offset in Message File!";

/*
 * The fallback for an implausible stored length: scan the file from the
 * text's position up to and including the next NUL (or the end of the file,
 * or a full message buffer). The scan's result, 1 when a NUL was met and 0
 * otherwise, is then taken as the text's length, so a text that had a NUL
 * comes out empty and its stored length becomes 2. Kept for compatibility:
 * an implausible length yields an empty message, never a partial one.
 */
void fallbackRead(VNT_VTM_LIB* lib, long n) {
    State& s = state();
    std::size_t got = lib->file->read(s.msgBuf, kMsgBufSize);
    s.msgBuf[got] = '\0';
    const bool metNul = std::memchr(s.msgBuf, 0, got) != nullptr;
    const std::size_t len = metNul ? 1 : 0;
    if (len > 0) s.msgBuf[len - 1] = '\0';
    if (!s.noRepair) lib->setEntryLength(n, uint16_t(len + 1));
}

}  // namespace

/*
 * Delivers the text of entry `n`: in place from the preload area when its ID
 * counts as preloaded, else read from the file into the message buffer after
 * checking the position and the stored length against the text area.
 */
const char* readEntry(VNT_VTM_LIB* lib, long n) {
    State& s = state();
    const uint16_t id = lib->entryId(n);
    const uint32_t pos = lib->entryPosition(n);
    if (id <= lib->lastPreloadId) {
        if (lib->preload.empty()) {
            report("no preload area");
            return s.msgBuf;
        }
        if (pos >= lib->preload.size()) {  // the area ends in zero bytes
            s.status = VNT_VTM_E_OFFSET;
            return kInvalidOffset;
        }
        return reinterpret_cast<const char*>(lib->preload.data()) + pos;
    }
    if (!lib->file) {
        report(format("Message Library not open (msgid=%ld).", long(id)));
        s.status = VNT_VTM_E_NOTOPEN;
        return s.msgBuf;
    }
    const int64_t area = lib->textAreaSize();
    const int64_t at = int64_t(lib->textOffset) + pos;
    if (int64_t(pos) >= area || at < 0 || !lib->file->seek(uint64_t(at))) {
        s.status = VNT_VTM_E_OFFSET;
        return kInvalidOffset;
    }
    const uint32_t len = lib->entryLength(n);
    if (len > kMsgBufSize || len > uint32_t(std::max(lib->libSize, 0)) ||
        int64_t(len) > area - int64_t(pos)) {
        s.status = VNT_VTM_E_LENGTH;
        fallbackRead(lib, n);
        return s.msgBuf;
    }
    std::size_t got = lib->file->read(s.msgBuf, len);
    if (len > 0) s.msgBuf[len - 1] = '\0';
    if (got < len) {
        char name[9];
        std::memcpy(name, lib->name, 8);
        name[fieldLen(lib->name)] = '\0';
        report(format("Error reading \"%s\"\n(%lu bytes requested, %lu bytes read).", name,
                      (unsigned long)len, (unsigned long)got));
        s.status = VNT_VTM_E_READ;
    }
    return s.msgBuf;
}

}  // namespace vnt::vtm

using namespace vnt::vtm;

/*
 * Turns a reference into the ID to read. Iteration moves a cursor through
 * the index; an explicit ID may move the cursor to its entry. Without any
 * library, every reference below 32768 gets the same report: the test is a
 * signed comparison, so 0 and -1 never reach their own texts ("Cannot get
 * 'first message' ...", "... 'next message' ..."); kept for compatibility.
 */
VntMsgRef Vnt_VtmResolve(VNT_MSG lib, VntMsgRef ref, bool keepCursor) {
    State& s = state();
    if (!lib) lib = s.system;
    if (!lib) {
        if (ref.Raw() < 32768)
            report(format("Cannot get message %ld when no message library is open!",
                          long(ref.Raw())));
        return ref;
    }
    if (!ref.IsIteration()) {
        if (!keepCursor && ref.IsId()) {
            long n = lib->ids.find(uint16_t(ref.Id()));
            lib->cursor = int32_t(n >= 0 ? n : lib->messageCount());
        }
        return ref;
    }
    const long count = lib->messageCount();
    long cursor = ref.Id() == 0 ? 0 : long(lib->cursor) + 1;
    if (keepCursor) lib->cursor = int32_t(std::min<long>(cursor, count));
    if (cursor < 0 || cursor >= count) return VntMsgRef(0);
    return VntMsgRef(long(lib->entryId(cursor)));
}

const char* Vnt_VtmRead(VNT_MSG lib, VntMsgRef ref) {
    State& s = state();
    const bool iterating = ref.IsIteration();
    for (;;) {
        s.status = VNT_VTM_OK;
        s.msgBuf[0] = '\0';
        VntMsgRef id = Vnt_VtmResolve(lib, ref, true);
        if (id.IsText()) return id.Text();
        if (id.Id() == 0) return s.msgBuf;  // end of the iteration
        VNT_VTM_LIB* from = lib ? lib : s.system;
        if (id.Id() >= 32768 && !s.quiet && !s.raw) from = s.system;
        if (!from || (!from->file && uint32_t(id.Id()) > from->lastPreloadId)) {
            report(format("Message Library not open (msgid=%ld).", id.Id()));
            s.status = VNT_VTM_E_NOTOPEN;
            return s.msgBuf;
        }
        if (from->messageCount() == 0) {
            s.status = VNT_VTM_E_EMPTY;
            return s.msgBuf;
        }
        long n = from->ids.find(uint16_t(id.Id()));
        if (n < 0) {
            if (!s.quiet) report(format("Message ID %ld not found.", id.Id()));
            s.status = VNT_VTM_E_NOTFOUND;
            return s.msgBuf;
        }
        const char* text = readEntry(from, n);
        if (iterating && s.status == VNT_VTM_OK && text[0] == ';') {
            ref = VntMsgRef(-1);  // comment line: go on with the next entry
            continue;
        }
        return text;
    }
}

const char* Vnt_VtmEntryText(VNT_MSG lib, long n) {
    State& s = state();
    s.status = VNT_VTM_OK;
    s.msgBuf[0] = '\0';
    if (!lib || n < 0 || n >= lib->messageCount()) {
        s.status = lib && lib->messageCount() == 0 ? VNT_VTM_E_EMPTY : VNT_VTM_E_NOTFOUND;
        return s.msgBuf;
    }
    return readEntry(lib, n);
}
