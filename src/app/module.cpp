// The module table and loading modules by number and by name.
#include "app/module_internal.h"

#include <cstdarg>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "app/modtable.h"
#include "base/names.h"
#include "base/strbuf.h"
#include "host/error.h"
#include "host/module.h"
#include "host/path.h"
#include "host/process.h"
#include "vanto/app.h"
#include "vanto/vtm.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/help.h"
#include "vanto/ui/window.h"

namespace {

using vnt::app::kModSource;
using vnt::app::ModState;
using vnt::app::modState;

constexpr long kMsgExclusiveOpen = 60285;   // close the exclusive module? (description)
constexpr long kMsgLoadError = 60295;       // error code, system text, file
constexpr long kMsgNoModule = 60296;        // module number
constexpr long kMsgOptionalFailed = 60297;  // display name, text of 60295
constexpr long kMsgLoadFailed = 60298;      // display name, text of 60295
constexpr long kMsgNoEntry = 60299;         // function, display name
constexpr long kMsgNoTable = 60292;         // file, reader's status, its meaning
constexpr unsigned kAskBeforeLoad = 0x7F13;

// The help commands of a help module's line, as the old help engine knew them.
constexpr int kHelpContext = 1, kHelpContents = 3, kHelpFinder = 11, kHelpPartialKey = 261;

/*
 * True when there is no module table. After a load that failed, the first
 * use says so once, naming the file and the reader's status, and later uses
 * are refused without a word; without a load tried it is internal error
 * `code` each time.
 */
bool noTable(int code, int line) {
    ModState& st = modState();
    if (st.table && st.count >= 1) return false;
    if (st.tableStatus == 0) return vnt::app::modInternalError(true, code, line);
    if (!st.tableReported) {
        st.tableReported = true;
        Vnt_MsgSys(kMsgNoTable, st.tableFile.c_str(), st.tableStatus, Vnt_VtmStatusText(st.tableStatus));
    }
    return true;
}

std::string progDir() {
    char dir[VNT_MAX_PATH];
    return Vnt_LfnProgDirName(dir, sizeof dir) ? dir : "";
}

/*
 * The search's second step: the module's name with the extension "DLL",
 * then the host's files of that library ("x.so", "libx.so"), because module
 * libraries do not carry the extension "dll" on every host.
 */
bool findLibrary(const char* file, char (&found)[VNT_MAX_PATH]) {
    char dll[VNT_MAX_PATH];
    Vnt_LfnNameMake(dll, nullptr, file, "DLL");
    if (Vnt_LfnFileFind(dll, found)) return true;
    for (const std::string& name : vnt::host::moduleFileNames(dll))
        if (Vnt_LfnFileFind(name.c_str(), found)) return true;
    return false;
}

// A system message's text formatted with the arguments.
std::string sysFormat(long id, ...) {
    VNT_MSG sys = Vnt_MsgHInit();
    va_list ap;
    va_start(ap, id);
    const char* text = Vnt_MsgHVSprintf(sys, VntMsgRef(id), ap);
    va_end(ap);
    std::string out = text ? text : "";
    if (sys) Vnt_MsgHTerm(&sys);
    return out;
}

/*
 * Reports why a module did not start: the host's error code and text (cut
 * to one line of 119 characters) in 60295, that inside 60298, or 60297 for
 * an optional (quiet) module. A quiet client-change module stays silent.
 */
void reportFailure(unsigned long code, const std::string& why, const char* file, const char* display,
                   VNT_APP_MODFLAGS flags) {
    if (modState().silent && (flags & VNT_APP_MOD_QUIET)) return;
    char sysText[120];
    vnt::copyBounded(sysText, why);
    const std::string detail = sysFormat(kMsgLoadError, code, sysText, file);
    const std::string text = sysFormat((flags & VNT_APP_MOD_QUIET) ? kMsgOptionalFailed : kMsgLoadFailed, display,
                                       detail.c_str());
    Vnt__MsgErr(kModSource, __LINE__, text.c_str());
}

/*
 * Opens a help module: the help file beside the program (help is HTML on
 * this library's hosts, so its extension becomes "html"), or the program's
 * own help when the module names none, which only a running main window
 * has. A key word searches the index; without one the module number is the
 * context, the frame's own help commands (57666..57673) opening the
 * contents or the finder.
 */
bool openHelp(const char* file, const char* keyWord, long number) {
    VntHelpRequest req;
    if (file == nullptr || !*file) {
        if (!Vnt_UiWindow().MainWindow() || !Vnt_HelpFileName(req.file)) return false;
    } else {
        char path[VNT_MAX_PATH];
        Vnt_LfnNameMake(path, progDir().c_str(), file, nullptr);
        Vnt_LfnNameMake(path, nullptr, nullptr, "html");
        req.file = path;
    }
    int command;
    long context = 0;
    if (keyWord && *keyWord) {
        command = kHelpPartialKey;
        req.key = keyWord;
    } else {
        context = (number >= 57666 && number <= 57673) ? 0 : number;
        command = number == 57666 ? kHelpContents : number == 57667 ? kHelpFinder : context ? kHelpContext : kHelpContents;
    }
    switch (command) {
        case kHelpPartialKey: req.command = VntHelpCommand::PartialKey; break;
        case kHelpContext: req.command = VntHelpCommand::Context; break;
        default: req.command = VntHelpCommand::Contents; break;  // the finder is the contents here
    }
    req.context = context;
    return Vnt_UiHelp().Open(req);
}

/*
 * The indirection of an "ini" module: `spec` is "[Section] Key ArgKey". The
 * INI file is the module's file (extension "ini" when it has none) as it
 * stands, in the program directory for "w" and "s" (the stand-ins of the
 * Windows and system directories), or placed like the application's
 * read-write file for "a". An empty path names a file that does not exist,
 * so that the load fails with the ordinary message.
 */
bool resolveIni(const char* file, const char* spec, VNT_APP_MODFLAGS flags, char (&path)[261], char (&args)[261]) {
    const char* p = spec ? spec : "";
    while (vnt::isBlank(*p) || *p == '[') ++p;
    const char* end = std::strchr(p, ']');
    if (MOD_IE(end == nullptr, 15)) return false;
    char section[30], key[30], argKey[30];
    vnt::copyBounded(section, std::string_view(p, static_cast<std::size_t>(end - p)));
    p = end + 1;
    while (vnt::isBlank(*p)) ++p;
    if (MOD_IE(*p == '\0', 16)) return false;
    const char* keyEnd = p;
    while (*keyEnd && !vnt::isBlank(*keyEnd)) ++keyEnd;
    vnt::copyBounded(key, std::string_view(p, static_cast<std::size_t>(keyEnd - p)));
    p = keyEnd;
    while (vnt::isBlank(*p)) ++p;
    vnt::copyBounded(argKey, p);

    VNTINI_TYPE type = 0;
    if (flags & VNT_APP_MOD_INI_WINDIR) type = VNTINI_WINDIR;
    else if (flags & VNT_APP_MOD_INI_APPRW) type = VNTINI_APPRW | VNTINI_ACCESS_RW;
    // A bare name: the typed files place it themselves; type 0 takes it
    // from the current directory.
    char iniFile[VNT_MAX_PATH];
    const char* name = file ? file : "";
    if (Vnt_LfnNameIsPath(name)) vnt::copyBounded(iniFile, name);
    else if (flags & VNT_APP_MOD_INI_SYSDIR) Vnt_LfnNameMake(iniFile, progDir().c_str(), name, nullptr);
    else if (type != 0) vnt::copyBounded(iniFile, name);
    else Vnt_LfnNameMake(iniFile, ".", name, nullptr);
    char ext[VNT_MAX_PATH];
    Vnt_LfnNameSplit(iniFile, nullptr, nullptr, ext);
    if (!ext[0]) Vnt_LfnNameMake(iniFile, nullptr, nullptr, "ini");
    VntIni ini(iniFile, section, type);
    ini.ReadStr(key, "", path, sizeof path);
    if (argKey[0]) ini.ReadStr(argKey, "", args, sizeof args);
    if (!path[0]) Vnt_LfnNameMake(path, sizeof path, progDir().c_str(), "__VntXyzDummy__", nullptr);
    return true;
}

// What a load by name works on.
struct Request {
    char file[261];         // the module's file (or program)
    char args[261] = "";    // the argument text an INI module's entry gives
    const char* fn;         // the entry function ("" for the default)
    const char* shown;      // the name the user sees
};

enum class Step { Go, Done, Failed };

/*
 * A help module opens the help and is done; an INI module takes its file and
 * arguments from the INI entry it names. Either reports when it fails.
 */
Step resolveRequest(Request& rq, VNT_APP_MODFLAGS flags, const char* display) {
    ModState& st = modState();
    if (flags & VNT_APP_MOD_HELP) {
        if (openHelp(rq.file, rq.fn, st.current ? st.current->nModule : 0)) return Step::Done;
        vnt::host::Error err = vnt::host::lastError();
        if (!err) err = vnt::host::errorOf(vnt::host::ErrorKind::NotFound);
        st.current = nullptr;
        reportFailure(err.code, vnt::host::errorText(err), rq.file, rq.shown, flags);
        return Step::Failed;
    }
    if (flags & VNT_APP_MOD_INI) {
        char path[261] = "";
        if (!resolveIni(rq.file, rq.fn, flags, path, rq.args)) {
            st.current = nullptr;
            const vnt::host::Error err = vnt::host::errorOf(vnt::host::ErrorKind::NotFound);
            reportFailure(err.code, vnt::host::errorText(err), rq.file, rq.shown, flags);
            return Step::Failed;
        }
        vnt::copyBounded(rq.file, path);
        rq.fn = "";
        rq.shown = display && *display ? display : rq.file;
    }
    return Step::Go;
}

/*
 * Whether another module lets this one load: the exclusive module is asked
 * to close first; a current single-instance module with a window is only
 * activated (Done); one that asks first may refuse.
 */
Step mayLoad() {
    ModState& st = modState();
    VntWindowPort& port = Vnt_UiWindow();
    if (st.exclusive && !st.allowLoad) {
        if (Vnt_MsgSys(kMsgExclusiveOpen, st.exclusive->szDescription) != VNT_RESP_OK) return Step::Failed;
        VNT_HWND win = st.exclusive ? st.exclusive->hWndMain : nullptr;
        port.Send(win, VNT_WM_CLOSE, 0, 0);
        if (win && port.IsWindow(win)) return Step::Failed;
    }
    if (VNT_APP_MODINFOEX* cur = st.current) {
        if ((cur->nFlags & VNT_APP_MOD_SINGLE) && cur->hWndMain && port.IsWindow(cur->hWndMain)) {
            port.Send(port.MainWindow(), VNT_WM_MDIACTIVATE, reinterpret_cast<std::uintptr_t>(cur->hWndMain), 0);
            return Step::Done;
        }
        if ((cur->nFlags & (VNT_APP_MOD_ASK | VNT_APP_MOD_EXCLUSIVE)) &&
            port.Send(port.MainWindow(), kAskBeforeLoad, 0, 0) != 0)
            return Step::Failed;
    }
    return Step::Go;
}

/*
 * Starts the program `full` (then the bare name, found on PATH), or loads the
 * module library (the current module's when it is loaded already, else
 * `full`, then the bare name by the host's search). False after the failure
 * is reported.
 */
bool startOrLoad(const Request& rq, const char* full, bool hasPath, bool program, VNT_APP_MODFLAGS flags,
                 VNT_HINSTANCE& inst) {
    ModState& st = modState();
    bool started = false;
    inst = nullptr;
    unsigned long code = 0;
    std::string why;
    if (program) {
        char dir[VNT_MAX_PATH];
        if (hasPath) Vnt_LfnNameSplit(full, dir, nullptr, nullptr);
        else vnt::copyBounded(dir, progDir());
        started = vnt::host::startProgram(full, rq.args, dir);
        if (!started && !hasPath) started = vnt::host::startProgram(rq.file, rq.args, dir);
        if (!started) {
            code = vnt::host::lastError().code;
            why = vnt::host::lastErrorText();
        }
    } else if (st.current && st.current->hInstance) {
        inst = st.current->hInstance;
    } else {
        void* h = vnt::host::moduleLoad(full);
        if (!h && !hasPath) h = vnt::host::moduleLoad(rq.file);
        if (!h) {
            code = vnt::host::lastError().code;
            why = vnt::host::moduleError();
        }
        inst = static_cast<VNT_HINSTANCE>(h);
    }
    if (started || inst) return true;
    st.current = nullptr;
    reportFailure(code, why, full, rq.shown, flags);
    return false;
}

/*
 * Calls the module's entry function. A plain result is the load's result
 * (the library is freed unless the module is to be kept); a document
 * template opens its new document, which keeps the library loaded until the
 * template's last window closed. A template that opened no document is kept
 * itself, so that it is still destroyed with its library.
 */
bool callEntry(VNT_HINSTANCE inst, const char* entry, long arg1, long arg2, VNT_APP_MODFLAGS flags,
               const char* shown) {
    ModState& st = modState();
    auto call = reinterpret_cast<VNT_APP_MODENTRY>(vnt::host::moduleSymbol(inst, entry));
    if (!call) {
        Vnt_MsgSys(kMsgNoEntry, entry, shown);
        vnt::app::freeLibrary(inst, st.current);
        return false;
    }
    const std::intptr_t r = call(arg1, arg2);
    if (vnt::app::isPlainResult(r)) {
        st.result = static_cast<long>(r);
        if (!(flags & VNT_APP_MOD_KEEP)) vnt::app::freeLibrary(inst, st.current);
        return true;
    }
    auto* tmpl = reinterpret_cast<VntDocTemplate*>(r);
    VntDocTemplate* docTemplate = tmpl->OpenNewDocument();
    if (MOD_IE(st.current == nullptr, 7)) return false;
    st.current->pDocTemplate = docTemplate ? docTemplate : tmpl;
    st.current->hInstance = inst;
    return true;
}

// A load by name, step by step; the caller clears the allow-load mark.
bool loadByName(const char* fileArg, long arg1, long arg2, const char* function, VNT_APP_MODFLAGS flags,
                const char* display) {
    ModState& st = modState();
    Request rq;
    vnt::copyBounded(rq.file, fileArg);
    rq.fn = function ? function : "";
    rq.shown = display && *display ? display : rq.file;
    if (const Step s = resolveRequest(rq, flags, display); s != Step::Go) return s == Step::Done;
    if (MOD_IE(rq.file[0] == '\0', 1)) return false;
    if (flags & VNT_APP_MOD_ALLOW) st.allowLoad = true;
    if (const Step s = mayLoad(); s != Step::Go) return s == Step::Done;

    const bool hasPath = Vnt_LfnNameIsPath(rq.file);
    char full[VNT_MAX_PATH];
    if (hasPath) vnt::copyBounded(full, rq.file);
    else Vnt_LfnNameMake(full, vnt::app::startDir().c_str(), rq.file, nullptr);
    const char* entry = *rq.fn ? rq.fn : (st.defaultFunction ? st.defaultFunction : "");
    if (MOD_IE(*entry == '\0', 2)) return false;

    char ext[VNT_MAX_PATH];
    Vnt_LfnNameSplit(full, nullptr, nullptr, ext);
    const bool program = ext[0] && !vnt::sameText(ext, "dll") && !vnt::sameText(ext, "so");
    VNT_HINSTANCE inst = nullptr;
    if (!startOrLoad(rq, full, hasPath, program, flags, inst)) return false;
    if (flags & VNT_APP_MOD_EXCLUSIVE) st.exclusive = st.current;
    if (program) return true;
    return callEntry(inst, entry, arg1, arg2, flags, rq.shown);
}

}  // namespace

namespace vnt::app {

std::string startDir() {
    const char* dir = Vnt_AppStartDir();
    return dir && *dir ? std::string(dir) : vnt::host::curDir();
}

bool modInternalError(bool cond, int code, int line) { return Vnt__InternalError(cond, code, kModSource, line); }

std::int32_t commandId(long number) {
    return static_cast<std::int32_t>(number >= 1 && number <= 65535 ? number + 10000 : number);
}

/*
 * Prefixes may repeat and mix ("-ini", "i-"); "ini" is tested before "i",
 * and after it "w", "s" and "a" once each in that order. Case matters.
 */
VNT_APP_MODFLAGS parsePrefixes(char* file) {
    VNT_APP_MODFLAGS flags = 0;
    auto drop = [file](std::size_t n) { std::memmove(file, file + n, std::strlen(file + n) + 1); };
    while (*file) {
        if (std::strncmp(file, "ini", 3) == 0) {
            flags |= VNT_APP_MOD_INI;
            drop(3);
            if (*file == 'w') flags |= VNT_APP_MOD_INI_WINDIR, drop(1);
            if (*file == 's') flags |= VNT_APP_MOD_INI_SYSDIR, drop(1);
            if (*file == 'a') flags |= VNT_APP_MOD_INI_APPRW, drop(1);
        } else if (std::strncmp(file, "hlp", 3) == 0) {
            flags |= VNT_APP_MOD_HELP | VNT_APP_MOD_MARK;
            drop(3);
        } else if (*file == '-') {
            flags |= VNT_APP_MOD_QUIET;
            drop(1);
        } else if (*file == 'i') {
            flags |= VNT_APP_MOD_MARK;
            drop(1);
        } else {
            break;
        }
    }
    return flags;
}

bool isPlainResult(std::intptr_t result) {
    return result == -1 || static_cast<std::uintptr_t>(result) < 0x10000u;
}

VNT_APP_MODINFOEX* findRecord(long number) {
    ModState& st = modState();
    for (long i = 0; st.table && i < st.count; ++i) {
        if (st.table[i].nModule == number) {
            st.cursor = i;
            return &st.table[i];
        }
    }
    return nullptr;
}

/*
 * One line per module: number, file, description, function, flags. The
 * table is read once; its records stay where they are until it is freed,
 * because callers keep pointers to them.
 */
bool loadModuleTable() {
    ModState& st = modState();
    if (st.table) return true;
    VntIni ini("Modules.vtm", nullptr, VNTINI_APP | VNTINI_ACCESS_RO);
    // A damaged file is told about once, when a module is asked for: it is
    // tried by the reader first, whose own report would end the process
    // when it is not confirmed.
    VNT_VTM_REPORT old = Vnt_VtmSetReport([](const char*) -> VNT_RESP { return VNT_RESP_OK; });
    VNT_MSG probe = Vnt_VtmOpen(ini.File());
    long status = Vnt_VtmStatus();
    if (probe) Vnt_VtmClose(probe);
    Vnt_VtmSetReport(old);
    const bool opened = probe && ini.Open(nullptr, VNTINI_KEEP, false);
    if (probe && !opened) status = Vnt_VtmStatus();
    const long count = opened ? ini.CountEntries() : 0;
    if (count < 1) {
        st.tableFile = ini.File();
        st.tableStatus = opened ? VNT_VTM_E_EMPTY : (status ? status : VNT_VTM_E_OPEN);
        return false;
    }
    auto* table = new (std::nothrow) VNT_APP_MODINFOEX[static_cast<std::size_t>(count) + 1]();
    if (table == nullptr) return false;
    for (long i = 0; i < count && ini.ReadStr(nullptr, 0); ++i) {
        VNT_APP_MODINFOEX& r = table[i];
        long number = 0, flags = 0;
        ini.TokenFirst(0L, &number);
        ini.TokenNext("", r.szFile, sizeof r.szFile);
        ini.TokenNext("", r.szDescription, sizeof r.szDescription);
        ini.TokenNext("", r.szFunction, sizeof r.szFunction);
        ini.TokenNext(0L, &flags);
        r.nModule = static_cast<std::int32_t>(number);
        r.nCmdId = commandId(number);
        r.nFlags = static_cast<VNT_APP_MODFLAGS>(flags) | parsePrefixes(r.szFile);
    }
    st.table = table;
    st.count = count;
    return true;
}

bool moduleTableLoaded() { return modState().table != nullptr; }

}  // namespace vnt::app

using vnt::app::findRecord;

const VNT_APP_MODINFOEX* Vnt_AppModInfoEx(long module) {
    ModState& st = modState();
    if (noTable(3, __LINE__)) return nullptr;
    const long long n = module;
    if (n == VNT_APP_MODINFO_FIRST || n == 0x80000000LL) {
        st.cursor = 0;
        return &st.table[0];
    }
    if (n == VNT_APP_MODINFO_NEXT || n == 0x80000001LL) {
        if (st.cursor < st.count - 1) return &st.table[++st.cursor];
        return nullptr;
    }
    return findRecord(module);
}

const VNT_APP_MODINFO* Vnt_AppModInfo(long module) {
    return reinterpret_cast<const VNT_APP_MODINFO*>(Vnt_AppModInfoEx(module));
}

bool Vnt_AppModLoad(long module, long arg1, long arg2, bool search) {
    ModState& st = modState();
    st.current = nullptr;
    if (noTable(4, __LINE__)) return false;
    if (module == VNT_APP_MOD_DISABLE_LIST) {
        for (const long* n = reinterpret_cast<const long*>(arg1); n && *n >= 1; ++n) {
            VNT_APP_MODINFOEX* r = nullptr;
            for (long i = 0; i < st.count && !r; ++i)
                if (st.table[i].nModule == *n) r = &st.table[i];
            if (MOD_IE(r == nullptr, 12)) return false;
            r->bDisabled = true;
        }
        return true;
    }
    VNT_APP_MODINFOEX* rec;
    if (module == VNT_APP_MOD_AT_CURSOR) {
        if (MOD_IE(st.cursor < 0 || st.cursor >= st.count, 6)) return false;
        rec = &st.table[st.cursor];
    } else if ((rec = findRecord(module)) == nullptr) {
        Vnt_MsgSys(kMsgNoModule, module);
        return false;
    }
    if (rec->bDisabled) {
        Vnt_UiWindow().Send(Vnt_UiWindow().MainWindow(), VNT_WM_COMMAND, static_cast<std::uintptr_t>(rec->nCmdId), 0);
        return false;
    }
    char file[VNT_MAX_PATH];
    vnt::copyBounded(file, rec->szFile);
    if (search) {
        char found[VNT_MAX_PATH];
        if (Vnt_LfnFileFind(rec->szFile, found) || findLibrary(rec->szFile, found)) vnt::copyBounded(file, found);
        else Vnt_LfnNameMake(file, progDir().c_str(), rec->szFile, nullptr);
    }
    st.current = rec;
    const bool wasSilent = st.silent;
    st.silent = rec->nModule == -1;
    const bool ok = Vnt_AppModLoad(file, arg1, arg2, rec->szFunction, rec->nFlags, rec->szDescription);
    st.silent = wasSilent;
    return ok;
}

bool Vnt_AppModLoad(const char* file, long arg1, long arg2, const char* function, VNT_APP_MODFLAGS flags,
                    const char* display) {
    ModState& st = modState();
    st.result = 0;
    const bool ok = loadByName(file, arg1, arg2, function, flags, display);
    st.allowLoad = false;
    return ok;
}
