#include "app/model/CopyTextModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tovi {
namespace {

constexpr std::size_t namesTold = 3;

std::string filesWord(std::size_t count) {
    return fmt::format("{} file{}", count, count == 1 ? "" : "s");
}

/// At most three names, and how many more there are.
std::string enumerate(std::vector<std::string> names) {
    const std::size_t more = names.size() - std::min(names.size(), namesTold);
    if (more > 0) names.resize(namesTold);
    const std::string list = fmt::format("{}", fmt::join(names, ", "));
    return more > 0 ? fmt::format("{} and {} more", list, more) : list;
}

} // namespace

void CopyTextModel::copy(const std::vector<std::string>& paths) {
    if (!context_.index || isCopyingText_) return;
    isCopyingText_ = true;
    copyTextMessage_.clear();
    Q_EMIT changed();
    runLatest(
        context_.executor, this, copyTextGeneration_,
        [paths, index = context_.index](const std::stop_token& stop) {
            return collect(paths, index->reader, stop);
        },
        [this](const Outcome<Collected>& outcome) { finish(outcome); });
}

CopyTextModel::Collected CopyTextModel::collect(const std::vector<std::string>& paths,
                                                IndexStore& store, const std::stop_token& stop) {
    Collected collected;
    for (const std::string& path : paths) {
        throwIfCancelled(stop);
        const auto record = store.record(path);
        const std::string name(lastPathComponent(path));
        if (!record || trimmed(record->content).empty()) {
            collected.without.push_back(name);
            continue;
        }
        const std::string separator = collected.text.empty() ? "" : "\n\n";
        if (collected.text.size() + separator.size() + record->content.size() > largestText) {
            collected.isCut = true;
            break;
        }
        collected.text += separator + record->content;
        collected.copied.push_back(name);
    }
    return collected;
}

std::string CopyTextModel::describe(const Collected& collected) {
    if (collected.copied.empty()) {
        return "No readable text yet. Wait for scanning to finish, or choose a different file.";
    }
    std::string message =
        "Text copied from " + (collected.copied.size() == 1 ? collected.copied.front()
                                                            : filesWord(collected.copied.size()));
    if (collected.isCut) message += "; choose fewer files to copy more.";
    if (!collected.without.empty()) {
        message += fmt::format("{}{} left out ({}) because no readable text was found.",
                               collected.isCut ? " " : "; ", filesWord(collected.without.size()),
                               enumerate(collected.without));
    }
    return message;
}

void CopyTextModel::finish(const Outcome<Collected>& outcome) {
    isCopyingText_ = false;
    const bool isCopied =
        outcome && (outcome.value->copied.empty() || clipboard_.setText(outcome.value->text));
    copyTextMessage_ =
        toQt(isCopied ? describe(*outcome.value) : "Couldn’t copy text. Please try again.");
    Q_EMIT changed();
    scheduleCopyNoticeDismissal();
}

void CopyTextModel::scheduleCopyNoticeDismissal() {
    runAfter(context_.executor, this, noticePeriod, [this, stamp = copyTextGeneration_.stamp()] {
        if (stamp == copyTextGeneration_.stamp()) dismissCopyTextMessage();
    });
}

void CopyTextModel::dismissCopyTextMessage() {
    if (copyTextMessage_.isEmpty()) return;
    copyTextMessage_.clear();
    Q_EMIT changed();
}

} // namespace tovi
