// The typed edit control in a dialog from XRC: the handler's properties,
// typing filtered by type (simulated keys), MaxLength, the sign, data
// exchange of every kind of variable with and without a record set, a
// failed exchange, and pictures of a dialog with every type.
#include "wx_support.h"

#include <filesystem>

#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/uiaction.h>

#include "cal/odbc_timestamp.h"
#include "wx_state.h"
#include "vanto/db.h"
#include "vanto/locale.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
#include "vanto/wx/dlg.h"
#include "vanto/wx/ed.h"
#include "vanto/wx/res.h"

namespace fs = std::filesystem;

namespace {

using vnt::wxtest::picture;
using vnt::wxtest::pump;
using vnt::wxtest::pumpUntil;

// One field of every type (control 1000 + type), labelled (2000 + type).
struct Field { const char* de; const char* en; const char* props; };
const Field kFields[] = {
    {"Dezimalzahl", "Decimal", "<decplaces>3</decplaces><alignh>1</alignh><signed>1</signed><value>-3,142</value>"},
    {"Betrag", "Amount", "<decplaces>2</decplaces><alignh>1</alignh><minval>0</minval><maxval>99999.99</maxval>"
                         "<maxlength>9</maxlength><value>1234,50</value>"},
    {"Ganzzahl 16 Bit", "Integer 16 bit", "<maxlength>4</maxlength><alignh>1</alignh><value>42</value>"},
    {"Ganzzahl 32 Bit", "Integer 32 bit", "<minval>1</minval><maxval>100</maxval><alignh>1</alignh><value>7</value>"},
    {"Zeichen", "Character", "<maxlength>1</maxlength><alignh>2</alignh><size>40,-1</size><value>K</value>"},
    {"Text", "Text", "<maxlength>30</maxlength><value>M&#xFC;ller &amp; S&#xF6;hne</value>"},
    {"Text", "Text", "<dflttext>Vorgabe</dflttext>"},
    {"Datum", "Date", "<maxlength>10</maxlength><value>29.02.2024</value>"},
    {"Ohne Wert", "No value", "<displayonly>1</displayonly>"},
    {"Text, farbig", "Text, coloured",
     "<usecolors>1</usecolors><backcolor>14745599</backcolor><forecolor>128</forecolor><readonly>1</readonly>"
     "<value>nur lesen</value>"},
};

std::string edXrc() {
    std::string x = R"(<?xml version="1.0" encoding="UTF-8"?>
<resource version="2.5.3.0"><object class="wxDialog" name="dlg5301"><title>Eingabefelder</title>
  <object class="wxBoxSizer"><orient>wxVERTICAL</orient><object class="sizeritem"><flag>wxEXPAND|wxALL</flag><border>10</border>
    <object class="wxFlexGridSizer"><cols>2</cols><vgap>6</vgap><hgap>10</hgap><growablecols>1</growablecols>
)";
    for (int t = 0; t < 10; ++t) {
        const bool wide = t == 5 || t == 6 || t == 9;
        x += "<object class=\"sizeritem\"><flag>wxALIGN_CENTER_VERTICAL</flag><object class=\"wxStaticText\" name=\"" +
             std::to_string(2000 + t) + "\"><label>" + kFields[t].de + " (" + std::to_string(t) +
             ")</label></object></object>\n<object class=\"sizeritem\">" + (wide ? "<flag>wxEXPAND</flag>" : "") +
             "<object class=\"VantoEd\" name=\"" + std::to_string(1000 + t) + "\"><type>" + std::to_string(t) +
             "</type>" + (wide || t == 4 ? "" : "<size>160,-1</size>") + kFields[t].props + "</object></object>\n";
    }
    return x + R"(</object></object>
    <object class="sizeritem"><flag>wxALIGN_RIGHT|wxALL</flag><border>10</border>
      <object class="wxBoxSizer"><orient>wxHORIZONTAL</orient>
        <object class="sizeritem"><flag>wxRIGHT</flag><border>6</border>
          <object class="wxButton" name="wxID_OK"><label>OK</label></object></object>
        <object class="sizeritem"><object class="wxButton" name="wxID_CANCEL"><label>Abbrechen</label></object></object>
      </object></object>
  </object></object>
</resource>)";
}

class EdWx : public vnt::wxtest::WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        useLocale(de_);
        oldBox_ = Vnt_UiSetPresenter(&box);
        oldWin_ = Vnt_UiSetWindow(&port);
        static const std::string xrc = edXrc();
        ASSERT_TRUE(Vnt_WxAddResources(xrc.c_str(), "edit controls"));
        open();
    }
    void TearDown() override {
        if (dlg_) dlg_->Destroy();
        dlg_ = nullptr;
        pump();
        Vnt_UiSetWindow(oldWin_);
        Vnt_UiSetPresenter(oldBox_);
        Vnt_SysSetIntlSource(nullptr);
        WxTest::TearDown();
    }
    void useLocale(VntIntlTable& t) {
        Vnt_SysSetIntlSource(&t);
        Vnt_SysInfo(VNT_SI_RELOAD);
    }
    void open() {
        if (dlg_) dlg_->Destroy();
        dlg_ = new VntDlg(5301, nullptr);
        ASSERT_TRUE(dlg_->IsOk());
        dlg_->Fit();
        dlg_->Show();
        pump(50);
    }
    VantoEd& ed(int row) {
        auto* e = dynamic_cast<VantoEd*>(dlg_->FindWindow(1000 + row));
        EXPECT_NE(e, nullptr) << "control " << 1000 + row;
        return *e;
    }
    // Types `keys` into a control as a user would, at `pos` (-1: the end) of `start`.
    std::string type(VantoEd& e, const char* keys, const char* start = "", long pos = -1) {
        e.SetFocus();
        pumpUntil([&] { return wxWindow::FindFocus() == &e; });
        e.ChangeValue(start);
        if (pos < 0) e.SetInsertionPointEnd();
        else e.SetInsertionPoint(pos);
        wxUIActionSimulator().Text(keys);
        pump(60);
        return e.GetText();
    }

    VntIntlTable de_{{"sShortDate", "dd.MM.yyyy"}, {"sDecimal", ","}, {"iCurrDigits", "2"}};
    VntIntlTable en_{{"sShortDate", "MM/dd/yyyy"}, {"sDecimal", "."}, {"iCurrDigits", "2"}};
    VntScriptedPresenter box;
    VntHeadlessWindowPort port;  // counts the beeps
    VntMsgPresenter* oldBox_ = nullptr;
    VntWindowPort* oldWin_ = nullptr;
    VntDlg* dlg_ = nullptr;
};

TEST_F(EdWx, XrcGivesTheProperties) {
    VantoEd& amount = ed(1);
    EXPECT_EQ(amount.GetType(), 1);
    EXPECT_EQ(amount.GetDecPlaces(), 2);
    EXPECT_EQ(amount.GetMaxLength(), 9);
    EXPECT_EQ(amount.GetMaxVal(), 99999.99);
    EXPECT_EQ(amount.GetAlignH(), VNT_ED_ALIGN_RIGHT);
    EXPECT_TRUE(amount.GetWindowStyleFlag() & wxTE_RIGHT);
    EXPECT_FALSE(amount.GetSigned());
    EXPECT_DOUBLE_EQ(amount.GetVal(), 1234.5);
    EXPECT_TRUE(ed(0).GetSigned());
    EXPECT_DOUBLE_EQ(ed(0).GetVal(), -3.142);
    EXPECT_EQ(ed(6).GetDfltText(), "Vorgabe");
    ed(6).SetDefault();
    EXPECT_EQ(ed(6).GetText(), "Vorgabe");
    ed(1).SetDfltVal(0.5);
    ed(1).SetDefault();
    EXPECT_EQ(ed(1).GetText(), "0,50") << "DfltVal without DfltText";
    EXPECT_EQ(ed(5).GetText(), "M\xFCller & S\xF6hne") << "Windows-1252 text";
    EXPECT_TRUE(ed(9).GetUseColors() && ed(9).GetBackColor() == 14745599u && !ed(9).IsEditable());
    EXPECT_TRUE(ed(8).GetDisplayOnly() && !ed(8).AcceptsFocusFromKeyboard());
    VNT_DATE d{};
    EXPECT_TRUE(ed(7).GetVal(d));
    EXPECT_TRUE(d.year == 2024 && d.month == 2 && d.day == 29);
    long from = -1, to = -1;
    ed(5).SetSel(2, 5);
    ed(5).GetSel(&from, &to);
    EXPECT_TRUE(from == 2 && to == 5);
    EXPECT_TRUE(box.shown.empty());
}

// A field without a given height is as tall as a plain text field, also
// when it is made on a window already on the screen and has colours of its
// own (GTK measures such a field taller once it is shown).
TEST_F(EdWx, FieldsWithoutAHeightAreAsTallAsPlainText) {
    auto* plain = new wxTextCtrl(dlg_, wxID_ANY);
    auto* shown = new VantoEd;
    shown->SetDisplayOnly(true);
    ASSERT_TRUE(shown->Create(dlg_, wxID_ANY, wxDefaultPosition, wxSize(90, -1)));
    auto* given = new VantoEd;
    ASSERT_TRUE(given->Create(dlg_, wxID_ANY, wxDefaultPosition, wxSize(90, 40)));
    pump(50);
    shown->InvalidateBestSize();
    EXPECT_EQ(shown->GetEffectiveMinSize().y, plain->GetEffectiveMinSize().y);
    EXPECT_EQ(ed(8).GetEffectiveMinSize().y, plain->GetEffectiveMinSize().y) << "display-only, from the resource";
    EXPECT_EQ(given->GetEffectiveMinSize().y, 40) << "a given height stays";

    // A height learnt before the theme changed is measured anew.
    for (auto& entry : vnt::wx::state().plainHeights) entry.second = 5;
    auto* late = new VantoEd;
    ASSERT_TRUE(late->Create(dlg_, wxID_ANY, wxDefaultPosition, wxSize(90, -1)));
    ASSERT_EQ(late->GetMinSize().y, 5) << "the remembered height serves";
    wxSysColourChangedEvent changed;
    late->GetEventHandler()->ProcessEvent(changed);
    EXPECT_EQ(late->GetMinSize().y, plain->GetEffectiveMinSize().y);
    EXPECT_NE(vnt::wx::state().plainHeights.begin()->second, 5);
}

TEST_F(EdWx, TypingIsFilteredByType) {
    const struct { const char* name; int row; bool sign; const char* start; long pos; const char* keys, *text; } rows[] = {
        {"letters into an amount change nothing", 1, false, "", -1, "abcXYZ", ""},
        {"amount: digits and one decimal character", 1, false, "", -1, "12a,5x.7", "12,57"},
        {"amount: a point gives the comma", 1, false, "", -1, "3.25", "3,25"},
        {"amount unsigned: no sign", 1, false, "", -1, "-5", "5"},
        {"decimal signed: one sign at the front", 0, true, "", -1, "-5-1", "-51"},
        {"a sign cannot go behind digits", 0, true, "12", 1, "-", "12"},
        {"nor digits in front of a sign", 0, true, "-1", 0, "7", "-1"},
        {"short: digits only", 2, false, "", -1, "1x2,3", "123"},
        {"short: MaxLength 4 holds", 2, false, "", -1, "123456", "1234"},
        {"long unsigned: no sign", 3, false, "", -1, "-42", "42"},
        {"long signed", 3, true, "", -1, "-42", "-42"},
        {"date: digits and separators", 7, false, "", -1, "1a.2b.2024", "1.2.2024"},
        {"date: MaxLength 10", 7, false, "", -1, "01.02.20245", "01.02.2024"},
        {"text takes everything", 5, false, "", -1, "a-1,b", "a-1,b"},
        {"character: one", 4, false, "", -1, "xy", "x"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        ed(r.row).SetSigned(r.sign);
        EXPECT_EQ(type(ed(r.row), r.keys, r.start, r.pos), r.text);
    }
    ed(4).SetMaxLength(0);
    EXPECT_EQ(type(ed(4), "xy"), "x") << "the type alone holds a character to one";
    // Pasting keeps what typing would take.
    ASSERT_TRUE(wxTheClipboard->Open());
    wxTheClipboard->SetData(new wxTextDataObject("x1y2.5z-"));
    wxTheClipboard->Close();
    ed(1).ChangeValue("");
    ed(1).Paste();
    pump(30);
    EXPECT_EQ(ed(1).GetText(), "12,5");
}

TEST_F(EdWx, ExchangeOutOfRangeFailsAndShowsTheNormalisedText) {
    VantoEd& n = ed(3);  // 1..100
    std::int32_t v = 9;
    type(n, "0500");
    {
        VntDataExchange dx(dlg_, true);
        EXPECT_FALSE(n.DDX(&dx, v));
        EXPECT_TRUE(dx.Failed());
        // Later exchanges of the same run do nothing.
        std::int16_t other = 3;
        EXPECT_FALSE(ed(2).DDX(&dx, other));
        EXPECT_EQ(other, 3);
    }
    EXPECT_EQ(v, 9) << "the variable keeps its value";
    EXPECT_EQ(n.GetText(), "500") << "the normalised text stays";
    EXPECT_EQ(port.beeps, 1);
    EXPECT_TRUE(pumpUntil([&] { return wxWindow::FindFocus() == &n; })) << "the focus goes to the field";
    // Both bounds are inclusive; one past each fails.
    const struct { const char* text; bool ok; } bounds[] = {{"1", true}, {"100", true}, {"0", false}, {"101", false}};
    for (const auto& b : bounds) {
        SCOPED_TRACE(b.text);
        n.SetText(b.text);
        VntDataExchange dx(dlg_, true);
        EXPECT_EQ(n.DDX(&dx, v), b.ok);
        if (b.ok) {
            EXPECT_EQ(std::to_string(v), b.text);
        }
    }
    // Empty text is no value: it passes.
    n.SetText("");
    VntDataExchange dx(dlg_, true);
    EXPECT_TRUE(n.DDX(&dx, v));
    EXPECT_EQ(v, 0);
}

TEST_F(EdWx, ExchangeOfEveryKindOfVariable) {
    VantoEd& s = ed(2);  // 16-bit type, no range
    const struct { const char* name; const char* text; bool ok8; bool okU8; bool ok16; bool okU16; } ints[] = {
        {"small", "0042", true, true, true, true},
        {"past 8 bits signed", "200", false, true, true, true},
        {"past 8 bits", "256", false, false, true, true},
        {"negative", "-1", true, false, true, false},
    };
    s.SetSigned(true);
    for (const auto& r : ints) {
        SCOPED_TRACE(r.name);
        std::int8_t i8 = 0;
        std::uint8_t u8 = 0;
        std::int16_t i16 = 0;
        std::uint16_t u16 = 0;
        const std::pair<bool, std::function<bool(VntDataExchange*)>> cases[] = {
            {r.ok8, [&](VntDataExchange* dx) { return s.DDX(dx, i8); }},
            {r.okU8, [&](VntDataExchange* dx) { return s.DDX(dx, u8); }},
            {r.ok16, [&](VntDataExchange* dx) { return s.DDX(dx, i16); }},
            {r.okU16, [&](VntDataExchange* dx) { return s.DDX(dx, u16); }},
        };
        for (const auto& [ok, run] : cases) {
            s.SetText(r.text);
            VntDataExchange dx(dlg_, true);
            EXPECT_EQ(run(&dx), ok);
            EXPECT_EQ(s.GetText(), std::to_string(std::atoi(r.text))) << "normalised either way";
        }
        EXPECT_EQ(i16, std::atoi(r.text));
    }
    // To the controls and back: 32-bit, double, string, dates.
    std::uint32_t u32 = 77;
    double amount = 19.999;
    std::string name = "Stra\xDF" "e";
    VntDate date(2024, 2, 29);
    tagTIMESTAMP_STRUCT ts{};
    ts.year = 1999, ts.month = 12, ts.day = 31, ts.hour = 23;
    {
        VntDataExchange dx(dlg_, false);
        EXPECT_TRUE(ed(3).DDX(&dx, u32) && ed(1).DDX(&dx, amount) && ed(5).DDX(&dx, name) && ed(7).DDX(&dx, date));
    }
    EXPECT_EQ(ed(3).GetText(), "77");
    EXPECT_EQ(ed(1).GetText(), "20,00");
    EXPECT_EQ(ed(5).GetText(), name);
    EXPECT_EQ(ed(7).GetText(), "29.02.2024");
    ed(1).SetText("1,005");
    ed(7).SetText("1.3.24");
    ed(5).SetText("neu");
    {
        VntDataExchange dx(dlg_, true);
        EXPECT_TRUE(ed(1).DDX(&dx, amount) && ed(5).DDX(&dx, name) && ed(7).DDX(&dx, date) && ed(7).DDX(&dx, ts));
    }
    EXPECT_DOUBLE_EQ(amount, 1.01);
    EXPECT_EQ(ed(1).GetText(), "1,01");
    EXPECT_EQ(name, "neu");
    EXPECT_TRUE(date.date.year == 2024 && date.date.month == 3 && date.date.day == 1);
    EXPECT_EQ(ed(7).GetText(), "01.03.2024");
    EXPECT_TRUE(ts.year == 2024 && ts.month == 3 && ts.day == 1 && ts.hour == 0);
    EXPECT_TRUE(box.shown.empty());
    // A date exchange on an integer control: the type message, once.
    for (int i = 0; i < 3; ++i) {
        VntDataExchange dx(dlg_, true);
        ed(3).DDX(&dx, date);
    }
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_NE(box.shown[0].text.find("Type 3 does not support"), std::string::npos);
}

TEST_F(EdWx, ExchangeWithRecordSetFields) {
    const fs::path dir = fs::temp_directory_path() / ("vanto_ed_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    VntDatabase db;
    ASSERT_TRUE(db.OpenEx(("DRIVER=SQLite3;Database=" + (dir / "ed.db").string()).c_str()));
    ASSERT_TRUE(db.ExecuteSQL("CREATE TABLE k (id INTEGER PRIMARY KEY, name VARCHAR(40), betrag DECIMAL(10,2),"
                              " datum DATE, anzahl INTEGER)"));
    ASSERT_TRUE(db.ExecuteSQL("INSERT INTO k VALUES (1, 'Alt', 10.5, '2024-02-29', NULL)"));
    {
        VntRecordset rs(&db);
        ASSERT_TRUE(rs.Open("k"));
        std::string name;
        double betrag = 0;
        VntDate datum;
        std::int32_t anzahl = 5;
        {
            VntDataExchange dx(dlg_, false);
            EXPECT_TRUE(ed(5).DDX(&dx, name, &rs, "name") && ed(1).DDX(&dx, betrag, &rs, "betrag") &&
                        ed(7).DDX(&dx, datum, &rs, "datum") && ed(3).DDX(&dx, anzahl, &rs, "anzahl"));
        }
        EXPECT_EQ(ed(5).GetText(), "Alt");
        EXPECT_EQ(ed(1).GetText(), "10,50");
        EXPECT_EQ(ed(7).GetText(), "29.02.2024");
        EXPECT_EQ(ed(3).GetText(), "") << "a null field shows empty";
        ed(5).SetText("");
        ed(1).SetText("7,25");
        ed(7).SetText("");
        ed(3).SetText("12");
        ASSERT_TRUE(rs.Edit());
        {
            VntDataExchange dx(dlg_, true);
            EXPECT_TRUE(ed(5).DDX(&dx, name, &rs, "name") && ed(1).DDX(&dx, betrag, &rs, "betrag") &&
                        ed(7).DDX(&dx, datum, &rs, "datum") && ed(3).DDX(&dx, anzahl, &rs, "anzahl"));
        }
        ASSERT_TRUE(rs.Update());
    }
    VntRecordset check(&db);
    ASSERT_TRUE(check.Open("SELECT name, betrag, datum, anzahl FROM k WHERE id = 1"));
    double betrag = 0;
    long anzahl = 0;
    EXPECT_TRUE(check.IsFieldNull("name")) << "empty text: null";
    EXPECT_TRUE(check.IsFieldNull("datum"));
    EXPECT_TRUE(check.GetFieldValue("betrag", betrag) && betrag == 7.25);
    EXPECT_TRUE(check.GetFieldValue("anzahl", anzahl) && anzahl == 12);
    check.Close();
    db.Close();
    fs::remove_all(dir);
}


TEST_F(EdWx, PicturesInBothLanguages) {
    // German: as the resource stands.
    ed(1).SetVal(1234.5);
    ed(3).SetVal(VNT_ED_EMPTY_LONG * 1.0);
    EXPECT_EQ(ed(3).GetText(), "") << "the empty marker";
    ed(3).SetVal(42);
    ed(6).SetDefault();
    EXPECT_TRUE(fs::file_size(picture(dlg_, "ed_DEU")) > 0);
    // English: its conventions and labels.
    openLibrary(true);
    Vnt_UiSetPresenter(&box);
    useLocale(en_);
    open();
    dlg_->SetTitle("Edit fields");
    for (int i = 0; i < 10; ++i)
        if (auto* l = dlg_->FindWindow(2000 + i)) l->SetLabel(std::string(kFields[i].en) + " (" + std::to_string(i) + ")");
    ed(0).SetVal(-3.142);
    ed(1).SetVal(1234.5);
    ed(5).SetText("Miller & Sons");
    ed(9).SetText("read only");
    ed(6).SetDfltText("Default");
    ed(6).SetDefault();
    dlg_->FindWindow(wxID_CANCEL)->SetLabel("Cancel");
    VntDate d(2024, 2, 29);
    ed(7).SetVal(d);
    dlg_->Fit();
    EXPECT_EQ(ed(1).GetText(), "1234.50");
    EXPECT_EQ(ed(7).GetText(), "02/29/2024");
    EXPECT_TRUE(fs::file_size(picture(dlg_, "ed_ENU")) > 0);
}

}  // namespace
