#pragma once
// Two small read-only forms: the paper order ("용지 주문") with its prices and accounts, and the
// help on printing the supplier's stamp.

#include <QDialog>

class QPlainTextEdit;
class QPushButton;

namespace nb {

// The account line of the paper order text. An example, not a real account: the maker fills
// in its own before shipping.
inline const QString kPaperOrderAccount =
    QStringLiteral("  -예시은행 000-000000-00-000 (예금주:하르문) ※예시 계좌");

QString paperOrderText();
QString signInfoText();

class FrmPaperOrder : public QDialog {
    Q_OBJECT
public:
    explicit FrmPaperOrder(QWidget* parent = nullptr);
    QPlainTextEdit* txtMemo = nullptr;
    QPushButton* cmdOrder = nullptr;
    QPushButton* cmdClose = nullptr;
};

class FrmSignInfo : public QDialog {
    Q_OBJECT
public:
    explicit FrmSignInfo(QWidget* parent = nullptr);
    QPlainTextEdit* txtMemo = nullptr;
    QPushButton* cmdClose = nullptr;
};

} // namespace nb
