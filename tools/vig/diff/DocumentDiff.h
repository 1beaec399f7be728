#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/decide/Junction.h"
#include "tools/vig/decide/Rehearsal.h"
#include "tools/vig/diff/MachineDiff.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// It tells what became of one configuration, which may be in one of the documents alone.
struct ConfigDiff {
    enum class Status {
        Unchanged,  // also if it is new or gone, and does nothing
        Changed,
        Undecided
    };

    std::int64_t id;
    std::size_t occurrence;                    // of configurations with the id, from 0: they are paired in their order
    Both<std::optional<std::size_t>> indices;  // in the documents
    MachineDiff diff;
    Both<Account> accounts = {};  // of the library, if they differ: of a machine that is in neither there is none

    Status status() const;
    bool isOnlyIn(std::size_t side) const { return !indices[1 - side]; }
};

struct DocumentDiff {
    std::vector<ConfigDiff> configs = {};  // in the order of the new document, and then those that are gone
    std::string fault = {};                // what was decided and the library does not do; nothing else counts then
};

// Compares two documents by what their machines do. Where these differ, the library has done so before it is said. Used
// on one thread.
DocumentDiff compare(const Both<const DocumentModel*>& documents, Differ::States states,
                     const Surroundings& surroundings);

}  // namespace Brenta::OS::VIG::Tool
