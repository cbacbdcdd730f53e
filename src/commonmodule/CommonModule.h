#pragma once
// The suite's shared helper classes, reached by ProgID as the forms always did: a database
// helper that reads one field, numbers the next row and fills lists, and a general helper
// that selects list items by value. Only the members the component uses exist.

#include <QSqlDatabase>
#include <QString>
#include <QVariant>
#include <memory>

class QComboBox;
class QListWidget;

namespace qz2::commonmodule {

class CommonObject {
public:
    virtual ~CommonObject() = default;
};

class clsCommonDB : public CommonObject {
public:
    QSqlDatabase adocon;   // always set before any other call
    QString strTableName;  // the table the next call works on (may carry its own "where")

    // The column's value in the first row of strTableName meeting the condition (every row
    // when the condition is empty); a null QVariant when no row qualifies.
    QVariant fnReturnField(const QString& fieldName, const QString& condition = {}) const;
    // The current maximum of the column in strTableName plus one (1 for an empty table).
    qint32 fnGetNextMaxNo(const QString& columnName) const;
    // One item per row meeting the condition: the text column shown, the value column kept
    // as the item's data. The list is cleared first and ordered by the text.
    void populatecomboorlist(QComboBox* combo, const QString& valueColumn, const QString& textColumn,
                             const QString& condition) const;
    void populatecomboorlist(QListWidget* list, const QString& valueColumn, const QString& textColumn,
                             const QString& condition) const;
    // Makes current the item whose data equals the value; leaves the box alone when none does.
    void SelectComboItem(QComboBox* combo, qint16& value) const;

private:
    QString selectText(const QString& columns, const QString& condition) const;
};

class clsCommonGen : public CommonObject {
public:
    // Makes current the item whose data equals the value; leaves the box alone when none does.
    void SelectComboItemByValue(QComboBox* combo, const QVariant& value) const;
};

// Creates "CommonModule.clsCommonDB" or "CommonModule.clsCommonGen", the ProgID compared
// without regard to case; nullptr for any other name.
std::unique_ptr<CommonObject> CreateObject(const QString& progId);

// Typed conveniences for the forms.
std::unique_ptr<clsCommonDB> createCommonDB(const QSqlDatabase& connection);
std::unique_ptr<clsCommonGen> createCommonGen();

}  // namespace qz2::commonmodule
