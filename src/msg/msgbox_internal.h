// Private side of the message box: the prefix of a message text, and the
// box's process-wide state.
#pragma once

#include <string>
#include <vector>

#include "msg/msg_internal.h"
#include "vanto/ui/msgbox.h"

namespace vnt::msg::box {

inline constexpr std::size_t kKeySize = 40;        // checkbox key, help keyword: 39 characters
inline constexpr std::size_t kTemplateSize = 513;  // details template: 512 characters
inline constexpr int kMaxLines = 15;
inline constexpr std::size_t kLineWidth = 79;

/// What the leading control characters of a message text say.
struct Prefix {
    int icon = VNT_ICON_INFORMATION;
    long iconBits = 64;               ///< 16 stop, 32 question, 48 exclamation, 64 information, 0 none
    bool checkbox = false;
    std::string checkboxKey;          ///< the number or name in "x[...]"
    bool checkboxBelow = false;       ///< '.'
    bool checkboxLeft = false;        ///< '<'
    std::vector<std::string> labels;  ///< "|" labels, '~' already '&'
    long code = -1;                   ///< buttons of the button code, -1 none
    bool help = false;                ///< a help part "h" came
    long helpContext = 0;             ///< "h" alone -1, "h[123]" 123
    std::string helpKeyword;          ///< "h[name]"
    std::string text;                 ///< what is left to show
};

/// Reads the prefix. `plain` reads only what the plain box knows: the icon
/// character and the button code.
Prefix parsePrefix(const char* text, bool internalError, bool detailsMode, bool plain);

/// The buttons of a box without a button code: Yes/No/Cancel with the
/// question icon, OK/Cancel with the exclamation icon, else OK.
long defaultButtons(int icon);

/// Maps a button to the answer: OK, Yes, Retry 1; Cancel, Abort 2 (7 in a
/// Yes/No box); No, Ignore 7.
VNT_RESP mapAnswer(int button, bool yesNoBox);

/// One open box.
struct Slot {
    std::string text;
    std::string details;
    long helpContext = 0;
    std::string libName;
    VntMsgRef ref;
    std::string checkboxKey;
    std::string helpKeyword;
    long typeOverride = -1;
    long type = 0;
};

/// The box's process-wide state.
struct BoxState {
    int level = 0;                 ///< boxes open now: 0, 1 or 2
    Slot slots[2];
    bool templateLoaded = false;   ///< the details template was fetched
    bool templateLoading = false;  ///< ... and is being fetched now
    std::string detailsTemplate;   ///< system message 62001, 512 characters
    char appTitle[kTitleSize] = {};
    long copyWaitMs = 200;         ///< the clipboard copy's wait
    long editWaitMs = 2000;        ///< how long the editor gets before the file goes
};

BoxState& boxState();

}  // namespace vnt::msg::box
