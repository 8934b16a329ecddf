// The road-name postcode book of a whole country: a made-up file in the published layout
// (6,000,000 buildings unless a count is given: bench_road_postcode [rows] [kept book]) imported
// with its checks and index, then the searches the operator waits for, as the screen does them
// (the search and the list's first page painted), beside the same statement's first page through
// the sqlite3 program on the same file. With a kept book's path the book is kept there after the
// run, and a later run with that path searches it again without the import. A folder as the kept
// book keeps it there as dbRoadPost.db. With NB_BENCH_PROFILE set to a search text, that one
// search is run 500 times on one window and nothing else is timed (for a profiler; with
// NB_BENCH_PLAIN as well, the same rows shown in a bare Qt table instead). Each search that fills
// a page is also given its floor: the same rows shown in a bare Qt table.
#include "BenchPlain.h"
#include "BenchSupport.h"
#include "RoadBookFiles.h"
#include "master/FrmPost.h"
#include "master/RoadImport.h"
#include "master/RoadSearch.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QTableView>
#include <algorithm>
#include <cstdio>
#include <vector>

using namespace nb;

namespace {

const QStringList kSyllables = {"가", "나", "다", "라", "마", "바", "사", "아", "자", "차", "카", "타", "파",
                                "하", "강", "남", "동", "서", "북", "중", "신", "구", "송", "정", "용", "문",
                                "성", "한", "은", "금", "백", "청", "연", "화", "평", "안", "영", "세", "상",
                                "월", "봉", "산", "호", "수", "천", "원", "양", "효", "충", "덕"};
const QStringList kProvinces = {
    "서울특별시",     "부산광역시",     "대구광역시", "인천광역시",     "광주광역시",    "대전광역시",
    "울산광역시",     "세종특별자치시", "경기도",     "강원특별자치도", "충청북도",      "충청남도",
    "전북특별자치도", "전라남도",       "경상북도",   "경상남도",       "제주특별자치도"};
const QStringList kBuildingKinds = {"아파트", "빌딩",     "빌라",     "타워",
                                    "상가",   "오피스텔", "마을회관", "초등학교"};

QString word(quint64 n, int syllables) {
    QString w;
    for (int i = 0; i < syllables; ++i) {
        w += kSyllables[int(n % quint64(kSyllables.size()))];
        n /= quint64(kSyllables.size());
    }
    return w;
}

// One building of the made-up country: 250 districts, about 600 roads each, 40 buildings a
// road, a quarter of them named, 20 legal towns a district.
QString countryLine(qint64 i) {
    const qint64 road = i / 40;
    const int district = int(road / 600);
    const int province = district * kProvinces.size() / 250;
    const quint64 seed = quint64(road) * 2654435761u;
    QString roadName = word(seed, 2) + (road % 7 == 0 ? "대로" : "로");
    if (road % 3 == 0) roadName += QString::number(road % 97 + 1) + "길";
    const QString town = word(quint64(district) * 31 + quint64(road % 20), 2) + "동";
    test::RoadLine r = test::roadLine(
        QString("%1").arg(1000 + district * 140 + int(road % 140), 5, 10, QChar('0')), kProvinces[province],
        word(quint64(district) * 7919, 2) + "구", roadName, QString::number(i % 40 * 2 + 1), QString(), town,
        QString("%1-%2").arg(i % 900 + 1).arg(i % 13), town.left(2) + QString::number(road % 3 + 1) + "동");
    if (i % 4 == 0)
        r.buildingName = word(quint64(i) * 40503u, 3) + kBuildingKinds[int(i % kBuildingKinds.size())];
    return test::roadFileLine(r);
}

bool writeCountry(const QString& path, qint64 rows) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly)) return false;
    f.write((test::roadFileHeader() + "\r\n").toUtf8());
    QByteArray chunk;
    for (qint64 i = 0; i < rows; ++i) {
        chunk += countryLine(i).toUtf8();
        chunk += "\r\n";
        if (chunk.size() > (4 << 20)) {
            f.write(chunk);
            chunk.clear();
        }
    }
    f.write(chunk);
    return f.flush();
}

// The statement with its values written in and its first page, for the sqlite3 program.
QString firstPageSql(const SqlPart& part) {
    QString sql = part.sql;
    qsizetype from = 0;
    for (const QVariant& v : part.values) {
        QString text = v.toString();
        text.replace(u'\'', QStringLiteral("''"));
        const qsizetype at = sql.indexOf(u'?', from);
        const QString literal = v.typeId() == QMetaType::Int ? text : u'\'' + text + u'\'';
        sql.replace(at, 1, literal);
        from = at + literal.size();
    }
    return sql + QStringLiteral(" LIMIT %1").arg(ListModel::kFirstPage);
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    bench::openFreshStore();
    const qint64 rows = argc > 1 ? QString(argv[1]).toLongLong() : 6000000;
    QString kept = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    if (!kept.isEmpty() && QFileInfo(kept).isDir())
        kept = QDir(kept).filePath(QStringLiteral("dbRoadPost.db"));

    if (!kept.isEmpty() && QFile::exists(kept)) {
        if (!QFile::rename(kept, RoadBookFile())) return 1;
        std::printf("the kept book of an earlier run: %.0f MB\n",
                    double(QFileInfo(RoadBookFile()).size()) / 1e6);
    } else {
        const QString path = home.file("전국.txt");
        QElapsedTimer t;
        t.start();
        if (!writeCountry(path, rows)) return 1;
        std::printf("country file: %lld addresses, %.0f MB, written in %.1f s\n", rows,
                    double(QFileInfo(path).size()) / 1e6, double(t.elapsed()) / 1000);
        t.restart();
        const qint64 imported = ImportRoadBook({path});
        std::printf("import: %lld addresses in %.1f s, book %.0f MB\n", imported, double(t.elapsed()) / 1000,
                    double(QFileInfo(RoadBookFile()).size()) / 1e6);
        if (imported != rows) return 1;
        QFile::remove(path);
    }

    QSqlDatabase book = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    book.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    book.setDatabaseName(RoadBookFile());
    if (!book.open()) return 1;
    if (qEnvironmentVariableIsSet("NB_BENCH_PROFILE")) {
        const QString text = qEnvironmentVariable("NB_BENCH_PROFILE");
        std::printf("%s\n", qPrintable(firstPageSql(RoadSearchQuery(text))));
        FrmPost form;
        form.resize(760, 400);
        form.show();
        int result = 0;
        form.InitForm(text, result);
        if (qEnvironmentVariableIsSet("NB_BENCH_PLAIN")) {
            QCoreApplication::processEvents();
            bench::plainWidgetMs(bench::shownRows(*form.grdList()), 9, true);
            return 0;
        }
        QElapsedTimer t;
        t.start();
        bench::profileRuns(&form, [&] { form.InitForm(text, result); }); // callgrind --instr-atstart=no
        std::printf("%s: %d rows, %.3f ms a search\n", qPrintable(text), form.model()->rowCount(),
                    double(t.nsecsElapsed()) / 1e6 / 500);
        book.close();
        if (!kept.isEmpty()) QFile::rename(RoadBookFile(), kept);
        return 0;
    }
    std::printf("%-16s %7s  %10s  %10s  %6s\n", "search", "rows", "screen ms", "sqlite3 ms", "ratio");
    for (const QString& text :
         {QString("동"), QString("가나"), QString("가나로"), QString("가나로 11"), QString("강남아파트"),
          QString("아파트"), QString("가나동 5-3"), QString("서울 가나로"), QString("035"), QString("99999"),
          QString("없는길"), QString(), QString("로 99999"), QString("아파트 99"), QString("동 산 999"),
          QString("아파트 11"), QString("로 1")}) {
        FrmPost form;
        form.resize(760, 400);
        form.show();
        int result = 0;
        form.InitForm(text, result);
        const double screen = bench::medianFirstPaintFreeMs(&form, [&] { form.InitForm(text, result); });
        const double cli = bench::cliMs(RoadBookFile(), firstPageSql(RoadSearchQuery(text)));
        std::printf("%-16s %7d  %10.2f  %10.2f  %6.2f\n", qPrintable(text.isEmpty() ? "(blank)" : text),
                    form.model()->rowCount(), screen, cli, cli > 0 ? screen / cli : 0.0);
        if (form.model()->rowCount() >= ListModel::kFirstPage)
            bench::reportFloor(qPrintable(text.isEmpty() ? "(blank)" : text),
                               bench::shownRows(*form.grdList()), screen, cli);
    }
    // Each search above repeats one text, so from its second run on the list paints texts it laid
    // out before. Searches whose rows are new to the list: 50 roads one after another (their pages
    // of the book read once beforehand, in another window).
    {
        QStringList roads;
        for (int i = 0; i < 50; ++i)
            roads << kSyllables[i] + kSyllables[(i * 7 + 3) % kSyllables.size()] + QStringLiteral("로");
        int result = 0;
        {
            FrmPost warm;
            for (const QString& road : roads)
                warm.InitForm(road, result);
        }
        FrmPost form;
        form.resize(760, 400);
        form.show();
        form.InitForm(QStringLiteral("가나로"), result);
        std::vector<double> times;
        for (const QString& road : roads) {
            times.push_back(bench::firstPaintFreeMs(&form, [&] { form.InitForm(road, result); }));
            for (int settle = 0; settle < 200; ++settle)
                QCoreApplication::processEvents(QEventLoop::AllEvents);
        }
        std::sort(times.begin(), times.end());
        std::printf("50 roads one after another, their rows new to the list: median %.2f ms\n",
                    times[times.size() / 2]);
    }
    // A window opened afresh: the book's connection is made by its first search.
    const double fresh = bench::medianMs([&] {
        FrmPost form;
        form.resize(760, 400);
        form.show();
        int result = 0;
        form.InitForm(QStringLiteral("가나로"), result);
        form.grdList()->viewport()->repaint();
    });
    const double window = bench::medianMs([&] {
        FrmPost form;
        form.resize(760, 400);
        form.show();
        form.grdList()->viewport()->repaint();
    });
    std::printf("a new window's first search (가나로), window included: %.2f ms (the window alone %.2f ms)\n",
                fresh, window);
    if (!kept.isEmpty()) {
        book.close();
        if (!QFile::rename(RoadBookFile(), kept)) std::printf("the book could not be kept at %s\n", argv[2]);
    }
    return 0;
}
