#include "app/installed/InstalledModel.h"
#include "app/lists/QtConversions.h"
#include "tests/support/ManualExecutor.h"
#include "tests/support/TemporaryTree.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(InstalledModel, ListsLanguagesAndSaysHowTheDecoderIsConfined) {
    const test::TemporaryTree tree;
    for (const std::string code : {"osd", "chi_sim", "deu", "eng", "zzz", "a", "b", "c", "d"})
        tree.write(code + ".traineddata", "12345");
    tree.write("pdf.ttf", "no language");
    test::ManualExecutor executor;
    bool isDecoderThere = true;
    InstalledModel model(executor, tree.path(), [&](const std::stop_token&) {
        if (!isDecoderThere) throw std::runtime_error("There is no decoder.");
        return InstalledModel::Confinement{{"It sees one file."}, true};
    });
    model.refresh();
    EXPECT_TRUE(model.isLoading());
    executor.settle();
    QStringList told;
    for (int row = 0; row < model.languages()->count(); ++row) {
        told.append(model.languages()->value(row, toQt("name")).toString() +
                    (model.languages()->value(row, toQt("isUsed")).toBool() ? u'+' : u'-'));
    }
    EXPECT_EQ(told.join(u' '),
              toQt("a+ b+ c+ Chinese (chi_sim)+ d+ German+ English+ Direction of a page+ zzz-"));
    EXPECT_TRUE(model.isConfined());
    EXPECT_EQ(model.confinement(), QStringList{toQt("It sees one file.")});

    isDecoderThere = false;
    InstalledModel missing(executor, tree.path("none"),
                           [&](const std::stop_token&) { return InstalledModel::Confinement{}; });
    missing.refresh();
    model.refresh();
    executor.settle();
    EXPECT_NE(missing.error(), QString());
    EXPECT_FALSE(model.isConfined());
    EXPECT_EQ(model.confinementError(), toQt("There is no decoder."));
    EXPECT_TRUE(model.confinement().isEmpty());
}

} // namespace
} // namespace tovi
