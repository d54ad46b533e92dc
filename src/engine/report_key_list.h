#pragma once

#include <string>
#include <unordered_set>
#include <vector>

namespace corvane {

/// The keys of fetched reports in the order in which they came, and a quick answer to whether one is there
/// already.
class ReportKeyList {
  public:
    /// Starts from a stored list, which is kept as it is, repeated keys included.
    explicit ReportKeyList(std::vector<std::string> keys);

    /// Appends the key unless it is there already.
    void add(const std::string& key);

    const std::vector<std::string>& keys() const { return keys_; }

  private:
    std::vector<std::string> keys_;
    std::unordered_set<std::string> known_;
};

}  // namespace corvane
