// The invoice screen's list of a customer's issued invoices when it is longer than a page: three
// hundred invoices of 다라상회 counted at once and read as they are seen, scrolled to the end, the
// last one chosen by the mouse and shown, its sums against every row, and the last one deleted.
#include "TaxScreenKit.h"
#include "common/grid/Grid.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace nb;

namespace {

constexpr int kInvoices = 300;

// Invoices 200000..200299 of 다라상회, each of two lines: "품목<n>" of 1,000 × (n + 1) and "덤" of
// 100, VAT a tenth, dated across 2023.
void addManyInvoices() {
    QVERIFY(test::exec(
        stores().dbTax,
        QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, PNorm, Quantity, UnitCost, "
                       "TradeKum, VatKum, DealDate, TradeDate, UserCode) WITH RECURSIVE n(i) AS "
                       "(SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < %1) SELECT "
                       "CAST(200000 + i / 2 AS TEXT), '000002', CASE WHEN i % 2 = 0 THEN '품목' "
                       "|| (i / 2) ELSE '덤' END, 'EA', 1, 0, CASE WHEN i % 2 = 0 THEN 1000 * "
                       "(i / 2 + 1) ELSE 100 END, CASE WHEN i % 2 = 0 THEN 100 * (i / 2 + 1) "
                       "ELSE 10 END, %2, '01-01', '' FROM n")
            .arg(2 * kInvoices - 1)
            .arg(test::dayAfterSql(stores().dbTax, QStringLiteral("2023-01-01"), QStringLiteral("i / 2")))));
}

struct Screen {
    test::TestHome home;
    std::unique_ptr<FrmTax> form;
    Screen() {
        test::fixClock();
        test::openStores();
        test::addScreenData();
        addManyInvoices();
        test::installStoreLookups();
    }
    FrmTax& open() {
        form = std::make_unique<FrmTax>();
        test::showActive(form.get());
        test::chooseReceiver(*form, QStringLiteral("다라"));
        return *form;
    }
    ~Screen() { setClock({}); }
};

QString lastCode() {
    return QString::number(200000 + kInvoices - 1);
}

void scrollToTheEnd(Grid& grid) {
    QApplication::processEvents(); // the list painted: its scroll bar knows every row
    grid.verticalScrollBar()->setValue(grid.verticalScrollBar()->maximum());
    QApplication::processEvents();
}

// How many of this process's open files are the file at path.
int openHandlesOf(const QString& path) {
    const QString target = QFileInfo(path).canonicalFilePath();
    int count = 0;
    const QDir fds(QStringLiteral("/proc/self/fd"));
    for (const QString& fd : fds.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot))
        if (QFileInfo(fds.filePath(fd)).symLinkTarget() == target) ++count;
    return count;
}

} // namespace

class TestIssuedList : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aLongListIsCountedAtOnceWithARowToSpare() {
        Screen s;
        test::script();
        FrmTax& f = s.open();
        QVERIFY(f.grdList->isList());
        QCOMPARE(f.grdList->MaxRows(), kInvoices + 1);
        QCOMPARE(f.ListRow(), kInvoices + 1);
        QCOMPARE(f.grdList->Text(1, 1), QStringLiteral("2023-01-01"));
        QCOMPARE(f.grdList->Text(2, 1), QStringLiteral("덤 외 1"));
        QCOMPARE(f.grdList->Text(3, 1), QStringLiteral("1,100"));
        QCOMPARE(f.grdList->DataRowCnt(), kInvoices);
        QVERIFY(f.grdList->Text(5, kInvoices + 1).isEmpty());
    }

    void scrollingToTheEndShowsTheLastInvoice() {
        Screen s;
        test::script();
        FrmTax& f = s.open();
        scrollToTheEnd(*f.grdList);
        const int bottom = f.grdList->rowAt(f.grdList->viewport()->height() - 2) + 1;
        QCOMPARE(bottom, kInvoices + 1); // the blank row under the last invoice
        QCOMPARE(f.grdList->Text(5, kInvoices), lastCode());
        QCOMPARE(f.grdList->Text(3, kInvoices), QStringLiteral("300,100"));
        QCOMPARE(f.grdList->Text(4, kInvoices), QStringLiteral("30,010"));
        test::saveScreenshot(&f, QStringLiteral("frm_tax_issued_list_end"));
    }

    void theLastInvoiceChosenByTheMouseIsShown() {
        Screen s;
        test::script();
        FrmTax& f = s.open();
        scrollToTheEnd(*f.grdList);
        const QRect cell = f.grdList->visualRect(f.grdList->model()->index(kInvoices - 1, 1));
        QVERIFY(cell.isValid());
        QTest::mouseClick(f.grdList->viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(f.TaxCode->text(), lastCode());
        QCOMPARE(f.pummok(0)->text(), QStringLiteral("품목299"));
        QCOMPARE(f.pummok(1)->text(), QStringLiteral("덤"));
    }

    void theSumsAreTheCustomersAndAgreeWithEveryRow() {
        Screen s;
        test::script();
        FrmTax& f = s.open();
        // 1,000 × (1 + ... + 300) + 100 × 300, and a tenth of it.
        const double supply = 1000.0 * kInvoices * (kInvoices + 1) / 2 + 100.0 * kInvoices;
        QCOMPARE(supply, 45180000.0);
        QCOMPARE(f.pnlSum[0]->text(), QStringLiteral("45,180,000 "));
        QCOMPARE(f.pnlSum[1]->text(), QStringLiteral("4,518,000 "));
        double walked = 0;
        for (int r = 1; r <= f.grdList->DataRowCnt(); ++r)
            walked += f.grdList->Value(3, r);
        QCOMPARE(walked, supply);
    }

    void choosingTheSameCustomerAgainShowsTheLongListAfresh() {
        Screen s;
        test::script();
        FrmTax& f = s.open();
        QVERIFY(test::addInvoiceRow(QStringLiteral("299999"), QStringLiteral("000002"),
                                    QStringLiteral("새것"), 700, 70, QStringLiteral("2024-05-10")));
        test::chooseReceiver(f, QStringLiteral("다라"));
        // 301 invoices do not exceed the 301 rows the grid had: it keeps them, as a blanked grid does.
        QCOMPARE(f.grdList->MaxRows(), kInvoices + 1);
        QCOMPARE(f.grdList->DataRowCnt(), kInvoices + 1);
        QCOMPARE(f.ListRow(), kInvoices + 2);
        QCOMPARE(f.grdList->Text(2, kInvoices + 1), QStringLiteral("새것"));
        QCOMPARE(f.grdList->Text(3, kInvoices + 1), QStringLiteral("700"));
        QCOMPARE(f.pnlSum[0]->text(), QStringLiteral("45,180,700 "));
    }

    void theLastInvoiceDeletedByF4LeavesTheListOneShorter() {
        Screen s;
        auto& msgs = test::script();
        FrmTax& f = s.open();
        scrollToTheEnd(*f.grdList);
        f.grdList->setFocus();
        f.grdList->SetActiveCell(1, kInvoices);
        msgs.answer(AnsYes);
        test::pressKey(f.grdList, Qt::Key_F4);
        QCOMPARE(test::invoiceRows(QStringLiteral("WHERE TaxCode = ?"), {lastCode()}), 0);
        QCOMPARE(f.grdList->DataRowCnt(), kInvoices - 1);
        QCOMPARE(f.ListRow(), kInvoices);
        QCOMPARE(f.grdList->Text(5, kInvoices - 1), QString::number(200000 + kInvoices - 2));
    }

    // The screen keeps its reads prepared: an invoice another running copy saves meanwhile (its
    // own connection on the file) is in the list, the count and the sums of the next choice.
    void anInvoiceSavedElsewhereShowsWhenTheCustomerIsChosenAgain() {
        Screen s;
        test::script();
        FrmTax& f = s.open();
        if (stores().dbTax.onServer()) QSKIP("the other seats on the server are tried by the seat tests");
        QApplication::processEvents();
        {
            QSqlDatabase other =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other copy"));
            other.setDatabaseName(stores().dbTax.path());
            QVERIFY(other.open());
            QSqlQuery q(other);
            QVERIFY(q.exec(QStringLiteral(
                "INSERT INTO NewAcount (TaxCode, CCode, PName, TradeKum, VatKum, DealDate, TradeDate, "
                "UserCode) "
                "VALUES ('299998', '000002', '다른자리', 900, 90, '2024-05-11', '05-11', '')")));
            q.finish();
            other.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("other copy"));
        test::chooseReceiver(f, QStringLiteral("다라"));
        QCOMPARE(f.grdList->DataRowCnt(), kInvoices + 1);
        QCOMPARE(f.grdList->Text(2, kInvoices + 1), QStringLiteral("다른자리"));
        QCOMPARE(f.pnlSum[0]->text(), QStringLiteral("45,180,900 "));
    }

    // Closed under an open screen (a restore, an import), the tax store lets go of its file although
    // the screen keeps its reads prepared; opened again, the screen reads the book reopened.
    // Another customer's short list takes the place of the long one in one change of the grid
    // (no rows taken away and put back first): the grid keeps its length with blank rows, and a
    // customer without invoices leaves it blank at that length.
    void anotherCustomersListReplacesTheListInOneChange() {
        Screen s;
        test::script();
        QVERIFY(test::addInvoiceRow(QStringLiteral("300001"), QStringLiteral("000009"), QStringLiteral("못"),
                                    1000, 100));
        QVERIFY(test::addInvoiceRow(QStringLiteral("300002"), QStringLiteral("000009"), QStringLiteral("끈"),
                                    2000, 200));
        FrmTax& f = s.open();
        QCOMPARE(f.grdList->MaxRows(), kInvoices + 1);
        QSignalSpy removed(f.grdList->model(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy inserted(f.grdList->model(), &QAbstractItemModel::rowsInserted);
        QSignalSpy reset(f.grdList->model(), &QAbstractItemModel::modelReset);
        f.LoadIssuedList(QStringLiteral("000009"));
        QCOMPARE(removed.count() + inserted.count(), 0);
        QCOMPARE(reset.count(), 1);
        QCOMPARE(f.grdList->MaxRows(), kInvoices + 1);
        QCOMPARE(f.grdList->DataRowCnt(), 2);
        QCOMPARE(f.ListRow(), 3);
        QVERIFY(f.grdList->Text(5, 3).isEmpty());
        QCOMPARE(f.pnlSum[0]->text(), QStringLiteral("3,000 "));
        QCOMPARE(f.pnlSum[1]->text(), QStringLiteral("300 "));
        f.LoadIssuedList(QStringLiteral("999999"));
        QCOMPARE(f.grdList->MaxRows(), kInvoices + 1);
        QCOMPARE(f.grdList->DataRowCnt(), 0);
        QCOMPARE(f.ListRow(), 1);
        QVERIFY(f.pnlSum[0]->text().isEmpty());
    }

    void theStoreClosedUnderTheScreenLetsGoOfItsFile() {
        Screen s;
        test::script();
        FrmTax& f = s.open();
        if (stores().dbTax.onServer()) QSKIP("the server's books are no files of the seat");
        const QString taxFile = stores().dbTax.path();
        QVERIFY(openHandlesOf(taxFile) > 0);
        closeStores();
        QCOMPARE(openHandlesOf(taxFile), 0);
        {
            QSqlDatabase other =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("restorer"));
            other.setDatabaseName(taxFile);
            QVERIFY(other.open());
            QVERIFY(QSqlQuery(other).exec(QStringLiteral("DELETE FROM NewAcount WHERE TaxCode >= '200150'")));
            other.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("restorer"));
        QVERIFY(OpenDatabases());
        test::chooseReceiver(f, QStringLiteral("다라"));
        QCOMPARE(f.grdList->DataRowCnt(), 150);
        QCOMPARE(f.grdList->Text(5, 150), QStringLiteral("200149"));
    }
};

NB_TEST_MAIN(TestIssuedList)
#include "tst_issued_list.moc"
