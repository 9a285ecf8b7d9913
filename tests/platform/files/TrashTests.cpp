#include "platform/Trash.h"
#include "platform/linux/TrashNote.h"
#include "tests/support/FileMoveFakes.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovi::platform {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TemporaryTree;
using testing::HasSubstr;

constexpr Date now{1'700'000'000.5};
const auto ignore = [](const std::string&) {};

std::string noteOf(const std::string& trashed) {
    const fs::path item(trashed);
    return (item.parent_path().parent_path() / "info" / (item.filename().string() + ".trashinfo"))
        .string();
}

struct RealTrash : SystemTrash {
    explicit RealTrash(const TemporaryTree& tree)
        : SystemTrash(tree.path("data"), [] { return now; }) {}
    bool hasNote(const std::string& trashed) const { return fs::exists(noteOf(trashed)); }
};
struct PretendedTrash : test::FakeTrash {
    explicit PretendedTrash(const TemporaryTree& tree) : FakeTrash(tree.path("trash")) {}
};

template <typename Type>
class TrashContract : public testing::Test {
  public:
    DirectoryEntry entry(const char* path) const { return DirectoryEntry::open(tree.path(path)); }

    TemporaryTree tree;
    Type trash{tree};
};
using Implementations = testing::Types<RealTrash, PretendedTrash>;
TYPED_TEST_SUITE(TrashContract, Implementations);

TYPED_TEST(TrashContract, MovesTheItemToThePlaceItAnnounced) {
    std::string announced;
    std::vector<std::string> places;
    for (const char* bytes : {"first", "second"}) {
        this->tree.write("folder/name.txt", bytes);
        const auto moved = this->trash.move(this->entry("folder/name.txt"),
                                            [&](const std::string& path) { announced = path; });
        EXPECT_EQ(moved.path, announced);
        EXPECT_FALSE(moved.syncError);
        EXPECT_FALSE(fs::exists(this->tree.path("folder/name.txt")));
        EXPECT_TRUE(this->trash.hasNote(moved.path));
        places.push_back(moved.path);
    }
    EXPECT_EQ(readFile(places[0]), "first");
    EXPECT_EQ(readFile(places[1]), "second");
}

TYPED_TEST(TrashContract, LeavesTheItemWhereTheAnnouncementFailsOrNothingIsThere) {
    this->tree.write("file", "bytes");
    std::string announced;
    const auto refuse = [&](const std::string& path) {
        announced = path;
        throw std::runtime_error("no");
    };
    EXPECT_THROW(this->trash.move(this->entry("file"), refuse), std::runtime_error);
    EXPECT_EQ(readFile(this->tree.path("file")), "bytes");
    EXPECT_FALSE(this->trash.hasNote(announced));
    EXPECT_THROW(this->trash.move(this->entry("missing"), ignore), TrashError);
}

TYPED_TEST(TrashContract, ForgetsOnlyWhatLeftTheTrashAndCameFromThere) {
    this->tree.write("file", "bytes");
    const std::string original = this->tree.path("file");
    const std::string place = this->trash.move(this->entry("file"), ignore).path;
    this->trash.forget(place, original);
    EXPECT_TRUE(this->trash.hasNote(place)) << "the item is still there";
    fs::rename(place, original);
    this->trash.forget(place, original + "x");
    EXPECT_TRUE(this->trash.hasNote(place)) << "another item's note";
    this->trash.forget(place, original);
    EXPECT_FALSE(this->trash.hasNote(place));
}

TEST(TrashNote, EncodesEveryNameAndKeepsItsOwnShort) {
    const std::string odd = "/a b/100%/\xff\n'\".txt";
    const std::string note = trashNote(odd, now);
    EXPECT_THAT(note, HasSubstr("\nPath=/a%20b/100%25/%FF%0A%27%22.txt\n"));
    EXPECT_THAT(note, testing::ContainsRegex("\nDeletionDate=2023-11-1[45]T[0-9:]{8}\n"));
    EXPECT_EQ(pathOfTrashNote(note), odd);

    const std::string longest =
        std::string(120, 'n') + "\u00e9\u00e9" + std::string(127, 'e') + ".txt";
    for (const unsigned attempt : {1U, 2U, 99U}) {
        const std::string name = trashName(longest, attempt, 255);
        EXPECT_LE(name.size() + trashNoteSuffix.size(), 255U);
        EXPECT_TRUE(name.ends_with(".txt"));
    }
    EXPECT_EQ(trashName("\u00e9\u00e9\u00e9", 1, 10 + 5), "\u00e9\u00e9")
        << "cut between characters";
    EXPECT_EQ(trashName("photo.tar", 2, 255), "photo 2.tar");
    EXPECT_EQ(trashName("photo", 20, 255), "photo 20");
}

TEST(SystemTrash, KeepsOrphansAndWritesAnAbsolutePathAtHome) {
    const TemporaryTree tree;
    RealTrash trash(tree);
    tree.write("data/Trash/files/name", "an orphan");
    tree.write("data/Trash/info/name 2.trashinfo", "a stray note");
    tree.write("f/name", "bytes");
    const auto moved = trash.move(DirectoryEntry::open(tree.path("f/name")), ignore);
    EXPECT_EQ(moved.path, tree.path("data/Trash/files/name 3"));
    EXPECT_EQ(readFile(tree.path("data/Trash/files/name")), "an orphan");
    EXPECT_EQ(readFile(tree.path("data/Trash/info/name 2.trashinfo")), "a stray note");
    EXPECT_THAT(readFile(noteOf(moved.path)), HasSubstr("\nPath=" + tree.path("f/name") + "\n"));
}

TEST(SystemTrash, KeepsTheSizesOfDirectories) {
    const TemporaryTree tree;
    RealTrash trash(tree);
    tree.write("App One/file", std::string(10'000, 'x'));
    tree.write("Two/file", "x");
    const std::string one = trash.move(DirectoryEntry::open(tree.path("App One")), ignore).path;
    const std::string two = trash.move(DirectoryEntry::open(tree.path("Two")), ignore).path;
    const std::string sizes = readFile(tree.path("data/Trash/directorysizes"));
    EXPECT_THAT(sizes, testing::MatchesRegex("[0-9]+ [0-9]+ App%20One\n[0-9]+ [0-9]+ Two\n"));
    EXPECT_GE(std::stoll(sizes), 10'000);
    fs::rename(one, tree.path("App One"));
    trash.forget(one, tree.path("App One"));
    EXPECT_THAT(readFile(tree.path("data/Trash/directorysizes")),
                testing::MatchesRegex("[0-9]+ [0-9]+ Two\n"));
}

TEST(SystemTrash, RefusesATrashThatIsALinkOrSomeoneElses) {
    const TemporaryTree tree;
    RealTrash trash(tree);
    tree.write("file", "bytes");
    tree.makeDirectory("data");
    tree.makeDirectory("elsewhere");
    const auto expectRefused = [&](const std::string& reason) {
        try {
            trash.move(DirectoryEntry::open(tree.path("file")), ignore);
            ADD_FAILURE() << "moved";
        } catch (const TrashError& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
        EXPECT_EQ(readFile(tree.path("file")), "bytes");
        EXPECT_TRUE(fs::is_empty(tree.path("elsewhere")));
    };
    tree.link("data/Trash", "../elsewhere");
    expectRefused("Not a directory");
    fs::remove(tree.path("data/Trash"));
    tree.makeDirectory("data/Trash/info");
    tree.link("data/Trash/files", "../../elsewhere");
    expectRefused("Not a directory");
    fs::remove(tree.path("data/Trash/files"));
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(tree.path("data/Trash").c_str(), 12345, 12345), 0);
        expectRefused("belongs to someone else");
    }
}

class MountedTrash : public testing::Test {
  protected:
    void SetUp() override {
        if (!mounts.isAvailable()) GTEST_SKIP() << "no mounts here";
        tree.makeDirectory("home");
        tree.makeDirectory("disk");
    }
    std::string trashFile(const char* relative) {
        return trash.move(DirectoryEntry::open(tree.path(relative)), ignore).path;
    }

    TemporaryTree tree;
    test::MountNamespace mounts;
    RealTrash trash{tree};
    const std::string uid = std::to_string(::getuid());
};

TEST_F(MountedTrash, UsesTheTopOfTheItemsFileSystem) {
    mounts.mountMemory(tree.path("disk"));
    tree.write("disk/deep/er/a b", "1");
    const std::string own = trashFile("disk/deep/er/a b");
    EXPECT_EQ(own, tree.path("disk/.Trash-" + uid + "/files/a b"));
    EXPECT_THAT(readFile(noteOf(own)), HasSubstr("\nPath=deep/er/a%20b\n"));

    tree.makeDirectory("disk/.Trash");
    tree.write("disk/b", "2");
    EXPECT_EQ(trashFile("disk/b"), tree.path("disk/.Trash-" + uid + "/files/b")) << "not sticky";
    ASSERT_EQ(::chmod(tree.path("disk/.Trash").c_str(), 01777), 0);
    tree.write("disk/c", "3");
    const std::string shared = trashFile("disk/c");
    EXPECT_EQ(shared, tree.path("disk/.Trash/" + uid + "/files/c"));
    fs::rename(shared, tree.path("disk/c"));
    trash.forget(shared, tree.path("disk/c"));
    EXPECT_FALSE(trash.hasNote(shared));
}

TEST_F(MountedTrash, ReachesABindMountOfTheSameFileSystem) {
    tree.write("home/file", "bytes");
    mounts.bind(tree.path("home"), tree.path("disk"));
    const std::string moved = trashFile("disk/file");
    EXPECT_EQ(moved, tree.path("disk/.Trash-" + uid + "/files/file"));
    EXPECT_TRUE(fs::is_empty(tree.path("data/Trash/info"))) << "the first try left nothing";
    EXPECT_EQ(readFile(moved), "bytes");
}

TEST_F(MountedTrash, RefusesAFullAReadOnlyAndALinkedTrashAndLeavesNothing) {
    mounts.mountMemory(tree.path("disk"), "size=64k");
    tree.write("disk/file", "bytes");
    tree.makeDirectory("disk/.Trash-" + uid + "/files");
    tree.makeDirectory("disk/.Trash-" + uid + "/info");
    {
        std::ofstream filler(tree.path("disk/filler"));
        for (int block = 0; block < 64 && filler; ++block)
            filler << std::string(1024, 'x') << std::flush;
    }
    EXPECT_THROW(trashFile("disk/file"), TrashError);
    EXPECT_TRUE(fs::is_empty(tree.path("disk/.Trash-" + uid + "/info")));

    fs::remove(tree.path("disk/filler"));
    fs::remove_all(tree.path("disk/.Trash-" + uid));
    tree.link("disk/.Trash-" + uid, tree.path("home"));
    EXPECT_THROW(trashFile("disk/file"), TrashError);
    fs::remove(tree.path("disk/.Trash-" + uid));

    mounts.makeReadOnly(tree.path("disk"));
    EXPECT_THROW(trashFile("disk/file"), TrashError);
    EXPECT_EQ(readFile(tree.path("disk/file")), "bytes");
    EXPECT_TRUE(fs::is_empty(tree.path("home")));
}

} // namespace
} // namespace tovi::platform
