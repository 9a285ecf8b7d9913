#include "core/records/IntelligenceError.h"
#include "core/search/LocalVectorIndex.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <typename Call>
std::string errorOf(Call call) {
    try {
        call();
        return "none";
    } catch (const IntelligenceError& error) {
        EXPECT_EQ(error.kind(), IntelligenceError::Kind::invalidQuery);
        return error.what();
    }
}

TEST(LocalVectorIndex, RefusesWhatDoesNotFitTheProvider) {
    LocalVectorIndex index("provider", 2);
    const float infinity = std::numeric_limits<float>::infinity();
    for (const std::vector<float>& vector :
         {std::vector<float>{1}, {1, 2, 3}, {}, {1, std::nanf("")}, {-infinity, 0}}) {
        EXPECT_EQ(errorOf([&] {
                      index.upsert({"a", vector});
                  }),
                  "Search could not be interpreted: "
                  "Embedding dimensions or values do not match the provider");
        EXPECT_EQ(errorOf([&] { index.nearest(vector, 1); }),
                  "Search could not be interpreted: Query vector is incompatible");
    }
    EXPECT_THAT(index.entries(), IsEmpty());
}

TEST(LocalVectorIndex, KeepsOneEntryAFileTheNewerAtTheEnd) {
    LocalVectorIndex index("provider", 1);
    for (const auto& [file, value] : {std::pair("a", 1.F), {"b", 0.F}, {"c", 3.F}, {"b", -4.F}})
        index.upsert({file, {value}});
    EXPECT_THAT(index.entries(),
                ElementsAre(VectorEntry{"a", {1}}, VectorEntry{"c", {3}}, VectorEntry{"b", {-4}}));
    using Neighbour = LocalVectorIndex::Neighbour;
    EXPECT_THAT(index.nearest({2}, 9),
                ElementsAre(Neighbour{"a", 1}, Neighbour{"c", 1}, Neighbour{"b", -1}));
}

TEST(LocalVectorIndex, FindsTheMostSimilar) {
    constexpr std::size_t dimensions = 11; // not a multiple of what is added at once
    const auto axis = [](std::size_t at, float length) {
        std::vector<float> vector(dimensions);
        vector[at] = length;
        return vector;
    };
    LocalVectorIndex index("provider", dimensions);
    index.upsert({"zero", axis(0, 0)});
    index.upsert({"last", axis(10, 1)});
    index.upsert({"huge", axis(0, std::numeric_limits<float>::max())});
    index.upsert({"tiny", axis(0, 1e-30F)});
    std::vector<float> query = axis(0, 4);
    query[10] = 3;
    const auto nearest = index.nearest(query, 5);
    ASSERT_EQ(nearest.size(), 3U);
    EXPECT_EQ(nearest[0].fileID, "huge");
    EXPECT_EQ(nearest[1].fileID, "tiny");
    EXPECT_EQ(nearest[2].fileID, "last");
    EXPECT_FLOAT_EQ(nearest[0].score, 0.8F);
    EXPECT_FLOAT_EQ(nearest[2].score, 0.6F);
    EXPECT_EQ(index.nearest(query, 1).size(), 1U);
    EXPECT_THAT(index.nearest(query, 0), IsEmpty());
    EXPECT_THAT(index.nearest(axis(0, 0), 5), IsEmpty());
}

} // namespace
} // namespace tovi
