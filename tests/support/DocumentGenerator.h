#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/Mutator.h"
#include "tools/vig/document/Registry.h"

namespace support {

// Draws documents of the right shape, and parts of them, in which once in so many places a member is missing, misspelt
// or something else.
class DocumentGenerator {
    using Texts = std::vector<std::string>;
    using Table = std::map<std::string, Texts, std::less<>>;

  public:
    DocumentGenerator(Mutator& source, std::size_t placesForAnError) : mutator(source), places(placesForAnError) {}

    std::string document() { return objectOf({"configs"}); }

    // Draws what may stand under the key, which may be any.
    std::string valueOf(std::string_view key) {
        if (kElements.contains(key)) {
            Texts elements;
            for (std::size_t count = mutator.draw(3); count > 0; --count) {
                elements.push_back(errs() ? somethingElse() : elementOf(key));
            }
            return "[" + joined(elements) + "]";
        }
        if (key == "payload" || key == "data") {
            return objectOf(key == "data" ? Texts{"transitions"} : Texts{"id", "data"});
        }
        if (key.starts_with("operand")) {
            const std::string type = mutator.pick({"function", "constant", "envvar", "envvar"});
            return object({"type", "value"}, {quoted(type), textFor(type == "constant" && errs() ? "odd" : type)});
        }
        return textFor(key == "value" ? mutator.pick({"constant", "odd", "envvar", "function"}) : std::string(key));
    }

    // Draws an element of the list under the key. Returns nothing if there is no list of that name.
    std::string elementOf(std::string_view key) {
        const auto keys = kElements.find(key);
        const bool hasParameters = key == "actions" && mutator.draw(20) == 0;
        return keys == kElements.end() ? "" : objectOf(hasParameters ? Texts{"name", "parameters"} : keys->second);
    }

    // Draws a value that hardly belongs anywhere.
    std::string somethingElse() {
        return mutator.pick({"null", "1", "-2.5", "1e99", "true", R"("")", R"("end")", "[]", "{}", "[{}]", "[[1]]"});
    }

  private:
    inline static const Table kElements = {
        {"configs", {"id", "payload"}},
        {"transitions", {"from_state", "to_state", "event", "filters", "actions"}},
        {"filters", {"operator", "value_type", "operand1", "operand2"}},
        {"actions", {"name"}},
        {"parameters", {"type", "value"}},
    };

    static std::string quoted(const std::string& text) { return "\"" + text + "\""; }

    static Texts namesIn(const auto& registered) {
        std::set<std::string> names;  // in the same order with every standard library
        for (const auto& [name, value] : registered) {
            names.insert(name);
        }
        return {names.begin(), names.end()};
    }

    std::string textFor(const std::string& key) {
        static const auto kRegistry = Brenta::OS::VIG::Tool::libraryRegistry();
        static const Texts kStates = {"start", "start", "end", "a", ""};
        static const Table kTexts = {
            {"from_state", kStates},
            {"to_state", kStates},
            {"event", namesIn(kRegistry.getEventTypes())},
            {"operator", {"==", "!=", ">", "<", ">=", "<="}},
            {"value_type", {"string", "double", "double", "integer"}},
            {"type", {"constant", "envvar", "function", "integer", "string"}},
            {"name", namesIn(kRegistry.getActionFunctionFactories())},
            {"function", namesIn(kRegistry.getDoublePureFunctions())},
            {"envvar", {"vmRssKB", "processName", "cpuAvgUtilization"}},
            {"constant", {"1", "2.5", "-7", "300000"}},
            // No number, out of range, or only partly a number.
            {"odd",
             {"abc", "", "9223372036854775808", "-9223372036854775809", "1e400", "1e-400", "nan", "-inf", "0x10",
              " +7kB"}},
        };
        if (key == "id") {
            return mutator.pick({"7", "7", "-1", "2.9", "2147483647"});
        }
        const auto texts = kTexts.find(key);
        return texts == kTexts.end() ? somethingElse() : quoted(mutator.pick(texts->second));
    }

    bool errs() { return mutator.draw(places) == 0; }

    std::string objectOf(const Texts& keys) {
        Texts values;
        for (const std::string& key : keys) {
            values.push_back(valueOf(key));
        }
        return object(keys, values);
    }

    std::string object(const Texts& keys, const Texts& values) {
        Texts members;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            members.push_back(quoted(errs() ? mutator.pick({"id", "x", "value", "type"}) : keys[i]) + ":" +
                              (errs() ? somethingElse() : values[i]));
        }
        return "{" + joined(members) + (errs() ? ",}" : "}");
    }

    Mutator& mutator;
    const std::size_t places;
};

}  // namespace support
