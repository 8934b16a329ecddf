// The stores under faults, through the program's own saves in separate processes: killed at
// random points of statement, invoice and quotation saves; two copies saving at once; a full
// disk during each kind of save. After each, the store is whole: the engine's integrity check
// passes, a statement head's totals equal its lines, no line is without its head, no number is
// given twice, and every save the program confirmed is there.
#include "StoreFixture.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QSqlQuery>
#include <QThread>

using namespace nb;

namespace {

constexpr int kKillsPerKind = 6;

struct Run {
    int exitCode = -1;
    bool crashed = false;
    QStringList lines;
    QStringList confirmed() const { return lines.filter(QRegularExpression(QStringLiteral("^ok "))); }
    QStringList refused() const { return lines.filter(QRegularExpression(QStringLiteral("^fail "))); }
};

QStringList outputLines(QProcess& p) {
    const QString out = QString::fromUtf8(p.readAllStandardOutput()).trimmed();
    return out.isEmpty() ? QStringList() : out.split(u'\n');
}

void startWorker(QProcess& p, const QStringList& args) {
    p.setProcessChannelMode(QProcess::SeparateChannels);
    p.start(QStringLiteral(NB_WORKER), args);
    QVERIFY(p.waitForStarted());
}

Run finish(QProcess& p) {
    p.waitForFinished(60000);
    return {p.exitCode(), p.exitStatus() == QProcess::CrashExit, outputLines(p)};
}

Run runWorker(const QStringList& args) {
    QProcess p;
    startWorker(p, args);
    return finish(p);
}

// Starts a worker, lets it save for a random while after its first confirmed save, kills it.
Run killedWorker(const QStringList& args) {
    QProcess p;
    startWorker(p, args);
    QByteArray seen;
    while (!seen.contains("ok ") && p.state() == QProcess::Running) {
        p.waitForReadyRead(50);
        seen += p.peek(1 << 16);
    }
    QThread::msleep(QRandomGenerator::global()->bounded(0, 120));
    p.kill(); // SIGKILL
    return finish(p);
}

// The first value of a query on a store file, through a connection of its own.
QVariant value(const QString& file, const QString& sql) {
    Database db;
    if (!db.open(file)) return {};
    QSqlQuery q(db.connection());
    if (!q.exec(sql) || !q.next()) return {};
    return q.value(0);
}

void checkWhole(const QString& file) {
    QCOMPARE(value(file, QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
}

void checkStatements(const QStringList& confirmed) {
    const QString file = app().DbBillFile;
    checkWhole(file);
    QCOMPARE(
        value(file, QStringLiteral("SELECT count(*) FROM Master m WHERE m.NumBill <> (SELECT count(*) FROM "
                                   "Detail d WHERE d.BillNo = m.BillNo) OR m.TotAmount <> (SELECT "
                                   "coalesce(sum(Amount), 0) FROM Detail d WHERE d.BillNo = m.BillNo) OR "
                                   "m.TotVat <> (SELECT coalesce(sum(VAT), 0) FROM Detail d WHERE d.BillNo "
                                   "= m.BillNo)"))
            .toInt(),
        0);
    QCOMPARE(value(file, QStringLiteral("SELECT count(*) FROM Detail WHERE BillNo NOT IN (SELECT BillNo FROM "
                                        "Master)"))
                 .toInt(),
             0);
    QCOMPARE(
        value(file, QStringLiteral("SELECT count(*) FROM (SELECT BillNo FROM Master GROUP BY BillNo HAVING "
                                   "count(*) > 1)"))
            .toInt(),
        0);
    QCOMPARE(value(file, QStringLiteral("SELECT count(*) FROM (SELECT 1 FROM Detail GROUP BY BillNo, BillSEQ "
                                        "HAVING count(*) > 1)"))
                 .toInt(),
             0);
    for (const QString& line : confirmed) {
        const QStringList f = line.split(u' ');
        QVERIFY2(
            value(file, QStringLiteral("SELECT count(*) FROM Detail WHERE BillNo = '%1' AND BillSEQ = %2")
                            .arg(f.at(1), f.at(2)))
                    .toInt() == 1,
            qPrintable(line));
    }
}

void checkInvoices(const QStringList& confirmed) {
    const QString file = app().DbTaxFile;
    checkWhole(file);
    // One number, one customer: two invoices never merge under one number.
    QCOMPARE(
        value(file, QStringLiteral("SELECT count(*) FROM (SELECT TaxCode FROM NewAcount GROUP BY TaxCode "
                                   "HAVING count(DISTINCT CCode) > 1)"))
            .toInt(),
        0);
    QSet<QString> codes;
    for (const QString& line : confirmed) {
        const QStringList f = line.split(u' ');
        QVERIFY2(!codes.contains(f.at(1)), qPrintable(QStringLiteral("number confirmed twice: ") + line));
        codes.insert(f.at(1));
        QVERIFY2(
            value(file, QStringLiteral("SELECT count(*) FROM NewAcount WHERE TaxCode = '%1' AND CCode = '%2'")
                            .arg(f.at(1), f.at(3)))
                    .toInt() == f.at(2).toInt(),
            qPrintable(QStringLiteral("confirmed invoice not as saved: ") + line));
    }
}

void checkQuotations(const QStringList& confirmed) {
    const QString file = app().DbEstimateFile;
    checkWhole(file);
    QCOMPARE(
        value(file, QStringLiteral("SELECT count(*) FROM Estimate WHERE Code NOT IN (SELECT EstiCode FROM "
                                   "EstiBase)"))
            .toInt(),
        0);
    QCOMPARE(
        value(file, QStringLiteral("SELECT count(*) FROM (SELECT 1 FROM EstiBase GROUP BY EstiCode HAVING "
                                   "count(*) > 1)"))
            .toInt(),
        0);
    QCOMPARE(value(file, QStringLiteral("SELECT count(*) FROM (SELECT 1 FROM Estimate GROUP BY Seq HAVING "
                                        "count(*) > 1)"))
                 .toInt(),
             0);
    for (const QString& line : confirmed) {
        const QStringList f = line.split(u' ');
        const QString sql =
            f.at(1) == u"head"
                ? QStringLiteral("SELECT count(*) FROM EstiBase WHERE EstiCode = '%1'").arg(f.at(2))
                : QStringLiteral("SELECT count(*) FROM Estimate WHERE Code = '%1' AND Seq = %2")
                      .arg(f.at(2), f.at(3));
        QVERIFY2(value(file, sql).toInt() == 1, qPrintable(line));
    }
}

void checkKind(const QString& kind, const QStringList& confirmed) {
    if (kind == u"invoice")
        checkInvoices(confirmed);
    else if (kind == u"statement")
        checkStatements(confirmed);
    else
        checkQuotations(confirmed);
}

void layDownStores() {
    QVERIFY(test::openStores());
    closeStores();
}

} // namespace

class TestStoreCampaign : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void killedAtRandomPointsOfSavesNothingConfirmedIsLost_data() {
        QTest::addColumn<QString>("kind");
        QTest::newRow("statement") << QStringLiteral("statement");
        QTest::newRow("invoice") << QStringLiteral("invoice");
        QTest::newRow("quotation") << QStringLiteral("quotation");
    }
    void killedAtRandomPointsOfSavesNothingConfirmedIsLost() {
        QFETCH(QString, kind);
        test::TestHome home;
        layDownStores();
        QStringList confirmed;
        for (int i = 0; i < kKillsPerKind; ++i) {
            const Run run = killedWorker({kind, QStringLiteral("100000")});
            QVERIFY(run.crashed);
            QVERIFY2(run.refused().isEmpty(), qPrintable(run.refused().join(u'\n')));
            confirmed << run.confirmed();
            checkKind(kind, confirmed);
        }
        qInfo("%s: %d kills, %lld confirmed saves, none lost", qPrintable(kind), kKillsPerKind,
              qlonglong(confirmed.size()));
    }
    void twoCopiesSavingAtOnceNeverShareANumber_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("count");
        QTest::newRow("invoice") << QStringLiteral("invoice") << 40;
        QTest::newRow("statement") << QStringLiteral("statement") << 15;
        QTest::newRow("quotation") << QStringLiteral("quotation") << 15;
    }
    void twoCopiesSavingAtOnceNeverShareANumber() {
        QFETCH(QString, kind);
        QFETCH(int, count);
        test::TestHome home;
        layDownStores();
        QProcess a;
        QProcess b;
        startWorker(a, {kind, QString::number(count), QStringLiteral("000001")});
        startWorker(b, {kind, QString::number(count), QStringLiteral("000002")});
        const Run first = finish(a);
        const Run second = finish(b);
        // A busy store is waited for: neither copy is refused.
        QVERIFY2(first.exitCode == 0 && first.refused().isEmpty(), qPrintable(first.lines.join(u'\n')));
        QVERIFY2(second.exitCode == 0 && second.refused().isEmpty(), qPrintable(second.lines.join(u'\n')));
        checkKind(kind, first.confirmed() + second.confirmed());
    }
    void twoCopiesChangingOneLineKeepTheHeadEqualToItsLines() {
        test::TestHome home;
        layDownStores();
        const Run seed = runWorker({QStringLiteral("statement"), QStringLiteral("1")});
        QCOMPARE(seed.exitCode, 0);
        const QString billNo = seed.confirmed().first().split(u' ').at(1);
        QProcess a;
        QProcess b;
        startWorker(a, {QStringLiteral("bump"), billNo, QStringLiteral("1"), QStringLiteral("40")});
        startWorker(b, {QStringLiteral("bump"), billNo, QStringLiteral("1"), QStringLiteral("40")});
        const Run first = finish(a);
        const Run second = finish(b);
        QVERIFY2(first.exitCode == 0, qPrintable(first.lines.join(u'\n')));
        QVERIFY2(second.exitCode == 0, qPrintable(second.lines.join(u'\n')));
        checkStatements(seed.confirmed());
    }
    void aFullDiskRefusesTheSaveLeavesTheStoreAndTheNextSaveCommits_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("count");
        QTest::newRow("invoice") << QStringLiteral("invoice") << QStringLiteral("dbTax.db")
                                 << QStringLiteral("SELECT count(DISTINCT TaxCode) FROM NewAcount");
        QTest::newRow("statement") << QStringLiteral("statement") << QStringLiteral("dbBill.db")
                                   << QStringLiteral("SELECT count(*) FROM Master");
        QTest::newRow("quotation") << QStringLiteral("quotation") << QStringLiteral("dbEstimate.db")
                                   << QStringLiteral("SELECT count(*) FROM EstiBase");
    }
    void aFullDiskRefusesTheSaveLeavesTheStoreAndTheNextSaveCommits() {
        QFETCH(QString, kind);
        QFETCH(QString, file);
        QFETCH(QString, count);
        test::TestHome home;
        layDownStores();
        const Run run = runWorker({QStringLiteral("full"), kind});
        QVERIFY2(!run.lines.isEmpty() && run.lines.first().startsWith(QStringLiteral("fail ")),
                 qPrintable(run.lines.join(u'\n')));
        // The box says the disk is full, in Korean, with the engine's words under it.
        QVERIFY2(run.lines.first().contains(QStringLiteral("디스크")), qPrintable(run.lines.first()));
        QCOMPARE(run.exitCode, 0);
        // After the process has gone, the one save after space returned is there, and only it.
        const QString path = app().DbPath + u'/' + file;
        checkWhole(path);
        QCOMPARE(value(path, count).toInt(), 1);
        checkKind(kind, run.confirmed());
    }
};

NB_TEST_MAIN(TestStoreCampaign)
#include "tst_store_campaign.moc"
