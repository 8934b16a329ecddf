#pragma once
// The product entry form: one product for entry and change, with F3 to search and F4 to
// delete what a search brought.

#include "master/ProductRecords.h"

#include <QDialog>
#include <QPointer>
#include <array>

class QLabel;
class QLineEdit;
class QPushButton;

namespace nb {

class FrmNewProduct : public QDialog {
    Q_OBJECT
public:
    explicit FrmNewProduct(QWidget* parent = nullptr);

    QLineEdit* txtinput(int index) const { return m_fields.at(size_t(index)); }
    QLineEdit* txtPCode() const { return m_code; }
    QLabel* SSPanel1() const { return m_hint; }
    QPushButton* btnSave() const { return m_save; }
    QPushButton* btnExit() const { return m_exit; }
    int mode() const { return m_mode; }
    bool searched() const { return m_searched; }

    // Keeps the box that receives the new product's name, unless one is held.
    void SetObject(QLineEdit* target);
    // mode 1 changes (caption "수정(&S)", no hint), any other saves; a code loads that
    // product, otherwise the cleaned name goes into an empty form.
    void InitForm(const QString& name, const QString& caller, int mode, const QString& code);
    void LoadProduct(const QString& code);
    QString hintFor(int index) const;

public Q_SLOTS:
    void save();
    // F3: the list with the name and kind 1; a returned code is loaded.
    void searchProduct();
    // F4: after a search, asks and deletes the product shown.
    void deleteSearched();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void emptyForm();
    ProductFields fields() const;
    QString takenBack(const QString& code) const;

    std::array<QLineEdit*, kProductFieldCount> m_fields{};
    QLineEdit* m_code = nullptr;
    QLabel* m_hint = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_exit = nullptr;
    QPointer<QLineEdit> m_target;
    QString m_modeHint;
    int m_mode = 0;
    bool m_searched = false;
};

} // namespace nb
