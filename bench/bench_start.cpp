// The program's start on a decade of books (the decade Jet set brought in by the program's own
// import: 62,000 statements, 508,710 lines, 20,000 invoices): from starting the process to its
// first window (the two-second splash, shown when the start's work is done) and to the main
// window, both as the X server maps them, in an Xvfb of the benchmark's own. The first start of
// the day (with the day's backup, taken while the splash shows; median of five) apart from the
// later ones (median of seven). Beside it the
// bare figure: the sqlite3 command line opening each store and running the same quick check the
// start runs, and the time Qt itself takes to map a bare window (the program's own binary asked
// for its version, which opens no window, is no measure of that, so a one-line Qt program).
#include "BenchSupport.h"
#include "DecadeJetSet.h"
#include "TestSupport.h"
#include "shell/Startup.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <optional>
#include <poll.h>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

using namespace nb;

namespace {

const QString kSplashTitle = QStringLiteral("사용자 로그인");

// An X server of the benchmark's own on a free display, without a window manager: a top-level
// window is mapped straight onto the root window, where its map is seen.
class Screen {
public:
    bool start() {
        for (int n = 150 + int(getpid() % 200); n < 999 && m_display.isEmpty(); ++n) {
            if (QFileInfo::exists(QStringLiteral("/tmp/.X%1-lock").arg(n)) ||
                QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n)))
                continue;
            m_server.start(QStringLiteral("Xvfb"), {QStringLiteral(":%1").arg(n), QStringLiteral("-screen"),
                                                    QStringLiteral("0"), QStringLiteral("1280x1024x24"),
                                                    QStringLiteral("-nolisten"), QStringLiteral("tcp")});
            m_server.waitForStarted(5000);
            for (int i = 0; i < 100 && m_server.state() == QProcess::Running; ++i) {
                if (QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n))) {
                    m_display = QStringLiteral(":%1").arg(n);
                    break;
                }
                QThread::msleep(50);
            }
            if (m_display.isEmpty()) {
                m_server.kill();
                m_server.waitForFinished(3000);
            }
        }
        if (m_display.isEmpty()) return false;
        m_x = xcb_connect(m_display.toLatin1().constData(), nullptr);
        if (xcb_connection_has_error(m_x)) return false;
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_x)).data->root;
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_x, m_root, XCB_CW_EVENT_MASK, &mask);
        m_name = atom("_NET_WM_NAME");
        m_utf8 = atom("UTF8_STRING");
        xcb_flush(m_x);
        return true;
    }
    ~Screen() {
        if (m_x) xcb_disconnect(m_x);
        m_server.terminate();
        m_server.waitForFinished(3000);
    }
    QString display() const { return m_display; }

    // The title of the next top-level window mapped, and when; nothing after `millis`.
    std::optional<QString> nextMapped(int millis) {
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < millis) {
            while (xcb_generic_event_t* event = xcb_poll_for_event(m_x)) {
                const bool mapped = (event->response_type & 0x7f) == XCB_MAP_NOTIFY;
                const xcb_window_t window = reinterpret_cast<xcb_map_notify_event_t*>(event)->window;
                free(event);
                if (mapped) return titleOf(window);
            }
            pollfd fd{xcb_get_file_descriptor(m_x), POLLIN, 0};
            ::poll(&fd, 1, 5);
        }
        return std::nullopt;
    }

private:
    xcb_atom_t atom(const char* name) {
        xcb_intern_atom_reply_t* reply =
            xcb_intern_atom_reply(m_x, xcb_intern_atom(m_x, 0, uint16_t(strlen(name)), name), nullptr);
        const xcb_atom_t value = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
        free(reply);
        return value;
    }
    QString titleOf(xcb_window_t window) {
        xcb_get_property_reply_t* reply =
            xcb_get_property_reply(m_x, xcb_get_property(m_x, 0, window, m_name, m_utf8, 0, 1024), nullptr);
        QString title;
        if (reply)
            title = QString::fromUtf8(static_cast<const char*>(xcb_get_property_value(reply)),
                                      xcb_get_property_value_length(reply));
        free(reply);
        return title;
    }

    QProcess m_server;
    QString m_display;
    xcb_connection_t* m_x = nullptr;
    xcb_window_t m_root = 0;
    xcb_atom_t m_name = XCB_ATOM_NONE;
    xcb_atom_t m_utf8 = XCB_ATOM_NONE;
};

struct StartTimes {
    double firstWindow = -1; // the splash
    double mainWindow = -1;
};

// One start of a program, timed to the map of a window titled `first` and then of `main`.
StartTimes timeStart(Screen& screen, const QString& program, const QStringList& arguments,
                     const QString& first, const QString& main) {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), screen.display());
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    process.setProcessEnvironment(env);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    StartTimes times;
    QElapsedTimer clock;
    clock.start();
    process.start(program, arguments);
    while (const std::optional<QString> title = screen.nextMapped(15000)) {
        const double ms = double(clock.nsecsElapsed()) / 1e6;
        if (*title == first && times.firstWindow < 0) times.firstWindow = ms;
        if (*title == main) {
            times.mainWindow = ms;
            break;
        }
    }
    process.terminate();
    if (!process.waitForFinished(5000)) process.kill();
    process.waitForFinished(3000);
    while (screen.nextMapped(300)) {
    } // what the ended program still had the server map belongs to no later start
    return times;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? -1 : values[values.size() / 2];
}

// The bare start of a Qt window: a program of one line mapping an empty window.
QString bareWindowProgram(const QString& folder) {
    const QString source = folder + QStringLiteral("/bare.cpp");
    QFile file(source);
    file.open(QIODevice::WriteOnly);
    file.write(
        "#include <QApplication>\n#include <QWidget>\nint main(int c, char** v) { QApplication a(c, v); "
        "QWidget w; w.setWindowTitle(\"bare\"); w.show(); return a.exec(); }\n");
    file.close();
    const QString binary = folder + QStringLiteral("/bare");
    QProcess build;
    build.start(QStringLiteral("sh"),
                {QStringLiteral("-c"),
                 QStringLiteral("g++ -std=c++17 -fPIC -O1 \"$0\" -o \"$1\" $(pkg-config --cflags "
                                "--libs Qt6Widgets)"),
                 source, binary});
    build.waitForFinished(180000);
    return QFileInfo(binary).isExecutable() ? binary : QString();
}

double quickCheckMs(const QString& folder) {
    QStringList statements;
    for (const QString& store : QDir(folder).entryList({QStringLiteral("*.db")}, QDir::Files))
        statements << QStringLiteral(".open '%1/%2'\nPRAGMA quick_check;").arg(folder, store);
    return bench::medianMs(
        [&] {
            QProcess p;
            p.start(QStringLiteral("sqlite3"));
            p.write(statements.join(u'\n').toUtf8() + '\n');
            p.closeWriteChannel();
            p.waitForFinished(120000);
        },
        5);
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication application(argc, argv);
    test::prepareApplication(application);
    test::TestHome home;
    const QString program = QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella");
    const QString jet = home.file(QStringLiteral("jet"));
    QDir().mkpath(jet);
    try {
        bench::makeDecadeJetSet(jet);
    } catch (const std::exception& e) {
        std::printf("the decade set could not be made: %s\n", e.what());
        return 1;
    }
    QProcess import;
    import.start(program, {QStringLiteral("--import-mdb"), jet});
    import.waitForFinished(600000);
    if (import.exitCode() != 0) {
        std::printf("the import failed: %s\n", import.readAllStandardError().constData());
        return 1;
    }
    std::printf(
        "stores of a decade: %s\n",
        qPrintable(QDir(home.file(QStringLiteral("Dbs"))).entryList({"*.db"}, QDir::Files).join(u' ')));
    Screen screen;
    if (!screen.start()) {
        std::printf("no X server\n");
        return 1;
    }
    const QString title = mainWindowTitle();
    // Each first start of the day finds no backup of the day: the one before it is removed.
    std::vector<double> daySplash, dayMain;
    for (int run = 0; run < 5; ++run) {
        for (const QFileInfo& zip :
             QDir(home.file(QStringLiteral("Backup"))).entryInfoList({"*.zip"}, QDir::Files))
            QFile::remove(zip.absoluteFilePath());
        const StartTimes t = timeStart(screen, program, {}, kSplashTitle, title);
        daySplash.push_back(t.firstWindow);
        dayMain.push_back(t.mainWindow);
    }
    std::printf(
        "first start of the day, with the day's backup (median of 5): splash mapped %.0f ms, main window "
        "mapped %.0f ms\n",
        median(daySplash), median(dayMain));
    std::vector<double> splash, main;
    for (int run = 0; run < 7; ++run) {
        const StartTimes t = timeStart(screen, program, {}, kSplashTitle, title);
        splash.push_back(t.firstWindow);
        main.push_back(t.mainWindow);
    }
    std::printf("later starts (median of 7): splash mapped %.0f ms, main window mapped %.0f ms "
                "(the splash stays two seconds)\n",
                median(splash), median(main));
    const QString bare = bareWindowProgram(home.path());
    std::vector<double> bareTimes;
    for (int run = 0; run < 7 && !bare.isEmpty(); ++run)
        bareTimes.push_back(
            timeStart(screen, bare, {}, QStringLiteral("bare"), QStringLiteral("bare")).mainWindow);
    std::printf("a bare Qt window mapped (median of 7): %.0f ms\n", median(bareTimes));
    std::printf("sqlite3 quick check of every store (median of 5): %.0f ms\n",
                quickCheckMs(home.file(QStringLiteral("Dbs"))));
    return 0;
}
