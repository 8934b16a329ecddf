#pragma once
// frmPrintTest: a form whose one picture box shows a print on the screen, at the screen's
// resolution, through the same print layer as paper. It draws the statement frame when a
// drawer is registered for it, and the print grid (rows and tab columns) until then. No menu
// opens it; it is a tool for checking a layout.

#include "printing/PrintJob.h"

#include <QWidget>
#include <functional>

namespace nb {

// Draws a form on a job from a left margin in columns and a top margin in rows.
using PrintFormDrawer = std::function<void(PrintJob& job, double left, double top)>;
// The statement module registers its frame here (Print_Form_DealList_A4Half).
void setPrintTestDrawer(PrintFormDrawer drawer);
// The print grid: a line on every sixth of an inch with its row number each five rows, and a
// mark on every tenth tab column of the base font with its number.
void drawPrintGrid(PrintJob& job, double left, double top);

class PrintTestPicture : public QWidget {
    Q_OBJECT
public:
    explicit PrintTestPicture(QWidget* parent = nullptr);
    double PrintTopMargin = 0;

protected:
    void paintEvent(QPaintEvent* event) override;
};

class frmPrintTest : public QWidget {
    Q_OBJECT
public:
    explicit frmPrintTest(QWidget* parent = nullptr);
    PrintTestPicture* Picture1;

protected:
    void resizeEvent(QResizeEvent* event) override;
};

} // namespace nb
