// Process-wide state of the progress dialog: where the last status window
// and the last confirmation were, the title and text buffers, and which
// VntStat has the (single) status window.
#pragma once

#include "vanto/stat.h"
#include "vanto/ui/progress.h"

namespace vnt::copy {

inline constexpr const char* kSourceStat = "Msg/VntStat";

struct StatState {
    VntProgressPos lastStatus;   // unset: the first window is centred
    VntProgressPos lastConfirm;  // unset: 20 right, 100 down from the status window
    char title[200] = {};
    char text[1024] = {};
    VntStat* active = nullptr;   // the object whose window is open
};

StatState& statState();
/// Back to a fresh process: positions unset, no window owned. For tests.
void resetStat();

}  // namespace vnt::copy
