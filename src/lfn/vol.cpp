// Volumes: names, the list of known volumes, kinds, free space and whether
// a file fits, with the messages the user sees when a volume fails.
#include <cstdint>

#include "base/strbuf.h"
#include "host/dir.h"
#include "host/path.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"

namespace {

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool hasLetterVol(const char* s) { return s != nullptr && s[0] != '\0' && s[1] == ':' && isLetter(s[0]); }

constexpr long kMsgNoVolume = 60000;
constexpr long kMsgNoRoom = 60001;
constexpr long kMsgNoFile = 34503;

}  // namespace

bool Vnt_LfnVolName(char (&buf)[VNT_MAX_PATH]) {
    Vnt_LfnVolFromPath(buf, buf);
    if (buf[0] == '\\' && buf[1] == '\\') return false;
    return Vnt_LfnVolFind(buf);
}

const VNT_PATH* Vnt_LfnVolList() {
    auto& list = vnt::lfn::state().volList;
    std::size_t n = 0;
    for (char c = 'A'; c <= 'Z'; ++c) {
        if (!vnt::host::volKnown(c)) continue;
        const char vol[3] = {c, ':', '\0'};
        vnt::copyBounded(list[n++], std::string_view(vol, 2));
    }
    for (; n < vnt::lfn::kVolListSize; ++n) list[n][0] = '\0';
    return list;
}

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

// Every letter but A and B counts as a fixed volume without asking the
// host, kept for compatibility.
VNT_LFN_VOL_TYPE Vnt_LfnVolType(const char* volume) {
    if (!hasLetterVol(volume)) return VNT_LFN_VOL_NONE;
    switch (volume[0]) {
        case 'A': case 'a': return VNT_LFN_VOL_FLOPPY_A;
        case 'B': case 'b': return VNT_LFN_VOL_FLOPPY_B;
        default: return VNT_LFN_VOL_FIXED;
    }
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
