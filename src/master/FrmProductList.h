#pragma once
// The product search list: names that begin with the text first, then those that contain it;
// the chosen code goes to the calling screen. F3 changes a product, F4 deletes it, btnNew
// registers one.

#include "master/MasterListForm.h"

namespace nb {

class FrmProductList : public MasterListForm {
    Q_OBJECT
public:
    explicit FrmProductList(QWidget* parent = nullptr);

    QLineEdit* txtPCode() const { return m_code; }
    bool calledByAnotherForm() const { return m_called; }
    QString callerText() const { return m_callerText; }

    // Keeps the target unless one is held, and the caller's text unless it is empty.
    void SetObject(QLineEdit* target, const QString& text = QString());
    // kind: 0 purchase price, 1 and 3 sale price, others no price. 0 no match (or a match
    // inside one name only), 1 one product (its code written to the target), 2 several.
    void InitForm(int kind, const QString& text, int& result);

public Q_SLOTS:
    void editActiveRow() override;
    void deleteActiveRow() override;
    void newProduct();

protected:
    int keyColumn() const override { return 6; }
    void searchFromEntry() override;

private:
    void refill();
    QLineEdit* m_code = nullptr;
    QString m_callerText;
    bool m_called = false;
    int m_kind = 1;
    QString m_text;
};

} // namespace nb
