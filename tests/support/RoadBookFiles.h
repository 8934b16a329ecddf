#pragma once
// Road-name postcode files made up for tests and benchmarks, in the layout the national postal
// service publishes: a header row of its 26 column names, one building a line, fields parted
// by "|". The addresses are invented; no line of the real files is used.

#include "common/text/Cp949.h"
#include "master/RoadBook.h"

#include <QFile>
#include <QString>
#include <QStringList>
#include <QVector>

namespace nb::test {

// One made-up building: postcode, province, district, road, building number, then the rest.
struct RoadLine {
    QString zip;
    QString sido;
    QString sigungu;
    QString road;
    QString building; // "209" or "12-3"
    QString buildingName;
    QString dong;
    QString lot; // "1-68", "산 12", "" for none
    QString adminDong;
    QString eupmyeon;
    QString ri;
    bool underground = false;
};

inline RoadLine roadLine(const QString& zip, const QString& sido, const QString& sigungu, const QString& road,
                         const QString& building, const QString& buildingName, const QString& dong,
                         const QString& lot, const QString& adminDong, const QString& eupmyeon = QString(),
                         const QString& ri = QString(), bool underground = false) {
    return {zip,  sido, sigungu,   road,     building, buildingName,
            dong, lot,  adminDong, eupmyeon, ri,       underground};
}

inline QString roadFileHeader() {
    return RoadFileColumns().join(u'|');
}

inline QString roadFileLine(const RoadLine& r) {
    const QStringList building = r.building.split(u'-');
    QString lot = r.lot;
    const bool mountain = lot.startsWith(QStringLiteral("산"));
    if (mountain) lot = lot.mid(1).trimmed();
    const QStringList lotParts = lot.split(u'-');
    const QStringList fields = {r.zip,
                                r.sido,
                                QStringLiteral("Province"),
                                r.sigungu,
                                QStringLiteral("District"),
                                r.eupmyeon,
                                r.eupmyeon.isEmpty() ? QString() : QStringLiteral("Town"),
                                QStringLiteral("111102005001"),
                                r.road,
                                QStringLiteral("Road"),
                                r.underground ? QStringLiteral("1") : QStringLiteral("0"),
                                building.value(0),
                                building.value(1, QStringLiteral("0")),
                                QStringLiteral("1111010100100010000030843"),
                                QString(),
                                r.buildingName,
                                QStringLiteral("1111010100"),
                                r.dong,
                                r.ri,
                                r.adminDong,
                                mountain ? QStringLiteral("1") : QStringLiteral("0"),
                                lotParts.value(0),
                                QStringLiteral("01"),
                                lotParts.value(1, QStringLiteral("0")),
                                QString(),
                                QStringLiteral("001")};
    return fields.join(u'|');
}

inline QString roadFileText(const QVector<RoadLine>& lines) {
    QString text = roadFileHeader() + QStringLiteral("\r\n");
    for (const RoadLine& r : lines)
        text += roadFileLine(r) + QStringLiteral("\r\n");
    return text;
}

inline bool writeBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

inline bool writeRoadFile(const QString& path, const QVector<RoadLine>& lines, bool cp949 = false) {
    const QString text = roadFileText(lines);
    return writeBytes(path, cp949 ? ToCp949(text) : text.toUtf8());
}

// A small made-up book: roads, buildings and towns that overlap in their names, a township
// with villages, a basement and a mountain lot.
inline QVector<RoadLine> smallRoadBook() {
    return {
        roadLine("03170", "서울특별시", "종로구", "새문안로", "3", "", "신문로1가", "1-1", "사직동"),
        roadLine("03172", "서울특별시", "종로구", "새문안로", "5-1", "가나빌딩", "신문로1가", "2", "사직동"),
        roadLine("03172", "서울특별시", "종로구", "새문안로", "7", "", "신문로1가", "3-4", "사직동"),
        roadLine("03188", "서울특별시", "종로구", "누리대로", "209", "정부누리청사", "누리로", "77-6",
                 "누리동"),
        roadLine("06236", "서울특별시", "강남구", "누리대로", "12", "역삼타워", "역삼동", "123-4", "역삼1동"),
        roadLine("06236", "서울특별시", "강남구", "역삼로", "20", "", "역삼동", "125", "역삼1동"),
        roadLine("06237", "서울특별시", "강남구", "역삼로", "22", "", "역삼동", "126-1", "역삼1동", "", "",
                 true),
        roadLine("48058", "부산광역시", "해운대구", "누리대로", "12", "", "우동", "5", "우1동"),
        roadLine("28116", "충청북도", "청주시 청원구", "중신길", "8", "", "", "산 12", "", "오창읍",
                 "중신리"),
        roadLine("28116", "충청북도", "청주시 청원구", "중신길", "10", "중신마을회관", "", "15-2", "",
                 "오창읍", "중신리"),
    };
}

} // namespace nb::test
