#include "master/RoadBook.h"

#include "core/AppState.h"
#include "core/Settings.h"

#include <QDir>
#include <QFileInfo>

namespace nb {
namespace {

// The columns read, in the order RoadHeader::positions keeps them.
enum Read : int {
    kZip,
    kSido,
    kSigungu,
    kEupmyeon,
    kRoadName,
    kUnderground,
    kBuildingMain,
    kBuildingSub,
    kBulkName,
    kDistrictName,
    kDong,
    kRi,
    kAdminDong,
    kMountain,
    kLotMain,
    kLotSub,
    kReadCount
};

const QStringList& readNames() {
    static const QStringList names = {
        QStringLiteral("우편번호"),       QStringLiteral("시도"),         QStringLiteral("시군구"),
        QStringLiteral("읍면"),           QStringLiteral("도로명"),       QStringLiteral("지하여부"),
        QStringLiteral("건물번호본번"),   QStringLiteral("건물번호부번"), QStringLiteral("다량배달처명"),
        QStringLiteral("시군구용건물명"), QStringLiteral("법정동명"),     QStringLiteral("리명"),
        QStringLiteral("행정동명"),       QStringLiteral("산여부"),       QStringLiteral("지번본번"),
        QStringLiteral("지번부번")};
    return names;
}

bool allDigits(const QString& text) {
    if (text.isEmpty()) return false;
    for (QChar c : text)
        if (c < u'0' || c > u'9') return false;
    return true;
}

// A number field of at most five digits; an empty one is 0 when `emptyIsZero`.
bool readNumber(const QString& text, bool emptyIsZero, int& out) {
    if (text.isEmpty() && emptyIsZero) {
        out = 0;
        return true;
    }
    if (!allDigits(text) || text.size() > 5) return false;
    out = text.toInt();
    return true;
}

// A yes/no field: "0" or "1"; empty is no.
bool readFlag(const QString& text, bool& out) {
    if (text.isEmpty() || text == u"0") {
        out = false;
        return true;
    }
    if (text == u"1") {
        out = true;
        return true;
    }
    return false;
}

QString numberText(int main, int sub) {
    return sub > 0 ? QStringLiteral("%1-%2").arg(main).arg(sub) : QString::number(main);
}

void addWord(QStringList& words, const QString& word) {
    if (!word.isEmpty() && !words.contains(word)) words << word;
}

} // namespace

const QStringList& RoadFileColumns() {
    static const QStringList columns = {QStringLiteral("우편번호"),       QStringLiteral("시도"),
                                        QStringLiteral("시도영문"),       QStringLiteral("시군구"),
                                        QStringLiteral("시군구영문"),     QStringLiteral("읍면"),
                                        QStringLiteral("읍면영문"),       QStringLiteral("도로명코드"),
                                        QStringLiteral("도로명"),         QStringLiteral("도로명영문"),
                                        QStringLiteral("지하여부"),       QStringLiteral("건물번호본번"),
                                        QStringLiteral("건물번호부번"),   QStringLiteral("건물관리번호"),
                                        QStringLiteral("다량배달처명"),   QStringLiteral("시군구용건물명"),
                                        QStringLiteral("법정동코드"),     QStringLiteral("법정동명"),
                                        QStringLiteral("리명"),           QStringLiteral("행정동명"),
                                        QStringLiteral("산여부"),         QStringLiteral("지번본번"),
                                        QStringLiteral("읍면동일련번호"), QStringLiteral("지번부번"),
                                        QStringLiteral("구우편번호"),     QStringLiteral("우편번호일련번호")};
    return columns;
}

RoadHeader ParseRoadHeader(const QString& line) {
    RoadHeader header;
    const QStringList names = line.trimmed().split(u'|');
    header.fieldCount = int(names.size());
    QStringList missing;
    for (const QString& wanted : readNames()) {
        int found = -1;
        for (int i = 0; i < names.size(); ++i)
            if (names[i].trimmed() == wanted) found = i;
        if (found < 0) missing << wanted;
        header.positions << found;
    }
    if (!missing.isEmpty()) {
        header.positions.clear();
        header.error = QStringLiteral("첫 줄에 도로명 우편번호 파일의 열 %1이(가) 없습니다")
                           .arg(missing.join(QStringLiteral(", ")));
    }
    return header;
}

bool LooksLikeRoadHeader(const QString& line) {
    return line.contains(u'|') && line.contains(QStringLiteral("우편번호")) &&
           line.contains(QStringLiteral("도로명"));
}

bool ParseRoadLine(const QString& line, const RoadHeader& header, RoadAddress& out, QString& reason) {
    QStringList fields = line.split(u'|');
    // A line may end in one "|" more than its header.
    if (fields.size() == header.fieldCount + 1 && fields.last().trimmed().isEmpty()) fields.removeLast();
    if (fields.size() != header.fieldCount) {
        reason = QStringLiteral("열이 %1개여야 하는데 %2개입니다").arg(header.fieldCount).arg(fields.size());
        return false;
    }
    auto field = [&](int read) { return fields.at(header.positions.at(read)).trimmed(); };
    out.zip = field(kZip);
    if (out.zip.size() != 5 || !allDigits(out.zip)) {
        reason = QStringLiteral("우편번호 \"%1\"이(가) 다섯 자리 숫자가 아닙니다").arg(out.zip);
        return false;
    }
    out.sido = field(kSido);
    out.sigungu = field(kSigungu);
    out.eupmyeon = field(kEupmyeon);
    out.roadName = field(kRoadName);
    if (out.sido.isEmpty() || out.roadName.isEmpty()) {
        reason = QStringLiteral("시도나 도로명이 비어 있습니다");
        return false;
    }
    if (!readFlag(field(kUnderground), out.underground) || !readFlag(field(kMountain), out.mountain)) {
        reason = QStringLiteral("지하여부나 산여부가 0이나 1이 아닙니다");
        return false;
    }
    if (!readNumber(field(kBuildingMain), false, out.buildingMain) ||
        !readNumber(field(kBuildingSub), true, out.buildingSub)) {
        reason = QStringLiteral("건물번호가 다섯 자리 이하의 숫자가 아닙니다");
        return false;
    }
    if (!readNumber(field(kLotMain), true, out.lotMain) || !readNumber(field(kLotSub), true, out.lotSub)) {
        reason = QStringLiteral("지번이 다섯 자리 이하의 숫자가 아닙니다");
        return false;
    }
    out.buildingName = field(kDistrictName);
    if (out.buildingName.isEmpty()) out.buildingName = field(kBulkName);
    out.dong = field(kDong);
    out.ri = field(kRi);
    out.adminDong = field(kAdminDong);
    return true;
}

QString RoadAddressText(const RoadAddress& a) {
    QStringList words;
    for (const QString& w : {a.sido, a.sigungu, a.eupmyeon, a.roadName})
        if (!w.isEmpty()) words << w;
    if (a.underground) words << QStringLiteral("지하");
    words << numberText(a.buildingMain, a.buildingSub);
    return words.join(u' ');
}

QString PlaceText(const RoadAddress& a) {
    QStringList words;
    addWord(words, a.eupmyeon);
    addWord(words, a.dong);
    addWord(words, a.ri);
    return words.join(u' ');
}

QString LotAddressText(const RoadAddress& a) {
    QStringList words;
    for (const QString& w : {a.sido, a.sigungu, PlaceText(a)})
        if (!w.isEmpty()) words << w;
    if (a.lotMain > 0)
        words << (a.mountain ? QStringLiteral("산 ") : QString()) + numberText(a.lotMain, a.lotSub);
    return words.join(u' ');
}

QString RoadBookFile() {
    const QString post = app().DbPostFile;
    const QString folder = post.isEmpty() ? app().DbPath : QFileInfo(post).absolutePath();
    return QDir(folder).filePath(QStringLiteral("dbRoadPost.db"));
}

bool UsesRoadBook() {
    const QString chosen = GetEnv(kRoadBookSetting);
    if (chosen == u"도로명") return true;
    if (chosen == u"지번") return false;
    return QFileInfo::exists(RoadBookFile());
}

void SetUsesRoadBook(bool road) {
    SaveEnv(kRoadBookSetting, road ? QStringLiteral("도로명") : QStringLiteral("지번"));
}

} // namespace nb
