#pragma once
// The shape the search lists share: an entry box txtinput, the grid grdList, a hint panel, the
// buttons btnSelect and btnQuit, and the text box of the calling screen (the target) that
// receives the chosen key. Enter or a double click on a row chooses it; Esc closes.

#include "common/grid/Grid.h"
#include "master/ListModel.h"

#include <QDialog>
#include <QLineEdit>
#include <QPointer>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace nb {

class MasterListForm : public QDialog {
    Q_OBJECT
public:
    MasterListForm(const QStringList& headings, QWidget* parent = nullptr);

    QLineEdit* txtinput() const { return m_input; }
    // The list: the grid in its list mode, a whole row at a time.
    Grid* grdList() const { return m_grid; }
    QPushButton* btnSelect() const { return m_select; }
    QPushButton* btnQuit() const { return m_quit; }
    QLabel* hintPanel() const { return m_hint; }
    // btnNew of the lists that register records; null on the others.
    QPushButton* btnNew() const { return m_new; }
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
    // F3 and F4 of the lists that change and delete their records; nothing on the others.
    virtual void editActiveRow() {}
    virtual void deleteActiveRow() {}

protected:
    // Keeps the target unless one is held.
    void holdTarget(QLineEdit* target);
    void writeTarget(const QString& key);
    // The grid column (from 1) that holds the key.
    virtual int keyColumn() const = 0;
    // Enter in the entry box; the default does nothing.
    virtual void searchFromEntry() {}
    // Function keys on the grid or the box; true when handled. The default runs F3 and F4
    // once allowChanges was called.
    virtual bool functionKey(int key);
    // Adds btnNew before btnQuit and lets F3 change and F4 delete the active row.
    QPushButton* allowChanges();
    // A hidden box for the chosen key when the list is opened by a screen without one.
    QLineEdit* addHiddenKeyBox(const QString& objectName);
    // Enter in the box: the first record whose name matches the bound pattern becomes the
    // active row, found by its key in the grid column keyColumn0 (from 0); the message when
    // none matches.
    void selectFirstMatch(const QString& sql, const QString& pattern, const QString& keyField, int keyColumn0,
                          const QString& notFound);
    // The hints shown while the box or the grid has the focus.
    void setHints(const QString& entryHint, const QString& gridHint);
    void placeFirstColumnWidths(const QList<int>& widths);
    QHBoxLayout* buttonRow() const { return m_buttons; }
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit* m_input = nullptr;
    Grid* m_grid = nullptr;
    ListModel* m_model = nullptr;
    QLabel* m_hint = nullptr;
    QPushButton* m_select = nullptr;
    QPushButton* m_quit = nullptr;
    QPushButton* m_new = nullptr;
    QHBoxLayout* m_buttons = nullptr;
    QPointer<QLineEdit> m_target;
    QString m_entryHint;
    QString m_gridHint;
};

} // namespace nb
