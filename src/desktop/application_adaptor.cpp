#include "desktop/application_adaptor.h"

#include <QDBusError>
#include <utility>

namespace corvane {

ApplicationAdaptor::ApplicationAdaptor(QObject* parent, const QDBusContext& context,
                                       std::function<void()> activate)
    : QDBusAbstractAdaptor(parent), context_(context), activate_(std::move(activate)) {}

void ApplicationAdaptor::Activate(const QVariantMap& /*platform_data*/) {
    activate_();
}

void ApplicationAdaptor::Open(const QStringList& /*uris*/, const QVariantMap& /*platform_data*/) {
    activate_();
}

void ApplicationAdaptor::ActivateAction(const QString& action_name, const QVariantList& /*parameter*/,
                                        const QVariantMap& /*platform_data*/) {
    context_.sendErrorReply(QDBusError::InvalidArgs,
                            QStringLiteral("There is no action named ") + action_name);
}

}  // namespace corvane
