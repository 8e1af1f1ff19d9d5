// Starting and ending the window toolkit: the wx ports in, the headless
// ones back out.
#include "vanto/wx/app.h"

#include <memory>

#include "res_table.h"
#include "shell_ports.h"
#include "vanto/wx/dsndlg.h"
#include "msgbox.h"
#include "progress_view.h"
#include "window_port.h"
#include "wx_state.h"

namespace vnt::wx {

WxState& state() {
    static WxState s;
    return s;
}

}  // namespace vnt::wx

bool Vnt_WxInit() {
    vnt::wx::WxState& s = vnt::wx::state();
    if (s.active) return true;
    if (wxTheApp == nullptr || !wxTheApp->IsGUI()) return false;
    vnt::wx::loadEmbeddedResources();
    // Each port's wx implementation goes in through vnt::wx::install
    // (wx_state.h), which keeps the port it replaces for Vnt_WxTerm:
    //   vnt::wx::install(std::make_shared<WxThing>(), Vnt_UiSetThing);
    vnt::wx::install(std::make_shared<vnt::wx::WxWindowPort>(), Vnt_UiSetWindow);
    auto box = std::make_shared<vnt::wx::WxPresenter>();
    s.presenter = box.get();
    vnt::wx::install(box, Vnt_UiSetPresenter);
    vnt::wx::install(std::make_shared<vnt::wx::WxProgressView>(), Vnt_UiSetProgress);
    vnt::wx::install(std::make_shared<VntWxClientSelect>(), Vnt_UiSetClientSelect);
    vnt::wx::install(std::make_shared<vnt::wx::WxFileDialogPort>(), Vnt_UiSetFileDialog);
    vnt::wx::install(std::make_shared<vnt::wx::WxHelpPort>(), Vnt_UiSetHelp);
    s.active = true;
    return true;
}

void Vnt_WxTerm() {
    vnt::wx::WxState& s = vnt::wx::state();
    if (!s.active) return;
    // Newest first, so that each slot ends with what was there before.
    for (auto it = s.undo.rbegin(); it != s.undo.rend(); ++it) (*it)();
    s.undo.clear();
    s.ports.clear();
    s.presenter = nullptr;
    s.plainHeights.clear();
    s.active = false;
}

bool Vnt_WxActive() { return vnt::wx::state().active; }

bool VntWxApp::OnInit() {
    if (!wxApp::OnInit()) return false;
    Vnt_WxInit();
    return true;
}

int VntWxApp::OnExit() {
    Vnt_WxTerm();
    return wxApp::OnExit();
}
