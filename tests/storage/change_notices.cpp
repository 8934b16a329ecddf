// Seats on one server database told of each other's saves: a commit on another connection reaches
// a watcher of the store within a bounded wait, once for a save of many statements; a save that
// rolls back tells nothing, nor does a watcher's own connection, nor a refill of a work table;
// a database laid down before the notices gains them at start. Runs on the test run's
// PostgreSQL cluster only.
#include "StoreTestKit.h"
#include "storage/ChangeNotices.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QObject>

using namespace nb;

namespace {

struct TwoSeats {
    test::TestHome home;
    Database listening; // the seat whose list is open
    Database saving;    // another seat
    Database tax;
    int told = 0;
    QObject receiver;
    TwoSeats() {
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        if (!listening.open(app().DbBillFile) || !saving.open(app().DbBillFile) || !tax.open(app().DbTaxFile))
            qFatal("stores on the server did not open");
    }
    bool watch(Database& db) {
        return watchStoreChanges(db, &receiver, [this] { ++told; });
    }
    // Waits the bounded time for a notice; true when one came.
    bool toldWithin(int millis) {
        return QTest::qWaitFor([this] { return told > 0; }, millis);
    }
};

bool saveHead(Database& db, const QString& billNo, bool keep) {
    if (!db.beginTransaction()) return false;
    const bool written =
        db.tryExecute(QStringLiteral("INSERT INTO Master (BillNo, BillDate, NumBill) VALUES (?, ?, 2)"),
                      {billNo, QStringLiteral("2024-03-01")}) &&
        db.tryExecute(QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName) VALUES (?, 1, ?)"),
                      {billNo, QStringLiteral("볼펜")}) &&
        db.tryExecute(QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName) VALUES (?, 2, ?)"),
                      {billNo, QStringLiteral("연필")});
    if (!written || !keep) {
        db.rollback();
        return written;
    }
    return db.commit();
}

} // namespace

class TestChangeNotices : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY2(test::testOnServer(), "this test runs on the test run's cluster only"); }

    void anotherSeatsSaveIsToldWithinABoundedWait() {
        TwoSeats seats;
        QVERIFY(seats.watch(seats.listening));
        QVERIFY(saveHead(seats.saving, QStringLiteral("000001"), true));
        QVERIFY(seats.toldWithin(5000));
    }
    void aSaveOfManyStatementsIsToldOnce() {
        TwoSeats seats;
        QVERIFY(seats.watch(seats.listening));
        QVERIFY(saveHead(seats.saving, QStringLiteral("000001"), true));
        QVERIFY(seats.toldWithin(5000));
        QTest::qWait(300);
        QCOMPARE(seats.told, 1);
    }
    void aSaveRolledBackTellsNothing() {
        TwoSeats seats;
        QVERIFY(seats.watch(seats.listening));
        QVERIFY(saveHead(seats.saving, QStringLiteral("000001"), false));
        QVERIFY(!seats.toldWithin(1000));
        // The same seat's next save that does commit is told: the watch was alive all along.
        QVERIFY(saveHead(seats.saving, QStringLiteral("000002"), true));
        QVERIFY(seats.toldWithin(5000));
    }
    void theWatchersOwnConnectionsSaveIsNotTold() {
        TwoSeats seats;
        QVERIFY(seats.watch(seats.listening));
        QVERIFY(saveHead(seats.listening, QStringLiteral("000001"), true));
        QVERIFY(!seats.toldWithin(1000));
    }
    void aRefillOfTheTotalsWorkTableTellsNothing() {
        TwoSeats seats;
        Database otherTax;
        QVERIFY(otherTax.open(app().DbTaxFile));
        QVERIFY(seats.watch(seats.tax));
        QVERIFY(otherTax.tryExecute(
            QStringLiteral("INSERT INTO SaleTotal (Serial, CCode, CName) VALUES ('1', '1', '가')")));
        QVERIFY(otherTax.tryExecute(QStringLiteral("DELETE FROM SaleTotal")));
        QVERIFY(!seats.toldWithin(1000));
        // An invoice on the same store is told.
        QVERIFY(otherTax.tryExecute(
            QStringLiteral("INSERT INTO NewAcount (TaxCode, DealDate) VALUES ('100000', '2024-03-01')")));
        QVERIFY(seats.toldWithin(5000));
    }
    void aWatchEndsWithItsReceiver() {
        TwoSeats seats;
        int told = 0;
        {
            QObject shortLived;
            QVERIFY(watchStoreChanges(seats.listening, &shortLived, [&told] { ++told; }));
        }
        QVERIFY(seats.watch(seats.listening));
        QVERIFY(saveHead(seats.saving, QStringLiteral("000001"), true));
        QVERIFY(seats.toldWithin(5000));
        QCOMPARE(told, 0);
    }
    void eachStoreTellsOnItsOwnChannel() {
        TwoSeats seats;
        QCOMPARE(changeChannel(seats.listening.serverSchema()), QStringLiteral("nubella_bill"));
        QCOMPARE(changeChannel(seats.tax.serverSchema()), QStringLiteral("nubella_tax"));
        QVERIFY(seats.watch(seats.tax));
        QVERIFY(saveHead(seats.saving, QStringLiteral("000001"), true)); // the statements' store
        QVERIFY(!seats.toldWithin(1000));
    }
    void aDatabaseLaidDownBeforeTheNoticesGainsThemAtStart() {
        TwoSeats seats;
        for (const QString& table : {QStringLiteral("Master"), QStringLiteral("Detail")})
            QVERIFY(seats.saving.tryExecute(
                QStringLiteral("DROP TRIGGER %1 ON %2").arg(changeTriggerName(table), quoteName(table))));
        QVERIFY(!seats.saving.hasTrigger(changeTriggerName(QStringLiteral("Master"))));
        QVERIFY(seats.watch(seats.listening));
        QVERIFY(saveHead(seats.saving, QStringLiteral("000001"), true));
        QVERIFY(!seats.toldWithin(1000)); // nothing tells yet
        QVERIFY(addChangeNotices(seats.saving));
        QVERIFY(seats.saving.hasTrigger(changeTriggerName(QStringLiteral("Master"))));
        QVERIFY(seats.saving.hasTrigger(changeTriggerName(QStringLiteral("Detail"))));
        QVERIFY(saveHead(seats.saving, QStringLiteral("000002"), true));
        QVERIFY(seats.toldWithin(5000));
        const int statements = seats.saving.statementsRun();
        QVERIFY(addChangeNotices(seats.saving)); // a store that has them runs nothing
        QCOMPARE(seats.saving.statementsRun(), statements);
    }
    void aStoreFileHasNoNoticesToWatch() {
        Database file;
        QTemporaryDir dir;
        QVERIFY(file.create(dir.filePath(QStringLiteral("loose.db"))));
        QVERIFY(!file.onServer());
        QObject receiver;
        QVERIFY(!watchStoreChanges(file, &receiver, [] {}));
        QVERIFY(addChangeNotices(file));
        QVERIFY(changeNoticeStatements(QStringLiteral("SaleTotal")).isEmpty());
        QCOMPARE(changeNoticeStatements(QStringLiteral("Master")).size(), 2);
    }
};

NB_TEST_MAIN(TestChangeNotices)
#include "change_notices.moc"
