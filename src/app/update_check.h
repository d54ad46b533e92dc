#pragma once

#include <string>

#include "app/application_metadata.h"
#include "platform/alerts.h"
#include "platform/background_queue.h"
#include "platform/http_client.h"
#include "platform/localized_strings.h"
#include "platform/main_queue.h"
#include "platform/workspace.h"

namespace corvane {

/// Asks the maker's update feed for a newer version and offers its download. It downloads nothing itself and
/// remembers nothing; what goes wrong goes unsaid. Main thread only.
class UpdateCheck {
  public:
    /// All of them outlive the check, and the HTTP client and the main queue the background queue's tasks as
    /// well.
    struct Collaborators {
        std::string host;  ///< of the update feed, with ":port" where it is not the usual one
        HttpClient& httpClient;
        BackgroundQueue& backgroundQueue;
        MainQueue& mainQueue;
        const QVApp& application;
        Alerts& alerts;
        const LocalizedStrings& strings;
        Workspace& workspace;
    };

    /// The check outlives the tasks of the main queue.
    explicit UpdateCheck(Collaborators collaborators) : with_(std::move(collaborators)) {}

    UpdateCheck(const UpdateCheck&) = delete;
    UpdateCheck& operator=(const UpdateCheck&) = delete;

    /// Fetches the feed on the background queue and returns at once. Each of several checks at the same time
    /// shows its own alert, one after the other.
    void checkForUpdates();

    /// Offers the download unless the published version is older than this one, or spelled the same. A link
    /// that is no URL opens nothing.
    void parsedUpdateFile(const std::string& version, const std::string& description,
                          const std::string& downloadLink);

  private:
    bool isWorthOffering(const std::string& version) const;
    bool userWantsDownload(const std::string& version, const std::string& description);

    const Collaborators with_;
};

}  // namespace corvane
