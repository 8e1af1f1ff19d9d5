// A dialog with 50 typed edit controls (ten of each kind: amount, 16-bit,
// 32-bit, date, text): made and destroyed, and its data exchange both ways.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include <wx/app.h>
#include <wx/dialog.h>

#include "../bench_support.h"
#include "vanto/locale.h"
#include "vanto/wx/ed.h"

namespace {

struct Form {
    wxDialog* dlg = nullptr;
    std::vector<VantoEd*> eds;
    double amounts[10] = {};
    std::int16_t shorts[10] = {};
    std::int32_t longs[10] = {};
    VntDate dates[10];
    std::string texts[10];

    Form() {
        dlg = new wxDialog(nullptr, wxID_ANY, "DDX");
        const long types[] = {VNT_ED_AMOUNT, VNT_ED_SHORT, VNT_ED_LONG, VNT_ED_DATE, VNT_ED_TEXT};
        for (int i = 0; i < 50; ++i) {
            auto* e = new VantoEd(dlg, 1000 + i, types[i / 10]);
            e->SetMinVal(0);
            e->SetMaxVal(i / 10 == 1 ? 30000 : 1e9);
            eds.push_back(e);
        }
        for (int i = 0; i < 10; ++i) {
            amounts[i] = 1234.5 + i;
            shorts[i] = static_cast<std::int16_t>(100 + i);
            longs[i] = 100000 + i;
            dates[i].Set(2024, 1 + i, 10 + i);
            texts[i] = "Kunde " + std::to_string(i);
        }
    }
    ~Form() { dlg->Destroy(); }
    bool exchange(bool save) {
        VntDataExchange dx(dlg, save);
        for (int i = 0; i < 10; ++i) {
            eds[i]->DDX(&dx, amounts[i]);
            eds[10 + i]->DDX(&dx, shorts[i]);
            eds[20 + i]->DDX(&dx, longs[i]);
            eds[30 + i]->DDX(&dx, dates[i]);
            eds[40 + i]->DDX(&dx, texts[i]);
        }
        return !dx.Failed();
    }
    // The values as set at the start: a save exchange must give them back.
    bool unchanged() const {
        for (int i = 0; i < 10; ++i) {
            const VNT_DATE& d = dates[i];
            if (amounts[i] != 1234.5 + i || shorts[i] != 100 + i || longs[i] != 100000 + i ||
                texts[i] != "Kunde " + std::to_string(i) || d.year != 2024 || d.month != 1 + i || d.day != 10 + i)
                return false;
        }
        return true;
    }
};

void BM_DdxFiftyFields(benchmark::State& state) {
    VntIntlTable de{{"sShortDate", "dd.MM.yyyy"}, {"sDecimal", ","}};
    Vnt_SysSetIntlSource(&de);
    Vnt_SysInfo(VNT_SI_RELOAD);
    vnt::bench::SilentPresenter quiet;
    VntMsgPresenter* old = Vnt_UiSetPresenter(&quiet);
    {
        Form f;
        const bool save = state.range(0) != 0;
        f.exchange(false);
        for (auto _ : state) {
            if (!f.exchange(save)) state.SkipWithError("an exchange failed");
        }
        if (!f.unchanged()) state.SkipWithError("the exchange changed the values");
        state.SetItemsProcessed(state.iterations() * 50);
    }
    wxTheApp->ProcessPendingEvents();
    Vnt_UiSetPresenter(old);
    Vnt_SysSetIntlSource(nullptr);
}
BENCHMARK(BM_DdxFiftyFields)->ArgName("save")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// Making the 50 controls: each learns the height of a plain text field.
void BM_FiftyFieldsMade(benchmark::State& state) {
    for (auto _ : state) {
        Form f;
        benchmark::DoNotOptimize(f.eds.back());
    }
    wxTheApp->ProcessPendingEvents();
    state.SetItemsProcessed(state.iterations() * 50);
}
BENCHMARK(BM_FiftyFieldsMade)->Unit(benchmark::kMillisecond);

}  // namespace
