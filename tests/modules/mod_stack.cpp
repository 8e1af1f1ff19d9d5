// Test module: takes its result from the value stack of the library that
// loads it; with argument 1 it sets the module result itself as well.
#include <cstdint>

#include "vanto/module.h"

VNT_APP_MODULE_EXPORT std::intptr_t ModMain(long a1, long) {
    const long v = Vnt_AppModQueuePop();
    if (a1) Vnt_AppModSetResult(v);
    return v;
}
