#pragma once
// The postcode search: finds rows of the postcode book and hands the postcode and the address
// prefix to two boxes of the calling screen. A single hit is delivered without a window. With
// the road-name book chosen (chkRoadBook, remembered in the settings) it searches that book
// and hands over the five-digit postcode and the road-name address.

#include "master/MasterListForm.h"
#include "master/RoadSearch.h"

class QCheckBox;

namespace nb {

// Both books stand in grdList, in the grid's list mode: the search runs once and its rows are
// read a page at a time as the list is scrolled to them.
class FrmPost : public MasterListForm {
    Q_OBJECT
public:
    explicit FrmPost(QWidget* parent = nullptr);
    ~FrmPost() override;

    QPushButton* btnFind() const { return m_find; }
    QCheckBox* chkRoadBook() const { return m_roadBook; }
    bool searchesRoadBook() const;
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
    void deliverRoad(int row);
    // Shows the book the box chooses, and searches it again with the text in the entry box.
    void useBook(bool road);
    int search(const QString& text);
    void searchPostBook(const QString& text);
    void searchRoadBook(const QString& text);
    QPushButton* m_find = nullptr;
    QCheckBox* m_roadBook = nullptr;
    QPointer<QLineEdit> m_addrTarget;
    // The two books, each opened by its first search and kept while the list reads its rows.
    Database m_postBook;
    RoadBookConnection m_roadBookFile;
    // The books' searches kept prepared (let go before the book closes).
    KeptStatements m_postSearches;
    KeptStatements m_roadSearches;
};

// The caller's side, the same in the supplier and trader screens: search with the trimmed
// postcode box, show the list over the caller for 0 or several rows, then put the caret at
// the end of the address (after a blank when it holds text), ready for the street number.
// Answers the search's result.
int RunPostcodeSearch(QWidget* caller, QLineEdit* zipBox, QLineEdit* addrBox);

} // namespace nb
