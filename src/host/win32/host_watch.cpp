// The Win32 host: change notification through ReadDirectoryChangesW, one
// overlapped read per watched directory, and the time-size-identity stamp.
#include "host/win32/host_call.h"

#include <map>
#include <memory>
#include <vector>

namespace vnt::host {
namespace {

constexpr DWORD kNotify = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE |
                          FILE_NOTIFY_CHANGE_SIZE;

struct Watch {
    HANDLE dir = INVALID_HANDLE_VALUE;  // the directory, opened for overlapped reads of its changes
    HANDLE done = nullptr;              // signalled when the pending read completed
    OVERLAPPED ov{};
    alignas(DWORD) char buf[16384];     // FILE_NOTIFY_INFORMATION records
    ~Watch() {
        if (dir != INVALID_HANDLE_VALUE) {
            ::CancelIo(dir);
            ::CloseHandle(dir);
        }
        if (done) ::CloseHandle(done);
    }
    bool arm() {
        ::ResetEvent(done);
        ov = OVERLAPPED{};
        ov.hEvent = done;
        return ::ReadDirectoryChangesW(dir, buf, sizeof buf, FALSE, kNotify, nullptr, &ov, nullptr) != 0;
    }
};

struct WatchState {
    int next = 1;                                 // the next watch id
    std::map<std::string, int> byDir;             // watched directory -> watch id
    std::map<int, std::unique_ptr<Watch>> byId;   // watch id -> its read
};

WatchState& wstate() {
    static WatchState s;
    return s;
}

void forget(WatchState& w, int id) {
    w.byId.erase(id);
    for (auto it = w.byDir.begin(); it != w.byDir.end();) it = it->second == id ? w.byDir.erase(it) : std::next(it);
}

constexpr std::int64_t kUnixEpochAsFileTime = 116444736000000000LL;  // 1970-01-01 in 100 ns since 1601

}  // namespace

FileStamp fileStamp(const std::string& hostPath) {
    std::wstring w;
    if (!toWide(hostPath, w)) return {};
    HANDLE h = ::CreateFileW(w.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (h == INVALID_HANDLE_VALUE) return {};
    BY_HANDLE_FILE_INFORMATION info;
    const bool ok = ::GetFileInformationByHandle(h, &info);
    ::CloseHandle(h);
    if (!ok) return {};
    FileStamp s;
    const std::int64_t ft = static_cast<std::int64_t>(static_cast<std::uint64_t>(info.ftLastWriteTime.dwHighDateTime) << 32 |
                                                      info.ftLastWriteTime.dwLowDateTime);
    s.mtimeNs = (ft - kUnixEpochAsFileTime) * 100;
    s.size = static_cast<std::int64_t>(static_cast<std::uint64_t>(info.nFileSizeHigh) << 32 | info.nFileSizeLow);
    s.inode = static_cast<std::uint64_t>(info.nFileIndexHigh) << 32 | info.nFileIndexLow;
    s.device = info.dwVolumeSerialNumber;
    return s;
}

void hostPathSplit(const std::string& hostPath, std::string& dir, std::string& base) {
    const std::size_t sep = hostPath.find_last_of("\\/");
    if (sep == std::string::npos) {
        dir = ".";
        base = hostPath;
        return;
    }
    dir.assign(hostPath, 0, sep == 2 && hostPath[1] == ':' ? 3 : sep);
    base.assign(hostPath, sep + 1, std::string::npos);
}

int watchDir(const std::string& hostDir) {
    WatchState& w = wstate();
    if (auto it = w.byDir.find(hostDir); it != w.byDir.end()) return it->second;
    std::wstring wide;
    if (!toWide(hostDir, wide)) return 0;
    auto watch = std::make_unique<Watch>();
    // A failed watch is no error of the caller's: the last error stays.
    watch->dir = ::CreateFileW(wide.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                               nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr);
    if (watch->dir == INVALID_HANDLE_VALUE) return 0;
    watch->done = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (!watch->done || !watch->arm()) return 0;
    const int id = w.next++;
    w.byId[id] = std::move(watch);
    w.byDir[hostDir] = id;
    return id;
}

/*
 * Takes in the reads that completed, each re-armed at once. A read that
 * fails ends its watch (the directory went); one that completes with
 * nothing lost the changes that did not fit.
 */
void watchDrain(void (*sink)(const WatchEvent&, void*), void* ctx) {
    WatchState& w = wstate();
    if (w.byId.empty()) return;
    if (w.byId.size() <= MAXIMUM_WAIT_OBJECTS) {
        std::vector<HANDLE> events;
        for (const auto& [id, watch] : w.byId) events.push_back(watch->done);
        if (::WaitForMultipleObjects(static_cast<DWORD>(events.size()), events.data(), FALSE, 0) == WAIT_TIMEOUT) return;
    }
    std::vector<int> ids;
    for (const auto& [id, watch] : w.byId) ids.push_back(id);
    for (const int id : ids) {
        auto it = w.byId.find(id);
        if (it == w.byId.end()) continue;
        Watch& watch = *it->second;
        DWORD bytes = 0;
        if (!::GetOverlappedResult(watch.dir, &watch.ov, &bytes, FALSE)) {
            if (::GetLastError() == ERROR_IO_INCOMPLETE) continue;
            WatchEvent gone;
            gone.id = id;
            gone.gone = true;
            forget(w, id);
            sink(gone, ctx);
            continue;
        }
        std::vector<WatchEvent> events;
        if (bytes == 0) {
            WatchEvent lost;
            lost.overflow = true;
            events.push_back(lost);
        }
        for (DWORD off = 0; bytes > 0 && off + sizeof(FILE_NOTIFY_INFORMATION) <= bytes;) {
            const auto* info = reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(watch.buf + off);
            WatchEvent ev;
            ev.id = id;
            ev.name = toUtf8(info->FileName, static_cast<int>(info->FileNameLength / sizeof(wchar_t)));
            events.push_back(std::move(ev));
            if (info->NextEntryOffset == 0) break;
            off += info->NextEntryOffset;
        }
        if (!watch.arm()) {
            WatchEvent gone;
            gone.id = id;
            gone.gone = true;
            events.push_back(gone);
            forget(w, id);
        }
        for (const WatchEvent& ev : events) sink(ev, ctx);
    }
}

void watchReset() { wstate() = WatchState{}; }

}  // namespace vnt::host
