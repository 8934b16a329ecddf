#pragma once
// "프린트 드라이버 설정": the choice of printer for the invoice or the statement. Shows the
// default printer and every printer (the system's and "PDF"); the chosen name is saved under
// "<document>", "Drive", "<document>".

#include <QDialog>

class QLabel;
class QListWidget;
class QPushButton;

namespace nb {

class FrmSetPrinter : public QDialog {
    Q_OBJECT
public:
    explicit FrmSetPrinter(QWidget* parent = nullptr);
    // Remembers the document (0 invoice, 1 statement; other indexes save nothing).
    void InitForm(int Doc);
    int document() const { return m_doc; }

    QLabel* lblDefault;
    QLabel* Spn;
    QListWidget* List1;
    QPushButton* Command1;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Command1_Click();
    void fillPrinters();

    int m_doc = 0;
};

// The statement screen's printer button: the form modally for the document, then the name
// saved for it, or the default printer's entry when none is saved.
QString ChooseDocPrinter(int Doc, QWidget* parent = nullptr);

} // namespace nb
