#pragma once

// libdispatch, no framework.

#include <cstdint>

#include "Annotations.h"

QV_NONNULL_BEGIN

@protocol OS_dispatch_queue
@end

typedef id<OS_dispatch_queue> dispatch_queue_t;
typedef void (^dispatch_block_t)(void);
typedef std::uint64_t dispatch_time_t;

#define NSEC_PER_SEC 1000000000ull
#define DISPATCH_TIME_NOW (0ull)

QV_EXTERN dispatch_queue_t dispatch_get_main_queue(void);
QV_EXTERN void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) QV_AVAILABLE(10.6);
QV_EXTERN dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t delta)
    QV_AVAILABLE(10.6);
QV_EXTERN void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block)
    QV_AVAILABLE(10.6);

QV_NONNULL_END
