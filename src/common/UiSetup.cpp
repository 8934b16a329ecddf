#include "common/UiSetup.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QLibraryInfo>
#include <QTranslator>

namespace nb {

QIcon programIcon() {
    return QIcon(QStringLiteral(":/icons/nubella.svg"));
}

void setupApplicationUi(QApplication& app) {
    QApplication::setApplicationName(QStringLiteral("nubella"));
    QApplication::setDesktopFileName(QStringLiteral("nubella"));
    // Every window, the children of the main window included, shows the program's own icon.
    QApplication::setWindowIcon(programIcon());
    QFont::insertSubstitution(QStringLiteral("굴림"), QString::fromLatin1(kKoreanFont));
    QFont::insertSubstitution(QStringLiteral("굴림체"), QString::fromLatin1(kFixedKoreanFont));
    QFont::insertSubstitution(QStringLiteral("돋움"), QString::fromLatin1(kKoreanFont));
    QFont::insertSubstitution(QStringLiteral("돋움체"), QString::fromLatin1(kFixedKoreanFont));
    QFont font(QString::fromLatin1(kKoreanFont));
    font.setPointSizeF(9.0);
    QApplication::setFont(font);

    auto* translator = new QTranslator(&app);
    if (translator->load(QStringLiteral("qtbase_ko"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(translator);
}

} // namespace nb
