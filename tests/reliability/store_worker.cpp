// A running copy of the program's saves, for the reliability tests: it opens the stores of
// NUBELLA_HOME and saves invoices, statements or quotations through the program's own code,
// printing one line per save the program confirmed ("ok ...") or refused ("fail ..."). The
// tests kill it at random points, run two at once, or limit the size of the files it may write.
//
//   nb_store_worker invoice|statement|quotation COUNT [TAG]
//   nb_store_worker bump BILLNO SEQ COUNT           changes one statement line's amount
//   nb_store_worker mixed SECONDS TAG               an invoice, a statement, a quotation in turn
//                                                   until the time is up
//   nb_store_worker full invoice|statement|quotation one save refused by a full disk, then one
//                                                   more after space returns
#include "SeatSaves.h"
#include "common/Messages.h"
#include "core/AppState.h"
#include "shell/Startup.h"
#include "statement/StatementStore.h"
#include "storage/Database.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QCoreApplication>
#include <QDir>
#include <QRandomGenerator>
#include <QThread>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>

using namespace nb;

namespace {

ScriptedMessages* g_messages = nullptr;

// Between two saves a copy lets the other in, as an operator's typing always does (a copy that
// saved in a tight loop could find the store busy at every try of the other's wait).
constexpr int kPauseMillis = 5;

void say(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

test::SeatSaves& saves() {
    static test::SeatSaves seat(*g_messages, say);
    return seat;
}

// The last box shown since the previous call, on one line.
QString lastBox() {
    const auto boxes = g_messages->boxes();
    const QString text = boxes.empty() ? QStringLiteral("(no box)") : boxes.back().text;
    g_messages->clear();
    return QString(text).replace(u'\r', u' ').replace(u'\n', u' ');
}

bool saveOne(const QString& kind, int i, const QString& tag) {
    return saves().one(kind, i, tag);
}

// One line's amount changed again and again, as two operators on one statement would.
int bump(const QString& billNo, int seq, int count) {
    int failed = 0;
    for (int i = 0; i < count; ++i) {
        const double amount = double(QRandomGenerator::global()->bounded(1, 100000));
        if (DetailUpdate(stores().dbBill, billNo, seq, QStringLiteral("Amount"), amount).ok)
            say(QStringLiteral("ok %1").arg(amount));
        else
            ++failed, say(QStringLiteral("fail ") + lastBox());
        QThread::msleep(kPauseMillis);
    }
    return failed == 0 ? 0 : 1;
}

// Files may not grow past a few bytes (a full disk); a write past it fails instead of ending
// the process.
void limitFileSize(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

void liftFileSizeLimit() {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_FSIZE, &limit);
}

int fullDisk(const QString& kind) {
    limitFileSize(1024);
    if (saveOne(kind, 0, QStringLiteral("000001"))) return 1; // the save must have been refused
    liftFileSizeLimit();
    return saveOne(kind, 1, QStringLiteral("000002")) ? 0 : 1;
}

// The three kinds of save in turn for a while, as a seat of a busy shop makes them.
int mixed(int seconds, const QString& tag) {
    return saves().mixed(seconds, tag, kPauseMillis) == 0 ? 0 : 1;
}

int work(const QStringList& args) {
    const QString kind = args.at(0);
    if (kind == u"bump") return bump(args.at(1), args.value(2).toInt(), args.value(3).toInt());
    if (kind == u"mixed") return mixed(args.at(1).toInt(), args.value(2, QStringLiteral("000001")));
    if (kind == u"full") return fullDisk(args.at(1));
    const int count = args.at(1).toInt();
    const QString tag = args.value(2, QStringLiteral("000001"));
    int failed = 0;
    for (int i = 0; i < count; ++i) {
        failed += saveOne(kind, i, tag) ? 0 : 1;
        QThread::msleep(kPauseMillis);
    }
    return failed == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() < 2) return 2;
    g_messages = &scriptMessages();
    ReadSettings();
    QDir().mkpath(nb::app().DbPath);
    CreateMissingStoreFiles();
    if (!OpenDatabases() || !OpenDb(stores().dbEstimate, nb::app().DbEstimateFile)) return 3;
    const int rc = work(args);
    closeStores(); // the connections go before the application object
    return rc;
}
