#pragma once

#include "app/lists/DifferenceListModel.h"
#include "app/model/ModelContext.h"
#include "app/preferences/Preferences.h"

namespace tovi {

/// Phrases kept under a name.
class SavedSearchesModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* savedSearches READ list CONSTANT)

  public:
    explicit SavedSearchesModel(ModelContext& context);

    /// Roles: id, name, query.
    RowListModel* list() { return &list_; }
    const std::vector<SavedSearch>& searches() const { return list_.rows(); }

    /// The id of the new search; empty, and nothing is saved, for a blank phrase. A blank name is
    /// taken from the phrase.
    Q_INVOKABLE QString saveSearch(const QString& name, const QString& query);
    /// Whether there was such a search.
    Q_INVOKABLE bool removeSearch(const QString& id);

    void restore(const Preferences& preferences) { list_.replace(preferences.searches); }
    void storeIn(Preferences& preferences) const { preferences.searches = list_.rows(); }

  Q_SIGNALS:
    void edited(); // to be saved

  private:
    ModelContext& context_;
    DifferenceListModel<SavedSearch> list_;
};

} // namespace tovi
