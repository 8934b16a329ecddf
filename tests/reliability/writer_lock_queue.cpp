// The writer lock of a store on the server passes to the waiting seats in turn. A seat whose
// save finds the lock taken stands in the server's queue until its turn comes, however many
// other seats keep saving meanwhile; it is not overtaken by seats that asked after it. The
// window's events go on while it waits, and a wait longer than the busy wait is still refused as
// busy, leaving nothing begun. Runs on the test run's PostgreSQL cluster only.
#include "ServerDatabase.h"
#include "StoreFixture.h"
#include "storage/StoreEngine.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>
#include <memory>
#include <vector>

using namespace nb;
using namespace nb::test;

namespace {

// Other seats saving into the statement store without a pause: each takes the store's writer
// lock, holds it for `holdMillis` (a save's work) and lets it go, over and over, until stopped.
class SavingSeats {
public:
    SavingSeats(const QString& connInfo, int seats, int holdMillis) {
        const QString one =
            QStringLiteral("BEGIN;\nSELECT pg_advisory_xact_lock(%1, hashtext('bill'));\nSELECT "
                           "pg_sleep(%2);\nCOMMIT;\n")
                .arg(kServerWriterLockClass)
                .arg(holdMillis / 1000.0);
        const QString script = one.repeated(2000);
        for (int i = 0; i < seats; ++i) {
            auto seat = std::make_unique<QProcess>();
            seat->start(QStringLiteral("psql"),
                        {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-o"),
                         QStringLiteral("/dev/null"), QStringLiteral("-d"), connInfo});
            seat->waitForStarted();
            seat->write(script.toUtf8());
            seat->waitForBytesWritten();
            seat->closeWriteChannel();
            m_seats.push_back(std::move(seat));
        }
    }
    ~SavingSeats() {
        for (auto& seat : m_seats) {
            seat->kill();
            seat->waitForFinished(5000);
        }
    }
    // What the seats said when they failed, for the test's message.
    QString said() const {
        QString out;
        for (const auto& seat : m_seats)
            out += QString::fromUtf8(seat->readAllStandardError());
        return out;
    }
    bool allRunning() const {
        for (const auto& seat : m_seats)
            if (seat->state() != QProcess::Running) return false;
        return true;
    }

private:
    std::vector<std::unique_ptr<QProcess>> m_seats;
};

// Requests for the statement store's writer lock standing in the server's queue.
int waitingForTheLock() {
    return scalar(
               stores().dbBasic,
               QStringLiteral("SELECT count(*) FROM pg_locks WHERE locktype = 'advisory' AND NOT granted "
                              "AND classid = ? AND database = (SELECT oid FROM pg_database WHERE datname = "
                              "current_database())"),
               {kServerWriterLockClass})
        .toInt();
}

// True once `count` requests stand in the queue (within five seconds).
bool queueStands(int count) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 5000) {
        if (waitingForTheLock() >= count) return true;
        QTest::qWait(20);
    }
    return false;
}

// A statement head saved as a save makes it: the next number read under the lock.
bool saveHead(Database& bill) {
    const QVariant last = scalar(bill, QStringLiteral("SELECT MAX(BillNo) FROM Master"));
    const QString number = QStringLiteral("%1").arg(last.toString().toInt() + 1, 6, 10, QChar(u'0'));
    if (!exec(bill, QStringLiteral("INSERT INTO Master (BillNo, BillDate) VALUES (?, ?)"),
              {number, QStringLiteral("2024-05-10")})) {
        bill.rollback();
        return false;
    }
    return bill.commit();
}

} // namespace

class TestWriterLockQueue : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(testOnServer(), "this test runs on the test run's PostgreSQL cluster only");
    }

    // Three other seats save one after the other without a pause, each holding the lock 60 ms,
    // so that two of them always stand in the queue: a seat that gave up its place every 50 ms
    // and asked again would always find them before it, and never get the lock.
    void aSeatBehindAStreamOfShortSavesGetsTheLockInItsTurn() {
        TestHome home;
        script();
        QVERIFY(openStores());
        Database& bill = stores().dbBill;
        bill.setBusyTimeout(8000);
        SavingSeats others(home.server().connInfo(), 3, 60);
        QVERIFY2(queueStands(2), qPrintable(QStringLiteral("the other seats never stood in the queue: ") +
                                            QString::number(waitingForTheLock()) + u' ' + others.said()));
        for (int save = 0; save < 5; ++save) {
            QElapsedTimer waited;
            waited.start();
            QVERIFY2(bill.beginTransaction(), qPrintable(bill.lastErrorDescription()));
            // Its turn: the holder's rest and the two before it, 180 ms, with room for a slow machine.
            QVERIFY2(waited.elapsed() < 2000, qPrintable(QString::number(waited.elapsed())));
            QVERIFY(saveHead(bill));
            QVERIFY(others.allRunning());
        }
        QCOMPARE(scalar(bill, QStringLiteral("SELECT count(*) FROM Master")).toInt(), 5);
        QCOMPARE(scalar(bill, QStringLiteral("SELECT MAX(BillNo) FROM Master")).toString(),
                 QStringLiteral("000005"));
    }

    void theWindowsEventsGoOnWhileASeatWaits() {
        TestHome home;
        script();
        QVERIFY(openStores());
        Database& bill = stores().dbBill;
        Database holder;
        QVERIFY(holder.open(app().DbBillFile));
        QVERIFY(holder.beginTransaction());
        int ticks = 0;
        QTimer ticking;
        QObject::connect(&ticking, &QTimer::timeout, [&ticks] { ++ticks; });
        ticking.start(20);
        QTimer::singleShot(600, [&holder] { holder.commit(); });
        QElapsedTimer waited;
        waited.start();
        QVERIFY(bill.beginTransaction());
        const qint64 millis = waited.elapsed();
        QVERIFY2(millis >= 550, qPrintable(QString::number(millis)));
        // Every slice of the wait lets the timers run: at least one tick per 100 ms waited.
        QVERIFY2(ticks >= 5, qPrintable(QString::number(ticks)));
        bill.rollback();
    }

    void aWaitLongerThanTheBusyWaitIsRefusedAsBusyAndLeavesNothingBegun() {
        TestHome home;
        auto& messages = script();
        QVERIFY(openStores());
        Database& bill = stores().dbBill;
        bill.setBusyTimeout(400);
        Database holder;
        QVERIFY(holder.open(app().DbBillFile));
        QVERIFY(holder.beginTransaction());
        QElapsedTimer waited;
        waited.start();
        QVERIFY(!bill.beginTransaction());
        QVERIFY2(waited.elapsed() >= 350 && waited.elapsed() < 3000,
                 qPrintable(QString::number(waited.elapsed()) + u' ' + bill.lastErrorDescription()));
        QCOMPARE(bill.lastEngineCode(), 5);
        QVERIFY(!bill.inTransaction());
        QCOMPARE(waitingForTheLock(), 0);
        // The connection is free again: the next save goes through once the lock is let go of.
        holder.rollback();
        QVERIFY(bill.beginTransaction());
        QVERIFY(saveHead(bill));
        QVERIFY(messages.records().empty());
    }
};

QTEST_MAIN(TestWriterLockQueue)
#include "writer_lock_queue.moc"
