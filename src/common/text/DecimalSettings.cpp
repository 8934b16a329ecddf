#include "common/text/DecimalSettings.h"

#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"
#include "core/AppState.h"
#include "core/Settings.h"

namespace nb {

int DecimalPlacesFromText(const QString& text) {
    bool ok = false;
    const double value = NumberFromText(text, &ok);
    return ok ? CInt(value) : 2;
}

DecimalSettings ReadDecimalSettings() {
    return {DecimalPlacesFromText(GetEnv(kDecimalQtyKey, QStringLiteral("0"))),
            DecimalPlacesFromText(GetEnv(kDecimalPriceKey, QStringLiteral("0")))};
}

void ApplyDecimalSettings(const DecimalSettings& values) {
    app().DecimalQty = values.qty;
    app().DecimalPrice = values.price;
}

void SaveDecimalSettings(const DecimalSettings& values) {
    ApplyDecimalSettings(values);
    SaveEnv(kDecimalQtyKey, QString::number(values.qty));
    SaveEnv(kDecimalPriceKey, QString::number(values.price));
}

int QtyOptionIndex(int places) {
    if (places == 0) return 0;
    if (places == 1) return 1;
    return 2;
}

int PriceOptionIndex(int places) {
    if (places == 0) return 4;
    if (places == 1) return 3;
    return 5;
}

DecimalOptions OptionsFor(const DecimalSettings& values) {
    DecimalOptions on{};
    on[size_t(QtyOptionIndex(values.qty))] = true;
    on[size_t(PriceOptionIndex(values.price))] = true;
    return on;
}

DecimalSettings SettingsFromOptions(const DecimalOptions& on) {
    DecimalSettings values;
    values.qty = on[0] ? 0 : on[1] ? 1 : 2;
    values.price = on[4] ? 0 : on[3] ? 1 : 2;
    return values;
}

} // namespace nb
