#pragma once

#include <QString>
#include <QWidget>

#include "platform/localized_strings.h"

namespace corvane {

/// What the General tab says about the program.
struct ProgramFacts {
    QString name;
    QString version;
    QString reportsFolder;
};

/// The General tab's content: name, version and where reports go, to read and to copy.
class GeneralTab final : public QWidget {
  public:
    GeneralTab(const ProgramFacts& facts, const LocalizedStrings& strings);
};

}  // namespace corvane
