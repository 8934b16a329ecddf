#include "common/text/NumBox.h"

#include "common/text/NumberFormat.h"

#include <QFontMetrics>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionFrame>
#include <cmath>

namespace nb {
namespace {

// QLineEdit keeps this many pixels free on each side of its text inside the contents rect.
constexpr int kLineEditInnerMargin = 2;
// Widths are compared in twentieths of a point (15 to a pixel at 96 dpi): a blank is a few
// pixels wide with a fraction, and whole pixels would lose that fraction once per blank.
constexpr double kUnitsPerPixel = 15.0;

int inUnits(double pixels) {
    return int(std::lround(pixels * kUnitsPerPixel));
}

int padFor(const QLineEdit* box, const QString& s) {
    const QFontMetricsF metrics(box->font());
    const int blank = inUnits(metrics.horizontalAdvance(QStringLiteral("  "))) -
                      inUnits(metrics.horizontalAdvance(QStringLiteral(" ")));
    return NumBoxPadCount(inUnits(NumBoxTextRoom(box)), inUnits(metrics.horizontalAdvance(s)), blank);
}

void setTextIfChanged(QLineEdit* box, const QString& text) {
    if (box->text() != text) box->setText(text);
}

} // namespace

int NumBoxPadCount(int boxWidth, int textWidth, int blankWidth) {
    return int(std::floor(double(boxWidth - textWidth) / double(qMax(blankWidth, 1)))) - 1;
}

int NumBoxTextRoom(const QLineEdit* box) {
    QStyleOptionFrame option;
    option.initFrom(box);
    option.lineWidth =
        box->hasFrame() ? box->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, box) : 0;
    const QRect contents = box->style()->subElementRect(QStyle::SE_LineEditContents, &option, box);
    const QMargins margins = box->textMargins();
    return contents.width() - margins.left() - margins.right() - 2 * kLineEditInnerMargin;
}

void SetNumBoxText(QLineEdit* box) {
    const QString text = box->text();
    if (text.isEmpty()) return;
    if (!IsNumericText(text)) {
        setTextIfChanged(box, QStringLiteral("0"));
        return;
    }
    QString s = text.trimmed();
    const bool hasPoint = s.contains(u'.');
    if (s != u"-" && !hasPoint) s = FormatText(s, kMaskNumBox);
    int pad = padFor(box, s);
    if (pad >= 1) {
        setTextIfChanged(box, QString(pad, u' ') + s);
    } else {
        if (!hasPoint && s != u"-") s = FormatText(text, kMaskNumBoxNarrow);
        pad = padFor(box, s);
        if (pad > 0) setTextIfChanged(box, QString(pad, u' ') + s);
    }
    box->setCursorPosition(int(box->text().size()));
}

void AttachNumBox(QLineEdit* box) {
    QObject::connect(box, &QLineEdit::textChanged, box, [box] {
        // A rewrite changes the text once more; that second pass finds nothing to change.
        static thread_local int depth = 0;
        if (depth > 1) return;
        ++depth;
        SetNumBoxText(box);
        --depth;
    });
}

QString StripNumText(const QString& text) {
    return text.trimmed().remove(u',');
}

double NumBoxValue(const QString& text) {
    return NumberFromText(StripNumText(text));
}

} // namespace nb
