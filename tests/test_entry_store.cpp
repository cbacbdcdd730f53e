// Saving an entry without a window: the entry as plain data (header values, the day grid's
// and the mirror grid's models) saved as the form's OK saves it, with its history; and the
// checks that refuse it, which write nothing and say why.

#include <gtest/gtest.h>

#include "SaveScenario.h"
#include "TestSupport.h"
#include "entry/EntryStore.h"
#include "history/HistoryStore.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

class EntryStore : public ::testing::Test {
protected:
    void SetUp() override {
        employee = qz2test::freeEmployee(t.db);
        ASSERT_NE(employee, 0);
        days.setCols(rules::daycol::Count);
        mirror.setCols(rules::paircol::Count);
        // Monday to Wednesday of a week no entry of the employee covers: two worked days,
        // one absent.
        rules::fnBuildDayRows(days, kStart, kStart.addDays(2));
        for (int r = 1; r <= 3; ++r)
            days.setTextMatrix(r, rules::daycol::Type,
                               r == 3 ? QStringLiteral("A") : QStringLiteral("P"));
        for (int i = 0; i < 2; ++i) {
            mirror.AddItem({dateText(kStart.addDays(i)), QStringLiteral("1"),
                            QStringLiteral("09:00"), QStringLiteral("13:00")});
            mirror.AddItem({dateText(kStart.addDays(i)), QStringLiteral("2"),
                            QStringLiteral("14:00"), QStringLiteral("18:00")});
        }
        entry.employee = employee;
        entry.entryDateText = QStringLiteral("21/11/2026");
        entry.startText = dateText(kStart);
        entry.end = kStart.addDays(2);
        entry.present = 2;
        entry.absent = 1;
        entry.workTimeSettingId = 1;
        entry.remarks = QStringLiteral("From the gate clock");
        entry.days = &days;
        entry.mirror = &mirror;
        entry.action = history::Action::Imported;
    }
    const QDate kStart{2026, 12, 7};
    TestDb t{true};
    qint32 employee = 0;
    FlexGridModel days;
    FlexGridModel mirror;
    entry::EntryToSave entry;
};

TEST_F(EntryStore, AnEntryGivenAsDataIsSavedWholeWithItsHistory) {
    const entry::SaveResult saved = entry::fnSaveEntry(t.db, 1, 2, kInterfaceID, entry);
    ASSERT_TRUE(saved.savedId.has_value()) << saved.message.toStdString();
    EXPECT_TRUE(saved.message.isEmpty());
    const qint32 id = *saved.savedId;
    EXPECT_EQ(
        t.scalar(QStringLiteral("select eaRemarks from pEmployeeAttendence where eaID=%1").arg(id))
            .toString(),
        QStringLiteral("From the gate clock"));
    // Four pair lines and the absent day's line.
    EXPECT_EQ(t.scalar(QStringLiteral(
                           "select count(*) from pEmpAttendanceDetail where eadAttendanceID=%1")
                           .arg(id))
                  .toInt(),
              5);
    EXPECT_EQ(t.scalar(QStringLiteral(
                           "select count(*) from pEmpAttendanceDetail where eadAttendanceID=%1 and "
                           "eadType='A' and eadCheckIN is null")
                           .arg(id))
                  .toInt(),
              1);
    const QList<history::HistoryRecord> versions = history::readHistory(t.db, 1, id);
    ASSERT_EQ(versions.size(), 1);
    EXPECT_EQ(versions[0].action, history::Action::Imported);
    EXPECT_EQ(versions[0].userId, 2);
}

TEST_F(EntryStore, AnOverlappingEntryIsRefusedWithItsNumberAndNothingIsWritten) {
    ASSERT_TRUE(entry::fnSaveEntry(t.db, 1, 1, kInterfaceID, entry).savedId.has_value());
    const QString before = t.dump();
    const entry::SaveResult again = entry::fnSaveEntry(t.db, 1, 1, kInterfaceID, entry);
    EXPECT_FALSE(again.savedId.has_value());
    EXPECT_TRUE(again.message.contains(QStringLiteral("Nothing was saved")))
        << again.message.toStdString();
    EXPECT_EQ(t.dump(), before);
}

TEST_F(EntryStore, AStartThatIsNoDateFailsTheSaveAndWritesNothing) {
    entry.startText = QStringLiteral("31/02/2026");
    const QString before = t.dump();
    const entry::SaveResult result = entry::fnSaveEntry(t.db, 1, 1, kInterfaceID, entry);
    EXPECT_FALSE(result.savedId.has_value());
    EXPECT_FALSE(result.message.isEmpty());
    EXPECT_EQ(t.dump(), before);
}

}  // namespace
