#include "core/indexing/KnownFiles.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(KnownFiles, FindsEveryFileAmongMany) {
    KnownFiles known("/root");
    const auto pathOf = [](int n) { return "/root/folder/" + std::to_string(n); };
    for (int n = 0; n < 20'000; ++n) {
        known.add({pathOf(n),
                   n,
                   {n + 0.5},
                   n % 2 == 0 ? "Text indexed" : "Extraction failed: x",
                   n == 7 ? std::optional<std::string>("https://example.org") : std::nullopt,
                   std::nullopt});
    }
    for (int n = 0; n < 20'000; ++n) {
        KnownFiles::File* file = known.find(pathOf(n));
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->size, n);
        EXPECT_EQ(file->modifiedAt, Date{n + 0.5});
        EXPECT_EQ(file->reading == KnownFiles::Reading::failed, n % 2 == 1);
        if (n != 11) file->met = true;
    }
    EXPECT_EQ(known.sourceOf(*known.find(pathOf(7))), "https://example.org");
    EXPECT_EQ(known.sourceOf(*known.find(pathOf(8))), std::nullopt);
    EXPECT_EQ(known.find(pathOf(20'000)), nullptr);
    EXPECT_EQ(known.find("/root"), nullptr);
    std::vector<std::string> missing;
    known.forEachNotMet([&](std::string_view path) { missing.emplace_back(path); });
    EXPECT_EQ(missing, std::vector<std::string>{"folder/11"});
}

} // namespace
} // namespace tovi
