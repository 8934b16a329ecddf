#pragma once
// The least any program could take to show a list's rows: the same texts in the plainest Qt way,
// a bare table of the list's size, font, column widths and row height, its rows set afresh and
// its first page painted, the window free. Timed beside the program's own list, it tells how much
// of the program's figure is Qt's painting of those rows and how much is the program's own.

#include "BenchSupport.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QScreen>
#include <QTableView>
#include <QTableWidget>
#include <cstdio>
#include <memory>

namespace nb::bench {

// What a list shows: its column headings and the texts of its rows (at most the first page the
// program reads at once), its visible columns only, with their widths.
struct ShownRows {
    QStringList headings;
    QList<int> widths;
    QList<QStringList> rows;
    QFont font;
    QSize size;
    int rowHeight = 0;
    bool rowHeaders = true;
};

inline ShownRows shownRows(const QTableView& view, int maxRows = 200) {
    ShownRows shown;
    const QAbstractItemModel* model = view.model();
    QList<int> columns;
    for (int c = 0; c < model->columnCount(); ++c) {
        if (view.isColumnHidden(c)) continue;
        columns << c;
        shown.headings << model->headerData(c, Qt::Horizontal).toString();
        shown.widths << view.columnWidth(c);
    }
    const int rows = std::min(model->rowCount(), maxRows);
    for (int r = 0; r < rows; ++r) {
        QStringList texts;
        for (int c : columns)
            texts << model->index(r, c).data().toString();
        shown.rows << texts;
    }
    shown.font = view.font();
    shown.size = view.size();
    shown.rowHeight = view.verticalHeader()->defaultSectionSize();
    shown.rowHeaders = view.verticalHeader()->isVisible();
    return shown;
}

// Gives a bare table the list's look: size, font, headings, widths, row height.
inline void shapeLike(QTableView& table, const ShownRows& shown) {
    table.setFont(shown.font);
    table.resize(shown.size);
    table.verticalHeader()->setDefaultSectionSize(shown.rowHeight);
    table.verticalHeader()->setVisible(shown.rowHeaders);
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
}

// A bare table's search to its rows painted and the window free, in ms. A bare view lays its rows
// out at the next turn of the event loop and only then asks for their paint, so the events are
// handled until its rows were painted, then until the window answers again.
inline double plainFirstPaintFreeMs(QTableView& table, PaintCount& count, const std::function<void()>& fill) {
    QElapsedTimer t;
    t.start();
    const int before = count.paints;
    fill();
    while (count.paints == before)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    bool answered = false;
    QTimer::singleShot(0, &table, [&answered] { answered = true; });
    while (!answered)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    return double(t.nsecsElapsed()) / 1e6;
}

// The median of several plainFirstPaintFreeMs; with profile set, 500 of them counted by the
// instruction counter instead and 0 answered.
inline double timedPlain(QTableView& table, const std::function<void()>& fill, int repeats, bool profile) {
    PaintCount count(table.viewport());
    if (profile) {
        profileRuns(&table, [&] { plainFirstPaintFreeMs(table, count, fill); });
        return 0;
    }
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        times.push_back(plainFirstPaintFreeMs(table, count, fill));
        for (int settle = 0; settle < 200; ++settle)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// A QTableWidget: the rows' items made anew at every search. With profile set, its search is
// counted by profileRuns instead and 0 answered.
inline double plainWidgetMs(const ShownRows& shown, int repeats = 9, bool profile = false) {
    QTableWidget table(0, int(shown.headings.size()));
    shapeLike(table, shown);
    table.setHorizontalHeaderLabels(shown.headings);
    for (int c = 0; c < shown.widths.size(); ++c)
        table.setColumnWidth(c, shown.widths[c]);
    table.show();
    const auto fill = [&] {
        table.setRowCount(0);
        table.setRowCount(int(shown.rows.size()));
        for (int r = 0; r < shown.rows.size(); ++r)
            for (int c = 0; c < shown.rows[r].size(); ++c)
                table.setItem(r, c, new QTableWidgetItem(shown.rows[r][c]));
    };
    fill();
    QCoreApplication::processEvents();
    return timedPlain(table, fill, repeats, profile);
}

// The texts themselves as a table model: a search replaces them and resets the model.
class PlainTexts : public QAbstractTableModel {
public:
    explicit PlainTexts(QStringList headings) : m_headings(std::move(headings)) {}
    void setRows(const QList<QStringList>& rows) {
        beginResetModel();
        m_rows = rows;
        endResetModel();
    }
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : int(m_rows.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : int(m_headings.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole ? QVariant(m_rows[index.row()][index.column()]) : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (role != Qt::DisplayRole) return {};
        return orientation == Qt::Horizontal ? QVariant(m_headings.value(section)) : QVariant(section + 1);
    }

private:
    QStringList m_headings;
    QList<QStringList> m_rows;
};

// A QTableView over PlainTexts.
inline double plainViewMs(const ShownRows& shown, int repeats = 9) {
    PlainTexts texts(shown.headings);
    QTableView table;
    table.setModel(&texts);
    shapeLike(table, shown);
    for (int c = 0; c < shown.widths.size(); ++c)
        table.setColumnWidth(c, shown.widths[c]);
    table.show();
    const auto fill = [&] { texts.setRows(shown.rows); };
    fill();
    QCoreApplication::processEvents();
    return timedPlain(table, fill, repeats, false);
}

// With NB_BENCH_SHOTS set to a folder, what the window shows now (its backing store) is saved
// there as name.png, for comparing the pictures of two builds.
inline void saveShot(QWidget* window, const QString& name) {
    const QString folder = qEnvironmentVariable("NB_BENCH_SHOTS");
    if (folder.isEmpty()) return;
    QCoreApplication::processEvents();
    window->screen()->grabWindow(window->winId()).save(folder + u'/' + name + QStringLiteral(".png"));
}

// The floor beside the program and the bare statement: the quicker of the two bare tables, and
// the least any program could take, that painting after the bare statement.
inline void reportFloor(const char* what, const ShownRows& shown, double program, double bare) {
    const double widget = plainWidgetMs(shown), view = plainViewMs(shown);
    const double floor = std::min(widget, view);
    std::printf("   %s, %lld rows shown plainly: QTableWidget %.2f ms, QTableView over the texts %.2f ms; "
                "the painting alone %.2f x the bare statement; statement and painting %.2f ms = %.2f x the "
                "bare statement; the program %.2f x that\n",
                what, qlonglong(shown.rows.size()), widget, view, bare > 0 ? floor / bare : 0.0, bare + floor,
                bare > 0 ? (bare + floor) / bare : 0.0, program / (bare + floor));
    std::fflush(stdout);
}

} // namespace nb::bench
