// vanto/ui/window.h - the window system port.
//
// The core never includes a window system: it asks this port for the few
// things it needs of one. The window toolkit installs its implementation
// when it starts; until then a headless one serves (fake windows that tests
// create, an in-memory clipboard).
#pragma once

#include <string>

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
    virtual void BusyCursor(bool on) = 0;
    virtual void Beep() = 0;
    /// Puts plain text (Windows-1252) on the clipboard; false on failure.
    virtual bool SetClipboardText(const std::string& text) = 0;
    virtual std::string ClipboardText() = 0;
};

/// A window system without windows: messages go nowhere, no window has the
/// focus, the clipboard is the process's own. The default port; tests derive
/// from it to watch what the core asks.
class VANTO_API VntHeadlessWindowPort : public VntWindowPort {
public:
    long Send(VNT_HWND, unsigned, uintptr_t, intptr_t) override { return 0; }
    bool Post(VNT_HWND, unsigned, uintptr_t, intptr_t) override { return false; }
    bool IsWindow(VNT_HWND) override { return false; }
    void Destroy(VNT_HWND) override {}
    void Activate(VNT_HWND) override {}
    VNT_HWND Focus() override { return nullptr; }
    void SetFocus(VNT_HWND) override {}
    VNT_HWND ActiveWindow() override { return nullptr; }
    VNT_HWND MainWindow() override { return nullptr; }
    void PumpEvents() override {}
    void BusyCursor(bool) override {}
    void Beep() override {}
    bool SetClipboardText(const std::string& text) override {
        clipboard = text;
        return true;
    }
    std::string ClipboardText() override { return clipboard; }

    std::string clipboard;  ///< what the clipboard holds
};

/// The port in use (never null: the headless one until another is installed).
VANTO_API VntWindowPort& Vnt_UiWindow();
/// Installs a port (null: the headless one again); returns the previous one.
/// The caller keeps ownership.
VANTO_API VntWindowPort* Vnt_UiSetWindow(VntWindowPort* port);
