// FrmTax: the keys and the focus of its fields. Enter and Down move on, Up moves back; item
// fields take a colour and a help text on focus; a line above CurLine sends the focus to
// CurLine's line; each column has its own Enter.
#include "common/Colors.h"
#include "common/Messages.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateText.h"
#include "common/input/ImeMode.h"
#include "common/input/SelectText.h"
#include "core/Clock.h"
#include "invoice/FrmTax.h"
#include "invoice/InvoiceSeal.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace nb {

namespace {

const QColor kFocusColor(255, 224, 192);

QString lineHelp(LineField column) {
    switch (column) {
    case LineField::ddyy:
        return QStringLiteral("거래일자를 입력하세요");
    case LineField::pummok:
        return QStringLiteral("품목 / 규격 을 입력하세요");
    case LineField::dan_num:
        return QStringLiteral("단위를 입력하세요");
    case LineField::su_num:
        return QStringLiteral("수량을 입력하세요");
    case LineField::gibon_num:
        return QStringLiteral("단가를 입력하세요");
    case LineField::gonggum:
        return QStringLiteral("공급가액을 입력하세요");
    case LineField::tax_num:
        return QStringLiteral("세액을 입력하세요");
    }
    return QString();
}

bool isArrow(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}
bool isEnter(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

void FrmTax::markFocus(QWidget* box, bool focused) {
    QPalette pal = box->palette();
    pal.setColor(QPalette::Base, focused ? kFocusColor : QApplication::palette(box).color(QPalette::Base));
    box->setPalette(pal);
}

void FrmTax::moveFocus(bool next) {
    focusNextPrevChild(next);
}

bool FrmTax::locateLineField(QObject* watched, LineField& column, int& i) const {
    for (int c = 0; c < kLineFieldCount; ++c)
        for (int k = 0; k < kInvoiceLines; ++k)
            if (m_lines[size_t(c)][size_t(k)] == watched) {
                column = LineField(c);
                i = k;
                return true;
            }
    return false;
}

bool FrmTax::eventFilter(QObject* watched, QEvent* event) {
    LineField column;
    int i = 0;
    if (locateLineField(watched, column, i)) return lineFieldEvent(column, i, event);
    if (watched == imgPic || watched == picSign) return sealEvent(watched, event);
    return otherFieldEvent(watched, event) || QWidget::eventFilter(watched, event);
}

bool FrmTax::lineFieldEvent(LineField column, int i, QEvent* event) {
    switch (event->type()) {
    case QEvent::FocusIn:
        lineFieldFocusIn(column, i);
        return false;
    case QEvent::FocusOut:
        lineFieldFocusOut(column, i);
        return false;
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Insert) {
            searchReceiverByInsert();
            return true;
        }
        return lineFieldKey(column, i, key->key());
    }
    default:
        return false;
    }
}

void FrmTax::lineFieldFocusIn(LineField column, int i) {
    if (i > m_sheet.curLine && !m_redirecting) {
        // A line above CurLine is not open yet: its column on CurLine's line takes the focus.
        m_redirecting = true;
        field(column, m_sheet.curLine)->setFocus();
        m_redirecting = false;
        return;
    }
    m_focusLine = i;
    QLineEdit* box = field(column, i);
    markFocus(box, true);
    pnlHelp->setText(lineHelp(column));
    switch (column) {
    case LineField::ddyy:
        m_savedTradeDate = box->text();
        SetImeMode(true, box);
        break;
    case LineField::pummok:
        if (ddyy(i)->text().isEmpty()) ddyy(i)->setText(write_mm->text() + u'-' + write_dd->text());
        SetImeMode(true, box);
        break;
    case LineField::gonggum:
        if (su_num(i)->text().isEmpty()) su_num(i)->setText(QStringLiteral("0"));
        if (gibon_num(i)->text().isEmpty()) gibon_num(i)->setText(QStringLiteral("0"));
        break;
    default:
        break;
    }
}

void FrmTax::lineFieldFocusOut(LineField column, int i) {
    QLineEdit* box = field(column, i);
    markFocus(box, false);
    if (column != LineField::ddyy || i > m_sheet.curLine || m_checkingDate) return;
    const std::optional<QString> date = checkedTradeDate(write_yy->text(), box->text());
    if (date) {
        box->setText(*date);
        return;
    }
    m_checkingDate = true;
    MsgBox(kBadDatePartsMessage); // the date messages come in the plain box
    box->setText(m_savedTradeDate);
    m_checkingDate = false;
}

bool FrmTax::askDeleteLine(int i) {
    if (MsgBox(QStringLiteral("삭제하시겠습니까?"), MbYesNo | MbQuestion, QStringLiteral("삭제")) == AnsYes)
        DeleteLine(i);
    return true;
}

bool FrmTax::lineFieldKey(LineField column, int i, int key) {
    if (key == Qt::Key_F4) return askDeleteLine(i);
    if (key == Qt::Key_Escape || key == Qt::Key_F3) return true;
    const bool enterOrArrow = isEnter(key) || isArrow(key);
    const bool forward = isEnter(key) || key == Qt::Key_Down;
    const bool back = key == Qt::Key_Up;
    switch (column) {
    case LineField::ddyy:
        if (isEnter(key) || key == Qt::Key_Right || key == Qt::Key_Down) {
            pummok(i)->setFocus();
            return true;
        }
        if (back) { // as Shift+Tab, as in every item field
            moveFocus(false);
            return true;
        }
        return false;
    case LineField::pummok:
        if (isEnter(key)) {
            PickProduct(i);
            return true;
        }
        if (key == Qt::Key_Left) {
            ddyy(i)->setFocus();
            return true;
        }
        break;
    case LineField::dan_num:
        break;
    case LineField::su_num:
        if (enterOrArrow) runRule("su_num_KeyDown", [i](InvoiceSheet& s) { QuantityEntered(s, i); });
        break;
    case LineField::gibon_num:
        if (enterOrArrow) runRule("gibon_num_KeyDown", [i](InvoiceSheet& s) { PriceEntered(s, i); });
        break;
    case LineField::gonggum: {
        if (!enterOrArrow) return false;
        bool acted = false;
        runRule("gonggum_KeyDown", [&](InvoiceSheet& s) { acted = SupplyTyped(s, i); });
        if (!acted) return true;
        break;
    }
    case LineField::tax_num:
        if (enterOrArrow) {
            runRule("tax_num_KeyDown", [i](InvoiceSheet& s) { TaxTyped(s, i); });
            return true;
        }
        return false;
    }
    if (forward || back) {
        moveFocus(forward);
        return true;
    }
    return false;
}

bool FrmTax::otherFieldEvent(QObject* watched, QEvent* event) {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget) return false;
    const bool dateBox = watched == txtDate[0] || watched == txtDate[1];
    if (event->type() == QEvent::FocusIn) {
        if (watched == write_yy) pnlHelp->setText(QStringLiteral("작성년도를 입력하세요"));
        if (watched == write_mm) pnlHelp->setText(QStringLiteral("작성월을 입력하세요"));
        if (watched == write_dd) pnlHelp->setText(QStringLiteral("작성일자를 입력하세요"));
        if (watched == bigo) pnlHelp->setText(QStringLiteral("비고를 입력하세요"));
        if (watched == CName_MAE)
            pnlHelp->setText(QStringLiteral("전체검색 : [Enter] or 상호명 앞자리 1자이상 입력 후 Enter"));
        if (watched == txtDate[0]) pnlHelp->setText(QStringLiteral("  집계 시작일을 입력하세요."));
        if (watched == txtDate[1]) pnlHelp->setText(QStringLiteral("  집계 마지막일을 입력하세요."));
        if (watched == write_yy || watched == write_mm || watched == write_dd || watched == bigo)
            markFocus(widget, true);
        return false;
    }
    if (event->type() == QEvent::FocusOut) {
        if (watched == write_yy || watched == write_mm || watched == write_dd || watched == bigo)
            markFocus(widget, false);
        if (dateBox && !m_checkingDate) dateBoxLeft(watched == txtDate[0] ? 0 : 1);
        return false;
    }
    if (event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Insert) {
        searchReceiverByInsert();
        return true;
    }
    if (watched == bigo) return false; // the remark takes its own line breaks
    if (watched == CName_MAE && isEnter(key)) {
        searchReceiver();
        return true;
    }
    if (watched == CName_user && isEnter(key)) {
        searchSupplier();
        return true;
    }
    if (isEnter(key) || key == Qt::Key_Down || key == Qt::Key_Up) {
        moveFocus(key != Qt::Key_Up);
        return true;
    }
    return false;
}

bool FrmTax::dateBoxLeft(int index) {
    DateBox* box = txtDate[size_t(index)];
    m_checkingDate = true;
    const bool isDate = CheckDateOnLeave(box->dateText(), kBadDateMessage);
    m_checkingDate = false;
    if (isDate) return true;
    m_checkingDate = true;
    box->setDateText(DateText(today()));
    box->setFocus();
    SelectAllText(box);
    m_checkingDate = false;
    return false;
}

bool FrmTax::sealEvent(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress) {
        if (watched == imgPic && !imgPic->pixmap().isNull()) {
            picSign->setGeometry(imgPic->geometry());
            picSign->show();
            picSign->raise();
            picSign->setFocus();
        } else if (watched == picSign) {
            picSign->hide();
        }
        return true;
    }
    if (watched == picSign && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete) {
        const QString question =
            QStringLiteral("공급자도장을 삭제하시겠습니까?\n삭제시 도장인쇄를 하지 않게 됩니다.\n"
                           "※도장파일이 삭제되지는 않습니다. 언제든지 재지정 가능합니다.");
        if (MsgBox(question, MbYesNo | MbQuestion, QStringLiteral("공급자도장 삭제")) == AnsYes) {
            saveSealSetting(QString());
            LoadSeal();
            picSign->hide();
        }
        return true;
    }
    return false;
}

void FrmTax::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Insert) {
        searchReceiverByInsert();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace nb
