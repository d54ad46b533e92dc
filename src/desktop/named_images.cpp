#include "desktop/named_images.h"

#include <QString>
#include <map>

// A static library's resources are there only once they are asked for.
static void registerIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace corvane {

namespace {

struct Image {
    const char* themeName;
    const char* fallback;
};

const std::map<std::string, Image>& images() {
    static const std::map<std::string, Image> all{
        {"NSImageNamePreferencesGeneral", {"preferences-system", ":/corvane/icons/general.svg"}},
        {"NSImageNameUserAccounts", {"system-users", ":/corvane/icons/accounts.svg"}},
        {"NSImageNameAdvanced", {"applications-system", ":/corvane/icons/advanced.svg"}},
    };
    return all;
}

QIcon fromTheme(const char* themeName, const char* fallback) {
    registerIcons();
    const QIcon themed = QIcon::fromTheme(QString::fromLatin1(themeName));
    return themed.availableSizes().isEmpty() ? QIcon(QString::fromLatin1(fallback)) : themed;
}

}  // namespace

QIcon namedImage(const std::string& name) {
    const auto image = images().find(name);
    return image == images().end() ? QIcon() : fromTheme(image->second.themeName, image->second.fallback);
}

QIcon programIcon() {
    registerIcons();
    return QIcon(QStringLiteral(":/corvane/icons/com.quessartolvinger.Corvane.svg"));
}

}  // namespace corvane
