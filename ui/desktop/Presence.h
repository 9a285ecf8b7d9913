#pragma once

#include "app/background/Executor.h"

#include <QObject>

namespace tovi {

/// Decides what becomes of a program whose window is not shown, so that nothing that runs is out of
/// reach: it ends, or its window comes back, unless it lives in a tray. Lives on the main thread.
class Presence : public QObject {
    Q_OBJECT

  public:
    static constexpr double unusedTime = 60;   // seconds a program waits for the next question
    static constexpr double openingTime = 3;   // seconds until a file is open or known not to be
    static constexpr double trayPatience = 10; // seconds for a tray that vanished to come back

    /// What the user can reach now.
    struct Shown {
        bool window = false;
        bool panel = false;
        bool tray = false;
    };

    /// `executor` outlives the presence, and so does what `shown` looks at.
    Presence(Executor& executor, std::function<Shown()> shown)
        : executor_(executor), shown_(std::move(shown)) {}

    /// The desktop asked a question.
    void answer() { endAfter(unusedTime); }
    /// The panel has been dismissed, perhaps to open a file.
    void leavePanel() { endAfter(openingTime); }
    void loseTray();

  Q_SIGNALS:
    void ended();
    void windowWanted();

  private:
    /// If nothing is shown then, and nothing was used since.
    void endAfter(double seconds);

    Executor& executor_;
    std::function<Shown()> shown_;
    int uses_ = 0;
};

} // namespace tovi
