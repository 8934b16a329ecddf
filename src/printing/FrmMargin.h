#pragma once
// "Margin설정": the margins of one document, in print rows (top) and print columns (left).
// Negative and decimal values are allowed. Only the invoice and the statement keep margins; for
// the other documents the form picks the name and leaves its boxes as they are.

#include <QDialog>
#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace nb {

// The two boxes' texts as the form shows and saves them.
struct MarginTexts {
    QString top;
    QString left;
};
// The saved margins of a document index, "0" where none is saved; nothing for a document that
// keeps no margins. The top margin is read by the key "topmargin" (the store ignores case).
std::optional<MarginTexts> loadMarginTexts(int Doc);
// Saves both texts as typed under "TopMargin" / "LeftMargin"; false (and nothing saved) for a
// document that keeps no margins.
bool saveMarginTexts(int Doc, const MarginTexts& texts);

class FrmMargin : public QDialog {
    Q_OBJECT
public:
    explicit FrmMargin(QWidget* parent = nullptr);
    void InitForm(int Doc);
    int document() const { return m_doc; }
    QString documentTitle() const;

    QLabel* lblDoc;
    QLabel* lblTop;
    QLabel* lblLeft;
    QLabel* lblNote;
    QLineEdit* TxtTop;
    QLineEdit* TxtLeft;
    QPushButton* Cmd설정;
    QPushButton* Cmd취소;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Cmd설정_Click();
    void fillBoxes();

    int m_doc = 0;
};

} // namespace nb
