// Shared by the benchmarks.
#pragma once

#include "vanto/ui/msgbox.h"

namespace vnt::bench {

/// Answers every box with OK at once, so that a measured loop never waits.
struct SilentPresenter : VntMsgPresenter {
    bool Show(const VntBoxModel&, VntBoxAnswer& answer) override {
        answer.button = VNT_BTN_OK;
        return true;
    }
    int ShowPlain(const VntPlainBox&) override { return VNT_BTN_OK; }
};

}  // namespace vnt::bench
