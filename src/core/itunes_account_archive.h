#pragma once

#include <optional>

#include "core/itunes_account.h"
#include "platform/bytes.h"

namespace corvane {

/// The accounts as a keyed archive, the form in which the settings of a Mac hold them: a binary property list
/// whose root is an array of objects of the class "Corvane.ITunesAccount". Passwords stand in it in clear. A
/// record that is in the list twice is written once. No element of the list is null.
Bytes archivedAccountList(const ITunesAccountList& accounts);

/// Reads such an archive, whoever wrote it, also in the XML form. A field that is missing, nil or not a text
/// is absent. Absent as a whole when the bytes are not an archive, its root is not an array, an element is
/// not a record of that class, or it holds more than maximumKeyedArchiveContent. Elements that are one object
/// in the archive are one record in the list.
std::optional<ITunesAccountList> unarchivedAccountList(ByteView archive);

}  // namespace corvane
