#include "tools/vig/tune/TunedConstant.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Returns the rank of what the library reads of the constant, if it is a number.
std::optional<Rank> rankOf(const FilterModel& filter, const OperandModel& constant) {
    if (filter.valueType == FilterValueType::Integer) {
        return Tool::rankOf(readNearest<std::int64_t>(constant.operand.value));
    }
    const double number = readNearest<double>(constant.operand.value);
    return std::isnan(number) ? std::nullopt : std::optional(Tool::rankOf(number));
}

// Returns the constant of a filter, if it has one to tune.
std::optional<TunedConstant> constantOf(const FilterModel& filter) {
    const bool isFirst = isConstant(filter.operand1);
    TunedConstant constant{0, 0, 0, &filter, isFirst, 0};
    if (filter.valueType == FilterValueType::String || !hasConstant(filter) || isOfConstants(filter) ||
        (isFunction(constant.other()) && doubleFunctionOf(constant.other()) == nullptr)) {
        return std::nullopt;
    }
    const auto current = rankOf(filter, constant.operand());
    constant.current = current.value_or(0);
    return current ? std::optional(constant) : std::nullopt;
}

// Returns the path of an operand, as messages about documents name it.
std::string pathOf(const OperandModel& operand) {
    return operand.place.path.substr(0, operand.place.path.rfind(".value"));
}

void forEachFilter(const DocumentModel& document, const auto& visit) {
    for (std::size_t config = 0; config < document.configs.size(); ++config) {
        const auto& transitions = document.configs[config].transitions;
        for (std::size_t transition = 0; transition < transitions.size(); ++transition) {
            for (std::size_t filter = 0; filter < transitions[transition].filters.size(); ++filter) {
                visit(config, transition, filter, transitions[transition].filters[filter]);
            }
        }
    }
}

bool asksForCollections(const ConfigModel& config) {
    return std::ranges::any_of(config.transitions, [](const TransitionModel& transition) {
        return std::ranges::any_of(transition.actions,
                                   [](const ActionModel& action) { return startsCollection(action.key); });
    });
}

}  // namespace

FilterOperator TunedConstant::op() const {
    return normalFormOf(*model).op;
}

Json::Value TunedConstant::with(Rank number) const {
    Json::Value json = *model->json;
    json[isFirst ? "operand1" : "operand2"]["value"] = textOf(number, model->valueType);
    return json;
}

std::optional<TunedConstant> findConstant(const DocumentModel& document, const std::string& path,
                                          std::string& problem) {
    std::optional<TunedConstant> found;
    std::string condition;  // that has the path, if there is one
    std::vector<std::string> paths;
    forEachFilter(document,
                  [&](std::size_t config, std::size_t transition, std::size_t index, const FilterModel& filter) {
                      auto constant = constantOf(filter);
                      if (constant) {
                          paths.push_back(pathOf(constant->operand()));
                      }
                      for (const OperandModel* const operand : {&filter.operand1, &filter.operand2}) {
                          if (path != pathOf(*operand) && path != operand->place.path) {
                              continue;
                          }
                          condition = shownCondition(filter);
                          if (constant && &constant->operand() == operand) {
                              found = constant;
                              found->config = config;
                              found->transition = transition;
                              found->filter = index;
                          }
                      }
                  });
    if (found && !asksForCollections(document.configs[found->config])) {
        problem = document.configs[found->config].place.path + " never asks for a collection, whatever the number is";
        return std::nullopt;
    }
    if (!found) {
        const std::vector<std::string_view> names(paths.begin(), paths.end());
        problem = condition.empty() ? "no number to tune has the path " + inQuotes(path)
                                    : "not a number to tune, " + inQuotes(path) + " in " + condition;
        problem += condition.empty() ? choices(path, names) : choices({}, names);
    }
    return found;
}

}  // namespace Brenta::OS::VIG::Tool
