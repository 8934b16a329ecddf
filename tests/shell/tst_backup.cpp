// Backups and restores in the program's own process: a backup, a change and a restore give
// back the books of the backup; a damaged or foreign file is refused with the books untouched;
// the automatic backups are taken once a day and kept for 7 days and 4 weeks; the menu entries.
#include "BackupKit.h"
#include "common/FileChooser.h"
#include "core/Clock.h"
#include "core/Settings.h"
#include "shell/BackupMenu.h"
#include "storage/Backup.h"
#include "storage/backup/BackupArchive.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>

using namespace nb;

namespace {

// The stores laid down and opened, with a first row in each.
void openSeededStores() {
    QVERIFY(test::openStores());
    QVERIFY(test::changeEveryStore(QStringLiteral("S00001")));
    QVERIFY(test::runOn(app().DbBasicFile, {QStringLiteral("INSERT INTO Product (Code, PName) VALUES "
                                                           "('P00001', '볼펜 ''검정'' 100%_*')")}));
}

QString writeBackup(const test::TestHome& home, const QString& name) {
    const QString zip = home.file(name);
    QString why;
    if (!WriteBackup(zip, &why)) qWarning("%s", qPrintable(why));
    return zip;
}

// No staged copy and no swap plan is left behind.
void checkNothingLeftOver() {
    QVERIFY(!QFileInfo::exists(swapPlanPath()));
    for (const StoreRole& store : storeRoles())
        QVERIFY2(!QFileInfo::exists(stagedPathFor(store.path)), qPrintable(store.path));
}

// The zip tool's own run in `folder`.
bool zipTool(const QString& folder, const QStringList& arguments) {
    QProcess p;
    p.setWorkingDirectory(folder);
    p.start(QStringLiteral("zip"), arguments);
    return p.waitForFinished(30000) && p.exitCode() == 0;
}

bool unzipTool(const QString& zip, const QString& folder) {
    QProcess p;
    p.start(QStringLiteral("unzip"),
            {QStringLiteral("-q"), QStringLiteral("-o"), zip, QStringLiteral("-d"), folder});
    return p.waitForFinished(30000) && p.exitCode() == 0;
}

void refusedAndUntouched(const QString& zip, const QString& expectedWords) {
    const QStringList before = test::booksDump();
    QString why;
    QVERIFY(!RestoreBackup(zip, &why));
    QVERIFY2(why.contains(expectedWords), qPrintable(why));
    QCOMPARE(test::booksDump(), before);
    checkNothingLeftOver();
    QVERIFY(stores().dbBasic.isOpen());
}

QList<AutomaticBackup> dailyBackups() {
    QList<AutomaticBackup> daily;
    for (const AutomaticBackup& b : automaticBackups(backupFolder()))
        if (b.daily) daily << b;
    return daily;
}

} // namespace

class TestBackup : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { setClock({}); }

    void aBackupHoldsEveryStoreTheSettingsAndAManifest() {
        test::TestHome home;
        openSeededStores();
        const QString zip = writeBackup(home, QStringLiteral("books.zip"));
        ArchiveReader reader(zip);
        QVERIFY2(reader.problem().isEmpty(), qPrintable(reader.problem()));
        const Manifest& m = reader.manifest();
        QCOMPARE(m.program, QStringLiteral("누벨라"));
        QCOMPARE(m.version,
                 QStringLiteral("%1.%2.%3").arg(versionMajor()).arg(versionMinor()).arg(versionRevision()));
        QVERIFY(m.taken.isValid());
        QCOMPARE(m.stores.size(), storeRoles().size());
        QVERIFY(!m.settingsSha256.isEmpty());
        for (const ManifestStore& store : m.stores) {
            QCOMPARE(store.sha256.size(), 64);
            if (store.role == u"db기초") {
                QCOMPARE(store.rows.value(QStringLiteral("Trader")), 1);
                QCOMPARE(store.rows.value(QStringLiteral("Product")), 1);
            }
            if (store.role == u"db명세서") QCOMPARE(store.rows.value(QStringLiteral("Detail")), 1);
        }
        // A shop can open it with any zip tool.
        const QString out = home.file(QStringLiteral("opened"));
        QVERIFY(unzipTool(zip, out));
        QVERIFY(QFileInfo::exists(out + QStringLiteral("/dbBasic.db")));
        QVERIFY(QFileInfo::exists(out + QStringLiteral("/settings.ini")));
        QVERIFY(QFileInfo::exists(out + QStringLiteral("/manifest.json")));
        QCOMPARE(test::dumpOf(out + QStringLiteral("/dbBill.db")), test::dumpOf(app().DbBillFile));
    }

    void backupChangeRestoreGivesTheBooksOfTheBackup() {
        test::TestHome home;
        openSeededStores();
        const QStringList backedUp = test::booksDump();
        const QString zip = writeBackup(home, QStringLiteral("books.zip"));
        QVERIFY(test::changeEveryStore(QStringLiteral("S00002")));
        QVERIFY(test::runOn(app().DbBasicFile, {QStringLiteral("DELETE FROM Product")}));
        QVERIFY(test::booksDump() != backedUp);
        test::script();
        QString why;
        QVERIFY2(RestoreBackup(zip, &why), qPrintable(why));
        QCOMPARE(test::booksDump(), backedUp);
        checkNothingLeftOver();
        // The stores are open again and read the restored rows.
        QCOMPARE(test::scalar(stores().dbBasic, QStringLiteral("SELECT count(*) FROM Product")).toInt(), 1);
        QCOMPARE(test::scalar(stores().dbBill, QStringLiteral("SELECT count(*) FROM Master")).toInt(), 1);
        // The books before the restore were backed up first.
        QStringList before;
        for (const AutomaticBackup& b : automaticBackups(backupFolder()))
            if (b.name.endsWith(QStringLiteral("-복원전.zip"))) before << b.name;
        QCOMPARE(before.size(), 1);
    }

    void aRestoreRemovesTheOldJournalsOfTheStores() {
        test::TestHome home;
        openSeededStores();
        const QString zip = writeBackup(home, QStringLiteral("books.zip"));
        // A write the engine keeps in the journal beside the store until a checkpoint.
        QVERIFY(test::exec(stores().dbBill, QStringLiteral("INSERT INTO Master (BillNo) VALUES ('J00001')")));
        QVERIFY(QFileInfo(app().DbBillFile + QStringLiteral("-wal")).size() > 0);
        QString why;
        QVERIFY2(RestoreBackup(zip, &why), qPrintable(why));
        QCOMPARE(test::scalar(stores().dbBill,
                              QStringLiteral("SELECT count(*) FROM Master WHERE BillNo = 'J00001'"))
                     .toInt(),
                 0);
    }

    void aDamagedBackupIsRefusedAndTheBooksStay() {
        test::TestHome home;
        openSeededStores();
        const QString zip = writeBackup(home, QStringLiteral("books.zip"));
        QFile file(zip);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        file.close();
        QVERIFY(test::changeEveryStore(QStringLiteral("S00002")));

        // Cut short: no directory at the end.
        QFile cut(home.file(QStringLiteral("cut.zip")));
        QVERIFY(cut.open(QIODevice::WriteOnly));
        cut.write(bytes.left(bytes.size() / 2));
        cut.close();
        refusedAndUntouched(cut.fileName(), QStringLiteral("zip"));

        // A byte changed inside a store's packed data.
        QByteArray flipped = bytes;
        const qsizetype at = bytes.indexOf("dbBasic.db") + 200;
        flipped[at] = char(flipped[at] ^ 0x5a);
        QFile bad(home.file(QStringLiteral("flipped.zip")));
        QVERIFY(bad.open(QIODevice::WriteOnly));
        bad.write(flipped);
        bad.close();
        refusedAndUntouched(bad.fileName(), QStringLiteral("dbBasic.db"));

        // A whole zip whose store is not the one the manifest describes.
        const QString parts = home.file(QStringLiteral("parts"));
        QVERIFY(unzipTool(zip, parts));
        QVERIFY(test::runOn(parts + QStringLiteral("/dbTax.db"), {QStringLiteral("DELETE FROM NewAcount")}));
        QVERIFY(zipTool(parts, {QStringLiteral("-q"), QStringLiteral("-r"),
                                home.file(QStringLiteral("changed.zip")), QStringLiteral(".")}));
        refusedAndUntouched(home.file(QStringLiteral("changed.zip")), QStringLiteral("검사합"));

        // A store whose pages are damaged, with a manifest that agrees with it.
        QFile tax(parts + QStringLiteral("/dbTax.db"));
        QVERIFY(tax.open(QIODevice::ReadWrite));
        tax.seek(tax.size() - 4096 + 10);
        tax.write(QByteArray(2000, '\xff'));
        tax.close();
        QFile manifestFile(parts + QStringLiteral("/manifest.json"));
        QVERIFY(manifestFile.open(QIODevice::ReadOnly));
        QString why;
        auto manifest = parseManifest(manifestFile.readAll(), &why);
        manifestFile.close();
        QVERIFY(manifest);
        for (ManifestStore& store : manifest->stores)
            if (store.entry == u"dbTax.db") store.sha256 = fileChecksum(tax.fileName());
        QVERIFY(manifestFile.open(QIODevice::WriteOnly | QIODevice::Truncate));
        manifestFile.write(manifestJson(*manifest));
        manifestFile.close();
        QVERIFY(zipTool(parts, {QStringLiteral("-q"), QStringLiteral("-r"),
                                home.file(QStringLiteral("pages.zip")), QStringLiteral(".")}));
        refusedAndUntouched(home.file(QStringLiteral("pages.zip")), QStringLiteral("dbTax.db"));
    }

    void aBackupOfALaterVersionIsRefused() {
        test::TestHome home;
        openSeededStores();
        const QString zip = writeBackup(home, QStringLiteral("books.zip"));
        const QString parts = home.file(QStringLiteral("parts"));
        QVERIFY(unzipTool(zip, parts));
        QFile manifestFile(parts + QStringLiteral("/manifest.json"));
        QVERIFY(manifestFile.open(QIODevice::ReadOnly));
        QString why;
        auto manifest = parseManifest(manifestFile.readAll(), &why);
        manifestFile.close();
        QVERIFY(manifest);
        manifest->version = QStringLiteral("%1.0.0").arg(versionMajor() + 1);
        QVERIFY(manifestFile.open(QIODevice::WriteOnly | QIODevice::Truncate));
        manifestFile.write(manifestJson(*manifest));
        manifestFile.close();
        QVERIFY(zipTool(parts, {QStringLiteral("-q"), QStringLiteral("-r"),
                                home.file(QStringLiteral("later.zip")), QStringLiteral(".")}));
        QVERIFY(test::changeEveryStore(QStringLiteral("S00002")));
        refusedAndUntouched(home.file(QStringLiteral("later.zip")), QStringLiteral("새 판"));
    }

    void aBackupCutShortByAKillIsClearedADayLater() {
        test::TestHome home;
        openSeededStores();
        QDir().mkpath(backupFolder());
        const QString old = backupFolder() + QStringLiteral("/.누벨라백업-20260101-090000.zip.Ab12Cd");
        const QString fresh = backupFolder() + QStringLiteral("/.누벨라백업-20260102-090000.zip.Ef34Gh");
        for (const QString& path : {old, fresh}) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("PK");
        }
        QFile oldFile(old);
        QVERIFY(oldFile.open(QIODevice::ReadWrite));
        QVERIFY(
            oldFile.setFileTime(QDateTime::currentDateTime().addDays(-2), QFileDevice::FileModificationTime));
        oldFile.close();
        RunStartupSafeguards();
        QVERIFY(!QFileInfo::exists(old));
        QVERIFY(QFileInfo::exists(fresh)); // a copy may still be writing it
    }

    void aForeignFileIsRefusedAndTheBooksStay() {
        test::TestHome home;
        openSeededStores();
        const QString other = home.file(QStringLiteral("other"));
        QDir().mkpath(other);
        QFile text(other + QStringLiteral("/memo.txt"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("거래처 메모\n");
        text.close();
        QVERIFY(zipTool(other, {QStringLiteral("-q"), home.file(QStringLiteral("foreign.zip")),
                                QStringLiteral("memo.txt")}));
        refusedAndUntouched(home.file(QStringLiteral("foreign.zip")),
                            QStringLiteral("누벨라의 백업 파일이 아닙니다"));

        QFile manifest(other + QStringLiteral("/manifest.json"));
        QVERIFY(manifest.open(QIODevice::WriteOnly));
        manifest.write(R"({"program": "other", "stores": []})");
        manifest.close();
        QVERIFY(zipTool(other, {QStringLiteral("-q"), home.file(QStringLiteral("another.zip")),
                                QStringLiteral("manifest.json")}));
        refusedAndUntouched(home.file(QStringLiteral("another.zip")),
                            QStringLiteral("누벨라의 백업 파일이 아닙니다"));

        refusedAndUntouched(text.fileName(), QStringLiteral("zip"));
        refusedAndUntouched(home.file(QStringLiteral("missing.zip")), QStringLiteral("zip"));
    }

    void aBackupIsWrittenBesideItsTargetAndAFailedOneLeavesTheTarget() {
        test::TestHome home;
        openSeededStores();
        const QString zip = home.file(QStringLiteral("books.zip"));
        QFile old(zip);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("the old file");
        old.close();
        QString why;
        QVERIFY(!WriteBackup(home.file(QStringLiteral("no-such-folder/books.zip")), &why));
        QVERIFY2(why.contains(QStringLiteral("폴더")), qPrintable(why));
        QVERIFY(WriteBackup(zip, &why));
        QVERIFY(isWholeArchive(zip));
        QCOMPARE(
            QDir(home.path()).entryList({QStringLiteral(".books.zip*")}, QDir::Hidden | QDir::Files).size(),
            0);
    }

    void aDamagedStoreIsNotBackedUp() {
        test::TestHome home;
        openSeededStores();
        closeStores();
        QFile tax(app().DbTaxFile);
        QVERIFY(tax.open(QIODevice::ReadWrite));
        QVERIFY(tax.size() > 3 * 4096);
        tax.seek(2 * 4096);
        tax.write(QByteArray(4096, '\xff'));
        tax.close();
        QString why;
        QVERIFY(!WriteBackup(home.file(QStringLiteral("books.zip")), &why));
        QVERIFY2(why.contains(QStringLiteral("손상")) && why.contains(app().DbTaxFile), qPrintable(why));
        QVERIFY(!QFileInfo::exists(home.file(QStringLiteral("books.zip"))));
    }

    void aDamagedStoreIsRepairedByARestoreAndKeptAsItWasBeforeIt() {
        test::TestHome home;
        openSeededStores();
        const QStringList backedUp = test::booksDump();
        const QString zip = writeBackup(home, QStringLiteral("books.zip"));
        closeStores();
        QFile tax(app().DbTaxFile);
        QVERIFY(tax.open(QIODevice::ReadWrite));
        tax.write(QByteArray(int(tax.size()), '\x07'));
        tax.close();
        const QByteArray damagedBytes = [&] {
            QFile f(app().DbTaxFile);
            f.open(QIODevice::ReadOnly);
            return f.readAll();
        }();
        ScriptedMessages& said = test::script();
        RunStartupSafeguards(); // the start names the damaged store itself; no second box
        QCOMPARE(int(said.boxes().size()), 0);
        QString why;
        QVERIFY2(RestoreBackup(zip, &why), qPrintable(why));
        QCOMPARE(test::booksDump(), backedUp);
        QStringList before;
        for (const AutomaticBackup& b : automaticBackups(backupFolder()))
            if (b.name.endsWith(QStringLiteral("-복원전.zip"))) before << backupFolder() + u'/' + b.name;
        QCOMPARE(before.size(), 1);
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"),
                    {QStringLiteral("-p"), before.first(), QStringLiteral("dbTax.db")});
        QVERIFY(unzip.waitForFinished(30000));
        QCOMPARE(unzip.readAllStandardOutput(), damagedBytes);
    }

    void theAutomaticBackupIsTakenOnceADay() {
        test::TestHome home;
        setClock([] { return QDateTime(QDate(2026, 3, 2), QTime(9, 0)); });
        RunStartupSafeguards(); // no books yet: nothing to keep
        QCOMPARE(automaticBackups(backupFolder()).size(), 0);
        openSeededStores();
        RunStartupSafeguards();
        QCOMPARE(dailyBackups().size(), 1);
        QCOMPARE(backupFolder(), home.file(QStringLiteral("Backup")));
        setClock([] { return QDateTime(QDate(2026, 3, 2), QTime(17, 30)); });
        RunStartupSafeguards();
        QCOMPARE(dailyBackups().size(), 1);
        setClock([] { return QDateTime(QDate(2026, 3, 3), QTime(8, 0)); });
        RunStartupSafeguards();
        QCOMPARE(dailyBackups().size(), 2);
        QCOMPARE(dailyBackups().first().taken.date(), QDate(2026, 3, 3));
        QVERIFY(isWholeArchive(backupFolder() + u'/' + dailyBackups().first().name));
    }

    void theBackupFolderIsASetting() {
        test::TestHome home;
        openSeededStores();
        SaveEnv(kBackupFolderKey, home.file(QStringLiteral("elsewhere/backups")));
        RunStartupSafeguards();
        QCOMPARE(automaticBackups(home.file(QStringLiteral("elsewhere/backups"))).size(),
                 2); // new version, the day's
    }

    void aFailedAutomaticBackupSaysSoOnceAndTheProgramGoesOn() {
        test::TestHome home;
        openSeededStores();
        QFile blocker(home.file(QStringLiteral("blocker")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        SaveEnv(kBackupFolderKey, blocker.fileName() + QStringLiteral("/backups"));
        ScriptedMessages& said = test::script();
        StartProgram();
        QCOMPARE(int(said.boxes().size()), 1);
        QVERIFY(said.boxes().front().text.contains(QStringLiteral("자동 백업을 하지 못했습니다")));
        QVERIFY(stores().dbBasic.isOpen());
        QVERIFY(!backupBeforeChange(QStringLiteral("가져오기전")));
        QCOMPARE(int(said.boxes().size()), 2);
    }

    void theFirstStartOfANewVersionBacksUpBeforeItsUpgrade() {
        test::TestHome home;
        RunStartupSafeguards(); // no books: nothing to keep, the version remembered
        QCOMPARE(GetEnv(kStartedVersionKey), programVersion());
        openSeededStores();
        SaveEnv(kStartedVersionKey, QStringLiteral("0.9.0"));
        auto beforeUpgrade = [] {
            int n = 0;
            for (const AutomaticBackup& b : automaticBackups(backupFolder()))
                n += b.name.endsWith(QStringLiteral("-판올림전.zip")) ? 1 : 0;
            return n;
        };
        RunStartupSafeguards();
        QCOMPARE(beforeUpgrade(), 1);
        QCOMPARE(GetEnv(kStartedVersionKey), programVersion());
        RunStartupSafeguards();
        QCOMPARE(beforeUpgrade(), 1);
    }

    void theLastSevenDaysAndFourWeeksAreKept() {
        QList<AutomaticBackup> backups;
        const QDate last(2026, 3, 31); // a Tuesday
        for (int back = 0; back < 60; ++back) {
            const QDate day = last.addDays(-back);
            for (int hour : {18, 9})
                backups.append({automaticBackupName(QDateTime(day, QTime(hour, 0)), QString()),
                                QDateTime(day, QTime(hour, 0)), true});
        }
        for (int i = 0; i < 12; ++i) {
            const QDateTime at(last.addDays(-i), QTime(12, 0));
            backups.append({automaticBackupName(at, QStringLiteral("복원전")), at, false});
        }
        std::sort(backups.begin(), backups.end(),
                  [](const AutomaticBackup& a, const AutomaticBackup& b) { return a.taken > b.taken; });
        const QStringList keep = backupsToKeep(backups);
        QStringList expected;
        for (int back = 0; back < 7; ++back) // the day's latest, 03-25 to 03-31
            expected << automaticBackupName(QDateTime(last.addDays(-back), QTime(18, 0)), QString());
        // The weeks before them: each Sunday's (the week's latest), 03-22, 03-15, 03-08, 03-01.
        for (const QDate& sunday :
             {QDate(2026, 3, 22), QDate(2026, 3, 15), QDate(2026, 3, 8), QDate(2026, 3, 1)})
            expected << automaticBackupName(QDateTime(sunday, QTime(18, 0)), QString());
        for (int i = 0; i < kBeforeChangeKept; ++i)
            expected << automaticBackupName(QDateTime(last.addDays(-i), QTime(12, 0)),
                                            QStringLiteral("복원전"));
        QStringList sortedKeep = keep;
        sortedKeep.sort();
        expected.sort();
        QCOMPARE(sortedKeep, expected);
    }

    void fortyDaysOfStartsLeaveSevenDailyAndFourWeeklyBackups() {
        test::TestHome home;
        openSeededStores();
        const QDate first(2026, 1, 1);
        for (int day = 0; day < 40; ++day) {
            setClock([=] { return QDateTime(first.addDays(day), QTime(9, 0)); });
            RunStartupSafeguards();
        }
        const QList<AutomaticBackup> daily = dailyBackups();
        QCOMPARE(daily.size(), kDailyKept + kWeeklyKept);
        for (int i = 0; i < kDailyKept; ++i)
            QCOMPARE(daily.at(i).taken.date(), first.addDays(39 - i));
        QSet<int> weeks;
        for (const AutomaticBackup& b : daily.mid(kDailyKept))
            weeks.insert(b.taken.date().weekNumber());
        QCOMPARE(weeks.size(), kWeeklyKept);
    }

    void theMenuWritesABackupAndRestoresOne() {
        test::TestHome home;
        openSeededStores();
        const QStringList backedUp = test::booksDump();
        ScriptedFileChooser& chooser = scriptFileChooser();
        chooser.answers << home.file(QStringLiteral("menu-books"));
        ScriptedMessages& said = test::script();
        RunBackupMenu(nullptr);
        QCOMPARE(chooser.kinds, QStringList{QStringLiteral("save")});
        QVERIFY(chooser.suggested.first().startsWith(backupFolder() + QStringLiteral("/누벨라수동백업-")));
        QVERIFY(isWholeArchive(home.file(QStringLiteral("menu-books.zip"))));
        QVERIFY(said.last().text.startsWith(QStringLiteral("백업했습니다.")));

        QVERIFY(test::changeEveryStore(QStringLiteral("S00002")));
        const QStringList changed = test::booksDump();
        chooser.answers << home.file(QStringLiteral("menu-books.zip"));
        said.answer(AnsNo);
        RunRestoreMenu(nullptr);
        QCOMPARE(test::booksDump(), changed);
        chooser.answers << home.file(QStringLiteral("menu-books.zip"));
        said.answer(AnsYes);
        RunRestoreMenu(nullptr);
        QVERIFY2(said.last().text.startsWith(QStringLiteral("복원했습니다.")), qPrintable(said.last().text));
        QCOMPARE(test::booksDump(), backedUp);
    }

    void theMenuSaysWhyARestoreWasRefused() {
        test::TestHome home;
        openSeededStores();
        const QStringList before = test::booksDump();
        ScriptedFileChooser& chooser = scriptFileChooser();
        chooser.answers << home.file(QStringLiteral("settings.ini"));
        ScriptedMessages& said = test::script();
        said.answer(AnsYes);
        RunRestoreMenu(nullptr);
        QVERIFY(
            said.last().text.startsWith(QStringLiteral("복원하지 않았습니다. 지금의 자료는 그대로입니다.")));
        QCOMPARE(test::booksDump(), before);
    }
};

NB_TEST_MAIN(TestBackup)
#include "tst_backup.moc"
