#pragma once

#include "core/files/Sha256.h"
#include "core/vault/VaultStore.h"
#include "tests/support/TemporaryTree.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tovi {

/// Every file is here, but those whose name says otherwise.
class FakeAvailability final : public platform::Availability {
  public:
    using Availability::isAvailableLocally;
    bool isAvailableLocally(const std::string& path,
                            const platform::ExtendedAttributes& /*attributes*/) const override {
        return !path.ends_with(".placeholder");
    }
};

/// The real calls, with a hook before each one: a function that returns the errno to fail with.
class HookedCalls final : public vault::FileCalls {
  public:
    using Hook = std::function<int(Call)>;
    explicit HookedCalls(Hook& hook) : hook_(hook) {}

    /// Longer values than some file systems keep come from a file "NAME.quarantine" beside NAME.
    ssize_t getAttribute(int file, const char* name, std::span<char> value) override {
        const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file));
        if (!std::filesystem::exists(path.string() + ".quarantine") ||
            std::string_view(name) != "user.com.apple.quarantine") {
            return FileCalls::getAttribute(file, name, value);
        }
        const std::string stored = test::readFile(path.string() + ".quarantine");
        std::copy_n(stored.begin(), std::min(stored.size(), value.size()), value.begin());
        return static_cast<ssize_t>(stored.size());
    }

  protected:
    int failureOf(Call call) override { return hook_ ? hook_(call) : 0; }

  private:
    Hook& hook_;
};

/// Expects the whole sentence of a `VaultError`.
template <typename Operation>
void expectError(const VaultError& expected, const Operation& operation) {
    try {
        operation();
        ADD_FAILURE() << "nothing thrown instead of: " << expected.what();
    } catch (const VaultError& error) {
        EXPECT_STREQ(error.what(), expected.what());
    }
}

template <typename Operation>
void expectError(VaultError::Kind expected, const Operation& operation) {
    expectError(VaultError(expected), operation);
}

class VaultFixture : public testing::Test {
  protected:
    using Kind = VaultError::Kind;
    static constexpr std::string_view password = "twelve chars";

    std::unique_ptr<VaultStore> openStore() {
        return std::make_unique<VaultStore>(vaultPath, availability,
                                            std::make_unique<HookedCalls>(hook));
    }

    /// What lies in a directory: each name, and a short content itself or the digest of a long one.
    static std::map<std::string, std::string> contents(const std::string& directory) {
        std::map<std::string, std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            std::string& content = result[entry.path().filename().string()];
            if (!entry.is_regular_file()) continue;
            content = test::readFile(entry.path().string());
            if (content.size() < 64) continue;
            Sha256 sum;
            sum.update(std::as_bytes(std::span(content)));
            content = hexadecimal(sum.finish());
        }
        return result;
    }

    test::TemporaryTree tree;
    const std::string vaultPath = tree.path("data/Vault");
    FakeAvailability availability;
    HookedCalls::Hook hook; // outlives the store
};

} // namespace tovi
