// Amounts beside their nearest standard peers in the same run: rounding to
// two places against round(x * 100) / 100, the text form against
// snprintf("%.2f"), reading against strtod. All over the same 1,024 amounts
// of a German record.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "vanto/amount.h"
#include "vanto/locale.h"

namespace {

struct Amounts {
    VntIntlTable german{{"sDecimal", ","}, {"iCurrDigits", "2"}};
    std::vector<double> values;
    std::vector<std::string> texts;      // "1234,567" as typed by a German user
    std::vector<std::string> cTexts;     // the same with "." for strtod
    Amounts() {
        Vnt_SysSetIntlSource(&german);
        Vnt_SysInfo(VNT_SI_RELOAD);
        std::mt19937_64 rng(42);
        std::uniform_int_distribution<long> cents(-9999999, 9999999);
        for (int i = 0; i < 1024; ++i) {
            const double v = static_cast<double>(cents(rng)) / 1000.0;
            values.push_back(v);
            char buf[40];
            std::snprintf(buf, sizeof buf, "%.3f", v);
            cTexts.push_back(buf);
            for (char& c : buf) c = c == '.' ? ',' : c;
            texts.push_back(buf);
        }
    }
};

Amounts& data() {
    static Amounts a;
    return a;
}

void BM_FloatRound(benchmark::State& state) {
    const auto& v = data().values;
    std::size_t i = 0;
    for (auto _ : state) {
        double x = v[i++ & 1023];
        benchmark::DoNotOptimize(Vnt_FloatRound(&x, 2));
        benchmark::DoNotOptimize(x);
    }
}
BENCHMARK(BM_FloatRound);

void BM_StdRoundPeer(benchmark::State& state) {
    const auto& v = data().values;
    std::size_t i = 0;
    for (auto _ : state) {
        double x = std::round(v[i++ & 1023] * 100.0) / 100.0;
        benchmark::DoNotOptimize(x);
    }
}
BENCHMARK(BM_StdRoundPeer);

void BM_FloatToStr(benchmark::State& state) {
    const auto& v = data().values;
    std::size_t i = 0;
    char buf[16];
    for (auto _ : state) {
        benchmark::DoNotOptimize(Vnt_FloatToStr(buf, sizeof buf, v[i++ & 1023], 2, false));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FloatToStr);

void BM_SnprintfPeer(benchmark::State& state) {
    const auto& v = data().values;
    std::size_t i = 0;
    char buf[16];
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::snprintf(buf, sizeof buf, "%15.2f", v[i++ & 1023]));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_SnprintfPeer);

void BM_FloatFromStr(benchmark::State& state) {
    const auto& t = data().texts;
    std::size_t i = 0;
    double x = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Vnt_FloatFromStr(t[i++ & 1023].c_str(), &x, 2));
        benchmark::DoNotOptimize(x);
    }
}
BENCHMARK(BM_FloatFromStr);

void BM_StrtodPeer(benchmark::State& state) {
    const auto& t = data().cTexts;
    std::size_t i = 0;
    for (auto _ : state) {
        double x = std::strtod(t[i++ & 1023].c_str(), nullptr);
        benchmark::DoNotOptimize(x);
    }
}
BENCHMARK(BM_StrtodPeer);

}  // namespace
