// Private side of the message system shared by its sources: the text ring,
// the box title, the show path of the message box, and state resets.
#pragma once

#include <cstddef>

#include "vanto/msg.h"

namespace vnt::msg {

inline constexpr std::size_t kTextSize = 1024;   // ring buffers, message texts
inline constexpr std::size_t kTitleSize = 120;   // box titles: 119 characters

/// Takes the next of the four ring buffers (kTextSize bytes), emptied.
char* ringTake();
/// True when p points into one of the ring buffers.
bool inRing(const char* p);

/// The current box title (Vnt_MsgSetTitle, else the default title).
const char* boxTitle();

/// One request to show the message box.
struct ShowRequest {
    const char* text = "";              ///< the formatted text with its prefix
    bool internalError = false;         ///< report mode: OK and Support, exclamation icon
    long helpContext = 0;               ///< non-zero adds the Help button
    const char* description = nullptr;  ///< details page: description (null: the default)
    const char* sourceFile = nullptr;   ///< details page: source file (null: "(unknown)")
    int line = 0;                       ///< details page: line
    long typeOverride = -1;             ///< replaces the parsed box type when >= 0
    const char* libName = "";           ///< suppression key: library name (8 characters)
    VntMsgRef ref;                      ///< suppression key: the message reference
    int defaultButton = -1;             ///< index of the default button, -1 = the box's own
};

/// Shows the message box (nesting, suppression memory, details and help)
/// and maps the answer to 1, 2 or 7 (-1 when the box cannot be created).
VNT_RESP showBox(const ShowRequest& req);

/// Resets the state of each part of the message system, for tests.
void resetTexts();    // handles, ring, titles, counters, application library
void resetBox();      // nesting, box titles, suppression file location
void resetReports();  // re-entrance flag; connects the reader's reports again

}  // namespace vnt::msg
