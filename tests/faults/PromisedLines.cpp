#include "tests/faults/PromisedLines.h"

#include <algorithm>
#include <regex>
#include <set>
#include <vector>

namespace quorvane {

namespace {

const std::vector<std::regex>& patterns() {
    static const std::vector<std::regex> all = [] {
        std::vector<std::regex> made;
        for (const char* pattern : {
                 R"(✅ \[SENSOR\] Found lid sensor! ProductID=0x[0-9a-f]+, angle=\d+°)",
                 R"(✅ \[SENSOR\] Found lid sensor via scan! ProductID=0x[0-9a-f]+, angle=\d+°)",
                 R"(⚠️ \[SENSOR\] No HID lid sensor found — using sleep/wake fallback)",
                 R"(📡 \[SENSOR\] Sleep/wake monitoring started)",
                 R"(✅ Φορτώθηκε: creaking\.mp3 \(\d+\.\ds\))",
                 R"(⚠️ Δεν βρέθηκε: creaking\.mp3)",
                 R"(⚠️ Σφάλμα: .+)",
                 R"(✅ \[AUDIO\] Τελείωσε — ready for next)",
                 R"(✅ \[KEYBOARD\] keyboard\.mp3 loaded)",
                 R"(⚠️ \[KEYBOARD\] keyboard\.mp3 not found)",
                 R"(⚠️ \[KEYBOARD\] Failed to create event tap — no permission\?)",
                 R"(⌨️ \[KEYBOARD\] Event tap started — global monitoring active)",
                 R"(✅ \[FAN\] fanmac\.mp3 loaded)",
                 R"(⚠️ \[FAN\] fanmac\.mp3 not found)",
                 R"(✅ \[STARTUP\] tractor\.mp3 loaded)",
                 R"(🚜 \[STARTUP\] Playing tractor \+ rumble \+ haptic!)",
                 R"(🚜 \[STARTUP\] Sequence complete)",
                 R"(✅ \[RUMBLE\] Buffer generated: 25\.0Hz \+ 12\.5Hz sub)",
                 R"(⚠️ \[RUMBLE\] Error: .+)",
                 R"(🔊 \[RUMBLE\] Started with 3\.0s ramp-up)",
                 R"(🔊 \[RUMBLE\] Stopped)",
                 R"(📳 \[HAPTIC\] Started with ramp-up)",
                 R"(📳 \[HAPTIC\] Stopped)",
             })
            made.emplace_back(pattern);
        return made;
    }();
    return all;
}

} // namespace

bool isPromisedLine(const std::string& line) {
    // Matching takes long, and the same lines come again and again.
    static std::set<std::string> known;
    if (known.contains(line))
        return true;
    const bool promised = std::any_of(patterns().begin(), patterns().end(), [&](const auto& each) {
        return std::regex_match(line, each);
    });
    if (promised)
        known.insert(line);
    return promised;
}

} // namespace quorvane
