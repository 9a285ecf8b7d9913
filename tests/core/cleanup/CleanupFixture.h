#pragma once

#include "core/cleanup/CleanupScanner.h"
#include "tests/support/ManualAvailability.h"
#include "tests/support/TemporaryTree.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace tovi {

/// A home folder of its own and a scan of it at a moment that the test chooses.
class CleanupFixture : public testing::Test {
  protected:
    static constexpr double day = 86'400;

    void writeAged(const std::string& relative, double days, std::string_view bytes = "x") const {
        tree.write(relative, bytes);
        tree.setModified(relative, now.seconds - days * day);
    }
    void writeSized(const std::string& relative, std::uintmax_t size) const {
        writeAged(relative, 0);
        std::filesystem::resize_file(tree.path(relative), size);
        tree.setModified(relative, now.seconds);
    }
    /// An application last used 100 days ago.
    std::string writeApp(const std::string& relative, const std::string& list) const {
        tree.write(relative + "/Contents/Info.plist", list);
        tree.write(relative + "/Contents/MacOS/run", "1234567890");
        const std::string date = "<plist><date>2023-01-01T00:00:00Z</date></plist>";
        EXPECT_EQ(::setxattr(tree.path(relative).c_str(),
                             "user.com.apple.metadata:kMDItemLastUsedDate", date.data(),
                             date.size(), 0),
                  0);
        return tree.path(relative);
    }
    static std::string infoList(const std::string& identifier, const std::string& type = "APPL",
                                const std::string& executable = "run") {
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CFBundlePackageType</key>"
               "<string>" +
               type + "</string><key>CFBundleIdentifier</key><string>" + identifier +
               "</string><key>CFBundleExecutable</key><string>" + executable +
               "</string></dict></plist>";
    }

    CleanupScan request() const {
        return {.root = tree.path(),
                .folders = {tree.path(), tree.path(".cache"), {tree.path("Laden")}},
                .excludedPaths = {tree.path("Tovi")},
                .now = now};
    }
    CleanupReport scan(const CleanupScan& request) const {
        return CleanupScanner(metadata, availability, {}, [this] { return now; }).scan(request);
    }
    /// The category of each candidate, by its path in the tree.
    std::map<std::string, CleanupCategory> found(const CleanupReport& report) const {
        std::map<std::string, CleanupCategory> result;
        for (const CleanupCandidate& candidate : report.candidates) {
            result[candidate.path.substr(tree.path().size() + 1)] = candidate.category;
        }
        return result;
    }

    test::TemporaryTree tree;
    test::TemporaryTree data;
    Date now{1'700'000'000};
    CleanupDiscoveryMetadata metadata{data.path()};
    ManualAvailability availability;
};

} // namespace tovi
