#include "shell/frmAbout.h"

#include "common/External.h"
#include "common/Messages.h"
#include "core/AppState.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace nb {

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(applicationTitle() + QStringLiteral(" 정보"));

    auto* name = new QLabel(QStringLiteral("거래명세표 & 세금계산서발행"), this);
    QFont nameFont = name->font();
    nameFont.setPointSize(13);
    nameFont.setBold(true);
    name->setFont(nameFont);
    auto* version = new QLabel(QStringLiteral("버전 : 공 개 용"), this);
    auto* notice = new QLabel(QStringLiteral("이 프로그램은 작은 사업장의 거래명세표, 세금계산서, 견적서 발행을 "
                                             "돕기 위해 만들어졌습니다.\n무단 복제와 변경 배포를 금합니다."),
                              this);
    notice->setWordWrap(true);
    auto* homeLabel = new QLabel(QStringLiteral("홈페이지 가기 :"), this);

    btnURL = new QPushButton(kMakerAddress, this);
    btnURL->setObjectName(QStringLiteral("btnURL"));
    btnURL->setToolTip(QStringLiteral("홈페이지로 이동합니다."));
    btnURL->setFlat(true);
    btnURL->setCursor(Qt::PointingHandCursor);
    cmdOK = new QPushButton(QStringLiteral("확인"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdSysInfo = new QPushButton(QStringLiteral("시스템 정보(&S)..."), this);
    cmdSysInfo->setObjectName(QStringLiteral("cmdSysInfo"));

    auto* home = new QHBoxLayout;
    home->addWidget(homeLabel);
    home->addWidget(btnURL);
    home->addStretch();
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdSysInfo);
    buttons->addStretch();
    auto* texts = new QVBoxLayout;
    texts->addWidget(name);
    texts->addWidget(version);
    texts->addSpacing(8);
    texts->addWidget(notice);
    texts->addLayout(home);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(texts, 1);
    layout->addLayout(buttons);
    setMinimumWidth(520);

    connect(cmdOK, &QPushButton::clicked, this, &QDialog::close);
    connect(btnURL, &QPushButton::clicked, this, [this] { launcher().openUrl(btnURL->text()); });
    connect(cmdSysInfo, &QPushButton::clicked, this, &frmAbout::startSysInfo);
}

QString frmAbout::systemInfoTool() {
    for (const char* tool : {"hardinfo", "kinfocenter", "gnome-system-monitor", "xfce4-taskmanager"}) {
        const QString path = QStandardPaths::findExecutable(QString::fromLatin1(tool));
        if (!path.isEmpty()) return path;
    }
    return QString();
}

void frmAbout::startSysInfo() {
    const QString tool = systemInfoTool();
    if (tool.isEmpty()) {
        MsgBox(QStringLiteral("지금은 시스템 정보를 사용할 수 없습니다."), MbOk);
        return;
    }
    launcher().startProgram(tool, {});
}

} // namespace nb
