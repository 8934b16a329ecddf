#include "printing/PrinterSetup.h"

#include "common/Messages.h"
#include "core/AppFolder.h"
#include "core/Lifecycle.h"
#include "core/Settings.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QPrinterInfo>
#include <optional>

namespace nb {
namespace {

struct SystemPrinters {
    QStringList names;
    QString defaultName;
};

struct PrinterState {
    std::optional<SystemPrinters> forTesting;
    QString current; // empty: not chosen yet, the default is current
    int savedIndex = 0;
    PrintCapture* capture = nullptr;
};

PrinterState& state() {
    static PrinterState s;
    static const bool hooked = [] {
        registerResetHook([] {
            PrintCapture* capture = s.capture;
            s = PrinterState{};
            s.capture = capture; // a capture ends with its own scope
        });
        return true;
    }();
    Q_UNUSED(hooked);
    return s;
}

SystemPrinters systemPrinters() {
    if (state().forTesting) return *state().forTesting;
    return SystemPrinters{QPrinterInfo::availablePrinterNames(), QPrinterInfo::defaultPrinterName()};
}

const QStringList& documentNames() {
    static const QStringList names{QStringLiteral("세금계산서"),       QStringLiteral("거래명세표"),
                                   QStringLiteral("DM인쇄"),           QStringLiteral("물품가격"),
                                   QStringLiteral("청구서"),           QStringLiteral("견적서"),
                                   QStringLiteral("세금계산서 합계표")};
    return names;
}

// Saving the printer is known only for the invoice, the statement, the quotation and the 합계표.
bool hasPrinterSetting(int documentIndex) {
    return documentIndex == 0 || documentIndex == 1 || documentIndex == 5 || documentIndex == 6;
}

// The PDF printer's file: when the document is done the operator is told where it is.
class PdfFileSurface : public PrintSurface {
public:
    PdfFileSurface(std::unique_ptr<PrintSurface> inner, QString path)
        : m_inner(std::move(inner)), m_path(std::move(path)) {}
    void drawText(const PrintedText& text) override { m_inner->drawText(text); }
    void drawLine(const PrintedLine& line) override { m_inner->drawLine(line); }
    void drawPicture(const PrintedPicture& picture) override { m_inner->drawPicture(picture); }
    void newPage() override { m_inner->newPage(); }
    bool finish() override {
        const bool ok = m_inner->finish();
        if (ok)
            ShowInfo(QStringLiteral("인쇄한 내용을 PDF 파일로 저장했습니다.\n%1")
                         .arg(QDir::toNativeSeparators(m_path)),
                     QStringLiteral("PDF 인쇄"));
        else
            ShowWarning(
                QStringLiteral("PDF 파일을 저장하지 못했습니다.\n%1").arg(QDir::toNativeSeparators(m_path)),
                QStringLiteral("PDF 인쇄"));
        return ok;
    }

private:
    std::unique_ptr<PrintSurface> m_inner;
    QString m_path;
};

} // namespace

QString documentName(int index) {
    return index >= 0 && index < documentNames().size() ? documentNames().at(index) : QString();
}

QStringList printerNames() {
    return systemPrinters().names << kPdfPrinterName;
}

QString GetDefaultPrinter() {
    const QString name = systemPrinters().defaultName.trimmed();
    return name.isEmpty() ? kNoDefaultPrinter : name;
}

QString currentPrinterName() {
    if (!state().current.isEmpty()) return state().current;
    const QString name = systemPrinters().defaultName.trimmed();
    return name.isEmpty() ? kPdfPrinterName : name;
}

void setCurrentPrinter(const QString& name) {
    state().current = name;
}

int SavedPrinterIndex() {
    return state().savedIndex;
}

void SelectDocPrinter(const QString& document) {
    const QStringList names = printerNames();
    const int currentIndex = int(names.indexOf(currentPrinterName()));
    if (currentIndex >= 0) state().savedIndex = currentIndex;
    const QString wanted = GetSetting(kPrinterReadApp, kPrinterSection, document, QString());
    if (!wanted.isEmpty() && names.contains(wanted)) setCurrentPrinter(wanted);
}

void RestorePrinter() {
    const QStringList names = printerNames();
    if (state().savedIndex >= 0 && state().savedIndex < names.size())
        setCurrentPrinter(names.at(state().savedIndex));
}

QString savedDocPrinter(int documentIndex) {
    if (!hasPrinterSetting(documentIndex)) return QString();
    const QString document = documentName(documentIndex);
    return GetSetting(document, kPrinterSection, document, QString());
}

void saveDocPrinter(int documentIndex, const QString& printerName) {
    if (!hasPrinterSetting(documentIndex)) return;
    const QString document = documentName(documentIndex);
    SaveSetting(document, kPrinterSection, document, printerName);
}

QString pdfPrintPath(const QString& document) {
    const QString folder = appFolderFile(QStringLiteral("Print"));
    QDir().mkpath(folder);
    const QString stem = QStringLiteral("%1/%2-%3")
                             .arg(folder, document.isEmpty() ? QStringLiteral("인쇄") : document,
                                  QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss")));
    QString path = stem + QStringLiteral(".pdf");
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = QStringLiteral("%1-%2.pdf").arg(stem).arg(n);
    return path;
}

std::unique_ptr<PrintJob> startPrintJob(const QString& document) {
    const QString printer = currentPrinterName();
    if (state().capture) return state().capture->start(printer, document);
    if (printer == kPdfPrinterName) {
        const QString path = pdfPrintPath(document);
        auto pdf = makePdfSurface(path);
        if (!pdf) return nullptr;
        return std::make_unique<PrintJob>(std::make_unique<PdfFileSurface>(std::move(pdf), path), printer,
                                          document);
    }
    auto surface = makeSystemPrinterSurface(printer);
    if (!surface) {
        ShowWarning(QStringLiteral("프린터를 열지 못했습니다.\n%1").arg(printer), QStringLiteral("인쇄"));
        return nullptr;
    }
    return std::make_unique<PrintJob>(std::move(surface), printer, document);
}

std::unique_ptr<PrintJob> recordedJobForTesting(const QString& document) {
    return state().capture ? state().capture->start(currentPrinterName(), document) : nullptr;
}

void PrinterPrepare(PrintJob& job, bool Inches) {
    Q_UNUSED(Inches);
    job.setFontName(kBasePrintFont);
    job.setFontSize(kBasePrintSize);
    job.setForeColor(Qt::black);
}

void SetPrintRow(PrintJob& job, qint16 Row) {
    job.setRow(Row);
}

PrintCapture::PrintCapture() {
    state().capture = this;
}

PrintCapture::~PrintCapture() {
    if (state().capture == this) state().capture = nullptr;
}

const PrintRecord& PrintCapture::last() const {
    static const PrintRecord none;
    return m_jobs.empty() ? none : *m_jobs.back();
}

std::unique_ptr<PrintJob> PrintCapture::start(const QString& printer, const QString& document) {
    auto record = std::make_shared<PrintRecord>();
    record->printerName = printer;
    record->documentName = document;
    m_jobs.push_back(record);
    return std::make_unique<PrintJob>(std::make_unique<RecordingSurface>(record), printer, document);
}

void setSystemPrintersForTesting(const QStringList& names, const QString& defaultName) {
    state().forTesting = SystemPrinters{names, defaultName};
}

} // namespace nb
