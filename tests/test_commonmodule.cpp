// The suite's shared helper classes as the forms use them: created by ProgID whatever the
// letter case, reading one field, numbering the next row, filling and selecting lists.

#include <gtest/gtest.h>

#include <QComboBox>
#include <QListWidget>

#include "TestSupport.h"
#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "shared/BasAttendence.h"

using namespace qz2::commonmodule;
using qz2test::TestDb;

namespace {

struct CommonModuleFixture : ::testing::Test {
    void SetUp() override {
        t.exec(
            "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,eActive) values"
            "(7,1,'E7','Zoe Zimmer',1),(3,1,'E3','Adam Owens',1),(9,1,'E9','Mia Inactive',0),"
            "(4,2,'E4','Other Company',1)");
        t.exec("insert into ausers(userid,username,companyid) values(1,'admin',1),(2,'clerk',1)");
    }
    TestDb t;
};

}  // namespace

TEST(CommonModuleCreation, ProgIdsAreMatchedWithoutRegardToCase) {
    for (const char* id : {"CommonModule.clsCommonDB", "CommonModule.clscommondb", "COMMONMODULE.CLSCOMMONDB"}) {
        auto obj = CreateObject(QString::fromLatin1(id));
        ASSERT_NE(obj, nullptr) << id;
        EXPECT_NE(dynamic_cast<clsCommonDB*>(obj.get()), nullptr) << id;
    }
    for (const char* id : {"CommonModule.clsCommonGen", "commonmodule.clscommongen"}) {
        auto obj = CreateObject(QString::fromLatin1(id));
        ASSERT_NE(obj, nullptr) << id;
        EXPECT_NE(dynamic_cast<clsCommonGen*>(obj.get()), nullptr) << id;
    }
    EXPECT_EQ(CreateObject(QStringLiteral("CommonModule.clsCommon")), nullptr);
    EXPECT_EQ(CreateObject(QStringLiteral("Other.clsCommonDB")), nullptr);
    EXPECT_EQ(CreateObject(QString()), nullptr);
}

TEST_F(CommonModuleFixture, ReturnFieldReadsTheFirstQualifyingRow) {
    auto helper = createCommonDB(t.db);
    helper->strTableName = QStringLiteral("pEmployee");
    EXPECT_EQ(helper->fnReturnField(QStringLiteral("eName"), QStringLiteral("eEmpID=3")).toString(),
              QStringLiteral("Adam Owens"));
    EXPECT_TRUE(helper->fnReturnField(QStringLiteral("eName"), QStringLiteral("eEmpID=99")).isNull());
    // The table may carry its own condition, as the error log's user lookup does.
    helper->strTableName = QStringLiteral("ausers where userid=2");
    EXPECT_EQ(helper->fnReturnField(QStringLiteral("username")).toString(), QStringLiteral("clerk"));
    // A missing column is the database's error.
    helper->strTableName = QStringLiteral("pEmployee");
    EXPECT_THROW(helper->fnReturnField(QStringLiteral("noSuchColumn")), qz2::db::DbError);
}

TEST_F(CommonModuleFixture, NextMaxNoIsTheMaximumPlusOne) {
    auto helper = createCommonDB(t.db);
    helper->strTableName = QStringLiteral("pEmployeeAttendence");
    EXPECT_EQ(helper->fnGetNextMaxNo(QStringLiteral("eaID")), 1);  // an empty table
    helper->strTableName = QStringLiteral("pEmployee");
    EXPECT_EQ(helper->fnGetNextMaxNo(QStringLiteral("eEmpID")), 10);
}

TEST_F(CommonModuleFixture, PopulateFillsTextAndDataInNameOrder) {
    auto helper = createCommonDB(t.db);
    helper->strTableName = QStringLiteral("pEmployee");
    QComboBox box;
    box.addItem(QStringLiteral("stale"), 99);
    int changes = 0;
    QObject::connect(&box, &QComboBox::currentIndexChanged, [&changes] { ++changes; });
    helper->populatecomboorlist(&box, QStringLiteral("eEmpId"), QStringLiteral("ename"),
                                QStringLiteral("eCompanyID=1 And eActive = 1"));
    ASSERT_EQ(box.count(), 2);
    EXPECT_EQ(box.itemText(0), QStringLiteral("Adam Owens"));
    EXPECT_EQ(box.itemData(0).toInt(), 3);
    EXPECT_EQ(box.itemText(1), QStringLiteral("Zoe Zimmer"));
    EXPECT_EQ(box.itemData(1).toInt(), 7);
    EXPECT_EQ(box.currentIndex(), -1);  // filling chooses nobody
    EXPECT_EQ(changes, 0);              // and is not the clerk's choice

    QListWidget list;
    helper->populatecomboorlist(&list, QStringLiteral("eEmpId"), QStringLiteral("ename"),
                                QStringLiteral("eCompanyID=2"));
    ASSERT_EQ(list.count(), 1);
    EXPECT_EQ(list.item(0)->text(), QStringLiteral("Other Company"));
    EXPECT_EQ(list.item(0)->data(Qt::UserRole).toInt(), 4);
}

TEST_F(CommonModuleFixture, SelectingByValueRaisesTheBoxsChangeOrLeavesItAlone) {
    QComboBox box;
    box.addItem(QStringLiteral("Adam Owens"), 3);
    box.addItem(QStringLiteral("Zoe Zimmer"), 7);
    box.setCurrentIndex(0);
    int changes = 0;
    QObject::connect(&box, &QComboBox::currentIndexChanged, [&changes] { ++changes; });
    auto db = createCommonDB(t.db);
    qint16 seven = 7;
    db->SelectComboItem(&box, seven);
    EXPECT_EQ(box.currentIndex(), 1);
    EXPECT_EQ(changes, 1);
    qint16 missing = 42;
    db->SelectComboItem(&box, missing);
    EXPECT_EQ(box.currentIndex(), 1);
    auto gen = createCommonGen();
    gen->SelectComboItemByValue(&box, QVariant(3));
    EXPECT_EQ(box.currentIndex(), 0);
    EXPECT_EQ(changes, 2);
    gen->SelectComboItemByValue(&box, QVariant(12345));
    EXPECT_EQ(box.currentIndex(), 0);
}
