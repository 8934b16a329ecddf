#include "master/PostSearch.h"

#include "common/text/NumberFormat.h"
#include "core/AppState.h"
#include "core/Lifecycle.h"
#include "master/SearchRules.h"

#include <QSqlQuery>

namespace nb {
namespace {

const QString kSelectPost = QStringLiteral("SELECT ZIPCODE, SIDO, GUGUN, DONG, BUNJI FROM Post ");
const QString kOrderPost = QStringLiteral("ORDER BY ZIPCODE, Post.rowid;");

void addLimits(SqlPart& part, const PostLimits& limits, bool firstCondition) {
    QString joint = firstCondition ? QStringLiteral("WHERE ") : QStringLiteral("AND ");
    if (!limits.sPost.isEmpty()) {
        part.sql += joint + QStringLiteral("ZIPCODE >= ? ");
        part.values << limits.sPost;
        joint = QStringLiteral("AND ");
    }
    if (!limits.ePost.isEmpty()) {
        part.sql += joint + QStringLiteral("ZIPCODE <= ? ");
        part.values << limits.ePost;
    }
}

} // namespace

PostLimits& postLimits() {
    static PostLimits limits;
    static const bool hooked = (registerResetHook([] { postLimits() = {}; }), true);
    Q_UNUSED(hooked);
    return limits;
}

SqlPart PostSearchQuery(Database& db, const QString& text, const PostLimits& limits) {
    SqlPart part{kSelectPost, {}};
    if (text.isEmpty()) {
        addLimits(part, limits, true);
    } else {
        const QString column = PostSearchByZip(text) ? QStringLiteral("ZIPCODE") : QStringLiteral("DONG");
        const SqlPart narrow = SearchCandidates(db, PostSearchIndex(), text, {column});
        part.sql += QStringLiteral("WHERE ") + narrow.sql + column + LikeAnywhere(db.onServer()) + u' ';
        part.values << narrow.values << LikeContains(text);
        addLimits(part, limits, false);
    }
    part.sql += kOrderPost;
    return part;
}

std::unique_ptr<QSqlQuery> OpenPostSearch(Database& postDb, const QString& text) {
    const SqlPart query = PostSearchQuery(postDb, text, postLimits());
    auto q = std::make_unique<QSqlQuery>(postDb.connection());
    q->setForwardOnly(true);
    if (!q->prepare(query.sql)) return nullptr;
    for (const QVariant& v : query.values)
        q->addBindValue(v);
    if (!q->exec()) return nullptr;
    return q;
}

std::unique_ptr<GridRowSource> OpenPostRows(Database& postDb, const QString& text, KeptStatements& kept) {
    if (!SqliteRows::canStep(postDb.connection())) {
        std::unique_ptr<QSqlQuery> q = OpenPostSearch(postDb, text);
        if (!q) return nullptr;
        return std::make_unique<QueryRows>(std::move(q));
    }
    const SqlPart query = PostSearchQuery(postDb, text, postLimits());
    std::shared_ptr<SqliteStatement> statement = kept.run(postDb.connection(), query.sql, query.values);
    if (!statement || !statement->ok()) return nullptr;
    return std::make_unique<SqliteRows>(std::move(statement));
}

QVector<QStringList> SearchPostBook(Database& postDb, const QString& text) {
    QVector<QStringList> rows;
    const std::unique_ptr<QSqlQuery> q = OpenPostSearch(postDb, text);
    if (!q) return rows;
    while (q->next())
        rows.push_back({q->value(0).toString(), q->value(1).toString(), q->value(2).toString(),
                        q->value(3).toString(), q->value(4).toString()});
    return rows;
}

QVector<QStringList> SearchPostBook(const QString& text) {
    Database postDb;
    if (!OpenDb(postDb, app().DbPostFile, 0)) return {};
    return SearchPostBook(postDb, text);
}

QString SingleHitZip(const QString& zip) {
    return FormatText(zip, QStringLiteral("###-###"));
}

QString ChosenZip(const QString& zip) {
    return zip.size() == 6 ? FormatText(zip, QStringLiteral("000-000")) : zip;
}

QString AddressPrefix(const QStringList& row) {
    return row.value(1) + u' ' + row.value(2) + u' ' + row.value(3);
}

} // namespace nb
