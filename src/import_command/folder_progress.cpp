#include "import_command/folder_progress.h"

#include <QFile>
#include <chrono>
#include <system_error>
#include <utility>

namespace corvane::import_command {
namespace {

// Several hundred files a second may come; nobody reads that fast.
constexpr std::chrono::milliseconds pauseBetweenCounts(200);

std::filesystem::path nearestExistingFolder(std::filesystem::path folder) {
    std::error_code error;
    while (!std::filesystem::is_directory(folder, error) && folder.has_relative_path())
        folder = folder.parent_path();
    return folder;
}

}  // namespace

FolderProgress::FolderProgress(std::filesystem::path folder, FolderState before, CountHandler atChange)
    : folder_(std::move(folder)), before_(std::move(before)), atChange_(std::move(atChange)) {
    countSoon_.setSingleShot(true);
    countSoon_.setInterval(pauseBetweenCounts);
    connect(&countSoon_, &QTimer::timeout, this, [this] { count(); });
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (!countSoon_.isActive())
            countSoon_.start();
    });
    watch();
}

// A folder further down may be made between the look for it and the watch on its parent: look again until
// the nearest one is watched.
void FolderProgress::watch() {
    constexpr int mostLooks = 10;
    for (int look = 0; look < mostLooks; ++look) {
        const QString path = QFile::decodeName(nearestExistingFolder(folder_).c_str());
        const QStringList watched = watcher_.directories();
        if (watched == QStringList{path})
            return;
        if (!watched.isEmpty())
            watcher_.removePaths(watched);
        if (!watcher_.addPath(path))
            return;  // only the display of the progress is lost
        countSoon_.start();
    }
}

void FolderProgress::count() {
    watch();
    const std::size_t reports = changedFiles(before_, stateOf(folder_)).size();
    if (reports != std::exchange(reports_, reports))
        atChange_(reports);
}

}  // namespace corvane::import_command
