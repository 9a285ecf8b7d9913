#pragma once

#include "ui/desktop/OwnTurn.h"

#include <QQmlIncubationController>
#include <vector>

namespace tovi {

class StepwiseWork;

/// Makes what QML may make asynchronously, and does the stepwise work, in turns of a few
/// milliseconds, between which the main thread looks for events and draws. Outlives the engine that
/// it is given to.
class ShortSteps final : public QQmlIncubationController {
  public:
    void add(StepwiseWork& work);
    void remove(StepwiseWork& work);

  protected:
    void incubatingObjectCountChanged(int count) override;

  private:
    void takeTurn();

    OwnTurn turn_{[this] { takeTurn(); }};
    std::vector<StepwiseWork*> works_; // the first one is next
};

/// For QML, in an engine with ShortSteps: something that consists of many small steps.
class StepwiseWork : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isWanted READ isWanted WRITE setWanted NOTIFY isWantedChanged)

  public:
    ~StepwiseWork() override;

    bool isWanted() const { return isWanted_; }
    void setWanted(bool isWanted);

  Q_SIGNALS:
    void isWantedChanged();
    /// Does one step. Comes again and again for as long as it is wanted.
    void step();

  private:
    bool isWanted_ = false;
    ShortSteps* steps_ = nullptr;
};

} // namespace tovi
