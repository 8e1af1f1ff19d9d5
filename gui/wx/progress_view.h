// The progress view on wx: the status window (dialog 30062) and the
// confirmation of a cancel (dialog 30063), both modeless.
#pragma once

#include <chrono>

#include "vanto/ui/progress.h"

class wxDialog;
class wxWindow;

namespace vnt::wx {

class WxProgressView : public VntProgressView {
public:
    ~WxProgressView() override;
    bool OpenStatus(VNT_HWND owner, VntProgressPos pos, VntProgressEvents* events) override;
    void CloseStatus() override;
    bool StatusOpen() const override { return status_ != nullptr; }
    std::string Title() const override;
    void SetTitle(const std::string& title) override;
    void SetLine(int index, const std::string& text) override;
    void SetBar(int percent, const std::string& text) override;
    void SetNumber(const std::string& text) override;
    void SetProgressText(const std::string& text) override;
    void ShowItem(VntProgressItem item, bool visible) override;
    void EnableCancel(bool enabled) override;
    void EnableStatus(bool enabled) override;
    void Show(bool visible) override;
    void ToFront() override;
    void Move(int x, int y) override;
    bool GetRect(tagRECT& rect) const override;
    void Focus() override;
    void SetTopmost(bool topmost) override;
    void PumpEvents() override;
    bool OpenConfirm(VntProgressPos pos, const std::string& title) override;
    void CloseConfirm() override;
    void ConfirmToFront() override;
    VntProgressPos ConfirmPos() const override;

    /// The windows, for tests (null when closed).
    wxDialog* Status() const { return status_; }
    wxDialog* Confirm() const { return confirm_; }
    /// Pumps at most this often (the work runs between).
    std::chrono::milliseconds pumpEvery{20};

private:
    void setText(int id, const std::string& text);
    wxDialog* status_ = nullptr;
    wxDialog* confirm_ = nullptr;
    wxWindow* owner_ = nullptr;
    VntProgressEvents* events_ = nullptr;
    int percent_ = -1;
    std::chrono::steady_clock::time_point lastPump_{};
};

}  // namespace vnt::wx
