#include "platform/posix/Descriptors.h"

#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace quorvane {

bool canOpenFiles(std::size_t count) {
    std::vector<int> opened;
    while (opened.size() < count) {
        const int descriptor = open("/", O_RDONLY | O_CLOEXEC);
        if (descriptor < 0)
            break;
        opened.push_back(descriptor);
    }
    for (const int descriptor : opened)
        close(descriptor);
    return opened.size() == count;
}

} // namespace quorvane
