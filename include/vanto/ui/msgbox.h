// vanto/ui/msgbox.h - the message box model and its presenter port.
//
// The core turns a message text into a complete box model; a presenter only
// shows it and returns the button pressed. The window toolkit installs its
// presenter; headless ones serve tools and tests.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "vanto/msg.h"

/// Icons of the box (resource numbers of the dialog's icons).
enum VNT_BOX_ICON : int {
    VNT_ICON_NONE = 0,
    VNT_ICON_INFORMATION = 30061,
    VNT_ICON_EXCLAMATION = 30062,
    VNT_ICON_QUESTION = 30063,
    VNT_ICON_STOP = 30064,
};

/// Button response IDs of the box (dialog 30061).
enum VNT_BOX_BUTTON : int {
    VNT_BTN_OK = 1, VNT_BTN_CANCEL = 2, VNT_BTN_ABORT = 3, VNT_BTN_RETRY = 4,
    VNT_BTN_IGNORE = 5, VNT_BTN_YES = 6, VNT_BTN_NO = 7, VNT_BTN_HELP = 9,
    VNT_BTN_SUPPORT = 100,
};

struct VntBoxButton {
    int id;               ///< VNT_BOX_BUTTON
    std::string caption;  ///< with '&' before the access key ("&Ja")
};

/// Everything a presenter needs to draw one box. Texts are Windows-1252.
struct VntBoxModel {
    int icon = VNT_ICON_INFORMATION;
    long type = 0;                      ///< 0..5 buttons, +16/32/48/64 icon, +16384 Help
    std::vector<VntBoxButton> buttons;  ///< left to right; Help last
    int defaultButton = -1;             ///< index into buttons, -1 = the first
    int escapeButton = VNT_BTN_CANCEL;  ///< the answer of closing the box (Esc)
    bool checkbox = false;              ///< "do not show this message again"
    bool checkboxBelow = false;         ///< below the buttons ('.'), else above ('^')
    bool checkboxLeft = false;          ///< the left checkbox (199, '<'), else the right (200)
    std::string checkboxCaption;
    std::vector<std::string> lines;     ///< at most 15 lines of at most 79 characters
    std::string title;
    std::string details;                ///< the details page text (Support)
    bool internalError = false;         ///< OK and Support
    bool detailsMode = false;           ///< this box is the details page
    int level = 1;                      ///< nesting level, 1 or 2
    long helpContext = 0;               ///< -1 contents, >0 a context number
    std::string helpKeyword;
    /// The whole text of the message, for the copy and editor actions.
    std::string text;
};

/// What the user did.
struct VntBoxAnswer {
    int button = VNT_BTN_CANCEL;  ///< VNT_BOX_BUTTON; VNT_BTN_CANCEL when closed
    bool checked = false;         ///< the checkbox was ticked
};

/// A plain box (the platform's standard box in the old system).
struct VntPlainBox {
    std::string text;
    std::string title;
    long type = 0;  ///< buttons and icon bits as in VntBoxModel::type
};

/// Shows boxes.
class VANTO_API VntMsgPresenter {
public:
    virtual ~VntMsgPresenter();
    /// Shows the box modally; false when it could not be created.
    virtual bool Show(const VntBoxModel& box, VntBoxAnswer& answer) = 0;
    /// Shows a plain box and returns the button pressed (VNT_BOX_BUTTON),
    /// or 0 when it could not be shown.
    virtual int ShowPlain(const VntPlainBox& box) = 0;
};

/// The presenter in use (the console presenter until another is installed).
VANTO_API VntMsgPresenter& Vnt_UiPresenter();
/// Installs a presenter (null: the console one again); returns the previous.
VANTO_API VntMsgPresenter* Vnt_UiSetPresenter(VntMsgPresenter* presenter);

/// Parses a message text into a box model (the prefix grammar) as the box
/// shows it; `internalError` and `detailsMode` select those modes.
VANTO_API VntBoxModel Vnt_MsgBoxModel(const char* text, bool internalError = false,
                                      bool detailsMode = false, long typeOverride = -1,
                                      long helpContext = 0);

/// The box's context menu actions: copy the text and the details to the
/// clipboard; write them to "VantoErr.tmp" and open it in the text editor.
VANTO_API bool Vnt_MsgBoxCopy(const VntBoxModel& box);
VANTO_API bool Vnt_MsgBoxEdit(const VntBoxModel& box);

/// A presenter for tests: answers from a queue (OK when empty) and keeps
/// every box it was shown.
class VANTO_API VntScriptedPresenter : public VntMsgPresenter {
public:
    bool Show(const VntBoxModel& box, VntBoxAnswer& answer) override;
    int ShowPlain(const VntPlainBox& box) override;
    std::deque<VntBoxAnswer> answers;   ///< next answers of Show
    std::deque<int> plainAnswers;       ///< next answers of ShowPlain
    std::vector<VntBoxModel> shown;     ///< every box shown
    std::vector<VntPlainBox> plainShown;
    bool failNext = false;              ///< the next Show fails to create the box
    /// Called during Show (after recording), e.g. to raise a nested message.
    void (*during)(const VntBoxModel&) = nullptr;
};

/// The console presenter: draws the box on standard error (UTF-8) and asks on
/// the terminal; without one it takes OK where OK is the only answer and
/// otherwise the answer of closing the box, and says so.
class VANTO_API VntConsolePresenter : public VntMsgPresenter {
public:
    bool Show(const VntBoxModel& box, VntBoxAnswer& answer) override;
    int ShowPlain(const VntPlainBox& box) override;
};
