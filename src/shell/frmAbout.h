#pragma once
// Program information: version, who made it, the home page, and the system information tool.

#include <QDialog>

class QLabel;
class QPushButton;

namespace nb {

class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent = nullptr);

    QPushButton* btnURL;
    QPushButton* cmdOK;
    QPushButton* cmdSysInfo;

    // The desktop's system information tool, or empty when it offers none.
    static QString systemInfoTool();

private:
    void startSysInfo();
};

} // namespace nb
