#pragma once
// The file dialogs of the program as one service that tests script: a file to open, a file to
// save, a folder. Each answers the chosen path, or empty text when the operator cancelled.

#include <QString>
#include <QStringList>
#include <memory>

class QWidget;

namespace nb {

class FileChooser {
public:
    virtual ~FileChooser() = default;
    // The filter is given as "Description|patterns" with patterns separated by ";"; the dialog
    // opens in `start` (the working folder when empty).
    virtual QString openFile(QWidget* parent, const QString& title, const QString& filter,
                             const QString& start = QString()) = 0;
    // A file to write, offered first as `suggested` (a full path).
    virtual QString saveFile(QWidget* parent, const QString& title, const QString& suggested,
                             const QString& filter) = 0;
    virtual QString chooseFolder(QWidget* parent, const QString& title, const QString& start) = 0;
};
FileChooser& fileChooser();
void setFileChooser(std::unique_ptr<FileChooser> chooser);

// Answers from one list, whatever the dialog (empty text when it runs out), and records each
// dialog's title, filter (the suggested path for a save, the start for a folder) and kind.
class ScriptedFileChooser : public FileChooser {
public:
    QString openFile(QWidget* parent, const QString& title, const QString& filter,
                     const QString& start = QString()) override;
    QString saveFile(QWidget* parent, const QString& title, const QString& suggested,
                     const QString& filter) override;
    QString chooseFolder(QWidget* parent, const QString& title, const QString& start) override;
    QStringList answers;
    QStringList titles;
    QStringList filters;
    QStringList suggested; // of saveFile and chooseFolder
    QStringList starts;    // the folder each openFile opened in
    QStringList kinds;     // "open", "save", "folder"

private:
    QString next(const QString& kind, const QString& title);
};
// Installs a fresh ScriptedFileChooser and returns it (owned by the service).
ScriptedFileChooser& scriptFileChooser();

// "Pictures (*.bmp;*.jpg;*.gif)|*.bmp;*.jpg;*.gif" as a Qt file dialog filter.
QString qtFileFilter(const QString& filter);

} // namespace nb
