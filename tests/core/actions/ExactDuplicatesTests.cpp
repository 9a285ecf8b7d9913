#include "base/Cancelled.h"
#include "core/actions/ExactDuplicates.h"
#include "tests/core/actions/ServiceFixture.h"

#include <sys/stat.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class ExactDuplicatesTest : public testing::Test {
  protected:
    void add(const std::string& name, const std::string& bytes, FileKind kind = FileKind::other) {
        tree.write(name, bytes);
        addExisting(name, kind);
    }
    void addExisting(const std::string& name, FileKind kind = FileKind::other) {
        const platform::FileAttributes attributes = platform::attributesOf(tree.path(name));
        FileRecord record;
        record.path = tree.path(name);
        record.kind = kind;
        record.size = attributes.size;
        record.modifiedAt = attributes.modifiedAt;
        record.sha256 = "stale";
        files.push_back(record);
    }
    std::vector<std::vector<std::string>> groups() {
        result = exactDuplicates(files, availability);
        std::vector<std::vector<std::string>> names;
        for (const DuplicateGroup& group : result.groups) {
            names.emplace_back();
            for (const FileRecord& file : group.files)
                names.back().push_back(file.path.substr(tree.path().size() + 1));
        }
        return names;
    }

    test::TemporaryTree tree;
    ManualAvailability availability;
    std::vector<FileRecord> files;
    ExactDuplicates result;
};

TEST_F(ExactDuplicatesTest, FindsEqualFilesOfEverySizeInOrder) {
    // Around the first chunk and the buffer; each with a partner that differs in its last byte and
    // one that differs in its first.
    for (const std::size_t size : {1, 4095, 4096, 4097, 262'144 + 4096, 700'001}) {
        const std::string name = std::to_string(size);
        const std::string bytes(size, 'x');
        std::string last = bytes;
        last.back() = 'y';
        std::string first = bytes;
        first.front() = 'z';
        add(name + "/c", bytes);
        add(name + "/a", bytes);
        add(name + "/b", bytes);
        add(name + "/last", last);
        add(name + "/first", first);
    }
    add("empty 2", "");
    add("empty 1", "");
    EXPECT_THAT(groups(), ElementsAre(ElementsAre("1/a", "1/b", "1/c"),
                                      ElementsAre("266240/a", "266240/b", "266240/c"),
                                      ElementsAre("4095/a", "4095/b", "4095/c"),
                                      ElementsAre("4096/a", "4096/b", "4096/c"),
                                      ElementsAre("4097/a", "4097/b", "4097/c"),
                                      ElementsAre("700001/a", "700001/b", "700001/c"),
                                      ElementsAre("empty 1", "empty 2")));
}

TEST_F(ExactDuplicatesTest, ReportsTheDigestAndTheBytesToReclaim) {
    add("b", "abc");
    add("a", "abc");
    fs::create_hard_link(tree.path("a"), tree.path("c"));
    addExisting("c");
    ASSERT_THAT(groups(), ElementsAre(ElementsAre("a", "b", "c")));
    for (const FileRecord& file : result.groups[0].files) {
        EXPECT_EQ(file.sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    }
    EXPECT_EQ(result.groups[0].reclaimableBytes, 3) << "two names of one file free nothing";
}

TEST_F(ExactDuplicatesTest, OneFileUnderTwoNamesIsAGroupThatFreesNothing) {
    add("a", std::string(10'000, 'x'));
    fs::create_hard_link(tree.path("a"), tree.path("b"));
    addExisting("b");
    EXPECT_THAT(groups(), ElementsAre(ElementsAre("a", "b")));
    EXPECT_EQ(result.groups[0].reclaimableBytes, 0);
}

TEST_F(ExactDuplicatesTest, LeavesOutWhatChangedVanishedOrIsNoFile) {
    for (const char* name : {"changed", "dated", "gone", "cloud", "linked", "stays"})
        add(name, "bytes");
    add("folder", "bytes", FileKind::folder);
    add("bundle", "bytes", FileKind::application);
    tree.write("changed", "bytes and more");
    tree.setModified("dated", 1000);
    fs::remove(tree.path("gone"));
    availability.away.insert(tree.path("cloud"));
    fs::remove(tree.path("linked"));
    tree.link("linked", "stays");
    EXPECT_THAT(groups(), IsEmpty());
    EXPECT_EQ(result.unreadable, 0U);
}

TEST_F(ExactDuplicatesTest, CountsWhatCannotBeRead) {
    for (const char* name : {"a", "b", "closed"})
        add(name, "bytes");
    ::chmod(tree.path("closed").c_str(), 0);
    const test::WithoutPrivileges ordinary(tree);
    EXPECT_THAT(groups(), ElementsAre(ElementsAre("a", "b")));
    EXPECT_EQ(result.unreadable, 1U);
}

TEST_F(ExactDuplicatesTest, ManyFilesOfOneSizeAndAStop) {
    for (int i = 0; i < 300; ++i)
        add(std::to_string(i), std::string(5000, static_cast<char>('a' + i % 100 % 26)));
    std::size_t last = 0;
    result = exactDuplicates(files, availability,
                             [&](std::size_t done, std::size_t) { last = std::max(last, done); });
    EXPECT_EQ(last, 300U);
    EXPECT_EQ(result.groups.size(), 26U);
    std::size_t members = 0;
    for (const DuplicateGroup& group : result.groups)
        members += group.files.size();
    EXPECT_EQ(members, 300U);

    std::stop_source stop;
    EXPECT_THROW(
        exactDuplicates(
            files, availability, [&](auto, auto) { stop.request_stop(); }, stop.get_token()),
        Cancelled);
}

} // namespace
} // namespace tovi
