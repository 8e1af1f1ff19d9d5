// Calendar dates beside their nearest <chrono> peers, over the same 4,096
// dates: days between dates 70 years apart, a date plus 10,000 days, and the
// week of the year (the library's default weeks are ISO 8601 weeks).
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <random>
#include <vector>

#include "cal/cal_state.h"
#include "vanto/date.h"

namespace chr = std::chrono;

namespace {

constexpr std::size_t kCount = 4096;  // a power of two: the index wraps with a mask

struct Dates {
    std::vector<VNT_DATE> dates, later;
    std::vector<chr::year_month_day> ymd, ymdLater;
    Dates() {
        std::mt19937 rng(1583);
        std::uniform_int_distribution<int> day(0, 365 * 60);
        const chr::sys_days base{chr::year{1940} / 1 / 1};
        for (std::size_t i = 0; i < kCount; ++i) {
            const chr::sys_days a = base + chr::days{day(rng)};
            const chr::sys_days b = a + chr::days{25567 + day(rng) % 30};  // about 70 years on
            ymd.emplace_back(a);
            ymdLater.emplace_back(b);
            dates.push_back(toDate(ymd.back()));
            later.push_back(toDate(ymdLater.back()));
        }
    }
    static VNT_DATE toDate(chr::year_month_day d) {
        return VNT_DATE{static_cast<std::uint16_t>(int(d.year())), static_cast<std::uint8_t>(unsigned(d.month())),
                        static_cast<std::uint8_t>(unsigned(d.day()))};
    }
};

const Dates& dates() {
    static const Dates d;
    return d;
}

void BM_DiffDays70Years(benchmark::State& state) {
    const Dates& d = dates();
    std::size_t i = 0;
    for (auto _ : state) {
        VNT_DATE from = d.dates[i], to = d.later[i];
        benchmark::DoNotOptimize(Vnt_DateDiffDays(&from, &to));
        i = (i + 1) & (kCount - 1);
    }
}
BENCHMARK(BM_DiffDays70Years);

void BM_ChronoDiffDays70Years(benchmark::State& state) {
    const Dates& d = dates();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize((chr::sys_days{d.ymdLater[i]} - chr::sys_days{d.ymd[i]}).count());
        i = (i + 1) & (kCount - 1);
    }
}
BENCHMARK(BM_ChronoDiffDays70Years);

void BM_PlusDays10000(benchmark::State& state) {
    const Dates& d = dates();
    std::size_t i = 0;
    for (auto _ : state) {
        VNT_DATE src = d.dates[i], dst;
        Vnt_DatePlusDays(&src, &dst, 10000);
        benchmark::DoNotOptimize(dst);
        i = (i + 1) & (kCount - 1);
    }
}
BENCHMARK(BM_PlusDays10000);

void BM_ChronoPlusDays10000(benchmark::State& state) {
    const Dates& d = dates();
    std::size_t i = 0;
    for (auto _ : state) {
        chr::year_month_day r{chr::sys_days{d.ymd[i]} + chr::days{10000}};
        benchmark::DoNotOptimize(r);
        i = (i + 1) & (kCount - 1);
    }
}
BENCHMARK(BM_ChronoPlusDays10000);

void BM_WeekOfYear(benchmark::State& state) {
    // The default week settings, without looking for an application file.
    vnt::cal::WeekSettings& w = vnt::cal::state().week;
    w.loaded = true;
    w.firstDay = 1;
    w.minDays = 4;
    const Dates& d = dates();
    VntDate v;
    std::size_t i = 0;
    for (auto _ : state) {
        v.date = d.dates[i];
        benchmark::DoNotOptimize(v.WeekOfYear());
        i = (i + 1) & (kCount - 1);
    }
}
BENCHMARK(BM_WeekOfYear);

// The ISO week: the week belongs to the year of its Thursday.
void BM_ChronoIsoWeek(benchmark::State& state) {
    const Dates& d = dates();
    std::size_t i = 0;
    for (auto _ : state) {
        const chr::sys_days sd{d.ymd[i]};
        const chr::sys_days thursday = sd + chr::days{4 - int(chr::weekday{sd}.iso_encoding())};
        const chr::year y = chr::year_month_day{thursday}.year();
        benchmark::DoNotOptimize((thursday - chr::sys_days{y / 1 / 1}).count() / 7 + 1);
        i = (i + 1) & (kCount - 1);
    }
}
BENCHMARK(BM_ChronoIsoWeek);

}  // namespace
