// Process-wide state of the long-file-name functions, gathered in one object
// so that tests can start every case from a clean state.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/dir.h"
#include "vanto/base.h"

/// A find record: what a search handle (VNT_LFN_HFIND) refers to. A new one
/// is all zero with no listing.
struct VntLfnFindRec {
    std::uint32_t attributes = 0;
    std::uint32_t length = 0;            ///< low 32 bits of the size
    std::uint16_t time = 0, date = 0;    ///< packed, local time
    char shortName[14] = {};             ///< no short names on POSIX: the long name's first 13
    char longName[VNT_MAX_PATH] = {};
    std::uint32_t mask = 0;              ///< attribute mask of the next-calls
    /// The host search: a sorted snapshot of the matching entries and the
    /// next one to look at; null when no search is open.
    struct Listing {
        std::vector<vnt::host::DirEntry> entries;
        std::size_t next = 0;
    };
    std::unique_ptr<Listing> listing;
    /// The record that was current when this one's search started.
    VntLfnFindRec* previous = nullptr;
};

namespace vnt::lfn {

/// Room of the environment buffer of Vnt_LfnFileFindEnv.
inline constexpr std::size_t kEnvSize = 1024;
/// Room of the volume list: 26 volumes and the empty entry that ends it.
inline constexpr std::size_t kVolListSize = 27;
/// Room of the static filter buffer of the file dialogs.
inline constexpr std::size_t kFilterSize = 256;

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

    /// The record of every search made without a handle.
    VntLfnFindRec defaultRec;
    /// The record the accessor functions read; null means the default one.
    VntLfnFindRec* current = nullptr;
    /// The records of handle searches now alive (owned here, so a reset
    /// frees them and a stale handle can be told from a live one).
    std::vector<std::unique_ptr<VntLfnFindRec>> live;
    /// Receives the found name when a search is given no buffer.
    char result[VNT_MAX_PATH] = {};
    /// The value of the variable that Vnt_LfnFileFindEnv reads.
    char env[kEnvSize] = {};
    /// Vnt_LfnVolList's result.
    char volList[kVolListSize][VNT_MAX_PATH] = {};
    /// Initial directories of the open and the save dialog when the caller
    /// passes none; each keeps the directory last confirmed in its dialog.
    char dlgOpenDir[VNT_MAX_PATH] = {};
    char dlgSaveDir[VNT_MAX_PATH] = {};
    /// Filter list of the file dialogs when it has to be built.
    char filter[kFilterSize] = {};
};

/// True when `s` begins with a drive letter and ':' ("c:", "C:\\x").
inline bool hasLetterVol(const char* s) {
    return s != nullptr && ((s[0] >= 'A' && s[0] <= 'Z') || (s[0] >= 'a' && s[0] <= 'z')) && s[1] == ':';
}

/// The state object (a single static instance).
State& state();

/// Puts the state back to its start: empty slot, ring index 0, the default
/// record current and every handle record freed.
void resetState();

}  // namespace vnt::lfn
