#include "app/lists/RecordList.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

namespace tovi {
namespace {

std::vector<FileRecord> records(const std::string& letters, std::int64_t size = 1) {
    std::vector<FileRecord> files;
    for (const char letter : letters) {
        FileRecord file;
        file.path = file.name = letter;
        file.size = size;
        files.push_back(file);
    }
    return files;
}

std::string letters(const RecordList& list) {
    std::string result;
    for (const FileRecord& file : list.rows())
        result += file.path;
    return result;
}

TEST(DifferenceListModelTests, EveryChangeKeepsTheRowsThatStay) {
    std::mt19937 random(7);
    RecordList list;
    const QAbstractItemModelTester tester(&list,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::string before;
    for (int round = 0; round < 500; ++round) {
        std::string all(round % 3 == 0 ? 94 : 10, ' '); // with many runs that change, and few
        std::iota(all.begin(), all.end(), '!');
        if (round % 2 == 0) std::shuffle(all.begin(), all.end(), random);
        std::string after;
        std::sample(all.begin(), all.end(), std::back_inserter(after), random() % (all.size() + 1),
                    random);
        std::map<char, QPersistentModelIndex> selected;
        for (int row = 0; row < list.count(); ++row)
            selected.emplace(before[static_cast<std::size_t>(row)], list.index(row, 0));

        list.replace(records(after, round));

        ASSERT_EQ(letters(list), after) << "from " << before;
        for (const auto& [letter, index] : selected) {
            const auto place = after.find(letter);
            ASSERT_EQ(index.isValid(), place != std::string::npos);
            if (index.isValid()) {
                ASSERT_EQ(index.row(), static_cast<int>(place));
            }
        }
        if (!after.empty()) {
            ASSERT_EQ(list.value(0, QStringLiteral("size")), round);
        }
        before = after;
    }
}

TEST(DifferenceListModelTests, SaysNothingOfRowsThatAreTheSame) {
    RecordList list;
    list.replace(records("abcd"));
    std::vector<std::pair<int, int>> changed;
    int others = 0;
    QObject::connect(&list, &RecordList::dataChanged,
                     [&](const QModelIndex& first, const QModelIndex& last) {
                         changed.emplace_back(first.row(), last.row());
                     });
    for (const auto signal : {&RecordList::rowsInserted, &RecordList::rowsRemoved})
        QObject::connect(&list, signal, [&] { ++others; });
    list.replace(records("abcd"));
    EXPECT_TRUE(changed.empty());
    auto files = records("abcd");
    files[1].size = files[2].size = 5;
    list.replace(files);
    EXPECT_EQ(changed, (std::vector<std::pair<int, int>>{{1, 2}}));
    EXPECT_EQ(others, 0);
}

TEST(DifferenceListModelTests, AppendLeavesOutWhatIsThere) {
    RecordList list;
    list.replace(records("abba"));
    list.append(records("bcdc"));
    EXPECT_EQ(letters(list), "abcd");
    EXPECT_EQ(list.rowOf(QStringLiteral("d")), 3);
    EXPECT_EQ(list.rowOf(QStringLiteral("e")), -1);
}

} // namespace
} // namespace tovi
