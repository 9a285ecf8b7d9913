#pragma once

#include "core/actions/FileActionService.h"
#include "tests/support/FileMoveFakes.h"
#include "tests/support/ManualAvailability.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {

/// A service on a tree of its own, whose clock, Trash and moves the test controls.
class ServiceFixture : public testing::Test {
  protected:
    FileActionService makeService() {
        return FileActionService(journal(),
                                 {trash, move, bookmarks, availability, [this] { return now; }});
    }
    std::string journal() const { return data.path("private/actions.json"); }

    FileRecord record(const std::string& relative) const {
        FileRecord result;
        result.path = tree.path(relative);
        return result;
    }
    std::vector<FileRecord> records(std::initializer_list<const char*> relatives) const {
        std::vector<FileRecord> result;
        for (const char* relative : relatives)
            result.push_back(record(relative));
        return result;
    }
    ActionPlan planTrash(std::initializer_list<const char*> relatives,
                         std::span<const FileRecord> keepers = {}) {
        return service.plan(records(relatives), FileOperation::trash, {}, roots, keepers);
    }
    ActionPlan planRename(const char* relative, const std::optional<std::string>& name) {
        return service.plan(records({relative}), FileOperation::rename, name, roots);
    }
    ActionReceipt execute(const ActionPlan& plan) { return service.execute(plan, plan.id, roots); }

    /// The sentence of the `ActionError` that `work` ends with; empty if it does not.
    template <typename Work>
    static std::string refusal(Work work) {
        try {
            work();
        } catch (const ActionError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryTree tree;
    test::TemporaryTree data;
    std::vector<std::string> roots{tree.path()};
    Date now{1'700'000'000};
    test::FakeTrash trash{data.path("trash")};
    test::FakeExclusiveMove move;
    test::FakeBookmarks bookmarks;
    ManualAvailability availability;
    FileActionService service = makeService();
};

} // namespace tovi
