#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// What of a rule document any run has reached: transitions that fired, filters that were true and that were false.
class Coverage final : public Trace {
  public:
    struct Share {
        std::size_t reached = 0;
        std::size_t all = 0;

        // 100 if there is nothing to reach.
        double percent() const {
            return all == 0 ? 100.0 : 100.0 * static_cast<double>(reached) / static_cast<double>(all);
        }
    };

    Share transitions() const;

    // Each filter has two: true and false.
    Share filterOutcomes() const;

    // Both together.
    Share total() const;

    // "rules.json:12:9: never fired: start -> end on Test [configs[0]…]", in document order.
    std::vector<std::string> gaps() const;

    void loaded(const TracedDocument& document) override;
    void step(const Step& step) override;

  private:
    struct Filter {
        std::string condition;
        std::string place;
        std::string path;
        bool wasTrue = false;
        bool wasFalse = false;
    };

    struct Transition {
        std::string description;
        std::string place;
        std::string path;
        bool fired = false;
        std::vector<Filter> filters = {};
    };

    std::string text;  // of the document
    std::vector<std::vector<Transition>> configs;
};

}  // namespace Brenta::OS::VIG::Tool
