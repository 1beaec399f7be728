#include "tools/vig/graph/Pictures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

#include "rulesengine/FiniteStateMachine.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::FiniteStateMachine;

namespace {

// People who cannot tell red from green can tell these colours apart too; each also has a line or a sign of its own.
constexpr std::string_view kInk = "#222222";
constexpr std::string_view kPale = "#999999";
constexpr std::string_view kHeader = "#e3ecf6";
constexpr std::string_view kPaleHeader = "#f2f2f2";
constexpr std::string_view kWarning = "#a04000";
constexpr std::string_view kWarningGround = "#fff3da";
constexpr std::string_view kFired = "#0b5cad";
constexpr std::string_view kNeverFired = "#d0342c";

constexpr std::string_view kPrologue = R"(digraph vig {
  graph [fontname="DejaVu Sans,Verdana,sans-serif", fontsize=13, nodesep=0.35, ranksep=0.5, pad=0.2, labeljust=l]
  node [shape=plain, fontname="DejaVu Sans,Verdana,sans-serif", fontsize=11, tooltip=" "]
  edge [arrowsize=0.7, tooltip=" "]
)";

// Escapes text for an HTML-like label, or for an attribute. XML has no place for two of the characters.
std::string withEscapes(std::string_view text) {
    constexpr std::pair<std::string_view, std::string_view> kEscapes[] = {
        {"&", "&amp;"},
        {"<", "&lt;"},
        {">", "&gt;"},
        {"\"", "&quot;"},
        {"\\", "\\\\"},  // or Graphviz would put a name in the place of \N
        {"\xEF\xBF\xBE", "\xEF\xBF\xBD"},
        {"\xEF\xBF\xBF", "\xEF\xBF\xBD"},
    };
    std::string result;
    while (!text.empty()) {
        const auto found =
            std::ranges::find_if(kEscapes, [&](const auto& each) { return text.starts_with(each.first); });
        const bool plain = found == std::end(kEscapes);
        result += plain ? text.substr(0, 1) : found->second;
        text.remove_prefix(plain ? 1 : found->first.size());
    }
    return result;
}

std::string coloured(std::string_view colour, std::string_view text) {
    return fmt::format(R"(<font color="{}">{}</font>)", colour, withEscapes(text));
}

struct Line {
    std::string_view colour;
    std::string_view style;
    std::string_view arrowHead;
    double width;
};

Line lineOf(const GraphArrow& arrow, bool reachable) {
    switch (kindOf(arrow.traffic)) {
        case TrafficKind::Fired:
            return {kFired, "solid", "normal", 1.2 + 1.3 * std::log10(static_cast<double>(arrow.traffic->fired))};
        case TrafficKind::NeverFired:
            return {kNeverFired, "dotted", "tee", 2};
        case TrafficKind::NeverTried:
            return {kPale, "dashed", "normal", 0.7};
        case TrafficKind::Unknown:
            break;
    }
    return {reachable ? kInk : kPale, "solid", "normal", 1};
}

std::string_view textColourOf(const GraphArrow& arrow, bool reachable) {
    const bool untried = kindOf(arrow.traffic) == TrafficKind::NeverTried;
    return reachable && !untried ? kInk : kPale;
}

// Writes one graph after the other.
class DotWriter {
  public:
    std::string write(const std::vector<RuleGraph>& graphs, const std::string& replay) {
        out = kPrologue;
        for (std::size_t index = 0; index < graphs.size(); ++index) {
            writeGraph(graphs[index], fmt::format("c{}", index));
        }
        if (!replay.empty()) {
            writeLegend(replay);
        }
        return out + "}\n";
    }

  private:
    void writeGraph(const RuleGraph& graph, const std::string& name) {
        out += fmt::format(
            "  subgraph cluster_{} {{\n    graph [color=\"#ffffff00\", {}label=<{}configuration <b>{}</b>{}>]\n", name,
            tooltip(Tool::messagesOf(graph.marks)), graph.side.empty() ? "" : graph.side + " ", graph.id,
            marksOf(graph.marks, "  "));
        out += fmt::format(
            "    {0} [shape=circle, style=filled, fillcolor=\"{1}\", label=\"\", width=0.13]\n"
            "    {0} -> {0}s0:name\n",
            name, kInk);
        for (std::size_t index = 0; index < graph.states.size(); ++index) {
            writeState(graph.states[index], fmt::format("{}s{}", name, index));
        }
        for (std::size_t index = 0; index < graph.states.size(); ++index) {
            for (const GraphArrow& arrow : graph.states[index].arrows) {
                writeLine(graph, index, arrow, name);
            }
        }
        out += "  }\n";
    }

    void writeState(const GraphState& state, const std::string& node) {
        const bool isEnd = state.name == FiniteStateMachine::STATE_END;
        out += fmt::format("    {} [{}label=<", node, tooltip(messagesOf(state)));
        if (isEnd) {
            out += R"(<table border="1" cellborder="0" cellspacing="2" cellpadding="0" style="rounded"><tr><td>)";
        }
        out += fmt::format(
            R"(<table border="1" cellborder="0" cellspacing="0" cellpadding="4" style="rounded" color="{}">)",
            state.reachable ? kInk : kPale);
        out += fmt::format(R"(<tr><td port="name" colspan="2" bgcolor="{}"><b>{}</b>{}</td></tr>)",
                           state.reachable ? kHeader : kPaleHeader,
                           coloured(state.reachable ? kInk : kPale, labelOf(state)), marksOf(state.marks, "<br/>"));
        for (const GraphArrow& arrow : state.arrows) {
            writeRow(arrow, state.reachable);
        }
        out += isEnd ? "</table></td></tr></table>>]\n" : "</table>>]\n";
    }

    void writeRow(const GraphArrow& arrow, bool reachable) {
        out += fmt::format(
            R"(<hr/><tr><td port="n{0}" valign="top">{1}</td><td port="t{0}" align="left"{2}>{3}</td></tr>)",
            arrow.first, coloured(kPale, orderOf(arrow)),
            arrow.marks.empty() ? "" : fmt::format(R"( bgcolor="{}")", kWarningGround), rowTextOf(arrow, reachable));
    }

    static std::string rowTextOf(const GraphArrow& arrow, bool reachable) {
        constexpr std::string_view kBreak = R"(<br align="left"/>)";
        const std::string_view colour = textColourOf(arrow, reachable);
        std::string text = fmt::format("<b>{}</b>{}", coloured(colour, arrow.title), kBreak);
        const auto add = [&](const std::vector<std::string>& lines, std::string_view lineColour) {
            for (const std::string& line : lines) {
                text += coloured(lineColour, line);
                text += kBreak;
            }
        };
        add(conditionLinesOf(arrow), colour);
        add(actionLinesOf(arrow), colour);
        if (arrow.traffic) {
            const bool blocked = kindOf(arrow.traffic) == TrafficKind::NeverFired;
            add({(blocked ? "✗ " : "") + trafficLineOf(arrow)}, lineOf(arrow, reachable).colour);
        }
        add(markLinesOf(arrow.marks), kWarning);
        return text;
    }

    void writeLine(const RuleGraph& graph, std::size_t from, const GraphArrow& arrow, const std::string& name) {
        const GraphState& state = graph.states[from];
        const Line line = lineOf(arrow, state.reachable);
        const bool stays = arrow.target == from;
        // A loop hangs on the left, out of the way of the lines that leave on the right.
        const std::string port = stays ? fmt::format("n{}:w", arrow.first) : fmt::format("t{}:e", arrow.first);
        const std::string tail = fmt::format("{}s{}:{}", name, from, port);
        const std::string head = stays ? tail : fmt::format("{}s{}:name", name, arrow.target);
        const std::string said = fmt::format("{} {} → {}: {}", orderOf(arrow), labelOf(state),
                                             labelOf(graph.states[arrow.target]), arrow.title);
        out += fmt::format("    {} -> {} [color=\"{}\", style={}, arrowhead={}, penwidth={:.2f}, tooltip=\"{}\"]\n",
                           tail, head, line.colour, line.style, line.arrowHead, line.width, withEscapes(said));
    }

    void writeLegend(const std::string& replay) {
        out += fmt::format(
            "  label=<replay of {}<br align=\"left\"/>{}<br align=\"left\"/>{}<br align=\"left\"/>{}"
            "<br align=\"left\"/>>\n",
            withEscapes(pictureText(replay, 80)), coloured(kFired, "━━▶  fired; wider is more often"),
            coloured(kNeverFired, "┅┅┤  ✗ tried, but never fired"), coloured(kPale, "╌╌▶  never tried"));
    }

    static std::string marksOf(const std::vector<GraphMark>& marks, std::string_view separator) {
        std::string text;
        for (const std::string& line : markLinesOf(marks)) {
            text += separator;
            text += coloured(kWarning, line);
        }
        return text;
    }

    // Returns all that is wrong with a state and with the transitions that leave it: a row cannot have a tooltip of its
    // own.
    static std::string messagesOf(const GraphState& state) {
        std::string messages = Tool::messagesOf(state.marks);
        for (const GraphArrow& arrow : state.arrows) {
            const std::string ofArrow = Tool::messagesOf(arrow.marks);
            if (!ofArrow.empty()) {
                messages += (messages.empty() ? "" : " · ") + orderOf(arrow) + ": " + ofArrow;
            }
        }
        return messages;
    }

    // Returns it as an attribute, with what separates it from the next one.
    static std::string tooltip(const std::string& text) {
        return text.empty() ? "" : fmt::format("tooltip=\"{}\", ", withEscapes(text));
    }

    std::string out;
};

}  // namespace

std::string dotOf(const std::vector<RuleGraph>& graphs, const std::string& replay) {
    return DotWriter().write(graphs, replay);
}

}  // namespace Brenta::OS::VIG::Tool
