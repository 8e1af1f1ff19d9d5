// Test module: carries the version block with file version 3 (high) / 4 (low).
#include <cstdint>

#include "vanto/module.h"

VNT_APP_MODULE_VERSION(3, 4);

VNT_APP_MODULE_EXPORT std::intptr_t ModMain(long, long) { return 0; }
