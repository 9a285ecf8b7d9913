// How long one page of results takes, in this process, with the index in the system's cache.
// Milliseconds.

#include "base/Text.h"
#include "bench/Prose.h"
#include "bench/Stopwatch.h"
#include "core/search/QueryParser.h"
#include "core/store/IndexStore.h"

#include <algorithm>
#include <iostream>

#include <nlohmann/json.hpp>

namespace {

using namespace tovi;

constexpr int warmUps = 2;
constexpr int runs = 15;
constexpr std::int64_t pageSize = 1'000; // what the window shows at once

struct Search {
    const char* name;
    std::string phrase;
};

std::vector<Search> searches(const bench::Prose& prose) {
    const std::string& rare = prose.word(prose.wordCount() - 10'000);
    const std::string& common = prose.word(3);
    return {
        {"rare word", rare},
        {"two rare words", rare + " " + prose.word(prose.wordCount() - 9'990)},
        {"rare and common word", rare + " " + common},
        {"name of one file", "Screenshot 4"},
        {"word of middling frequency", prose.word(3'000)},
        {"common word", common},
        {"two common words", prose.word(5) + " " + prose.word(9)},
        {"one letter", "b"},
        {"two letters", "xq"},
        {"no result", "xqzzyjwq"},
        {"no result, two words", common + " xqzzyjwq"},
        {"empty", ""},
        {"kind", "pdfs"},
        {"kind, size and age", "pdfs over 5 mb older than 1 year"},
        {"last month", "last month"},
        {"screenshots", "screenshots"},
        {"source", "from slack"},
        {"source without files", "from figma"},
        {"source and common word", "from gmail " + common},
    };
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: search-latency DATABASE\n";
        return 2;
    }
    try {
        const bench::Prose prose(bench::corpusSeed);
        const QueryParser parser({"en_US", "UTC"});
        IndexStore store(argv[1], IndexStore::Access::readOnly);
        for (const Search& search : searches(prose)) {
            const SearchQuery query = parser.parse(search.phrase, Date{1'710'000'000});
            std::vector<double> wall;
            std::vector<double> processor;
            std::size_t found = 0;
            for (int n = -warmUps; n < runs; ++n) {
                const bench::Stopwatch stopwatch;
                found = store.search(query, pageSize, 0, IndexStore::Content::leftOut).size();
                if (n < 0) continue;
                wall.push_back(stopwatch.wall() * 1000);
                processor.push_back(stopwatch.processor() * 1000);
            }
            std::sort(wall.begin(), wall.end());
            std::sort(processor.begin(), processor.end());
            std::cout << nlohmann::ordered_json{{"name", search.name},
                                                {"phrase", search.phrase},
                                                {"found", found},
                                                {"processor", processor[runs / 2]},
                                                {"median", wall[runs / 2]},
                                                {"worst", wall.back()}}
                      << std::endl;
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << printable(error.what()) << "\n";
        return 1;
    }
}
