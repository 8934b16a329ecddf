// A running copy of the program's settings saves, for the settings tests: it saves through the
// program's own store and prints "saved KEY" or "refused KEY" per save and "box TEXT" per box
// it was shown. The tests run two at once, limit the size of the files it may write, or run it
// on a folder it may not write.
//
//   nb_settings_worker save FILE PREFIX COUNT   COUNT keys PREFIX0, PREFIX1, ...
//   nb_settings_worker full FILE BYTES          one save while no file may grow past BYTES
//   nb_settings_worker readonly FILE COUNT      COUNT saves, as another user when run as root
#include "common/Messages.h"
#include "core/Settings.h"

#include <QCoreApplication>
#include <QThread>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

using namespace nb;

namespace {

ScriptedMessages* g_messages = nullptr;

void say(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

void sayBoxes() {
    for (const MessageRecord& box : g_messages->boxes())
        say(QStringLiteral("box ") + QString(box.text).replace(u'\r', u' ').replace(u'\n', u' '));
    g_messages->clear();
}

bool saveOne(SettingsStore& store, const QString& key) {
    const bool saved = store.save(kAppSection, kEnvSection, key, QStringLiteral("값 ") + key);
    say((saved ? QStringLiteral("saved ") : QStringLiteral("refused ")) + key);
    sayBoxes();
    return saved;
}

// An operator's saves come a moment apart; a copy saving in a tight loop is not what two
// running programs do.
constexpr int kPauseMicros = 300;

int saveMany(const QString& file, const QString& prefix, int count) {
    SettingsStore store(file);
    int refused = 0;
    for (int i = 0; i < count; ++i) {
        refused += saveOne(store, prefix + QString::number(i)) ? 0 : 1;
        QThread::usleep(kPauseMicros);
    }
    return refused == 0 ? 0 : 1;
}

// Files may not grow past `bytes` (a full disk); a write past it fails instead of ending the
// process.
int fullDisk(const QString& file, rlim_t bytes) {
    SettingsStore store(file);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
    return saveOne(store, QStringLiteral("기본공급자")) ? 1 : 0;
}

// Root writes anywhere; the folder is read-only only to another user.
int readOnly(const QString& file, int count) {
    if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) return 3;
    SettingsStore store(file);
    int saved = 0;
    for (int i = 0; i < count; ++i)
        saved += saveOne(store, QStringLiteral("키%1").arg(i)) ? 1 : 0;
    return saved == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() < 3) return 2;
    g_messages = &scriptMessages();
    const QString kind = args.at(0);
    if (kind == u"save") return saveMany(args.at(1), args.at(2), args.value(3).toInt());
    if (kind == u"full") return fullDisk(args.at(1), rlim_t(args.at(2).toLongLong()));
    if (kind == u"readonly") return readOnly(args.at(1), args.at(2).toInt());
    return 2;
}
