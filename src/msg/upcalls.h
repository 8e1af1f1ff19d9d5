// What the message layer needs of the layers above it. A layer calls up by
// no name, so those layers install these calls when the library is loaded;
// without them the defaults below hold.
#pragma once

#include <string>

namespace vnt::msg {

struct Upcalls {
    /// The message box's memory of switched-off messages ("Msg.ini", kept
    /// by the INI layer): whether the message `key` ("APPMSG.7") is
    /// switched off, and switching it off. Null: nothing is remembered.
    bool (*isSwitchedOff)(const std::string& key) = nullptr;
    void (*switchOff)(const std::string& key) = nullptr;
    /// Ends the application (the application frame closes the database
    /// connection and the main window first). Null: the host ends the
    /// process at once.
    void (*endApplication)(int code) = nullptr;
};

/// The one set of calls. Installed once at load, so no reset clears it.
Upcalls& upcalls();

/// Ends the application with `code` through the installed call, else
/// through the host. Does not return.
[[noreturn]] void endApplication(int code);

}  // namespace vnt::msg
