#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string_view>

#include "os/Export.h"

namespace Brenta::OS::RulesEngine {

// A context is what a machine knows besides the event: attributes that filters consult when the event lacks them, and
// the armed timeouts. A client derives from it to expose machine-wide attributes; the base has none.
//
// Each machine owns its context exclusively. Filters read it and actions may change it, always on the thread
// that drives the machine. The order of the virtual operations is part of the binary interface.
class VIG_EXPORT EvaluationContext {
  public:
    EvaluationContext();
    EvaluationContext(const EvaluationContext&) = delete;
    EvaluationContext& operator=(const EvaluationContext&) = delete;

    virtual ~EvaluationContext();

    virtual std::optional<std::uint64_t> getUint64Attr(std::string_view key) const;
    virtual std::optional<std::int64_t> getInt64Attr(std::string_view key) const;
    virtual std::optional<double> getDoubleAttr(std::string_view key) const;
    virtual std::optional<bool> getBoolAttr(std::string_view key) const;

    // An empty view means that the attribute is absent. The view must stay valid until the context changes.
    virtual std::string_view getStringAttr(std::string_view key) const;

    // The set holds the armed timeouts. The engine only ever removes from it.
    std::set<std::int64_t> timeoutIds;
};

}  // namespace Brenta::OS::RulesEngine
