#include "core/library/Projects.h"

#include <set>

namespace tovi {

ProjectFiles projectFiles(IndexStore& index, const std::vector<std::string>& paths,
                          const std::stop_token& stop) {
    std::set<std::string> missing(paths.begin(), paths.end());
    ProjectFiles project;
    project.files = index.records({missing.begin(), missing.end()}, stop);
    for (const FileRecord& file : project.files)
        missing.erase(file.path);
    project.missing.assign(missing.begin(), missing.end());
    project.summary = summarize(project.files);
    sortFiles(project.files, LibraryOrder::newest);
    return project;
}

} // namespace tovi
