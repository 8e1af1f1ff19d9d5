// vanto/vtm.h - message library files (.vtm): the reader.
//
// A message library is a binary file of numbered, NUL-terminated texts with
// an index (magic "VANTOVTM"); a container holds named segments, each a
// library of its own. The reader keeps the index in memory, optionally a
// leading run of texts (the preload area), and delivers texts by message ID
// or by iteration (0 = first, -1 = next). IDs 32768..65535 are system
// messages and are always read from the system library.
//
// The message functions build on this reader; applications normally use
// those. Tools and tests use it directly.
//
// Results point into the preload area (valid while the library is open), a
// shared message buffer (valid until the next read) or the caller's literal
// text. All state is process-wide and for one thread only.
#pragma once

#include "vanto/base.h"

/// An open message library or library segment. Null means the system library.
struct VNT_VTM_LIB;
using VNT_MSG = VNT_VTM_LIB*;

/// Status of the last open or read (Vnt_VtmStatus).
enum VNT_VTM_STATUS : long {
    VNT_VTM_OK = 0,
    VNT_VTM_E_OPEN = 1,         ///< file could not be opened
    VNT_VTM_E_HEAD = 2,         ///< header or head bytes could not be read in full
    VNT_VTM_E_INDEX = 3,        ///< index could not be read in full
    VNT_VTM_E_PRELOAD = 4,      ///< preload area could not be read in full
    VNT_VTM_E_MAGIC = 5,        ///< unknown magic
    VNT_VTM_E_MSP = 6,          ///< magic "VANTOMSP"
    VNT_VTM_E_VERTEXT = 7,      ///< version text and version differ
    VNT_VTM_E_VERLOW = 8,       ///< version below 10
    VNT_VTM_E_VERHIGH = 9,      ///< version above 199
    VNT_VTM_E_SEGCOUNT = 10,    ///< more than 256 segments
    VNT_VTM_E_EMPTY = 11,       ///< no entries (read); last preload ID outside the preload count
    VNT_VTM_E_PRELSIZE = 12,    ///< preload size above 65535; preloaded texts overrun it
    VNT_VTM_E_NOSEG = 13,       ///< segment name not in the directory
    VNT_VTM_E_SEGNAME = 14,     ///< segment header's name differs from the requested one
    VNT_VTM_E_MEMORY = 15,      ///< out of memory
    VNT_VTM_E_INDEXOFS = 16,    ///< index offset below the base offset
    VNT_VTM_E_VTP = 99,         ///< magic "VANTOVTP"
    VNT_VTM_E_NOTOPEN = 100,    ///< library not open
    VNT_VTM_E_NOTFOUND = 101,   ///< message ID not found; last preload ID at the wrong entry
    VNT_VTM_E_LENGTH = 102,     ///< stored length wrong (repaired in memory)
    VNT_VTM_E_OFFSET = 103,     ///< text position or index offset invalid, or seek failed
    VNT_VTM_E_READ = 104,       ///< a message text could not be read in full
};

/// Opens a library by file name (library path). A library whose header name
/// equals the file's base name (first 8 characters, up to the first dot) is
/// shared with an earlier open of it: its reference count rises instead.
/// Returns null on failure; Vnt_VtmStatus says why. A head and index larger
/// than the whole file (or a negative entry count) is refused with status 15
/// before anything is allocated. Problems found in the preload area are
/// repaired in memory and leave their status, but the open succeeds.
VANTO_API VNT_MSG Vnt_VtmOpen(const char* path);

/// Opens the named segment (at most 8 characters; a file name is reduced to
/// its base name: "Z:\x\APPMSG.vtm" => "APPMSG") of a container; a null
/// parent means the system library (status 100 when there is none). Every
/// segment reference also holds one reference of the container; the one
/// taken for a segment whose reading fails is kept (compatibility). Null on
/// failure (status 13, 14, ...).
VANTO_API VNT_MSG Vnt_VtmOpenSeg(VNT_MSG parent, const char* name);

/// Drops one reference; the library is released when none is left. Closing
/// a segment also drops its container's reference and releases the
/// container with it when that was the last one. A container released while
/// segments are still open reports "segments still open"; those segments
/// then have no file (reads outside their preload area give status 100).
VANTO_API void Vnt_VtmClose(VNT_MSG lib);

/// Resolves a reference to the message ID to read: 0 at the end of an
/// iteration; a literal text is returned as it stands. For an explicit ID
/// with `keepCursor` false, the iteration cursor moves to that ID's entry.
VANTO_API VntMsgRef Vnt_VtmResolve(VNT_MSG lib, VntMsgRef ref, bool keepCursor);

/// Reads the text of a reference. Never null: a failed read gives a usable
/// (possibly empty) text and sets the status. Iteration skips texts that
/// begin with ';'. A container holds no messages itself (status 11).
///   Vnt_VtmRead(lib, 5) => text of ID 5     Vnt_VtmRead(lib, "x") => "x"
///   Vnt_VtmRead(lib, 40000) => from the system library
VANTO_API const char* Vnt_VtmRead(VNT_MSG lib, VntMsgRef ref);

/// The library name field as a terminated string (shared 9-byte buffer).
VANTO_API const char* Vnt_VtmName(VNT_MSG lib);

/// Status of the last open or read (VNT_VTM_STATUS).
VANTO_API long Vnt_VtmStatus();

/// English meaning of a status, e.g. "file could not be opened".
VANTO_API const char* Vnt_VtmStatusText(long status);

/// Switches: 0 off, 1 on, 2 query only; each returns the previous setting.
/// Quiet: no "not found" report, no sharing, no system-ID redirection, no
/// closing of fully preloaded files, no system-library registration.
VANTO_API int Vnt_VtmSwQuiet(int mode);
/// The last three effects of quiet only.
VANTO_API int Vnt_VtmSwRaw(int mode);
/// No preload validation and no length repair of the fallback read.
VANTO_API int Vnt_VtmSwNoRepair(int mode);

/// Counted switch: while above zero, opens are not shared. `delta` is added
/// (+1, -1, or 0 to query); returns the new count (never below zero).
VANTO_API int Vnt_VtmNoShare(int delta);

/// What a library looks like in memory (for tools and diagnostics).
struct VNT_VTM_INFO {
    int32_t version;          ///< format version
    int32_t segmentCount;     ///< 0 for a plain library
    int32_t baseOffset;       ///< absolute offset of the header
    int32_t librarySize;      ///< bytes from the base offset
    int32_t indexOffset;      ///< absolute offset of the index (or directory)
    int32_t textOffset;       ///< absolute offset of the text area
    int32_t entryCount;       ///< index entries (directory entries of a container)
    int32_t systemFlag;       ///< non-zero for a system library
    int32_t preloadCount;     ///< entries whose texts are preloaded
    uint32_t preloadSize;     ///< bytes of the preload area
    uint32_t lastPreloadId;   ///< IDs up to this one count as preloaded
    int32_t cursor;           ///< entry number of the last delivered entry
    int32_t refCount;         ///< references held
    int32_t headLength;       ///< index offset minus base offset
    bool fileOpen;            ///< the file is still open
    bool isSegment;           ///< a segment of a container
    bool isSystem;            ///< registered as the system library
    char name[9];             ///< library name, terminated
    unsigned char annex[60];  ///< header annex as read (zero when its first byte was 0)
};

/// One index entry (of a plain library or segment).
struct VNT_VTM_ENTRY {
    uint32_t position;        ///< text position (preload area or text area)
    uint16_t id;              ///< message ID
    uint16_t length;          ///< stored length, NUL included
    bool preloaded;           ///< id <= last preload ID
};

/// One directory entry of a container.
struct VNT_VTM_SEGENTRY {
    int32_t offset;           ///< absolute offset of the segment header
    char name[9];             ///< segment name, terminated
};

/// Fills `info`; false for a null library.
VANTO_API bool Vnt_VtmInfo(VNT_MSG lib, VNT_VTM_INFO* info);
/// Entry number `n` (0-based) of a plain library; false when out of range.
VANTO_API bool Vnt_VtmEntry(VNT_MSG lib, long n, VNT_VTM_ENTRY* entry);
/// Directory entry `n` of a container; false when out of range.
VANTO_API bool Vnt_VtmSegEntry(VNT_MSG lib, long n, VNT_VTM_SEGENTRY* entry);
/// Text of entry number `n`, read as a read by ID would read it (with its
/// status), but also for comment texts and repeated IDs. Never null.
VANTO_API const char* Vnt_VtmEntryText(VNT_MSG lib, long n);

/// The system library, or null while none is registered.
VANTO_API VNT_MSG Vnt_VtmSystem();

/// The report hook: every report of the reader ("!VTMINTRF: Internal
/// Error.\n" and a detail) is passed to it; an answer other than
/// VNT_RESP_OK (1) ends the process with exit code 3. The default prints the
/// text on standard error and answers OK. Null restores the default.
/// Returns the previous hook.
using VNT_VTM_REPORT = VNT_RESP (*)(const char* text);
VANTO_API VNT_VTM_REPORT Vnt_VtmSetReport(VNT_VTM_REPORT hook);
