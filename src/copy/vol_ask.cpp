// The volume functions that ask the user: free space and whether a file
// fits, with the messages shown when a volume fails.
#include <cstdint>

#include "host/dir.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"

namespace {

constexpr long kMsgNoVolume = 60000;
constexpr long kMsgNoRoom = 60001;
constexpr long kMsgNoFile = 34503;

using vnt::lfn::hasLetterVol;

}  // namespace

/*
 * Free blocks times block size in 32 bits: larger volumes wrap, as callers
 * of the old interface expect of it.
 */
unsigned long Vnt_LfnVolFreeSpace(const char* volume) {
    if (!hasLetterVol(volume)) return 0;
    std::uint64_t blocks = 0, size = 0;
    if (!vnt::host::freeSpace(volume[0], blocks, size)) {
        Vnt_MsgSys(kMsgNoVolume, volume);
        return 0;
    }
    return static_cast<std::uint32_t>(blocks) * static_cast<std::uint32_t>(size);
}

bool Vnt_LfnVolExists(const char* volume) {
    if (Vnt_LfnVolFind(volume)) return true;
    Vnt_MsgSys(kMsgNoVolume, volume ? volume : "");
    return false;
}

bool Vnt_LfnFileFitToVol(const char* volume, const char* file) {
    if (file == nullptr || !Vnt_LfnFileFind(file)) {
        Vnt_MsgSys(kMsgNoFile, Vnt_LfnNameOut(file ? file : "", 38));
        return false;
    }
    const unsigned long length = vnt::lfn::state().defaultRec.length;
    if (Vnt_LfnVolFreeSpace(volume) < length) {
        Vnt_MsgSys(kMsgNoRoom, volume ? volume : "");
        return false;
    }
    return true;
}
