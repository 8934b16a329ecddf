#pragma once
// The masked date box and the check made when a date box is left.

#include <QLineEdit>
#include <QString>

namespace nb {

// Masks of date boxes: the plain form, and the statement date as the statement screen shows it.
inline const QString kDateMask = QStringLiteral("9999-99-99;_");
inline const QString kHanDateMask = QStringLiteral("9999년99월99일;_");

// A masked box holding one date.
class DateBox : public QLineEdit {
    Q_OBJECT
public:
    explicit DateBox(QWidget* parent = nullptr, const QString& mask = kDateMask);
    // The date in the box as "YYYY-MM-DD", empty when it holds no date.
    QString dateText() const;
    // Shows a date (any accepted form) in the box's own form; text that is no date empties it.
    void setDateText(const QString& text);
    // Empties the box, leaving only the mask.
    void clearDate() { setText(QString()); }
};

// The messages of a date box that is left without a date.
inline const QString kBadDateMessage =
    QStringLiteral("잘못된 날짜 형식입니다.\n정확한 날짜 형식을 입력하세요.");
inline const QString kBadStatementDateMessage = QStringLiteral("올바른 날짜형식이 아닙니다");
inline const QString kBadDatePartsMessage = QStringLiteral("날짜가 올바르지 않습니다.");

// True when the text is a date; otherwise shows the message in a plain box and answers false.
bool CheckDateOnLeave(const QString& text, const QString& message);

} // namespace nb
