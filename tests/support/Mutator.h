#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Documents.h"

namespace support {

// Draws changes of the examples and kCompleteDocument, the same ones in every run.
class Mutator {
  public:
    Mutator() { originals.emplace_back(kCompleteDocument); }

    // Begins another sequence for each seed.
    void seed(unsigned value) { random.seed(value); }

    std::size_t draw(std::size_t bound) { return random() % bound; }

    std::string pick(const std::vector<std::string>& texts) { return texts[draw(texts.size())]; }

    std::string mutated() { return mutated(pick(originals)); }

    // Makes one to three changes to a text that is not empty: replaces, inserts and removes bytes, and copies pieces of
    // the documents in.
    std::string mutated(std::string text) {
        static constexpr std::string_view kTelling = "{}[]\",:0123456789.eE+-\\u/* \n\0\x80\xff";
        for (std::size_t changes = 1 + draw(3); changes > 0; --changes) {
            const std::string& other = originals[draw(originals.size())];
            const std::string added[] = {
                "", {kTelling[draw(kTelling.size())]}, other.substr(draw(other.size()), draw(60))};
            const std::size_t removed[] = {0, 1, draw(20)};
            text.replace(draw(text.size()), removed[draw(3)], added[draw(3)]);
            text += text.empty() ? " " : "";
        }
        return text;
    }

  private:
    std::minstd_rand random{1};
    std::vector<std::string> originals = exampleDocuments();
};

}  // namespace support
