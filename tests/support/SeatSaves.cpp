#include "SeatSaves.h"

#include "common/Messages.h"
#include "invoice/InvoiceStore.h"
#include "quotation/clsEstimate.h"
#include "statement/StatementStore.h"
#include "storage/Stores.h"

#include <QElapsedTimer>
#include <QThread>

namespace nb::test {
namespace {

// One clock for every step of the process.
qint64 nowNs() {
    static QElapsedTimer clock = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return clock.nsecsElapsed();
}

} // namespace

SeatSaves::SeatSaves(ScriptedMessages& messages, std::function<void(const QString&)> say)
    : m_messages(messages), m_say(std::move(say)) {}

// The last box shown since the previous call, on one line.
QString SeatSaves::lastBox() {
    const auto boxes = m_messages.boxes();
    const QString text = boxes.empty() ? QStringLiteral("(no box)") : boxes.back().text;
    m_messages.clear();
    return QString(text).replace(u'\r', u' ').replace(u'\n', u' ');
}

bool SeatSaves::refused() {
    m_say(QStringLiteral("fail ") + lastBox());
    return false;
}

void SeatSaves::took(const char* step, qint64 startNs, int lines) {
    if (timed) timed(step, double(nowNs() - startNs) / 1e6, lines);
}

bool SeatSaves::invoice(int i, const QString& tag) {
    const InvoiceHead head{tag, QStringLiteral("2024-05-10"), QString(), QStringLiteral("123-45-67890"),
                           QStringLiteral("영수")};
    QList<InvoiceLine> lines;
    for (int n = 0; n <= i % 3; ++n)
        lines.append({QStringLiteral("05-10"), QStringLiteral("품목%1").arg(n), QStringLiteral("EA"),
                      QStringLiteral("1"), QStringLiteral("1,000"), QStringLiteral("1,000"),
                      QStringLiteral("100")});
    const qint64 start = nowNs();
    const std::optional<QString> code = StoreNewInvoice(stores().dbTax, head, lines);
    if (!code) return refused();
    took("invoice", start, int(lines.size()));
    m_say(QStringLiteral("ok %1 %2 %3").arg(*code).arg(lines.size()).arg(tag));
    return true;
}

bool SeatSaves::statement(int i) {
    QString billNo;
    for (int n = 1; n <= 2; ++n) {
        qint64 start = nowNs();
        const InsertedLine line =
            DetailInsert(stores().dbBill, {billNo, QStringLiteral("2024-05-10"), QStringLiteral("000001"),
                                           QStringLiteral("품목")});
        if (!line.ok) return refused();
        took("line", start, 1);
        billNo = line.billNo;
        const double amount = 1000.0 * (1 + (i + n) % 7);
        for (const auto& [field, value] : {std::pair{QStringLiteral("Quant"), 1.0},
                                           {QStringLiteral("Price"), amount},
                                           {QStringLiteral("Amount"), amount},
                                           {QStringLiteral("VAT"), amount / 10}}) {
            start = nowNs();
            if (!DetailUpdate(stores().dbBill, billNo, line.billSeq, field, value).ok) return refused();
            took("cell", start, 0);
        }
        m_say(QStringLiteral("ok %1 %2").arg(billNo).arg(line.billSeq));
    }
    return true;
}

bool SeatSaves::quotation() {
    clsEstimate e;
    e.sEDate = QStringLiteral("2024-05-10");
    qint64 start = nowNs();
    e.NextCode(e.sCode);
    e.sCCode = QStringLiteral("000001");
    e.sCName = QStringLiteral("대한상사");
    e.SaveInitEstimate();
    if (!m_messages.boxes().empty()) return refused();
    took("head", start, 0);
    m_say(QStringLiteral("ok head %1").arg(e.sCode));
    for (int n = 1; n <= 2; ++n) {
        start = nowNs();
        e.NextSeq(e.lSeq);
        e.sPName = QStringLiteral("품목");
        e.siEAmount = 2;
        e.siEUnitCost = 500;
        e.lEstiKum = 1000;
        e.SaveEstimate();
        e.dETotKum = 1000.0 * n;
        e.UpdateTotKum();
        if (!m_messages.boxes().empty()) return refused();
        took("qline", start, 1);
        m_say(QStringLiteral("ok line %1 %2").arg(e.sCode).arg(e.lSeq));
    }
    return true;
}

bool SeatSaves::one(const QString& kind, int i, const QString& tag) {
    if (kind == u"invoice") return invoice(i, tag);
    if (kind == u"statement") return statement(i);
    return quotation();
}

int SeatSaves::mixed(int seconds, const QString& tag, int pauseMillis) {
    static const QString kinds[] = {QStringLiteral("invoice"), QStringLiteral("statement"),
                                    QStringLiteral("quotation")};
    QElapsedTimer clock;
    clock.start();
    int failed = 0;
    for (int i = 0; clock.elapsed() < seconds * 1000LL; ++i) {
        failed += one(kinds[i % 3], i, tag) ? 0 : 1;
        QThread::msleep(pauseMillis);
    }
    return failed;
}

} // namespace nb::test
