// Joins a path and opens a missing message library through the installed
// library; prints what it got.
#include <cstdio>

#include <vanto/vanto.h>

int main() {
    VNT_PATH path;
    Vnt_LfnNameMake(path, "C:\\Daten", "Texte", "vtm");
    VNT_MSG lib = Vnt_VtmOpen("Z:\\nonexistent\\Texte.vtm");
    std::printf("%s %s status %ld\n", path, lib ? "open" : "not open", Vnt_VtmStatus());
    return lib == nullptr && Vnt_VtmStatus() == VNT_VTM_E_OPEN ? 0 : 1;
}
