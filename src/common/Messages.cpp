#include "common/Messages.h"

#include "common/MessageDialogs.h"
#include "core/AppState.h"
#include "core/Settings.h"

#include <QFile>
#include <QTextStream>

namespace nb {
namespace {

std::unique_ptr<MessageBackend>& backendSlot() {
    static std::unique_ptr<MessageBackend> backend;
    return backend;
}

QString& titleSlot() {
    static QString title = QStringLiteral("누벨라");
    return title;
}

QString orAppTitle(const QString& title) {
    return title.isEmpty() ? applicationTitle() : title;
}

// The boxes shown, one line each ("kind<TAB>title<TAB>text", line breaks as "\\n"), appended to
// the file NUBELLA_SAID_LOG names before the box shows: tests that drive the real program in a
// real window read what it said there, as the operator reads the screen.
class SaidLog : public MessageBackend {
public:
    SaidLog(std::unique_ptr<MessageBackend> shown, QString path)
        : m_shown(std::move(shown)), m_path(std::move(path)) {}
    int box(const QString& text, int buttons, const QString& title) override {
        note(QStringLiteral("box"), title, text);
        return m_shown->box(text, buttons, title);
    }
    void notice(const QString& text, int millis, int color) override {
        note(QStringLiteral("notice"), QString(), text);
        m_shown->notice(text, millis, color);
    }
    void floatMsg(const QString& text, int millis, bool modal, int color) override {
        note(QStringLiteral("float"), QString(), text);
        m_shown->floatMsg(text, millis, modal, color);
    }
    void closeFloatMsg() override { m_shown->closeFloatMsg(); }
    void progressShow(const QString& caption, int maximum) override {
        m_shown->progressShow(caption, maximum);
    }
    void progressSet(int value) override { m_shown->progressSet(value); }
    void progressClose() override { m_shown->progressClose(); }
    QString input(const QString& prompt, const QString& title, const QString& defaultText) override {
        note(QStringLiteral("input"), title, prompt);
        return m_shown->input(prompt, title, defaultText);
    }

private:
    void note(const QString& kind, const QString& title, QString text) const {
        QFile file(m_path);
        if (!file.open(QIODevice::Append | QIODevice::Text)) return;
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\\n")).replace(u'\n', QStringLiteral("\\n"));
        QTextStream(&file) << kind << u'\t' << title << u'\t' << text << u'\n';
    }
    std::unique_ptr<MessageBackend> m_shown;
    QString m_path;
};

// The settings store sits below the message service and shows no box itself: its trouble (a
// failed save, a read-only folder) is told here, as every other trouble is, from the moment
// the service is part of the program.
[[maybe_unused]] const bool settingsTroubleIsShown = [] {
    setSettingsTroubleReporter([](const QString& text) { ShowWarning(text); });
    return true;
}();

} // namespace

MessageBackend& messages() {
    auto& b = backendSlot();
    if (!b) {
        const QString logPath = qEnvironmentVariable("NUBELLA_SAID_LOG");
        if (logPath.isEmpty())
            b = std::make_unique<DialogMessages>();
        else
            b = std::make_unique<SaidLog>(std::make_unique<DialogMessages>(), logPath);
    }
    return *b;
}

void setMessageBackend(std::unique_ptr<MessageBackend> backend) {
    backendSlot() = std::move(backend);
}

QString applicationTitle() {
    return titleSlot();
}
void setApplicationTitle(const QString& title) {
    titleSlot() = title;
}

int MsgBox(const QString& text, int buttons, const QString& title) {
    return messages().box(text, buttons, orAppTitle(title));
}

void ShowTypeMismatch() {
    MsgBox(QStringLiteral("실행 시간 오류 '13':\r\n\r\n형식이 일치하지 않습니다."), MbExclamation, kAppTitle);
}

void ShowInfo(const QString& text, const QString& title) {
    MsgBox(text, MbInformation, title);
}

void ShowWarning(const QString& text, const QString& title) {
    MsgBox(text, MbExclamation, title);
}

int AskYesNo(const QString& text, const QString& title, bool defaultYes) {
    return MsgBox(text, defaultYes ? 36 : 292, title);
}

int AskYesNoCancel(const QString& text, const QString& title, int extra) {
    return MsgBox(text, 35 + extra, title);
}

void ShowError(const QString& text, int errorNumber, const QString& description) {
    messages().box(text + QStringLiteral("\r\n오류번호 : ") + QString::number(errorNumber) +
                       QStringLiteral("\r\n오류내용 : ") + description,
                   MbExclamation, QStringLiteral("오류"));
}

void ShowNotice(const QString& text, int millis, int color) {
    messages().notice(text, millis, color);
}

void ShowFloatMsg(const QString& text, int millis, bool modal, int color) {
    messages().floatMsg(text, millis, modal, color);
}

QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) {
    return messages().input(prompt, title.isEmpty() ? applicationTitle() : title, defaultText);
}

QString failureReportText(int number, const QString& description, const QString& procedure,
                          const QString& module) {
    return QStringLiteral("Error ") + QString::number(number) + QStringLiteral(" (") + description +
           QStringLiteral(") in procedure ") + procedure + QStringLiteral(" of Module ") + module;
}

void ShowFailureReport(int number, const QString& description, const QString& procedure,
                       const QString& module, const QString& extraLine) {
    QString text = failureReportText(number, description, procedure, module);
    if (!extraLine.isEmpty()) text += QStringLiteral("\r\n") + extraLine;
    MsgBox(text, MbOk, QString());
}

void ShowFormFailureReport(int number, const QString& description, const QString& procedure,
                           const QString& form) {
    MsgBox(QStringLiteral("Error ") + QString::number(number) + QStringLiteral(" (") + description +
               QStringLiteral(") in procedure ") + procedure + QStringLiteral(" of Form ") + form,
           MbOk, QString());
}

Progress::Progress(const QString& caption, int maximum) {
    messages().progressShow(caption, maximum);
}
Progress::~Progress() {
    messages().progressClose();
}
void Progress::step() {
    messages().progressSet(++m_value);
}

int defaultAnswer(int buttons) {
    const int kind = buttons & 7;
    const int def = (buttons & 768) >> 8; // 0: first button, 1: second, 2: third
    switch (kind) {
    case MbYesNoCancel:
        return def == 0 ? AnsYes : def == 1 ? AnsNo : AnsCancel;
    case MbYesNo:
        return def == 0 ? AnsYes : AnsNo;
    case 1:
        return def == 0 ? AnsOk : AnsCancel; // OK / Cancel
    default:
        return AnsOk;
    }
}

int ScriptedMessages::box(const QString& text, int buttons, const QString& title) {
    m_records.push_back({QStringLiteral("box"), title, text, buttons, 0, true});
    if (m_answers.empty()) {
        ++m_unscripted;
        return defaultAnswer(buttons);
    }
    const int a = m_answers.front();
    m_answers.pop_front();
    return a;
}

void ScriptedMessages::notice(const QString& text, int millis, int color) {
    m_records.push_back({QStringLiteral("notice"), QString(), text, millis, color, true});
}

void ScriptedMessages::floatMsg(const QString& text, int millis, bool modal, int color) {
    m_records.push_back({QStringLiteral("float"), QString(), text, millis, color, modal});
}

void ScriptedMessages::progressShow(const QString& caption, int maximum) {
    m_records.push_back({QStringLiteral("progress"), QString(), caption, maximum, 0, false});
    m_progressValues.clear();
}

void ScriptedMessages::progressSet(int value) {
    m_progressValues << value;
}
void ScriptedMessages::progressClose() {}

const MessageRecord& ScriptedMessages::last() const {
    static const MessageRecord none;
    return m_records.empty() ? none : m_records.back();
}

QString ScriptedMessages::input(const QString& prompt, const QString& title, const QString& defaultText) {
    m_records.push_back({QStringLiteral("input"), title, prompt, 0, 0, true});
    if (m_inputs.empty()) {
        ++m_unscripted;
        return defaultText;
    }
    const QString text = m_inputs.front();
    m_inputs.pop_front();
    return text;
}

std::vector<MessageRecord> ScriptedMessages::boxes() const {
    std::vector<MessageRecord> out;
    for (const auto& r : m_records)
        if (r.kind == QStringLiteral("box")) out.push_back(r);
    return out;
}

void ScriptedMessages::clear() {
    m_answers.clear();
    m_inputs.clear();
    m_records.clear();
    m_progressValues.clear();
    m_unscripted = 0;
}

ScriptedMessages& scriptMessages() {
    auto scripted = std::make_unique<ScriptedMessages>();
    ScriptedMessages& ref = *scripted;
    setMessageBackend(std::move(scripted));
    return ref;
}

} // namespace nb
