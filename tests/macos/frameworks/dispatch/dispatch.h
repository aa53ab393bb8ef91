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

@protocol OS_dispatch_source
@end

typedef id<OS_dispatch_source> dispatch_source_t;
typedef const struct dispatch_source_type_s* dispatch_source_type_t;

QV_EXTERN const struct dispatch_source_type_s _dispatch_source_type_signal QV_AVAILABLE(10.6);
#define DISPATCH_SOURCE_TYPE_SIGNAL (&_dispatch_source_type_signal)

QV_EXTERN dispatch_source_t dispatch_source_create(dispatch_source_type_t type,
                                                   std::uintptr_t handle, std::uintptr_t mask,
                                                   dispatch_queue_t _Nullable queue)
    QV_AVAILABLE(10.6);
QV_EXTERN void dispatch_source_set_event_handler(dispatch_source_t source,
                                                 dispatch_block_t _Nullable handler)
    QV_AVAILABLE(10.6);
QV_EXTERN void dispatch_source_cancel(dispatch_source_t source) QV_AVAILABLE(10.6);
QV_EXTERN void dispatch_resume(dispatch_source_t object) QV_AVAILABLE(10.6);

QV_NONNULL_END
