#include "master/ProductRecords.h"

#include "common/Messages.h"
#include "common/grid/SqliteRows.h"
#include "common/text/Identity.h"
#include "common/text/NumBox.h"
#include "common/text/NumberFormat.h"
#include "common/text/Rounding.h"
#include "core/AppState.h"
#include "master/SearchRules.h"
#include "storage/StoreEngine.h"
#include "storage/Stores.h"

#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>
#include <cmath>

namespace nb {
namespace {

Database& basic() {
    return stores().dbBasic;
}

// A condition on the name, or on the name or the code when the text searches the code too.
SqlPart nameOrCode(const QString& namePattern, const QString& text) {
    SqlPart part{QStringLiteral("Product.PName LIKE ?") + kLikeEscape, {namePattern}};
    if (ProductSearchesCode(text)) {
        part.sql += QStringLiteral(" OR Product.Code LIKE ?") + kLikeEscape;
        part.values << LikeContains(text);
    }
    return part;
}

// A whole price, the common case, in grouped digits as the amount mask writes it, made at once:
// a long list makes thousands of them.
QString groupedWholeNumber(qint64 value) {
    const QByteArray digits = QByteArray::number(value);
    const int size = int(digits.size());
    QString out;
    out.reserve(size + size / 3);
    for (int i = 0; i < size; ++i) {
        if (i > 0 && (size - i) % 3 == 0) out += u',';
        out += QChar(digits[i]);
    }
    return out;
}

// The statement's columns, as ProductListQuery names them.
enum ListColumn { LName, LNorm, LTax, LBuyPrice, LSalePrice, LCode, LUnit, LLater, LWidth };

QVariant listText(const QString& text) {
    return text.isEmpty() ? QVariant() : QVariant(text);
}

QString textOf(const QVariant& value) {
    return value.isNull() ? QString() : value.toString();
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

// Run again quietly while another seat's save on the server breaks it off.
void updateProduct(const ProductFields& f, qint32 buy, qint32 sale, const QString& code) {
    RetryingSave([&] {
        return basic().Execute(QStringLiteral("Update Product Set PName = ? , PNorm = ?, BuyPrice = ? , "
                                              "SalePrice = ? , Unit = ? , Bigo = ? where Code = ?"),
                               {f[0], f[1], buy, sale, f[5], f[4], code});
    });
    ShowNotice(QStringLiteral("자료가 수정되었습니다."), 700);
}

bool insertProduct(const ProductFields& f, qint32 buy, qint32 sale, const QString& code) {
    return basic().Execute(
        QStringLiteral("INSERT INTO Product(Code, PName, PNorm, BuyPrice, SalePrice, Unit, Bigo) "
                       "values(? , ? , ? , ? , ? , ? , ?)"),
        {code, f[0], f[1], buy, sale, f[5], f[4]});
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
        // The server's failure by its SQLSTATE, the file's by its words and code.
        const QSqlError e = q.lastError();
        const int number = basic().onServer() ? serverFaultOf(e).errorNumber
                                              : errorNumberFor(e.databaseText(), e.nativeErrorCode().toInt());
        ShowFailureReport(number, e.databaseText(), procedure, module);
        return QString();
    }
    if (!q.next()) return QString();
    return NameWithNorm(q.value(0).toString(), q.value(1));
}

bool NextProductCode(QString& code) {
    Recordset rs;
    // The highest code alone, from the end of the code's index, not every product.
    if (!OpenSnapshot(basic(), rs, QStringLiteral("Select Code from Product order by Code desc LIMIT 1")))
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
    // code twice. A try the server broke off leaves nothing: the next try takes the code anew,
    // and only a saved product's code is handed back.
    const QString shown = code;
    const bool saved = RetryingSave([&] {
        code = shown;
        if (!basic().beginTransaction()) {
            ReportSaveFailure(basic(), QStringLiteral("상품을 저장하지 못했습니다."));
            return false;
        }
        QString next;
        if (!NextProductCode(next) || !insertProduct(f, buy, sale, next)) {
            basic().rollback();
            return false;
        }
        code = next;
        if (basic().commit()) return true;
        ReportSaveFailure(basic(), QStringLiteral("상품을 저장하지 못했습니다."));
        return false;
    });
    if (!saved) {
        code = shown;
        return ProductSave::Failed;
    }
    ShowNotice(QStringLiteral("자료가 저장되었습니다."), 700);
    return ProductSave::Inserted;
}

void DeleteProduct(const QString& code) {
    RetryingSave(
        [&] { return basic().Execute(QStringLiteral("Delete from Product where Code = ?"), {code}); });
    ShowNotice(QStringLiteral("자료가 삭제되었습니다."), 700);
}

QString ListPriceText(double price) {
    if (price - std::floor(price) != 0) return FormatNumber(price, kMaskQtyPrice);
    if (price == 0) return QStringLiteral("0");
    if (price > 0 && price < 1e12) return groupedWholeNumber(qint64(price));
    return FormatNumber(price, kMaskAmount);
}

SqlPart ProductListQuery(const QString& text) {
    const SqlPart first = nameOrCode(LikePrefix(text), text);
    const SqlPart found = nameOrCode(LikeContains(text), text);
    SqlPart query;
    query.sql = QStringLiteral("SELECT Product.PName AS pName, Product.PNorm AS pNorm, Product.PTax AS PTax, "
                               "Product.BuyPrice AS PBuyPrice, Product.SalePrice AS PSalePrice, "
                               "Product.Code AS PCode, Product.Unit, CASE WHEN ") +
                first.sql + QStringLiteral(" THEN 0 ELSE 1 END AS later FROM Product WHERE ") + found.sql +
                QStringLiteral(" ORDER BY later, Product.PName, Product.Code");
    query.values = first.values + found.values;
    return query;
}

ProductListRows::ProductListRows(std::unique_ptr<GridRowSource> rows, int kind,
                                 std::shared_ptr<ProductListCount> count)
    : m_rows(std::move(rows)), m_count(std::move(count)) {
    if (kind == 0) m_price = LBuyPrice;
    if (kind == 1 || kind == 3) m_price = LSalePrice;
}

bool ProductListRows::next(QVariant* out, int count) {
    QVariant row[LWidth];
    if (!m_rows || !m_rows->next(row, std::min(int(LWidth), m_rows->width()))) {
        m_rows.reset();
        return false;
    }
    ++m_count->rows;
    if (row[LLater].toInt() == 0) ++m_count->first;
    const bool taxFree = !row[LTax].isNull() && row[LTax].toDouble() == 0;
    const QVariant shown[kProductListColumns] = {
        listText(NameWithNorm(textOf(row[LName]), row[LNorm])),
        listText(textOf(row[LUnit])),
        listText(taxFree ? QStringLiteral("면세") : QStringLiteral("과세")),
        m_price >= 0 ? listText(ListPriceText(row[m_price].toDouble())) : QVariant(),
        QVariant(),
        listText(textOf(row[LCode])),
        QVariant()};
    for (int c = 0; c < count && c < kProductListColumns; ++c)
        out[c] = shown[c];
    return true;
}

std::unique_ptr<GridRowSource> OpenProductList(Database& db, const QString& text, int kind,
                                               std::shared_ptr<ProductListCount> count) {
    const SqlPart query = ProductListQuery(text);
    std::unique_ptr<GridRowSource> rows;
    if (SqliteRows::canStep(db.connection())) {
        auto stepped = std::make_unique<SqliteRows>(db.connection(), query.sql, query.values);
        const SqliteStatement& statement = *stepped->statement();
        if (!statement.ok()) {
            ReportQueryFailure(errorNumberFor(statement.engineText(), statement.engineCode()),
                               statement.engineText(), sqlForDisplay(query.sql, query.values),
                               statement.engineCode());
            return nullptr;
        }
        rows = std::move(stepped);
    } else {
        auto forward = std::make_unique<QSqlQuery>(db.connection());
        if (!OpenForwardOnly(db, *forward, query.sql, query.values)) return nullptr;
        rows = std::make_unique<QueryRows>(std::move(forward));
    }
    return std::make_unique<ProductListRows>(std::move(rows), kind, std::move(count));
}

int ProductListResult(int firstPartRows, int rows) {
    const int sum = firstPartRows + rows;
    if (sum == 2) return 1;
    return sum > 2 ? 2 : 0;
}

} // namespace nb
