// The window system port on wx (installed by Vnt_WxInit).
#pragma once

#include <cstdint>
#include <map>

#include "vanto/ui/window.h"

class wxGUIEventLoop;

namespace vnt::wx {

/// Delivers a message to a window now: its handlers first, then the
/// message's default action. 0 for a window that does not exist.
long deliver(VNT_HWND handle, unsigned msg, std::uintptr_t wparam, std::intptr_t lparam, bool posted);

class WxWindowPort : public VntWindowPort {
public:
    long Send(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) override;
    bool Post(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) override;
    bool IsWindow(VNT_HWND win) override;
    void Destroy(VNT_HWND win) override;
    void Activate(VNT_HWND win) override;
    VNT_HWND Focus() override;
    void SetFocus(VNT_HWND win) override;
    VNT_HWND ActiveWindow() override;
    VNT_HWND MainWindow() override;
    void PumpEvents() override;
    void BusyCursor(bool on) override;
    void Beep() override;
    bool SetClipboardText(const std::string& text) override;
    std::string ClipboardText() override;
    int RunModalLoop(VNT_HWND win, unsigned long flags) override;
    void EndModalLoop(VNT_HWND win, int result) override;
    int KeyState() override;
    void HideSplash() override;

    bool Busy() const { return busy_; }

private:
    bool busy_ = false;
    VNT_HWND active_ = nullptr;                     // last activated through the port
    std::map<VNT_HWND, wxGUIEventLoop*> loops_;     // modal loops of plain windows
};

}  // namespace vnt::wx
