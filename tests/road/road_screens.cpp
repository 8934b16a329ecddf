// The screens in a real window: the real program on an X server with a window manager, driven
// by keys only, another program beside it. What the offscreen tests cannot see: activation
// from the desktop, Alt keys reaching a menu bar, a window left without the focus.
#include "RoadDocumentSteps.h"

#include <QTest>

using namespace road;

namespace {

const QString kSupplierFirst = QStringLiteral("사용자등록을 먼저하셔야 합니다");
const QString kNothingSummed = QStringLiteral("집계내역이 존재하지 않습니다.");

} // namespace

class RoadScreens : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theRegistrationTheInvoiceScreenAsksForGivesTheWindowBack() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), qPrintable(desk.why()));
        desk.keys({QStringLiteral("alt+p"), QStringLiteral("f")}); // 출력 → 세금계산서
        QVERIFY(desk.waitSaid(kSupplierFirst));
        desk.key(QStringLiteral("Return"));
        QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("사업자 등록"))), seen(desk));
        for (const QString& text :
             {QStringLiteral("가나상사"), QStringLiteral("김가나"), QStringLiteral("1234567891")}) {
            desk.type(text);
            desk.key(QStringLiteral("Return"));
        }
        desk.key(QStringLiteral("alt+s"));
        desk.settle(1500); // the saved notice goes by itself
        QTRY_VERIFY_WITH_TIMEOUT(
            desk.rows(QStringLiteral("dbBasic.db"), QStringLiteral("SELECT Company FROM User"))
                .contains(QStringLiteral("가나상사")),
            10000);
        desk.key(QStringLiteral("alt+q"));
        // The main window is the active one again, and stays so: the next keys go somewhere.
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
        desk.settle(500);
        QVERIFY(mainWindowName().match(desk.activeWindowName()).hasMatch());
    }
    void afterEachProductRegistrationTheMainWindowHasTheKeys() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), qPrintable(desk.why()));
        const QStringList names{QStringLiteral("볼트"), QStringLiteral("너트"), QStringLiteral("와셔")};
        for (int i = 0; i < names.size(); ++i) {
            desk.keys({QStringLiteral("alt+f"), QStringLiteral("m")}); // 기초등록 → 상품 등록
            QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("상품 등록"))), seen(desk));
            for (const QString& text :
                 {names[i], QStringLiteral("M10"), QStringLiteral("100"), QStringLiteral("150")}) {
                desk.type(text);
                desk.key(QStringLiteral("Return"));
            }
            desk.key(QStringLiteral("alt+s"));
            QTRY_COMPARE_WITH_TIMEOUT(
                desk.rows(QStringLiteral("dbBasic.db"), QStringLiteral("SELECT count(*) FROM Product"))
                    .value(0),
                QString::number(i + 1), 10000);
            desk.settle(1200);                 // the saved notice goes by itself
            desk.key(QStringLiteral("alt+x")); // the form's 종료(&X)
            QVERIFY2(desk.waitActive(mainWindowName(), 3000), seen(desk));
        }
        QCOMPARE(desk.rows(QStringLiteral("dbBasic.db"),
                           QStringLiteral("SELECT PName FROM Product ORDER BY Code")),
                 names);
    }
    void aQuotationsHeadIsSavedThoughTheDeliveryDateBoxBorrowedTheFocus() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), seen(desk));
        QVERIFY(seedParties(desk));
        typeAQuotation(desk);
    }
    void aQuantityTypedOverTheOneAfterAProductReplacesIt() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), seen(desk));
        QVERIFY(seedParties(desk));
        typeAStatement(desk);
    }
    void comingBackFromAnotherProgramAsksNothingAgain() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), qPrintable(desk.why()));
        QVERIFY(seedParties(desk));
        const QString mainId = desk.activeWindowId();
        desk.keys({QStringLiteral("alt+p"), QStringLiteral("f")});
        desk.settle(1000);
        // Insert lists the traders; 선택(&S) takes the one there is. It has no statement in the period.
        desk.key(QStringLiteral("Insert"));
        QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("거래처 리스트"))), seen(desk));
        desk.key(QStringLiteral("alt+s"));
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
        const int before = desk.countSaid(kNothingSummed);
        QVERIFY(desk.startOther(QStringLiteral("xcalc")));
        const QString calculator = desk.waitWindow(QRegularExpression(QStringLiteral("^Calculator$")));
        QVERIFY(!calculator.isEmpty());
        for (int round = 0; round < 2; ++round) {
            QVERIFY2(desk.activate(calculator), seen(desk));
            desk.settle(300);
            QVERIFY(desk.activate(mainId));
            desk.settle(800);
        }
        QCOMPARE(desk.countSaid(kNothingSummed), before);
        QVERIFY(mainWindowName().match(desk.activeWindowName()).hasMatch());
    }
    void altXOnTheTotalsScreenClosesTheScreenAndThenTheMenusEndsTheProgram() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), qPrintable(desk.why()));
        QVERIFY(seedParties(desk));
        desk.keys({QStringLiteral("alt+p"), QStringLiteral("s")}); // 출력 → 세금계산서 합계표
        desk.settle(1500);
        desk.key(QStringLiteral("alt+x")); // the screen's 닫기(&X)
        desk.settle(1500);
        QVERIFY(desk.programRunning());
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
        desk.key(QStringLiteral("alt+x")); // no screen open: the main menu's 종료(&X)
        QVERIFY(desk.waitProgramEnded(10000));
    }
};

QTEST_GUILESS_MAIN(RoadScreens)
#include "road_screens.moc"
