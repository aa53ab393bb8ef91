#pragma once

// Framework: Foundation.

#include "Foundation/NSObject.h"

QV_NONNULL_BEGIN

@interface NSArray<__covariant ObjectType> : NSObject <NSFastEnumeration>
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                           count:(NSUInteger)count;
@end

@interface NSDictionary<__covariant KeyType, __covariant ObjectType> : NSObject
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
@end

@interface NSSet<__covariant ObjectType> : NSObject <NSFastEnumeration>
+ (instancetype)set;
@end

@interface NSMutableSet<ObjectType> : NSSet <ObjectType>
- (void)addObject:(ObjectType)object;
- (void)removeObject:(ObjectType)object;
@end

QV_NONNULL_END
