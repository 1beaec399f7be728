#include "tools/vig/graph/GraphCommand.h"

#include <unistd.h>

#include <optional>
#include <vector>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/graph/Pictures.h"
#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/run/Replay.h"
#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Counts what the machines do with their transitions.
class TransitionCounter final : public Trace {
  public:
    // The elements have the indices of the configuration and of the transition, both in document order.
    std::vector<std::vector<Traffic>> traffic;

    void loaded(const DocumentModel& document) override {
        for (const ConfigModel& config : document.configs) {
            traffic.emplace_back(config.transitions.size());
        }
    }

    void step(const Step& step) override {
        for (const Attempt& attempt : step.attempts) {
            Traffic& count = traffic[step.machine.index][attempt.index];
            ++count.tried;
            count.fired += attempt.fired ? 1 : 0;
        }
    }
};

// Replays the events to the machines. If that fails, says why and returns the exit status.
std::optional<int> replay(const GraphOptions& options, RuleRun& rules, const Console& console,
                          const Interruption& interruption) {
    Replay replay(options.events, EventReader::Devices::One, console, interruption);
    Progress progress(console.err, {0, sizeOfEvents({options.events}, console)});
    rules.session().start();
    replay.play([&machines = rules.session().machines()](const EventRecord& record) { machines.offer(record); },
                rules.output(), progress);
    progress.clear();
    if (!replay.problem().empty()) {
        console.say(replay.problem());
        return kExitUnusable;
    }
    return interruption.requested() ? std::optional(kExitInterrupted) : std::nullopt;
}

int write(const std::string& text, const Console& console) {
    Output output(console.out);
    output.write(text);
    return console.finish(output, kExitDone);
}

int writeImage(const std::string& dot, const std::string& format, const Console& console,
               const Interruption& interruption) {
    const Rendering rendering = renderGraph(dot, format, interruption);
    switch (rendering.status) {
        case Rendering::Status::Missing:
            console.complain("--format " + format + " needs the program dot of Graphviz, which is not installed");
            console.say("On Debian: apt install graphviz. Without it: --format dot, --format mermaid.");
            return kExitUnusable;
        case Rendering::Status::Failed:
            console.complain("Graphviz failed: " + rendering.messages);
            return kExitUnusable;
        case Rendering::Status::Interrupted:
            return kExitInterrupted;
        case Rendering::Status::Done:
            break;
    }
    if (!rendering.messages.empty()) {
        console.say("vig: Graphviz: " + rendering.messages);
    }
    return write(rendering.image, console);
}

int draw(const std::vector<RuleGraph>& graphs, const GraphOptions& options, const Console& console,
         const Interruption& interruption) {
    if (options.format == GraphFormat::Mermaid) {
        return write(mermaidOf(graphs), console);
    }
    const std::string dot = dotOf(graphs, options.events.substr(options.events.rfind('/') + 1));
    if (options.format == GraphFormat::Dot) {
        return write(dot, console);
    }
    return writeImage(dot, options.format == GraphFormat::Svg ? "svg" : "png", console, interruption);
}

// Loads the rules and lets the recording, if there is one, run through them. Returns the exit status if that fails;
// otherwise `text` is that of the document.
std::optional<int> run(const GraphOptions& options, TransitionCounter& counter, const Console& console,
                       const Interruption& interruption, std::string& text) {
    RuleRun rules(options, {ReportFormat::None, false}, console, interruption);
    if (!options.events.empty()) {
        rules.observe(counter);
    }
    if (const auto status = rules.load(RuleSession::Changes::Ignore)) {
        return rules.abandon(*status);
    }
    text = rules.session().document().text.source().text();
    return options.events.empty() ? std::nullopt : replay(options, rules, console, interruption);
}

}  // namespace

int graph(const GraphOptions& options, const Console& console, const Interruption& interruption) {
    if (options.format == GraphFormat::Png && isatty(console.out) == 1) {
        console.complain("standard output is a terminal, which cannot show a PNG; redirect it to a file");
        return kExitUnusable;
    }
    if (isStandardInput(options.rules) && isStandardInput(options.events)) {
        return refuseArguments(console, kStandardInputTwice, "graph");
    }
    TransitionCounter counter;
    std::string text;
    if (const auto status = run(options, counter, console, interruption, text)) {
        return *status;
    }
    const DocumentModel document(nameOfInput(options.rules), std::move(text));
    const std::vector<RuleGraph> graphs = checkedGraphsOf(document, counter.traffic, interruption);
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    return draw(graphs, options, console, interruption);
}

constexpr const char* kHelp =
    R"(A box is a state; its rows are the transitions that leave it, in the order in which they are tried. What no chain of
transitions reaches is grey. With --events, a line is the wider the more often its transition fired, red and dotted
where it was tried and never fired, thin, grey and dashed where it was never tried.

Example: where does the recording get stuck?
  vig graph rules.json --events trace.jsonl --format svg > rules.svg)";

void addGraph(CommandLine& commandLine, GraphOptions& options) {
    Verb verb = commandLine.addVerb("graph", "Draws the machines of a rule document.", kHelp, graph, options);
    addRules(verb, options);
    verb.choice("--format", options.format,
                {{"dot", GraphFormat::Dot},
                 {"svg", GraphFormat::Svg},
                 {"png", GraphFormat::Png},
                 {"mermaid", GraphFormat::Mermaid}},
                "dot for Graphviz; svg and png, which call it; mermaid for a README");
    verb.name("--events", options.events, "FILE", "Event records to replay: shows how often each transition fired");
    addSurroundings(verb, options, "");
}

}  // namespace Brenta::OS::VIG::Tool
