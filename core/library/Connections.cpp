#include "core/library/Connections.h"

#include "base/Cancelled.h"
#include "base/Text.h"
#include "core/records/DownloadOrigin.h"
#include "core/search/EvidenceRetriever.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace tovi {
namespace {

// Of each kind, so that the rest of a large folder does not hide what else a file is tied to.
constexpr std::int64_t mostOfAKind = 60;

// A word that more files hold says little about any two of them.
constexpr std::int64_t filesOfARareWord = 20;

constexpr std::size_t wordsLookedFor = 16;
constexpr std::size_t shortestWord = 5; // characters
constexpr std::size_t longestWord = 24; // longer ones are rarely words

class Ties {
  public:
    explicit Ties(std::string center) : center_(std::move(center)) {}

    void add(const std::vector<FileRecord>& files, TieKind kind, const std::string& name) {
        std::int64_t added = 0;
        for (const FileRecord& file : files) {
            if (file.path == center_) continue;
            const auto found = files_.find(file.path);
            if (found == files_.end()) {
                if (files_.size() == mostConnections || added == mostOfAKind) continue;
                ++added;
                files_.emplace(file.path, ConnectedFile{file, {{kind, name}}});
            } else if (std::vector<Tie>& ties = found->second.ties;
                       kind == TieKind::words && ties.back().kind == kind) {
                ties.back().name += ", " + name;
            } else {
                ties.push_back({kind, name});
            }
        }
    }

    std::vector<ConnectedFile> sorted() && {
        std::vector<ConnectedFile> files;
        for (auto& [path, file] : files_)
            files.push_back(std::move(file));
        std::stable_sort(files.begin(), files.end(), [](const auto& left, const auto& right) {
            const auto key = [](const ConnectedFile& file) {
                return std::tuple(-static_cast<std::ptrdiff_t>(file.ties.size()),
                                  file.ties.front().kind, -file.file.modifiedAt.seconds);
            };
            return key(left) < key(right);
        });
        return files;
    }

  private:
    std::string center_;
    std::map<std::string, ConnectedFile> files_; // by path
};

/// Words of a file that other files may share; long ones, since they say the most.
std::vector<std::string> tellingWords(const FileRecord& file) {
    std::vector<std::string> words = EvidenceRetriever::words(file.name + "\n" + file.content);
    std::erase_if(words, [](const std::string& word) {
        const std::size_t length = countCharacters(word);
        return length < shortestWord || length > longestWord ||
               std::any_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
    });
    std::stable_sort(words.begin(), words.end(), [](const auto& left, const auto& right) {
        return left.size() > right.size();
    });
    if (words.size() > wordsLookedFor) words.resize(wordsLookedFor);
    return words;
}

/// A host whose downloads have this origin.
std::string hostOf(const DownloadOrigin& origin) {
    for (const DownloadService& service : DownloadOrigin::services) {
        if (service.id == origin.id) return std::string(service.hostSuffixes.front());
    }
    return origin.id;
}

bool contains(const std::vector<std::string>& paths, const std::string& path) {
    return std::find(paths.begin(), paths.end(), path) != paths.end();
}

} // namespace

std::optional<std::vector<ConnectedFile>>
connections(IndexStore& index, const std::string& path, const std::vector<NamedFiles>& projects,
            const std::vector<std::vector<std::string>>& duplicates, const std::stop_token& stop) {
    const auto center = index.record(path);
    if (!center) return std::nullopt;
    const auto leftOut = IndexStore::Content::leftOut;
    Ties ties(path);
    for (const auto& group : duplicates) {
        if (contains(group, path)) ties.add(index.records(group, stop), TieKind::duplicate, "");
    }
    for (const NamedFiles& project : projects) {
        if (!contains(project.paths, path)) continue;
        ties.add(index.records(project.paths, stop), TieKind::project, project.name);
    }
    for (const std::string& word : tellingWords(*center)) {
        SearchQuery query;
        query.text = word;
        const auto files = index.search(query, filesOfARareWord + 1, 0, leftOut, stop);
        if (files.size() <= filesOfARareWord) ties.add(files, TieKind::words, word);
    }
    const auto origin = center->sourceURL ? DownloadOrigin::from(*center->sourceURL) : std::nullopt;
    // A search for a name without a dot would look for it anywhere in an address.
    if (origin && hostOf(*origin).find('.') != std::string::npos) {
        SearchQuery query;
        query.source = hostOf(*origin);
        ties.add(index.search(query, mostOfAKind + 1, 0, leftOut, stop), TieKind::origin,
                 origin->name);
    }
    throwIfCancelled(stop);
    const std::string folder = path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
    ties.add(index.filesInFolder(folder, mostOfAKind + 1), TieKind::folder, folder);
    return std::move(ties).sorted();
}

} // namespace tovi
