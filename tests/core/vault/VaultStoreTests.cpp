#include "base/FileDescriptor.h"
#include "core/vault/VaultKeys.h"
#include "core/vault/VaultManifest.h"
#include "tests/core/vault/VaultFixture.h"

#include <cerrno>
#include <fstream>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;

class VaultStoreTest : public VaultFixture {
  protected:
    std::string manifestPath() const { return vaultPath + "/manifest.ardeno-vault"; }

    /// An unlocked store in a new vault.
    std::unique_ptr<VaultStore> createStore() {
        auto store = openStore();
        store->create(password);
        return store;
    }

    void setAttribute(const std::string& path, const char* name, const std::string& value) {
        ASSERT_EQ(::setxattr(path.c_str(), name, value.data(), value.size(), 0), 0)
            << "the temporary directory needs extended attributes";
    }
};

TEST_F(VaultStoreTest, GoesThroughItsStates) {
    const auto store = openStore();
    EXPECT_EQ(store->status(), VaultStatus::notCreated);
    EXPECT_FALSE(fs::exists(vaultPath));
    expectError(VaultError::system(ENOENT), [&] { store->unlock(password); });

    expectError(Kind::passwordTooShort, [&] { store->create("eleven char"); });
    expectError(Kind::passwordTooShort, [&] { store->create("ééééééééééé"); });
    expectError(Kind::invalidPasswordOrDamagedVault,
                [&] { store->create(std::string(4097, 'p')); });
    expectError(Kind::invalidPasswordOrDamagedVault, [&] { store->create("twelve \xff chars"); });
    EXPECT_FALSE(fs::exists(vaultPath));

    EXPECT_TRUE(store->create(password).empty());
    EXPECT_EQ(store->status(), VaultStatus::unlocked);
    EXPECT_EQ(fs::status(vaultPath).permissions(), fs::perms::owner_all);
    expectError(Kind::alreadyCreated, [&] { store->create(password); });

    store->lock();
    EXPECT_EQ(store->status(), VaultStatus::locked);
    const std::string source = tree.write("a", "a");
    expectError(Kind::locked, [&] { store->items(); });
    expectError(Kind::locked, [&] { store->importFile(source); });
    expectError(Kind::locked, [&] { store->exportFile(Uuid{}, tree.path("b")); });
    expectError(Kind::locked, [&] { store->verify({}, {}); });
    expectError(Kind::invalidPasswordOrDamagedVault, [&] { store->unlock("twelve wrong"); });
    EXPECT_EQ(store->status(), VaultStatus::locked);

    fs::permissions(vaultPath, fs::perms::all);
    EXPECT_TRUE(store->unlock(password).empty());
    EXPECT_EQ(fs::status(vaultPath).permissions(), fs::perms::owner_all);
}

TEST_F(VaultStoreTest, KeepsWhatItWasGiven) {
    const auto store = createStore();
    const std::string source = tree.write("in/nämé\n\"1\"", "content");
    setAttribute(source, "user.com.apple.quarantine", std::string("0083;\0;x", 8));
    const Date before = Date::now();
    const VaultItem item = store->importFile(source);
    EXPECT_EQ(item.name, "nämé\n\"1\"");
    EXPECT_EQ(item.size, 7);
    EXPECT_EQ(item.sha256, "ed7002b439e9ac845f22357d822bac1444730fbdb6016d3ec9432297b9ec9f73");
    EXPECT_GE(item.importedAt, before);
    EXPECT_LE(item.importedAt, Date::now());
    EXPECT_EQ(item.quarantine, std::string("0083;\0;x", 8));
    const VaultItem plain = store->importFile(tree.write("in/plain", ""));

    const auto again = openStore();
    EXPECT_EQ(again->unlock(password), (std::vector<VaultItem>{item, plain}));
    again->exportFile(item.id, tree.path("in/copy"));
    EXPECT_EQ(test::readFile(tree.path("in/copy")), "content");
    std::string value(100, '\0');
    const ssize_t length = ::getxattr(tree.path("in/copy").c_str(), "user.com.apple.quarantine",
                                      value.data(), value.size());
    EXPECT_EQ(value.substr(0, 8), *item.quarantine);
    EXPECT_EQ(length, 8);
    again->exportFile(plain.id, tree.path("in/copy2"));
    EXPECT_EQ(::getxattr(tree.path("in/copy2").c_str(), "user.com.apple.quarantine", nullptr, 0),
              -1);
    EXPECT_EQ(fs::status(tree.path("in/copy")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(VaultStoreTest, RefusesWhatItCannotKeep) {
    const auto store = createStore();
    const VaultItem inside = store->importFile(tree.write("kept", "kept"));
    const std::string insidePath = vaultPath + "/" + inside.id.string() + ".avault";
    const std::string fork = tree.write("fork", "x");
    setAttribute(fork, "user.com.apple.ResourceFork", "f");
    const std::string alias = tree.write("alias", "x");
    setAttribute(alias, "user.com.apple.FinderInfo",
                 std::string(8, '\0') + '\x80' + std::string(23, '\0'));
    const std::string fifo = tree.path("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);

    const auto before = contents(vaultPath);
    const std::pair<std::string, Kind> cases[] = {
        {"", Kind::unsafePath},
        {"/", Kind::unsafePath},
        {tree.path("kept/"), Kind::unsafePath},
        {tree.path("x/.."), Kind::unsafePath},
        {tree.path(std::string(256, 'n')), Kind::unsafePath},
        {tree.write("latin-\xe9", "x"), Kind::unsafePath},
        {std::string("/tmp/a\0b", 8), Kind::unsafePath},
        {insidePath, Kind::unsafePath},
        {tree.link("to-inside", insidePath), Kind::unsafePath},
        {tree.link("to-vault", vaultPath) + "/manifest.ardeno-vault", Kind::unsafePath},
        {vaultPath, Kind::unsafePath},
        {vaultPath + "/missing", Kind::unsafePath},
        {tree.path("missing"), Kind::notAvailableLocally},
        {tree.write("cloud.placeholder", "x"), Kind::notAvailableLocally},
        {tree.makeDirectory("folder"), Kind::unsupportedFile},
        {tree.makeDirectory("Mail.app"), Kind::unsupportedFile},
        {tree.link("link", tree.path("kept")), Kind::unsupportedFile},
        {tree.link("loop", "loop"), Kind::unsupportedFile},
        {fifo, Kind::unsupportedFile},
        {"/dev/null", Kind::unsupportedFile},
        {fork, Kind::unsupportedFile},
        {alias, Kind::unsupportedFile},
    };
    for (const auto& [path, kind] : cases) {
        SCOPED_TRACE(path);
        expectError(kind, [&, &path = path] { store->importFile(path); });
    }
    EXPECT_EQ(contents(vaultPath), before);
}

TEST_F(VaultStoreTest, NeverReplacesAndNeverExportsIntoItself) {
    const auto store = createStore();
    const VaultItem item = store->importFile(tree.write("in", "secret"));
    tree.write("out/taken", "mine");
    tree.makeDirectory("out/folder");
    tree.link("out/dangling", "nowhere");
    tree.link("linked", tree.path("out"));
    const std::pair<std::string, VaultError> cases[] = {
        {tree.path("out/taken"), VaultError(Kind::destinationExists)},
        {tree.path("out/folder"), VaultError(Kind::destinationExists)},
        {tree.path("out/dangling"), VaultError(Kind::destinationExists)},
        {tree.path("out/.."), VaultError(Kind::unsafePath)},
        {tree.path("out/"), VaultError(Kind::unsafePath)},
        {vaultPath + "/copy", VaultError(Kind::unsafePath)},
        {tree.link("to-vault", vaultPath) + "/copy", VaultError(Kind::unsafePath)},
        {tree.path("linked/copy"), VaultError(Kind::unsafePath)},
        {tree.path("in/copy"), VaultError(Kind::unsafePath)},
        {tree.path("missing/copy"), VaultError::system(ENOENT)},
    };
    for (const auto& [path, error] : cases) {
        SCOPED_TRACE(path);
        expectError(error, [&, &path = path] { store->exportFile(item.id, path); });
    }
    expectError(Kind::itemNotFound, [&] { store->exportFile(Uuid{}, tree.path("out/copy")); });
    EXPECT_EQ(
        contents(tree.path("out")),
        (std::map<std::string, std::string>{{"taken", "mine"}, {"folder", ""}, {"dangling", ""}}));
}

TEST_F(VaultStoreTest, RefusesUnsafeStorage) {
    auto store = createStore();
    const std::string manifest = test::readFile(manifestPath());

    fs::rename(manifestPath(), tree.path("elsewhere"));
    fs::create_symlink(tree.path("elsewhere"), manifestPath());
    expectError(Kind::unsafePath, [&] { store->unlock(password); });
    fs::remove(manifestPath());
    fs::create_hard_link(tree.path("elsewhere"), manifestPath());
    expectError(Kind::unsafePath, [&] { store->unlock(password); });
    fs::remove(manifestPath());
    fs::create_directory(manifestPath());
    expectError(Kind::unsafePath, [&] { store->unlock(password); });
    fs::remove(manifestPath());
    expectError(Kind::invalidFormat, [&] { store->unlock(password); });
    tree.write("data/Vault/manifest.ardeno-vault",
               manifest + std::string(33'554'433 - manifest.size(), ' '));
    expectError(Kind::invalidFormat, [&] { store->unlock(password); });
    fs::resize_file(manifestPath(), 33'554'432); // white space after the text
    EXPECT_NO_THROW(store->unlock(password));

    const std::string lock = vaultPath + "/.vault-lock";
    fs::rename(lock, tree.path("lock"));
    fs::create_symlink(tree.path("lock"), lock);
    expectError(Kind::unsafePath, [&] { store->items(); });
    fs::remove(lock);
    fs::create_hard_link(tree.path("lock"), lock);
    expectError(Kind::unsafePath, [&] { store->items(); });
    fs::remove(lock);
    fs::create_directory(lock);
    expectError(Kind::unsafePath, [&] { store->items(); });
    fs::remove(lock);
    ASSERT_EQ(::mkfifo(lock.c_str(), 0600), 0);
    expectError(Kind::unsafePath, [&] { store->items(); });
    fs::remove(lock);

    VaultStore through(tree.link("link", vaultPath), availability);
    expectError(Kind::unsafePath, [&] { through.unlock(password); });
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(vaultPath.c_str(), 65534, 65534), 0);
        expectError(Kind::unsafePath, [&] { store->unlock(password); });
    }
}

TEST_F(VaultStoreTest, ExcludesOthersAndSeesTheirWork) {
    const auto store = createStore();
    const auto other = openStore();
    other->unlock(password);
    const VaultItem first = store->importFile(tree.write("first", "1"));
    const VaultItem second = other->importFile(tree.write("second", "2"));
    EXPECT_EQ(store->items(), (std::vector<VaultItem>{first, second}));

    const FileDescriptor held(::open((vaultPath + "/.vault-lock").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(held.get(), LOCK_EX), 0);
    expectError(Kind::busy, [&] { store->importFile(tree.path("first")); });
    expectError(Kind::busy, [&] { store->status(); });
    store->lock(); // does not wait
    ASSERT_EQ(::flock(held.get(), LOCK_UN), 0);
    EXPECT_EQ(store->status(), VaultStatus::locked);
}

TEST_F(VaultStoreTest, ClearsLeftoversAndReportsWhatNoListNames) {
    auto store = createStore();
    const VaultItem item = store->importFile(tree.write("a", "a"));
    const std::string unlisted = Uuid::random().string() + ".avault";
    const std::string leftovers[] = {".import-" + Uuid::random().string(),
                                     ".metadata-" + Uuid::random().string()};
    for (const std::string& name : leftovers)
        tree.write("data/Vault/" + name, "x");
    tree.write("data/Vault/" + unlisted, "x");
    tree.write("data/Vault/.import-notes", "mine");
    tree.write("data/Vault/" + item.id.string() + ".avault", "damaged");

    store->unlock(password);
    for (const std::string& name : leftovers)
        EXPECT_FALSE(contents(vaultPath).contains(name));
    EXPECT_TRUE(contents(vaultPath).contains(".import-notes"));
    const VaultItem good = store->importFile(tree.write("b", "b"));
    std::int64_t bytes = 0;
    const auto result = store->verify([&](std::int64_t count) { bytes += count; }, {});
    EXPECT_EQ(result.intact, 1U);
    EXPECT_EQ(bytes, 1);
    ASSERT_EQ(result.damaged.size(), 1U);
    EXPECT_EQ(result.damaged[0].item, item);
    EXPECT_EQ(result.damaged[0].reason, VaultError(Kind::damagedFile).what());
    EXPECT_EQ(result.unlisted, std::vector<std::string>{unlisted});
    EXPECT_TRUE(contents(vaultPath).contains(unlisted));
}

TEST_F(VaultStoreTest, AddsManyAndTellsOfEach) {
    const auto store = createStore();
    std::vector<std::string> paths;
    for (int number = 0; number < 50; ++number) {
        paths.push_back(tree.write("in/" + std::to_string(number), std::to_string(number)));
    }
    paths.insert(paths.begin() + 7, tree.path("missing"));
    tree.write("in/3.quarantine", std::string(16'385, 'q'));
    tree.write("in/4.quarantine", std::string(16'384, 'q'));
    std::map<std::size_t, VaultStore::Import> results;
    store->importFiles(paths, [&](const auto& result) { results.emplace(result.index, result); },
                       {}, {});
    ASSERT_EQ(results.size(), 51U);
    for (const auto& [index, result] : results) {
        ASSERT_EQ(result.item.has_value(), index != 7);
        EXPECT_EQ(result.error.has_value(), index == 7);
        EXPECT_EQ(result.isQuarantineLeftOut, index == 3);
    }
    EXPECT_EQ(results.at(3).item->quarantine, std::nullopt);
    EXPECT_EQ(results.at(4).item->quarantine, std::string(16'384, 'q'));
    std::vector<std::string> names;
    for (const VaultItem& item : store->items())
        names.push_back("in/" + item.name);
    paths.erase(paths.begin() + 7);
    for (std::size_t at = 0; at < paths.size(); ++at)
        EXPECT_EQ(tree.path(names[at]), paths[at]);
    EXPECT_EQ(store->verify({}, {}).intact, 50U);
}

TEST_F(VaultStoreTest, StopsAtItsLimits) {
    using namespace vault;
    const auto store = createStore();
    const Envelope envelope = decodeEnvelope(test::readFile(manifestPath()));
    const VaultKey key = VaultKey::derive(password, envelope.salt);
    VaultItem item{{}, "n", 0, {}, std::string(64, '0'), {}};
    const auto fill = [&](std::size_t count) {
        std::vector<VaultItem> items;
        for (std::size_t at = 0; at < count; ++at) {
            item.id.bytes[0] = static_cast<std::uint8_t>(at);
            item.id.bytes[1] = static_cast<std::uint8_t>(at >> 8);
            item.id.bytes[2] = static_cast<std::uint8_t>(at >> 16);
            items.push_back(item);
        }
        tree.write("data/Vault/manifest.ardeno-vault", sealManifest(items, envelope.salt, key, {}));
    };
    const std::string source = tree.write("a", "a");
    fill(100'000);
    const auto full = contents(vaultPath);
    expectError(VaultError::io("The Vault has reached its item limit."),
                [&] { store->importFile(source); });
    EXPECT_EQ(contents(vaultPath), full);
    fill(100'001);
    expectError(Kind::invalidFormat, [&] { store->items(); });

    item.quarantine = std::string(16'384, 'q');
    fill(1'142); // one more item of this sort would be too much
    tree.write("a.quarantine", *item.quarantine);
    const auto before = contents(vaultPath);
    expectError(VaultError::io("The Vault has reached its metadata limit."),
                [&] { store->importFile(source); });
    EXPECT_EQ(contents(vaultPath), before);
}

} // namespace
} // namespace tovi
