#include "app/update_check.h"

#include <optional>
#include <utility>

#include "app/link_url.h"
#include "app/published_update.h"
#include "app/version_components.h"
#include "platform/text_format.h"

namespace corvane {

void UpdateCheck::checkForUpdates() {
    // Until it is back on the main queue, the task only touches what outlives this object.
    with_.backgroundQueue.async(
        [this, host = with_.host, &httpClient = with_.httpClient, &mainQueue = with_.mainQueue] {
            const std::optional<PublishedUpdate> update = fetchPublishedUpdate(httpClient, host);
            if (!update)
                return;
            mainQueue.async([this, update = *update] {
                parsedUpdateFile(update.version, update.updateNotes, update.downloadLink);
            });
        });
}

void UpdateCheck::parsedUpdateFile(const std::string& version, const std::string& description,
                                   const std::string& downloadLink) {
    if (!isWorthOffering(version) || !userWantsDownload(version, description))
        return;
    if (isAbsoluteURL(downloadLink))
        with_.workspace.openURL(downloadLink);
}

bool UpdateCheck::isWorthOffering(const std::string& version) const {
    const std::string current = with_.application.appVersion();
    // The same number in another spelling is worth an alert.
    return version != current && versionComponents(version) >= versionComponents(current);
}

bool UpdateCheck::userWantsDownload(const std::string& version, const std::string& description) {
    const LocalizedStrings& strings = with_.strings;
    const AlertAnswer answer = with_.alerts.runModal(
        {.style = AlertStyle::Warning,
         .messageText =
             formatText(strings.localizedString("Update available (Version %@)", "Update check"), {version}),
         .informativeText = formatText(
             strings.localizedString(
                 "Please download the new version. It includes the following changes:\n\n%@", "Update check"),
             {description}),
         .buttons = {{.title = strings.localizedString("Download", "Update check")},
                     {.title = strings.localizedString("Cancel", "Update check"), .isCancel = true}},
         .accessory = {}});
    return answer.code == alertFirstButtonReturn;
}

}  // namespace corvane
