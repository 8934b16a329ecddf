#include "statement/LineAmounts.h"

#include "common/text/Rounding.h"

#include <cmath>

namespace nb {

LineAmounts amountsInMode(double total, VatMode mode) {
    switch (mode) {
    case VatMode::Separate:
        return {total, std::trunc(total * 0.1)};
    case VatMode::Included: {
        const double amount = RoundAt(total / 1.1, 0);
        return {amount, total - amount};
    }
    case VatMode::Exempt:
        break;
    }
    return {total, 0};
}

std::optional<VatMode> modeOfLine(double amount, double vat, double oldQuant, double oldPrice) {
    if (amount == 0) return std::nullopt;
    const double oldTotal = RoundAt(oldQuant * oldPrice, 0);
    if (amount + vat <= oldTotal) return vat != 0 ? VatMode::Included : VatMode::Exempt;
    return VatMode::Separate;
}

std::optional<LineAmounts> LineAmountCalc(const LineBeforeAfter& line, VatMode screenMode) {
    if (line.newQuant == line.oldQuant && line.newPrice == line.oldPrice) return std::nullopt;
    const VatMode mode = modeOfLine(line.amount, line.vat, line.oldQuant, line.oldPrice).value_or(screenMode);
    return amountsInMode(RoundAt(line.newQuant * line.newPrice, 0), mode);
}

QString vatModeChangeQuestion() {
    const QString rule = QStringLiteral("----------------------------------------------");
    return QStringLiteral("현재 선택된 전표의 부가세를 어떻게 처리할지를 선택하세요.\r\n\r\n") +
           QStringLiteral("전표내 모든 거래내역(화면좌측)의 부가세를 새로 계산할까요?\r\n\r\n\r\n") + rule +
           QStringLiteral("\r\n\r\n") + QStringLiteral("[    예    ] : 모두 새로 계산\r\n\r\n") +
           QStringLiteral("[ 아니오 ] : 선택된 하나의 순번만 새로 계산\r\n\r\n") +
           QStringLiteral("[ 취   소 ] : 현재상태를 유지(새로 계산안함)\r\n\r\n") + rule;
}

QString noLineToRecalculateText() {
    return QStringLiteral("현재 선택된 순번은 자료가 입력되어\r\n있지 않아 계산을 할 수 없습니다.");
}

} // namespace nb
