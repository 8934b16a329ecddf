#pragma once
// Every word the program says to the operator goes through here: message boxes with the
// button codes of the original, the timed notice, the floating message, the progress form and
// the failure report. In the program a MessageBackend shows Qt dialogs; tests install a
// ScriptedMessages that answers from a script and records what was asked.

#include <QString>
#include <QStringList>
#include <deque>
#include <memory>
#include <vector>

namespace nb {

// Button and icon codes of the original's MsgBox.
enum MsgButtons : int {
    MbOk = 0,
    MbOkCancel = 1,
    MbYesNoCancel = 3,
    MbYesNo = 4,
    MbQuestion = 32,
    MbExclamation = 48,
    MbInformation = 64,
    MbDefaultButton2 = 256,
    MbDefaultButton3 = 512,
};
// Answers.
enum MsgAnswer : int { AnsOk = 1, AnsCancel = 2, AnsYes = 6, AnsNo = 7 };

// Colours are the original's integers (blue * 65536 + green * 256 + red).
inline constexpr int kNoticeColor = 16761024;

// One thing said or asked, as recorded.
struct MessageRecord {
    QString kind; // "box", "notice", "float", "progress"
    QString title;
    QString text;
    int buttons = 0; // the MsgBox value for boxes; the milliseconds for notices
    int color = 0;
    bool modal = true;
};

class MessageBackend {
public:
    virtual ~MessageBackend() = default;
    // A modal box; returns the answer code.
    virtual int box(const QString& text, int buttons, const QString& title) = 0;
    // The timed, modal, coloured notice; returns when it has gone.
    virtual void notice(const QString& text, int millis, int color) = 0;
    // The floating coloured message; millis 0 means it stays until closed by the program.
    virtual void floatMsg(const QString& text, int millis, bool modal, int color) = 0;
    virtual void closeFloatMsg() {}
    // Progress form: show with caption and maximum, step, close.
    virtual void progressShow(const QString& caption, int maximum) = 0;
    virtual void progressSet(int value) = 0;
    virtual void progressClose() = 0;
    // The input box: a prompt, a title and a default text; the answer, or empty text when the
    // operator cancelled.
    virtual QString input(const QString& prompt, const QString& title, const QString& defaultText) = 0;
};

// The backend in force (the Qt one unless a test installed another).
MessageBackend& messages();
void setMessageBackend(std::unique_ptr<MessageBackend> backend);

// The application's title, put in place of an empty title.
QString applicationTitle();
void setApplicationTitle(const QString& title);

// The original's MsgBox: text, button value, title (empty title: the application's title).
int MsgBox(const QString& text, int buttons = MbOk, const QString& title = QString());
void ShowInfo(const QString& text, const QString& title = QString());
void ShowWarning(const QString& text, const QString& title = QString());
int AskYesNo(const QString& text, const QString& title = QString(), bool defaultYes = true);
int AskYesNoCancel(const QString& text, const QString& title = QString(), int extra = 0);
// Three lines: text, "오류번호 : " number, "오류내용 : " description; title "오류".
void ShowError(const QString& text, int errorNumber, const QString& description);
void ShowNotice(const QString& text, int millis = 500, int color = kNoticeColor);
void ShowFloatMsg(const QString& text, int millis, bool modal, int color);
// The original's InputBox: empty text when cancelled.
QString InputBox(const QString& prompt, const QString& title, const QString& defaultText = QString());

// The run-time failure "실행 시간 오류 '13'" (a setting or number text that is not a number),
// under the application's title.
void ShowTypeMismatch();

// "Error " + number + " (" + description + ") in procedure P of Module M", in a plain box.
QString failureReportText(int number, const QString& description, const QString& procedure,
                          const QString& module);
void ShowFailureReport(int number, const QString& description, const QString& procedure,
                       const QString& module, const QString& extraLine = QString());

// The same for a procedure of a screen: "... in procedure P of Form F".
void ShowFormFailureReport(int number, const QString& description, const QString& procedure,
                           const QString& form);

// The progress form of long jobs.
class Progress {
public:
    Progress(const QString& caption, int maximum);
    ~Progress();
    void step();
    int value() const { return m_value; }

private:
    int m_value = 0;
};

// Answers boxes from a script and records everything. With no scripted answer left, a box
// takes its default button and the call is counted in unscripted().
class ScriptedMessages : public MessageBackend {
public:
    int box(const QString& text, int buttons, const QString& title) override;
    void notice(const QString& text, int millis, int color) override;
    void floatMsg(const QString& text, int millis, bool modal, int color) override;
    void progressShow(const QString& caption, int maximum) override;
    void progressSet(int value) override;
    void progressClose() override;
    QString input(const QString& prompt, const QString& title, const QString& defaultText) override;

    void answer(int code) { m_answers.push_back(code); }
    // The next input box's answer; with none left an input box answers its default text.
    void answerInput(const QString& text) { m_inputs.push_back(text); }
    const std::vector<MessageRecord>& records() const { return m_records; }
    const MessageRecord& last() const;
    // Boxes only (no notices or progress).
    std::vector<MessageRecord> boxes() const;
    int unscripted() const { return m_unscripted; }
    QList<int> progressValues() const { return m_progressValues; }
    void clear();

private:
    std::deque<int> m_answers;
    std::deque<QString> m_inputs;
    std::vector<MessageRecord> m_records;
    QList<int> m_progressValues;
    int m_unscripted = 0;
};

// Installs a fresh ScriptedMessages and returns it (owned by the service).
ScriptedMessages& scriptMessages();

// The default answer of a box: the default button's code.
int defaultAnswer(int buttons);

} // namespace nb
