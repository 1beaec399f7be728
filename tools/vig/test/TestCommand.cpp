#include "tools/vig/test/TestCommand.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <fnmatch.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <system_error>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/findings/FindingWriters.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/run/RuleRun.h"
#include "tools/vig/test/Coverage.h"
#include "tools/vig/test/Generate.h"
#include "tools/vig/test/JUnit.h"
#include "tools/vig/test/MutantHunt.h"
#include "tools/vig/test/Property.h"
#include "tools/vig/test/TestFile.h"
#include "tools/vig/test/TestPage.h"
#include "tools/vig/test/TestRun.h"
#include "tools/vig/test/TestText.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

class TestSuite {
  public:
    TestSuite(const TestOptions& options, const Console& console, const Interruption& interruption)
        : options(options),
          console(console),
          interruption(interruption),
          out(options.format == TestFormat::Html ? Output([this](std::string_view text) {
              report += text;
              return 0;
          })
                                                 : Output(console.out)),
          page(console, interruption) {}

    int run() {
        const int status = runAll();
        return options.format == TestFormat::Html ? writePage(status) : console.finish(out, status);
    }

  private:
    // Returns the exit status.
    int runAll() {
        if (!read() || (!options.writeFile.empty() && !readTarget())) {
            return interruption.requested() ? kExitInterrupted : kExitUnusable;
        }
        for (const TestFile& file : files) {
            if (const auto status = runFile(file)) {
                return *status;
            }
        }
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        const auto failed = std::ranges::count_if(verdicts, [](const auto& each) { return !each.failure.empty(); });
        const bool covered = reportCoverage();
        int status = failed > 0 || !covered ? kExitRefused : kExitDone;
        if (options.mutants) {
            for (auto& [canonical, rules] : rulesByPath) {
                status = std::max(status, reportMutants(rules));
            }
            if (interruption.requested()) {
                return kExitInterrupted;
            }
        }
        out.write(fmt::format("{} test{}: {} passed, {} failed\n", verdicts.size(), verdicts.size() == 1 ? "" : "s",
                              verdicts.size() - static_cast<std::size_t>(failed), failed));
        if (!options.junitFile.empty() && !writeJUnit()) {
            return interruption.requested() ? kExitInterrupted : kExitUnusable;
        }
        return status;
    }

    // A rule document is read once, however many tests of it there are: a pipe tells it only once, and a file may be
    // saved meanwhile.
    struct Rules {
        std::string path;  // as the first file of tests names them
        Descriptor copy;
        Coverage coverage;
        std::vector<const TestFile*> files = {};
        bool haveFailed = false;
    };

    // It is a test or a property.
    struct Check {
        const std::string& name;
        std::size_t line;
        const TestCase* test;  // null if it is a property
        std::function<TestOutcome()> run;
    };

    // Reads all files before the first test runs.
    bool read() {
        std::vector<std::string> errors;
        for (const std::string& path : options.files) {
            auto file = readTestFile(path, options.draws, interruption, errors);
            if (interruption.requested()) {
                return false;
            }
            if (!file) {
                continue;
            }
            const auto isLeftOut = [&](const auto& each) { return !isSelected(each.name); };
            std::erase_if(file->tests, isLeftOut);
            std::erase_if(file->properties, isLeftOut);
            if (options.filter.empty() || !file->tests.empty() || !file->properties.empty()) {
                files.push_back(std::move(*file));
            }
        }
        for (const std::string& error : errors) {
            console.say(error);
        }
        if (errors.empty() && files.empty()) {
            console.complain("no test is called like " + inQuotes(options.filter));
            return false;
        }
        return errors.empty() && !wouldDestroyAnInput();
    }

    bool isSelected(const std::string& name) const {
        std::string pattern = "*";
        for (const char each : options.filter) {
            // Names may have brackets and backslashes, which are no wildcards here.
            pattern += each == '[' || each == '\\' ? "\\" : "";
            pattern += each;
        }
        return fnmatch((pattern + "*").c_str(), name.c_str(), 0) == 0;
    }

    bool wouldDestroyAnInput() const {
        const auto isReport = [&](const std::string& path) {
            std::error_code ignored;
            return !options.junitFile.empty() && std::filesystem::equivalent(path, options.junitFile, ignored);
        };
        const bool would =
            std::ranges::any_of(options.files, isReport) || std::ranges::any_of(files, [&](const TestFile& each) {
                return isReport(each.rules) || std::ranges::any_of(each.eventFiles, isReport);
            });
        if (would) {
            console.complain("--junit would overwrite " + options.junitFile);
        }
        return would;
    }

    // One file can have many paths, and what ".." leaves need not be what its text says.
    static std::string canonical(const std::string& path) {
        std::error_code ignored;
        return std::filesystem::weakly_canonical(std::filesystem::absolute(path, ignored), ignored).string();
    }

    // Reads the file to which tests are to be added, if it is there. Returns false if that file is none of the one
    // document that is tested.
    bool readTarget() {
        const std::string rules = canonical(files.front().rules);
        if (std::ranges::any_of(files, [&](const TestFile& each) { return canonical(each.rules) != rules; })) {
            console.complain("--write adds the tests of one rule document, and these are of several");
            return false;
        }
        std::error_code ignored;
        if (!std::filesystem::exists(options.writeFile, ignored)) {
            return true;
        }
        std::vector<std::string> errors;
        std::string problem;
        target = readTestFile(options.writeFile, options.draws, interruption, errors);
        auto text = readFile(options.writeFile, interruption, problem);
        for (const std::string& each : errors) {
            console.say(each);
        }
        if (target && text && canonical(target->rules) != rules) {
            console.complain(options.writeFile + " has the tests of " + target->rules);
            return false;
        }
        targetText = text.value_or("");
        return target && text;
    }

    // Returns nothing if the run is to go on.
    std::optional<int> runFile(const TestFile& file) {
        const std::string rules = canonical(file.rules);
        auto under = rulesByPath.find(rules);
        if (under == rulesByPath.end()) {
            std::string problem;
            auto copy = copyInMemory(file.rules, interruption, problem);
            if (!copy) {
                return interruption.requested() ? kExitInterrupted : unusable(file.rules + ": " + problem);
            }
            under = rulesByPath.try_emplace(rules, Rules{file.rules, std::move(*copy), Coverage(file.rules)}).first;
        }
        const std::string rulesCopy = pathOf(under->second.copy);
        under->second.files.push_back(&file);
        std::vector<Check> checks;
        for (const TestCase& each : file.tests) {
            checks.push_back({each.name, each.line, &each,
                              [&] { return runTest(rulesCopy, each, under->second.coverage, interruption); }});
        }
        for (const Property& each : file.properties) {
            checks.push_back(
                {each.name, each.line, nullptr, [&] { return checkProperty(rulesCopy, each, interruption); }});
        }
        std::size_t failed = 0;
        for (const Check& each : checks) {
            const TestOutcome outcome = each.run();
            switch (outcome.loading) {
                case RuleSession::Loading::Done:
                    break;
                case RuleSession::Loading::Refused:
                    under->second.haveFailed = true;
                    refuse(file, checks, rulesCopy);
                    return std::nullopt;
                case RuleSession::Loading::Unreadable:
                    return unusable(file.rules + ": " + outcome.problem);
                case RuleSession::Loading::Interrupted:
                    return kExitInterrupted;
            }
            if (!outcome.fault.empty()) {
                return unusable(fmt::format("{}:{}: a fault of vig: {}", file.path, each.line, outcome.fault));
            }
            verdicts.push_back({file.path, each.name, outcome.failure});
            failed += outcome.failure.empty() ? 0 : 1;
            if (!outcome.failure.empty()) {
                under->second.haveFailed = true;
                show(file, each, outcome.failure);
                if (options.format == TestFormat::Html) {
                    page.add(rulesCopy, fmt::format("{}:{}: {}", file.path, each.line, each.name), each.test, outcome);
                }
            }
        }
        out.write(fmt::format("{}  {}: {} of {} passed\n", failed == 0 ? "ok  " : "FAIL", printable(file.path),
                              checks.size() - failed, checks.size()));
        // Whatever becomes of the next file, this one's verdict is told.
        out.flush();
        return std::nullopt;
    }

    // Also tells what was found before an input was unusable, as the text does.
    int writePage(int status) {
        out.flush();
        if (report.empty() || status == kExitInterrupted) {
            return status;
        }
        Output html(console.out);
        html.write(page.html(joined(files, ", ", [](const TestFile& file) { return printable(file.path); }), report));
        return console.finish(html, status);
    }

    int unusable(const std::string& what) {
        out.flush();
        console.complain(what);
        return kExitUnusable;
    }

    void show(const TestFile& file, const Check& failed, const std::vector<std::string>& failure) {
        out.write(fmt::format("FAIL  {}:{}: {}\n", printable(file.path), failed.line, shownName(failed.name)));
        for (const std::string& line : failure) {
            out.write("    " + line + "\n");
        }
    }

    // Tells that none of the tests of refused rules can pass.
    void refuse(const TestFile& file, const std::vector<Check>& checks, const std::string& rulesCopy) {
        std::string text;
        loadRules(rulesCopy, interruption, text);
        const std::string refusal = refusalText(DocumentText(file.rules, std::move(text)));
        const std::vector<std::string> lines = printableLines(refusal);
        for (const Check& each : checks) {
            // It is added once for the file: a large document has many lines, and may have many tests.
            const bool isFirst = &each == &checks.front();
            verdicts.push_back({file.path, each.name, isFirst ? lines : std::vector(1, lines.front())});
        }
        out.write(fmt::format("FAIL  {}: the rules cannot be tested\n", printable(file.path)));
        out.flush();
        console.sayText(refusal);
    }

    // Returns false if it is not enough.
    bool reportCoverage() {
        if (!options.coverage && !options.coverageMin) {
            return true;
        }
        bool enough = true;
        for (const auto& [canonical, rules] : rulesByPath) {
            const Coverage& coverage = rules.coverage;
            if (!coverage.hasRun()) {
                continue;
            }
            for (const std::string& gap : coverage.gaps()) {
                out.write(printable(gap) + "\n");
            }
            const auto transitions = coverage.transitions();
            const auto outcomes = coverage.filterOutcomes();
            const double percent = coverage.percent();
            // The percentage is rounded down: 100 % is everything.
            out.write(fmt::format("coverage  {}: {:.1f} % (transitions fired {}/{}, filter outcomes seen {}/{})\n",
                                  printable(rules.path), std::floor(percent * 10) / 10, transitions.reached,
                                  transitions.all, outcomes.reached, outcomes.all));
            enough = enough && percent >= options.coverageMin.value_or(0);
        }
        if (!enough) {
            out.write(fmt::format("coverage is below {} %\n", *options.coverageMin));
        }
        return enough;
    }

    // Returns the exit status.
    int reportMutants(const Rules& rules) {
        const std::string path = printable(rules.path);
        if (rules.haveFailed) {
            out.write(fmt::format("mutants  {}: not tried, since a test of it fails\n", path));
            return kExitDone;
        }
        std::vector<const TestCase*> tests;
        std::vector<const Property*> properties;
        for (const TestFile* const file : rules.files) {
            for (const TestCase& each : file->tests) {
                tests.push_back(&each);
            }
            for (const Property& each : file->properties) {
                properties.push_back(&each);
            }
        }
        const MutantScore score =
            huntMutants(pathOf(rules.copy), rules.path, tests, properties, !options.writeFile.empty(), interruption);
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        for (const std::string& line : score.lines) {
            out.write(line + "\n");
        }
        out.write(fmt::format("mutants  {}: {} of {} noticed{}\n", path, score.noticed, score.noticed + score.survived,
                              othersOf(score)));
        if (!score.fault.empty()) {
            return unusable(fmt::format("{}: a fault of vig: {}", rules.path, score.fault));
        }
        if (!options.writeFile.empty() && !score.tests.empty() && !write(score.tests, rules)) {
            return interruption.requested() ? kExitInterrupted : kExitUnusable;
        }
        return score.survived > 0 ? kExitRefused : kExitDone;
    }

    // Returns what has become of the mutants that are not in the score.
    static std::string othersOf(const MutantScore& score) {
        std::string text;
        for (const auto& [count, what] : {std::pair(score.equivalent, "without effect"),
                                          std::pair(score.unrecordable, "without effect in any recording"),
                                          std::pair(score.undecided, "not decided")}) {
            text += count > 0 ? fmt::format("{} {} {}", text.empty() ? ", besides" : ",", count, what) : std::string();
        }
        return text;
    }

    bool write(const std::vector<MutantScore::NewTest>& tests, const Rules& rules) {
        const std::string& path = options.writeFile;
        if (!readTarget()) {
            return false;
        }
        std::set<std::string> names;
        if (target) {
            for (const TestCase& each : target->tests) {
                names.insert(each.name);
            }
            for (const Property& each : target->properties) {
                names.insert(each.name);
            }
        }
        std::vector<std::string> texts;
        for (const auto& [test, expected] : tests) {
            TestCase named = test;
            for (int count = 2; !names.insert(named.name).second; ++count) {
                named.name = fmt::format("{} ({})", test.name, count);
            }
            texts.push_back(textOf(named, expected));
        }
        std::error_code ignored;
        const auto folder = std::filesystem::path(canonical(path)).parent_path();
        const std::string text =
            target ? withTests(DocumentText(path, targetText), texts)
                   : testFileOf(std::filesystem::proximate(canonical(rules.path), folder, ignored).string(), texts);
        if (const std::string problem = replaceFile(path, text); !problem.empty()) {
            unusable(path + ": " + problem);
            return false;
        }
        out.write(
            fmt::format("wrote  {}: {} more test{}\n", printable(path), texts.size(), texts.size() == 1 ? "" : "s"));
        return true;
    }

    bool writeJUnit() {
        const std::string& path = options.junitFile;
        const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
        int error = errno;
        if (file.isOpen()) {
            Output report(file.get());
            report.write(junitXml(verdicts));
            report.flush();
            error = report.failure();
        }
        if (error != 0 && !interruption.requested()) {
            out.flush();
            console.complain(path + ": " + systemError(error));
        }
        return error == 0;
    }

    const TestOptions& options;
    const Console& console;
    const Interruption& interruption;
    std::string report;  // what would be printed, if a page is made
    Output out;
    TestPage page;
    std::vector<TestFile> files;
    std::map<std::string, Rules> rulesByPath;  // without links and ".."
    std::vector<TestVerdict> verdicts;
    std::optional<TestFile> target;  // of --write, if it is there already
    std::string targetText;
};

}  // namespace

int test(const TestOptions& options, const Console& console, const Interruption& interruption) {
    if (options.generate == "-") {
        return refuseArguments(console, "--generate takes a file, since the tests name it", "test");
    }
    if (hasStandardInputTwice(options.files)) {
        return refuseArguments(console, kReadOnce, "test");
    }
    if (!options.generate.empty()) {
        return generateTests(options.generate, console, interruption);
    }
    if (options.files.empty()) {
        return refuseArguments(console, "FILE is required", "test");
    }
    if (!options.writeFile.empty() && !options.mutants) {
        return refuseArguments(console, "--write requires --mutants", "test");
    }
    return TestSuite(options, console, interruption).run();
}

constexpr const char* kHelp =
    R"(A test file names a rule document and what it should do; paths in it are relative to it:
  { "rules": "rules.json",
    "tests": [
      { "name": "the camera is collected once",
        "events": [ {"event":"ProcessMemoryHeartBeat","string":{"processName":"camera"},
                     "int64":{"vmRssKB":400000,"vmSwapKB":0}} ],
        "seed": 5489, "context": { "int64": { "limit": 5 } },
        "expect": { "triggers": [ { "process": "camera", "event": 1, "metadata_contains": ["vmSwapKB:0"] } ],
                    "log": [], "states": { "7": "end" }, "moves": 1 } } ] }
"events" may also be the name of a file of event records, and "series" in its place tells them in short:
  "series": { "event": "ProcessMemoryHeartBeat", "processName": "camera", "vmRssKB": "100000 400000x3" } A trigger may be told by its "name", "process", "config"
(id), "event" (number), "metadata" (all of it) and "metadata_contains"; a log line is its message, or an object with
"message" and "priority". Triggers and log lines that are not expected fail the test, but for the line that the
document was found. States and moves are checked where they are given. "seed" and "context" may be left out.
In the place of "seed", "draws": [0.05, 0.7] says what the function PseudoRandomDouble gives, the last number for ever.

Beside or in the place of "tests", "properties" are decided for all recordings of events, each for every machine:
  "properties": [
    { "name": "only a large process is collected", "trigger_only_if": [ FILTER, ... ] },
    { "name": "it shrinks in between", "config": 7, "between_triggers": [ FILTER, ... ] },
    { "name": "not too often", "context": {}, "at_most": { "triggers": 1, "events": 100 } },
    { "name": "it can stop", "can_reach": { "7": "end" } },
    { "name": "it never fails", "cannot_reach": { "7": "failed" } } ]
An event has to fulfil all filters, which are written as in a rule document but for functions, and may have an "event":
its type. "config" (id) and "context" may be left out, and so may "events": at most so many triggers then ever. A
property that is not true fails with a shortest recording that shows it; one that cannot be decided fails as well.

--generate RULES writes such a file to the standard output: recordings that together fire all transitions and see all
outcomes of filters that any events can, and what the library does with them. What no event does is listed besides.
"rules" is RULES as it is given, so that the file is kept where that path leads to the document.

--mutants changes the document in small ways, as an author could by mistake: a threshold by a step or by a tenth, > and
>=, == and !=, a text; a filter, an action or a transition is lost; two transitions are swapped; a state or an event is
another one. It tells which of these mutants no test and no property notices, though they make a difference, and the
shortest recording that shows it. Those that are proved to change nothing do not count. --write adds such recordings to
a file of tests, with what the document does now: read it before you keep it.

Coverage counts the transitions that fired, and for each filter whether it was ever true and whether it was ever false.

--format html writes a page with the whole report, on which the tests and properties that fail can be stepped through
in a browser.

Example: all tests, with what they do not reach, and a report for the build server:
  vig test rules/*.test.json --coverage-min 100 --junit results.xml)";

void addTest(CommandLine& commandLine, TestOptions& options) {
    Verb verb = commandLine.addVerb("test", "Runs the tests of rule documents, and decides their properties.", kHelp,
                                    test, options);
    verb.argument("FILE", options.files, Verb::Need::Optional,
                  "Files of tests; - for standard input, of which paths are relative to the current folder");
    verb.choice("--format", options.format, {{"text", TestFormat::Text}, {"html", TestFormat::Html}},
                "text for people, html for a page that also lets them step through the tests that fail");
    verb.name(
        "--generate", options.generate, "RULES",
        "Writes a file of tests that reach all of this rule document that can be reached, in the place of running any");
    verb.text("--filter", options.filter, "NAME",
              "Runs only the tests and properties whose name has this part; * and ? are wildcards");
    verb.flag("--coverage", options.coverage, "Tells which transitions and filters the tests do not reach");
    verb.option("--coverage-min", "PERCENT", "Fails if less of any rule document is reached",
                [&options](const std::string& text) {
                    double number = 0;
                    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
                    const bool isOne =
                        error == std::errc() && end == text.data() + text.size() && number >= 0 && number <= 100;
                    options.coverageMin = number;
                    return isOne ? "" : "expected a number from 0 to 100, got " + text;
                });
    verb.flag("--mutants", options.mutants, "Tells which small changes of the rule document no test notices");
    verb.name("--write", options.writeFile, "FILE", "Adds tests to this file that notice them; with --mutants");
    verb.name("--junit", options.junitFile, "FILE", "Writes the results there, as JUnit XML");
    addDraws(verb, options.draws, "; for the tests without \"draws\" and \"seed\"");
    for (const char* const other : {"FILE", "--format", "--filter", "--coverage", "--coverage-min", "--mutants",
                                    "--write", "--junit", "--draw"}) {
        verb.refuseTogether("--generate", other);
    }
}

}  // namespace Brenta::OS::VIG::Tool
