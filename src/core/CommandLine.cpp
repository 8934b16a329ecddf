#include "core/CommandLine.h"

#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/WholeFile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <cstdio>

namespace nb {
namespace {

std::vector<CommandJob>& jobTable() {
    static std::vector<CommandJob> jobs;
    return jobs;
}

// Qt's own options (the platform, the style, ...): Qt takes them out of the list itself.
bool isQtOption(const QString& argument, bool* takesValue) {
    static const QStringList withValue{QStringLiteral("platform"),      QStringLiteral("platformpluginpath"),
                                       QStringLiteral("platformtheme"), QStringLiteral("plugin"),
                                       QStringLiteral("qmljsdebugger"), QStringLiteral("qwindowgeometry"),
                                       QStringLiteral("qwindowicon"),   QStringLiteral("qwindowtitle"),
                                       QStringLiteral("session"),       QStringLiteral("style"),
                                       QStringLiteral("stylesheet"),    QStringLiteral("display"),
                                       QStringLiteral("geometry"),      QStringLiteral("name"),
                                       QStringLiteral("title")};
    static const QStringList alone{QStringLiteral("reverse"), QStringLiteral("widgetcount"),
                                   QStringLiteral("nograb"), QStringLiteral("dograb"),
                                   QStringLiteral("sync")};
    if (!argument.startsWith(u'-')) return false;
    QString name = argument.mid(argument.startsWith(QStringLiteral("--")) ? 2 : 1);
    const qsizetype eq = name.indexOf(u'=');
    if (eq >= 0) name = name.left(eq);
    *takesValue = eq < 0 && withValue.contains(name);
    return withValue.contains(name) || alone.contains(name);
}

const CommandJob* jobOf(const QString& argument, const std::vector<CommandJob>& jobs) {
    for (const CommandJob& job : jobs)
        if (job.option == argument) return &job;
    return nullptr;
}

bool isValueOption(const QString& argument, const std::vector<CommandJob>& jobs) {
    for (const CommandJob& job : jobs)
        if (job.valueOptions.contains(argument)) return true;
    return false;
}

bool isFlag(const QString& argument, const std::vector<CommandJob>& jobs) {
    for (const CommandJob& job : jobs)
        if (job.flags.contains(argument)) return true;
    return false;
}

// How many of the next arguments are values (a value never begins with "--").
int valuesAfter(const QStringList& arguments, int at, int wanted) {
    int n = 0;
    while (n < wanted && at + 1 + n < arguments.size() &&
           !arguments.at(at + 1 + n).startsWith(QStringLiteral("--")))
        ++n;
    return n;
}

CommandChoice usage(const QString& problem) {
    return {CommandChoice::Kind::Usage, nullptr, problem};
}

bool samePath(const QString& a, const QString& b) {
    return !b.isEmpty() && a == resolvedPath(b);
}

} // namespace

void registerCommandJob(CommandJob job) {
    jobTable().push_back(std::move(job));
}

const std::vector<CommandJob>& commandJobs() {
    return jobTable();
}

void clearCommandJobs() {
    jobTable().clear();
}

CommandChoice chooseCommand(const QStringList& arguments, const std::vector<CommandJob>& jobs) {
    const CommandJob* chosen = nullptr;
    QStringList options; // the job options given, to check against the job chosen
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        bool qtValue = false;
        if (const CommandJob* job = jobOf(argument, jobs)) {
            if (chosen)
                return usage(QStringLiteral("한 번에 한 가지 작업만 할 수 있습니다: %1, %2")
                                 .arg(chosen->option, argument));
            chosen = job;
            i += valuesAfter(arguments, i, job->values);
        } else if (isValueOption(argument, jobs) || isFlag(argument, jobs)) {
            if (options.contains(argument))
                return usage(QStringLiteral("옵션이 두 번 주어졌습니다: ") + argument);
            options << argument;
            if (isValueOption(argument, jobs)) i += valuesAfter(arguments, i, 1);
        } else if (isQtOption(argument, &qtValue)) {
            i += qtValue ? 1 : 0;
        } else {
            return usage((argument.startsWith(u'-') ? QStringLiteral("알 수 없는 옵션입니다: ")
                                                    : QStringLiteral("알 수 없는 인수입니다: ")) +
                         argument);
        }
    }
    if (!chosen) {
        if (!options.isEmpty())
            return usage(QStringLiteral("작업 없이 쓸 수 없는 옵션입니다: ") + options.first());
        return {};
    }
    for (const QString& option : options)
        if (!chosen->valueOptions.contains(option) && !chosen->flags.contains(option))
            return usage(QStringLiteral("%1 에는 쓸 수 없는 옵션입니다: %2").arg(chosen->option, option));
    return {CommandChoice::Kind::Job, chosen, QString()};
}

QStringList usageLines(const CommandChoice& choice, const std::vector<CommandJob>& jobs) {
    QStringList lines{choice.problem};
    for (const CommandJob& job : jobs)
        lines << job.usage;
    return lines;
}

QString ownFileRefusal(const QString& target) {
    const QString path = resolvedPath(target);
    const AppState& s = app();
    QStringList own{s.DbBasicFile,
                    s.DbBillFile,
                    s.DbTaxFile,
                    s.DbInOutFile,
                    s.DbEstimateFile,
                    s.DbPostFile,
                    appFolderFile(QStringLiteral("settings.ini")),
                    appFolderFile(QStringLiteral("settings.ini.lock")),
                    QCoreApplication::applicationFilePath()};
    const QStringList stores = own.mid(0, 6);
    for (const QString& store : stores)
        for (const char* side : {"-journal", "-wal", "-shm"})
            if (!store.isEmpty()) own << store + QLatin1String(side);
    bool ownFile = false;
    for (const QString& file : own)
        ownFile = ownFile || samePath(path, file);
    // Anything in a store folder that carries the stores' extension, a sidecar of the engine too.
    const QString extension =
        QFileInfo(s.DbBasicFile.isEmpty() ? QStringLiteral("x.db") : s.DbBasicFile).suffix();
    const QFileInfo info(path);
    const QString name = info.fileName();
    const bool storeName = info.suffix() == extension || name.contains(u'.' + extension + u'-');
    for (const QString& folder : {s.DbPath, appFolderFile(QStringLiteral("Dbs"))})
        ownFile = ownFile || (storeName && !folder.isEmpty() && samePath(info.absolutePath(), folder));
    if (!ownFile) return QString();
    return QStringLiteral("누벨라의 자료 파일이라 그 위에 쓸 수 없습니다: %1 (다른 파일 이름을 주십시오)")
        .arg(target);
}

QString optionValue(const QStringList& arguments, const QString& option, int n) {
    const qsizetype at = arguments.indexOf(option);
    if (at < 0 || at + 1 + n >= arguments.size()) return QString();
    for (int i = 0; i <= n; ++i)
        if (arguments.at(at + 1 + i).startsWith(QStringLiteral("--"))) return QString();
    return arguments.at(at + 1 + n);
}

QString optionValue(const QStringList& arguments, const QString& option) {
    return optionValue(arguments, option, 0);
}

void sayLine(const QString& line) {
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

void printLine(const QString& line) {
    std::fprintf(stdout, "%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace nb
