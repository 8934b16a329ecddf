// 기초등록 → 옛 자료 가져오기 in the window: the folder asked, a confirmation, the progress form
// naming each table with its rows, the stores open again on the imported books, the report of
// rows and sums; refused while a screen is open, and a cancelled choice changes nothing.
#include "TestSupport.h"
#include "common/FileChooser.h"
#include "common/Messages.h"
#include "core/AppState.h"
#include "shell/JetImportMenu.h"
#include "shell/Nubella.h"
#include "shell/Program.h"
#include "storage/Stores.h"
#include "storage/jet/JetImport.h"

#include <QDir>
#include <QFile>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSqlQuery>

using namespace nb;

namespace {

QString copyCurrentSet(const test::TestHome& home) {
    const QString from = test::sharedDataDir() + QStringLiteral("/legacy-jet/current");
    const QString to = home.file(QStringLiteral("old-books"));
    QDir().mkpath(to);
    for (const QString& name : QDir(from).entryList({QStringLiteral("*.mdb")}, QDir::Files))
        QFile::copy(from + u'/' + name, to + u'/' + name);
    return to;
}

qint64 traders() {
    QSqlQuery q(stores().dbBasic.connection());
    return q.exec(QStringLiteral("SELECT count(*) FROM Trader")) && q.next() ? q.value(0).toLongLong() : -1;
}

} // namespace

class TestJetImportMenu : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { setJetReaderProgram(QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella")); }

    void theEntryImportsShowsProgressAndReopensTheStores() {
        test::TestHome home;
        auto& msgs = test::script();
        registerShellScreens();
        Nubella w;
        QVERIFY(w.load(false));
        w.refreshMenuState();
        QCOMPARE(traders(), 0);
        auto& chooser = scriptFileChooser();
        chooser.answers << copyCurrentSet(home);
        msgs.answer(AnsYes); // the confirmation
        msgs.answer(AnsYes); // the unclear VAT of the old statements: included
        QVERIFY(w.menuAction("mnu_jetImport")->isEnabled());
        w.menuAction("mnu_jetImport")->trigger();
        QCOMPARE(chooser.kinds, QStringList{QStringLiteral("folder")});
        QVERIFY(stores().dbBasic.isOpen());
        QCOMPARE(traders(), 300);
        QStringList captions;
        for (const MessageRecord& r : msgs.records())
            if (r.kind == QStringLiteral("progress")) captions << r.text;
        QVERIFY2(captions.contains(QStringLiteral("옛 자료 가져오는 중: dbBill.mdb Detail (16410행)")),
                 qPrintable(captions.join(u'|')));
        QCOMPARE(msgs.last().title, kJetImportTitle);
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("옛 자료를 가져왔습니다.")));
        QVERIFY(msgs.last().text.contains(
            QStringLiteral("dbBasic.mdb Trader: 읽은 행 300, 쓴 행 300; VAT 합계 277 / 277")));
    }

    void aCancelledChoiceOrConfirmationChangesNothing() {
        test::TestHome home;
        auto& msgs = test::script();
        registerShellScreens();
        Nubella w;
        QVERIFY(w.load(false));
        auto& chooser = scriptFileChooser();
        chooser.answers << QString() << copyCurrentSet(home);
        w.menuAction("mnu_jetImport")->trigger(); // no folder chosen
        msgs.answer(AnsNo);
        w.menuAction("mnu_jetImport")->trigger(); // not confirmed
        QCOMPARE(traders(), 0);
        QVERIFY(QDir(home.path()).entryList({QStringLiteral("Dbs.*")}, QDir::Dirs).isEmpty());
    }

    void refusedWhileAScreenIsOpen() {
        test::TestHome home;
        auto& msgs = test::script();
        registerShellScreens();
        Nubella w;
        QVERIFY(w.load(false));
        w.mdiArea()->addSubWindow(new QWidget)->show();
        auto& chooser = scriptFileChooser();
        w.menuAction("mnu_jetImport")->trigger();
        QVERIFY(chooser.kinds.isEmpty());
        QCOMPARE(msgs.last().text, QStringLiteral("열려 있는 화면을 모두 닫은 뒤 옛 자료를 가져오십시오."));
    }

    void aDamagedFileIsNamedAndTheStoresStayOpen() {
        test::TestHome home;
        auto& msgs = test::script();
        registerShellScreens();
        Nubella w;
        QVERIFY(w.load(false));
        const QString folder = copyCurrentSet(home);
        QFile::setPermissions(folder + QStringLiteral("/dbTax.mdb"), QFile::ReadOwner | QFile::WriteOwner);
        QVERIFY(QFile::resize(folder + QStringLiteral("/dbTax.mdb"), 10000));
        scriptFileChooser().answers << folder;
        msgs.answer(AnsYes);
        w.menuAction("mnu_jetImport")->trigger();
        QVERIFY(msgs.last().text.contains(QStringLiteral("dbTax.mdb 파일을 읽지 못했습니다")));
        QVERIFY(stores().dbBasic.isOpen());
        QCOMPARE(traders(), 0);
    }
};

NB_TEST_MAIN(TestJetImportMenu)
#include "tst_jet_import_menu.moc"
