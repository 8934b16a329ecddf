#include "shell/Nubella.h"

#include "common/Colors.h"
#include "common/External.h"
#include "common/Messages.h"
#include "common/ScreenActivation.h"
#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "core/ScreenRegistry.h"
#include "shell/ChildMnemonics.h"
#include "shell/DayBackupAside.h"
#include "shell/FrmLogin.h"
#include "shell/ModalReturn.h"
#include "shell/Startup.h"
#include "shell/frmAbout.h"

#include <QAction>
#include <QDate>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPixmap>
#include <QStatusBar>
#include <cstdlib>

namespace nb {
namespace {

constexpr int kMainBackground = 8420869; // RGB 05 7E 80

// Entries the main window answers itself; all others wait for a registered screen.
bool isOwnEntry(const QString& control) {
    static const QStringList own = {QStringLiteral("mnu_end"), QStringLiteral("mnuExit"),
                                    QStringLiteral("mnuProInfo"), QStringLiteral("mnuHome"),
                                    QStringLiteral("mnuConvert")};
    return own.contains(control);
}

} // namespace

Nubella::Nubella(QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("누벨라"));
    setWindowTitle(QStringLiteral("거래명세표 & 세금계산서발행"));
    m_mdi = new QMdiArea(this);
    m_mdi->setObjectName(QStringLiteral("mdiArea"));
    setCentralWidget(m_mdi);
    installChildMnemonics(m_mdi);
    installModalReturn(this);
    buildMenus();
    buildStatusPanels();
    refreshMenuState();
    setScreenOpener([this](const QString& control) {
        openEntry(control);
        return childScreen(control);
    });
    setScreenLoader([this](const QString& control, bool afresh) { return loadChild(control, afresh); });
    resize(1200, 780);
}

// Screens must not open through a main window that is gone.
Nubella::~Nubella() {
    setScreenOpener({});
    setScreenLoader({});
}

QAction* Nubella::addItem(QMenu* menu, const QString& control, const QString& caption) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(control);
    m_actions.insert(control, action);
    connect(action, &QAction::triggered, this, [this, control] { openEntry(control); });
    return action;
}

QAction* Nubella::addBarAction(const QString& control, const QString& caption) {
    QAction* action = menuBar()->addAction(caption);
    action->setObjectName(control);
    m_actions.insert(control, action);
    connect(action, &QAction::triggered, this, [this, control] { openEntry(control); });
    return action;
}

void Nubella::buildMenus() {
    QMenu* insert = menuBar()->addMenu(QStringLiteral("기초등록(&F)  "));
    insert->setObjectName(QStringLiteral("mnu_insert"));
    addItem(insert, QStringLiteral("mnu_user"), QStringLiteral("사용자등록(&S)"));
    addItem(insert, QStringLiteral("mnu_거래처등록"), QStringLiteral("거래처등록(&T)"));
    addItem(insert, QStringLiteral("mnu_상품등록"), QStringLiteral("상품   등록(&M)"));
    // The postcode book is not shipped with the program: the operator loads one here.
    addItem(insert, QStringLiteral("mnu_postImport"), QStringLiteral("우편번호 가져오기(&Z)..."));
    // A shop's books from the old Jet files, in one step.
    addItem(insert, QStringLiteral("mnu_jetImport"), QStringLiteral("옛 자료 가져오기(&I)..."));
    insert->addSeparator()->setObjectName(QStringLiteral("mnuslip1"));
    addItem(insert, QStringLiteral("mnu_sosu"), QStringLiteral("소수점설정(&U)"));
    addItem(insert, QStringLiteral("mnu_printer"), QStringLiteral("프린터설정(&P)"));
    addItem(insert, QStringLiteral("mnu_server"), QStringLiteral("데이터 서버 설정(&V)..."));
    addItem(insert, QStringLiteral("mnu_moveToServer"), QStringLiteral("데이터 서버로 옮기기(&O)..."));
    addItem(insert, QStringLiteral("mnu_backup"), QStringLiteral("백업(&B)..."));
    addItem(insert, QStringLiteral("mnu_restore"), QStringLiteral("복원(&R)..."));
    insert->addSeparator()->setObjectName(QStringLiteral("mnu_line1"));
    addItem(insert, QStringLiteral("mnu_end"), QStringLiteral("종료(&X)"));

    QMenu* output = menuBar()->addMenu(QStringLiteral("출력(&P)  "));
    output->setObjectName(QStringLiteral("mnu_출력"));
    addItem(output, QStringLiteral("mnu_거래명세표"), QStringLiteral("거래명세표(&M)"));
    addItem(output, QStringLiteral("mnu_InvoiceForm"), QStringLiteral("세금계산서(&F)"));
    addItem(output, QStringLiteral("mnu_InvoiceTotal"), QStringLiteral("세금계산서 합계표(&S)"));
    addItem(output, QStringLiteral("mnu_Estimate"), QStringLiteral("견   적   서(&E)"));

    addBarAction(QStringLiteral("mnu_SMS"), QStringLiteral("문자/팩스전송(T)  "));
    addBarAction(QStringLiteral("mnuSchedule"), QStringLiteral("스케줄 관리(C)  "));
    addBarAction(QStringLiteral("mnuProInfo"), QStringLiteral("프로그램정보(&I)  "));
    addBarAction(QStringLiteral("mnuHome"), QStringLiteral("홈페이지(&H)  "));
    addBarAction(QStringLiteral("mnuPaperOrder"), QStringLiteral("용지주문(&O)  "));
    addBarAction(QStringLiteral("mnuSignInfo"), QStringLiteral("도장인쇄안내(&S)  "));
    addBarAction(QStringLiteral("mnuConvert"), QStringLiteral("브란토전환  "));
    addBarAction(QStringLiteral("mnuExit"), QStringLiteral("종료(&X)"));
}

void Nubella::buildStatusPanels() {
    QFont panelFont(QStringLiteral("굴림"));
    panelFont.setPointSizeF(9.0);
    const char* const names[3] = {"pnlPanel0", "pnlPanel1", "pnlPanel2"};
    for (int i = 0; i < 3; ++i) {
        m_panels[i] = new QLabel(this);
        m_panels[i]->setObjectName(QString::fromLatin1(names[i]));
        m_panels[i]->setFont(panelFont);
        m_panels[i]->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        m_panels[i]->setMinimumWidth(160);
        m_panels[i]->setContentsMargins(6, 1, 6, 1);
    }
    m_panels[2]->setText(QStringLiteral("IT기술의 강자! 업무전산화의 모든것.   S/W개발.용지문의: 1500-0000"));
    m_panels[2]->setAlignment(Qt::AlignCenter);
    statusBar()->addWidget(m_panels[0]);          // left
    statusBar()->addWidget(m_panels[2], 1);       // middle
    statusBar()->addPermanentWidget(m_panels[1]); // right
}

void Nubella::refreshMenuState() {
    for (auto it = m_actions.cbegin(); it != m_actions.cend(); ++it)
        it.value()->setEnabled(isOwnEntry(it.key()) || screenFor(it.key()) != nullptr);
}

void Nubella::SetMainBackground() {
    const QString picture = userImage(QStringLiteral("mainbg.jpg"));
    QPixmap pixmap;
    if (!picture.isEmpty() && pixmap.load(picture))
        m_mdi->setBackground(QBrush(pixmap));
    else
        m_mdi->setBackground(colorFromBgr(kMainBackground));
}

bool Nubella::load(bool showSplash) {
    SetMainBackground();
    m_panels[0]->setText(datePanelText(today()));
    setWindowTitle(mainWindowTitle());
    if (!LoadDecimalSettings()) {
        ShowTypeMismatch();
        return false;
    }
    if (!showSplash) {
        StartProgram();
        noteStartStep(StartStep::Loaded);
        return true;
    }
    // The stores are checked, moved, opened and upgraded while the splash shows, once it is
    // drawn: the splash takes no keys, and the main window, where the operator first types,
    // comes after all of it. The day's first backup follows them beside the splash; the main
    // window waits for it only when it outlasts the splash.
    DayBackup dayBackup;
    PrepareStart(&dayBackup);
    DayBackupAside aside(std::move(dayBackup));
    bool storesOpened = false;
    const auto openStores = [&storesOpened] {
        if (storesOpened) return;
        storesOpened = true;
        OpenStoresAtStart();
    };
    {
        FrmLogin splash(this);
        connect(
            &splash, &FrmLogin::painted, &aside,
            [&aside, &openStores] {
                noteStartStep(StartStep::SplashPainted);
                openStores();
                aside.start();
            },
            Qt::QueuedConnection);
        splash.exec();
    }
    openStores(); // a splash closed before it was drawn
    noteStartStep(StartStep::SplashClosed);
    aside.finish();
    noteStartStep(StartStep::Loaded);
    return true;
}

void Nubella::endProgram() {
    std::_Exit(0);
}

QWidget* Nubella::childScreen(const QString& control) const {
    return m_children.value(control).data();
}

void Nubella::openEntry(const QString& control) {
    if (control == QStringLiteral("mnu_end") || control == QStringLiteral("mnuExit")) return endProgram();
    if (control == QStringLiteral("mnuProInfo")) return showAbout();
    if (control == QStringLiteral("mnuHome")) return askHomePage();
    if (control == QStringLiteral("mnuConvert")) return showConvertBox();
    const ScreenEntry* entry = screenFor(control);
    if (!entry) return;
    if (entry->createChild)
        showChild(control);
    else if (entry->run)
        entry->run(this);
}

QWidget* Nubella::loadChild(const QString& control, bool afresh) {
    const ScreenEntry* entry = screenFor(control);
    if (!entry || !entry->createChild) return nullptr;
    QWidget* screen = m_children.value(control);
    if (screen && afresh) {
        m_children.remove(control);
        delete screen->parentWidget(); // the frame, and the screen in it
        screen = nullptr;
    }
    if (!screen) {
        screen = entry->createChild();
        QMdiSubWindow* sub = m_mdi->addSubWindow(screen);
        // Child screens stay loaded and keep their state: closing one only hides it.
        sub->setAttribute(Qt::WA_DeleteOnClose, false);
        m_children.insert(control, screen);
    }
    return screen;
}

void Nubella::showChild(const QString& control) {
    QWidget* screen = loadChild(control, false);
    auto* frame = qobject_cast<QMdiSubWindow*>(screen->parentWidget());
    // Choosing the entry of the screen already in front is an activation too; otherwise the
    // work area's change of active window gives it.
    const bool alreadyInFront = m_mdi->activeSubWindow() == frame;
    frame->show();
    screen->show();
    m_mdi->setActiveSubWindow(frame);
    if (alreadyInFront) activateScreen(screen);
}

void Nubella::askHomePage() {
    if (AskYesNo(QStringLiteral("고객지원센터 홈페이지로 이동하시겠습니까?")) == AnsYes)
        launcher().openUrl(kMakerAddress);
}

void Nubella::showConvertBox() {
    ShowInfo(QStringLiteral("자동으로 미수, 재고가 관리되는 브란토 제품으로 전환시      \r\n\r\n"
                            "누벨라에 등록된 기초자료를 그대로 옮겨드립니다.\r\n\r\n"
                            "지금 홈페이지를 방문하시면 바로 시험판을 받아 사용해 볼 수 있습니다.\r\n\r\n") +
             kMakerAddress + QStringLiteral("\r\n\r\n문의: 1500-0000"));
}

void Nubella::showAbout() {
    if (!m_about) {
        auto* about = new frmAbout(this);
        about->setAttribute(Qt::WA_DeleteOnClose);
        m_about = about;
    }
    m_about->show();
    m_about->raise();
    m_about->activateWindow();
}

} // namespace nb
