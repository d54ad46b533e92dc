#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusContext>
#include <QStringList>
#include <QVariantMap>
#include <functional>

namespace corvane {

/// The interface org.freedesktop.Application, see dbus/org.freedesktop.Application.xml.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    /// Speaks for the parent, whose context the calls come in; `activate` brings the program to the front.
    ApplicationAdaptor(QObject* parent, const QDBusContext& context, std::function<void()> activate);

  public Q_SLOTS:
    void Activate(const QVariantMap& platform_data);
    /// The program opens no files, so this only activates it.
    void Open(const QStringList& uris, const QVariantMap& platform_data);
    /// There are no actions: always an error.
    void ActivateAction(const QString& action_name, const QVariantList& parameter,
                        const QVariantMap& platform_data);

  private:
    const QDBusContext& context_;
    std::function<void()> activate_;
};

}  // namespace corvane
