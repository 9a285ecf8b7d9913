#include "core/vault/VaultManifest.h"
#include "core/vault/VaultStore.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <sys/resource.h>

namespace fs = std::filesystem;
using namespace tovi;

namespace {

constexpr std::string_view password = "benchmark passphrase";

double processorSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Prints the name, the seconds it took and the processor seconds it used, tab separated.
void measure(const std::string& name, const std::function<void()>& work) {
    const double before = processorSeconds();
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    fmt::print("{}\t{:.3f}\t{:.3f}\n", name, wall.count(), processorSeconds() - before);
    std::fflush(stdout);
}

void measureStream(VaultStore& store, const std::string& file, const std::string& copy) {
    VaultItem item;
    measure("vault add", [&] { item = store.importFile(file); });
    measure("vault export", [&] { store.exportFile(item.id, copy); });
    measure("vault verify", [&] { store.verify({}, {}); });
    fs::remove(copy);
}

void measureMany(VaultStore& store, const std::string& directory, int count) {
    std::vector<std::string> paths;
    fs::create_directory(directory);
    for (int number = 0; number < count; ++number) {
        paths.push_back(fmt::format("{}/a file of ordinary name {}.txt", directory, number));
        std::FILE* const file = std::fopen(paths.back().c_str(), "w");
        fmt::print(file, "{}", number);
        std::fclose(file);
    }
    std::size_t added = 0;
    const auto report = [&](const VaultStore::Import& result) { added += result.item ? 1 : 0; };
    for (int step = 1; step <= 4; ++step) { // each quarter costs the same where the cost is linear
        const auto quarter = std::span(paths).subspan(
            paths.size() * static_cast<std::size_t>(step - 1) / 4, paths.size() / 4);
        measure(fmt::format("vault add {} files ({} of 4)", quarter.size(), step),
                [&] { store.importFiles(quarter, report, {}, {}); });
    }
    measure(fmt::format("vault add 1 file to {}", added), [&] { store.importFile(paths[0]); });
}

} // namespace

/// VaultBench FILE DIRECTORY [FILES]: adds and exports FILE in a new vault in DIRECTORY, then FILES
/// small files.
int main(int argc, char** argv) {
    if (argc < 3) return 2;
    const std::string directory = argv[2];
    const platform::SystemAvailability availability;
    VaultStore store(directory + "/vault", availability);
    store.create(password);
    measureStream(store, argv[1], directory + "/copy");
    if (argc > 3) measureMany(store, directory + "/files", std::atoi(argv[3]));
}
