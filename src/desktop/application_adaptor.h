#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusContext>
#include <QStringList>
#include <QVariantMap>

#include "desktop/application_commands.h"

namespace corvane {

/// The interface org.freedesktop.Application, see dbus/org.freedesktop.Application.xml.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    /// Speaks for the parent, whose context the calls come in.
    ApplicationAdaptor(QObject* parent, const QDBusContext& context, ApplicationCommands commands);

  public Q_SLOTS:
    void Activate(const QVariantMap& platform_data);
    /// The program opens no files, so this only activates it.
    void Open(const QStringList& uris, const QVariantMap& platform_data);
    /// The caller gets an error when there is no such action.
    void ActivateAction(const QString& action_name, const QVariantList& parameter,
                        const QVariantMap& platform_data);

  private:
    const QDBusContext& context_;
    const ApplicationCommands commands_;
};

}  // namespace corvane
