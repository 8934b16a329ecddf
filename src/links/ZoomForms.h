#pragma once
// The enlarged samples of a filled tax invoice (frmZoomTax) and statement (frmZoomDealList):
// the picture the user put in Image/ (sample_tax_zoom.jpg, sample_bill_zoom.jpg), or else the
// program's own drawn sample, without a box.

#include <QDialog>
#include <QImage>

class QLabel;
class QPushButton;

namespace nb {

class ZoomForm : public QDialog {
    Q_OBJECT
public:
    QLabel* picture() const { return m_picture; }
    QPushButton* cmdClose = nullptr;

protected:
    ZoomForm(const QString& name, const QString& title, const QString& imageFile, const QImage& drawn,
             QWidget* parent);

private:
    QLabel* m_picture;
};

class frmZoomTax : public ZoomForm {
    Q_OBJECT
public:
    explicit frmZoomTax(QWidget* parent = nullptr);
};

class frmZoomDealList : public ZoomForm {
    Q_OBJECT
public:
    explicit frmZoomDealList(QWidget* parent = nullptr);
};

// The drawn samples, enlarged.
QImage zoomedInvoiceSample();
QImage drawnStatementSample();

// Show the forms modally (for the screens that offer a sample).
void showZoomTax(QWidget* parent);
void showZoomDealList(QWidget* parent);

} // namespace nb
