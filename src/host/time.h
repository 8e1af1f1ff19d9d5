// The local clock, a monotonic one, and sleeping.
#pragma once

#include <cstdint>

namespace vnt::host {

/// A moment of the local clock, broken down.
struct LocalTime {
    int year = 0, month = 0, day = 0;     // 1-based month and day
    int hour = 0, minute = 0, second = 0;
    int millisecond = 0;
    int weekday = 0;                      // 1 Monday .. 7 Sunday
};
/// The local date and time now (the fixed moment while one is set).
LocalTime localNow();
/// Makes localNow() answer `t` from now on; null: the real clock again.
/// For tests, so that "today" is the same on every run.
void setClock(const LocalTime* t);
/// Milliseconds of a monotonic clock (unaffected by setClock).
std::int64_t tickMs();
/// Sleeps `ms` milliseconds. (A wait that serves the windows is the
/// application frame's Vnt_Delay.)
void sleepMs(long ms);

}  // namespace vnt::host
