// Process-wide state of the edit control's conversions, in one resettable object.
#pragma once

namespace vnt::ed {

struct EdState {
    long lastReportedType = -1;  // the type of the last type message; -1: none yet
    char valueText[60] = {};     // the text Vnt__EdSetVal returns
    char dateText[20] = {};      // the text Vnt__EdSetDate returns
};

EdState& state();
void reset();

}  // namespace vnt::ed
