#pragma once

#include <array>
#include <cstddef>
#include <poll.h>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/linux/keyboard/reader/Keyboards.h"
#include "platform/linux/keyboard/reader/Seats.h"

namespace quorvane {

/// What the program does all its life: README.md has the protocol.
class ReaderLoop : NonCopyable {
public:
    /// Makes `input` and `output` non-blocking.
    ReaderLoop(int input, int output, Seats& seats, Keyboards& keyboards);

    /// Returns when the input or the output has ended.
    void run();

private:
    /// What is polled besides the keyboards.
    enum Place : std::size_t { Input, Output, Changes, FirstSeats, LastSeats, FirstKeyboard };

    [[nodiscard]] bool runOnce();
    [[nodiscard]] std::vector<pollfd> wait() const;
    [[nodiscard]] bool readInput();
    void sendKeys(std::size_t count) const;

    int m_input;
    int m_output;
    Seats& m_seats;
    Keyboards& m_keyboards;
    bool m_isOn = false;
};

} // namespace quorvane
