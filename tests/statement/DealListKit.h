#pragma once
// What the tests of the screen FrmDealList share: the invoice screens' stores and look-ups, the
// screen opened and shown, a statement put in place with its head's totals, and the keys an
// operator uses in the line grid.

#include "../invoice/TaxScreenKit.h"
#include "common/grid/Grid.h"
#include "statement/FrmDealList.h"

#include <QTest>

namespace nb::test {

// The statement screen on the stores of the invoice screen's tests, opened and shown.
struct DealScreen {
    TestHome home;
    std::unique_ptr<FrmDealList> form;
    DealScreen() {
        fixClock();
        openStores();
        addScreenData();
        installStoreLookups();
    }
    FrmDealList& open() {
        form = std::make_unique<FrmDealList>();
        showActive(form.get());
        return *form;
    }
    ~DealScreen() { setClock({}); }
};

// A statement head with its lines (product, quantity, price, amount, VAT) and totals that agree.
inline bool addDealStatement(const QString& billNo, const QString& date, const QString& cCode,
                             const QList<std::tuple<QString, double, double, double, double>>& lines) {
    double amount = 0, vat = 0;
    for (const auto& line : lines) {
        amount += std::get<3>(line);
        vat += std::get<4>(line);
    }
    if (!exec(stores().dbBill,
              QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                             "VALUES (?, ?, ?, ?, ?, ?)"),
              {billNo, date, cCode, amount, vat, int(lines.size())}))
        return false;
    int seq = 0;
    for (const auto& [name, quant, price, lineAmount, lineVat] : lines)
        if (!exec(stores().dbBill,
                  QStringLiteral(
                      "INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) "
                      "VALUES (?, ?, ?, 'EA', ?, ?, 0, ?, ?)"),
                  {billNo, ++seq, name, quant, price, lineAmount, lineVat}))
            return false;
    return true;
}

inline double headValue(const QString& billNo, const QString& column) {
    return scalar(stores().dbBill, QStringLiteral("SELECT %1 FROM Master WHERE BillNo = ?").arg(column),
                  {billNo})
        .toDouble();
}

inline QVariant lineValue(const QString& billNo, int seq, const QString& column) {
    return scalar(stores().dbBill,
                  QStringLiteral("SELECT %1 FROM Detail WHERE BillNo = ? AND BillSEQ = ?").arg(column),
                  {billNo, seq});
}

inline int detailRows(const QString& billNo) {
    return scalar(stores().dbBill, QStringLiteral("SELECT count(*) FROM Detail WHERE BillNo = ?"), {billNo})
        .toInt();
}

inline int masterRows() {
    return scalar(stores().dbBill, QStringLiteral("SELECT count(*) FROM Master")).toInt();
}

// The receiver by Enter: the name typed into CName2, then Enter.
inline void chooseTrader(FrmDealList& f, const QString& name) {
    f.CName2->setFocus();
    f.CName2->clear();
    typeText(f.CName2, name);
    enter(f.CName2);
}

// The cursor on a cell of spDetail, with the keyboard in the grid.
inline void goToCell(FrmDealList& f, int col, int row) {
    f.spDetail->setFocus();
    f.spDetail->SetActiveCell(col, row);
}

// Text typed into the active cell of the grid that has the keyboard (replacing what it held),
// then Enter.
inline void typeIntoCell(const QString& text) {
    QWidget* editor = focused();
    if (auto* box = qobject_cast<QLineEdit*>(editor)) box->selectAll();
    if (text.isEmpty()) pressKey(editor, Qt::Key_Delete);
    typeText(editor, text);
    pressKey(focused(), Qt::Key_Return);
}

// The product's name typed into the active cell and Enter: the list shows and the operator
// chooses the product with the code given in it.
inline void typeProductAndChoose(const QString& text, const QString& code) {
    lookupLog().chooseOnShow = code;
    typeIntoCell(text);
    lookupLog().chooseOnShow.clear();
}

// The product list registers a product on the spot: the entry form stores it and hands its
// code back, as FrmNewProduct does.
inline void registerProductsOnTheSpot(const QString& code, double price) {
    InvoiceLookups l = invoiceLookups();
    l.newProduct = [code, price](QWidget*, QLineEdit* target, const QString& seed, const QString& date,
                                 QWidget*) {
        lookupLog().calls << QStringLiteral("newProduct:") + seed + u':' + date;
        addProductRow(code, seed, QString(), price, QStringLiteral("SET"));
        target->setText(code);
    };
    setInvoiceLookups(l);
}

} // namespace nb::test
