#include "RoadDesk.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <unistd.h>

namespace road {
namespace {

constexpr int kPollMillis = 100;

// A display number no other X server holds (its lock file and socket are absent).
QString freeDisplay(int from) {
    for (int n = from; n < 1000; ++n) {
        const bool locked = QFileInfo::exists(QStringLiteral("/tmp/.X%1-lock").arg(n)) ||
                            QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n));
        if (!locked) return QStringLiteral(":%1").arg(n);
    }
    return {};
}

void stop(std::unique_ptr<QProcess>& process) {
    if (!process || process->state() == QProcess::NotRunning) return;
    process->terminate();
    if (!process->waitForFinished(3000)) {
        process->kill();
        process->waitForFinished(3000);
    }
}

template <typename Ready> bool pollUntil(int millis, Ready ready) {
    QDeadlineTimer deadline(millis);
    while (!ready()) {
        if (deadline.hasExpired()) return false;
        QThread::msleep(kPollMillis);
    }
    return true;
}

} // namespace

RoadDesk::RoadDesk() {
    m_saidLog = m_home.path() + QStringLiteral("/said.log");
    if (!m_home.isValid())
        m_why = QStringLiteral("no home folder");
    else
        startServer();
}

RoadDesk::~RoadDesk() {
    stop(m_program);
    for (auto& other : m_others)
        stop(other);
    stop(m_windowManager);
    stop(m_server);
}

// Two road tests may start at once: a display taken between the look and the start makes the
// server end at once, and the next free one is tried.
bool RoadDesk::startServer() {
    static int desksStarted = 0; // a display just ended may not be free again at once
    int from = 90 + int(getpid() % 100) * 5 + desksStarted++;
    for (int attempt = 0; attempt < 5 && !serverUp(from); ++attempt)
        from = m_display.mid(1).toInt() + 1;
    if (!m_server || m_server->state() != QProcess::Running) {
        m_why = QStringLiteral("Xvfb did not start");
        return false;
    }
    // The window manager is up when it has put its check window on the root window. Now and
    // then it starts but never gets there; it is started again then.
    for (int attempt = 0; attempt < 3; ++attempt)
        if (windowManagerUp()) return true;
    m_why = QStringLiteral("openbox did not start on %1 (%2)")
                .arg(m_display, m_windowManager->state() == QProcess::Running
                                    ? QStringLiteral("running, no check window")
                                    : QStringLiteral("ended with %1").arg(m_windowManager->exitCode()));
    return false;
}

bool RoadDesk::windowManagerUp() {
    stop(m_windowManager);
    m_windowManager = std::make_unique<QProcess>();
    m_windowManager->setProcessEnvironment(deskEnvironment());
    m_windowManager->start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
    return m_windowManager->waitForStarted(5000) && pollUntil(10000, [&] {
               return run(QStringLiteral("xprop"),
                          {QStringLiteral("-root"), QStringLiteral("_NET_SUPPORTING_WM_CHECK")})
                   .contains(QStringLiteral("window id"));
           });
}

bool RoadDesk::serverUp(int from) {
    m_display = freeDisplay(from);
    if (m_display.isEmpty()) return false;
    m_server = std::make_unique<QProcess>();
    m_server->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_server->start(QStringLiteral("Xvfb"),
                    {m_display, QStringLiteral("-screen"), QStringLiteral("0"),
                     QStringLiteral("1280x1024x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    const QString socket = QStringLiteral("/tmp/.X11-unix/X") + m_display.mid(1);
    return m_server->waitForStarted(5000) &&
           pollUntil(10000,
                     [&] { return m_server->state() == QProcess::Running && QFileInfo::exists(socket); }) &&
           m_server->state() == QProcess::Running;
}

QProcessEnvironment RoadDesk::deskEnvironment() const {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), m_display);
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    env.insert(QStringLiteral("NUBELLA_HOME"), m_home.path());
    env.insert(QStringLiteral("NUBELLA_SAID_LOG"), m_saidLog);
    env.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return env;
}

QString RoadDesk::run(const QString& program, const QStringList& arguments, int millis) const {
    QProcess process;
    process.setProcessEnvironment(deskEnvironment());
    process.start(program, arguments);
    if (!process.waitForFinished(millis)) {
        process.kill();
        process.waitForFinished(1000);
        return {};
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

bool RoadDesk::startProgram(const QStringList& arguments) {
    if (!ready()) return false;
    m_program = std::make_unique<QProcess>();
    m_program->setProcessEnvironment(deskEnvironment());
    m_program->setProcessChannelMode(QProcess::ForwardedChannels);
    m_program->start(QStringLiteral(NB_PROGRAM), arguments);
    return m_program->waitForStarted(5000);
}

bool RoadDesk::programRunning() const {
    return m_program && m_program->state() == QProcess::Running;
}

bool RoadDesk::waitProgramEnded(int millis) {
    return !m_program || m_program->waitForFinished(millis) || m_program->state() == QProcess::NotRunning;
}

bool RoadDesk::startOther(const QString& program, const QStringList& arguments) {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(deskEnvironment());
    process->start(program, arguments);
    const bool started = process->waitForStarted(5000);
    m_others.push_back(std::move(process));
    return started;
}

QString RoadDesk::activeWindowId() const {
    return run(QStringLiteral("xdotool"), {QStringLiteral("getactivewindow")}).trimmed();
}

QString RoadDesk::activeWindowName() const {
    const QString id = activeWindowId();
    if (id.isEmpty()) return {};
    return run(QStringLiteral("xdotool"), {QStringLiteral("getwindowname"), id}).trimmed();
}

bool RoadDesk::waitActive(const QRegularExpression& name, int millis) const {
    return pollUntil(millis, [&] { return name.match(activeWindowName()).hasMatch(); });
}

QString RoadDesk::waitWindow(const QRegularExpression& name, int millis) const {
    QString found;
    pollUntil(millis, [&] {
        const QStringList ids =
            run(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                            QStringLiteral("--name"), name.pattern()})
                .split(u'\n', Qt::SkipEmptyParts);
        found = ids.isEmpty() ? QString() : ids.last().trimmed();
        return !found.isEmpty();
    });
    return found;
}

bool RoadDesk::activate(const QString& windowId) const {
    run(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"), QStringLiteral("--sync"), windowId},
        5000);
    return pollUntil(5000, [&] { return activeWindowId() == windowId; });
}

void RoadDesk::keys(const QStringList& keyNames) const {
    run(QStringLiteral("xdotool"), QStringList{QStringLiteral("key"), QStringLiteral("--clearmodifiers"),
                                               QStringLiteral("--delay"), QStringLiteral("80")} +
                                       keyNames);
    settle(150);
}

void RoadDesk::type(const QString& text) const {
    // Hangul goes through a keycode xdotool maps for each character in turn: a slower pace lets
    // the program read each one before the next remaps it.
    run(QStringLiteral("xdotool"),
        {QStringLiteral("type"), QStringLiteral("--clearmodifiers"), QStringLiteral("--delay"),
         QStringLiteral("100"), text},
        30000);
    settle(150);
}

QStringList RoadDesk::said() const {
    QFile file(m_saidLog);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

int RoadDesk::countSaid(const QString& part) const {
    int n = 0;
    for (const QString& line : said())
        n += line.contains(part) ? 1 : 0;
    return n;
}

bool RoadDesk::waitSaid(const QString& part, int before, int millis) const {
    return pollUntil(millis, [&] { return countSaid(part) > before; });
}

QStringList RoadDesk::rows(const QString& storeName, const QString& sql) const {
    return run(QStringLiteral("sqlite3"), {QStringLiteral("-readonly"), storeFile(storeName), sql})
        .split(u'\n', Qt::SkipEmptyParts);
}

bool RoadDesk::exec(const QString& storeName, const QString& sql) const {
    QProcess process;
    process.start(QStringLiteral("sqlite3"),
                  {QStringLiteral("-cmd"), QStringLiteral(".timeout 5000"), storeFile(storeName), sql});
    return process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

void RoadDesk::settle(int millis) const {
    QThread::msleep(unsigned(millis));
}

QRegularExpression mainWindowName() {
    return QRegularExpression(QStringLiteral("거래명세표 & 세금계산서발행"));
}

} // namespace road
