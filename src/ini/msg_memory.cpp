// The message box's memory of switched-off messages, kept in "Msg.ini"
// through the profile functions and installed into the message layer.
#include <string>

#include "msg/upcalls.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"

namespace {

/*
 * The switched-off messages' file: the user directory, which is the program
 * directory's "USR\Std" until the standard INI files take over, and
 * "Msg.ini" in it. Program "Z:\opt\acme\Fibu" => "Z:\opt\acme\USR\Std\Msg.ini".
 * False when the program directory cannot be told.
 */
bool msgIniPath(std::string& path) {
    path.clear();
    VNT_PATH dir;
    if (!Vnt_LfnProgDirName(dir, sizeof dir)) return false;
    std::string p = dir;
    if (!p.empty() && p.back() != '\\') p += '\\';
    p += "USR\\Std\\Msg.ini";
    if (p.size() >= VNT_MAX_PATH) return false;
    path = p;
    return true;
}

/*
 * "0" (or another number reading 0) switches a message off; a missing key
 * or a text counts as 1. A line end can never be part of a stored value, so
 * a default of "\n" tells a missing key from an empty value.
 */
bool isSwitchedOff(const std::string& key) {
    std::string path;
    if (!msgIniPath(path)) return false;
    char buf[1024];
    const unsigned long n = Vnt_ProfileGetString("Msg", key.c_str(), "\n", buf, sizeof buf, path.c_str());
    if (n == 0 || (n == 1 && buf[0] == '\n')) return false;
    const std::string value(buf, n);
    std::size_t i = value[0] == '-' || value[0] == '+' ? 1 : 0;
    if (i >= value.size() || value[i] < '0' || value[i] > '9') return false;
    while (i < value.size() && value[i] == '0') ++i;
    return i >= value.size() || value[i] < '0' || value[i] > '9';
}

// The file's directory is created; the file is replaced through a temporary file.
void switchOff(const std::string& key) {
    std::string path;
    if (msgIniPath(path) && Vnt_LfnDirCreateFromFile(path.c_str()))
        Vnt_ProfileWriteString("Msg", key.c_str(), "0", path.c_str());
}

[[maybe_unused]] const bool installed = [] {
    vnt::msg::upcalls().isSwitchedOff = isSwitchedOff;
    vnt::msg::upcalls().switchOff = switchOff;
    return true;
}();

}  // namespace
