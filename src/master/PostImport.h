#pragma once
// Loading a postcode book into the postcode store: a CSV file with a header row naming
// ZIPCODE, SIDO, GUGUN, DONG and BUNJI (other columns, such as SEQ, are passed over), the
// postcode with or without its hyphen, in UTF-8 or CP949, found out from the bytes. The
// table's rows are replaced in one transaction, with the progress form and a closing count.
// A file that cannot be read whole in one encoding, or gives no row, changes nothing.

#include <QString>
#include <QStringList>
#include <QVector>

class QWidget;

namespace nb {

// The file's text, its encoding decided for the whole file from its bytes: UTF-8 when they
// are valid UTF-8 (a byte order mark allowed, and then UTF-8 is the only reading), else CP949
// when they are valid CP949. Bytes valid in neither are refused: `error` names the first line
// that cannot be read in the encoding the file comes nearest to, and nothing of it is read.
struct PostcodeText {
    QString text;
    QString encoding; // "UTF-8" or "CP949"; empty when refused
    QString error;
};
PostcodeText DecodePostcodeBytes(const QByteArray& bytes);
// One CSV line split into fields; double quotes enclose a field and "" stands for one quote.
QStringList SplitCsvLine(const QString& line);

// A line of the file passed over, and why (line numbers count from 1, the header included).
struct SkippedLines {
    QList<int> badPostcode; // the postcode is not six digits
    QList<int> shortLine;   // fewer fields than the header's columns need
    int count() const { return int(badPostcode.size() + shortLine.size()); }
};

struct PostcodeBook {
    QVector<QStringList> rows; // ZIPCODE (six digits), SIDO, GUGUN, DONG, BUNJI
    SkippedLines skipped;
    QString error; // why the file is refused; empty when its rows may be stored
};
// Reads the file; a file that gives no row at all is refused (error set), the rows it has are
// never stored half.
PostcodeBook ReadPostcodeBook(const QString& path);
// The lines of the closing box that say what was passed over and why; empty when nothing was.
QString skippedLinesText(const SkippedLines& skipped);

// Replaces the rows of Post in the postcode store (the file and table are made when
// missing) in one transaction, and once it is committed says how many rows came in and what
// was passed over; answers that number. A refused file or a failed save says why, leaves the
// book as it was, and answers -1.
int ImportPostcodeFile(const QString& path);
// The files chosen in the menu: the road-name book's files (one, or one per province) are
// loaded together as that book; one other file as the six-digit book. False when nothing
// was loaded.
bool ImportPostcodeFiles(const QStringList& paths);
// The menu's flow: a file dialog, then the import.
void RunPostcodeImport(QWidget* parent);

inline const QString kPostImportTitle = QStringLiteral("우편번호 가져오기");

} // namespace nb
