#include "engine/report_key_list.h"

#include <utility>

namespace corvane {

ReportKeyList::ReportKeyList(std::vector<std::string> keys)
    : keys_(std::move(keys)), known_(keys_.begin(), keys_.end()) {}

void ReportKeyList::add(const std::string& key) {
    if (known_.insert(key).second)
        keys_.push_back(key);
}

}  // namespace corvane
