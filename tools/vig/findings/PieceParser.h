#pragma once

#include <host/Host.h>
#include <json/value.h>

#include <map>
#include <optional>
#include <string>

#include "tools/vig/findings/DocumentShape.h"
#include "vig/parsers/VIGParseError.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// It says why the library refuses something.
struct Refusal {
    VIGParseError error;
    std::string message;  // its first line in the log, or the meaning of the error where it logs nothing
};

// Hands pieces of rule documents to the library's own parsers, each with as much of a document around it as they need.
// While it lives, it takes what the thread that made it logs, and is used there.
class PieceParser {
  public:
    enum class Names {
        Registered,  // events and actions are looked up in the registry
        Accepted,    // those of Shape::accepted are the only ones, with any one parameter
    };

    // The registry must outlive it.
    explicit PieceParser(const VIGParserConfig& names);
    PieceParser(const PieceParser&) = delete;
    PieceParser& operator=(const PieceParser&) = delete;

    // Returns nothing if the library accepts the piece, which stands where an object of that shape may. A parameter
    // stands in the accepted action.
    std::optional<Refusal> refusalOf(const Shape& shape, const Json::Value& piece, Names names);

    // Returns Shape::accepted, as JSON.
    const Json::Value& accepted(const Shape& shape) const { return acceptedPieces.at(shape.layer); }

  private:
    VIGParseError parse(const Shape& shape, const Json::Value& piece, const VIGParserConfig& config) const;

    const VIGParserConfig& registered;
    const VIGParserConfig registeredActions;  // in a transition on the accepted event
    const VIGParserConfig anything;           // of the accepted names
    std::map<Layer, Json::Value> acceptedPieces;
    std::optional<std::string> firstLine;  // since the last piece
    const host::ThreadLogSink sink;
};

}  // namespace Brenta::OS::VIG::Tool
