#pragma once
// The supplier's seal printed on the invoice (chosen through the file dialog service). The path is
// the setting "세금계산서_공급자도장경로" under the application's title; "DefaultPath" (the
// default) means 공급자도장.gif in the application folder, an empty value means no seal.

#include "common/FileChooser.h"

#include <QImage>
#include <QString>

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

} // namespace nb
