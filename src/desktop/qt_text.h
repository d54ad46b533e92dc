#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace corvane {

inline QString toQString(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

inline std::string toUtf8(const QString& text) {
    return text.toStdString();
}

/// A label for a button or menu entry that shows its text as it stands, ampersands included.
inline QString withoutMnemonic(std::string_view utf8) {
    return toQString(utf8).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

}  // namespace corvane
