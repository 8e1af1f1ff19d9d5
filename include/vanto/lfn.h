// vanto/lfn.h - long file names, paths, volumes and the current directory.
//
// Every path the library takes or returns is in its own grammar: backslash
// separators and an optional volume prefix "X:" (Windows-1252 text). On a
// POSIX host a volume table maps letters to host directories: "Z:" is the
// host root "/" unless the program maps it elsewhere, so "/opt/acme" is
// "Z:\opt\acme" to the library. Each volume remembers its own current
// directory.
//
// Terms used below:
//   volume prefix   first character non-NUL and second character ':'
//   bare volume     a volume prefix and nothing after it ("X:")
//   starts at root  first character '\', or a volume prefix followed by '\'
//   root            exactly "\" or exactly "X:\"
//   UNC name        the first two characters are backslashes
//   separator pos.  the last '\'; without one, the position after the colon
//                   of a volume prefix; without either, the end of the name
//
// Functions that return bool give true for success or a yes; the tests give
// false for a null name. Results that
// live in static storage (Vnt_LfnNameExtS, Vnt_LfnNameOut) are overwritten by
// later calls; none of these functions may be called from a second thread.
#pragma once

#include <cstdint>

#include "vanto/base.h"
#include "vanto/date.h"

// ---------------------------------------------------------------------------
// Tests on names
// ---------------------------------------------------------------------------

/// True if the name contains '*' or '?'.
VANTO_API bool Vnt_LfnNameIsWild(const char* name);

/// True if the name starts at root and contains no ".." anywhere.
///   C:\a\b => true    \a => true    C:\a\..\b => false    a => false
VANTO_API bool Vnt_LfnNameIsAbsPath(const char* name);

/// True for a name relative to a current directory, tested in this order:
/// first character '.' => true; no '\' and no volume prefix => true (so ""
/// is relative); '\' => false; "X:" followed by anything but '\' => true
/// ("C:x" is relative to the volume's current directory); else false.
VANTO_API bool Vnt_LfnNameIsRelPath(const char* name);

/// True for "\" and "X:\" exactly.  "C:" => false, "C:\x" => false, "\\" => false.
VANTO_API bool Vnt_LfnNameIsRoot(const char* name);

/// True if the name has a '\' or a volume prefix. `sep`, when given, receives
/// the separator position (on false: the end of the name).
///   "C:\a\b" => true, sep at "\b"    "C:x" => true, sep at "x"    "x" => false
VANTO_API bool Vnt_LfnNameIsPath(const char* name, const char** sep = nullptr);
VANTO_API bool Vnt_LfnNameIsPath(char* name, char** sep);

/// True if the name has a volume prefix; `after` receives the position after
/// the colon (without a prefix: the start of the name). Any character may
/// stand before the colon: "1:x" => true.
VANTO_API bool Vnt_LfnNameHasVol(const char* name, const char** after = nullptr);
VANTO_API bool Vnt_LfnNameHasVol(char* name, char** after);

/// True if the name is a bare volume ("X:"); `after` receives the position
/// after the colon (without a prefix: the start of the name).
VANTO_API bool Vnt_LfnNameIsVol(const char* name, const char** after = nullptr);
VANTO_API bool Vnt_LfnNameIsVol(char* name, char** after);

// ---------------------------------------------------------------------------
// Joining, splitting, extensions
// ---------------------------------------------------------------------------

/// Joins directory, name and extension (each may be null) into `buf`.
///   ("C:\dir", "file", "txt")   => "C:\dir\file.txt"
///   ("C:\dir\", "\file", null)  => "C:\dir\file"     (one separator)
///   ("C:", "x", null)           => "C:x"             ("C:", "\x" => "C:\x")
///   (null, null, "bak")         => changes the extension of what buf holds
/// A name with a volume prefix loses it when the directory has one too.
/// The extension (a leading '.' skipped) replaces the one after the last dot
/// of the file part, else is appended after a '.'; at most 8 of its
/// characters are written, and when fewer than 8 characters of room remain
/// it is cut and the result is false even if it would have fitted: this
/// eight-character reservation is kept for compatibility. A name cut to fit
/// gives false but the joined text is still delivered; a directory that
/// leaves no room for a name gives false and the target is unchanged. A size
/// below 2 gives false. Any argument may point into the target.
VANTO_API bool Vnt_LfnNameMake(char (&buf)[VNT_MAX_PATH], const char* dir, const char* name,
                               const char* ext);
/// The same for a character array of any size.
VANTO_API bool Vnt_LfnNameMake(char* buf, std::size_t size, const char* dir, const char* name,
                               const char* ext);

/// Splits a name into directory, file (with its extension) and extension;
/// each output is an optional path buffer and may be the input itself. The
/// extension is the text after the LAST dot of the file part.
///   "C:\a.b\file" => "C:\a.b", "file", ""
///   "C:\file"     => "C:\", "file", ""       "\file" => "\", "file", ""
///   "C:file"      => "C:", "file", ""        "x.txt" => "", "x.txt", "txt"
VANTO_API void Vnt_LfnNameSplit(const char* name, char* dir, char* file, char* ext);

/// Replaces the extension of `name` (an array of `size` characters). The
/// extension starts at the FIRST dot of the file part ("a.b.c" has "b.c").
/// Returns the first 3 characters of the old extension in a static buffer,
/// or null when the new extension does not fit (the name is then unchanged).
/// A null `ext` changes nothing; "" cuts the name at that dot.
VANTO_API const char* Vnt_LfnNameExtS(char* name, std::size_t size, const char* ext);
/// Vnt_LfnNameExtS on a path buffer.
VANTO_API const char* Vnt_LfnNameExt(char (&buf)[VNT_MAX_PATH], const char* ext);
/// Appends '.' unless the name is empty, ends in one or has 258 characters or
/// more, then Vnt_LfnNameExt: an existing extension is replaced
/// ("file.txt" + "bak" => "file.bak"), kept for compatibility.
VANTO_API const char* Vnt_LfnNameExtAdd(char (&buf)[VNT_MAX_PATH], const char* ext);

// ---------------------------------------------------------------------------
// Absolute names
// ---------------------------------------------------------------------------

/// Makes the name absolute against the current directory of its volume and
/// resolves "." and "..". False (name unchanged) for an unknown volume or a
/// volume that cannot be made current. UNC names are left as they are.
///   "x" with current directory "Z:\work" => "Z:\work\x"
///   "\x" => "Z:\x"    "T:" => T's current directory    "T:y" => under it
/// The current directory is saved into the static slot of Vnt_LfnDirSave and
/// restored, so a directory saved there before is overwritten.
VANTO_API bool Vnt_LfnNameComplete(char (&buf)[VNT_MAX_PATH]);

/// Resolves "." and ".." in place.  "C:\a\b\..\c\.\d" => "C:\a\c\d";
/// "C:\.." => false; a ".." that is not a whole component => false. A
/// trailing backslash goes unless the name is a root; a final "\." goes with
/// its backslash ("C:\." => "C:"). On false the buffer may be partly rewritten.
VANTO_API bool Vnt_LfnNameMakeAbs(char (&buf)[VNT_MAX_PATH]);

/// Without a base: `dst` = name completed (Vnt_LfnNameComplete). With a base:
/// the part the name shares with the base (same volume, or a name starting
/// with '\') is skipped, the rest is joined under the base and dots are
/// resolved. A rooted name sharing nothing with the base is joined under it;
/// the shared part is matched by characters, not components, kept for
/// compatibility:  ("C:\data\m1", "c:\DATA") => "c:\DATA\m1";
/// ("\x", "C:\d") => "C:\d\x";  ("C:\datax\f", "C:\data") => "C:\data\x\f".
/// Without a base a null name gives false.
VANTO_API bool Vnt_LfnNameMakeAbs(char (&dst)[VNT_MAX_PATH], const char* name,
                                  const char* base);

/// Takes the first token of a command line into `dst`: a quoted token runs to
/// the next quote, else to the next blank or tab (or, with `whole`, to the
/// end of the line). `rest`, when given, points at the rest of the line. With
/// `remove` the line is rewritten to hold " " + rest (or nothing), and `rest`
/// points after that blank. With `whole` leading blanks are kept. False for
/// a null line, an empty token or a token cut at 259 characters.
///   "\"C:\My Dir\app.exe\" -x 1" => "C:\My Dir\app.exe", rest "-x 1"
VANTO_API bool Vnt_LfnNameExtract(char (&dst)[VNT_MAX_PATH], char* line, bool remove,
                                  char** rest = nullptr, bool whole = false);

/// Shortened display form of a name for messages: shorter than `width` (0 or
/// above 260 means 38) it is returned whole, else as the first 3 characters,
/// "..." and the last width - 7 characters (below 8: "abc..." alone). The
/// result lies in one of three static buffers used in turn, so three results
/// may stand in one message. Never lower-cased on this host.
VANTO_API const char* Vnt_LfnNameOut(const char* name, long width = 0);

// ---------------------------------------------------------------------------
// Volumes and the current directory
// ---------------------------------------------------------------------------

/// Puts the volume of `path` (null: `buf` itself) into `buf`: everything up
/// to the first ':'; else the UNC prefix "\\server\share"; else "". Always true.
VANTO_API bool Vnt_LfnVolFromPath(char (&buf)[VNT_MAX_PATH], const char* path = nullptr);

/// True if the path begins with a volume letter A-Z (either case) that the
/// host knows (on POSIX: a letter mapped to an existing directory).
VANTO_API bool Vnt_LfnVolFind(const char* path);

/// Sets the current directory. A path with a volume letter first makes that
/// volume current; "X:" alone goes to the volume's remembered directory.
/// Relative names are taken against the current directory of their volume
/// ("X:rel", "rel"; "\x" is on the current volume) and dots are resolved.
/// Null, empty, 260 characters or more, above the root, an unknown volume or
/// a directory that does not exist gives false.
VANTO_API bool Vnt_LfnDirSet(const char* path);

/// Puts the current directory into `buf` (false if it needs 260 characters
/// or more); with null, into the single static slot that Vnt_LfnDirRestore
/// reads. The slot is one slot, not a stack: every save overwrites it.
VANTO_API bool Vnt_LfnDirSave(char* buf = nullptr);

/// Sets a non-empty path as Vnt_LfnDirSet does; null or "" sets the directory
/// held in the static slot.
VANTO_API bool Vnt_LfnDirRestore(const char* path = nullptr);

// ---------------------------------------------------------------------------
// The program's own names
// ---------------------------------------------------------------------------

/// Full name of the module's file (null module: the program), at most
/// size - 1 characters. False when it cannot be told or does not fit.
///   "Z:\opt\acme\Fibu"
VANTO_API bool Vnt_LfnProgFileName(char* buf, std::size_t size, VNT_HINSTANCE module = nullptr);
/// Its directory.  "Z:\opt\acme"
VANTO_API bool Vnt_LfnProgDirName(char* buf, std::size_t size, VNT_HINSTANCE module = nullptr);
/// Its file name with extension.  "Fibu"
VANTO_API bool Vnt_LfnProgName(char* buf, std::size_t size, VNT_HINSTANCE module = nullptr);

// ---------------------------------------------------------------------------
// The host's volume table (POSIX) and host names
// ---------------------------------------------------------------------------

/// Maps the volume letter (A-Z, either case) to a host directory (UTF-8).
/// Replaces an earlier mapping. False for a bad letter or a directory that
/// does not exist. "Z:" is mapped to "/" at start.
VANTO_API bool Vnt_LfnVolMap(char letter, const char* hostDir);

/// Removes the mapping of a volume letter; false if it had none.
VANTO_API bool Vnt_LfnVolUnmap(char letter);

/// Converts a library path to a host path (UTF-8) in `out` (`size` bytes).
/// A relative name is taken against the current directory; each component
/// that does not exist as written is matched without regard to case. False
/// when the volume is unmapped, a character cannot be represented, or the
/// result does not fit.
VANTO_API bool Vnt_LfnToHost(const char* path, char* out, std::size_t size);

/// Converts a host path (UTF-8; relative to the process's working directory
/// when not absolute) to a library path, through the volume whose directory
/// holds it (the longest mapping wins). False when no volume holds it, a
/// character has no Windows-1252 form, or the result needs 260 characters.
VANTO_API bool Vnt_LfnFromHost(char (&buf)[VNT_MAX_PATH], const char* hostPath);

// ---------------------------------------------------------------------------
// Packed dates and times (the file-time form)
// ---------------------------------------------------------------------------

/// time = hour * 2048 + minute * 32 + second / 2.
VANTO_API std::uint16_t Vnt_LfnTimePack(const VNT_TIME& time);
/// date = ((year - 1980) mod 128) * 512 + (month mod 16) * 32 + day mod 32;
/// a year below 80 counts as 2000 + year, 80-99 as 1900 + year, and a year
/// still below 1980 as 1980.   99 => 19 (1999), 5 => 25 (2005), 1900 => 0
VANTO_API std::uint16_t Vnt_LfnDatePack(const VNT_DATE& date);
/// Seconds in steps of 2, fraction 0.   0xBF7D => 23:59:58
VANTO_API void Vnt_LfnTimeUnpack(std::uint16_t packed, VNT_TIME* time);
/// year = packed / 512 + 1980, month = (packed / 32) mod 16, day = packed mod 32.
VANTO_API void Vnt_LfnDateUnpack(std::uint16_t packed, VNT_DATE* date);

// ---------------------------------------------------------------------------
// Directories
// ---------------------------------------------------------------------------

/// Creates the directory chain of `dir` (a relative name under the current
/// directory). A root, a bare volume or an existing directory gives true at
/// once; otherwise every missing directory from the top is created, and the
/// first that cannot be created gives false. A name starting with "\" and no
/// volume is only found, never created (kept for compatibility). Null: false.
VANTO_API bool Vnt_LfnDirCreate(const char* dir);
/// Joins `dir` and `sub` into `buf` (kept whatever the result) and creates
/// that chain.
VANTO_API bool Vnt_LfnDirCreate(char (&buf)[VNT_MAX_PATH], const char* dir, const char* sub);
/// Creates the directory part of a file name; a name without one gives true
/// (its directory is the current one).
VANTO_API bool Vnt_LfnDirCreateFromFile(const char* file);
/// Removes the directory and then every parent up to (not including) the
/// root, going on past a parent that cannot be removed: empty ancestors are
/// pruned. True when at least one directory was removed.
VANTO_API bool Vnt_LfnDirRemove(const char* dir);
/// The same; `buf` receives the parent of the last directory removed.
VANTO_API bool Vnt_LfnDirRemove(char (&buf)[VNT_MAX_PATH]);

// ---------------------------------------------------------------------------
// Searching files and directories
//
// A search fills a find record: the default record for searches without a
// handle, or a record of its own that the first search allocates into the
// caller's handle variable (initialised to null). The accessor functions
// below read the current record: the default one, or the record of the last
// search started or continued with a handle. A search that fails, runs out or
// is closed releases its record, sets the handle variable to null and hands
// the current role back: a search that fails or runs out to the record that
// was current when it started, a close of the current record to the default
// one. Patterns follow the platform's rules: "*" any characters, "?" exactly
// one, case ignored (Windows-1252), and a pattern ending in ".*" also
// matches the name without it ("*.*" every name, "a.*" also "a"). A search
// sees the directory as it was when the search started, with the entries
// sorted by name without regard to case; host names without a Windows-1252
// form are left out. File searches give no directories and directory
// searches no files; directory searches skip every name beginning with "."
// (so never "." or "..", nor a hidden directory on POSIX).
// ---------------------------------------------------------------------------

/// A search handle variable; null before the first search.
typedef struct VntLfnFindRec* VNT_LFN_HFIND;

/// Attribute bits of found entries and of Vnt_LfnFileAttrSet.
inline constexpr unsigned long VNT_LFN_ATTR_READONLY = 0x01;
inline constexpr unsigned long VNT_LFN_ATTR_HIDDEN = 0x02;
inline constexpr unsigned long VNT_LFN_ATTR_SYSTEM = 0x04;
inline constexpr unsigned long VNT_LFN_ATTR_VOLID = 0x08;
inline constexpr unsigned long VNT_LFN_ATTR_DIRECTORY = 0x10;
inline constexpr unsigned long VNT_LFN_ATTR_ARCHIVE = 0x20;
/// Masks of file and directory searches.
inline constexpr unsigned long VNT_LFN_MASK_FILES = 0x27;
inline constexpr unsigned long VNT_LFN_MASK_DIRS = 0x37;

/// True when a directory matches `pattern`; its full name goes to `buf`
/// when given. Uses a handle of its own and closes it, which leaves the
/// default record current (after a failure: the record current before).
VANTO_API bool Vnt_LfnDirFind(const char* pattern, char* buf = nullptr);
/// Starts a directory search of `name` in `dir` into the handle (null: on
/// the default record). The pattern is dir joined with name in `buf` (null:
/// the default result buffer); with neither, what `buf` holds is the
/// pattern. On success `buf` holds the pattern's directory joined with the
/// name found, except that a pattern in `buf` without wildcards is left as
/// it stands; on failure it holds the pattern.
VANTO_API bool Vnt_LfnDirFindFirst(char* buf, const char* dir, const char* name, VNT_LFN_HFIND* handle);
/// The next entry of the default record's (or the handle's) search; `buf`'s
/// (null: the default result buffer's) file part is replaced by the name
/// found. False without a running search, and when it runs out.
VANTO_API bool Vnt_LfnDirFindNext(char* buf);
VANTO_API bool Vnt_LfnDirFindNext(VNT_LFN_HFIND* handle, char* buf);

/// File search on the default record; `buf` (null: the default result
/// buffer) receives the full name found. A bare name that is not found is
/// looked for once more in the program's directory.
VANTO_API bool Vnt_LfnFileFind(const char* pattern, char* buf = nullptr);
/// File search into a handle; the name goes to the default result buffer.
/// A null pattern gives false.
VANTO_API bool Vnt_LfnFileFindFirst(const char* pattern, VNT_LFN_HFIND* handle);
/// File search of `name` in `dir` into `buf`, with a handle or (null) on the
/// default record; the rules of Vnt_LfnDirFindFirst and the second try in
/// the program's directory of Vnt_LfnFileFind.
VANTO_API bool Vnt_LfnFileFindFirst(char* buf, const char* dir, const char* name,
                                    VNT_LFN_HFIND* handle = nullptr);
VANTO_API bool Vnt_LfnFileFindNext(char* buf);
VANTO_API bool Vnt_LfnFileFindNext(VNT_LFN_HFIND* handle, char* buf);
/// Ends a search: releases its record (never the default one) and sets the
/// variable to null; when it was current, the default record is. A null or
/// closed handle does nothing.
VANTO_API void Vnt_LfnFindClose(VNT_LFN_HFIND* handle);
/// Looks for `name` in the current directory, in the program's directory
/// and in each directory of the ";"-separated value of the environment
/// `variable` (library names; an entry beginning with "/" is a host
/// directory); the full name of the first hit goes to `buf` (null: the
/// default result buffer). An unset variable only skips its directories.
VANTO_API bool Vnt_LfnFileFindEnv(const char* variable, const char* name, char* buf);

/// The current find record: attributes, the low 32 bits of the length, the
/// packed last-write date and time (local time).
VANTO_API unsigned long Vnt_LfnFileAttr();
VANTO_API unsigned long Vnt_LfnFileLength();
VANTO_API std::uint16_t Vnt_LfnFileDate();
VANTO_API std::uint16_t Vnt_LfnFileTime();
/// Date in the high 16 bits, time in the low 16 bits.
VANTO_API unsigned long Vnt_LfnFileDateTime();
VANTO_API unsigned long Vnt_LfnFileTimep(unsigned long* out);
/// The current record's time and date unpacked (either may be null).
VANTO_API void Vnt_LfnFileTimeDate(VNT_TIME* time, VNT_DATE* date);
/// Copies the current record's long name into `buf` when given; returns the
/// record's own name.
VANTO_API const char* Vnt_LfnFileName(char* buf = nullptr);

// ---------------------------------------------------------------------------
// Attributes and times of a file
// ---------------------------------------------------------------------------

/// Stores 1 in `out` when the host gives a non-zero attribute word (its
/// failure value included), else 0; true in every case. A coarse test only.
VANTO_API bool Vnt_LfnFileAttrGet(const char* file, unsigned long* out);
/// Sets the attributes (on POSIX: read-only clears the write permissions,
/// its absence restores the owner's). False on failure.
VANTO_API bool Vnt_LfnFileAttrSet(const char* file, unsigned long attributes);
/// The last-write time of a file in local time (either may be null); false
/// when the file cannot be opened.
VANTO_API bool Vnt_LfnFileTimeGet(const char* file, VNT_TIME* time, VNT_DATE* date);
/// Sets the last-write time from local time, through the packed form (so
/// it reads back as set, seconds in steps of two); a null part is first read
/// from the file. Both null, a directory, or a file that cannot be opened
/// for writing: false.
VANTO_API bool Vnt_LfnFileTimeSet(const char* file, const VNT_TIME* time, const VNT_DATE* date);
/// The same with date high and time low in one value.
VANTO_API bool Vnt_LfnFileTimeGetp(const char* file, unsigned long* out);
VANTO_API bool Vnt_LfnFileTimeSetp(const char* file, unsigned long packed);

// ---------------------------------------------------------------------------
// Program directory and temporary names
// ---------------------------------------------------------------------------

/// Vnt_LfnProgDirName for the module that owns `window` (null: the program).
VANTO_API bool Vnt_LfnDirProgram(char* buf, std::size_t size, VNT_HWND window = nullptr);
/// "HHMMSS.tmp" (local time) in the program's "TEMP" directory, created when
/// missing (the program directory itself when it cannot be). Not tested for
/// existence: two calls in one second give the same name. False (buf
/// emptied) when the clock cannot be read.
VANTO_API bool Vnt_LfnTempFileName(char (&buf)[VNT_MAX_PATH]);

// ---------------------------------------------------------------------------
// Volumes
// ---------------------------------------------------------------------------

/// Kinds of volume.
enum VNT_LFN_VOL_TYPE : int {
    VNT_LFN_VOL_NONE = 0,
    VNT_LFN_VOL_REMOVABLE = 1,
    VNT_LFN_VOL_FIXED = 2,
    VNT_LFN_VOL_REMOTE = 4,
    VNT_LFN_VOL_CDROM = 8,
    VNT_LFN_VOL_RAMDISK = 16,
    VNT_LFN_VOL_FLOPPY_A = 256,
    VNT_LFN_VOL_FLOPPY_B = 257,
};

/// Replaces `buf` by its volume and tells whether that volume exists; a UNC
/// volume gives false.
VANTO_API bool Vnt_LfnVolName(char (&buf)[VNT_MAX_PATH]);
/// The known volumes "A:".."Z:" (no backslash), ended by an empty entry;
/// static, rebuilt by every call.
VANTO_API const VNT_PATH* Vnt_LfnVolList();
/// Free bytes of the volume, computed in 32 bits (larger volumes wrap). No
/// volume letter: 0; a volume the host cannot tell about: message 60000 and 0.
VANTO_API unsigned long Vnt_LfnVolFreeSpace(const char* volume);
/// As Vnt_LfnVolFind; a missing volume shows message 60000.
VANTO_API bool Vnt_LfnVolExists(const char* volume);
/// A:/a: 256, B:/b: 257, any other letter 2 (without asking the host,
/// kept for compatibility); no volume letter (UNC names too) 0.
VANTO_API VNT_LFN_VOL_TYPE Vnt_LfnVolType(const char* volume);
/// Whether `file` fits onto `volume`: message 34503 when the file is not
/// found (a search on the default record), 60001 when the volume has fewer
/// free bytes than its length (after 60000 when the volume cannot tell).
VANTO_API bool Vnt_LfnFileFitToVol(const char* volume, const char* file);

// ---------------------------------------------------------------------------
// Open and save dialogs (through the file-dialog port, vanto/ui/filedlg.h)
// ---------------------------------------------------------------------------

/// The record of the file dialogs.
struct VNT_LFN_DLGFSPEC {
    char file[VNT_MAX_PATH];     ///< full file name
    char vol[VNT_MAX_PATH];      ///< its volume
    char dir[VNT_MAX_PATH];      ///< its directory
    char title[VNT_MAX_PATH];    ///< the name without directory
    char ext[VNT_MAX_PATH];      ///< extension (in: the default; out: 3 characters)
    char dlgTitle[128];          ///< the dialog's title
    char filter[256];            ///< "Text|*.txt|All|*.*" or NUL-separated pairs
};

/// Runs the open (or save) dialog on the record (file, dir, ext as the
/// default extension, dlgTitle, filter: as below); after a confirmed dialog
/// the record is completed from the file name: dir and title split from it,
/// vol from dir, and ext the first three characters of the title's
/// extension, counted from its first dot. True when confirmed.
VANTO_API bool Vnt_LfnDlgOpen(VNT_LFN_DLGFSPEC* spec);
VANTO_API bool Vnt_LfnDlgSave(VNT_LFN_DLGFSPEC* spec);
/// The dialogs on separate buffers: `file` (260) in and out, `dir` (260 or
/// null) the initial directory and, afterwards, the file's directory (also
/// after a cancel). Without a directory (null or empty) the dialog starts
/// in the one last confirmed in a dialog of its kind; a directory that does
/// not exist is emptied (a lone "\" stays). `ext` the default extension;
/// `filter` "name|pattern|..." or lines "name\npattern\n...", or, with
/// neither "|" nor a line feed, the NUL-separated list ending in two NULs;
/// none: "*.ext" (or "*.*"). A file name the dialog refuses as invalid is
/// emptied and the dialog shown once more. True when confirmed.
VANTO_API bool Vnt_LfnDlgOpen(char* file, char* dir, const char* ext, const char* title, const char* filter);
VANTO_API bool Vnt_LfnDlgSave(char* file, char* dir, const char* ext, const char* title, const char* filter);
