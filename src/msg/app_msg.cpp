// The application's own message library, named after the program, and its
// segment "APPMSG", which the Vnt_AppMsg* functions use.
#include <cstring>

#include "base/names.h"
#include "base/strbuf.h"
#include "msg/msg_state.h"
#include "vanto/lfn.h"
#include "vanto/text.h"

namespace vnt::msg {

void setAppFrame(bool mainApp, bool module) {
    textState().frameMain = mainApp;
    textState().frameModule = module;
}

namespace {

// The program's name without its extension ("Z:\opt\Fibu.exe" => "Fibu").
std::string programName() {
    VNT_PATH name;
    if (!Vnt_LfnProgName(name, sizeof name)) return {};
    std::string s = name;
    if (std::size_t dot = s.rfind('.'); dot != std::string::npos && dot > 0) s.resize(dot);
    return s;
}

}  // namespace
}  // namespace vnt::msg

using namespace vnt::msg;

void Vnt_AppMsgSetName(const char* name) {
    VNT_PATH buf;
    vnt::copyBounded(buf, name);
    textState().appName = buf;
}

/*
 * Opens the application library once (it is reused while open) and its
 * segment "APPMSG". Returns "APPMSG", or a new reference of the named
 * segment; inside a module of a main application a segment named like the
 * application library is that library itself.
 */
VNT_MSG Vnt_AppMsgInit(const char* segment) {
    TextState& st = textState();
    if (st.appName.empty()) st.appName = programName();
    if (Vnt__InternalError(st.appName.empty() && !segment, 1, kSourceAppMsg, __LINE__)) return nullptr;
    if (!alive(st.appLib)) {
        st.appLib = nullptr;
        st.appMsg = nullptr;
        VNT_MSG sys = Vnt_MsgHInit(nullptr, nullptr);
        st.appLib = Vnt_MsgHInit(nullptr, st.appName.c_str());
        Vnt_MsgHTerm(&sys);
        if (!st.appLib) return nullptr;
    }
    if (!alive(st.appMsg)) st.appMsg = Vnt_MsgHInit(st.appLib, "APPMSG");
    if (!segment) return st.appMsg;
    if (st.frameMain && st.frameModule && vnt::sameText(st.appName, segment))
        return Vnt_MsgHInit(nullptr, st.appName.c_str());
    return Vnt_MsgHInit(st.appLib, segment);
}

/*
 * Closes the given handle and "APPMSG" (once, when the handle is "APPMSG"
 * itself). The application library stays open for the next init.
 */
void Vnt_AppMsgTerm(VNT_MSG* handle) {
    TextState& st = textState();
    if (handle && *handle && *handle != st.appMsg) Vnt_MsgHTerm(handle);
    if (handle) *handle = nullptr;
    if (st.appMsg) Vnt_MsgHTerm(&st.appMsg);
    st.appMsg = nullptr;
}

VNT_MSG Vnt_AppMsgGetHandle() { return textState().appMsg; }

VNT_RESP Vnt_AppMsg(VntMsgRef ref, ...) {
    va_list ap;
    va_start(ap, ref);
    VNT_RESP r = Vnt__Msg(textState().appMsg, ref, ap, 0, -1);
    va_end(ap);
    return r;
}

const char* Vnt_AppMsgLoad(VntMsgRef ref) { return Vnt_MsgHLoad(textState().appMsg, ref); }

const char* Vnt_AppMsgGet(VntMsgRef ref, char* buf, unsigned size) {
    if (Vnt__InternalError(buf == nullptr, 500, kSourceAppMsg, __LINE__)) return nullptr;
    return Vnt_MsgHGet(textState().appMsg, ref, buf, size);
}
