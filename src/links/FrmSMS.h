#pragma once
// "문자,음성,팩스 전송(SMS)": the operator picks traders, by name or by the time since their last
// statement, with the kinds of numbers wanted, ticks rows and hands them to the sending program.

#include <QStringList>
#include <QVector>
#include <QWidget>
#include <array>
#include <optional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace nb {

class DateBox;
class Grid;

inline constexpr int kTickedRowColor = 14745568;

class FrmSMS : public QWidget {
    Q_OBJECT
public:
    enum Column { ColCheck = 1, ColName = 2, ColTel = 3, ColNote = 4 };

    explicit FrmSMS(QWidget* parent = nullptr);

    std::array<QRadioButton*, 2> optFilter{};
    QLineEdit* txtName = nullptr;
    DateBox* txtDate = nullptr;
    QPushButton* btnDate = nullptr;
    QCheckBox* chkNoTrade = nullptr;
    std::array<QCheckBox*, 3> chkPhoneType{};
    QPushButton* btnSearch = nullptr;
    QCheckBox* ChkAll = nullptr;
    QLabel* lblCountRec = nullptr;
    QPushButton* btnTrans = nullptr;
    QPushButton* btnExit = nullptr;
    Grid* grdList = nullptr;

    // Ticks or unticks one row: the cell, the row's colour and the count.
    void setTicked(int row, bool ticked);
    void toggleTick(int row);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void buildControls();
    QWidget* buildFilterBox();
    QWidget* buildBottomRow();
    void setupGrid();
    void connectControls();
    void loadForm();
    void optFilterClick(int index);
    // What a search was run with, so that a re-read runs it again whatever the boxes say since.
    struct Search {
        bool byName = false;
        bool byDate = false;
        bool withNoDeal = false;
        QString name, date;
        std::array<bool, 3> phoneTypes{};
    };
    Search searchFromBoxes() const;
    void SearchTraders();
    bool runSearch(const Search& search);
    void refreshList();
    void showFound(const QVector<QStringList>& found, const Search& search);
    void tickAll(bool on);
    void tickBlock(int col, int row, int col2, int row2);
    void leaveDateBox();
    void closeScreen();

    std::optional<Search> m_lastSearch;
    int m_ticked = 0;
    bool m_firstActivation = true;
    bool m_centred = false;
};

} // namespace nb
