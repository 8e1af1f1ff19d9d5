// The client selection: running it once for Vnt_DlgDsn, the headless
// selection (the default client, else a choice on the terminal) and the
// scripted one for tests. It lives beside the registry it shows, not with
// the other headless ports, because it works on the registry.
#include <string>

#include "base/port_slot.h"
#include "host/term.h"
#include "vanto/dsn.h"
#include "vanto/ini.h"
#include "vanto/module.h"
#include "vanto/msg.h"
#include "vanto/text.h"
#include "vanto/ui/clientsel.h"

VntClientSelectPort::~VntClientSelectPort() = default;

namespace {

vnt::PortSlot<VntClientSelectPort>& slot() {
    static VntHeadlessClientSelect headless;
    static vnt::PortSlot<VntClientSelectPort> s(headless);
    return s;
}

// Marks a registry as owned by a selection, so that LoadSettings loads the
// entries as well.
int selectionMark;

}  // namespace

VntClientSelectPort& Vnt_UiClientSelect() { return slot().get(); }

VntClientSelectPort* Vnt_UiSetClientSelect(VntClientSelectPort* port) { return slot().set(port); }

VNT_RESP Vnt_DsnSelect(const char* text, bool restore, bool force) {
    DsnIni registry(&selectionMark);
    if (!registry.LoadSettings()) return VNT_RESP_CANCEL;
    VntClientSelectRequest request;
    request.text = text ? text : "";
    request.restore = restore;
    request.force = force;
    {
        VntIni user(nullptr, "DSN", VNTINI_USER | VNTINI_ACCESS_RW);
        char name[VNT_MAX_PATH] = {};
        user.ReadStr("Default", "", name, sizeof name);
        request.defaultClient = name;
        request.showAtStart = user.ReadInt("ShowDlg", 1) > 0;
    }
    // The default client connected without the selection counts as its OK.
    const bool direct = !request.showAtStart && !force && !request.defaultClient.empty() &&
                        Vnt_DsnConnectClient(registry, request.defaultClient.c_str());
    if (!direct) {
        const VNT_RESP r = Vnt_UiClientSelect().Run(request, registry);
        if (r != VNT_RESP_OK) return r;
    }
    if (const long module = Vnt_AppModQueuePop()) Vnt_AppModLoad(module, 0, 0, false);
    return VNT_RESP_OK;
}

namespace {

// The terminal texts of the headless selection, in the library's language.
struct SelectTexts {
    const char *title, *prompt, *range, *noSuch, *notConnected;
};
const SelectTexts& selectTexts() {
    static constexpr SelectTexts kGerman{"Mandantenauswahl", "Mandant (1-", ", leer: Abbrechen): ",
                                         "Keine solche Nummer.\n",
                                         "Der Mandant konnte nicht verbunden werden.\n"};
    static constexpr SelectTexts kEnglish{"Client selection", "Client (1-", ", empty: cancel): ",
                                          "No such number.\n", "The client could not be connected.\n"};
    return Vnt_ResLanguage()[0] == 'E' ? kEnglish : kGerman;
}

}  // namespace

VNT_RESP VntHeadlessClientSelect::Run(const VntClientSelectRequest& request, DsnIni& registry) {
    using vnt::host::writeStderr;
    if (!request.defaultClient.empty() && registry.FindEntry(request.defaultClient.c_str()) > 0)
        return Vnt_DsnConnectClient(registry, request.defaultClient.c_str()) ? VNT_RESP_OK : VNT_RESP_CANCEL;
    if (registry.Count() == 0 || !vnt::host::interactiveTerminal()) return VNT_RESP_CANCEL;
    const SelectTexts& tx = selectTexts();
    std::string list = std::string("\n== ") + tx.title + " ==\n";
    for (int i = 0; i < registry.Count(); ++i)
        list += "  " + std::to_string(i + 1) + "  " + Vnt_TxtToUtf8(registry.Entry(i)->name) + "  (" +
                Vnt_TxtToUtf8(registry.Entry(i)->path) + ")\n";
    writeStderr(list);
    for (;;) {
        writeStderr(tx.prompt + std::to_string(registry.Count()) + tx.range);
        std::string line;
        if (!vnt::host::readLine(line) || line.empty()) return VNT_RESP_CANCEL;
        int n = line.size() <= 6 ? 0 : -1;
        for (char c : line)
            if (n >= 0) n = c >= '0' && c <= '9' ? n * 10 + (c - '0') : -1;
        const DsnEntry* e = n > 0 ? registry.Entry(n - 1) : nullptr;
        if (!e) {
            writeStderr(tx.noSuch);
            continue;
        }
        if (Vnt_DsnConnectClient(registry, e->name)) return VNT_RESP_OK;
        writeStderr(tx.notConnected);
    }
}

VNT_RESP VntScriptedClientSelect::Run(const VntClientSelectRequest& request, DsnIni& registry) {
    requests.push_back(request);
    if (answers.empty()) return VNT_RESP_CANCEL;
    const VntClientSelectAnswer a = answers.front();
    answers.pop_front();
    if (a.client.empty()) return a.result;
    return Vnt_DsnConnectClient(registry, a.client.c_str()) ? VNT_RESP_OK : VNT_RESP_CANCEL;
}
