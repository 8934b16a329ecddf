// Work on a store beside the window: the calling thread's events go on while it runs, a read
// hands every row in order, and a failure shows the query helpers' box on the calling thread.
#include "StoreTestKit.h"
#include "common/Messages.h"
#include "storage/StoreAside.h"

#include <QSemaphore>
#include <QSqlQuery>
#include <QThread>
#include <QTimer>

using namespace nb;

namespace {

QString storeWithNames(const test::TestHome& home, int count) {
    const QString path = home.file(QStringLiteral("names.db"));
    QStringList statements{QStringLiteral("CREATE TABLE Names (Seq INTEGER, Name TEXT)")};
    for (int i = 1; i <= count; ++i)
        statements << QStringLiteral("INSERT INTO Names VALUES (%1, '이름%1')").arg(i);
    if (!test::runRaw(path, statements)) return QString();
    return path;
}

} // namespace

class TestStoreAside : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theWindowsTimersRunWhileTheWorkWaitsForThem() {
        // The work can only finish when a timer of the calling thread has fired: a wait that
        // held the calling thread would leave the work to give up after five seconds.
        QSemaphore released;
        QTimer::singleShot(20, [&released] { released.release(); });
        bool timerRanMeanwhile = false;
        QThread* workThread = nullptr;
        runAside([&] {
            workThread = QThread::currentThread();
            timerRanMeanwhile = released.tryAcquire(1, 5000);
        });
        QVERIFY(timerRanMeanwhile);
        QVERIFY(workThread != QThread::currentThread());
    }

    void aReadAsideHandsEveryRowInOrder() {
        test::TestHome home;
        test::script();
        const QString path = storeWithNames(home, 500);
        QVERIFY(!path.isEmpty());
        QStringList names;
        const bool ok = readAside(
            {path, {}, {}, QStringLiteral("SELECT Name FROM Names WHERE Seq > ? ORDER BY Seq"), {490}},
            [&names](const QSqlQuery& row) { names << row.value(0).toString(); });
        QVERIFY(ok);
        QCOMPARE(names.size(), 10);
        QCOMPARE(names.first(), QStringLiteral("이름491"));
        QCOMPARE(names.last(), QStringLiteral("이름500"));
    }

    void aStatementTheEngineRefusesShowsTheQueryBoxOnce() {
        test::TestHome home;
        auto& msgs = test::script();
        const QString path = storeWithNames(home, 1);
        int rows = 0;
        QVERIFY(!readAside({path, {}, {}, QStringLiteral("SELECT Name FROM NoSuchTable WHERE Seq = ?"), {7}},
                           [&rows](const QSqlQuery&) { ++rows; }));
        QCOMPARE(rows, 0);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.startsWith(QStringLiteral("Jet Data Base Engine의 식을 확인하세요.")));
        QVERIFY(msgs.last().text.contains(QStringLiteral("WHERE Seq = 7")));
    }

    void aFileToAttachThatIsMissingIsNamed() {
        test::TestHome home;
        auto& msgs = test::script();
        const QString path = storeWithNames(home, 1);
        const QString missing = home.file(QStringLiteral("없는파일.db"));
        QVERIFY(!readAside({path, missing, QStringLiteral("other"), QStringLiteral("SELECT 1"), {}},
                           [](const QSqlQuery&) {}));
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.contains(missing));
    }
};

NB_TEST_MAIN(TestStoreAside)
#include "tst_store_aside.moc"
