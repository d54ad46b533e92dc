#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "demo_service/demo_service.h"
#include "end_to_end/program_at_home.h"

namespace corvane::test {

/// The program against a report service of the test's own at the address that it was built for.
class EndToEndTest : public testing::Test, protected ProgramAtHome {
  protected:
    void startService(demo::TlsVariant tls = demo::TlsVariant::Trusted);

    std::unique_ptr<demo::DemoService> service_;
};

}  // namespace corvane::test
