#pragma once

namespace corvane {

/// From now on writing to a pipe or a connection that nobody reads any more is an error of that call, and no
/// signal that ends the process. The log and the HTTP client rely on it.
void ignoreBrokenPipes();

}  // namespace corvane
