#include "invoice/InvoiceCommand.h"
#include "invoice/InvoiceScreens.h"
#include "links/LinkScreens.h"
#include "management/ManagementScreens.h"
#include "management/etax/EtaxCommand.h"
#include "master/MasterScreens.h"
#include "printing/PrintingScreens.h"
#include "quotation/QuotationCommand.h"
#include "quotation/QuotationScreens.h"
#include "shell/MoveToServer.h"
#include "shell/Program.h"
#include "statement/StatementCommand.h"
#include "statement/StatementScreens.h"
#include "storage/Backup.h"
#include "storage/jet/JetCommand.h"
#include "storage/jet/JetReader.h"

int main(int argc, char** argv) {
    // The import's reader child: no window, no store, nothing but the one Jet file.
    if (const int code = nb::runJetReaderIfAsked(argc, argv); code >= 0) return code;
    nb::registerJetImportCommand();
    nb::registerInvoiceCommand();
    nb::registerStatementCommand();
    nb::registerQuotationCommand();
    nb::registerEtaxCommand();
    nb::registerBackupCommand();
    nb::registerMoveToServer();
    nb::registerMasterScreens();
    nb::registerPrintingScreens();
    nb::registerInvoiceScreens();
    nb::registerStatementScreens();
    nb::registerQuotationScreens();
    nb::registerManagementScreens();
    nb::registerLinkScreens();
    return nb::runNubella(argc, argv);
}
