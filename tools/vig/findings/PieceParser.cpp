#include "tools/vig/findings/PieceParser.h"

#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tools/vig/document/ParseErrorText.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/JsonText.h"
#include "vig/parsers/VIGConfigParser.h"
#include "vig/parsers/VIGConfigPayloadParser.h"
#include "vig/parsers/VIGFiniteStateMachineParser.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EvaluationContext;
using RulesEngine::Event;
using RulesEngine::EventType;

namespace {

class AnyParametersFactory final : public VIGActionFunctionFactory {
  public:
    std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>&) const override {
        return [](EvaluationContext&, const Event&) {};
    }
};

using Factories = std::unordered_map<std::string, std::shared_ptr<VIGActionFunctionFactory>>;

// The registry knows the event of Shape::accepted.
VIGParserConfig registryOf(Factories actions) {
    return VIGParserConfig({{"x", EventType::Test}}, std::move(actions), {}, {}, {}, {});
}

// Returns the action of Shape::accepted, with any one parameter or without.
Factories acceptedActions() {
    const auto factory = std::make_shared<AnyParametersFactory>();
    return {{"x", factory}, {"x()", factory}, {"x(integer)", factory}, {"x(double)", factory}, {"x(string)", factory}};
}

void collectAccepted(const Shape& shape, std::map<Layer, Json::Value>& pieces) {
    readJson(std::string(shape.accepted), pieces[shape.layer]);
    for (const Shape::Member& member : shape.members) {
        if (member.inside != nullptr) {
            collectAccepted(*member.inside, pieces);
        }
    }
}

// Returns the object with the element at the end of one of its lists.
Json::Value with(Json::Value object, const char* list, const Json::Value& element) {
    object[list].append(element);
    return object;
}

}  // namespace

PieceParser::PieceParser(const VIGParserConfig& names)
    : registered(names),
      registeredActions(registryOf(names.getActionFunctionFactories())),
      anything(registryOf(acceptedActions())),
      sink([this](int, std::string_view, std::string_view message) {
          if (!firstLine) {
              firstLine = message;
          }
      }) {
    collectAccepted(kResponseShape, acceptedPieces);
}

std::optional<Refusal> PieceParser::refusalOf(const Shape& shape, const Json::Value& piece, Names names) {
    firstLine.reset();
    const VIGParseError error = parse(shape, piece, names == Names::Registered ? registered : anything);
    if (error == VIGParseError::Ok) {
        return std::nullopt;
    }
    return Refusal{error, firstLine.value_or(std::string(textOf(error).meaning))};
}

VIGParseError PieceParser::parse(const Shape& shape, const Json::Value& piece, const VIGParserConfig& config) const {
    switch (shape.layer) {
        case Layer::Response:
            return VIGResponseParser().parse(piece, config).error;
        case Layer::Config:
            return VIGConfigParser().parse(piece, config).error;
        case Layer::Payload:
            return VIGConfigPayloadParser().parse(piece, config).error;
        case Layer::Machine:
            return VIGFiniteStateMachineParser().parse(piece, config).error;
        case Layer::Transition:
            return parse(kMachineShape, with(accepted(kMachineShape), "transitions", piece), config);
        case Layer::Filter:
            return _parseFilter(piece, config) ? VIGParseError::Ok : VIGParseError::InvalidFsm;
        case Layer::Operand:
            return FilterOperand::fromJson(piece) ? VIGParseError::Ok : VIGParseError::InvalidFsm;
        case Layer::Action:
            return parse(kTransitionShape, with(accepted(kTransitionShape), "actions", piece),
                         &config == &registered ? registeredActions : config);
        case Layer::Parameter:
            break;
    }
    return parse(kActionShape, with(accepted(kActionShape), "parameters", piece), anything);
}

}  // namespace Brenta::OS::VIG::Tool
