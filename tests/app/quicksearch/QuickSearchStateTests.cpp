#include "app/quicksearch/QuickSearchState.h"
#include "tests/app/model/ModelFixture.h"

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class QuickSearchTest : public ModelFixture {
  protected:
    QuickSearchTest() {
        for (const char* name : {"alpha one.txt", "alpha two.txt", "beta.txt"})
            tree.write(name, name);
        model = start();
        connectTree();
        state = std::make_unique<QuickSearchState>(executor, *model->search(), opener);
    }
    std::vector<std::string> shown() const {
        std::vector<std::string> result;
        for (int row = 0; row < state->matches()->count(); ++row)
            result.push_back(fromQt(state->matches()->value(row, toQt("name")).toString()));
        std::sort(result.begin(), result.end());
        return result;
    }
    void type(const char* text) { state->setQuery(toQt(text)); }

    std::unique_ptr<QuickSearchState> state;
};

TEST_F(QuickSearchTest, ShowsRecentFilesThenSearchesWhenTheTextStandsStill) {
    state->present();
    executor.settle();
    EXPECT_THAT(shown(), ElementsAre("alpha one.txt", "alpha two.txt", "beta.txt"));
    EXPECT_EQ(state->selectedRow(), 0);

    type("a");
    executor.advance(0.06);
    type("alpha");
    executor.advance(0.06);
    EXPECT_TRUE(state->isSearching());
    EXPECT_EQ(executor.workCount(), 0U);
    EXPECT_THAT(shown(), SizeIs(3)) << "the old rows stay";
    executor.advance(0.05);
    EXPECT_FALSE(state->isSearching());
    EXPECT_THAT(shown(), ElementsAre("alpha one.txt", "alpha two.txt"));

    state->moveSelection(-1);
    EXPECT_EQ(state->selectedRow(), 0);
    state->moveSelection(5);
    EXPECT_EQ(state->selectedRow(), 1);
    const FileRecord chosen = *state->selectedFile();
    state->revealSelected();
    EXPECT_THAT(opener.revealed, ElementsAre(chosen.path));

    state->invalidate();
    EXPECT_THAT(shown(), IsEmpty());
    state->openSelected();
    EXPECT_THAT(opener.opened, IsEmpty());
}

TEST_F(QuickSearchTest, OpensOnlyWhatWasFoundForTheTextAsTyped) {
    state->present();
    executor.settle();
    int finished = 0;
    QObject::connect(state.get(), &QuickSearchState::finished, [&finished] { ++finished; });

    type("beta");
    state->openSelected();
    EXPECT_THAT(opener.opened, IsEmpty());
    executor.settle();
    EXPECT_THAT(opener.opened, ElementsAre(tree.path("beta.txt"))) << "without the debounce";
    EXPECT_EQ(finished, 1);
    opener.opened.clear();
    executor.advance(1);
    EXPECT_EQ(executor.workCount(), 0U);

    type("alpha");
    state->openSelected();
    type("alpha o"); // thought better of it
    executor.advance(1);
    EXPECT_THAT(opener.opened, IsEmpty());

    type("beta");
    state->select(0); // a file that the next results do not have
    state->openSelected();
    executor.advance(1);
    EXPECT_THAT(shown(), ElementsAre("beta.txt"));
    EXPECT_THAT(opener.opened, IsEmpty());

    type("beta.");
    state->openSelected();
    state->invalidate();
    executor.advance(1);
    EXPECT_THAT(opener.opened, IsEmpty());
    EXPECT_THAT(shown(), IsEmpty()) << "late results of a hidden panel";
}

TEST_F(QuickSearchTest, SaysInOneLineWhatWentWrong) {
    opener.opened.insert(tree.path("beta.txt")); // the fake opens a file only once
    type("beta");
    executor.advance(1);
    state->openSelected();
    EXPECT_EQ(fromQt(state->errorMessage()),
              "“beta.txt” could not be opened. It may have been moved.");

    ASSERT_TRUE(model->beginCleanupMaintenance());
    type("alpha");
    state->openSelected();
    executor.advance(1);
    EXPECT_EQ(fromQt(state->errorMessage()), "The index is not available at the moment.");
    EXPECT_FALSE(state->isSearching());
    EXPECT_THAT(shown(), IsEmpty());
    model->finishCleanupMaintenance(false);
    state->present();
    executor.settle();
    EXPECT_EQ(fromQt(state->errorMessage()), "");
    EXPECT_THAT(shown(), SizeIs(2));
}

} // namespace
} // namespace tovi
