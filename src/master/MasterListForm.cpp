#include "master/MasterListForm.h"

#include "common/Messages.h"
#include "master/EntryForm.h"
#include "storage/Stores.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {

MasterListForm::MasterListForm(const QStringList& headings, QWidget* parent) : QDialog(parent) {
    m_input = new QLineEdit(this);
    m_input->setObjectName(QStringLiteral("txtinput"));
    m_grid = new Grid(this);
    m_grid->setObjectName(QStringLiteral("grdList"));
    m_model = new ListModel(m_grid, headings, this);
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_hint = nb::hintPanel(this, QStringLiteral("pnlFunction"));
    m_select = formButton(this, QStringLiteral("선택(&S)"), QStringLiteral("btnSelect"));
    m_quit = formButton(this, QStringLiteral("닫기(&Q)"), QStringLiteral("btnQuit"));

    m_buttons = new QHBoxLayout;
    m_buttons->addWidget(m_hint, 1);
    m_buttons->addWidget(m_select);
    m_buttons->addWidget(m_quit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_input);
    layout->addWidget(m_grid, 1);
    layout->addLayout(m_buttons);

    connect(m_select, &QPushButton::clicked, this, &MasterListForm::chooseActiveRow);
    connect(m_quit, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_grid, &Grid::dblClick, this, [this](int col, int row) {
        if (col < 1 || row < 1) return;
        m_grid->SetActiveCell(col, row);
        chooseActiveRow();
    });
    m_input->installEventFilter(this);
    m_grid->installEventFilter(this);
    resize(620, 400);
}

int MasterListForm::activeRow() const {
    return m_grid->ActiveRow() - 1;
}

void MasterListForm::selectRow(int row) {
    if (row < 0 || row >= m_model->rowCount()) return;
    m_grid->SetActiveCell(1, row + 1);
}

QString MasterListForm::activeText(int column) const {
    return m_model->text(activeRow(), column - 1);
}

void MasterListForm::chooseActiveRow() {
    const QString key = activeText(keyColumn());
    if (key.isEmpty()) return;
    writeTarget(key);
    accept();
}

void MasterListForm::holdTarget(QLineEdit* target) {
    if (!m_target) m_target = target;
}

void MasterListForm::writeTarget(const QString& key) {
    if (m_target) m_target->setText(key);
}

bool MasterListForm::functionKey(int key) {
    if (!m_new) return false;
    if (key == Qt::Key_F3) {
        editActiveRow();
        return true;
    }
    if (key == Qt::Key_F4) {
        deleteActiveRow();
        return true;
    }
    return false;
}

QPushButton* MasterListForm::allowChanges() {
    m_new = formButton(this, QStringLiteral("신규(&N)"), QStringLiteral("btnNew"));
    m_buttons->insertWidget(2, m_new);
    return m_new;
}

QLineEdit* MasterListForm::addHiddenKeyBox(const QString& objectName) {
    auto* box = new QLineEdit(this);
    box->setObjectName(objectName);
    box->hide();
    return box;
}

void MasterListForm::selectFirstMatch(const QString& sql, const QString& pattern, const QString& keyField,
                                      int keyColumn0, const QString& notFound) {
    Recordset rs;
    if (!OpenSnapshot(stores().dbBasic, rs, sql, {pattern})) return;
    if (rs.EOF_()) {
        MsgBox(notFound);
        return;
    }
    selectRow(m_model->findRow(keyColumn0, rs.text(keyField)));
}

void MasterListForm::setHints(const QString& entryHint, const QString& gridHint) {
    m_entryHint = entryHint;
    m_gridHint = gridHint;
    m_hint->setText(entryHint);
}

// Widths in pixels, turned into the grid's characters of its font.
void MasterListForm::placeFirstColumnWidths(const QList<int>& widths) {
    const double perChar = m_grid->charsToPixels(10) - m_grid->charsToPixels(0);
    for (int c = 0; c < widths.size(); ++c)
        m_grid->setColWidth(c + 1, std::max(0.0, (widths[c] - m_grid->charsToPixels(0)) * 10.0 / perChar));
}

bool MasterListForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        m_hint->setText(watched == m_grid ? m_gridHint : m_entryHint);
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (functionKey(key)) return true;
        const bool enter = isEnterKey(key);
        if (watched == m_input && enter) {
            searchFromEntry();
            return true;
        }
        if (watched == m_input && (key == Qt::Key_Up || key == Qt::Key_Down)) {
            m_grid->setFocus();
            return true;
        }
        if (watched == m_grid && enter) {
            chooseActiveRow();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace nb
