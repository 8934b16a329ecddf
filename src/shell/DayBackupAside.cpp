#include "shell/DayBackupAside.h"

#include "common/Messages.h"

#include <QEventLoop>
#include <QMutex>
#include <QThread>
#include <QTimer>

namespace nb {
namespace {

QMutex observerLock;
std::function<void(StartStep)>& observer() {
    static std::function<void(StartStep)> current;
    return current;
}

constexpr int kProgressTickMillis = 100;

} // namespace

void setStartObserver(std::function<void(StartStep)> watcher) {
    QMutexLocker lock(&observerLock);
    observer() = std::move(watcher);
}

void noteStartStep(StartStep step) {
    std::function<void(StartStep)> watcher;
    {
        QMutexLocker lock(&observerLock);
        watcher = observer();
    }
    if (watcher) watcher(step);
}

DayBackupAside::DayBackupAside(DayBackup backup, QObject* parent)
    : QObject(parent), m_backup(std::move(backup)) {}

// Its thread never outlives it (a load left early still waits for the backup to end).
DayBackupAside::~DayBackupAside() {
    if (m_worker) m_worker->wait();
}

void DayBackupAside::start() {
    if (!m_backup.due() || m_worker) return;
    m_worker.reset(QThread::create([this] {
        noteStartStep(StartStep::DayBackupBegun);
        m_backup.take([this] { ++m_storesTaken; });
        noteStartStep(StartStep::DayBackupDone);
    }));
    m_worker->setObjectName(QStringLiteral("day-backup"));
    m_worker->start(QThread::LowPriority);
}

void DayBackupAside::finish() {
    if (!m_backup.due()) return;
    start();
    if (!m_worker->isFinished()) {
        noteStartStep(StartStep::DayBackupWaited);
        Progress progress(QStringLiteral("오늘의 자동 백업을 마무리하고 있습니다."), m_backup.storeCount());
        QEventLoop loop;
        connect(m_worker.get(), &QThread::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
        QTimer tick;
        connect(&tick, &QTimer::timeout, &loop, [&] {
            while (progress.value() < m_storesTaken.load())
                progress.step();
        });
        tick.start(kProgressTickMillis);
        if (!m_worker->isFinished()) loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    m_worker->wait();
    m_backup.sayFailure();
}

} // namespace nb
