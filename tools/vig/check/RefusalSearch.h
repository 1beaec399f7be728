#pragma once

#include <json/value.h>

#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/check/PieceParser.h"
#include "tools/vig/document/DocumentText.h"

namespace Brenta::OS::VIG::Tool {

// Finds every place for which the library refuses a document. It judges nothing by itself: a member is at fault if the
// library refuses an object that it accepts otherwise once that member has been put in.
class RefusalSearch {
  public:
    // All of them must outlive it; errors are appended to `errors`. REQUIRES: the text of the document is JSON.
    RefusalSearch(const DocumentText& text, const VIGParserConfig& names, std::vector<Diagnostic>& errors);

    // Whether the library accepts the root, but for the elements of "configs".
    bool acceptsResponse();

    // Whether the library accepts that element of "configs".
    bool acceptsConfig(const Json::Value& json, const std::string& path) { return accepts(kConfigShape, json, path); }

  private:
    // A piece of the document on which the library looks.
    struct Piece {
        const Shape& shape;
        const Json::Value& json;  // an object
        const std::string& path;
    };
    using Keys = std::vector<std::string_view>;

    bool accepts(const Shape& shape, const Json::Value& json, const std::string& path);
    void searchInside(const Piece& piece);
    bool acceptsMember(const Piece& piece, const Shape::Member& member);
    bool acceptsInside(const Shape::Member& member, const Json::Value& json, const std::string& path);
    void searchCombinations(const Piece& piece, const Keys& faulty);
    void judgeEvent(const Piece& transition);
    void judgeOperands(const Piece& filter);
    void judgeKey(const Piece& action);
    void judgeName(const Piece& action);
    void judgeValue(const Piece& parameter);

    // At the member, or at the piece if it lacks one of that key. `fault` is what is to be said beside the message.
    void add(const Piece& piece, std::string_view key, const Refusal& refusal, const std::string& fault,
             std::string hint);
    std::string shortMessage(const std::string& message, const Place& piece) const;

    const DocumentText& document;
    const VIGParserConfig& registry;
    PieceParser library;
    std::vector<Diagnostic>& found;
};

}  // namespace Brenta::OS::VIG::Tool
