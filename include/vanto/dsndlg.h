// vanto/dsndlg.h - what the client dialogs do, without their windows.
//
// The client selection (dialog 30021) and its entry dialogs (30022 to
// change a client, 30023 for a new one, with the choices 30024 and 30025)
// are windows of the window toolkit; everything they decide and change is
// here, so that it works and is tested without a display. A window shows
// the state of these objects and calls one function per button:
//
//   30021  list 1000            VntDsnSelection::Select
//          "&OK" / "Abbrechen"  Ok / Cancel (true: close the dialog)
//          "&Bearbeiten..."     VntDsnEntryEdit(selection, Selected())
//          "&Einfügen..."       VntDsnEntryEdit(selection, -1)
//          "&Löschen..."        Delete        "&Speichern"  Save
//          "Er&gänzen..."       Supplement    "&Hilfe"      the help of the
//                                                              dialog (topic 30021)
//          "&< Auf" / "Ab &>"   MoveUp / MoveDown
//   30022/30023 "&OK"           VntDsnEntryEdit::Ok
//   30026  the directory tree   Vnt_DsnDirRoots, Vnt_DsnDirChildren
//
// Every change of the list stays in memory until OK or "&Speichern" writes
// "dsn.ini" (DsnIni::WriteEntries); Cancel forgets it after asking.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "vanto/base.h"
#include "vanto/dsn.h"
#include "vanto/ui/clientsel.h"

/// Control numbers of the client dialogs. The library's XRC resources give
/// their controls these numbers; controls 1001 to 1009 are the ones that
/// change the list or the user's choices, disabled while a second registry
/// is alive.
enum VNT_DSN_IDC : int {
    VNT_DSN_IDC_HELP = 9,         ///< "&Hilfe" (the dialogs' help control)
    VNT_DSN_IDC_LIST = 1000,      ///< the client list
    VNT_DSN_IDC_DEFAULT = 1001,   ///< "St&andardmandant"
    VNT_DSN_IDC_NOSHOW = 1002,    ///< "&Keine Mandantenauswahl bei Programmstart"
    VNT_DSN_IDC_EDIT = 1003,      ///< "&Bearbeiten..."
    VNT_DSN_IDC_INSERT = 1004,    ///< "&Einfügen..."
    VNT_DSN_IDC_DELETE = 1005,    ///< "&Löschen..."
    VNT_DSN_IDC_SAVE = 1006,      ///< "&Speichern"
    VNT_DSN_IDC_SUPPLEMENT = 1007,///< "Er&gänzen..."
    VNT_DSN_IDC_UP = 1008,        ///< "&< Auf"
    VNT_DSN_IDC_DOWN = 1009,      ///< "Ab &>"
    VNT_DSN_IDC_NAME = 1020,      ///< entry dialogs: the name field
    VNT_DSN_IDC_PATH = 1021,      ///< entry dialogs: the path field
    VNT_DSN_IDC_BROWSE = 1022,    ///< entry dialogs: "&..."
    VNT_DSN_IDC_ATEND = 1023,     ///< 30023: "Am &Ende anfügen"
    VNT_DSN_IDC_ONLY = 1027,      ///< 30024/30025: the first choice (the entry only)
    VNT_DSN_IDC_INSTALL = 1028,   ///< 30024/30025: the second choice (with the installation)
    VNT_DSN_IDC_TREE = 1030,      ///< 30026: the directory tree
};

/// The selection dialog 30021 over a registry whose entries are loaded
/// (Vnt_DsnSelect gives the port such a registry). It keeps the connection
/// of its start (Vnt_AppConnSave) for Cancel, the chosen entry and the two
/// check boxes.
class VANTO_API VntDsnSelection {
public:
    /// The list starts with no entry chosen; "&Keine Mandantenauswahl bei
    /// Programmstart" is ticked when the user does not want the selection at
    /// start (request.showAtStart false). The dialog's position comes from
    /// the user's section "DSN" ("X", "Y").
    VntDsnSelection(DsnIni& registry, const VntClientSelectRequest& request);

    DsnIni& Registry() { return registry_; }
    /// True while a second registry is alive in the process: controls 1001
    /// to 1009 are then disabled and the list cannot be changed from here.
    bool ListLocked() const;
    /// The display names in list order.
    std::vector<std::string> Names() const;
    /// The chosen entry, -1 for none.
    int Selected() const { return selected_; }
    /// Chooses entry `index` (out of range: none). "St&andardmandant" follows:
    /// ticked when that entry is the user's default client.
    void Select(int index);
    bool DefaultTicked() const { return defaultTicked_; }
    void SetDefaultTicked(bool on) { defaultTicked_ = on; }
    bool NoShowTicked() const { return noShowTicked_; }
    void SetNoShowTicked(bool on) { noShowTicked_ = on; }
    /// The dialog's remembered position; false when none was saved.
    bool Position(int& x, int& y) const;

    /// "&OK": with no entry chosen nothing happens (false). Otherwise
    /// Vnt_DsnSelectOk: a missing path is asked about (60358) and set up
    /// (module 24), the list written, the client connected. When it is
    /// connected the user's choices are written to the section "DSN" of
    /// "User.ini" ("ShowDlg" 0 when the box is ticked, removed when not;
    /// "Default" the chosen client when "St&andardmandant" is ticked,
    /// removed when the box was cleared for the default client): true.
    bool Ok();
    /// "Abbrechen": Vnt_DsnSelectCancel with the connection of the start
    /// (a changed list is asked about with 60359). True: close.
    bool Cancel();
    /// Saves the dialog's position for the next time ("X", "Y").
    void SavePosition(int x, int y);
    /// "&Löschen...": with an entry chosen asks 60355 with its name; Yes
    /// removes it and chooses the entry now at that place (none when the
    /// list became empty): true, the list is to be shown anew. No entry
    /// chosen: a beep, false.
    bool Delete();
    /// "&Speichern": writes the list (DsnIni::WriteEntries); false when it
    /// could not be written or the user stopped it (60363).
    bool Save();
    /// "&< Auf" and "Ab &>": the chosen entry changes place with its
    /// neighbour and stays chosen: true. At the top (bottom) or with none
    /// chosen: a beep, false.
    bool MoveUp();
    bool MoveDown();
    /// "Er&gänzen...": asks 60362 (only Yes goes on); then for the chosen
    /// entry, when its path does not exist, asks 60358 (only Yes goes on) and
    /// starts the client installation (module 24) for the path. No entry
    /// chosen: a beep. True when the installation ran with success.
    bool Supplement();

private:
    bool move(int by);

    DsnIni& registry_;
    VntClientSelectRequest request_;
    std::string saved_;  // the connection at the start (Vnt_AppConnSave)
    int selected_ = -1;
    bool defaultTicked_ = false;
    bool noShowTicked_ = false;
};

/// The answer of the choice dialogs 30024 (the changed path does not exist)
/// and 30025 (the new path exists already).
enum class VntDsnChoice {
    Cancel,   ///< "&Abbrechen": back to the entry dialog
    Only,     ///< the first choice: the list only
    Install,  ///< the second choice (control 1028): with the client installation
};

/// Entry dialog 30022 (change the chosen client) or 30023 (a new client) of
/// a selection: edits a copy of the entry and places it in the list on OK.
class VANTO_API VntDsnEntryEdit {
public:
    /// `index` is the entry to change; -1 (or any index out of range) a new
    /// entry, inserted before the entry chosen in `selection` (at the end
    /// when none is chosen or "Am &Ende anfügen" is ticked).
    VntDsnEntryEdit(VntDsnSelection& selection, int index);

    bool IsNew() const { return index_ < 0; }
    /// 30023 for a new entry, else 30022.
    long Dialog() const { return IsNew() ? 30023 : 30022; }
    /// The texts the fields start with.
    const char* Name() const { return entry_.name; }
    const char* Path() const { return entry_.path; }

    /// How OK ended.
    enum class Outcome {
        Stay,       ///< the dialog stays open (refused, cancelled choice, failed set-up)
        Cancelled,  ///< nothing changed: close as cancelled
        Done,       ///< the list holds the entry: close with OK
    };
    /// Asks the user in dialog 30024 (a changed path that does not exist) or
    /// 30025 (a new path that exists); the argument is the dialog's number.
    using Chooser = std::function<VntDsnChoice(long dialog)>;
    /// "&OK" with the texts of the fields (blanks around them dropped, each
    /// cut to 259 characters):
    ///  - the name must not be another client's name, the path must not be
    ///    empty nor another client's path (an empty name counts as the path):
    ///    messages 60352, 60353, 60354, Stay;
    ///  - a new entry whose path exists, or a changed one whose path does
    ///    not, asks `choose` (Cancel: Stay); a new entry whose path does not
    ///    exist is set up, a changed one whose path exists is not;
    ///  - nothing changed and no set-up: Cancelled;
    ///  - without set-up: the entry goes into the list (a change keeps the
    ///    client's other lines), the registry marked modified: Done;
    ///  - with set-up: Vnt_DsnSetUpClient (modules 24 and 23; the path
    ///    counts as moved when new or different in any case); its failure
    ///    keeps the entry out of the list: Stay; success: as without.
    /// The selection then chooses the entry.
    Outcome Ok(const char* name, const char* path, bool atEnd, const Chooser& choose);
    /// Where the entry stands after Done.
    int Index() const { return index_; }

private:
    bool refused(const std::string& name, const std::string& path);

    VntDsnSelection& selection_;
    int index_;
    DsnEntry entry_;
    std::string formerPath_;  // the path "moved" compares with
};

/// The top of the directory tree 30026: the known volumes as "X:\" in
/// letter order (the volume of the program first stays in its place).
VANTO_API std::vector<std::string> Vnt_DsnDirRoots();
/// The sub-directories of `dir` (library path), their names only, sorted
/// without regard to case; "." and ".." and hidden ones (a leading ".") are
/// left out. Empty when `dir` cannot be read.
///   "T:\" with Daten, b, .git => "b", "Daten"
VANTO_API std::vector<std::string> Vnt_DsnDirChildren(const char* dir);
/// The directory a path field names, to open the tree at: the path (made
/// absolute) when it is a directory, else the nearest existing directory
/// above it ("" when none). "T:\Daten\M1\vanto.db" (a file) => "T:\Daten\M1".
VANTO_API std::string Vnt_DsnDirStart(const char* path);
