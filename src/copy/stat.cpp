// The progress dialog: texts from a message laid out into a title and four
// lines, thinned progress updates, percentages, and a Cancel that is
// confirmed before the operation learns of it. The windows belong to the
// progress view (vanto/ui/progress.h); this file decides what they show.
#include "vanto/stat.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "base/format.h"
#include "base/strbuf.h"
#include "host/time.h"
#include "copy/stat_state.h"
#include "vanto/amount.h"
#include "vanto/ui/progress.h"
#include "vanto/ui/window.h"

namespace vnt::copy {

StatState& statState() {
    static StatState st;
    return st;
}

void resetStat() { statState() = StatState(); }

}  // namespace vnt::copy

using vnt::copy::kSourceStat;
using vnt::copy::statState;
using vnt::copy::StatState;

// Receives the view's events for one VntStat (which has no base class).
class VntStatEvents final : public VntProgressEvents {
public:
    explicit VntStatEvents(VntStat* stat) : stat_(stat) {}
    void OnCancelPressed() override { stat_->openConfirm(); }
    void OnConfirmAnswer(bool yes) override { stat_->confirmAnswer(yes); }
    void OnStatusActivated() override { stat_->activated(); }

private:
    VntStat* stat_;
};

namespace {

constexpr int kLines = 4;
constexpr std::size_t kLineWidth = 50;
constexpr int kMaxAutoDecimals = 6;

// The module's default handle. The application frame will hand each module
// its own; until it does, every module shares the application's "APPMSG"
// segment, and without one the null handle, which is the system library.
VNT_MSG defaultHandle() { return Vnt_AppMsgGetHandle(); }

// The fewest places (up to six) that show `value` as it is.
int autoDecimals(double value) {
    const double tolerance = 1e-9 * std::max(1.0, value < 0 ? -value : value);
    for (int d = 0; d < kMaxAutoDecimals; ++d) {
        double rounded = value;
        Vnt_FloatRound(&rounded, d);
        const double diff = rounded - value;
        if (diff <= tolerance && -diff <= tolerance) return d;
    }
    return kMaxAutoDecimals;
}

}  // namespace

VntStat::VntStat(VntMsgRef messageId, long divisor, unsigned long count)
    : events_(new VntStatEvents(this)) {
    Setup(messageId, divisor, count, nullptr);
}

VntStat::~VntStat() {
    End();
    StatState& st = statState();
    if (st.active == this) st.active = nullptr;
    delete events_;
}

void VntStat::Setup(VntMsgRef messageId, long divisor, unsigned long count, VNT_MSG handle) {
    // The windows are part of the state being cleared.
    End();
    msg_ = handle ? handle : defaultHandle();
    cancelAllowed_ = cancel_ = confirmPending_ = confirmOpen_ = false;
    barShown_ = textShown_ = numberShown_ = line4Shown_ = false;
    total_ = 0;
    accumulate_ = false;
    sum_ = 0;
    divisor_ = 1;
    counter_ = 0;
    SetCount(count, divisor);
    if (messageId.IsText() || messageId.Id() > 0) Begin(messageId);
}

void VntStat::SetCount(unsigned long count, long divisor) {
    total_ = count;
    accumulate_ = divisor == -1;
    if (accumulate_) sum_ = 0;
    if (divisor > 0) divisor_ = divisor;
}

bool VntStat::IsOpen() const { return statState().active == this && Vnt_UiProgress().StatusOpen(); }

// ---------------------------------------------------------------------------
// Opening, texts, closing
// ---------------------------------------------------------------------------

bool VntStat::Begin(VntMsgRef messageId, ...) {
    va_list ap;
    va_start(ap, messageId);
    const bool ok = VBegin(messageId, ap);
    va_end(ap);
    return ok;
}

bool VntStat::VBegin(VntMsgRef messageId, va_list args) {
    StatState& st = statState();
    VntProgressView& view = Vnt_UiProgress();
    // One status window at a time: whoever has it gives it up.
    if (st.active) st.active->End();
    if (view.StatusOpen()) view.CloseStatus();

    cancel_ = confirmPending_ = confirmOpen_ = false;
    counter_ = 0;
    VNT_HWND owner = Vnt_UiWindow().ActiveWindow();
    if (Vnt__InternalError(!view.OpenStatus(owner, st.lastStatus, events_), 300, kSourceStat, __LINE__))
        return false;
    st.active = this;
    barShown_ = textShown_ = numberShown_ = line4Shown_ = false;
    if (!layout(messageId, args)) {
        // Never shown, so its position is not remembered.
        view.CloseStatus();
        st.active = nullptr;
        return false;
    }
    view.Show(true);
    view.ToFront();
    view.PumpEvents();
    if (IsOpen() && !cancelAllowed_) {
        view.ShowItem(VntProgressItem::Cancel, false);
        view.EnableCancel(false);
    }
    return IsOpen();
}

bool VntStat::Msg(VntMsgRef messageId, ...) {
    va_list ap;
    va_start(ap, messageId);
    const bool ok = VMsg(messageId, ap);
    va_end(ap);
    return ok;
}

bool VntStat::VMsg(VntMsgRef messageId, va_list args) {
    if (Vnt__InternalError(!IsOpen(), 100, kSourceStat, __LINE__)) return false;
    const bool ok = layout(messageId, args);
    Vnt_UiProgress().PumpEvents();
    return ok;
}

/*
 * Formats the message and puts it into the open window: a leading "[...]"
 * is the caption, the rest (blanks and tabs in front skipped) four lines of
 * 50 characters. Without a caption of its own the window keeps the one it
 * has, or takes the message box title when that is empty. False for an
 * empty text, which changes nothing.
 */
bool VntStat::layout(VntMsgRef messageId, va_list args) {
    StatState& st = statState();
    VntProgressView& view = Vnt_UiProgress();
    if (Vnt__InternalError(!view.StatusOpen(), 500, kSourceStat, __LINE__)) return false;
    // Without a handle of its own a numbered text comes from the system
    // library, held open while formatting.
    VNT_MSG sys = msg_ || !messageId.IsId() ? nullptr : Vnt_MsgHInit();
    const char* formatted = Vnt__MsgSprintf(msg_ ? msg_ : sys, messageId, nullptr, args);
    const bool ok = formatted && *formatted;
    if (ok) vnt::copyBounded(st.text, formatted);
    if (sys) Vnt_MsgHTerm(&sys);
    if (!ok) return false;

    std::string_view body(st.text);
    st.title[0] = '\0';
    if (body.front() == '[') {
        const std::size_t close = body.find(']', 1);
        if (close != std::string_view::npos) {
            vnt::copyBounded(st.title, body.substr(1, close - 1));
            body.remove_prefix(close + 1);
            while (!body.empty() && (body.front() == ' ' || body.front() == '\t')) body.remove_prefix(1);
        }
    }
    if (st.title[0]) view.SetTitle(st.title);
    else if (view.Title().empty()) view.SetTitle(Vnt_MsgGetTitle(nullptr, 0));

    std::string lines[kLines];
    for (int i = 0; i < kLines; ++i) {
        const std::size_t nl = body.find('\n');
        std::string_view line = body.substr(0, nl);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines[i] = std::string(line.substr(0, kLineWidth));
        if (nl == std::string_view::npos) break;
        body.remove_prefix(nl + 1);
    }
    for (int i = 0; i < kLines; ++i) view.SetLine(i, lines[i]);
    const bool fourth = !lines[kLines - 1].empty();
    if (fourth != line4Shown_) {
        view.ShowItem(VntProgressItem::Line4, fourth);
        line4Shown_ = fourth;
    }
    return true;
}

void VntStat::End() {
    StatState& st = statState();
    if (!IsOpen()) {
        if (st.active == this) st.active = nullptr;
        return;
    }
    VntProgressView& view = Vnt_UiProgress();
    if (confirmOpen_ || confirmPending_) closeConfirm();
    tagRECT rect{};
    if (view.GetRect(rect)) st.lastStatus = VntProgressPos{rect.left, rect.top, true};
    view.CloseStatus();
    st.active = nullptr;
}

// ---------------------------------------------------------------------------
// Progress
// ---------------------------------------------------------------------------

// Advances the update counter; true when this call is one to skip.
bool VntStat::thinned() {
    if (divisor_ < 1) return false;
    const bool skip = counter_ > 0;
    counter_ = (counter_ + 1) % divisor_;
    return skip;
}

// Shows one of the bar, the number and the text, and hides the others.
void VntStat::showOnly(VntProgressItem item) {
    VntProgressView& view = Vnt_UiProgress();
    const struct { VntProgressItem item; bool* shown; } parts[] = {
        {VntProgressItem::Bar, &barShown_},
        {VntProgressItem::Number, &numberShown_},
        {VntProgressItem::Text, &textShown_},
    };
    // The new one first, so that the line is never empty in between.
    for (const bool on : {true, false})
        for (const auto& p : parts)
            if ((p.item == item) == on && *p.shown != on) {
                view.ShowItem(p.item, on);
                *p.shown = on;
            }
}

void VntStat::showNumber(const std::string& text) {
    VntProgressView& view = Vnt_UiProgress();
    view.SetNumber(text);
    showOnly(VntProgressItem::Number);
    view.PumpEvents();
}

/*
 * The common path of the counting forms: the sum grows on every call (so
 * that thinning loses nothing), the window is redrawn on the first of every
 * `divisor` calls.
 */
void VntStat::count(long long n) {
    if (accumulate_) sum_ += n;
    if (!IsOpen() || thinned()) return;
    const long long value = accumulate_ ? sum_ : n;
    if (total_ == 0) {
        showNumber(vnt::format("%lld", value));
        return;
    }
    const double percent = static_cast<double>(value) / static_cast<double>(total_) * 100.0;
    double bar = percent;
    Vnt_FloatRound(&bar, 0);
    std::string digits;
    Vnt_FloatToStr(digits, percent, 0, true);
    VntProgressView& view = Vnt_UiProgress();
    view.SetBar(static_cast<int>(std::clamp(bar, 0.0, 100.0)), vnt::format("%s%%", digits.c_str()));
    showOnly(VntProgressItem::Bar);
    view.PumpEvents();
}

void VntStat::Progress(unsigned long n) { count(static_cast<long long>(n)); }

void VntStat::Progress(int n) { count(n); }

void VntStat::Progress(double value) {
    if (!IsOpen() || thinned()) return;
    std::string text;
    Vnt_FloatToStr(text, value, autoDecimals(value), true);
    showNumber(text);
}

void VntStat::Progress(const char* text) {
    if (!IsOpen() || thinned()) return;
    VntProgressView& view = Vnt_UiProgress();
    view.SetProgressText(text ? text : "");
    showOnly(VntProgressItem::Text);
    view.PumpEvents();
}

// ---------------------------------------------------------------------------
// Cancel and its confirmation
// ---------------------------------------------------------------------------

void VntStat::EnableCancel(bool enable) {
    cancelAllowed_ = enable;
    if (!IsOpen()) return;
    VntProgressView& view = Vnt_UiProgress();
    view.ShowItem(VntProgressItem::Cancel, enable);
    view.EnableCancel(enable);
    if (!enable && (confirmOpen_ || confirmPending_)) closeConfirm();
}

bool VntStat::IsCancel() {
    if (!IsOpen()) return true;
    VntProgressView& view = Vnt_UiProgress();
    view.PumpEvents();
    // The operation waits while the user makes up his mind.
    while (confirmPending_ && IsOpen()) {
        view.PumpEvents();
        if (confirmPending_) vnt::host::sleepMs(10);
    }
    if (!cancel_) return false;
    if (confirmOpen_) closeConfirm();
    return true;
}

// Cancel pressed: the confirmation, the first one of the process 20 right
// and 100 down from the status window, later ones where the last one was.
void VntStat::openConfirm() {
    if (Vnt__InternalError(!IsOpen(), 200, kSourceStat, __LINE__)) return;
    VntProgressView& view = Vnt_UiProgress();
    if (!cancelAllowed_ || cancel_) return;
    if (confirmOpen_) {
        view.ConfirmToFront();
        return;
    }
    StatState& st = statState();
    VntProgressPos pos = st.lastConfirm;
    if (!pos.set) {
        tagRECT rect{};
        view.GetRect(rect);
        pos = VntProgressPos{rect.left + 20, rect.top + 100, true};
    }
    view.EnableStatus(false);
    // Pending before it opens: a view may answer before OpenConfirm returns.
    confirmPending_ = confirmOpen_ = true;
    if (!view.OpenConfirm(pos, view.Title())) {
        // Nobody can be asked: the cancel stands.
        confirmPending_ = confirmOpen_ = false;
        cancel_ = true;
        view.EnableStatus(true);
    }
}

void VntStat::closeConfirm() {
    VntProgressView& view = Vnt_UiProgress();
    if (confirmOpen_) {
        const VntProgressPos pos = view.ConfirmPos();
        if (pos.set) statState().lastConfirm = pos;
        view.CloseConfirm();
    }
    confirmOpen_ = confirmPending_ = false;
    view.EnableStatus(true);
}

// "&Ja" leaves the confirmation up until IsCancel takes it down; "&Nein"
// closes it and gives the status window back.
void VntStat::confirmAnswer(bool yes) {
    if (Vnt__InternalError(!IsOpen(), 199, kSourceStat, __LINE__)) return;
    if (!confirmPending_) return;
    if (yes) {
        confirmPending_ = false;
        cancel_ = true;
        const VntProgressPos pos = Vnt_UiProgress().ConfirmPos();
        if (pos.set) statState().lastConfirm = pos;
    } else {
        closeConfirm();
    }
}

void VntStat::activated() {
    if (Vnt__InternalError(!IsOpen(), 199, kSourceStat, __LINE__)) return;
    if (confirmOpen_) Vnt_UiProgress().ConfirmToFront();
}

// ---------------------------------------------------------------------------
// The window
// ---------------------------------------------------------------------------

void VntStat::SetTitle(VntMsgRef messageId) {
    if (Vnt__InternalError(!IsOpen(), 500, kSourceStat, __LINE__)) return;
    StatState& st = statState();
    if (!messageId.IsText() && messageId.Id() <= 0) vnt::copyBounded(st.title, Vnt_MsgGetTitle(nullptr, 0));
    else Vnt__MsgGet(msg_, messageId, st.title, sizeof st.title);
    Vnt_UiProgress().SetTitle(st.title);
}

void VntStat::Show() {
    if (IsOpen()) Vnt_UiProgress().Show(true);
}

void VntStat::Hide() {
    if (IsOpen()) Vnt_UiProgress().Show(false);
}

void VntStat::Move(int x, int y) {
    if (IsOpen()) Vnt_UiProgress().Move(x, y);
}

bool VntStat::GetRect(tagRECT* rect) {
    if (!rect || !IsOpen()) return false;
    return Vnt_UiProgress().GetRect(*rect);
}

void VntStat::SetFocus() {
    if (IsOpen()) Vnt_UiProgress().Focus();
}

void VntStat::SetTopmost(bool topmost) {
    if (IsOpen()) Vnt_UiProgress().SetTopmost(topmost);
}

void VntStat::Delay(long ms) {
    const std::int64_t end = vnt::host::tickMs() + (ms > 0 ? ms : 0);
    for (;;) {
        if (IsOpen()) Vnt_UiProgress().PumpEvents();
        const std::int64_t left = end - vnt::host::tickMs();
        Vnt_UiWindow().Wait(left > 10 ? 10 : (left > 0 ? static_cast<long>(left) : 0));
        if (vnt::host::tickMs() >= end) return;
    }
}
