#include "core/shell/Program.h"
#include "invoice/InvoiceCommand.h"
#include "invoice/InvoiceScreens.h"
#include "management/etax/EtaxCommand.h"
#include "master/MasterScreens.h"
#include "printing/PrintingScreens.h"

int main(int argc, char** argv) {
    if (nb::isPrintInvoiceCommand(argc, argv)) return nb::runHeadless(argc, argv, nb::PrintInvoiceCommand);
    if (nb::isExportEtaxCommand(argc, argv)) return nb::runHeadless(argc, argv, nb::ExportEtaxCommand);
    nb::registerMasterScreens();
    nb::registerPrintingScreens();
    nb::registerInvoiceScreens();
    return nb::runProgram(argc, argv);
}
