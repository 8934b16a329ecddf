#pragma once
// Files written as wholes. The new content goes to a temporary file beside the target, is
// checked, flushed to the disk and only then takes the target's name, so a target is always
// its old self or its new self: never half of one, never a file of no bytes.

#include <QByteArray>
#include <QString>
#include <functional>

namespace nb {

// Why a write failed, in the words the operator is told.
struct WriteFailure {
    enum class Cause { None, ReadOnly, DiskFull, NotAFile, NoFolder, Incomplete, Other };
    Cause cause = Cause::None;
    QString systemWords; // the system's own words, shown under the Korean ones

    bool failed() const { return cause != Cause::None; }
    // One Korean sentence naming the cause, with the system's words in brackets.
    QString sentence() const;
    static WriteFailure fromErrno(int error);
};

// Writes bytes to target as a whole; on failure the target is left as it was and the
// temporary file is removed. A new file gets the usual permissions, an old one keeps its own.
bool writeWholeFile(const QString& target, const QByteArray& bytes, WriteFailure* failure);

// An output that a library writes by name (a PDF, a workbook): it writes to tempPath(), then
// commit() checks the result and moves it onto the target. A target that is a device or a pipe
// (/dev/stdout) is given the finished bytes instead. Not committed, the temporary file goes.
class WholeOutput {
public:
    explicit WholeOutput(QString target);
    ~WholeOutput();
    WholeOutput(const WholeOutput&) = delete;
    WholeOutput& operator=(const WholeOutput&) = delete;

    // Reserves the temporary file; false with the cause when the target's folder takes none or
    // the target is a folder.
    bool begin(WriteFailure* failure);
    QString tempPath() const { return m_temp; }
    // `isWhole` tells whether the written file is complete (a PDF's end mark, a zip's directory).
    bool commit(const std::function<bool(const QString& path)>& isWhole, WriteFailure* failure);

private:
    bool copyToDevice(WriteFailure* failure);

    QString m_target;
    QString m_temp;
    bool m_toDevice = false;
};

// The target a path names once links are followed; a missing file resolves its folder.
QString resolvedPath(const QString& path);

} // namespace nb
