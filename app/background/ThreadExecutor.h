#pragma once

#include "app/background/Executor.h"

#include <QObject>
#include <QThreadPool>
#include <QTimer>
#include <deque>
#include <mutex>

namespace tovi {

/// The threads and clocks of the system. Made and destroyed on the main thread, which needs an
/// event loop; the destructor waits for work that still runs, so stop it first. Of what is posted
/// each is called in a turn of the event loop of its own, so that together they do not hold it up.
class ThreadExecutor final : public Executor {
  public:
    ThreadExecutor();
    ~ThreadExecutor() override;

    void run(std::function<void()> work) override;
    void post(std::function<void()> callback) override;
    void after(double seconds, std::function<void()> callback) override;
    double uptime() const override;
    Date now() const override;

  private:
    void deliver();

    QObject mainThread_; // receives what comes later; goes after the threads have ended
    QTimer deliveries_;  // rings in every turn of the event loop while something is posted
    std::mutex mutex_;   // guards what follows
    std::deque<std::function<void()>> posted_;
    QThreadPool threads_;
};

} // namespace tovi
