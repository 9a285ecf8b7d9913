#include "app/model/FoldersModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"
#include "platform/StandardLocations.h"

#include <QPointer>
#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace tovi {

using platform::FolderFreshness;
using State = FolderFreshness::State;

namespace {

constexpr double returnInterval = 10; // seconds

struct Granted {
    std::vector<FolderGrant> grants;
    std::string refusals;
};

void addSentence(std::string& text, const std::string& sentence) {
    if (!text.empty()) text += '\n';
    text += sentence;
}

bool isDirectory(const std::string& path) {
    try {
        return platform::attributesOf(path).type == platform::FileType::directory;
    } catch (const std::system_error&) {
        return false;
    }
}

} // namespace

const char* nameOf(State state) {
    switch (state) {
    case State::live:
        return "live";
    case State::periodic:
        return "periodic";
    case State::stale:
        return "stale";
    }
    return "";
}

FoldersModel::FoldersModel(ModelContext& context, const FileIndexer& indexer,
                           platform::Bookmarks& bookmarks, FolderPicker& picker)
    : context_(context),
      indexer_(indexer),
      access_(std::make_shared<FolderAccess>(bookmarks)),
      picker_(picker),
      list_(
          [](const FolderGrant& grant) { return grant.path; },
          {{"path", [](const FolderGrant& grant) { return toQt(grant.path); }},
           {"name", [](const FolderGrant& grant) { return toQt(lastPathComponent(grant.path)); }},
           {"available", [](const FolderGrant& grant) { return grant.available; }},
           {"freshness",
            [this](const FolderGrant& grant) { return toQt(nameOf(freshnessOf(grant).state)); }},
           {"freshSince",
            [this](const FolderGrant& grant) { return toMilliseconds(freshnessOf(grant).since); }},
           {"freshnessReason",
            [this](const FolderGrant& grant) { return toQt(freshnessOf(grant).reason); }}}) {}

void FoldersModel::setRoots(std::vector<FolderGrant> roots) {
    list_.replace(std::move(roots));
    access_->keepOnly(list_.rows());
    updateFreshness();
    awaitReturn();
}

void FoldersModel::setFreshness(const std::vector<FolderFreshness>& watched) {
    watched_ = watched;
    updateFreshness();
}

/// The monitor may know the folder that lies where the connected one was.
const FolderFreshness* FoldersModel::toldOf(const FolderGrant& root) const {
    const auto told = std::find_if(watched_.begin(), watched_.end(),
                                   [&](const auto& folder) { return folder.root == root.path; });
    return root.available && told != watched_.end() ? &*told : nullptr;
}

void FoldersModel::updateFreshness() {
    std::map<std::string, FolderFreshness> current;
    for (const FolderGrant& root : roots()) {
        const FolderFreshness* const told = toldOf(root);
        FolderFreshness fresh =
            told ? *told
                 : FolderFreshness{root.path, State::stale, context_.executor.now(),
                                   root.available ? "It is not watched yet."
                                                  : "The folder is not there or cannot be read."};
        const auto before = freshness_.find(root.path);
        if (before != freshness_.end() && before->second.state == fresh.state) {
            fresh.since = std::min(before->second.since, fresh.since);
        }
        current.emplace(root.path, std::move(fresh));
    }
    if (std::exchange(freshness_, std::move(current)) == freshness_) return;
    if (const int rows = list_.count(); rows > 0) {
        Q_EMIT list_.dataChanged(list_.index(0), list_.index(rows - 1));
    }
    Q_EMIT freshnessChanged();
}

const FolderFreshness& FoldersModel::freshnessOf(const FolderGrant& root) const {
    static const FolderFreshness unknown; // while the list is being replaced
    const auto found = freshness_.find(root.path);
    return found == freshness_.end() ? unknown : found->second;
}

std::vector<FolderFreshness> FoldersModel::freshness() const {
    std::vector<FolderFreshness> all;
    for (const FolderGrant& root : roots())
        all.push_back(freshnessOf(root));
    return all;
}

QString FoldersModel::freshnessNotice() const {
    const FolderFreshness* first = nullptr;
    int count = 0;
    for (const FolderGrant& root : roots()) {
        const FolderFreshness& fresh = freshnessOf(root);
        const bool isStarting = root.available && !toldOf(root);
        if (isStarting || fresh.state == State::live) continue;
        if (count++ == 0) first = &fresh;
    }
    if (!first) return {};
    if (count > 1) {
        return toQt(fmt::format("Changes in {} folders are not noticed at once.", count));
    }
    return toQt(fmt::format("Changes in {} are not noticed at once. {}",
                            printable(lastPathComponent(first->root)), first->reason));
}

std::vector<std::string> FoldersModel::availablePaths() const {
    std::vector<std::string> paths;
    for (const FolderGrant& grant : roots()) {
        if (grant.available) paths.push_back(grant.path);
    }
    return paths;
}

std::function<std::vector<std::string>()> FoldersModel::pathsInPlace() const {
    return [grants = roots(), access = access_] { return access->pathsInPlace(grants); };
}

void FoldersModel::presentFolderPicker() {
    pick({"Choose a folder for Tovi", "Add folders for your library and automatic cleanup.",
          "Allow this folder", std::nullopt});
}

void FoldersModel::addHomeFolder() {
    const std::string home = platform::homeDirectory();
    if (!isDirectory(home)) {
        setConnectionMessage(
            "Could not locate your Home folder. Use Add folder to choose it manually.");
        return;
    }
    pick({"Connect your personal files", "Connect once for your files and cleanup.",
          "Connect this folder", home});
}

void FoldersModel::pick(const FolderPicker::Request& request) {
    if (!context_.isLoaded || isPresentingFolderPicker_ || context_.isInMaintenance()) return;
    isPresentingFolderPicker_ = true;
    Q_EMIT changed();
    picker_.pick(request, [self = QPointer(this)](const std::optional<std::string>& folder) {
        if (!self || !self->isPresentingFolderPicker_) return;
        self->isPresentingFolderPicker_ = false;
        Q_EMIT self->changed();
        if (folder) self->grantFolders({toQt(*folder)});
    });
}

void FoldersModel::grantFolders(const QStringList& folders) {
    if (!context_.isLoaded) return;
    std::vector<std::string> chosen;
    for (const QString& folder : folders)
        chosen.push_back(fromQt(folder));
    runInBackground(
        context_.executor, this, {},
        [chosen, &indexer = indexer_, access = access_](const std::stop_token&) {
            Granted granted;
            for (const std::string& folder : chosen) {
                try {
                    granted.grants.push_back(access->grant(folder, indexer));
                } catch (const std::exception& error) {
                    addSentence(granted.refusals, error.what());
                }
            }
            return granted;
        },
        [this](const Outcome<Granted>& outcome) {
            if (!outcome) return setConnectionMessage(outcome.error);
            std::string message = outcome.value->refusals;
            std::vector<FolderGrant> roots = list_.rows();
            QStringList added;
            for (const FolderGrant& grant : outcome.value->grants) {
                if (const auto refusal = addGrant(roots, grant)) {
                    addSentence(message, *refusal);
                } else {
                    added.append(toQt(grant.path));
                }
            }
            setConnectionMessage(message);
            if (added.isEmpty()) return;
            setRoots(std::move(roots));
            Q_EMIT rootsEdited();
            Q_EMIT connected(toQt(lastPathComponent(fromQt(added.last()))), added);
        });
}

void FoldersModel::dismissConnectionMessage() {
    setConnectionMessage({});
}

void FoldersModel::setConnectionMessage(const std::string& text) {
    if (toQt(text) == connectionMessage_) return;
    connectionMessage_ = toQt(text);
    Q_EMIT changed();
}

void FoldersModel::restore(std::vector<FolderGrant> roots) {
    setRoots(std::move(roots));
}

void FoldersModel::applyChecks(const std::vector<FolderGrant>& before,
                               const std::vector<FolderGrant>& after) {
    const std::vector<FolderGrant> old = list_.rows();
    std::vector<FolderGrant> roots = old;
    for (FolderGrant& root : roots) {
        const auto checked = std::find(before.begin(), before.end(), root);
        if (checked != before.end()) {
            root = after[static_cast<std::size_t>(checked - before.begin())];
        }
    }
    if (roots == old) return;
    setRoots(roots);
    for (std::size_t at = 0; at < old.size(); ++at) {
        if (old[at].path != roots[at].path) {
            Q_EMIT rootMoved(toQt(old[at].path), toQt(roots[at].path));
        }
    }
    Q_EMIT rootsEdited();
}

/// Looks now and then whether a folder that is away, as one on a disk that was taken out, is back.
void FoldersModel::awaitReturn() {
    const auto isAway = [](const FolderGrant& root) { return !root.available; };
    if (isAwaitingReturn_ || std::none_of(roots().begin(), roots().end(), isAway)) return;
    isAwaitingReturn_ = true;
    runAfter(context_.executor, this, returnInterval, [this, isAway] {
        std::vector<FolderGrant> away;
        std::copy_if(roots().begin(), roots().end(), std::back_inserter(away), isAway);
        runInBackground(
            context_.executor, this, {},
            [away, access = access_](const std::stop_token&) {
                return std::any_of(away.begin(), away.end(), [&](const FolderGrant& grant) {
                    return access->checked(grant).available;
                });
            },
            [this](const Outcome<bool>& isBack) {
                isAwaitingReturn_ = false;
                if (isBack && *isBack.value) Q_EMIT rootReturned();
                awaitReturn();
            });
    });
}

void FoldersModel::forget(const std::string& path) {
    std::vector<FolderGrant> roots = list_.rows();
    if (std::erase_if(roots, [&](const FolderGrant& root) { return root.path == path; }) == 0) {
        return;
    }
    setRoots(std::move(roots));
    Q_EMIT rootsEdited();
}

} // namespace tovi
