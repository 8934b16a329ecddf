#pragma once
// The supplier's seal of the statement: its own setting "거래명세표_공급자도장경로" under the
// program's title. A missing setting means 공급자도장.gif in the application folder, an empty
// one means no seal, and a path whose file is missing leaves the pictures as they are.

#include <QImage>
#include <QString>

class QWidget;

namespace nb {

inline const QString kStatementSealKey = QStringLiteral("거래명세표_공급자도장경로");

struct StatementSeal {
    bool keep = false; // the file named is missing: leave what is shown
    QImage image;      // null for no seal
};
StatementSeal readStatementSeal();
void saveStatementSealSetting(const QString& path);
// The file dialog of cmdSeal: the chosen path, empty when cancelled.
QString chooseStatementSeal(QWidget* parent);

} // namespace nb
