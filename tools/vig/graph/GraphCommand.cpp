#include "tools/vig/graph/GraphCommand.h"

#include <host/LogSink.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/check/Catalogue.h"
#include "tools/vig/check/Findings.h"
#include "tools/vig/document/DocumentText.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/graph/DotWriter.h"
#include "tools/vig/graph/Graphviz.h"
#include "tools/vig/graph/MermaidWriter.h"
#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/io/Output.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// `vig check` tells what the library says about a document; a picture needs only its verdict.
bool isAccepted(const DocumentText& document) {
    const host::LogSink previous = host::setLogSink([](int, std::string_view, std::string_view) {});
    const auto parsed = VIGResponseParser().parse(document.root(), libraryRegistry());
    host::setLogSink(previous);
    return parsed.error == VIGParseError::Ok;
}

std::vector<ConfigModel> modelsOf(const DocumentText& document) {
    std::vector<ConfigModel> models;
    for (Json::ArrayIndex index = 0; index < document.root()["configs"].size(); ++index) {
        models.push_back(modelOf(document, index));
    }
    return models;
}

// What each transition did in a replay of the events, by configuration; empty if none is asked for. Sets `status` if
// that fails, having said why.
std::vector<std::vector<Traffic>> trafficOf(const GraphOptions& options, const std::vector<ConfigModel>& models,
                                            const Console& console, const Interruption& interruption, int& status) {
    if (options.events.empty()) {
        return {};
    }
    RunOptions replay;
    replay.rules = options.rules;
    replay.seed = options.seed;
    replay.contextFile = options.contextFile;
    replay.events = options.events;
    TransitionCounts counts;
    status = countTransitions(replay, console, interruption, counts);
    const bool sameDocument = std::ranges::equal(counts.byConfig(), models, {}, &std::vector<Traffic>::size,
                                                 [](const ConfigModel& each) { return each.transitions.size(); });
    if (status == kExitDone && !sameDocument) {
        console.complain(options.rules + ": changed while it was read");
        status = kExitUnusable;
    }
    return counts.byConfig();
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

}  // namespace

int graph(const GraphOptions& options, const Console& console, const Interruption& interruption) {
    if (options.format == GraphFormat::Png && isatty(console.out) == 1) {
        console.complain("standard output is a terminal, which cannot show a PNG; redirect it to a file");
        return kExitUnusable;
    }
    std::string problem;
    auto text = readFile(options.rules, interruption, problem);
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    if (!text) {
        console.complain(options.rules + ": " + problem);
        return kExitUnusable;
    }
    const DocumentText document(options.rules, std::move(*text));
    if (!isAccepted(document)) {
        console.say(options.rules + ": error: refused; `vig check " + options.rules + "` tells what is wrong");
        return kExitRefused;
    }
    const std::vector<ConfigModel> models = modelsOf(document);
    const std::vector<Finding> findings = findingsIn(document, libraryRegistry(), Catalogue::builtIn());
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    int status = kExitDone;
    const auto traffic = trafficOf(options, models, console, interruption, status);
    return status == kExitDone ? draw(graphsOf(models, findings, traffic), options, console, interruption) : status;
}

}  // namespace Brenta::OS::VIG::Tool
