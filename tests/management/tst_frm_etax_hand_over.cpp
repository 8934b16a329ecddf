// The record window: the files written, newest first, with their state, the invoices of the
// file the cursor stands on, marking a file uploaded (the day asked and checked) and withdrawing
// one; and the period window's record button that opens it.
#include "StoreFixture.h"
#include "common/grid/Grid.h"
#include "core/Clock.h"
#include "management/etax/EtaxExportRun.h"
#include "management/etax/FrmEtaxHandOver.h"
#include "management/etax/FrmEtaxPeriod.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>

using namespace nb;

namespace {

struct Fixture {
    test::TestHome home;
    QTemporaryDir out;
    ScriptedMessages* msgs = nullptr;
    Fixture() {
        setClock([] { return QDateTime(QDate(2026, 11, 3), QTime(9, 0)); });
        test::openStores();
        msgs = &test::script();
        QVERIFY(test::exec(stores().dbBasic, "insert into User (Serial, Company, Delegate) values "
                                             "('123-45-67891', '가나상사', '김가나')"));
        QVERIFY(test::exec(stores().dbBasic, "insert into Trader (Code, C_Name, U_Name, Serial) values "
                                             "('000001', '다라철강', '이다라', '101-01-01051')"));
        for (const QString& code : {QStringLiteral("100000"), QStringLiteral("100001")})
            QVERIFY(test::exec(stores().dbTax,
                               "insert into NewAcount (TaxCode, CCode, PName, TradeKum, VatKum, DealDate, "
                               "TradeDate, UserCode, Receipt) values (?, '000001', '볼트', 12000, 1200, "
                               "'2026-10-05', '10-05', '123-45-67891', '청구')",
                               {code}));
        EtaxExportPlan plan;
        plan.record = &stores().dbTax;
        const auto invoices = *ReadEtaxInvoices(stores().dbTax, stores().dbBasic, "2026-10-01", "2026-10-31");
        exportEtax(invoices, out.path(), "2026-10-01", "2026-10-31", plan);
        QDir().mkpath(out.path() + "/b");
        exportEtax(invoices.mid(0, 1), out.path() + "/b", "2026-10-01", "2026-10-31", plan);
    }
    ~Fixture() { setClock({}); }
};

// Acts on the window of type T once it is the modal one (looked for every 20 ms, as a loaded
// machine may be slow to show it); after ten seconds whatever is modal is closed, so that the
// test fails instead of waiting for ever.
template <typename T> void whenModal(std::function<void(T*)> act, int triesLeft = 500) {
    QTimer::singleShot(20, [act, triesLeft] {
        if (auto* window = qobject_cast<T*>(QApplication::activeModalWidget())) {
            act(window);
            return;
        }
        if (triesLeft > 0) {
            whenModal<T>(act, triesLeft - 1);
            return;
        }
        if (QWidget* stuck = QApplication::activeModalWidget()) stuck->close();
    });
}

} // namespace

class TestFrmEtaxHandOver : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void filesNewestFirstWithTheInvoicesOfTheRowChosen() {
        Fixture f;
        FrmEtaxHandOver form;
        test::showActive(&form);
        QCOMPARE(form.grdFiles->Text(1, 1), QStringLiteral("2"));
        QCOMPARE(form.grdFiles->Text(2, 2), QStringLiteral("전자세금계산서_20261001-20261031_1.xlsx"));
        QCOMPARE(form.grdFiles->Text(3, 2), QStringLiteral("2026-10-01 ~ 2026-10-31"));
        QCOMPARE(form.grdFiles->Text(4, 2), QStringLiteral("2026-11-03 09:00"));
        QCOMPARE(form.grdFiles->Text(5, 2), QStringLiteral("2"));
        QCOMPARE(form.grdFiles->Text(6, 2), QStringLiteral("업로드 전"));
        QCOMPARE(form.grdInvoices->Text(1, 1), QStringLiteral("100000"));
        QCOMPARE(form.grdInvoices->DataRowCnt(), 1);
        // Down to the older file: its two invoices.
        test::pressKey(form.grdFiles, Qt::Key_Down);
        QCOMPARE(form.grdFiles->ActiveRow(), 2);
        QCOMPARE(form.grdInvoices->DataRowCnt(), 2);
        QCOMPARE(form.grdInvoices->Text(1, 2), QStringLiteral("100001"));
        QCOMPARE(form.grdInvoices->Text(3, 2), QStringLiteral("다라철강"));
        QCOMPARE(form.grdInvoices->Text(4, 2), QStringLiteral("12,000"));
        QVERIFY(form.pnlFile->text().endsWith(QStringLiteral("업로드 전")));
        test::saveScreenshot(&form, QStringLiteral("frm_etax_hand_over"));
    }
    void markingAFileUploadedAsksTheDayAndShowsIt() {
        Fixture f;
        FrmEtaxHandOver form;
        f.msgs->answerInput("2026-11-03");
        form.btnUploaded->click();
        QCOMPARE(form.grdFiles->Text(6, 1), QStringLiteral("업로드 2026-11-03"));
        QVERIFY(!form.btnUploaded->isEnabled());
        QCOMPARE(UploadedInvoiceDates("2026-10-01", "2026-10-31").value("100000"), QDate(2026, 11, 3));
    }
    void aDayOfTheWrongFormIsRefusedAndChangesNothing() {
        Fixture f;
        FrmEtaxHandOver form;
        f.msgs->answerInput("2026-11-31");
        form.btnUploaded->click();
        QCOMPARE(f.msgs->last().text,
                 QStringLiteral("업로드한 날짜가 올바르지 않습니다: 2026-11-31 (YYYY-MM-DD)"));
        QCOMPARE(form.grdFiles->Text(6, 1), QStringLiteral("업로드 전"));
        // Cancelling the day box changes nothing either.
        f.msgs->answerInput(QString());
        form.btnUploaded->click();
        QVERIFY(UploadedInvoiceDates("2026-10-01", "2026-10-31").isEmpty());
    }
    void withdrawingAsksFirstAndRemovesTheFile() {
        Fixture f;
        FrmEtaxHandOver form;
        const QString path = ReadHandOverFile(stores().dbTax, 2)->path;
        QVERIFY(QFileInfo::exists(path));
        f.msgs->answer(AnsNo);
        form.btnWithdraw->click();
        QVERIFY(QFileInfo::exists(path));
        QCOMPARE(f.msgs->last().buttons, int(MbYesNo | MbQuestion | MbDefaultButton2));
        QVERIFY(f.msgs->last().text.startsWith(
            QStringLiteral("전자세금계산서_20261001-20261031_1.xlsx을(를) 철회합니다.")));
        f.msgs->answer(AnsYes);
        form.btnWithdraw->click();
        QVERIFY(!QFileInfo::exists(path));
        QCOMPARE(form.grdFiles->Text(6, 1), QStringLiteral("철회 2026-11-03 (철회)"));
        QVERIFY(!form.btnWithdraw->isEnabled());
    }
    void thePeriodWindowOpensTheRecordByItsButton() {
        Fixture f;
        QString opened;
        int filesShown = 0;
        // 전송 기록(&R) in the period window opens the record; 닫기(&X) closes it; 취소 leaves.
        whenModal<FrmEtaxPeriod>([&](FrmEtaxPeriod* period) {
            whenModal<FrmEtaxHandOver>([&](FrmEtaxHandOver* record) {
                opened = record->objectName();
                filesShown = record->grdFiles->DataRowCnt();
                whenModal<FrmEtaxPeriod>([](FrmEtaxPeriod* back) { back->btnCancel->click(); });
                record->btnExit->click();
            });
            period->btnRecord->click();
        });
        QVERIFY(!ChooseEtaxPeriod(nullptr, {"2026-07-01", "2026-09-30"}));
        QCOMPARE(opened, QStringLiteral("FrmEtaxHandOver"));
        QCOMPARE(filesShown, 2);
    }
};

QTEST_MAIN(TestFrmEtaxHandOver)
#include "tst_frm_etax_hand_over.moc"
