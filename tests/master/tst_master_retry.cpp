// A product or a supplier saved while another seat's save broke the write off: on the server it
// is run again quietly, each try from the form as it was, until it is whole or the tries are
// spent; on the store files it is tried once, as ever. Only a saved code is handed back.
#include "ForcedConflict.h"
#include "MasterFixture.h"
#include "master/ProductRecords.h"
#include "master/SupplierRecords.h"
#include "storage/Database.h"

using namespace nb;
using namespace nb::test;

namespace {

Database& basicStore() {
    return stores().dbBasic;
}

bool onServer() {
    return basicStore().onServer();
}

ProductFields product(const QString& name) {
    return {name,
            QString(),
            QStringLiteral("100"),
            QStringLiteral("200"),
            QStringLiteral("비고"),
            QStringLiteral("EA")};
}

SupplierFields supplier(const QString& serial, const QString& company) {
    return {company,       "홍길동",      serial,   "135-080", "서울 강남구",
            "02-123-4567", "02-123-4568", "도소매", "문구"};
}

bool saidSaved(const ScriptedMessages& msgs, const QString& text) {
    for (const MessageRecord& record : msgs.records())
        if (record.kind == QStringLiteral("notice") && record.text == text) return true;
    return false;
}

} // namespace

class TestMasterRetry : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aNewProductBrokenOffOnceIsSavedUnderOneCode() {
        TestHome home;
        QVERIFY(openStores());
        addProduct("000007", "너트");
        auto& msgs = script();
        ForcedConflict conflict(basicStore(), {QStringLiteral("Product"), QStringLiteral("INSERT"), 0, 1});
        QVERIFY(conflict.installed());
        QString code;
        const ProductSave saved = SaveProduct(product(QStringLiteral("볼트")), code, 0);
        QCOMPARE(conflict.raised(), 1);
        QVERIFY(!basicStore().inTransaction());
        if (!onServer()) {
            // One try: its failure told, no code handed back, no "saved" notice.
            QCOMPARE(saved, ProductSave::Failed);
            QCOMPARE(code, QString());
            QCOMPARE(msgs.boxes().size(), size_t(1));
            QVERIFY(!saidSaved(msgs, QStringLiteral("자료가 저장되었습니다.")));
            QCOMPARE(count(basicStore(), "Product"), 1);
            return;
        }
        QCOMPARE(saved, ProductSave::Inserted);
        QCOMPARE(code, QStringLiteral("000008"));
        QVERIFY(msgs.boxes().empty());
        QVERIFY(saidSaved(msgs, QStringLiteral("자료가 저장되었습니다.")));
        QCOMPARE(count(basicStore(), "Product"), 2);
    }
    void aProductWhoseConflictStaysIsNotSavedAndSaysSoOnce() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        ForcedConflict conflict(basicStore(), {QStringLiteral("Product"), QStringLiteral("INSERT"), 0, -1});
        QVERIFY(conflict.installed());
        QString code;
        QCOMPARE(SaveProduct(product(QStringLiteral("볼트")), code, 0), ProductSave::Failed);
        QCOMPARE(conflict.raised(), onServer() ? kSaveTries : 1);
        QCOMPARE(code, QString());
        QCOMPARE(msgs.boxes().size(), size_t(1));
        QVERIFY(msgs.last().text.contains(storeFaultText(5, QString())));
        QCOMPARE(count(basicStore(), "Product"), 0);
    }
    void aReplacedSupplierBrokenOffOnceIsReplacedOnce() {
        TestHome home;
        QVERIFY(openStores());
        SupplierFormState state;
        script();
        QCOMPARE(SaveSupplier(state, supplier("123-45-67890", "가나상사"), false), SupplierSave::Saved);
        state.HasUser = true;
        auto& msgs = script();
        // The row shown is deleted, then its replacement meets the conflict.
        ForcedConflict conflict(basicStore(), {QStringLiteral("User"), QStringLiteral("INSERT"), 0, 1});
        QVERIFY(conflict.installed());
        const SupplierSave saved = SaveSupplier(state, supplier("123-45-67890", "다라상사"), false);
        QCOMPARE(conflict.raised(), 1);
        QCOMPARE(count(basicStore(), "User"), 1);
        if (!onServer()) {
            QCOMPARE(saved, SupplierSave::Failed);
            QCOMPARE(scalar(basicStore(), "SELECT Company FROM User").toString(), QStringLiteral("가나상사"));
            return;
        }
        QCOMPARE(saved, SupplierSave::Saved);
        QVERIFY(msgs.boxes().empty());
        QCOMPARE(scalar(basicStore(), "SELECT Company FROM User").toString(), QStringLiteral("다라상사"));
    }
};

NB_TEST_MAIN(TestMasterRetry)
#include "tst_master_retry.moc"
