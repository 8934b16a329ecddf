#pragma once
// The sample tax invoice: Image/sample_tax.jpg when the user put one there, otherwise a filled
// example drawn by the program's own print layer on the paper form. A click on the picture or
// on its button closes it.

#include <QDialog>
#include <QImage>

class QLabel;
class QPushButton;

namespace nb {

// The filled example: both copies of a made-up invoice printed on the drawn paper.
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
