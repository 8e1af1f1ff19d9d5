// Volumes: names, the list of known volumes and their kinds. (Free space and
// whether a file fits ask the user: src/copy/vol_ask.cpp.)
#include <cstdint>

#include "base/strbuf.h"
#include "host/dir.h"
#include "host/path.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"

namespace {

using vnt::lfn::hasLetterVol;

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
