// Several seats on one set of books: eight copies of the program's saves, each with an
// application folder of its own (a computer of the shop), save invoices, statements and
// quotations into one PostgreSQL database at once for a while; one more is killed in the middle
// of its saves. Afterwards no number was given twice, every statement's and quotation's head
// equals its lines, no save was refused, and every save a copy confirmed is there.
#include "StoreFixture.h"

#include <QHash>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>
#include <memory>
#include <vector>

using namespace nb;
using namespace nb::test;

namespace {

constexpr int kSeats = 8;
constexpr int kSeconds = 8;

struct Run {
    int exitCode = -1;
    bool crashed = false;
    QStringList lines;
    QStringList confirmed() const { return lines.filter(QRegularExpression(QStringLiteral("^ok "))); }
    QStringList refused() const { return lines.filter(QRegularExpression(QStringLiteral("^fail "))); }
};

// A seat: its own folder, the one database of the test.
struct Seat {
    QTemporaryDir home;
    QProcess process;
};

void startSeat(Seat& seat, const QString& tag) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("NUBELLA_HOME"), seat.home.path());
    seat.process.setProcessEnvironment(env);
    seat.process.setProcessChannelMode(QProcess::SeparateChannels);
    seat.process.start(QStringLiteral(NB_WORKER), {QStringLiteral("mixed"), QString::number(kSeconds), tag});
    QVERIFY(seat.process.waitForStarted());
}

Run finish(QProcess& p) {
    p.waitForFinished(120000);
    const QString out = QString::fromUtf8(p.readAllStandardOutput()).trimmed();
    return {p.exitCode(), p.exitStatus() == QProcess::CrashExit, out.isEmpty() ? QStringList() : out.split(u'\n')};
}

// The database all seats of the test share.
QString g_database;

// The first value of a query on that database.
QVariant value(const QString& sql, const QVariantList& values = {}) {
    return clusterScalar(sql, g_database, values);
}

int count(const QString& sql, const QVariantList& values = {}) {
    return value(sql, values).toInt();
}

struct Confirmed {
    QStringList invoices, statementLines, quotationHeads, quotationLines;
};

// Sorts a copy's confirmed saves by kind: "ok head|line ..." a quotation's, four words an
// invoice's ("ok TAXCODE LINES TAG"), three a statement line's ("ok BILLNO SEQ").
void sortConfirmed(const QStringList& lines, Confirmed& into) {
    for (const QString& line : lines) {
        const QStringList f = line.split(u' ');
        if (f.value(1) == u"head")
            into.quotationHeads << line;
        else if (f.value(1) == u"line")
            into.quotationLines << line;
        else if (f.size() == 4)
            into.invoices << line;
        else
            into.statementLines << line;
    }
}

void checkInvoices(const QStringList& confirmed) {
    // One number, one customer: two seats' invoices never merge under one number.
    QCOMPARE(count(QStringLiteral("SELECT count(*) FROM (SELECT TaxCode FROM tax.NewAcount GROUP BY TaxCode "
                                  "HAVING count(DISTINCT CCode) > 1) x")),
             0);
    QSet<QString> codes;
    for (const QString& line : confirmed) {
        const QStringList f = line.split(u' ');
        QVERIFY2(!codes.contains(f.at(1)), qPrintable(QStringLiteral("number confirmed twice: ") + line));
        codes.insert(f.at(1));
        QVERIFY2(count(QStringLiteral("SELECT count(*) FROM tax.NewAcount WHERE TaxCode = ? AND CCode = ?"),
                       {f.at(1), f.at(3)}) == f.at(2).toInt(),
                 qPrintable(QStringLiteral("confirmed invoice not as saved: ") + line));
    }
}

void checkStatements(const QStringList& confirmed) {
    QCOMPARE(count(QStringLiteral(
                 "SELECT count(*) FROM bill.Master m WHERE m.NumBill <> (SELECT count(*) FROM bill.Detail d "
                 "WHERE d.BillNo = m.BillNo) OR m.TotAmount <> (SELECT coalesce(sum(Amount), 0) FROM "
                 "bill.Detail d WHERE d.BillNo = m.BillNo) OR m.TotVat <> (SELECT coalesce(sum(VAT), 0) FROM "
                 "bill.Detail d WHERE d.BillNo = m.BillNo)")),
             0);
    QCOMPARE(count(QStringLiteral("SELECT count(*) FROM bill.Detail WHERE BillNo NOT IN (SELECT BillNo FROM "
                                  "bill.Master)")),
             0);
    QCOMPARE(count(QStringLiteral("SELECT count(*) FROM (SELECT BillNo FROM bill.Master GROUP BY BillNo HAVING "
                                  "count(*) > 1) x")),
             0);
    QCOMPARE(count(QStringLiteral("SELECT count(*) FROM (SELECT 1 FROM bill.Detail GROUP BY BillNo, BillSEQ "
                                  "HAVING count(*) > 1) x")),
             0);
    for (const QString& line : confirmed) {
        const QStringList f = line.split(u' ');
        QVERIFY2(count(QStringLiteral("SELECT count(*) FROM bill.Detail WHERE BillNo = ? AND BillSEQ = ?"),
                       {f.at(1), f.at(2)}) == 1,
                 qPrintable(line));
    }
}

void checkQuotations(const Confirmed& confirmed) {
    QCOMPARE(count(QStringLiteral("SELECT count(*) FROM estimate.Estimate WHERE Code NOT IN (SELECT EstiCode "
                                  "FROM estimate.EstiBase)")),
             0);
    QCOMPARE(count(QStringLiteral("SELECT count(*) FROM (SELECT 1 FROM estimate.EstiBase GROUP BY EstiCode "
                                  "HAVING count(*) > 1) x")),
             0);
    QCOMPARE(count(QStringLiteral("SELECT count(*) FROM (SELECT 1 FROM estimate.Estimate GROUP BY Seq HAVING "
                                  "count(*) > 1) x")),
             0);
    for (const QString& line : confirmed.quotationHeads)
        QVERIFY2(count(QStringLiteral("SELECT count(*) FROM estimate.EstiBase WHERE EstiCode = ?"),
                       {line.split(u' ').at(2)}) == 1,
                 qPrintable(line));
    // A quotation's total is its lines' sum once both its lines were confirmed (a copy killed
    // between a line and the total it moves leaves the total of the line before).
    QHash<QString, int> linesOf;
    for (const QString& line : confirmed.quotationLines) {
        const QStringList f = line.split(u' ');
        QVERIFY2(count(QStringLiteral("SELECT count(*) FROM estimate.Estimate WHERE Code = ? AND Seq = ?"),
                       {f.at(2), f.at(3)}) == 1,
                 qPrintable(line));
        ++linesOf[f.at(2)];
    }
    for (auto it = linesOf.cbegin(); it != linesOf.cend(); ++it) {
        if (it.value() != 2) continue;
        QVERIFY2(count(QStringLiteral("SELECT count(*) FROM estimate.EstiBase b WHERE b.EstiCode = ? AND "
                                      "b.EstiKum = (SELECT sum(EstiKum) FROM estimate.Estimate e WHERE e.Code = "
                                      "b.EstiCode)"),
                       {it.key()}) == 1,
                 qPrintable(it.key()));
    }
}

} // namespace

class TestSeatsOnOneServer : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void eightSeatsSaveAtOnceAndAKilledOneLosesNothingConfirmed() {
        QVERIFY2(testOnServer(), "NUBELLA_TEST_PG is not set: this test runs only on the cluster");
        TestHome home;
        g_database = home.server().name();
        QVERIFY(openStores());
        closeStores();

        std::vector<std::unique_ptr<Seat>> seats;
        for (int i = 0; i < kSeats + 1; ++i) {
            seats.push_back(std::make_unique<Seat>());
            startSeat(*seats.back(), QStringLiteral("%1").arg(i + 1, 6, 10, QChar(u'0')));
        }
        // The last seat is killed in the middle of its saves, a while after its first was confirmed.
        QProcess& killed = seats.back()->process;
        QByteArray seen;
        while (!seen.contains("ok ") && killed.state() == QProcess::Running) {
            killed.waitForReadyRead(50);
            seen += killed.peek(1 << 16);
        }
        QThread::msleep(QRandomGenerator::global()->bounded(500, 3000));
        killed.kill(); // SIGKILL

        Confirmed confirmed;
        int saved = 0;
        for (int i = 0; i < kSeats + 1; ++i) {
            const Run run = finish(seats[size_t(i)]->process);
            const bool wasKilled = i == kSeats;
            QVERIFY2(run.refused().isEmpty(), qPrintable(run.refused().join(u'\n')));
            if (wasKilled)
                QVERIFY(run.crashed);
            else
                QVERIFY2(run.exitCode == 0 && !run.crashed, qPrintable(run.lines.join(u'\n')));
            sortConfirmed(run.confirmed(), confirmed);
            saved += int(run.confirmed().size());
        }
        QVERIFY(saved > kSeats * 3); // every seat made each kind of save at least once
        checkInvoices(confirmed.invoices);
        checkStatements(confirmed.statementLines);
        checkQuotations(confirmed);
        qInfo("%d seats and a killed one: %lld invoices, %lld statement lines, %lld quotation lines confirmed",
              kSeats, qlonglong(confirmed.invoices.size()), qlonglong(confirmed.statementLines.size()),
              qlonglong(confirmed.quotationLines.size()));
    }
};

NB_TEST_MAIN(TestSeatsOnOneServer)
#include "seats_on_one_server.moc"
