// The application's start and end (vanto/app.h): program names, the
// library services, the version record, the hard exit, and the frame's
// small utilities (busy cursor, delays, keyboard state, prefix ranges).
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>

#include "app/modtable.h"
#include "base/strbuf.h"
#include "host/process.h"
#include "host/time.h"
#include "msg/upcalls.h"
#include "vanto/app.h"
#include "vanto/lfn.h"
#include "vanto/locale.h"
#include "vanto/msg.h"
#include "vanto/ui/window.h"

static_assert(offsetof(VNT_APP_VER, nMajor) == 0 && offsetof(VNT_APP_VER, nMinor) == 4 &&
              offsetof(VNT_APP_VER, nVersion) == 8 && offsetof(VNT_APP_VER, nEntry6) == 12 &&
              offsetof(VNT_APP_VER, nEntry5) == 16 && offsetof(VNT_APP_VER, szEntry7) == 20 &&
              offsetof(VNT_APP_VER, szEntry8) == 24, "version record: fixed part");
static_assert(offsetof(VNT_APP_VER, pszText1) % alignof(char*) == 0 &&
              offsetof(VNT_APP_VER, pszText1) - 28 < alignof(char*) &&
              offsetof(VNT_APP_VER, pszText2) == offsetof(VNT_APP_VER, pszText1) + sizeof(char*) &&
              offsetof(VNT_APP_VER, szEntry9) == offsetof(VNT_APP_VER, pszText2) + sizeof(char*) &&
              sizeof(VNT_APP_VER::szEntry9) == 6, "version record: text part");

namespace {

struct LifeState {
    VNT_PATH progDir = {};
    VNT_PATH progName = {};
    VNT_PATH baseName = {};
    VNT_PATH startDir = {};
    VNT_MSG appMsg = nullptr;  // "APPMSG", opened by the init
    VNT_APP_VER ver = {};
    char verText1[128] = {};
    char verText2[60] = {};
    bool busy = false;
    void (*connClose)() = nullptr;
    bool (*edInit)() = nullptr;
    void (*edTerm)() = nullptr;
};

LifeState& state() {
    static LifeState s;
    return s;
}

// Text of a number as the record stores it: leading digits, else 0.
std::int32_t number(VNT_MSG h, long entry) {
    return static_cast<std::int32_t>(std::atoi(Vnt_MsgHLoad(h, entry)));
}

}  // namespace

namespace vnt::app {

void resetLifecycle() { state() = LifeState{}; }

}  // namespace vnt::app

bool Vnt_AppMainInit(const char* /*commandLine*/) {
    if (vnt::app::moduleTableLoaded()) return true;
    LifeState& st = state();
    Vnt_LfnProgDirName(st.progDir, sizeof st.progDir);
    Vnt_LfnProgName(st.progName, sizeof st.progName);
    Vnt_LfnDirSave(st.startDir);
    vnt::copyBounded(st.baseName, st.progName);
    Vnt_LfnNameExtS(st.baseName, sizeof st.baseName, "");

    st.appMsg = Vnt_AppMsgInit(nullptr);
    if (!st.appMsg) return false;
    // Without a module table the services stay off, and that is no failure:
    // small tools of the family run without one.
    if (vnt::app::loadModuleTable() && !Vnt_LibInit()) return false;
    Vnt_AppVerInfo();
    return true;
}

// Only an initialised library is taken down; the message library opened by
// an init without module table is left open (kept as it always was).
void Vnt_AppMainTerm() {
    if (!vnt::app::moduleTableLoaded()) return;
    Vnt_LibTerm();
    Vnt_AppMsgTerm(&state().appMsg);
    vnt::app::freeModuleTable();
}

void Vnt_AppMainExitApplication(int code) {
    if (void (*close)() = state().connClose) close();
    VntWindowPort& win = Vnt_UiWindow();
    if (VNT_HWND main = win.MainWindow()) win.Destroy(main);
    vnt::host::exitProcess(code);
}

namespace {
// The message layer ends the application this way after a report the user
// did not confirm.
[[maybe_unused]] const bool endInstalled = (vnt::msg::upcalls().endApplication = Vnt_AppMainExitApplication, true);
}  // namespace

void (*Vnt_AppSetConnCloseHook(void (*closeConnection)()))() {
    void (*old)() = state().connClose;
    state().connClose = closeConnection;
    return old;
}

bool Vnt_LibInit() {
    if (!Vnt_MsgItfInit(Vnt_ResLibInstance(), 0xE000, nullptr)) return false;
    if (!Vnt_SysInit()) return false;
    return Vnt_EdInit();
}

void Vnt_LibTerm() {
    Vnt_EdTerm();
    Vnt_SysTerm();
    Vnt_MsgItfTerm();
}

bool Vnt_EdInit() { return state().edInit ? state().edInit() : true; }

void Vnt_EdTerm() {
    if (state().edTerm) state().edTerm();
}

void Vnt_EdSetHooks(bool (*init)(), void (*term)()) {
    state().edInit = init;
    state().edTerm = term;
}

const char* Vnt_AppProgDir() { return state().progDir; }
const char* Vnt_AppProgName() { return state().progName; }
const char* Vnt_AppProgBaseName() { return state().baseName; }
const char* Vnt_AppStartDir() { return state().startDir; }

/*
 * The record is kept once a major version was read; a library without
 * "APPVER", or one giving major 0, is asked again on every call.
 */
const VNT_APP_VER* Vnt_AppVerInfo() {
    LifeState& st = state();
    VNT_APP_VER& v = st.ver;
    v.pszText1 = st.verText1;
    v.pszText2 = st.verText2;
    if (v.nMajor != 0) return &v;
    VNT_MSG h = Vnt_AppMsgInit("APPVER");
    if (!h) return &v;
    // Preloaded texts come back in place rather than in the buffer.
    vnt::copyBounded(st.verText1, Vnt_MsgHGet(h, 1, st.verText1, sizeof st.verText1));
    vnt::copyBounded(st.verText2, Vnt_MsgHGet(h, 2, st.verText2, sizeof st.verText2));
    v.nMajor = number(h, 3);
    v.nMinor = number(h, 4);
    v.nEntry5 = number(h, 5);
    v.nEntry6 = number(h, 6);
    vnt::copyBounded(v.szEntry7, Vnt_MsgHLoad(h, 7));
    vnt::copyBounded(v.szEntry8, Vnt_MsgHLoad(h, 8));
    vnt::copyBounded(v.szEntry9, Vnt_MsgHLoad(h, 9));
    Vnt_MsgHTerm(&h);
    v.nVersion = v.nMajor * 100 + v.nMinor;
    return &v;
}

void Vnt_Busy() {
    state().busy = true;
    Vnt_UiWindow().BusyCursor(true);
}

void Vnt_Unbusy() {
    if (!state().busy) return;
    Vnt_UiWindow().BusyCursor(false);
    state().busy = false;
}

// The window port's wait: events served, sleeping between the passes.
void Vnt_Delay(unsigned long ms, VNT_HWND /*dialog*/) {
    if (ms > 0) Vnt_UiWindow().Wait(static_cast<long>(std::min<unsigned long>(ms, 0x7FFFFFFF)));
}

void Vnt_DelayWait(unsigned long ms) {
    const std::int64_t end = vnt::host::tickMs() + static_cast<std::int64_t>(ms);
    for (std::int64_t now = vnt::host::tickMs(); now < end; now = vnt::host::tickMs())
        vnt::host::sleepMs(static_cast<long>(end - now));
}

KEYSTATE Vnt_KeyState() {
    return static_cast<KEYSTATE>(Vnt_UiWindow().KeyState() & (KEYSTATE_SHIFT | KEYSTATE_CTRL | KEYSTATE_ALT));
}

namespace {

// The decimal text of `bound` with every character `fill` and the start
// overwritten by as much of `prefix` as fits, as a number.
long prefixed(const std::string& prefix, long bound, char fill) {
    std::string s(std::to_string(bound).size(), fill);
    s.replace(0, std::min(s.size(), prefix.size()), prefix, 0, std::min(s.size(), prefix.size()));
    return std::strtol(s.c_str(), nullptr, 10);
}

}  // namespace

long Vnt_LongBeginsWith(long prefix, long low, long high, long* outLow, long* outHigh) {
    long lowSink = 0, highSink = 0;
    if (!outLow) outLow = &lowSink;
    if (!outHigh) outHigh = &highSink;
    const std::string p = std::to_string(prefix);
    *outLow = prefixed(p, low, '0');
    const long result = *outLow;
    if (*outLow < low) *outLow = low;
    *outHigh = prefixed(p, high, '9');
    if (*outHigh <= high && *outHigh >= *outLow) return result;
    // Past the high end: the computed high value is the answer (kept so).
    const long computedHigh = *outHigh;
    *outHigh = high;
    return computedHigh;
}
