// vanto/wx/menu.h - the menu helper VntMenu (library vantortl_wx).
//
// A VntMenu wraps one menu of a window: the frame's menu bar, a popup of
// it, a menu it made itself (Create/CreatePopup), or the window's system
// menu. Items are addressed by command identifier (searched through the
// popups, as the platform does) or, after ByPosition(1), by position in
// the held menu.
//
//   VntMenu bar(frame);                   // the frame's menu bar
//   bar.ItemCheck(ID_VIEW_RULER, 2);      // toggles; true when now checked
//   bar.ItemShortcut(ID_FILE_OPEN, "F3"); // "&Öffnen\tCtrl+O" => "&Öffnen\tF3"
//
// Item states are the platform's state word: 1 greyed, 2 disabled, 8
// checked (wx shows greyed and disabled alike). Rules kept on purpose:
//   ItemEnable(id, 2)  enables an item whose state word is not 0 (greyed,
//                      disabled, checked ...) and disables and greys a plain
//                      enabled one; a checked enabled item stays enabled
//   TitleTextGet(id)   -1 for a command under the first title (position 0)
//   TitleFind(id)      stops at the first nested popup of a popup: items
//                      after it are not searched
//   Term()             raises the live count like a construction
//
// The system menu: GTK has none, so the library keeps one per window with
// fixed texts in the library language ("&Wiederherstellen", "Mi&nimieren",
// "Ma&ximieren", "&Schlie\xDF" "en", "&Wechseln zu..."; English "&Restore",
// "Mi&nimize", "Ma&ximize", "&Close", "S&witch To..."). Restore and
// Maximize carry "\tStrg+F10" when the locale's "sLanguage" is DEU (any
// case), else "\tCtrl+F10"; Minimize carries "\tF9". An application shows
// it where it likes (PopupMenu of SysMenu()) and passes the frame's keys
// through DoSysKeys:
//
//   VntMenu sys(frame, true, -1);          // lives as long as the frame
//   sys.InstallSysKeys();                  // F9 and Ctrl+F10
//   frame->Bind(wxEVT_MENU, [&](wxCommandEvent& e) { if (!sys.DoSysMenu(e.GetId())) e.Skip(); });
#pragma once

#include <cstdint>

#include <wx/event.h>

#include "vanto/base.h"

class wxMenu;
class wxMenuBar;
class wxMenuItem;
class wxWindow;

/// System command identifiers.
inline constexpr long VNT_SC_MOVE = 61456;
inline constexpr long VNT_SC_MINIMIZE = 61472;
inline constexpr long VNT_SC_MAXIMIZE = 61488;
inline constexpr long VNT_SC_CLOSE = 61536;
inline constexpr long VNT_SC_RESTORE = 61728;
inline constexpr long VNT_SC_TASKLIST = 61744;

/// Style flags: the window may be maximised / minimised.
inline constexpr long VNT_MENU_MAXIMIZE = 0x10000;
inline constexpr long VNT_MENU_MINIMIZE = 0x20000;
/// Item state bits and insert flags.
inline constexpr long VNT_MF_GRAYED = 0x1;
inline constexpr long VNT_MF_DISABLED = 0x2;
inline constexpr long VNT_MF_CHECKED = 0x8;
inline constexpr long VNT_MF_BYPOSITION = 0x400;

class VANTO_API VntMenu {
public:
    VntMenu();
    /// The window's menu bar.
    explicit VntMenu(wxWindow* window);
    /// The menu bar, narrowed to the popup of the title that holds
    /// `titleCommand` when it is found.
    VntMenu(long titleCommand, wxWindow* window);
    /// The menu bar or (system) the window's system menu; style flags -1
    /// keep the object's own.
    VntMenu(wxWindow* window, bool system, long styleFlags);
    /// Lowers the live count; the menu itself stays (Destroy frees menus
    /// made by Create).
    ~VntMenu();
    VntMenu(const VntMenu&) = delete;
    VntMenu& operator=(const VntMenu&) = delete;

    /// Binds the window and its menu; true when a menu was found. A system
    /// menu is rebuilt: Maximize goes without VNT_MENU_MAXIMIZE, Minimize
    /// without VNT_MENU_MINIMIZE (the window's maximise/minimise boxes or
    /// the style flags give them); Restore, Maximize and Minimize get the
    /// shortcut texts; a task-list item is appended.
    bool Init(wxWindow* window, bool system = false, long styleFlags = -1);
    /// Clears the object (and counts as a new one); true.
    bool Term();
    bool IsValid() const;
    bool Create();
    bool CreatePopup();
    void Destroy();

    /// The held menu (a wxMenuBar* or wxMenu*), null when none.
    void* Handle() const;
    wxMenu* Menu() const { return menu_; }
    wxMenuBar* Bar() const { return bar_; }
    int ItemCount() const;
    /// Identifier at `position`; -1 for a popup, a separator or no item.
    long ItemId(int position) const;
    /// Position of the first top-level item with `command`; -1 when none,
    /// 0 without a menu.
    int ItemFind(long command) const;
    bool ItemExists(long command) const { return ItemFind(command) >= 0; }
    bool ItemChecked(long command) const;
    bool ItemEnabled(long command) const;
    /// Mode 0 uncheck, 1 check, 2 toggle. Toggle: the new state; otherwise
    /// whether it had been checked. A non-checkable item: false, unchanged.
    ///   checked item, mode 2 => unchecked, false
    bool ItemCheck(long command, int mode);
    /// Mode 0 disable and grey, 1 enable, 2 see the header; true when the
    /// previous state was exactly greyed (1).
    bool ItemEnable(long command, int mode);
    /// Mode 1 grey, 0 un-grey (fails on a disabled item), 2 keep grey when
    /// disabled or greyed, else un-grey; true when the previous state was
    /// exactly greyed (1).
    bool ItemGray(long command, int mode);
    /// The item's text (at most 255 characters) into Text(); its length,
    /// 0 when there is no item.
    int ItemTextGet(long command);
    /// New text (null: Text()); flags -1 keep the state, else the state
    /// becomes the flags' greyed/disabled/checked bits.
    bool ItemTextSet(long command, const char* text, long flags = -1);
    /// The text with `suffix` into Text(), the item unchanged. A suffix
    /// with a tab replaces a shortcut after the text's tab:
    ///   "Open\tCtrl+O" + "\tF3" => "Open\tF3"
    ///   "Open\tCtrl+O" + " (alt)" => "Open\tCtrl+O (alt)"
    /// False for an empty text, a full one (255) or a suffix cut to fit.
    bool ItemTextExtend(long command, const char* suffix);
    bool ItemExtend(long command, const char* suffix, long flags = -1);
    /// ItemExtend with a tab before `shortcut` (unless it has one); the
    /// shortcut is cut to 48 characters.
    bool ItemShortcut(long command, const char* shortcut, long flags = -1);
    /// Inserts `text` (null: Text()) with identifier `command` (0: a
    /// separator) before the item `before`; before 0 inserts at the top,
    /// -1 at the end.
    bool ItemInsert(long command, long before, const char* text);
    /// ItemTextSet when the item exists, else ItemInsert.
    bool ItemModify(long command, long before, const char* text);
    bool ItemDelete(long command);

    /// Position of the popup (within its parent) that holds `command`;
    /// -1 when none. See the header for the nested-popup rule.
    int TitleFind(long command);
    /// The popup TitleFind found last.
    wxMenu* TitlePopup() const { return found_; }
    /// The title's text into Text(); its length; -1 when not found or at
    /// position 0.
    int TitleTextGet(long command);
    bool TitleEnable(long command, bool enable);
    /// Inserts a title before `position` (-1: at the end): with a popup as
    /// a menu title (the bar takes the popup), without one as a plain item
    /// of a held popup. The title is a text or a string number (1..65535),
    /// loaded from the string table of the window's module (SetInstance;
    /// the program's own by default). False for a number without a string.
    ///   TitleInsert(1, "&Extras", popup)  => "&Extras" before title 1
    ///   TitleInsert(-1, 4711, popup)      => string 4711 as the last title
    bool TitleInsert(int position, VntMsgRef title, wxMenu* popup);
    /// The module whose string table gives titles by number (null: the
    /// program).
    void SetInstance(VNT_HINSTANCE instance) { instance_ = instance; }
    bool TitleDelete(long command);

    /// Keep the window and the system menu's items in step: mode 0
    /// restore, 1 minimise (maximise), 2 toggle. False without the style
    /// flag. With `show` the window follows.
    bool Minimize(bool show, int mode);
    bool Maximize(bool show, int mode);
    /// wx takes menu identifiers below 32767 only: the system commands
    /// (61456 ...) are 32768 less in wx's menus and events. CommandOf turns
    /// a wx event's identifier into the command, WxIdOf the other way:
    ///   CommandOf(28704) => 61472 (Minimize);  CommandOf(101) => 101
    static long CommandOf(int id);
    static int WxIdOf(long command);
    /// The system commands Minimize, Maximize and Restore (also given by
    /// their wx identifiers); false for others.
    bool DoSysMenu(long command);
    /// F9: Minimize; Ctrl+F10: Maximize, or Restore when maximised. True
    /// when the key was one of them.
    bool DoSysKeys(const wxKeyEvent& key);
    /// Gives the window the accelerators F9 and Ctrl+F10 (GTK keeps the
    /// modifier+F10 from key handlers) that run DoSysKeys' rules; the object
    /// must live as long as the window. False without a top-level window.
    bool InstallSysKeys();
    /// True without a menu or for a menu bar; for a system menu whether
    /// Close is neither disabled nor greyed.
    bool CloseOk() const;
    /// Mode 1 by position, 0 by identifier, 2 query; whether by-position
    /// was set before.
    bool ByPosition(int mode);

    /// The text buffer (256 characters).
    const char* Text() const { return text_; }
    long StyleFlags() const { return style_; }
    bool IsMinimized() const { return minimized_; }
    bool IsMaximized() const { return maximized_; }
    /// The window's system menu (made on first use), for PopupMenu.
    static wxMenu* SysMenu(wxWindow* window);
    /// Live objects.
    static int LiveCount();
    /// The four texts of the system menu: 0 Restore, 1 Maximize, 2 Minimize,
    /// 3 task list (chosen once per process).
    static const char* HarvestedText(int which);

private:
    struct Ref;
    void init();
    Ref find(long command) const;
    unsigned state(const Ref& r) const;
    void setState(const Ref& r, unsigned st);
    bool enableById(long command, bool enable);
    void harvest();
    void bindSystem();
    void onSysKey(wxCommandEvent& e);

    wxWindow* window_ = nullptr;
    wxMenuBar* bar_ = nullptr;
    wxMenu* menu_ = nullptr;
    bool owned_ = false;          // made by Create/CreatePopup
    int titlePos_ = -1;           // last TitleFind
    wxMenu* found_ = nullptr;     // popup of the last TitleFind
    char text_[256] = "";
    long style_ = 0;
    bool system_ = false;
    bool minimized_ = false, maximized_ = false;
    long lookup_ = 0;             // 0 by identifier, VNT_MF_BYPOSITION
    wxWindow* keysWindow_ = nullptr;  // the window InstallSysKeys bound
    VNT_HINSTANCE instance_ = nullptr;  // string table of titles by number
};
