#pragma once
// The splash shown for two seconds at every start. It asks for nothing.

#include <QDialog>

class QTimer;

namespace nb {

class FrmLogin : public QDialog {
    Q_OBJECT
public:
    explicit FrmLogin(QWidget* parent = nullptr);
    QTimer* Timer1;
    static constexpr int kShowMillis = 2000;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void SetLoginBackground();
    QPixmap m_picture;
};

} // namespace nb
