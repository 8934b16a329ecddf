#pragma once
// The program's command line: the jobs it runs without a window (a print to PDF, an export),
// the choice between a job, the window and a usage error, options read from the argument list,
// a check that keeps the program's own files from being written over, and one line said on
// the error stream.

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace nb {

// One job of the command line, as its library registers it.
struct CommandJob {
    QString option;                                       // "--print-invoice"
    int values = 1;                                       // the values right after the option
    QStringList valueOptions;                             // the job's options that take one value ("--pdf")
    QStringList flags;                                    // the job's options that take none ("--frame")
    QString usage;                                        // its usage line, "사용법: nubella ..."
    std::function<int(const QStringList& arguments)> run; // the exit code
};

void registerCommandJob(CommandJob job);
const std::vector<CommandJob>& commandJobs();
// Forgets the registered jobs (tests).
void clearCommandJobs();

// What an argument list asks for: the window (no arguments but Qt's own), one job, or a usage
// error (an option no job knows, a value missing, two jobs, an option of another job).
struct CommandChoice {
    enum class Kind { Window, Job, Usage };
    Kind kind = Kind::Window;
    const CommandJob* job = nullptr;
    QString problem; // with Usage: the one-line reason, in Korean
};
// `arguments` without the program's name.
CommandChoice chooseCommand(const QStringList& arguments, const std::vector<CommandJob>& jobs);
// The reason and every job's usage line, for a usage error (the exit code is 2).
QStringList usageLines(const CommandChoice& choice, const std::vector<CommandJob>& jobs);

// Empty when the command line may write `target`; else why not, in Korean: the stores (any
// file of the store folder with the stores' extension, and each store wherever it lies), the
// settings file and its lock, and the program itself are never written over by an output.
QString ownFileRefusal(const QString& target);

// The value behind an option, or empty text when the option or its value is missing.
QString optionValue(const QStringList& arguments, const QString& option);
// The n-th value behind an option (0 is the first), or empty text.
QString optionValue(const QStringList& arguments, const QString& option, int n);
// One line on the standard error stream, in UTF-8.
void sayLine(const QString& line);
// One line on the standard output stream, in UTF-8.
void printLine(const QString& line);

} // namespace nb
