#include "platform/StandardLocations.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryTree.h"

#include <gtest/gtest.h>

namespace tovi::platform {
namespace {

using test::EnvironmentVariable;
using test::TemporaryTree;

TEST(StandardLocations, FollowTheEnvironmentWhereItIsAbsolute) {
    const EnvironmentVariable home("HOME", "/home/ann/");
    const EnvironmentVariable data("XDG_DATA_HOME", "/data/ann/");
    const EnvironmentVariable cache("XDG_CACHE_HOME", "relative/cache");
    EXPECT_EQ(homeDirectory(), "/home/ann");
    EXPECT_EQ(dataHome(), "/data/ann");
    EXPECT_EQ(cacheHome(), "/home/ann/.cache");
}

TEST(StandardLocations, ReadTheDownloadsFolderOfTheDesktop) {
    const TemporaryTree tree;
    const EnvironmentVariable home("HOME", "/home/ann");
    const EnvironmentVariable config("XDG_CONFIG_HOME", tree.path());
    EXPECT_EQ(downloadsDirectory(), std::nullopt);
    const std::pair<const char*, std::optional<std::string>> table[] = {
        {"# XDG_DOWNLOAD_DIR=\"$HOME/No\"\nXDG_DOWNLOAD_DIR=\"$HOME/Ladungen\"\n",
         "/home/ann/Ladungen"},
        {"  XDG_DOWNLOAD_DIR=\"/mnt/a \\\"b\\\"/\"\n", "/mnt/a \"b\""},
        {"XDG_DOWNLOAD_DIR=\"$HOME/\"\n", std::nullopt},
        {"XDG_DOWNLOAD_DIR=\"relative\"\n", std::nullopt},
        {"XDG_DESKTOP_DIR=\"$HOME/Desktop\"\n", std::nullopt},
    };
    for (const auto& [text, expected] : table) {
        tree.write("user-dirs.dirs", text);
        EXPECT_EQ(downloadsDirectory(), expected) << text;
    }
}

} // namespace
} // namespace tovi::platform
