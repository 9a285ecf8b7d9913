#include "ui/desktop/ShortSteps.h"

#include <QDeadlineTimer>
#include <QQmlEngine>
#include <algorithm>

namespace tovi {

namespace {
// Milliseconds, of what is to be 8 at most.
constexpr int longestTurn = 2;
constexpr int untilDrawn = 6; // after a request a frame comes within 5
} // namespace

void ShortSteps::add(StepwiseWork& work) {
    works_.push_back(&work);
    turn_.request();
}

void ShortSteps::remove(StepwiseWork& work) {
    std::erase(works_, &work);
}

void ShortSteps::incubatingObjectCountChanged(int count) {
    if (count > 0) turn_.request();
}

void ShortSteps::takeTurn() {
    if (incubatingObjectCount() > 0) { // first, for the works may be parts of it
        incubateFor(longestTurn);
        return turn_.request();
    }
    const QDeadlineTimer end(longestTurn);
    while (!works_.empty() && !end.hasExpired()) {
        std::rotate(works_.begin(), works_.begin() + 1, works_.end());
        Q_EMIT works_.back()->step();
    }
    // What was made is not to be drawn all at once either.
    if (!works_.empty()) turn_.request(untilDrawn);
}

StepwiseWork::~StepwiseWork() {
    if (isWanted_ && steps_) steps_->remove(*this);
}

void StepwiseWork::setWanted(bool isWanted) {
    if (std::exchange(isWanted_, isWanted) == isWanted) return;
    if (isWanted) {
        steps_ = dynamic_cast<ShortSteps*>(qmlEngine(this)->incubationController());
        if (steps_) steps_->add(*this);
    } else if (steps_) {
        steps_->remove(*this);
    }
    Q_EMIT isWantedChanged();
}

} // namespace tovi
