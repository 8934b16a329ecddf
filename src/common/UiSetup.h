#pragma once
// Application-wide look: Korean fonts standing in for the original's, and the Korean
// translations of Qt's own dialogs (예/아니요/확인/취소), and the program's icon.

class QApplication;
class QIcon;

namespace nb {

// The fixed-pitch Korean font used for printing and for the print font "굴림체".
inline constexpr const char* kFixedKoreanFont = "NanumGothicCoding";
// The proportional Korean font that stands in for "굴림".
inline constexpr const char* kKoreanFont = "NanumGothic";

void setupApplicationUi(QApplication& app);
// The program's icon (drawn as an SVG, built into the program).
QIcon programIcon();

} // namespace nb
