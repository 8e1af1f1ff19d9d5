// Process-wide state of the menu helper, in one object tests can reset.
#pragma once

#include <map>
#include <set>
#include <string>

class wxMenu;
class wxMenuItem;
class wxWindow;

namespace vnt::wx {

struct MenuState {
    int live = 0;                              // live VntMenu objects (Term counts too)
    char modifier[5] = "";                     // "Strg" or "Ctrl", chosen once
    char texts[4][40] = {};                    // Restore, Maximize, Minimize, task list
    std::set<const wxMenuItem*> greyOnly;      // items greyed but not disabled
    std::map<wxWindow*, wxMenu*> sysMenus;     // the system menu of each window
    std::map<const wxMenuItem*, std::string> fullTexts;  // texts as set (wx drops shortcuts it cannot parse)
};

MenuState& menuState();
/// Back to a fresh process: the system menus are freed, the texts chosen anew.
void menuStateReset();

}  // namespace vnt::wx
