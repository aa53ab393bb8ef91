#pragma once

// The Objective-C runtime (libobjc) and framework: Foundation.

#include <cstddef>
#include <cstdint>

#include "Annotations.h"
#include "CoreGraphics/CoreGraphics.h"

QV_NONNULL_BEGIN

#if defined(__aarch64__)
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;

@class NSString;

@protocol NSObject
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)isEqual:(nullable id)object;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (instancetype)alloc;
- (instancetype)init;
+ (Class)class;
@end

@protocol NSCopying
@end

// The state of a loop over a collection.
typedef struct {
    unsigned long state;
    id __unsafe_unretained QV_NULLABLE* QV_NULLABLE itemsPtr;
    unsigned long* QV_NULLABLE mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained QV_NULLABLE[_Nonnull])buffer
                                    count:(NSUInteger)length;
@end

typedef CGRect NSRect;
typedef CGSize NSSize;

static inline NSSize NSMakeSize(CGFloat width, CGFloat height) {
    return {width, height};
}

static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    return {{x, y}, {width, height}};
}

QV_NONNULL_END
