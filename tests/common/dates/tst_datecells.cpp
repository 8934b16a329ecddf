// Date cells of the statement list, their link and spin, and the year list.
#include "TestSupport.h"
#include "common/dates/DateCells.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QTableWidget>

using namespace nb;

namespace {

// The period part of the statement screen: two date cells and the link box.
struct PeriodForm {
    QWidget window;
    QCheckBox* chkChain = new QCheckBox(QStringLiteral("양쪽 날짜 동시에 변경"), &window);
    QTableWidget* first = new QTableWidget(&window);
    QTableWidget* second = new QTableWidget(&window);
    DateRangeCells cells() const { return {chkChain, {first, second}}; }

    PeriodForm() {
        first->setGeometry(10, 10, 110, 24);
        second->setGeometry(130, 10, 110, 24);
        InitDateCell(first, true, QDate(2024, 3, 15));
        InitDateCell(second, false, QDate(2024, 3, 15));
    }
};

} // namespace

class TestDateCells : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void dateCellStartsOnTheFirstOfTheMonthOrToday() {
        test::TestHome home;
        PeriodForm form;
        QCOMPARE(DateCellText(form.first), QStringLiteral("2024-03-01"));
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-03-15"));
    }
    void dateCellIsOneBoldBlueCellFillingTheControl() {
        test::TestHome home;
        PeriodForm form;
        QTableWidget* cell = form.first;
        QCOMPARE(cell->rowCount(), 1);
        QCOMPARE(cell->columnCount(), 1);
        QCOMPARE(cell->currentRow(), 0);
        QCOMPARE(cell->currentColumn(), 0);
        QCOMPARE(cell->rowHeight(0), cell->contentsRect().height());
        QCOMPARE(cell->columnWidth(0), cell->contentsRect().width());
        const QTableWidgetItem* item = cell->item(0, 0);
        QCOMPARE(item->font().pointSize(), 10);
        QVERIFY(item->font().bold());
        QCOMPARE(item->foreground().color(), QColor(0, 0, 255));
        QCOMPARE(Qt::Alignment(item->textAlignment()) & Qt::AlignHorizontal_Mask, Qt::AlignLeft);
        QVERIFY(cell->horizontalHeader()->isHidden());
        QVERIFY(cell->verticalHeader()->isHidden());
    }
    void withChainUnsetAChangeOfTheFirstLeavesTheSecondAlone() {
        test::TestHome home;
        auto& msgs = test::script();
        PeriodForm form;
        form.chkChain->setChecked(false);
        SetDateCellText(form.first, QStringLiteral("2024-02-10"));
        ChainDate(form.cells(), 0);
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-03-15"));
        ChainDate(form.cells(), 7);
        QVERIFY(msgs.records().empty());
    }
    void withChainSetTheFirstIsCopiedToTheSecond() {
        test::TestHome home;
        PeriodForm form;
        form.chkChain->setChecked(true);
        SetDateCellText(form.first, QStringLiteral("2024-02-10"));
        ChainDate(form.cells(), 0);
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-02-10"));
    }
    void withChainSetTheSecondIsCopiedToTheFirst() {
        test::TestHome home;
        PeriodForm form;
        form.chkChain->setChecked(true);
        SetDateCellText(form.second, QStringLiteral("2024-04-02"));
        ChainDate(form.cells(), 1);
        QCOMPARE(DateCellText(form.first), QStringLiteral("2024-04-02"));
    }
    void withChainSetAnUnknownIndexShowsTheCodingAlarm() {
        test::TestHome home;
        auto& msgs = test::script();
        PeriodForm form;
        form.chkChain->setChecked(true);
        ChainDate(form.cells(), 2);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().text, QStringLiteral("코딩누락"));
        QCOMPARE(msgs.last().buttons, int(MbOk));
        QCOMPARE(msgs.last().title, applicationTitle());
        QCOMPARE(DateCellText(form.first), QStringLiteral("2024-03-01"));
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-03-15"));
    }
    void chainStepsFollowTheLinkAndTheIndex() {
        test::TestHome home;
        QCOMPARE(chainStepFor(false, 0), ChainStep::None);
        QCOMPARE(chainStepFor(false, 5), ChainStep::None);
        QCOMPARE(chainStepFor(true, 0), ChainStep::CopyFirstToSecond);
        QCOMPARE(chainStepFor(true, 1), ChainStep::CopySecondToFirst);
        QCOMPARE(chainStepFor(true, -1), ChainStep::CodingAlarm);
    }
    void spinUpAddsOneDayAndChains() {
        test::TestHome home;
        PeriodForm form;
        form.chkChain->setChecked(true);
        SetDateCellText(form.first, QStringLiteral("2024-02-28"));
        SpinDate(form.cells(), 0, 1);
        QCOMPARE(DateCellText(form.first), QStringLiteral("2024-02-29"));
        QCOMPARE(DateCellText(form.second), QStringLiteral("2024-02-29"));
    }
    void spinDownTakesOneDayOffAcrossTheYear() {
        test::TestHome home;
        PeriodForm form;
        SetDateCellText(form.second, QStringLiteral("2024-01-01"));
        SpinDate(form.cells(), 1, -1);
        QCOMPARE(DateCellText(form.second), QStringLiteral("2023-12-31"));
        QCOMPARE(DateCellText(form.first), QStringLiteral("2024-03-01"));
    }
    void spinWritesTheStoredFormEvenFromAnotherForm() {
        test::TestHome home;
        PeriodForm form;
        SetDateCellText(form.first, QStringLiteral("2024/3/9"));
        SpinDate(form.cells(), 0, 1);
        QCOMPARE(DateCellText(form.first), QStringLiteral("2024-03-10"));
    }
    void yearListOf2004RunsFrom1999To2010() {
        test::TestHome home;
        QComboBox list;
        FillYearList(&list, QStringLiteral("2004"));
        QStringList years;
        for (int i = 0; i < list.count(); ++i)
            years << list.itemText(i);
        QCOMPARE(years, QStringList({"1999", "2000", "2001", "2002", "2003", "2004", "2005", "2006", "2007",
                                     "2008", "2009", "2010"}));
    }
    void yearListIsAddedToWhatTheListHolds() {
        test::TestHome home;
        QComboBox list;
        list.addItem(QStringLiteral("전체"));
        FillYearList(&list, QStringLiteral("2024"));
        QCOMPARE(list.count(), 13);
        QCOMPARE(list.itemText(1), QStringLiteral("2019"));
        QCOMPARE(list.itemText(12), QStringLiteral("2030"));
    }
};

NB_TEST_MAIN(TestDateCells)
#include "tst_datecells.moc"
