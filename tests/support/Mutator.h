#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Documents.h"

namespace support {

// Draws changed documents, the same ones in every run.
class Mutator {
  public:
    Mutator() { originals.emplace_back(kCompleteDocument); }

    // What is drawn from now on is another sequence for each seed.
    void seed(unsigned value) { random.seed(value); }

    // The examples and kCompleteDocument, all of which are accepted.
    const std::vector<std::string>& documents() const { return originals; }

    std::size_t draw(std::size_t bound) { return random() % bound; }

    // One of them with one to three changes.
    std::string mutated() { return mutated(originals[draw(originals.size())]); }

    // A text, not empty, with one to three changes: bytes replaced, inserted and removed, and pieces of any document
    // copied in.
    std::string mutated(std::string text) {
        static constexpr std::string_view kTelling = "{}[]\",:0123456789.eE+-\\u/* \n\0\x80\xff";
        for (std::size_t changes = 1 + draw(3); changes > 0; --changes) {
            const std::size_t place = draw(text.size());
            const std::string& other = originals[draw(originals.size())];
            switch (draw(4)) {
                case 0:
                    text[place] = kTelling[draw(kTelling.size())];
                    break;
                case 1:
                    text.insert(place, 1, kTelling[draw(kTelling.size())]);
                    break;
                case 2:
                    text.erase(place, 1 + draw(20));
                    break;
                default:
                    text.insert(place, other, draw(other.size()), draw(60));
            }
            text += text.empty() ? " " : "";
        }
        return text;
    }

  private:
    std::minstd_rand random{1};
    std::vector<std::string> originals = exampleDocuments();
};

}  // namespace support
