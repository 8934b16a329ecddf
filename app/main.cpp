#include "shell/Program.h"
#include "invoice/InvoiceCommand.h"
#include "invoice/InvoiceScreens.h"
#include "links/LinkScreens.h"
#include "management/ManagementScreens.h"
#include "management/etax/EtaxCommand.h"
#include "master/MasterScreens.h"
#include "printing/PrintingScreens.h"
#include "quotation/QuotationCommand.h"
#include "quotation/QuotationScreens.h"
#include "statement/StatementCommand.h"
#include "statement/StatementScreens.h"

int main(int argc, char** argv) {
    if (nb::isPrintInvoiceCommand(argc, argv)) return nb::runHeadless(argc, argv, nb::PrintInvoiceCommand);
    if (nb::isExportEtaxCommand(argc, argv)) return nb::runHeadless(argc, argv, nb::ExportEtaxCommand);
    if (nb::isPrintQuotationCommand(argc, argv))
        return nb::runHeadless(argc, argv, nb::PrintQuotationCommand);
    if (nb::isPrintStatementCommand(argc, argv))
        return nb::runHeadless(argc, argv, nb::PrintStatementCommand);
    nb::registerMasterScreens();
    nb::registerPrintingScreens();
    nb::registerInvoiceScreens();
    nb::registerStatementScreens();
    nb::registerQuotationScreens();
    nb::registerManagementScreens();
    nb::registerLinkScreens();
    return nb::runProgram(argc, argv);
}
