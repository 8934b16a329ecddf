#include "core/shell/Program.h"
#include "invoice/InvoiceCommand.h"
#include "invoice/InvoiceScreens.h"
#include "master/MasterScreens.h"
#include "printing/PrintingScreens.h"

int main(int argc, char** argv) {
    if (nb::isPrintInvoiceCommand(argc, argv)) return nb::runHeadless(argc, argv, nb::PrintInvoiceCommand);
    nb::registerMasterScreens();
    nb::registerPrintingScreens();
    nb::registerInvoiceScreens();
    return nb::runProgram(argc, argv);
}
