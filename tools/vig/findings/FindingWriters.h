#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "tools/vig/findings/Findings.h"
#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

enum class FindingFormat { Text, Json, Sarif };

struct FindingCounts {
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t files = 0;
    std::size_t undecided = 0;  // configurations of which not everything could be decided
};

// Writes what is found in rule documents.
class FindingWriter {
  public:
    virtual ~FindingWriter() = default;

    // `findings` are those of one file.
    virtual void write(const SourceText& source, const Findings& findings) = 0;
    virtual void end(const FindingCounts& counts) = 0;
};

// This writer is for people, as compilers print: the place, the message, the line with a mark under the place; then the
// place as a JSON path and what would mend it; with `verbose`, also the events that show it. It is `coloured` or not,
// as a terminal shows it. `output` must outlive each of the writers.
std::unique_ptr<FindingWriter> textFindings(Output& output, bool coloured, bool verbose);

// Return what that writer tells of a document, and why the library refuses it. REQUIRES: it does.
std::string textOf(const SourceText& source, const Findings& findings);
std::string refusalText(const DocumentText& document);

// This writer is for programs: one object with a list of the findings. Columns count bytes.
std::unique_ptr<FindingWriter> jsonFindings(Output& output);

// Says of what warnings may be missing. REQUIRES: something could not be decided.
std::string gapsIn(const Findings& findings);

// Returns the witness as JSON: {"events":[…],"draws":[…]}.
std::string jsonOf(const Witness& witness);

// This writer makes a SARIF 2.1.0 log, for tools that show findings beside the text. Columns count characters.
std::unique_ptr<FindingWriter> sarifFindings(Output& output);

}  // namespace Brenta::OS::VIG::Tool
