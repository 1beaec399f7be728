#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "rulesengine/EventType.h"
#include "rulesengine/Filter.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/Draws.h"

namespace Brenta::OS::VIG::Tool {

// A test expects such a trigger. What is not given may be anything.
struct ExpectedTrigger {
    std::optional<std::string> name;
    std::optional<std::string> process;
    std::optional<std::int64_t> config;                // id of the configuration
    std::optional<std::int64_t> event;                 // number of the event, counted from 1
    std::optional<std::vector<std::string>> metadata;  // all of it
    std::vector<std::string> metadataContains;         // entries that are among it
};

struct ExpectedLog {
    std::string message;
    std::optional<std::string> priority;  // as reports call it
};

struct ExpectedState {
    std::int64_t config;  // id of the configuration
    std::string state;
};

struct Expectation {
    std::vector<ExpectedTrigger> triggers = {};  // all of them, in order
    std::vector<ExpectedLog> logs = {};          // likewise
    std::vector<ExpectedState> states = {};
    std::optional<std::int64_t> moves = {};
};

// Tests that name the same file share its events. Never null in a file that was read without errors.
using TestEvents = std::shared_ptr<const std::vector<EventRecord>>;

struct TestCase {
    std::string name = {};
    std::size_t line = 0;  // in the test file
    TestEvents events = {};
    Draws draws = {};
    AttributeSet context = {};
    Expectation expect = {};
};

// An event fulfils it as it does a filter of a transition, but may have to be of one type.
struct PropertyFilter {
    std::optional<RulesEngine::EventType> event;
    FilterModel model;                                  // without its JSON
    std::shared_ptr<const RulesEngine::Filter> filter;  // the library's own
};

// It is what has to be true of a machine whatever events come.
struct Property {
    enum class Kind {
        TriggerOnlyIf,    // each event that triggers fulfils all filters
        BetweenTriggers,  // between any two triggers there is an event that does
        AtMost,           // so many triggers ever, or in so many consecutive events
        CanReach,         // the machines can come to the states
        CannotReach
    };

    std::string name = {};
    std::size_t line = 0;                     // in the test file
    std::optional<std::int64_t> config = {};  // of each machine by itself if there is none
    AttributeSet context = {};
    Kind kind = Kind::TriggerOnlyIf;
    std::vector<PropertyFilter> filters = {};
    std::uint64_t triggers = 0;
    std::optional<std::uint64_t> events = {};
    std::vector<ExpectedState> states = {};
};

// It holds the tests of a rule document.
struct TestFile {
    std::string path;
    std::string rules;  // the path of the document
    std::vector<TestCase> tests;
    std::vector<Property> properties;
    std::vector<std::string> eventFiles;  // the paths of those that the tests name
};

// Reads a file of tests and the files of events that it names; paths in it are relative to it. Nothing is ignored:
// what is not part of a test file is an error. If there is one, returns nothing and adds to `errors` what is wrong and
// where, "file:line:column: error: tests[0].seed: …". A test that says nothing of its draws has those given. Once it is
// interrupted, what is returned means nothing.
std::optional<TestFile> readTestFile(const std::string& path, const Draws& draws, const Interruption& interruption,
                                     std::vector<std::string>& errors);

}  // namespace Brenta::OS::VIG::Tool
