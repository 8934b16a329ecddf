#pragma once
// The postcode search: finds rows of the postcode book and hands the postcode and the address
// prefix to two boxes of the calling screen. A single hit is delivered without a window.

#include "master/MasterListForm.h"

namespace nb {

class FrmPost : public MasterListForm {
    Q_OBJECT
public:
    explicit FrmPost(QWidget* parent = nullptr);

    QPushButton* btnFind() const { return m_find; }
    // Keeps each target unless one is held.
    void SetObject(QLineEdit* zipTarget, QLineEdit* addrTarget);
    // 0 no row, 1 one row (already delivered), 2 several.
    void InitForm(const QString& text, int& result);

public Q_SLOTS:
    void chooseActiveRow() override;
    // btnFind: searches again with the trimmed text; an empty text leaves the list.
    void findAgain();

protected:
    int keyColumn() const override { return 1; }
    void searchFromEntry() override { findAgain(); }

private:
    void deliver(const QString& zip, const QStringList& row);
    QPushButton* m_find = nullptr;
    QPointer<QLineEdit> m_addrTarget;
};

// The caller's side, the same in the supplier and trader screens: search with the trimmed
// postcode box, show the list over the caller for 0 or several rows, then put the caret at
// the end of the address (after a blank when it holds text), ready for the street number.
// Answers the search's result.
int RunPostcodeSearch(QWidget* caller, QLineEdit* zipBox, QLineEdit* addrBox);

} // namespace nb
