#include "app/application_metadata.h"

#include "platform/fatal_error.h"
#include "platform/text_format.h"

namespace corvane {

std::string QVApp::appName() const {
    return bundleText(bundleNameKey);
}

std::string QVApp::longAppName() const {
    // Translators: a name. Do not translate.
    return strings_.localizedString("Tessaly", "Long App Name");
}

std::string QVApp::appVersion() const {
    // Translators: the bare version; updates are found by comparing it. Do not translate.
    return formatText(strings_.localizedString("%@", "about"), {bundleText(bundleVersionKey)});
}

std::string QVApp::bundleText(const char* key) const {
    const auto information = mainBundle_.infoDictionary();
    if (!information)
        fatalError("the main bundle has no information dictionary");
    const auto found = information->find(key);
    const std::string* text = found == information->end() ? nullptr : found->second.get<std::string>();
    if (text == nullptr)
        fatalError(formatText("the main bundle has no text under the key %@", {key}));
    return *text;
}

}  // namespace corvane
