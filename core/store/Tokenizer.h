#pragma once

#include "core/store/Database.h"

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

struct Fts5Tokenizer;
struct fts5_tokenizer;

namespace tovi {

/// One of SQLite's own tokenizers, as a full-text table uses it. The database outlives it.
class Tokenizer {
  public:
    enum class Purpose { document, prefix };

    /// For instance "unicode61" with {"remove_diacritics", "2"}.
    Tokenizer(Database& database, const char* name, std::vector<const char*> arguments = {});
    ~Tokenizer();
    Tokenizer(const Tokenizer&) = delete;
    Tokenizer& operator=(const Tokenizer&) = delete;

    /// Calls `each` with every token of the text until it returns false.
    void tokenize(std::string_view text, Purpose purpose,
                  const std::function<bool(std::string_view)>& each) const;

  private:
    struct Delete {
        const fts5_tokenizer* methods;
        void operator()(Fts5Tokenizer* tokenizer) const;
    };

    std::unique_ptr<fts5_tokenizer> methods_;
    std::unique_ptr<Fts5Tokenizer, Delete> tokenizer_;
};

} // namespace tovi
