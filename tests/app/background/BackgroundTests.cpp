#include "app/background/Background.h"
#include "app/background/ThreadExecutor.h"
#include "tests/support/ManualExecutor.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(BackgroundTests, OnlyTheLatestJobIsHeardWhateverOrderTheyEndIn) {
    for (const std::size_t first : {0U, 1U}) {
        test::ManualExecutor executor;
        QObject context;
        Generation generation;
        std::vector<int> heard;
        bool wasStopped = false;
        runLatest(
            executor, &context, generation,
            [&](const std::stop_token& stop) {
                wasStopped = stop.stop_requested();
                return 1;
            },
            [&](const Outcome<int>& outcome) { heard.push_back(outcome.value.value_or(-1)); });
        runLatest(
            executor, &context, generation, [](const std::stop_token&) { return 2; },
            [&](const Outcome<int>& outcome) { heard.push_back(outcome.value.value_or(-1)); });
        executor.work(first);
        executor.settle();
        EXPECT_EQ(heard, std::vector{2});
        EXPECT_FALSE(wasStopped) << "a job stopped before its turn is not begun";
    }
}

TEST(BackgroundTests, NothingIsDeliveredToAContextThatIsGone) {
    test::ManualExecutor executor;
    auto context = std::make_unique<QObject>();
    int calls = 0;
    runInBackground(
        executor, context.get(), {}, [](const std::stop_token&) {}, [&](auto) { ++calls; });
    const LatestValue<int> progress(executor, context.get(), [&](int) { ++calls; });
    progress.set(1);
    runAfter(executor, context.get(), 1, [&] { ++calls; });
    executor.work();
    context.reset();
    executor.settle();
    executor.advance(2);
    EXPECT_EQ(calls, 0);
}

TEST(BackgroundTests, ErrorsAndCancellationArriveAsOutcomes) {
    test::ManualExecutor executor;
    QObject context;
    std::stop_source stop;
    Outcome<int> failed;
    Outcome<int> cancelled;
    runInBackground(
        executor, &context, {},
        [](const std::stop_token&) -> int { throw std::runtime_error("No room."); },
        [&](Outcome<int> outcome) { failed = outcome; });
    runInBackground(
        executor, &context, stop.get_token(), [](const std::stop_token&) { return 1; },
        [&](Outcome<int> outcome) { cancelled = outcome; });
    stop.request_stop();
    executor.settle();
    EXPECT_EQ(failed.error, "No room.");
    EXPECT_FALSE(failed.isCancelled);
    EXPECT_TRUE(cancelled.isCancelled);
}

TEST(BackgroundTests, ProgressIsDeliveredOnceWithTheNewestValue) {
    test::ManualExecutor executor;
    QObject context;
    std::vector<int> heard;
    const LatestValue<int> progress(executor, &context, [&](int value) { heard.push_back(value); });
    for (int value = 0; value < 1000; ++value)
        progress.set(value);
    executor.deliver();
    progress.set(1000);
    executor.deliver();
    EXPECT_EQ(heard, (std::vector{999, 1000}));
}

TEST(ThreadExecutorTests, WorksAwayFromTheMainThreadAndDeliversOnIt) {
    ThreadExecutor executor;
    QEventLoop loop;
    const QThread* worker = nullptr;
    const QThread* receiver = nullptr;
    runInBackground(
        executor, &loop, {}, [](const std::stop_token&) { return QThread::currentThread(); },
        [&](const Outcome<QThread*>& outcome) {
            worker = outcome.value.value_or(nullptr);
            receiver = QThread::currentThread();
            runAfter(executor, &loop, 0, [&] { loop.quit(); });
        });
    loop.exec();
    EXPECT_EQ(receiver, QThread::currentThread());
    EXPECT_NE(worker, receiver);
}

TEST(ThreadExecutorTests, DeliversEachInATurnOfItsOwn) {
    ThreadExecutor executor;
    QEventLoop loop;
    std::string order;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     &loop, [&] { order += '|'; });
    executor.post([&] { order += 'a'; });
    executor.post([&] { order += 'b'; });
    executor.post([&] { loop.quit(); });
    loop.exec();
    EXPECT_THAT(order, testing::MatchesRegex("[|]+a[|]+b[|]+"));
}

} // namespace
} // namespace tovi
