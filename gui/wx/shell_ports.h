// The file dialogs (wxFileDialog) and the help (the desktop's browser) on
// wx, installed by Vnt_WxInit.
#pragma once

#include <functional>
#include <string>

#include <wx/string.h>

#include "vanto/ui/filedlg.h"
#include "vanto/ui/help.h"

class wxFileDialog;

namespace vnt::wx {

/// The open and save dialogs on wxFileDialog. Library paths go in and come
/// out: the initial directory and file are shown in their host form, the
/// chosen file is handed back as a library path (Windows-1252, backslashes).
/// A file no volume holds, or whose name has no Windows-1252 form, is
/// refused with a box and the dialog shown again.
class WxFileDialogPort : public VntFileDialogPort {
public:
    VntFileDialogResult Run(const VntFileDialogRequest& request, char* file) override;
    /// Shows the dialog; ShowModal unless a test puts another in.
    std::function<int(wxFileDialog&)> show;
};

/// The wx type list of a request: "Text (*.txt)|*.txt|All|*"; "*.*" is
/// the host's "*". No filters: every file.
wxString wildcardOf(const VntFileDialogRequest& request);

/// The help on wx: "<program>.html" in the desktop's browser, at the
/// anchor of the context number ("Fibu.html#4711") or of an index entry
/// (Key: "Fibu.html#Konten%20buchen"); Contents and PartialKey open the
/// page at its top. False when the file does not exist or the browser
/// cannot be started.
class WxHelpPort : public VntHelpPort {
public:
    bool Open(const VntHelpRequest& request) override;
    /// Starts the browser on a URL; wxLaunchDefaultBrowser unless a test
    /// puts another in.
    std::function<bool(const wxString& url)> launch;
};

/// The URL the help opens for a request ("" when the file does not exist):
///   {"Z:\opt\acme\Fibu.html", Context, 4711} => "file:///opt/acme/Fibu.html#4711"
wxString helpUrl(const VntHelpRequest& request);

}  // namespace vnt::wx
