#pragma once
// The quotation screen under its menu entry.

namespace nb {

void registerQuotationScreens();

} // namespace nb
