#include "tests/app/model/ModelFixture.h"

#include <sys/stat.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* oldest =
    R"({"roots":[],"spaces":[],"searches":[],"exclusions":"*.log","appearance":"dark",)"
    R"("developerMode":true,"shortcutChoice":"disabled"})";

class PreferencesTest : public ModelFixture {};

TEST_F(PreferencesTest, AreWrittenInTheirOrderAndReadBack) {
    Preferences preferences;
    preferences.roots = {{"/home/\xc3\xa4", std::string("\0\xff", 2), false}};
    preferences.spaces = {{Uuid::random(), "Taxes", {"/a"}}};
    preferences.searches = {{Uuid::random(), "Large", "over 5 mb"}};
    preferences.homeAccessOffered = true;
    preferences.themeChoice = "lilac";
    preferences.recentlyDeletedSpace = ProjectSpace{Uuid::random(), "Old", {}};
    preferences.others = {{"sidebar", {{"width", 200}}}};
    const std::string json = encode(preferences);
    EXPECT_EQ(decodePreferences(json), preferences);
    std::size_t last = 0;
    for (const char* key : {"roots", "spaces", "searches", "exclusions", "appearance",
                            "developerMode", "shortcutChoice", "homeAccessOffered", "themeChoice",
                            "recentlyDeletedSpace", "sidebar"}) {
        const std::size_t place = json.find('"' + std::string(key) + "\":");
        ASSERT_NE(place, std::string::npos) << key;
        EXPECT_GE(place, last) << key;
        last = place;
    }
    EXPECT_THAT(json, HasSubstr(R"("bookmark":"AP8=","available":false)"));
    EXPECT_EQ(decodePreferences(oldest).themeChoice, std::nullopt);
}

TEST_F(PreferencesTest, RestoreTheModelAndFollowItsChanges) {
    data.write("preferences.json", oldest);
    model = start();
    EXPECT_EQ(model->settings()->themeChoice().toStdString(), "minimal");
    EXPECT_FALSE(model->settings()->homeAccessOffered());
    EXPECT_TRUE(model->settings()->developerMode());
    model->settings()->setThemeChoice(QStringLiteral("midnight"));
    model->savedSearches()->saveSearch(QString(), QStringLiteral("pdfs"));
    model.reset(); // before the write was even begun
    executor.settle();
    EXPECT_EQ(decodePreferences(preferences()).themeChoice, "midnight");
    EXPECT_EQ(decodePreferences(preferences()).searches.at(0).name, "pdfs");
}

TEST_F(PreferencesTest, ThatCannotBeDecodedAreKeptAside) {
    const std::string whole = oldest;
    for (const std::string& bytes :
         {std::string(), std::string("null"), whole.substr(0, whole.size() / 2),
          std::string(R"({"roots":[],"spaces":[],"searches":[],"appearance":"light",)"
                      R"("developerMode":false,"shortcutChoice":"disabled"})"),
          std::string(R"({"roots":[{"path":"/a","bookmark":"?","available":true}],"spaces":[],)"
                      R"("searches":[],"exclusions":"","appearance":"light",)"
                      R"("developerMode":false,"shortcutChoice":"disabled"})")}) {
        executor.advance(1);
        data.write("preferences.json", bytes);
        model = start();
        EXPECT_THAT(error(), StartsWith("Settings could not be understood. They were moved to "));
        EXPECT_EQ(model->settings()->exclusions().toStdString(), defaultExclusions);
        bool isKept = false;
        for (const auto& file : fs::directory_iterator(data.path()))
            isKept = isKept || (file.path().filename().string().starts_with("preferences-") &&
                                test::readFile(file.path()) == bytes);
        EXPECT_TRUE(isKept) << bytes;
        model.reset();
    }
}

TEST_F(PreferencesTest, ThatCannotBeReadOrWrittenAreLeftAlone) {
    data.write("preferences.json", oldest);
    ::chmod(data.path("preferences.json").c_str(), 0);
    {
        const test::WithoutPrivileges unprivileged(data);
        model = start();
        EXPECT_THAT(error(), StartsWith("Settings could not be read, and will not be saved: "));
        model->settings()->setThemeChoice(QStringLiteral("lilac"));
        executor.settle();
        model.reset();
        ::chmod(data.path("preferences.json").c_str(), 0600);
        EXPECT_EQ(preferences(), oldest);

        model = start();
        ::chmod(data.path().c_str(), 0500);
        model->settings()->setThemeChoice(QStringLiteral("lilac"));
        executor.settle();
        EXPECT_THAT(error(), StartsWith("Settings could not be saved: "));
        EXPECT_EQ(model->settings()->themeChoice().toStdString(), "lilac");
        ::chmod(data.path().c_str(), 0700);
        model.reset();
    }
}

TEST_F(PreferencesTest, WithAThousandLostFoldersStillOpen) {
    Preferences many;
    for (int n = 0; n < 1000; ++n)
        many.roots.push_back({"/missing/" + std::to_string(n), "no bookmark at all", true});
    data.write("preferences.json", encode(many));
    model = start();
    EXPECT_EQ(model->folders()->roots().size(), 1000U);
    EXPECT_THAT(model->folders()->availablePaths(), IsEmpty());
    EXPECT_EQ(model->scan()->scanIssues().size(), 1000);
}

} // namespace
} // namespace tovi
