#include "platform/StandardLocations.h"
#include "tests/app/model/ModelFixture.h"

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class AppModelTest : public ModelFixture {};

TEST_F(AppModelTest, ConnectsScansSearchesAndRemembers) {
    tree.write("garden/roses.txt", "Prune the roses in March.");
    tree.write("garden/tools.txt", "A spade and a rake.");
    model = start();
    EXPECT_EQ(status(), "Choose a folder to build your private index");
    EXPECT_EQ(error(), "");

    connectTree();
    EXPECT_EQ(status(), "Connected folders are up to date.");
    EXPECT_THAT(watched, ElementsAre(tree.path()));
    EXPECT_EQ(model->scan()->indexedCount(), 2);
    EXPECT_THAT(names(model->library()->records()), UnorderedElementsAre("roses.txt", "tools.txt"));

    model->search()->search(QStringLiteral("spade"));
    executor.settle();
    EXPECT_THAT(names(model->search()->records()), ElementsAre("tools.txt"));
    EXPECT_FALSE(model->search()->hasMoreSearchResults());

    model.reset();
    model = start();
    EXPECT_EQ(model->folders()->roots().front().path, tree.path());
    EXPECT_EQ(model->library()->records().size(), 2U);
}

} // namespace
} // namespace tovi
