#pragma once

#include <cstddef>
#include <pthread.h>

#include "base/NonCopyable.h"

namespace quorvane {

/// While it lives, no thread can be started: the error is the one for too many processes. Threads
/// would get a stack larger than the address space.
class NoThreads : NonCopyable {
public:
    NoThreads() {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t impossible{};
        pthread_getattr_default_np(&impossible);
        pthread_attr_setstacksize(&impossible, std::size_t{1} << 47);
        pthread_setattr_default_np(&impossible);
        pthread_attr_destroy(&impossible);
    }

    ~NoThreads() {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }

private:
    pthread_attr_t m_before{};
};

} // namespace quorvane
