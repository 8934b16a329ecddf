#include "links/modSMSLink.h"

#include "common/External.h"
#include "common/Messages.h"
#include "common/grid/Grid.h"
#include "common/text/Cp949.h"
#include "core/Settings.h"
#include "links/LinkPaths.h"

#include <QFile>
#include <QFileInfo>

namespace nb {
namespace {

const QString kModule = QStringLiteral("modSMSLink");
constexpr int kFileAccessError = 75; // "Path/File access error"

int firstTickedRow(Grid& grid, int colCheck) {
    for (int row = 1; row <= grid.MaxRows(); ++row)
        if (grid.Text(colCheck, row) == QStringLiteral("1")) return row;
    return 0;
}

} // namespace

QString GetSendProgramPath() {
    if (QFileInfo::exists(programFolder() + u'/' + kSendProgramFile)) return programFolder();
    const QString folder = GetSetting(QStringLiteral("하르문플라이노트"), QStringLiteral("환경설정"),
                                      QStringLiteral("AppPath"), QString());
    if (folder.isEmpty()) {
        ShowInfo(QStringLiteral("문자전송 실행파일을 찾을 수 없습니다."));
        return QString();
    }
    const QString file = withoutTrailingSeparator(folder) + u'/' + kSendProgramFile;
    if (!QFileInfo::exists(file)) {
        ShowInfo(
            QStringLiteral("문자전송 프로그램을 찾을 수 없습니다.\r\n파일명:") + file +
            QStringLiteral("\r\n하르문 홈페이지에서 문자전송 프로그램(플라이노트)을 다운받아 설치하세요."));
        return QString();
    }
    return withoutTrailingSeparator(folder);
}

QStringList telListLines(const QString& name, const QString& numbers) {
    QString cleanName = name;
    cleanName.remove(u';').remove(u':');
    QStringList lines;
    QString rest = numbers;
    while (!rest.isEmpty()) {
        const qsizetype comma = rest.indexOf(u',');
        QString number;
        if (comma > 0) { // a comma after the first character splits off one number
            number = rest.left(comma).trimmed();
            rest = rest.mid(comma + 1).trimmed();
        } else {
            number = rest;
            rest.clear();
        }
        lines << cleanName + u',' + number;
    }
    return lines;
}

bool CreateTelListFile(Grid& grid, const QString& filePath, int colCheck, int colName, int colTel) {
    if (QFile::exists(filePath)) QFile::remove(filePath);
    QFile file(filePath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        ShowFailureReport(kFileAccessError, file.errorString(), QStringLiteral("CreateTelListFile"), kModule);
        return false;
    }
    QByteArray bytes;
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        if (grid.Text(colCheck, row) != QStringLiteral("1")) continue;
        for (const QString& line : telListLines(grid.Text(colName, row), grid.Text(colTel, row)))
            bytes += ToCp949(line) + "\r\n";
    }
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        ShowFailureReport(kFileAccessError, file.errorString(), QStringLiteral("CreateTelListFile"), kModule);
        return false;
    }
    return true;
}

bool TransFromSpread(Grid& grid, int colCheck, int colName, int colTel) {
    const QString folder = GetSendProgramPath();
    if (folder.isEmpty()) return false;
    const int row = firstTickedRow(grid, colCheck);
    if (row == 0 && AskYesNo(QStringLiteral("전송할 자료를 선택하지 않았습니다.\r\n"
                                            "문자/팩스전송 프로그램을 실행할까요?"),
                             QStringLiteral("SMS")) != AnsYes)
        return false;
    QString listFile;
    if (row != 0) {
        listFile = folder + u'/' + kTelListFile;
        if (!CreateTelListFile(grid, listFile, colCheck, colName, colTel)) listFile.clear();
    }
    const QString program = folder + u'/' + kSendProgramFile;
    if (!launcher().startProgram(program, {listFile.isEmpty() ? QStringLiteral("0") : listFile}, folder)) {
        ShowFailureReport(53, QStringLiteral("File not found: ") + program, QStringLiteral("TransFromSpread"),
                          kModule);
        return false;
    }
    return true;
}

} // namespace nb
