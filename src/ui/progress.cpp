// The progress view port and its headless views: the console view that
// draws one line on a terminal, and the scripted view of the tests.
#include "vanto/ui/progress.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "base/port_slot.h"
#include "host/term.h"
#include "vanto/text.h"

VntProgressEvents::~VntProgressEvents() = default;
VntProgressView::~VntProgressView() = default;

namespace {

struct ProgressPort {
    VntConsoleProgressView console;
    vnt::PortSlot<VntProgressView> view{console};
};

ProgressPort& port() {
    static ProgressPort p;
    return p;
}

}  // namespace

VntProgressView& Vnt_UiProgress() { return port().view.get(); }

VntProgressView* Vnt_UiSetProgress(VntProgressView* view) { return port().view.set(view); }

VntProgressTexts Vnt_UiProgressTexts() {
    if (std::strcmp(Vnt_ResLanguage(), "ENU") == 0)
        return {"&Cancel", "Do you really want to cancel the operation?", "&Yes", "&No"};
    return {"&Abbrechen", "M\xF6" "chten Sie den Vorgang wirklich abbrechen?", "&Ja", "&Nein"};
}

// ---------------------------------------------------------------------------
// The console view
// ---------------------------------------------------------------------------

bool VntConsoleProgressView::OpenStatus(VNT_HWND, VntProgressPos pos, VntProgressEvents* events) {
    if (open_) CloseStatus();
    open_ = true;
    visible_ = false;
    title_.clear();
    line1_.clear();
    percent_ = 0;
    percentText_.clear();
    number_.clear();
    text_.clear();
    bar_ = showNumber_ = showText_ = false;
    drawn_.clear();
    anyDrawn_ = false;
    pos_ = pos;
    events_ = events;
    confirmOpen_ = answerNo_ = false;
    return true;
}

void VntConsoleProgressView::CloseStatus() {
    if (!open_) return;
    // Leave the last state on its own line.
    if (anyDrawn_) write("\n");
    open_ = false;
    events_ = nullptr;
    confirmOpen_ = answerNo_ = false;
}

void VntConsoleProgressView::SetLine(int index, const std::string& text) {
    if (index != 0) return;  // one line: the first text line labels it
    line1_ = text;
    draw();
}

void VntConsoleProgressView::SetBar(int percent, const std::string& text) {
    percent_ = std::clamp(percent, 0, 100);
    percentText_ = text;
    draw();
}

void VntConsoleProgressView::SetNumber(const std::string& text) {
    number_ = text;
    draw();
}

void VntConsoleProgressView::SetProgressText(const std::string& text) {
    text_ = text;
    draw();
}

void VntConsoleProgressView::ShowItem(VntProgressItem item, bool visible) {
    switch (item) {
        case VntProgressItem::Bar: bar_ = visible; break;
        case VntProgressItem::Number: showNumber_ = visible; break;
        case VntProgressItem::Text: showText_ = visible; break;
        default: return;
    }
    draw();
}

void VntConsoleProgressView::Show(bool visible) {
    if (!open_ || visible == visible_) return;
    visible_ = visible;
    if (visible) {
        draw();
    } else if (!drawn_.empty()) {
        // Wipe the line so that other output starts on a clean one.
        write("\r" + std::string(drawn_.size(), ' ') + "\r");
        drawn_.clear();
    }
}

void VntConsoleProgressView::Move(int x, int y) { pos_ = VntProgressPos{x, y, true}; }

bool VntConsoleProgressView::GetRect(tagRECT& rect) const {
    if (!open_) return false;
    // A line on a terminal has no place on a screen; its "position" is the
    // one it was given, so that it is handed on unchanged.
    const int32_t x = pos_.set ? pos_.x : 0, y = pos_.set ? pos_.y : 0;
    rect = tagRECT{x, y, x, y};
    return true;
}

void VntConsoleProgressView::PumpEvents() {
    if (answerNo_ && events_) {
        answerNo_ = false;
        events_->OnConfirmAnswer(false);
    }
}

// Nobody can answer on this console: the operation goes on.
bool VntConsoleProgressView::OpenConfirm(VntProgressPos, const std::string&) {
    if (!open_) return false;
    confirmOpen_ = answerNo_ = true;
    return true;
}

void VntConsoleProgressView::CloseConfirm() { confirmOpen_ = answerNo_ = false; }

VntProgressPos VntConsoleProgressView::ConfirmPos() const { return VntProgressPos{}; }

void VntConsoleProgressView::write(const std::string& utf8) {
    if (sink) sink(utf8);
    else if (vnt::host::stderrTerminal()) vnt::host::writeStderr(utf8);
}

/*
 * The line: the first text line, then the bar with the percentage, the
 * number or the text, whichever is shown. Redrawn in place ("\r") only when
 * it changed; a shorter line blanks what is left of the longer one.
 */
void VntConsoleProgressView::draw() {
    if (!open_ || !visible_) return;
    std::string part;
    if (bar_) {
        const int width = std::max(1, barWidth);
        const int filled = percent_ * width / 100;
        part = "[" + std::string(std::size_t(filled), '#') + std::string(std::size_t(width - filled), '.') + "] " +
               Vnt_TxtToUtf8(percentText_);
    } else if (showNumber_) {
        part = Vnt_TxtToUtf8(number_);
    } else if (showText_) {
        part = Vnt_TxtToUtf8(text_);
    }
    std::string line = Vnt_TxtToUtf8(line1_);
    if (!line.empty() && !part.empty()) line += ' ';
    line += part;
    if (line == drawn_) return;
    std::string out = "\r" + line;
    if (drawn_.size() > line.size()) out += std::string(drawn_.size() - line.size(), ' ');
    write(out);
    drawn_ = line;
    anyDrawn_ = true;
}

// ---------------------------------------------------------------------------
// The scripted view
// ---------------------------------------------------------------------------

void VntScriptedProgressView::record(Kind kind, std::string t, int value, int y, bool on) {
    records.push_back(Record{kind, std::move(t), value, y, on});
}

std::vector<VntScriptedProgressView::Record> VntScriptedProgressView::Of(Kind kind) const {
    std::vector<Record> out;
    for (const Record& r : records)
        if (r.kind == kind) out.push_back(r);
    return out;
}

bool VntScriptedProgressView::OpenStatus(VNT_HWND ownerWin, VntProgressPos pos, VntProgressEvents* events) {
    if (failOpen) {
        failOpen = false;
        return false;
    }
    open = true;
    visible = false;
    enabled = cancelEnabled = cancelShown = true;
    topmost = false;
    title = dialogCaption;
    for (std::string& l : lines) l.clear();
    barText.clear();
    number.clear();
    text.clear();
    percent = 0;
    barShown = numberShown = textShown = line4Shown = false;
    owner = ownerWin;
    openedAt = pos;
    const int x = pos.set ? pos.x : centreX, y = pos.set ? pos.y : centreY;
    rect = tagRECT{x, y, x + 200, y + 100};
    confirmOpen = false;
    events_ = events;
    updates_ = 0;
    pressPending_ = answerPending_ = false;
    record(Kind::Open, {}, x, y, pos.set);
    return true;
}

void VntScriptedProgressView::CloseStatus() {
    if (!open) return;
    CloseConfirm();
    record(Kind::Close, {}, rect.left, rect.top);
    open = visible = false;
    events_ = nullptr;
    pressPending_ = answerPending_ = false;
}

void VntScriptedProgressView::SetTitle(const std::string& t) {
    title = t;
    record(Kind::Title, t);
}

void VntScriptedProgressView::SetLine(int index, const std::string& t) {
    if (index >= 0 && index < 4) lines[index] = t;
    record(Kind::Line, t, index);
}

void VntScriptedProgressView::update() {
    ++updates_;
    if (cancelAtUpdate > 0 && updates_ == cancelAtUpdate) pressPending_ = true;
}

void VntScriptedProgressView::SetBar(int pct, const std::string& t) {
    percent = pct;
    barText = t;
    record(Kind::Bar, t, pct);
    update();
}

void VntScriptedProgressView::SetNumber(const std::string& t) {
    number = t;
    record(Kind::Number, t);
    update();
}

void VntScriptedProgressView::SetProgressText(const std::string& t) {
    text = t;
    record(Kind::Text, t);
    update();
}

void VntScriptedProgressView::ShowItem(VntProgressItem item, bool on) {
    switch (item) {
        case VntProgressItem::Bar: barShown = on; break;
        case VntProgressItem::Number: numberShown = on; break;
        case VntProgressItem::Text: textShown = on; break;
        case VntProgressItem::Line4: line4Shown = on; break;
        case VntProgressItem::Cancel: cancelShown = on; break;
    }
    record(Kind::ShowItem, {}, static_cast<int>(item), 0, on);
}

void VntScriptedProgressView::EnableCancel(bool on) {
    cancelEnabled = on;
    record(Kind::EnableCancel, {}, 0, 0, on);
}

void VntScriptedProgressView::EnableStatus(bool on) {
    enabled = on;
    record(Kind::EnableStatus, {}, 0, 0, on);
}

void VntScriptedProgressView::Show(bool on) {
    visible = on;
    record(Kind::Show, {}, 0, 0, on);
}

void VntScriptedProgressView::ToFront() { record(Kind::ToFront); }

void VntScriptedProgressView::Move(int x, int y) {
    rect = tagRECT{x, y, x + (rect.right - rect.left), y + (rect.bottom - rect.top)};
    record(Kind::Move, {}, x, y);
}

bool VntScriptedProgressView::GetRect(tagRECT& r) const {
    if (!open) return false;
    r = rect;
    return true;
}

void VntScriptedProgressView::Focus() { record(Kind::Focus); }

void VntScriptedProgressView::SetTopmost(bool on) {
    topmost = on;
    record(Kind::Topmost, {}, 0, 0, on);
}

// A user can press only a Cancel button that is there, enabled, in a
// window that takes input.
void VntScriptedProgressView::PressCancel() {
    if (open && events_ && cancelShown && cancelEnabled && enabled) events_->OnCancelPressed();
}

void VntScriptedProgressView::Activate() {
    if (open && events_) events_->OnStatusActivated();
}

// The answer of a confirmation comes in the pump after the one that opened
// it, as a user's click would.
void VntScriptedProgressView::PumpEvents() {
    ++pumps;
    if (!open || !events_) return;
    if (answerPending_) {
        answerPending_ = false;
        events_->OnConfirmAnswer(answerYes_);
    }
    if (pressPending_) {
        pressPending_ = false;
        PressCancel();
    }
}

bool VntScriptedProgressView::OpenConfirm(VntProgressPos pos, const std::string& t) {
    Answer answer = Answer::No;
    if (!answers.empty()) {
        answer = answers.front();
        answers.pop_front();
    }
    record(Kind::ConfirmOpen, t, pos.x, pos.y, answer != Answer::CannotOpen);
    if (!open || answer == Answer::CannotOpen) return false;
    confirmOpen = true;
    confirmAt = pos;
    confirmTitle = t;
    answerPending_ = true;
    answerYes_ = answer == Answer::Yes;
    return true;
}

void VntScriptedProgressView::CloseConfirm() {
    if (!confirmOpen) return;
    confirmOpen = false;
    answerPending_ = false;
    record(Kind::ConfirmClose, {}, confirmAt.x, confirmAt.y);
}

void VntScriptedProgressView::ConfirmToFront() { record(Kind::ConfirmFront); }

VntProgressPos VntScriptedProgressView::ConfirmPos() const {
    return confirmOpen ? confirmAt : VntProgressPos{};
}
