// Each store file checked on its own without being written to: a whole file passes, random
// bytes, a damaged page and a missing table are each told in Korean; an empty file is laid
// down like a missing one, unless journal content lies beside it; the stores open each on
// their own, the damaged ones staying shut.
#include "StoreTestKit.h"
#include "storage/StoreCheck.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QCryptographicHash>
#include <QFile>

using namespace nb;

namespace {

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

QByteArray digestOf(const QString& path) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

const QStringList kBill = {QStringLiteral("Master"), QStringLiteral("Detail")};

} // namespace

class TestStoreCheck : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aWholeStorePassesAndAMissingOneIsNoDamage() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("bill.db"));
        QVERIFY(createStoreFile(path, billTables()));
        QCOMPARE(CheckStoreFile(path, kBill), QString());
        QCOMPARE(CheckStoreFile(home.file(QStringLiteral("none.db")), kBill), QString());
    }
    void randomBytesAreNoStoreAndAreLeftAsTheyAre() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("bill.db"));
        writeFile(path, QByteArray(4096, '\x5A'));
        const QByteArray before = digestOf(path);
        const QString why = CheckStoreFile(path, kBill);
        QVERIFY2(why.startsWith(QStringLiteral("자료 파일로 읽을 수 없습니다")), qPrintable(why));
        QCOMPARE(digestOf(path), before);
        QVERIFY(!QFile::exists(path + QStringLiteral("-wal")));
    }
    void aDamagedPageFailsTheQuickCheck() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("bill.db"));
        QVERIFY(createStoreFile(path, billTables()));
        {
            Database db;
            QVERIFY(db.open(path));
            QVERIFY(db.tryExecute(QStringLiteral("PRAGMA journal_mode=DELETE")));
            for (int i = 0; i < 400; ++i)
                QVERIFY(db.tryExecute(
                    QStringLiteral("INSERT INTO Detail (BillNo, BillSEQ, PName) VALUES (?, ?, ?)"),
                    {QStringLiteral("%1").arg(i % 40, 6, 10, QChar(u'0')), i,
                     QStringLiteral("품목 이름이 조금 긴 줄 %1").arg(i)}));
        }
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadWrite));
        const qint64 pages = f.size() / 4096;
        QVERIFY(pages > 4);
        f.seek((pages - 2) * 4096 + 8); // inside a page of the table, past its header
        f.write(QByteArray(2000, '\xFF'));
        f.close();
        const QString why = CheckStoreFile(path, kBill);
        QVERIFY2(!why.isEmpty(), "a scribbled page passed");
    }
    void aMissingTableIsNamed() {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("bill.db"));
        QVERIFY(test::runRaw(path, {QStringLiteral("CREATE TABLE master (BillNo TEXT(6))")}));
        QCOMPARE(CheckStoreFile(path, kBill), QStringLiteral("꼭 있어야 할 표(Detail)가 없습니다."));
    }
    void tablesTheUpgradeAddsAreNotRequired() {
        QCOMPARE(requiredTables(taxTables()), QStringList{QStringLiteral("NewAcount")});
        QCOMPARE(requiredTables(billTables()), kBill);
    }
    void anEmptyFileIsLaidDownInItsPlace() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        writeFile(app().DbTaxFile, QByteArray());
        writeFile(app().DbTaxFile + QStringLiteral("-shm"), QByteArray());
        QVERIFY(isEmptyStoreFile(app().DbTaxFile));
        CreateMissingStoreFiles();
        QVERIFY(!isEmptyStoreFile(app().DbTaxFile));
        QVERIFY(!QFile::exists(app().DbTaxFile + QStringLiteral("-shm")));
        QCOMPARE(CheckStoreFile(app().DbTaxFile, {QStringLiteral("NewAcount")}), QString());
        QVERIFY(!QFile::exists(app().DbTaxFile + QStringLiteral("-shm"))); // the check leaves none behind
    }
    void anEmptyFileWithJournalContentBesideItIsNotLaidDownOver() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        writeFile(app().DbBillFile, QByteArray());
        writeFile(app().DbBillFile + QStringLiteral("-wal"), QByteArray("frames"));
        QVERIFY(!isEmptyStoreFile(app().DbBillFile));
        CreateMissingStoreFiles();
        QCOMPARE(QFileInfo(app().DbBillFile).size(), qint64(0));
        QVERIFY(!createStoreFile(app().DbBillFile, billTables()));
    }
    void everyStoreIsCheckedAndOpenedOnItsOwn() {
        test::TestHome home;
        test::useStoreFolder(home);
        CreateMissingStoreFiles();
        writeFile(app().DbBasicFile, QByteArray(2048, '\x01'));
        QVERIFY(test::runRaw(app().DbPostFile, {QStringLiteral("DROP TABLE Post")}));
        const QList<DamagedStore> damaged = CheckStoreFiles();
        QCOMPARE(damaged.size(), 2);
        QCOMPARE(damaged[0].path, app().DbBasicFile);
        QCOMPARE(damaged[1].path, app().DbPostFile);
        auto& msgs = test::script();
        QVERIFY(!OpenWholeStores(damaged));
        QVERIFY(!stores().dbBasic.isOpen());
        QVERIFY(stores().dbTax.isOpen());
        QVERIFY(stores().dbBill.isOpen());
        ReportDamagedStores(damaged);
        QCOMPARE(msgs.boxes().size(), size_t(1));
        const QString text = msgs.last().text;
        QVERIFY(text.contains(app().DbBasicFile + QStringLiteral(" (사업자·거래처·상품 자료)")));
        QVERIFY(text.contains(app().DbPostFile +
                              QStringLiteral(" (우편번호 자료)\r\n  꼭 있어야 할 표(Post)가 없습니다.")));
        QVERIFY(text.contains(QStringLiteral("백업해 둔 같은 이름의 파일을 자료 폴더(") + app().DbPath));
        ReportDamagedStores({});
        QCOMPARE(msgs.boxes().size(), size_t(1));
    }
};

NB_TEST_MAIN(TestStoreCheck)
#include "tst_store_check.moc"
