// The export of a grid to a spreadsheet file, read back without the writer (unzip and the sheet's
// XML): the sheet named by the title, the heading row, every cell, numbers as numbers with
// thousands commas, the total row under the last one; the empty grid, the progress, the failure
// box and the offer to open the file.
#include "StoreFixture.h"
#include "XlsxRead.h"
#include "common/External.h"
#include "common/FileChooser.h"
#include "common/MessageDialogs.h"
#include "common/grid/Grid.h"
#include "common/grid/MduSpread.h"
#include "management/ExportGrid.h"

#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QTemporaryDir>

using namespace nb;

namespace {

// Three columns: a text, two numbers; two rows filled of five.
void fillGrid(Grid& grid) {
    grid.setMaxCols(3);
    grid.setMaxRows(5);
    grid.SetText(1, 0, QStringLiteral("거래처명"));
    grid.SetText(2, 0, QStringLiteral("매출액"));
    grid.SetText(3, 0, QStringLiteral("매출부가세"));
    SetFloatCell(grid, 2, 0, false);
    SetFloatCell(grid, 3, 0, false);
    grid.SetText(1, 1, QStringLiteral("가나철강"));
    grid.SetText(2, 1, QStringLiteral("1234567"));
    grid.SetText(3, 1, QStringLiteral("123456"));
    grid.SetText(1, 2, QStringLiteral("다라상회"));
    grid.SetText(2, 2, QStringLiteral("1000"));
    grid.SetText(3, 2, QStringLiteral("100"));
}

} // namespace

class TestExportGrid : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theSheetHoldsTheTitleHeadingsEveryCellAndTheTotalRow() {
        test::TestHome home;
        Grid grid;
        fillGrid(grid);
        const QString path = home.file(QStringLiteral("out.xlsx"));
        const SheetContent content = sheetContentOf(
            grid, {1, 2, 3}, {QStringLiteral("< 합 계 >"), QStringLiteral("1,235,567 "), QStringLiteral(" ")},
            QStringLiteral("매입ㆍ매출 계산서 관리"));
        QString error;
        int number = 0;
        QList<int> progress;
        QVERIFY(writeSheet(path, content, &error, &number, [&progress](int row) { progress << row; }));
        QCOMPARE(progress, (QList<int>{1, 2}));
        QCOMPARE(test::xlsxSheetNames(path), QStringList{QStringLiteral("매입ㆍ매출 계산서 관리")});
        const auto cells = test::xlsxCells(path);
        QCOMPARE(cells.value("A1").value, QStringLiteral("거래처명"));
        QCOMPARE(cells.value("C1").value, QStringLiteral("매출부가세"));
        QCOMPARE(cells.value("A2").value, QStringLiteral("가나철강"));
        QVERIFY(cells.value("B2").isNumber());
        QCOMPARE(cells.value("B2").value, QStringLiteral("1234567"));
        QCOMPARE(cells.value("C3").value, QStringLiteral("100"));
        QVERIFY(cells.value("C3").isNumber());
        QCOMPARE(cells.value("A4").value, QStringLiteral("< 합 계 >"));
        QVERIFY(cells.value("B4").isNumber());
        QCOMPARE(cells.value("B4").value, QStringLiteral("1235567"));
        QVERIFY(!cells.contains("C4")); // a blank panel writes nothing
        QVERIFY(!cells.contains("A5"));
        const QString sheet = test::xlsxSheetXml(path);
        QVERIFY(sheet.contains(QStringLiteral("<pane ySplit=\"1\""))); // the heading row stays
        QVERIFY(sheet.contains(QStringLiteral("<col ")));              // widths fit the contents
        QVERIFY(QString::fromUtf8(test::xlsxPart(path, QStringLiteral("xl/styles.xml")))
                    .contains(QStringLiteral("#,##0")));
    }

    void exportingAnEmptyGridSaysSoAndWritesNothing() {
        test::TestHome home;
        auto& msgs = test::script();
        auto& chooser = scriptFileChooser();
        Grid grid;
        grid.setMaxCols(2);
        grid.setMaxRows(10);
        QVERIFY(ExportGrid(nullptr, grid, {1, 2}, {}, QStringLiteral("목록"), QStringLiteral("x.xlsx"))
                    .isEmpty());
        QCOMPARE(msgs.last().text,
                 QStringLiteral("엑셀로 보낼 데이터가 없습니다.\r\n자료 검색후 엑셀로 보내세요."));
        QCOMPARE(msgs.last().buttons, int(MbInformation));
        QVERIFY(chooser.kinds.isEmpty());
    }

    void theExportAsksForTheFileShowsItsProgressAndOffersToOpenIt() {
        test::TestHome home;
        auto& msgs = test::script();
        auto& chooser = scriptFileChooser();
        auto& launches = recordLaunches();
        Grid grid;
        fillGrid(grid);
        const QString path = home.file(QStringLiteral("export.xlsx"));
        chooser.answers << path;
        msgs.answer(AnsYes);
        QCOMPARE(ExportGrid(nullptr, grid, {1, 2, 3}, {}, QStringLiteral("목록"),
                            QStringLiteral("목록_2024.xlsx")),
                 path);
        QCOMPARE(chooser.kinds, QStringList{QStringLiteral("save")});
        QVERIFY(chooser.suggested.first().endsWith(QStringLiteral("/목록_2024.xlsx")));
        QCOMPARE(msgs.progressValues(), (QList<int>{1, 2}));
        const auto progress = std::find_if(msgs.records().begin(), msgs.records().end(),
                                           [](const MessageRecord& r) { return r.kind == u"progress"; });
        QVERIFY(progress != msgs.records().end());
        QCOMPARE(progress->text, QStringLiteral("엑셀로 내보내는 중..."));
        QVERIFY(QFile::exists(path));
        QCOMPARE(launches.calls.size(), size_t(1));
        QCOMPARE(launches.calls[0].target, path);
    }

    void aFileThatCannotBeWrittenShowsTheFailureWithItsPath() {
        test::TestHome home;
        auto& msgs = test::script();
        auto& chooser = scriptFileChooser();
        Grid grid;
        fillGrid(grid);
        const QString path = home.file(QStringLiteral("no/such/folder/x.xlsx"));
        chooser.answers << path;
        QVERIFY(ExportGrid(nullptr, grid, {1, 2, 3}, {}, QStringLiteral("목록"), QStringLiteral("x.xlsx"))
                    .isEmpty());
        QCOMPARE(msgs.last().title, QStringLiteral("오류"));
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("오류번호 : ")));
        QVERIFY(msgs.last().text.contains(path));
        QVERIFY(msgs.last().text.contains(QStringLiteral("정상적으로 수행할 수 없습니다.")));
    }

    void theProgressFormShowsItsCaptionAndBar() {
        test::TestHome home;
        FrmProgress form(kExportProgressText, 10000);
        form.ProgressBar1->setValue(4200);
        form.show();
        QTest::qWait(20);
        QCOMPARE(form.lblCaption->text(), QStringLiteral("엑셀로 내보내는 중..."));
        test::saveScreenshot(&form, QStringLiteral("export_progress"));
    }
};

NB_TEST_MAIN(TestExportGrid)
#include "tst_export_grid.moc"
