// The main window: menus and panels as the operator sees them, child screens that stay
// loaded, the home page question, the convert box, the about screen and the two exits.
#include "TestSupport.h"
#include "common/External.h"
#include "common/UiSetup.h"
#include "common/text/frmsosu.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/ScreenRegistry.h"
#include "core/Settings.h"
#include "shell/FrmLogin.h"
#include "shell/Nubella.h"
#include "shell/Program.h"
#include "shell/frmAbout.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>
#include <sys/wait.h>
#include <unistd.h>

using namespace nb;

namespace {

QStringList captionsOf(const QList<QAction*>& actions) {
    QStringList out;
    for (QAction* a : actions)
        out << (a->isSeparator() ? QStringLiteral("-") : a->text());
    return out;
}

QMenu* barMenu(Nubella& w, const QString& name) {
    return w.menuBar()->findChild<QMenu*>(name);
}

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { clearScreenRegistry(); }

    void menuBarEntriesInTheirOrder() {
        Nubella w;
        QCOMPARE(captionsOf(w.menuBar()->actions()),
                 (QStringList{"기초등록(&F)  ", "출력(&P)  ", "문자/팩스전송(T)  ", "스케줄 관리(C)  ",
                              "프로그램정보(&I)  ", "홈페이지(&H)  ", "용지주문(&O)  ", "도장인쇄안내(&S)  ",
                              "브란토전환  ", "종료(&X)"}));
    }
    void registrationMenuItemsWithSeparators() {
        Nubella w;
        QCOMPARE(captionsOf(barMenu(w, "mnu_insert")->actions()),
                 (QStringList{"사용자등록(&S)", "거래처등록(&T)", "상품   등록(&M)",
                              "우편번호 가져오기(&Z)...", "옛 자료 가져오기(&I)...", "-", "소수점설정(&U)",
                              "프린터설정(&P)", "데이터 서버 설정(&V)...", "데이터 서버로 옮기기(&O)...",
                              "백업(&B)...", "복원(&R)...", "-", "종료(&X)"}));
    }
    void outputMenuItems() {
        Nubella w;
        QCOMPARE(
            captionsOf(barMenu(w, "mnu_출력")->actions()),
            (QStringList{"거래명세표(&M)", "세금계산서(&F)", "세금계산서 합계표(&S)", "견   적   서(&E)"}));
    }
    void entriesWithoutAScreenAreDisabled() {
        Nubella w;
        QVERIFY(!w.menuAction("mnu_InvoiceForm")->isEnabled());
        QVERIFY(!w.menuAction("mnu_SMS")->isEnabled());
        QVERIFY(w.menuAction("mnuProInfo")->isEnabled());
        QVERIFY(w.menuAction("mnuHome")->isEnabled());
        QVERIFY(w.menuAction("mnuConvert")->isEnabled());
        QVERIFY(w.menuAction("mnu_end")->isEnabled());
        QVERIFY(w.menuAction("mnuExit")->isEnabled());
        registerChildScreen("mnu_InvoiceForm", [] { return new QWidget; });
        w.refreshMenuState();
        QVERIFY(w.menuAction("mnu_InvoiceForm")->isEnabled());
    }
    void aScreenOpensAHigherScreenThroughTheMainWindowOnly() {
        QVERIFY(openScreen("mnu_거래명세표") == nullptr); // no main window: nothing opens
        registerChildScreen("mnu_거래명세표", [] { return new QWidget; });
        {
            Nubella w;
            QWidget* opened = openScreen("mnu_거래명세표");
            QVERIFY(opened != nullptr);
            QCOMPARE(opened, w.childScreen("mnu_거래명세표"));
            QCOMPARE(openScreen("mnu_거래명세표"), opened); // the one open screen, never a second
        }
        QVERIFY(openScreen("mnu_거래명세표") == nullptr); // the main window is gone
    }
    void statusPanelsHoldDateFixedTextAndNothing() {
        test::TestHome home;
        test::script();
        setClock([] { return QDateTime(QDate(2004, 1, 1), QTime(10, 0)); });
        Nubella w;
        QVERIFY(w.load(false));
        QCOMPARE(w.panel(0)->text(), QStringLiteral("2004/01/01 목요일"));
        QCOMPARE(w.panel(2)->text(),
                 QStringLiteral("IT기술의 강자! 업무전산화의 모든것.   S/W개발.용지문의: 1500-0000"));
        QCOMPARE(w.panel(1)->text(), QString());
        QCOMPARE(w.windowTitle(),
                 QStringLiteral("하르문 거래명세표 & 세금계산서발행 Ver.1.0.0 - ") + kMakerAddress);
        w.show();
        test::saveScreenshot(&w, "main_window");
    }
    void loadStopsAtADecimalSettingThatIsNoNumber() {
        test::TestHome home;
        auto& msgs = test::script();
        SaveEnv("chk소수점1", "두자리");
        Nubella w;
        QVERIFY(!w.load(false));
        QCOMPARE(msgs.last().text, QStringLiteral("실행 시간 오류 '13':\r\n\r\n형식이 일치하지 않습니다."));
        QVERIFY(!QFileInfo::exists(home.file("Dbs/dbBasic.db"))); // nothing after the decimals ran
    }
    void plainBackgroundWithoutAPictureAndTheUsersPictureWhenThere() {
        test::TestHome home;
        test::script();
        {
            Nubella w;
            QVERIFY(w.load(false));
            QCOMPARE(w.mdiArea()->background().color(), QColor(5, 126, 128));
            QCOMPARE(w.mdiArea()->background().style(), Qt::SolidPattern);
        }
        QDir().mkpath(home.file("Image"));
        QImage picture(40, 30, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(home.file("Image/mainbg.jpg")));
        Nubella w;
        QVERIFY(w.load(false));
        QCOMPARE(w.mdiArea()->background().style(), Qt::TexturePattern);
    }
    void splashShowsTheUsersLoginPicture() {
        test::TestHome home;
        QDir().mkpath(home.file("Image"));
        QImage picture(420, 240, QImage::Format_RGB32);
        picture.fill(QColor(0, 0, 255));
        QVERIFY(picture.save(home.file("Image/loginbg.jpg")));
        FrmLogin splash;
        splash.show();
        const QImage shown = splash.grab().toImage();
        const QColor middle = shown.pixelColor(shown.width() / 2, shown.height() / 2);
        QVERIFY2(middle.blue() > 200 && middle.red() < 60, qPrintable(middle.name()));
    }
    void datePanelKeepsTheOldDateAfterMidnight() {
        test::TestHome home;
        test::script();
        setClock([] { return QDateTime(QDate(2026, 11, 20), QTime(23, 59, 59)); });
        Nubella w;
        QVERIFY(w.load(false));
        w.show();
        setClock([] { return QDateTime(QDate(2026, 11, 21), QTime(0, 0, 1)); });
        QTest::qWait(1200);
        QCOMPARE(w.panel(0)->text(), QStringLiteral("2026/11/20 금요일"));
    }
    void choosingTheInvoiceEntryTwiceShowsTheSameWindow() {
        int created = 0;
        registerChildScreen("mnu_InvoiceForm", [&created] {
            ++created;
            return new QWidget;
        });
        Nubella w;
        w.show();
        w.menuAction("mnu_InvoiceForm")->trigger();
        QWidget* first = w.childScreen("mnu_InvoiceForm");
        first->parentWidget()->close(); // closing a child only hides it
        w.menuAction("mnu_InvoiceForm")->trigger();
        QCOMPARE(created, 1);
        QCOMPARE(w.childScreen("mnu_InvoiceForm"), first);
        QCOMPARE(w.mdiArea()->subWindowList().size(), 1);
        QVERIFY(first->isVisible());
    }
    void menuStaysUsableWhileANonModalChildIsOpen() {
        int opened = 0;
        registerChildScreen("mnu_InvoiceForm", [] { return new QWidget; });
        registerMenuAction("mnu_SMS", [&opened](QWidget*) { ++opened; });
        Nubella w;
        w.show();
        w.menuAction("mnu_InvoiceForm")->trigger();
        QVERIFY(QApplication::activeModalWidget() == nullptr);
        w.menuAction("mnu_SMS")->trigger();
        QCOMPARE(opened, 1);
    }
    void modalScreensBlockTheMenu() {
        bool blocked = false;
        registerMenuAction("mnu_user", [&blocked](QWidget* owner) {
            QDialog dialog(owner);
            QTimer::singleShot(50, [&] {
                blocked = QApplication::activeModalWidget() == &dialog;
                dialog.accept();
            });
            dialog.exec();
        });
        Nubella w;
        w.show();
        w.menuAction("mnu_user")->trigger();
        QVERIFY(blocked);
    }
    void homePageNoDoesNothing() {
        auto& msgs = test::script();
        auto& launches = recordLaunches();
        Nubella w;
        msgs.answer(AnsNo);
        w.menuAction("mnuHome")->trigger();
        QCOMPARE(msgs.last().text, QStringLiteral("고객지원센터 홈페이지로 이동하시겠습니까?"));
        QCOMPARE(msgs.last().buttons, 36);
        QVERIFY(launches.calls.empty());
    }
    void homePageYesOpensTheSite() {
        auto& msgs = test::script();
        auto& launches = recordLaunches();
        Nubella w;
        msgs.answer(AnsYes);
        w.menuAction("mnuHome")->trigger();
        QCOMPARE(int(launches.calls.size()), 1);
        QCOMPARE(launches.calls[0].target, kMakerAddress);
        QVERIFY(launches.calls[0].isUrl);
    }
    void convertEntryOnlyInforms() {
        auto& msgs = test::script();
        Nubella w;
        w.menuAction("mnuConvert")->trigger();
        QCOMPARE(msgs.last().buttons, 64);
        QCOMPARE(msgs.last().title, QStringLiteral("누벨라"));
        QCOMPARE(
            msgs.last().text,
            QStringLiteral("자동으로 미수, 재고가 관리되는 브란토 제품으로 전환시      \r\n\r\n"
                           "누벨라에 등록된 기초자료를 그대로 옮겨드립니다.\r\n\r\n"
                           "지금 홈페이지를 방문하시면 바로 시험판을 받아 사용해 볼 수 있습니다.\r\n\r\n") +
                kMakerAddress + QStringLiteral("\r\n\r\n문의: 1500-0000"));
    }
    void aboutShowsTitleVersionAndAddress() {
        Nubella w;
        w.show();
        w.menuAction("mnuProInfo")->trigger();
        auto* about = w.findChild<frmAbout*>();
        QVERIFY(about);
        QVERIFY(about->isVisible());
        QCOMPARE(about->windowTitle(), QStringLiteral("누벨라 정보"));
        QCOMPARE(about->btnURL->text(), kMakerAddress);
        QCOMPARE(about->cmdOK->text(), QStringLiteral("확인"));
        QCOMPARE(about->cmdSysInfo->text(), QStringLiteral("시스템 정보(&S)..."));
        bool hasVersion = false;
        for (auto* label : about->findChildren<QLabel*>())
            hasVersion = hasVersion || label->text() == QStringLiteral("버전 : 공 개 용");
        QVERIFY(hasVersion);
        QVERIFY(QApplication::activeModalWidget() == nullptr); // non-modal
        QTest::qWait(50);
        test::saveScreenshot(about, "about");
    }
    void aboutUrlButtonOpensItsCaption() {
        auto& launches = recordLaunches();
        frmAbout about;
        QTest::mouseClick(about.btnURL, Qt::LeftButton);
        QCOMPARE(launches.calls.at(0).target, kMakerAddress);
    }
    void aboutClosesOnEscapeAndOk() {
        frmAbout about;
        about.show();
        QTest::keyClick(&about, Qt::Key_Escape);
        QVERIFY(!about.isVisible());
        about.show();
        QTest::mouseClick(about.cmdOK, Qt::LeftButton);
        QVERIFY(!about.isVisible());
    }
    void systemInformationUnavailableSaysSo() {
        auto& msgs = test::script();
        auto& launches = recordLaunches();
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", "/nonexistent");
        frmAbout about;
        QTest::mouseClick(about.cmdSysInfo, Qt::LeftButton);
        qputenv("PATH", path);
        QCOMPARE(msgs.last().text, QStringLiteral("지금은 시스템 정보를 사용할 수 없습니다."));
        QCOMPARE(msgs.last().buttons, 0);
        QVERIFY(launches.calls.empty());
    }
    void splashClosesByItselfAfterTwoSeconds() {
        FrmLogin splash;
        QCOMPARE(splash.windowTitle(), QStringLiteral("사용자 로그인"));
        QCOMPARE(splash.Timer1->interval(), 2000);
        splash.show();
        QTest::qWait(50);
        test::saveScreenshot(&splash, "splash");
        QTRY_VERIFY_WITH_TIMEOUT(!splash.isVisible(), 4000);
        QVERIFY(!splash.Timer1->isActive());
    }
    void decimalSettingsEntryOpensTheNonModalScreen() {
        registerShellScreens();
        Nubella w;
        w.refreshMenuState();
        w.show();
        QVERIFY(w.menuAction("mnu_sosu")->isEnabled());
        w.menuAction("mnu_sosu")->trigger();
        auto* screen = w.findChild<frmsosu*>();
        QVERIFY(screen);
        QVERIFY(screen->isVisible());
        QVERIFY(QApplication::activeModalWidget() == nullptr);
        screen->close();
    }
    void decimalSettingsChosenTwiceBringsTheOneOpenFormForward() {
        registerShellScreens();
        Nubella w;
        w.refreshMenuState();
        test::showActive(&w);
        w.menuAction("mnu_sosu")->trigger();
        frmsosu* first = w.findChild<frmsosu*>();
        QVERIFY(first);
        w.activateWindow();
        w.menuAction("mnu_sosu")->trigger();
        QCOMPARE(w.findChildren<frmsosu*>().size(), 1);
        QVERIFY(first->isVisible());
        first->close();
    }
    void theLoadRunsBeforeTheWindowShows() {
        test::TestHome home;
        // A box during the load records whether the main window was already on the screen.
        struct Watching : ScriptedMessages {
            QWidget* window = nullptr;
            bool shownAtABox = false;
            int box(const QString& text, int buttons, const QString& title) override {
                shownAtABox = shownAtABox || window->isVisible();
                return ScriptedMessages::box(text, buttons, title);
            }
        };
        auto watching = std::make_unique<Watching>();
        Watching* seen = watching.get();
        setMessageBackend(std::move(watching));
        SaveEnv("chk소수점1", "두자리");
        Nubella w;
        seen->window = &w;
        QVERIFY(!loadAndShow(w, false));
        QCOMPARE(seen->boxes().size(), size_t(1));
        QVERIFY(!seen->shownAtABox);
        QVERIFY(!w.isVisible()); // a stopped load never shows the window
        SaveEnv("chk소수점1", "0");
        Nubella second;
        QVERIFY(loadAndShow(second, false));
        QVERIFY(second.isVisible());
        QCOMPARE(second.windowTitle(),
                 QStringLiteral("하르문 거래명세표 & 세금계산서발행 Ver.1.0.0 - ") + kMakerAddress);
    }
    void everyWindowShowsTheProgramsOwnIcon() {
        test::TestHome home;
        test::script();
        registerChildScreen("mnu_InvoiceForm", [] {
            auto* w = new QWidget;
            w->setWindowTitle(QStringLiteral("세금계산서 발행"));
            w->resize(420, 260);
            return w;
        });
        registerChildScreen("mnu_Estimate", [] {
            auto* w = new QWidget;
            w->setWindowTitle(QStringLiteral("상품 견적서관리"));
            w->resize(420, 260);
            return w;
        });
        Nubella w;
        w.refreshMenuState();
        QVERIFY(w.load(false));
        test::showActive(&w);
        w.openEntry("mnu_InvoiceForm");
        w.openEntry("mnu_Estimate");
        const QImage own = programIcon().pixmap(32).toImage();
        QVERIFY(!own.isNull());
        QCOMPARE(w.windowIcon().pixmap(32).toImage(), own);
        const QList<QMdiSubWindow*> children = w.mdiArea()->subWindowList();
        QCOMPARE(children.size(), 2);
        for (QMdiSubWindow* child : children)
            QCOMPARE(child->windowIcon().pixmap(32).toImage(), own);
        children.first()->setGeometry(10, 10, 440, 280);
        children.last()->setGeometry(240, 160, 440, 280);
        test::saveScreenshot(&w, "main_window_icons");
    }
    void bothExitEntriesEndTheProcessAtOnce() {
        for (const char* entry : {"mnu_end", "mnuExit"}) {
            Nubella w;
            const pid_t child = fork();
            if (child == 0) {
                w.menuAction(QString::fromLatin1(entry))->trigger();
                _exit(3); // reached only if the entry did not end the process
            }
            int status = 0;
            waitpid(child, &status, 0);
            QVERIFY(WIFEXITED(status));
            QCOMPARE(WEXITSTATUS(status), 0);
        }
    }
};

NB_TEST_MAIN(TestMainWindow)
#include "tst_main_window.moc"
