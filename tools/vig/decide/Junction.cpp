#include "tools/vig/decide/Junction.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

#include "tools/vig/document/NormalFilter.h"
#include "vig/base/Utf8.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr std::size_t kNothing = 0;  // the variable that is always absent, of literals that ask nothing of an event

Literal truth(bool isTrue) {
    return {kNothing, {0, 0, true, isTrue, false}};
}

std::optional<FilterValueType> comparedAs(AttributeKind kind) {
    for (const auto& [type, text] : kFilterValueTypeTable.pairs) {
        if (kindOf(type) == kind) {
            return type;
        }
    }
    return std::nullopt;
}

// Tells whether a number that is drawn from the range can compare like that.
bool canDraw(double least, double most, FilterOperator op, const Value& other) {
    switch (op) {
        case FilterOperator::Less:
        case FilterOperator::LessEqual:
            return compares(op, least, other);
        case FilterOperator::Greater:
        case FilterOperator::GreaterEqual:
            return compares(op, most, other);
        case FilterOperator::Equal:
            return compares(FilterOperator::LessEqual, least, other) &&
                   compares(FilterOperator::GreaterEqual, most, other);
        case FilterOperator::NotEqual:
            break;
    }
    return true;
}

}  // namespace

std::optional<Value> attributeOf(const AttributeSet& attributes, std::string_view name, FilterValueType type) {
    switch (type) {
        case FilterValueType::Integer:
            return attributes.find<std::int64_t>(name);
        case FilterValueType::Double:
            return attributes.find<double>(name);
        case FilterValueType::String:
            break;
    }
    const auto text = attributes.find<std::string_view>(name).value_or("");
    return text.empty() ? std::nullopt : std::optional<Value>(std::string(text));
}

AttributeSet attributesWith(const std::vector<std::pair<std::string_view, Value>>& values) {
    AttributeSet attributes;
    for (const auto& named : values) {
        std::visit(
            [&]<typename T>(const T& value) {
                using Stored = std::conditional_t<std::is_same_v<T, std::string>, std::string_view, T>;
                attributes.add<Stored>(named.first, value);
            },
            named.second);
    }
    attributes.sort<std::int64_t>();
    attributes.sort<double>();
    attributes.sort<std::string_view>();
    return attributes;
}

Value constantOf(const std::string& text, FilterValueType type) {
    return withComparedType(type, [&]<typename T>(std::type_identity<T>) { return Value(readNearest<T>(text)); });
}

Junction::Junction(const std::vector<const TransitionModel*>& listening, EventType event,
                   std::span<const FilterModel* const> furtherFilters, const Surroundings& surroundings)
    : type(event), surroundings(surroundings) {
    space.variables.push_back({FilterValueType::String, {}, Scale(FilterValueType::String), false});
    for (const TransitionModel* const each : listening) {
        Listener& listener = transitions.emplace_back(Listener{each, {}, {}});
        for (const FilterModel& filter : each->filters) {
            listener.filters.push_back(readFilter(filter));
        }
        for (const ActionModel& action : each->actions) {
            const KnownAction* const known = findAction(action.key);
            for (const ActionNeed& need : known != nullptr ? known->needs : std::span<const ActionNeed>()) {
                if (const auto kind = comparedAs(need.kind)) {
                    space.variables[variableOf(need.attribute, *kind)].isAskedAlone = true;
                }
            }
        }
    }
    for (const FilterModel* const filter : furtherFilters) {
        further.push_back(readFilter(*filter));
    }
    for (std::size_t index = 0; index < space.variables.size(); ++index) {
        Scale& scale = space.variables[index].scale;
        scale.settle();
        presence[index] = {{{index, {0, scale.cellCount(), true, false, true}}}, {{index, {0, 0, true, true, false}}}};
    }
    for (Listener& listener : transitions) {
        for (Meaning& meaning : listener.filters) {
            giveMeaning(meaning);
            listener.fails.push_back(meaning.fails.front());
        }
    }
    std::set<Clause> asked;
    for (Listener& listener : transitions) {
        listener.earlier = passing.size();
        if (asked.insert(listener.fails).second) {
            passing.push_back(&listener.fails);
        }
    }
    std::ranges::for_each(further, [this](Meaning& each) { giveMeaning(each); });
}

// What the library does with operands of these kinds is told beside it; each of the two builds another filter.
Junction::Meaning Junction::readFilter(const FilterModel& filter) {
    haveDraws = haveDraws || draws(filter);
    const NormalFilter normal = normalFormOf(filter);
    const bool looksInContext = hasConstant(filter) && !isOfConstants(filter);
    Meaning meaning{normal.op,
                    filter.valueType,
                    looksInContext,
                    sideOf(normal.left, filter.valueType, looksInContext),
                    sideOf(normal.right, filter.valueType, looksInContext),
                    {},
                    {}};
    for (const auto& [side, other] :
         {std::pair(&meaning.left, &meaning.right), std::pair(&meaning.right, &meaning.left)}) {
        if (side->kind != Side::Kind::Attribute) {
            continue;
        }
        Variable& variable = space.variables[variableOf(side->name, filter.valueType)];
        variable.isAskedAlone = variable.isAskedAlone || !looksInContext;
        Scale& scale = variable.scale;
        if (other->kind == Side::Kind::Fixed) {
            scale.add(other->value);
        } else if (other->kind == Side::Kind::Draw) {
            for (const double constant : {other->least, other->most, 0.0}) {
                scale.add(constant);
            }
        }
    }
    return meaning;
}

Junction::Side Junction::sideOf(const OperandModel& operand, FilterValueType kind, bool looksInContext) const {
    const std::string& text = operand.operand.value;
    if (isConstant(operand)) {
        return {Side::Kind::Fixed, constantOf(text, kind)};
    }
    if (isFunction(operand)) {
        const DoubleFunction* const function = doubleFunctionOf(operand);
        if (function != nullptr && kind == FilterValueType::Double) {
            return {Side::Kind::Draw, {}, {}, function->least, std::nextafter(function->limit, function->least)};
        }
        const bool isKnown = withComparedType(kind, [&]<typename T>(std::type_identity<T>) {
            std::function<T()> found;
            return surroundings.registry.getPureFunction(text, found);
        });
        return {isKnown ? Side::Kind::Unknown : Side::Kind::Fixed, absentValue(kind)};
    }
    if (type != EventType::EnteringState || (looksInContext && isOfOpenContext(text, kind))) {
        return {Side::Kind::Attribute, {}, text};
    }
    const auto given = looksInContext ? ofContext(text, kind) : std::nullopt;
    const bool isMissing = looksInContext && !given && kind != FilterValueType::String;
    return {isMissing ? Side::Kind::Missing : Side::Kind::Fixed, given.value_or(absentValue(kind))};
}

std::optional<Value> Junction::ofContext(std::string_view name, FilterValueType kind) const {
    return attributeOf(surroundings.context, name, kind);
}

bool Junction::isOfOpenContext(std::string_view name, FilterValueType kind) const {
    if (surroundings.kind == Surroundings::Context::Open) {
        return true;
    }
    return surroundings.kind == Surroundings::Context::Catalogued &&
           surroundings.catalogue.promisesInContext(name, kindOf(kind));
}

std::size_t Junction::variableOf(std::string_view name, FilterValueType kind) {
    const auto [place, isNew] = variables.emplace(std::pair(kind, name), space.variables.size());
    if (isNew) {
        const std::string text(name);
        Variable variable{kind, name, Scale(kind)};
        variable.isNamedInUtf8 = replaceInvalidUtf8(text) == text;
        variable.isPromised = surroundings.catalogue.promises(type, name, kindOf(kind));
        space.variables.push_back(std::move(variable));
    }
    return place->second;
}

CellSet Junction::cellsOf(FilterOperator op, std::size_t variable, const Value& constant) const {
    const Scale& scale = space.variables[variable].scale;
    const Scale::Cell cell = scale.cellOf(constant);
    const bool isUnequal = op == FilterOperator::NotEqual;
    if (!compares(FilterOperator::Equal, constant, constant)) {
        return {0, 0, !isUnequal, isUnequal, isUnequal};  // it is NaN
    }
    switch (op) {
        case FilterOperator::Equal:
        case FilterOperator::NotEqual:
            return {cell, cell + 1, !isUnequal, false, isUnequal};
        case FilterOperator::Greater:
            return {cell + 1, scale.cellCount()};
        case FilterOperator::Less:
            return {0, cell};
        case FilterOperator::GreaterEqual:
            return {cell, scale.cellCount()};
        case FilterOperator::LessEqual:
            break;
    }
    return {0, cell + 1};
}

// Returns where an attribute can be for the filter to hold, as its left side.
CellSet Junction::comparedWith(const Side& other, FilterOperator op, std::size_t variable,
                               const Meaning& meaning) const {
    CellSet cells;
    if (other.kind == Side::Kind::Fixed) {
        cells = cellsOf(op, variable, other.value);
        const auto given = meaning.looksInContext ? ofContext(space.variables[variable].name, meaning.type)
                                                  : std::optional(absentValue(meaning.type));
        const bool isText = meaning.type == FilterValueType::String;
        cells.absent =
            given ? compares(op, *given, other.value) : isText && compares(op, Value(std::string()), other.value);
        return cells;
    }
    switch (op) {
        case FilterOperator::Greater:
        case FilterOperator::GreaterEqual:
            cells = cellsOf(op, variable, other.least);
            break;
        case FilterOperator::Less:
        case FilterOperator::LessEqual:
            cells = cellsOf(op, variable, other.most);
            break;
        case FilterOperator::Equal:
            cells = {cellsOf(op, variable, other.least).first, cellsOf(op, variable, other.most).last};
            break;
        case FilterOperator::NotEqual:
            cells = {0, 0, false, false, true};
            break;
    }
    cells.absent = cells.has(space.variables[variable].scale.cellOf(0.0));
    return cells;
}

void Junction::giveMeaning(Meaning& meaning) {
    using Kind = Side::Kind;
    const auto& [op, kind, looksInContext, left, right, holds, fails] = meaning;
    const auto both = [&](const Literal& holding, const Literal& failing) {
        meaning.holds = {holding};
        meaning.fails = {failing};
    };
    if (left.kind == Kind::Unknown || right.kind == Kind::Unknown ||
        (left.kind == Kind::Draw && right.kind == Kind::Draw)) {
        both(truth(true), truth(true));
    } else if (left.kind == Kind::Missing || right.kind == Kind::Missing) {
        both(truth(false), truth(true));
    } else if (left.kind == Kind::Attribute && right.kind == Kind::Attribute) {
        const Literal literal = relation(meaning);
        both(literal, {literal.variable, literal.cells.complement()});
    } else if (left.kind == Kind::Attribute || right.kind == Kind::Attribute) {
        const bool isLeft = left.kind == Kind::Attribute;
        const Side& other = isLeft ? right : left;
        const FilterOperator seen = isLeft ? op : mirrored(op);
        const std::size_t variable = variableOf(isLeft ? left.name : right.name, kind);
        CellSet cells = comparedWith(other, seen, variable, meaning);
        CellSet failing = cells.complement();
        if (other.kind == Kind::Draw) {
            failing = comparedWith(other, negated(seen), variable, meaning);
            failing.nan = !cells.nan;
        }
        // Where all filters look in both, as those of a machine's own event do, it does not matter where they find it.
        if (looksInContext && space.variables[variable].isAskedAlone &&
            isOfOpenContext(space.variables[variable].name, kind)) {
            cells.absent = failing.absent = true;
        }
        both({variable, cells}, {variable, failing});
    } else if (left.kind == Kind::Draw || right.kind == Kind::Draw) {
        const Side& drawn = left.kind == Kind::Draw ? left : right;
        const Value& other = left.kind == Kind::Draw ? right.value : left.value;
        const FilterOperator seen = left.kind == Kind::Draw ? op : mirrored(op);
        const bool isNan = !compares(FilterOperator::Equal, other, other);
        const bool canHold = isNan ? op == FilterOperator::NotEqual : canDraw(drawn.least, drawn.most, seen, other);
        const bool canFail = isNan ? !canHold : canDraw(drawn.least, drawn.most, negated(seen), other);
        both(truth(canHold), truth(canFail));
    } else {
        const bool isTrue = compares(op, left.value, right.value);
        both(truth(isTrue), truth(!isTrue));
    }
}

// The cells of a relation are those of a scale with one constant: less, equal, greater.
Literal Junction::relation(const Meaning& meaning) {
    std::size_t left = variableOf(meaning.left.name, meaning.type);
    std::size_t right = variableOf(meaning.right.name, meaning.type);
    FilterOperator op = meaning.op;
    if (left == right) {
        const bool isEqual = compares(op, absentValue(meaning.type), absentValue(meaning.type));
        return {left, {0, 0, !isEqual, isEqual, op == FilterOperator::NotEqual}};
    }
    if (left > right) {
        std::swap(left, right);
        op = mirrored(op);
    }
    auto found = std::ranges::find_if(space.relations,
                                      [&](const Relation& each) { return each.left == left && each.right == right; });
    if (found == space.relations.end()) {
        Variable variable{meaning.type, {}, Scale(FilterValueType::Integer)};
        variable.scale.add(std::int64_t{0});
        variable.scale.settle();
        variable.canBeAbsent = false;
        variable.isCompared = true;
        space.variables[left].isCompared = space.variables[right].isCompared = true;
        found = space.relations.insert(found, {space.variables.size(), left, right});
        space.variables.push_back(std::move(variable));
    }
    return {found->variable, cellsOf(op, found->variable, std::int64_t{0})};
}

Junction::Question Junction::toReach(const Target& target) const {
    const std::size_t filters = target.filter.value_or(transitions[target.transition].filters.size());
    Question question{transitions[target.transition].earlier, toHold(target.transition, filters)};
    if (target.filter) {
        question.clauses.push_back(&toHold(target.transition, *target.filter, target.outcome));
    }
    return question;
}

Junction::Question Junction::toPass() const {
    return {passing.size()};
}

Clauses Junction::toHold(std::size_t transition, std::size_t filters) const {
    Clauses clauses;
    for (std::size_t index = 0; index < filters; ++index) {
        clauses.push_back(&transitions[transition].filters[index].holds);
    }
    return clauses;
}

Clauses Junction::clausesOf(const Question& question) const {
    Clauses all(passing.begin(), passing.begin() + static_cast<std::ptrdiff_t>(question.failing));
    all.insert(all.end(), question.clauses.begin(), question.clauses.end());
    return all;
}

const Clause& Junction::present(AttributeKind kind, std::string_view name) const {
    return presence.at(variables.at({*comparedAs(kind), name})).first;
}

const Clause& Junction::absent(AttributeKind kind, std::string_view name) const {
    return presence.at(variables.at({*comparedAs(kind), name})).second;
}

Verdict Junction::decide(const Question& question, Values which, Effort& effort) const {
    return CellSolver(space, which, CellSolver::Attributes::Any).solve(clausesOf(question), effort);
}

std::optional<EventRecord> Junction::eventFor(const Question& question, Effort& effort) const {
    const Clauses clauses = clausesOf(question);
    for (const auto attributes : {CellSolver::Attributes::Promised, CellSolver::Attributes::Any}) {
        CellSolver solver(space, Values::Recordable, attributes);
        if (solver.solve(clauses, effort) != Verdict::Yes) {
            continue;
        }
        EventRecord record;
        record.type = type;
        if (type == EventType::Timeout) {
            record.timeoutId = 1;
        }
        std::vector<std::pair<std::string_view, Value>> values;
        for (const auto& [key, variable] : variables) {
            if (auto value = solver.valueOf(variable)) {
                values.emplace_back(key.second, std::move(*value));
            }
        }
        record.attributes = attributesWith(values);
        return record;
    }
    return std::nullopt;
}

// The cells of the event are joined by their neighbours as long as no event in them all fails a clause.
std::vector<Extent> Junction::extentsAround(const EventRecord& record, const Question& question, Effort& effort) const {
    const Clauses asked = clausesOf(question);
    std::set<std::size_t> concerned;
    for (const Clause* const clause : asked) {
        for (const Literal& each : *clause) {
            concerned.insert(each.variable);
        }
    }
    for (const Relation& each : space.relations) {
        if (concerned.contains(each.variable)) {
            concerned.insert({each.left, each.right});
        }
    }
    std::map<std::size_t, Clause> box;
    for (const auto& [key, variable] : variables) {
        const auto value = attributeOf(record.attributes, key.second, key.first);
        const Scale::Cell cell = value ? space.variables[variable].scale.cellOf(*value) : 0;
        box[variable] = {{variable, {cell, value ? cell + 1 : cell, true, !value, false}}};
    }
    const auto isFulfilled = [&] {
        return std::ranges::all_of(asked, [&](const Clause* clause) {
            Clause failures = *clause;
            std::ranges::for_each(failures, [](Literal& each) { each.cells = each.cells.complement(); });
            std::vector<Clause> single;
            for (const Literal& each : failures) {
                single.push_back({each});
            }
            Clauses failing;
            std::ranges::transform(single, std::back_inserter(failing), [](const Clause& each) { return &each; });
            std::ranges::transform(box, std::back_inserter(failing), [](const auto& each) { return &each.second; });
            return CellSolver(space, Values::Recordable, CellSolver::Attributes::Any).solve(failing, effort) ==
                   Verdict::No;
        });
    };
    std::vector<Extent> extents;
    const bool isExact = !isFulfilled();  // it takes certain values of attributes that are compared with each other
    for (const auto& [key, variable] : variables) {
        CellSet& cells = box[variable].front().cells;
        const Scale& scale = space.variables[variable].scale;
        const auto value = attributeOf(record.attributes, key.second, key.first);
        if (!concerned.contains(variable) || (isExact && !value)) {
            continue;
        }
        if (isExact) {
            extents.push_back({std::string(key.second), value});
            continue;
        }
        if (cells.absent) {
            const CellSet absent = std::exchange(cells, {0, scale.cellCount()});
            if (!isFulfilled()) {
                extents.push_back({std::string(key.second), std::nullopt});
            }
            cells = absent;
            continue;
        }
        // What holds for many cells holds for fewer of them.
        const auto widen = [&](Scale::Cell& edge, Scale::Cell farthest) {
            Scale::Cell good = edge;
            Scale::Cell middle = farthest;
            for (Scale::Cell left = good < farthest ? farthest - good : good - farthest; left > 0;) {
                edge = middle;
                const Scale::Cell tried = middle < good ? good - middle : middle - good;
                if (isFulfilled()) {
                    good = middle;
                    left -= tried;
                } else {
                    left = tried - 1;
                }
                const Scale::Cell step = (left + 1) / 2;
                middle = farthest < good ? good - step : good + step;
            }
            edge = good;
        };
        widen(cells.first, 0);
        widen(cells.last, scale.cellCount());
        if (scale.haveValue(0, cells.first, Values::Recordable) ||
            scale.haveValue(cells.last, scale.cellCount(), Values::Recordable)) {
            extents.push_back(
                {std::string(key.second), value, scale.lowerBound(cells.first), scale.upperBound(cells.last)});
        }
    }
    return extents;
}

std::optional<Value> Junction::valueOf(const Side& side, const Meaning& meaning, const EventRecord& record) const {
    if (side.kind != Side::Kind::Attribute) {
        return side.kind == Side::Kind::Missing ? std::nullopt : std::optional(side.value);
    }
    auto found = attributeOf(record.attributes, side.name, meaning.type);
    if (!found && meaning.looksInContext) {
        found = ofContext(side.name, meaning.type);
    }
    const bool isMissing = !found && meaning.looksInContext && meaning.type != FilterValueType::String;
    return isMissing ? std::nullopt : std::optional(found.value_or(absentValue(meaning.type)));
}

std::vector<Value> Junction::candidates(const Side& side, const std::optional<Value>& other) {
    const double limit = other ? std::get<double>(*other) : side.most;
    std::vector<Value> numbers;
    // Some are easily read, the others lie nearest to the limit or farthest from it.
    const double behind = std::nextafter(side.most, side.most + 1);
    for (const double each :
         {0.5, 0.25, 0.75, limit / 2, (limit + behind) / 2, limit, std::nextafter(limit, side.least),
          std::nextafter(limit, behind), side.least, side.most}) {
        if (side.least <= each && each <= side.most) {
            numbers.emplace_back(each);
        }
    }
    return numbers;
}

// Numbers are drawn evenly; of two, each is as probably the greater one.
double Junction::oddsOf(const Meaning& meaning, const std::optional<Value>& left, const std::optional<Value>& right,
                        bool outcome) {
    if (left && right) {
        return 1;
    }
    double isAbove = 0.5;  // that the left side is
    if (left || right) {
        const Side& drawn = left ? meaning.right : meaning.left;
        const double limit = std::get<double>(left ? *left : *right);
        if (std::isnan(limit)) {
            return 1;  // no draw decides anything
        }
        const double behind = std::nextafter(drawn.most, drawn.most + 1);
        const double share = (limit - drawn.least) / (behind - drawn.least);
        isAbove = left ? std::clamp(share, 0.0, 1.0) : 1 - std::clamp(share, 0.0, 1.0);
    }
    const bool takesAbove = compares(meaning.op, 1.0, 0.0);
    const bool takesBelow = compares(meaning.op, 0.0, 1.0);
    const double odds = (takesAbove ? isAbove : 0) + (takesBelow ? 1 - isAbove : 0);
    return outcome ? odds : 1 - odds;
}

bool Junction::steer(const Meaning& meaning, const EventRecord& record, bool outcome, DrawPlan& draws) const {
    const bool drawsLeft = meaning.left.kind == Side::Kind::Draw;
    const bool drawsRight = meaning.right.kind == Side::Kind::Draw;
    const auto left = drawsLeft ? std::nullopt : valueOf(meaning.left, meaning, record);
    const auto right = drawsRight ? std::nullopt : valueOf(meaning.right, meaning, record);
    if ((!left && !drawsLeft) || (!right && !drawsRight)) {
        return !outcome;
    }
    for (const Value& first : drawsLeft ? candidates(meaning.left, right) : std::vector{*left}) {
        for (const Value& second : drawsRight ? candidates(meaning.right, left) : std::vector{*right}) {
            if (compares(meaning.op, first, second) != outcome) {
                continue;
            }
            if (drawsLeft) {
                draws.numbers.push_back(std::get<double>(first));
            }
            if (drawsRight) {
                draws.numbers.push_back(std::get<double>(second));
            }
            draws.odds *= oddsOf(meaning, left, right, outcome);
            return true;
        }
    }
    return false;
}

DrawPlan Junction::drawsFor(const EventRecord& record, const std::optional<Target>& target) const {
    DrawPlan draws;
    for (std::size_t index = 0; haveDraws && index < transitions.size(); ++index) {
        const bool isTarget = target && target->transition == index;
        const auto& filters = transitions[index].filters;
        for (std::size_t filter = 0; filter < filters.size(); ++filter) {
            const bool wanted = isTarget && (filter != target->filter || target->outcome);
            const bool outcome = steer(filters[filter], record, wanted, draws) == wanted;
            if (outcome != wanted) {
                steer(filters[filter], record, outcome, draws);
            }
            if (!outcome) {
                break;
            }
        }
        if (isTarget) {
            break;
        }
    }
    return draws;
}

}  // namespace Brenta::OS::VIG::Tool
