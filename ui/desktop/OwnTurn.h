#pragma once

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <functional>
#include <utility>

namespace tovi {

/// Work in a turn of the event loop that it does not share with a frame, so that neither has to
/// wait for the other.
class OwnTurn final : public QObject {
  public:
    explicit OwnTurn(std::function<void()> work) : work_(std::move(work)) {}

    /// At least so many milliseconds from now; replaces an earlier request.
    void request(int delay = 0) { timer_.start(delay, this); }

  protected:
    /// Frames are drawn by timers, too; what is posted comes after them.
    void timerEvent(QTimerEvent* /*event*/) override {
        timer_.stop();
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
    void customEvent(QEvent* /*event*/) override { work_(); }

  private:
    std::function<void()> work_;
    QBasicTimer timer_;
};

} // namespace tovi
