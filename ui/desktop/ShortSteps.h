#pragma once

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>
#include <QQmlIncubationController>

namespace tovi {

/// Makes what QML may make asynchronously in steps of a few milliseconds, between which the main
/// thread looks for events and draws. Outlives the engine that it is given to.
class ShortSteps final : public QObject, public QQmlIncubationController {
  protected:
    void incubatingObjectCountChanged(int count) override {
        if (count > 0) timer_.start(0, this);
    }
    /// Frames are drawn by timers, too: a step that is posted comes in a turn of its own.
    void timerEvent(QTimerEvent*) override {
        timer_.stop();
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
    void customEvent(QEvent*) override {
        incubateFor(longestStep);
        if (incubatingObjectCount() > 0) timer_.start(0, this);
    }

  private:
    static constexpr int longestStep = 3; // milliseconds, of what is to be 8 at most

    QBasicTimer timer_;
};

} // namespace tovi
