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

#include "vanto/base.h"

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
