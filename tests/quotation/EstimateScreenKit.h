#pragma once
// What the tests of the quotation screen share: the invoice screen's store data and scripted
// lists, a fixed clock, one decimal place for quantities, and the quotation store opened.

#include "QuotationFixture.h"
#include "TaxScreenKit.h"
#include "common/grid/Grid.h"
#include "core/AppState.h"
#include "quotation/FrmEstimate.h"

#include <QApplication>
#include <QLabel>
#include <QTimer>

namespace nb::test {

struct EstimateScreen {
    TestHome home;
    std::unique_ptr<FrmEstimate> form;
    explicit EstimateScreen(int decimals = 1) {
        fixClock();
        openStores();
        addScreenData();
        installStoreLookups();
        app().DecimalQty = decimals;
        app().DecimalPrice = decimals;
    }
    FrmEstimate& open() {
        form = std::make_unique<FrmEstimate>();
        showActive(form.get());
        return *form;
    }
    ~EstimateScreen() {
        form.reset();
        setClock({});
    }
};

// Types into the active cell of the grid and ends with Enter.
inline void typeCell(Grid* grid, const QString& text) {
    typeText(QApplication::focusWidget() ? QApplication::focusWidget() : grid, text);
    pressKey(QApplication::focusWidget() ? QApplication::focusWidget() : grid, Qt::Key_Return);
}

// Enter in the focused widget.
inline void enterHere() {
    pressKey(QApplication::focusWidget(), Qt::Key_Return);
}

inline void keyHere(Qt::Key key) {
    pressKey(QApplication::focusWidget(), key);
}

// The trader chosen by typing its name into txtinput(0) and Enter.
inline void chooseTrader(FrmEstimate& f, const QString& name) {
    f.txtinput[0]->setFocus();
    typeText(f.txtinput[0], name);
    pressKey(f.txtinput[0], Qt::Key_Return);
}

// A quotation of the test trader with lines (name, quantity, price).
inline void addQuotation(const QString& code, const QString& date, const QString& name,
                         const QList<std::tuple<QString, double, double>>& lines, int firstSeq = 1) {
    double total = 0;
    for (const auto& [n, q, p] : lines)
        total += q * p;
    addEstiHead(code, QStringLiteral("000001"), name, date, total);
    int seq = firstSeq;
    for (const auto& [n, q, p] : lines)
        addEstiLine(seq++, code, n, q, p);
}

} // namespace nb::test
