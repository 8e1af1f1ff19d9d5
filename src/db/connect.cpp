// The connection of the current client: building a connect string from a
// client of "dsn.ini", opening it with the fallback to the last connection
// that opened, closing, saving and restoring it, and changing the list.

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "base/format.h"
#include "base/names.h"
#include "base/strbuf.h"
#include "db/db_state.h"
#include "db/odbc.h"
#include "host/process.h"
#include "vanto/app.h"
#include "vanto/db.h"
#include "vanto/dsn.h"
#include "vanto/lfn.h"
#include "vanto/module.h"
#include "vanto/msg.h"
#include "vanto/ui/clientsel.h"
#include "vanto/ui/window.h"

namespace {

constexpr const char* kBuilderSource = "StaticLow/Connect";
constexpr const char* kRegistrySource = "dsn/DsnIni";
constexpr unsigned kConnectionChanged = 0x7F15;
constexpr long kMsgDefaultConnect = 60300;  // the connect string when none is given
constexpr long kMsgNoClients = 60350;       // the client list (path)
constexpr long kMsgPathMissing = 60358;     // path
constexpr long kMsgDiscardChanges = 60359;
constexpr int kConnectLimit = 2047;

vnt::db::State& st() { return vnt::db::state(); }

void tellMainWindow() {
    VntWindowPort& w = Vnt_UiWindow();
    w.Send(w.MainWindow(), kConnectionChanged, 0, 0);
}

// The exit path closes the connection as well; installed with the first
// connection so that a program that never connects keeps its own hook.
void installCloseHook() {
    if (st().closeHookSet) return;
    st().closeHookSet = true;
    Vnt_AppSetConnCloseHook(&Vnt_AppConnClose);
}

bool isOpen() { return st().connection && st().connection->IsOpen(); }

/*
 * Opens the process-wide database with `connect`. A refused connect string
 * brings the last one that opened back, so that the application keeps
 * working on the client it had; the result is still false.
 */
bool openDatabase(const std::string& connect) {
    installCloseHook();
    vnt::db::State& s = st();
    delete s.connection;  // closes it when open
    s.connection = new VntDatabase;
    if (s.connection->Open(nullptr, false, false, connect.c_str(), false)) {
        s.lastGood = s.connection->GetConnectRaw();
        return true;
    }
    delete s.connection;
    s.connection = nullptr;
    if (!s.lastGood.empty()) {
        s.connection = new VntDatabase;
        if (!s.connection->Open(nullptr, false, false, s.lastGood.c_str(), false)) {
            delete s.connection;
            s.connection = nullptr;
        }
    }
    return false;
}

// A connect string worth handing to a driver holds at least one pair.
bool hasPair(const char* text) { return text && std::strchr(text, '=') != nullptr; }

// A line of a section text may still end in the CR of a CR LF file.
std::string_view trimmed(std::string_view v) {
    const std::size_t end = v.find_last_not_of(" \t\r");
    return vnt::trim(v.substr(0, end == std::string_view::npos ? 0 : end + 1));
}

/*
 * Calls `fn(key, value, line)` for each line of a section text ("\n"
 * after each line), trimmed; blank lines and comments are left out, a line
 * without "=" has an empty key. Stops at the first false.
 */
template <class Fn>
bool forEachLine(const char* text, Fn fn) {
    for (const char* p = text; *p;) {
        const char* end = std::strchr(p, '\n');
        const std::size_t n = end ? static_cast<std::size_t>(end - p) : std::strlen(p);
        const std::string line(trimmed(std::string_view(p, n)));
        p += end ? n + 1 : n;
        if (line.empty() || line[0] == ';') continue;
        const std::string_view all = line;
        const std::size_t eq = all.find('=');
        const bool pair = eq != std::string_view::npos;
        const std::string_view key = pair ? trimmed(all.substr(0, eq)) : std::string_view();
        if (!fn(key, pair ? std::string(trimmed(all.substr(eq + 1))) : std::string(), line)) return false;
    }
    return true;
}

bool isKey(std::string_view key, const char* name) { return name && *name && vnt::sameText(key, name); }

// The open connection is this connect string (as Open keeps it).
bool isConnection(const std::string& connect) {
    if (!isOpen()) return false;
    std::string_view want = connect;
    if (want.size() >= 5 && vnt::sameText(want.substr(0, 5), "ODBC;")) want.remove_prefix(5);
    return std::string_view(st().connection->GetConnectRaw()).substr(5) == want;
}

}  // namespace

// ---------------------------------------------------------------------------
// Building the connect string
// ---------------------------------------------------------------------------

bool Vnt_DsnConnectAdd(char* buffer, long* length, const char* key, const char* value) {
    if (!buffer || !length) {
        Vnt__InternalError(true, 1, kBuilderSource, __LINE__);
        return false;
    }
    if (buffer[0] == '\0' || *length <= 0) {
        vnt::copyBounded(buffer, VNT_DSN_CONNECT_SIZE, "ODBC;");
        *length = 5;
    }
    const std::size_t keyLen = key ? std::strlen(key) : 0;
    const std::size_t valueLen = value ? std::strlen(value) : 0;
    const std::size_t room = (key ? keyLen + 1 : 0) + valueLen + 1;
    if (Vnt__InternalError(static_cast<std::size_t>(*length) + room >= kConnectLimit, 1, kBuilderSource, __LINE__))
        return false;
    std::string pair;
    if (key) (pair += key) += '=';
    if (value) pair += value;
    pair += ';';
    vnt::copyBounded(buffer + *length, VNT_DSN_CONNECT_SIZE - static_cast<std::size_t>(*length), pair);
    *length += static_cast<long>(room);
    return true;
}

bool DsnIni::add(const char* key, const char* value) { return Vnt_DsnConnectAdd(connect_, &connectLen_, key, value); }

// The path-spec pair of a client's path: the driver opens the database
// file, while the data path is the data directory it lies in.
bool DsnIni::addPath(const char* value) {
    const char* spec = PathSpec();
    if (Vnt__InternalError(!spec || !*spec, 1, kRegistrySource, __LINE__)) return false;
    char file[VNT_MAX_PATH], dir[VNT_MAX_PATH];
    if (!ResolvePath(value, &file, &dir)) {
        vnt::copyBounded(file, value);
        vnt::copyBounded(dir, value);
    }
    vnt::copyBounded(dataPath_, dir);
    return add(spec, file);
}

/*
 * Builds the connect string of a client and opens it. The order of the
 * pairs is fixed: the DD path, the data path, driver, user and buffer
 * size first, then the client's own lines as they stand in its section.
 */
bool DsnIni::Connect(const char* name, const char* path) {
    bool given = false;
    if (name && *name) {
        if (name != name_) vnt::copyBounded(name_, name);
        given = true;
    }
    connect_[0] = '\0';
    connectLen_ = 0;
    Vnt_Busy();
    ddPath_[0] = dataPath_[0] = driver_[0] = uid_[0] = '\0';

    char lines[4096] = {};
    bool ok = true;
    if (!path) {
        const int number = FindEntry(name_);
        ok = number > 0;
        if (ok) ini_.ReadSection(lines, sizeof lines, VntIni::NumEntry("Dsn", number));
        forEachLine(lines, [&](std::string_view key, const std::string& value, const std::string&) {
            if (isKey(key, "Driver")) vnt::copyBounded(driver_, value);
            else if (isKey(key, "UID")) vnt::copyBounded(uid_, value);
            else if (isKey(key, "Ddfpath")) vnt::copyBounded(ddPath_, value);
            else if (isKey(key, "Datapath") || isKey(key, "DtaPth")) vnt::copyBounded(dataPath_, value);
            return true;
        });
    }
    if (ok) {
        // The program directory, also before Vnt_AppMainInit recorded it.
        if (!ddPath_[0] && !*Vnt_AppProgDir()) Vnt_LfnProgDirName(ddPath_, sizeof ddPath_);
        if (!ddPath_[0]) vnt::copyBounded(ddPath_, Vnt_AppProgDir());
        ok = add("Ddfpath", ddPath_);
    }
    if (ok) ok = path ? addPath(path) : add("Datapath", dataPath_);
    if (ok) {
        if (!driver_[0]) vnt::copyBounded(driver_, defaultDriver_);
        ok = add("Driver", driver_) && add("UID", uid_) && add("MAXBUFFERSIZE", "4096");
    }
    if (ok && !path) {
        bool starSet = false;
        ok = forEachLine(lines, [&](std::string_view key, const std::string& value, const std::string& line) {
            if (key == "*" || (isKey(key, "DSN") && !starSet)) {
                // The ODBC data source name stands in for a display name.
                starSet = starSet || key == "*";
                vnt::copyBounded(name_, value);
                given = true;
                return true;
            }
            if (isKey(key, "DSN") || isKey(key, "Driver") || isKey(key, "UID") || isKey(key, "Ddfpath") ||
                isKey(key, "Datapath"))
                return true;
            if (isKey(key, "DtaPth") || isKey(key, PathSpec())) return addPath(value.c_str());
            return add(nullptr, line.c_str());
        });
    }
    if (ok && !dataPath_[0]) {
        Vnt__MsgErr(kRegistrySource, __LINE__,
                    vnt::format("!Internal Error: a data path specification could not be found in '%s'.", File())
                        .c_str());
        ok = false;
    }
    if (ok && !given) vnt::copyBounded(name_, path && *path ? path : dataPath_);
    if (ok) ok = openDatabase(connect_);
    if (ok) {
        Vnt_AppSetDSN(name_);
        Vnt_AppSetDDPath(ddPath_);
        Vnt_AppSetDataPath(dataPath_);
        tellMainWindow();
    } else {
        vnt::copyBounded(name_, Vnt_AppDSN());
        vnt::copyBounded(ddPath_, Vnt_AppDDPath());
        vnt::copyBounded(dataPath_, Vnt_AppDataPath());
    }
    Vnt_Unbusy();
    ini_.Close(true);
    return ok;
}

// ---------------------------------------------------------------------------
// The process-wide connection
// ---------------------------------------------------------------------------

VntDatabase* Vnt_AppConnect(const char* name, const char* path) {
    Vnt_AppCloseConnect();
    DsnIni registry;
    if (!registry.LoadSettings()) return nullptr;
    const char* target = path && *path ? path : (name ? name : "");
    return registry.Connect(name, target) ? st().connection : nullptr;
}

VntDatabase* Vnt_AppConnect(const char* text, bool restore, bool dialogOnly) {
    if (!restore && isOpen()) return st().connection;
    std::string use = text ? text : "";
    if (use.empty()) {
        char buf[VNT_MAX_PATH] = {};
        VNT_MSG sys = Vnt_MsgHInit();
        if (const char* t = Vnt__MsgGet(sys, kMsgDefaultConnect, buf, sizeof buf)) use = t;
        if (sys) Vnt_MsgHTerm(&sys);
    }
    VntDatabase* db = nullptr;
    Vnt_DlgDsn(use.c_str(), &db, restore, dialogOnly);
    return st().connection;
}

bool Vnt_DlgDsn(const char* text, VntDatabase** connection, bool restore, bool dialogOnly) {
    installCloseHook();
    bool ok = false;
    if (!dialogOnly && hasPair(text)) ok = openDatabase(text);
    // The selection repeats until a client is open; a selection that claims
    // success without one ends it, so that no port can loop for ever.
    while (!isOpen()) {
        if (Vnt_DsnSelect(text, restore, dialogOnly) != VNT_RESP_OK) break;
        ok = true;
        if (!isOpen()) break;
    }
    if (connection) *connection = st().connection;
    if (!isOpen()) {
        // A list without clients is the likely cause: said with its name. A
        // missing list the selection has reported already.
        std::string why = "no client could be connected";
        DsnIni registry;
        if (vnt::db::fileExists(registry.File()) && registry.LoadSettings() && registry.LoadEntries() &&
            registry.Count() == 0) {
            Vnt_MsgSys(kMsgNoClients, registry.File());
            why = why + ": the client list \"" + registry.File() + "\" names no client";
        }
        vnt::host::writeExitReason(2, why);
        Vnt_AppMainExitApplication(2);
    }
    return ok;
}

const char* Vnt_AppConnectSaveClose() {
    vnt::db::State& s = st();
    s.savedConnect = isOpen() ? s.connection->GetConnectRaw() : "";
    if (isOpen()) Vnt_AppCloseConnect();
    return s.savedConnect.c_str();
}

VntDatabase* Vnt_AppConnectRestore(const char* connect) {
    const std::string text = connect && *connect ? connect : st().savedConnect;
    return Vnt_AppConnect(text.c_str(), true, false);
}

void Vnt_AppCloseConnect() {
    vnt::db::State& s = st();
    delete s.connection;  // closes it when open
    s.connection = nullptr;
}

void Vnt_AppConnClose() {
    Vnt_AppCloseConnect();
    Vnt_AppSetDSN("");
    Vnt_AppSetDDPath("");
    Vnt_AppSetDataPath("");
    tellMainWindow();
}

VntDatabase* Vnt_AppGetConnect() { return st().connection; }

bool Vnt_AppGetConnect(VntRecordset* recordset) {
    if (!recordset) return false;
    recordset->m_pDatabase = st().connection;
    return isOpen();
}

std::string Vnt_AppConnGet() { return isOpen() ? st().connection->GetConnectRaw() : ""; }

std::string Vnt_AppConnGet(const char* saved) {
    if (!saved || !*saved || !std::strchr(saved + 1, '\n')) return "";
    return std::string(saved, std::strcspn(saved, "\n"));
}

std::string Vnt_AppConnGetDsn(const char* saved) {
    const char* first = saved ? std::strchr(saved, '\n') : nullptr;
    if (!first) return "";
    const char* second = std::strchr(first + 1, '\n');
    return second ? std::string(first + 1, second) : std::string(first + 1);
}

std::string Vnt_AppConnGetDatapath(const char* saved) {
    const char* first = saved ? std::strchr(saved, '\n') : nullptr;
    const char* second = first ? std::strchr(first + 1, '\n') : nullptr;
    return second ? std::string(second + 1) : "";
}

void Vnt_AppConnSave(std::string& saved) {
    saved = Vnt_AppConnGet();
    ((saved += '\n') += Vnt_AppDSN()) += '\n';
    saved += Vnt_AppDataPath();
}

bool Vnt_AppConnRestore(const char* saved) {
    const std::string connect = Vnt_AppConnGet(saved);
    if (!connect.empty() && Vnt_AppConnectRestore(connect.c_str()) && isOpen()) {
        // The selection may have stepped in: a client the user chose stays.
        if (!isConnection(connect)) return false;
        Vnt_AppSetDSN(Vnt_AppConnGetDsn(saved).c_str());
        Vnt_AppSetDataPath(Vnt_AppConnGetDatapath(saved).c_str());
        tellMainWindow();
        return true;
    }
    Vnt_AppConnClose();
    return false;
}

bool Vnt_AppConnectDSNAppend(const char* name, const char* path) {
    DsnIni registry;
    if (!registry.LoadEntries()) return false;
    const int before = registry.Count();
    if (registry.AppendEntry(name, path, -1, true) < 0) return false;
    // A replaced name or path is deliberately not saved here.
    return registry.Count() > before ? registry.WriteEntries() : true;
}

bool Vnt_AppConnectDSNRemove(const char* name, const char* path) {
    DsnIni registry;
    if (!registry.LoadEntries()) return false;
    const bool byPath = path && *path;
    int index = -1;
    for (int i = 0; i < registry.Count() && index < 0; ++i) {
        const DsnEntry* e = registry.Entry(i);
        if (vnt::sameText(byPath ? e->path : e->name, byPath ? path : (name ? name : ""))) index = i;
    }
    registry.RemoveEntry(index);  // not found: -1, the last client (kept so)
    return registry.WriteEntries();
}

// ---------------------------------------------------------------------------
// What the client selection does
// ---------------------------------------------------------------------------

bool Vnt_DsnConnectClient(DsnIni& registry, const char* name) {
    if (!registry.Connect(name, nullptr)) return false;
    if (Vnt_AppModRunClientChain()) return true;
    Vnt_AppConnClose();
    return false;
}

bool Vnt_DsnConnectClient(const char* name) {
    DsnIni registry;
    return registry.LoadSettings() && Vnt_DsnConnectClient(registry, name);
}

bool Vnt_DsnPathExists(const char* path) {
    if (!path || !*path) return false;
    if (!DsnIni::IsFile()) return vnt::db::dirExists(path) || vnt::db::fileExists(path);
    char file[VNT_MAX_PATH];
    if (DsnIni::ResolvePath(path, &file, nullptr) && vnt::db::fileExists(file)) return true;
    return !DsnIni::DBFileName()[0] && vnt::db::dirExists(path);  // no file name to look for
}

bool Vnt_DsnInstallClient(const char* path) {
    char target[VNT_MAX_PATH];
    vnt::copyBounded(target, path);
    if (DsnIni::IsFile() && DsnIni::DBFileName()[0]) {
        // The split's file part already holds its extension.
        char dir[VNT_MAX_PATH], file[VNT_MAX_PATH];
        Vnt_LfnNameSplit(target, dir, file, nullptr);
        if (vnt::sameText(file, DsnIni::DBFileName())) vnt::copyBounded(target, dir);
    }
    const char* arg = target;
    return Vnt_AppModLoad(24, static_cast<long>(reinterpret_cast<std::intptr_t>(arg)), 0, false) &&
           Vnt_AppModResult() != 0;
}

bool Vnt_DsnSelectOk(DsnIni& registry, int index, std::string& saved) {
    const DsnEntry* e = registry.Entry(index);
    if (!e) return false;
    const std::string name = e->name, path = e->path;
    if (!Vnt_DsnPathExists(path.c_str())) {
        if (Vnt_MsgSys(kMsgPathMissing, path.c_str()) != VNT_RESP_OK) return false;
        if (!Vnt_DsnInstallClient(path.c_str())) return false;
    }
    registry.WriteEntries();
    registry.Ini().Flush();
    Vnt_AppConnSave(saved);
    return Vnt_DsnConnectClient(registry, name.c_str());
}

bool Vnt_DsnSelectCancel(DsnIni& registry, const char* saved) {
    if (registry.IsModified()) {
        const VNT_RESP r = Vnt_MsgSys(kMsgDiscardChanges);
        if (r == VNT_RESP_CANCEL || r == VNT_RESP_NO) return false;  // both stay, deliberately
        registry.Ini().Flush();
        registry.DiscardChanges();
    }
    if (DsnIni::LiveCount() == 1) {
        std::string now;
        Vnt_AppConnSave(now);
        if (!isOpen() || now != (saved ? saved : "")) Vnt_AppConnRestore(saved);
    }
    return true;
}

bool Vnt_DsnSetUpClient(DsnIni& registry, const char* name, const char* path, bool moved,
                        char (*formerPath)[VNT_MAX_PATH]) {
    if (!Vnt_DsnInstallClient(path)) return false;
    std::string saved;
    Vnt_AppConnSave(saved);
    bool ok = true;
    if (!moved) Vnt_AppSetDSN(name);
    else ok = registry.Connect(name, path ? path : "");
    if (ok) {
        tellMainWindow();
        ok = Vnt_AppModLoad(23, 0, 0, false) && Vnt_AppModResult() != 0;
    }
    if (ok) return true;
    Vnt_AppConnRestore(saved.c_str());
    if (formerPath) vnt::copyBounded(*formerPath, Vnt_AppDSN());
    return false;
}

bool vnt::db::dirExists(const char* path) {
    if (!path || !*path || Vnt_LfnNameIsWild(path)) return false;
    if (Vnt_LfnNameIsRoot(path) || Vnt_LfnNameIsVol(path)) return Vnt_LfnVolFind(path);
    return Vnt_LfnDirFind(path);
}
