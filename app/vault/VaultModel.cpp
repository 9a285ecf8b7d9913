#include "app/vault/VaultModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"
#include "platform/FileAttributes.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMetaMethod>
#include <cmath>
#include <mutex>
#include <numeric>
#include <utility>

#include <fmt/format.h>
#include <strings.h>

namespace tovi {
namespace {

/// The only copy of a password that the model makes; gone from memory with the object.
class Password {
  public:
    explicit Password(const QString& text) : text_(text.toUtf8()) {}
    Password(const Password&) = delete;
    Password& operator=(const Password&) = delete;
    ~Password() { ::explicit_bzero(text_.data(), static_cast<std::size_t>(text_.size())); }

    std::string_view text() const {
        return {text_.constData(), static_cast<std::size_t>(text_.size())};
    }

  private:
    QByteArray text_;
};

VaultModel::Phase phaseOf(VaultStatus status) {
    switch (status) {
    case VaultStatus::notCreated:
        return VaultModel::Phase::notCreated;
    case VaultStatus::locked:
        return VaultModel::Phase::locked;
    case VaultStatus::unlocked:
        return VaultModel::Phase::unlocked;
    }
    return VaultModel::Phase::unavailable;
}

QString encrypting(std::size_t at, std::size_t count) {
    return toQt(fmt::format("Encrypting file {} of {}…", at, count));
}

/// What adding a file costs besides its bytes, in bytes that could be encrypted meanwhile.
constexpr double costOfAnyFile = 131'072;

double sizeOf(const std::string& path) {
    try {
        return static_cast<double>(platform::attributesOf(path).size);
    } catch (const std::system_error&) {
        return 0; // it will be refused
    }
}

bool isInput(QEvent::Type type) {
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::KeyPress:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
        return true;
    default:
        return false;
    }
}

} // namespace

/// What a running import tells, from its thread to the main one.
struct VaultModel::Reported {
    std::mutex mutex;                      // guards `fresh`
    std::vector<VaultStore::Import> fresh; // not yet taken over
    std::size_t files = 0;                 // the rest is the main thread's
    std::size_t added = 0;
    std::vector<std::string> failures; // a line each
};

VaultModel::VaultModel(std::unique_ptr<VaultStore> store, Surroundings surroundings)
    : store_(std::move(store)), surroundings_(std::move(surroundings)) {
    lastActivity_ = surroundings_.secondsSinceBoot();
    if (QCoreApplication* application = QCoreApplication::instance()) {
        application->installEventFilter(this);
    }
    checkIdleTimeLater();
}

VaultModel::~VaultModel() {
    if (activePanel_) {
        activePanel_.reset();
        surroundings_.panels.close();
    }
}

template <typename Work, typename Finished>
void VaultModel::operate(const QString& activity, Work work, Finished finished) {
    isBusy_ = true;
    activity_ = activity;
    errorMessage_.clear();
    notice_.clear();
    setRunning(TimeLeft(surroundings_.executor.uptime()));
    Q_EMIT changed();
    runLatest(surroundings_.executor, this, generation_, std::move(work),
              [this, finished = std::move(finished)](auto outcome) mutable {
                  isBusy_ = false;
                  activity_.clear();
                  setRunning({});
                  if (!outcome && !outcome.isCancelled) errorMessage_ = toQt(outcome.error);
                  finished(outcome);
                  Q_EMIT changed();
                  tellTimeUntilLock();
              });
}

void VaultModel::load() {
    if (isBusy_ || (phase_ != Phase::loading && phase_ != Phase::unavailable)) return;
    phase_ = Phase::loading;
    operate(
        {}, [store = store_](const std::stop_token&) { return store->status(); },
        [this](const Outcome<VaultStatus>& status) {
            phase_ = status ? phaseOf(*status.value) : Phase::unavailable;
        });
}

void VaultModel::authenticate(const QString& password, bool creating) {
    if (isBusy_ || phase_ == Phase::unlocked) return;
    operate(
        creating ? QStringLiteral("Creating your encrypted vault…")
                 : QStringLiteral("Unlocking your vault…"),
        [store = store_, creating, password = std::make_shared<const Password>(password)](
            const std::stop_token& stop) mutable {
            const auto secret = std::move(password); // wiped with this call
            return creating ? store->create(secret->text(), stop) : store->unlock(secret->text());
        },
        [this](Outcome<std::vector<VaultItem>>& items) {
            if (!items) return;
            items_.replace(std::move(*items.value));
            importedOriginals_.replace({});
            phase_ = Phase::unlocked;
            lockReason_.clear();
            lastActivity_ = surroundings_.secondsSinceBoot();
            importFiles(std::exchange(waiting_, {}));
        });
}

bool VaultModel::canShowPanel() const {
    return phase_ == Phase::unlocked && !isBusy_ && !activePanel_;
}

std::uint64_t VaultModel::openPanel() {
    activePanel_ = ++panelCount_;
    return *activePanel_;
}

/// Whether the panel was still wanted.
bool VaultModel::closePanel(std::uint64_t panel) {
    if (activePanel_ != panel) return false;
    activePanel_.reset();
    return true;
}

void VaultModel::chooseFiles() {
    if (!canShowPanel()) return;
    surroundings_.panels.chooseFiles(
        {"Add encrypted copies", "Choose files of any type. Originals stay where they are. Zip "
                                 "folders before adding them."},
        [self = QPointer<VaultModel>(this),
         panel = openPanel()](const std::vector<std::string>& paths) {
            if (self && self->closePanel(panel)) self->importFiles(paths);
        });
}

void VaultModel::addFiles(const QStringList& paths) {
    waiting_.clear();
    for (const QString& path : paths)
        waiting_.push_back(fromQt(path));
    if (phase_ == Phase::unlocked) importFiles(std::exchange(waiting_, {}));
    Q_EMIT changed();
}

void VaultModel::forgetWaiting() {
    if (waiting_.empty()) return;
    waiting_.clear();
    Q_EMIT changed();
}

void VaultModel::importFiles(const std::vector<std::string>& paths) {
    if (isBusy_ || paths.empty()) return;
    const auto reported = std::make_shared<Reported>();
    // Made before the operation, whose generation is the next.
    const LatestValue<Passed> passed(
        surroundings_.executor, this,
        [this, reported, paths, stamp = generation_.stamp() + 1](const Passed& step) {
            if (stamp != generation_.stamp() || !isBusy_) return;
            tellTimeLeft(step);
            if (std::exchange(reported->files, step.files) == step.files) return;
            take(paths, *reported);
            if (step.files < paths.size()) setActivity(encrypting(step.files + 1, paths.size()));
        });
    const QString activity = encrypting(1, paths.size());
    operate(
        activity,
        [store = store_, paths, reported, passed](const std::stop_token& stop) {
            std::vector<double> sizes;
            sizes.reserve(paths.size());
            for (const std::string& path : paths)
                sizes.push_back(sizeOf(path));
            Passed step;
            step.total = std::accumulate(sizes.begin(), sizes.end(),
                                         costOfAnyFile * static_cast<double>(paths.size()));
            store->importFiles(
                paths,
                [&](const VaultStore::Import& result) {
                    const std::lock_guard lock(reported->mutex);
                    reported->fresh.push_back(result);
                    ++step.files;
                    step.done += costOfAnyFile + (result.item ? 0 : sizes.at(result.index));
                    passed.set(step);
                },
                [&](std::int64_t bytes) {
                    step.done += static_cast<double>(bytes);
                    passed.set(step);
                },
                stop);
        },
        [this, paths, reported](const Outcome<std::monostate>& outcome) {
            take(paths, *reported);
            if (!outcome && !outcome.error.empty()) reported->failures.push_back(outcome.error);
            errorMessage_ = toQt(fmt::format("{}", fmt::join(reported->failures, "\n")));
            if (reported->added == 0) return;
            notice_ =
                toQt(fmt::format("{} encrypted cop{} saved. Originals remain outside the vault.",
                                 reported->added, reported->added == 1 ? "y" : "ies"));
        });
}

void VaultModel::take(const std::vector<std::string>& paths, Reported& reported) {
    std::vector<VaultStore::Import> fresh;
    {
        const std::lock_guard lock(reported.mutex);
        fresh.swap(reported.fresh);
    }
    std::vector<VaultItem> items;
    std::vector<VaultImportedOriginal> originals;
    for (const VaultStore::Import& result : fresh) {
        const std::string& path = paths.at(result.index);
        if (result.item) {
            items.push_back(*result.item);
            originals.push_back({path, *result.item});
        } else if (result.error) {
            reported.failures.push_back(
                fmt::format("{}: {}", printable(lastPathComponent(path)), result.error->what()));
        }
    }
    reported.added += items.size();
    items_.append(std::move(items));
    importedOriginals_.append(std::move(originals));
}

void VaultModel::exportItem(const QString& id) {
    const int row = items_.rowOf(id);
    if (!canShowPanel() || row < 0) return;
    const VaultItem& item = items_.rows().at(static_cast<std::size_t>(row));
    surroundings_.panels.chooseDestination(
        {"Export decrypted copy",
         "Choose where to save a readable copy. This copy will not need your vault password. "
         "Existing files are never replaced.",
         item.name, "vault-export-filename", item.size},
        [self = QPointer<VaultModel>(this), panel = openPanel(),
         id = item.id](const std::optional<VaultPanels::Destination>& destination) {
            if (!self || !self->closePanel(panel) || !destination) return;
            if (destination->name.find('/') != std::string::npos) {
                self->fail("Choose a filename without path separators.");
            } else {
                self->exportItem(id, destination->folder + "/" + destination->name);
            }
        });
}

void VaultModel::exportItem(const Uuid& id, const std::string& destination) {
    if (isBusy_) return;
    const LatestValue<Passed> passed(surroundings_.executor, this,
                                     [this, stamp = generation_.stamp() + 1](const Passed& step) {
                                         if (stamp == generation_.stamp() && isBusy_)
                                             tellTimeLeft(step);
                                     });
    const int row = items_.rowOf(toQt(id.string()));
    const double size =
        row < 0 ? 0 : static_cast<double>(items_.rows()[static_cast<std::size_t>(row)].size);
    operate(
        QStringLiteral("Exporting decrypted copy…"),
        [store = store_, id, destination, passed, size](const std::stop_token& stop) {
            Passed step{.total = size};
            store->exportFile(id, destination, stop, [&](std::int64_t bytes) {
                step.done += static_cast<double>(bytes);
                passed.set(step);
            });
        },
        [this](const Outcome<std::monostate>& outcome) {
            if (!outcome) return;
            notice_ = QStringLiteral("Decrypted copy exported. It is readable outside the vault.");
        });
}

void VaultModel::lock() {
    lockBecause({});
}

void VaultModel::lockBecause(const QString& reason, SleepDelay delay) {
    // A store that is only asked for its state holds no key.
    const bool isOpening = isBusy_ && phase_ != Phase::loading;
    if (phase_ != Phase::unlocked && !isOpening) return;
    if (delay) sleepDelays_.push_back(std::move(delay));
    if (isLocking_) return;
    isLocking_ = true;
    isBusy_ = true;
    phase_ = Phase::locked;
    activity_ = QStringLiteral("Locking vault…");
    lockReason_ = reason;
    errorMessage_.clear();
    notice_.clear();
    items_.replace({});
    importedOriginals_.replace({});
    generation_.cancel();
    setRunning({});
    if (std::exchange(activePanel_, std::nullopt)) surroundings_.panels.close();
    Q_EMIT changed();
    tellTimeUntilLock();
    // Not to be stopped, and also if the model goes meanwhile.
    runInBackground(
        surroundings_.executor, this, {},
        [store = store_](const std::stop_token&) {
            store->lock();
            return store->status();
        },
        [this](const Outcome<VaultStatus>& status) { finishLock(status); });
}

void VaultModel::finishLock(const Outcome<VaultStatus>& status) {
    isLocking_ = false;
    isBusy_ = false;
    activity_.clear();
    // Where the vault was about to be made there may be none.
    if (status) phase_ = phaseOf(*status.value);
    sleepDelays_.clear();
    Q_EMIT changed();
    Q_EMIT onLock();
}

QStringList VaultModel::originalPaths() const {
    QStringList paths;
    for (const VaultImportedOriginal& original : importedOriginals_.rows())
        paths.append(toQt(original.sourceURL));
    return paths;
}

void VaultModel::setActivity(const QString& activity) {
    activity_ = activity;
    Q_EMIT changed();
}

void VaultModel::fail(const std::string& error) {
    errorMessage_ = toQt(error);
    notice_.clear();
    Q_EMIT changed();
}

void VaultModel::setRunning(TimeLeft running) {
    const int before = std::exchange(running_, running).seconds();
    if (running_.seconds() != before) Q_EMIT runningSecondsLeftChanged();
}

void VaultModel::tellTimeLeft(const Passed& step) {
    TimeLeft running = running_;
    running.update(step.done, step.total, surroundings_.executor.uptime());
    setRunning(running);
}

double VaultModel::idleTimeLeft() const {
    return idlePeriod - (surroundings_.secondsSinceBoot() - lastActivity_);
}

int VaultModel::secondsUntilLock() const {
    if (phase_ != Phase::unlocked) return TimeLeft::unknown;
    return static_cast<int>(std::ceil(std::max(idleTimeLeft(), 0.0)));
}

void VaultModel::tellTimeUntilLock() {
    const int seconds = secondsUntilLock();
    if (std::exchange(toldSecondsUntilLock_, seconds) != seconds) Q_EMIT secondsUntilLockChanged();
    countDown();
}

void VaultModel::countDown() {
    static const QMetaMethod told = QMetaMethod::fromSignal(&VaultModel::secondsUntilLockChanged);
    if (isCountingDown_ || phase_ != Phase::unlocked || !isSignalConnected(told)) return;
    isCountingDown_ = true;
    runAfter(surroundings_.executor, this, 1, [this] {
        isCountingDown_ = false;
        lockIfIdle();
        tellTimeUntilLock();
    });
}

void VaultModel::connectNotify(const QMetaMethod& signal) {
    if (signal == QMetaMethod::fromSignal(&VaultModel::secondsUntilLockChanged)) countDown();
}

void VaultModel::lockIfIdle() {
    if (phase_ == Phase::unlocked && idleTimeLeft() <= 0) {
        lockBecause(QStringLiteral("Locked after 5 minutes of inactivity."));
    }
}

void VaultModel::checkIdleTimeLater() {
    runAfter(surroundings_.executor, this, idleCheck, [this] {
        lockIfIdle();
        checkIdleTimeLater();
    });
}

void VaultModel::noteActivity() {
    lockIfIdle(); // the first input after a sleep comes before the clock is looked at
    lastActivity_ = surroundings_.secondsSinceBoot();
    tellTimeUntilLock();
}

bool VaultModel::eventFilter(QObject* watched, QEvent* event) {
    if (isInput(event->type())) noteActivity();
    return QObject::eventFilter(watched, event);
}

void VaultModel::setApplicationActive(bool isActive) {
    activation_.cancel();
    if (isActive) return;
    runAfter(surroundings_.executor, this, focusPeriod, [this, stamp = activation_.stamp()] {
        if (stamp == activation_.stamp()) lockBecause(QStringLiteral("Locked when you left Tovi."));
    });
}

void VaultModel::windowClosed() {
    lockBecause(QStringLiteral("Locked when the window closed."));
}

void VaultModel::sessionInterrupted(SleepDelay delay) {
    lockBecause(QStringLiteral("Locked when your Mac went to sleep or changed sessions."),
                std::move(delay));
}

void VaultModel::setFollowsSession(bool follows) {
    if (std::exchange(followsSession_, follows) != follows) Q_EMIT changed();
}

} // namespace tovi
