#include "base/Uuid.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(Uuid, ReadsWhatItWrites) {
    const Uuid uuid = Uuid::random();
    EXPECT_EQ(Uuid::parse(uuid.string()), uuid);
    EXPECT_NE(Uuid::random(), uuid);
    const auto lower = Uuid::parse("0f8fad5b-d9cb-469f-a165-70867728950e");
    ASSERT_TRUE(lower);
    EXPECT_EQ(lower->string(), "0F8FAD5B-D9CB-469F-A165-70867728950E");
}

TEST(Uuid, RefusesOtherTexts) {
    for (const char* text :
         {"", "0f8fad5b", "0f8fad5b-d9cb-469f-a165-70867728950",
          "0f8fad5b-d9cb-469f-a165-70867728950g", "{0f8fad5b-d9cb-469f-a165-70867728950e}"}) {
        EXPECT_FALSE(Uuid::parse(text)) << text;
    }
}

} // namespace
} // namespace tovi
