#pragma once

#include <QIcon>
#include <string>

namespace corvane {

/// The image of that platform name, from the desktop's icon theme where it has one, else our own; empty for a
/// name that is not ours.
QIcon namedImage(const std::string& name);

/// The program's own icon.
QIcon programIcon();

}  // namespace corvane
