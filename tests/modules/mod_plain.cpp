// Test module: plain results. Argument 1 chooses: 0 gives 0xFFFF, 1 gives
// -1, 3 counts its calls (the count survives only while the library stays
// loaded), any other value gives argument 1 + argument 2.
#include <cstdint>

#include "vanto/module.h"

namespace {
long calls = 0;
}

VNT_APP_MODULE_EXPORT std::intptr_t ModMain(long a1, long a2) {
    switch (a1) {
        case 0: return 0xFFFF;
        case 1: return -1;
        case 3: return ++calls;
        default: return a1 + a2;
    }
}

VNT_APP_MODULE_EXPORT std::intptr_t ModOther(long, long) { return 42; }
