#include "storage/StoreAside.h"

#include <QEventLoop>
#include <QThread>
#include <memory>

namespace nb {

void runAside(const std::function<void()>& work) {
    QEventLoop loop;
    std::unique_ptr<QThread> worker(QThread::create(work));
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    worker->start();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    // The loop also ends when the application is told to quit; the work is finished either way.
    worker->wait();
}

} // namespace nb
