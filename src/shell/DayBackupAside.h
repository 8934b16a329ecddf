#pragma once
// The day's first backup taken while the splash shows: on a worker thread with connections of
// its own (the engine's online backup reads while the program's own connections read, and
// nothing writes while the splash shows), begun once the splash is on the screen, so the first
// window comes as early as on any other start. The main window waits for it only when it is not
// done as the splash ends, under a progress form.

#include "storage/Backup.h"

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>

class QThread;

namespace nb {

// The steps of a start in the order they happen, for the tests that follow the road. Each is
// told on the thread it happens on (the backup's two on its worker thread).
enum class StartStep { SplashPainted, DayBackupBegun, DayBackupDone, SplashClosed, DayBackupWaited, Loaded };
void setStartObserver(std::function<void(StartStep)> observer);
void noteStartStep(StartStep step);

class DayBackupAside : public QObject {
    Q_OBJECT
public:
    explicit DayBackupAside(DayBackup backup, QObject* parent = nullptr);
    ~DayBackupAside() override;

    // Begins the backup on its worker thread; nothing when none is due or it has begun.
    void start();
    // Begins it if it has not begun, waits for it under a progress form when it is not done,
    // then says its failure once.
    void finish();

private:
    DayBackup m_backup;
    std::unique_ptr<QThread> m_worker;
    std::atomic<int> m_storesTaken{0};
};

} // namespace nb
