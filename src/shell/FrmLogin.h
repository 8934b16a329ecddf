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

Q_SIGNALS:
    // Once, when the splash has been drawn on the screen for the first time.
    void painted();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void SetLoginBackground();
    void paintSplash();
    QPixmap m_picture;
    bool m_painted = false;
};

} // namespace nb
