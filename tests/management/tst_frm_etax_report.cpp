// The window after an electronic invoice export: the summary, the invoices left out with their
// reasons, and the print and export buttons handing the list on.
#include "TestSupport.h"
#include "common/grid/Grid.h"
#include "management/etax/FrmEtaxReport.h"

#include <QLabel>
#include <QPushButton>

using namespace nb;

namespace {

EtaxExport sampleResult() {
    EtaxExport result;
    result.files = {"/tmp/e/전자세금계산서_20240101-20240331_1.xlsx",
                    "/tmp/e/전자세금계산서_20240101-20240331_2.xlsx"};
    result.invoicesPerFile = {100, 27};
    result.assumedReceipts = 3;
    result.leftOut = {
        {"100004",
         "2024-02-03",
         "다라철강",
         {"품목이 6개입니다 (한 장에 4개까지): 홈택스에서 직접 발급하십시오"}},
        {"100019",
         "2024-03-11",
         "틀린번호",
         {"공급받는자 등록번호가 올바르지 않습니다 (123-45-67890)", "공급받는자 성명이 비어 있습니다"}}};
    return result;
}

} // namespace

class TestFrmEtaxReport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void summarySaysHowManyInvoicesWentIntoHowManyFiles() {
        QCOMPARE(etaxSummaryText(sampleResult()),
                 QStringLiteral("127건을 파일 2개에 작성했습니다.\n"
                                "2건은 아래의 사유로 제외했습니다. 홈택스에서 직접 발급하십시오.\n"
                                "영수/청구가 기록되지 않은 3건은 선택한 구분으로 작성했습니다."));
        EtaxExport clean;
        clean.files = {"a.xlsx"};
        clean.invoicesPerFile = {5};
        QCOMPARE(etaxSummaryText(clean), QStringLiteral("5건을 파일 1개에 작성했습니다."));
    }
    void summarySaysHowManyOlderFilesOfTheSameNameWereRemoved() {
        EtaxExport result;
        result.files = {"a_1.xlsx"};
        result.invoicesPerFile = {5};
        result.removed = {"a_2.xlsx", "a_3.xlsx"};
        QCOMPARE(etaxSummaryText(result),
                 QStringLiteral(
                     "5건을 파일 1개에 작성했습니다.\n지난번에 만든 같은 이름의 파일 2개를 지웠습니다."));
    }
    void leftOutInvoicesAreListedWithTheirReasonsAndHandedOn() {
        test::TestHome home;
        FrmEtaxReport form(sampleResult(), "/tmp/e");
        Grid* seen = nullptr;
        int prints = 0, exports = 0;
        form.onPrint([&](Grid* g) {
            seen = g;
            ++prints;
        });
        form.onExport([&](Grid* g) {
            seen = g;
            ++exports;
        });
        test::showActive(&form);
        QCOMPARE(form.windowTitle(), QStringLiteral("전자세금계산서 엑셀 작성 결과"));
        QVERIFY(
            form.summary()->text().endsWith(QStringLiteral("\n홈택스에 올린 뒤 전송 기록에서 업로드 표시를 "
                                                           "하십시오.\n저장 폴더: /tmp/e")));
        QCOMPARE(form.list()->Text(1, 0), QStringLiteral("계산서번호"));
        QCOMPARE(form.list()->Text(4, 0), QStringLiteral("제외 사유"));
        QCOMPARE(form.list()->Text(1, 2), QStringLiteral("100019"));
        QCOMPARE(form.list()->Text(3, 2), QStringLiteral("틀린번호"));
        QCOMPARE(form.list()->Text(4, 2),
                 QStringLiteral("공급받는자 등록번호가 올바르지 않습니다 (123-45-67890)"));
        QCOMPARE(form.list()->Text(1, 3), QString()); // the same invoice's second reason
        QCOMPARE(form.list()->Text(4, 3), QStringLiteral("공급받는자 성명이 비어 있습니다"));
        QCOMPARE(form.list()->MaxRows(), 3);
        test::saveScreenshot(&form, "etax_export_report");
        QCOMPARE(test::focused()->objectName(), QStringLiteral("btnExit")); // Enter closes
        QTest::mouseClick(form.printButton(), Qt::LeftButton);
        QTest::mouseClick(form.exportButton(), Qt::LeftButton);
        QCOMPARE(prints, 1);
        QCOMPARE(exports, 1);
        QCOMPARE(seen, form.list());
    }
    void nothingLeftOutLeavesNothingToPrint() {
        test::TestHome home;
        EtaxExport clean;
        clean.files = {"a.xlsx"};
        clean.invoicesPerFile = {5};
        FrmEtaxReport form(clean, "/tmp/e");
        QVERIFY(!form.printButton()->isEnabled());
        QVERIFY(!form.exportButton()->isEnabled());
        test::showActive(&form);
        test::pressKey(test::focused(), Qt::Key_Return);
        QVERIFY(!form.isVisible());
    }
};

NB_TEST_MAIN(TestFrmEtaxReport)
#include "tst_frm_etax_report.moc"
