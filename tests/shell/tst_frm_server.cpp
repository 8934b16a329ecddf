// The seat's server settings screen by keys, with every box scripted: it shows the settings,
// keeps what is typed for the next start, refuses what cannot be kept with nothing changed,
// says in Korean why a server cannot be reached, and sits in the menu beside the other
// settings. The checks against a running server are in frm_server_on_server.cpp.
#include "TestSupport.h"
#include "core/AppFolder.h"
#include "core/ScreenRegistry.h"
#include "core/Settings.h"
#include "shell/FrmServer.h"
#include "shell/Nubella.h"
#include "shell/Program.h"
#include "storage/ServerSettings.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTcpServer>
#include <QTemporaryDir>

using namespace nb;

namespace {

void retype(QLineEdit* box, const QString& text) {
    box->setFocus();
    box->selectAll();
    test::pressKey(box, Qt::Key_Delete);
    test::typeText(box, text);
}

// A button's Alt letter clicks it a moment later, as the button shows itself pressed first.
void pressLetter(QWidget* widget, Qt::Key letter) {
    test::pressKey(widget, letter, Qt::AltModifier);
    QTest::qWait(250);
}

QString settingsText() {
    QFile file(appFolderFile(QStringLiteral("settings.ini")));
    if (!file.open(QIODevice::ReadOnly)) return QString();
    return QString::fromUtf8(file.readAll());
}

ServerSettings someServer() {
    ServerSettings server;
    server.use = true;
    server.host = QStringLiteral("db.shop.lan");
    server.port = 6543;
    server.database = QStringLiteral("장부");
    server.user = QStringLiteral("counter");
    return server;
}

bool sameSettings(const ServerSettings& a, const ServerSettings& b) {
    return a.use == b.use && a.host == b.host && a.port == b.port && a.database == b.database &&
           a.user == b.user;
}

} // namespace

class TestFrmServer : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { clearScreenRegistry(); }

    void theScreenShowsTheSeatsSettings() {
        test::TestHome home;
        QVERIFY(writeServerSettings(someServer()));
        auto* form = new FrmServer;
        test::showActive(form);
        QCOMPARE(form->windowTitle(), QStringLiteral("데이터 서버 설정"));
        QVERIFY(form->chkUse()->isChecked());
        QCOMPARE(form->txtHost()->text(), QStringLiteral("db.shop.lan"));
        QCOMPARE(form->txtPort()->text(), QStringLiteral("6543"));
        QCOMPARE(form->txtDatabase()->text(), QStringLiteral("장부"));
        QCOMPARE(form->txtUser()->text(), QStringLiteral("counter"));
        const QString note = form->findChild<QLabel*>(QStringLiteral("lblPassword"))->text();
        QVERIFY(note.contains(QStringLiteral("~/.pgpass")));
        QVERIFY(note.contains(QStringLiteral("PGPASSFILE")));
        QCOMPARE(form->btnCheck()->text(), QStringLiteral("연결 확인(&T)"));
        test::saveScreenshot(form, "frm_server");
        form->close();
    }

    void savingTypedSettingsKeepsThemForTheNextStart() {
        test::TestHome home;
        ScriptedMessages& said = test::script();
        QPointer<FrmServer> form = new FrmServer;
        test::showActive(form);
        QVERIFY(!form->chkUse()->isChecked());
        form->chkUse()->setFocus();
        test::pressKey(form->chkUse(), Qt::Key_Space);
        QVERIFY(form->chkUse()->isChecked());
        retype(form->txtHost(), QStringLiteral("10.0.0.5"));
        retype(form->txtPort(), QStringLiteral("5433"));
        retype(form->txtDatabase(), QStringLiteral("가게장부"));
        retype(form->txtUser(), QStringLiteral("office"));
        pressLetter(form->txtUser(), Qt::Key_S);
        QTRY_VERIFY(form.isNull()); // closed and gone
        const ServerSettings saved = readServerSettings();
        QVERIFY(saved.use);
        QCOMPARE(saved.host, QStringLiteral("10.0.0.5"));
        QCOMPARE(saved.port, 5433);
        QCOMPARE(saved.database, QStringLiteral("가게장부"));
        QCOMPARE(saved.user, QStringLiteral("office"));
        QCOMPARE(int(said.boxes().size()), 1);
        QVERIFY(said.boxes().front().text.contains(QStringLiteral("다음에 프로그램을 시작할 때부터")));
        QVERIFY(said.boxes().front().text.contains(QStringLiteral("가게장부")));
        // The password is never among the settings.
        QVERIFY(!settingsText().contains(QStringLiteral("password"), Qt::CaseInsensitive));
        QVERIFY(!settingsText().contains(QStringLiteral("비밀번호")));
    }

    void turningTheServerOffIsSavedAsTheFilesAgain() {
        test::TestHome home;
        QVERIFY(writeServerSettings(someServer()));
        ScriptedMessages& said = test::script();
        QPointer<FrmServer> form = new FrmServer;
        test::showActive(form);
        form->chkUse()->setFocus();
        test::pressKey(form->chkUse(), Qt::Key_Space);
        pressLetter(form->chkUse(), Qt::Key_S);
        QTRY_VERIFY(form.isNull());
        ServerSettings expected = someServer();
        expected.use = false;
        QVERIFY(sameSettings(readServerSettings(), expected));
        QVERIFY(!onServer());
        QVERIFY(said.boxes().front().text.contains(QStringLiteral("이 컴퓨터의 자료 파일")));
    }

    void aPortThatIsNotANumberIsRefusedAndNothingChanges() {
        test::TestHome home;
        QVERIFY(writeServerSettings(someServer()));
        const QString before = settingsText();
        ScriptedMessages& said = test::script();
        auto* form = new FrmServer;
        test::showActive(form);
        for (const QString& port : {QStringLiteral("54x2"), QStringLiteral("70000"), QStringLiteral("0")}) {
            retype(form->txtPort(), port);
            pressLetter(form->txtPort(), Qt::Key_S);
            QVERIFY(form->isVisible());
            QVERIFY2(said.last().text.startsWith(QStringLiteral("포트는 1부터 65535까지의 숫자로")),
                     qPrintable(said.last().text + u'/' + form->txtPort()->text()));
            QCOMPARE(settingsText(), before);
        }
        QCOMPARE(int(said.boxes().size()), 3);
        form->close();
    }

    void usingTheServerWithoutADatabaseIsRefused() {
        test::TestHome home;
        ScriptedMessages& said = test::script();
        auto* form = new FrmServer;
        test::showActive(form);
        form->chkUse()->setFocus();
        test::pressKey(form->chkUse(), Qt::Key_Space);
        retype(form->txtHost(), QStringLiteral("db.shop.lan"));
        pressLetter(form->txtHost(), Qt::Key_S);
        QVERIFY(form->isVisible());
        QCOMPARE(int(said.boxes().size()), 1);
        QVERIFY(said.last().text.contains(QStringLiteral("데이터베이스의 이름을 입력하십시오")));
        QVERIFY(!readServerSettings().use);
        QVERIFY(!settingsText().contains(kServerSection));
        form->close();
    }

    void cancelLeavesTheSettingsAsTheyWere() {
        test::TestHome home;
        QVERIFY(writeServerSettings(someServer()));
        const QString before = settingsText();
        ScriptedMessages& said = test::script();
        QPointer<FrmServer> form = new FrmServer;
        test::showActive(form);
        retype(form->txtDatabase(), QStringLiteral("다른장부"));
        pressLetter(form->txtDatabase(), Qt::Key_C);
        QTRY_VERIFY(form.isNull());
        QCOMPARE(settingsText(), before);
        QVERIFY(said.boxes().empty());
        form = new FrmServer;
        test::showActive(form);
        retype(form->txtDatabase(), QStringLiteral("또다른장부"));
        test::pressKey(form->txtDatabase(), Qt::Key_Escape);
        QTRY_VERIFY(form.isNull());
        QCOMPARE(settingsText(), before);
    }

    void checkingWithoutADatabaseNameAsksForIt() {
        test::TestHome home;
        ScriptedMessages& said = test::script();
        auto* form = new FrmServer;
        test::showActive(form);
        retype(form->txtDatabase(), QString());
        pressLetter(form->txtDatabase(), Qt::Key_T);
        QCOMPARE(int(said.boxes().size()), 1);
        QCOMPARE(said.last().text, QStringLiteral("연결할 데이터베이스의 이름을 입력하십시오."));
        form->close();
    }

    void aServerNotListeningOnItsSocketIsSaidInKorean() {
        test::TestHome home;
        QTemporaryDir nothingHere;
        ScriptedMessages& said = test::script();
        auto* form = new FrmServer;
        test::showActive(form);
        retype(form->txtHost(), nothingHere.path());
        retype(form->txtPort(), QStringLiteral("5999"));
        retype(form->txtDatabase(), QStringLiteral("장부"));
        pressLetter(form->txtDatabase(), Qt::Key_T);
        QCOMPARE(int(said.boxes().size()), 1);
        const QString text = said.last().text;
        QVERIFY2(text.startsWith(QStringLiteral("데이터 서버에 연결하지 못했습니다.\r\n") +
                                 nothingHere.path() +
                                 QStringLiteral("의 포트 5999에서 응답하는 서버가 없습니다.")),
                 qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("서버의 답: ")));
        QVERIFY(!readServerSettings().use); // a check saves nothing
        QVERIFY(!settingsText().contains(kServerSection));
        form->close();
    }

    void aClosedPortOnAHostIsSaidUnreachable() {
        QTcpServer taken; // a port that was free a moment ago: closed again, nothing listens
        QVERIFY(taken.listen(QHostAddress::LocalHost));
        const quint16 port = taken.serverPort();
        taken.close();
        ServerSettings server;
        server.host = QStringLiteral("127.0.0.1");
        server.port = port;
        server.database = QStringLiteral("장부");
        const ServerCheck check = checkServer(server);
        QCOMPARE(check.failure, ServerFailure::Unreachable);
        QVERIFY(serverCheckText(server, check).contains(QStringLiteral("응답하는 서버가 없습니다")));
    }

    void theConnectorsWordsAreToldApart() {
        QCOMPARE(
            failureOfText(QStringLiteral("connection to server on socket \"/tmp/x/.s.PGSQL.5432\" "
                                         "failed: FATAL:  password authentication failed for user \"a\"")),
            ServerFailure::Refused);
        QCOMPARE(failureOfText(QStringLiteral("fe_sendauth: no password supplied")), ServerFailure::Refused);
        QCOMPARE(failureOfText(QStringLiteral("FATAL:  role \"clerk\" does not exist")),
                 ServerFailure::UserMissing);
        QCOMPARE(failureOfText(QStringLiteral("FATAL:  database \"장부\" does not exist")),
                 ServerFailure::DatabaseMissing);
        QCOMPARE(failureOfText(QStringLiteral("could not translate host name \"nowhere\" to address")),
                 ServerFailure::Unreachable);
        QCOMPARE(failureOfText(QStringLiteral("connection to server at \"10.0.0.9\", port 5432 failed: "
                                              "Connection refused\n\tIs the server running on that host?")),
                 ServerFailure::Unreachable);
        QCOMPARE(failureOfText(QStringLiteral("치명적오류: 사용자 \"a\"의 password 인증을 실패했습니다")),
                 ServerFailure::Refused);
        QCOMPARE(failureOfText(QStringLiteral("something else entirely")), ServerFailure::Other);
    }

    void everyFailureIsSaidInKoreanBeforeTheServersWords() {
        ServerSettings server = someServer();
        for (ServerFailure failure :
             {ServerFailure::Unreachable, ServerFailure::Refused, ServerFailure::UserMissing,
              ServerFailure::DatabaseMissing, ServerFailure::Other}) {
            ServerCheck check;
            check.failure = failure;
            check.engineText = QStringLiteral("FATAL:  some English words");
            const QString text = serverCheckText(server, check);
            QVERIFY(text.at(0).unicode() >= 0xAC00 && text.at(0).unicode() <= 0xD7A3); // Hangul first
            QVERIFY(text.endsWith(QStringLiteral("서버의 답: FATAL:  some English words")));
        }
        ServerCheck refused;
        refused.failure = ServerFailure::Refused;
        QVERIFY(serverCheckText(server, refused).contains(QStringLiteral("~/.pgpass")));
        ServerCheck missing;
        missing.failure = ServerFailure::DatabaseMissing;
        QVERIFY(
            serverCheckText(server, missing).contains(QStringLiteral("데이터베이스 장부이(가) 없습니다")));
    }

    void theMenuOffersTheScreenBesideTheOtherSettings() {
        test::TestHome home;
        registerShellScreens();
        Nubella w;
        w.refreshMenuState();
        test::showActive(&w);
        QMenu* insert = w.menuBar()->findChild<QMenu*>(QStringLiteral("mnu_insert"));
        const QList<QAction*> actions = insert->actions();
        const int printer = int(actions.indexOf(w.menuAction("mnu_printer")));
        QCOMPARE(actions.value(printer + 1), w.menuAction("mnu_server"));
        QVERIFY(w.menuAction("mnu_server")->isEnabled());
        w.menuAction("mnu_server")->trigger();
        FrmServer* first = w.findChild<FrmServer*>();
        QVERIFY(first);
        QVERIFY(first->isVisible());
        QVERIFY(QApplication::activeModalWidget() == nullptr);
        w.menuAction("mnu_server")->trigger();
        QCOMPARE(w.findChildren<FrmServer*>().size(), 1);
        first->close();
    }
};

NB_TEST_MAIN(TestFrmServer)
#include "tst_frm_server.moc"
