// vanto/ui/window.h - the window system port.
//
// The core never includes a window system: it asks this port for the few
// things it needs of one. The window toolkit installs its implementation
// when it starts; until then a headless one serves (fake windows that tests
// create, an in-memory clipboard).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vanto/msg.h"

/// What the core needs of a window system.
class VANTO_API VntWindowPort {
public:
    virtual ~VntWindowPort();
    /// Sends a message and returns the window's answer (0 for no window).
    virtual long Send(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) = 0;
    /// Posts a message; false when the window does not exist.
    virtual bool Post(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) = 0;
    virtual bool IsWindow(VNT_HWND win) = 0;
    virtual void Destroy(VNT_HWND win) = 0;
    virtual void Activate(VNT_HWND win) = 0;
    /// The window with the keyboard focus, and giving it back.
    virtual VNT_HWND Focus() = 0;
    virtual void SetFocus(VNT_HWND win) = 0;
    virtual VNT_HWND ActiveWindow() = 0;
    virtual VNT_HWND MainWindow() = 0;
    /// Runs one pass of pending events without waiting.
    virtual void PumpEvents() = 0;
    /// Waits `ms` milliseconds while the events are served: a pass of
    /// PumpEvents, then short sleeps and passes until the time is up (at
    /// least one pass, also for 0). The waits of the library that keep the
    /// windows alive (Vnt_Delay, the message box's actions, the progress
    /// dialog's Delay) are this one.
    virtual void Wait(long ms);
    virtual void BusyCursor(bool on) = 0;
    virtual void Beep() = 0;
    /// Puts plain text (Windows-1252) on the clipboard; false on failure.
    virtual bool SetClipboardText(const std::string& text) = 0;
    virtual std::string ClipboardText() = 0;
    /// Runs the window's modal loop (with the framework's loop flags) until
    /// EndModalLoop; returns the result EndModalLoop gave.
    virtual int RunModalLoop(VNT_HWND win, unsigned long flags) = 0;
    virtual void EndModalLoop(VNT_HWND win, int result) = 0;
    /// The modifier keys held down now: Shift 1, Ctrl 2, Alt 4.
    virtual int KeyState() = 0;
    /// Lets the application's splash window hide and hides it (nothing when
    /// none is shown): the client-change modules show windows of their own.
    virtual void HideSplash() = 0;
};

/// Messages of the window system the core sends.
inline constexpr unsigned VNT_WM_CLOSE = 0x0010;
inline constexpr unsigned VNT_WM_COMMAND = 0x0111;
inline constexpr unsigned VNT_WM_MDIACTIVATE = 0x0222;

/// A window system of fake windows: tests and console programs create
/// windows that record every message they receive and answer sent messages
/// through a handler; the clipboard is the process's own. The default port.
class VANTO_API VntHeadlessWindowPort : public VntWindowPort {
public:
    /// One message a fake window received.
    struct Received {
        unsigned msg;
        uintptr_t wparam;
        intptr_t lparam;
        bool posted;  ///< posted rather than sent
    };
    /// Answers a sent message (and sees posted ones, whose answer is unused).
    using Handler = std::function<long(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam)>;

    ~VntHeadlessWindowPort() override;
    /// Creates a fake window named `name`; `handler` (may be empty: answer 0)
    /// answers what it is sent. A window receiving VNT_WM_CLOSE is destroyed
    /// unless its handler answers non-zero.
    VNT_HWND CreateFake(const std::string& name, Handler handler = {});
    /// What the window received, in order: sent messages when sent, posted
    /// ones when PumpEvents delivered them. A destroyed window's messages
    /// stay readable until Clear; empty for an unknown window.
    const std::vector<Received>& Messages(VNT_HWND win) const;
    void ClearMessages(VNT_HWND win);
    /// The window's name ("" when unknown or destroyed).
    std::string Name(VNT_HWND win) const;
    /// Makes a window the main window (null: none).
    void SetMainWindow(VNT_HWND win) { main_ = win; }
    /// Destroys every fake window and forgets them (handles, messages).
    /// Not from inside a handler.
    void Clear();

    /// Records the message and returns the handler's answer (0 without one
    /// or for a window that does not exist).
    long Send(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) override;
    /// Queues the message for PumpEvents; false for a window that does not exist.
    bool Post(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) override;
    bool IsWindow(VNT_HWND win) override;
    /// Ends the window: IsWindow false, its posted messages dropped, it is
    /// no longer the main, active or focus window. The handler is not told.
    void Destroy(VNT_HWND win) override;
    void Activate(VNT_HWND win) override;
    VNT_HWND Focus() override { return focus_; }
    void SetFocus(VNT_HWND win) override;
    VNT_HWND ActiveWindow() override { return active_; }
    VNT_HWND MainWindow() override { return main_; }
    /// Delivers the messages posted before this pass, to all windows in the
    /// order they were posted (messages posted meanwhile wait for the next
    /// pass). A posted VNT_WM_CLOSE destroys as a sent one does.
    void PumpEvents() override;
    void BusyCursor(bool on) override { busy = on; }
    void Beep() override { ++beeps; }
    bool SetClipboardText(const std::string& text) override {
        clipboard = text;
        return true;
    }
    std::string ClipboardText() override { return clipboard; }
    /// Pumps events (through PumpEvents, so a derived port's own events
    /// count) until EndModalLoop for this window: its result. A window that
    /// does not exist or is destroyed meanwhile gives -1. After a pass that
    /// leaves no posted message waiting in any fake window nothing can end
    /// the loop any more: it returns `modalDefault`, so that console programs
    /// never hang (with nothing posted, that is after the first pass). The
    /// flags are not used. An EndModalLoop before the loop starts is lost.
    int RunModalLoop(VNT_HWND win, unsigned long flags) override;
    /// Ends the window's running modal loop with `result` (called from a
    /// handler); no effect on an unknown or destroyed window.
    void EndModalLoop(VNT_HWND win, int result) override;
    int KeyState() override { return keys; }
    void HideSplash() override { ++splashHides; }

    std::string clipboard;  ///< what the clipboard holds
    bool busy = false;      ///< the wait cursor is shown
    int beeps = 0;
    int keys = 0;           ///< the modifier keys KeyState reports
    int modalDefault = 0;   ///< see RunModalLoop
    int splashHides = 0;    ///< calls of HideSplash

private:
    struct Fake;
    Fake* find(VNT_HWND win) const;  // any window created since Clear
    Fake* live(VNT_HWND win) const;  // one not destroyed
    bool anyPosted() const;
    std::vector<Fake*> windows_;
    std::uint64_t postSeq_ = 0;  // order of posted messages across windows
    VNT_HWND main_ = nullptr, active_ = nullptr, focus_ = nullptr;
};

/// The port in use (never null: the headless one until another is installed).
VANTO_API VntWindowPort& Vnt_UiWindow();
/// Installs a port (null: the headless one again); returns the previous one.
/// The caller keeps ownership.
VANTO_API VntWindowPort* Vnt_UiSetWindow(VntWindowPort* port);
