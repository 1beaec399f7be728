#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/vig/io/Interruption.h"
#include "tools/vig/test/TestFile.h"

namespace Brenta::OS::VIG::Tool {

// It says which mutants of a document its tests notice.
struct MutantScore {
    std::size_t noticed = 0;
    std::size_t survived = 0;
    std::size_t equivalent = 0;    // no event makes a difference
    std::size_t unrecordable = 0;  // only an infinity, a NaN or a text that is no UTF-8 does
    std::size_t undecided = 0;
    std::vector<std::string> lines = {};  // of those that survived, printable
    std::string fault = {};               // says what the library does not confirm, which is our fault

    // It notices what the others do not.
    struct NewTest {
        TestCase test;
        std::vector<std::string> expected;  // as lines of an ExpectationWriter
    };
    std::vector<NewTest> tests = {};  // together they notice all that survived and that a test can notice
};

// Has the tests and properties, which the document fulfils, decide about all of its mutants. The rules are at that path
// and are called `name`. Once it is interrupted, what is returned means nothing.
MutantScore huntMutants(const std::string& rules, const std::string& name, const std::vector<const TestCase*>& tests,
                        const std::vector<const Property*>& properties, bool isToWrite,
                        const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
