#pragma once
// The search list of suppliers: a company name (or, from a digit, a telephone number) finds
// rows of User; the chosen Serial goes to the caller's box.

#include "master/MasterListForm.h"
#include "master/SearchIndex.h"

namespace nb {

// The list's query for a typed text ("'", "\" and "]" already removed). The first character's
// code picks the search: digits search the telephone anywhere, "A", "Z", "a", "z" and signs
// the company anywhere, Hangul and "B" to "y" the company by its start.
SqlPart UserListQuery(const QString& text);

class FrmUserList : public MasterListForm {
    Q_OBJECT
public:
    explicit FrmUserList(QWidget* parent = nullptr);

    void SetObject(QLineEdit* target) { holdTarget(target); }
    // Fills the list: 0 no row, 1 one row (its Serial written to the target), 2 more.
    void InitForm(const QString& text, int& result);

protected:
    int keyColumn() const override { return 5; }
    void searchFromEntry() override;
};

} // namespace nb
