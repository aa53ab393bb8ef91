#include "platform/posix/StandardError.h"

#include <cstdlib>
#include <string>

#include "platform/posix/LineWriter.h"

namespace quorvane {

namespace {

/// Never destroyed: a thread that is left behind at exit may still print.
LineWriter& standardError() {
    static LineWriter& lines = *[] {
        static auto* made = new LineWriter(2);
        std::atexit([] { made->finish(); });
        return made;
    }();
    return lines;
}

} // namespace

void printError(std::string_view what) {
    standardError().print(std::string("quorvane: ").append(what));
}

} // namespace quorvane
