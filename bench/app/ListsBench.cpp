// How long the main thread is busy when a list of 20,000 rows changes: filled, brought to the same
// content again, to one of which every tenth row is gone, and emptied. Processor time in
// milliseconds, the median of eleven rounds.

#include "app/cleanup/CleanupCandidates.h"
#include "app/vault/VaultLists.h"

#include <algorithm>
#include <array>
#include <ctime>

#include <fmt/format.h>

namespace {

using namespace tovi;

constexpr int rowCount = 20'000;
constexpr int rounds = 11;

double threadMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

std::vector<VaultItem> vaultItems(bool isThinned) {
    static const std::vector<VaultItem> all = [] {
        std::vector<VaultItem> items(rowCount);
        for (int n = 0; n < rowCount; ++n) {
            items[static_cast<std::size_t>(n)] = {
                Uuid::random(), fmt::format("letter to the bank {}.pdf", n), n, {}, {}, {}};
        }
        return items;
    }();
    std::vector<VaultItem> items;
    for (const VaultItem& item : all) {
        if (!isThinned || item.size % 10 != 0) items.push_back(item);
    }
    return items;
}

CandidatesByCategory candidates(bool isThinned) {
    CandidatesByCategory all;
    for (int n = 0; n < rowCount; ++n) {
        if (isThinned && n % 10 == 0) continue;
        CleanupCandidate candidate;
        candidate.name = fmt::format("recording {}.mov", n);
        candidate.path = "/home/user/Documents/projects/films/" + candidate.name;
        candidate.size = rowCount - n;
        all[static_cast<std::size_t>(candidate.category)].push_back(std::move(candidate));
    }
    return all;
}

/// `content(isThinned)` makes what `list.replace` takes.
template <typename List, typename Content>
void measure(const char* name, List& list, Content content) {
    std::array<std::array<double, rounds>, 4> times{};
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t step = 0; step < times.size(); ++step) {
            auto rows = step == 3 ? decltype(content(false))() : content(step == 2);
            const double begin = threadMilliseconds();
            list.replace(std::move(rows));
            times[step][static_cast<std::size_t>(round)] = threadMilliseconds() - begin;
        }
    }
    fmt::print("{}:", name);
    for (auto& step : times) {
        std::sort(step.begin(), step.end());
        fmt::print(" {:.1f}", step[rounds / 2]);
    }
    fmt::print("\n");
}

} // namespace

int main() {
    VaultItemList vault;
    measure("vault", vault, vaultItems);
    CleanupCandidates cleanup;
    measure("cleanup", cleanup, candidates);
}
