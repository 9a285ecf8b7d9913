#include "base/Cancelled.h"
#include "tests/core/vault/VaultFixture.h"

#include <atomic>
#include <cerrno>
#include <mutex>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using Call = vault::FileCalls::Call;

/// Each operation with each of its system calls failing in turn.
class VaultFaults : public VaultFixture {
  protected:
    /// Runs `operation` again and again, the first time with its first call failing, then its
    /// second, and so on until all its calls get through. After each failure calls `check`; where
    /// a failed call did not matter, `undo`. Returns how many calls were made to fail.
    int failEach(int code, const std::function<void()>& operation,
                 const std::function<void()>& check, const std::function<void()>& undo) {
        for (int target = 0;; ++target) {
            std::atomic<int> made = 0;
            std::atomic<int> failed = -1;
            hook = [&](Call call) {
                if (made++ != target) return 0;
                failed = static_cast<int>(call);
                return code;
            };
            std::string message;
            try {
                operation();
            } catch (const VaultError& error) {
                message = error.what();
            }
            hook = nullptr;
            SCOPED_TRACE("call " + std::to_string(target) + " of kind " + std::to_string(failed));
            if (failed < 0) return target;
            message.empty() ? undo() : check();
        }
    }

    const std::string content = std::string(3 << 20, 'p') + "end";
};

TEST_F(VaultFaults, LeaveTheVaultAsItWas) {
    const auto store = openStore();
    store->create(password);
    const VaultItem item = store->importFile(tree.write("first", "1"));
    const std::string source = tree.write("source", content);
    const std::string backup = tree.path("backup");
    fs::copy(vaultPath, backup);
    auto before = contents(vaultPath);
    before.erase("manifest.ardeno-vault"); // a list that was put back is sealed anew
    const auto restore = [&] {
        fs::remove_all(vaultPath);
        fs::copy(backup, vaultPath);
    };
    for (const int code : {EIO, ENOSPC}) {
        std::optional<VaultItem> added;
        const int calls = failEach(
            code, [&] { added = store->importFile(source); },
            [&] {
                auto now = contents(vaultPath);
                EXPECT_EQ(now.erase("manifest.ardeno-vault"), 1U);
                EXPECT_EQ(now, before);
                EXPECT_EQ(store->items(), std::vector<VaultItem>{item});
                EXPECT_EQ(test::readFile(source), content);
            },
            restore);
        EXPECT_GT(calls, 25);
        ASSERT_TRUE(added);
        EXPECT_EQ(store->items(), (std::vector<VaultItem>{item, *added}));
        restore();
    }
    EXPECT_EQ(openStore()->unlock(password), std::vector<VaultItem>{item});
}

TEST_F(VaultFaults, LeaveNoPlaintext) {
    const auto store = openStore();
    store->create(password);
    const VaultItem item = store->importFile(tree.write("source", content));
    const auto before = contents(vaultPath);
    const std::string out = tree.makeDirectory("out");
    tree.write("expected/copy", content);
    const auto expected = contents(tree.path("expected"));
    const auto remove = [&] { fs::remove(out + "/copy"); };
    for (const int code : {EIO, ENOSPC}) {
        const int calls = failEach(
            code, [&] { store->exportFile(item.id, out + "/copy"); },
            [&] { EXPECT_TRUE(fs::is_empty(out)); }, remove);
        EXPECT_GT(calls, 15);
        EXPECT_EQ(contents(out), expected);
        EXPECT_EQ(contents(vaultPath), before);
        remove();
    }
}

TEST_F(VaultFaults, LeaveNoHalfMadeVault) {
    const auto store = openStore();
    const auto check = [&] { EXPECT_EQ(store->status(), VaultStatus::notCreated); };
    const int calls = failEach(
        EIO, [&] { store->create(password); }, check,
        [&] { fs::remove(vaultPath + "/manifest.ardeno-vault"); });
    EXPECT_GT(calls, 10);
    EXPECT_EQ(contents(vaultPath).size(), 2U);
    store->lock();
    failEach(
        EIO, [&] { store->unlock(password); },
        [&] { EXPECT_EQ(store->status(), VaultStatus::locked); }, [&] { store->lock(); });
    EXPECT_TRUE(store->items().empty());
    hook = [](Call call) { return call == Call::randomBytes ? EIO : 0; };
    expectError(VaultError::io("Secure random generation failed."),
                [&] { store->importFile(tree.write("a", "a")); });
}

TEST_F(VaultFaults, KeepTheListWholeWhenTheOldOneCannotBePutBack) {
    const auto store = openStore();
    store->create(password);
    int renames = 0; // of the encrypted file, then of the list; what follows fails for good
    hook = [&](Call call) {
        renames += call == Call::rename ? 1 : 0;
        return renames > 2 || (renames == 2 && call == Call::sync) ? EIO : 0;
    };
    expectError(VaultError::system(EIO), [&] { store->importFile(tree.write("a", "a")); });
    hook = nullptr;
    EXPECT_EQ(store->items().size(), 1U);
    EXPECT_EQ(store->verify({}, {}).intact, 1U);
}

TEST_F(VaultFaults, WorkWithoutAnExclusiveRename) {
    const auto store = openStore();
    store->create(password);
    const auto noExclusiveRename = [renames = 0](Call call) mutable {
        return call == Call::rename && renames++ == 0 ? EINVAL : 0;
    };
    hook = noExclusiveRename;
    const VaultItem item = store->importFile(tree.write("source", "text"));
    EXPECT_EQ(contents(vaultPath).size(), 3U);
    const std::string out = tree.makeDirectory("out");
    hook = noExclusiveRename;
    store->exportFile(item.id, out + "/copy");
    hook = [](Call call) { // nor links
        return call == Call::rename ? EINVAL : call == Call::link ? EPERM : 0;
    };
    expectError(VaultError::system(EPERM), [&] { store->exportFile(item.id, out + "/other"); });
    EXPECT_EQ(contents(out), (std::map<std::string, std::string>{{"copy", "text"}}));
}

/// The world changes while a file is read or written, which takes several chunks.
class VaultRaces : public VaultFaults {
  protected:
    /// Does something once, before the second call of a sort.
    void onSecond(Call wanted, const std::function<void()>& action) {
        hook = [=, count = 0, mutex = std::make_shared<std::mutex>()](Call call) mutable {
            const std::lock_guard lock(*mutex);
            if (call == wanted && ++count == 2) action();
            return 0;
        };
    }
};

TEST_F(VaultRaces, ChangedOriginalsAreNotTaken) {
    const auto store = openStore();
    store->create(password);
    const auto before = contents(vaultPath);
    const std::function<void(const std::string&)> changes[] = {
        [&](const std::string&) { tree.write("source", content + "more"); },
        [&](const std::string& path) { fs::resize_file(path, 5); },
        [&](const std::string&) { tree.write("source", std::string(content.size(), 'q')); },
        [&](const std::string& path) { fs::remove(path); },
        [&](const std::string& path) {
            tree.write("new", content);
            fs::rename(tree.path("new"), path);
        },
        [&](const std::string& path) {
            fs::rename(path, tree.path("moved"));
            fs::create_symlink(tree.path("moved"), path);
        },
    };
    for (const auto& change : changes) {
        fs::remove(tree.path("source"));
        const std::string source = tree.write("source", content);
        onSecond(Call::read, [&] { change(source); });
        expectError(Kind::sourceChanged, [&] { store->importFile(source); });
        hook = nullptr;
        EXPECT_EQ(contents(vaultPath), before);
        EXPECT_TRUE(store->items().empty());
    }
}

TEST_F(VaultRaces, DestinationsThatAppearAreNotReplaced) {
    const auto store = openStore();
    store->create(password);
    const VaultItem item = store->importFile(tree.write("source", content));
    const std::string out = tree.makeDirectory("out");
    onSecond(Call::write, [&] { tree.write("out/copy", "mine"); });
    expectError(Kind::destinationExists, [&] { store->exportFile(item.id, out + "/copy"); });
    EXPECT_EQ(contents(out), (std::map<std::string, std::string>{{"copy", "mine"}}));
}

TEST_F(VaultRaces, CancelledWorkLeavesNothing) {
    const auto store = openStore();
    store->create(password);
    const std::string source = tree.write("source", content);
    const auto before = contents(vaultPath);
    for (const Call call : {Call::read, Call::write, Call::sync}) { // the second sync is the list's
        std::stop_source stop;
        onSecond(call, [&] { stop.request_stop(); });
        EXPECT_THROW(store->importFile(source, stop.get_token()), Cancelled);
        EXPECT_EQ(contents(vaultPath), before);
    }
    hook = nullptr;
    const VaultItem item = store->importFile(source);
    const std::string out = tree.makeDirectory("out");
    std::stop_source stop;
    onSecond(Call::write, [&] { stop.request_stop(); });
    EXPECT_THROW(store->exportFile(item.id, out + "/copy", stop.get_token()), Cancelled);
    EXPECT_TRUE(fs::is_empty(out));

    // Of many files those that were finished stay.
    std::vector<std::string> paths;
    for (int number = 0; number < 40; ++number) {
        paths.push_back(tree.write("in/" + std::to_string(number), "x"));
    }
    std::stop_source many;
    hook = nullptr;
    std::size_t reported = 0;
    int encrypted = 0;
    EXPECT_THROW(store->importFiles(
                     paths, [&](const auto& result) { reported += result.item ? 1 : 0; },
                     [&](std::int64_t) {
                         if (++encrypted == 35) many.request_stop();
                     },
                     many.get_token()),
                 Cancelled);
    EXPECT_EQ(reported, 35U);
    EXPECT_EQ(store->items().size(), 36U);
    EXPECT_EQ(store->verify({}, {}).intact, 36U);
}

} // namespace
} // namespace tovi
