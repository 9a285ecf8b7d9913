#include "app/background/ThreadExecutor.h"

#include <algorithm>
#include <chrono>

namespace tovi {
namespace {

// Jobs mostly wait, for the disk or for each other: a search must not queue behind a scan.
constexpr int maximumThreads = 32;

} // namespace

ThreadExecutor::ThreadExecutor() {
    threads_.setMaxThreadCount(maximumThreads);
    QObject::connect(&deliveries_, &QTimer::timeout, &mainThread_, [this] { deliver(); });
}

ThreadExecutor::~ThreadExecutor() {
    threads_.waitForDone();
}

void ThreadExecutor::run(std::function<void()> work) {
    threads_.start(std::move(work));
}

void ThreadExecutor::post(std::function<void()> callback) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(callback));
    if (posted_.size() > 1) return;
    QMetaObject::invokeMethod(&deliveries_, qOverload<>(&QTimer::start), Qt::QueuedConnection);
}

void ThreadExecutor::deliver() {
    std::unique_lock lock(mutex_);
    const std::function<void()> callback = std::move(posted_.front());
    posted_.pop_front();
    if (posted_.empty()) deliveries_.stop();
    lock.unlock();
    callback();
}

void ThreadExecutor::after(double seconds, std::function<void()> callback) {
    const std::chrono::duration<double> delay(std::max(seconds, 0.0));
    QTimer::singleShot(std::chrono::ceil<std::chrono::milliseconds>(delay), &mainThread_,
                       std::move(callback));
}

double ThreadExecutor::uptime() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

Date ThreadExecutor::now() const {
    return Date::now();
}

} // namespace tovi
