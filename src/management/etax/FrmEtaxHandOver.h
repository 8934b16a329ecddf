#pragma once
// "전자세금계산서 전송 기록": the files written for the tax service, newest first, with their state,
// and the invoices of the file the cursor stands on. The operator marks a file uploaded once the
// web site has issued it (then its invoices count as issued electronically), or withdraws it
// (a file not uploaded is removed from its folder, so it cannot be uploaded by mistake).

#include "management/etax/HandOverRecord.h"

#include <QDialog>

class QPushButton;
class QLabel;

namespace nb {

class Grid;

// Withdraws the file of the record: a file not uploaded is first removed from its folder (when
// it is still there and no later record took its name); nothing changes when it cannot be.
bool WithdrawHandOver(Database& dbTax, const HandOverFile& file, QString* why);

class FrmEtaxHandOver : public QDialog {
    Q_OBJECT
public:
    explicit FrmEtaxHandOver(QWidget* parent = nullptr);

    Grid* grdFiles;
    Grid* grdInvoices;
    QLabel* pnlFile;
    QPushButton *btnUploaded, *btnWithdraw, *btnExit;

    // The file of the row the cursor stands on; nothing on an empty list.
    std::optional<HandOverFile> currentFile() const;
    void refill();
    void showInvoices(int row);
    void markUploaded();
    void withdraw();

private:
    QList<HandOverFile> m_files;
};

} // namespace nb
