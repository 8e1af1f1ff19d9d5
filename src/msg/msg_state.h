// Private state of message handles and texts: handles, the text ring,
// titles, counters, the application library and the resource strings, kept
// in one object so that tests can start from a clean one (resetTexts).
#pragma once

#include <cstdarg>
#include <map>
#include <string>

#include "msg/msg_internal.h"

namespace vnt::msg {

// Source names given to internal error reports of these files.
inline constexpr const char* kSourceMsg = "Msg/Vnt_msg";
inline constexpr const char* kSourceAppMsg = "App/Vnt_AppMsg";
// The environment variable that names a directory holding the system library.
inline constexpr const char* kSysLibDirVariable = "VANTORTL_MSGDIR";

struct TextState {
    // Handles.
    std::string sysName = "VNT60LIB";  // system library name, 259 characters at most
    long initCount = 0;                // Vnt_MsgHInit calls not yet matched by a term
    VNT_MSG sys = nullptr;             // the system library as opened here

    // Texts.
    char ring[4][kTextSize] = {};
    unsigned ringNext = 0;
    long lastId = 0;
    std::string scratch = std::string(kTextSize, '\0');  // formatting

    // Vnt__MsgExtCheck.
    int notFoundOff = 0;
    int second = 0;
    int third = 0;

    // Titles and the interface.
    char title[kTitleSize] = {};
    bool titleSet = false;
    char defaultTitle[kTitleSize] = {};
    char prevTitle[kTitleSize] = {};
    bool started = false;

    // The application library and its segment "APPMSG".
    std::string appName;
    VNT_MSG appLib = nullptr;
    VNT_MSG appMsg = nullptr;
    bool frameMain = false;    // the two switches of the application frame
    bool frameModule = false;

    // Resource strings registered by modules; the library's own language.
    std::map<VNT_HINSTANCE, std::map<long, std::string>> res;
    bool english = false;
    bool languageSet = false;  // by the application; else the system library's
};

TextState& textState();

/// True while `lib` is an open library or segment of the reader.
bool alive(VNT_MSG lib);

/// Formats into `out` (`size` bytes, at most size - 1 characters, always
/// terminated) through the state's scratch buffer; returns the count.
std::size_t formatInto(char* out, std::size_t size, const char* fmt, va_list args);

/// Sets the two switches of the application frame: running inside a main
/// application, and as a module. With both on, Vnt_AppMsgInit asked for a
/// segment named like the application library returns that library.
void setAppFrame(bool mainApp, bool module);

}  // namespace vnt::msg
