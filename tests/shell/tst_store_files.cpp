// The store files as the start-up road meets them: each checked on its own, an empty one laid
// down like a missing one, a damaged one (not a store at all, or without a table the program
// cannot do without) named in one box that says what to do and left exactly as found, while
// the other stores open; and a statement printed from the command line against such a store
// is refused with a reason instead of printed empty.
#include "ProgramRun.h"
#include "TestSupport.h"
#include "common/dates/ShortDate.h"
#include "core/AppState.h"
#include "shell/Startup.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>

using namespace nb;

namespace {

struct IsoShortDate : ShortDateStore {
    QString read() const override { return QStringLiteral("yyyy-MM-dd"); }
    bool write(const QString&) override { return true; }
};

// The stores of a first start, then closed, as the next start finds them.
void layDownStores() {
    setShortDateStore(std::make_unique<IsoShortDate>());
    test::script();
    StartProgram();
    closeStores();
}

QByteArray randomBytes(int size) {
    QRandomGenerator bytes(20);
    QByteArray out(size, '\0');
    for (char& b : out)
        b = char(bytes.bounded(256));
    return out.replace(0, 6, "NOSQL!");
}

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

void dropTable(const QString& file, const QString& table) {
    test::execOn(file, {QStringLiteral("DROP TABLE ") + table});
}

} // namespace

class TestStoreFiles : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aStoreOfRandomBytesIsNamedInOneBoxAndTheOthersOpen() {
        test::TestHome home;
        layDownStores();
        writeFile(app().DbBasicFile, randomBytes(8192));
        const QByteArray before = digestOf(app().DbBasicFile);
        auto& msgs = test::script();
        StartProgram();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QCOMPARE(msgs.last().title, QStringLiteral("자료 파일 손상"));
        QCOMPARE(msgs.last().buttons, int(MbExclamation));
        QVERIFY2(msgs.last().text.contains(app().DbBasicFile), qPrintable(msgs.last().text));
        QVERIFY(msgs.last().text.contains(QStringLiteral("백업해 둔")));
        QVERIFY(!msgs.last().text.contains(app().DbBillFile));
        QVERIFY(!stores().dbBasic.isOpen());
        QVERIFY(stores().dbTax.isOpen());
        QVERIFY(stores().dbBill.isOpen());
        QVERIFY(stores().dbBill.hasTable(QStringLiteral("Detail")));
        QCOMPARE(digestOf(app().DbBasicFile), before); // left exactly as found
    }
    void twoDamagedStoresAreNamedInTheSameOneBox() {
        test::TestHome home;
        layDownStores();
        writeFile(app().DbTaxFile, randomBytes(4096));
        dropTable(app().DbEstimateFile, QStringLiteral("Estimate"));
        auto& msgs = test::script();
        StartProgram();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.contains(app().DbTaxFile));
        QVERIFY(msgs.last().text.contains(app().DbEstimateFile));
        QVERIFY(stores().dbBasic.isOpen());
        QVERIFY(stores().dbBill.isOpen());
        QVERIFY(!stores().dbTax.isOpen());
    }
    void aZeroByteStoreIsLaidDownLikeAMissingOne() {
        test::TestHome home;
        layDownStores();
        writeFile(app().DbBillFile, QByteArray());
        writeFile(app().DbPostFile, QByteArray());
        auto& msgs = test::script();
        StartProgram();
        QVERIFY(msgs.boxes().empty());
        QVERIFY(stores().dbBill.isOpen());
        QVERIFY(stores().dbBill.hasTable(QStringLiteral("Master")));
        QVERIFY(stores().dbBill.hasTable(QStringLiteral("Detail")));
        Database post;
        QVERIFY(post.open(app().DbPostFile));
        QVERIFY(post.hasTable(QStringLiteral("Post")));
    }
    void aStoreWithoutItsDetailTableIsNamedAndLeftAsItIs() {
        test::TestHome home;
        layDownStores();
        test::execOn(
            app().DbBillFile,
            {QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                            "VALUES ('000001', '2024-05-10', '000001', 1000, 100, 1)"),
             QStringLiteral("DROP TABLE Detail")});
        auto& msgs = test::script();
        StartProgram();
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.contains(app().DbBillFile));
        QVERIFY2(msgs.last().text.contains(QStringLiteral("꼭 있어야 할 표(Detail)가 없습니다.")),
                 qPrintable(msgs.last().text));
        QVERIFY(!stores().dbBill.isOpen());
        QVERIFY(stores().dbBasic.isOpen());
        QVERIFY(stores().dbTax.isOpen());
        closeStores();
        Database bill; // not made again behind the operator
        QVERIFY(bill.open(app().DbBillFile));
        QVERIFY(!bill.hasTable(QStringLiteral("Detail")));
    }
    void printingAStatementFromAStoreWithoutDetailExits1WithAReason() {
        test::TestHome home;
        layDownStores();
        test::execOn(
            app().DbBasicFile,
            {QStringLiteral("INSERT INTO User (Company, Delegate, Serial) VALUES ('하르문상사', '홍길동', "
                            "'123-45-67890')"),
             QStringLiteral(
                 "INSERT INTO Trader (Code, C_Name, Serial) VALUES ('000001', '가나철강', '234-56-78901')")});
        test::execOn(
            app().DbBillFile,
            {QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode, TotAmount, TotVat, NumBill) "
                            "VALUES ('000001', '2024-05-10', '000001', 1000, 100, 1)"),
             QStringLiteral("DROP TABLE Detail")});
        const QString pdf = home.file(QStringLiteral("s.pdf"));
        const test::ProgramRun run =
            test::runProgram(home.path(), {QStringLiteral("--print-statement"), QStringLiteral("000001"),
                                           QStringLiteral("--pdf"), pdf});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errorText.contains(QStringLiteral("인쇄하지 않았습니다")), qPrintable(run.errorText));
        QVERIFY2(run.errorText.contains(QStringLiteral("Detail")), qPrintable(run.errorText));
        QVERIFY(!QFileInfo::exists(pdf) || QFileInfo(pdf).size() == 0);
    }
    void aZeroByteFileWithJournalContentBesideItIsNotLaidDownOver() {
        test::TestHome home;
        layDownStores();
        writeFile(app().DbBillFile, QByteArray());
        writeFile(app().DbBillFile + QStringLiteral("-wal"), QByteArray("not empty"));
        CreateMissingStoreFiles();
        QCOMPARE(QFileInfo(app().DbBillFile).size(), qint64(0));
    }
};

NB_TEST_MAIN(TestStoreFiles)
#include "tst_store_files.moc"
