#include "bench/ByHand.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace bench::byhand {

namespace {

// Each rule is flattened, as the compiler does it by itself where there is one rule in a file.

bool isMemoryEvent(const EvaluationContext& context, const Event& event) {
    return event.matches(EventType::ProcessMemoryHeartBeat, context);
}

// Returns true if the event, else the context, has the attribute and it compares so.
bool is(const EvaluationContext& context, const Event& event, std::string_view name, auto compare,
        std::int64_t constant) {
    if (const auto value = event.getInt64Attr(name)) {
        return compare(*value, constant);
    }
    const auto value = context.getInt64Attr(name);
    return value && compare(*value, constant);
}

bool is(const EvaluationContext& context, const Event& event, std::string_view name, auto compare, double constant) {
    if (const auto value = event.getDoubleAttr(name)) {
        return compare(*value, constant);
    }
    const auto value = context.getDoubleAttr(name);
    return value && compare(*value, constant);
}

std::string_view text(const EvaluationContext& context, const Event& event, std::string_view name) {
    const auto value = event.getStringAttr(name);
    return value.empty() ? context.getStringAttr(name) : value;
}

bool isBig(const EvaluationContext& c, const Event& e) {
    return is(c, e, "vmRssKB", std::greater(), std::int64_t{200'000});
}
bool isLittleSwapped(const EvaluationContext& c, const Event& e) {
    return is(c, e, "vmSwapKB", std::less_equal(), std::int64_t{4'096});
}
bool isNotFirst(const EvaluationContext& c, const Event& e) {
    return is(c, e, "pid", std::not_equal_to(), std::int64_t{1});
}
bool threeIntegers(const EvaluationContext& c, const Event& e) {
    return isBig(c, e) && isLittleSwapped(c, e) && isNotFirst(c, e);
}

[[gnu::flatten]] bool oneInteger(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && isBig(c, e);
}
[[gnu::flatten]] bool oneIntegerFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && is(c, e, "vmRssKB", std::greater(), std::int64_t{300'000});
}
[[gnu::flatten]] bool threeIntegersTrue(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeIntegers(c, e);
}
[[gnu::flatten]] bool threeIntegersFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && isBig(c, e) && isLittleSwapped(c, e) &&
           is(c, e, "pid", std::not_equal_to(), std::int64_t{4'711});
}
[[gnu::flatten]] bool tenIntegers(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeIntegers(c, e) && threeIntegers(c, e) && threeIntegers(c, e) && isBig(c, e);
}
[[gnu::flatten]] bool tenIntegersFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeIntegers(c, e) && threeIntegers(c, e) && threeIntegers(c, e) &&
           is(c, e, "vmRssKB", std::greater(), std::int64_t{300'000});
}

bool grows(const EvaluationContext& c, const Event& e) {
    return is(c, e, "growth", std::greater(), 1.1);
}
bool hasSmallShare(const EvaluationContext& c, const Event& e) {
    return is(c, e, "share", std::less_equal(), 0.75);
}
bool isNotFull(const EvaluationContext& c, const Event& e) {
    return is(c, e, "pressure", std::not_equal_to(), 1.0);
}
bool threeDoubles(const EvaluationContext& c, const Event& e) {
    return grows(c, e) && hasSmallShare(c, e) && isNotFull(c, e);
}

[[gnu::flatten]] bool oneDouble(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && grows(c, e);
}
[[gnu::flatten]] bool oneDoubleFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && is(c, e, "growth", std::greater(), 1.5);
}
[[gnu::flatten]] bool threeDoublesTrue(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeDoubles(c, e);
}
[[gnu::flatten]] bool threeDoublesFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && grows(c, e) && hasSmallShare(c, e) &&
           is(c, e, "pressure", std::not_equal_to(), 0.125);
}
[[gnu::flatten]] bool tenDoubles(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeDoubles(c, e) && threeDoubles(c, e) && threeDoubles(c, e) && grows(c, e);
}
[[gnu::flatten]] bool tenDoublesFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeDoubles(c, e) && threeDoubles(c, e) && threeDoubles(c, e) &&
           is(c, e, "growth", std::greater(), 1.5);
}

bool isCamera(const EvaluationContext& c, const Event& e) {
    return text(c, e, "processName") == "com.example.camera";
}
bool isNoTool(const EvaluationContext& c, const Event& e) {
    return text(c, e, "package") != "com.example.tools";
}
bool isInFront(const EvaluationContext& c, const Event& e) {
    return text(c, e, "state") <= "foreground";
}
bool threeStrings(const EvaluationContext& c, const Event& e) {
    return isCamera(c, e) && isNoTool(c, e) && isInFront(c, e);
}

[[gnu::flatten]] bool oneString(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && isCamera(c, e);
}
[[gnu::flatten]] bool oneStringFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && text(c, e, "processName") == "com.example.player";
}
[[gnu::flatten]] bool threeStringsTrue(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeStrings(c, e);
}
[[gnu::flatten]] bool threeStringsFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && isCamera(c, e) && isNoTool(c, e) && text(c, e, "state") <= "background";
}
[[gnu::flatten]] bool tenStrings(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeStrings(c, e) && threeStrings(c, e) && threeStrings(c, e) && isCamera(c, e);
}
[[gnu::flatten]] bool tenStringsFalse(const EvaluationContext& c, const Event& e) {
    return isMemoryEvent(c, e) && threeStrings(c, e) && threeStrings(c, e) && threeStrings(c, e) &&
           text(c, e, "processName") == "com.example.player";
}

}  // namespace

bool matchesAny(const std::vector<EventType>& types, const EvaluationContext& context, const Event& event) {
    for (const EventType type : types) {
        if (event.matches(type, context)) {
            return true;
        }
    }
    return false;
}

Rule integerRule(std::size_t count, bool lastIsFalse) {
    return count == 1   ? (lastIsFalse ? oneIntegerFalse : oneInteger)
           : count == 3 ? (lastIsFalse ? threeIntegersFalse : threeIntegersTrue)
                        : (lastIsFalse ? tenIntegersFalse : tenIntegers);
}

Rule doubleRule(std::size_t count, bool lastIsFalse) {
    return count == 1   ? (lastIsFalse ? oneDoubleFalse : oneDouble)
           : count == 3 ? (lastIsFalse ? threeDoublesFalse : threeDoublesTrue)
                        : (lastIsFalse ? tenDoublesFalse : tenDoubles);
}

Rule stringRule(std::size_t count, bool lastIsFalse) {
    return count == 1   ? (lastIsFalse ? oneStringFalse : oneString)
           : count == 3 ? (lastIsFalse ? threeStringsFalse : threeStringsTrue)
                        : (lastIsFalse ? tenStringsFalse : tenStrings);
}

}  // namespace bench::byhand
