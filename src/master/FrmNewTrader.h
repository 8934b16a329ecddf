#pragma once
// The trader entry form: a new trader (mode 0) or a change (mode 1), through a clsTrader.

#include "master/TraderRecords.h"

#include <QDialog>
#include <QPointer>
#include <array>
#include <memory>

class QLabel;
class QLineEdit;
class QPushButton;

namespace nb {

class HangulModeKeeper;

class FrmNewTrader : public QDialog {
    Q_OBJECT
public:
    explicit FrmNewTrader(QWidget* parent = nullptr);
    ~FrmNewTrader() override;

    QLineEdit* txtinput(int index) const { return m_fields.at(size_t(index)); }
    QLineEdit* txtCharge() const { return m_charge; }
    QLabel* pnlInfo() const { return m_info; }
    QLabel* pnlCaption() const { return m_caption; }
    QPushButton* btnSave() const { return m_save; }
    QPushButton* btnExit() const { return m_exit; }
    QPushButton* btnPost() const { return m_post; }
    int mode() const { return m_mode; }
    QString traderCode() const { return m_code; }
    QString monthText() const { return m_month; }

    // Keeps the box that receives the code after a save, unless one is held.
    void SetObject(QLineEdit* target);
    void InitForm(int mode, const QString& name, const QString& month, const QString& code);
    void Disp(const QString& code);

    // The hint shown while a field has the focus.
    QString hintFor(int index) const;

public Q_SLOTS:
    void save();
    void postcode();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void buildKeyFlow();
    void emptyForm();
    bool prepare();
    bool saveNew();
    bool saveChange();
    TraderForm formValues() const;
    void leaveField(int index);
    bool fieldKey(int index, int key);

    std::array<QLineEdit*, kTraderFieldCount> m_fields{};
    QLineEdit* m_charge = nullptr;
    QLabel* m_info = nullptr;
    QLabel* m_caption = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_exit = nullptr;
    QPushButton* m_post = nullptr;
    HangulModeKeeper* m_hangul = nullptr;
    std::unique_ptr<clsTrader> m_trader;
    QPointer<QLineEdit> m_target;
    int m_mode = 0;
    QString m_code;
    QString m_month;
};

} // namespace nb
