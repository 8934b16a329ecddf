#pragma once
// The master data screens the main window's menu opens.

namespace nb {

// "mnu_user" (suppliers), "mnu_거래처등록" (a new trader), "mnu_상품등록" (products) and
// "mnu_postImport" (loading a postcode book), all modal over the main window.
void registerMasterScreens();

} // namespace nb
