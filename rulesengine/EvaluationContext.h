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
    // A plain context has no attributes, and no timeout is armed.
    EvaluationContext();
    EvaluationContext(const EvaluationContext&) = delete;
    EvaluationContext& operator=(const EvaluationContext&) = delete;

    virtual ~EvaluationContext();

    // Returns the unsigned integer of that name, or nothing; filters cannot compare it. Names are compared byte by
    // byte.
    virtual std::optional<std::uint64_t> getUint64Attr(std::string_view key) const;

    // Returns the signed integer of that name, or nothing.
    virtual std::optional<std::int64_t> getInt64Attr(std::string_view key) const;

    // Returns the floating-point number of that name, or nothing.
    virtual std::optional<double> getDoubleAttr(std::string_view key) const;

    // Returns the truth value of that name, or nothing; filters cannot compare it.
    virtual std::optional<bool> getBoolAttr(std::string_view key) const;

    // Returns the text of that name. An empty view means that the attribute is absent. The view must stay valid until
    // the context changes.
    virtual std::string_view getStringAttr(std::string_view key) const;

    // The set holds the identifiers of the armed timeouts. The engine only ever removes from it; who arms a timeout
    // puts it in.
    std::set<std::int64_t> timeoutIds;
};

}  // namespace Brenta::OS::RulesEngine
