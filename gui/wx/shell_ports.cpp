// The file dialogs and the help on wx.
#include "shell_ports.h"

#include <cctype>
#include <cstring>
#include <string>

#include <wx/filedlg.h>
#include <wx/filename.h>
#include <wx/filesys.h>
#include <wx/utils.h>

#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/text.h"
#include "vanto/wx/window.h"
#include "wxtext.h"

namespace vnt::wx {

namespace {

bool english() { return std::strcmp(Vnt_ResLanguage(), "ENU") == 0; }

// A library path in its host form; "" when no volume holds it.
wxString hostOf(const std::string& path) {
    if (path.empty()) return wxString();
    char host[4096];
    return Vnt_LfnToHost(path.c_str(), host, sizeof host) ? wxString::FromUTF8(host) : wxString();
}

// Characters no file name may hold (the platform dialog refuses them).
bool invalidName(const std::string& name) {
    for (unsigned char c : name)
        if (c < 32 || std::strchr("<>\"|", c)) return true;
    return false;
}

// An anchor as a URL writes it: UTF-8, all but letters, digits and "-._~"
// as %XX.
wxString escaped(const wxString& s) {
    wxString out;
    for (const unsigned char c : std::string(s.utf8_str())) {
        if (std::isalnum(c) && c < 128) out += wxUniChar(c);
        else if (std::strchr("-._~", c) && c) out += wxUniChar(c);
        else out += wxString::Format("%%%02X", c);
    }
    return out;
}

}  // namespace

wxString wildcardOf(const VntFileDialogRequest& request) {
    wxString w;
    for (const VntFileFilter& f : request.filters) {
        wxString pattern = toWx(f.pattern);
        pattern.Replace("*.*", "*");
        if (!w.empty()) w += '|';
        w += toWx(f.name) + '|' + pattern;
    }
    return w.empty() ? wxString("*") + '|' + "*" : w;
}

/*
 * The initial file may carry a directory of its own ("Z:\data\x.txt"): it
 * then wins over the initial directory, as with the platform's dialog.
 * An initial name the platform would refuse is InvalidFileName, and the
 * caller tries again without it.
 */
VntFileDialogResult WxFileDialogPort::Run(const VntFileDialogRequest& request, char* file) {
    if (file == nullptr) return VntFileDialogResult::Cancelled;
    VNT_PATH dir, name;
    Vnt_LfnNameSplit(request.initialFile.c_str(), dir, name, nullptr);
    if (invalidName(request.initialFile)) return VntFileDialogResult::InvalidFileName;
    wxString hostDir = hostOf(dir);
    if (hostDir.empty()) hostDir = hostOf(request.initialDir);
    const bool save = request.kind == VntFileDialogKind::Save;
    const wxString title = !request.title.empty() ? toWx(request.title)
                           : save ? wxString(english() ? "Save As" : "Speichern unter")
                                  : wxString(english() ? "Open" : wxString::FromUTF8("\xC3\x96" "ffnen"));
    long style = save ? wxFD_SAVE : wxFD_OPEN | wxFD_FILE_MUST_EXIST;
    if (save && request.promptOverwrite) style |= wxFD_OVERWRITE_PROMPT;
    wxString initialName = toWx(name);
    for (;;) {
        wxFileDialog dlg(Vnt_WxWindow(request.owner), title, hostDir, initialName, wildcardOf(request), style);
        const int answer = show ? show(dlg) : dlg.ShowModal();
        if (answer != wxID_OK) return VntFileDialogResult::Cancelled;
        wxFileName chosen(dlg.GetPath());
        // The default extension goes onto a saved name that has none.
        const bool extended = save && !chosen.HasExt() && !request.defaultExt.empty();
        if (extended) chosen.SetExt(toWx(request.defaultExt));
        VNT_PATH out;
        if (!Vnt_LfnFromHost(out, chosen.GetFullPath().utf8_str())) {
            // No volume holds it, or the name cannot be written in the
            // library's characters: say so and let the user choose again.
            Vnt_MsgBox(english() ? "!okThe program cannot use this file name:\n%s"
                                 : "!okDieser Dateiname kann vom Programm nicht verwendet werden:\n%s",
                       fromWx(chosen.GetFullName()).c_str());
            hostDir = chosen.GetPath();
            initialName.clear();
            continue;
        }
        // The dialog asked about the name without the extension.
        if (extended && request.promptOverwrite && chosen.FileExists() &&
            Vnt_MsgBox(english() ? "?yn%s exists. Replace it?" : "?yn%s ist schon vorhanden. Ersetzen?",
                       Vnt_LfnNameOut(out, 60)) != VNT_RESP_OK) {
            hostDir = chosen.GetPath();
            initialName = chosen.GetFullName();
            continue;
        }
        Vnt_StrCopy(file, VNT_MAX_PATH, out);
        return VntFileDialogResult::Confirmed;
    }
}

wxString helpUrl(const VntHelpRequest& request) {
    const wxString host = hostOf(request.file);
    if (host.empty() || !wxFileName::FileExists(host)) return wxString();
    wxString url = wxFileSystem::FileNameToURL(wxFileName(host));
    if (request.command == VntHelpCommand::Context) url += wxString::Format("#%ld", request.context);
    else if (request.command == VntHelpCommand::Key && !request.key.empty())
        url += '#' + escaped(toWx(request.key));
    return url;
}

bool WxHelpPort::Open(const VntHelpRequest& request) {
    const wxString url = helpUrl(request);
    if (url.empty()) return false;
    return launch ? launch(url) : wxLaunchDefaultBrowser(url);
}

}  // namespace vnt::wx
