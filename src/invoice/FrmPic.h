#pragma once
// The sample tax invoice: Image/sample_tax.jpg when the user put one there, otherwise a filled
// example drawn by the program's own print layer on a form laid out on the print's rows and
// columns. A click on the picture or on its button closes it.

#include <QDialog>
#include <QImage>

class QLabel;
class QPushButton;

namespace nb {

struct InvoicePrintData;
class PrintJob;

// The made-up invoice of the example.
InvoicePrintData sampleInvoiceData();
// Its upper copy on a job without margins; answers the lines printed.
int printSampleCopy(PrintJob& job);
// The filled example: the upper copy of the made-up invoice printed on the drawn form.
QImage sampleInvoiceImage();

class FrmPic : public QDialog {
    Q_OBJECT
public:
    explicit FrmPic(QWidget* parent = nullptr);
    QLabel* picture() const { return m_picture; }
    QPushButton* closeButton() const { return m_close; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLabel* m_picture;
    QPushButton* m_close;
};

} // namespace nb
