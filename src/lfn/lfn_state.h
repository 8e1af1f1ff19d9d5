// Process-wide state of the long-file-name functions, gathered in one object
// so that tests can start every case from a clean state.
#pragma once

#include <cstddef>

#include "vanto/base.h"

namespace vnt::lfn {

struct State {
    /// The one slot of Vnt_LfnDirSave/Vnt_LfnDirRestore without an argument.
    /// Vnt_LfnNameComplete saves into it too, so it is not a stack.
    char savedDir[VNT_MAX_PATH] = {};
    /// First three characters of the extension replaced by Vnt_LfnNameExtS.
    char oldExt[4] = {};
    /// Display ring of Vnt_LfnNameOut: three results may be in use at once.
    char outRing[3][VNT_MAX_PATH] = {};
    /// Ring slot that the next Vnt_LfnNameOut writes.
    std::size_t outNext = 0;
};

/// The state object (a single static instance).
State& state();

/// Puts the state back to its start: empty slot, ring index 0.
void resetState();

}  // namespace vnt::lfn
