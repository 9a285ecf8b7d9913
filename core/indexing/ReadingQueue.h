#pragma once

#include "core/indexing/ContentExtractor.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

namespace tovi {

/// A file that a scan found new or changed.
struct FileToRead {
    platform::RootedFile file;
    platform::FileAttributes attributes;
    FileKind kind = FileKind::other;
    bool isAvailable = true; // its bytes are on the disk
    bool failedBefore = false;
    std::optional<std::string> sourceURL;
    std::optional<Date> downloadedAt;
};

struct FileRead {
    FileToRead file;
    ExtractedContent extracted;
    bool changedMeanwhile = false;
};

/// Reads files on threads of its own and gives them back in the order they were added, so that
/// every reader is busy while the owner walks and stores. The queue is bounded by the number of
/// files and by the size of the texts that wait. One thread adds and takes; the threads end with
/// the queue, and a requested stop ends what they are reading.
class ReadingQueue {
  public:
    /// Called on several threads at once; must not throw anything but `Cancelled`.
    using Read = std::function<FileRead(FileToRead, const std::stop_token&)>;

    ReadingQueue(Read read, unsigned threads, const std::stop_token& stop);
    ~ReadingQueue();
    ReadingQueue(const ReadingQueue&) = delete;
    ReadingQueue& operator=(const ReadingQueue&) = delete;

    bool isEmpty() const { return entries_.empty(); }
    bool isFull();
    void add(FileToRead file);

    /// The file added first, if it has been read.
    std::optional<FileRead> takeIfReady();

    /// The file added first, once it has been read. Throws `Cancelled`.
    FileRead take();

  private:
    struct Entry {
        std::optional<FileToRead> file;
        std::optional<FileRead> result;
    };

    void work();
    FileRead removeFirst();

    Read read_;
    std::stop_source stop_;
    std::stop_callback<std::function<void()>> forward_;
    std::deque<std::shared_ptr<Entry>> entries_; // the owner's; in order

    std::mutex mutex_; // guards the rest and the results of the entries
    std::condition_variable_any changed_;
    std::deque<std::shared_ptr<Entry>> waiting_;
    std::size_t textWaiting_ = 0; // bytes
    std::vector<std::jthread> threads_;
};

} // namespace tovi
