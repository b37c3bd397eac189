#include "Views/Lists/RowListModel.h"

#include <gtest/gtest.h>

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <random>

namespace orvane {
namespace {

struct Row {
    std::string id;
    int value = 0;

    QVariantList values() const { return {QString::fromStdString(id), value}; }
    friend bool operator==(const Row&, const Row&) = default;
};

class TestRows final : public RowListModel::Rows {
  public:
    explicit TestRows(std::vector<Row> rows) : rows_(std::move(rows)) {}

    int count() const override { return static_cast<int>(rows_.size()); }
    std::string_view id(int row) const override { return at(row).id; }
    bool isEqual(int row, const Rows& former, int formerRow) const override {
        return at(row) == static_cast<const TestRows&>(former).at(formerRow);
    }
    QVariant value(int row, int role) const override { return at(row).values().at(role); }

  private:
    const Row& at(int row) const { return rows_[static_cast<std::size_t>(row)]; }

    std::vector<Row> rows_;
};

Row makeRow(const std::string& id, int value = 0) {
    return {id, value};
}

std::vector<Row> makeRows(std::initializer_list<const char*> ids) {
    std::vector<Row> rows;
    for (const char* id : ids) rows.push_back(makeRow(id));
    return rows;
}

/// What a view that only believes the model's signals has on its screen.
class Screen : public QObject {
  public:
    explicit Screen(const RowListModel& model) : model_(model) {
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, this,
                         [this](const QModelIndex&, int first, int last) {
                             for (int row = first; row <= last; ++row)
                                 lines_.insert(lines_.begin() + row, line(row));
                         });
        QObject::connect(&model, &QAbstractItemModel::rowsRemoved, this,
                         [this](const QModelIndex&, int first, int last) {
                             lines_.erase(lines_.begin() + first, lines_.begin() + last + 1);
                         });
        QObject::connect(&model, &QAbstractItemModel::dataChanged, this,
                         [this](const QModelIndex& first, const QModelIndex& last) {
                             for (int row = first.row(); row <= last.row(); ++row)
                                 lines_[static_cast<std::size_t>(row)] = line(row);
                         });
    }

    /// Empty when the screen shows the rows; else the first line that differs.
    std::string difference(const std::vector<Row>& rows) const {
        if (lines_.size() != rows.size()) return std::to_string(lines_.size()) + " lines";
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (lines_[i] != rows[i].values()) return "line " + std::to_string(i);
        return "";
    }

  private:
    QVariantList line(int row) const {
        const QModelIndex index = model_.index(row);
        return {index.data(Qt::UserRole), index.data(Qt::UserRole + 1)};
    }

    const RowListModel& model_;
    std::vector<QVariantList> lines_;
};

class RowListModelTest : public testing::Test {
  protected:
    RowListModel model{{"title", "value"}};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Warning};
    Screen screen{model};
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    QSignalSpy removed{&model, &QAbstractItemModel::rowsRemoved};
    QSignalSpy changed{&model, &QAbstractItemModel::dataChanged};
    QSignalSpy reset{&model, &QAbstractItemModel::modelReset};
};

TEST_F(RowListModelTest, HasNothingBelowARow) {
    model.setRows(std::make_unique<TestRows>(std::vector{makeRow("a", 7)}));
    EXPECT_EQ(model.rowCount(model.index(0)), 0);
}

TEST_F(RowListModelTest, GivesItsValuesUnderTheirNames) {
    model.setRows(std::make_unique<TestRows>(std::vector{makeRow("a", 7)}));
    const QHash<int, QByteArray> names = model.roleNames();
    EXPECT_EQ(model.index(0).data(names.key("title")), QStringLiteral("a"));
    EXPECT_EQ(model.index(0).data(names.key("value")), 7);
    EXPECT_FALSE(model.index(0).data(Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.index(0).data(Qt::UserRole + 2).isValid());
    EXPECT_FALSE(model.data(model.index(1), Qt::UserRole).isValid());
}

TEST_F(RowListModelTest, SaysNothingWhenNothingChanged) {
    model.setRows(std::make_unique<TestRows>(makeRows({"a", "b"})));
    inserted.clear();
    model.setRows(std::make_unique<TestRows>(makeRows({"a", "b"})));
    EXPECT_EQ(inserted.size() + removed.size() + changed.size() + reset.size(), 0);
}

TEST_F(RowListModelTest, AnnouncesOnlyTheRowThatChanged) {
    model.setRows(std::make_unique<TestRows>(makeRows({"a", "b", "c"})));
    model.setRows(std::make_unique<TestRows>(std::vector{makeRow("a"), makeRow("b", 1), makeRow("c")}));
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changed[0][1].toModelIndex().row(), 1);
    EXPECT_EQ(removed.size(), 0);
}

TEST_F(RowListModelTest, TakesOutOnlyTheRowThatWent) {
    model.setRows(std::make_unique<TestRows>(makeRows({"a", "b", "c"})));
    inserted.clear();
    model.setRows(std::make_unique<TestRows>(makeRows({"a", "c"})));
    ASSERT_EQ(removed.size(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 1);
    EXPECT_EQ(removed[0][2].toInt(), 1);
    EXPECT_EQ(inserted.size() + changed.size() + reset.size(), 0);
}

TEST_F(RowListModelTest, AnswersAsTheViewSeesItWhileRowsGo) {
    model.setRows(std::make_unique<TestRows>(makeRows({"a", "b", "c", "d", "e"})));
    std::vector<int> rowsOfE;
    QObject::connect(&model, &QAbstractItemModel::rowsRemoved, &screen, [&] {
        rowsOfE.push_back(model.rowOf("e"));
        EXPECT_EQ(model.id(model.rowCount() - 1), "e");
    });
    model.setRows(std::make_unique<TestRows>(makeRows({"b", "d", "e"})));
    EXPECT_EQ(rowsOfE, (std::vector{3, 2}));
    EXPECT_EQ(model.rowOf("a"), -1);
}

TEST_F(RowListModelTest, ShowsARowThatGoesUntilItHasGoneAndNoneThatHasYetToCome) {
    model.setRows(std::make_unique<TestRows>(makeRows({"a", "b"})));
    std::vector<std::string> shown;
    const auto look = [&] {
        shown.emplace_back();
        for (int row = 0; row < model.rowCount(); ++row) shown.back() += model.id(row);
    };
    QObject::connect(&model, &QAbstractItemModel::rowsAboutToBeRemoved, &screen, look);
    QObject::connect(&model, &QAbstractItemModel::rowsRemoved, &screen, look);
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, &screen, look);
    model.setRows(std::make_unique<TestRows>(makeRows({"x", "b"})));
    EXPECT_EQ(shown, (std::vector<std::string>{"ab", "b", "xb"}));
}

TEST_F(RowListModelTest, KeepsAViewInStepThroughRandomEdits) {
    std::mt19937 random(11);
    for (int round = 0; round < 1500; ++round) {
        std::vector<Row> rows(random() % 25);
        // Some keys occur twice.
        for (Row& row : rows) row = makeRow(std::to_string(random() % 40), static_cast<int>(random() % 2));
        model.setRows(std::make_unique<TestRows>(rows));
        ASSERT_EQ(screen.difference(rows), "") << "in round " << round;
    }
    EXPECT_EQ(reset.size(), 0);
}

TEST(RowListModel, TakesEveryOtherOfTenThousandRowsOutAndBackIn) {
    RowListModel model({"title", "value"});
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    std::vector<Row> all;
    for (int i = 0; i < 10'000; ++i) all.push_back(makeRow(std::to_string(i)));
    std::vector<Row> half;
    for (std::size_t i = 0; i < all.size(); i += 2) half.push_back(all[i]);
    for (const std::vector<Row>& rows : {all, half, all, std::vector<Row>(), half}) {
        model.setRows(std::make_unique<TestRows>(rows));
        ASSERT_EQ(model.rowCount(), static_cast<int>(rows.size()));
        for (int i = 0; i < model.rowCount(); ++i)
            ASSERT_EQ(model.id(i), rows[static_cast<std::size_t>(i)].id);
    }
    EXPECT_EQ(reset.size(), 0);
}

}  // namespace
}  // namespace orvane
