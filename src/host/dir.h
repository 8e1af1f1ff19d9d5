// Directories: creating, listing, removing; the status, attributes and
// times of names; free space.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/time.h"

namespace vnt::host {

/// Creates one directory; true when it exists as a directory afterwards.
bool makeDir(const char* libPath);
/// Creates a directory and every missing directory above it.
bool makeDirs(const char* libPath);

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

}  // namespace vnt::host
