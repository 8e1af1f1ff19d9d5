// Process-wide state of the window toolkit, in one object tests can reset.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include <wx/string.h>

class VntDlg;

namespace vnt::wx {

class WxPresenter;

struct WxState {
    bool active = false;                        // between Vnt_WxInit and Vnt_WxTerm
    std::vector<std::shared_ptr<void>> ports;   // the ports Vnt_WxInit made
    std::vector<std::function<void()>> undo;    // puts back the ports they replaced
    VntDlg* activeDialog = nullptr;             // VntDlg::GetActiveDialog
    WxPresenter* presenter = nullptr;           // the message box presenter installed
    std::map<wxString, int> plainHeights;       // a plain text field's height per font (VantoEd)
};

WxState& state();

/// Installs `port` through `set` (a Vnt_UiSet... function) and remembers the
/// port it replaced for Vnt_WxTerm.
template <class Port, class Impl>
void install(std::shared_ptr<Impl> port, Port* (*set)(Port*)) {
    Port* previous = set(port.get());
    state().ports.push_back(port);
    state().undo.push_back([set, previous] { set(previous); });
}

}  // namespace vnt::wx
