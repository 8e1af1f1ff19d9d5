// The menu helper over wx menus and menu bars, and the system menu that GTK
// lacks, kept per window.
#include "vanto/wx/menu.h"

#include <cstring>
#include <string>

#include <wx/accel.h>
#include <wx/frame.h>
#include <wx/log.h>
#include <wx/menu.h>

#include "menu_state.h"
#include "vanto/locale.h"
#include "vanto/msg.h"
#include "vanto/text.h"
#include "vanto/wx/window.h"
#include "wxtext.h"

namespace vnt::wx {

MenuState& menuState() {
    static MenuState s;
    return s;
}

void menuStateReset() {
    MenuState& s = menuState();
    for (auto& [win, menu] : s.sysMenus) delete menu;
    s = MenuState{};
}

}  // namespace vnt::wx

namespace {

using vnt::wx::fromWx;
using vnt::wx::menuState;
using vnt::wx::toWx;

constexpr int kMaxText = 255;

struct SysTexts { const char* restore; const char* move; const char* minimize; const char* maximize;
                  const char* close; const char* tasks; };
constexpr SysTexts kDe{"&Wiederherstellen", "&Verschieben", "Mi&nimieren", "Ma&ximieren", "&Schlie\xDF" "en\tAlt+F4",
                       "&Wechseln zu..."};
constexpr SysTexts kEn{"&Restore", "&Move", "Mi&nimize", "Ma&ximize", "&Close\tAlt+F4", "S&witch To..."};

const SysTexts& sysTexts() { return std::strcmp(Vnt_ResLanguage(), "ENU") == 0 ? kEn : kDe; }

bool equalNoCase(const char* a, const char* b) {
    for (; *a && *b; ++a, ++b)
        if (Vnt_TxtUpper(static_cast<unsigned char>(*a)) != Vnt_TxtUpper(static_cast<unsigned char>(*b))) return false;
    return *a == *b;
}

// The window's own style word in the flags' terms.
long windowStyle(const wxWindow* w) {
    long s = 0;
    if (w && w->HasFlag(wxMAXIMIZE_BOX)) s |= VNT_MENU_MAXIMIZE;
    if (w && w->HasFlag(wxMINIMIZE_BOX)) s |= VNT_MENU_MINIMIZE;
    return s;
}

// wx takes identifiers below 32767 only: 32768-65535 (the system commands)
// live in wx as the identifier - 32768.
int wxIdOf(long command) { return static_cast<int>(command >= 0x8000 && command < 0x10000 ? command - 0x8000 : command); }
long commandOf(int id) {
    for (long sc : {VNT_SC_MOVE, VNT_SC_MINIMIZE, VNT_SC_MAXIMIZE, VNT_SC_CLOSE, VNT_SC_RESTORE, VNT_SC_TASKLIST})
        if (id == sc - 0x8000) return sc;
    return id;
}

// The label wx is given: the modifier word it knows, so that it shows the
// shortcut; the text as set is kept beside it.
wxString shownLabel(const std::string& text) {
    std::string shown = text.empty() ? " " : text;  // wx refuses an empty label
    if (const auto tab = shown.find("\tStrg+"); tab != std::string::npos) shown.replace(tab + 1, 4, "Ctrl");
    return toWx(shown);
}

void setLabel(wxMenuItem* item, const std::string& text) {
    wxLogNull quiet;  // a shortcut wx cannot parse is only not shown
    item->SetItemLabel(shownLabel(text));
    menuState().fullTexts[item] = text;
}

std::string labelOf(const wxMenuItem* item) {
    const auto& texts = menuState().fullTexts;
    if (auto it = texts.find(item); it != texts.end()) return it->second;
    return fromWx(item->GetItemLabel());
}

void forgetItem(const wxMenuItem* item) {
    menuState().greyOnly.erase(item);
    menuState().fullTexts.erase(item);
}

}  // namespace

long VntMenu::CommandOf(int id) { return commandOf(id); }
int VntMenu::WxIdOf(long command) { return wxIdOf(command); }

// An item found: a menu item in its menu, or a title of a menu bar.
struct VntMenu::Ref {
    wxMenuItem* item = nullptr;
    wxMenu* parent = nullptr;
    int pos = -1;
    wxMenuBar* bar = nullptr;
    int title = -1;
    bool ok() const { return item || title >= 0; }
};

VntMenu::VntMenu() {
    init();
    ++menuState().live;
}

VntMenu::VntMenu(wxWindow* window) : VntMenu() { Init(window, false, -1); }

VntMenu::VntMenu(long titleCommand, wxWindow* window) : VntMenu() {
    if (Init(window, false, -1) && TitleFind(titleCommand) >= 0 && found_) {
        menu_ = found_;
        bar_ = nullptr;
    }
}

VntMenu::VntMenu(wxWindow* window, bool system, long styleFlags) : VntMenu() { Init(window, system, styleFlags); }

VntMenu::~VntMenu() {
    if (keysWindow_ && Vnt_WxWindow(Vnt_WxHandle(keysWindow_))) {
        keysWindow_->Unbind(wxEVT_MENU, &VntMenu::onSysKey, this, wxIdOf(VNT_SC_MINIMIZE));
        keysWindow_->Unbind(wxEVT_MENU, &VntMenu::onSysKey, this, wxIdOf(VNT_SC_MAXIMIZE));
    }
    int& live = menuState().live;
    if (live > 0) --live;
}

void VntMenu::init() {
    window_ = nullptr;
    bar_ = nullptr;
    menu_ = nullptr;
    owned_ = false;
    titlePos_ = -1;
    found_ = nullptr;
    text_[0] = '\0';
    style_ = 0;
    system_ = false;
    minimized_ = maximized_ = false;
    lookup_ = 0;
    instance_ = nullptr;
}

bool VntMenu::Term() {
    // Goes through the constructor's path: the live count rises (kept so).
    init();
    ++menuState().live;
    return true;
}

int VntMenu::LiveCount() { return menuState().live; }

const char* VntMenu::HarvestedText(int which) {
    return which >= 0 && which < 4 ? menuState().texts[which] : "";
}

// The texts are chosen once per process: the platform's fixed texts with
// the library's shortcuts, the modifier word after the locale's language.
void VntMenu::harvest() {
    vnt::wx::MenuState& s = menuState();
    if (s.modifier[0]) return;
    Vnt_StrCopy(s.modifier, equalNoCase(Vnt_SysInfo(VNT_SI_GET).szLanguage, "DEU") ? "Strg" : "Ctrl");
    const std::string shortcut = std::string("\t") + s.modifier + "+F10";
    const SysTexts& t = sysTexts();
    Vnt_StrCopy(s.texts[0], std::string(t.restore) + shortcut);
    Vnt_StrCopy(s.texts[1], std::string(t.maximize) + shortcut);
    Vnt_StrCopy(s.texts[2], std::string(t.minimize) + "\tF9");
    Vnt_StrCopy(s.texts[3], t.tasks);
}

wxMenu* VntMenu::SysMenu(wxWindow* window) {
    if (window == nullptr) return nullptr;
    auto& menus = menuState().sysMenus;
    if (auto it = menus.find(window); it != menus.end()) return it->second;
    const SysTexts& t = sysTexts();
    auto* m = new wxMenu;
    m->Append(wxIdOf(VNT_SC_RESTORE), toWx(t.restore));
    m->Append(wxIdOf(VNT_SC_MOVE), toWx(t.move));
    m->Append(wxIdOf(VNT_SC_MINIMIZE), toWx(t.minimize));
    m->Append(wxIdOf(VNT_SC_MAXIMIZE), toWx(t.maximize));
    m->AppendSeparator();
    m->Append(wxIdOf(VNT_SC_CLOSE), toWx(t.close));
    // The window manager moves windows, not the program: shown, but off.
    m->Enable(wxIdOf(VNT_SC_MOVE), false);
    menus[window] = m;
    window->Bind(wxEVT_DESTROY, [window](wxWindowDestroyEvent& e) {
        e.Skip();
        if (e.GetEventObject() != window) return;
        auto& all = menuState().sysMenus;
        if (auto it = all.find(window); it != all.end()) {
            delete it->second;
            all.erase(it);
        }
    });
    return m;
}

bool VntMenu::Init(wxWindow* window, bool system, long styleFlags) {
    window_ = window;
    system_ = system;
    if (styleFlags != -1) style_ = styleFlags;
    bar_ = nullptr;
    menu_ = nullptr;
    if (menuState().live == 1 || menuState().texts[0][0] == '\0') harvest();
    if (window == nullptr) return false;
    if (system) {
        bindSystem();
    } else if (auto* frame = dynamic_cast<wxFrame*>(window)) {
        bar_ = frame->GetMenuBar();
    }
    if (!bar_ && !menu_) return false;
    if (find(VNT_SC_MINIMIZE).ok()) style_ |= VNT_MENU_MINIMIZE;
    else style_ &= ~VNT_MENU_MINIMIZE;
    return true;
}

void VntMenu::bindSystem() {
    const vnt::wx::MenuState& s = menuState();
    menu_ = SysMenu(window_);
    bool hasMin = find(VNT_SC_MINIMIZE).ok();
    const bool hasMax = find(VNT_SC_MAXIMIZE).ok();
    // The window's boxes count as style flags from now on.
    const long style = style_ = windowStyle(window_) | style_;
    if (hasMax && !(style & VNT_MENU_MAXIMIZE)) ItemDelete(VNT_SC_MAXIMIZE);
    if (hasMin && !(style & VNT_MENU_MINIMIZE)) {
        ItemDelete(VNT_SC_MINIMIZE);
        hasMin = false;
    }
    bool maxPresent = false;
    if (style & VNT_MENU_MAXIMIZE) {
        if (s.texts[0][0]) ItemModify(VNT_SC_RESTORE, VNT_SC_MOVE, s.texts[0]);
        if (s.texts[1][0]) maxPresent = ItemModify(VNT_SC_MAXIMIZE, VNT_SC_CLOSE, s.texts[1]);
    }
    if (style & VNT_MENU_MINIMIZE) {
        const long before = hasMin ? VNT_SC_MINIMIZE : maxPresent ? VNT_SC_MAXIMIZE : VNT_SC_CLOSE;
        if (s.texts[2][0]) ItemModify(VNT_SC_MINIMIZE, before, s.texts[2]);
        if (before == VNT_SC_CLOSE && !hasMin) ItemInsert(0, VNT_SC_CLOSE, "");
        if (!find(VNT_SC_RESTORE).ok() && s.texts[0][0]) {
            std::string plain(s.texts[0]);
            plain.resize(plain.find('\t') == std::string::npos ? plain.size() : plain.find('\t'));
            if (ItemInsert(VNT_SC_RESTORE, 0, plain.c_str())) ItemEnable(VNT_SC_RESTORE, 0);
        }
    }
    if (!find(VNT_SC_TASKLIST).ok() && s.texts[3][0]) {
        ItemInsert(0, -1, "");
        ItemInsert(VNT_SC_TASKLIST, -1, s.texts[3]);
    }
}

bool VntMenu::IsValid() const { return window_ != nullptr && (bar_ != nullptr || menu_ != nullptr); }

bool VntMenu::Create() {
    Destroy();
    bar_ = new wxMenuBar;
    owned_ = true;
    return true;
}

bool VntMenu::CreatePopup() {
    Destroy();
    menu_ = new wxMenu;
    owned_ = true;
    return true;
}

void VntMenu::Destroy() {
    if (owned_) {
        delete bar_;
        delete menu_;
    }
    bar_ = nullptr;
    menu_ = nullptr;
    owned_ = false;
}

void* VntMenu::Handle() const { return bar_ ? static_cast<void*>(bar_) : static_cast<void*>(menu_); }

int VntMenu::ItemCount() const {
    if (bar_) return static_cast<int>(bar_->GetMenuCount());
    return menu_ ? static_cast<int>(menu_->GetMenuItemCount()) : 0;
}

long VntMenu::ItemId(int position) const {
    if (!menu_ || position < 0 || position >= ItemCount()) return -1;
    const wxMenuItem* item = menu_->FindItemByPosition(static_cast<size_t>(position));
    return item->IsSubMenu() || item->IsSeparator() ? -1 : commandOf(item->GetId());
}

int VntMenu::ItemFind(long command) const {
    if (bar_) return -1;  // a bar's items are titles: they have no identifier
    if (!menu_) return 0;
    for (int i = 0; i < ItemCount(); ++i)
        if (ItemId(i) == command) return i;
    return -1;
}

VntMenu::Ref VntMenu::find(long command) const {
    Ref r;
    if (lookup_ == VNT_MF_BYPOSITION) {
        if (command < 0 || command >= ItemCount()) return r;
        if (bar_) {
            r.bar = bar_;
            r.title = static_cast<int>(command);
        } else {
            r.item = menu_->FindItemByPosition(static_cast<size_t>(command));
            r.parent = menu_;
            r.pos = static_cast<int>(command);
        }
        return r;
    }
    if (command == 0 || command == wxID_SEPARATOR) return r;
    wxMenu* parent = nullptr;
    if (bar_) r.item = bar_->FindItem(wxIdOf(command), &parent);
    else if (menu_) r.item = menu_->FindItem(wxIdOf(command), &parent);
    if (r.item) {
        r.parent = parent ? parent : r.item->GetMenu();
        r.pos = r.parent ? r.parent->GetMenuItems().IndexOf(r.item) : -1;
    }
    return r;
}

unsigned VntMenu::state(const Ref& r) const {
    if (r.title >= 0) return r.bar->IsEnabledTop(static_cast<size_t>(r.title)) ? 0u : 3u;
    unsigned st = 0;
    if (!r.item->IsEnabled()) st |= menuState().greyOnly.count(r.item) ? 1u : 3u;
    if (r.item->IsCheckable() && r.item->IsChecked()) st |= 8u;
    return st;
}

void VntMenu::setState(const Ref& r, unsigned st) {
    const bool enable = (st & 3u) == 0;
    if (r.title >= 0) {
        r.bar->EnableTop(static_cast<size_t>(r.title), enable);
        return;
    }
    r.item->Enable(enable);
    if ((st & 3u) == 1u) menuState().greyOnly.insert(r.item);
    else menuState().greyOnly.erase(r.item);
    if (r.item->IsCheckable()) r.item->Check((st & 8u) != 0);
}

bool VntMenu::ItemChecked(long command) const {
    const Ref r = find(command);
    return r.ok() && (state(r) & 8u);
}

bool VntMenu::ItemEnabled(long command) const {
    const Ref r = find(command);
    return r.ok() && (state(r) & 3u) == 0;
}

bool VntMenu::ItemCheck(long command, int mode) {
    const Ref r = find(command);
    if (!r.item || !r.item->IsCheckable()) return false;
    const bool was = r.item->IsChecked();
    const bool now = mode == 2 ? !was : mode != 0;
    r.item->Check(now);
    return mode == 2 ? now : was;
}

bool VntMenu::ItemEnable(long command, int mode) {
    const Ref r = find(command);
    if (!r.ok()) return false;
    const unsigned before = state(r);
    bool enable = mode == 1;
    if (mode == 2) enable = before != 0;  // deliberate: any state flag enables
    setState(r, enable ? (before & 8u) : ((before & 8u) | 3u));
    return before == 1u;
}

bool VntMenu::ItemGray(long command, int mode) {
    const Ref r = find(command);
    if (!r.ok()) return false;
    const unsigned before = state(r);
    if (mode == 1) {
        setState(r, before | 1u);
    } else if (mode == 0 || (before & 3u) == 0) {
        if (before & 2u) return false;  // disabled, not only greyed
        setState(r, before & ~1u);
    }
    return before == 1u;
}

bool VntMenu::enableById(long command, bool enable) {
    const long saved = lookup_;
    lookup_ = 0;
    const bool ok = find(command).ok();
    if (ok) ItemEnable(command, enable ? 1 : 0);
    lookup_ = saved;
    return ok;
}

int VntMenu::ItemTextGet(long command) {
    text_[0] = '\0';
    const Ref r = find(command);
    if (!r.ok()) return 0;
    const std::string label = r.title >= 0 ? fromWx(r.bar->GetMenuLabel(static_cast<size_t>(r.title))) : labelOf(r.item);
    return static_cast<int>(Vnt_StrCopy(text_, label));
}

bool VntMenu::ItemTextSet(long command, const char* text, long flags) {
    const Ref r = find(command);
    if (!r.ok()) return false;
    const std::string t(text ? text : text_);
    if (r.title >= 0) r.bar->SetMenuLabel(static_cast<size_t>(r.title), toWx(t));
    else setLabel(r.item, t.substr(0, kMaxText));
    if (flags != -1) setState(r, static_cast<unsigned>(flags) & 11u);
    return true;
}

bool VntMenu::ItemTextExtend(long command, const char* suffix) {
    if (ItemTextGet(command) < 1) return false;
    std::string t(text_);
    const std::string s(suffix ? suffix : "");
    // A new shortcut replaces the old one.
    if (s.find('\t') != std::string::npos && t.find('\t') != std::string::npos) t.resize(t.find('\t'));
    if (t.size() + s.size() > kMaxText && t.size() >= kMaxText) return false;
    const std::size_t room = kMaxText - t.size();
    t += s.substr(0, room);
    Vnt_StrCopy(text_, t);
    return s.size() <= room;
}

bool VntMenu::ItemExtend(long command, const char* suffix, long flags) {
    const bool whole = ItemTextExtend(command, suffix);
    if (text_[0] == '\0') return false;
    return ItemTextSet(command, nullptr, flags) && whole;
}

bool VntMenu::ItemShortcut(long command, const char* shortcut, long flags) {
    std::string s(shortcut ? shortcut : "");
    if (s.size() > 48) s.resize(48);
    if (s.empty() || s[0] != '\t') s.insert(0, 1, '\t');
    return ItemExtend(command, s.c_str(), flags);
}

bool VntMenu::ItemInsert(long command, long before, const char* text) {
    if (!menu_) return false;  // a bar holds titles only (TitleInsert)
    const std::string t(text ? text : text_);
    wxMenu* target = menu_;
    std::size_t pos = 0;
    if (before == 0) {
        pos = 0;
    } else if (before == -1) {
        pos = menu_->GetMenuItemCount();
    } else {
        const Ref r = find(before);
        if (!r.item || !r.parent) return false;
        target = r.parent;
        pos = static_cast<std::size_t>(r.pos);
    }
    auto* item = command == 0 ? new wxMenuItem(target, wxID_SEPARATOR, "", "", wxITEM_SEPARATOR)
                              : new wxMenuItem(target, wxIdOf(command), shownLabel(t.substr(0, kMaxText)));
    if (command != 0) menuState().fullTexts[item] = t.substr(0, kMaxText);
    if (!target->Insert(pos, item)) return false;
    if (command == VNT_SC_RESTORE) {
        Maximize(false, maximized_ ? 1 : 0);
    } else if (command == VNT_SC_MAXIMIZE) {
        style_ |= VNT_MENU_MAXIMIZE;
        Maximize(false, 0);
    } else if (command == VNT_SC_MINIMIZE) {
        style_ |= VNT_MENU_MINIMIZE;
    }
    return true;
}

bool VntMenu::ItemModify(long command, long before, const char* text) {
    return find(command).ok() ? ItemTextSet(command, text, -1) : ItemInsert(command, before, text);
}

bool VntMenu::ItemDelete(long command) {
    const Ref r = find(command);
    if (r.title >= 0) {
        delete r.bar->Remove(static_cast<size_t>(r.title));
        return true;
    }
    if (!r.item || !r.parent) return false;
    forgetItem(r.item);
    r.parent->Destroy(r.item);
    return true;
}

namespace {

// Walks a popup: the item ends the search with the popup's position in its
// parent; a nested popup ends it with the search inside (deliberate: items
// after a nested popup are not looked at).
int findInPopup(wxMenu* popup, int posInParent, long command, wxMenu*& found) {
    int j = 0;
    for (wxMenuItem* item : popup->GetMenuItems()) {
        if (item->IsSubMenu()) return findInPopup(item->GetSubMenu(), j, command, found);
        if (!item->IsSeparator() && commandOf(item->GetId()) == command) {
            found = popup;
            return posInParent;
        }
        ++j;
    }
    return -1;
}

}  // namespace

int VntMenu::TitleFind(long command) {
    titlePos_ = -1;
    found_ = nullptr;
    wxMenuBar* bar = bar_;
    if (!bar && !menu_) {
        auto* frame = dynamic_cast<wxFrame*>(window_);
        bar = frame ? frame->GetMenuBar() : nullptr;
    }
    if (bar) {
        for (std::size_t i = 0; i < bar->GetMenuCount() && titlePos_ < 0; ++i)
            titlePos_ = findInPopup(bar->GetMenu(i), static_cast<int>(i), command, found_);
    } else if (menu_) {
        int i = 0;
        for (wxMenuItem* item : menu_->GetMenuItems()) {
            if (item->IsSubMenu() && (titlePos_ = findInPopup(item->GetSubMenu(), i, command, found_)) >= 0) break;
            ++i;
        }
    }
    return titlePos_;
}

int VntMenu::TitleTextGet(long command) {
    const int pos = TitleFind(command);
    if (pos <= 0) return -1;  // deliberate: the first title counts as not found
    const long saved = lookup_;
    lookup_ = VNT_MF_BYPOSITION;
    wxMenuBar* heldBar = bar_;
    if (!bar_ && !menu_)
        if (auto* frame = dynamic_cast<wxFrame*>(window_)) bar_ = frame->GetMenuBar();
    const int len = ItemTextGet(pos);
    bar_ = heldBar;
    lookup_ = saved;
    return len;
}

bool VntMenu::TitleEnable(long command, bool enable) {
    const int pos = TitleFind(command);
    if (pos < 0) return false;
    const long saved = lookup_;
    lookup_ = VNT_MF_BYPOSITION;
    wxMenuBar* heldBar = bar_;
    if (!bar_ && !menu_)
        if (auto* frame = dynamic_cast<wxFrame*>(window_)) bar_ = frame->GetMenuBar();
    const Ref r = find(pos);
    if (r.ok()) setState(r, enable ? 0u : 3u);
    bar_ = heldBar;
    lookup_ = saved;
    return r.ok();
}

bool VntMenu::TitleInsert(int position, VntMsgRef title, wxMenu* popup) {
    char text[256];
    if (title.IsId() ? !Vnt_ResLoadString(instance_, title.Id(), text, sizeof text)
                     : (Vnt_StrCopy(text, title.Text()), false))
        return false;
    const wxString t = toWx(text);
    if (bar_) {
        if (!popup) return false;
        if (position < 0 || position >= static_cast<int>(bar_->GetMenuCount())) return bar_->Append(popup, t);
        return bar_->Insert(static_cast<std::size_t>(position), popup, t);
    }
    if (!menu_) return false;
    const std::size_t count = menu_->GetMenuItemCount();
    const std::size_t pos = position < 0 || static_cast<std::size_t>(position) > count ? count
                                                                                     : static_cast<std::size_t>(position);
    if (popup) return menu_->Insert(pos, wxID_ANY, t, popup) != nullptr;
    return menu_->Insert(pos, wxID_ANY, t) != nullptr;
}

bool VntMenu::TitleDelete(long command) {
    const int pos = TitleFind(command);
    if (pos < 0) return false;
    if (bar_) {
        delete bar_->Remove(static_cast<std::size_t>(pos));
        return true;
    }
    if (menu_) {
        menu_->Destroy(menu_->FindItemByPosition(static_cast<std::size_t>(pos)));
        return true;
    }
    return false;
}

bool VntMenu::Maximize(bool show, int mode) {
    if (!(style_ & VNT_MENU_MAXIMIZE)) return false;
    maximized_ = mode == 2 ? !maximized_ : mode != 0;
    if (show) {
        if (minimized_) Minimize(false, 0);
        if (auto* top = dynamic_cast<wxTopLevelWindow*>(window_)) {
            if (top->IsIconized()) top->Iconize(false);
            top->Maximize(maximized_);
        }
    }
    enableById(VNT_SC_MAXIMIZE, !maximized_);
    enableById(VNT_SC_RESTORE, minimized_ || maximized_);
    return true;
}

bool VntMenu::Minimize(bool show, int mode) {
    if (!(style_ & VNT_MENU_MINIMIZE)) return false;
    minimized_ = mode == 2 ? !minimized_ : mode != 0;
    if (show) {
        if (maximized_) Maximize(false, 0);
        if (auto* top = dynamic_cast<wxTopLevelWindow*>(window_)) top->Iconize(minimized_);
    }
    enableById(VNT_SC_MINIMIZE, !minimized_);
    enableById(VNT_SC_RESTORE, minimized_ || maximized_);
    return true;
}

bool VntMenu::DoSysMenu(long command) {
    switch (commandOf(static_cast<int>(command))) {
        case VNT_SC_MINIMIZE: return Minimize(true, 1);
        case VNT_SC_MAXIMIZE: return Maximize(true, 1);
        case VNT_SC_RESTORE: return Maximize(true, 0) || Minimize(true, 0);
        default: return false;
    }
}

bool VntMenu::DoSysKeys(const wxKeyEvent& key) {
    const int mods = key.GetModifiers();
    if (key.GetKeyCode() == WXK_F9 && mods == wxMOD_NONE) return DoSysMenu(VNT_SC_MINIMIZE), true;
    if (key.GetKeyCode() == WXK_F10 && mods == wxMOD_CONTROL)
        return DoSysMenu(maximized_ ? VNT_SC_RESTORE : VNT_SC_MAXIMIZE), true;
    return false;
}

bool VntMenu::InstallSysKeys() {
    auto* top = dynamic_cast<wxTopLevelWindow*>(window_);
    if (top == nullptr || keysWindow_ == top) return top != nullptr;
    wxAcceleratorEntry keys[2];
    keys[0].Set(wxACCEL_NORMAL, WXK_F9, wxIdOf(VNT_SC_MINIMIZE));
    keys[1].Set(wxACCEL_CTRL, WXK_F10, wxIdOf(VNT_SC_MAXIMIZE));
    top->SetAcceleratorTable(wxAcceleratorTable(2, keys));
    top->Bind(wxEVT_MENU, &VntMenu::onSysKey, this, wxIdOf(VNT_SC_MINIMIZE));
    top->Bind(wxEVT_MENU, &VntMenu::onSysKey, this, wxIdOf(VNT_SC_MAXIMIZE));
    keysWindow_ = top;
    return true;
}

// The accelerators come as the commands; the modifier+F10 restores a
// maximised window.
void VntMenu::onSysKey(wxCommandEvent& e) {
    const long command = commandOf(e.GetId());
    DoSysMenu(command == VNT_SC_MAXIMIZE && maximized_ ? VNT_SC_RESTORE : command);
}

bool VntMenu::CloseOk() const {
    if ((!bar_ && !menu_) || !system_) return true;
    VntMenu* self = const_cast<VntMenu*>(this);
    const long saved = self->lookup_;
    self->lookup_ = 0;
    const Ref r = find(VNT_SC_CLOSE);
    self->lookup_ = saved;
    return r.ok() && (state(r) & 3u) == 0;
}

bool VntMenu::ByPosition(int mode) {
    const bool was = lookup_ == VNT_MF_BYPOSITION;
    if (mode == 1) lookup_ = VNT_MF_BYPOSITION;
    else if (mode == 0) lookup_ = 0;
    return was;
}
