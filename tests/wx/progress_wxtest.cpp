// The progress dialog of a running copy: Cancel, and the window manager's
// close, ask first and stop the copy only when confirmed; the copy waits
// for the answer and serves the windows' events meanwhile.
#include "wx_support.h"

#include <chrono>
#include <filesystem>
#include <fstream>

#include <wx/dialog.h>
#include <wx/gauge.h>
#include <wx/timer.h>
#include <wx/uiaction.h>

#include "progress_view.h"
#include "vanto/filecopy.h"

namespace fs = std::filesystem;

namespace {

// A click through the pointer, as the user gives it.
void click(wxWindow* w) {
    wxUIActionSimulator sim;
    sim.MouseMove(w->GetScreenRect().GetPosition() + w->GetSize() / 2);
    sim.MouseClick();
}

int percent(wxDialog* status) { return static_cast<wxGauge*>(status->FindWindow(1000))->GetValue(); }

class ProgressCopy : public vnt::wxtest::WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        root_ = fs::temp_directory_path() / ("vanto_wx_progress_" + std::to_string(::getpid()));
        fs::create_directories(root_);
        std::ofstream(root_ / "big.bin").put('x');
        fs::resize_file(root_ / "big.bin", 1u << 30);  // sparse: only what is copied before the cancel is written
        ASSERT_TRUE(Vnt_LfnVolMap('T', root_.c_str()));
    }
    void TearDown() override {
        Vnt_LfnVolUnmap('T');
        fs::remove_all(root_);
        WxTest::TearDown();
    }
    fs::path root_;
};

TEST_F(ProgressCopy, ConfirmedCancelStopsTheRunningCopy) {
    auto* view = dynamic_cast<vnt::wx::WxProgressView*>(&Vnt_UiProgress());
    ASSERT_NE(view, nullptr);
    for (const bool byClose : {false, true}) {
        SCOPED_TRACE(byClose ? "closed by the window manager" : "Cancel clicked");
        // Steps on a timer, which only the copy's own event serving can run.
        int step = 0, asked = -1, answered = -1;
        auto askedAt = std::chrono::steady_clock::now();
        wxTimer timer;
        timer.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
            wxDialog* status = view->Status();
            if (!status) return;
            if (step == 0 && percent(status) > 0) {
                if (byClose) status->Close();
                else click(status->FindWindow(2));
                step = 1;
            } else if (step == 1 && view->Confirm() && view->Confirm()->IsShown()) {
                asked = percent(status);
                askedAt = std::chrono::steady_clock::now();
                step = 2;
            } else if (step == 2 && std::chrono::steady_clock::now() - askedAt > std::chrono::milliseconds(50)) {
                answered = percent(status);
                click(view->Confirm()->FindWindow(wxID_YES));
                step = 3;
            }
        });
        timer.Start(10);
        {
            VntFileCopy fc;
            EXPECT_EQ(fc.Copy("T:\\big.bin", "T:\\copy.bin"), 0u);
            EXPECT_TRUE(fc.IsCancel());
        }
        timer.Stop();
        EXPECT_EQ(step, 3);
        EXPECT_EQ(answered, asked) << "the copy waits for the answer, serving the windows meanwhile";
        EXPECT_TRUE(asked > 0 && asked < 100) << asked;
        EXPECT_EQ(view->Status(), nullptr);
        EXPECT_EQ(std::distance(fs::directory_iterator(root_), fs::directory_iterator()), 1)
            << "the partial copy is removed";
    }
}

}  // namespace
