// Two seats on one server database totalling at the same time: each refills the totals work
// table with its own period over and over, and each reads back exactly its own receivers and
// sums, by the search itself, by the list as the screen reads it after a refill beside the
// window, and by the 합계표 paged while the other seat refills. The rows a seat that has gone
// left behind are cleared by the next refill; the rows of a seat still there are not.
#include "StoreFixture.h"
#include "common/Messages.h"
#include "core/Clock.h"
#include "core/Lifecycle.h"
#include "management/TaxTotals.h"
#include "management/TaxTotalsReport.h"
#include "storage/Database.h"
#include "storage/StoreEngine.h"

#include <QSqlQuery>
#include <atomic>
#include <thread>

using namespace nb;

namespace {

constexpr int kRounds = 40;

// The first half of 2024 has receivers 000001..000020, the third quarter 000011..000040, so a
// seat that reads the other's rows finds receivers of its own period among them, with other sums.
const TotalsPeriod kFirstHalf{QStringLiteral("2024-01-01"), QStringLiteral("2024-06-30")};
const TotalsPeriod kThirdQuarter{QStringLiteral("2024-07-01"), QStringLiteral("2024-09-30")};

// Receiver i of a period has one invoice of supply 1,000 × i (first half) or 3,000 × i (third
// quarter), VAT a tenth.
void addInvoices() {
    for (int i = 1; i <= 40; ++i) {
        const QString code = QStringLiteral("%1").arg(i, 6, 10, QChar(u'0'));
        QVERIFY(test::exec(stores().dbBasic,
                           QStringLiteral("INSERT INTO Trader (Code, C_Name) VALUES (?, ?)"),
                           {code, QStringLiteral("거래처%1").arg(i)}));
        if (i <= 20)
            QVERIFY(test::exec(
                stores().dbTax,
                QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, TradeKum, VatKum, "
                               "DealDate, UserCode) VALUES (?, ?, '볼트', ?, ?, '2024-03-05', '')"),
                {QStringLiteral("1%1").arg(i, 5, 10, QChar(u'0')), code, 1000 * i, 100 * i}));
        if (i > 10)
            QVERIFY(test::exec(
                stores().dbTax,
                QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, TradeKum, VatKum, "
                               "DealDate, UserCode) VALUES (?, ?, '너트', ?, ?, '2024-08-05', '')"),
                {QStringLiteral("2%1").arg(i, 5, 10, QChar(u'0')), code, 3000 * i, 300 * i}));
    }
}

// What a period's search must give: its receivers in order with their supply.
QString expectedOf(const TotalsPeriod& period) {
    QStringList rows;
    const bool first = period.from == kFirstHalf.from;
    for (int i = first ? 1 : 11; i <= (first ? 20 : 40); ++i)
        rows << QStringLiteral("%1:%2").arg(i, 6, 10, QChar(u'0')).arg((first ? 1000 : 3000) * i);
    return rows.join(u',');
}

QString shownOf(const QList<TraderTotal>& rows) {
    QStringList out;
    for (const TraderTotal& row : rows)
        out << QStringLiteral("%1:%2").arg(row.cCode).arg(qint64(row.tradeKum));
    return out.join(u',');
}

// A second seat: its own connection on its own thread, refilling its period until told to stop
// (or kRounds times), counting the searches that read back anything but its own rows.
class OtherSeat {
public:
    explicit OtherSeat(const TotalsPeriod& period, bool untilStopped = false)
        : m_period(period), m_untilStopped(untilStopped), m_taxFile(app().DbTaxFile),
          m_basicFile(app().DbBasicFile) {
        m_thread = std::thread([this] { run(); });
        while (!m_started.load())
            std::this_thread::yield();
    }
    ~OtherSeat() { finish(); }
    void finish() {
        m_stop = true;
        if (m_thread.joinable()) m_thread.join();
    }
    int rounds() const { return m_rounds.load(); }
    int wrong() const { return m_wrong.load(); }
    QString firstWrong() const { return m_firstWrong; }
    bool opened() const { return m_opened.load(); }

private:
    void run() {
        Database db;
        m_opened = db.open(m_taxFile);
        m_started = true;
        if (!m_opened) return;
        const QString expected = expectedOf(m_period);
        for (int round = 0; m_untilStopped ? !m_stop.load() : round < kRounds; ++round) {
            const std::optional<QList<TraderTotal>> rows = SearchTotals(db, m_basicFile, m_period);
            const QString shown = rows ? shownOf(*rows) : QStringLiteral("(failed)");
            if (shown != expected && m_wrong++ == 0) m_firstWrong = shown;
            ++m_rounds;
        }
    }

    TotalsPeriod m_period;
    bool m_untilStopped;
    QString m_taxFile, m_basicFile;
    std::thread m_thread;
    std::atomic<bool> m_started{false}, m_opened{false}, m_stop{false};
    std::atomic<int> m_rounds{0}, m_wrong{0};
    QString m_firstWrong;
};

// The list as the screen reads it after its refill: the work table's rows, column for column.
QString listedOf(Database& tax, int rows) {
    QSqlQuery q(tax.connection());
    if (!OpenForwardOnly(tax, q, totalsListQuery(tax.onServer()))) return QStringLiteral("(failed)");
    QStringList out;
    while (q.next())
        out << QStringLiteral("%1:%2").arg(q.value(8).toString()).arg(q.value(2).toLongLong());
    return out.size() == rows ? out.join(u',')
                              : QStringLiteral("(%1 rows, %2 counted)").arg(out.size()).arg(rows);
}

QString reportedOf(const TotalsReport& report) {
    QStringList out;
    for (const TotalsReportRow& row : report.rows)
        out << QStringLiteral("%1:%2").arg(row.company).arg(qint64(row.supply));
    return out.join(u',');
}

QString expectedReportOfFirstHalf() {
    QStringList rows;
    for (int i = 1; i <= 20; ++i)
        rows << QStringLiteral("거래처%1:%2").arg(i).arg(1000 * i);
    return rows.join(u',');
}

} // namespace

class TestTotalsSeats : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() {
        setClock({});
        resetProgramState();
    }

    void twoSeatsRefillingDifferentPeriodsAtOnceEachReadTheirOwnRows() {
        test::TestHome home;
        QVERIFY(test::openStores());
        QVERIFY(stores().dbTax.onServer());
        addInvoices();
        ScriptedMessages& said = test::script();
        const QString expected = expectedOf(kFirstHalf);
        int wrong = 0;
        QString firstWrong;
        {
            OtherSeat other(kThirdQuarter);
            QVERIFY(other.opened());
            for (int round = 0; round < kRounds; ++round) {
                const std::optional<QList<TraderTotal>> rows =
                    SearchTotals(stores().dbTax, stores().dbBasic.path(), kFirstHalf);
                const QString shown = rows ? shownOf(*rows) : QStringLiteral("(failed)");
                if (shown != expected && wrong++ == 0) firstWrong = shown;
            }
            other.finish();
            QCOMPARE(other.rounds(), kRounds);
            QVERIFY2(other.wrong() == 0, qPrintable(other.firstWrong()));
        }
        QVERIFY2(wrong == 0, qPrintable(firstWrong));
        QCOMPARE(int(said.boxes().size()), 0);
    }

    void theListAfterARefillBesideTheWindowHoldsTheSeatsOwnRowsAndSums() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addInvoices();
        ScriptedMessages& said = test::script();
        const QString expected = expectedOf(kFirstHalf);
        int wrong = 0;
        QString firstWrong;
        {
            OtherSeat other(kThirdQuarter, true);
            for (int round = 0; round < kRounds / 2; ++round) {
                const std::optional<TotalsRefill> refill =
                    RefillTotalsAside(stores().dbTax, stores().dbBasic.path(), kFirstHalf);
                QVERIFY(refill);
                // The panels' sums are the ones the refill counted: the seat's own.
                const bool sumsRight =
                    refill->rows == 20 && refill->tradeKum == 210000 && refill->vatKum == 21000;
                const QString listed = listedOf(stores().dbTax, refill->rows);
                if ((!sumsRight || listed != expected) && wrong++ == 0)
                    firstWrong = QStringLiteral("%1 rows, %2 / %3: %4")
                                     .arg(refill->rows)
                                     .arg(refill->tradeKum)
                                     .arg(refill->vatKum)
                                     .arg(listed);
            }
            other.finish();
            QVERIFY(other.rounds() > 0);
            QVERIFY2(other.wrong() == 0, qPrintable(other.firstWrong()));
        }
        QVERIFY2(wrong == 0, qPrintable(firstWrong));
        QCOMPARE(int(said.boxes().size()), 0);
    }

    void theReportPagedWhileTheOtherSeatRefillsHoldsTheSeatsOwnReceivers() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addInvoices();
        setClock([] { return QDateTime(QDate(2024, 7, 10), QTime(9, 0)); });
        ScriptedMessages& said = test::script();
        QVERIFY(RefillTotalsAside(stores().dbTax, stores().dbBasic.path(), kFirstHalf));
        const TotalsReportValues values =
            totalsReportValues(TotalsKind::Half, 0, QStringLiteral("2024"), QString(), QString(), 210000,
                               21000, QDate(2024, 7, 10));
        const QString expected = expectedReportOfFirstHalf();
        int wrong = 0;
        QString firstWrong;
        {
            OtherSeat other(kThirdQuarter, true);
            for (int round = 0; round < kRounds; ++round) {
                // The whole list, then its pages a stretch at a time as the preview reads them.
                const std::optional<TotalsReport> whole = ReadTotalsReport(values);
                QStringList paged;
                int receivers = -1;
                for (int first = 0; first < 20; first += 7) {
                    const std::optional<TotalsReport> stretch = ReadTotalsReportStretch(values, first, 7);
                    if (!stretch) break;
                    receivers = stretch->receivers();
                    paged << reportedOf(*stretch);
                }
                const QString wholeText = whole ? reportedOf(*whole) : QStringLiteral("(failed)");
                if ((wholeText != expected || paged.join(u',') != expected || receivers != 20) &&
                    wrong++ == 0)
                    firstWrong = wholeText + QStringLiteral(" | ") + paged.join(u',');
            }
            other.finish();
            QVERIFY(other.rounds() > 0);
            QVERIFY2(other.wrong() == 0, qPrintable(other.firstWrong()));
        }
        QVERIFY2(wrong == 0, qPrintable(firstWrong));
        QCOMPARE(int(said.boxes().size()), 0);
    }

    void theRowsOfASeatThatHasGoneAreClearedByTheNextRefillAndALiveSeatsStay() {
        test::TestHome home;
        QVERIFY(test::openStores());
        addInvoices();
        ScriptedMessages& said = test::script();
        Database live;
        QVERIFY(live.open(app().DbTaxFile));
        QVERIFY(SearchTotals(live, app().DbBasicFile, kThirdQuarter));
        QString goneSeat;
        {
            Database gone;
            QVERIFY(gone.open(app().DbTaxFile));
            goneSeat = gone.seatKey();
            QVERIFY(SearchTotals(gone, app().DbBasicFile, kThirdQuarter));
        }
        auto rowsOf = [](const QString& seat) {
            return test::scalar(stores().dbTax,
                                QStringLiteral("SELECT count(*) FROM SaleTotal WHERE seat = ?"), {seat})
                .toInt();
        };
        QCOMPARE(rowsOf(goneSeat), 30);
        // The server lets a connection go a moment after it was closed.
        QVERIFY(QTest::qWaitFor(
            [&] {
                return test::scalar(
                           stores().dbTax,
                           QStringLiteral("SELECT count(*) FROM pg_stat_activity WHERE application_name = ?"),
                           {goneSeat})
                           .toInt() == 0;
            },
            5000));
        const std::optional<QList<TraderTotal>> own =
            SearchTotals(stores().dbTax, app().DbBasicFile, kFirstHalf);
        QVERIFY(own);
        QCOMPARE(shownOf(*own), expectedOf(kFirstHalf));
        QCOMPARE(rowsOf(goneSeat), 0);
        QCOMPARE(rowsOf(live.seatKey()), 30);
        QCOMPARE(rowsOf(stores().dbTax.seatKey()), 20);
        QCOMPARE(int(said.boxes().size()), 0);
    }

    // A connection working aside for the window's writes rows the window reads, and they are the
    // window's seat's; another connection's are not.
    void aConnectionWorkingAsideWritesTheRowsOfTheSeatItWorksFor() {
        test::TestHome home;
        QVERIFY(test::openStores());
        Database aside;
        QVERIFY(aside.seatKey() != stores().dbTax.seatKey());
        aside.workForSeatOf(stores().dbTax);
        QCOMPARE(aside.seatKey(), stores().dbTax.seatKey());
        QVERIFY(aside.open(app().DbTaxFile));
        QVERIFY(test::exec(aside,
                           QStringLiteral("INSERT INTO SaleTotal (Serial, CCode) VALUES ('1', '000001')")));
        QCOMPARE(
            test::scalar(stores().dbTax, QStringLiteral("SELECT count(*) FROM ") +
                                             seatRows(true, QStringLiteral("SaleTotal"), QStringLiteral("s")))
                .toInt(),
            1);
        Database other;
        QVERIFY(other.open(app().DbTaxFile));
        QCOMPARE(test::scalar(other, QStringLiteral("SELECT count(*) FROM ") +
                                         seatRows(true, QStringLiteral("SaleTotal"), QStringLiteral("s")))
                     .toInt(),
                 0);
        // The server knows its connection by the seat it works for.
        QCOMPARE(test::scalar(aside, QStringLiteral("SELECT current_setting('application_name')")).toString(),
                 stores().dbTax.seatKey());
    }
};

NB_TEST_MAIN(TestTotalsSeats)
#include "totals_seats.moc"
