#pragma once

#include "app/background/Executor.h"
#include "base/Cancelled.h"

#include <QPointer>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <type_traits>
#include <variant>

namespace tovi {

/// How a job ended: with a value, with the sentence of its error, or cancelled.
template <typename Value>
struct Outcome {
    std::optional<Value> value;
    std::string error;
    bool isCancelled = false;

    explicit operator bool() const { return value.has_value(); }
};

/// The latest of a series of jobs that replace each other. Member of the model that starts them;
/// used on the main thread only.
class Generation {
  public:
    Generation() = default;
    Generation(const Generation&) = delete;
    Generation& operator=(const Generation&) = delete;
    ~Generation() { stop_.request_stop(); }

    /// Asks the job under way to stop and makes its result stale.
    void cancel() {
        ++stamp_;
        stop_.request_stop();
        stop_ = std::stop_source();
    }

    std::uint64_t stamp() const { return stamp_; }
    std::stop_token token() const { return stop_.get_token(); }

    /// Asks the job under way to stop but still hears how it ended.
    void requestStop() { stop_.request_stop(); }

  private:
    std::uint64_t stamp_ = 0;
    std::stop_source stop_;
};

/// Calls `work(stop)` away from the main thread, then `finished(Outcome)` on it, unless `context`
/// is gone by then. `finished` is always destroyed on the main thread.
template <typename Work, typename Finished>
void runInBackground(Executor& executor, QObject* context, std::stop_token stop, Work work,
                     Finished finished) {
    using Result = std::invoke_result_t<Work&, const std::stop_token&>;
    using Value = std::conditional_t<std::is_void_v<Result>, std::monostate, Result>;
    struct Job {
        Work work;
        Finished finished;
        QPointer<QObject> context;
        std::stop_token stop;
        Outcome<Value> outcome;
    };
    auto job = std::make_shared<Job>(
        Job{std::move(work), std::move(finished), QPointer<QObject>(context), std::move(stop), {}});
    executor.run([&executor, job = std::move(job)]() mutable {
        try {
            throwIfCancelled(job->stop);
            if constexpr (std::is_void_v<Result>) {
                job->work(std::as_const(job->stop));
                job->outcome.value.emplace();
            } else {
                job->outcome.value.emplace(job->work(std::as_const(job->stop)));
            }
        } catch (const Cancelled&) {
            job->outcome.isCancelled = true;
        } catch (const std::exception& error) {
            job->outcome.error = error.what();
        }
        executor.post([job = std::move(job)] {
            if (job->context) job->finished(std::move(job->outcome));
        });
    });
}

/// The same for the next job of a series: the one before is asked to stop, and `finished` is not
/// called if another has been started or `cancel` called meanwhile.
template <typename Work, typename Finished>
void runLatest(Executor& executor, QObject* context, Generation& generation, Work work,
               Finished finished) {
    generation.cancel();
    runInBackground(executor, context, generation.token(), std::move(work),
                    [&generation, stamp = generation.stamp(),
                     finished = std::move(finished)](auto outcome) mutable {
                        if (generation.stamp() == stamp) finished(std::move(outcome));
                    });
}

/// Calls `callback` on the main thread after `seconds` if `context` still lives.
template <typename Callback>
void runAfter(Executor& executor, QObject* context, double seconds, Callback callback) {
    executor.after(
        seconds, [context = QPointer<QObject>(context), callback = std::move(callback)]() mutable {
            if (context) callback();
        });
}

/// Carries the newest of many values from a worker to the main thread, at most one message at a
/// time, so that a fast worker cannot flood the event loop. Copies share one box.
template <typename Value>
class LatestValue {
  public:
    /// Made on the main thread; `receive` is called and destroyed there, while `context` lives.
    template <typename Receive>
    LatestValue(Executor& executor, QObject* context, Receive receive)
        : box_(std::make_shared<Box>(executor, QPointer<QObject>(context), std::move(receive))) {}

    /// From any thread.
    void set(Value value) const {
        const std::lock_guard lock(box_->mutex);
        box_->value = std::move(value);
        if (std::exchange(box_->isPosted, true)) return;
        box_->executor.post([box = box_] {
            std::unique_lock reading(box->mutex);
            box->isPosted = false;
            const Value latest = std::move(box->value);
            reading.unlock();
            if (box->context) box->receive(latest);
        });
    }

  private:
    struct Box {
        Box(Executor& anExecutor, QPointer<QObject> aContext,
            std::function<void(const Value&)> aReceive)
            : executor(anExecutor), context(std::move(aContext)), receive(std::move(aReceive)) {}

        Executor& executor;
        QPointer<QObject> context;
        std::function<void(const Value&)> receive;
        std::mutex mutex; // guards what follows
        Value value{};
        bool isPosted = false;
    };
    std::shared_ptr<Box> box_;
};

} // namespace tovi
