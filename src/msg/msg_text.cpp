// Message texts: fetching by reference, control texts, formatting into the
// ring of four buffers, the last message ID, the box title, and the common
// path that formats a message and shows it in the box.
#include <cstdio>
#include <cstring>

#include "base/strbuf.h"
#include "msg/msg_state.h"
#include "msg/vtm_internal.h"
#include "vanto/ui/window.h"

namespace vnt::msg {

TextState& textState() {
    static TextState st;
    return st;
}

void resetTexts() { textState() = TextState(); }

char* ringTake() {
    TextState& st = textState();
    char* p = st.ring[st.ringNext];
    st.ringNext = (st.ringNext + 1) % 4;
    p[0] = '\0';
    return p;
}

bool inRing(const char* p) {
    const auto at = reinterpret_cast<std::uintptr_t>(p);
    const auto first = reinterpret_cast<std::uintptr_t>(&textState().ring[0][0]);
    return at >= first && at < first + sizeof textState().ring;
}

const char* boxTitle() {
    const TextState& st = textState();
    return st.titleSet ? st.title : st.defaultTitle;
}

std::size_t formatInto(char* out, std::size_t size, const char* fmt, va_list args) {
    std::string& scratch = textState().scratch;
    if (std::vsnprintf(scratch.data(), scratch.size(), fmt ? fmt : "", args) < 0) scratch[0] = '\0';
    return vnt::copyBounded(out, size, scratch.c_str());
}

namespace {

// A handle that is open, else null (the system library) after a report.
VNT_MSG checked(VNT_MSG h) {
    if (!h || alive(h)) return h;
    Vnt__InternalError(true, 999, kSourceMsg, __LINE__);
    return nullptr;
}

// True when `p` lies in the preload area of `lib`.
bool inPreload(const VNT_VTM_LIB* lib, const char* p) {
    if (!lib || lib->preload.empty()) return false;
    const auto at = reinterpret_cast<std::uintptr_t>(p);
    const auto first = reinterpret_cast<std::uintptr_t>(lib->preload.data());
    return at >= first && at < first + lib->preload.size();
}

// A control text loses its leading '~'; every further '~' becomes '&'.
void untilde(char* s) {
    if (s[0] != '~') return;
    std::memmove(s, s + 1, std::strlen(s));
    for (char* p = std::strchr(s, '~'); p; p = std::strchr(p + 1, '~')) *p = '&';
}

/*
 * Fetches a text (see Vnt__MsgGet) from an open handle or the system
 * library. An explicit ID moves the library's iteration cursor to it.
 */
const char* fetch(VNT_MSG h, VntMsgRef ref, char* buf, unsigned size) {
    TextState& st = textState();
    VNT_MSG lib = h ? h : (alive(st.sys) ? st.sys : nullptr);
    VNT_VTM_LIB* sys = Vnt_VtmSystem();
    if (lib || sys) {
        VntMsgRef id = Vnt_VtmResolve(lib, ref, false);
        st.lastId = long(id.Raw());
    } else {
        st.lastId = long(ref.Raw());  // the read below reports the missing library
    }
    const char* text = Vnt_VtmRead(lib, ref);
    if (ref.IsIteration()) {
        // The ID actually delivered: comment texts were skipped.
        VNT_VTM_LIB* it = lib ? lib : sys;
        st.lastId = Vnt_VtmStatus() == VNT_VTM_OK && it && it->cursor < it->messageCount()
                        ? long(it->entryId(it->cursor)) : 0;
    }
    const bool preloaded = inPreload(lib, text) || inPreload(sys, text);
    // A control text in the library's own memory is changed in place.
    char* own = vtm::state().msgBuf;
    const char* src = text;
    bool ampersands = false;
    if (text[0] == '~') {
        if (preloaded || (text >= own && text < own + sizeof vtm::state().msgBuf))
            untilde(const_cast<char*>(text));
        else
            src = text + 1, ampersands = true;  // a literal or a fixed text: only the copy
    }
    if (!buf) {
        if (preloaded) return text;
        buf = ringTake();
        size = unsigned(kTextSize);
    }
    if (size == 0) return preloaded ? text : buf;
    vnt::copyBounded(buf, size, src);
    if (ampersands)
        for (char* p = std::strchr(buf, '~'); p; p = std::strchr(p + 1, '~')) *p = '&';
    return preloaded ? text : buf;
}

/*
 * Formats the text of `ref` with `args` into `buf`, or into a ring buffer
 * when buf is null or is the text itself. `count` receives the characters
 * written; `ring` whether the ring was used.
 */
const char* format(VNT_MSG h, VntMsgRef ref, char* buf, va_list args, std::size_t& count, bool& ring) {
    const char* fmt = fetch(h, ref, nullptr, 0);
    ring = buf == nullptr || buf == fmt || (ref.IsText() && buf == ref.Text());
    std::string& scratch = textState().scratch;
    // Formatted before the ring buffer is taken: arguments may lie in the ring.
    if (std::vsnprintf(scratch.data(), scratch.size(), fmt, args) < 0) scratch[0] = '\0';
    char* out = ring ? ringTake() : buf;
    count = vnt::copyBounded(out, kTextSize, scratch.c_str());
    return out;
}

}  // namespace
}  // namespace vnt::msg

using namespace vnt::msg;

/*
 * The text of a reference: resolved and remembered as the last message ID,
 * read (IDs from 32768 on, and a null handle, from the system library), a
 * control text changed, copied into buf (a ring buffer when buf is null and
 * the text is not preloaded). A preloaded text is returned in place.
 */
const char* Vnt__MsgGet(VNT_MSG h, VntMsgRef ref, char* buf, unsigned size) {
    return fetch(checked(h), ref, buf, size);
}

const char* Vnt__MsgSprintf(VNT_MSG h, VntMsgRef ref, char* buf, va_list args) {
    std::size_t count = 0;
    bool ring = false;
    return format(checked(h), ref, buf, args, count, ring);
}

const char* Vnt_MsgHLoad(VNT_MSG h, VntMsgRef ref) { return Vnt__MsgGet(h, ref, nullptr, 0); }

const char* Vnt_MsgHGet(VNT_MSG h, VntMsgRef ref, char* buf, unsigned size) {
    if (!buf) Vnt__MsgErr(kSourceMsg, __LINE__, "Vnt_MsgHGet(): <buf> must not be NULL!");
    return Vnt__MsgGet(h, ref, buf, size);
}

const char* Vnt_MsgHSprintf(VNT_MSG h, VntMsgRef ref, ...) {
    va_list ap;
    va_start(ap, ref);
    const char* text = Vnt__MsgSprintf(h, ref, nullptr, ap);
    va_end(ap);
    return text;
}

const char* Vnt_MsgHVSprintf(VNT_MSG h, VntMsgRef ref, va_list args) {
    return Vnt__MsgSprintf(h, ref, nullptr, args);
}

std::uintptr_t Vnt_MsgH_vsprintf(VNT_MSG h, VntMsgRef ref, char* buf, va_list args) {
    std::size_t count = 0;
    bool ring = false;
    const char* out = format(checked(h), ref, buf, args, count, ring);
    return ring ? reinterpret_cast<std::uintptr_t>(out) : count;
}

std::uintptr_t Vnt_MsgH_sprintf(VNT_MSG h, VntMsgRef ref, char* buf, ...) {
    va_list ap;
    va_start(ap, buf);
    std::uintptr_t r = Vnt_MsgH_vsprintf(h, ref, buf, ap);
    va_end(ap);
    return r;
}

long Vnt_MsgGetID() { return textState().lastId; }

const char* Vnt_MsgGetTitle(char* buf, unsigned size) {
    if (!buf) return boxTitle();
    vnt::copyBounded(buf, size, boxTitle());
    return buf;
}

const char* Vnt_MsgSetTitle(const char* title) {
    TextState& st = textState();
    char next[kTitleSize];
    vnt::copyBounded(next, title);  // before prevTitle changes: title may be it
    vnt::copyBounded(st.prevTitle, boxTitle());
    st.titleSet = title != nullptr;
    vnt::copyBounded(st.title, next);
    return st.prevTitle;
}

/*
 * Formats the message into the ring and shows it; an empty text answers
 * Cancel without a box. The library name and the reference key the memory
 * of switched-off messages. One pass of pending events follows the box.
 */
VNT_RESP Vnt__Msg(VNT_MSG h, VntMsgRef ref, va_list args, long helpId, int defaultButton) {
    TextState& st = textState();
    h = checked(h);
    const char* text = Vnt__MsgSprintf(h, ref, nullptr, args);
    if (!*text) return VNT_RESP_CANCEL;
    if (!inRing(text)) {
        char* copy = ringTake();
        vnt::copyBounded(copy, kTextSize, text);
        text = copy;
    }
    char libName[9];
    vnt::copyBounded(libName, Vnt_VtmName(h ? h : (alive(st.sys) ? st.sys : nullptr)));
    ShowRequest req;
    req.text = text;
    req.helpContext = helpId;
    req.libName = libName;
    req.ref = ref.IsIteration() ? VntMsgRef(st.lastId) : ref;
    req.defaultButton = defaultButton;
    VNT_RESP answer = showBox(req);
    Vnt_UiWindow().PumpEvents();
    return answer;
}

VNT_RESP Vnt_MsgH(VNT_MSG h, VntMsgRef ref, ...) {
    va_list ap;
    va_start(ap, ref);
    VNT_RESP r = Vnt__Msg(h, ref, ap, 0, -1);
    va_end(ap);
    return r;
}

VNT_RESP Vnt_MsgSys(VntMsgRef ref, ...) {
    VNT_MSG sys = Vnt_MsgHInit();
    va_list ap;
    va_start(ap, ref);
    VNT_RESP r = Vnt__Msg(sys, ref, ap, 0, -1);
    va_end(ap);
    if (sys) Vnt_MsgHTerm(&sys);
    return r;
}

VNT_RESP Vnt_MsgHHelp(VNT_MSG h, long helpId, VntMsgRef ref, ...) {
    va_list ap;
    va_start(ap, ref);
    VNT_RESP r = Vnt__Msg(h, ref, ap, helpId, -1);
    va_end(ap);
    return r;
}
