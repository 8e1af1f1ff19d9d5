// The application profile: an interface an application may implement; the
// library's default keeps it in the user's settings file.
#include "vanto/ini.h"

#include "base/port_slot.h"

namespace {

vnt::PortSlot<VntAppProfile>& profileSlot() {
    static VntUserFileProfile userFile;
    static vnt::PortSlot<VntAppProfile> slot(userFile);
    return slot;
}

}  // namespace

std::string VntUserFileProfile::GetProfileString(const char* section, const char* entry, const char* def) {
    VNT_PATH file;
    char value[1024];
    Vnt_IniUserFile(file);
    unsigned long n = Vnt_ProfileGetString(section, entry, def, value, sizeof value, file);
    return std::string(value, n);
}

bool VntUserFileProfile::WriteProfileString(const char* section, const char* entry, const char* value) {
    VNT_PATH file;
    Vnt_IniUserFile(file);  // also creates the user's directory
    return Vnt_ProfileWriteString(section, entry, value, file);
}

VntAppProfile& Vnt_AppProfile() { return profileSlot().get(); }

VntAppProfile* Vnt_AppSetProfile(VntAppProfile* profile) { return profileSlot().set(profile); }
