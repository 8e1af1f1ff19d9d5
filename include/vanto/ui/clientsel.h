// vanto/ui/clientsel.h - the client selection port.
//
// Vnt_DlgDsn (vanto/dsn.h) runs the client selection until a database is
// open: Vnt_DsnSelect reads the registry and the user's choices and lets
// this port show the selection. The window toolkit installs the real
// dialogs, which do their work through the objects of vanto/dsndlg.h
// (VntDsnSelection, VntDsnEntryEdit) over vanto/dsn.h. Without
// them the headless selection connects the user's default client, asks on
// the terminal when there is none, and otherwise gives up; tests install a
// scripted one.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "vanto/base.h"

class DsnIni;

/// What a selection is asked for.
struct VntClientSelectRequest {
    std::string text;           ///< the name or connect string Vnt_DlgDsn was given
    bool restore = false;       ///< Vnt_DlgDsn's restore flag
    bool force = false;         ///< the caller wants the selection shown (dialog only)
    std::string defaultClient;  ///< the user's default client ("" when none)
    bool showAtStart = true;    ///< the user wants the selection at program start
};

/// Lets the user choose the client to work on.
class VANTO_API VntClientSelectPort {
public:
    virtual ~VntClientSelectPort();
    /// Shows the selection for `registry` (settings and entries loaded) and
    /// connects the chosen client. VNT_RESP_OK when a client was connected;
    /// VNT_RESP_CANCEL (or any other answer) when the user gave up.
    virtual VNT_RESP Run(const VntClientSelectRequest& request, DsnIni& registry) = 0;
};

/// The selection without windows: the user's default client when the list
/// holds it (connected with Vnt_DsnConnectClient: OK, or CANCEL when that
/// fails); without one, on a terminal, the list to choose from by number
/// (an empty line or the end of input cancels; a client that does not
/// connect is asked again); without a terminal CANCEL. The default port.
class VANTO_API VntHeadlessClientSelect : public VntClientSelectPort {
public:
    VNT_RESP Run(const VntClientSelectRequest& request, DsnIni& registry) override;
};

/// One queued answer of the scripted selection.
struct VntClientSelectAnswer {
    VNT_RESP result = VNT_RESP_CANCEL;
    /// When not empty, this client is connected (Vnt_DsnConnectClient) and
    /// the answer is OK when that succeeded, else CANCEL.
    std::string client;
};

/// A selection for tests: answers from a queue (CANCEL when it is empty),
/// keeps every request.
class VANTO_API VntScriptedClientSelect : public VntClientSelectPort {
public:
    VNT_RESP Run(const VntClientSelectRequest& request, DsnIni& registry) override;
    std::deque<VntClientSelectAnswer> answers;
    std::vector<VntClientSelectRequest> requests;
};

/// The selection port in use (the headless one until another is installed).
VANTO_API VntClientSelectPort& Vnt_UiClientSelect();
/// Installs a port (null: the headless one again); returns the previous
/// one. The caller keeps ownership.
VANTO_API VntClientSelectPort* Vnt_UiSetClientSelect(VntClientSelectPort* port);

/// Runs the client selection once: loads the registry ("dsn.ini" missing:
/// CANCEL), reads the user's section "DSN" ("Default": the default client,
/// "ShowDlg" > 0: show the selection at start, default 1). When the user
/// does not want it at start and `force` is not set, the default client is
/// connected directly and that success is OK. Otherwise the port shows the
/// selection; any answer but OK is returned. After OK (either way) the module
/// number last pushed on the module value stack (Vnt_AppModQueuePop), when
/// not 0, is loaded. `text` and `restore` are handed to the port.
VANTO_API VNT_RESP Vnt_DsnSelect(const char* text, bool restore, bool force);
