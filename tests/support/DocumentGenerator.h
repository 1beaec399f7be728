#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/Mutator.h"

namespace support {

// Draws documents of the right shape, and parts of them, in which once in so many places a member is missing, misspelt
// or something else.
class DocumentGenerator {
    using Keys = std::vector<std::string>;

  public:
    DocumentGenerator(Mutator& source, std::size_t placesForAnError) : mutator(source), places(placesForAnError) {}

    std::string document() { return objectOf({"configs"}); }

    // What may stand under the key, which may be any.
    std::string valueOf(std::string_view key) {
        if (const auto element = elementOf(key); !element.empty()) {
            return list(key, element);
        }
        if (key == "payload" || key == "data") {
            return objectOf(key == "data" ? Keys{"transitions"} : Keys{"id", "data"});
        }
        if (key == "operand1" || key == "operand2") {
            return operand();
        }
        if (key == "value") {
            return pick({constant(), oddConstant(), R"("vmRssKB")", R"("processName")", R"("PseudoRandomDouble")"});
        }
        static const std::map<std::string_view, std::vector<std::string>> kTexts = {
            {"id", {"7", "7", "-1", "2.9", "2147483647"}},
            {"from_state", {R"("start")", R"("start")", R"("end")", R"("a")", R"("")"}},
            {"to_state", {R"("start")", R"("start")", R"("end")", R"("a")", R"("")"}},
            {"event",
             {R"("Test")", R"("Timeout")", R"("EnteringState")", R"("ProcessMemoryHeartBeat")",
              R"("ProcessCpuHeartBeat")", R"("ZramHeartBeat")"}},
            {"operator", {R"("==")", R"("!=")", R"(">")", R"("<")", R"(">=")", R"("<=")"}},
            {"value_type", {R"("string")", R"("double")", R"("double")", R"("integer")"}},
            {"type", {R"("constant")", R"("envvar")", R"("function")", R"("integer")", R"("string")"}},
            {"name", {R"("Test")", R"("TriggerVelora")", R"("TriggerVeloraCpu")", R"("LogZramHeartBeat")"}},
        };
        if (const auto texts = kTexts.find(key); texts != kTexts.end()) {
            return pick(texts->second);
        }
        return somethingElse();
    }

    // An element of the list under the key; empty if there is no list of that name.
    std::string elementOf(std::string_view key) {
        static const std::map<std::string_view, Keys> kObjects = {
            {"configs", {"id", "payload"}},
            {"transitions", {"from_state", "to_state", "event", "filters", "actions"}},
            {"filters", {"operator", "value_type", "operand1", "operand2"}},
        };
        if (const auto keys = kObjects.find(key); keys != kObjects.end()) {
            return objectOf(keys->second);
        }
        if (key == "actions") {
            return mutator.draw(20) == 0 ? objectOf({"name", "parameters"}) : objectOf({"name"});
        }
        if (key == "parameters") {
            return object({{"type", pick({R"("integer")", R"("string")"})}, {"value", pick({"1", R"("x")", "2.5"})}});
        }
        return {};
    }

    // A value that hardly belongs anywhere.
    std::string somethingElse() {
        return pick({"null", "1", "-2.5", "1e99", "true", R"("")", R"("end")", "[]", "{}", "[{}]", "[[1]]"});
    }

  private:
    using Members = std::vector<std::pair<std::string, std::string>>;

    std::string pick(const std::vector<std::string>& texts) { return texts[mutator.draw(texts.size())]; }

    bool errs() { return mutator.draw(places) == 0; }

    std::string valueOr(const std::string& value) { return errs() ? somethingElse() : value; }

    std::string objectOf(const Keys& keys) {
        Members members;
        for (const std::string& key : keys) {
            members.emplace_back(key, valueOf(key));
        }
        return object(members);
    }

    std::string object(const Members& members) {
        std::string text;
        for (const auto& [key, value] : members) {
            text += text.empty() ? "" : ",";
            text += "\"" + (errs() ? pick({"id", "x", "value", "type", key}) : key) + "\":" + valueOr(value);
        }
        return "{" + text + (errs() ? ",}" : "}");
    }

    std::string list(std::string_view key, const std::string& first) {
        std::string text;
        for (std::size_t count = mutator.draw(3); count > 0; --count) {
            text += (text.empty() ? "" : ",") + valueOr(text.empty() ? first : elementOf(key));
        }
        return "[" + text + "]";
    }

    std::string operand() {
        switch (mutator.draw(4)) {
            case 0:
                return object({{"type", R"("function")"}, {"value", R"("PseudoRandomDouble")"}});
            case 1:
                return object({{"type", R"("constant")"}, {"value", errs() ? oddConstant() : constant()}});
            default:
                return object({{"type", R"("envvar")"},
                               {"value", pick({R"("vmRssKB")", R"("processName")", R"("cpuAvgUtilization")"})}});
        }
    }

    std::string constant() { return pick({R"("1")", R"("2.5")", R"("-7")", R"("300000")"}); }

    // No number, out of range, or only partly a number.
    std::string oddConstant() {
        return pick({R"("abc")", R"("")", R"("9223372036854775808")", R"("-9223372036854775809")", R"("1e400")",
                     R"("1e-400")", R"("nan")", R"("-inf")", R"("0x10")", R"(" +7kB")"});
    }

    Mutator& mutator;
    const std::size_t places;
};

}  // namespace support
