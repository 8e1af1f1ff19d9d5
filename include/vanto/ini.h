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

#include <cstddef>
#include <cstdint>
#include <string>

#include "vanto/base.h"
#include "vanto/vtm.h"

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
///  - an existing key's first line is replaced, keeping the file's own
///    spelling of the key (and of the section header); a new key goes after the
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
/// the file or not read back (invalid argument: a line end anywhere; "]" in
/// the section or "[" at its start; "=" in the key, "[" or ";" at its start;
/// an empty or blank section or key; null section or file; a file name of
/// VNT_MAX_PATH characters or more, which reads as a missing file).
///   ("A", "[X", "v") => false    ("A", ";x", "v") => false    ("A", "x[;", "v") => true
///   "" + ("A", "x", "1") => "[A]\r\nx=1\r\n"
///   "[A]\nx=1\n\n[B]\n" + ("a", "y", "2") => "[A]\r\nx=1\r\ny=2\r\n\r\n[B]\r\n"
///   "[Opt]\r\nMode=old\r\n" + ("oPT", "mODe", "x") => "[Opt]\r\nMode=x\r\n"
VANTO_API bool Vnt_ProfileWriteString(const char* section, const char* key, const char* value,
                                      const char* file);

/// Drops the cached state of `file` (null: of every file), so that the next
/// call reads it from disk. Writes are never held back, so there is nothing
/// to write out; returns true.
VANTO_API bool Vnt_ProfileFlush(const char* file);

// ---------------------------------------------------------------------------
// VntIni, the INI file engine, and VntIniX
// ---------------------------------------------------------------------------
//
// One VntIni stands for one INI file and one current section. Entries are
// read and written through the profile functions above or through
// an attached application profile; sections are enumerated, read line by
// line and rewritten through the engine's own line reader. A file whose
// extension is "vtm" is a message library whose messages are the lines of an
// INI text: VTM mode, read-only.
//
// File model: lines end in "\r\n" or "\n" (written: "\r\n"); a line holds at
// most 1023 characters, a longer one is delivered in pieces of 1023; lines
// are trimmed of blanks and tabs before they are looked at; "[" begins a
// header, which matches a section only when the whole trimmed line equals
// "[name]" without regard to case ("[Main] ;x" does not match Main); ";"
// begins a comment. One thread only.

/// Which standard file, and two access marks. -1 in an argument keeps the
/// current type; -2 goes back to the type's default file and section.
using VNTINI_TYPE = int32_t;
inline constexpr VNTINI_TYPE VNTINI_USER = 0x0001;       ///< "User.ini", section "Main"
inline constexpr VNTINI_TYPE VNTINI_APP = 0x0002;        ///< "App.vtm", section "Settings"
inline constexpr VNTINI_TYPE VNTINI_DAT = 0x0004;        ///< "Dat.ini", section "Settings"
inline constexpr VNTINI_TYPE VNTINI_APPRW = 0x0008;      ///< "AppRW.ini", section "Settings"
inline constexpr VNTINI_TYPE VNTINI_WINDIR = 0x0010;     ///< the system's configuration directory (here: the program directory)
inline constexpr VNTINI_TYPE VNTINI_ACCESS_RW = 0x0100;  ///< access mark, on at the start
inline constexpr VNTINI_TYPE VNTINI_ACCESS_RO = 0x0200;  ///< access mark, on for VTM files
inline constexpr VNTINI_TYPE VNTINI_KEEP = -1;
inline constexpr VNTINI_TYPE VNTINI_DEFAULT = -2;

/// The application's own profile, which an application may attach to a
/// VntIni instead of its file.
class VANTO_API VntAppProfile {
public:
    virtual ~VntAppProfile();
    /// The value of `entry` in `section`, or `def` when there is none.
    virtual std::string GetProfileString(const char* section, const char* entry, const char* def) = 0;
    /// Writes the value; a null value deletes the entry. False on failure.
    virtual bool WriteProfileString(const char* section, const char* entry, const char* value) = 0;
};

/// The library's default application profile: kept in the user file
/// (Vnt_IniUserFile) through the profile functions.
class VANTO_API VntUserFileProfile : public VntAppProfile {
public:
    std::string GetProfileString(const char* section, const char* entry, const char* def) override;
    bool WriteProfileString(const char* section, const char* entry, const char* value) override;
};

/// The application's profile: the one installed with Vnt_AppSetProfile, else
/// the library's default (VntUserFileProfile).
VANTO_API VntAppProfile& Vnt_AppProfile();
/// Installs the application's profile (null: the default again); returns the
/// previous one. The caller keeps ownership.
VANTO_API VntAppProfile* Vnt_AppSetProfile(VntAppProfile* profile);

namespace vnt::ini { struct Stream; }

/// A rectangle by position and size; the defaults of rectangle settings.
struct XYWH {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
};
static_assert(sizeof(XYWH) == 16 && offsetof(XYWH, width) == 8 && offsetof(XYWH, height) == 12);

/// A rectangle by its edges.
struct tagRECT {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};
static_assert(sizeof(tagRECT) == 16 && offsetof(tagRECT, right) == 8 && offsetof(tagRECT, bottom) == 12);

/// Marks a rectangle field as unset (the smallest 32-bit integer).
inline constexpr int32_t VNTINI_RECT_UNSET = INT32_MIN;

/// An INI file with a current section.
class VANTO_API VntIni {
public:
    /// Selects the file (null: the type's default file) and the section
    /// (null: the type's default section).
    VntIni(const char* file = nullptr, const char* section = nullptr, VNTINI_TYPE type = VNTINI_USER);
    virtual ~VntIni();  ///< Close(true)
    /// Copies every field. An open file or rewrite is shared with the copy
    /// (the last holder to close it commits); an open message library is
    /// not: the copy opens its own when it reads. Assignment closes the
    /// target's own file first, with commit.
    VntIni(const VntIni&);
    VntIni& operator=(const VntIni&);

    // Selection
    void Setup(const char* file, const char* section, VntAppProfile* app, VNTINI_TYPE type);
    void SetApp(VntAppProfile* app);
    void SetFile(const char* file, VNTINI_TYPE type);
    void SetSection(const char* section, int num = -1);
    /// "Recent" and 3 => "Recent3" in one static 80-byte buffer; num < 0 => name.
    static const char* NumEntry(const char* name, int num);
    const char* File() const { return file_; }
    const char* Section() const { return section_; }
    VNTINI_TYPE Type() const { return type_; }
    bool IsVtm() const { return vtm_; }
    /// True while a message library is open (VTM mode).
    bool IsOpenVtm() const { return vtmHandle_ != nullptr; }
    /// The line buffer: every line read or written and every value read.
    char* Line() { return line_; }

    // Opening and closing
    bool Open(const char* file = nullptr, VNTINI_TYPE type = VNTINI_KEEP, bool report = true);
    /// Ends reading or writing; with `commit` a rewrite replaces the file
    /// (asking with messages 60500 and 60501 when that fails), without it the
    /// old file stays untouched.
    void Close(bool commit = true);
    void Flush();

    // Entry access
    int ReadStr(const char* entry, const char* def, char* buf, unsigned size, int num = -1);
    bool WriteStr(const char* entry, const char* value, int num = -1, bool quote = false,
                  const char* def = nullptr);

    // Typed values. Numbers in text: "$1F" and "0x1F" are hexadecimal (31),
    // anything else decimal after leading blanks, up to the first non-digit
    // ("12ab" => 12, "abc" => 0); hexadecimal is taken as 32 bits
    // ("$FFFFFFFF" => -1). Every read asks with its default's text, so a
    // missing entry gives the default; every write deletes the entry when
    // the value equals its default. Number texts and the rectangle read are
    // one library-wide buffer each, overwritten by the next call.

    /// The number of `entry`, or `def` when missing: "$ff", "0XFF", "255" => 255; "abc" => 0.
    long ReadInt(const char* entry, long def, int num = -1);
    /// ReadInt(null, def, -1): no entry name (in VTM mode: the next line).
    long ReadInt(long def);
    /// Writes `value` in decimal; deletes the entry when `value` == `def`.
    bool WriteInt(const char* entry, long value, int num = -1, long def = 0);
    /// The decimal value of `entry` rounded to `decimals` places ("," or "."
    /// as the decimal point, see vanto/amount.h) into `out`; `def` when the
    /// entry is missing or empty.
    void ReadFloat(const char* entry, double def, double& out, int decimals, int num = -1);
    /// Writes `value` with `decimals` places and the locale's decimal
    /// character; deletes the entry when `value` does not differ from `def`
    /// (a NaN included).
    bool WriteFloat(const char* entry, double value, int decimals, int num = -1, double def = 0.0);
    /// The rectangle of the text "x, y, width, height" (parts split at
    /// commas, blanks and tabs; a part that is no number counts 0; missing
    /// parts keep the default's): "10, 20, 100, 50" => {10, 20, 110, 70}.
    /// Without a value, `def` as a rectangle; without `def` fields are
    /// VNTINI_RECT_UNSET. Points to one library-wide rectangle.
    tagRECT* ReadRect(const char* entry, const XYWH* def = nullptr, int num = -1);
    /// Writes "x, y, width, height", a negative size as 0: {10, 20, 5, 30}
    /// => "10, 20, 0, 10". Deletes the entry when `def` equals all four.
    /// A null `rect` writes nothing: false, invalid argument.
    bool WriteRect(const char* entry, const tagRECT* rect, int num = -1, const XYWH* def = nullptr);
    /// The colour red | green << 8 | blue << 16 of the text "red, green,
    /// blue" (missing parts 0): "10,20" => 0x140A. An empty value gives
    /// `defText`'s colour, or `def` when there is no `defText`.
    unsigned long ReadColor(const char* entry, const char* defText = nullptr, unsigned long def = 0,
                            int num = -1);
    /// Writes " r, r, r" of the red part only (0x1E140A => " 10, 10, 10",
    /// a grey; kept for compatibility). Deletes the entry when the text
    /// equals `defText`, or when `def` is not 0xFFFFFFFF and `color` == `def`.
    bool WriteColor(const char* entry, unsigned long color, int num = -1, const char* defText = nullptr,
                    unsigned long def = 0xFFFFFFFF);

    // Line access
    bool SectionFind(const char* section);
    bool SectionFirst(char (*name)[100] = nullptr);
    bool SectionNext(char (*name)[100] = nullptr);
    bool ReadStr(char* buf, unsigned size);
    const char* ReadString(const char* def, char* buf, unsigned size);
    long CountEntries();
    bool WriteBuf();
    bool SectionWriteBegin(const char* section = nullptr);
    void SectionWriteEnd(bool commit = true);
    static bool SectionNameMake(char (&name)[100], const char* src);
    static void SectionNameClean(char* name, char** start = nullptr, unsigned* length = nullptr);

    // Data exchange
    virtual void DoDataExchange(bool write);
    void Read();
    bool Write();

    // DX: one member of a settings class for DoDataExchange; reads when
    // `write` is false, writes when it is true. A failing write throws the
    // int 0, which Write() catches. The text forms write without a default
    // (only an empty text deletes); the number forms write with theirs, so
    // an unchanged member is removed from the file.

    /// ReadStr(entry, def, buf, size, num) / WriteStr(entry, buf, num, quote).
    void DX(bool write, const char* entry, char* buf, unsigned size, const char* def = nullptr, int num = -1,
            bool quote = false);
    /// As the buffer form, through the line buffer.
    void DX(bool write, const char* entry, std::string& value, const char* def = nullptr, int num = -1,
            bool quote = false);
    /// ReadInt / WriteInt(entry, value, num, def).
    void DX(bool write, const char* entry, long& value, long def = 0, int num = -1);
    void DX(bool write, const char* entry, int& value, int def = 0, int num = -1);
    /// ReadFloat / WriteFloat(entry, value, decimals, num, 0.0): written
    /// values are compared with 0.0, not with `def`.
    void DX(bool write, const char* entry, double& value, double def, int decimals, int num = -1);
    /// Read: cut to 16 bits.
    void DX(bool write, const char* entry, short& value, short def = 0, int num = -1);
    /// Read: any number but 0 is true. Write: 0 or 1.
    void DX(bool write, const char* entry, bool& value, bool def = false, int num = -1);
    /// ReadRect / WriteRect(entry, &value, num, def).
    void DX(bool write, const char* entry, tagRECT& value, const XYWH* def = nullptr, int num = -1);
    /// ReadColor / WriteColor(entry, color, num, defText, def).
    void DX(bool write, const char* entry, unsigned long& color, const char* defText,
            unsigned long def = 0xFFFFFFFF, int num = -1);

    // Token lists in the line buffer. Read a value first (ReadStr, a raw
    // line), then take its items; build a value with TokenSet* and write
    // the line buffer (WriteStr, WriteBuf). Readers skip leading blanks and
    // tabs, end an item at the first separator and drop its trailing blanks
    // and tabs; an empty item gives the default; they return the item (in
    // the line buffer) or null when the list is used up:
    //   "a,,b" => "a", def, "b", null        "$1F, 0x1F" => 31, 31

    /// With `c` not 0 the separators become `c` alone; returns the first separator.
    char TokenSeparator(char c = 0);
    /// null: returns the set; "": back to ",\t\n"; else replaces the set, or
    /// with `append` adds to it (31 characters at most in all).
    const char* TokenSeparators(const char* set = nullptr, bool append = false);
    /// The first item (after the first "=" with `afterEquals`) into `buf`, or `def`.
    char* TokenFirst(const char* def, char* buf, unsigned size, bool afterEquals = false);
    /// The first item as a number into *out, or `def` when empty or missing.
    char* TokenFirst(long def, long* out, bool afterEquals = false);
    char* TokenFirst(int def, int* out, bool afterEquals = false);
    /// The next item, as TokenFirst.
    char* TokenNext(const char* def, char* buf, unsigned size);
    char* TokenNext(long def, long* out);
    char* TokenNext(int def, int* out);
    /// Empties the line buffer and appends an item, as TokenSetNext.
    bool TokenSetFirst(const char* text, int width = -1);
    bool TokenSetFirst(long value, int width = -1);
    /// Appends an item (a text, or a number in decimal). `width` < 0: the
    /// item alone (the last of a list); 0: item, separator and a blank;
    /// above 0: item and separator padded with blanks to `width` + 1.
    /// False, the buffer unchanged, when the item (or `width` + 1) would not
    /// leave room in the 1024-byte buffer.
    ///   TokenSetFirst("A", 0), TokenSetNext(12L, 3), TokenSetNext("B", -1) => "A, 12, B"
    bool TokenSetNext(const char* text, int width = -1);
    bool TokenSetNext(long value, int width = -1);

protected:
    bool ini_open(const char* file, VNTINI_TYPE type, bool report, bool forWriting);
    bool open_for_writing(const char* file);
    bool section_find(const char* name, char (*out)[100], bool enumerate, bool fromTop);
    bool entry_find(const char* entry);
    int profile_string(const char* entry, const char* def);
    bool read_buf(bool trim);
    /// Lets go of both streams; an output is written out, nothing replaced.
    void release_streams();
    /// Behind TokenFirst and TokenNext: delimits the item and delivers it
    /// as text (buf) or number (out).
    char* token_next(bool first, char* buf, unsigned size, long* out, const char* def, long defNum,
                     bool afterEquals);
    /// Behind TokenSetFirst and TokenSetNext.
    bool token_set_next(bool first, const char* text, long value, int width);

    char file_[VNT_MAX_PATH];        ///< full name of the file
    char section_[100];              ///< current section, bare
    VNTINI_TYPE type_;               ///< file type and access marks
    VntAppProfile* app_;             ///< attached application profile, or null
    char line_[1024];                ///< the line buffer
    char* tokenCursor_;              ///< current token in line_
    char tokenSeps_[32];             ///< token separators
    char* tokenNext_;                ///< where the next token begins, or null
    vnt::ini::Stream* stream_;       ///< the file read, or the output of a rewrite
    vnt::ini::Stream* input_;        ///< during a rewrite: the old file
    char temp_[VNT_MAX_PATH];        ///< the rewrite's temporary file
    bool badName_;                   ///< the file name given did not fit file_: no access
    bool vtm_;                       ///< the file is a message library
    long vtmPos_;                    ///< message the next line read takes (0 first, -1 next)
    long vtmSection_;                ///< message of the current section's header (-2: none found)
    long vtmLast_;                   ///< message read last in VTM mode
    VNT_MSG vtmHandle_;              ///< the open message library in VTM mode
};

/// VntIni with raw line and whole-section access.
class VANTO_API VntIniX : public VntIni {
public:
    VntIniX(const char* file = nullptr, const char* section = nullptr, VNTINI_TYPE type = VNTINI_USER);
    ~VntIniX() override;
    bool IsOpen() const;
    bool OpenWrite(const char* file = nullptr);
    /// The next line, trimmed, comments and headers included.
    bool ReadRawLine(char* buf, int size);
    /// Reads raw lines until a header or the end and always returns false
    /// (kept for compatibility: callers use ReadRawLine).
    bool ReadLine(char* buf, int size);
    void ReadSection(char* buf, int size, const char* section = nullptr);
    bool WriteSection(const char* text, const char* section = nullptr);
};

// ---------------------------------------------------------------------------
// The standard files
// ---------------------------------------------------------------------------

/// The application settings directory (program directory\INI), created if
/// missing; copied into *dst when given.
VANTO_API const char* Vnt_IniAppPath(char (*dst)[VNT_MAX_PATH] = nullptr);
/// The user directory (program directory\USR\<user>, "Std" while no user
/// is set; "USR" and "UsrStd" of the application file can rename them),
/// created in every call.
VANTO_API const char* Vnt_IniUserPath(char (*dst)[VNT_MAX_PATH] = nullptr);
/// The data directory (the application's data path).
VANTO_API const char* Vnt_IniDatPath(char (*dst)[VNT_MAX_PATH] = nullptr);
/// Directory + (`name` or the standard name) of each standard file.
VANTO_API char* Vnt_IniAppFile(char (&dst)[VNT_MAX_PATH], const char* name = nullptr);
VANTO_API char* Vnt_IniAppRWFile(char (&dst)[VNT_MAX_PATH], const char* name = nullptr);
VANTO_API char* Vnt_IniUserFile(char (&dst)[VNT_MAX_PATH], const char* name = nullptr);
VANTO_API char* Vnt_IniDatFile(char (&dst)[VNT_MAX_PATH], const char* name = nullptr);
/// Sets the current user (null only reads it) and forgets the user directory.
VANTO_API const char* Vnt_IniUser(const char* user);
/// `entry` of `section` (null: "Settings") of the application file.
VANTO_API const char* Vnt_IniAppValue(const char* entry, const char* def, char* buf, unsigned size,
                                      const char* section = nullptr);
VANTO_API long Vnt_IniAppValue(const char* entry, long def, const char* section = nullptr);
