#include "Views/Lists/LazyListModel.h"

#include <gtest/gtest.h>

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <vector>

namespace orvane::test {
namespace {

class LazyListModelTest : public testing::Test {
  protected:
    std::vector<int> asked;
    LazyListModel model{{"number", "square"}, [this](int row) {
                            asked.push_back(row);
                            return QVariantList{row, row * row};
                        }};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Warning};
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    QSignalSpy changed{&model, &QAbstractItemModel::dataChanged};
};

TEST_F(LazyListModelTest, AsksForTheValuesOfTheRowThatIsSeenAlone) {
    model.fill(2000);
    ASSERT_EQ(inserted.size(), 1);
    EXPECT_EQ(model.rowCount(), 2000);
    asked.clear();
    const QHash<int, QByteArray> names = model.roleNames();
    EXPECT_EQ(model.index(7).data(names.key("number")), 7);
    EXPECT_EQ(model.index(7).data(names.key("square")), 49);
    EXPECT_EQ(asked, (std::vector{7, 7}));
}

TEST_F(LazyListModelTest, HasNoOtherValues) {
    model.fill(1);
    EXPECT_FALSE(model.index(0).data(Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.index(0).data(Qt::UserRole + 2).isValid());
    EXPECT_FALSE(model.data(model.index(1), Qt::UserRole).isValid());
    EXPECT_EQ(model.rowCount(model.index(0)), 0);
}

TEST_F(LazyListModelTest, TellsOfTheRowsThatChange) {
    model.fill(5);
    model.changeRows(1, 3);
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changed[0][1].toModelIndex().row(), 3);
}

TEST_F(LazyListModelTest, TellsOfNothingWhereThereIsNothing) {
    model.fill(0);
    model.changeRows(0, -1);
    EXPECT_EQ(inserted.size() + changed.size(), 0);
}

}  // namespace
}  // namespace orvane::test
