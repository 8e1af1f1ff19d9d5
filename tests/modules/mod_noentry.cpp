// Test module: no entry function ModMain, and a version block of the wrong
// size (48 bytes instead of 52).
#include <cstdint>

#include "vanto/module.h"

VNT_APP_MODULE_EXPORT const std::uint32_t VntModuleVersion[12] = {VNT_APP_MODVERSION_SIGNATURE, 0x10000, 9, 9};

VNT_APP_MODULE_EXPORT std::intptr_t Other(long, long) { return 1; }
