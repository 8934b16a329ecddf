// The import of the original's Jet files: both shared sets with every figure of their manifests,
// the texts byte for byte as the mdbtools export gives them, the upgrades of the older layout,
// the old statement file's conversion beside the shop's own statements, a damaged or cut file
// refused with the stores untouched, and a reader or a whole import killed at random moments
// leaving the old stores (or, once exchanged, the new ones) whole.
#include "ProgramRun.h"
#include "StoreTestKit.h"
#include "storage/Stores.h"
#include "storage/jet/JetBuild.h"
#include "storage/jet/JetImport.h"
#include "storage/jet/JetSwap.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <csignal>

using namespace nb;
using namespace nb::test;

namespace {

QString program() {
    return QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella");
}

QString setFolder(const QString& set) {
    return sharedDataDir() + QStringLiteral("/legacy-jet/") + set;
}

QJsonObject manifest(const QString& set) {
    QFile file(setFolder(set) + QStringLiteral("/manifest.json"));
    file.open(QIODevice::ReadOnly);
    return QJsonDocument::fromJson(file.readAll()).object();
}

// A writable copy of a shared set, without the files named.
QString copySet(const TestHome& home, const QString& set, const QStringList& leaveOut = {}) {
    const QString to = home.file(QStringLiteral("source-") + set);
    QDir().mkpath(to);
    for (const QFileInfo& f : QDir(setFolder(set)).entryInfoList({QStringLiteral("*.mdb")}, QDir::Files)) {
        if (leaveOut.contains(f.fileName())) continue;
        QFile::copy(f.absoluteFilePath(), to + u'/' + f.fileName());
        QFile(to + u'/' + f.fileName()).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }
    return to;
}

// Stores laid down as at a first start, with one trader the import must replace.
void seedStores(const TestHome& home) {
    useStoreFolder(home);
    CreateMissingStoreFiles();
    QVERIFY(runRaw(
        app().DbBasicFile,
        {QStringLiteral("INSERT INTO Trader (Code, C_Name, bDeled) VALUES ('000001', '가져오기 전', 0)")}));
}

// Every store's contents as the sqlite3 command prints them, hashed: equal means untouched.
QByteArray storesFingerprint() {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QStringList names = QDir(app().DbPath).entryList({QStringLiteral("*.db")}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        QProcess dump;
        dump.start(QStringLiteral("sqlite3"), {app().DbPath + u'/' + name, QStringLiteral(".dump")});
        dump.waitForFinished(60000);
        hash.addData(name.toUtf8());
        hash.addData(dump.readAllStandardOutput());
    }
    return hash.result();
}

qint64 count(const QString& file, const QString& sql) {
    return rawValue(file, sql).toLongLong();
}

double total(const QString& file, const QString& sql) {
    return rawValue(file, sql).toDouble();
}

JetImportReport runImport(const QString& folder, const QString& reader = program()) {
    JetImportOptions options;
    options.readerProgram = reader;
    return importJetFolder(folder, options);
}

// True when /proc's status of a process shows SIGKILL pending: it will not run another step.
bool killPending(const QString& pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) return true; // gone already
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (!line.startsWith("SigPnd:") && !line.startsWith("ShdPnd:")) continue;
        if (line.mid(7).trimmed().toULongLong(nullptr, 16) & (1ULL << (SIGKILL - 1))) return true;
    }
    return false;
}

// Readers of the given old folder (the children an import starts) still free to write.
int readersStillWriting(const QString& source) {
    int found = 0;
    for (const QString& pid :
         QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs)) {
        QFile cmdline(QStringLiteral("/proc/%1/cmdline").arg(pid));
        if (!cmdline.open(QIODevice::ReadOnly)) continue;
        const QByteArray line = cmdline.readAll();
        if (line.contains("--read-mdb") && line.contains(source.toUtf8()) && !killPending(pid)) ++found;
    }
    return found;
}

QStringList leftoverWorkFolders() {
    return QDir(QFileInfo(app().DbPath).absolutePath())
        .entryList({QStringLiteral("Dbs.import-*")}, QDir::Dirs | QDir::NoDotAndDotDot);
}

void compareBookFigures(const QJsonObject& m) {
    const AppState& a = app();
    QCOMPARE(count(a.DbBasicFile, "SELECT count(*) FROM User"), m["User"].toInteger());
    QCOMPARE(count(a.DbBasicFile, "SELECT count(*) FROM Environment"), m["Environment"].toInteger());
    QCOMPARE(count(a.DbBasicFile, "SELECT count(*) FROM Trader"), m["Trader"].toInteger());
    QCOMPARE(total(a.DbBasicFile, "SELECT sum(TotNoPay) FROM Trader"), m["Trader.TotNoPay.sum"].toDouble());
    QCOMPARE(count(a.DbBasicFile, "SELECT count(*) FROM Trader WHERE bDeled = -1"),
             m["Trader.bDeled.true"].toInteger());
    QCOMPARE(count(a.DbBasicFile, "SELECT count(*) FROM Trader WHERE bDeled NOT IN (-1, 0)"), 0);
    QCOMPARE(count(a.DbBasicFile, "SELECT count(*) FROM Product"), m["Product"].toInteger());
    QCOMPARE(count(a.DbBillFile, "SELECT count(*) FROM Master"), m["Master"].toInteger());
    QCOMPARE(count(a.DbBillFile, "SELECT count(*) FROM Detail"), m["Detail"].toInteger());
    QCOMPARE(
        count(a.DbBillFile, "SELECT count(*) FROM Detail WHERE BillNo NOT IN (SELECT BillNo FROM Master)"),
        m["Detail.orphans"].toInteger());
    QCOMPARE(
        total(a.DbBillFile, "SELECT sum(Amount) FROM Detail WHERE BillNo IN (SELECT BillNo FROM Master)"),
        m["Detail.Amount.sum of lines under a head"].toDouble());
    QCOMPARE(total(a.DbBillFile, "SELECT sum(VAT) FROM Detail WHERE BillNo IN (SELECT BillNo FROM Master)"),
             m["Detail.VAT.sum of lines under a head"].toDouble());
    QCOMPARE(count(a.DbBillFile,
                   "SELECT count(*) FROM Master m WHERE TotAmount <> (SELECT coalesce(sum(Amount), "
                   "0) FROM Detail d WHERE d.BillNo = m.BillNo)"),
             m["Master.heads whose TotAmount differs from their lines"].toInteger());
    QCOMPARE(count(a.DbTaxFile, "SELECT count(*) FROM NewAcount"), m["NewAcount"].toInteger());
    QCOMPARE(count(a.DbTaxFile, "SELECT count(DISTINCT TaxCode) FROM NewAcount"),
             m["NewAcount.invoices"].toInteger());
    QCOMPARE(total(a.DbTaxFile, "SELECT sum(TradeKum) FROM NewAcount"),
             m["NewAcount.TradeKum.sum"].toDouble());
    QCOMPARE(total(a.DbTaxFile, "SELECT sum(VatKum) FROM NewAcount"), m["NewAcount.VatKum.sum"].toDouble());
    QCOMPARE(count(a.DbEstimateFile, "SELECT count(*) FROM EstiBase"), m["EstiBase"].toInteger());
    QCOMPARE(count(a.DbEstimateFile, "SELECT count(*) FROM Estimate"), m["Estimate"].toInteger());
    QCOMPARE(total(a.DbEstimateFile, "SELECT sum(EstiKum) FROM EstiBase"),
             m["EstiBase.EstiKum.sum"].toDouble());
    QCOMPARE(count(a.DbPostFile, "SELECT count(*) FROM Post"), m["Post"].toInteger());
}

// The rows of a Jet table as the mdbtools export prints them, each a list of fields.
QList<QStringList> exported(const QString& mdb, const QString& table) {
    QProcess exportRun;
    exportRun.start(QStringLiteral("mdb-export"),
                    {QStringLiteral("-H"), QStringLiteral("-d"), QStringLiteral("\x1f"), QStringLiteral("-R"),
                     QStringLiteral("\x1e"), QStringLiteral("-q"), QStringLiteral("\x02"), mdb, table});
    exportRun.waitForFinished(60000);
    QList<QStringList> rows;
    for (const QString& row :
         QString::fromUtf8(exportRun.readAllStandardOutput()).split(u'\x1e', Qt::SkipEmptyParts)) {
        QStringList fields = row.split(u'\x1f');
        for (QString& f : fields)
            if (f.startsWith(u'\x02') && f.endsWith(u'\x02')) f = f.mid(1, f.size() - 2);
        rows << fields;
    }
    return rows;
}

// Every text column of the table, row by row, against the export of the same Jet table.
void compareTexts(const QString& mdb, const QString& store, const QString& table) {
    const QList<QStringList> expected = exported(mdb, table);
    Database db;
    QVERIFY(db.open(store));
    const QStringList columns = db.columns(table);
    QSqlQuery q(db.connection());
    QVERIFY(q.exec(QStringLiteral("SELECT * FROM ") + quoteName(table) + QStringLiteral(" ORDER BY rowid")));
    int row = 0;
    while (q.next()) {
        QVERIFY(row < expected.size());
        for (int c = 0; c < columns.size() && c < expected[row].size(); ++c)
            if (db.columnType(table, columns[c]).startsWith(QStringLiteral("TEXT")))
                QCOMPARE(q.value(c).toString(), expected[row][c]);
        ++row;
    }
    QCOMPARE(row, expected.size());
}

// A reader that is ended by kill -9 after `millis` (at once for 0).
QString killingReader(const TestHome& home, int millis) {
    const QString path = home.file(QStringLiteral("killing-reader-%1.sh").arg(millis));
    QFile script(path);
    script.open(QIODevice::WriteOnly);
    script.write(
        QStringLiteral("#!/bin/sh\n\"%1\" \"$@\" &\npid=$!\nsleep %2\nkill -9 $pid 2>/dev/null\nwait $pid\n"
                       "exit $?\n")
            .arg(program(), QString::number(millis / 1000.0, 'f', 3))
            .toUtf8());
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

bool holdsNewStores(const QJsonObject& m) {
    return count(app().DbBasicFile, "SELECT count(*) FROM Trader") == m["Trader"].toInteger() &&
           count(app().DbBillFile, "SELECT count(*) FROM Master") == m["Master"].toInteger() &&
           count(app().DbTaxFile, "SELECT count(*) FROM NewAcount") == m["NewAcount"].toInteger() &&
           count(app().DbPostFile, "SELECT count(*) FROM Post") == m["Post"].toInteger();
}

} // namespace

class TestJetImport : public QObject {
    Q_OBJECT

private slots:
    void importsTheCurrentLayoutWithEveryManifestFigure() {
        TestHome home;
        seedStores(home);
        const QString source = copySet(home, QStringLiteral("current"), {QStringLiteral("dbdetail.mdb")});
        const JetImportReport report = runImport(source);
        QVERIFY2(report.ok, qPrintable(report.failure));
        compareBookFigures(manifest(QStringLiteral("current")));
        for (const JetTableFigures& t : report.tables)
            QVERIFY2(t.matches(), qPrintable(t.table));
        QCOMPARE(report.tables.size(), 13);
        // The quotation store comes with the index a new quotation's number reads.
        QCOMPARE(
            count(app().DbEstimateFile,
                  "SELECT count(*) FROM sqlite_master WHERE type = 'index' AND name LIKE '%_RunningCode'"),
            2);
        QVERIFY(report.notes.isEmpty());
        QVERIFY(QFileInfo(report.keptFolder).isDir());
        QVERIFY(leftoverWorkFolders().isEmpty());
        // The books were backed up before the change, and lie whole in the kept folder.
        QCOMPARE(QDir(home.file(QStringLiteral("Backup")))
                     .entryList({QStringLiteral("*-가져오기전.zip")}, QDir::Files)
                     .size(),
                 1);
        QCOMPARE(rawValue(report.keptFolder + QStringLiteral("/dbBasic.db"), "SELECT C_Name FROM Trader")
                     .toString(),
                 QStringLiteral("가져오기 전"));
    }

    void importsTheOlderLayoutThroughTheUpgradeSteps() {
        TestHome home;
        seedStores(home);
        const JetImportReport report = runImport(copySet(home, QStringLiteral("older")));
        QVERIFY2(report.ok, qPrintable(report.failure));
        compareBookFigures(manifest(QStringLiteral("older")));
        const AppState& a = app();
        // Trader.HPhone added empty; the unit moved out of PNorm into Unit.
        QCOMPARE(count(a.DbBasicFile, "SELECT count(*) FROM Trader WHERE HPhone = ''"), 120);
        QCOMPARE(count(a.DbBasicFile, "SELECT count(*) FROM Product WHERE PNorm <> ''"), 0);
        const QList<QStringList> products = exported(
            setFolder(QStringLiteral("older")) + QStringLiteral("/dbBasic.mdb"), QStringLiteral("Product"));
        const QVariantList units = rawColumn(a.DbBasicFile, "SELECT Unit FROM Product ORDER BY rowid");
        QCOMPARE(units.size(), products.size());
        for (int i = 0; i < units.size(); ++i)
            QCOMPARE(units[i].toString(), products[i][2]);
        // Every invoice belongs to the first supplier, as the upgrade of an older store decides.
        const QString first = rawValue(a.DbBasicFile, "SELECT Serial FROM User ORDER BY rowid").toString();
        QCOMPARE(count(a.DbTaxFile, "SELECT count(DISTINCT UserCode) FROM NewAcount"), 1);
        QCOMPARE(rawValue(a.DbTaxFile, "SELECT UserCode FROM NewAcount").toString(), first);
        Database tax;
        QVERIFY(tax.open(a.DbTaxFile));
        QVERIFY(tax.hasTable(QStringLiteral("BuyTax")) && tax.hasTable(QStringLiteral("BuyTotal")));
    }

    void convertsTheOldStatementFileBesideTheShopsOwnStatements() {
        TestHome home;
        seedStores(home);
        const QJsonObject m = manifest(QStringLiteral("current"));
        script();
        const JetImportReport report = runImport(copySet(home, QStringLiteral("current")));
        QVERIFY2(report.ok, qPrintable(report.failure));
        const QString bill = app().DbBillFile;
        QCOMPARE(count(bill, "SELECT count(*) FROM Master"),
                 m["Master"].toInteger() + m["dbdetail.DealTitle"].toInteger());
        QCOMPARE(count(bill, "SELECT count(*) FROM Detail"),
                 m["Detail"].toInteger() + m["dbdetail.DealList"].toInteger());
        // The hand-kept totals that disagree with their lines are still the shop's.
        QCOMPARE(count(bill,
                       "SELECT count(*) FROM Master m WHERE TotAmount <> (SELECT coalesce(sum(Amount), 0) "
                       "FROM Detail d WHERE d.BillNo = m.BillNo)"),
                 m["Master.heads whose TotAmount differs from their lines"].toInteger());
        QCOMPARE(count(bill, "SELECT count(*) FROM Detail WHERE BillNo NOT IN (SELECT BillNo FROM Master)"),
                 m["Detail.orphans"].toInteger());
        int converted = 0;
        for (const JetTableFigures& t : report.tables)
            if (t.source == QStringLiteral("dbdetail.mdb")) {
                QVERIFY(t.matches());
                ++converted;
            }
        QCOMPARE(converted, 2);
    }

    // The shared sets' own awkward texts (quotes, backslash, brackets, %, _, *, the longest
    // names): every text column of every table compared with the mdbtools export. No .mdb file
    // can be written here, so the texts are those the sets hold.
    void textsComeAcrossByteForByte() {
        TestHome home;
        seedStores(home);
        const JetImportReport report = runImport(copySet(home, QStringLiteral("current")));
        QVERIFY2(report.ok, qPrintable(report.failure));
        const QString mdb = setFolder(QStringLiteral("current"));
        QCOMPARE(count(app().DbBasicFile, "SELECT count(*) FROM Trader WHERE C_Name IN ('O''Brien 상사', "
                                          "'백슬래시\\상회 [본점]', '50% 할인_마트*')"),
                 3);
        for (const QString& table :
             {QStringLiteral("User"), QStringLiteral("Trader"), QStringLiteral("Product")})
            compareTexts(mdb + QStringLiteral("/dbBasic.mdb"), app().DbBasicFile, table);
        compareTexts(mdb + QStringLiteral("/dbTax.mdb"), app().DbTaxFile, QStringLiteral("NewAcount"));
        compareTexts(mdb + QStringLiteral("/dbEstimate.mdb"), app().DbEstimateFile,
                     QStringLiteral("EstiBase"));
        compareTexts(mdb + QStringLiteral("/dbEstimate.mdb"), app().DbEstimateFile,
                     QStringLiteral("Estimate"));
    }

    void aCutFileIsRefusedNamingItWithTheStoresUntouched() {
        TestHome home;
        seedStores(home);
        const QString source = copySet(home, QStringLiteral("current"));
        QVERIFY(QFile::resize(source + QStringLiteral("/dbBill.mdb"), 1000000));
        const QByteArray before = storesFingerprint();
        const JetImportReport report = runImport(source);
        QVERIFY(!report.ok);
        QVERIFY2(report.failure.contains(QStringLiteral("dbBill.mdb")), qPrintable(report.failure));
        QCOMPARE(storesFingerprint(), before);
        QVERIFY(leftoverWorkFolders().isEmpty());
    }

    void aFileCutAtAPageIsRefusedByItsRowCount() {
        TestHome home;
        seedStores(home);
        const QString source = copySet(home, QStringLiteral("current"));
        QVERIFY(QFile::resize(source + QStringLiteral("/dbBill.mdb"), 245 * 4096));
        const QByteArray before = storesFingerprint();
        const JetImportReport report = runImport(source);
        QVERIFY(!report.ok);
        QVERIFY2(report.failure.contains(QStringLiteral("dbBill.mdb")), qPrintable(report.failure));
        QCOMPARE(storesFingerprint(), before);
    }

    void aScribbledOrForeignFileIsRefusedWithTheStoresUntouched() {
        TestHome home;
        seedStores(home);
        const QString source = copySet(home, QStringLiteral("current"));
        {
            QFile bill(source + QStringLiteral("/dbTax.mdb"));
            QVERIFY(bill.open(QIODevice::ReadWrite));
            bill.seek(3 * 4096);
            QByteArray noise(40 * 4096, '\0');
            QRandomGenerator rng(21);
            for (char& c : noise)
                c = char(rng.bounded(256));
            bill.write(noise);
        }
        const QByteArray before = storesFingerprint();
        JetImportReport report = runImport(source);
        QVERIFY(!report.ok);
        QVERIFY2(report.failure.contains(QStringLiteral("dbTax.mdb")), qPrintable(report.failure));
        QCOMPARE(storesFingerprint(), before);

        QFile foreign(source + QStringLiteral("/dbTax.mdb"));
        QVERIFY(foreign.open(QIODevice::WriteOnly | QIODevice::Truncate));
        foreign.write(QByteArray(8192, 'x'));
        foreign.close();
        report = runImport(source);
        QVERIFY(!report.ok);
        QVERIFY(report.failure.contains(QStringLiteral("dbTax.mdb")));
        QCOMPARE(storesFingerprint(), before);
    }

    void aFolderWithoutTheBasicFileIsRefused() {
        TestHome home;
        seedStores(home);
        const QByteArray before = storesFingerprint();
        const JetImportReport report =
            runImport(copySet(home, QStringLiteral("current"), {QStringLiteral("dbBasic.mdb")}));
        QVERIFY(!report.ok);
        QVERIFY(report.failure.contains(QStringLiteral("dbBasic.mdb")));
        QCOMPARE(storesFingerprint(), before);
    }

    void aKilledReaderLeavesTheStores() {
        TestHome home;
        seedStores(home);
        const QString source = copySet(home, QStringLiteral("current"));
        const QByteArray before = storesFingerprint();
        const JetImportReport killedAtOnce = runImport(source, killingReader(home, 0));
        QVERIFY(!killedAtOnce.ok);
        QVERIFY(killedAtOnce.failure.contains(QStringLiteral(".mdb")));
        QCOMPARE(storesFingerprint(), before);
        for (int round = 0; round < 3; ++round) {
            const int millis = 5 + int(QRandomGenerator::global()->bounded(120));
            const JetImportReport report = runImport(source, killingReader(home, millis));
            if (report.ok) break; // every reader finished before its kill: the import is whole
            QVERIFY(report.failure.contains(QStringLiteral(".mdb")));
            QCOMPARE(storesFingerprint(), before);
        }
        QVERIFY(leftoverWorkFolders().isEmpty());
    }

    // A reader that hangs is ended when its time is up; the import says which file it was and
    // the stores stay as they were, while the other files were read meanwhile.
    void aReaderThatOutlivesItsTimeIsEndedAndNamed() {
        TestHome home;
        seedStores(home);
        const QString source = copySet(home, QStringLiteral("current"));
        const QByteArray before = storesFingerprint();
        const QString path = home.file(QStringLiteral("hanging-reader.sh"));
        QFile script(path);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write(
            QStringLiteral("#!/bin/sh\ncase \"$2\" in *dbTax.mdb) exec sleep 60;; esac\nexec \"%1\" \"$@\"\n")
                .arg(program())
                .toUtf8());
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        JetImportOptions options;
        options.readerProgram = path;
        options.readerTimeoutMillis = 1500;
        QElapsedTimer clock;
        clock.start();
        const JetImportReport report = importJetFolder(source, options);
        QVERIFY(!report.ok);
        QVERIFY2(report.failure.startsWith(QStringLiteral("dbTax.mdb 파일을 읽지 못했습니다.")),
                 qPrintable(report.failure));
        QVERIFY(clock.elapsed() < 20000);
        QCOMPARE(storesFingerprint(), before);
        QVERIFY(leftoverWorkFolders().isEmpty());
    }

    void aKilledImportLeavesTheOldStoresOrTheNewOnes() {
        TestHome home;
        seedStores(home);
        const QString source = copySet(home, QStringLiteral("current"), {QStringLiteral("dbdetail.mdb")});
        const QByteArray before = storesFingerprint();
        const QJsonObject m = manifest(QStringLiteral("current"));
        for (int round = 0; round < 5; ++round) {
            QProcess import;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("NUBELLA_HOME"), home.path());
            import.setProcessEnvironment(env);
            import.start(program(), {QStringLiteral("--import-mdb"), source});
            QVERIFY(import.waitForStarted());
            QThread::msleep(50 + QRandomGenerator::global()->bounded(900));
            ::kill(pid_t(import.processId()), SIGKILL);
            import.waitForFinished(10000);
            // Its readers end with it: none goes on writing into the folder cleared below.
            QCOMPARE(readersStillWriting(source), 0);
            recoverInterruptedImports(app().DbPath);
            QVERIFY(leftoverWorkFolders().isEmpty());
            if (storesFingerprint() == before) continue;
            QVERIFY2(holdsNewStores(m), "the store folder holds neither the old stores nor the new ones");
            // Back to the old stores for the next round.
            const QStringList kept =
                QDir(home.path()).entryList({QStringLiteral("Dbs.before-import-*")}, QDir::Dirs);
            QVERIFY(!kept.isEmpty());
            QVERIFY(QDir(app().DbPath).removeRecursively());
            QVERIFY(QDir().rename(home.file(kept.last()), app().DbPath));
            QCOMPARE(storesFingerprint(), before);
        }
    }

    void theCommandLinePrintsEveryTableOrItsReason() {
        TestHome home;
        seedStores(home);
        const QString source = copySet(home, QStringLiteral("older"));
        const ProgramRun done = nb::test::runProgram(home.path(), {QStringLiteral("--import-mdb"), source});
        QCOMPARE(done.exitCode, 0);
        QVERIFY(done.out.contains(QStringLiteral("dbBasic.mdb Trader: 읽은 행 120, 쓴 행 120; VAT 합계 122 / "
                                                 "122; Section 합계 0 / 0; TotNoPay 합계 "
                                                 "265652060 / 265652060")));
        QCOMPARE(done.out.last(), QStringLiteral("옛 자료를 가져왔습니다."));
        QCOMPARE(count(app().DbBasicFile, "SELECT count(*) FROM Trader"), 120);

        const QByteArray before = storesFingerprint();
        QVERIFY(QFile::resize(source + QStringLiteral("/dbEstimate.mdb"), 5000));
        const ProgramRun refused =
            nb::test::runProgram(home.path(), {QStringLiteral("--import-mdb"), source});
        QCOMPARE(refused.exitCode, 1);
        QVERIFY2(refused.errorText.contains(QStringLiteral("dbEstimate.mdb 파일을 읽지 못했습니다")),
                 qPrintable(refused.errorText));
        QCOMPARE(storesFingerprint(), before);

        QCOMPARE(nb::test::runProgram(home.path(), {QStringLiteral("--import-mdb")}).exitCode, 2);
    }

    // A raw file as the reader writes it, with a table and a column the data model does not
    // know and a text of every awkward character, 5,000 characters long: the known rows come
    // across byte for byte, the unknown ones are named and not carried.
    void unknownTablesAndColumnsAreReportedNotGuessedAt() {
        TestHome home;
        const QString raw = home.file(QStringLiteral("dbBasic.mdb.raw"));
        const QString awkward =
            QStringLiteral("O'Brien \"상사\" \\ [본점] 50% _할인_ *특가* ") + QString(4950, QChar(u'가'));
        QVERIFY(runRaw(raw, {QStringLiteral("CREATE TABLE _columns (tbl, ord, col, jettype, size)"),
                             QStringLiteral("CREATE TABLE _figures (tbl, col, rows, total)"),
                             QStringLiteral("INSERT INTO _columns VALUES ('Trader', 0, 'Code', 10, 6), "
                                            "('Trader', 1, 'C_Name', 10, 50), ('Trader', 2, 'Extra', 10, 9), "
                                            "('Trader', 3, 'bDeled', 1, 1), ('Mystery', 0, 'X', 4, 4)"),
                             QStringLiteral("INSERT INTO _figures VALUES ('Trader', '', 1, NULL), "
                                            "('Mystery', '', 1, NULL), ('Mystery', 'X', 1, 7)"),
                             QStringLiteral("CREATE TABLE Trader (Code, C_Name, Extra, bDeled)"),
                             QStringLiteral("CREATE TABLE Mystery (X)"),
                             QStringLiteral("INSERT INTO Mystery VALUES (7)")}));
        {
            Database db;
            QVERIFY(db.open(raw));
            QVERIFY(
                db.tryExecute(QStringLiteral("INSERT INTO Trader VALUES ('000001', ?, 'x', 1)"), {awkward}));
        }
        const QString store = home.file(QStringLiteral("new/dbBasic.db"));
        const BuildOutcome built =
            buildStoreFromRaw(QStringLiteral("dbBasic.mdb"), raw, store, basicTables());
        QVERIFY2(built.ok, qPrintable(built.failure));
        QVERIFY(built.notes.contains(
            QStringLiteral("dbBasic.mdb: Mystery 표는 자료 형식에 없는 표라 가져오지 않았습니다.")));
        QVERIFY(built.notes.contains(QStringLiteral(
            "dbBasic.mdb: Trader 표의 Extra 열은 자료 형식에 없는 열이라 가져오지 않았습니다.")));
        QCOMPARE(rawValue(store, "SELECT C_Name FROM Trader").toString(), awkward);
        QCOMPARE(rawValue(store, "SELECT bDeled FROM Trader").toInt(), kStoredTrue);
        Database db;
        QVERIFY(db.open(store));
        QVERIFY(!db.hasTable(QStringLiteral("Mystery")));
        QVERIFY(!db.hasColumn(QStringLiteral("Trader"), QStringLiteral("Extra")));
        QCOMPARE(built.tables.size(), 1); // Trader only: the unknown table has no figures to check
    }

    void theReportShowsRowsAndSumsReadAndWritten() {
        JetImportReport report;
        report.tables << JetTableFigures{QStringLiteral("dbBasic.mdb"),
                                         QStringLiteral("Trader"),
                                         300,
                                         300,
                                         {{QStringLiteral("TotNoPay"), 555158500, 555158500}}};
        report.notes << QStringLiteral("메모");
        const QStringList lines = jetReportLines(report);
        QCOMPARE(lines.first(),
                 QStringLiteral(
                     "dbBasic.mdb Trader: 읽은 행 300, 쓴 행 300; TotNoPay 합계 555158500 / 555158500"));
        QCOMPARE(lines.last(), QStringLiteral("메모"));
        QCOMPARE(jetFigure(1245648664.87), QStringLiteral("1245648664.87"));
        QCOMPARE(jetFigure(-0.5), QStringLiteral("-0.5"));
    }
};

NB_TEST_MAIN(TestJetImport)
#include "tst_jet_import.moc"
