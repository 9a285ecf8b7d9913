#include "core/actions/ExactDuplicates.h"

#include "base/Cancelled.h"
#include "base/FileDescriptor.h"
#include "core/files/Sha256.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <unordered_map>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovi {
namespace {

// What is read of every candidate: one page finds nearly all differences.
constexpr std::size_t firstChunk = 4096;
constexpr std::size_t chunkSize = 262'144;
// Files of a small group stay open between their first chunk and the rest.
constexpr std::size_t maximumHeldOpen = 16;

using FileNumber = std::pair<dev_t, ino_t>;

struct Candidate {
    const FileRecord* record;
    bool isLeftOut = true;
    FileNumber number{};
    std::size_t twin = 0; // the member of the group that is read for this file; itself if no other
    FileDescriptor file;
    std::optional<Sha256> sum; // over the first chunk, while there is more
    Sha256::Digest digest{};   // of the first chunk, and of the whole file once it is read
};

struct SizeGroup {
    std::int64_t size = 0;
    std::vector<Candidate> members;
    std::mutex mutex;
    std::map<FileNumber, std::size_t> readers; // files with several names, under the mutex
    std::size_t left = 0;    // steps of the current stage, under the queue's mutex
    bool isComparing = true; // first chunks, then the rest
};

bool isAsIndexed(const struct stat& status, const FileRecord& record) {
    return S_ISREG(status.st_mode) && status.st_size == record.size &&
           isSameFileDate(Date::fromTimespec(status.st_mtim), record.modifiedAt);
}

/// Whether the open file is still what the index holds.
bool isUnchanged(const FileDescriptor& file, const FileRecord& record, struct stat& status) {
    return ::fstat(file.get(), &status) == 0 && isAsIndexed(status, record);
}

std::int64_t reclaimableBytes(std::int64_t size, const std::set<FileNumber>& numbers) {
    return numbers.empty() ? 0 : size * static_cast<std::int64_t>(numbers.size() - 1);
}

FileDescriptor openFile(const std::string& path) {
    return FileDescriptor(
        ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

class Search {
  public:
    Search(std::span<const FileRecord> files, const platform::Availability& availability,
           const DuplicateProgress& progress, const std::stop_token& stop)
        : availability_(availability), progress_(progress), stop_(stop) {
        std::unordered_map<std::int64_t, std::size_t> counts;
        for (const FileRecord& record : files) {
            if (isCandidate(record)) ++counts[record.size];
        }
        std::unordered_map<std::int64_t, SizeGroup*> bySize;
        for (const FileRecord& record : files) {
            if (!isCandidate(record) || counts[record.size] < 2) continue;
            SizeGroup*& group = bySize[record.size];
            if (group == nullptr) {
                group = groups_.emplace_back(std::make_unique<SizeGroup>()).get();
                group->size = record.size;
            }
            group->members.emplace_back().record = &record;
            ++total_;
        }
        for (const auto& group : groups_)
            group->left = group->members.size();
    }

    ExactDuplicates run() {
        {
            std::vector<std::jthread> helpers;
            const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
            for (unsigned helper = 1; helper < cores; ++helper)
                helpers.emplace_back([this] { work(); });
            work();
        }
        throwIfCancelled(stop_);
        return std::move(result_);
    }

  private:
    struct Step {
        SizeGroup* group;
        std::size_t member;
    };

    static bool isCandidate(const FileRecord& record) {
        return record.kind != FileKind::folder && record.kind != FileKind::application;
    }

    void work() {
        std::vector<std::byte> buffer(chunkSize);
        while (const auto step = nextStep()) {
            Candidate& candidate = step->group->members[step->member];
            if (step->group->isComparing) {
                candidate.isLeftOut = !readFirstChunk(*step->group, step->member, buffer);
            } else {
                candidate.isLeftOut = !readRest(candidate, buffer);
            }
            finish(*step->group);
        }
    }

    /// Waits while other threads may still find more to read; nothing when all is done.
    std::optional<Step> nextStep() {
        std::unique_lock lock(mutex_);
        for (;;) {
            if (stop_.stop_requested() || finishedGroups_ == groups_.size()) return std::nullopt;
            if (!rest_.empty()) {
                const Step step = rest_.front();
                rest_.pop_front();
                return step;
            }
            if (nextGroup_ < groups_.size()) {
                SizeGroup* group = groups_[nextGroup_].get();
                const Step step{group, nextMember_};
                if (++nextMember_ == group->members.size()) {
                    nextMember_ = 0;
                    ++nextGroup_;
                }
                return step;
            }
            changed_.wait(lock, stop_,
                          [this] { return !rest_.empty() || finishedGroups_ == groups_.size(); });
        }
    }

    void finish(SizeGroup& group) {
        const std::lock_guard guard(mutex_);
        if (group.isComparing && progress_) progress_(++done_, total_);
        if (--group.left > 0) return;
        if (group.isComparing) {
            group.isComparing = false;
            queueRest(group);
            if (group.left > 0) {
                changed_.notify_all();
                return;
            }
        }
        collect(group);
        if (++finishedGroups_ == groups_.size()) changed_.notify_all();
    }

    bool readFirstChunk(SizeGroup& group, std::size_t index, std::vector<std::byte>& buffer) {
        Candidate& candidate = group.members[index];
        const FileRecord& record = *candidate.record;
        if (!availability_.isAvailableLocally(record.path)) return false;
        FileDescriptor file = openFile(record.path);
        if (!file.isOpen()) {
            if (errno != ENOENT && errno != ENOTDIR && errno != ELOOP) countUnreadable();
            return false;
        }
        struct stat status {};
        if (!isUnchanged(file, record, status)) return false;
        candidate.number = {status.st_dev, status.st_ino};
        candidate.twin = index;
        if (status.st_nlink > 1) {
            const std::lock_guard guard(group.mutex);
            candidate.twin = group.readers.emplace(candidate.number, index).first->second;
            if (candidate.twin != index) return true;
        }
        const std::size_t length =
            static_cast<std::size_t>(std::min<std::int64_t>(record.size, firstChunk));
        if (!readExactly(file, std::span(buffer).first(length))) return false;
        Sha256 sum;
        sum.update(std::span(buffer).first(length));
        if (static_cast<std::int64_t>(length) == record.size) {
            candidate.digest = sum.finish();
            return isUnchanged(file, record, status);
        }
        candidate.digest = sum.digestSoFar();
        candidate.sum = std::move(sum);
        if (group.members.size() <= maximumHeldOpen) candidate.file = std::move(file);
        return true;
    }

    bool readRest(Candidate& candidate, std::vector<std::byte>& buffer) {
        const FileRecord& record = *candidate.record;
        FileDescriptor file = std::move(candidate.file);
        struct stat status {};
        if (!file.isOpen()) {
            file = openFile(record.path);
            if (!file.isOpen() || !isUnchanged(file, record, status)) return false;
            if (FileNumber{status.st_dev, status.st_ino} != candidate.number) return false;
            if (::lseek(file.get(), firstChunk, SEEK_SET) < 0) return false;
        }
        constexpr std::int64_t worthReadingAhead = 1'048'576;
        if (record.size > worthReadingAhead) {
            ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
        }
        for (std::int64_t left = record.size - static_cast<std::int64_t>(firstChunk); left > 0;) {
            if (stop_.stop_requested()) return false;
            const auto chunk = std::span(buffer).first(
                static_cast<std::size_t>(std::min<std::int64_t>(left, chunkSize)));
            if (!readExactly(file, chunk)) return false;
            candidate.sum->update(chunk);
            left -= static_cast<std::int64_t>(chunk.size());
        }
        candidate.digest = candidate.sum->finish();
        return isUnchanged(file, record, status);
    }

    bool readExactly(const FileDescriptor& file, std::span<std::byte> bytes) {
        while (!bytes.empty()) {
            const ssize_t length = ::read(file.get(), bytes.data(), bytes.size());
            if (length < 0 && errno == EINTR) continue;
            if (length < 0) countUnreadable();
            if (length <= 0) return false;
            bytes = bytes.subspan(static_cast<std::size_t>(length));
        }
        return true;
    }

    void countUnreadable() {
        const std::lock_guard guard(mutex_);
        ++result_.unreadable;
    }

    /// The members whose first chunks are equal, by that chunk's digest. Under the mutex.
    static std::map<Sha256::Digest, std::vector<std::size_t>> byDigest(const SizeGroup& group) {
        std::map<Sha256::Digest, std::vector<std::size_t>> result;
        for (std::size_t index = 0; index < group.members.size(); ++index) {
            const Candidate& reader = group.members[group.members[index].twin];
            if (group.members[index].isLeftOut || reader.isLeftOut) continue;
            result[reader.digest].push_back(index);
        }
        return result;
    }

    void queueRest(SizeGroup& group) {
        for (const auto& [digest, members] : byDigest(group)) {
            for (const std::size_t index : members) {
                Candidate& member = group.members[index];
                if (members.size() < 2) {
                    member.isLeftOut = true;
                } else if (member.sum) {
                    rest_.push_back({&group, index});
                    ++group.left;
                }
            }
        }
        for (Candidate& member : group.members) {
            if (member.isLeftOut) member.file.reset();
        }
    }

    void collect(SizeGroup& group) {
        for (const auto& [digest, members] : byDigest(group)) {
            if (members.size() < 2) continue;
            DuplicateGroup& found = result_.groups.emplace_back();
            std::set<FileNumber> numbers;
            for (const std::size_t index : members) {
                found.files.push_back(*group.members[index].record);
                found.files.back().sha256 = hexadecimal(digest);
                numbers.insert(group.members[index].number);
            }
            found.reclaimableBytes = reclaimableBytes(group.size, numbers);
        }
        group.members.clear();
    }

    const platform::Availability& availability_;
    const DuplicateProgress& progress_;
    std::stop_token stop_;
    std::vector<std::unique_ptr<SizeGroup>> groups_;
    std::size_t total_ = 0;

    std::mutex mutex_; // over all that follows
    std::condition_variable_any changed_;
    std::deque<Step> rest_; // goes before new first chunks, so that few groups are open at a time
    std::size_t nextGroup_ = 0;
    std::size_t nextMember_ = 0;
    std::size_t finishedGroups_ = 0;
    std::size_t done_ = 0;
    ExactDuplicates result_;
};

} // namespace

ExactDuplicates exactDuplicates(std::span<const FileRecord> files,
                                const platform::Availability& availability,
                                const DuplicateProgress& progress, const std::stop_token& stop) {
    ExactDuplicates result = Search(files, availability, progress, stop).run();
    for (DuplicateGroup& group : result.groups)
        std::sort(group.files.begin(), group.files.end(),
                  [](const auto& left, const auto& right) { return left.path < right.path; });
    std::sort(result.groups.begin(), result.groups.end(), [](const auto& left, const auto& right) {
        return left.files.front().path < right.files.front().path;
    });
    return result;
}

DuplicateGroup filesInPlace(const DuplicateGroup& group) {
    DuplicateGroup left;
    std::set<FileNumber> numbers;
    for (const FileRecord& file : group.files) {
        struct stat status {};
        if (::lstat(file.path.c_str(), &status) != 0 || !isAsIndexed(status, file)) continue;
        left.files.push_back(file);
        numbers.emplace(status.st_dev, status.st_ino);
    }
    left.reclaimableBytes = reclaimableBytes(group.files.front().size, numbers);
    return left;
}

} // namespace tovi
