#include "core/shell/Program.h"
#include "invoice/InvoiceCommand.h"
#include "invoice/InvoiceScreens.h"
#include "links/LinkScreens.h"
#include "master/MasterScreens.h"
#include "printing/PrintingScreens.h"

int main(int argc, char** argv) {
    if (nb::isPrintInvoiceCommand(argc, argv)) return nb::runHeadless(argc, argv, nb::PrintInvoiceCommand);
    nb::registerMasterScreens();
    nb::registerPrintingScreens();
    nb::registerInvoiceScreens();
    nb::registerLinkScreens();
    return nb::runProgram(argc, argv);
}
