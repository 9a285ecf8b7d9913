// How long the library's views take, in this process, with the index in the system's cache: answers
// to questions, download groups, timeline and connections, and the vector index. Milliseconds.

#include "base/Text.h"
#include "bench/Prose.h"
#include "bench/Stopwatch.h"
#include "core/library/Connections.h"
#include "core/library/DownloadGroups.h"
#include "core/library/EvidenceSearch.h"
#include "core/library/Timeline.h"
#include "core/search/LocalVectorIndex.h"

#include <algorithm>
#include <iostream>
#include <random>

#include <nlohmann/json.hpp>

namespace {

using namespace tovi;

constexpr int warmUps = 1;
constexpr int runs = 9;

/// `work` says how much it found.
template <typename Work>
void measure(const char* name, Work work) {
    std::vector<double> wall;
    std::vector<double> processor;
    std::size_t found = 0;
    for (int n = -warmUps; n < runs; ++n) {
        const bench::Stopwatch stopwatch;
        found = work();
        if (n < 0) continue;
        wall.push_back(stopwatch.wall() * 1000);
        processor.push_back(stopwatch.processor() * 1000);
    }
    std::sort(wall.begin(), wall.end());
    std::sort(processor.begin(), processor.end());
    std::cout << nlohmann::ordered_json{{"name", name},
                                        {"found", found},
                                        {"processor", processor[runs / 2]},
                                        {"median", wall[runs / 2]},
                                        {"worst", wall.back()}}
              << std::endl;
}

void views(IndexStore& store, const bench::Prose& prose) {
    const std::string& rare = prose.word(prose.wordCount() - 10'000);
    const std::string& common = prose.word(3);
    measure("question, rare and common words", [&] {
        return findEvidence(store, "what is the " + rare + " of " + common, 50).size();
    });
    measure("question, three common words", [&] {
        return findEvidence(store, common + " " + prose.word(5) + " " + prose.word(9), 50).size();
    });
    measure("downloads, read and grouped",
            [&] { return DownloadGroups::make(store.downloads()).size(); });
    const CalendarPeriods calendar({"en_US", "Europe/Berlin"});
    for (const auto& [name, unit] : {std::pair("timeline, 60 days", CalendarUnit::day),
                                     {"timeline, 60 weeks", CalendarUnit::week},
                                     {"timeline, 60 months", CalendarUnit::month}}) {
        measure(name,
                [&, unit = unit] { return timeline(store, calendar, unit, Date{4e9}, 60).size(); });
    }
    SearchQuery withText;
    withText.text = rare;
    const auto files = store.search(withText, 1, 0);
    if (files.empty()) return;
    measure("connections of a text file",
            [&] { return connections(store, files[0].path, {}, {})->size(); });
}

void passages(const bench::Prose& prose) {
    std::string text;
    for (std::size_t n = 0; text.size() < 200'000; ++n)
        text += prose.word(n % 5'000) + (n % 12 == 0 ? ". " : " ");
    std::vector<FileRecord> files(100);
    for (FileRecord& file : files)
        file.content = text;
    measure("passages of 100 texts of 200 kB, last word",
            [&] { return EvidenceRetriever::answer(prose.word(4'999) + " absent", files).size(); });
    for (FileRecord& file : files)
        file.content.insert(0, "\u00c4rger ");
    measure("the same, not all ASCII",
            [&] { return EvidenceRetriever::answer(prose.word(4'999) + " absent", files).size(); });
    std::string question;
    for (int n = 0; question.size() < 1'000'000; ++n)
        question += "q" + std::to_string(n) + "z ";
    measure("the same, a question of a megabyte",
            [&] { return EvidenceRetriever::answer(question, files).size(); });
}

void downloadGroups() {
    std::vector<FileRecord> files(200'000);
    std::mt19937 random(1);
    for (FileRecord& file : files) {
        file.path = "/home/user/Downloads/" + std::to_string(random());
        file.sourceURL = "https://files.slack.com/" + std::to_string(random());
        file.modifiedAt = {static_cast<double>(random() % 100'000)};
    }
    measure("200,000 downloads of one origin, with their copy",
            [&] { return DownloadGroups::make(files).size(); });
}

void vectors() {
    constexpr std::size_t dimensions = 384;
    std::mt19937 random(1);
    std::normal_distribution<float> values;
    const auto vector = [&] {
        std::vector<float> result(dimensions);
        for (float& value : result)
            value = values(random);
        return result;
    };
    LocalVectorIndex index("bench", dimensions);
    for (int n = 0; n < 100'000; ++n)
        index.upsert({std::to_string(n), vector()});
    const std::vector<float> query = vector();
    measure("nearest 10 of 100,000 vectors of 384",
            [&] { return index.nearest(query, 10).size(); });
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: library DATABASE\n";
        return 2;
    }
    try {
        const bench::Prose prose(bench::corpusSeed);
        IndexStore store(argv[1], IndexStore::Access::readOnly);
        views(store, prose);
        passages(prose);
        downloadGroups();
        vectors();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << printable(error.what()) << "\n";
        return 1;
    }
}
