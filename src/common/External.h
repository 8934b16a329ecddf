#pragma once
// Hands things to the desktop: web pages, files and other programs. Tests install a recorder
// instead, so nothing is really opened or started.

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

namespace nb {

class ExternalLauncher {
public:
    virtual ~ExternalLauncher() = default;
    // Opens an address or a file with the desktop's program for it; false when nothing could.
    virtual bool openUrl(const QString& address) = 0;
    // Starts a program detached, in workingFolder when one is given; false when it could not be
    // started. A Windows program (a file beginning "MZ") goes through wine when that is on PATH.
    virtual bool startProgram(const QString& program, const QStringList& arguments,
                              const QString& workingFolder = QString()) = 0;
};

ExternalLauncher& launcher();
void setLauncher(std::unique_ptr<ExternalLauncher> launcher);

// Records what would have been opened or started; answers `succeed`.
class RecordingLauncher : public ExternalLauncher {
public:
    struct Call {
        QString target;
        QStringList arguments;
        bool isUrl = false;
        QString workingFolder;
    };
    bool openUrl(const QString& address) override;
    bool startProgram(const QString& program, const QStringList& arguments,
                      const QString& workingFolder = QString()) override;
    std::vector<Call> calls;
    bool succeed = true;
};

// Installs a fresh RecordingLauncher and returns it (owned by the service).
RecordingLauncher& recordLaunches();

} // namespace nb
