// The open and save dialogs on path buffers and on the dialog record, run
// through the file dialog port.
#include <cstring>
#include <memory>
#include <string>

#include "base/format.h"
#include "base/strbuf.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"
#include "vanto/ui/filedlg.h"
#include "vanto/ui/window.h"

namespace {

using vnt::copyBounded;
using vnt::lfn::kFilterSize;
using vnt::lfn::state;

// Longest NUL-separated filter list read from a caller's pointer, so that a
// list without its final empty entry cannot run on for ever.
constexpr std::size_t kMaxFilterList = 4096;
// A given filter longer than this does not fit the static buffer with its
// two closing NULs and gets a buffer of its own.
constexpr std::size_t kMaxStaticFilter = kFilterSize - 2;

// Length of a string, looking at no more than `max` characters.
std::size_t boundedLen(const char* s, std::size_t max) {
    const void* nul = std::memchr(s, '\0', max);
    return nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - s) : max;
}

bool dirExists(const char* name) {
    if (Vnt_LfnNameIsRoot(name) || Vnt_LfnNameIsVol(name)) return Vnt_LfnVolFind(name);
    return Vnt_LfnDirFind(name);
}

// Reads a NUL-separated list (ended by an empty entry, or at `limit`) into
// the request: the pairs and the platform form.
void takeList(const char* list, std::size_t limit, VntFileDialogRequest& req) {
    std::vector<std::string> parts;
    std::size_t pos = 0;
    while (pos < limit && list[pos] != '\0') {
        const std::size_t len = boundedLen(list + pos, limit - pos);
        parts.emplace_back(list + pos, len);
        pos += len + 1;
    }
    for (const std::string& p : parts) {
        req.filterList += p;
        req.filterList += '\0';
    }
    req.filterList += '\0';
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2) req.filters.push_back({parts[i], parts[i + 1]});
}

/*
 * The filter: a given one with neither line feeds nor "|" is the platform's
 * NUL-separated list already. Otherwise it is built in the static buffer,
 * or for a filter too long for it in a buffer of its own for this call, from
 * the given text, or "*.ext" twice, or "*.*" twice; line feeds and "|"
 * become NULs and two NULs end the list.
 */
void buildFilter(const char* filter, std::size_t limit, const char* ext, VntFileDialogRequest& req) {
    if (filter != nullptr && filter[0] != '\0') {
        const std::size_t len = boundedLen(filter, limit);
        if (std::memchr(filter, '\n', len) == nullptr && std::memchr(filter, '|', len) == nullptr) {
            takeList(filter, limit, req);
            return;
        }
    }
    std::unique_ptr<char[]> own;
    char* buf = state().filter;
    std::size_t size = kFilterSize;
    std::string text;
    if (filter != nullptr && filter[0] != '\0') {
        text.assign(filter, boundedLen(filter, limit));
    } else if (ext != nullptr && ext[0] != '\0') {
        const char* e = ext[0] == '.' ? ext + 1 : ext;
        text = vnt::format("*.%s\n*.%s", e, e);
    } else {
        text = "*.*\n*.*";
    }
    if (text.size() > kMaxStaticFilter) {
        size = text.size() + 2;
        own = std::make_unique<char[]>(size);
        buf = own.get();
    }
    const std::size_t n = copyBounded(buf, size - 1, text);
    buf[n + 1] = '\0';
    for (std::size_t i = 0; i < n; ++i)
        if (buf[i] == '\n' || buf[i] == '|') buf[i] = '\0';
    takeList(buf, n + 2, req);
}

/*
 * Runs one dialog. `dir` (null or empty: the dialog kind's own directory)
 * is the initial directory; it is emptied when it does not exist, unless it is a
 * single backslash. A file name the dialog refuses as invalid is emptied
 * and the dialog shown once more; if that one is not confirmed either, the
 * name is put back. The caller's directory buffer receives the file's
 * directory also after a cancel; the kind's own directory only after a
 * confirmed dialog.
 */
bool runDialog(bool save, char* file, char* dir, const char* ext, const char* title, const char* filter,
               std::size_t filterLimit) {
    if (file == nullptr) return false;
    char* kindDir = save ? state().dlgSaveDir : state().dlgOpenDir;
    char* initial = dir && dir[0] != '\0' ? dir : kindDir;
    if (initial[0] != '\0' && !(initial[0] == '\\' && initial[1] == '\0') && !dirExists(initial))
        initial[0] = '\0';

    VntFileDialogRequest req;
    req.kind = save ? VntFileDialogKind::Save : VntFileDialogKind::Open;
    req.owner = Vnt_UiWindow().ActiveWindow();
    req.initialDir = initial;
    req.title = title ? title : "";
    req.defaultExt = ext ? (ext[0] == '.' ? ext + 1 : ext) : "";
    req.pathMustExist = true;
    req.hideReadOnly = true;
    req.promptOverwrite = save;
    buildFilter(filter, filterLimit, ext, req);

    file[VNT_MAX_PATH - 1] = '\0';
    req.initialFile = file;
    VntFileDialogResult r = Vnt_UiFileDialog().Run(req, file);
    if (r == VntFileDialogResult::InvalidFileName) {
        VNT_PATH kept;
        copyBounded(kept, file);
        file[0] = '\0';
        req.initialFile.clear();
        r = Vnt_UiFileDialog().Run(req, file);
        if (r != VntFileDialogResult::Confirmed) copyBounded(file, VNT_MAX_PATH, kept);
    }
    const bool confirmed = r == VntFileDialogResult::Confirmed;
    if (dir) Vnt_LfnNameSplit(file, dir, nullptr, nullptr);
    if (confirmed) Vnt_LfnNameSplit(file, kindDir, nullptr, nullptr);
    return confirmed;
}

// The record: the file's directory, title and volume, and the first three
// characters of the title's extension (taken from its first dot).
bool runRecord(bool save, VNT_LFN_DLGFSPEC* spec) {
    if (spec == nullptr) return false;
    VNT_PATH ext;
    copyBounded(ext, spec->ext);
    char title[sizeof spec->dlgTitle];
    copyBounded(title, spec->dlgTitle);
    if (!runDialog(save, spec->file, spec->dir, ext, title, spec->filter, sizeof spec->filter)) return false;
    Vnt_LfnNameSplit(spec->file, spec->dir, spec->title, nullptr);
    Vnt_LfnVolFromPath(spec->vol, spec->dir);
    VNT_PATH name;
    copyBounded(name, spec->title);
    const char* old = Vnt_LfnNameExtS(name, sizeof name, nullptr);
    copyBounded(spec->ext, old ? old : "");
    return true;
}

}  // namespace

bool Vnt_LfnDlgOpen(VNT_LFN_DLGFSPEC* spec) { return runRecord(false, spec); }

bool Vnt_LfnDlgSave(VNT_LFN_DLGFSPEC* spec) { return runRecord(true, spec); }

bool Vnt_LfnDlgOpen(char* file, char* dir, const char* ext, const char* title, const char* filter) {
    return runDialog(false, file, dir, ext, title, filter, kMaxFilterList);
}

bool Vnt_LfnDlgSave(char* file, char* dir, const char* ext, const char* title, const char* filter) {
    return runDialog(true, file, dir, ext, title, filter, kMaxFilterList);
}
