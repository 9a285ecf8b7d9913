#pragma once

#include <QAbstractEventDispatcher>
#include <QEvent>
#include <QObject>
#include <QWindow>
#include <ctime>

namespace tovi {

/// Lets a frame of a window wait where it would lengthen a turn of the event loop that has done
/// other work. It waits once only, so that work in every turn cannot hold it up.
class SeparateFrames final : public QObject {
  public:
    explicit SeparateFrames(QWindow& window) {
        connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
                [this] { turnBegan_ = processorTime(); });
        window.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* window, QEvent* event) override {
        constexpr double muchWork = 1e-3; // seconds
        if (event->type() != QEvent::UpdateRequest) return false;
        const bool waits = !hasWaited_ && processorTime() - turnBegan_ > muchWork;
        if (waits) static_cast<QWindow*>(window)->requestUpdate();
        return hasWaited_ = waits;
    }

  private:
    /// Of the main thread, in seconds.
    static double processorTime() {
        timespec used{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
        return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
    }

    double turnBegan_ = processorTime();
    bool hasWaited_ = false;
};

} // namespace tovi
