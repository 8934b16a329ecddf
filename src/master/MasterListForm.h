#pragma once
// The shape the search lists share: an entry box txtinput, the grid grdList, a hint panel, the
// buttons btnSelect and btnQuit, and the text box of the calling screen (the target) that
// receives the chosen key. Enter or a double click on a row chooses it; Esc closes.

#include "master/ListModel.h"

#include <QDialog>
#include <QLineEdit>
#include <QPointer>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QTableView;

namespace nb {

class MasterListForm : public QDialog {
    Q_OBJECT
public:
    MasterListForm(const QStringList& headings, QWidget* parent = nullptr);

    QLineEdit* txtinput() const { return m_input; }
    QTableView* grdList() const { return m_grid; }
    QPushButton* btnSelect() const { return m_select; }
    QPushButton* btnQuit() const { return m_quit; }
    QLabel* hintPanel() const { return m_hint; }
    ListModel* model() const { return m_model; }
    QLineEdit* target() const { return m_target; }

    // The row of the grid that is active, -1 with none.
    int activeRow() const;
    void selectRow(int row);
    // The text in the active row, columns from 1 as the screens count them.
    QString activeText(int column) const;

public Q_SLOTS:
    // Writes the key of the active row to the target and closes; nothing when it is empty.
    virtual void chooseActiveRow();

protected:
    // Keeps the target unless one is held.
    void holdTarget(QLineEdit* target);
    void writeTarget(const QString& key);
    // The grid column (from 1) that holds the key.
    virtual int keyColumn() const = 0;
    // Enter in the entry box; the default does nothing.
    virtual void searchFromEntry() {}
    // Function keys on the grid or the box; true when handled.
    virtual bool functionKey(int key);
    // The hints shown while the box or the grid has the focus.
    void setHints(const QString& entryHint, const QString& gridHint);
    void placeFirstColumnWidths(const QList<int>& widths);
    QHBoxLayout* buttonRow() const { return m_buttons; }
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit* m_input = nullptr;
    QTableView* m_grid = nullptr;
    ListModel* m_model = nullptr;
    QLabel* m_hint = nullptr;
    QPushButton* m_select = nullptr;
    QPushButton* m_quit = nullptr;
    QHBoxLayout* m_buttons = nullptr;
    QPointer<QLineEdit> m_target;
    QString m_entryHint;
    QString m_gridHint;
};

} // namespace nb
