// The backup and the restore of the books on either engine: the books read through the
// program's own connections before a backup come back after a restore; a restore that fails
// midway leaves the books it found; a backup taken while another seat saves holds every head
// with its lines; a restore waits until no other seat has the books open; a backup of one seat
// restores on a seat of the other engine.
#include "BackupKit.h"
#include "ServerDatabase.h"
#include "common/FileChooser.h"
#include "core/Lifecycle.h"
#include "shell/BackupMenu.h"
#include "storage/Backup.h"
#include "storage/ServerSettings.h"
#include "storage/StoreEngine.h"
#include "storage/StoreLayout.h"
#include "storage/backup/BackupArchive.h"
#include "storage/backup/ServerCopy.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QUuid>
#include <atomic>
#include <thread>

using namespace nb;

namespace {

// Every row of every store the program writes, read through connections of the program's own
// kind, in the order the rows were written, with their row numbers.
QStringList booksRows() {
    QStringList out;
    for (const ServerStore& store : serverStores()) {
        const QList<TableDef> tables = schemaTables(store.schema);
        if (tables.isEmpty()) continue;
        Database db;
        if (!db.open(store.path)) {
            out << store.schema + QStringLiteral(": not open");
            continue;
        }
        for (const TableDef& table : tables) {
            // The server's totals work rows are its connected seats' scratch, not the books.
            if (db.onServer() && isWorkTable(table.name)) continue;
            QStringList columns;
            for (const ColumnDef& column : table.columns)
                columns << quoteName(column.name);
            QSqlQuery q(db.connection());
            const QString sql = QStringLiteral("SELECT rowid, ") + columns.join(QStringLiteral(", ")) +
                                QStringLiteral(" FROM ") + quoteName(table.name) +
                                QStringLiteral(" ORDER BY rowid");
            if (!q.exec(db.statementFor(sql))) {
                out << table.name + QStringLiteral(": ") + q.lastError().text();
                continue;
            }
            while (q.next()) {
                QStringList values;
                for (int i = 0; i < q.record().count(); ++i)
                    values << (q.isNull(i) ? QStringLiteral("NULL") : q.value(i).toString());
                out << table.name + u':' + values.join(u'|');
            }
        }
    }
    return out;
}

bool execOn(const QString& path, const QStringList& statements) {
    Database db;
    if (!db.open(path)) return false;
    for (const QString& sql : statements)
        if (!test::exec(db, sql)) {
            qWarning("%s", qPrintable(sql));
            return false;
        }
    return true;
}

// A shop's books in every store: traders and a product with quotes and wildcards, statements with
// fractions, invoice lines, a quotation, a total.
void seedBooks(const QString& tag) {
    const AppState& a = app();
    QVERIFY(execOn(
        a.DbBasicFile,
        {QStringLiteral("INSERT INTO Trader (Code, C_Name, Phone) VALUES ('%1', '거래처 %1', NULL)").arg(tag),
         QStringLiteral("INSERT INTO Product (Code, PName) VALUES ('%1', '볼펜 ''검정'' 100%_*')")
             .arg(tag)}));
    QVERIFY(execOn(
        a.DbBillFile,
        {QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) VALUES "
                        "('%1', '2024-05-10', '%1', 3499.95, 349.995, 1)")
             .arg(tag),
         QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) "
                        "VALUES ('%1', 2, '둘째', 'EA', 1.5, 333.3, 0, 499.95, 49.995)")
             .arg(tag),
         QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Unit, Quant, Price, DC, Amount, VAT) "
                        "VALUES ('%1', 1, '첫째', '박스', 3, 1000, 0, 3000, 300)")
             .arg(tag)}));
    QVERIFY(
        execOn(a.DbTaxFile, {QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, TradeKum, VatKum) "
                                            "VALUES ('%1', '%1', '품목 %1', 10000, 1000)")
                                 .arg(tag),
                             QStringLiteral("INSERT INTO SaleTotal (Serial, CCode, CName, TradeKum) VALUES "
                                            "('1234567', '%1', '합계 %1', 2500)")
                                 .arg(tag)}));
    QVERIFY(
        execOn(a.DbEstimateFile,
               {QStringLiteral("INSERT INTO EstiBase (EstiCode, CName) VALUES ('%1', '견적 %1')").arg(tag)}));
}

void openSeededBooks() {
    QVERIFY(test::openStores());
    seedBooks(QStringLiteral("000001"));
    seedBooks(QStringLiteral("000002"));
}

// Another change in every store: rows added, changed and taken away.
void changeBooks() {
    seedBooks(QStringLiteral("000003"));
    QVERIFY(execOn(app().DbBillFile, {QStringLiteral("DELETE FROM Detail WHERE BillSEQ = 1"),
                                      QStringLiteral("UPDATE Master SET TotAmount = 1")}));
    QVERIFY(execOn(app().DbBasicFile, {QStringLiteral("DELETE FROM Product")}));
}

QString writeBackup(const QString& zip) {
    QString why;
    if (!WriteBackup(zip, &why)) qWarning("%s", qPrintable(why));
    return zip;
}

void checkNothingLeftOver() {
    QVERIFY(!QFileInfo::exists(swapPlanPath()));
    for (const StoreRole& store : storeRoles())
        QVERIFY2(!QFileInfo::exists(stagedPathFor(store.path)), qPrintable(store.path));
}

// One store of a backup, taken out into `folder`.
QString storeOfBackup(const QString& zip, const QString& entry, const QString& folder) {
    ArchiveReader reader(zip);
    if (!reader.problem().isEmpty()) return QString();
    for (const ManifestStore& store : reader.manifest().stores) {
        if (store.entry != entry) continue;
        const QString target = folder + u'/' + entry;
        QFile::remove(target);
        QString why;
        return reader.extract(entry, store.bytes, target, &why) ? target : QString();
    }
    return QString();
}

// The rows of a query on a store file, each row's values joined by '|'.
QStringList rowsOfFile(const QString& file, const QString& sql) {
    const QString name = QUuid::createUuid().toString();
    QStringList rows;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.open();
        QSqlQuery q(db);
        if (!q.exec(sql)) rows << q.lastError().text();
        while (q.next()) {
            QStringList values;
            for (int i = 0; i < q.record().count(); ++i)
                values << q.value(i).toString();
            rows << values.join(u'|');
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

// A connection of another seat to the statement store: the server's database, or the file.
class OtherSeat {
public:
    OtherSeat() : m_name(QStringLiteral("other-seat-") + QUuid::createUuid().toString(QUuid::Id128)) {}
    ~OtherSeat() {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            if (db.isOpen()) db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    bool open() {
        const QString connInfo = serverConnInfo();
        QSqlDatabase db = QSqlDatabase::addDatabase(
            connInfo.isEmpty() ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL"), m_name);
        if (connInfo.isEmpty()) {
            db.setDatabaseName(app().DbBillFile);
            db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
        } else {
            db.setConnectOptions(connInfo);
        }
        if (!db.open()) return false;
        m_server = !connInfo.isEmpty();
        QSqlQuery q(db);
        return q.exec(m_server ? QStringLiteral("SET search_path TO bill")
                               : QStringLiteral("PRAGMA journal_mode"));
    }
    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }
    bool server() const { return m_server; }

private:
    QString m_name;
    bool m_server = false;
};

// One statement saved whole, head and lines: the head's totals are its lines'.
bool saveStatement(OtherSeat& seat, int number) {
    QSqlDatabase db = seat.db();
    QSqlQuery q(db);
    if (!q.exec(seat.server() ? QStringLiteral("BEGIN") : QStringLiteral("BEGIN IMMEDIATE"))) return false;
    const QString billNo = QStringLiteral("W%1").arg(number, 5, 10, QChar(u'0'));
    bool ok =
        q.prepare(QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                                 "VALUES (?, '2024-06-01', '000001', 0, 0, 1)"));
    q.addBindValue(billNo);
    ok = ok && q.exec();
    for (int line = 1; ok && line <= 3; ++line) {
        ok =
            q.prepare(QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName, Amount, VAT) VALUES (?, ?, "
                                     "'품목', ?, ?)"));
        q.addBindValue(billNo);
        q.addBindValue(line);
        q.addBindValue(double(line * 100 + number));
        q.addBindValue(double(line * 10));
        ok = ok && q.exec();
    }
    ok = ok &&
         q.prepare(QStringLiteral("UPDATE Master SET TotAmount = (SELECT sum(Amount) FROM Detail WHERE "
                                  "Detail.BillNo = Master.BillNo), TotVat = (SELECT sum(VAT) FROM Detail "
                                  "WHERE Detail.BillNo = Master.BillNo) WHERE BillNo = ?"));
    q.addBindValue(billNo);
    ok = ok && q.exec();
    QSqlQuery end(db);
    return end.exec(ok ? QStringLiteral("COMMIT") : QStringLiteral("ROLLBACK")) && ok;
}

} // namespace

class TestBackupBooks : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() {
        setRestoreInterruption({});
        resetProgramState();
    }

    void backupThenRestoreGivesTheSameRows() {
        test::TestHome home;
        openSeededBooks();
        const QStringList backedUp = booksRows();
        QVERIFY(backedUp.size() > 10);
        const QString zip = writeBackup(home.file(QStringLiteral("books.zip")));
        QVERIFY(isWholeArchive(zip));
        changeBooks();
        QVERIFY(booksRows() != backedUp);
        test::script();
        QString why;
        QVERIFY2(RestoreBackup(zip, &why), qPrintable(why));
        QCOMPARE(booksRows(), backedUp);
        checkNothingLeftOver();
        // The stores are open again, and a row saved now comes after the restored ones.
        QCOMPARE(test::scalar(stores().dbBasic, QStringLiteral("SELECT count(*) FROM Product")).toInt(), 2);
        QVERIFY(test::exec(stores().dbBill, QStringLiteral("INSERT INTO Master (BillNo) VALUES ('000009')")));
        QCOMPARE(
            test::scalar(stores().dbBill, QStringLiteral("SELECT BillNo FROM Master ORDER BY rowid DESC"))
                .toString(),
            QStringLiteral("000009"));
        // The books before the restore were backed up first.
        int before = 0;
        for (const AutomaticBackup& b : automaticBackups(backupFolder()))
            before += b.name.endsWith(QStringLiteral("-복원전.zip")) ? 1 : 0;
        QCOMPARE(before, 1);
    }

    void theBackupsManifestCountsTheRowsOfEveryStore() {
        test::TestHome home;
        openSeededBooks();
        const QString zip = writeBackup(home.file(QStringLiteral("books.zip")));
        ArchiveReader reader(zip);
        QVERIFY2(reader.problem().isEmpty(), qPrintable(reader.problem()));
        QHash<QString, ManifestStore> byEntry;
        for (const ManifestStore& store : reader.manifest().stores)
            byEntry.insert(store.entry, store);
        QCOMPARE(byEntry.value(QStringLiteral("dbBasic.db")).rows.value(QStringLiteral("Trader")), 2);
        QCOMPARE(byEntry.value(QStringLiteral("dbBill.db")).rows.value(QStringLiteral("Detail")), 4);
        // The server's totals work rows are its connected seats' scratch and stay behind.
        QCOMPARE(byEntry.value(QStringLiteral("dbTax.db")).rows.value(QStringLiteral("SaleTotal")),
                 test::testOnServer() ? 0 : 2);
        QCOMPARE(byEntry.value(QStringLiteral("dbEstimate.db")).rows.value(QStringLiteral("EstiBase")), 2);
        // Each store of the backup is a store file any seat on files opens, with the same rows.
        QTemporaryDir out;
        const QString bill = storeOfBackup(zip, QStringLiteral("dbBill.db"), out.path());
        QVERIFY(!bill.isEmpty());
        QCOMPARE(rowsOfFile(
                     bill, QStringLiteral("SELECT BillSEQ, PName, Quant, Amount FROM Detail ORDER BY rowid")),
                 (QStringList{"2|둘째|1.5|499.95", "1|첫째|3|3000", "2|둘째|1.5|499.95", "1|첫째|3|3000"}));
        QVERIFY(integrityProblem(bill).isEmpty());
    }

    void aRestoreThatFailsMidwayLeavesTheOldBooks() {
        test::TestHome home;
        openSeededBooks();
        const QStringList backedUp = booksRows();
        const QString zip = writeBackup(home.file(QStringLiteral("books.zip")));
        changeBooks();
        const QStringList changed = booksRows();
        // The third store fails, after the two before it were put in place.
        QStringList reached;
        setRestoreInterruption([&reached](const QString& store) {
            reached << store;
            return store != QStringLiteral("tax") && store != QStringLiteral("dbTax.db");
        });
        test::script();
        QString why;
        QVERIFY(!RestoreBackup(zip, &why));
        QVERIFY2(why.contains(QStringLiteral("복원하는 중에 멈추었습니다")), qPrintable(why));
        const qsizetype failedAt =
            std::max(reached.indexOf(QStringLiteral("tax")), reached.indexOf(QStringLiteral("dbTax.db")));
        QVERIFY2(failedAt >= 2, qPrintable(reached.join(u',')));
        setRestoreInterruption({});
        QCOMPARE(booksRows(), changed);
        checkNothingLeftOver();
        QVERIFY(stores().dbBasic.isOpen());
        // The same backup restores whole afterwards.
        QVERIFY2(RestoreBackup(zip, &why), qPrintable(why));
        QCOMPARE(booksRows(), backedUp);
    }

    void aBackupWhileAnotherSeatSavesIsConsistent() {
        test::TestHome home;
        openSeededBooks();
        // The other seat saves statements on a thread of its own until the backups are checked
        // (also when a check fails and leaves the test early).
        struct Writer {
            std::atomic<bool> stop{false};
            std::atomic<int> saved{0};
            std::atomic<bool> failed{false};
            std::thread thread;
            ~Writer() {
                stop = true;
                if (thread.joinable()) thread.join();
            }
        } writer;
        writer.thread = std::thread([&writer] {
            OtherSeat seat;
            if (!seat.open()) {
                writer.failed = true;
                return;
            }
            for (int n = 1; !writer.stop; ++n) {
                if (saveStatement(seat, n))
                    ++writer.saved;
                else
                    writer.failed = true;
            }
        });
        QTemporaryDir out;
        int during = 0;
        for (int i = 0; i < 6; ++i) {
            const int savedBefore = writer.saved;
            const QString zip = writeBackup(home.file(QStringLiteral("during-%1.zip").arg(i)));
            during += writer.saved - savedBefore;
            const QString bill = storeOfBackup(zip, QStringLiteral("dbBill.db"), out.path());
            QVERIFY(!bill.isEmpty());
            // Every head has its three lines and their totals; no line is without its head.
            QCOMPARE(rowsOfFile(bill, QStringLiteral(
                                          "SELECT count(*) FROM Master m WHERE m.BillNo LIKE 'W%' AND "
                                          "(SELECT count(*) FROM Detail d WHERE d.BillNo = m.BillNo) <> 3 "
                                          "OR abs(m.TotAmount - (SELECT total(Amount) FROM Detail d "
                                          "WHERE d.BillNo = m.BillNo)) > 0.001")),
                     QStringList{QStringLiteral("0")});
            QCOMPARE(
                rowsOfFile(bill, QStringLiteral("SELECT count(*) FROM Detail d WHERE NOT EXISTS (SELECT 1 "
                                                "FROM Master m WHERE m.BillNo = d.BillNo)")),
                QStringList{QStringLiteral("0")});
        }
        writer.stop = true;
        writer.thread.join();
        QVERIFY(!writer.failed);
        QVERIFY2(during > 0, "no statement was saved while the backups were taken");
        QCOMPARE(test::scalar(stores().dbBill,
                              QStringLiteral("SELECT count(*) FROM Master WHERE BillNo LIKE 'W%'"))
                     .toInt(),
                 int(writer.saved));
    }

    void aRestoreWaitsUntilNoOtherSeatHasTheBooksOpen() {
        test::TestHome home;
        openSeededBooks();
        const QString zip = writeBackup(home.file(QStringLiteral("books.zip")));
        changeBooks();
        const QStringList changed = booksRows();
        QString why;
        {
            OtherSeat seat;
            QVERIFY(seat.open());
            test::script();
            QVERIFY(!RestoreBackup(zip, &why));
            QVERIFY2(why.contains(QStringLiteral("끝낸 뒤 다시 복원하십시오")), qPrintable(why));
            QCOMPARE(booksRows(), changed);
            checkNothingLeftOver();
            QVERIFY(stores().dbBill.isOpen());
        }
        QVERIFY2(RestoreBackup(zip, &why), qPrintable(why));
        QVERIFY(booksRows() != changed);
    }

    // A backup of a seat on the server restores on a seat on its files (and one of files on
    // another seat on files), row for row.
    void aBackupRestoresOnASeatOnFiles() {
        QTemporaryDir kept;
        const QString zip = kept.path() + QStringLiteral("/books.zip");
        QStringList backedUp;
        {
            test::TestHome home;
            openSeededBooks();
            backedUp = booksRows();
            writeBackup(zip);
        }
        QVERIFY(isWholeArchive(zip));
        test::TestHome other;
        qunsetenv("NUBELLA_PG");
        QVERIFY(!onServer());
        QVERIFY(test::openStores());
        QVERIFY(booksRows() != backedUp);
        test::script();
        QString why;
        QVERIFY2(RestoreBackup(zip, &why), qPrintable(why));
        QCOMPARE(booksRows(), backedUp);
    }

    void theMenuBacksUpAndRestoresTheBooks() {
        test::TestHome home;
        openSeededBooks();
        const QStringList backedUp = booksRows();
        ScriptedFileChooser& chooser = scriptFileChooser();
        chooser.answers << home.file(QStringLiteral("menu-books"));
        ScriptedMessages& said = test::script();
        RunBackupMenu(nullptr);
        QVERIFY2(said.last().text.startsWith(QStringLiteral("백업했습니다.")), qPrintable(said.last().text));
        changeBooks();
        chooser.answers << home.file(QStringLiteral("menu-books.zip"));
        said.answer(AnsYes);
        RunRestoreMenu(nullptr);
        QVERIFY2(said.last().text.startsWith(QStringLiteral("복원했습니다.")), qPrintable(said.last().text));
        QCOMPARE(booksRows(), backedUp);
        // On the server the question says that every seat's books change.
        const QString question = said.boxes()[said.boxes().size() - 2].text;
        QCOMPARE(question.contains(QStringLiteral("다른 자리의 누벨라를 모두 끝낸 뒤")), onServer());
    }

    void theCommandLineBacksUpAndRestoresTheBooks() {
        test::TestHome home;
        openSeededBooks();
        const QStringList backedUp = booksRows();
        closeStores(); // the program run below is the only seat
        auto runProgram = [&home](const QStringList& arguments) {
            QProcess program;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("NUBELLA_HOME"), home.path());
            program.setProcessEnvironment(env);
            program.start(QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella"), arguments);
            if (!program.waitForFinished(120000)) return -1;
            if (program.exitCode() != 0) qWarning("%s", program.readAllStandardError().constData());
            return program.exitCode();
        };
        const QString zip = home.file(QStringLiteral("command-books.zip"));
        QCOMPARE(runProgram({QStringLiteral("--backup"), zip}), 0);
        changeBooks();
        closeStores();
        QCOMPARE(runProgram({QStringLiteral("--restore"), zip}), 0);
        QCOMPARE(booksRows(), backedUp);
    }

    void theDaysBackupHoldsTheBooks() {
        test::TestHome home;
        openSeededBooks();
        closeStores();
        test::script();
        RunStartupSafeguards();
        QList<AutomaticBackup> daily;
        for (const AutomaticBackup& b : automaticBackups(backupFolder()))
            if (b.daily) daily << b;
        QCOMPARE(daily.size(), 1);
        ArchiveReader reader(backupFolder() + u'/' + daily.first().name);
        QVERIFY2(reader.problem().isEmpty(), qPrintable(reader.problem()));
        for (const ManifestStore& store : reader.manifest().stores)
            if (store.entry == u"dbBill.db") QCOMPARE(store.rows.value(QStringLiteral("Master")), 2);
    }
};

NB_TEST_MAIN(TestBackupBooks)
#include "tst_backup_books.moc"
