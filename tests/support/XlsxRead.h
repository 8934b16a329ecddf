#pragma once
// Reads a written .xlsx back without the writer's help: the archive is opened with `unzip`, the
// workbook's sheet names, the shared strings and one sheet's cells are read from their XML.
// Header only.

#include <QMap>
#include <QProcess>
#include <QStringList>
#include <QXmlStreamReader>

namespace nb::test {

struct XlsxCell {
    QString type;  // "s" a shared string, "n" a number (no t attribute), "str"/"inlineStr" text
    QString value; // the text itself for strings, the number as written for numbers
    QString style; // the s attribute (number format index of the cell's style)
    bool isNumber() const { return type == u"n"; }
};

inline QByteArray xlsxPart(const QString& path, const QString& part) {
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), {QStringLiteral("-p"), path, part});
    unzip.waitForFinished(20000);
    return unzip.readAllStandardOutput();
}

inline QStringList xlsxSheetNames(const QString& path) {
    QStringList names;
    QXmlStreamReader xml(xlsxPart(path, QStringLiteral("xl/workbook.xml")));
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"sheet")
            names << xml.attributes().value(QStringLiteral("name")).toString();
    }
    return names;
}

inline QStringList xlsxSharedStrings(const QString& path) {
    QStringList strings;
    QXmlStreamReader xml(xlsxPart(path, QStringLiteral("xl/sharedStrings.xml")));
    QString current;
    bool inItem = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"si") {
            inItem = true;
            current.clear();
        } else if (xml.isStartElement() && xml.name() == u"t" && inItem) {
            current += xml.readElementText();
        } else if (xml.isEndElement() && xml.name() == u"si") {
            strings << current;
            inItem = false;
        }
    }
    return strings;
}

// The cells of sheet n (from 1) by reference ("A1", "BG6").
inline QMap<QString, XlsxCell> xlsxCells(const QString& path, int sheet = 1) {
    const QStringList shared = xlsxSharedStrings(path);
    QMap<QString, XlsxCell> cells;
    QXmlStreamReader xml(xlsxPart(path, QStringLiteral("xl/worksheets/sheet%1.xml").arg(sheet)));
    QString ref;
    XlsxCell cell;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"c") {
            ref = xml.attributes().value(QStringLiteral("r")).toString();
            cell = XlsxCell{};
            cell.type = xml.attributes().value(QStringLiteral("t")).toString();
            if (cell.type.isEmpty()) cell.type = QStringLiteral("n");
            cell.style = xml.attributes().value(QStringLiteral("s")).toString();
        } else if (xml.isStartElement() && (xml.name() == u"v" || xml.name() == u"t")) {
            cell.value = xml.readElementText();
            if (cell.type == u"s") cell.value = shared.value(cell.value.toInt());
        } else if (xml.isEndElement() && xml.name() == u"c") {
            cells.insert(ref, cell);
        }
    }
    return cells;
}

// The sheet's own XML, for checks of its layout (frozen panes, column widths).
inline QString xlsxSheetXml(const QString& path, int sheet = 1) {
    return QString::fromUtf8(xlsxPart(path, QStringLiteral("xl/worksheets/sheet%1.xml").arg(sheet)));
}

} // namespace nb::test
