#pragma once

#include "platform/property_list/property_list_value.h"

namespace corvane {

/// A dictionary with every type and the awkward values of each. plistlib_bridge.py builds the same one.
PropertyListDictionary samplePropertyList();

/// The part of it that the XML form can express.
PropertyListDictionary sampleXmlPropertyList();

}  // namespace corvane
