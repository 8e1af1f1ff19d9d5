// The headless window system: fake windows that record what they receive
// and answer through a handler, a queue of posted messages and modal loops
// that cannot hang a program without a real window system.
#include <algorithm>
#include <deque>

#include "vanto/ui/window.h"

struct VntHeadlessWindowPort::Fake {
    struct Posted {
        std::uint64_t seq;
        unsigned msg;
        uintptr_t wparam;
        intptr_t lparam;
    };
    std::string name;
    Handler handler;
    std::vector<Received> received;
    std::deque<Posted> posted;
    bool alive = true;
    bool modalEnded = false;
    int modalResult = 0;
};

namespace {

VNT_HWND handleOf(const void* fake) { return reinterpret_cast<VNT_HWND>(const_cast<void*>(fake)); }

}  // namespace

VntHeadlessWindowPort::~VntHeadlessWindowPort() { Clear(); }

// Handles are the records' addresses, but a handle is only dereferenced once
// it was found among this port's windows: a stray pointer is just unknown.
VntHeadlessWindowPort::Fake* VntHeadlessWindowPort::find(VNT_HWND win) const {
    if (!win) return nullptr;
    for (Fake* f : windows_)
        if (handleOf(f) == win) return f;
    return nullptr;
}

VntHeadlessWindowPort::Fake* VntHeadlessWindowPort::live(VNT_HWND win) const {
    Fake* f = find(win);
    return f && f->alive ? f : nullptr;
}

bool VntHeadlessWindowPort::anyPosted() const {
    return std::any_of(windows_.begin(), windows_.end(), [](const Fake* f) { return f->alive && !f->posted.empty(); });
}

VNT_HWND VntHeadlessWindowPort::CreateFake(const std::string& name, Handler handler) {
    Fake* f = new Fake;
    f->name = name;
    f->handler = std::move(handler);
    windows_.push_back(f);
    return handleOf(f);
}

const std::vector<VntHeadlessWindowPort::Received>& VntHeadlessWindowPort::Messages(VNT_HWND win) const {
    static const std::vector<Received> none;
    const Fake* f = find(win);
    return f ? f->received : none;
}

void VntHeadlessWindowPort::ClearMessages(VNT_HWND win) {
    if (Fake* f = find(win)) f->received.clear();
}

std::string VntHeadlessWindowPort::Name(VNT_HWND win) const {
    const Fake* f = live(win);
    return f ? f->name : std::string();
}

void VntHeadlessWindowPort::Clear() {
    for (Fake* f : windows_) delete f;
    windows_.clear();
    main_ = active_ = focus_ = nullptr;
}

/*
 * One message to a window's handler. The handler may destroy windows or
 * post further messages: it runs from a copy, and the window is looked up
 * again afterwards. An unanswered close destroys the window.
 */
long VntHeadlessWindowPort::Send(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) {
    Fake* f = live(win);
    if (!f) return 0;
    f->received.push_back({msg, wparam, lparam, false});
    Handler h = f->handler;
    const long answer = h ? h(win, msg, wparam, lparam) : 0;
    if (msg == VNT_WM_CLOSE && answer == 0) Destroy(win);
    return answer;
}

bool VntHeadlessWindowPort::Post(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) {
    Fake* f = live(win);
    if (!f) return false;
    f->posted.push_back({postSeq_++, msg, wparam, lparam});
    return true;
}

bool VntHeadlessWindowPort::IsWindow(VNT_HWND win) { return live(win) != nullptr; }

void VntHeadlessWindowPort::Destroy(VNT_HWND win) {
    Fake* f = live(win);
    if (!f) return;
    f->alive = false;
    f->posted.clear();
    if (main_ == win) main_ = nullptr;
    if (active_ == win) active_ = nullptr;
    if (focus_ == win) focus_ = nullptr;
}

void VntHeadlessWindowPort::Activate(VNT_HWND win) {
    if (live(win)) active_ = win;
}

void VntHeadlessWindowPort::SetFocus(VNT_HWND win) { focus_ = live(win) ? win : nullptr; }

/*
 * Delivers, oldest first across all windows, what was posted before the
 * pass began; a handler that posts again is served on the next pass, so a
 * pass always ends.
 */
void VntHeadlessWindowPort::PumpEvents() {
    const std::uint64_t limit = postSeq_;
    for (;;) {
        Fake* next = nullptr;
        for (Fake* f : windows_)
            if (f->alive && !f->posted.empty() && f->posted.front().seq < limit &&
                (!next || f->posted.front().seq < next->posted.front().seq))
                next = f;
        if (!next) return;
        const Fake::Posted p = next->posted.front();
        next->posted.pop_front();
        const VNT_HWND win = handleOf(next);
        next->received.push_back({p.msg, p.wparam, p.lparam, true});
        Handler h = next->handler;
        const long answer = h ? h(win, p.msg, p.wparam, p.lparam) : 0;
        if (p.msg == VNT_WM_CLOSE && answer == 0) Destroy(win);
    }
}

/*
 * Only a handler can end the loop, and handlers run only for posted
 * messages (or for a derived port's own events, pumped through the virtual
 * PumpEvents): once a pass leaves nothing posted, nothing will, and the
 * loop answers modalDefault instead of waiting forever.
 */
int VntHeadlessWindowPort::RunModalLoop(VNT_HWND win, unsigned long /*flags*/) {
    Fake* f = live(win);
    if (!f) return -1;
    f->modalEnded = false;
    for (;;) {
        PumpEvents();
        f = live(win);
        if (!f) return -1;
        if (f->modalEnded) {
            f->modalEnded = false;
            return f->modalResult;
        }
        if (!anyPosted()) return modalDefault;
    }
}

void VntHeadlessWindowPort::EndModalLoop(VNT_HWND win, int result) {
    if (Fake* f = live(win)) {
        f->modalEnded = true;
        f->modalResult = result;
    }
}
