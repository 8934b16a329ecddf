#include "printing/PrintGrid.h"

#include "common/UiSetup.h"
#include "core/Settings.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QHash>
#include <QMutex>
#include <QStringList>
#include <cmath>
#include <limits>

namespace nb {
namespace {

const QStringList& fixedKoreanNames() {
    static const QStringList names{QStringLiteral("굴림체"), QStringLiteral("돋움체"),
                                   QStringLiteral("바탕체"), QStringLiteral("궁서체"),
                                   QString::fromLatin1(kFixedKoreanFont)};
    return names;
}

const QStringList& proportionalKoreanNames() {
    static const QStringList names{QStringLiteral("굴림"), QStringLiteral("돋움"), QStringLiteral("바탕"),
                                   QStringLiteral("궁서")};
    return names;
}

bool isInstalled(const QString& family) {
    return QFontDatabase::families().contains(family, Qt::CaseInsensitive);
}

} // namespace

double printColumnWidth(double fontSizePt) {
    return fontSizePt / 2.0 / kPointsPerInch;
}

double printRowY(double topMargin, double row) {
    return (topMargin + row) / kRowsPerInch;
}

double printTabX(int leftMargin, double tab, double fontSizePt) {
    return (leftMargin + tab - 1) * printColumnWidth(fontSizePt);
}

int printColumns(QChar ch) {
    return ch.unicode() < 0x80 ? 1 : 2;
}

int printColumns(QStringView text) {
    int columns = 0;
    for (QChar ch : text) {
        if (ch.isLowSurrogate()) continue; // a pair is one character
        columns += printColumns(ch);
    }
    return columns;
}

namespace {

QString resolveFontFamily(const QString& requestedName) {
    if (fixedKoreanNames().contains(requestedName, Qt::CaseInsensitive))
        return isInstalled(requestedName) ? requestedName : QString::fromLatin1(kFixedKoreanFont);
    if (proportionalKoreanNames().contains(requestedName, Qt::CaseInsensitive))
        return isInstalled(requestedName) ? requestedName : QString::fromLatin1(kKoreanFont);
    return isInstalled(requestedName) ? requestedName : QString::fromLatin1(kFixedKoreanFont);
}

// What a name resolves to, kept: a print asks for every text it draws, and the list of the
// installed families is long. The list is read again when the application's fonts change.
struct FamilyCache {
    QMutex lock;
    QHash<QString, QString> families;
    bool watching = false;
};

FamilyCache& familyCache() {
    static FamilyCache cache;
    return cache;
}

} // namespace

QString printFontFamily(const QString& requestedName) {
    FamilyCache& cache = familyCache();
    QMutexLocker locker(&cache.lock);
    if (!cache.watching && qGuiApp) {
        cache.watching = true;
        QObject::connect(qGuiApp, &QGuiApplication::fontDatabaseChanged, qGuiApp, [] {
            FamilyCache& c = familyCache();
            QMutexLocker l(&c.lock);
            c.families.clear();
        });
    }
    auto found = cache.families.constFind(requestedName);
    if (found == cache.families.constEnd())
        found = cache.families.insert(requestedName, resolveFontFamily(requestedName));
    return *found;
}

bool isFixedPitchPrintFont(const QString& requestedName) {
    return printFontFamily(requestedName)
                   .compare(QString::fromLatin1(kFixedKoreanFont), Qt::CaseInsensitive) == 0 ||
           fixedKoreanNames().contains(requestedName, Qt::CaseInsensitive);
}

qint16 marginColumnsFromText(const QString& text) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value)) return 0;
    const double rounded = std::nearbyint(value); // the default rounding mode: half to even
    constexpr double lowest = std::numeric_limits<qint16>::min();
    constexpr double highest = std::numeric_limits<qint16>::max();
    return qint16(std::clamp(rounded, lowest, highest));
}

double marginRowsFromText(const QString& text) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0.0;
}

DocumentMargins readDocumentMargins(const QString& document) {
    DocumentMargins margins;
    margins.left = marginColumnsFromText(
        GetSetting(kAppSection, document, QStringLiteral("LeftMargin"), QStringLiteral("0")));
    margins.top = marginRowsFromText(
        GetSetting(kAppSection, document, QStringLiteral("TopMargin"), QStringLiteral("0")));
    return margins;
}

} // namespace nb
