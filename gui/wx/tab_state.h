// Process-wide state of the tabbed views, in one object tests can reset.
#pragma once

#include <string>

#include <wx/string.h>
#include <wx/window.h>

class VntTab;
class VntTabViewBase;
class wxComboBox;
class wxEventFilter;

namespace vnt::wx {

struct TabState {
    VntTab* current = nullptr;           // the tab holder of the active view
    VntTabViewBase* currentView = nullptr;  // the active view (its tool keys)
    wxComboBox* droppedCombo = nullptr;  // the combo box whose list is open
    int hookCount = 0;                   // active tabbed views
    wxEventFilter* hook = nullptr;       // the keyboard rules while installed
    std::string trace;                   // trace lines written so far
};

TabState& tabState();

/// `w` as a T, or null (a checked cast: UBSan reports wx's own downcast).
template <class T>
T* as(const wxWindow* w) {
    return dynamic_cast<T*>(const_cast<wxWindow*>(w));
}
/// Writes a trace line (and keeps it for tests).
void tabTrace(const char* line);
/// Installs the keyboard rules with the first active view (true) and
/// removes them with the last (false); writes the trace lines.
void tabHook(bool install);
/// The panel resource made from dialog resource `number` (its controls,
/// without the dialog's frame); `title` gets the dialog's title. Empty when
/// there is no such dialog.
wxString pageResource(long number, wxString& title);

}  // namespace vnt::wx
