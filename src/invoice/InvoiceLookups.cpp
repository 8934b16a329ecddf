#include "invoice/InvoiceLookups.h"

#include "common/input/FormPlacement.h"
#include "core/Lifecycle.h"
#include "master/FrmNewProduct.h"
#include "master/FrmNewTrader.h"
#include "master/FrmProductList.h"
#include "master/FrmTraderList.h"
#include "master/FrmUser.h"
#include "master/FrmUserList.h"

#include <QLineEdit>
#include <optional>

namespace nb {

namespace {

// A list dialog of the master library behind the SearchList contract.
template <class List> class DialogList : public SearchList {
public:
    explicit DialogList(QWidget* parent) : m_list(new List(parent)) {}
    ~DialogList() override { delete m_list; }
    void showBelow(QWidget* anchor) override {
        if (anchor) MoveFormUnder(m_list, anchor);
        m_list->exec();
    }

protected:
    List* m_list;
};

class UserList : public DialogList<FrmUserList> {
public:
    using DialogList::DialogList;
    int InitForm(QLineEdit* target, const QString& text, const QString&, int) override {
        m_list->SetObject(target);
        int result = 0;
        m_list->InitForm(text, result);
        return result;
    }
};

class TraderList : public DialogList<FrmTraderList> {
public:
    using DialogList::DialogList;
    int InitForm(QLineEdit* target, const QString& text, const QString&, int kind) override {
        m_list->SetObject(target);
        int result = 0;
        m_list->InitForm(text, kind, result);
        return result;
    }
};

class ProductList : public DialogList<FrmProductList> {
public:
    using DialogList::DialogList;
    int InitForm(QLineEdit* target, const QString& text, const QString& traderCode, int kind) override {
        m_list->SetObject(target, traderCode);
        int result = 0;
        m_list->InitForm(kind, text, result);
        return result;
    }
};

// An entry form bound to the target, placed below the anchor and shown modally.
template <class Form> void showEntryBelow(Form& form, QLineEdit* target, QWidget* anchor) {
    form.SetObject(target);
    if (anchor) MoveFormUnder(&form, anchor);
    form.exec();
}

std::optional<InvoiceLookups>& slot() {
    static std::optional<InvoiceLookups> lookups;
    static const bool hooked = [] {
        registerResetHook([] { slot().reset(); });
        return true;
    }();
    Q_UNUSED(hooked);
    return lookups;
}

} // namespace

InvoiceLookups masterLookups() {
    InvoiceLookups l;
    l.traderList = [](QWidget* parent) { return std::make_unique<TraderList>(parent); };
    l.productList = [](QWidget* parent) { return std::make_unique<ProductList>(parent); };
    l.userList = [](QWidget* parent) { return std::make_unique<UserList>(parent); };
    l.newTrader = [](QWidget* parent, QLineEdit* target, const QString& seed, const QString& month,
                     QWidget* anchor) {
        FrmNewTrader form(parent);
        form.InitForm(0, seed, month, QString());
        showEntryBelow(form, target, anchor);
    };
    l.newProduct = [](QWidget* parent, QLineEdit* target, const QString& seed, const QString& date,
                      QWidget* anchor) {
        FrmNewProduct form(parent);
        form.InitForm(seed, date, 0, QString());
        showEntryBelow(form, target, anchor);
    };
    l.userEntry = [](QWidget* parent) {
        FrmUser form(parent);
        form.exec();
    };
    return l;
}

InvoiceLookups& invoiceLookups() {
    if (!slot()) slot() = masterLookups();
    return *slot();
}

void setInvoiceLookups(const InvoiceLookups& lookups) {
    slot() = lookups;
}

} // namespace nb
