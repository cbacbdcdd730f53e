#include "commonmodule/CommonModule.h"

#include <QComboBox>
#include <QListWidget>

#include "db/Database.h"

namespace qz2::commonmodule {

QString clsCommonDB::selectText(const QString& columns, const QString& condition) const {
    QString sql = QStringLiteral("select ") + columns + QStringLiteral(" from ") + strTableName;
    if (!condition.trimmed().isEmpty()) sql += QStringLiteral(" where ") + condition;
    return sql;
}

QVariant clsCommonDB::fnReturnField(const QString& fieldName, const QString& condition) const {
    db::Recordset rs = db::openRecordset(adocon, selectText(fieldName, condition));
    if (rs.eof()) return {};
    return rs.field(0);
}

qint32 clsCommonDB::fnGetNextMaxNo(const QString& columnName) const {
    const QVariant max = db::scalar(adocon, selectText(QStringLiteral("max(") + columnName + QLatin1Char(')'), {}));
    return (max.isNull() ? 0 : max.toInt()) + 1;
}

void clsCommonDB::populatecomboorlist(QComboBox* combo, const QString& valueColumn, const QString& textColumn,
                                      const QString& condition) const {
    db::Recordset rs =
        db::openRecordset(adocon, selectText(valueColumn + QLatin1Char(',') + textColumn, condition) +
                                      QStringLiteral(" order by ") + textColumn);
    const QSignalBlocker block(combo);  // filling is not the clerk's choice
    combo->clear();
    for (; !rs.eof(); rs.moveNext()) combo->addItem(rs.field(1).toString().trimmed(), rs.field(0));
    combo->setCurrentIndex(-1);
}

void clsCommonDB::populatecomboorlist(QListWidget* list, const QString& valueColumn, const QString& textColumn,
                                      const QString& condition) const {
    db::Recordset rs =
        db::openRecordset(adocon, selectText(valueColumn + QLatin1Char(',') + textColumn, condition) +
                                      QStringLiteral(" order by ") + textColumn);
    list->clear();
    for (; !rs.eof(); rs.moveNext()) {
        auto* item = new QListWidgetItem(rs.field(1).toString().trimmed(), list);
        item->setData(Qt::UserRole, rs.field(0));
    }
}

namespace {
int findByData(const QComboBox* combo, const QVariant& value) {
    for (int i = 0; i < combo->count(); ++i)
        if (combo->itemData(i).toLongLong() == value.toLongLong()) return i;
    return -1;
}
}  // namespace

void clsCommonDB::SelectComboItem(QComboBox* combo, qint16& value) const {
    const int i = findByData(combo, QVariant(value));
    if (i >= 0) combo->setCurrentIndex(i);
}

void clsCommonGen::SelectComboItemByValue(QComboBox* combo, const QVariant& value) const {
    const int i = findByData(combo, value);
    if (i >= 0) combo->setCurrentIndex(i);
}

std::unique_ptr<CommonObject> CreateObject(const QString& progId) {
    if (progId.compare(QLatin1String("CommonModule.clsCommonDB"), Qt::CaseInsensitive) == 0)
        return std::make_unique<clsCommonDB>();
    if (progId.compare(QLatin1String("CommonModule.clsCommonGen"), Qt::CaseInsensitive) == 0)
        return std::make_unique<clsCommonGen>();
    return nullptr;
}

std::unique_ptr<clsCommonDB> createCommonDB(const QSqlDatabase& connection) {
    std::unique_ptr<CommonObject> obj = CreateObject(QStringLiteral("CommonModule.clsCommonDB"));
    std::unique_ptr<clsCommonDB> helper(static_cast<clsCommonDB*>(obj.release()));
    helper->adocon = connection;
    return helper;
}

std::unique_ptr<clsCommonGen> createCommonGen() {
    std::unique_ptr<CommonObject> obj = CreateObject(QStringLiteral("CommonModule.clsCommonGen"));
    return std::unique_ptr<clsCommonGen>(static_cast<clsCommonGen*>(obj.release()));
}

}  // namespace qz2::commonmodule
