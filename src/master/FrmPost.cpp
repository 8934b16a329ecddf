#include "master/FrmPost.h"

#include "common/input/FormPlacement.h"
#include "master/PostSearch.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

namespace nb {

FrmPost::FrmPost(QWidget* parent)
    : MasterListForm({QStringLiteral("ZIPCODE"), QStringLiteral("SIDO"), QStringLiteral("GUGUN"),
                      QStringLiteral("DONG"), QStringLiteral("BUNJI")},
                     parent) {
    setObjectName(QStringLiteral("FrmPost"));
    setWindowTitle(QStringLiteral("우편번호 검색"));
    btnSelect()->hide();
    m_find = new QPushButton(QStringLiteral("검색(&F)"), this);
    m_find->setObjectName(QStringLiteral("btnFind"));
    m_find->setAutoDefault(false);
    buttonRow()->insertWidget(1, m_find);
    const QString hint = QStringLiteral("읍/면/동으로 검색하세요. [전체검색 : 빈칸]");
    setHints(hint, hint);
    connect(m_find, &QPushButton::clicked, this, &FrmPost::findAgain);
    placeFirstColumnWidths({70, 60, 90, 120, 150});
}

void FrmPost::SetObject(QLineEdit* zipTarget, QLineEdit* addrTarget) {
    holdTarget(zipTarget);
    if (!m_addrTarget) m_addrTarget = addrTarget;
}

void FrmPost::InitForm(const QString& text, int& result) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QVector<QStringList> rows = SearchPostBook(text);
    QApplication::restoreOverrideCursor();
    result = rows.isEmpty() ? 0 : rows.size() == 1 ? 1 : 2;
    if (result == 1) deliver(SingleHitZip(rows.first().value(0)), rows.first());
    model()->setRows(std::move(rows));
    selectRow(0);
}

void FrmPost::chooseActiveRow() {
    const int row = activeRow();
    if (row < 0) return;
    QStringList values;
    for (int c = 0; c < 5; ++c)
        values << model()->text(row, c);
    deliver(ChosenZip(values.value(0)), values);
    accept();
}

void FrmPost::findAgain() {
    const QString text = txtinput()->text().trimmed();
    if (text.isEmpty()) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    model()->setRows(SearchPostBook(text));
    QApplication::restoreOverrideCursor();
    selectRow(0);
}

void FrmPost::deliver(const QString& zip, const QStringList& row) {
    writeTarget(zip);
    if (m_addrTarget) m_addrTarget->setText(AddressPrefix(row));
}

int RunPostcodeSearch(QWidget* caller, QLineEdit* zipBox, QLineEdit* addrBox) {
    FrmPost form(caller);
    form.SetObject(zipBox, addrBox);
    int result = 0;
    form.InitForm(zipBox->text().trimmed(), result);
    if (result != 1) {
        const QRect over = screenRectOf(caller);
        form.move(over.center() - QPoint(form.width() / 2, form.height() / 2));
        form.exec();
    }
    addrBox->setFocus();
    if (!addrBox->text().isEmpty()) {
        addrBox->setText(addrBox->text() + u' ');
        addrBox->end(false);
        // The box selects its text on entry a moment later; the caret goes to the end after it.
        QPointer<QLineEdit> box(addrBox);
        QTimer::singleShot(0, addrBox, [box] {
            if (box) box->end(false);
        });
    }
    return result;
}

} // namespace nb
