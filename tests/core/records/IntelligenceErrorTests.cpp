#include "core/records/IntelligenceError.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(IntelligenceError, CarriesAWholeSentence) {
    EXPECT_STREQ(IntelligenceError::database("x").what(), "Index database: x");
    EXPECT_STREQ(IntelligenceError::inaccessible("x").what(), "Folder is unavailable: x");
    EXPECT_STREQ(IntelligenceError::invalidQuery("x").what(), "Search could not be interpreted: x");
}

} // namespace
} // namespace tovi
