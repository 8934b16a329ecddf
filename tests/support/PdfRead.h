#pragma once
// Reading a printed PDF back in tests: the words with their positions (pdftotext -bbox) and a
// page as a PNG under the screenshots (pdftoppm).

#include "TestSupport.h"

#include <QDir>
#include <QPointF>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <algorithm>

namespace nb::test {

inline bool havePdfTools() {
    return !QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty() &&
           !QStandardPaths::findExecutable(QStringLiteral("pdftoppm")).isEmpty();
}

inline QString bboxOf(const QString& pdf) {
    QProcess bbox;
    bbox.start(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
    bbox.waitForFinished(20000);
    return QString::fromUtf8(bbox.readAllStandardOutput());
}

// xMin and yMin (points) of the first word with this text on the page, or (-1, -1).
inline QPointF wordAt(const QString& html, const QString& word, int page = 1) {
    const QStringList pages = html.split(QStringLiteral("<page "));
    if (page >= pages.size()) return {-1, -1};
    const QRegularExpression re(QStringLiteral("<word xMin=\"([0-9.]+)\" yMin=\"([0-9.]+)\"[^>]*>") +
                                QRegularExpression::escape(word.toHtmlEscaped()) + QStringLiteral("</word>"));
    const auto m = re.match(pages.at(page));
    return m.hasMatch() ? QPointF(m.captured(1).toDouble(), m.captured(2).toDouble()) : QPointF(-1, -1);
}

// Every place of a word on the page, top first.
inline QList<QPointF> allWordsAt(const QString& html, const QString& word, int page = 1) {
    QList<QPointF> found;
    const QStringList pages = html.split(QStringLiteral("<page "));
    if (page >= pages.size()) return found;
    const QRegularExpression re(QStringLiteral("<word xMin=\"([0-9.]+)\" yMin=\"([0-9.]+)\"[^>]*>") +
                                QRegularExpression::escape(word.toHtmlEscaped()) + QStringLiteral("</word>"));
    for (auto it = re.globalMatch(pages.at(page)); it.hasNext();) {
        const auto m = it.next();
        found.append(QPointF(m.captured(1).toDouble(), m.captured(2).toDouble()));
    }
    std::sort(found.begin(), found.end(), [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); });
    return found;
}

inline int pdfPages(const QString& html) {
    return int(html.count(QStringLiteral("<page ")));
}

inline void pagePng(const QString& pdf, int page, const QString& name) {
    QDir().mkpath(screenshotDir());
    QProcess png;
    png.start(QStringLiteral("pdftoppm"),
              {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("80"), QStringLiteral("-f"),
               QString::number(page), QStringLiteral("-l"), QString::number(page),
               QStringLiteral("-singlefile"), pdf, screenshotDir() + u'/' + name});
    png.waitForFinished(20000);
}

// A region of a page, in inches from the page's top left, as build/screenshots/<name>.png at
// the resolution given: a close look at a part of a print.
inline void regionPng(const QString& pdf, int page, const QString& name, double x, double y, double width,
                      double height, int dpi = 300) {
    QDir().mkpath(screenshotDir());
    QProcess png;
    png.start(QStringLiteral("pdftoppm"),
              {QStringLiteral("-png"), QStringLiteral("-r"), QString::number(dpi), QStringLiteral("-f"),
               QString::number(page), QStringLiteral("-l"), QString::number(page), QStringLiteral("-x"),
               QString::number(qRound(x * dpi)), QStringLiteral("-y"), QString::number(qRound(y * dpi)),
               QStringLiteral("-W"), QString::number(qRound(width * dpi)), QStringLiteral("-H"),
               QString::number(qRound(height * dpi)), QStringLiteral("-singlefile"), pdf,
               screenshotDir() + u'/' + name});
    png.waitForFinished(20000);
}

} // namespace nb::test
