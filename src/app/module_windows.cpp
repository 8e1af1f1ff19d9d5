// The window table, unloading module libraries, the module result and value
// stack, modal loops, the client-change chain and the version check.
#include "app/module_internal.h"

#include <cstring>

#include "app/modtable.h"
#include "base/format.h"
#include "base/strbuf.h"
#include "host/module.h"
#include "vanto/app.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/window.h"

namespace {

using vnt::app::kModSource;
using vnt::app::ModState;
using vnt::app::modState;

constexpr long kMsgOutdatedMain = 60290;  // module file; a main window exists
constexpr long kMsgOutdatedEnd = 60291;   // module file; the program then ends
constexpr unsigned kModalStart = 0x7F11, kModalEnd = 0x7F12;

int slotOf(const ModState& st, VNT_HWND window) {
    for (int i = 0; i < vnt::app::kWindowSlots && st.slots[i].window; ++i)
        if (st.slots[i].window == window) return i;
    return -1;
}

int usedSlots(const ModState& st) {
    int n = 0;
    while (n < vnt::app::kWindowSlots && st.slots[n].window) ++n;
    return n;
}

}  // namespace

namespace vnt::app {

ModState& modState() {
    static ModState state;
    return state;
}

void freeLibrary(VNT_HINSTANCE instance, VNT_APP_MODINFOEX* record) {
    if (record == nullptr) {
        vnt::host::moduleClose(instance);
        return;
    }
    if (record->nOpenWindows > 0) return;
    vnt::host::moduleClose(instance);
    record->hInstance = nullptr;
    record->bUnloadPending = false;
}

/*
 * A template's library goes only once its documents are closed: the
 * template is taken out of the application and destroyed first, because its
 * code lives in the library. The first record that cannot go stops the run.
 */
void runPendingUnloads(const VNT_APP_MODINFOEX* keep) {
    ModState& st = modState();
    for (long i = 0; st.table && i < st.count; ++i) {
        VNT_APP_MODINFOEX& r = st.table[i];
        if (!r.bUnloadPending || &r == keep) continue;
        if (MOD_IE(r.pDocTemplate == nullptr, 9)) return;
        if (r.pDocTemplate->HasOpenDocuments()) {
            const std::string text = vnt::format(
                "!Internal Error %d.\n\nDocTemplate for '%s' still has open documents.", 10, r.szDescription);
            Vnt__MsgErr(kModSource, __LINE__, text.c_str());
            return;
        }
        VntDocTemplate* t = r.pDocTemplate;
        r.pDocTemplate = nullptr;
        t->RemoveFromApp();
        t->Destroy();
        freeLibrary(r.hInstance, &r);
    }
}

void freeModuleTable() {
    ModState& st = modState();
    delete[] st.table;
    st.table = nullptr;
    st.count = 0;
    // Nothing may point into the records any more.
    st.current = st.exclusive = nullptr;
    st.cursor = -1;
    for (ModState::Slot& s : st.slots) s = {};
}

void resetModules() {
    ModState& st = modState();
    for (long i = 0; st.table && i < st.count; ++i)
        if (st.table[i].hInstance) vnt::host::moduleClose(st.table[i].hInstance);
    delete[] st.table;
    st = ModState{};
}

}  // namespace vnt::app

using vnt::app::kWindowSlots;

VNT_HWND Vnt_AppModHwnd(long slot) {
    return slot >= 0 && slot < kWindowSlots ? modState().slots[slot].window : nullptr;
}

bool Vnt_AppInit(VNT_HWND window, long module) {
    ModState& st = modState();
    VNT_APP_MODINFOEX* rec;
    if (module < 0) {
        // The module being loaded now: its own record, also when several
        // records share its number (client-change modules are all -1).
        if (MOD_IE(st.current == nullptr, 5)) return false;
        rec = st.current;
    } else {
        rec = nullptr;
        for (long i = 0; st.table && i < st.count && !rec; ++i)
            if (st.table[i].nModule == module) rec = &st.table[i];
        if (rec == nullptr) return true;  // a window of no module is not registered
    }
    if (window == nullptr) return false;
    if (rec->nFlags & (VNT_APP_MOD_SINGLE | VNT_APP_MOD_EXCLUSIVE)) rec->hWndMain = window;
    if (slotOf(st, window) >= 0) return false;
    const int free = usedSlots(st);
    if (MOD_IE(free >= kWindowSlots, 8)) return false;
    vnt::app::runPendingUnloads(rec);
    ++rec->nOpenWindows;
    rec->bUnloadPending = false;
    st.slots[free] = {window, rec};
    return true;
}

/*
 * The exclusive module ends with any window that closes, not only its own:
 * the frame cannot tell which of a module's windows was the exclusive one.
 */
void Vnt_AppTerm(VNT_HWND window) {
    ModState& st = modState();
    const int at = window ? slotOf(st, window) : -1;
    if (at >= 0 && st.slots[at].record) st.slots[at].record->hWndMain = nullptr;
    st.exclusive = nullptr;
    if (at < 0) return;
    VNT_APP_MODINFOEX* rec = st.slots[at].record;
    vnt::app::runPendingUnloads(rec);
    if (rec->nOpenWindows > 0) --rec->nOpenWindows;
    if (rec->pDocTemplate && rec->nOpenWindows == 0) rec->bUnloadPending = true;
    const int used = usedSlots(st);
    for (int i = at; i + 1 < used; ++i) st.slots[i] = st.slots[i + 1];
    st.slots[used - 1] = {};
}

long Vnt_AppModResult() { return modState().result; }
void Vnt_AppModSetResult(long result) { modState().result = result; }

bool Vnt_AppModQueuePush(long value) {
    ModState& st = modState();
    if (st.top >= vnt::app::kStackSize - 1) return false;
    st.stack[++st.top] = value;
    return true;
}

long Vnt_AppModQueuePop() {
    ModState& st = modState();
    if (st.top < 0) return 0;
    const long v = st.stack[st.top];
    st.stack[st.top--] = 0;
    return v;
}

void Vnt_AppModSetFunctionName(const char* name) { modState().defaultFunction = name ? name : ""; }

void Vnt_AppModAllowLoad() { modState().allowLoad = true; }

int Vnt_AppModalLoop(VNT_HWND window, unsigned long flags) {
    VntWindowPort& port = Vnt_UiWindow();
    port.Send(port.MainWindow(), kModalStart, reinterpret_cast<std::uintptr_t>(window), 0);
    return port.RunModalLoop(window, flags);
}

void Vnt_AppModalEnd(VNT_HWND window, int result) {
    VntWindowPort& port = Vnt_UiWindow();
    port.EndModalLoop(window, result);
    port.Send(port.MainWindow(), kModalEnd, reinterpret_cast<std::uintptr_t>(window), 0);
}

/*
 * The client-change modules run one after the other, each at the cursor so
 * that records sharing the number -1 are told apart; a module they name by
 * their result runs in between, and the cursor is set back after it.
 */
bool Vnt_AppModRunClientChain() {
    ModState& st = modState();
    if (st.table == nullptr) return true;
    const VNT_APP_MODINFO* rec = Vnt_AppModInfo(-1);
    bool splashHidden = false;
    for (; rec && rec->nCmdId == -1; rec = Vnt_AppModInfo(VNT_APP_MODINFO_NEXT)) {
        if (rec->nFlags & VNT_APP_MOD_USER_OPTION) {
            VntIni user(nullptr, "Main", VNTINI_USER);
            if (user.ReadInt(rec->szFile, 1) == 0) continue;
        }
        if (!splashHidden) {
            Vnt_UiWindow().HideSplash();
            splashHidden = true;
        }
        const VNT_APP_MODFLAGS flags = rec->nFlags;
        Vnt_AppModSetResult(0);
        if (!Vnt_AppModLoad(VNT_APP_MOD_AT_CURSOR, 0, 0, false)) {
            if (flags & VNT_APP_MOD_QUIET) continue;
            return false;
        }
        const long result = Vnt_AppModResult();
        if (result < 0) return false;
        if (result > 0) {
            const long cursor = st.cursor;
            Vnt_AppModLoad(result, 0, 0, false);
            st.cursor = cursor;
        }
    }
    return true;
}

/*
 * The version block is the exported object VntModuleVersion of the module
 * library, read by loading the library. The high and low double words are
 * compared each on its own (3.4 does not satisfy 2.5), as applications
 * expect.
 */
bool Vnt__AppModCheckVer(const char* sourceFile, int line, const char* file, unsigned long minHigh,
                         unsigned long minLow) {
    char full[VNT_MAX_PATH];
    const char* name = file ? file : "";
    if (Vnt_LfnNameIsPath(name)) vnt::copyBounded(full, name);
    else Vnt_LfnNameMake(full, vnt::app::startDir().c_str(), name, nullptr);
    void* lib = vnt::host::moduleLoad(full);
    if (!lib && !Vnt_LfnNameIsPath(name)) lib = vnt::host::moduleLoad(name);
    bool ok = false;
    if (lib) {
        std::size_t size = 0;
        const void* block = vnt::host::moduleSymbol(lib, VNT_APP_MODVERSION_SYMBOL, &size);
        // A size of 0 is one the host cannot tell (Win32 exports carry none).
        if (block == nullptr || MOD_IE(size != 0 && size != sizeof(VNT_APP_MODVERSION), 13)) {
            vnt::host::moduleClose(lib);
            return false;
        }
        VNT_APP_MODVERSION v;
        std::memcpy(&v, block, sizeof v);
        vnt::host::moduleClose(lib);
        ok = minHigh <= v.dwFileVersionMS && minLow <= v.dwFileVersionLS;
    }
    if (ok) return true;
    const bool mainWindow = Vnt_UiWindow().MainWindow() != nullptr;
    VNT_MSG sys = Vnt_MsgHInit();
    const char* text = Vnt_MsgHSprintf(sys, mainWindow ? kMsgOutdatedMain : kMsgOutdatedEnd, name);
    const std::string report = text ? text : "";
    if (sys) Vnt_MsgHTerm(&sys);
    Vnt__MsgErr(sourceFile, line, report.c_str());
    if (!mainWindow) Vnt_AppMainExitApplication(0);
    return false;
}
