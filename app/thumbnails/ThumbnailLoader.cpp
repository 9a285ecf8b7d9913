#include "app/thumbnails/ThumbnailLoader.h"

#include "base/Cancelled.h"

#include <bit>

namespace tovi {
namespace {

constexpr std::size_t maximumThumbnails = 400;
constexpr std::size_t maximumBytes = 67'108'864;
constexpr double failureMemory = 30; // seconds

} // namespace

std::string FileThumbnailKey::cacheKey() const {
    const auto date = std::bit_cast<std::uint64_t>(modifiedAt.referenceSeconds());
    return path + '|' + std::to_string(date) + '|' + std::to_string(byteCount) + '|' +
           std::to_string(pixels);
}

ThumbnailLoader::ThumbnailLoader(Generate generate, Clock clock)
    : generate_(std::move(generate)),
      clock_(std::move(clock)),
      cache_(maximumThumbnails, maximumBytes) {
    for (std::jthread& thread : threads_)
        thread = std::jthread([this](const std::stop_token& stop) { work(stop); });
}

ThumbnailLoader::~ThumbnailLoader() {
    for (std::jthread& thread : threads_)
        thread.request_stop();
}

Thumbnail ThumbnailLoader::image(const FileThumbnailKey& key, const std::stop_token& stop) {
    if (stop.stop_requested()) return nullptr;
    const std::string name = key.cacheKey();
    std::unique_lock lock(mutex_);
    if (const LoadedThumbnail* loaded = cache_.find(name)) {
        if (loaded->image != nullptr) return loaded->image;
        const double age = clock_() - loaded->createdAt;
        if (age >= 0 && age < failureMemory) return nullptr;
        cache_.erase(name);
    }
    std::shared_ptr<Job>& known = jobs_[name];
    if (known == nullptr) {
        known = std::make_shared<Job>();
        known->key = key;
        pending_.push_back(known);
        changed_.notify_all();
    }
    const std::shared_ptr<Job> job = known;
    ++job->waiters;
    if (!changed_.wait(lock, stop, [&] { return job->isDone; })) {
        leave(job);
        return nullptr;
    }
    return job->image;
}

void ThumbnailLoader::leave(const std::shared_ptr<Job>& job) {
    if (--job->waiters > 0) return;
    std::erase(pending_, job);
    jobs_.erase(job->key.cacheKey()); // who asks from now on gets a making of its own
    job->stop.request_stop();
}

void ThumbnailLoader::work(const std::stop_token& stop) {
    while (true) {
        std::shared_ptr<Job> job;
        {
            std::unique_lock lock(mutex_);
            if (!changed_.wait(lock, stop, [this] { return !pending_.empty(); })) return;
            job = pending_.front();
            pending_.pop_front();
        }
        Thumbnail image;
        {
            const std::stop_callback end(stop, [&job] { job->stop.request_stop(); });
            try {
                image = generate_(job->key, job->stop.get_token());
            } catch (const Cancelled&) {
            } catch (const std::exception&) {
            }
        }
        const std::lock_guard lock(mutex_);
        if (job->stop.stop_requested()) continue;
        const std::string name = job->key.cacheKey();
        cache_.insert(name, {image, clock_()}, image != nullptr ? image->pixels.size() : 0);
        job->image = std::move(image);
        job->isDone = true;
        jobs_.erase(name);
        changed_.notify_all();
    }
}

} // namespace tovi
