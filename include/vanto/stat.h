// vanto/stat.h - the progress dialog of long operations.
//
// A VntStat shows a modeless status window with up to four lines of text
// from a message (an optional "[Title]" in front), a progress line (a
// percentage with a bar, a plain number or a free text) and a Cancel button
// that asks for confirmation before the operation is told to stop. The
// caller drives it: it reports progress as work advances and polls
// IsCancel, which also keeps the window responsive. The windows themselves
// are the progress view's (vanto/ui/progress.h). One thread only; one status
// window at a time (beginning a second one ends the first).
#pragma once

#include <cstdarg>

#include "vanto/ini.h"  // tagRECT
#include "vanto/msg.h"

class VntStatEvents;
enum class VntProgressItem : int;

class VANTO_API VntStat {
public:
    /// Takes the module's default message handle and calls Setup; a message
    /// (an ID above 0 or a text) opens the window at once.
    explicit VntStat(VntMsgRef messageId = 0, long divisor = 1, unsigned long count = 0);
    /// Ends the window if it is open.
    ~VntStat();
    VntStat(const VntStat&) = delete;
    VntStat& operator=(const VntStat&) = delete;

    /// Ends an open window, sets the handle (null: the default one), clears
    /// the state (Cancel not allowed), calls SetCount(count, divisor) and,
    /// for a message ID above 0 or a text, Begin(messageId). A divisor of 1
    /// redraws every call.
    void Setup(VntMsgRef messageId, long divisor, unsigned long count, VNT_MSG handle = nullptr);

    /// Divisor -1: accumulate mode, where each Progress(n) adds n to a sum
    /// started at 0 and the percentage is sum / count. Otherwise `count` is
    /// the total of Progress(n) (0: no total, the number is shown). A
    /// divisor above 0 becomes the update divisor: only the first of every
    /// `divisor` progress calls redraws.
    void SetCount(unsigned long count, long divisor);
    /// The overall count of a run over many items (the file copier's "for
    /// all" mode): SetCount(total, -1), each Progress(n) adds the n done.
    void SetCountForAll(unsigned long total) { SetCount(total, -1); }

    /// Opens the window with the message formatted with the arguments (an
    /// open one is ended first). "[Title]" in front of the text becomes the
    /// caption (199 characters), the rest (leading blanks and tabs skipped)
    /// goes into four lines of 50 characters, split at line feeds. False
    /// when the window cannot be created (internal error 300) or the text
    /// is empty (the window is closed again).
    bool Begin(VntMsgRef messageId, ...);
    bool VBegin(VntMsgRef messageId, va_list args);
    /// Replaces the texts of the open window the same way. False for an
    /// empty text (texts unchanged) or no open window (internal error 100).
    bool Msg(VntMsgRef messageId, ...);
    bool VMsg(VntMsgRef messageId, va_list args);
    /// Closes a confirmation, enables the owner again, remembers the
    /// window's position for the next one and destroys it. Closed: nothing.
    void End();

    /// With a total, the percentage of n (accumulate mode: of the sum) on
    /// the bar and as "25%"; without one, n in the number field. Only every
    /// divisor-th call redraws (the sum grows on every call). A closed
    /// window ignores them.
    void Progress(unsigned long n);
    void Progress(int n);
    /// The other integer types count the same way (no ambiguous calls).
    void Progress(unsigned n) { Progress(static_cast<unsigned long>(n)); }
    void Progress(long n) { count(n); }
    void Progress(long long n) { count(n); }
    void Progress(unsigned long long n) { count(static_cast<long long>(n)); }
    /// The value as a decimal number with as many places as it needs (up to
    /// six) in the number field.
    void Progress(double value);
    /// The text in the progress text field (null: empty).
    void Progress(const char* text);

    /// Allows the Cancel button (shown and enabled) or takes it away (hidden
    /// and disabled, and a pending confirmation closed). Works before and
    /// while the window is open.
    void EnableCancel(bool enable);
    /// Lets pending events run (and waits while a confirmation is up); true
    /// when the user confirmed the cancel, and when the window is not open.
    bool IsCancel();

    /// The caption from message `messageId`; 0 or less: the message box
    /// title. Without an open window: internal error 500.
    void SetTitle(VntMsgRef messageId);
    void Show();
    void Hide();
    void Move(int x, int y);
    /// The window's rectangle; false (rect untouched) when closed or null.
    bool GetRect(tagRECT* rect);
    void SetFocus();
    void SetTopmost(bool topmost);
    bool IsOpen() const;
    /// Waits `ms` milliseconds while the window stays responsive.
    void Delay(long ms);

private:
    friend class VntStatEvents;
    bool layout(VntMsgRef messageId, va_list args);
    bool thinned();
    void showOnly(VntProgressItem item);
    void count(long long n);
    void showNumber(const std::string& text);
    void openConfirm();
    void closeConfirm();
    void confirmAnswer(bool yes);
    void activated();

    VNT_MSG msg_ = nullptr;
    VntStatEvents* events_ = nullptr;
    bool cancelAllowed_ = false;
    bool cancel_ = false;
    bool confirmPending_ = false;
    bool confirmOpen_ = false;
    bool barShown_ = false, textShown_ = false, numberShown_ = false, line4Shown_ = false;
    unsigned long total_ = 0;
    bool accumulate_ = false;
    long long sum_ = 0;
    long divisor_ = 1;
    long counter_ = 0;
};
