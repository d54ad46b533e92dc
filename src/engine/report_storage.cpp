#include "engine/report_storage.h"

#include <utf8/checked.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "core/gzip_codec.h"
#include "platform/fatal_error.h"
#include "platform/text_format.h"

namespace corvane {

namespace {

/// Few enough that a flush of them does not keep the windows waiting.
constexpr int mostUnflushed = 64;

std::filesystem::path reportFolder(FileManager& fileManager) {
    const auto container = fileManager.containerForApplicationGroup(applicationGroupIdentifier);
    if (!container)
        fatalError("the shared folder of the application group is missing");
    return *container / "ToImport";
}

std::string storedName(std::string_view filename) {
    const std::size_t slash = filename.rfind('/');
    const std::string_view lastPart = slash == std::string_view::npos ? filename : filename.substr(slash + 1);
    return std::string(lastPart.substr(0, lastPart.find('.'))) + ".txt";
}

bool isAscii(std::uint8_t byte) {
    return byte < 0x80;
}

ByteView withoutLeadingAscii(ByteView text) {
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::uint64_t word = 0;
    for (; text.size() >= sizeof word; text = text.subspan(sizeof word)) {
        std::memcpy(&word, text.data(), sizeof word);
        if ((word & highBits) != 0)
            break;
    }
    return {std::find_if_not(text.begin(), text.end(), isAscii), text.end()};
}

/// Reports are plain ASCII but for a name here and there, so only what stands between is looked at closely.
bool isUtf8(ByteView text) {
    while (!(text = withoutLeadingAscii(text)).empty()) {
        const auto nextAscii = std::find_if(text.begin(), text.end(), isAscii);
        if (!utf8::is_valid(text.begin(), nextAscii))
            return false;
        text = {nextAscii, text.end()};
    }
    return true;
}

}  // namespace

ReportStorage::ReportStorage(FileManager& fileManager, Log& log)
    : fileManager_(fileManager), log_(log), reportPath_(reportFolder(fileManager)) {}

std::filesystem::path ReportStorage::filePathForFilename(std::string_view filename) const {
    return reportPath_ / filename;
}

std::optional<std::string> ReportStorage::createTempFile(const std::string& filename, Bytes data) {
    log_.log(formatText("result:%@", {filename}));
    const std::optional<Bytes> text = gunzippedData(std::move(data));
    if (!text || !isUtf8(*text))
        return std::nullopt;

    const std::filesystem::path path = filePathForFilename(storedName(filename));
    log_.log(formatText("save to:%@", {path.native()}));
    const std::filesystem::path folder = path.parent_path();
    if (!fileManager_.fileExistsAtPath(folder))
        fileManager_.createDirectoryAtPath(folder);  // without the folder the write fails, and says why
    if (const std::error_code error = fileManager_.writeAtomically(path, *text))
        log_.log(formatText("ERROR while saving report:%@", {error.message()}));
    else if (++unflushedCount_ == mostUnflushed)
        flush();
    return path.native();
}

void ReportStorage::flush() {
    if (std::exchange(unflushedCount_, 0) == 0)
        return;
    if (const std::error_code error = fileManager_.synchronize(reportPath_))
        log_.log(formatText("ERROR while saving report:%@", {error.message()}));
}

std::filesystem::path ReportStorage::filePathForReport(Date date, SaleDataReportType type,
                                                       std::string_view vendorID) const {
    return filePathForFilename(reportFileName(reportKey(date, type), type, vendorID));
}

bool ReportStorage::reportExists(Date date, SaleDataReportType type, std::string_view vendorID) const {
    return fileManager_.fileExistsAtPath(filePathForReport(date, type, vendorID));
}

}  // namespace corvane
