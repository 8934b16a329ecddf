#pragma once
// The saves one seat of a shop makes, through the program's own code: invoices, statements
// (each line saved and priced as the screen does it) and quotations (the head, then each line
// and the new total). The running copies the reliability tests start and the benchmark of
// several seats on one server both stand on these, so that what they prove and what they time
// is the same work. The stores must be open (dbTax, dbBill and dbEstimate).

#include <QString>
#include <functional>

namespace nb {
class ScriptedMessages;
}

namespace nb::test {

class SeatSaves {
public:
    // say is told one line per save the program confirmed ("ok ...") or refused ("fail ...",
    // with the box it showed); messages is the script the program's boxes go to.
    SeatSaves(ScriptedMessages& messages, std::function<void(const QString& line)> say);

    // Told after every step the operator waits for (one call into the program's store, one
    // transaction): its kind ("invoice"; a statement's "line" and "cell"; a quotation's "head" and
    // "qline"), its time in milliseconds and
    // the document lines it committed.
    std::function<void(const char* step, double ms, int lines)> timed;

    // An invoice of one to three lines; "ok TAXCODE LINES TAG".
    bool invoice(int i, const QString& tag);
    // A new statement of two lines; "ok BILLNO SEQ" per line once its amount and VAT are saved.
    bool statement(int i);
    // A quotation of two lines; "ok head CODE", then "ok line CODE SEQ" per line.
    bool quotation();
    // One save of the kind "invoice", "statement" or "quotation".
    bool one(const QString& kind, int i, const QString& tag);
    // The three kinds in turn until the time is up, pauseMillis between saves (an operator's
    // typing always lets the other seats in); the number of saves refused.
    int mixed(int seconds, const QString& tag, int pauseMillis);

private:
    QString lastBox();
    bool refused();
    void took(const char* step, qint64 startNs, int lines);

    ScriptedMessages& m_messages;
    std::function<void(const QString&)> m_say;
};

} // namespace nb::test
