#include "tests/core/vault/VaultFixture.h"

#include <cstdlib>
#include <fstream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

/// Vaults made by an independent writer, and an independent reader for ours.
class VaultVectors : public VaultFixture {
  protected:
    static void run(const std::string& command) {
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }

    static ordered_json indexOf(const std::string& directory) {
        return ordered_json::parse(test::readFile(directory + "/vaults.json"));
    }

    /// Opens each vault of a directory whose name begins with `prefix` and expects what its index
    /// says; returns how many there were. All have one salt, so that the key is derived once and
    /// each is then read as one that another process has changed.
    int check(const std::string& directory, const std::string& prefix) {
        const ordered_json index = indexOf(directory);
        fs::create_directories(fs::path(vaultPath).parent_path());
        const auto store = openStore();
        replaceVault(directory + "/whole");
        store->unlock(index["password"].get<std::string>());
        int count = 0;
        for (const auto& vector : index["vaults"]) {
            const std::string name = vector["name"];
            if (!name.starts_with(prefix)) continue;
            SCOPED_TRACE(name);
            ++count;
            replaceVault(directory + "/" + name);
            checkOne(*store, vector);
        }
        return count;
    }

    void replaceVault(const std::string& vector) {
        fs::remove_all(vaultPath);
        fs::copy(vector, vaultPath);
    }

    void checkOne(VaultStore& vault, const ordered_json& vector) {
        if (vector.contains("unlockError")) {
            try {
                vault.items();
                ADD_FAILURE() << "opened";
            } catch (const VaultError& error) {
                EXPECT_EQ(error.what(), vector["unlockError"].get<std::string>());
            }
            return;
        }
        const std::vector<VaultItem> items = vault.items();
        ASSERT_EQ(items.size(), vector["items"].size());
        const std::string out = tree.makeDirectory("out");
        for (std::size_t at = 0; at < items.size(); ++at) {
            const ordered_json& expected = vector["items"][at];
            const ordered_json& item = expected["item"];
            EXPECT_EQ(items[at].id.string(), item["id"].get<std::string>());
            EXPECT_EQ(items[at].name, item["name"].get<std::string>());
            EXPECT_EQ(items[at].size, item["size"].get<std::int64_t>());
            EXPECT_EQ(items[at].importedAt.referenceSeconds(), item["importedAt"].get<double>());
            EXPECT_EQ(items[at].sha256, item["sha256"].get<std::string>());
            EXPECT_EQ(items[at].quarantine.has_value(),
                      item.contains("quarantine") && !item["quarantine"].is_null());
            if (expected.contains("error")) {
                expectError(Kind::damagedFile,
                            [&] { vault.exportFile(items[at].id, out + "/copy"); });
                EXPECT_TRUE(fs::is_empty(out));
            } else {
                vault.exportFile(items[at].id, out + "/copy");
                EXPECT_EQ(fs::file_size(out + "/copy"), item["size"].get<std::uintmax_t>());
                fs::remove(out + "/copy"); // its digest was checked against the item's
            }
        }
        const auto verification = vault.verify({}, {});
        EXPECT_EQ(verification.damaged.empty(),
                  vector["name"].get<std::string>().starts_with("whole"));
    }
};

const std::string smallVectors = TOVI_TEST_DATA "/vault";
const std::string maker = PYTHON " " TOVI_TEST_DATA "/vault/make-vaults.py ";

TEST_F(VaultVectors, OpensWholeVaults) {
    EXPECT_EQ(check(smallVectors, "whole"), 3);
}
TEST_F(VaultVectors, RefusesBrokenEnvelopes) {
    EXPECT_GT(check(smallVectors, "refused-envelope"), 20);
}
TEST_F(VaultVectors, RefusesTamperedMetadata) {
    EXPECT_GT(check(smallVectors, "refused-sealed"), 5);
}
TEST_F(VaultVectors, RefusesInvalidItems) {
    EXPECT_GT(check(smallVectors, "refused-item"), 20);
}
TEST_F(VaultVectors, RefusesInvalidManifests) {
    EXPECT_GT(check(smallVectors, "refused-manifest"), 6);
}
TEST_F(VaultVectors, FindsEveryDamage) {
    EXPECT_GT(check(smallVectors, "damaged"), 12);
}

TEST_F(VaultVectors, UnlocksAndRefusesByPassword) {
    const std::string vectorPassword = indexOf(smallVectors)["password"];
    fs::create_directories(fs::path(vaultPath).parent_path());
    replaceVault(smallVectors + "/whole-in-another-hand");
    EXPECT_EQ(openStore()->unlock(vectorPassword).size(), 1U);
    expectError(Kind::invalidPasswordOrDamagedVault,
                [&] { openStore()->unlock(vectorPassword + " "); });
    replaceVault(smallVectors + "/refused-sealed-flipped-byte");
    const auto store = openStore();
    expectError(Kind::invalidPasswordOrDamagedVault, [&] { store->unlock(vectorPassword); });
    replaceVault(smallVectors + "/refused-item-name-dots");
    expectError(Kind::invalidFormat, [&] { store->unlock(vectorPassword); });
    EXPECT_EQ(store->status(), VaultStatus::locked);
}

TEST_F(VaultVectors, FindsDamageBetweenChunks) {
    const std::string large = tree.makeDirectory("large");
    run(maker + "--large " + large);
    EXPECT_EQ(check(large, "whole"), 1);
    EXPECT_EQ(check(large, "damaged"), 6);
}

TEST_F(VaultVectors, AreWhatTheirMakerWrites) {
    const std::string again = tree.makeDirectory("again");
    run(maker + again);
    run("diff -r --exclude=make-vaults.py " + smallVectors + " " + again);
}

TEST_F(VaultVectors, OursAreReadByTheIndependentReader) {
    const auto store = openStore();
    store->create(password);
    constexpr std::size_t chunk = 1 << 20;
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{5}, chunk - 1, chunk, chunk + 1, 2 * chunk, 6 * chunk + 3}) {
        std::string bytes(size, '\0');
        for (std::size_t at = 0; at < size; ++at)
            bytes[at] = static_cast<char>(at * 31 + at / 977);
        const VaultItem item =
            store->importFile(tree.write(fmt::format("in/{} \"ä\n", size), bytes));
        const std::size_t chunks = std::max<std::size_t>((size + chunk - 1) / chunk, 1);
        EXPECT_EQ(fs::file_size(vaultPath + "/" + item.id.string() + ".avault"),
                  size + 32 * chunks);
    }
    tree.makeDirectory("out");
    tree.write("password", std::string(password) + "\n");
    const std::string reader = PYTHON " " TOVI_SCRIPTS "/vault-read.py " + vaultPath;
    run(reader + " extract " + tree.path("out") + " --password-fd 0 < " + tree.path("password"));
    EXPECT_EQ(contents(tree.path("out")), contents(tree.path("in")));
    tree.write("password", "twelve wrong\n");
    EXPECT_NE(
        std::system(
            (reader + " list --password-fd 0 2> /dev/null < " + tree.path("password")).c_str()),
        0);
}

} // namespace
} // namespace tovi
