#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <system_error>

#include "platform/clock.h"
#include "platform/key_value_store.h"
#include "platform/log.h"

namespace corvane {

/// A domain in one property-list file, written as a binary one that only the user may read, in a folder that
/// only the user may enter. Main thread only.
///
/// A file that cannot be read, or is no property list of a dictionary, is never overwritten: it is moved
/// aside as `<file>.unreadable-<UTC time>`, a line is logged, and the domain goes on with what is known of
/// it. Where the file cannot be moved either, nothing is written until that changes.
class PropertyListFileStore final : public KeyValueStore {
  public:
    /// Reads the file; a missing one is an empty domain. `log` and `clock` must outlive the store.
    PropertyListFileStore(std::filesystem::path path, Log& log, const Clock& clock);

    std::optional<PropertyListValue> objectForKey(std::string_view key) const override;
    void setObject(std::string_view key, std::optional<PropertyListValue> value) override;

    /// Reads the file again and replaces it by one in which the keys assigned since the last success have
    /// their new values; all other keys are as other programs have left them. Without such keys the file is
    /// only read. When the file has gone, it is written with all that was known. A failed write is logged,
    /// and leaves the old file as it was.
    bool synchronize() override;

  private:
    /// False when a file is there that could be neither read nor moved.
    bool readFile();
    bool moveAside();
    bool writeFile(const PropertyListDictionary& domain);
    std::error_code writeContent(ByteView content);

    std::filesystem::path path_;
    Log& log_;
    const Clock& clock_;
    PropertyListDictionary stored_;  ///< what the file held when it was last read or written
    std::map<std::string, std::optional<PropertyListValue>, std::less<>> changes_;  ///< not yet written
    bool isBlocked_ = false;  ///< the unreadable file is still in its place, and that has been logged
};

}  // namespace corvane
