#pragma once

#include <string>

#include "platform/http_client.h"

namespace corvane {

/// The name under which the answer asks to be saved: the file name parameter of its Content-Disposition
/// header (RFC 6266), else the last path component of its URL, percent-decoded, else "Unknown". Never empty.
/// A "/" in a header's name becomes "_", so that no path gets through.
std::string suggestedFileName(const HttpResponse& response);

}  // namespace corvane
