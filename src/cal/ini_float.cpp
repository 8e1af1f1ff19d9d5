// The typed INI values that are numbers with decimals: written and read with
// the amount rules, so they live above those.
#include <string>

#include "ini/ini_stream.h"
#include "vanto/amount.h"
#include "vanto/ini.h"

void VntIni::ReadFloat(const char* entry, double def, double& out, int decimals, int num) {
    std::string defText;
    Vnt_FloatToStr(defText, def, decimals, true);
    char buf[60];
    if (ReadStr(entry, defText.c_str(), buf, sizeof buf, num) == 0)
        out = def;
    else
        Vnt_FloatFromStr(buf, &out, decimals);
}

bool VntIni::WriteFloat(const char* entry, double value, int decimals, int num, double def) {
    const bool same = !(value < def) && !(value > def);
    std::string text;
    if (!same) Vnt_FloatToStr(text, value, decimals, true);
    return WriteStr(entry, same ? nullptr : text.c_str(), num);
}

void VntIni::DX(bool write, const char* entry, double& value, double def, int decimals, int num) {
    if (write) vnt::ini::written(WriteFloat(entry, value, decimals, num, 0.0));
    else ReadFloat(entry, def, value, decimals, num);
}

