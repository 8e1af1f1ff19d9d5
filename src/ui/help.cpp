// The help port and its headless implementation, which only keeps a record
// of what was asked.
#include <string>

#include "base/strbuf.h"
#include "vanto/lfn.h"
#include "vanto/ui/help.h"

#include "base/port_slot.h"

VntHelpPort::~VntHelpPort() = default;

bool VntHelpRecorder::Open(const VntHelpRequest& request) {
    requests.push_back(request);
    return answer;
}

namespace {

vnt::PortSlot<VntHelpPort>& helpSlot() {
    static VntHelpRecorder headless;
    static vnt::PortSlot<VntHelpPort> slot(headless);
    return slot;
}

}  // namespace

VntHelpPort& Vnt_UiHelp() { return helpSlot().get(); }

VntHelpPort* Vnt_UiSetHelp(VntHelpPort* port) { return helpSlot().set(port); }

/*
 * The help file is named like the program: the program's extension, if it
 * has one ("Fibu.exe" on Windows), is replaced by "html".
 */
bool Vnt_HelpFileName(std::string& file) {
    file.clear();
    VNT_PATH prog;
    if (!Vnt_LfnProgFileName(prog, sizeof prog)) return false;
    std::string name = prog;
    std::size_t sep = name.find_last_of("\\:");
    std::size_t dot = name.rfind('.');
    if (dot != std::string::npos && (sep == std::string::npos || dot > sep)) name.resize(dot);
    file = name + ".html";
    return true;
}
