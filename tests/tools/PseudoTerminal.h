#pragma once

#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <string>

namespace support {

// It is a terminal that belongs to nobody, for a verb to write to.
class PseudoTerminal {
  public:
    PseudoTerminal() { EXPECT_EQ(openpty(&controller, &terminal, nullptr, nullptr, nullptr), 0); }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    ~PseudoTerminal() {
        close(terminal);
        close(controller);
    }

    int descriptor() const { return terminal; }

    // Returns what has been written to it since the last time. That arrives late, but in order, and so before a mark.
    std::string shown() const {
        constexpr char kMark = '\x1F';
        EXPECT_EQ(write(terminal, &kMark, 1), 1);
        std::string text;
        for (char each = 0; read(controller, &each, 1) == 1 && each != kMark;) {
            text += each;
        }
        return text;
    }

  private:
    int controller = -1;
    int terminal = -1;
};

}  // namespace support
