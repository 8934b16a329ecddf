#pragma once
// The road-name postcode book: the national postal service's address file (one line a building:
// the five-digit postcode, the road-name address and the lot address, fields parted by "|", a
// header row naming them), the shapes in which its addresses are shown and handed over, and the
// setting that chooses between it and the six-digit book of old addresses.

#include <QList>
#include <QString>
#include <QStringList>

namespace nb {

// The header names of the published layout, in its order. Only some are read; the file is
// matched by name, so a column added or moved by a later edition does no harm.
const QStringList& RoadFileColumns();

// One address of the book as it is stored.
struct RoadAddress {
    QString zip; // five digits
    QString sido;
    QString sigungu;
    QString eupmyeon;
    QString roadName;
    bool underground = false;
    int buildingMain = 0;
    int buildingSub = 0;
    QString buildingName; // the district's building name, else the bulk-delivery name
    QString dong;         // the legal town
    QString ri;
    QString adminDong;     // the administrative town
    bool mountain = false; // "산" lot
    int lotMain = 0;
    int lotSub = 0;
};

// Where each column the book reads stands in a header row; `error` names what is missing.
struct RoadHeader {
    QList<int> positions; // in the order of the fields of RoadAddress that come from the file
    int fieldCount = 0;
    QString error;
};
RoadHeader ParseRoadHeader(const QString& line);
// True when the line (a header) is that of a road-name postcode file.
bool LooksLikeRoadHeader(const QString& line);

// One line of the file read into `out`; false with `reason` (Korean) when it does not follow
// the layout.
bool ParseRoadLine(const QString& line, const RoadHeader& header, RoadAddress& out, QString& reason);

// "서울특별시 종로구 세종대로 209", "... 지하 12-3": what the caller's address box receives.
QString RoadAddressText(const RoadAddress& a);
// "서울특별시 종로구 세종로 1-68", "... 오창읍 중신리 산 12".
QString LotAddressText(const RoadAddress& a);
// The towns a lot address is known by: the township, the legal town and the village.
QString PlaceText(const RoadAddress& a);

// The road-name book's store file, beside the six-digit book's.
QString RoadBookFile();

// The book the postcode search uses: the setting "우편번호부" of the environment ("도로명" or
// "지번"); without it, the road-name book once one was loaded.
bool UsesRoadBook();
void SetUsesRoadBook(bool road);
inline const QString kRoadBookSetting = QStringLiteral("우편번호부");

} // namespace nb
