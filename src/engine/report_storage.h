#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "engine/report_calendar.h"
#include "platform/bytes.h"
#include "platform/file_manager.h"
#include "platform/log.h"

namespace corvane {

/// Keeps the fetched reports as text files in the folder "ToImport" of the container that the host
/// application reads. Main thread only.
class ReportStorage {
  public:
    /// A missing container is fatal. Both collaborators must outlive the storage.
    ReportStorage(FileManager& fileManager, Log& log);

    /// The folder of the reports; it need not exist yet.
    const std::filesystem::path& reportPath() const { return reportPath_; }

    std::filesystem::path filePathForFilename(std::string_view filename) const;

    /// Unpacks the data and writes it, byte for byte, as a text file named after the service's file name: the
    /// part after the last "/", up to its first ".", with ".txt". Returns the path, also when the write
    /// failed, which is logged; absent when the unpacked data is no UTF-8 text, and then nothing is written.
    std::optional<std::string> createTempFile(const std::string& filename, Bytes data);

    /// Returns when all reports that were written are on disk; an error is logged. Happens by itself each
    /// time that many are waiting for it.
    void flush();

    /// Where the report of that date would be stored under the service's usual name.
    std::filesystem::path filePathForReport(Date date, SaleDataReportType type,
                                            std::string_view vendorID) const;
    bool reportExists(Date date, SaleDataReportType type, std::string_view vendorID) const;

  private:
    FileManager& fileManager_;
    Log& log_;
    std::filesystem::path reportPath_;
    int unflushedCount_ = 0;
};

}  // namespace corvane
