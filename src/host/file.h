// Files: reading, writing, copying, replacing, removing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "host/fault.h"

namespace vnt::host {

/// An open file. Move-only; closes itself.
class File {
public:
    File() = default;
    File(File&& o) noexcept : handle_(o.handle_), pos_(o.pos_), faultName_(std::move(o.faultName_)) { o.handle_ = kNoHandle; }
    File& operator=(File&& o) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(); }

    /// Opens for binary reading. False (lastError() says why) on failure.
    bool openRead(const char* libPath);
    bool isOpen() const { return handle_ != kNoHandle; }
    /// Reads up to n bytes; returns the count read (0 at the end or on error).
    std::size_t read(void* buf, std::size_t n);
    /// Reads at an absolute position without moving the file position.
    std::size_t readAt(void* buf, std::size_t n, std::uint64_t pos);
    /// Moves to an absolute position; false on failure.
    bool seek(std::uint64_t pos);
    /// Size of the file; -1 on failure.
    std::int64_t size();
    void close();

    // Writing and copying

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

    /// The host's handle of an open file (a descriptor on POSIX, a HANDLE
    /// on Win32), held as a number so that no host type shows here.
    using Handle = std::intptr_t;
    static constexpr Handle kNoHandle = -1;

private:
    Handle handle_ = kNoHandle;
    std::uint64_t pos_ = 0;  // kept here, so a seek costs no system call
    std::string faultName_;  // the name faults by name see; "" unless one is set
    void opened(Handle handle, const char* libPath);
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
/// Removes a file; false when it could not be removed.
bool removeFile(const char* libPath);
/// True when the name exists as a file (not a directory).
bool fileExists(const char* libPath);

}  // namespace vnt::host
