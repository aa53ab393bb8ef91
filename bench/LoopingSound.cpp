#include <cstdio>
#include <memory>
#include <string_view>
#include <variant>

#include <unistd.h>

#include "platform/linux/audio/PulseAudioService.h"

/// The program's sound output without its window, until a signal: `looping_sound hold` keeps the
/// output open and silent, `looping_sound FILE` plays the file over and over.
int main(int argc, char** argv) {
    using namespace quorvane;
    if (argc != 2) {
        std::fputs("usage: looping_sound hold|FILE\n", stderr);
        return 2;
    }
    PulseAudioService audio;
    std::shared_ptr<AudioOutputHold> hold;
    std::shared_ptr<AudioFilePlayer> player;
    if (std::string_view(argv[1]) == "hold") {
        hold = audio.holdOutput();
    } else {
        auto made = audio.createFilePlayer(argv[1]);
        if (const auto* error = std::get_if<AudioError>(&made)) {
            std::fprintf(stderr, "%s\n", error->description.c_str());
            return 1;
        }
        player = std::get<std::shared_ptr<AudioFilePlayer>>(made);
        player->setNumberOfLoops(-1);
        player->setVolume(0.6F);
        if (!player->play())
            return 1;
    }
    pause();
}
