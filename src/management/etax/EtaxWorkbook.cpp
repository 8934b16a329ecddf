#include "management/etax/EtaxWorkbook.h"

#include "common/text/BusinessNumber.h"
#include "core/Clock.h"
#include "core/CommandLine.h"
#include "core/WholeFile.h"
#include "management/SpreadsheetFile.h"
#include "management/etax/HandOverRecord.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <cmath>
#include <xlsxwriter.h>

namespace nb {
namespace {

QString digitsOf(QString text) {
    text.remove(u'-');
    return text.trimmed();
}

QString compactDate(const QString& date) {
    return digitsOf(date);
}

QVariant optionalCell(const std::optional<double>& value) {
    return value ? QVariant(*value) : QVariant();
}

QString dayOf(const EtaxInvoice& invoice, const EtaxItem& item) {
    return item.tradeDate.isEmpty() ? invoice.dealDate.mid(8, 2) : item.tradeDate.right(2);
}

// The number as its digits only: hyphens and blanks ("124 81 00998") are not part of it.
void appendParty(QVariantList& row, const EtaxParty& party, int emails) {
    row << businessNumberDigits(party.serial) << QString() << party.company.trimmed()
        << party.representative.trimmed() << party.address.trimmed() << party.status.trimmed()
        << party.item.trimmed() << party.email;
    for (int i = 1; i < emails; ++i)
        row << QString();
}

// Eight cells an item: 일자, 품목, 규격, 수량, 단가, 공급가액, 세액, 품목비고.
void appendItem(QVariantList& row, const EtaxInvoice& invoice, const EtaxItem* item) {
    if (!item) {
        for (int i = 0; i < 8; ++i)
            row << QVariant();
        return;
    }
    row << dayOf(invoice, *item) << item->name.trimmed() << item->norm.trimmed()
        << optionalCell(item->quantity) << optionalCell(item->unitPrice) << QVariant(item->supply)
        << QVariant(item->tax) << QString();
}

void writeCell(lxw_worksheet* sheet, int row, int column, const QVariant& value, lxw_format* numberFormat) {
    if (!value.isValid()) return;
    if (value.typeId() == QMetaType::Double) {
        // Whole amounts show their thousands commas; a fraction (a quantity of 1.5) shows as it is.
        const double number = value.toDouble();
        worksheet_write_number(sheet, lxw_row_t(row), lxw_col_t(column), number,
                               number == std::floor(number) ? numberFormat : nullptr);
    } else if (!value.toString().isEmpty())
        worksheet_write_string(sheet, lxw_row_t(row), lxw_col_t(column),
                               value.toString().toUtf8().constData(), nullptr);
}

QRegularExpression numberedName(const QString& from, const QString& to) {
    return QRegularExpression(
        QStringLiteral("^") +
        QRegularExpression::escape(
            QStringLiteral("전자세금계산서_%1-%2_").arg(compactDate(from), compactDate(to))) +
        QStringLiteral("([1-9][0-9]{0,5})\\.xlsx$"));
}

QList<HandOverEntry> entriesOf(const QList<EtaxInvoice>& invoices) {
    QList<HandOverEntry> entries;
    for (const EtaxInvoice& i : invoices)
        entries << HandOverEntry{i.taxCode,          i.dealDate,      i.traderCode,
                                 i.receiver.company, i.supplyTotal(), i.taxTotal()};
    return entries;
}

// Takes away what an earlier, longer run of the same name left above the files just written.
void removeStaleFiles(EtaxExport& result, const QString& folder, const QString& from, const QString& to,
                      int kept, Database* record) {
    for (const QString& path : staleEtaxFiles(folder, from, to, kept)) {
        QFile file(path);
        if (!file.remove()) {
            result.failures << QStringLiteral("지난번에 만든 파일을 지우지 못했습니다: %1 (%2)")
                                   .arg(QDir::toNativeSeparators(path), file.errorString());
            continue;
        }
        result.removed << path;
        QString why;
        if (record && !RetireHandOverPath(*record, path, QStringLiteral("다시 작성할 때 지움"), &why))
            result.failures << why;
    }
}

QStringList guidanceFor(const QString& from, const QString& to, int file, int files) {
    return {QStringLiteral("전자세금계산서 일괄발급 엑셀 업로드 양식"),
            QStringLiteral("6행의 항목과 열의 배치를 바꾸지 마십시오. 7행부터 한 행이 계산서 한 장입니다."),
            QStringLiteral("한 파일에 100건까지, 계산서 한 장에 품목 4개까지 들어갑니다."),
            QStringLiteral("기간 %1 ~ %2, 파일 %3/%4").arg(from, to).arg(file).arg(files),
            QStringLiteral("작성 ") + now().toString(QStringLiteral("yyyy-MM-dd hh:mm"))};
}

} // namespace

QStringList etaxHeadings() {
    QStringList headings = {QStringLiteral("전자(세금)계산서 종류"),
                            QStringLiteral("작성일자"),
                            QStringLiteral("공급자 등록번호"),
                            QStringLiteral("공급자 종사업장번호"),
                            QStringLiteral("공급자 상호"),
                            QStringLiteral("공급자 성명"),
                            QStringLiteral("공급자 사업장주소"),
                            QStringLiteral("공급자 업태"),
                            QStringLiteral("공급자 종목"),
                            QStringLiteral("공급자 이메일"),
                            QStringLiteral("공급받는자 등록번호"),
                            QStringLiteral("공급받는자 종사업장번호"),
                            QStringLiteral("공급받는자 상호"),
                            QStringLiteral("공급받는자 성명"),
                            QStringLiteral("공급받는자 사업장주소"),
                            QStringLiteral("공급받는자 업태"),
                            QStringLiteral("공급받는자 종목"),
                            QStringLiteral("공급받는자 이메일1"),
                            QStringLiteral("공급받는자 이메일2"),
                            QStringLiteral("공급가액 합계"),
                            QStringLiteral("세액 합계"),
                            QStringLiteral("비고")};
    for (int n = 1; n <= kEtaxItemsPerInvoice; ++n)
        for (const char* part : {"일자", "품목", "규격", "수량", "단가", "공급가액", "세액", "품목비고"})
            headings << QString::fromUtf8(part) + QString::number(n);
    headings << QStringLiteral("현금") << QStringLiteral("수표") << QStringLiteral("어음")
             << QStringLiteral("외상미수금") << QStringLiteral("영수(01), 청구(02)");
    return headings;
}

QVariantList etaxRow(const EtaxInvoice& invoice, EtaxReceipt assumed) {
    QVariantList row;
    row << QStringLiteral("01") << compactDate(invoice.dealDate);
    appendParty(row, invoice.supplier, 1);
    appendParty(row, invoice.receiver, 2);
    row << QVariant(invoice.supplyTotal()) << QVariant(invoice.taxTotal()) << invoice.remark;
    for (int i = 0; i < kEtaxItemsPerInvoice; ++i)
        appendItem(row, invoice, i < invoice.items.size() ? &invoice.items.at(i) : nullptr);
    row << QVariant() << QVariant() << QVariant() << QVariant() << receiptCode(invoice.receipt, assumed);
    return row;
}

// The workbook is written beside its target and takes its name only when whole.
bool writeEtaxWorkbook(const QString& path, const QList<EtaxInvoice>& invoices, EtaxReceipt assumed,
                       const QStringList& guidance, QString* error,
                       const std::function<bool(QString* why)>& beforeNaming) {
    auto fail = [error](const QString& why) {
        if (error) *error = why;
        return false;
    };
    if (const QString refused = ownFileRefusal(path); !refused.isEmpty()) return fail(refused);
    WholeOutput output(path);
    WriteFailure why;
    if (!output.begin(&why))
        return fail(QStringLiteral("파일을 쓸 수 없습니다: %1 - %2").arg(path, why.sentence()));
    lxw_workbook* book = workbook_new(QDir::toNativeSeparators(output.tempPath()).toLocal8Bit().constData());
    if (!book) return fail(QStringLiteral("파일을 만들 수 없습니다: ") + path);
    lxw_worksheet* sheet = workbook_add_worksheet(book, kEtaxSheetName.toUtf8().constData());
    lxw_format* numberFormat = workbook_add_format(book);
    format_set_num_format(numberFormat, "#,##0");
    for (int i = 0; i < guidance.size() && i < kEtaxHeadingRow - 1; ++i)
        writeCell(sheet, i, 0, guidance.at(i), numberFormat);
    const QStringList headings = etaxHeadings();
    for (int c = 0; c < headings.size(); ++c)
        writeCell(sheet, kEtaxHeadingRow - 1, c, headings.at(c), numberFormat);
    for (int r = 0; r < invoices.size(); ++r) {
        const QVariantList row = etaxRow(invoices.at(r), assumed);
        for (int c = 0; c < row.size(); ++c)
            writeCell(sheet, kEtaxHeadingRow + r, c, row.at(c), numberFormat);
    }
    const lxw_error result = workbook_close(book);
    if (result != LXW_NO_ERROR)
        return fail(QStringLiteral("파일을 쓸 수 없습니다: ") + path + QStringLiteral(" (") +
                    QString::fromUtf8(lxw_strerror(result)) + QStringLiteral(")"));
    QString refused;
    const auto wholeAndKept = [&](const QString& written) {
        return isWholeXlsx(written) && (!beforeNaming || beforeNaming(&refused));
    };
    if (!output.commit(wholeAndKept, &why))
        return fail(refused.isEmpty()
                        ? QStringLiteral("파일을 쓸 수 없습니다: %1 - %2").arg(path, why.sentence())
                        : QStringLiteral("파일을 쓰지 않았습니다: %1 - %2").arg(path, refused));
    return true;
}

QString etaxFileName(const QString& from, const QString& to, int number) {
    return QStringLiteral("전자세금계산서_%1-%2_%3.xlsx").arg(compactDate(from), compactDate(to)).arg(number);
}

QStringList staleEtaxFiles(const QString& folder, const QString& from, const QString& to, int kept) {
    const QRegularExpression pattern = numberedName(from, to);
    QStringList stale;
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        const QRegularExpressionMatch match = pattern.match(name);
        if (match.hasMatch() && match.captured(1).toInt() > kept) stale << QDir(folder).filePath(name);
    }
    return stale;
}

bool isEtaxFileOf(const QString& path, const QString& folder, const QString& from, const QString& to) {
    const QFileInfo file(path);
    return QDir::cleanPath(file.absolutePath()) == QDir::cleanPath(QFileInfo(folder).absoluteFilePath()) &&
           numberedName(from, to).match(file.fileName()).hasMatch();
}

int EtaxExport::invoicesWritten() const {
    int sum = 0;
    for (int n : invoicesPerFile)
        sum += n;
    return sum;
}

EtaxExport exportEtax(const QList<EtaxInvoice>& invoices, const QString& folder, const QString& from,
                      const QString& to, EtaxReceipt assumed) {
    EtaxExportPlan plan;
    plan.assumed = assumed;
    return exportEtax(invoices, folder, from, to, plan);
}

EtaxExport exportEtax(const QList<EtaxInvoice>& invoices, const QString& folder, const QString& from,
                      const QString& to, const EtaxExportPlan& plan) {
    EtaxExport result;
    QList<EtaxInvoice> going;
    for (const EtaxInvoice& invoice : invoices) {
        QStringList problems = etaxProblems(invoice);
        if (problems.isEmpty() && plan.leaveOut.contains(invoice.taxCode))
            problems << plan.leaveOut.value(invoice.taxCode);
        if (problems.isEmpty())
            going << invoice;
        else
            result.leftOut << EtaxLeftOut{invoice.taxCode, invoice.dealDate, invoice.receiver.company,
                                          problems};
    }
    const int files = int((going.size() + kEtaxInvoicesPerFile - 1) / kEtaxInvoicesPerFile);
    for (int f = 0; f < files; ++f) {
        const QList<EtaxInvoice> part = going.mid(f * kEtaxInvoicesPerFile, kEtaxInvoicesPerFile);
        const QString path = QDir(folder).filePath(etaxFileName(from, to, f + 1));
        // The record is kept before the file takes its name: a file on disk is always on record.
        std::optional<int> recorded;
        const auto keep = [&](QString* why) {
            if (!plan.record) return true;
            recorded = RecordHandOverFile(*plan.record, path, from, to, entriesOf(part), why);
            return recorded.has_value();
        };
        QString error;
        if (!writeEtaxWorkbook(path, part, plan.assumed, guidanceFor(from, to, f + 1, files), &error, keep)) {
            result.failures << error;
            QString kept;
            if (recorded && !ForgetHandOverFile(*plan.record, *recorded, &kept)) result.failures << kept;
            continue;
        }
        // The older record of this name is of a file that is no more.
        if (recorded && !RetireHandOverPath(*plan.record, path, kReplacedNote, &error, *recorded))
            result.failures << error;
        result.files << path;
        result.invoicesPerFile << int(part.size());
        for (const EtaxInvoice& invoice : part)
            if (invoice.receipt == EtaxReceipt::Unknown) ++result.assumedReceipts;
    }
    removeStaleFiles(result, folder, from, to, files, plan.record);
    return result;
}

} // namespace nb
