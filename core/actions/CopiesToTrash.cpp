#include "core/actions/CopiesToTrash.h"

#include "core/actions/ActionPlan.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tovi {
namespace {

constexpr std::array<std::pair<KeepRule, std::string_view>, 3> rules{
    {{KeepRule::newest, "newest"},
     {KeepRule::oldest, "oldest"},
     {KeepRule::shortestPath, "shortest-path"}}};

bool isBetter(KeepRule rule, const FileRecord& left, const FileRecord& right) {
    switch (rule) {
    case KeepRule::newest:
        return left.modifiedAt > right.modifiedAt;
    case KeepRule::oldest:
        return left.modifiedAt < right.modifiedAt;
    case KeepRule::shortestPath:
        break;
    }
    return left.path.size() < right.path.size();
}

} // namespace

std::string_view rawValue(KeepRule rule) {
    return std::find_if(rules.begin(), rules.end(),
                        [&](const auto& each) { return each.first == rule; })
        ->second;
}

std::optional<KeepRule> keepRule(std::string_view rawValue) {
    for (const auto& [rule, value] : rules) {
        if (value == rawValue) return rule;
    }
    return std::nullopt;
}

std::size_t keptBy(KeepRule rule, const std::vector<FileRecord>& files) {
    const auto best =
        std::min_element(files.begin(), files.end(), [&](const auto& left, const auto& right) {
            return isBetter(rule, left, right);
        });
    return static_cast<std::size_t>(best - files.begin());
}

bool CopiesToTrash::add(const FileRecord& file) {
    if (files_.size() == mostPlannedFiles) {
        ++left_;
        return false;
    }
    files_.push_back(file);
    return true;
}

void CopiesToTrash::addGroup(const std::vector<FileRecord>& files, const std::vector<bool>& stays) {
    if (std::find(stays.begin(), stays.end(), true) == stays.end()) return;
    bool goesAny = false;
    for (std::size_t at = 0; at < files.size(); ++at) {
        if (!stays[at] && add(files[at])) goesAny = true;
    }
    for (std::size_t at = 0; at < files.size() && goesAny; ++at) {
        if (stays[at]) keepers_.push_back(files[at]);
    }
}

} // namespace tovi
