#pragma once
// "견적 내역 조회": the search of quotations that FrmEstimate opens. The chosen number goes to
// the caption of the target the screen gave (pnlCode); Esc leaves the target as it was.

#include <QDialog>
#include <QPointer>
#include <optional>
#include <utility>

class QLabel;
class QPushButton;

namespace nb {

class Grid;
class ListModel;

// The statement of a search: the five list columns, a filter by the search field (0 trader
// name, 1 date, 2 number, 3 delivery date) when the text is not empty, ordered by date and name.
struct EstiListQuery {
    QString sql;
    QVariantList values;
};
EstiListQuery estiListQuery(int FindField, const QString& FindText);

class FrmEstiList : public QDialog {
    Q_OBJECT
public:
    explicit FrmEstiList(QWidget* parent = nullptr);

    // The list of quotations, read a page at a time as the operator scrolls.
    Grid* grdList;
    QPushButton *btnSelect, *btnQuit;

    // Keeps the target, unless one is kept already.
    void SetObject(QLabel* Target);
    void InitForm(int FindField, const QString& FindText);
    // Modal, just below the anchor.
    void showBelow(QWidget* anchor);
    // The quotations found (the list is read through to count them).
    int rowCount() const;
    ListModel* model() const { return m_model; }

public Q_SLOTS:
    // Column 1 of the active row to the target's caption, then the form closes.
    void choose();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ListModel* m_model;
    QPointer<QLabel> m_target;
    std::optional<std::pair<int, QString>> m_search; // the last search, run again on a re-read
};

} // namespace nb
