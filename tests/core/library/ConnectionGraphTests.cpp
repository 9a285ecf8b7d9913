#include "core/library/ConnectionGraph.h"
#include "tests/support/TemporaryTree.h"

#include <cmath>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(ConnectionGraph, GoesTwoStepsAndHoldsEachFileOnceInItsCircle) {
    const test::TemporaryTree tree;
    IndexStore index(tree.path("index.sqlite"));
    const auto add = [&](const std::string& path) {
        FileRecord file;
        file.path = path;
        file.name = path.substr(path.rfind('/') + 1);
        file.rootPath = "/r";
        index.upsert(file);
    };
    for (const std::string path : {"/r/a/1", "/r/a/2", "/r/b/3", "/r/b/4"})
        add(path);
    const std::vector<NamedFiles> projects{{"Trip", {"/r/a/2", "/r/b/3"}}};
    EXPECT_EQ(connectionGraph(index, "/r/none", 1, projects, {}), std::nullopt);

    const auto names = [&](int depth) {
        std::vector<std::string> found;
        const auto nodes = *connectionGraph(index, "/r/a/1", depth, projects, {});
        for (const GraphNode& node : nodes)
            found.push_back(std::to_string(node.parent) + " " + node.file.name);
        return found;
    };
    EXPECT_THAT(names(1), testing::ElementsAre("0 1", "0 2"));
    EXPECT_THAT(names(2), testing::ElementsAre("0 1", "0 2", "1 3"));

    std::vector<NamedFiles> many;
    for (int folder = 0; folder < 6; ++folder) {
        many.push_back({"P" + std::to_string(folder), {"/r/a/1"}});
        for (int file = 0; file < 50; ++file) {
            const std::string path = "/r/" + std::to_string(folder) + "/" + std::to_string(file);
            add(path);
            many.back().paths.push_back(path);
        }
    }
    for (const int depth : {1, 2}) {
        const auto nodes = *connectionGraph(index, "/r/a/1", depth, many, {});
        EXPECT_LE(nodes.size(), mostGraphNodes);
        EXPECT_GT(nodes.size(), 40U);
        std::set<std::string> paths;
        for (const GraphNode& node : nodes)
            EXPECT_TRUE(paths.insert(node.file.path).second);
    }
    for (std::size_t files = 50; files > 0; --files) {
        many.front().paths.resize(files + 1);
        const auto nodes = *connectionGraph(index, "/r/a/1", 1, {many.front()}, {});
        for (std::size_t at = 0; at < nodes.size(); ++at) {
            EXPECT_LE(std::hypot(nodes[at].x, nodes[at].y), 1 + 1e-9);
            for (std::size_t other = 0; other < at; ++other)
                EXPECT_GT(std::hypot(nodes[at].x - nodes[other].x, nodes[at].y - nodes[other].y),
                          0.15)
                    << files << " files, " << other << " and " << at;
        }
    }
}

} // namespace
} // namespace tovi
