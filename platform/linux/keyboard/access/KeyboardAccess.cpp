#include "platform/linux/keyboard/access/KeyboardAccess.h"

#include <sys/acl.h>
#include <systemd/sd-login.h>

#include <acl/libacl.h>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>

#include "platform/linux/common/Udev.h"

namespace quorvane {

namespace {

constexpr auto firstSeat = "seat0";

struct FreeAccessList {
    void operator()(void* object) const { acl_free(object); }
};

using AccessList = std::unique_ptr<std::remove_pointer_t<acl_t>, FreeAccessList>;

/// The entry of `user` in the list; null if there is none.
acl_entry_t findEntry(acl_t list, uid_t user) {
    acl_entry_t entry = nullptr;
    for (int which = ACL_FIRST_ENTRY; acl_get_entry(list, which, &entry) == 1;
         which = ACL_NEXT_ENTRY) {
        acl_tag_t tag = ACL_UNDEFINED_TAG;
        acl_get_tag_type(entry, &tag);
        if (tag != ACL_USER)
            continue;
        const std::unique_ptr<void, FreeAccessList> owner(acl_get_qualifier(entry));
        if (owner && *static_cast<uid_t*>(owner.get()) == user)
            return entry;
    }
    return nullptr;
}

/// With room for one entry more, the list may move.
acl_entry_t addEntry(AccessList& list, uid_t user) {
    acl_t moving = list.release();
    acl_entry_t entry = nullptr;
    const bool isMade = acl_create_entry(&moving, &entry) == 0;
    list.reset(moving);
    if (!isMade || acl_set_tag_type(entry, ACL_USER) != 0 || acl_set_qualifier(entry, &user) != 0)
        return nullptr;
    return entry;
}

bool allowReading(acl_entry_t entry) {
    acl_permset_t rights = nullptr;
    return acl_get_permset(entry, &rights) == 0 && acl_add_perm(rights, ACL_READ) == 0 &&
           acl_set_permset(entry, rights) == 0;
}

} // namespace

std::optional<uid_t> parseUser(std::string_view text) {
    uid_t user = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, user);
    if (error != std::errc() || stop != end || user == 0 || user == static_cast<uid_t>(-1))
        return std::nullopt;
    return user;
}

bool grantReading(const std::filesystem::path& node, uid_t user) {
    AccessList list(acl_get_file(node.c_str(), ACL_TYPE_ACCESS));
    if (!list)
        return false;
    acl_entry_t entry = findEntry(list.get(), user);
    if (!entry)
        entry = addEntry(list, user);
    if (!entry || !allowReading(entry))
        return false;
    acl_t masked = list.release();
    const bool hasMask = acl_calc_mask(&masked) == 0;
    list.reset(masked);
    return hasMask && acl_set_file(node.c_str(), ACL_TYPE_ACCESS, list.get()) == 0;
}

std::size_t grantKeyboards(const std::vector<SeatedKeyboard>& keyboards,
                           const std::vector<std::string>& seats, uid_t user) {
    std::size_t granted = 0;
    for (const SeatedKeyboard& keyboard : keyboards)
        if (std::find(seats.begin(), seats.end(), keyboard.seat) != seats.end())
            granted += grantReading(keyboard.node, user) ? 1 : 0;
    return granted;
}

std::vector<SeatedKeyboard> listSeatedKeyboards() {
    std::vector<SeatedKeyboard> keyboards;
    const UdevContext context(udev_new());
    const UdevEnumeration enumeration(context ? udev_enumerate_new(context.get()) : nullptr);
    if (!enumeration)
        return keyboards;
    udev_enumerate_add_match_subsystem(enumeration.get(), "input");
    udev_enumerate_add_match_property(enumeration.get(), "ID_INPUT_KEYBOARD", "1");
    udev_enumerate_add_match_sysname(enumeration.get(), "event*");
    forEachUdevDevice(*context, *enumeration, [&keyboards](udev_device& device) {
        const char* seat = udev_device_get_property_value(&device, "ID_SEAT");
        if (const char* node = udev_device_get_devnode(&device))
            keyboards.push_back({.node = node, .seat = seat ? seat : firstSeat});
    });
    return keyboards;
}

std::vector<std::string> activeSeats(uid_t user) {
    std::vector<std::string> seats;
    char** names = nullptr;
    const int count = sd_uid_get_seats(user, 1, &names);
    for (int i = 0; i < count; ++i) {
        seats.emplace_back(names[i]);
        std::free(names[i]); // NOLINT: the library's allocation.
    }
    std::free(static_cast<void*>(names)); // NOLINT: the same.
    return seats;
}

} // namespace quorvane
