#include "storage/jet/JetImport.h"

#include "core/AppState.h"
#include "storage/Backup.h"
#include "storage/Stores.h"
#include "storage/UpdateBill.h"
#include "storage/jet/JetBuild.h"
#include "storage/jet/JetReader.h"
#include "storage/jet/JetSwap.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QSqlQuery>
#include <QThread>
#include <algorithm>
#include <csignal>
#include <memory>
#include <numeric>
#include <optional>
#include <sys/prctl.h>
#include <unistd.h>
#include <vector>

namespace nb {
namespace {

QString& defaultReader() {
    static QString program;
    return program;
}

enum class Kind { Basic, Bill, Tax, Estimate, Post, InOut, OldBill };

struct SourceFile {
    QString name; // as the original names it
    Kind kind;
    QString path; // found in the folder; empty when absent
    QString raw;  // what the reader wrote
};

QList<SourceFile> knownFiles() {
    return {{QStringLiteral("dbBasic.mdb"), Kind::Basic, {}, {}},
            {QStringLiteral("dbBill.mdb"), Kind::Bill, {}, {}},
            {QStringLiteral("dbTax.mdb"), Kind::Tax, {}, {}},
            {QStringLiteral("dbEstimate.mdb"), Kind::Estimate, {}, {}},
            {QStringLiteral("dbPost.mdb"), Kind::Post, {}, {}},
            {QStringLiteral("InOutCash.mdb"), Kind::InOut, {}, {}},
            {QStringLiteral("dbdetail.mdb"), Kind::OldBill, {}, {}}};
}

QString storePathOf(Kind kind) {
    const AppState& a = app();
    switch (kind) {
    case Kind::Basic:
        return a.DbBasicFile;
    case Kind::Bill:
        return a.DbBillFile;
    case Kind::Tax:
        return a.DbTaxFile;
    case Kind::Estimate:
        return a.DbEstimateFile;
    case Kind::Post:
        return a.DbPostFile;
    case Kind::InOut:
        return a.DbInOutFile;
    case Kind::OldBill:
        return {};
    }
    return {};
}

QList<TableDef> layoutOf(Kind kind) {
    switch (kind) {
    case Kind::Basic:
        return basicTables();
    case Kind::Bill:
        return billTables();
    case Kind::Tax:
        return taxTables();
    case Kind::Estimate:
        return estimateTables();
    case Kind::Post:
        return postTables();
    default:
        return {};
    }
}

class Import {
public:
    Import(const QString& folder, const JetImportOptions& options) : m_folder(folder), m_options(options) {}

    JetImportReport run() {
        if (findSources() && checkStoreFolder() && prepareWork() && readAndBuild() && carryOthers() &&
            upgrade() && takeBuiltFigures() && convertOldStatements() && check() && swapIn()) {
            m_report.ok = true;
            return m_report;
        }
        if (!m_work.isEmpty()) QDir(m_work).removeRecursively();
        return m_report;
    }

private:
    bool fail(const QString& why) {
        m_report.failure = why;
        return false;
    }

    void tell(const QString& what, qint64 rows) {
        if (m_options.progress) m_options.progress(what, rows);
    }

    bool findSources() {
        const QDir dir(m_folder);
        if (m_folder.isEmpty() || !dir.exists())
            return fail(QStringLiteral("가져올 폴더 %1 이(가) 없습니다.").arg(m_folder));
        const QStringList present = dir.entryList({QStringLiteral("*.mdb")}, QDir::Files);
        for (const QString& name : present) {
            bool known = false;
            for (const SourceFile& f : knownFiles())
                known = known || f.name.compare(name, Qt::CaseInsensitive) == 0;
            if (!known)
                m_report.notes
                    << QStringLiteral("%1 파일은 알 수 없는 파일이라 가져오지 않았습니다.").arg(name);
        }
        for (SourceFile f : knownFiles()) {
            for (const QString& name : present)
                if (f.name.compare(name, Qt::CaseInsensitive) == 0) f.path = dir.filePath(name);
            if (!f.path.isEmpty()) m_sources << f;
        }
        bool basic = false;
        for (const SourceFile& f : m_sources)
            basic = basic || f.kind == Kind::Basic;
        if (!basic)
            return fail(
                QStringLiteral("%1 폴더에 dbBasic.mdb 파일이 없습니다. 옛 자료 파일(.mdb)이 있는 폴더를 "
                               "고르십시오.")
                    .arg(QDir::toNativeSeparators(m_folder)));
        return true;
    }

    // The exchange works on the store folder as a whole, so every store must lie in it.
    bool checkStoreFolder() {
        m_storeFolder = QFileInfo(app().DbBasicFile).absolutePath();
        for (Kind kind : {Kind::Basic, Kind::Bill, Kind::Tax, Kind::Estimate, Kind::Post, Kind::InOut}) {
            const QString path = storePathOf(kind);
            if (path.isEmpty() || QFileInfo(path).absolutePath() != m_storeFolder)
                return fail(QStringLiteral("자료 파일이 한 폴더에 모여 있지 않아 가져올 수 없습니다. "
                                           "환경 설정의 자료 파일 경로를 한 폴더로 맞춘 뒤 다시 하십시오."));
        }
        if (QFileInfo(m_storeFolder).canonicalFilePath() == QFileInfo(m_folder).canonicalFilePath())
            return fail(QStringLiteral("가져올 폴더가 지금의 자료 폴더와 같습니다. 다른 폴더를 고르십시오."));
        return true;
    }

    bool prepareWork() {
        recoverInterruptedImports(m_storeFolder);
        m_work = beginImportFolder(m_storeFolder);
        if (m_work.isEmpty()) return fail(QStringLiteral("자료 폴더 옆에 작업 폴더를 만들지 못했습니다."));
        m_newFolder = newStoreFolder(m_work, m_storeFolder);
        return QDir().mkpath(m_work + QStringLiteral("/raw")) && QDir().mkpath(m_newFolder);
    }

    QString readerProgram() const {
        if (!m_options.readerProgram.isEmpty()) return m_options.readerProgram;
        return defaultReader().isEmpty() ? QCoreApplication::applicationFilePath() : defaultReader();
    }

    // The files are read side by side, as many at once as there are processors, the biggest
    // first; each store is built as soon as its file is read, while the others are still read.
    bool readAndBuild() {
        std::vector<qsizetype> order(size_t(m_sources.size()));
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [this](qsizetype a, qsizetype b) {
            return QFileInfo(m_sources[a].path).size() > QFileInfo(m_sources[b].path).size();
        });
        const size_t atOnce = size_t(qMax(1, QThread::idealThreadCount()));
        std::vector<Reading> running;
        std::vector<std::optional<BuildOutcome>> outcomes(order.size());
        size_t next = 0;
        auto startMore = [&] {
            for (; running.size() < atOnce && next < order.size(); ++next) {
                running.push_back({order[next], startReader(m_sources[order[next]]), {}});
                running.back().clock.start();
            }
        };
        startMore();
        while (!running.empty()) {
            const size_t done = waitForOne(running);
            Reading finished = std::move(running[done]);
            running.erase(running.begin() + qsizetype(done));
            if (!judgeReader(*finished.process, m_sources[finished.source], finished.clock)) return false;
            startMore();
            if (!buildOne(finished.source, outcomes[size_t(finished.source)])) return false;
        }
        for (size_t i = 0; i < outcomes.size(); ++i)
            if (outcomes[i]) takeOutcome(m_sources[qsizetype(i)], *outcomes[i]);
        return true;
    }

    struct Reading {
        qsizetype source = 0;
        std::unique_ptr<QProcess> process;
        QElapsedTimer clock;
    };

    // The first reader to end (or to outlive its time), looking at each in turn.
    size_t waitForOne(std::vector<Reading>& running) const {
        for (;;)
            for (size_t k = 0; k < running.size(); ++k) {
                QProcess& p = *running[k].process;
                if (p.state() == QProcess::NotRunning || p.waitForFinished(10) ||
                    running[k].clock.elapsed() > m_options.readerTimeoutMillis)
                    return k;
            }
    }

    // One child per file: a file that brings the Jet library down ends only its reader.
    std::unique_ptr<QProcess> startReader(SourceFile& f) {
        tell(f.name, 0);
        f.raw = m_work + QStringLiteral("/raw/") + f.name + QStringLiteral(".raw");
        auto reader = std::make_unique<QProcess>();
        reader->setProcessChannelMode(QProcess::SeparateChannels);
        // A reader outliving a killed import would go on writing into the work folder while the
        // next start clears it away; it ends with the import that started it.
        reader->setChildProcessModifier([importer = ::getpid()] {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (::getppid() != importer) ::_exit(1);
        });
        reader->start(readerProgram(), {kReadMdbOption, f.path, kReadMdbIntoOption, f.raw});
        return reader;
    }

    bool judgeReader(QProcess& reader, const SourceFile& f, const QElapsedTimer& clock) {
        const int left = int(qMax<qint64>(0, m_options.readerTimeoutMillis - clock.elapsed()));
        const bool finished = reader.state() == QProcess::NotRunning ||
                              (reader.waitForStarted(30000) && reader.waitForFinished(left));
        if (!finished) reader.kill();
        const QString said = QString::fromUtf8(reader.readAllStandardError()).trimmed();
        if (finished && reader.error() != QProcess::FailedToStart &&
            reader.exitStatus() == QProcess::NormalExit && reader.exitCode() == 0 &&
            QFileInfo(f.raw).isFile())
            return true;
        reader.waitForFinished(5000);
        QString why = QStringLiteral("%1 파일을 읽지 못했습니다. 파일이 손상되었거나 Jet 자료 파일이 아닐 수 "
                                     "있습니다. 원래 프로그램에서 파일을 복구한 뒤 다시 가져오십시오. 지금의 "
                                     "자료는 바뀌지 않았습니다.")
                          .arg(f.name);
        if (!said.isEmpty()) why += u'\n' + said;
        return fail(why);
    }

    bool buildOne(qsizetype source, std::optional<BuildOutcome>& outcome) {
        const SourceFile& f = m_sources[source];
        if (f.kind == Kind::OldBill) return true;
        tell(f.name, 0);
        outcome = buildStoreFromRaw(f.name, f.raw, targetOf(f), layoutOf(f.kind));
        if (!outcome->ok) {
            m_report.notes << outcome->notes;
            return fail(outcome->failure + QStringLiteral(" 지금의 자료는 바뀌지 않았습니다."));
        }
        for (const JetTableFigures& t : std::as_const(outcome->tables))
            tell(f.name + u' ' + t.table, t.rowsRead);
        return true;
    }

    QString targetOf(const SourceFile& f) const {
        return m_newFolder + u'/' + QFileInfo(storePathOf(f.kind)).fileName();
    }

    // The stores' figures and notes in the order of the files, whatever order they were read in.
    void takeOutcome(const SourceFile& f, const BuildOutcome& built) {
        m_report.notes << built.notes;
        m_built << Built{targetOf(f), m_report.tables.size(), built.tables.size()};
        m_report.tables << built.tables;
    }

    // The stores no source replaces come across as they are (a consistent copy of each).
    bool carryOthers() {
        QString why;
        if (!carryCurrentFiles(m_storeFolder, m_newFolder, m_report.notes, why))
            return fail(why + QStringLiteral(" 지금의 자료는 바뀌지 않았습니다."));
        return true;
    }

    QString newStore(Kind kind) const { return m_newFolder + u'/' + QFileInfo(storePathOf(kind)).fileName(); }

    bool upgrade() {
        Database basic;
        Database tax;
        if (!basic.open(newStore(Kind::Basic)) || !tax.open(newStore(Kind::Tax)))
            return fail(QStringLiteral("새 자료 파일을 열지 못했습니다. 지금의 자료는 바뀌지 않았습니다."));
        UpgradeStoreFiles(basic, tax);
        const bool whole = basic.hasColumn(QStringLiteral("Trader"), QStringLiteral("HPhone")) &&
                           basic.hasColumn(QStringLiteral("Product"), QStringLiteral("Unit")) &&
                           tax.hasColumn(QStringLiteral("NewAcount"), QStringLiteral("UserCode")) &&
                           tax.hasTable(QStringLiteral("BuyTax")) &&
                           tax.hasTable(QStringLiteral("SaleTotal")) &&
                           tax.hasTable(QStringLiteral("BuyTotal"));
        if (!whole)
            return fail(QStringLiteral("옛 형식의 자료를 새 형식으로 바꾸지 못했습니다. 지금의 자료는 바뀌지 "
                                       "않았습니다."));
        return true;
    }

    bool convertOldStatements();
    bool appendConverted(const QString& scratch, const SourceFile& f);

    // The written figures of the tables built from the sources, after the upgrade steps and
    // before converted statements are appended.
    bool takeBuiltFigures() {
        for (const Built& b : std::as_const(m_built)) {
            Database db;
            if (!db.open(b.path)) return fail(QStringLiteral("새 자료 파일을 확인하지 못했습니다."));
            QList<JetTableFigures> slice = m_report.tables.mid(b.first, b.count);
            takeWrittenFigures(db, slice);
            for (qsizetype i = 0; i < slice.size(); ++i)
                m_report.tables[b.first + i] = slice[i];
        }
        return true;
    }

    bool check() {
        for (const JetTableFigures& t : std::as_const(m_report.tables))
            if (!t.matches())
                return fail(
                    QStringLiteral("%1 파일의 %2 표를 옮긴 결과가 원본과 다릅니다 (행 수 또는 금액 합계). "
                                   "지금의 자료는 바뀌지 않았습니다.")
                        .arg(t.source, t.table));
        return true;
    }

    // The books are backed up as before every change; besides, the stores from before are kept
    // whole, as they were, in a dated folder beside the new ones, so a failed backup (said once
    // by the backup itself) does not stop the import.
    bool swapIn() {
        tell(QStringLiteral("백업"), 0);
        backupBeforeChange(QStringLiteral("가져오기전"));
        tell(QStringLiteral("교체"), 0);
        closeStores();
        QString why;
        m_report.keptFolder = exchangeStoreFolder(m_work, m_storeFolder, why);
        if (m_report.keptFolder.isEmpty())
            return fail(why + QStringLiteral(" 지금의 자료는 바뀌지 않았습니다."));
        m_work.clear();
        return true;
    }

    QString m_folder;
    JetImportOptions m_options;
    JetImportReport m_report;
    QList<SourceFile> m_sources;
    QString m_storeFolder;
    QString m_work;
    QString m_newFolder;
    struct Built {
        QString path;
        qsizetype first = 0;
        qsizetype count = 0;
    };
    QList<Built> m_built;
};

// The old statement file goes through the program's own conversion into a scratch statement
// store, then its rows are appended: the conversion recomputes the totals of every head it
// sees, and the shop's own heads must keep theirs.
bool Import::convertOldStatements() {
    for (const SourceFile& f : m_sources) {
        if (f.kind != Kind::OldBill) continue;
        tell(f.name, 0);
        const QString scratch = m_work + QStringLiteral("/raw/converted-statements.db");
        if (!createStoreFile(scratch, billTables()))
            return fail(QStringLiteral("%1 파일의 자료를 옮길 작업 파일을 만들지 못했습니다.").arg(f.name));
        Database old;
        Database converted;
        if (!old.open(f.raw) || !converted.open(scratch) || !AttachOldStatements(converted, f.raw) ||
            !converted.beginTransaction())
            return fail(QStringLiteral("%1 파일의 자료를 옮기지 못했습니다.").arg(f.name));
        if (!ConvertOldStatements(old, converted) || !converted.commit())
            return fail(
                QStringLiteral("%1 파일의 거래명세표를 새 형식으로 옮기지 못했습니다. 지금의 자료는 바뀌지 "
                               "않았습니다.")
                    .arg(f.name));
        converted.close();
        if (!appendConverted(scratch, f)) return false;
    }
    return true;
}

bool Import::appendConverted(const QString& scratch, const SourceFile& f) {
    Database raw;
    Database bill;
    if (!raw.open(f.raw) || !bill.open(newStore(Kind::Bill)) || !bill.attach(scratch, QStringLiteral("conv")))
        return fail(QStringLiteral("%1 파일의 자료를 옮기지 못했습니다.").arg(f.name));
    const QList<JetTableFigures> read = readFigures(raw, f.name);
    struct Move {
        QString from, to;
        QStringList fromSums, toSums;
    };
    const Move moves[] = {
        {QStringLiteral("DealTitle"), QStringLiteral("Master"), {}, {}},
        {QStringLiteral("DealList"),
         QStringLiteral("Detail"),
         {QStringLiteral("Quant"), QStringLiteral("UnitCost"), QStringLiteral("DC")},
         {QStringLiteral("Quant"), QStringLiteral("Price"), QStringLiteral("DC")}},
    };
    bool ok = bill.beginTransaction();
    for (const Move& m : moves) {
        QSqlQuery last(bill.connection());
        last.exec(QStringLiteral("SELECT coalesce(max(rowid), 0) FROM ") + quoteName(m.to));
        const qint64 before = last.next() ? last.value(0).toLongLong() : 0;
        last.finish();
        const QStringList columns = bill.columns(m.to);
        QStringList quotedColumns;
        for (const QString& c : columns)
            quotedColumns << quoteName(c);
        ok = ok &&
             bill.tryExecute(QStringLiteral("INSERT INTO main.%1 (%2) SELECT %2 FROM conv.%1 ORDER BY rowid")
                                 .arg(quoteName(m.to), quotedColumns.join(u',')));
        JetTableFigures figures{f.name, m.from + QStringLiteral(" → ") + m.to, 0, 0, {}};
        for (const JetTableFigures& r : read)
            if (r.table.compare(m.from, Qt::CaseInsensitive) == 0) {
                figures.rowsRead = r.rowsRead;
                for (qsizetype i = 0; i < m.fromSums.size(); ++i)
                    for (const JetColumnSum& s : r.sums)
                        if (s.column.compare(m.fromSums[i], Qt::CaseInsensitive) == 0)
                            figures.sums.push_back({m.toSums[i], s.read, 0});
            }
        const JetTableFigures written = tableFigures(bill, m.to, m.toSums, before + 1);
        figures.rowsWritten = written.rowsRead;
        for (qsizetype i = 0; i < figures.sums.size(); ++i)
            figures.sums[i].written = written.sums.value(i).read;
        m_report.tables << figures;
    }
    ok = ok && bill.commit();
    if (!ok) bill.rollback();
    bill.detach(QStringLiteral("conv"));
    return ok || fail(QStringLiteral("%1 파일의 거래명세표를 덧붙이지 못했습니다.").arg(f.name));
}

} // namespace

bool JetTableFigures::matches() const {
    if (rowsRead != rowsWritten) return false;
    for (const JetColumnSum& s : sums)
        if (s.read != s.written) return false;
    return true;
}

void setJetReaderProgram(const QString& program) {
    defaultReader() = program;
}

JetImportReport importJetFolder(const QString& folder, const JetImportOptions& options) {
    return Import(folder, options).run();
}

QString jetFigure(double value) {
    QString text = QString::number(value, 'f', 4);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.')) text.chop(1);
    return text;
}

QStringList jetReportLines(const JetImportReport& report) {
    QStringList lines;
    for (const JetTableFigures& t : report.tables) {
        QString line = QStringLiteral("%1 %2: 읽은 행 %3, 쓴 행 %4")
                           .arg(t.source, t.table)
                           .arg(t.rowsRead)
                           .arg(t.rowsWritten);
        for (const JetColumnSum& s : t.sums)
            line +=
                QStringLiteral("; %1 합계 %2 / %3").arg(s.column, jetFigure(s.read), jetFigure(s.written));
        lines << line;
    }
    lines << report.notes;
    if (!report.keptFolder.isEmpty())
        lines << QStringLiteral("가져오기 전의 자료는 %1 폴더에 그대로 두었습니다.")
                     .arg(QDir::toNativeSeparators(report.keptFolder));
    return lines;
}

} // namespace nb
