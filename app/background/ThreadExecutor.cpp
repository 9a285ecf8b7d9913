#include "app/background/ThreadExecutor.h"

#include <QTimer>
#include <algorithm>
#include <chrono>

namespace tovi {
namespace {

// Jobs mostly wait, for the disk or for each other: a search must not queue behind a scan.
constexpr int maximumThreads = 32;

} // namespace

ThreadExecutor::ThreadExecutor() {
    threads_.setMaxThreadCount(maximumThreads);
}

ThreadExecutor::~ThreadExecutor() {
    threads_.waitForDone();
}

void ThreadExecutor::run(std::function<void()> work) {
    threads_.start(std::move(work));
}

void ThreadExecutor::post(std::function<void()> callback) {
    QMetaObject::invokeMethod(&mainThread_, std::move(callback), Qt::QueuedConnection);
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
