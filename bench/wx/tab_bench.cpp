// Switching the pages of a 10-page tabbed view: the time per switch, with
// the leaving and entering hooks, focus memory and the notebook's own work.
// Runs under a display (bench/wx/run.sh).
#include <benchmark/benchmark.h>

#include <string>

#include <wx/app.h>
#include <wx/frame.h>
#include <wx/notebook.h>
#include <wx/panel.h>
#include <wx/sizer.h>

#include "vanto/wx/res.h"
#include "vanto/wx/tab.h"

namespace {

std::string pagesXrc() {
    std::string x = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<resource version=\"2.5.3.0\">\n";
    for (int n = 7001; n <= 7010; ++n) {
        x += "<object class=\"wxDialog\" name=\"dlg" + std::to_string(n) + "\"><title>Seite " + std::to_string(n - 7000) +
             "</title><object class=\"wxBoxSizer\"><orient>wxVERTICAL</orient>";
        for (int f = 0; f < 6; ++f)
            x += "<object class=\"sizeritem\"><flag>wxALL|wxEXPAND</flag><border>4</border><object class=\"wxTextCtrl\" "
                 "name=\"" + std::to_string(100 + f) + "\"><value>Feld " + std::to_string(f) + "</value></object></object>";
        x += "</object></object>\n";
    }
    return x + "</resource>\n";
}

class View : public VntTabViewBase {
public:
    explicit View(wxWindow* form) { form_ = form; }
};

void BM_TabSwitchTenPages(benchmark::State& state) {
    static const std::string xrc = pagesXrc();
    Vnt_WxAddResources(xrc.c_str(), "bench_tabs");
    auto* frame = new wxFrame(nullptr, wxID_ANY, "Bench", wxPoint(0, 0), wxSize(600, 400));
    auto* panel = new wxPanel(frame);
    auto* book = new wxNotebook(panel, 1000);
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(book, 1, wxEXPAND);
    panel->SetSizer(sizer);
    frame->Show();
    View view(panel);
    VNTTAB_DLGDEF table[11];
    for (int i = 0; i < 10; ++i) table[i] = {7001 + i, new VntTabDlg, 0};
    table[10] = {0, nullptr, 0};
    if (!view.m_tab.AddItems(panel, 1000, table, &view, 0)) state.SkipWithError("pages not created");
    panel->Layout();
    view.OnActivate(true);
    wxTheApp->Yield(true);
    for (auto _ : state) {
        view.m_tab.GotoNextTab(1);
        wxTheApp->Yield(true);  // the page is drawn
    }
    state.counters["pages"] = view.m_tab.GetPageCount();
    view.OnActivate(false);
    frame->Destroy();
    wxTheApp->Yield(true);
}
BENCHMARK(BM_TabSwitchTenPages)->Unit(benchmark::kMicrosecond);

}  // namespace
