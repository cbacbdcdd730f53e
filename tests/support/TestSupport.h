#pragma once
// Shared fixtures of the tests: a fresh SQLite database built from the schema, the session
// context pinned to it, a full dump for before/after comparisons, and helpers that answer
// modal boxes and dialogs the way a clerk would.

#include <QDate>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QProcessEnvironment>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <ostream>

// Test failures print QStrings as their text.
QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE

class QMenu;
class QTimer;

namespace qz2test {

// The 24 logical table names, in the link table's order.
QStringList logicalTableNames();

class TestDb {
public:
    // A new in-memory database with the schema and identity link-table rows. With `demo`
    // the demo generator fills it for `processDate`. The session globals are pointed at it:
    // company 1, user 1, the process date, the title "Attendance Test"; the link table is
    // read into LinkedTableNames. When QZ2_TEST_ODBC names an ODBC driver (see DbRoute.h)
    // the database is a temporary file, removed with the object, and `db` reaches it
    // through that driver.
    explicit TestDb(bool demo = false, QDate processDate = QDate(2026, 11, 21));
    // An existing SQLite file (for multi-process tests); no schema is applied. Opened on
    // the same route as above.
    explicit TestDb(const QString& file);
    ~TestDb();
    TestDb(const TestDb&) = delete;
    TestDb& operator=(const TestDb&) = delete;

    QSqlDatabase db;
    // The connection the readers below check the data through: `db` itself, or on the ODBC
    // route a connection of Qt's SQLite driver to the same file, so that what the module
    // stored over ODBC is read back as stored, not as the ODBC driver hands it over (reals
    // with 15 significant digits). A pragma is read on `db`: it is the connection's own.
    const QSqlDatabase& checkDb() const;
    void exec(const QString& sql) const;                 // on `db`; fails the test on error
    QVariant scalar(const QString& sql) const;           // first field of the first row
    QList<QVariantList> rows(const QString& sql) const;  // every row
    // Every row of every table, sorted, as text: two dumps are equal when the data is.
    QString dump() const;
    // True when `db` goes through the ODBC driver manager.
    bool overOdbc() const;

private:
    QString m_name;
    QString m_file;  // the temporary file of the ODBC route
    QSqlDatabase m_check;
    void openCheck(const QString& file);
    const QSqlDatabase& readerFor(const QString& sql) const;
};

// Rows of a query as "a|b|c" lines (read through checkDb()); NULL reads "NULL", reals are
// written in full.
QStringList table(const TestDb& t, const QString& sql);

// Runs `action` on the popup menu as soon as one is open, for up to two seconds or until
// the watch goes out of scope, so that a watch that saw nothing cannot catch the popup of a
// later test.
class PopupWatch {
public:
    explicit PopupWatch(std::function<void(QMenu*)> action);
    ~PopupWatch();
    PopupWatch(const PopupWatch&) = delete;
    PopupWatch& operator=(const PopupWatch&) = delete;
    bool seen() const { return m_seen; }

private:
    QTimer* m_timer;
    QElapsedTimer m_clock;
    bool m_seen = false;
};

// Runs `action` on the first modal widget that appears (a message box or a dialog) once
// it is shown; waits up to `timeoutMs`. Use before the call that opens it.
void whenModal(std::function<void(QWidget*)> action, int timeoutMs = 5000);
// Clicks the button of the given kind on the active message box, whenever it shows.
void answerNextMessageBox(QMessageBox::StandardButton button, QString* textOut = nullptr, int timeoutMs = 5000);

// The environment the host program's commands run in under test: no display of any kind
// (they must not need one), the user's data and Qt's runtime folder inside `folder` (Qt's
// warning about a missing runtime folder would mix into the messages).
QProcessEnvironment headlessEnvironment(const QString& folder);

}  // namespace qz2test
