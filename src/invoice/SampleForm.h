#pragma once
// The paper tax invoice as the sample picture draws it: one copy's boxes, rules and captions laid
// out on the print's own rows and tab columns (no margins), so that the values the invoice print
// puts on the sheet fall inside their boxes.

#include <QRectF>
#include <QString>
#include <vector>

class QPainter;

namespace nb {

// One box of the form, in inches from the corner of the sheet. `field` names the value it
// holds ("serial", "userCompany", "line2.qty", "supplyCell3", ...); caption cells have none.
struct SampleFormBox {
    QString field;
    QRectF rect;
    QString caption;
    double captionSize = 0; // points; the caption sits small in the top-left corner when set
};

// The boxes of copy 0 (upper) or 1 (lower).
std::vector<SampleFormBox> sampleFormBoxes(int copy);
// The box holding `field`, or an empty rectangle.
QRectF sampleFormBox(const std::vector<SampleFormBox>& boxes, const QString& field);

// Draws the form of one copy on a painter of `dotsPerInch`, origin at the corner of the sheet.
void drawSampleForm(QPainter& painter, double dotsPerInch, int copy = 0);

} // namespace nb
