#include "tools/vig/decide/ProveCommand.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/catalogue/CatalogueCommand.h"
#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/decide/Proof.h"
#include "tools/vig/decide/ProofWriters.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/run/RuleRun.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// What other contexts would change is to cost a document a second at most.
constexpr std::uint64_t kEffortForContexts = 200'000'000;

class ProveRun {
  public:
    ProveRun(const ProveOptions& options, const Console& console, const Interruption& interruption)
        : options(options), console(console), interruption(interruption), out(console.out) {}

    int run() {
        if (const auto status = loadCatalogue(options.catalogueFile, console, interruption, catalogue)) {
            return *status;
        }
        if (hasStandardInputTwice(options.rules)) {
            return refuseArguments(console, kReadOnce, "prove");
        }
        if (const auto status = readContext(options.contextFile, console, interruption, context)) {
            return *status;
        }
        if (!options.witnessFolder.empty() && !createFolder()) {
            return kExitUnusable;
        }
        out.write(isJson() ? "{\"machines\":[" : "");
        for (const std::string& path : options.rules) {
            out.flush();
            const auto text = readRules(path, console, interruption);
            isUsable = isUsable && text;
            if (text) {
                proveDocument(nameOfInput(path), *text);
                // Whatever becomes of the next document, this one's answers are told.
                out.flush();
            }
            if (interruption.requested()) {
                return kExitInterrupted;
            }
        }
        out.write(isJson() ? "\n],\"load\":" + jsonOf(sum) + "}\n" : "");
        return console.finish(out, !isUsable ? kExitUnusable : isDecided ? kExitDone : kExitRefused);
    }

  private:
    bool isJson() const { return options.format == ProofFormat::Json; }

    void complain(const std::string& what) {
        out.flush();
        console.complain(what);
        isUsable = false;
    }

    bool createFolder() {
        std::error_code error;
        std::filesystem::create_directories(options.witnessFolder, error);
        if (error) {
            complain(options.witnessFolder + ": " + error.message());
        }
        return !error;
    }

    void proveDocument(const std::string& path, const std::string& text) {
        Effort effort{.interruption = &interruption};
        Effort forContexts{kEffortForContexts, &interruption};
        const DocumentModel document({}, text);
        Rehearsal rehearsal(document.configs, context);
        const Surroundings surroundings{registry, catalogue, context, effort};
        const auto& configs = document.configs;
        LoadSum sumOfDocument;
        for (std::size_t index = 0; index < configs.size(); ++index) {
            Proof proof = prove(configs[index], index, surroundings, forContexts, rehearsal);
            if (interruption.requested()) {
                return;
            }
            if (!proof.fault.empty()) {
                complain(
                    fmt::format("{}: machine {}: {}: the library does not do what was decided, which is a fault of "
                                "vig; please report it with the document",
                                path, index, proof.fault));
                sumOfDocument.leaveUndecided();
                sum.leaveUndecided();
                continue;
            }
            writeWitnesses(path, proof);
            isDecided = isDecided && proof.isDecided();
            sumOfDocument.add(proof.load);
            sum.add(proof.load);
            if (isJson()) {
                out.write(std::exchange(separator, ",") + "\n" + jsonOf(proof, path));
            } else {
                out.write(std::exchange(separator, "\n") + printable(path) + ": " + textOf(proof));
            }
        }
        if (!isJson() && configs.size() > 1) {
            out.write("\n" + printable(path) + ": " + textOf(sumOfDocument));
        }
    }

    // Writes each recording to a file of its own.
    void writeWitnesses(const std::string& rules, Proof& proof) {
        const auto write = [&](std::optional<Recording>& recording, const std::string& name) {
            if (recording) {
                writeWitness(rules, fmt::format("{}-{}.jsonl", proof.index, name), *recording);
            }
        };
        for (std::size_t state = 0; state < proof.states.size(); ++state) {
            write(proof.states[state].recording, fmt::format("state-{}", state));
        }
        for (std::size_t transition = 0; transition < proof.transitions.size(); ++transition) {
            write(proof.transitions[transition].recording, fmt::format("transition-{}", transition));
        }
        write(proof.load.recording, "load");
        write(proof.load.distanceRecording, "distance");
    }

    void writeWitness(const std::string& rules, const std::string& name, Recording& recording) {
        if (options.witnessFolder.empty() || hasFailed) {
            return;
        }
        const std::string path = (std::filesystem::path(options.witnessFolder) / name).string();
        const auto isInput = [&](const std::string& input) {
            std::error_code ignored;
            return std::filesystem::equivalent(path, input, ignored);
        };
        if (isInput(rules) || isInput(options.contextFile) || isInput(options.catalogueFile)) {
            hasFailed = true;
            complain("--witness would overwrite " + path);
            return;
        }
        const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
        int error = errno;
        if (file.isOpen()) {
            Output records(file.get());
            records.write(recordsOf(recording));
            records.flush();
            error = records.failure();
        }
        if (error != 0) {
            hasFailed = true;
            complain(path + ": " + systemError(error));
            return;
        }
        recording.path = path;
    }

    const ProveOptions& options;
    const Console& console;
    const Interruption& interruption;
    const VIGParserConfig registry = libraryRegistry();
    Output out;
    Catalogue catalogue;
    AttributeSet context;
    LoadSum sum;
    std::string separator;  // from the machine before
    bool isDecided = true;
    bool isUsable = true;
    bool hasFailed = false;  // to write a recording; no other one is tried
};

}  // namespace

int prove(const ProveOptions& options, const Console& console, const Interruption& interruption) {
    if (!options.witnessFolder.empty() && options.rules.size() > 1) {
        return refuseArguments(console, "--witness takes the recordings of one rule document", "prove");
    }
    return ProveRun(options, console, interruption).run();
}

constexpr const char* kHelp =
    R"(For each machine: the states that it can reach and the transitions that can fire, with the length of the shortest
recording that gets it there; where it stays for ever; and how many triggers it can cause at worst, how near to each
other. Events may be any that a record can hold, and draws any. The library has played each recording before it is
shown. With --witness, each answer names its file and the draws to replay it with, as `vig run RULES` takes them.

Exit status: 0 all is decided, 1 something is not, 2 a document is refused or cannot be read, or the library does not do
what was decided.

Example: what makes the machine cause so many triggers?
  vig prove rules.json --witness shown
  vig run rules.json shown/0-load.jsonl --explain)";

void addProve(CommandLine& commandLine, ProveOptions& options) {
    Verb verb =
        commandLine.addVerb("prove", "Decides what rule documents can do, for all events.", kHelp, prove, options);
    verb.argument("RULES", options.rules, Verb::Need::Required, "The rule documents");
    verb.choice("--format", options.format, {{"text", ProofFormat::Text}, {"json", ProofFormat::Json}},
                "text for people, json for programs, with the recordings");
    verb.name("--witness", options.witnessFolder, "DIR",
              "Writes the recordings to files in that folder; for one rule document");
    addContext(verb, options.contextFile);
    addCatalogueFile(verb, options.catalogueFile);
}

}  // namespace Brenta::OS::VIG::Tool
