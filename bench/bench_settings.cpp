// Times of the settings file at sizes a shop never reaches but a damaged or generated file may:
// reading 5,000 to 40,000 keys at start, and one save (read again, change one key, write the
// whole beside the file and rename it) into a file of as many keys.
#include "BenchSupport.h"
#include "TestSupport.h"
#include "core/Settings.h"

#include <QApplication>
#include <QFile>
#include <cstdio>

using namespace nb;

namespace {

void writeKeys(const QString& path, int keys) {
    QByteArray text = "[세금계산서\\환경설정]\n";
    for (int i = 0; i < keys; ++i)
        text += "키" + QByteArray::number(i) + "=값" + QByteArray::number(i) + '\n';
    QFile f(path);
    if (f.open(QIODevice::WriteOnly)) f.write(text);
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication application(argc, argv);
    test::prepareApplication(application);
    std::printf("%8s %12s %12s\n", "keys", "read (ms)", "save (ms)");
    for (int keys : {5000, 10000, 20000, 40000}) {
        test::TestHome home;
        const QString path = home.file(QStringLiteral("settings.ini"));
        writeKeys(path, keys);
        const double read = bench::medianMs([&] { SettingsStore store(path); }, 5);
        SettingsStore store(path);
        int n = 0;
        const double save = bench::medianMs(
            [&] { store.save(kAppSection, kEnvSection, QStringLiteral("키0"), QString::number(++n)); }, 5);
        std::printf("%8d %12.1f %12.1f\n", keys, read, save);
    }
    return 0;
}
