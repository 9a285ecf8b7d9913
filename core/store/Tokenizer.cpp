#include "core/store/Tokenizer.h"

#include "core/records/IntelligenceError.h"

#include <string>

#include <sqlite3.h>

namespace tovi {
namespace {

fts5_api& fullTextApi(Database& database) {
    fts5_api* api = nullptr;
    Statement statement(database, "SELECT fts5(?)");
    statement.bindPointer(&api, "fts5_api_ptr").step();
    if (api == nullptr) throw IntelligenceError::database("no such module: fts5");
    return *api;
}

} // namespace

void Tokenizer::Delete::operator()(Fts5Tokenizer* tokenizer) const {
    methods->xDelete(tokenizer);
}

Tokenizer::Tokenizer(Database& database, const char* name, std::vector<const char*> arguments)
    : methods_(std::make_unique<fts5_tokenizer>()), tokenizer_(nullptr, {methods_.get()}) {
    fts5_api& api = fullTextApi(database);
    void* context = nullptr;
    Fts5Tokenizer* made = nullptr;
    if (api.xFindTokenizer(&api, name, &context, methods_.get()) != SQLITE_OK ||
        methods_->xCreate(context, arguments.data(), static_cast<int>(arguments.size()), &made) !=
            SQLITE_OK) {
        throw IntelligenceError::database(std::string("no such tokenizer: ") + name);
    }
    tokenizer_.reset(made);
}

Tokenizer::~Tokenizer() = default;

void Tokenizer::tokenize(std::string_view text, Purpose purpose,
                         const std::function<bool(std::string_view)>& each) const {
    const auto onToken = [](void* context, int, const char* token, int length, int, int) {
        const auto& call = *static_cast<const std::function<bool(std::string_view)>*>(context);
        return call({token, static_cast<std::size_t>(length)}) ? SQLITE_OK : SQLITE_DONE;
    };
    const int flags = purpose == Purpose::document ? FTS5_TOKENIZE_DOCUMENT
                                                   : FTS5_TOKENIZE_QUERY | FTS5_TOKENIZE_PREFIX;
    auto* context = const_cast<std::function<bool(std::string_view)>*>(&each);
    methods_->xTokenize(tokenizer_.get(), context, flags, text.data(),
                        static_cast<int>(text.size()), onToken);
}

} // namespace tovi
