#include "core/records/FileEventPolicy.h"

#include <vector>

#include <gtest/gtest.h>

namespace tovi {
namespace {

const std::vector<std::string> roots{"/home/ann", "/home/ann/.notes", "/var/data/"};

TEST(FileEventPolicy, NormalizesPaths) {
    const std::pair<const char*, const char*> table[] = {
        {"/a//b/./c/", "/a/b/c"},
        {"/a/../../b", "/b"},
        {"/", "/"},
        {"/..", "/"},
        {"/private/tmp", "/tmp"},
        {"/private/var/x", "/var/x"},
        {"/private/etc/../tmp", "/tmp"},
        {"/private/variable", "/private/variable"},
        {"/private/opt", "/private/opt"},
        {"/private/tmp/private/var", "/tmp/private/var"},
    };
    for (const auto& [path, expected] : table)
        EXPECT_EQ(FileEventPolicy::normalize(path), expected) << path;
}

TEST(FileEventPolicy, RescansForChangesOfWhatIsIndexed) {
    const std::pair<const char*, bool> table[] = {
        {"/home/ann", true},
        {"/home/ann//", true},
        {"/home/ann/report.pdf", true},
        {"/home/ann/.gitignore", true},
        {"/home/ann/work/.gitignore", true},
        {"/home/ann/.gitignore/x", false},
        {"/home/ann/node_modules/.gitignore", false},
        {"/home/ann/node_modules", false},
        {"/home/ann/work/node_modules/a/b.txt", false},
        {"/home/ann/.env", false},
        {"/home/ann/.local/x.txt", false},
        {"/home/ann/secrets/x.txt", false},
        {"/home/ann/server.pem", false},
        {"/home/ann/.notes/today.md", true}, // the inner root decides
        {"/home/ann/.notes/.x", false},
        {"/home/anna/report.pdf", false},
        {"/home", false},
        {"/private/var/data/a.txt", true},
    };
    for (const auto& [path, expected] : table) {
        EXPECT_EQ(FileEventPolicy::requiresRescan(path, 0, roots), expected) << path;
    }
}

TEST(FileEventPolicy, RescansWheneverEventsMayHaveBeenLost) {
    using namespace fileEvent;
    for (const std::uint32_t flag :
         {userDropped, kernelDropped, identifiersWrapped, rootChanged, mounted, unmounted}) {
        EXPECT_TRUE(FileEventPolicy::requiresRescan("/elsewhere", flag | historyDone, roots))
            << flag;
    }
    EXPECT_FALSE(FileEventPolicy::requiresRescan("/elsewhere", mustScanSubdirectories, roots));
    EXPECT_FALSE(FileEventPolicy::requiresRescan("/home/ann/a.txt", historyDone, roots));
    EXPECT_TRUE(FileEventPolicy::requiresRescan("/home/ann/a.txt",
                                                historyDone | mustScanSubdirectories, roots));
}

} // namespace
} // namespace tovi
