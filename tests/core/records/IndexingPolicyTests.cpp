#include "core/records/IndexingPolicy.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(IndexingPolicy, KnowsSensitiveNames) {
    for (const char* name : {".env", ".env.local", "AWS_Credentials.txt", "my-secret-plan.md",
                             "id_rsa", "ID_ED25519", "server.PEM", "talk.key", "x.keychain-db"}) {
        EXPECT_TRUE(IndexingPolicy::isSensitiveName(name)) << name;
    }
    for (const char* name :
         {"environment.md", ".environment", "id_rsa.pub", "keyboard.txt", "pem", "notes.txt"}) {
        EXPECT_FALSE(IndexingPolicy::isSensitiveName(name)) << name;
    }
}

TEST(IndexingPolicy, ComparesExcludedNamesExactly) {
    EXPECT_TRUE(IndexingPolicy::isExcludedName("node_modules"));
    EXPECT_FALSE(IndexingPolicy::isExcludedName("Node_Modules"));
    EXPECT_FALSE(IndexingPolicy::isExcludedName("builds"));
}

TEST(IndexingPolicy, RefusesSystemHiddenAndCacheRoots) {
    for (const char* path :
         {"/", "/private", "/var", "/etc", "/etc/ssl", "/usr/share", "/proc/1", "/run", "/boot",
          "/home/ann/.local/share", "/home/ann/Library/Mail", "/home/ann/work/build",
          "/home/ann/secrets", "/private/var/db/x", "/run/media", "/run/user/1000"}) {
        EXPECT_FALSE(IndexingPolicy::acceptsRoot(path)) << path;
    }
    for (const char* path : {"/home/ann", "/home/ann/Documents", "/media/ann/Disk", "/var/www",
                             "/run/media/ann/Disk", "/etcetera", "/usrlocal", "/srv"}) {
        EXPECT_TRUE(IndexingPolicy::acceptsRoot(path)) << path;
    }
}

} // namespace
} // namespace tovi
