// Declaration-only subset of the public API for running Objective-C on Linux; see ../../README.md.
#pragma once
#pragma clang system_header
#include <objc/NSObject.h>

@protocol OS_dispatch_queue <NSObject>
@end
@protocol OS_dispatch_source <NSObject>
@end
@protocol OS_dispatch_semaphore <NSObject>
@end
typedef NSObject<OS_dispatch_queue> *dispatch_queue_t;
typedef NSObject<OS_dispatch_source> *dispatch_source_t;
typedef NSObject<OS_dispatch_semaphore> *dispatch_semaphore_t;
typedef const struct dispatch_source_type_s *dispatch_source_type_t;
typedef uint64_t dispatch_time_t;
typedef unsigned dispatch_qos_class_t;
typedef void (^dispatch_block_t)(void);
typedef void (*dispatch_function_t)(void *);
enum { QOS_CLASS_UTILITY = 0x11, QOS_CLASS_USER_INITIATED = 0x19 };
#define dispatch_get_main_queue() (_dispatch_main_q)  // an inline function of the system, which autoreleases nothing
#define DISPATCH_TIME_NOW 0ull
#define DISPATCH_SOURCE_TYPE_READ (&_dispatch_source_type_read)

extern "C" {
extern const struct dispatch_source_type_s _dispatch_source_type_read;
extern dispatch_queue_t _dispatch_main_q;
dispatch_queue_t dispatch_get_global_queue(long identifier, unsigned long flags);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void dispatch_async_f(dispatch_queue_t queue, void *context, dispatch_function_t work);
void dispatch_sync(dispatch_queue_t queue, dispatch_block_t block);
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle, unsigned long mask, dispatch_queue_t queue);
void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler);
void dispatch_source_set_cancel_handler(dispatch_source_t source, dispatch_block_t handler);
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_activate(dispatch_source_t source);
dispatch_semaphore_t dispatch_semaphore_create(long value);
long dispatch_semaphore_signal(dispatch_semaphore_t semaphore);
long dispatch_semaphore_wait(dispatch_semaphore_t semaphore, dispatch_time_t timeout);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
}
