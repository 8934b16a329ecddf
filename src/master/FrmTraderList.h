#pragma once
// The trader search list: finds traders by name, telephone or last address word, hands the
// chosen code to the calling screen, opens the entry form for a change (F3) or a new trader,
// and is the one place where a trader is deleted (F4), with its statements and invoices.

#include "master/MasterListForm.h"

namespace nb {

class FrmTraderList : public MasterListForm {
    Q_OBJECT
public:
    explicit FrmTraderList(QWidget* parent = nullptr);
    ~FrmTraderList() override;

    QLineEdit* txtCCode() const { return m_code; }

    void SetObject(QLineEdit* target) { holdTarget(target); }
    // 0 no row, 1 one row (its code written to the target), 2 several.
    void InitForm(const QString& name, int section, int& result);

public Q_SLOTS:
    // F3: the entry form in change mode for the active row, then the list again.
    void editActiveRow() override;
    // F4: asks, then deletes the trader of the active row with its business.
    void deleteActiveRow() override;
    // btnNew: the entry form for a new trader with the typed name.
    void newTrader();

protected:
    int keyColumn() const override { return 5; }
    void searchFromEntry() override;

private:
    void refill();
    QLineEdit* m_code = nullptr;
    QString m_name;
    int m_section = 0;
    // The searches kept prepared while the list lives.
    KeptStatements m_searches;
};

} // namespace nb
