#pragma once
// What the tests of the screen FrmTax share: stores with a supplier, traders and products, a
// fixed clock, and list screens that search the store the way the master lists do and choose
// a scripted row when they are shown.

#include "InvoiceFixture.h"
#include "core/Clock.h"
#include "invoice/FrmTax.h"
#include "invoice/InvoiceLookups.h"

#include <QApplication>
#include <QLineEdit>
#include <QSqlQuery>

namespace nb::test {

// What the list screens were asked and shown.
struct LookupLog {
    QStringList calls;      // "trader:<text>", "product:<text>", "user:<text>", "newTrader:<seed>" ...
    QStringList shownBelow; // objectName of the anchor of each list shown
    QString chooseOnShow;   // the key a shown list delivers ("" leaves the box as it is)
    QString newCode;        // the key an entry form delivers
};

inline LookupLog& lookupLog() {
    static LookupLog log;
    return log;
}

// A list that finds rows of a table by the start of a name column.
class StoreList : public SearchList {
public:
    StoreList(QString kind, QString sql) : m_kind(std::move(kind)), m_sql(std::move(sql)) {}
    int InitForm(QLineEdit* target, const QString& text, const QString&, int) override {
        m_target = target;
        lookupLog().calls << m_kind + u':' + text;
        Database& db = stores().dbBasic;
        QSqlQuery q(db.connection());
        const QVariantList values{text + u'%'};
        q.prepare(db.statementFor(m_sql, values));
        db.bindValues(q, values);
        q.exec();
        QStringList keys;
        while (q.next())
            keys << q.value(0).toString();
        if (keys.size() == 1) target->setText(keys.first());
        return keys.isEmpty() ? 0 : keys.size() == 1 ? 1 : 2;
    }
    void showBelow(QWidget* anchor) override {
        lookupLog().shownBelow << (anchor ? anchor->objectName() : QString());
        if (!lookupLog().chooseOnShow.isEmpty()) m_target->setText(lookupLog().chooseOnShow);
    }

private:
    QString m_kind;
    QString m_sql;
    QLineEdit* m_target = nullptr;
};

inline void installStoreLookups() {
    lookupLog() = LookupLog();
    InvoiceLookups l;
    l.traderList = [](QWidget*) {
        return std::make_unique<StoreList>(
            QStringLiteral("trader"),
            QStringLiteral("SELECT Code FROM Trader WHERE C_Name LIKE ? ORDER BY Code"));
    };
    l.productList = [](QWidget*) {
        return std::make_unique<StoreList>(
            QStringLiteral("product"),
            QStringLiteral("SELECT Code FROM Product WHERE PName LIKE ? ORDER BY Code"));
    };
    l.userList = [](QWidget*) {
        return std::make_unique<StoreList>(
            QStringLiteral("user"),
            QStringLiteral("SELECT Serial FROM User WHERE Company LIKE ? ORDER BY Serial"));
    };
    l.newTrader = [](QWidget*, QLineEdit* target, const QString& seed, const QString& date, QWidget*) {
        lookupLog().calls << QStringLiteral("newTrader:") + seed + u':' + date;
        target->setText(lookupLog().newCode);
    };
    l.newProduct = [](QWidget*, QLineEdit* target, const QString& seed, const QString& date, QWidget*) {
        lookupLog().calls << QStringLiteral("newProduct:") + seed + u':' + date;
        target->setText(lookupLog().newCode);
    };
    l.userEntry = [](QWidget*) { lookupLog().calls << QStringLiteral("userEntry"); };
    setInvoiceLookups(l);
}

inline void fixClock() {
    setClock([] { return QDateTime(QDate(2024, 5, 10), QTime(9, 30)); });
}

// A supplier, two traders (one with earlier invoices) and three products.
inline void addScreenData() {
    addSupplier({QStringLiteral("123-45-67890"), QStringLiteral("하르문상사"), QStringLiteral("홍길동"),
                 QStringLiteral("서울시 중구 을지로 1"), QStringLiteral("02-123-4567"),
                 QStringLiteral("02-123-4568"), QStringLiteral("도소매"), QStringLiteral("철물")});
    addTraderRow(QStringLiteral("000001"),
                 {QStringLiteral("234-56-78901"), QStringLiteral("가나철강"), QStringLiteral("김철수"),
                  QStringLiteral("부산시 동구 중앙대로 1"), QStringLiteral("051-234-5678"), QString(),
                  QStringLiteral("제조"), QStringLiteral("강판")});
    addTraderRow(QStringLiteral("000002"), {QStringLiteral("345-67-89012"), QStringLiteral("다라상회"),
                                            QStringLiteral("이영희"), QStringLiteral("대구시 1"), QString(),
                                            QString(), QStringLiteral("소매"), QStringLiteral("잡화")});
    addProductRow(QStringLiteral("000001"), QStringLiteral("볼트"), QStringLiteral("M8"), 1000,
                  QStringLiteral("EA"));
    addProductRow(QStringLiteral("000002"), QStringLiteral("너트"), QString(), 550, QStringLiteral("EA"));
    addProductRow(QStringLiteral("000003"), QStringLiteral("와셔"), QStringLiteral("8mm"), 120,
                  QStringLiteral("BOX"));
    addInvoiceRow(QStringLiteral("100000"), QStringLiteral("000001"), QStringLiteral("앵글"), 50000, 5000,
                  QStringLiteral("2024-04-02"));
    addInvoiceRow(QStringLiteral("100001"), QStringLiteral("000001"), QStringLiteral("파이프"), 120000, 12000,
                  QStringLiteral("2024-04-20"));
    addInvoiceRow(QStringLiteral("100001"), QStringLiteral("000001"), QStringLiteral("엘보"), 8000, 800,
                  QStringLiteral("2024-04-20"));
}

inline void enter(QWidget* w) {
    pressKey(w, Qt::Key_Return);
}

// Receiver by Enter: the name typed into CName_MAE, then Enter.
inline void chooseReceiver(FrmTax& f, const QString& name) {
    f.CName_MAE->setFocus();
    f.CName_MAE->clear();
    typeText(f.CName_MAE, name);
    enter(f.CName_MAE);
}

} // namespace nb::test
