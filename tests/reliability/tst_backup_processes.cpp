// Backups and restores against other processes: a backup taken while a second copy saves
// invoices holds a whole store whose invoices are the first ones that copy confirmed; a
// restore killed at random points leaves, after the next start, either the old books or the
// restored ones in every store together, never some of each.
#include "BackupKit.h"
#include "ProgramRun.h"
#include "storage/backup/StoreCopy.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QThread>

using namespace nb;

namespace {

constexpr int kKills = 10;

QStringList outputLines(QProcess& p) {
    const QString out = QString::fromUtf8(p.readAllStandardOutput()).trimmed();
    return out.isEmpty() ? QStringList() : out.split(u'\n');
}

void startWorker(QProcess& p, const QStringList& args) {
    p.start(QStringLiteral(NB_WORKER), args);
    QVERIFY(p.waitForStarted());
}

void waitForFirstSave(QProcess& p) {
    QByteArray seen;
    while (!seen.contains("ok ") && p.state() == QProcess::Running) {
        p.waitForReadyRead(50);
        seen += p.peek(1 << 16);
    }
}

// The program itself, started on `home` like test::runProgram but left running.
void startProgram(QProcess& p, const QString& home, const QStringList& arguments) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("NUBELLA_HOME"), home);
    env.remove(QStringLiteral("DISPLAY"));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella"), arguments);
    QVERIFY(p.waitForStarted());
}

bool unzipEntry(const QString& zip, const QString& entry, const QString& folder) {
    QProcess p;
    p.start(QStringLiteral("unzip"),
            {QStringLiteral("-q"), QStringLiteral("-o"), zip, entry, QStringLiteral("-d"), folder});
    return p.waitForFinished(30000) && p.exitCode() == 0;
}

// Each invoice of a store file with its number of lines.
QMap<QString, int> invoicesIn(const QString& file) {
    QMap<QString, int> invoices;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("read"));
        db.setDatabaseName(file);
        if (db.open()) {
            QSqlQuery q(QStringLiteral("SELECT TaxCode, count(*) FROM NewAcount GROUP BY TaxCode"), db);
            while (q.next())
                invoices.insert(q.value(0).toString(), q.value(1).toInt());
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("read"));
    return invoices;
}

void layDownStores() {
    QVERIFY(test::openStores());
    closeStores();
}

// The books after the next start of the program (which finishes a restore cut short).
QStringList booksAfterNextStart(const test::TestHome& home) {
    const test::ProgramRun start =
        test::runProgram(home.path(), {QStringLiteral("--backup"), home.file(QStringLiteral("probe.zip"))});
    if (start.exitCode != 0) qWarning("next start: %s", qPrintable(start.errorText));
    return test::booksDump();
}

} // namespace

class TestBackupProcesses : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aBackupTakenWhileASecondCopyWritesIsWholeAndAPrefixOfItsSaves() {
        test::TestHome home;
        layDownStores();
        QProcess writer;
        startWorker(writer, {QStringLiteral("invoice"), QStringLiteral("300"), QStringLiteral("000001")});
        waitForFirstSave(writer);
        const QString zip = home.file(QStringLiteral("during.zip"));
        const test::ProgramRun backup = test::runProgram(home.path(), {QStringLiteral("--backup"), zip});
        QVERIFY2(backup.exitCode == 0, qPrintable(backup.errorText));
        QVERIFY(writer.waitForFinished(120000));
        QCOMPARE(writer.exitCode(), 0);
        const QStringList saves = outputLines(writer).filter(QRegularExpression(QStringLiteral("^ok ")));
        QCOMPARE(saves.size(), 300);

        const QString parts = home.file(QStringLiteral("parts"));
        QVERIFY(unzipEntry(zip, QStringLiteral("dbTax.db"), parts));
        const QString copy = parts + QStringLiteral("/dbTax.db");
        QCOMPARE(integrityProblem(copy), QString());
        const QMap<QString, int> backedUp = invoicesIn(copy);
        // Taken while the copy saved: some of its invoices, not all.
        QVERIFY2(!backedUp.isEmpty() && backedUp.size() < saves.size(),
                 qPrintable(QString::number(backedUp.size())));
        for (int i = 0; i < backedUp.size(); ++i) {
            const QStringList fields = saves.at(i).split(u' '); // ok CODE LINES TAG
            QVERIFY2(backedUp.contains(fields.at(1)), qPrintable(saves.at(i)));
            QCOMPARE(backedUp.value(fields.at(1)), fields.at(2).toInt());
        }
        qInfo("the backup holds the first %lld of %lld invoices", qlonglong(backedUp.size()),
              qlonglong(saves.size()));
    }

    void aRestoreKilledAtRandomPointsLeavesTheOldBooksOrTheRestoredOnes() {
        test::TestHome home;
        layDownStores();
        QVERIFY(test::changeEveryStore(QStringLiteral("X00001")));
        const QString xZip = home.file(QStringLiteral("x.zip"));
        QCOMPARE(test::runProgram(home.path(), {QStringLiteral("--backup"), xZip}).exitCode, 0);
        const QStringList xBooks = test::booksDump();
        QVERIFY(test::changeEveryStore(QStringLiteral("Y00001")));
        const QString yZip = home.file(QStringLiteral("y.zip"));
        QCOMPARE(test::runProgram(home.path(), {QStringLiteral("--backup"), yZip}).exitCode, 0);
        const QStringList yBooks = test::booksDump();
        QVERIFY(xBooks != yBooks);

        // One whole restore, timed: the kills fall across its length.
        QElapsedTimer timer;
        timer.start();
        const test::ProgramRun whole = test::runProgram(home.path(), {QStringLiteral("--restore"), xZip});
        const int wholeMillis = int(timer.elapsed());
        QVERIFY2(whole.exitCode == 0, qPrintable(whole.errorText));
        QCOMPARE(test::booksDump(), xBooks);

        bool onX = true;
        int old = 0;
        int restored = 0;
        for (int i = 0; i < kKills; ++i) {
            QProcess restore;
            startProgram(restore, home.path(), {QStringLiteral("--restore"), onX ? yZip : xZip});
            QThread::msleep(
                QRandomGenerator::global()->bounded(wholeMillis * 3 / 10, wholeMillis * 11 / 10 + 1));
            restore.kill();
            restore.waitForFinished(30000);
            const QStringList books = booksAfterNextStart(home);
            QVERIFY2(books == xBooks || books == yBooks,
                     qPrintable(QStringLiteral("a mixture after kill %1").arg(i)));
            const bool nowX = books == xBooks;
            (nowX == onX ? old : restored) += 1;
            onX = nowX;
            QVERIFY(!QFileInfo::exists(swapPlanPath()));
            for (const StoreRole& store : storeRoles())
                QVERIFY(!QFileInfo::exists(stagedPathFor(store.path)));
        }
        qInfo("%d kills: %d left the old books, %d the restored ones (restore %d ms)", kKills, old, restored,
              wholeMillis);
    }

    void aRestoreIsRefusedWhileASecondCopyHasTheStoresOpen() {
        test::TestHome home;
        layDownStores();
        const QString zip = home.file(QStringLiteral("books.zip"));
        QCOMPARE(test::runProgram(home.path(), {QStringLiteral("--backup"), zip}).exitCode, 0);
        QProcess writer;
        startWorker(writer, {QStringLiteral("invoice"), QStringLiteral("100000"), QStringLiteral("000001")});
        waitForFirstSave(writer);
        const test::ProgramRun restore = test::runProgram(home.path(), {QStringLiteral("--restore"), zip});
        writer.kill();
        writer.waitForFinished(30000);
        QCOMPARE(restore.exitCode, 1);
        QVERIFY2(restore.errorText.contains(QStringLiteral("다른 누벨라를 모두 끝낸 뒤")),
                 qPrintable(restore.errorText));
        QVERIFY(!QFileInfo::exists(swapPlanPath()));
        for (const StoreRole& store : storeRoles())
            QVERIFY(!QFileInfo::exists(stagedPathFor(store.path)));
        // The copy's saves stayed: the books were not put back.
        QVERIFY(invoicesIn(app().DbTaxFile).size() > 0);
    }

    void aStartFinishesASwapPlanLeftByAKill() {
        test::TestHome home;
        layDownStores();
        QVERIFY(test::changeEveryStore(QStringLiteral("X00001")));
        const QStringList xBooks = test::booksDump();
        // The swap as a kill leaves it: the plan written, the first store already moved.
        QList<SwapStep> steps;
        for (const StoreRole& store : storeRoles()) {
            QVERIFY(QFile::copy(store.path, stagedPathFor(store.path)));
            steps.append({stagedPathFor(store.path), store.path});
        }
        QVERIFY(test::changeEveryStore(QStringLiteral("Y00001")));
        QFile plan(swapPlanPath());
        QVERIFY(plan.open(QIODevice::WriteOnly));
        QJsonArray list;
        for (const SwapStep& step : steps)
            list.append(QJsonObject{{QStringLiteral("staged"), step.staged},
                                    {QStringLiteral("target"), step.target}});
        plan.write(QJsonDocument(list).toJson());
        plan.close();
        QVERIFY(QFile::remove(steps.first().target));
        QVERIFY(QFile::rename(steps.first().staged, steps.first().target));
        QCOMPARE(booksAfterNextStart(home), xBooks);
        QVERIFY(!QFileInfo::exists(swapPlanPath()));
    }
};

NB_TEST_MAIN(TestBackupProcesses)
#include "tst_backup_processes.moc"
