// The message box's memory of switched-off messages, kept in "Msg.ini"
// through the profile functions.
#include "msg/msg_ini.h"

#include <string_view>

#include "base/names.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"

namespace vnt::msg::ini {
/*
 * A line end can never be part of a stored value, so a default of "\n" tells
 * a missing key from an empty value.
 */
bool read(const char* file, const char* section, const char* key, std::string& value) {
    value.clear();
    if (file == nullptr || section == nullptr || key == nullptr) return false;
    char buf[1024];
    unsigned long n = Vnt_ProfileGetString(section, key, "\n", buf, sizeof buf, file);
    if (n == 1 && buf[0] == '\n') return false;
    value.assign(buf, n);
    return true;
}

bool write(const char* file, const char* section, const char* key, const char* value) {
    if (file == nullptr || section == nullptr || key == nullptr || value == nullptr) return false;
    const std::string val(vnt::trim(value));
    if (!Vnt_LfnDirCreateFromFile(file)) return false;
    return Vnt_ProfileWriteString(section, key, val.c_str(), file);
}

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

}  // namespace vnt::msg::ini
