// Process-wide state of dates, locale and amounts, in one resettable object.
#pragma once

#include "vanto/locale.h"

namespace vnt::cal {

/// Week settings, loaded once from "App.vtm" section "VntDate".
struct WeekSettings {
    bool loaded = false;
    char longNames[8][30] = {};   // index 1-7
    char shortNames[8][5] = {};   // index 1-7
    int firstDay = 1;             // DAY of the first day of the week
    int minDays = 4;              // minimum days of the year's first week
    int order[7] = {};            // the week's days in order
};

/// The loaded "intl" record and what is derived from it.
struct LocaleState {
    VNT_SYS_INFO info{};
    bool loaded = false;
    int order = -1;                          // VNT_DATE_ORDER_..., -1: not loaded
    char printFormat[16] = "%02d_%02d_%02d";
    char readSeps[8] = "__/.-, ";
    VntIntlSource* source = nullptr;         // null: the host's locale environment
};

/// Counters of the text form of amounts, and the reading buffer.
struct AmountState {
    long overflows = 0;
    long smalls = 0;
    char readBuf[41] = {};
};

struct CalState {
    WeekSettings week;
    LocaleState locale;
    AmountState amount;
};

CalState& state();
/// Everything back to its start: settings unloaded, counters zero, the
/// host's locale environment as the source.
void reset();

/// The loaded record (loading it on first use); shorthand for the users
/// inside the subsystem.
const VNT_SYS_INFO& sysInfo();

}  // namespace vnt::cal
