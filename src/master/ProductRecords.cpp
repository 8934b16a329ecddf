#include "master/ProductRecords.h"

#include "common/Messages.h"
#include "common/text/Identity.h"
#include "common/text/NumBox.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"
#include "core/AppState.h"
#include "master/SearchRules.h"
#include "storage/Stores.h"

#include <QSqlError>
#include <QSqlQuery>
#include <cmath>

namespace nb {
namespace {

Database& basic() {
    return stores().dbBasic;
}

const QString kListSelect =
    QStringLiteral("SELECT Product.PName AS pName, Product.PNorm AS pNorm, Product.PTax AS PTax, "
                   "Product.BuyPrice AS PBuyPrice, Product.SalePrice AS PSalePrice, Product.Code AS PCode, "
                   "Product.Unit FROM Product ");

SqlPart listQuery(const QString& namePattern, const QString& text) {
    SqlPart part{kListSelect + QStringLiteral("WHERE Product.PName LIKE ?") + kLikeEscape, {namePattern}};
    if (ProductSearchesCode(text)) {
        part.sql += QStringLiteral(" OR Product.Code LIKE ?") + kLikeEscape;
        part.values << LikeContains(text);
    }
    part.sql += QStringLiteral(" ORDER BY Product.PName, Product.Code");
    return part;
}

// The code of a product with this name and norm, empty for none; false when the query failed.
bool sameProduct(const QString& name, const QString& norm, QString& found) {
    Recordset rs;
    if (!OpenSnapshot(basic(), rs, QStringLiteral("Select Code from Product where PName = ? AND PNorm = ?"),
                      {name, norm}))
        return false;
    found = rs.EOF_() ? QString() : rs.text(QStringLiteral("Code"));
    return true;
}

int askAboutSameProduct(const QString& name) {
    return AskYesNoCancel(QStringLiteral("(") + name +
                              QStringLiteral(")는 이미 등록된 상품입니다.\r\n수정하시겠습니까?\r\n"
                                             "[예] - 수정함.\r\n[아니오] - 등록하지 않고 종료\r\n"
                                             "[취소] - 다시 입력함."),
                          QStringLiteral("상품명 중복"));
}

void updateProduct(const ProductFields& f, qint32 buy, qint32 sale, const QString& code) {
    basic().Execute(QStringLiteral("Update Product Set PName = ? , PNorm = ?, BuyPrice = ? , SalePrice = ? , "
                                   "Unit = ? , Bigo = ? where Code = ?"),
                    {f[0], f[1], buy, sale, f[5], f[4], code});
    ShowNotice(QStringLiteral("자료가 수정되었습니다."), 700);
}

void insertProduct(const ProductFields& f, qint32 buy, qint32 sale, const QString& code) {
    basic().Execute(QStringLiteral("INSERT INTO Product(Code, PName, PNorm, BuyPrice, SalePrice, Unit, Bigo) "
                                   "values(? , ? , ? , ? , ? , ? , ?)"),
                    {code, f[0], f[1], buy, sale, f[5], f[4]});
    ShowNotice(QStringLiteral("자료가 저장되었습니다."), 700);
}

QString emptyPriceToZero(const QString& text) {
    return text.trimmed().isEmpty() ? QStringLiteral("0") : text;
}

} // namespace

bool FindProduct(Recordset& rs, const QString& code, const QString& name, bool all) {
    bool opened = false;
    if (all)
        opened = OpenSnapshot(basic(), rs, QStringLiteral("SELECT * FROM Product ORDER BY Code;"));
    else if (!code.isEmpty())
        opened = OpenSnapshot(basic(), rs,
                              QStringLiteral("SELECT * FROM Product WHERE Code = ? ORDER BY Code;"), {code});
    else
        opened = OpenSnapshot(basic(), rs,
                              QStringLiteral("SELECT * FROM Product WHERE PName LIKE ?") + kLikeEscape +
                                  QStringLiteral(" ORDER BY Code;"),
                              {likeLiteral(name)});
    return opened && rs.RecordCount() > 0;
}

QString GetProductName(const QString& code) {
    const QString procedure = QStringLiteral("GetProductName");
    const QString module = QStringLiteral("ModModule");
    if (!basic().isOpen()) {
        ShowFailureReport(ErrNotOpened, QStringLiteral("Object variable or With block variable not set"),
                          procedure, module);
        return QString();
    }
    QSqlQuery q(basic().connection());
    bool ok = q.prepare(QStringLiteral("Select PName, PNorm from Product where Code = ?"));
    if (ok) {
        q.addBindValue(code);
        ok = q.exec();
    }
    if (!ok) {
        const QSqlError e = q.lastError();
        ShowFailureReport(errorNumberFor(e.databaseText(), e.nativeErrorCode().toInt()), e.databaseText(),
                          procedure, module);
        return QString();
    }
    if (!q.next()) return QString();
    return NameWithNorm(q.value(0).toString(), q.value(1));
}

bool NextProductCode(QString& code) {
    Recordset rs;
    if (!OpenSnapshot(basic(), rs, QStringLiteral("Select Code from Product order by Code desc")))
        return false;
    if (rs.EOF_()) {
        code = QStringLiteral("000001");
        return true;
    }
    bool ok = false;
    const qint64 highest = rs.text(QStringLiteral("Code")).trimmed().toLongLong(&ok);
    if (!ok) {
        ShowTypeMismatch();
        return false;
    }
    code = QStringLiteral("%1").arg(highest + 1, 6, 10, QLatin1Char('0'));
    return true;
}

bool PriceForSave(const QString& box, qint32& price) {
    bool ok = false;
    const double value = NumberFromText(StripNumText(box), &ok);
    if (!ok || StripNumText(box).isEmpty()) {
        ShowTypeMismatch();
        return false;
    }
    const double rounded = RoundHalfEven(value);
    if (rounded < -2147483648.0 || rounded > 2147483647.0) {
        MsgBox(QStringLiteral("실행 시간 오류 '6':\r\n\r\n오버플로"), MbExclamation, kAppTitle);
        return false;
    }
    price = qint32(rounded);
    return true;
}

ProductSave SaveProduct(const ProductFields& given, QString& code, int mode) {
    ProductFields f = given;
    if (f[0].isEmpty()) {
        MsgBox(QStringLiteral("상품명은 필수입력사항입니다."));
        return ProductSave::NameMissing;
    }
    f[2] = emptyPriceToZero(f[2]);
    f[3] = emptyPriceToZero(f[3]);
    qint32 buy = 0, sale = 0;
    if (!PriceForSave(f[2], buy) || !PriceForSave(f[3], sale)) return ProductSave::Failed;
    if (!code.isEmpty() && mode == 1) {
        updateProduct(f, buy, sale, code);
        return ProductSave::Updated;
    }
    QString found;
    if (!sameProduct(f[0], f[1], found)) return ProductSave::Failed;
    if (!found.isEmpty()) {
        const int answer = askAboutSameProduct(f[0]);
        if (answer == AnsCancel) return ProductSave::Cancelled;
        if (answer == AnsNo) return ProductSave::Declined;
        code = found;
        updateProduct(f, buy, sale, code);
        return ProductSave::Updated;
    }
    // The code is taken inside the save, begun as a write: two running copies never give one
    // code twice.
    if (!basic().beginTransaction()) {
        ReportSaveFailure(basic(), QStringLiteral("상품을 저장하지 못했습니다."));
        return ProductSave::Failed;
    }
    QString next;
    if (!NextProductCode(next)) {
        basic().rollback();
        return ProductSave::Failed;
    }
    code = next;
    insertProduct(f, buy, sale, code);
    if (!basic().commit()) {
        ReportSaveFailure(basic(), QStringLiteral("상품을 저장하지 못했습니다."));
        return ProductSave::Failed;
    }
    return ProductSave::Inserted;
}

void DeleteProduct(const QString& code) {
    basic().Execute(QStringLiteral("Delete from Product where Code = ?"), {code});
    ShowNotice(QStringLiteral("자료가 삭제되었습니다."), 700);
}

QString ListPriceText(double price) {
    if (price - std::floor(price) != 0) return FormatNumber(price, kMaskQtyPrice);
    if (price == 0) return QStringLiteral("0");
    return FormatNumber(price, kMaskAmount);
}

QVector<QStringList> ProductListRows(Recordset& rs, int kind) {
    // Each column found by its name once, not on every row.
    const int name = rs.fieldIndex(QStringLiteral("pName")), norm = rs.fieldIndex(QStringLiteral("pNorm"));
    const int tax = rs.fieldIndex(QStringLiteral("PTax")), unit = rs.fieldIndex(QStringLiteral("Unit"));
    const int code = rs.fieldIndex(QStringLiteral("PCode"));
    int price = -1;
    if (kind == 0) price = rs.fieldIndex(QStringLiteral("PBuyPrice"));
    if (kind == 1 || kind == 3) price = rs.fieldIndex(QStringLiteral("PSalePrice"));
    const auto text = [&rs](int column) {
        const QVariant v = rs.field(column);
        return v.isNull() ? QStringLiteral("") : v.toString();
    };
    QVector<QStringList> rows;
    rows.reserve(rs.RecordCount());
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        const QVariant taxValue = rs.field(tax);
        const bool taxFree = !taxValue.isNull() && taxValue.toDouble() == 0;
        const QString priceText = price >= 0 ? ListPriceText(rs.field(price).toDouble()) : QString();
        rows.push_back({NameWithNorm(text(name), rs.field(norm)), text(unit),
                        taxFree ? QStringLiteral("면세") : QStringLiteral("과세"), priceText, QString(),
                        text(code), QString()});
    }
    rs.MoveFirst();
    return rows;
}

SqlPart ProductPrefixQuery(const QString& text) {
    return listQuery(LikePrefix(text), text);
}

SqlPart ProductContainsQuery(const QString& text) {
    return listQuery(LikeContains(text), text);
}

int ProductListResult(int prefixCount, int containsCount) {
    const int sum = prefixCount + containsCount;
    if (sum == 2) return 1;
    return sum > 2 ? 2 : 0;
}

} // namespace nb
