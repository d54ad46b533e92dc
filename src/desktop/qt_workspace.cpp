#include "desktop/qt_workspace.h"

#include <QDesktopServices>
#include <QUrl>

#include "desktop/qt_text.h"

namespace corvane {

void QtWorkspace::openURL(const std::string& url) {
    const QUrl parsed(toQString(url), QUrl::StrictMode);
    if (parsed.isValid() && !parsed.scheme().isEmpty())
        QDesktopServices::openUrl(parsed);
}

}  // namespace corvane
