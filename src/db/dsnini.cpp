// DsnIni: the client registry "dsn.ini" - reading the clients, changing the
// list in memory and writing it back.

#include <cstring>
#include <initializer_list>
#include <new>
#include <string>
#include <string_view>

#include "base/names.h"
#include "base/strbuf.h"
#include "db/db_state.h"
#include "db/odbc.h"
#include "vanto/dsn.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"

namespace {

constexpr const char* kSource = "dsn/DsnIni";
constexpr long kMsgListMissing = 60351;  // path
constexpr long kMsgChangedOnDisk = 60363;  // path
constexpr VNTINI_TYPE kDsnType = VNTINI_APP | VNTINI_ACCESS_RW;
constexpr const char* kDefaultDriver = "Microsoft Access Driver (*.mdb)";

// The application settings of the registry, read once per process. The
// mark is set first, so that a report shown meanwhile does not read again.
void readSettings() {
    vnt::db::State& s = vnt::db::state();
    if (s.dsnSettingsRead) return;
    s.dsnSettingsRead = true;
    char buf[VNT_MAX_PATH];
    Vnt_IniAppValue("DsnPathSpec", "DBQ", buf, sizeof s.pathSpec);
    vnt::copyBounded(s.pathSpec, buf);
    Vnt_IniAppValue("DsnFileFilter", "*.dat;*.mdb", buf, sizeof buf);
    const std::size_t len = vnt::copyBounded(s.fileFilter, buf);
    // Description and pattern of a file dialog, where both fit.
    if (len < 127) {
        vnt::copyBounded(s.fileFilter + len + 1, sizeof s.fileFilter - len - 1, buf);
        s.fileFilter[2 * len + 2] = '\0';
    } else if (len + 1 < sizeof s.fileFilter) {
        s.fileFilter[len + 1] = '\0';
    }
    Vnt_IniAppValue("DsnDBFileName", "", buf, sizeof s.dbFileName);
    vnt::copyBounded(s.dbFileName, buf);
    s.isFile = Vnt_IniAppValue("DsnIsFile", 1L);
    if (s.isFile && !s.dbFileName[0])
        Vnt__MsgErr(kSource, __LINE__, "!Internal Error: isFile == true, but dbFile is empty.");
    if (!s.isFile && s.dbFileName[0])
        Vnt__MsgErr(kSource, __LINE__, "!Internal Error: isFile == false, but dbFile is not empty.");
}

bool sameName(const char* a, const char* b) { return vnt::sameText(a ? a : "", b ? b : ""); }

// Copies the first non-empty value of `keys` in the current section.
bool firstValue(VntIni& ini, std::initializer_list<const char*> keys, char (&out)[VNT_MAX_PATH]) {
    for (const char* key : keys) {
        if (!key || !*key) continue;
        ini.ReadStr(key, "", out, sizeof out);
        if (out[0]) return true;
    }
    out[0] = '\0';
    return false;
}

// With "DsnIsFile", a display name that is the database file in the data
// path is the path as ReadEntry found it (a client known by its file only):
// it is no name of its own.
bool namesFileIn(const char* name, const char* path) {
    if (!vnt::db::state().isFile || !Vnt_LfnNameIsPath(name)) return false;
    char dir[VNT_MAX_PATH], file[VNT_MAX_PATH];
    Vnt_LfnNameSplit(name, dir, file, nullptr);
    return file[0] && sameName(dir, path);
}

void sectionName(char (&out)[100], int number) { vnt::copyBounded(out, VntIni::NumEntry("Dsn", number)); }

}  // namespace

bool vnt::db::fileExists(const char* path) {
    if (!path || !*path || Vnt_LfnNameIsWild(path)) return false;
    char found[VNT_MAX_PATH];
    VNT_LFN_HFIND h = nullptr;
    const bool ok = Vnt_LfnFileFindFirst(found, nullptr, path, &h);
    Vnt_LfnFindClose(&h);
    return ok;
}

DsnIni::DsnIni(void* owner) : ini_("dsn.ini", "Settings", kDsnType), owner_(owner) {
    defaultDriver_[0] = '\0';
    settings_[0] = '\0';
    ++vnt::db::state().liveRegistries;
}

DsnIni::~DsnIni() { --vnt::db::state().liveRegistries; }

bool DsnIni::LoadSettings() {
    ini_.Setup("dsn.ini", "Settings", nullptr, kDsnType);
    if (!vnt::db::fileExists(ini_.File())) {
        Vnt_MsgSys(kMsgListMissing, ini_.File());
        return false;
    }
    ini_.ReadStr("DefaultDriver", kDefaultDriver, defaultDriver_, sizeof defaultDriver_);
    readSettings();
    const long n = ini_.ReadInt("Count", 0);
    count_ = countAtLoad_ = n < 0 ? 0 : n > 100000 ? 100000 : static_cast<int>(n);
    if (owner_ && ini_.Open(nullptr, VNTINI_KEEP, false)) {
        ini_.Close(true);
        if (!LoadEntries()) return false;
    }
    return true;
}

bool DsnIni::LoadEntries() {
    readSettings();
    ini_.ReadSection(settings_, sizeof settings_, "Settings");
    ini_.SetSection("Settings");
    if (count_ == 0) count_ = countAtLoad_ = CountSections();
    std::vector<DsnEntry> list;
    try {
        for (int i = 0; i < count_; ++i) {
            list.emplace_back();
            if (!ReadEntry(list.back(), i)) {
                list.pop_back();
                break;
            }
        }
    } catch (const std::bad_alloc&) {
        return false;
    }
    entries_.swap(list);
    count_ = static_cast<int>(entries_.size());
    loaded_ = true;
    modified_ = false;
    if (!Vnt_LfnFileTimeGetp(ini_.File(), &timeAtLoad_)) timeAtLoad_ = 0;
    return true;
}

int DsnIni::CountSections() {
    const bool wasOpen = ini_.IsOpen();
    if (!wasOpen && !ini_.Open(nullptr, VNTINI_KEEP, false)) return 0;
    int n = 0;
    char name[100];
    for (sectionName(name, 1); ini_.SectionFind(name); sectionName(name, n + 1)) ++n;
    if (!wasOpen) ini_.Close(true);
    ini_.SetSection("Settings");
    return n;
}

bool DsnIni::readName(int number, char (&name)[VNT_MAX_PATH]) {
    readSettings();
    char section[100];
    sectionName(section, number);
    ini_.SetSection(section);
    const bool ok = firstValue(ini_, {"*", "DSN", "DtaPth", PathSpec(), "Datapath", "DBQ"}, name);
    ini_.SetSection("Settings");
    return ok;
}

bool DsnIni::ReadEntry(DsnEntry& entry, int index) {
    entry.name[0] = entry.path[0] = entry.section[0] = '\0';
    if (index < 0 || !readName(index + 1, entry.name)) return false;
    char section[100];
    sectionName(section, index + 1);
    ini_.SetSection(section);
    firstValue(ini_, {"DtaPth", PathSpec(), "Datapath", "DBQ"}, entry.path);
    if (IsFile() && vnt::db::fileExists(entry.path)) Vnt_LfnNameSplit(entry.path, entry.path, nullptr, nullptr);
    ini_.ReadSection(entry.section, sizeof entry.section, section);
    ini_.SetSection("Settings");
    return true;
}

int DsnIni::FindEntry(const char* name) {
    if (!name) return 0;
    char found[VNT_MAX_PATH];
    for (int n = 1; readName(n, found); ++n)
        if (sameName(found, name)) return n;
    return 0;
}

int DsnIni::AppendEntry(const char* name, const char* path, int pos, bool replace) {
    if (!loaded_) {
        Vnt__InternalError(true, 5, kSource, __LINE__);
        return -1;
    }
    if (!name) name = "";
    if (!path) path = "";
    int byName = -1, byPath = -1;
    for (int i = 0; i < count_; ++i) {
        if (byName < 0 && sameName(entries_[static_cast<std::size_t>(i)].name, name)) byName = i;
        if (byPath < 0 && sameName(entries_[static_cast<std::size_t>(i)].path, path)) byPath = i;
    }
    if (!replace) {
        if (Vnt__InternalError(byName >= 0, 3, kSource, __LINE__)) return -1;
        if (Vnt__InternalError(byPath >= 0, 4, kSource, __LINE__)) return -1;
    } else if (const int at = byName >= 0 ? byName : byPath; at >= 0) {
        DsnEntry& e = entries_[static_cast<std::size_t>(at)];
        vnt::copyBounded(e.name, name);
        vnt::copyBounded(e.path, path);
        return at;
    }
    if (pos < 0 || pos > count_) pos = count_;
    DsnEntry e;
    vnt::copyBounded(e.name, name);
    vnt::copyBounded(e.path, path);
    e.section[0] = '\0';
    try {
        entries_.insert(entries_.begin() + pos, e);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    count_ = static_cast<int>(entries_.size());
    modified_ = true;
    return pos;
}

int DsnIni::RemoveEntry(int index) {
    if (!loaded_ || count_ == 0) return -1;
    if (index == -1) index = count_ - 1;
    if (index < 0 || index >= count_) return -1;
    entries_.erase(entries_.begin() + index);
    count_ = static_cast<int>(entries_.size());
    modified_ = true;
    return index < count_ ? index : count_ - 1;
}

namespace {

// The key of a section line "key=value", blanks around it dropped.
std::string_view lineKey(std::string_view line) {
    const std::size_t eq = line.find('=');
    std::string_view key = line.substr(0, eq == std::string_view::npos ? 0 : eq);
    while (!key.empty() && (key.front() == ' ' || key.front() == '\t')) key.remove_prefix(1);
    while (!key.empty() && (key.back() == ' ' || key.back() == '\t')) key.remove_suffix(1);
    return key;
}

// Drops the lines of `section` whose key is one of `keys`.
void dropLines(char (&section)[4096], std::initializer_list<const char*> keys) {
    std::string kept;
    std::string_view rest(section);
    while (!rest.empty()) {
        const std::size_t nl = rest.find('\n');
        const std::string_view line = rest.substr(0, nl == std::string_view::npos ? rest.size() : nl + 1);
        rest.remove_prefix(line.size());
        bool drop = false;
        for (const char* key : keys) drop = drop || (key && *key && vnt::sameText(lineKey(line), key));
        if (!drop) kept += line;
    }
    vnt::copyBounded(section, kept);
}

}  // namespace

bool DsnIni::ChangeEntry(int index, const char* name, const char* path) {
    if (!loaded_ || index < 0 || index >= count_) return false;
    DsnEntry& e = entries_[static_cast<std::size_t>(index)];
    if (!name) name = "";
    if (!path) path = "";
    if (std::strcmp(e.name, name) != 0) dropLines(e.section, {"DSN"});
    if (!sameName(e.path, path)) dropLines(e.section, {"DBQ", "Datapath", PathSpec()});
    vnt::copyBounded(e.name, name);
    vnt::copyBounded(e.path, path);
    modified_ = true;
    return true;
}

bool DsnIni::MoveEntry(int from, int to) {
    if (!loaded_ || from < 0 || from >= count_ || to < 0 || to >= count_) return false;
    const DsnEntry moved = entries_[static_cast<std::size_t>(from)];
    entries_.erase(entries_.begin() + from);
    entries_.insert(entries_.begin() + to, moved);
    modified_ = true;
    return true;
}

bool DsnIni::WriteEntries() {
    if (!loaded_) return false;
    if (!modified_) return true;
    unsigned long now = 0;
    if (!Vnt_LfnFileTimeGetp(ini_.File(), &now)) now = 0;
    if (now != timeAtLoad_) {
        const VNT_RESP r = Vnt_MsgSys(kMsgChangedOnDisk, ini_.File());
        if (r == VNT_RESP_CANCEL) return false;
        if (r == VNT_RESP_NO) return true;
    }
    // The whole file anew: "Settings" as read, then the clients in order.
    if (!ini_.OpenWrite()) return false;
    bool ok = ini_.WriteSection(settings_, "Settings");
    char section[100];
    for (int i = 0; i < count_ && ok; ++i) {
        sectionName(section, i + 1);
        ok = ini_.WriteSection(entries_[static_cast<std::size_t>(i)].section, section);
    }
    ini_.Close(ok);
    ini_.SetSection("Settings");
    if (!ok) return false;

    ok = ini_.WriteStr("Count", std::to_string(count_).c_str());
    for (int i = 0; i < count_ && ok; ++i) {
        const DsnEntry& e = entries_[static_cast<std::size_t>(i)];
        sectionName(section, i + 1);
        ini_.SetSection(section);
        const bool nameIsPath = !e.name[0] || sameName(e.name, e.path) || namesFileIn(e.name, e.path);
        ok = ini_.WriteStr("*", nameIsPath ? nullptr : e.name) && ini_.WriteStr("DBQ", nullptr) &&
             ini_.WriteStr("Datapath", nullptr) && ini_.WriteStr("DtaPth", e.path);
    }
    ini_.SetSection("Settings");
    if (!ok) return false;
    modified_ = false;
    countAtLoad_ = count_;
    if (!Vnt_LfnFileTimeGetp(ini_.File(), &timeAtLoad_)) timeAtLoad_ = 0;
    return true;
}

bool DsnIni::ResolvePath(const char* path, char (*dbFile)[VNT_MAX_PATH], char (*dataDir)[VNT_MAX_PATH]) {
    if (!path || !*path) return false;
    const std::string p = path;  // the outputs may hold the path
    char file[VNT_MAX_PATH], dir[VNT_MAX_PATH];
    vnt::copyBounded(file, p);
    vnt::copyBounded(dir, p);
    if (IsFile()) {
        if (vnt::db::fileExists(p.c_str())) Vnt_LfnNameSplit(p.c_str(), dir, nullptr, nullptr);
        else if (DBFileName()[0]) Vnt_LfnNameMake(file, p.c_str(), DBFileName(), nullptr);
    }
    if (dbFile) vnt::copyBounded(*dbFile, file);
    if (dataDir) vnt::copyBounded(*dataDir, dir);
    return true;
}

const DsnEntry* DsnIni::Entry(int index) const {
    return index >= 0 && index < static_cast<int>(entries_.size()) ? &entries_[static_cast<std::size_t>(index)] : nullptr;
}

const char* DsnIni::PathSpec() {
    readSettings();
    return vnt::db::state().pathSpec;
}

const char* DsnIni::FileFilter() {
    readSettings();
    return vnt::db::state().fileFilter;
}

const char* DsnIni::DBFileName() {
    readSettings();
    return vnt::db::state().dbFileName;
}

bool DsnIni::IsFile() {
    readSettings();
    return vnt::db::state().isFile != 0;
}

long DsnIni::LiveCount() { return vnt::db::state().liveRegistries; }
