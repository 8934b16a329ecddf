#pragma once
// "데이터 서버 설정": where this seat keeps its books, its store files (the default) or a
// PostgreSQL database shared with other seats. The password is never kept here; the connector
// reads it from ~/.pgpass or the file PGPASSFILE names. "연결 확인" tries the settings as typed;
// saving changes the settings only, and the stores are opened by them at the next start.
// Not modal; it deletes itself when closed, so every opening reads the settings afresh.

#include "shell/ServerCheck.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace nb {

class FrmServer : public QDialog {
    Q_OBJECT
public:
    explicit FrmServer(QWidget* parent = nullptr);

    QCheckBox* chkUse() const { return m_use; }
    QLineEdit* txtHost() const { return m_host; }
    QLineEdit* txtPort() const { return m_port; }
    QLineEdit* txtDatabase() const { return m_database; }
    QLineEdit* txtUser() const { return m_user; }
    QPushButton* btnCheck() const { return m_check; }
    QPushButton* btnSave() const { return m_save; }
    QPushButton* btnCancel() const { return m_cancel; }

    ServerEntry entry() const;

public Q_SLOTS:
    // "연결 확인": connects with the settings as typed and says what it found.
    void checkConnection();
    // 저장: keeps the settings as typed when they hold, says when they take effect, closes.
    void saveAndClose();

private:
    void buildControls();
    void loadSettings();

    QCheckBox* m_use = nullptr;
    QLineEdit* m_host = nullptr;
    QLineEdit* m_port = nullptr;
    QLineEdit* m_database = nullptr;
    QLineEdit* m_user = nullptr;
    QLabel* m_note = nullptr;
    QPushButton* m_check = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_cancel = nullptr;
};

// Registers "mnu_server", the menu entry that opens the screen (one at a time).
void registerServerMenu();

} // namespace nb
