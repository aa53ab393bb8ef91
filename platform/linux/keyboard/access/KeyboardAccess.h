#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace quorvane {

/// A keyboard's event node, and the seat that the keyboard belongs to.
struct SeatedKeyboard {
    std::filesystem::path node;
    std::string seat;
};

/// A user's number as pkexec passes it on. None for anything else, and for root, who needs nobody's
/// leave.
[[nodiscard]] std::optional<uid_t> parseUser(std::string_view text);

/// Lets `user` read `node` by an entry of its access list, which goes with the node; whoever had
/// rights keeps them. False if the node cannot be changed.
bool grantReading(const std::filesystem::path& node, uid_t user);

/// Does that for the keyboards of the `seats`; how many there were.
std::size_t grantKeyboards(const std::vector<SeatedKeyboard>& keyboards,
                           const std::vector<std::string>& seats, uid_t user);

/// All that udev has for keyboards.
[[nodiscard]] std::vector<SeatedKeyboard> listSeatedKeyboards();

/// The seats at which `user` has the session that is in the foreground.
[[nodiscard]] std::vector<std::string> activeSeats(uid_t user);

} // namespace quorvane
