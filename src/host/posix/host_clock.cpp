// The local clock, with a fixed moment tests can set.
#include "host/host.h"

#include <ctime>
#include <optional>

namespace vnt::host {

namespace {
std::optional<LocalTime>& fixedClock() {
    static std::optional<LocalTime> fixed;
    return fixed;
}
}  // namespace

LocalTime localNow() {
    if (const auto& fixed = fixedClock()) return *fixed;
    timespec ts{};
    clock_gettime(CLOCK_REALTIME, &ts);
    std::tm tm{};
    localtime_r(&ts.tv_sec, &tm);
    LocalTime t;
    t.year = tm.tm_year + 1900;
    t.month = tm.tm_mon + 1;
    t.day = tm.tm_mday;
    t.hour = tm.tm_hour;
    t.minute = tm.tm_min;
    t.second = tm.tm_sec > 59 ? 59 : tm.tm_sec;  // a leap second is not a field value
    t.millisecond = static_cast<int>(ts.tv_nsec / 1000000);
    t.weekday = tm.tm_wday == 0 ? 7 : tm.tm_wday;
    return t;
}

void setClock(const LocalTime* t) {
    if (t)
        fixedClock() = *t;
    else
        fixedClock().reset();
}

std::int64_t tickMs() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<std::int64_t>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

}  // namespace vnt::host
