#include "storage/StoreEngine.h"

#include "core/AppState.h"
#include "storage/Database.h"
#include "storage/ServerSettings.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlError>

namespace nb {
namespace {

// File engine result codes the failure boxes are chosen by (Database.cpp tells them apart).
constexpr int kBusy = 5;
constexpr int kReadOnly = 8;
constexpr int kFull = 13;
constexpr int kConstraint = 19;
constexpr int kConstraintNotNull = 19 | (5 << 8);
constexpr int kConstraintUnique = 19 | (8 << 8);
constexpr int kConstraintTrigger = 19 | (7 << 8);
constexpr int kGenericError = 1;

QString samePath(const QString& path) {
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

bool isWordChar(QChar c) {
    return c.isLetterOrNumber() || c == u'_';
}

bool isFractional(const QVariant& value) {
    const int type = value.typeId();
    return !value.isNull() && (type == QMetaType::Double || type == QMetaType::Float);
}

// "INSERT OR IGNORE INTO" at the start of the statement, as the words stand.
bool startsInsertOrIgnore(const QString& sql) {
    return sql.simplified().startsWith(QStringLiteral("INSERT OR IGNORE INTO"), Qt::CaseInsensitive);
}

} // namespace

QList<ServerStore> serverStores() {
    const AppState& a = app();
    return {{QStringLiteral("basic"), a.DbBasicFile},
            {QStringLiteral("bill"), a.DbBillFile},
            {QStringLiteral("tax"), a.DbTaxFile},
            {QStringLiteral("estimate"), a.DbEstimateFile},
            {QStringLiteral("inout"), a.DbInOutFile}};
}

QStringList storeSchemaNames() {
    QStringList names;
    for (const ServerStore& store : serverStores())
        names << store.schema;
    return names;
}

QString serverSchemaOf(const QString& path) {
    if (path.isEmpty() || !onServer()) return QString();
    const QString wanted = samePath(path);
    for (const ServerStore& store : serverStores())
        if (!store.path.isEmpty() && samePath(store.path) == wanted) return store.schema;
    return QString();
}

QString serverStatement(const QString& written, const QVariantList& values) {
    // "INSERT OR IGNORE INTO" loses its middle words: the conflict clause at the end says it.
    static const QRegularExpression orIgnoreWords(QStringLiteral("^\\s*INSERT\\s+OR\\s+IGNORE\\s+INTO\\b"),
                                                  QRegularExpression::CaseInsensitiveOption);
    const bool orIgnore = startsInsertOrIgnore(written);
    const QString sql =
        orIgnore ? QString(written).replace(orIgnoreWords, QStringLiteral("INSERT INTO")) : written;
    QString out;
    out.reserve(sql.size() + 16);
    int mark = 0;
    int i = 0;
    const int n = int(sql.size());
    while (i < n) {
        const QChar c = sql[i];
        if (c == u'\'') { // a text: as written
            const int end = sql.indexOf(u'\'', i + 1);
            const int stop = end < 0 ? n : end + 1;
            out += QStringView(sql).mid(i, stop - i);
            i = stop;
        } else if (c == u'"') { // a quoted name: folded as the server's names are
            const int end = sql.indexOf(u'"', i + 1);
            const int stop = end < 0 ? n : end + 1;
            out += QStringView(sql).mid(i, stop - i).toString().toLower();
            i = stop;
        } else if (c == u'?') {
            out += isFractional(values.value(mark)) ? QStringLiteral("CAST(? AS double precision)")
                                                    : QStringLiteral("?");
            ++mark;
            ++i;
        } else if (isWordChar(c)) {
            int end = i;
            while (end < n && isWordChar(sql[end]))
                ++end;
            const QStringView word = QStringView(sql).mid(i, end - i);
            const bool qualified = i > 0 && sql[i - 1] == u'.';
            if (word.compare(u"LIKE", Qt::CaseInsensitive) == 0 && !qualified)
                out += QStringLiteral("ILIKE");
            else if (word.compare(u"USER", Qt::CaseInsensitive) == 0)
                out += QStringLiteral("\"user\"");
            else if (orIgnore &&
                     (word.compare(u"OR", Qt::CaseInsensitive) == 0 ||
                      word.compare(u"IGNORE", Qt::CaseInsensitive) == 0) &&
                     out.trimmed().compare(QStringLiteral("INSERT"), Qt::CaseInsensitive) == 0)
                ; // dropped: the conflict clause at the end says it
            else
                out += word;
            i = end;
        } else {
            out += c;
            ++i;
        }
    }
    if (orIgnore) {
        while (out.endsWith(u';') || out.endsWith(u' '))
            out.chop(1);
        out += QStringLiteral(" ON CONFLICT DO NOTHING");
    }
    return out;
}

QString serverColumnType(int daoType) {
    switch (daoType) {
    case dbBoolean:
    case dbByte:
        return QStringLiteral("smallint");
    case dbInteger:
        return QStringLiteral("integer");
    case dbLong:
        return QStringLiteral("bigint");
    case dbSingle:
    case dbDouble:
        return QStringLiteral("double precision");
    case dbText:
    case dbMemo:
        // ucs_basic: code point order, the byte order of UTF-8 texts (a quoted "C" would be folded
        // by serverStatement).
        return QStringLiteral("text COLLATE ucs_basic");
    default:
        return QStringLiteral("double precision");
    }
}

namespace {
// The trader columns the lists search inside.
QStringList trigramColumns(const QString& table) {
    if (table.compare(QStringLiteral("Trader"), Qt::CaseInsensitive) != 0) return {};
    return {QStringLiteral("c_name"), QStringLiteral("phone"), QStringLiteral("addr2")};
}
QString trigramIndexName(const QString& column) {
    return QStringLiteral("trader_%1_trgm").arg(column);
}
} // namespace

QStringList serverTrigramIndexNames(const QString& table) {
    QStringList out;
    for (const QString& column : trigramColumns(table))
        out << trigramIndexName(column);
    return out;
}

QStringList serverTrigramIndexes(const QString& table) {
    QStringList out;
    for (const QString& column : trigramColumns(table))
        out << QStringLiteral("CREATE INDEX IF NOT EXISTS %1 ON trader USING gin (%2 gin_trgm_ops) WITH "
                              "(fastupdate = off)")
                   .arg(trigramIndexName(column), column);
    return out;
}

QStringList serverTrigramIndexSettling(const QString& index) {
    return {QStringLiteral("ALTER INDEX %1 SET (fastupdate = off)").arg(index),
            QStringLiteral("SELECT gin_clean_pending_list('%1'::regclass)").arg(index)};
}

QString serverRowidIndex(const QString& table) {
    const QString name = table.toLower();
    return QStringLiteral("CREATE UNIQUE INDEX IF NOT EXISTS %1_rowid ON %1 (rowid)").arg(name);
}

bool isWorkTable(const QString& table) {
    return table.compare(QStringLiteral("SaleTotal"), Qt::CaseInsensitive) == 0 ||
           table.compare(QStringLiteral("BuyTotal"), Qt::CaseInsensitive) == 0;
}

QString serverSeatColumn() {
    return kServerSeatColumn +
           QStringLiteral(" text COLLATE ucs_basic NOT NULL DEFAULT current_setting('application_name')");
}

QString seatRows(bool server, const QString& table, const QString& alias) {
    if (!server) return table + QStringLiteral(" AS ") + alias;
    return QStringLiteral("(SELECT * FROM %1 WHERE seat = current_setting('application_name')) AS %2")
        .arg(table.toLower(), alias);
}

QString clearSeatRows(bool server, const QString& table) {
    if (!server) return QStringLiteral("DELETE FROM ") + table;
    // A seat still connected keeps its rows while it pages or prints them.
    return QStringLiteral("DELETE FROM %1 w WHERE w.seat = current_setting('application_name') OR NOT EXISTS "
                          "(SELECT 1 FROM pg_catalog.pg_stat_activity a WHERE a.application_name = w.seat)")
        .arg(table.toLower());
}

QString serverTrigramExtension() {
    return QStringLiteral("CREATE EXTENSION IF NOT EXISTS pg_trgm SCHEMA public");
}

ServerFault serverFaultOf(const QSqlError& error) {
    const QString state = error.nativeErrorCode();
    auto fault = [](int code, int number = 0, bool retry = false) {
        return ServerFault{code, number ? number : code, retry};
    };
    if (state.startsWith(QStringLiteral("08")) || state == QStringLiteral("57P01") ||
        state == QStringLiteral("57P02") || state == QStringLiteral("57P03") ||
        (state.isEmpty() && error.type() == QSqlError::ConnectionError))
        return fault(kServerUnreachableCode);
    if (state == QStringLiteral("23505")) return fault(kConstraintUnique);
    if (state == QStringLiteral("23502")) return fault(kConstraintNotNull);
    if (state.startsWith(QStringLiteral("23"))) return fault(kConstraint);
    // A trigger that refuses a change raises its own exception.
    if (state == QStringLiteral("P0001")) return fault(kConstraintTrigger);
    if (state.startsWith(QStringLiteral("53"))) return fault(kFull);
    if (state == QStringLiteral("25006")) return fault(kReadOnly);
    if (state == QStringLiteral("40P01") || state == QStringLiteral("40001"))
        return fault(kBusy, ErrEngine, true);
    if (state == QStringLiteral("55P03")) return fault(kBusy, ErrEngine);
    if (state == QStringLiteral("42P01") || state == QStringLiteral("42703") ||
        state == QStringLiteral("42601") || state == QStringLiteral("42883"))
        return fault(kGenericError, ErrSyntax);
    return fault(kGenericError);
}

QString serverUnreachableText() {
    return QStringLiteral("자료 서버에 연결할 수 없어 처리하지 못했습니다. 서버 컴퓨터가 켜져 있는지, "
                          "네트워크와 서버 설정(주소, 포트, 데이터베이스, 사용자)이 맞는지 확인하십시오.");
}

} // namespace nb
