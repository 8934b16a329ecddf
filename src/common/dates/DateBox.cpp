#include "common/dates/DateBox.h"

#include "common/Messages.h"
#include "common/dates/DateText.h"

namespace nb {

DateBox::DateBox(QWidget* parent, const QString& mask) : QLineEdit(parent) {
    setInputMask(mask);
}

QString DateBox::dateText() const {
    return NormalizeDate(text());
}

void DateBox::setDateText(const QString& text) {
    const QDate date = ToDate(text);
    if (!date.isValid()) {
        clearDate();
    } else {
        setText(inputMask().contains(u'년') ? HanDateText(date) : DateText(date));
    }
}

bool CheckDateOnLeave(const QString& text, const QString& message) {
    if (IsDate(text)) return true;
    MsgBox(message);
    return false;
}

} // namespace nb
