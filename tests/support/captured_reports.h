#pragma once

#include "core/common/callback.h"
#include "core/diagnostics/reporter.h"

#include <string>
#include <string_view>
#include <vector>

namespace pellux::test {

/// A fresh reporter for one test, whose messages are kept in place of being shown.
class CapturedReports {
public:
    CapturedReports() {
        reporter() = {};
        reporter().output = [](void* self, std::string_view text) {
            from_context<CapturedReports>(self).said_.emplace_back(text);
        };
        reporter().output_context = this;
    }
    ~CapturedReports() { reporter() = {}; }
    CapturedReports(const CapturedReports&) = delete;
    CapturedReports& operator=(const CapturedReports&) = delete;

protected:
    std::vector<std::string> said_;
};

} // namespace pellux::test
