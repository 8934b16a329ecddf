#pragma once
// The small builders every screen places its controls with: a control under its own object
// name at a fixed place, as the screens are laid out by coordinates.

#include <QRect>
#include <QString>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QWidget;

namespace nb {

// A caption; framed, it is a sunken panel.
QLabel* makeLabel(QWidget* parent, const QString& text, const QRect& geometry, bool framed = false);
// A sunken panel that shows a number on its right.
QLabel* makeSumPanel(QWidget* parent, const QString& name, const QRect& geometry);
// A button reached by Tab (a click does not take the focus from the box being typed in).
QPushButton* makeButton(QWidget* parent, const QString& name, const QString& caption, const QRect& geometry);
QCheckBox* makeCheck(QWidget* parent, const QString& name, const QString& caption, const QRect& geometry);
QRadioButton* makeOption(QWidget* parent, const QString& name, const QString& caption, const QRect& geometry);
QComboBox* makeList(QWidget* parent, const QString& name, const QRect& geometry);

} // namespace nb
