// The move onto the server from the command line (`nubella --move-to-server`) and from the
// 기초등록 menu. Both move to the database of the seat's "서버" settings, saved beforehand on the
// data server settings screen with "사용" off.
#include "common/Messages.h"
#include "core/CommandLine.h"
#include "core/ScreenRegistry.h"
#include "shell/MoveToServer.h"

#include <QApplication>
#include <QMdiArea>
#include <memory>

namespace nb {
namespace {

const QString kTitle = QStringLiteral("데이터 서버로 옮기기");
const QString kUsage =
    QStringLiteral("사용법: nubella --move-to-server   (데이터 서버 설정에 저장한 데이터베이스로)");

QString place(const ServerSettings& server) {
    return QStringLiteral("%1, 포트 %2, 데이터베이스 %3")
        .arg(server.host.isEmpty() ? QStringLiteral("이 컴퓨터") : server.host)
        .arg(server.port)
        .arg(server.database);
}

int moveCommand(const QStringList&) {
    const ServerSettings target = readServerSettings();
    MoveOptions options;
    options.storeBegun = [](const QString& store, int index, int count) {
        printLine(QStringLiteral("옮기는 중 (%1/%2): %3").arg(index + 1).arg(count).arg(store));
    };
    const MoveReport report = moveToServer(target, options);
    if (!report.ok) return sayLine(report.failure), 1;
    for (const QString& line : moveReportLines(report))
        printLine(line);
    printLine(QStringLiteral("데이터 서버로 옮겼습니다: %1. 다음 시작부터 서버의 장부를 씁니다.")
                  .arg(place(target)));
    return 0;
}

// The screens hold the files' rows; after the move they would show and save the old books.
bool screensOpen(QWidget* mainWindow) {
    const QMdiArea* area = mainWindow->findChild<QMdiArea*>();
    return area && !area->subWindowList().isEmpty();
}

} // namespace

void registerMoveToServer() {
    registerCommandJob({QStringLiteral("--move-to-server"), 0, {}, {}, kUsage, moveCommand});
    registerMenuAction(QStringLiteral("mnu_moveToServer"), RunMoveToServerMenu);
}

void RunMoveToServerMenu(QWidget* mainWindow) {
    if (screensOpen(mainWindow))
        return ShowInfo(QStringLiteral("열려 있는 화면을 모두 닫은 뒤 옮기십시오."), kTitle);
    const ServerSettings target = readServerSettings();
    if (target.database.isEmpty())
        return ShowInfo(
            QStringLiteral("먼저 기초등록 → 데이터 서버 설정에서 옮겨 갈 서버의 주소와 데이터베이스를 "
                           "저장하십시오."),
            kTitle);
    const QString question =
        QStringLiteral(
            "이 컴퓨터의 장부를 모두 데이터 서버(%1)로 옮깁니다.\r\n이 컴퓨터의 자료 파일은 그대로 "
            "남겨 둡니다. 옮긴 뒤에는 프로그램을 끝내므로 다시 시작하십시오. 그때부터 이 자리는 "
            "서버의 장부를 씁니다.\r\n다른 창에서 누벨라를 쓰고 있다면 먼저 닫으십시오.\r\n\r\n"
            "옮기시겠습니까?")
            .arg(place(target));
    if (AskYesNo(question, kTitle, false) != AnsYes) return;
    std::unique_ptr<Progress> progress;
    MoveOptions options;
    options.storeBegun = [&progress](const QString& store, int index, int count) {
        if (!progress)
            progress = std::make_unique<Progress>(QStringLiteral("데이터 서버로 옮기는 중"), count);
        if (index > 0) progress->step();
        Q_UNUSED(store);
    };
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const MoveReport report = moveToServer(target, options);
    progress.reset();
    QApplication::restoreOverrideCursor();
    if (!report.ok) return ShowWarning(report.failure, kTitle);
    ShowInfo(QStringLiteral("데이터 서버로 옮겼습니다.\r\n") +
                 moveReportLines(report).join(QStringLiteral("\r\n")) +
                 QStringLiteral("\r\n\r\n프로그램을 끝냅니다. 다시 시작하면 서버의 장부를 씁니다."),
             kTitle);
    QCoreApplication::quit();
}

} // namespace nb
