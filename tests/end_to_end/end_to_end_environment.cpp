#include "end_to_end/end_to_end_environment.h"

#include <string>
#include <utility>

namespace corvane::test {

void EndToEndTest::startService(demo::TlsVariant tls) {
    std::string problem;
    demo::DemoServiceOptions options;
    options.tls = tls;
    options.port = TEST_SERVICE_PORT;
    options.updatePort = TEST_UPDATE_PORT;
    service_ = demo::DemoService::start(std::move(options), problem);
    ASSERT_TRUE(service_) << problem;
    ASSERT_TRUE(service_->writeCaFile(TEST_CA_FILE));
}

}  // namespace corvane::test
