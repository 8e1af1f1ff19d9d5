// Pictures of the library's own windows, German and English, into the
// build tree's "shots" folder: each box type with and without check box,
// the details page, the progress dialog with its confirmation and a VntDlg.
// Every visible control must show its whole text inside its parent and
// overlap no other; the pictures are for a person to look at.
#include "wx_support.h"

#include <cstdio>
#include <set>

#include <wx/modalhook.h>
#include <wx/sizer.h>

#include "msgbox.h"
#include "progress_view.h"
#include "msg/msg_internal.h"
#include "vanto/stat.h"
#include "vanto/wx/dlg.h"
#include "wx_state.h"

using vnt::wxtest::pump;

namespace {

// Takes the picture of each box 30061 when it shows, then closes it.
class Shooter : public wxModalDialogHook {
public:
    Shooter() { Register(); }
    ~Shooter() override { Unregister(); }
    std::string name;

protected:
    int Enter(wxDialog* d) override {
        if (auto* b = dynamic_cast<vnt::wx::MsgBoxDialog*>(d)) {
            const std::string n = name + (b->Model().detailsMode ? "_details" : "");
            const bool support = b->Model().internalError && taken_.insert(n).second;  // once, then OK
            wxTheApp->CallAfter([b, n, support] {
                vnt::wxtest::checkLayout(b, n);
                vnt::wxtest::picture(b, n);
                b->EndModal(support ? VNT_BTN_SUPPORT : VNT_BTN_OK);
            });
        }
        return wxID_NONE;
    }
    void Exit(wxDialog*) override {}

private:
    std::set<std::string> taken_;
};

class Pictures : public vnt::wxtest::WxTest {};

TEST_F(Pictures, EveryWindowInBothLanguages) {
    Vnt_MsgSetTitle("Fibu");
    for (bool en : {false, true}) {
        openLibrary(en);
        Vnt_MsgSetTitle("Fibu");
        const std::string lang = en ? "ENU" : "DEU";
        Shooter shoot;
        // Texts in the picture's language, as an application would show them.
        struct Box { const char* name; const char* de; const char* en; };
        for (const Box& b : {Box{"box_ok", "Die Buchung wurde gespeichert.", "The entry was saved."},
                             Box{"box_okcancel", "!Der Zeitraum ist abgeschlossen.\nTrotzdem buchen?",
                                 "!The period is closed.\nPost anyway?"},
                             Box{"box_yesnocancel", "?Sollen die \xC4nderungen gespeichert werden?", "?Save the changes?"},
                             Box{"box_yesno_stop", "#ynDie Datei ist gesperrt.\nErneut \xF6" "ffnen?",
                                 "#ynThe file is locked.\nOpen it again?"},
                             Box{"box_ari", "!ariDas Laufwerk antwortet nicht.", "!ariThe drive does not answer."},
                             Box{"box_retrycancel", "rcDer Drucker ist nicht bereit.", "rcThe printer is not ready."},
                             Box{"box_help", "?h[12]ynMit Hilfe zum Thema?", "?h[12]ynWith help on the topic?"},
                             Box{"box_check", "?xSoll der Beleg gedruckt werden?", "?xPrint the voucher?"},
                             Box{"box_check_below_left", "!x.<Die Sicherung ist \xE4lter als sieben Tage.",
                                 "!x.<The backup is older than seven days."},
                             Box{"box_labels", "?Wie weiter?|~Speichern|~Verwerfen|Zur\xFC" "ck",
                                 "?What next?|~Save|~Discard|Back"},
                             Box{"box_none", "-okOhne Symbol.", "-okWithout an icon."}}) {
            shoot.name = std::string(b.name) + "_" + lang;
            vnt::msg::showBox({.text = en ? b.en : b.de, .libName = "APPMSG", .ref = 4711});
        }
        std::string fifteen = en ? "First line of a long message" : "Erste Zeile einer langen Meldung";
        for (int i = 2; i <= 40; ++i) fifteen += (en ? "\nLine " : "\nZeile ") + std::to_string(i) + (en ? " of the message" : " der Meldung");
        shoot.name = "box_15lines_" + lang;
        vnt::msg::showBox({.text = fifteen.c_str(), .libName = "APPMSG", .ref = 4711});
        shoot.name = "box_internal_error_" + lang;
        Vnt__InternalError(true, 5, "Msg/Probe", 42);

        // The progress dialog and its confirmation.
        auto* view = dynamic_cast<vnt::wx::WxProgressView*>(&Vnt_UiProgress());
        ASSERT_NE(view, nullptr);
        {
            VntStat stat(en ? "[Copying]  File Z:\\Daten\\M1\\Buchungen.db\nto Z:\\Sicherung\\M1"
                            : "[Kopieren]  Datei Z:\\Daten\\M1\\Buchungen.db\nnach Z:\\Sicherung\\M1",
                         1, 200);
            stat.EnableCancel(true);
            stat.Progress(50UL);
            pump(50);
            ASSERT_TRUE(view->Status());
            vnt::wxtest::checkLayout(view->Status(), "progress");
            EXPECT_EQ(view->Status()->GetClientSize().y, view->Status()->GetSizer()->GetMinSize().y)
                << "no gap where hidden items were";
            vnt::wxtest::picture(view->Status(), "progress_30062_" + lang);
            view->Status()->Close();  // the question (its answers: progress_wxtest.cpp)
            ASSERT_TRUE(view->Confirm());
            vnt::wxtest::checkLayout(view->Confirm(), "confirm");
            vnt::wxtest::picture(view->Confirm(), "progress_confirm_30063_" + lang);
            EXPECT_EQ(view->Confirm()->GetTitle(), en ? "Copying" : "Kopieren");
        }
        VNTDLG_DLGINFO where{};
        VntDlg dlg(30063, nullptr, 30063, 0, &where);
        ASSERT_TRUE(dlg.IsOk());
        dlg.Show();
        vnt::wxtest::picture(&dlg, "vntdlg_" + lang);
        dlg.Hide();
    }
}

}  // namespace
