// vanto/ui/filedlg.h - the file dialog port.
//
// Vnt_LfnDlgOpen and Vnt_LfnDlgSave (vanto/lfn.h) prepare a request and let
// this port ask the user for a file. The window toolkit installs a port with
// the real dialogs; without one the console port asks on the terminal, and
// tests install a scripted one.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "vanto/base.h"

/// Which dialog.
enum class VntFileDialogKind { Open, Save };

/// One entry of the dialog's type list: "Text files" and "*.txt".
struct VntFileFilter {
    std::string name;
    std::string pattern;  ///< one or more patterns separated by ';'
};

/// What the dialog is to show. Texts and paths are Windows-1252 library
/// names.
struct VntFileDialogRequest {
    VntFileDialogKind kind = VntFileDialogKind::Open;
    VNT_HWND owner = nullptr;           ///< the active window, or null
    std::string initialDir;             ///< "" = the dialog's own choice
    std::string initialFile;            ///< the file buffer as handed in
    std::string title;                  ///< "" = the dialog's default title
    std::vector<VntFileFilter> filters; ///< complete (name, pattern) pairs
    /// The same list in the platform's form: name NUL pattern NUL ... and a
    /// second NUL at the end (an unpaired name included as it stood).
    std::string filterList;
    std::string defaultExt;             ///< without the leading '.'; may be ""
    bool pathMustExist = true;          ///< the chosen file's directory must exist
    bool hideReadOnly = true;           ///< no "open read-only" choice
    bool promptOverwrite = false;       ///< ask before an existing file is chosen (save)
};

/// How the dialog ended.
enum class VntFileDialogResult {
    Confirmed,        ///< the file buffer holds the chosen full name
    Cancelled,        ///< closed, or it could not be shown; the buffer is unchanged
    InvalidFileName,  ///< the initial file name was not acceptable; unchanged
};

/// Asks the user for a file.
class VANTO_API VntFileDialogPort {
public:
    virtual ~VntFileDialogPort();
    /// Runs the dialog modally. `file` is a path buffer (260 characters): the
    /// initial name in, the chosen full name out when confirmed.
    virtual VntFileDialogResult Run(const VntFileDialogRequest& request, char* file) = 0;
};

/// One queued answer of the scripted dialog.
struct VntFileDialogAnswer {
    VntFileDialogResult result = VntFileDialogResult::Cancelled;
    std::string file;  ///< written into the buffer when Confirmed
};

/// A dialog for tests: answers from a queue (Cancelled when it is empty)
/// and keeps every request.
class VANTO_API VntScriptedFileDialog : public VntFileDialogPort {
public:
    VntFileDialogResult Run(const VntFileDialogRequest& request, char* file) override;
    std::deque<VntFileDialogAnswer> answers;    ///< the next answers
    std::vector<VntFileDialogRequest> requests; ///< every request, oldest first
};

/// The console dialog: shows the request on standard error and reads a
/// file name from the terminal (relative names are taken in the initial
/// directory; an empty line cancels). The name's directory must exist when
/// the request says so; a name without extension gets the default one; an
/// existing file is confirmed first when the request asks for it. A name
/// that has no Windows-1252 form is asked again. Without a terminal (or at
/// the end of its input): Cancelled.
class VANTO_API VntConsoleFileDialog : public VntFileDialogPort {
public:
    VntFileDialogResult Run(const VntFileDialogRequest& request, char* file) override;
};

/// The file dialog port in use (the console one until another is installed).
VANTO_API VntFileDialogPort& Vnt_UiFileDialog();
/// Installs a port (null: the console one again); returns the previous one.
/// The caller keeps ownership.
VANTO_API VntFileDialogPort* Vnt_UiSetFileDialog(VntFileDialogPort* port);
