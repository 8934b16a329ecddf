#pragma once
// The list and entry screens of the master data as FrmTax uses them. Each list follows one
// contract: SetObject binds a hidden box of the invoice screen, InitForm answers 0 (no row), 1
// (one row, its key already written into the box) or 2 (several); the screen then shows the list
// modally below one of its controls, or lets it go unseen. The screens are reached through this
// table so that the invoice screen does not depend on how each list is built.

#include <QString>
#include <functional>
#include <memory>

class QLineEdit;
class QWidget;

namespace nb {

class SearchList {
public:
    virtual ~SearchList() = default;
    // SetObject(target) and InitForm(text, ...): the result 0, 1 or 2. `traderCode` and `kind`
    // go to the lists that take them.
    virtual int InitForm(QLineEdit* target, const QString& text, const QString& traderCode, int kind) = 0;
    // Shows the list modally just below the anchor; returns when it is closed.
    virtual void showBelow(QWidget* anchor) = 0;
};

struct InvoiceLookups {
    // FrmTraderList, FrmProductList, FrmUserList.
    std::function<std::unique_ptr<SearchList>(QWidget* parent)> traderList;
    std::function<std::unique_ptr<SearchList>(QWidget* parent)> productList;
    std::function<std::unique_ptr<SearchList>(QWidget* parent)> userList;
    // FrmNewTrader bound to the target, seeded with the text and the month "YYYY-MM";
    // FrmNewProduct bound to the target with today's date. Both modal, below the anchor.
    std::function<void(QWidget* parent, QLineEdit* target, const QString& seed, const QString& date,
                       QWidget* anchor)>
        newTrader;
    std::function<void(QWidget* parent, QLineEdit* target, const QString& seed, const QString& date,
                       QWidget* anchor)>
        newProduct;
    // FrmUser, modal.
    std::function<void(QWidget* parent)> userEntry;
};

// The table in force: the master data screens unless a test installed another.
InvoiceLookups& invoiceLookups();
void setInvoiceLookups(const InvoiceLookups& lookups);
// The master data screens.
InvoiceLookups masterLookups();

} // namespace nb
