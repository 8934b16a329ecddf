#include "storage/StoreCheck.h"

#include "common/Messages.h"
#include "core/AppState.h"
#include "storage/StoreEngine.h"
#include "storage/StoreLayout.h"
#include "storage/Stores.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace nb {
namespace {

// Tables an older file may lack: the start-up upgrade makes them.
const QStringList kAddedByUpgrade = {QStringLiteral("BuyTax"), QStringLiteral("BuyTotal"),
                                     QStringLiteral("SaleTotal"), QStringLiteral("EtaxFile"),
                                     QStringLiteral("EtaxHandOver")};

// A connection of its own for the check, gone when the check is done. It only reads: it sets
// no journal mode and writes nothing (read-write all the same, so that closing it tidies the
// journal files the engine keeps beside a file, as the program's own connections do).
class ReadOnlyFile {
public:
    explicit ReadOnlyFile(const QString& path)
        : m_name(QStringLiteral("check-") + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
        m_opened = db.open();
        if (!m_opened) m_error = db.lastError().text();
    }
    ~ReadOnlyFile() {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            if (db.isOpen()) db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

    bool opened() const { return m_opened; }
    QString error() const { return m_error; }
    // The first column of every row; false (with error()) when the statement failed.
    bool rows(const QString& sql, QStringList& out) {
        QSqlQuery q(QSqlDatabase::database(m_name, false));
        q.setForwardOnly(true);
        if (!q.exec(sql)) {
            m_error =
                q.lastError().databaseText().isEmpty() ? q.lastError().text() : q.lastError().databaseText();
            return false;
        }
        while (q.next())
            out << q.value(0).toString();
        return true;
    }

private:
    QString m_name;
    bool m_opened = false;
    QString m_error;
};

QStringList missingTables(const QStringList& present, const QStringList& required) {
    QStringList missing;
    for (const QString& table : required)
        if (!present.contains(table, Qt::CaseInsensitive)) missing << table;
    return missing;
}

void openUnlessDamaged(Database& db, const QString& path, const QList<DamagedStore>& damaged) {
    if (!isDamaged(damaged, path)) OpenDb(db, path, 0);
}

} // namespace

QList<StoreFile> storeFiles() {
    const AppState& a = app();
    return {{a.DbBasicFile, QStringLiteral("사업자·거래처·상품"), requiredTables(basicTables())},
            {a.DbBillFile, QStringLiteral("거래명세표"), requiredTables(billTables())},
            {a.DbTaxFile, QStringLiteral("세금계산서"), requiredTables(taxTables())},
            {a.DbInOutFile, QStringLiteral("입출금"), {}},
            {a.DbEstimateFile, QStringLiteral("견적서"), requiredTables(estimateTables())},
            {a.DbPostFile, QStringLiteral("우편번호"), requiredTables(postTables())}};
}

QStringList requiredTables(const QList<TableDef>& tables) {
    QStringList names;
    for (const TableDef& table : tables)
        if (!kAddedByUpgrade.contains(table.name)) names << table.name;
    return names;
}

QString CheckStoreFile(const QString& path, const QStringList& required) {
    // A store on the server is no file of the seat (it keeps its pages whole by its own journal);
    // a missing schema is laid down at start like a missing file.
    if (!QFileInfo(path).isFile()) return QString();
    ReadOnlyFile file(path);
    QStringList tables;
    if (!file.opened() ||
        !file.rows(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"), tables))
        return QStringLiteral("자료 파일로 읽을 수 없습니다 (%1).").arg(file.error());
    QStringList problems;
    if (!file.rows(QStringLiteral("PRAGMA quick_check(3)"), problems))
        return QStringLiteral("자료 파일의 검사를 마치지 못했습니다 (%1).").arg(file.error());
    if (problems != QStringList{QStringLiteral("ok")})
        return QStringLiteral("자료 파일의 내용이 손상되었습니다 (%1).")
            .arg(problems.join(QStringLiteral("; ")));
    const QStringList missing = missingTables(tables, required);
    if (!missing.isEmpty())
        return QStringLiteral("꼭 있어야 할 표(%1)가 없습니다.").arg(missing.join(QStringLiteral(", ")));
    return QString();
}

QList<DamagedStore> CheckStoreFiles() {
    QList<DamagedStore> damaged;
    for (const StoreFile& store : storeFiles()) {
        if (store.path.isEmpty()) continue;
        const QString why = CheckStoreFile(store.path, store.requiredTables);
        if (!why.isEmpty()) damaged.append({store.path, store.contents, why});
    }
    return damaged;
}

QStringList damagedPaths(const QList<DamagedStore>& damaged) {
    QStringList paths;
    for (const DamagedStore& store : damaged)
        paths << store.path;
    return paths;
}

bool isDamaged(const QList<DamagedStore>& damaged, const QString& path) {
    for (const DamagedStore& store : damaged)
        if (store.path == path) return true;
    return false;
}

bool OpenWholeStores(const QList<DamagedStore>& damaged) {
    Stores& s = stores();
    const AppState& a = app();
    openUnlessDamaged(s.dbBasic, a.DbBasicFile, damaged);
    openUnlessDamaged(s.dbTax, a.DbTaxFile, damaged);
    openUnlessDamaged(s.dbBill, a.DbBillFile, damaged);
    // A seat on a server that cannot be reached is told so once, with the connection's words.
    for (const Database* db : {&s.dbBasic, &s.dbTax, &s.dbBill})
        if (db->lastEngineCode() == kServerUnreachableCode) {
            ShowWarning(serverUnreachableText() + QStringLiteral("\r\r") + db->lastErrorDescription(),
                        kServerUnreachableTitle);
            break;
        }
    return s.dbBasic.isOpen() && s.dbTax.isOpen() && s.dbBill.isOpen();
}

QString damagedStoresText(const QList<DamagedStore>& damaged, const QString& storeFolder) {
    QString text =
        QStringLiteral("다음 자료 파일이 손상되어 열지 않았습니다. 손상된 파일은 고치거나 지우지 않고 "
                       "그대로 두었습니다.\r\n");
    for (const DamagedStore& store : damaged)
        text += QStringLiteral("\r\n- %1 (%2 자료)\r\n  %3").arg(store.path, store.contents, store.why);
    text += QStringLiteral(
                "\r\n\r\n백업해 둔 같은 이름의 파일을 자료 폴더(%1)에 복사해 넣어 복원한 뒤 프로그램을 "
                "다시 시작하십시오. 백업이 없으면 구입처에 문의하십시오.\r\n"
                "그 밖의 자료 파일은 평소대로 쓸 수 있습니다.")
                .arg(storeFolder);
    return text;
}

void ReportDamagedStores(const QList<DamagedStore>& damaged) {
    if (damaged.isEmpty()) return;
    ShowWarning(damagedStoresText(damaged, app().DbPath), kDamagedStoresTitle);
}

} // namespace nb
