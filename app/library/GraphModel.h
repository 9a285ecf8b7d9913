#pragma once

#include "app/background/Background.h"
#include "app/lists/DifferenceListModel.h"
#include "core/library/ConnectionGraph.h"

#include <QVariantMap>
#include <functional>
#include <memory>

namespace tovi {

/// What one file is connected with: the nodes of a graph and, the same rows, of a list.
class GraphModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* nodes READ nodes CONSTANT)
    Q_PROPERTY(QString center READ center NOTIFY changed)
    Q_PROPERTY(QString centerName READ centerName NOTIFY changed)
    Q_PROPERTY(int depth READ depth WRITE setDepth NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)

  public:
    /// What the index does not know: projects, and the paths of the duplicates found so far; these
    /// are asked for away from the main thread, if there are any.
    struct Groups {
        std::vector<NamedFiles> projects;
        std::function<std::vector<std::vector<std::string>>()> duplicates;
    };

    /// `groups` is called on the main thread.
    GraphModel(Executor& executor, std::function<Groups()> groups);

    /// The index to read from now on; none while it is closed.
    void setIndex(std::shared_ptr<IndexStore> index);

    /// The middle first. Roles: path, name, symbol, folder, depth, parentRow (the one it is tied
    /// to), kind (of the strongest tie: "duplicate", "project", "words", "origin" or "folder"), tie
    /// (all of them in words), across and down (from -1 to 1).
    RowListModel* nodes() { return &nodes_; }
    const std::vector<GraphNode>& rows() const { return nodes_.rows(); }

    /// The path of the file in the middle; empty before one is chosen.
    QString center() const { return center_; }
    QString centerName() const;
    int depth() const { return depth_; }
    void setDepth(int depth); // 1 or 2
    bool isLoading() const { return isLoading_; }
    QString error() const { return error_; }

    Q_INVOKABLE void show(const QString& path);
    /// The newest file of the library, if none is in the middle yet.
    Q_INVOKABLE void showAny();
    Q_INVOKABLE void refresh();

  Q_SIGNALS:
    void changed();

  private:
    Executor& executor_;
    std::function<Groups()> groups_;
    std::shared_ptr<IndexStore> index_;
    DifferenceListModel<GraphNode> nodes_;
    QString center_;
    QString error_;
    int depth_ = 1;
    bool isLoading_ = false;
    Generation generation_;
};

} // namespace tovi
