// Shows a few messages of the system message library through the console
// presenter: a question, a note with an argument, and an internal error
// report. Without a terminal each box says which answer it took.
//
//     vanto_msgdemo SYSTEM-LIBRARY [LANGUAGE]
#include <cstdio>

#include <vanto/vanto.h>

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s VNT60LIB.VTM [DEU|ENU]\n", argv[0]);
        return 2;
    }
    VNT_PATH syslib;
    if (!Vnt_LfnFromHost(syslib, argv[1])) {
        std::fprintf(stderr, "%s: cannot name %s\n", argv[0], argv[1]);
        return 2;
    }
    Vnt_ResSetLanguage(argc > 2 ? argv[2] : "DEU");
    Vnt_MsgItfInit(nullptr, 0, syslib);
    Vnt_MsgSetTitle("Vanto");
    VNT_MSG sys = Vnt_MsgHInit();
    if (!sys) return 1;

    VNT_RESP save = Vnt_MsgH(nullptr, 34001);
    VNT_RESP note = Vnt_MsgH(nullptr, "!okDie Datei \"%s\" wurde gespeichert.", Vnt_LfnNameOut("Z:\\daten\\mandant1\\auftraege\\2026\\november\\rechnung-0815.txt"));
    Vnt__InternalError(true, -9, "examples/msgdemo/main.cpp", __LINE__);
    std::printf("answers: save %ld, note %ld\n", save, note);

    Vnt_MsgHTerm(&sys);
    Vnt_MsgItfTerm();
    return 0;
}
