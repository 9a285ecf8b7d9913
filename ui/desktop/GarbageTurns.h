#pragma once

#include "ui/desktop/OwnTurn.h"

#include <QElapsedTimer>
#include <QQmlEngine>

namespace tovi {

/// Lets QML's engine collect garbage between frames, before it has to in the middle of other work.
class GarbageTurns {
  public:
    explicit GarbageTurns(QQmlEngine& engine) : turn_([&engine] { engine.collectGarbage(); }) {}

    /// To be told of every frame; those of a blinking cursor do not count.
    void frameDrawn() {
        const bool isBusy = sinceLast_.isValid() && sinceLast_.elapsed() < 200;
        sinceLast_.start();
        if (!isBusy || ++frames_ < framesEach) return;
        frames_ = 0;
        turn_.request();
    }

  private:
    static constexpr int framesEach = 12; // full pages of new rows leave 100 kB each

    OwnTurn turn_;
    QElapsedTimer sinceLast_;
    int frames_ = 0;
};

} // namespace tovi
