#include "base/Cancelled.h"
#include "core/cleanup/CandidateHeap.h"
#include "core/cleanup/CleanupApplicationBundle.h"
#include "core/cleanup/MountRules.h"
#include "platform/DirectoryEntry.h"
#include "tests/core/cleanup/CleanupFixture.h"

#include <fmt/format.h>

namespace tovi {
namespace {

using enum CleanupCategory;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;

class CleanupScannerTest : public CleanupFixture {};

std::string pngBy(const std::string& software) {
    const std::string text = "Software" + std::string(1, '\0') + software;
    const auto chunk = [](const std::string& type, const std::string& content) {
        std::string result(4, '\0');
        result[3] = static_cast<char>(content.size());
        return result + type + content + "sum!";
    };
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", "0123456789abc") + chunk("tEXt", text) +
           chunk("IDAT", "");
}

TEST_F(CleanupScannerTest, SortsFilesIntoCategoriesAtTheExactBounds) {
    writeSized("large", 100'000'000);
    writeSized("not large", 99'999'999);
    writeAged("Downloads/old", 90);
    writeAged("Downloads/recent", 89.99);
    writeAged("Laden/old", 90);
    writeAged("Screenshot 2023-01-01 at 10.00.png", 30);
    writeAged("Screen Shot 2023-01-01", 30);
    writeAged("Screenshot 2023-01-02.png", 30); // nothing may follow the date but a separator
    writeAged("Screenshot 2023-01-03 recent.png", 29);
    writeAged("Screenshot from 2023-01-01 10-00-00.png", 30);
    writeAged("Screenshot_20230101_100000.png", 30);
    writeAged("tagged.png", 30, pngBy("gnome-screenshot"));
    writeAged("drawn.png", 30, pngBy("GIMP"));
    writeAged("marked.jpg", 30);
    ASSERT_EQ(::setxattr(tree.path("marked.jpg").c_str(),
                         "user.com.apple.metadata:kMDItemIsScreenCapture", "<plist><true/></plist>",
                         22, 0),
              0);
    writeAged("a.DMG", 30);
    writeAged("b.pkg", 29);
    writeAged("Library/Caches/x/data", 7);
    writeAged("Library/Logs/recent.log", 6);
    writeAged("Library/Developer/Xcode/DerivedData/x", 7);
    writeAged("Library/other", 1000);
    writeAged(".cache/thumbs/one", 7);
    writeAged("Downloads/setup.pkg", 1000); // one category each
    writeAged("future", -400);
    EXPECT_THAT(
        found(scan(request())),
        UnorderedElementsAre(Pair("large", largeFiles), Pair("Downloads/old", oldDownloads),
                             Pair("Laden/old", oldDownloads),
                             Pair("Screenshot 2023-01-01 at 10.00.png", oldScreenshots),
                             Pair("Screen Shot 2023-01-01", oldScreenshots),
                             Pair("Screenshot from 2023-01-01 10-00-00.png", oldScreenshots),
                             Pair("Screenshot_20230101_100000.png", oldScreenshots),
                             Pair("tagged.png", oldScreenshots), Pair("marked.jpg", oldScreenshots),
                             Pair("a.DMG", installers), Pair("Downloads/setup.pkg", installers),
                             Pair("Library/Caches/x/data", cachesAndLogs),
                             Pair("Library/Developer/Xcode/DerivedData/x", cachesAndLogs),
                             Pair(".cache/thumbs/one", cachesAndLogs)));
}

TEST_F(CleanupScannerTest, LeavesOutWhatIsPrivateHiddenLinkedOrElsewhere) {
    for (const char* place :
         {".hidden/a.dmg", ".hidden.dmg", "keychains/a.dmg", "my secrets/a.dmg", "key.pem/a.dmg",
          "Tovi/a.dmg", "Photos.photoslibrary/a.dmg", ".cache/.private/a.dmg", "credentials.dmg",
          "cloud.dmg", "cloud folder/a.dmg", "plain.dmg"}) {
        writeAged(place, 1000);
    }
    tree.link("link.dmg", tree.path("plain.dmg"));
    tree.link(".cache/linked.log", tree.path("plain.dmg"));
    tree.link("linked folder", tree.path(".hidden"));
    writeAged("bad\xff.dmg", 1000);
    availability.away = {tree.path("cloud.dmg"), tree.path("cloud folder")};
    const CleanupReport report = scan(request());
    EXPECT_THAT(found(report), ElementsAre(Pair("plain.dmg", installers)));
    EXPECT_THAT(
        report.issues,
        UnorderedElementsAre(tree.path("cloud folder") + ": cloud-only folder was not downloaded.",
                             HasSubstr("bad\\xff.dmg: the name is not valid UTF-8")));
    EXPECT_FALSE(report.isPartial);
    EXPECT_THAT(report.notice, testing::EndsWith("and other mounted volumes."));

    CleanupScan elsewhere = request();
    for (const char* place : {"my secrets", "none", "Photos.photoslibrary"}) {
        elsewhere.root = tree.path(place);
        EXPECT_THROW(scan(elsewhere), CleanupScanError) << place;
    }
}

TEST_F(CleanupScannerTest, KeepsTheLargestAndSaysWhatItLeftOut) {
    for (int n = 0; n < 8; ++n)
        writeAged(fmt::format("{}.dmg", n), 30, std::string(n == 5 ? 9 : 1, 'x'));
    CleanupScan request = this->request();
    request.candidateLimit = 3;
    CleanupReport report = scan(request);
    EXPECT_THAT(found(report),
                UnorderedElementsAre(Pair("5.dmg", installers), Pair("0.dmg", installers),
                                     Pair("1.dmg", installers)));
    EXPECT_EQ(report.candidates[1].name, "0.dmg") << "of one size, in the order of the paths";
    EXPECT_THAT(report.issues,
                ElementsAre("Showing the largest 3 review candidates; 5 more matched. Choose a "
                            "narrower folder to see them."));
    EXPECT_EQ(report.scannedBytes, 16);
    EXPECT_EQ(report.candidates[0].identity, CleanupFileIdentity::read(tree.path("5.dmg")));
    request.candidateLimit = 0;
    request.entryLimit = 4;
    report = scan(request);
    EXPECT_TRUE(report.candidates.empty() && report.reachedLimit && report.isPartial);
    EXPECT_EQ(report.scannedFiles, 4);
    EXPECT_THAT(report.issues[0], HasSubstr("Scan stopped at the 4-entry limit. Choose"));
    EXPECT_THAT(report.issues[1], HasSubstr("Showing the largest 0 review candidates; 4 more"));
}

TEST_F(CleanupScannerTest, ReportsWhatCannotBeListedAndStopsWhenAsked) {
    writeAged("locked/a.dmg", 30);
    writeAged("b.dmg", 30);
    fs::permissions(tree.path("locked"), fs::perms::none);
    {
        const test::WithoutPrivileges asNobody(tree);
        const CleanupReport report = scan(request());
        EXPECT_TRUE(report.isPartial);
        EXPECT_THAT(report.issues,
                    ElementsAre(tree.path("locked") + ": could not enumerate this location."));
        EXPECT_THAT(found(report), ElementsAre(Pair("b.dmg", installers)));
    }
    fs::permissions(tree.path("locked"), fs::perms::owner_all);
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(CleanupScanner(metadata, availability).scan(request(), {}, source.get_token()),
                 Cancelled);
}

TEST(MountRulesTest, EnterEveryFileSystemOnceAndNoneWithTheWholeSystem) {
    const std::vector<platform::Mount> mounts{
        {"/", "ext4", 1, "/", false},
        {"/proc", "proc", 2, "/", true},
        {"/home/ann/disk", "ext4", 3, "/", false},
        {"/home/ann/same", "ext4", 3, "/photos", false},
        {"/home/ann/own", "ext4", 1, "/home/ann/Downloads", false},
        {"/home/ann/other", "ext4", 1, "/srv", false},
    };
    MountRules home("/home/ann", mounts);
    EXPECT_FALSE(home.reasonToSkip("/home/ann/plain"));
    EXPECT_FALSE(home.reasonToSkip("/home/ann/disk"));
    EXPECT_TRUE(home.reasonToSkip("/home/ann/same")) << "a part of the disk entered before";
    EXPECT_TRUE(home.reasonToSkip("/home/ann/own")) << "a part of the scanned folder";
    EXPECT_FALSE(home.reasonToSkip("/home/ann/other"));
    EXPECT_TRUE(home.reasonToSkip("/proc"));
    MountRules system("/", mounts);
    EXPECT_TRUE(system.reasonToSkip("/home/ann/disk"));
    EXPECT_FALSE(system.reasonToSkip("/home"));
}

TEST_F(CleanupScannerTest, OffersApplicationsThatWereNotOpenedForLong) {
    writeApp("Old.app", infoList("org.example.old"));
    writeApp("Apple.app", infoList("Com.Apple.Thing"));
    writeApp("Plugin.app", infoList("org.example.plugin", "BNDL"));
    writeApp("Outside.app", infoList("org.example.outside", "APPL", "../Info.plist"));
    writeApp("Bomb.app", "<!DOCTYPE a [<!ENTITY a \"&a;&a;\">]><plist><dict>&a;</dict></plist>");
    writeAged("Unknown.app/Contents/big.dmg", 1000);
    const std::string listed = writeApp("Listed 1.app", infoList("org.example.listed"));
    ASSERT_EQ(::removexattr(listed.c_str(), "user.com.apple.metadata:kMDItemLastUsedDate"), 0);
    EXPECT_EQ(scan(request()).candidates.size(), 1U);
    data.write("recently-used.xbel", "<xbel><bookmark href=\"file://" + tree.path() +
                                         "/Listed%201.app\" visited=\"2023-01-01T00:00:00.5Z\"/>"
                                         "</xbel>");
    metadata = CleanupDiscoveryMetadata(data.path());
    EXPECT_TRUE(found(scan(request())).contains("Listed 1.app"));
    std::filesystem::remove_all(listed);
    const CleanupReport report = scan(request());
    ASSERT_THAT(found(report), ElementsAre(Pair("Old.app", unusedApps)));
    EXPECT_FALSE(report.candidates[0].reviewOnlyReason);
    EXPECT_EQ(report.candidates[0].size,
              static_cast<std::int64_t>(infoList("org.example.old").size()) + 10);
    EXPECT_EQ(report.candidates[0].lastUsedAt, Date{1'672'531'200});
    now = Date{1'672'531'200 + 89 * day};
    EXPECT_THAT(scan(request()).candidates, IsEmpty());
}

TEST_F(CleanupScannerTest, LeavesApplicationsItCannotAccountForToTheUser) {
    const std::string list = infoList("org.example.a");
    const auto reasonFor = [&](const std::function<void(const std::string&)>& damage) {
        const std::string app = writeApp("A.app", list);
        damage(app);
        const CleanupReport report = scan(request());
        fs::remove_all(app);
        return report.candidates.size() == 1 ? report.candidates[0].reviewOnlyReason.value_or("")
                                             : "no candidate";
    };
    EXPECT_EQ(reasonFor([&](const std::string& app) {
                  fs::create_symlink("run", app + "/Contents/MacOS/link");
              }),
              "This app contains linked components. Show it in Finder to remove the whole app "
              "safely.");
    EXPECT_EQ(reasonFor([&](const std::string& app) {
                  ASSERT_EQ(::mkfifo((app + "/Contents/pipe").c_str(), 0600), 0);
              }),
              "This app contains protected items. Show it in Finder to review it.");
    EXPECT_EQ(reasonFor([&](const std::string& app) {
                  availability.away = {app + "/Contents/MacOS/run"};
              }),
              "Some app components are unavailable or need a separate review. Show this app in "
              "Finder.");
    availability.away.clear();
    const auto sized = [&](std::uintmax_t total) {
        return reasonFor([&](const std::string& app) {
            fs::resize_file(app + "/Contents/MacOS/run", total - list.size());
        });
    };
    EXPECT_EQ(sized(5'000'000'000), "");
    EXPECT_EQ(sized(5'000'000'001), "Apps over 5 GB need to be reviewed in Finder.");
    const auto padded = [&](std::size_t size) {
        return reasonFor([&](const std::string& app) {
            tree.write("A.app/Contents/Info.plist", list + std::string(size - list.size(), '\n'));
            EXPECT_TRUE(fs::exists(app));
        });
    };
    EXPECT_EQ(padded(1'048'576), "");
    EXPECT_EQ(padded(1'048'577), "This app could not be checked. Show it in Finder.");
    EXPECT_EQ(reasonFor([&](const std::string& app) {
                  fs::remove(app + "/Contents/Info.plist");
                  ASSERT_EQ(::mkfifo((app + "/Contents/Info.plist").c_str(), 0600), 0);
              }),
              "This app changed while it was being checked. Refresh and try again.");

    const std::string app = writeApp("A.app", list);
    const auto parent = platform::openDirectory(tree.path());
    const CleanupApplicationBundle bundle(parent, app, availability);
    EXPECT_FALSE(bundle.inspect(4, {}).problem);
    const auto limited = bundle.inspect(3, {});
    EXPECT_EQ(limited.problem, "This app contains too many items for this cleanup review. Show it "
                               "in Finder.");
    EXPECT_FALSE(limited.isWholeMeasured);
    tree.write("A.app/new", "");
    EXPECT_EQ(bundle.inspect(10, {}).problem,
              "The app changed while it was being checked. Refresh and try again.");
}

} // namespace
} // namespace tovi
