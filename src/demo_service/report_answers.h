#pragma once

#include <vector>

#include "demo_service/answer.h"
#include "demo_service/behaviour.h"
#include "demo_service/demo_service.h"
#include "demo_service/report_source.h"

namespace corvane::demo {

/// The ordinary work for a request: the report, when the sign-in is one of the accounts or there are none to
/// check against; otherwise the refusal.
Behaviour ordinaryBehaviour(const ReportRequest& request, const std::vector<DemoAccount>& accounts);

/// The answer of the service that behaves so to the request.
Answer answerFor(const ReportRequest& request, const Behaviour& behaviour, ReportSource& source);

/// The answer to a form that asks for no report.
Answer incompleteFormAnswer();

}  // namespace corvane::demo
