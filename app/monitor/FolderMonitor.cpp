#include "app/monitor/FolderMonitor.h"

#include "core/indexing/UnscannedFolders.h"
#include "core/records/IndexingPolicy.h"

#include <algorithm>

#include <pthread.h>

namespace tovi {

FolderMonitor::FolderMonitor(Executor& executor, std::unique_ptr<platform::FolderEvents> events,
                             FolderListener::Handlers handlers, FolderListener::Timing timing)
    : events_(std::move(events)),
      changed_(executor, &context_,
               [this, changed = std::move(handlers.changed)](std::uint64_t generation) {
                   if (generation == generation_) changed();
               }),
      freshness_(executor, &context_,
                 [freshness = std::move(handlers.freshness)](const auto& roots) {
                     if (freshness) freshness(roots);
                 }),
      thread_([this, timing = std::move(timing)] { listen(timing); }) {}

FolderMonitor::~FolderMonitor() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
        order_.superseded.request_stop();
    }
    events_->interrupt();
    thread_.join();
}

void FolderMonitor::start(const std::vector<std::string>& paths) {
    {
        const std::lock_guard lock(mutex_);
        order_.superseded.request_stop();
        order_ = {paths, ++generation_, std::stop_source()};
    }
    events_->interrupt();
}

void FolderMonitor::listen(FolderListener::Timing timing) {
    pthread_setname_np(pthread_self(), std::string(folderMonitorLabel).substr(0, 15).c_str());
    std::uint64_t generation = 0;
    FolderListener listener(
        *events_, std::move(timing),
        {[&] { changed_.set(generation); }, [&](const auto& roots) { freshness_.set(roots); }});
    for (;;) {
        std::unique_lock lock(mutex_);
        if (isEnding_) return;
        const Order order = order_;
        lock.unlock();
        try {
            if (std::exchange(generation, order.generation) != order.generation) {
                listener.start(order.paths, order.superseded.get_token());
            }
            listener.step(order.superseded.get_token());
        } catch (const Cancelled&) {
            continue; // there is another order
        }
    }
}

std::function<bool(const std::string& path)> unwatchedFolders(const std::string& dataDirectory) {
    return [unscanned = unscannedFolders(dataDirectory)](const std::string& path) {
        const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
        return name.starts_with('.') || IndexingPolicy::isExcludedName(name) ||
               IndexingPolicy::isSensitiveName(name) ||
               std::find(unscanned.begin(), unscanned.end(), path) != unscanned.end();
    };
}

std::unique_ptr<FolderMonitor> monitorSystemFolders(Executor& executor,
                                                    const std::string& dataDirectory,
                                                    FolderListener::Handlers handlers) {
    return std::make_unique<FolderMonitor>(
        executor,
        platform::watchFoldersOfTheSystem(
            {.isExcluded = unwatchedFolders(dataDirectory), .maximumWatches = {}}),
        std::move(handlers));
}

} // namespace tovi
