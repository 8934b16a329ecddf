#include "shell/FrmServer.h"

#include "common/Messages.h"
#include "core/ScreenRegistry.h"
#include "storage/ServerSettings.h"

#include <QApplication>
#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {
namespace {

const QString kTitle = QStringLiteral("데이터 서버 설정");

QLineEdit* makeBox(const QString& name, QWidget* parent) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    return box;
}

} // namespace

FrmServer::FrmServer(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmServer"));
    setWindowTitle(kTitle);
    setModal(false);
    setAttribute(Qt::WA_DeleteOnClose);
    buildControls();
    loadSettings();
}

void FrmServer::buildControls() {
    m_use = new QCheckBox(QStringLiteral("데이터 서버의 장부를 사용(&U)"), this);
    m_use->setObjectName(QStringLiteral("chkUse"));
    m_host = makeBox(QStringLiteral("txtHost"), this);
    m_host->setPlaceholderText(QStringLiteral("비우면 이 컴퓨터"));
    m_port = makeBox(QStringLiteral("txtPort"), this);
    m_port->setMaxLength(5);
    m_database = makeBox(QStringLiteral("txtDatabase"), this);
    m_user = makeBox(QStringLiteral("txtUser"), this);
    m_user->setPlaceholderText(QStringLiteral("비우면 로그인 사용자"));

    auto* form = new QFormLayout;
    const auto addRow = [&](const QString& caption, QLineEdit* box) {
        auto* label = new QLabel(caption, this);
        label->setBuddy(box);
        form->addRow(label, box);
    };
    addRow(QStringLiteral("주소(&H)"), m_host);
    addRow(QStringLiteral("포트(&P)"), m_port);
    addRow(QStringLiteral("데이터베이스(&D)"), m_database);
    addRow(QStringLiteral("사용자(&N)"), m_user);

    m_note = new QLabel(QStringLiteral("비밀번호는 이 설정에 두지 않습니다. 이 컴퓨터 사용자의 ~/.pgpass 파일"
                                       "(또는 환경변수 PGPASSFILE이 가리키는 파일)에서 읽습니다.\n"
                                       "바꾼 설정은 프로그램을 다시 시작할 때부터 적용됩니다."),
                        this);
    m_note->setObjectName(QStringLiteral("lblPassword"));
    m_note->setWordWrap(true);

    m_check = new QPushButton(QStringLiteral("연결 확인(&T)"), this);
    m_check->setObjectName(QStringLiteral("btnCheck"));
    m_save = new QPushButton(QStringLiteral("저장(&S)"), this);
    m_save->setObjectName(QStringLiteral("btnSave"));
    m_cancel = new QPushButton(QStringLiteral("취소(&C)"), this);
    m_cancel->setObjectName(QStringLiteral("btnCancel"));
    // Enter in a box does not save by itself: the operator saves on purpose.
    for (QPushButton* button : {m_check, m_save, m_cancel})
        button->setAutoDefault(false);
    connect(m_check, &QPushButton::clicked, this, &FrmServer::checkConnection);
    connect(m_save, &QPushButton::clicked, this, &FrmServer::saveAndClose);
    connect(m_cancel, &QPushButton::clicked, this, &FrmServer::reject);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_check);
    buttons->addStretch();
    buttons->addWidget(m_save);
    buttons->addWidget(m_cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_use);
    layout->addLayout(form);
    layout->addWidget(m_note);
    layout->addLayout(buttons);
    setMinimumWidth(420);
}

void FrmServer::loadSettings() {
    const ServerSettings server = readServerSettings();
    m_use->setChecked(server.use);
    m_host->setText(server.host);
    m_port->setText(QString::number(server.port));
    m_database->setText(server.database);
    m_user->setText(server.user);
}

ServerEntry FrmServer::entry() const {
    return {m_use->isChecked(), m_host->text(), m_port->text(), m_database->text(), m_user->text()};
}

void FrmServer::checkConnection() {
    QString why;
    const std::optional<ServerSettings> server = settingsOfEntry(entry(), true, &why);
    if (!server) return ShowWarning(why, kTitle);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const ServerCheck check = checkServer(*server);
    QApplication::restoreOverrideCursor();
    const QString text = serverCheckText(*server, check);
    if (check.connected())
        ShowInfo(text, kTitle);
    else
        ShowWarning(text, kTitle);
}

void FrmServer::saveAndClose() {
    QString why;
    const std::optional<ServerSettings> server = settingsOfEntry(entry(), false, &why);
    if (!server) return ShowWarning(why, kTitle);
    if (!writeServerSettings(*server))
        return ShowWarning(QStringLiteral("설정 파일(settings.ini)에 쓰지 못했습니다. 설정은 그대로입니다."),
                           kTitle);
    QString said = server->use ? QStringLiteral("저장했습니다. 다음에 프로그램을 시작할 때부터 데이터 서버 "
                                                "%1의 장부를 사용합니다.")
                                     .arg(server->database)
                               : QStringLiteral("저장했습니다. 다음에 프로그램을 시작할 때부터 이 컴퓨터의 "
                                                "자료 파일을 사용합니다.");
    if (!qEnvironmentVariableIsEmpty("NUBELLA_PG"))
        said += QStringLiteral("\r\n지금은 환경변수 NUBELLA_PG가 이 설정보다 앞섭니다.");
    ShowInfo(said, kTitle);
    accept();
}

void registerServerMenu() {
    registerMenuAction(QStringLiteral("mnu_server"), [](QWidget* mainWindow) {
        FrmServer* form = mainWindow->findChild<FrmServer*>(QString(), Qt::FindDirectChildrenOnly);
        if (!form) form = new FrmServer(mainWindow);
        form->show();
        form->raise();
        form->activateWindow();
    });
}

} // namespace nb
