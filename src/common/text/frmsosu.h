#pragma once
// "소수점 설정": the screen that sets the decimal places of quantities and unit prices.
// Not modal; it deletes itself when closed, so every opening reads the settings afresh.

#include "common/text/DecimalSettings.h"

#include <QDialog>
#include <array>

class QPushButton;
class QRadioButton;

namespace nb {

class frmsosu : public QDialog {
    Q_OBJECT
public:
    explicit frmsosu(QWidget* parent = nullptr);

    // The control array gubun (objectNames "gubun_0" to "gubun_5").
    QRadioButton* gubun(int index) const { return m_gubun.at(size_t(index)); }
    QPushButton* vaBtn1() const { return m_save; }
    QPushButton* vaBtn2() const { return m_close; }

public Q_SLOTS:
    // vaBtn1: store the chosen places, say so, close.
    void saveAndClose();

private:
    void buildControls();
    void loadSettings();
    DecimalOptions checkedOptions() const;

    std::array<QRadioButton*, 6> m_gubun{};
    QPushButton* m_save = nullptr;
    QPushButton* m_close = nullptr;
};

} // namespace nb
