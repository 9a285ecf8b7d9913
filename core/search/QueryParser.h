#pragma once

#include "base/Date.h"
#include "core/search/SearchQuery.h"
#include "core/search/UserCalendar.h"

#include <string_view>

namespace tovi {

/// Understands phrases such as "pdfs from last week over 5 mb". Immutable; may be used from any
/// thread.
class QueryParser {
  public:
    explicit QueryParser(UserCalendar calendar = UserCalendar::current());

    /// Cuts the filters out of `text`; what is not one of them stays as words to search for.
    /// Never fails: bytes that are not UTF-8 become U+FFFD.
    SearchQuery parse(std::string_view text, Date now) const;

  private:
    UserCalendar calendar_;
};

} // namespace tovi
