#pragma once
// Pinning of SQL Server statement texts. A test compares the text a builder produces with
// the text written out by hand; every text compared this way is also handed, once at the
// end of the test program, to the independent T-SQL parser (tools/sqlcheck/check.js), so
// that a pinned text is known to be well-formed T-SQL as well as the one we meant.
//
// The parse runs from a GoogleTest global environment that this file's translation unit
// registers when it is linked in, i.e. in every test program that calls expectTsql.

#include <QString>
#include <QStringList>
#include <source_location>

namespace qz2test {

// Fails the calling test (at the caller's line) unless `actual` equals `expected` to the
// letter, printing both texts with a caret under the first difference. `actual` is kept
// for the parse at the end of the program whatever the outcome.
void expectTsql(const QString& actual, const QString& expected,
                std::source_location where = std::source_location::current());

// The statements kept so far, each once, in the order first seen.
QStringList rememberedTsql();

struct TsqlCheckResult {
    bool ok = false;  // node ran and every statement parsed
    QString output;   // what the checker printed (or why it could not run)
};

// Runs the checker over the statements now (what the end-of-program check does).
TsqlCheckResult runTsqlCheck(const QStringList& statements);

}  // namespace qz2test
