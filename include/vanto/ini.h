// vanto/ini.h - configuration files.
//
// The profile functions: the library's own reading and writing of INI files
// ("[Section]" lines, "key=value" lines, ";" comments), the same on every
// host. File names are library paths (see vanto/lfn.h).
//
// Reading:
//   - section and key names are compared without regard to case and trimmed
//     of blanks and tabs: "[ main ]" is the section "Main", " Size =" the
//     key "size";
//   - a value is trimmed, and a value standing in matching outer double or
//     single quotes is delivered without them: a=" x " reads ` x `;
//   - there are no comments behind a value: a=1 ;x reads "1 ;x";
//   - the first matching section, and in it the first matching key, wins;
//   - a file that does not exist reads as empty; lines may end in CR LF, LF
//     or CR.
// Writing replaces the whole file through a temporary file beside it and a
// rename, so the file is always either the old or the new one; every line
// is written with CR LF, and lines without "=" (comments too) stay as they
// were. Writing a value the file holds already writes nothing.
//
// Parsed files are cached; changes by other writers are noticed through the
// host's file-change notification, or by the file's time, size and identity
// where there is none. None of these functions may be called from a second
// thread.
#pragma once

#include "vanto/base.h"

/// Reads a value, or a list of names, into `buf` of `size` bytes.
///  - section and key given: the value, or `def` (null: "") with its
///    trailing blanks removed when the key or file is missing. Returns the
///    length copied; a value too long for the buffer is cut, terminated, and
///    the result is `size` - 1.
///  - section null: the names of all sections; key null: the names of all
///    keys of the section (each in the file's spelling, each name once). Each
///    name is NUL-terminated and the list ends in a second NUL. Returns the
///    length without the final NUL; a list too long is cut, ended by two
///    NULs, and the result is `size` - 2.
/// `size` 0 writes nothing and returns 0.
///   "[A]\r\nx = 'v'\r\n": ("a", "X", "d") => "v", 1    ("a", "y", "d ") => "d", 1
///   (null, null) => "A\0\0", 2    ("A", null) => "x\0\0", 2
///   ("a", "x", ..., buf, 1) => "", 0
VANTO_API unsigned long Vnt_ProfileGetString(const char* section, const char* key, const char* def,
                                             char* buf, unsigned long size, const char* file);

/// Reads a value as a whole number: an optional sign and the leading digits,
/// so "42A9" is 42 and "-7" is -7; a value without leading digits is 0. A
/// missing or empty value gives `def`. Numbers beyond the range of long are
/// clamped.
VANTO_API long Vnt_ProfileGetInt(const char* section, const char* key, long def, const char* file);

/// Writes `key`=`value` into `section`:
///  - an existing key's first line is replaced; a new key goes after the
///    section's last entry (before the blank lines that end it); a new
///    section goes at the end of the file; a missing file is created (its
///    directory must exist);
///  - `value` null deletes the key (every line of it in the first section of
///    that name, the one reads see); `key` null deletes the section (every
///    section of that name, with all its lines, comments too);
///  - deleting what is not there, or writing the value there already,
///    leaves the file untouched and returns true.
/// False, with the host's last error set and the file unchanged byte for
/// byte, when the file cannot be read or replaced, or when a name would break
/// the file (a line end anywhere; "]" in the section; "=" in the key; an empty
/// or blank section or key; null section or file).
///   "" + ("A", "x", "1") => "[A]\r\nx=1\r\n"
///   "[A]\nx=1\n\n[B]\n" + ("a", "y", "2") => "[A]\r\nx=1\r\ny=2\r\n\r\n[B]\r\n"
VANTO_API bool Vnt_ProfileWriteString(const char* section, const char* key, const char* value,
                                      const char* file);

/// Drops the cached state of `file` (null: of every file), so that the next
/// call reads it from disk. Writes are never held back, so there is nothing
/// to write out; returns true.
VANTO_API bool Vnt_ProfileFlush(const char* file);
