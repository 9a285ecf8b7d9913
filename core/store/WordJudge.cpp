#include "core/store/WordJudge.h"

#include "base/Text.h"
#include "core/records/IntelligenceError.h"

#include <algorithm>
#include <deque>

#include <sqlite3.h>

namespace tovi {
namespace {

// As in the table files_fts.
constexpr const char* tokenizerName = "unicode61";
const char* tokenizerArguments[] = {"remove_diacritics", "2"};

fts5_api& fullTextApi(Database& database) {
    fts5_api* api = nullptr;
    Statement statement(database, "SELECT fts5(?)");
    statement.bindPointer(&api, "fts5_api_ptr").step();
    if (api == nullptr) throw IntelligenceError::database("no such module: fts5");
    return *api;
}

bool isRow(const std::deque<std::string>& seen, const std::vector<std::string>& tokens) {
    if (seen.size() < tokens.size()) return false;
    const auto start = seen.end() - static_cast<std::ptrdiff_t>(tokens.size());
    return std::equal(tokens.begin(), tokens.end() - 1, start) &&
           seen.back().starts_with(tokens.back());
}

} // namespace

void WordJudge::Delete::operator()(Fts5Tokenizer* tokenizer) const {
    methods->xDelete(tokenizer);
}

WordJudge::WordJudge(Database& database, std::string_view phrase)
    : methods_(std::make_unique<fts5_tokenizer>()), tokenizer_(nullptr, {methods_.get()}) {
    fts5_api& api = fullTextApi(database);
    void* context = nullptr;
    Fts5Tokenizer* made = nullptr;
    if (api.xFindTokenizer(&api, tokenizerName, &context, methods_.get()) != SQLITE_OK ||
        methods_->xCreate(context, tokenizerArguments, std::size(tokenizerArguments), &made) !=
            SQLITE_OK) {
        throw IntelligenceError::database("no such tokenizer: unicode61");
    }
    tokenizer_.reset(made);

    for (const std::string_view word : splitWhitespace(phrase))
        words_.emplace_back(word);
    std::stable_sort(words_.begin(), words_.end(), [](const auto& left, const auto& right) {
        return left.size() > right.size();
    });
    std::erase_if(words_, [&](const std::string& word) {
        Tokens tokens;
        tokenize(word, FTS5_TOKENIZE_QUERY | FTS5_TOKENIZE_PREFIX, [&](std::string_view token) {
            tokens.emplace_back(token);
            return true;
        });
        if (tokens.empty()) return true;
        tokens_.push_back(std::move(tokens));
        return false;
    });
}

WordJudge::~WordJudge() = default;

template <typename Each>
void WordJudge::tokenize(std::string_view text, int purpose, Each each) const {
    const auto onToken = [](void* context, int, const char* token, int length, int, int) {
        const bool goesOn =
            (*static_cast<Each*>(context))({token, static_cast<std::size_t>(length)});
        return goesOn ? SQLITE_OK : SQLITE_DONE;
    };
    methods_->xTokenize(tokenizer_.get(), &each, purpose, text.data(),
                        static_cast<int>(text.size()), onToken);
}

void WordJudge::lookFor(std::string_view text, std::vector<bool>& found,
                        std::size_t& missing) const {
    std::size_t longest = 0;
    for (const Tokens& tokens : tokens_)
        longest = std::max(longest, tokens.size());
    std::deque<std::string> seen;
    tokenize(text, FTS5_TOKENIZE_DOCUMENT, [&](std::string_view token) {
        seen.emplace_back(token);
        if (seen.size() > longest) seen.pop_front();
        for (std::size_t word = 0; word < tokens_.size(); ++word) {
            if (found[word] || !isRow(seen, tokens_[word])) continue;
            found[word] = true;
            --missing;
        }
        return missing > 0;
    });
}

bool WordJudge::accepts(std::string_view name, std::string_view content) const {
    std::vector<bool> found(tokens_.size());
    std::size_t missing = tokens_.size();
    lookFor(name, found, missing);
    if (missing > 0) lookFor(content, found, missing);
    return missing == 0;
}

} // namespace tovi
