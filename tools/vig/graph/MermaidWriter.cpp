#include "tools/vig/graph/Pictures.h"

#include <fmt/format.h>

#include <cstddef>
#include <string_view>

#include "rulesengine/FiniteStateMachine.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::FiniteStateMachine;

namespace {

// Mermaid gives nearly every sign a meaning somewhere, so that only those that are known to have none stay.
std::string withEntities(std::string_view text) {
    constexpr std::string_view kHarmless = " .,()=!+*/_'>-";
    std::string result;
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        const bool isLetter = (each >= 'a' && each <= 'z') || (each >= 'A' && each <= 'Z');
        const bool isDigit = each >= '0' && each <= '9';
        if (byte >= 0x80 || isLetter || isDigit || kHarmless.find(each) != std::string_view::npos) {
            result += each;
        } else {
            result += fmt::format("#{};", byte);
        }
    }
    return result;
}

std::string marksOf(const std::vector<GraphMark>& marks) {
    std::string text;
    for (const std::string& line : markLinesOf(marks)) {
        text += "<br/>" + withEntities(line);
    }
    return text;
}

std::string labelOf(const GraphArrow& arrow) {
    std::string text = withEntities(orderOf(arrow) + ". " + arrow.title);
    for (const auto& lines : {conditionLinesOf(arrow), actionLinesOf(arrow)}) {
        for (const std::string& line : lines) {
            text += "<br/>" + withEntities(line);
        }
    }
    if (arrow.traffic) {
        text += "<br/>" + trafficLineOf(arrow);
    }
    return text + marksOf(arrow.marks);
}

void writeStates(std::string& out, const RuleGraph& graph, const std::string& name) {
    out += fmt::format("    [*] --> {}s0\n", name);
    for (std::size_t index = 0; index < graph.states.size(); ++index) {
        const GraphState& state = graph.states[index];
        out += fmt::format("    state \"{}{}\" as {}s{}\n", withEntities(Tool::labelOf(state)), marksOf(state.marks),
                           name, index);
    }
    for (std::size_t index = 0; index < graph.states.size(); ++index) {
        for (const GraphArrow& arrow : graph.states[index].arrows) {
            out += fmt::format("    {0}s{1} --> {0}s{2} : {3}\n", name, index, arrow.target, labelOf(arrow));
        }
    }
}

void writeClasses(std::string& out, const RuleGraph& graph, const std::string& name) {
    for (std::size_t index = 0; index < graph.states.size(); ++index) {
        const GraphState& state = graph.states[index];
        if (!state.reachable || state.name == FiniteStateMachine::STATE_END) {
            out += fmt::format("    class {}s{} {}\n", name, index, state.reachable ? "final" : "unreachable");
        }
    }
}

}  // namespace

std::string mermaidOf(const std::vector<RuleGraph>& graphs) {
    std::string out =
        "stateDiagram-v2\n"
        "    classDef final stroke-width:4px\n"
        "    classDef unreachable fill:white,color:grey,stroke:grey\n";
    for (std::size_t index = 0; index < graphs.size(); ++index) {
        const std::string name = fmt::format("c{}", index);
        out += fmt::format("    state \"configuration {}{}\" as {} {{\n", graphs[index].id,
                           marksOf(graphs[index].marks), name);
        writeStates(out, graphs[index], name);
        out += "    }\n";
    }
    // Mermaid takes classes outside of composite states only.
    for (std::size_t index = 0; index < graphs.size(); ++index) {
        writeClasses(out, graphs[index], fmt::format("c{}", index));
    }
    return out;
}

}  // namespace Brenta::OS::VIG::Tool
