#include "app/model/SavedSearchesModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"

namespace tovi {

SavedSearchesModel::SavedSearchesModel(ModelContext& context)
    : context_(context),
      list_([](const SavedSearch& search) { return search.id.string(); },
            {{"id", [](const SavedSearch& search) { return toQt(search.id.string()); }},
             {"name", [](const SavedSearch& search) { return toQt(search.name); }},
             {"query", [](const SavedSearch& search) { return toQt(search.query); }}}) {}

QString SavedSearchesModel::saveSearch(const QString& name, const QString& query) {
    const std::string phrase = fromQt(query);
    if (!context_.isLoaded || trimmed(phrase).empty()) return {};
    const std::string given = fromQt(name);
    const std::string_view chosen = trimmed(trimmed(given).empty() ? phrase : given);
    const SavedSearch search{Uuid::random(), std::string(chosen), phrase};
    list_.append({search});
    Q_EMIT edited();
    return toQt(search.id.string());
}

bool SavedSearchesModel::removeSearch(const QString& id) {
    std::vector<SavedSearch> searches = list_.rows();
    const int row = list_.rowOf(id);
    if (row < 0 || !context_.isLoaded) return false;
    searches.erase(searches.begin() + row);
    list_.replace(std::move(searches));
    Q_EMIT edited();
    return true;
}

} // namespace tovi
