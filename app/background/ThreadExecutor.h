#pragma once

#include "app/background/Executor.h"

#include <QObject>
#include <QThreadPool>

namespace tovi {

/// The threads and clocks of the system. Made and destroyed on the main thread, which needs an
/// event loop; the destructor waits for work that still runs, so stop it first.
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
    QObject mainThread_; // receives what is posted; goes after the threads have ended
    QThreadPool threads_;
};

} // namespace tovi
