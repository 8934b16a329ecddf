#pragma once
// The preview of a long document: one page drawn at a time, when it is shown, so that the first
// page of a thousand is on the screen at once. The print routine draws a given page on a job;
// the window pages by buttons, the page box and PageUp/PageDown/Home/End, and zooms.

#include "printing/PrintJob.h"

#include <QDialog>
#include <QImage>
#include <functional>

class QComboBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QSpinBox;

namespace nb {

// Draws page `page` (from 1) of the document on the job.
using PageRoutine = std::function<void(PrintJob& job, int page)>;

// One page on an A4 image of that resolution, white under the print.
QImage renderPreviewPage(const QString& document, const PageRoutine& print, int page, double dotsPerInch);

class PagedPreview : public QDialog {
    Q_OBJECT
public:
    PagedPreview(QWidget* parent, const QString& document, int pages, PageRoutine print);

    int page() const { return m_page; }
    int pages() const { return m_pages; }
    void showPage(int page);
    const QImage& shownImage() const { return m_image; }

    QSpinBox* pageBox;
    QLabel* lblPages;
    QComboBox* cmbZoom;
    QLabel* view;
    QScrollArea* scroll;
    QPushButton *btnFirst, *btnPrev, *btnNext, *btnLast, *btnClose;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void redraw();

    QString m_document;
    int m_pages;
    PageRoutine m_print;
    int m_page = 0;
    QImage m_image;
};

// Shows the preview modally. While a PrintCapture lives (tests) every page is recorded into it
// as one job named "<document> 미리보기", and no window opens.
void showPagedPreview(QWidget* parent, const QString& document, int pages, const PageRoutine& print);

} // namespace nb
