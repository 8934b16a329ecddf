#include "storage/ChangeNotices.h"

#include "common/ListRefresh.h"
#include "storage/Database.h"
#include "storage/Stores.h"

#include <QPointer>
#include <QSqlDriver>
#include <QWidget>
#include <vector>

namespace nb {
namespace {

const QStringList& toldTables() {
    static const QStringList tables{
        QStringLiteral("User"),     QStringLiteral("Trader"),   QStringLiteral("Product"),
        QStringLiteral("Master"),   QStringLiteral("Detail"),   QStringLiteral("NewAcount"),
        QStringLiteral("BuyTax"),   QStringLiteral("EtaxFile"), QStringLiteral("EtaxHandOver"),
        QStringLiteral("EstiBase"), QStringLiteral("Estimate"),
    };
    return tables;
}

// The store's one notice function: the channel is named by the schema the changed table is in,
// so the same function serves every store.
const QString kNoticeFunction =
    QStringLiteral("CREATE OR REPLACE FUNCTION nubella_changed() RETURNS trigger LANGUAGE plpgsql AS "
                   "$$BEGIN PERFORM pg_notify('nubella_' || TG_TABLE_SCHEMA, ''); RETURN NULL; END$$");

// The notices of one channel on one connection, handed to every list that watches it. It lives
// as a child of the connection's driver, so it goes with the connection.
class ChangeHub : public QObject {
public:
    ChangeHub(QSqlDriver* driver, const QString& channel) : QObject(driver), m_channel(channel) {
        setObjectName(channel);
        connect(driver, &QSqlDriver::notification, this, &ChangeHub::onNotice);
    }

    void add(QObject* receiver, std::function<void()> changed) {
        m_watches.push_back({QPointer<QObject>(receiver), std::move(changed)});
    }

private:
    struct Watch {
        QPointer<QObject> receiver;
        std::function<void()> changed;
    };

    void onNotice(const QString& name, QSqlDriver::NotificationSource source, const QVariant&) {
        if (name != m_channel || source == QSqlDriver::SelfSource) return;
        std::erase_if(m_watches, [](const Watch& w) { return w.receiver.isNull(); });
        const std::vector<Watch> watches = m_watches; // a watcher may add another while told
        for (const Watch& w : watches)
            if (!w.receiver.isNull()) w.changed();
    }

    QString m_channel;
    std::vector<Watch> m_watches;
};

} // namespace

QStringList missingChangeNotices(Database& db) {
    QStringList out;
    if (!db.onServer() || !db.isOpen()) return out;
    for (const QString& table : toldTables())
        if (db.hasTable(table) && !db.hasTrigger(changeTriggerName(table))) out << table;
    return out;
}

QString changeChannel(const QString& schema) {
    return QStringLiteral("nubella_") + schema.toLower();
}

bool tellsChanges(const QString& table) {
    return toldTables().contains(table, Qt::CaseInsensitive);
}

QString changeTriggerName(const QString& table) {
    return table.toLower() + QStringLiteral("_changed");
}

QStringList changeNoticeStatements(const QString& table) {
    if (!tellsChanges(table)) return {};
    return {kNoticeFunction,
            QStringLiteral("CREATE OR REPLACE TRIGGER %1 AFTER INSERT OR UPDATE OR DELETE OR TRUNCATE ON %2 "
                           "FOR EACH STATEMENT EXECUTE FUNCTION nubella_changed()")
                .arg(changeTriggerName(table), quoteName(table))};
}

bool addChangeNotices(Database& db) {
    if (!db.onServer() || !db.isOpen() || missingChangeNotices(db).isEmpty()) return true;
    const QString headline = QStringLiteral("다른 자리의 저장을 알리는 장치를 만들지 못했습니다.");
    // The store's writer lock makes a second seat starting at the same moment wait, and then
    // find the triggers made.
    if (!db.beginTransaction()) {
        ReportSaveFailure(db, headline);
        return false;
    }
    for (const QString& table : missingChangeNotices(db))
        for (const QString& sql : changeNoticeStatements(table))
            if (!db.Execute(sql)) {
                db.rollback();
                return false;
            }
    if (db.commit()) return true;
    ReportSaveFailure(db, headline);
    return false;
}

bool watchStoreChanges(Database& db, QObject* receiver, std::function<void()> changed) {
    if (!db.onServer() || !db.isOpen() || !receiver) return false;
    QSqlDriver* driver = db.connection().driver();
    if (!driver || !driver->hasFeature(QSqlDriver::EventNotifications)) return false;
    const QString channel = changeChannel(db.serverSchema());
    auto* hub = driver->findChild<ChangeHub*>(channel, Qt::FindDirectChildrenOnly);
    if (!hub) {
        if (!driver->subscribeToNotification(channel)) return false;
        hub = new ChangeHub(driver, channel);
    }
    hub->add(receiver, std::move(changed));
    return true;
}

void refreshListsOnChanges(QWidget* screen, std::initializer_list<Database*> dbs) {
    setListRefreshHold([] {
        Stores& s = stores();
        return s.dbBasic.inTransaction() || s.dbBill.inTransaction() || s.dbTax.inTransaction() ||
               s.dbEstimate.inTransaction();
    });
    QPointer<QWidget> guarded(screen);
    for (Database* db : dbs)
        watchStoreChanges(*db, screen, [guarded] {
            if (guarded) requestListRefresh(guarded);
        });
}

} // namespace nb
