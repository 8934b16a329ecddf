// Alt+letter in the main window: the active child screen's captions win over the main menu's,
// the main menu answers the letters no child control holds, and only the active child counts.
#include "StoreFixture.h"
#include "TestSupport.h"
#include "core/ScreenRegistry.h"
#include "invoice/InvoiceScreens.h"
#include "links/LinkScreens.h"
#include "management/ManagementScreens.h"
#include "master/MasterScreens.h"
#include "quotation/QuotationScreens.h"
#include "shell/ChildMnemonics.h"
#include "shell/Nubella.h"
#include "statement/StatementScreens.h"
#include "storage/Stores.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <set>

using namespace nb;

namespace {

// A screen laid out as the totals screen is: 검색(&S), 인쇄(&P), 전자세금계산서 엑셀(&H),
// 닫기(&X), a check box and a labelled box.
struct TotalsLikeScreen : QWidget {
    QPushButton* search = new QPushButton(QStringLiteral("검색(&S)"), this);
    QPushButton* print = new QPushButton(QStringLiteral("인쇄(&P)"), this);
    QPushButton* excel = new QPushButton(QStringLiteral("전자세금계산서 엑셀(&H)"), this);
    QPushButton* close = new QPushButton(QStringLiteral("닫기(&X)"), this);
    QCheckBox* all = new QCheckBox(QStringLiteral("전체(&A)"), this);
    QLabel* nameLabel = new QLabel(QStringLiteral("상호(&N)"), this);
    QLineEdit* name = new QLineEdit(this);
    QLineEdit* other = new QLineEdit(this);
    int searched = 0, printed = 0, exported = 0;
    TotalsLikeScreen() {
        int y = 0;
        for (QWidget* w :
             std::initializer_list<QWidget*>{search, print, excel, close, all, nameLabel, name, other})
            w->setGeometry(10, y += 30, 200, 26);
        nameLabel->setBuddy(name);
        connect(search, &QPushButton::clicked, this, [this] { ++searched; });
        connect(print, &QPushButton::clicked, this, [this] { ++printed; });
        connect(excel, &QPushButton::clicked, this, [this] { ++exported; });
        connect(close, &QPushButton::clicked, this, [this] { parentWidget()->close(); });
        resize(300, 300);
    }
};

struct Desk {
    test::TestHome home;
    Nubella window;
    QPointer<TotalsLikeScreen> totals;
    Desk() {
        clearScreenRegistry();
        registerChildScreen(QStringLiteral("mnu_InvoiceTotal"),
                            [this] { return totals = new TotalsLikeScreen; });
        registerChildScreen(QStringLiteral("mnu_SMS"), [] {
            auto* w = new QWidget;
            new QPushButton(QStringLiteral("전송(&T)"), w);
            return w;
        });
        window.refreshMenuState();
        test::showActive(&window);
    }
    ~Desk() { clearScreenRegistry(); }
    void open(const QString& control) {
        window.menuAction(control)->trigger();
        QTest::qWait(30);
    }
    // The totals-like screen in front, the focus in a box that holds no letter.
    void openTotals() {
        open(QStringLiteral("mnu_InvoiceTotal"));
        totals->other->setFocus();
    }
    void alt(Qt::Key key) {
        QWidget* at = QApplication::focusWidget() ? QApplication::focusWidget() : &window;
        test::pressKey(at, key, Qt::AltModifier);
        QTest::qWait(30);
    }
};

// The letters the shown, enabled controls of a screen underline.
std::set<int> underlinedLetters(const QWidget* screen) {
    std::set<int> letters;
    for (int key = Qt::Key_0; key <= Qt::Key_Z; ++key)
        if (childMnemonicTarget(screen, key)) letters.insert(key);
    return letters;
}

// Whether Alt+key, pressed where the focus is, is kept from the main menu's shortcuts.
bool keptFromTheMenu(int key) {
    QWidget* at = QApplication::focusWidget();
    QKeyEvent override(QEvent::ShortcutOverride, key, Qt::AltModifier);
    override.setAccepted(false);
    QApplication::sendEvent(at, &override);
    return override.isAccepted();
}

// The main window with every screen of the program registered and a supplier in place, so
// that no screen asks for the registration on opening.
struct ProgramDesk {
    test::TestHome home;
    Nubella window;
    ProgramDesk() {
        clearScreenRegistry();
        registerMasterScreens();
        registerInvoiceScreens();
        registerStatementScreens();
        registerQuotationScreens();
        registerManagementScreens();
        registerLinkScreens();
        window.refreshMenuState();
        if (!window.load(false) ||
            !test::exec(stores().dbBasic,
                        QStringLiteral("INSERT INTO User (Company, Delegate, Serial, Post, Addr) "
                                       "VALUES ('가나상사', '김가나', '1234567891', '', '')")))
            qFatal("the program's stores did not open");
        test::showActive(&window);
    }
    ~ProgramDesk() { clearScreenRegistry(); }
    QWidget* open(const QString& control) {
        window.menuAction(control)->trigger();
        QTest::qWait(50);
        return window.childScreen(control);
    }
};

} // namespace

class TestChildMnemonics : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void altXClosesTheScreenNotTheProgram() {
        Desk d;
        QSignalSpy exits(d.window.menuAction(QStringLiteral("mnuExit")), &QAction::triggered);
        d.open(QStringLiteral("mnu_InvoiceTotal"));
        QVERIFY(d.totals);
        d.totals->other->setFocus();
        d.alt(Qt::Key_X);
        QCOMPARE(exits.count(), 0);
        QVERIFY(d.window.isVisible());
        QTRY_VERIFY(!d.totals || !d.totals->isVisible());
    }
    void altSSearchesInsteadOfTheMenusHelp() {
        Desk d;
        QSignalSpy signInfo(d.window.menuAction(QStringLiteral("mnuSignInfo")), &QAction::triggered);
        d.openTotals();
        d.alt(Qt::Key_S);
        QCOMPARE(d.totals->searched, 1);
        QCOMPARE(signInfo.count(), 0);
    }
    void altPPrintsInsteadOfDroppingTheOutputMenu() {
        Desk d;
        d.openTotals();
        d.alt(Qt::Key_P);
        QCOMPARE(d.totals->printed, 1);
        QVERIFY(!QApplication::activePopupWidget());
    }
    void altHExportsInsteadOfAskingAboutTheHomePage() {
        Desk d;
        QSignalSpy home(d.window.menuAction(QStringLiteral("mnuHome")), &QAction::triggered);
        d.openTotals();
        d.alt(Qt::Key_H);
        QCOMPARE(d.totals->exported, 1);
        QCOMPARE(home.count(), 0);
    }
    void aLabelsLetterMovesTheFocusToItsBoxAndACheckBoxsLetterTicksIt() {
        Desk d;
        d.openTotals();
        d.alt(Qt::Key_N);
        QCOMPARE(QApplication::focusWidget(), d.totals->name);
        d.alt(Qt::Key_A);
        QVERIFY(d.totals->all->isChecked());
    }
    void aLetterNoChildControlHoldsOpensTheMainMenu() {
        Desk d;
        d.openTotals();
        QVERIFY(!childMnemonicTarget(d.totals, Qt::Key_F));
        d.alt(Qt::Key_F);
        QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
        QCOMPARE(QApplication::activePopupWidget()->objectName(), QStringLiteral("mnu_insert"));
        QApplication::activePopupWidget()->close();
    }
    void altAloneOpensTheMenuBarEvenWhenTheScreenHoldsItsLetters() {
        Desk d;
        d.openTotals();
        QTest::keyPress(d.totals->other, Qt::Key_Alt, Qt::AltModifier);
        QTest::keyRelease(d.totals->other, Qt::Key_Alt);
        QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
        QCOMPARE(QApplication::activePopupWidget()->objectName(), QStringLiteral("mnu_insert"));
        QApplication::activePopupWidget()->close();
        QCOMPARE(d.totals->printed + d.totals->searched, 0);
    }
    void altWithALetterBetweenOpensNoMenu() {
        Desk d;
        d.openTotals();
        QTest::keyPress(d.totals->other, Qt::Key_Alt, Qt::AltModifier);
        QTest::keyClick(d.totals->other, Qt::Key_P, Qt::AltModifier);
        QTest::keyRelease(d.totals->other, Qt::Key_Alt);
        QTest::qWait(50);
        QCOMPARE(d.totals->printed, 1);
        QVERIFY(!QApplication::activePopupWidget());
    }
    void onlyTheActiveChildsLettersCount() {
        Desk d;
        d.open(QStringLiteral("mnu_InvoiceTotal"));
        d.open(QStringLiteral("mnu_SMS")); // now in front; it holds no S, P or H
        QVERIFY(d.window.mdiArea()->activeSubWindow()->widget() != d.totals);
        d.alt(Qt::Key_P);
        QCOMPARE(d.totals->printed, 0);
        QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
        QApplication::activePopupWidget()->close();
    }
    void hiddenAndDisabledControlsHoldNoLetter() {
        TotalsLikeScreen screen;
        screen.show();
        QCOMPARE(childMnemonicTarget(&screen, Qt::Key_P), screen.print);
        screen.print->setEnabled(false);
        QVERIFY(!childMnemonicTarget(&screen, Qt::Key_P));
        screen.search->hide();
        QVERIFY(!childMnemonicTarget(&screen, Qt::Key_S));
        QVERIFY(!childMnemonicTarget(&screen, Qt::Key_Q));
    }
    void everyChildScreensLettersAreItsOwn() {
        test::script();
        ProgramDesk d;
        const QStringList screens{QStringLiteral("mnu_거래명세표"), QStringLiteral("mnu_InvoiceForm"),
                                  QStringLiteral("mnu_InvoiceTotal"), QStringLiteral("mnu_Estimate"),
                                  QStringLiteral("mnu_SMS")};
        for (const QString& control : screens) {
            QWidget* screen = d.open(control);
            QVERIFY2(screen, qPrintable(control));
            QCOMPARE(d.window.mdiArea()->activeSubWindow()->widget(), screen);
            const std::set<int> letters = underlinedLetters(screen);
            QVERIFY2(!letters.empty(), qPrintable(control));
            for (int key : letters)
                QVERIFY2(keptFromTheMenu(key), qPrintable(control + u' ' + QChar(key)));
        }
    }
    void altXOnTheTotalsScreenClosesItAndTheProgramStays() {
        test::script();
        ProgramDesk d;
        QSignalSpy exits(d.window.menuAction(QStringLiteral("mnuExit")), &QAction::triggered);
        QPointer<QWidget> totals = d.open(QStringLiteral("mnu_InvoiceTotal"));
        QVERIFY(totals);
        test::pressKey(QApplication::focusWidget() ? QApplication::focusWidget() : totals.data(), Qt::Key_X,
                       Qt::AltModifier);
        QTRY_VERIFY(!totals || !totals->isVisible());
        QCOMPARE(exits.count(), 0);
        QVERIFY(d.window.isVisible());
    }
};

NB_TEST_MAIN(TestChildMnemonics)
#include "tst_child_mnemonics.moc"
