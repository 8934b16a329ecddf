#pragma once
// The supplier entry screen: one supplier of the table User at a time, with the default
// supplier check, new, delete, previous/next, find and the postcode search.

#include "master/SupplierRecords.h"

#include <QDialog>
#include <array>

class QCheckBox;
class QLineEdit;
class QPushButton;

namespace nb {

class HangulModeKeeper;

class FrmUser : public QDialog {
    Q_OBJECT
public:
    // Loads the default supplier (or the first one) as the form opens.
    explicit FrmUser(QWidget* parent = nullptr);

    QLineEdit* txtinput(int index) const { return m_fields.at(size_t(index)); }
    QCheckBox* ChkDefault() const { return m_default; }
    QPushButton* CmdMove(int index) const { return index == 0 ? m_previous : m_next; }
    QPushButton* cmdNew() const { return m_new; }
    QPushButton* cmdDelete() const { return m_delete; }
    QPushButton* cmdFind() const { return m_find; }
    QPushButton* btnSave() const { return m_save; }
    QPushButton* btnQuit() const { return m_quit; }
    QPushButton* btnPost() const { return m_post; }
    const SupplierFormState& state() const { return m_state; }
    bool hangulMode() const;

    void DisplayUser(const QString& serial);

public Q_SLOTS:
    void save();
    void newSupplier();
    void deleteSupplier();
    void movePrevious() { moveTo(false); }
    void moveNext() { moveTo(true); }
    void find();
    // btnQuit and Esc: closes when a supplier is at hand, otherwise asks first.
    void closeForm();
    void postcode();
    void reject() override { closeForm(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void buildKeyFlow();
    void emptyForm();
    void moveTo(bool next);
    void defaultClicked(bool checked);
    SupplierFields fields() const;
    bool fieldKey(int index, int key);
    void shapeOnLeave(int index);

    std::array<QLineEdit*, kSupplierFieldCount> m_fields{};
    QCheckBox* m_default = nullptr;
    QPushButton* m_previous = nullptr;
    QPushButton* m_next = nullptr;
    QPushButton* m_new = nullptr;
    QPushButton* m_delete = nullptr;
    QPushButton* m_find = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_quit = nullptr;
    QPushButton* m_post = nullptr;
    HangulModeKeeper* m_hangul = nullptr;
    SupplierFormState m_state;
};

} // namespace nb
