// vanto/ui/progress.h - the progress view port: what VntStat (vanto/stat.h)
// needs of its two windows, the status window (dialog 30062) and the
// confirmation of a cancel (dialog 30063).
//
// VntStat holds the logic: texts, thinning, percentages, the cancel flow and
// the remembered positions. A view only draws and reports what the user did
// through VntProgressEvents. The window toolkit installs its view; until then
// the console view serves. Texts are Windows-1252.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "vanto/ini.h"  // tagRECT
#include "vanto/msg.h"

/// A window position in screen units; `set` false lets the view choose
/// (the status window: centred on the screen).
struct VntProgressPos {
    int32_t x = 0;
    int32_t y = 0;
    bool set = false;
};

/// The parts of the status window whose visibility VntStat switches.
enum class VntProgressItem : int {
    Bar = 1000,      ///< the bar (range 0..100) with its percentage text
    Number = 1010,   ///< the number field ("num_progress")
    Text = 1011,     ///< the progress text field ("tx_progress")
    Line4 = 1015,    ///< the fourth text line (right-aligned)
    Cancel = 2,      ///< the Cancel button ("&Abbrechen")
};

/// What the user did; the view calls these from its event handling (inside
/// PumpEvents for the headless views).
class VANTO_API VntProgressEvents {
public:
    virtual ~VntProgressEvents();
    /// The Cancel button of the status window was pressed.
    virtual void OnCancelPressed() = 0;
    /// The confirmation was answered: `yes` "&Ja", else "&Nein" (or closed).
    virtual void OnConfirmAnswer(bool yes) = 0;
    /// The status window was activated (clicked while the confirmation is up).
    virtual void OnStatusActivated() = 0;
};

/// The two windows of the progress dialog. Only one status window is open at
/// a time; calls on a closed window are ignored by the views.
class VANTO_API VntProgressView {
public:
    virtual ~VntProgressView();

    /// Creates the status window modeless, hidden, at `pos` (unset: centred);
    /// disables `owner` (may be null) while it is open. Every text line, the
    /// bar, the number and the text fields start hidden or empty, the Cancel
    /// button shown. `events` receives the user's actions until CloseStatus.
    /// False when the window cannot be created.
    virtual bool OpenStatus(VNT_HWND owner, VntProgressPos pos, VntProgressEvents* events) = 0;
    /// Destroys the status window (and a confirmation still up) and enables
    /// the owner again.
    virtual void CloseStatus() = 0;
    virtual bool StatusOpen() const = 0;

    /// The window's caption (after opening: the dialog's own, maybe empty).
    virtual std::string Title() const = 0;
    virtual void SetTitle(const std::string& title) = 0;
    /// Text line `index` 0..3 (fields 1012..1015).
    virtual void SetLine(int index, const std::string& text) = 0;
    /// The bar at `percent` (0..100) with its percentage text ("25%").
    virtual void SetBar(int percent, const std::string& text) = 0;
    virtual void SetNumber(const std::string& text) = 0;
    virtual void SetProgressText(const std::string& text) = 0;
    virtual void ShowItem(VntProgressItem item, bool visible) = 0;
    virtual void EnableCancel(bool enabled) = 0;
    /// Enables or disables the whole status window (off while confirming).
    virtual void EnableStatus(bool enabled) = 0;

    virtual void Show(bool visible) = 0;
    /// Brings the status window to the front.
    virtual void ToFront() = 0;
    virtual void Move(int x, int y) = 0;
    /// The status window's rectangle in screen units; false when closed.
    virtual bool GetRect(tagRECT& rect) const = 0;
    virtual void Focus() = 0;
    virtual void SetTopmost(bool topmost) = 0;
    /// Runs one pass of pending events without waiting.
    virtual void PumpEvents() = 0;

    /// Opens the confirmation (dialog 30063) at `pos` with `title`; the
    /// answer comes later through OnConfirmAnswer. False when it cannot be
    /// opened.
    virtual bool OpenConfirm(VntProgressPos pos, const std::string& title) = 0;
    virtual void CloseConfirm() = 0;
    /// Brings the confirmation to the front.
    virtual void ConfirmToFront() = 0;
    /// The confirmation's top-left corner (unset when it is not open).
    virtual VntProgressPos ConfirmPos() const = 0;
};

/// The view in use (the console view until another is installed).
VANTO_API VntProgressView& Vnt_UiProgress();
/// Installs a view (null: the console one again); returns the previous one.
/// The caller keeps ownership.
VANTO_API VntProgressView* Vnt_UiSetProgress(VntProgressView* view);

/// The fixed texts of the two dialogs in the library's language
/// (Vnt_ResLanguage): German, or English for "ENU".
struct VntProgressTexts {
    const char* cancel;    ///< "&Abbrechen"
    const char* question;  ///< "Möchten Sie den Vorgang wirklich abbrechen?"
    const char* yes;       ///< "&Ja"
    const char* no;        ///< "&Nein"
};
VANTO_API VntProgressTexts Vnt_UiProgressTexts();

/// The console view: one line on standard error, redrawn in place, with the
/// first text line, the bar and the percentage, the number or the text;
/// drawn only when standard error is a terminal, silent otherwise. Nobody
/// can press Cancel there; a confirmation would be answered "no".
class VANTO_API VntConsoleProgressView : public VntProgressView {
public:
    /// Where the line goes (UTF-8). Empty: standard error when it is a
    /// terminal, else nowhere. Tests install their own.
    std::function<void(const std::string&)> sink;
    /// Width of the drawn bar in characters.
    int barWidth = 20;

    bool OpenStatus(VNT_HWND owner, VntProgressPos pos, VntProgressEvents* events) override;
    void CloseStatus() override;
    bool StatusOpen() const override { return open_; }
    std::string Title() const override { return title_; }
    void SetTitle(const std::string& title) override { title_ = title; }
    void SetLine(int index, const std::string& text) override;
    void SetBar(int percent, const std::string& text) override;
    void SetNumber(const std::string& text) override;
    void SetProgressText(const std::string& text) override;
    void ShowItem(VntProgressItem item, bool visible) override;
    void EnableCancel(bool) override {}
    void EnableStatus(bool) override {}
    void Show(bool visible) override;
    void ToFront() override {}
    void Move(int x, int y) override;
    bool GetRect(tagRECT& rect) const override;
    void Focus() override {}
    void SetTopmost(bool) override {}
    void PumpEvents() override;
    bool OpenConfirm(VntProgressPos pos, const std::string& title) override;
    void CloseConfirm() override;
    void ConfirmToFront() override {}
    VntProgressPos ConfirmPos() const override;

private:
    void draw();
    void write(const std::string& utf8);
    bool open_ = false;
    bool visible_ = false;
    std::string title_;
    std::string line1_;
    int percent_ = 0;
    std::string percentText_, number_, text_;
    bool bar_ = false, showNumber_ = false, showText_ = false;
    std::string drawn_;          // the line as last drawn, without the "\r"
    bool anyDrawn_ = false;
    VntProgressPos pos_;
    VntProgressEvents* events_ = nullptr;
    bool confirmOpen_ = false;
    bool answerNo_ = false;      // the pending "no" of a confirmation
};

/// A view for tests: keeps every update, holds the current look of both
/// windows, presses Cancel when told and answers confirmations from a queue.
class VANTO_API VntScriptedProgressView : public VntProgressView {
public:
    enum class Kind {
        Open, Close, Title, Line, Bar, Number, Text, ShowItem, EnableCancel, EnableStatus,
        Show, ToFront, Move, Focus, Topmost, ConfirmOpen, ConfirmClose, ConfirmFront,
    };
    /// One call: `text` and `value` as the call gave them (ShowItem: value is
    /// the item, `on` the visibility; Move/ConfirmOpen: x in value, y in y).
    struct Record {
        Kind kind;
        std::string text;
        int value = 0;
        int y = 0;
        bool on = false;
    };
    enum class Answer { Yes, No, CannotOpen };

    std::vector<Record> records;     ///< every call, in order
    std::deque<Answer> answers;      ///< next confirmation answers (empty: No)
    /// Press Cancel during the pump after the k-th update of the bar, the
    /// number or the text (1 = the first; 0 = never).
    int cancelAtUpdate = 0;
    bool failOpen = false;           ///< the next OpenStatus fails
    int pumps = 0;                   ///< PumpEvents calls

    /// Presses Cancel now (as the user would; delivered at once).
    void PressCancel();
    /// Activates the status window now.
    void Activate();
    /// Records of one kind.
    std::vector<Record> Of(Kind kind) const;

    // The current look.
    bool open = false, visible = false, enabled = true, topmost = false;
    bool cancelEnabled = true;
    std::string title, lines[4], barText, number, text;
    int percent = 0;
    bool barShown = false, numberShown = false, textShown = false, line4Shown = false;
    bool cancelShown = true;
    VNT_HWND owner = nullptr;
    VntProgressPos openedAt;         ///< the position OpenStatus was given
    tagRECT rect{};                  ///< where the window is (200 x 100)
    /// Where an unset position opens the status window (the "centre").
    int centreX = 400, centreY = 300;
    bool confirmOpen = false;
    VntProgressPos confirmAt;
    std::string confirmTitle;

    bool OpenStatus(VNT_HWND owner, VntProgressPos pos, VntProgressEvents* events) override;
    void CloseStatus() override;
    bool StatusOpen() const override { return open; }
    std::string Title() const override { return title; }
    void SetTitle(const std::string& t) override;
    void SetLine(int index, const std::string& t) override;
    void SetBar(int pct, const std::string& t) override;
    void SetNumber(const std::string& t) override;
    void SetProgressText(const std::string& t) override;
    void ShowItem(VntProgressItem item, bool on) override;
    void EnableCancel(bool on) override;
    void EnableStatus(bool on) override;
    void Show(bool on) override;
    void ToFront() override;
    void Move(int x, int y) override;
    bool GetRect(tagRECT& r) const override;
    void Focus() override;
    void SetTopmost(bool on) override;
    void PumpEvents() override;
    bool OpenConfirm(VntProgressPos pos, const std::string& t) override;
    void CloseConfirm() override;
    void ConfirmToFront() override;
    VntProgressPos ConfirmPos() const override;

    /// The title a newly opened status window has (the dialog's own caption).
    std::string dialogCaption;

private:
    void update();
    void record(Kind kind, std::string t = {}, int value = 0, int y = 0, bool on = false);
    VntProgressEvents* events_ = nullptr;
    int updates_ = 0;
    bool pressPending_ = false;
    bool answerPending_ = false;
    bool answerYes_ = false;
};
