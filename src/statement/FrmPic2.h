#pragma once
// The small sample of a filled statement: Image/sample_bill.jpg when the user put one there,
// otherwise the program's own drawn sample. A click on the picture opens the enlarged sample
// (frmZoomDealList); its button closes it.

#include "links/ZoomForms.h"

namespace nb {

class FrmPic2 : public ZoomForm {
    Q_OBJECT
public:
    explicit FrmPic2(QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace nb
