// A module library: its entry function greets through the library's message
// box and answers with a plain result made from its arguments.
#include <vanto/msg.h>
#include <vanto/module.h>

VNT_APP_MODULE_VERSION(VNT_APP_VERSION_DW(6, 1), VNT_APP_VERSION_DW(0, 1));

VNT_APP_MODULE_EXPORT std::intptr_t GreeterMain(long arg1, long arg2) {
    Vnt_MsgBox("-Das Modul \"Greeter\" wurde mit %ld und %ld aufgerufen.", arg1, arg2);
    return arg1 + arg2;  // a plain result: below 0x10000
}
