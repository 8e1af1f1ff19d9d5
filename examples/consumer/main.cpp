// Joins a path and opens a missing message library through the installed
// library; then opens the system message library, wherever the program
// runs, and prints its language. Prints what it got.
#include <cstdio>

#include <vanto/vanto.h>

int main() {
    VNT_PATH path;
    Vnt_LfnNameMake(path, "C:\\Daten", "Texte", "vtm");
    VNT_MSG lib = Vnt_VtmOpen("Z:\\nonexistent\\Texte.vtm");
    std::printf("%s %s status %ld\n", path, lib ? "open" : "not open", Vnt_VtmStatus());
    if (lib != nullptr || Vnt_VtmStatus() != VNT_VTM_E_OPEN) return 1;
    VNT_MSG sys = Vnt_MsgHInit();
    std::printf("system messages %s, boxes %s\n", sys ? Vnt_MsgHLoad(sys, 62000) : "(none)", Vnt_ResLanguage());
    if (!sys) return 1;
    Vnt_MsgHTerm(&sys);
    return 0;
}
