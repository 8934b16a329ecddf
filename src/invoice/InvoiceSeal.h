#pragma once
// The supplier's seal printed on the invoice, and the file dialog that chooses it. The path is
// the setting "세금계산서_공급자도장경로" under the application's title; "DefaultPath" (the
// default) means 공급자도장.gif in the application folder, an empty value means no seal.

#include <QImage>
#include <QString>
#include <QStringList>
#include <memory>

class QWidget;

namespace nb {

inline const QString kSealPathKey = QStringLiteral("세금계산서_공급자도장경로");
inline const QString kSealDefaultPath = QStringLiteral("DefaultPath");
inline const QString kSealDialogTitle = QStringLiteral("공급자도장 이미지(그림) 선택");
inline const QString kSealDialogFilter = QStringLiteral("Pictures (*.bmp;*.jpg;*.gif)|*.bmp;*.jpg;*.gif");

QString sealSetting();
void saveSealSetting(const QString& path);
// The file LoadSeal reads: empty when none is set or the file is missing.
QString sealFilePath();
// LoadSeal's picture: null when there is none (no message).
QImage loadSealImage();

// The file-open dialog, as a service that tests script.
class FileChooser {
public:
    virtual ~FileChooser() = default;
    // The chosen path, or empty text when the operator cancelled. The filter is given as
    // "Description|patterns" with patterns separated by ";".
    virtual QString openFile(QWidget* parent, const QString& title, const QString& filter) = 0;
};
FileChooser& fileChooser();
void setFileChooser(std::unique_ptr<FileChooser> chooser);

// Answers from a list (empty text when it runs out) and records each title and filter.
class ScriptedFileChooser : public FileChooser {
public:
    QString openFile(QWidget* parent, const QString& title, const QString& filter) override;
    QStringList answers;
    QStringList titles;
    QStringList filters;
};
// Installs a fresh ScriptedFileChooser and returns it (owned by the service).
ScriptedFileChooser& scriptFileChooser();

// "Pictures (*.bmp;*.jpg;*.gif)|*.bmp;*.jpg;*.gif" as a Qt file dialog filter.
QString qtFileFilter(const QString& filter);

} // namespace nb
