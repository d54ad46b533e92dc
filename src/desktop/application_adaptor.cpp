#include "desktop/application_adaptor.h"

#include <QDBusError>
#include <utility>

namespace corvane {

namespace {

/// The caller's permission to come to the front, without which a Wayland desktop would only hint at the
/// window. The toolkit looks for it where a started program would find it.
void takeActivationToken(const QVariantMap& platformData) {
    const QString token = platformData.value(QStringLiteral("activation-token")).toString();
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

}  // namespace

ApplicationAdaptor::ApplicationAdaptor(QObject* parent, const QDBusContext& context,
                                       ApplicationCommands commands)
    : QDBusAbstractAdaptor(parent), context_(context), commands_(std::move(commands)) {}

void ApplicationAdaptor::Activate(const QVariantMap& platform_data) {
    takeActivationToken(platform_data);
    commands_.activate();
}

void ApplicationAdaptor::Open(const QStringList& /*uris*/, const QVariantMap& platform_data) {
    Activate(platform_data);
}

void ApplicationAdaptor::ActivateAction(const QString& action_name, const QVariantList& /*parameter*/,
                                        const QVariantMap& platform_data) {
    const auto action = commands_.actions.find(action_name);
    if (action == commands_.actions.end()) {
        context_.sendErrorReply(QDBusError::InvalidArgs,
                                QStringLiteral("There is no action named ") + action_name);
        return;
    }
    takeActivationToken(platform_data);
    action->second();
}

}  // namespace corvane
