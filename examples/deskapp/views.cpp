// The record views of VantoDesk: customers (address, terms, history) and
// articles (article, price), tabbed pages over the client's tables.
#include <wx/button.h>
#include <wx/listctrl.h>
#include <wx/textctrl.h>

#include <vanto/wx/ed.h>

#include "desk.h"

namespace desk {
namespace {

VantoEd* ed(wxWindow* page, int id) { return dynamic_cast<VantoEd*>(page->FindWindow(id)); }
wxTextCtrl* text(wxWindow* page, int id) { return dynamic_cast<wxTextCtrl*>(page->FindWindow(id)); }

// A plain text control and a text field of the record set. `required`: an
// empty text stops the exchange.
bool ddxText(VntDataExchange& dx, wxTextCtrl* ctl, VntRecordset* rs, const char* field, bool required = false) {
    if (dx.Failed() || ctl == nullptr || rs == nullptr) return false;
    if (dx.m_bSaveAndValidate) {
        const std::string value = cp(ctl->GetValue());
        if (required && value.empty()) {
            dx.Fail(ctl);
            return false;
        }
        const bool ok = value.empty() ? rs->SetFieldNull(field) : rs->SetFieldValue(field, value.c_str());
        if (!ok) dx.Fail(ctl);
        return ok;
    }
    std::string value;
    if (!rs->IsFieldNull(field)) rs->GetFieldValue(field, value);
    ctl->ChangeValue(wxs(value));
    return true;
}

// A value shown only (display-only edit fields).
void show(VantoEd* e, double value) {
    if (e) e->SetVal(value);
}

// --- customers -------------------------------------------------------------

class AddressPage : public VntTabDlg {
public:
    bool DoDataExchange(VntDataExchange& dx) override {
        VntRecordset* rs = set;
        std::int32_t nr = 0;
        if (!dx.m_bSaveAndValidate && ed(this, 201)) ed(this, 201)->DDX(&dx, nr, rs, "nr");
        ddxText(dx, text(this, 202), rs, "name", true);
        ddxText(dx, text(this, 203), rs, "street");
        ddxText(dx, text(this, 204), rs, "zip");
        ddxText(dx, text(this, 205), rs, "city");
        return !dx.Failed();
    }
    VntRecordset* set = nullptr;
};

class TermsPage : public VntTabDlg {
public:
    bool DoDataExchange(VntDataExchange& dx) override {
        VntRecordset* rs = set;
        VantoEd *discount = ed(this, 211), *days = ed(this, 212), *limit = ed(this, 213);
        if (!rs || !discount || !days || !limit) return false;
        discount->DDX(&dx, discount_, rs, "discount");
        days->DDX(&dx, days_, rs, "payment_days");
        limit->DDX(&dx, limit_, rs, "credit_limit");
        if (!dx.m_bSaveAndValidate) showSales();
        return !dx.Failed();
    }
    // The customer's orders: their number, net and gross (each order's VAT
    // through the library's percentage functions).
    void showSales() {
        long nr = 0;
        set->GetFieldValue("nr", nr);
        double net = 0, gross = 0;
        long count = 0;
        VntRecordset rs;
        const std::string sql = "SELECT o.net_amount, a.vat_percent FROM orders o JOIN article a ON a.nr = "
                                "o.article_nr WHERE o.customer_nr = " + std::to_string(nr);
        if (Vnt_AppGetConnect(&rs) && rs.Open(sql.c_str(), VNT_RS_READONLY))
            for (; !rs.IsEOF(); rs.MoveNext()) {
                double amount = 0, vat = 0;
                rs.GetFieldValue(0, amount);
                rs.GetFieldValue(1, vat);
                net += amount;
                Vnt_FloatBetrag(&amount, vat, false, true);
                gross += amount;
                ++count;
            }
        Vnt_MoneyRound(&net);
        Vnt_MoneyRound(&gross);
        show(ed(this, 216), static_cast<double>(count));
        show(ed(this, 214), net);
        show(ed(this, 215), gross);
    }
    VntRecordset* set = nullptr;
    double discount_ = 0, limit_ = 0;
    std::int16_t days_ = 0;
};

class HistoryPage : public VntTabDlg {
public:
    bool DoDataExchange(VntDataExchange& dx) override {
        VntRecordset* rs = set;
        VantoEd *since = ed(this, 221), *contact = ed(this, 222);
        if (!rs || !since || !contact) return false;
        since->DDX(&dx, since_, rs, "customer_since");
        contact->DDX(&dx, contact_, rs, "last_contact");
        ddxText(dx, text(this, 223), rs, "note");
        if (!dx.m_bSaveAndValidate) showOrders();
        return !dx.Failed();
    }
    void showOrders() {
        auto* list = dynamic_cast<wxListCtrl*>(FindWindow(224));
        if (!list) return;
        if (list->GetColumnCount() == 0) {
            const int cols[] = {0, 1, 3, 4, 5};
            const int widths[] = {50, 95, 220, 60, 90};
            for (int i = 0; i < 5; ++i)
                list->AppendColumn(appText(kMsgColumn + cols[i]), i == 0 || i >= 3 ? wxLIST_FORMAT_RIGHT
                                                                                   : wxLIST_FORMAT_LEFT,
                                   widths[i]);
        }
        list->DeleteAllItems();
        long nr = 0;
        set->GetFieldValue("nr", nr);
        VntRecordset rs;
        const std::string sql = "SELECT o.nr, o.order_date, a.name, o.quantity, o.net_amount FROM orders o JOIN "
                                "article a ON a.nr = o.article_nr WHERE o.customer_nr = " + std::to_string(nr) +
                                " ORDER BY o.order_date DESC";
        if (!Vnt_AppGetConnect(&rs) || !rs.Open(sql.c_str(), VNT_RS_READONLY)) return;
        for (; !rs.IsEOF(); rs.MoveNext()) {
            long order = 0, qty = 0;
            VNT_DATE date{};
            std::string article;
            double net = 0;
            rs.GetFieldValue(0, order);
            rs.GetFieldValue(1, date);
            rs.GetFieldValue(2, article);
            rs.GetFieldValue(3, qty);
            rs.GetFieldValue(4, net);
            const long row = list->InsertItem(list->GetItemCount(), wxString::Format("%ld", order));
            list->SetItem(row, 1, dateText(date));
            list->SetItem(row, 2, wxs(article));
            list->SetItem(row, 3, wxString::Format("%ld", qty));
            list->SetItem(row, 4, money(net));
        }
    }
    VntRecordset* set = nullptr;
    VntDate since_, contact_;
};

class CustomerView : public DeskView {
public:
    explicit CustomerView(MainFrame* main) : DeskView(6000, main, "customer") {}
    void OnInitialUpdate() override {
        address.set = terms.set = history.set = Set();
        table[0] = {6001, &address, 0};
        table[1] = {6002, &terms, 0};
        table[2] = {6003, &history, 0};
        table[3] = {0, nullptr, 0};
        m_tab.AddItems(form_, 1000, table, this, 0);
    }
    AddressPage address;
    TermsPage terms;
    HistoryPage history;
    VNTTAB_DLGDEF table[4];
};

// --- articles --------------------------------------------------------------

class ArticlePage : public VntTabDlg {
public:
    bool DoDataExchange(VntDataExchange& dx) override {
        VntRecordset* rs = set;
        std::int32_t nr = 0;
        if (!dx.m_bSaveAndValidate && ed(this, 301)) ed(this, 301)->DDX(&dx, nr, rs, "nr");
        ddxText(dx, text(this, 302), rs, "name", true);
        if (ed(this, 303)) ed(this, 303)->DDX(&dx, stock_, rs, "stock");
        if (ed(this, 304)) ed(this, 304)->DDX(&dx, valid_, rs, "valid_from");
        return !dx.Failed();
    }
    VntRecordset* set = nullptr;
    std::int32_t stock_ = 0;
    VntDate valid_;
};

// Net price, VAT rate and gross price: typing the net price or the rate
// gives the gross price, typing the gross price gives the net price.
class PricePage : public VntTabDlg {
public:
    bool DoDataExchange(VntDataExchange& dx) override {
        VntRecordset* rs = set;
        VantoEd *net = ed(this, 311), *vat = ed(this, 312);
        if (!rs || !net || !vat) return false;
        if (!bound_) {
            bound_ = true;
            net->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { recompute(false); });
            vat->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { recompute(false); });
            ed(this, 313)->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { recompute(true); });
        }
        net->DDX(&dx, net_, rs, "net_price");
        vat->DDX(&dx, vat_, rs, "vat_percent");
        if (!dx.m_bSaveAndValidate) recompute(false);
        return !dx.Failed();
    }
    void recompute(bool fromGross) {
        VantoEd *net = ed(this, 311), *vat = ed(this, 312), *gross = ed(this, 313), *tax = ed(this, 314);
        const double rate = vat->GetVal();
        if (fromGross) {
            double value = gross->GetVal();
            Vnt_FloatBetrag(&value, rate, true, false);  // gross to net
            net->ChangeValue(money(value));
        } else {
            double value = net->GetVal();
            Vnt_FloatBetrag(&value, rate, false, true);  // net to gross
            gross->ChangeValue(money(value));
        }
        double included = 0;
        Vnt_FloatProzBetrag(&included, gross->GetVal(), rate, true);
        tax->ChangeValue(money(included));
    }
    VntRecordset* set = nullptr;
    double net_ = 0, vat_ = 0;
    bool bound_ = false;
};

class ArticleView : public DeskView {
public:
    explicit ArticleView(MainFrame* main) : DeskView(6100, main, "article") {}
    void OnInitialUpdate() override {
        article.set = price.set = Set();
        table[0] = {6101, &article, 0};
        table[1] = {6102, &price, 0};
        table[2] = {0, nullptr, 0};
        m_tab.AddItems(form_, 1000, table, this, 0);
    }
    ArticlePage article;
    PricePage price;
    VNTTAB_DLGDEF table[3];
};

// The form's buttons are the Edit menu's commands.
constexpr int kButtons[][2] = {{1101, kCmdFirst}, {1102, kCmdPrev}, {1103, kCmdNext},
                               {1104, kCmdLast},  {1105, kCmdSave}, {1106, kCmdCloseView}};

template <class View>
DeskView* open(MainFrame* main, long title) {
    for (DeskView* v : main->Views())
        if (dynamic_cast<View*>(v)) {
            v->Frame()->Raise();
            return v;
        }
    auto* view = new View(main);
    if (!view->OpenSet()) {
        delete view;
        Vnt_AppMsg(kMsgClientBad, Vnt_AppDSN());
        return nullptr;
    }
    wxDocManager* docs = main->GetDocumentManager();
    auto* doc = new wxDocument;
    doc->SetTitle(appText(title));
    docs->AddDocument(doc);
    view->SetDocument(doc);
    if (!view->OnCreate(doc, 0)) {
        delete doc;
        return nullptr;
    }
    VntTabChildFrame* frame = view->Frame();
    frame->SetSize(main->GetPosition().x + 60, main->GetPosition().y + 90, 640, 470);
    frame->Bind(wxEVT_BUTTON, [view](wxCommandEvent& e) {
        for (const auto& b : kButtons)
            if (b[0] == e.GetId()) {
                view->Command(b[1]);
                return;
            }
        e.Skip();
    });
    // The Edit menu's keys work in the view's own window too.
    wxAcceleratorEntry keys[] = {
        {wxACCEL_CTRL, 'S', kCmdSave},           {wxACCEL_ALT, WXK_HOME, kCmdFirst},
        {wxACCEL_ALT, WXK_PAGEUP, kCmdPrev},     {wxACCEL_ALT, WXK_PAGEDOWN, kCmdNext},
        {wxACCEL_ALT, WXK_END, kCmdLast},        {wxACCEL_CTRL, 'W', kCmdCloseView},
    };
    frame->SetAcceleratorTable(wxAcceleratorTable(static_cast<int>(std::size(keys)), keys));
    frame->Bind(wxEVT_MENU, [view](wxCommandEvent& e) {
        if (e.GetId() >= kCmdSave && e.GetId() <= kCmdCloseView) view->Command(e.GetId());
        else e.Skip();
    });
    main->ViewOpened(view);
    return view;
}

}  // namespace

DeskView::DeskView(long form, MainFrame* main, const char* table)
    : VntTabRecView(form, main), main_(main), table_(table) {}

DeskView::~DeskView() {
    m_pSet = nullptr;
    main_->ViewClosed(this);
}

bool DeskView::OpenSet() {
    set_ = std::make_unique<VntRecordset>();
    if (!Vnt_AppGetConnect(set_.get()) || !set_->Open(table_.c_str())) return false;
    m_pSet = set_.get();
    return true;
}

long DeskView::RecordNumber() const {
    long nr = 0;
    if (set_ && set_->IsOpen() && !set_->IsEOF()) set_->GetFieldValue("nr", nr);
    return nr;
}

// A save the database refuses: the library's message says what the
// database reported; this one offers the details page (Support) as well.
bool DeskView::OnToolSave() {
    Vnt_DbClearError();
    if (VntTabRecView::OnToolSave()) return true;
    if (Vnt_DbLastState()[0] != '\0') {
        const std::string details = Vnt_MsgHSprintf(Vnt_AppMsgGetHandle(), kMsgDbDetails, Vnt_DbLastState(),
                                                    Vnt_DbLastError());
        Vnt__MsgErr(__FILE__, __LINE__, Vnt_AppMsgLoad(kMsgSaveFailed), details.c_str());
    }
    return false;
}

bool DeskView::Command(int cmd) {
    switch (cmd) {
        case kCmdSave: return DoTool(VNTTAB_TOOL_SAVE);
        case kCmdDiscard: OnDiscardChanges(); return true;
        case kCmdFirst: return DoTool(VNTTAB_TOOL_FIRST);
        case kCmdPrev: return DoTool(VNTTAB_TOOL_PREV);
        case kCmdNext: return DoTool(VNTTAB_TOOL_NEXT);
        case kCmdLast: return DoTool(VNTTAB_TOOL_LAST);
        case kCmdCloseView: return Frame() && Frame()->Close();
        default: return false;
    }
}

DeskView* OpenCustomers(MainFrame* main) { return open<CustomerView>(main, kMsgCustomers); }
DeskView* OpenArticles(MainFrame* main) { return open<ArticleView>(main, kMsgArticles); }

}  // namespace desk
