#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <cstddef>
#include <filesystem>
#include <functional>

#include "import_command/report_folder.h"

namespace corvane::import_command {

/// Tells how many reports have come into a folder since an earlier state. The folder may be made later.
/// Main thread only.
class FolderProgress : public QObject {
  public:
    using CountHandler = std::function<void(std::size_t reports)>;

    /// The handler is called a little after each change of the number, as long as this object lives.
    FolderProgress(std::filesystem::path folder, FolderState before, CountHandler atChange);

  private:
    void watch();
    void count();

    std::filesystem::path folder_;
    FolderState before_;
    CountHandler atChange_;
    std::size_t reports_ = 0;
    QFileSystemWatcher watcher_;
    QTimer countSoon_;
};

}  // namespace corvane::import_command
