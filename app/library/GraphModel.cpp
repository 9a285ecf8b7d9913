#include "app/library/GraphModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"

#include <QStringList>
#include <filesystem>

namespace tovi {
namespace {

QString nameOf(TieKind kind) {
    switch (kind) {
    case TieKind::duplicate:
        return QStringLiteral("duplicate");
    case TieKind::project:
        return QStringLiteral("project");
    case TieKind::words:
        return QStringLiteral("words");
    case TieKind::origin:
        return QStringLiteral("origin");
    case TieKind::folder:
        return QStringLiteral("folder");
    }
    return {};
}

QString describe(const Tie& tie) {
    switch (tie.kind) {
    case TieKind::duplicate:
        return GraphModel::tr("the same content");
    case TieKind::project:
        return GraphModel::tr("in the space %1").arg(toQt(tie.name));
    case TieKind::words:
        return GraphModel::tr("both say %1").arg(toQt(tie.name));
    case TieKind::origin:
        return GraphModel::tr("both from %1").arg(toQt(tie.name));
    case TieKind::folder:
        return GraphModel::tr("in the same folder");
    }
    return {};
}

QString tieOf(const GraphNode& node) {
    QStringList ties;
    for (const Tie& tie : node.ties)
        ties.append(describe(tie));
    return ties.join(QStringLiteral(" · "));
}

QString kindOf(const GraphNode& node) {
    return node.ties.empty() ? QString() : nameOf(node.ties.front().kind);
}

QString folderOf(const GraphNode& node) {
    return toQt(std::filesystem::path(node.file.path).parent_path().string());
}

} // namespace

GraphModel::GraphModel(Executor& executor, std::function<Groups()> groups)
    : executor_(executor),
      groups_(std::move(groups)),
      nodes_([](const GraphNode& node) { return node.file.path; },
             {{"path", [](const GraphNode& node) { return toQt(node.file.path); }},
              {"name", [](const GraphNode& node) { return toQt(node.file.name); }},
              {"symbol", [](const GraphNode& node) { return toQt(symbol(node.file.kind)); }},
              {"folder", folderOf},
              {"depth", [](const GraphNode& node) { return node.depth; }},
              {"parentRow", [](const GraphNode& node) { return static_cast<int>(node.parent); }},
              {"kind", kindOf},
              {"tie", tieOf},
              {"across", [](const GraphNode& node) { return node.x; }},
              {"down", [](const GraphNode& node) { return node.y; }}}) {}

void GraphModel::setIndex(std::shared_ptr<IndexStore> index) {
    generation_.cancel();
    index_ = std::move(index);
    isLoading_ = false;
    error_.clear();
    center_.clear();
    nodes_.replace({});
    Q_EMIT changed();
}

QString GraphModel::centerName() const {
    return toQt(lastPathComponent(fromQt(center_)));
}

void GraphModel::setDepth(int depth) {
    if (depth == depth_ || depth < 1 || depth > 2) return;
    depth_ = depth;
    Q_EMIT changed();
    refresh();
}

void GraphModel::show(const QString& path) {
    center_ = path;
    Q_EMIT changed();
    refresh();
}

void GraphModel::showAny() {
    if (!index_ || !center_.isEmpty()) return;
    isLoading_ = true;
    Q_EMIT changed();
    runLatest(
        executor_, this, generation_,
        [index = index_](const std::stop_token& stop) {
            return index->search({}, 1, 0, IndexStore::Content::leftOut, stop);
        },
        [this](const Outcome<std::vector<FileRecord>>& newest) {
            if (newest && !newest.value->empty()) return show(toQt(newest.value->front().path));
            isLoading_ = false;
            error_ = toQt(newest.error);
            Q_EMIT changed();
        });
}

void GraphModel::refresh() {
    if (!index_ || center_.isEmpty()) return;
    isLoading_ = true;
    Q_EMIT changed();
    runLatest(
        executor_, this, generation_,
        [index = index_, path = fromQt(center_), depth = depth_,
         groups = groups_()](const std::stop_token& stop) {
            const auto duplicates =
                groups.duplicates ? groups.duplicates() : std::vector<std::vector<std::string>>();
            return connectionGraph(*index, path, depth, groups.projects, duplicates, stop);
        },
        [this](Outcome<std::optional<std::vector<GraphNode>>> outcome) {
            isLoading_ = false;
            error_ = toQt(outcome.error);
            if (outcome) {
                auto& nodes = *outcome.value;
                nodes_.replace(nodes ? *std::move(nodes) : std::vector<GraphNode>());
                if (!nodes) center_.clear(); // no longer in the index
            }
            Q_EMIT changed();
        });
}

} // namespace tovi
