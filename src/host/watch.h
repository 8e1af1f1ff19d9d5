// Noticing changes by other writers. Paths here are host paths, as toHost
// gives them.
#pragma once

#include <cstdint>
#include <string>

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

/// The directory and the last name of a host path, in the host's own
/// grammar: "/a/b.ini" => "/a", "b.ini"; "/b.ini" => "/", "b.ini";
/// "b.ini" => ".", "b.ini"; on Win32 "C:\a\b.ini" => "C:\a", "b.ini" and
/// "C:\b.ini" => "C:\", "b.ini".
void hostPathSplit(const std::string& hostPath, std::string& dir, std::string& base);

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
