// The host layer: the only code that talks to the operating system.
//
// Paths handed in and out are library paths (backslashes, "X:" volumes,
// Windows-1252); the host converts them at this boundary. The interface uses
// no operating-system types so that a Win32 host can stand beside the POSIX
// one without touching its callers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "host/error.h"
#include "host/fault.h"

namespace vnt::host {

// ---------------------------------------------------------------------------
// Volumes, current directory and path conversion
// ---------------------------------------------------------------------------

/// Maps a letter (A-Z, either case) to a host directory (UTF-8, must exist).
bool volMap(char letter, const char* hostDir);
/// Removes a mapping; false if there was none.
bool volUnmap(char letter);
/// True if the letter is mapped to a directory that exists now.
bool volKnown(char letter);

/// Current directory as a library path ("Z:\work\main").
std::string curDir();
/// The remembered current directory of a volume ("C:\" when it has none
/// yet); empty for an unmapped letter.
std::string volCurDir(char letter);
/// Makes `libPath` (absolute: "X:\..." after completion) the current
/// directory of its volume and that volume current. False if it does not
/// exist as a directory or cannot be represented.
bool setCurDir(const std::string& libPath);

/// Library path -> host path (UTF-8). Relative names are taken against the
/// current directory; components that do not exist as written are matched
/// without regard to case. False: unmapped volume, UNC name, a name not
/// representable on the host.
bool toHost(const char* libPath, std::string& hostPath);
/// Host path -> library path through the volume holding it (longest mapping).
bool fromHost(const char* hostPath, std::string& libPath);

// ---------------------------------------------------------------------------
// Files
// ---------------------------------------------------------------------------

/// An open file. Move-only; closes itself.
class File {
public:
    File() = default;
    File(File&& o) noexcept : fd_(o.fd_), pos_(o.pos_), faultName_(std::move(o.faultName_)) { o.fd_ = -1; }
    File& operator=(File&& o) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(); }

    /// Opens for binary reading. False (lastError() says why) on failure.
    bool openRead(const char* libPath);
    bool isOpen() const { return fd_ >= 0; }
    /// Reads up to n bytes; returns the count read (0 at the end or on error).
    std::size_t read(void* buf, std::size_t n);
    /// Reads at an absolute position without moving the file position.
    std::size_t readAt(void* buf, std::size_t n, std::uint64_t pos);
    /// Moves to an absolute position; false on failure.
    bool seek(std::uint64_t pos);
    /// Size of the file; -1 on failure.
    std::int64_t size();
    void close();

    // Writing and copying (src/host/posix/host_copy.cpp)

    /// Opens for binary writing: created when missing, truncated when not.
    bool openWrite(const char* libPath);
    /// Writes all `n` bytes at the file position; false on failure.
    bool write(const void* buf, std::size_t n);
    /// Which side of copyFrom failed.
    enum class CopyFail { None, Read, Write };
    /// Copies up to `n` bytes from `src`'s position to this file's position,
    /// inside the host where it can (no pass through the caller), else
    /// through `buf` (at least `n` bytes). Returns the bytes copied; 0 with
    /// `fail` None is the end of the source. Read and Write faults apply.
    std::size_t copyFrom(File& src, void* buf, std::size_t n, CopyFail& fail);
    /// Gives this file the last-write time of `other` (to the nanosecond).
    bool copyTimeFrom(File& other);
    /// Tells the host the file will be read once from start to end.
    void adviseSequential();
    /// Reserves `size` bytes for a file about to be written (a hint: false
    /// when the host cannot, which changes nothing).
    bool reserve(std::uint64_t size);
    /// Opens a new file that is to replace `targetLibPath`: created under a
    /// temporary name of this process beside it (".<name>.<pid>.<n>.tmp",
    /// see removeStaleTemps), with the target's permissions when it exists.
    /// `tempLibPath` receives its library path, to be renamed over the
    /// target once complete. Fails (Op::Open faults apply) like openWrite
    /// would on the target: a target that may not be written is refused.
    bool openReplacement(const char* targetLibPath, std::string& tempLibPath);
    /// Writes the file's data through to the disk; false on failure.
    bool sync();

private:
    int fd_ = -1;
    std::uint64_t pos_ = 0;  // kept here, so a seek costs no system call
    std::string faultName_;  // the name faults by name see; "" unless one is set
    void opened(int fd, const char* libPath);
    const char* faultName() const { return faultName_.empty() ? nullptr : faultName_.c_str(); }
};

/// Renames a file, replacing `to` when it exists (Op::Rename faults apply).
bool renameFile(const char* fromLibPath, const char* toLibPath);
/// Which side of replaceFile failed.
enum class ReplaceFail { None, Target, Rename };
/// Puts `fromLibPath` in the place of `toLibPath` in one step: at every
/// moment `to` is either the old file or the new one (POSIX rename; Win32
/// ReplaceFile). `fail` says whether the old file could not be given up
/// (Target: Op::Remove faults, a busy or protected target or directory) or
/// the new one not moved (Rename: Op::Rename faults, any other error).
bool replaceFile(const char* fromLibPath, const char* toLibPath, ReplaceFail& fail);


// ---------------------------------------------------------------------------
// The terminal
// ---------------------------------------------------------------------------

/// True when standard error and standard input are both a terminal, so a
/// question can be asked there.
bool interactiveTerminal();
/// Writes UTF-8 text to standard error.
void writeStderr(const std::string& utf8);
/// Reads one line (without its end) from standard input; false at its end.
bool readLine(std::string& line);

// ---------------------------------------------------------------------------
// The program
// ---------------------------------------------------------------------------

/// Library path of the running program's file ("Z:\opt\acme\App");
/// empty when it cannot be told.
std::string programFile();
/// Makes programFile() answer `libPath` ("" = the real one again). For tests
/// and for programs whose files lie elsewhere than their executable.
void setProgramFile(const std::string& libPath);
/// Library path of the file that holds this library's code (the shared
/// library, or the program it is linked into); empty when it cannot be told.
std::string libraryFile();
/// Makes libraryFile() answer `libPath` ("" = the real one again). For tests.
void setLibraryFile(const std::string& libPath);
/// Writes "<program>: exit code <code>: <reason>" as one line to standard
/// error (line ends in `reason` become spaces; Windows-1252 in). Said by
/// the library before it ends the process with a failure code, so that a
/// program without a terminal never ends silently.
void writeExitReason(int code, const std::string& reason);

/// Loaded module libraries (src/host/posix/host_module.cpp). A module
/// handle is what the host's loader gave (dlopen on POSIX).
/// Loads a library by host name or path; null on failure (Op::Load faults
/// apply; errorText of lastError() or moduleError() tells why).
void* moduleOpen(const std::string& hostName);
void moduleClose(void* handle);
/// The loader's description of the last failure.
std::string moduleError();
/// Library path of a loaded module's file; empty when it cannot be told.
std::string moduleFile(void* handle);

// ---------------------------------------------------------------------------
// The local clock (src/host/posix/host_clock.cpp)
// ---------------------------------------------------------------------------

/// A moment of the local clock, broken down.
struct LocalTime {
    int year = 0, month = 0, day = 0;     // 1-based month and day
    int hour = 0, minute = 0, second = 0;
    int millisecond = 0;
    int weekday = 0;                      // 1 Monday .. 7 Sunday
};
/// The local date and time now (the fixed moment while one is set).
LocalTime localNow();
/// Makes localNow() answer `t` from now on; null: the real clock again.
/// For tests, so that "today" is the same on every run.
void setClock(const LocalTime* t);
/// Milliseconds of a monotonic clock (unaffected by setClock).
std::int64_t tickMs();

// ---------------------------------------------------------------------------
// National conventions (src/host/posix/host_intl.cpp)
// ---------------------------------------------------------------------------

/// One value of the system's "intl" settings, by its conventional key
/// ("iCurrDigits", "iCountry", "sDecimal", "sThousand", "sTime",
/// "sCurrency", "sLanguage", "sShortDate"), taken from the process's locale
/// environment (LC_ALL, LC_<category>, LANG) in Windows-1252. False when the
/// environment does not say (no locale set, the "C"/"POSIX" locale's date
/// format, an unknown key).
bool intlValue(const char* key, std::string& value);
/// The operating system's version as major * 100 + minor (kernel 6.1: 601).
unsigned osVersion();

/// Restores the whole host state to its start (volume table, current
/// directories, faults, the disk-full count, watches, the last error, the
/// clock). For tests.
void reset();

}  // namespace vnt::host

// ---------------------------------------------------------------------------
// Whole files, directories, the desktop's opener and waiting
// (src/host/posix/host_io.cpp)
// ---------------------------------------------------------------------------

namespace vnt::host {

/// Reads the whole file into `data`. False on failure; `missing`, when given,
/// tells whether the failure was that the file does not exist.
bool readFile(const char* libPath, std::string& data, bool* missing = nullptr);
/// Writes `data` as the whole file: into a temporary file in the same
/// directory, flushed to the disk, then renamed over the target, so that the
/// target is either the old or the new file. The temporary file is removed
/// on failure; those of writers that died are removed first
/// (removeStaleTemps).
bool writeFileAtomic(const char* libPath, const std::string& data);
/// Removes from the host directory the temporary files that writers of this
/// library left when their process died: names ".<name>.<pid>.<n>.tmp"
/// whose process no longer runs. Returns how many went.
int removeStaleTemps(const std::string& hostDir);
/// Creates one directory; true when it exists as a directory afterwards.
bool makeDir(const char* libPath);
/// Creates a directory and every missing directory above it.
bool makeDirs(const char* libPath);
/// Removes a file; false when it could not be removed.
bool removeFile(const char* libPath);
/// True when the name exists as a file (not a directory).
bool fileExists(const char* libPath);
/// Opens a document with the desktop's opener ("xdg-open" found on PATH);
/// does not wait for it. False when there is no opener or it cannot start.
bool openDocument(const char* libPath);
/// Sleeps `ms` milliseconds. (A wait that serves the windows is the
/// application frame's Vnt_Delay.)
void sleepMs(long ms);

}  // namespace vnt::host

// ---------------------------------------------------------------------------
// Noticing changes by other writers (src/host/posix/host_watch.cpp).
// Paths here are host paths, as toHost gives them.
// ---------------------------------------------------------------------------

namespace vnt::host {

/// What a change check compares: modification time, size and file identity.
/// A missing file has the stamp {} (size -1).
struct FileStamp {
    std::int64_t mtimeNs = 0;
    std::int64_t size = -1;
    std::uint64_t inode = 0;
    std::uint64_t device = 0;
    bool operator==(const FileStamp&) const = default;
};
/// The stamp of a host path; a missing or unreadable name gives {}.
FileStamp fileStamp(const std::string& hostPath);

/// Starts watching the host directory for files there being written,
/// created, removed or moved in or out. Returns a watch id above 0 (the same
/// id for a directory already watched), or 0 when the host cannot notify
/// (no notification service, the directory missing, the watch limit hit).
int watchDir(const std::string& hostDir);
/// One notification: `name` is the file's name in the watched directory;
/// `gone` says the watch itself ended (directory removed or moved), and
/// `overflow` that notifications were lost (id 0: any directory).
struct WatchEvent {
    int id = 0;
    std::string name;
    bool gone = false;
    bool overflow = false;
};
/// Collects the notifications that are pending, without waiting; `sink`
/// is called once for each. Costs one system call when nothing is pending.
void watchDrain(void (*sink)(const WatchEvent&, void*), void* ctx);
/// Ends every watch and the notification service (for tests).
void watchReset();


}  // namespace vnt::host

// ---------------------------------------------------------------------------
// Directory listings, file status and times, attributes, removing
// directories, free space and the environment (src/host/posix/host_find.cpp)
// ---------------------------------------------------------------------------

#include <vector>

namespace vnt::host {

/// Attribute bits of the platform word (as the find record carries them).
inline constexpr unsigned long kAttrReadOnly = 0x01;
inline constexpr unsigned long kAttrHidden = 0x02;
inline constexpr unsigned long kAttrDirectory = 0x10;
inline constexpr unsigned long kAttrArchive = 0x20;
/// The attribute word of a name that cannot be read.
inline constexpr unsigned long kAttrInvalid = 0xFFFFFFFFul;

/// One directory entry or file with what a search reports of it. On POSIX:
/// directory from the file type, read-only when the owner may not write,
/// hidden for names beginning with ".", archive for plain files.
struct DirEntry {
    std::string name;              ///< Windows-1252, no directory part
    unsigned long attributes = 0;  ///< kAttr* bits
    std::uint64_t size = 0;        ///< bytes (0 for directories)
    LocalTime modified;            ///< last write, local time
};

/// Lists the directory `libDir` (relative names against the current
/// directory; "" is the current directory itself). Every entry the host
/// gives, "." and ".." included, whose name has a Windows-1252 form and
/// that `want` (may be null) accepts, in the host's order. An entry that
/// vanishes while it is looked at is left out. False (Op::List faults
/// apply) when the directory cannot be read.
bool listDir(const char* libDir, bool (*want)(const std::string& name, void* ctx), void* ctx,
             std::vector<DirEntry>& out);
/// The entry of one name, with the name as it is on disk (Op::Stat faults
/// apply); false when it does not exist or cannot be read.
bool fileInfo(const char* libPath, DirEntry& out);
/// The attribute word of a name, kAttrInvalid when it cannot be read
/// (Op::Stat faults apply).
unsigned long fileAttributes(const char* libPath);
/// Sets the attributes: read-only clears every write permission, its
/// absence gives the owner's back; the other bits have no POSIX form and
/// are ignored (Op::Write faults apply).
bool setFileAttributes(const char* libPath, unsigned long attributes);
/// Last-write time of a file opened for reading, in local time; false for
/// a directory or a file that cannot be opened (Op::Open faults apply).
bool fileWriteTime(const char* libPath, LocalTime& out);
/// Sets only the last-write time of a file opened for writing, from local
/// time (a time that falls into a daylight-saving gap is moved as the C
/// library's mktime moves it). False for a directory, a file that cannot be
/// opened for writing (Op::Open faults apply) or a time the host cannot hold.
bool setFileWriteTime(const char* libPath, const LocalTime& t);
/// Removes an empty directory (Op::Remove faults apply).
bool removeDir(const char* libPath);
/// Free blocks available to the program and their size on the volume
/// `letter` (Op::Stat faults apply); false for an unknown volume.
bool freeSpace(char letter, std::uint64_t& blocks, std::uint64_t& blockSize);
/// The value of an environment variable in Windows-1252; false when it is
/// not set or has no Windows-1252 form.
bool envValue(const char* name, std::string& value);

}  // namespace vnt::host

// ---------------------------------------------------------------------------
// The terminal for drawing (src/host/posix/host_term.cpp)
// ---------------------------------------------------------------------------

namespace vnt::host {

/// True when standard error is a terminal (a line may be redrawn in place).
bool stderrTerminal();

}  // namespace vnt::host

// ---------------------------------------------------------------------------
// Ending the process (src/host/posix/host_exit.cpp)
// ---------------------------------------------------------------------------

namespace vnt::host {

/// Ends the process with `code` after flushing written data; exit handlers
/// and the destructors of static objects run. Does not return.
[[noreturn]] void exitProcess(int code);

}  // namespace vnt::host

// ---------------------------------------------------------------------------
// Module libraries by library name (src/host/posix/host_module.cpp) and
// starting programs (src/host/posix/host_spawn.cpp)
// ---------------------------------------------------------------------------

namespace vnt::host {

/// Loads the module library `libName` (a library path, or a bare name for
/// the host's library search): "x.dll" (or "x", "x.so") is tried as "x.so",
/// then as "libx.so", in the same directory. Null on failure (Op::Load
/// faults apply) with lastError() NotFound when no candidate exists,
/// NotLoadable when one exists but did not load, and moduleError() the
/// loader's text.
void* moduleLoad(const char* libName);
/// The library names moduleLoad tries for `libName`, in its order
/// ("Z:\m\x.dll" => "Z:\m\x.so", "Z:\m\libx.so"); empty without a file part.
std::vector<std::string> moduleFileNames(const char* libName);
/// The address of the exported symbol `name` of a loaded module, or null;
/// `size`, when given, receives the symbol's size (0 when not told).
void* moduleSymbol(void* handle, const char* name, std::size_t* size = nullptr);

/// Starts the program `libPath` without waiting, with the argument text
/// `args` (split at blanks and tabs, double quotes grouping), in the working
/// directory `libWorkDir` (null or "": the current one). A bare name is
/// looked for on PATH. "x.exe" that does not exist is tried as "x". A file
/// that is not executable is opened with the desktop's opener
/// (openDocument). False with lastError() set when it cannot start (Op::Load
/// faults apply).
bool startProgram(const char* libPath, const char* args, const char* libWorkDir);

}  // namespace vnt::host
