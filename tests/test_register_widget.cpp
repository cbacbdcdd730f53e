// The attendance register driven the way a clerk uses it: what it lists and how, sorting,
// searching, the grid's keys, and the buttons that the user's rights leave available.
#include <gtest/gtest.h>

#include <QAbstractItemModel>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSet>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <memory>
#include <ostream>

#include "TestSupport.h"
#include "db/Database.h"
#include "register/FrmMaster.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace {

using qz2test::TestDb;

// Closes whatever modal window shows while it is armed and remembers its name, so that a
// window that should not have opened fails the test instead of blocking it.
class ModalGuard {
public:
    ModalGuard() {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            QWidget* w = QApplication::activeModalWidget();
            if (!w || !w->isVisible()) return;
            if (auto* box = qobject_cast<QMessageBox*>(w)) m_seen << QStringLiteral("box: ") + box->text();
            else m_seen << w->objectName();
            if (auto* dlg = qobject_cast<QDialog*>(w)) dlg->reject();
            else w->close();
        });
        m_timer.start();
    }
    const QStringList& seen() const { return m_seen; }

private:
    QTimer m_timer;
    QStringList m_seen;
};

// Waits for the entry form, notes its name and the entry mode it was opened in, and closes
// it. Boxes that the entry form itself raises on its way up are noted and dismissed.
struct EntryFormSeen {
    QString name;
    QString mode;
    QStringList boxes;
};
void closeEntryFormWhenShown(EntryFormSeen* seen) {
    qz2test::whenModal([seen](QWidget* w) {
        if (auto* box = qobject_cast<QMessageBox*>(w)) {
            seen->boxes << box->text();
            closeEntryFormWhenShown(seen);
            if (QAbstractButton* b = box->escapeButton()) b->click();
            else box->reject();
            return;
        }
        seen->name = w->objectName();
        seen->mode = qz2::gstrEntryMode;
        if (auto* dlg = qobject_cast<QDialog*>(w)) dlg->reject();
        else w->close();
    });
}

QString iso(QDate d) { return d.toString(Qt::ISODate); }

class RegisterWidget : public ::testing::Test {
protected:
    const QDate process{2026, 11, 21};

    void SetUp() override {
        qz2::msgbox_testing::clear();
        qz2::msgbox_testing::setAutoAnswer(false);
        // Company 2's settings come first: a lookup that forgot the company would find them.
        db.exec(QStringLiteral("insert into pSettings(companyid, noofPreviousdays) values(2, 0)"));
        db.exec(QStringLiteral("insert into pSettings(companyid, noofPreviousdays) values(1, 0)"));

        addEmployee(1, 1, QStringLiteral("Asha Verma"));
        addEmployee(1, 2, QStringLiteral("bruno Costa"));
        addEmployee(1, 3, QStringLiteral("Chen Li"));
        addEmployee(2, 10, QStringLiteral("Other Company Person"));

        addEntry(1, 2, QStringLiteral("ATT-003"), QDate(2026, 11, 10), 2, false);
        addEntry(1, 10, QStringLiteral("ATT-001"), process.addDays(-30), 3, true);
        addEntry(1, 7, QStringLiteral("ATT-002"), process.addDays(-31), 1, false);
        // Same identifier in the other company: never listed, never touched.
        addEntry(2, 2, QStringLiteral("HC1"), QDate(2026, 11, 15), 10, false);

        // Catalogue rows written out of columnid order, and another table's headings.
        db.exec(QStringLiteral("insert into ptables(tableid, tablename) values(4, 'pemployee')"));
        db.exec(QStringLiteral("insert into ptables(tableid, tablename) values(9, 'pEmployeeAttendence')"));
        const char* catalogue[][3] = {{"5", "eacancelled", "Cancelled"}, {"2", "eaNo", "Attendance No"},
                                      {"4", "ename", "Employee"},       {"1", "eaID", "Attendance ID"},
                                      {"3", "eaDate", "Entry Date"}};
        for (const auto& c : catalogue)
            db.exec(QStringLiteral("insert into ptablecolumns(tableid, columnid, columnname, columnheader) "
                                   "values(9, %1, '%2', '%3')")
                        .arg(QLatin1String(c[0]), QLatin1String(c[1]), QLatin1String(c[2])));
        db.exec(QStringLiteral("insert into ptablecolumns(tableid, columnid, columnname, columnheader) "
                               "values(4, 0, 'eEmpID', 'Employee Code')"));
    }

    void TearDown() override {
        form.reset();
        qz2::db::setFaultHook({});
        qz2::msgbox_testing::setAutoAnswer(false);
        qz2::msgbox_testing::clear();
    }

    void addEmployee(int company, int id, const QString& name) {
        db.exec(QStringLiteral("insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive) "
                               "values(%1, %2, 'E%1', '%3', 1)")
                    .arg(id)
                    .arg(company)
                    .arg(name));
    }

    void addEntry(int company, int id, const QString& no, QDate date, int emp, bool cancelled) {
        db.exec(QStringLiteral("insert into pEmployeeAttendence(eaCompanyID, eaID, eaNo, eaDate, eaEmpID, "
                               "eaCancelled, eaStartDate, eaEndDate) values(%1, %2, '%3', '%4', %5, %6, '%7', '%8')")
                    .arg(company)
                    .arg(id)
                    .arg(no, iso(date))
                    .arg(emp)
                    .arg(cancelled ? 1 : 0)
                    .arg(iso(date.addDays(-27)), iso(date)));
    }

    void open() {
        form = std::make_unique<qz2::FrmMaster>();
        form->Form_Load();
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(form.get()));
    }

    QAbstractItemModel* model() const { return form->flexMaster->model(); }
    QString cell(int gridRow, int col) const { return model()->index(gridRow - 1, col).data().toString(); }
    QStringList column(int col) const {
        QStringList out;
        for (int r = 0; r < model()->rowCount(); ++r) out << model()->index(r, col).data().toString();
        return out;
    }
    QStringList ids() const { return column(0); }
    QStringList rowText(int gridRow) const {
        QStringList out;
        for (int c = 0; c < model()->columnCount(); ++c) out << cell(gridRow, c);
        return out;
    }
    // The grid row (heading = 0) whose identifier cell reads `id`; 0 when none.
    int rowOf(const QString& id) const {
        const int at = static_cast<int>(ids().indexOf(id));
        return at < 0 ? 0 : at + 1;
    }
    QStringList headings() const {
        QStringList out;
        for (int c = 0; c < model()->columnCount(); ++c) out << model()->headerData(c, Qt::Horizontal).toString();
        return out;
    }
    static QStringList items(const QComboBox* box) {
        QStringList out;
        for (int i = 0; i < box->count(); ++i) out << box->itemText(i);
        return out;
    }
    void clickRow(int gridRow, int col = 1) {
        const QModelIndex index = model()->index(gridRow - 1, col);
        ASSERT_TRUE(index.isValid());
        form->flexMaster->scrollTo(index);
        QTest::mouseClick(form->flexMaster->viewport(), Qt::LeftButton, {},
                          form->flexMaster->visualRect(index).center());
    }
    void chooseSortColumn(const QString& heading) {
        const int i = form->cboColNames->findText(heading);
        ASSERT_GE(i, 0) << heading.toStdString();
        form->cboColNames->setCurrentIndex(i);
    }
    void setButtons(bool newOn, bool editOn, bool deleteOn) {
        form->cmdnew->setEnabled(newOn);
        form->CmdEdit->setEnabled(editOn);
        form->CmdDelete->setEnabled(deleteOn);
    }
    void expectButtons(bool newOn, bool editOn, bool deleteOn) const {
        EXPECT_EQ(form->cmdnew->isEnabled(), newOn);
        EXPECT_EQ(form->CmdEdit->isEnabled(), editOn);
        EXPECT_EQ(form->CmdDelete->isEnabled(), deleteOn);
    }
    void giveRights(int user, qint32 interfaceId, const QString& rights) {
        db.exec(QStringLiteral("insert into puserrights(userid, interfaceid, functionrights) values(%1, %2, '%3')")
                    .arg(user)
                    .arg(interfaceId)
                    .arg(rights));
    }

    TestDb db;
    std::unique_ptr<qz2::FrmMaster> form;
};

QSet<QString> asSet(const QStringList& l) { return QSet<QString>(l.begin(), l.end()); }

// ---------------------------------------------------------------------------------------
// What is listed

TEST_F(RegisterWidget, ListsEveryEntryOfTheCompanyWhenNoDayLimitIsSet) {
    open();
    EXPECT_EQ(form->objectName(), QStringLiteral("FrmMaster"));
    EXPECT_EQ(form->flexMaster->objectName(), QStringLiteral("flexMaster"));
    ASSERT_EQ(model()->columnCount(), 5);
    EXPECT_EQ(asSet(ids()), (QSet<QString>{QStringLiteral("2"), QStringLiteral("7"), QStringLiteral("10")}));
    EXPECT_EQ(rowText(rowOf(QStringLiteral("7"))),
              (QStringList{QStringLiteral("7"), QStringLiteral("ATT-002"), QStringLiteral("21/10/2026"),
                           QStringLiteral("Asha Verma"), QStringLiteral("No")}));
    EXPECT_EQ(rowText(rowOf(QStringLiteral("2"))),
              (QStringList{QStringLiteral("2"), QStringLiteral("ATT-003"), QStringLiteral("10/11/2026"),
                           QStringLiteral("bruno Costa"), QStringLiteral("No")}));
    EXPECT_FALSE(column(1).contains(QStringLiteral("HC1")));
    EXPECT_FALSE(column(3).contains(QStringLiteral("Other Company Person")));
    EXPECT_TRUE(qz2::gstrMasterQuery.contains(QStringLiteral("EA.eaCompanyid  = 1")));
    EXPECT_EQ(qz2::glngInterfaceID, 91029);
    EXPECT_TRUE(form->loaded());
}

TEST_F(RegisterWidget, ThirtyDaysBackListsTheEntryOfDayThirtyButNotOfDayThirtyOne) {
    db.exec(QStringLiteral("update pSettings set noofPreviousdays = 30 where companyid = 1"));
    open();
    EXPECT_EQ(asSet(ids()), (QSet<QString>{QStringLiteral("2"), QStringLiteral("10")}));
    EXPECT_EQ(rowOf(QStringLiteral("7")), 0);
}

TEST_F(RegisterWidget, ZeroDaysBackIgnoresTheOtherCompanysLimit) {
    // Company 2 lists nothing older than a day; company 1 lists everything.
    db.exec(QStringLiteral("update pSettings set noofPreviousdays = 1 where companyid = 2"));
    open();
    EXPECT_EQ(ids().size(), 3);
}

TEST_F(RegisterWidget, TheOtherCompanySeesOnlyItsOwnEntries) {
    qz2::gintCompanyID = 2;
    open();
    EXPECT_EQ(ids(), QStringList{QStringLiteral("2")});
    EXPECT_EQ(cell(1, 1), QStringLiteral("HC1"));
    EXPECT_EQ(cell(1, 3), QStringLiteral("Other Company Person"));
}

TEST_F(RegisterWidget, CancelledEntryReadsYesAndItsRowIsRed) {
    open();
    const int cancelled = rowOf(QStringLiteral("10"));
    ASSERT_GT(cancelled, 0);
    EXPECT_EQ(cell(cancelled, 4), QStringLiteral("Yes"));
    for (int c = 0; c < 5; ++c) {
        const QVariant fg = model()->index(cancelled - 1, c).data(Qt::ForegroundRole);
        ASSERT_TRUE(fg.isValid()) << "column " << c;
        EXPECT_EQ(fg.value<QColor>(), QColor(255, 0, 0)) << "column " << c;
    }
    for (const QString& id : {QStringLiteral("2"), QStringLiteral("7")}) {
        const int r = rowOf(id);
        EXPECT_EQ(cell(r, 4), QStringLiteral("No"));
        for (int c = 0; c < 5; ++c)
            EXPECT_FALSE(model()->index(r - 1, c).data(Qt::ForegroundRole).isValid()) << "id " << id.toStdString();
    }
}

TEST_F(RegisterWidget, TheLastRowIsCurrentAfterLoading) {
    open();
    EXPECT_EQ(form->flexMaster->Row(), 3);
    EXPECT_TRUE(form->CmdEdit->isEnabled());
    EXPECT_EQ(form->CmdDelete->isEnabled(), cell(3, 4) == QLatin1String("No"));
}

TEST_F(RegisterWidget, AnEmptyListLeavesEditAndDeleteOff) {
    db.exec(QStringLiteral("delete from pEmployeeAttendence where eaCompanyID = 1"));
    open();
    EXPECT_EQ(form->flexMaster->Rows(), 1);
    EXPECT_EQ(form->flexMaster->Row(), 0);
    EXPECT_TRUE(form->cmdnew->isEnabled());
    EXPECT_FALSE(form->CmdEdit->isEnabled());
    EXPECT_FALSE(form->CmdDelete->isEnabled());
}

TEST_F(RegisterWidget, HeadingsComeFromTheCatalogueInColumnOrder) {
    open();
    const QStringList expected{QStringLiteral("Attendance ID"), QStringLiteral("Attendance No"),
                               QStringLiteral("Entry Date"), QStringLiteral("Employee"), QStringLiteral("Cancelled")};
    EXPECT_EQ(headings(), expected);
    EXPECT_EQ(items(form->cboColNames), expected);
    EXPECT_EQ(items(form->cboSearch), expected);
    for (int i = 0; i < form->cboSearch->count(); ++i) EXPECT_EQ(form->cboSearch->itemData(i).toInt(), i);
}

TEST_F(RegisterWidget, HeadingsFallBackToTheQuerysColumnNames) {
    db.exec(QStringLiteral("delete from ptablecolumns"));
    open();
    // The names as the database reports them for the list query.
    QSqlQuery q(db.db);
    ASSERT_TRUE(q.exec(qz2::gstrMasterQuery));
    QStringList expected;
    for (int i = 0; i < q.record().count(); ++i) expected << q.record().fieldName(i);
    ASSERT_EQ(expected.size(), 5);
    EXPECT_EQ(expected.first(), QStringLiteral("eaID"));
    EXPECT_EQ(expected.last(), QStringLiteral("eacancelled"));
    EXPECT_EQ(headings(), expected);
    EXPECT_EQ(items(form->cboColNames), expected);
    EXPECT_EQ(ids().size(), 3);
}

TEST_F(RegisterWidget, GridColorLeavesTheFirstRowWhoseNameReadsNoCurrent) {
    db.exec(QStringLiteral("update pEmployee set eName = 'No' where eEmpID = 1"));
    open();
    // The walk over column 3 stops on the first row reading "No", else on the last row.
    chooseSortColumn(QStringLiteral("Attendance ID"));  // 2, 7, 10
    ASSERT_EQ(ids(), (QStringList{QStringLiteral("2"), QStringLiteral("7"), QStringLiteral("10")}));
    clickRow(3);
    form->GridColor();
    EXPECT_EQ(form->flexMaster->Row(), 2);
    EXPECT_EQ(form->flexMaster->Col(), 3);

    db.exec(QStringLiteral("update pEmployee set eName = 'Asha Verma' where eEmpID = 1"));
    form->flexMaster->setTextMatrix(2, 3, QStringLiteral("Asha Verma"));
    clickRow(1);
    form->GridColor();
    EXPECT_EQ(form->flexMaster->Row(), 3);
}

// ---------------------------------------------------------------------------------------
// Sorting

TEST_F(RegisterWidget, SortsEachColumnBothWays) {
    open();
    struct Case {
        QString heading;
        QStringList ascending;
    };
    const Case cases[] = {
        // Identifiers compare as numbers (as text 10 would come first).
        {QStringLiteral("Attendance ID"), {QStringLiteral("2"), QStringLiteral("7"), QStringLiteral("10")}},
        {QStringLiteral("Attendance No"), {QStringLiteral("10"), QStringLiteral("7"), QStringLiteral("2")}},
        // A heading with "date" in it sorts on grid column 1: neither by the date's text
        // (2, 7, 10) nor by the date (7, 10, 2).
        {QStringLiteral("Entry Date"), {QStringLiteral("10"), QStringLiteral("7"), QStringLiteral("2")}},
        // Names compare without regard to case.
        {QStringLiteral("Employee"), {QStringLiteral("7"), QStringLiteral("2"), QStringLiteral("10")}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.heading.toStdString());
        QTest::mouseClick(form->optAscend, Qt::LeftButton);
        ASSERT_TRUE(form->optAscend->isChecked());
        chooseSortColumn(c.heading);
        EXPECT_EQ(ids(), c.ascending);
        QTest::mouseClick(form->optDescend, Qt::LeftButton);
        ASSERT_TRUE(form->optDescend->isChecked());
        QStringList descending = c.ascending;
        std::reverse(descending.begin(), descending.end());
        EXPECT_EQ(ids(), descending);
    }

    QTest::mouseClick(form->optAscend, Qt::LeftButton);
    chooseSortColumn(QStringLiteral("Cancelled"));
    EXPECT_EQ(column(4), (QStringList{QStringLiteral("No"), QStringLiteral("No"), QStringLiteral("Yes")}));
    EXPECT_EQ(ids().last(), QStringLiteral("10"));
    QTest::mouseClick(form->optDescend, Qt::LeftButton);
    EXPECT_EQ(column(4), (QStringList{QStringLiteral("Yes"), QStringLiteral("No"), QStringLiteral("No")}));
    EXPECT_EQ(ids().first(), QStringLiteral("10"));
}

TEST_F(RegisterWidget, RowsKeepTheirCellsAndColoursWhenSorted) {
    open();
    QTest::mouseClick(form->optDescend, Qt::LeftButton);
    chooseSortColumn(QStringLiteral("Employee"));
    ASSERT_EQ(ids(), (QStringList{QStringLiteral("10"), QStringLiteral("2"), QStringLiteral("7")}));
    EXPECT_EQ(rowText(1), (QStringList{QStringLiteral("10"), QStringLiteral("ATT-001"), QStringLiteral("22/10/2026"),
                                       QStringLiteral("Chen Li"), QStringLiteral("Yes")}));
    EXPECT_EQ(model()->index(0, 3).data(Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
    EXPECT_FALSE(model()->index(2, 3).data(Qt::ForegroundRole).isValid());
}

TEST_F(RegisterWidget, TheQueryNamesSortByDateOnTheNumberColumnToo) {
    db.exec(QStringLiteral("delete from ptablecolumns"));
    open();
    chooseSortColumn(QStringLiteral("eaDate"));
    EXPECT_EQ(ids(), (QStringList{QStringLiteral("10"), QStringLiteral("7"), QStringLiteral("2")}));
    chooseSortColumn(QStringLiteral("eaID"));
    EXPECT_EQ(ids(), (QStringList{QStringLiteral("2"), QStringLiteral("7"), QStringLiteral("10")}));
}

TEST_F(RegisterWidget, TheChosenEntryStaysChosenThroughASort) {
    open();
    chooseSortColumn(QStringLiteral("Attendance ID"));  // 2, 7, 10
    ASSERT_EQ(ids(), (QStringList{QStringLiteral("2"), QStringLiteral("7"), QStringLiteral("10")}));
    clickRow(3);  // 10, cancelled
    ASSERT_FALSE(form->CmdDelete->isEnabled());
    QTest::mouseClick(form->optDescend, Qt::LeftButton);  // 10, 7, 2: a live entry lands on row 3
    ASSERT_EQ(ids(), (QStringList{QStringLiteral("10"), QStringLiteral("7"), QStringLiteral("2")}));
    EXPECT_EQ(form->flexMaster->Row(), 1);
    EXPECT_EQ(cell(form->flexMaster->Row(), 0), QStringLiteral("10"));
    EXPECT_TRUE(form->flexMaster->selectionModel()->isRowSelected(0, {}));
    EXPECT_FALSE(form->flexMaster->selectionModel()->isRowSelected(2, {}));
    EXPECT_FALSE(form->CmdDelete->isEnabled());

    clickRow(3);  // 2, live
    ASSERT_TRUE(form->CmdDelete->isEnabled());
    chooseSortColumn(QStringLiteral("Employee"));  // descending: 10 (Chen), 2 (bruno), 7 (Asha)
    ASSERT_EQ(ids(), (QStringList{QStringLiteral("10"), QStringLiteral("2"), QStringLiteral("7")}));
    EXPECT_EQ(cell(form->flexMaster->Row(), 0), QStringLiteral("2"));
    EXPECT_TRUE(form->CmdDelete->isEnabled());
    // The keys act on the entry that is highlighted.
    QString question;
    qz2test::answerNextMessageBox(QMessageBox::No, &question);
    QTest::keyClick(form->flexMaster, Qt::Key_Delete);
    EXPECT_EQ(question, QStringLiteral("Are you sure you want to delete Entry - 2?"));
}

TEST_F(RegisterWidget, AfterEverySortTheButtonsMatchTheHighlightedEntry) {
    qz2::gintUserID = 3;
    giveRights(3, 91029, QStringLiteral("ADMIN"));
    open();
    const QStringList headings{QStringLiteral("Attendance ID"), QStringLiteral("Attendance No"),
                               QStringLiteral("Entry Date"), QStringLiteral("Employee"), QStringLiteral("Cancelled")};
    for (const QString& start : {QStringLiteral("2"), QStringLiteral("7"), QStringLiteral("10")}) {
        for (const QString& heading : headings) {
            for (QRadioButton* direction : {form->optAscend, form->optDescend}) {
                SCOPED_TRACE((start + QLatin1Char(' ') + heading + QLatin1Char(' ') + direction->objectName())
                                 .toStdString());
                clickRow(rowOf(start));
                // The rights turn everything off; what follows must set the buttons for the row.
                form->UserRights();
                QTest::mouseClick(direction, Qt::LeftButton);
                chooseSortColumn(heading);
                const int row = form->flexMaster->Row();
                ASSERT_GT(row, 0);
                EXPECT_EQ(cell(row, 0), start);
                EXPECT_TRUE(form->CmdEdit->isEnabled());
                EXPECT_EQ(form->CmdDelete->isEnabled(), cell(row, 4) == QLatin1String("No"));
                EXPECT_FALSE(form->cmdnew->isEnabled());  // the click logic leaves New to the rights
            }
        }
    }
}

// ---------------------------------------------------------------------------------------
// Searching

TEST_F(RegisterWidget, TypedSearchMakesTheFirstMatchCurrentAndSelectsIt) {
    open();
    form->cboSearch->setCurrentIndex(form->cboSearch->findText(QStringLiteral("Employee")));
    clickRow(rowOf(QStringLiteral("2")));
    QTest::keyClicks(form->txtsearch, QStringLiteral("Ch"));
    const int hit = rowOf(QStringLiteral("10"));
    EXPECT_EQ(form->flexMaster->Row(), hit);
    EXPECT_TRUE(form->flexMaster->selectionModel()->isRowSelected(hit - 1, {}));
    for (int r = 1; r <= 3; ++r) {
        if (r == hit) continue;
        EXPECT_FALSE(form->flexMaster->selectionModel()->isRowSelected(r - 1, {})) << "row " << r;
    }
    // The click logic ran: the match is cancelled, so Delete is off.
    EXPECT_TRUE(form->CmdEdit->isEnabled());
    EXPECT_FALSE(form->CmdDelete->isEnabled());
}

TEST_F(RegisterWidget, SearchStopsAtTheFirstMatchFromTheTop) {
    open();
    form->cboSearch->setCurrentIndex(form->cboSearch->findText(QStringLiteral("Attendance No")));
    chooseSortColumn(QStringLiteral("Attendance ID"));  // 2 (ATT-003), 7, 10 (ATT-001)
    QTest::keyClicks(form->txtsearch, QStringLiteral("  ATT-00"));
    EXPECT_EQ(form->flexMaster->Row(), 1);
    EXPECT_EQ(cell(form->flexMaster->Row(), 0), QStringLiteral("2"));

    form->txtsearch->clear();
    QTest::mouseClick(form->optDescend, Qt::LeftButton);  // 10 first now
    QTest::keyClicks(form->txtsearch, QStringLiteral("ATT-00"));
    EXPECT_EQ(cell(form->flexMaster->Row(), 0), QStringLiteral("10"));
    QTest::keyClicks(form->txtsearch, QStringLiteral("2"));
    EXPECT_EQ(cell(form->flexMaster->Row(), 0), QStringLiteral("7"));
}

TEST_F(RegisterWidget, SearchWithoutMatchLeavesTheCurrentRow) {
    open();
    form->cboSearch->setCurrentIndex(form->cboSearch->findText(QStringLiteral("Employee")));
    const int start = rowOf(QStringLiteral("7"));
    clickRow(start);
    ASSERT_EQ(form->flexMaster->Row(), start);
    QTest::keyClicks(form->txtsearch, QStringLiteral("zz"));
    EXPECT_EQ(form->flexMaster->Row(), start);
    EXPECT_TRUE(form->flexMaster->selectionModel()->isRowSelected(start - 1, {}));
}

TEST_F(RegisterWidget, EmptySearchMovesNothing) {
    open();
    form->cboSearch->setCurrentIndex(form->cboSearch->findText(QStringLiteral("Employee")));
    QTest::keyClicks(form->txtsearch, QStringLiteral("zz"));
    const int start = rowOf(QStringLiteral("7"));
    clickRow(start);
    QTest::keyClick(form->txtsearch, Qt::Key_Backspace);
    QTest::keyClick(form->txtsearch, Qt::Key_Backspace);
    ASSERT_TRUE(form->txtsearch->text().isEmpty());
    EXPECT_EQ(form->flexMaster->Row(), start);
    // Blanks only count as empty too ("A" would match Asha, "b" bruno).
    QTest::keyClicks(form->txtsearch, QStringLiteral("   "));
    EXPECT_EQ(form->flexMaster->Row(), start);
}

// ---------------------------------------------------------------------------------------
// Keys on the grid

TEST_F(RegisterWidget, EnterOpensTheEntryForEditing) {
    open();
    clickRow(rowOf(QStringLiteral("2")));
    ASSERT_TRUE(form->CmdEdit->isEnabled());
    const QString before = db.dump();
    EntryFormSeen seen;
    closeEntryFormWhenShown(&seen);
    QTest::keyClick(form->flexMaster, Qt::Key_Return);
    EXPECT_EQ(seen.name, QStringLiteral("frmEmployeeDailyAttendance")) << seen.boxes.join(" | ").toStdString();
    EXPECT_EQ(seen.mode, QStringLiteral("E"));
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(db.dump(), before);
}

TEST_F(RegisterWidget, KeypadEnterAndDoubleClickOpenTheEntryToo) {
    open();
    clickRow(rowOf(QStringLiteral("7")));
    EntryFormSeen byKeypad;
    closeEntryFormWhenShown(&byKeypad);
    QTest::keyClick(form->flexMaster, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(byKeypad.name, QStringLiteral("frmEmployeeDailyAttendance"));

    EntryFormSeen byMouse;
    closeEntryFormWhenShown(&byMouse);
    const QModelIndex index = model()->index(rowOf(QStringLiteral("7")) - 1, 1);
    QTest::mouseDClick(form->flexMaster->viewport(), Qt::LeftButton, {}, form->flexMaster->visualRect(index).center());
    EXPECT_EQ(byMouse.name, QStringLiteral("frmEmployeeDailyAttendance"));
}

TEST_F(RegisterWidget, EnterDoesNothingWhileEditIsOff) {
    open();
    clickRow(rowOf(QStringLiteral("2")));
    form->CmdEdit->setEnabled(false);
    ModalGuard guard;
    QTest::keyClick(form->flexMaster, Qt::Key_Return);
    QTest::qWait(50);
    EXPECT_TRUE(guard.seen().isEmpty()) << guard.seen().join(" | ").toStdString();
    EXPECT_TRUE(form->isVisible());  // Enter never closes the register
}

TEST_F(RegisterWidget, CtrlEnterStartsANewEntry) {
    open();
    clickRow(rowOf(QStringLiteral("2")));
    qz2::gstrEntryMode = QStringLiteral("E");
    const QString before = db.dump();
    EntryFormSeen seen;
    closeEntryFormWhenShown(&seen);
    QTest::keyClick(form->flexMaster, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(seen.name, QStringLiteral("frmEmployeeDailyAttendance")) << seen.boxes.join(" | ").toStdString();
    EXPECT_EQ(seen.mode, QStringLiteral("N"));
    EXPECT_EQ(qz2::gstrEntryMode, QStringLiteral("N"));
    EXPECT_EQ(db.dump(), before);
}

TEST_F(RegisterWidget, CtrlEnterDoesNothingWhileNewIsOffEvenWithEditOn) {
    open();
    clickRow(rowOf(QStringLiteral("2")));
    form->cmdnew->setEnabled(false);
    ASSERT_TRUE(form->CmdEdit->isEnabled());
    ModalGuard guard;
    QTest::keyClick(form->flexMaster, Qt::Key_Return, Qt::ControlModifier);
    QTest::qWait(50);
    EXPECT_TRUE(guard.seen().isEmpty()) << guard.seen().join(" | ").toStdString();
}

TEST_F(RegisterWidget, DeleteKeyAsksAndNoChangesNothing) {
    open();
    const int row = rowOf(QStringLiteral("2"));
    clickRow(row);
    ASSERT_TRUE(form->CmdDelete->isEnabled());
    const QString before = db.dump();
    QString question;
    qz2test::answerNextMessageBox(QMessageBox::No, &question);
    QTest::keyClick(form->flexMaster, Qt::Key_Delete);
    EXPECT_EQ(question, QStringLiteral("Are you sure you want to delete Entry - 2?"));
    ASSERT_FALSE(qz2::msgbox_testing::shown().isEmpty());
    const qz2::ShownMessage& asked = qz2::msgbox_testing::shown().last();
    EXPECT_EQ(asked.buttons, qz2::MsgButtons::YesNo);
    EXPECT_EQ(asked.icon, qz2::MsgIcon::Question);
    EXPECT_EQ(asked.title, QStringLiteral("Attendance Test"));
    EXPECT_EQ(qz2::msgbox_testing::shown().size(), 1);
    EXPECT_EQ(cell(row, 4), QStringLiteral("No"));
    EXPECT_EQ(form->flexMaster->Row(), row);
    EXPECT_EQ(db.dump(), before);
}

TEST_F(RegisterWidget, DeleteKeyDoesNothingOnACancelledRow) {
    open();
    clickRow(rowOf(QStringLiteral("10")));
    ASSERT_FALSE(form->CmdDelete->isEnabled());
    qz2::msgbox_testing::setAutoAnswer(true, qz2::MsgResult::No);
    ModalGuard guard;
    QTest::keyClick(form->flexMaster, Qt::Key_Delete);
    EXPECT_TRUE(qz2::msgbox_testing::shown().isEmpty());
    EXPECT_TRUE(guard.seen().isEmpty());
}

// ---------------------------------------------------------------------------------------
// Rights

TEST_F(RegisterWidget, UserOneHasEveryRightWithoutReadingTheRightsTable) {
    db.exec(QStringLiteral("drop table puserrights"));
    QStringList statements;
    qz2::db::setFaultHook([&statements](const QString& sql) {
        statements << sql;
        return QString();
    });
    open();
    qz2::db::setFaultHook({});
    EXPECT_EQ(ids().size(), 3);
    // The link table's query names every table; what must not run is a read of the rights.
    const QRegularExpression readsRights(QStringLiteral("from\\s+puserrights"), QRegularExpression::CaseInsensitiveOption);
    ASSERT_FALSE(statements.isEmpty());
    for (const QString& s : statements) EXPECT_FALSE(s.contains(readsRights)) << s.toStdString();
    EXPECT_EQ(form->strFunctionRights, QStringLiteral("NEDUP"));
    setButtons(false, false, false);
    form->UserRights();
    expectButtons(true, true, true);
}

TEST_F(RegisterWidget, AFailingRightsQueryLeavesTheButtons) {
    db.exec(QStringLiteral("drop table puserrights"));
    qz2::gintUserID = 2;
    open();
    setButtons(false, true, false);
    form->UserRights();
    expectButtons(false, true, false);
}

TEST_F(RegisterWidget, AUserWithoutARightsRowKeepsTheButtonsAsTheyWere) {
    qz2::gintUserID = 4;
    giveRights(4, 91030, QStringLiteral("NEDUP"));  // another screen's rights do not count
    QStringList statements;
    qz2::db::setFaultHook([&statements](const QString& sql) {
        statements << sql;
        return QString();
    });
    open();
    qz2::db::setFaultHook({});
    EXPECT_TRUE(statements.contains(
        QStringLiteral("select functionrights from puserrights where userid = 4 and interfaceid = 91029")));
    EXPECT_TRUE(form->strFunctionRights.isEmpty());
    setButtons(false, true, false);
    form->UserRights();
    expectButtons(false, true, false);
    setButtons(true, false, true);
    form->UserRights();
    expectButtons(true, false, true);
}

TEST_F(RegisterWidget, AdminGrantsNothing) {
    qz2::gintUserID = 3;
    giveRights(3, 91029, QStringLiteral("ADMIN"));
    open();
    // Load applies the rights and then the click logic on the last row: New stays off.
    EXPECT_FALSE(form->cmdnew->isEnabled());
    setButtons(true, true, true);
    form->UserRights();
    expectButtons(false, false, false);
    QString rights = QStringLiteral(" admin ");
    EXPECT_FALSE(form->fnUserRights(QStringLiteral("A"), rights));
    EXPECT_EQ(rights, QStringLiteral("ADMIN"));
}

TEST_F(RegisterWidget, LettersAnywhereInTheRightsCount) {
    qz2::gintUserID = 5;
    giveRights(5, 91029, QStringLiteral(" xne "));
    open();
    setButtons(false, false, true);
    form->UserRights();
    expectButtons(true, true, false);
    EXPECT_EQ(form->strFunctionRights, QStringLiteral("XNE"));
    QString rights = QStringLiteral("xne");
    EXPECT_TRUE(form->fnUserRights(QStringLiteral(" e "), rights));
    EXPECT_FALSE(form->fnUserRights(QStringLiteral("d"), rights));
}

TEST_F(RegisterWidget, ClickingADataRowBringsEditAndDeleteBackWhateverTheRights) {
    qz2::gintUserID = 3;
    giveRights(3, 91029, QStringLiteral("ADMIN"));
    open();
    form->UserRights();
    expectButtons(false, false, false);
    clickRow(rowOf(QStringLiteral("7")));
    expectButtons(false, true, true);
    clickRow(rowOf(QStringLiteral("10")));  // cancelled: Delete stays off
    expectButtons(false, true, false);
    clickRow(rowOf(QStringLiteral("2")));
    expectButtons(false, true, true);
}

TEST_F(RegisterWidget, DeleteRightMissingStillComesBackOnARowClick) {
    qz2::gintUserID = 5;
    giveRights(5, 91029, QStringLiteral("XNE"));
    open();
    form->UserRights();
    expectButtons(true, true, false);
    clickRow(rowOf(QStringLiteral("2")));
    expectButtons(true, true, true);
}

}  // namespace

// ---- Rights fail closed ------------------------------------------------------------------

TEST_F(RegisterWidget, NothingCanBeStartedBeforeTheRightsAreKnown) {
    // A fresh register, before its load: New, Edit and Delete are off.
    form = std::make_unique<qz2::FrmMaster>();
    expectButtons(false, false, false);
}

TEST_F(RegisterWidget, ALoadThatFailsBeforeTheRightsLeavesEveryButtonOff) {
    db.exec(QStringLiteral("delete from pSettings where companyid = 1"));
    qz2::gintUserID = 1;  // full rights, had they been read
    open();
    expectButtons(false, false, false);
    EXPECT_TRUE(form->lblStatus->text().startsWith(QStringLiteral("The list could not be read")));
}

TEST_F(RegisterWidget, AUserWithoutARightsRowCannotStartANewEntry) {
    qz2::gintUserID = 4;
    open();
    // New stays off; the row-click logic still turns Edit on for the current row, as the
    // register has always done whatever the rights.
    EXPECT_FALSE(form->cmdnew->isEnabled());
    EXPECT_TRUE(form->CmdEdit->isEnabled());
}
