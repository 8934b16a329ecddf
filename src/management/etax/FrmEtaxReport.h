#pragma once
// The result of an electronic invoice export: how many invoices went into how many files, where,
// and the invoices left out with their reasons, in a list the operator can print or export.

#include "management/etax/EtaxWorkbook.h"

#include <QDialog>
#include <functional>

class QLabel;
class QPushButton;

namespace nb {

class Grid;

// The summary line: "12건을 파일 1개에 작성했습니다." and what was left out or assumed.
QString etaxSummaryText(const EtaxExport& result);

class FrmEtaxReport : public QDialog {
    Q_OBJECT
public:
    FrmEtaxReport(const EtaxExport& result, QString folder, QWidget* parent = nullptr);

    Grid* list() const { return m_list; }
    QLabel* summary() const { return m_summary; }
    QPushButton* printButton() const { return m_print; }
    QPushButton* exportButton() const { return m_export; }
    // What the print and export buttons do with the list (set by the screen that owns them).
    void onPrint(std::function<void(Grid*)> print) { m_printList = std::move(print); }
    void onExport(std::function<void(Grid*)> exportList) { m_exportList = std::move(exportList); }

private:
    void fillList(const QList<EtaxLeftOut>& leftOut);

    Grid* m_list = nullptr;
    QLabel* m_summary = nullptr;
    QPushButton* m_print = nullptr;
    QPushButton* m_export = nullptr;
    std::function<void(Grid*)> m_printList;
    std::function<void(Grid*)> m_exportList;
};

} // namespace nb
