// The whole-company import's child for the tests that end it abruptly: imports a punch file
// into an SQLite file for 1-30 November 2026 (business date 21 November) through
// punches::importCompanyPunches, as the register and the host command do, and reports:
//   start <statements>          the statements run before the import's first
//   employee <i> <statements>   before the i-th employee (from 0), the statements run so far
//   done <saved> <skipped>      the import ran to its end
// With --exit-at N the process ends abruptly (_exit, no clean-up of any kind) just before
// the N-th statement reaches the database, as a crash, a kill or a power cut would.
//   qz2_import_child DATABASE PUNCHES [--exit-at N]

#include <unistd.h>

#include <QCoreApplication>
#include <QSqlDatabase>
#include <cstdio>

#include "db/Database.h"
#include "punches/CompanyImport.h"
#include "punches/PunchFile.h"
#include "shared/BasAttendence.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: qz2_import_child DATABASE PUNCHES [--exit-at N]\n");
        return 2;
    }
    const int at = args.indexOf(QStringLiteral("--exit-at"));
    const int exitAt = at > 0 && at + 1 < args.size() ? args[at + 1].toInt() : 0;

    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(args[1]);
    if (!db.open()) return 3;
    qz2::gadocon = db;
    qz2::fnLoadLinkTableNames();
    qz2::punches::ReadResult read = qz2::punches::readPunchFile(args[2]);
    if (!read.ok()) return 4;

    std::printf("start %lld\n", static_cast<long long>(qz2::db::statementCount()));
    int seen = 0;
    if (exitAt > 0)
        qz2::db::setFaultHook([&seen, exitAt](const QString&) {
            if (++seen == exitAt) {
                std::fflush(stdout);
                _exit(9);
            }
            return QString();
        });
    qz2::punches::CompanyImportRequest request;
    request.company = 1;
    request.user = 1;
    request.interfaceId = qz2::kInterfaceID;
    request.from = QDate(2026, 11, 1);
    request.to = QDate(2026, 11, 30);
    request.businessDate = QDate(2026, 11, 21);
    const qz2::punches::CompanyImportResult result = qz2::punches::importCompanyPunches(
        db, std::move(read.punches), request, [](int done, int total, const QString&) {
            if (done < total)
                std::printf("employee %d %lld\n", done,
                            static_cast<long long>(qz2::db::statementCount()));
            std::fflush(stdout);
            return true;
        });
    std::printf("done %d %d\n", result.count(qz2::punches::Outcome::Saved),
                result.count(qz2::punches::Outcome::Skipped));
    return 0;
}
