#pragma once

#include <QDBusMessage>

namespace corvane {

/// A call of the message bus itself.
inline QDBusMessage busCall(const char* member) {
    const QString name = QStringLiteral("org.freedesktop.DBus");
    return QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/DBus"), name,
                                          QString::fromLatin1(member));
}

}  // namespace corvane
