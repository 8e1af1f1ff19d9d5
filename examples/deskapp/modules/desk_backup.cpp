// Module library "DeskBackup.dll", module 51: the backup of the current
// client's data directory. The directory is copied as a tree, with the
// progress dialog, into "Sicherung\<name of the data directory>" beside the
// program, the files keeping their times. The copy goes into a folder of
// its own first and replaces the old backup as a whole only when it is
// complete: a failed or cancelled backup leaves the old one as it was.
// Answers 1 on success, 0 on failure or Cancel.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include <vanto/app.h>
#include <vanto/filecopy.h>
#include <vanto/lfn.h>
#include <vanto/module.h>
#include <vanto/stat.h>

#include "desk_common.h"

VNT_APP_MODULE_VERSION(VNT_APP_VERSION_DW(1, 0), VNT_APP_VERSION_DW(0, 1));

namespace fs = std::filesystem;
using desk::Lib;
using desk::Tell;

namespace {

std::string hostOf(const char* path) {
    char host[4096];
    return Vnt_LfnToHost(path, host, sizeof host) ? std::string(host) : std::string();
}

// The directories of the copy take the times of the source's directories
// (the copier keeps the files' times; making the files touched the folders).
void copyFolderTimes(const fs::path& from, const fs::path& to) {
    std::error_code ec;
    for (fs::recursive_directory_iterator it(from, ec), end; !ec && it != end; it.increment(ec)) {
        if (!it->is_directory(ec)) continue;
        const fs::path there = to / fs::relative(it->path(), from, ec);
        const auto t = fs::last_write_time(it->path(), ec);
        if (!ec) fs::last_write_time(there, t, ec);
    }
    const auto t = fs::last_write_time(from, ec);
    if (!ec) fs::last_write_time(to, t, ec);
}

}  // namespace

VNT_APP_MODULE_EXPORT std::intptr_t DeskBackupMain(long /*arg1*/, long /*arg2*/) {
    if (*Vnt_AppDataPath() == '\0') {
        Tell("!Es ist kein Mandant verbunden: es gibt nichts zu sichern.",
             "!No client is connected: there is nothing to back up.");
        return 0;
    }
    // The data directory (relative to the current directory when relative)
    // and the last part of its name.
    VNT_PATH source{};
    std::snprintf(source, sizeof source, "%s", Vnt_AppDataPath());  // both 260 characters
    for (std::size_t n = std::strlen(source); n > 0 && source[n - 1] == '\\'; --n) source[n - 1] = '\0';
    Vnt_LfnNameMakeAbs(source);
    const char* slash = std::strrchr(source, '\\');
    const std::string name = slash ? slash + 1 : source;
    const std::string hostSource = hostOf(source);
    std::error_code ec;
    if (name.empty() || hostSource.empty() || !fs::is_directory(hostSource, ec)) {
        Tell("!Das Datenverzeichnis des Mandanten fehlt:\n%s", "!The data directory of the client is missing:\n%s",
             Vnt_LfnNameOut(source, 60));
        return 0;
    }

    // Sicherung\<name> beside the program; the new copy grows in <name>.neu,
    // the old one waits in <name>.alt while the two are swapped.
    VNT_PATH root{}, target{}, fresh{}, old{};
    const bool fits = Vnt_LfnNameMake(root, Vnt_AppProgDir(), "Sicherung", nullptr) &&
                      Vnt_LfnNameMake(target, root, name.c_str(), nullptr) &&
                      Vnt_LfnNameMake(fresh, root, (name + ".neu").c_str(), nullptr) &&
                      Vnt_LfnNameMake(old, root, (name + ".alt").c_str(), nullptr);
    const std::string hostTarget = fits ? hostOf(target) : "", hostFresh = fits ? hostOf(fresh) : "",
                      hostOld = fits ? hostOf(old) : "";
    if (hostTarget.empty() || hostFresh.empty() || hostOld.empty()) {
        Tell("!Der Pfad der Sicherung ist zu lang:\n%s", "!The path of the backup is too long:\n%s",
             Vnt_LfnNameOut(root, 60));
        return 0;
    }
    const fs::path src = fs::weakly_canonical(hostSource, ec);
    const fs::path dst = fs::weakly_canonical(hostFresh, ec);
    const auto [a, b] = std::mismatch(src.begin(), src.end(), dst.begin(), dst.end());
    if (a == src.end()) {
        Tell("!Die Sicherung läge im Datenverzeichnis selbst:\n%s", "!The backup would lie inside the data "
             "directory itself:\n%s", Vnt_LfnNameOut(target, 60));
        return 0;
    }
    // What an interrupted run left: a half copy goes, an old backup whose
    // swap did not finish comes back.
    fs::remove_all(hostFresh, ec);
    if (fs::exists(hostOld, ec)) {
        if (fs::exists(hostTarget, ec))
            fs::remove_all(hostOld, ec);
        else
            fs::rename(hostOld, hostTarget, ec);
    }

    bool ok, cancelled;
    {
        VntStat stat;
        stat.EnableCancel(true);
        const std::string client = *Vnt_AppDSN() ? Vnt_AppDSN() : name;
        const std::string title =
            Lib(desk::Tr("[Datensicherung]Die Daten von %s werden gesichert.", "[Backup]Backing up the data of %s."));
        stat.Begin(title.c_str(), client.c_str());
        VntFileCopy copy(&stat, 0);
        copy.SetFolders(source, fresh);
        // A scan first, so that the bar shows the whole backup.
        ok = copy.TreeScan(source);
        if (ok) {
            copy.SetCountForAll(-1);
            ok = copy.TreeCopy(source);
        }
        cancelled = copy.IsCancel();
        stat.End();
    }
    if (ok) {
        copyFolderTimes(hostSource, hostFresh);
        // The swap: the old backup aside, the new one in its place, the old one gone.
        ec.clear();
        if (fs::exists(hostTarget)) fs::rename(hostTarget, hostOld, ec);
        if (!ec) {
            fs::rename(hostFresh, hostTarget, ec);
            if (ec) {
                std::error_code back;
                fs::rename(hostOld, hostTarget, back);
            }
        }
        ok = !ec;
        if (ok) fs::remove_all(hostOld, ec);
    }
    if (!ok) {
        fs::remove_all(hostFresh, ec);
        if (!cancelled)
            Tell("!Die Datensicherung nach %s ist nicht gelungen; die letzte Sicherung bleibt erhalten.",
                 "!The backup to %s did not succeed; the last backup is kept.", Vnt_LfnNameOut(target, 60));
        return 0;
    }
    return 1;
}
