// The file dialog port: a scripted dialog for tests and a console dialog
// that asks on the terminal.
#include <string>

#include "base/port_slot.h"
#include "base/strbuf.h"
#include "host/file.h"
#include "host/term.h"
#include "vanto/lfn.h"
#include "vanto/text.h"
#include "vanto/ui/filedlg.h"

VntFileDialogPort::~VntFileDialogPort() = default;

namespace {

vnt::PortSlot<VntFileDialogPort>& slot() {
    static VntConsoleFileDialog console;
    static vnt::PortSlot<VntFileDialogPort> s(console);
    return s;
}

// The directory of a full name exists (a name without one: the current).
bool directoryExists(const char* name) {
    VNT_PATH dir;
    Vnt_LfnNameSplit(name, dir, nullptr, nullptr);
    if (dir[0] == '\0' || (dir[0] == '\\' && dir[1] == '\0')) return true;
    if (Vnt_LfnNameIsRoot(dir) || Vnt_LfnNameIsVol(dir)) return Vnt_LfnVolFind(dir);
    return Vnt_LfnDirFind(dir);
}

bool askYes(const std::string& question) {
    vnt::host::writeStderr(question + " [y/N] ");
    std::string line;
    return vnt::host::readLine(line) && (line == "y" || line == "Y" || line == "j" || line == "J");
}

}  // namespace

VntFileDialogPort& Vnt_UiFileDialog() { return slot().get(); }

VntFileDialogPort* Vnt_UiSetFileDialog(VntFileDialogPort* port) { return slot().set(port); }

VntFileDialogResult VntScriptedFileDialog::Run(const VntFileDialogRequest& request, char* file) {
    requests.push_back(request);
    if (answers.empty()) return VntFileDialogResult::Cancelled;
    const VntFileDialogAnswer a = answers.front();
    answers.pop_front();
    if (a.result == VntFileDialogResult::Confirmed && file) vnt::copyBounded(file, VNT_MAX_PATH, a.file);
    return a.result;
}

/*
 * Shows what the dialog is about and reads names until one is acceptable:
 * relative names are taken in the initial directory, and the checks the
 * request asks for are made here as the platform's dialog makes them.
 */
VntFileDialogResult VntConsoleFileDialog::Run(const VntFileDialogRequest& request, char* file) {
    using vnt::host::writeStderr;
    if (file == nullptr || !vnt::host::interactiveTerminal()) return VntFileDialogResult::Cancelled;
    const bool save = request.kind == VntFileDialogKind::Save;
    std::string out = "\n== " + Vnt_TxtToUtf8(request.title.empty() ? (save ? "Save as" : "Open") : request.title) + " ==\n";
    if (!request.initialDir.empty()) out += "Directory: " + Vnt_TxtToUtf8(request.initialDir) + "\n";
    for (const VntFileFilter& f : request.filters)
        out += "  " + Vnt_TxtToUtf8(f.name) + " (" + Vnt_TxtToUtf8(f.pattern) + ")\n";
    writeStderr(out);
    for (;;) {
        writeStderr(std::string("File name") + (file[0] ? " [" + Vnt_TxtToUtf8(file) + "]" : "") + ": ");
        std::string line, name;
        if (!vnt::host::readLine(line)) return VntFileDialogResult::Cancelled;
        if (line.empty()) {
            if (file[0] == '\0') return VntFileDialogResult::Cancelled;
            name = file;  // the name offered
        } else if (!Vnt_TxtFromUtf8(line, name)) {
            writeStderr("The name cannot be used here.\n");
            continue;
        }
        VNT_PATH full;
        const bool joined = Vnt_LfnNameIsRelPath(name.c_str()) && !request.initialDir.empty()
                                ? Vnt_LfnNameMake(full, request.initialDir.c_str(), name.c_str(), nullptr)
                                : Vnt_LfnNameMake(full, name.c_str(), nullptr, nullptr);
        VNT_PATH ext;
        Vnt_LfnNameSplit(full, nullptr, nullptr, ext);
        if (!joined || (ext[0] == '\0' && !request.defaultExt.empty() &&
                        !Vnt_LfnNameMake(full, nullptr, nullptr, request.defaultExt.c_str()))) {
            writeStderr("The name is too long.\n");
            continue;
        }
        if (request.pathMustExist && !directoryExists(full)) {
            writeStderr("The directory does not exist.\n");
            continue;
        }
        if (save && request.promptOverwrite && vnt::host::fileExists(full) &&
            !askYes(Vnt_TxtToUtf8(full) + " exists. Replace it?"))
            continue;
        vnt::copyBounded(file, VNT_MAX_PATH, full);
        return VntFileDialogResult::Confirmed;
    }
}
