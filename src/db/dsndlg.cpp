// What the client dialogs do: the selection's buttons, the entry dialogs'
// OK and the directory tree's listing, all on the registry and the
// connection functions; the windows only show and call them.

#include <algorithm>
#include <string>
#include <string_view>

#include "base/names.h"
#include "base/strbuf.h"
#include "db/db_state.h"
#include "db/odbc.h"
#include "vanto/dsndlg.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/text.h"
#include "vanto/ui/window.h"

namespace {

constexpr long kMsgNameTaken = 60352;   // name
constexpr long kMsgNoPath = 60353;
constexpr long kMsgPathTaken = 60354;   // path, name of the client that has it
constexpr long kMsgRemove = 60355;      // name
constexpr long kMsgPathMissing = 60358; // path
constexpr long kMsgSupplement = 60362;
constexpr const char* kUserSection = "DSN";
constexpr VNTINI_TYPE kUserType = VNTINI_USER | VNTINI_ACCESS_RW;


// A field's text: blanks around it dropped, at most 259 characters.
std::string fieldText(const char* text) {
    std::string_view t(text ? text : "");
    while (!t.empty() && (t.front() == ' ' || t.front() == '\t')) t.remove_prefix(1);
    while (!t.empty() && (t.back() == ' ' || t.back() == '\t')) t.remove_suffix(1);
    return std::string(t.substr(0, VNT_MAX_PATH - 1));
}

void beep() { Vnt_UiWindow().Beep(); }

}  // namespace

// ---------------------------------------------------------------------------
// The selection, dialog 30021
// ---------------------------------------------------------------------------

VntDsnSelection::VntDsnSelection(DsnIni& registry, const VntClientSelectRequest& request)
    : registry_(registry), request_(request), noShowTicked_(!request.showAtStart) {
    Vnt_AppConnSave(saved_);
}

bool VntDsnSelection::ListLocked() const { return DsnIni::LiveCount() > 1; }

std::vector<std::string> VntDsnSelection::Names() const {
    std::vector<std::string> names;
    for (int i = 0; i < registry_.Count(); ++i) names.emplace_back(registry_.Entry(i)->name);
    return names;
}

void VntDsnSelection::Select(int index) {
    const DsnEntry* e = registry_.Entry(index);
    selected_ = e ? index : -1;
    defaultTicked_ = e && !request_.defaultClient.empty() && vnt::sameText(e->name, request_.defaultClient);
}

bool VntDsnSelection::Position(int& x, int& y) const {
    VntIni user(nullptr, kUserSection, kUserType);
    const long nx = user.ReadInt("X", -1), ny = user.ReadInt("Y", -1);
    if (nx < 0 || ny < 0) return false;
    x = static_cast<int>(nx);
    y = static_cast<int>(ny);
    return true;
}

void VntDsnSelection::SavePosition(int x, int y) {
    if (ListLocked()) return;  // the outer selection keeps its own place
    VntIni user(nullptr, kUserSection, kUserType);
    user.WriteInt("X", x < 0 ? 0 : x, -1, -1);
    user.WriteInt("Y", y < 0 ? 0 : y, -1, -1);
}

bool VntDsnSelection::Ok() {
    if (selected_ < 0) return false;
    const std::string name = registry_.Entry(selected_)->name;
    if (!Vnt_DsnSelectOk(registry_, selected_, saved_)) return false;
    // The user's choices, written only where they changed.
    VntIni user(nullptr, kUserSection, kUserType);
    if (noShowTicked_ != !request_.showAtStart) user.WriteInt("ShowDlg", noShowTicked_ ? 0 : 1, -1, 1);
    const bool wasDefault = !request_.defaultClient.empty() && vnt::sameText(name, request_.defaultClient);
    if (defaultTicked_ && !wasDefault) user.WriteStr("Default", name.c_str());
    else if (!defaultTicked_ && wasDefault) user.WriteStr("Default", nullptr);
    user.Flush();
    return true;
}

bool VntDsnSelection::Cancel() { return Vnt_DsnSelectCancel(registry_, saved_.c_str()); }

bool VntDsnSelection::Delete() {
    if (selected_ < 0 || registry_.Count() == 0) {
        beep();
        return false;
    }
    if (Vnt_MsgSys(kMsgRemove, registry_.Entry(selected_)->name) != VNT_RESP_OK) return false;
    Select(registry_.RemoveEntry(selected_));
    return true;
}

bool VntDsnSelection::Save() {
    if (!registry_.WriteEntries()) return false;
    registry_.Ini().Flush();
    return true;
}

bool VntDsnSelection::move(int by) {
    const int to = selected_ + by;
    if (selected_ < 0 || to < 0 || to >= registry_.Count() || !registry_.MoveEntry(selected_, to)) {
        beep();
        return false;
    }
    Select(to);
    return true;
}

bool VntDsnSelection::MoveUp() { return move(-1); }
bool VntDsnSelection::MoveDown() { return move(+1); }

bool VntDsnSelection::Supplement() {
    if (Vnt_MsgSys(kMsgSupplement) != VNT_RESP_OK) return false;
    if (selected_ < 0) {
        beep();
        return false;
    }
    const std::string path = registry_.Entry(selected_)->path;
    if (!Vnt_DsnPathExists(path.c_str()) && Vnt_MsgSys(kMsgPathMissing, path.c_str()) != VNT_RESP_OK) return false;
    return Vnt_DsnInstallClient(path.c_str());
}

// ---------------------------------------------------------------------------
// The entry dialogs, 30022 and 30023
// ---------------------------------------------------------------------------

VntDsnEntryEdit::VntDsnEntryEdit(VntDsnSelection& selection, int index)
    : selection_(selection), index_(selection.Registry().Entry(index) ? index : -1) {
    if (const DsnEntry* e = selection.Registry().Entry(index_)) {
        vnt::copyBounded(entry_.name, e->name);
        vnt::copyBounded(entry_.path, e->path);
    } else {
        entry_.name[0] = entry_.path[0] = '\0';
    }
    entry_.section[0] = '\0';
    formerPath_ = entry_.path;
}

/*
 * The name and path checks: a path is needed, and neither may be another
 * client's, since the registry finds clients by either. A client without
 * a name of its own shows its path, so an empty name is checked as that.
 */
bool VntDsnEntryEdit::refused(const std::string& name, const std::string& path) {
    if (path.empty()) {
        Vnt_MsgSys(kMsgNoPath);
        return true;
    }
    DsnIni& reg = selection_.Registry();
    const std::string shown = name.empty() ? path : name;
    for (int i = 0; i < reg.Count(); ++i) {
        if (i == index_) continue;
        const DsnEntry* e = reg.Entry(i);
        if (vnt::sameText(e->name, shown)) {
            Vnt_MsgSys(kMsgNameTaken, shown.c_str());
            return true;
        }
        if (vnt::sameText(e->path, path)) {
            Vnt_MsgSys(kMsgPathTaken, path.c_str(), e->name);
            return true;
        }
    }
    return false;
}

VntDsnEntryEdit::Outcome VntDsnEntryEdit::Ok(const char* nameText, const char* pathText, bool atEnd,
                                             const Chooser& choose) {
    const std::string name = fieldText(nameText), path = fieldText(pathText);
    if (refused(name, path)) return Outcome::Stay;
    const bool changed = IsNew() || name != entry_.name || path != entry_.path;
    const bool moved = IsNew() || formerPath_.empty() || !vnt::sameText(path, formerPath_);

    const bool exists = Vnt_DsnPathExists(path.c_str());
    bool install = IsNew() && !exists;  // a new client where there is none yet
    if (IsNew() == exists) {
        switch (choose ? choose(IsNew() ? 30025 : 30024) : VntDsnChoice::Cancel) {
        case VntDsnChoice::Cancel: return Outcome::Stay;
        case VntDsnChoice::Only: install = false; break;
        case VntDsnChoice::Install: install = true; break;
        }
    }
    if (!changed && !install) return Outcome::Cancelled;
    const std::string shown = name.empty() ? path : name;

    DsnIni& reg = selection_.Registry();
    if (install) {
        char former[VNT_MAX_PATH] = {};
        if (!Vnt_DsnSetUpClient(reg, shown.c_str(), path.c_str(), moved, &former)) {
            if (former[0]) formerPath_ = former;
            return Outcome::Stay;
        }
    }
    if (IsNew()) {
        const int at = atEnd || selection_.Selected() < 0 ? -1 : selection_.Selected();
        const int placed = reg.AppendEntry(shown.c_str(), path.c_str(), at, false);
        if (placed < 0) return Outcome::Stay;
        index_ = placed;
    } else if (changed && !reg.ChangeEntry(index_, shown.c_str(), path.c_str())) {
        return Outcome::Stay;
    }
    vnt::copyBounded(entry_.name, shown);
    vnt::copyBounded(entry_.path, path);
    formerPath_ = path;
    selection_.Select(index_);
    return Outcome::Done;
}

// ---------------------------------------------------------------------------
// The directory tree, dialog 30026
// ---------------------------------------------------------------------------

std::vector<std::string> Vnt_DsnDirRoots() {
    std::vector<std::string> roots;
    for (const VNT_PATH* v = Vnt_LfnVolList(); (*v)[0]; ++v) roots.push_back(std::string(*v) + "\\");
    return roots;
}

std::vector<std::string> Vnt_DsnDirChildren(const char* dir) {
    std::vector<std::string> names;
    if (!dir || !*dir) return names;
    char buf[VNT_MAX_PATH];
    VNT_LFN_HFIND h = nullptr;
    for (bool ok = Vnt_LfnDirFindFirst(buf, dir, "*", &h); ok; ok = Vnt_LfnDirFindNext(&h, buf)) {
        char file[VNT_MAX_PATH];
        Vnt_LfnNameSplit(buf, nullptr, file, nullptr);
        const std::string name = file;
        if (!name.empty() && name[0] != '.') names.push_back(name);
    }
    Vnt_LfnFindClose(&h);
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
            return Vnt_TxtUpper(static_cast<unsigned char>(x)) < Vnt_TxtUpper(static_cast<unsigned char>(y));
        });
    });
    return names;
}

std::string Vnt_DsnDirStart(const char* path) {
    char dir[VNT_MAX_PATH];
    vnt::copyBounded(dir, path ? path : "");
    if (dir[0] && !Vnt_LfnNameComplete(dir)) return "";
    while (dir[0] && !vnt::db::dirExists(dir)) {
        char up[VNT_MAX_PATH];
        Vnt_LfnNameSplit(dir, up, nullptr, nullptr);
        if (std::string_view(up) == dir) return "";  // a root or volume that is missing
        vnt::copyBounded(dir, up);
    }
    return dir;
}
