#pragma once

#include "base/Date.h"
#include "base/LruCache.h"
#include "core/photos/PictureDecoder.h"

#include <array>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <unordered_map>

namespace tovi {

/// Which thumbnail: a file that changed has another key.
struct FileThumbnailKey {
    std::string path;
    Date modifiedAt;
    std::int64_t byteCount = 0;
    int pixels = 0; // the longer side at the most

    std::string cacheKey() const;
};

using Thumbnail = std::shared_ptr<const DecodedPicture>; // null if there is none

/// What came of an attempt; without an image it failed.
struct LoadedThumbnail {
    Thumbnail image;
    Date createdAt;
};

/// Makes thumbnails on two threads of its own and keeps them in memory: 400 at the most, 64 MiB of
/// pixels. Callers that ask for the same one share one making; what failed is not tried again for
/// 30 seconds. May be called from any thread; the lock covers the bookkeeping only. The destructor
/// stops what is being made; no call may be waiting then.
class ThumbnailLoader {
  public:
    /// Makes one thumbnail, or null. What it throws counts as a failure.
    using Generate = std::function<Thumbnail(const FileThumbnailKey&, const std::stop_token&)>;

    ThumbnailLoader(Generate generate, Clock clock);
    ~ThumbnailLoader();
    ThumbnailLoader(const ThumbnailLoader&) = delete;
    ThumbnailLoader& operator=(const ThumbnailLoader&) = delete;

    /// Waits for the thumbnail, in the order of asking. Null once `stop` is requested: work that
    /// nobody else waits for is then dropped or stopped.
    Thumbnail image(const FileThumbnailKey& key, const std::stop_token& stop = {});

  private:
    static constexpr std::size_t concurrencyLimit = 2;

    struct Job {
        FileThumbnailKey key;
        std::size_t waiters = 0;
        bool isDone = false;
        Thumbnail image;
        std::stop_source stop;
    };

    void work(const std::stop_token& stop);
    void leave(const std::shared_ptr<Job>& job);

    const Generate generate_;
    const Clock clock_;

    std::mutex mutex_; // over all but the threads
    std::condition_variable_any changed_;
    LruCache<std::string, LoadedThumbnail> cache_;
    std::unordered_map<std::string, std::shared_ptr<Job>> jobs_; // queued and running
    std::deque<std::shared_ptr<Job>> pending_;
    std::array<std::jthread, concurrencyLimit> threads_;
};

} // namespace tovi
