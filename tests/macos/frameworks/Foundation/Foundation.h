#pragma once

// Framework: Foundation.

#include "Foundation/Collections.h"
#include "Foundation/NSObject.h"
#include "dispatch/dispatch.h"

QV_NONNULL_BEGIN

typedef NSUInteger NSStringEncoding;
constexpr NSStringEncoding NSUTF8StringEncoding = 4;

@interface NSString : NSObject <NSCopying>
- (nullable instancetype)initWithBytes:(const void*)bytes
                                length:(NSUInteger)len
                              encoding:(NSStringEncoding)encoding;
@property(nullable, readonly) const char* UTF8String;
@end

// The class of @"" literals.
@interface NSConstantString : NSString
@end

typedef NSString* NSNotificationName;
typedef NSString* NSExceptionName;
typedef NSString* NSAttributedStringKey;

@interface NSError : NSObject
@property(readonly, copy) NSString* localizedDescription;
@end

__attribute__((objc_exception))
@interface NSException : NSObject
@property(readonly, copy) NSExceptionName name;
@property(nullable, readonly, copy) NSString* reason;
@end

@interface NSURL : NSObject
+ (NSURL*)fileURLWithPath:(NSString*)path;
@property(readonly) const char* fileSystemRepresentation QV_AVAILABLE(10.9);
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
- (nullable NSURL*)URLForResource:(nullable NSString*)name
                    withExtension:(nullable NSString*)ext QV_AVAILABLE(10.6);
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (BOOL)boolForKey:(NSString*)defaultName;
- (void)setBool:(BOOL)value forKey:(NSString*)defaultName;
@end

@interface NSDate : NSObject
+ (instancetype)date;
+ (instancetype)dateWithTimeIntervalSinceNow:(NSTimeInterval)secs;
@property(readonly) NSTimeInterval timeIntervalSince1970;
@end

@interface NSRunLoop : NSObject
@property(class, readonly, strong) NSRunLoop* currentRunLoop;
- (void)runUntilDate:(NSDate*)limitDate;
@end

@interface NSTimer : NSObject
+ (NSTimer*)scheduledTimerWithTimeInterval:(NSTimeInterval)interval
                                   repeats:(BOOL)repeats
                                     block:(void (^)(NSTimer* timer))block QV_AVAILABLE(10.12);
- (void)invalidate;
@property(readonly, getter=isValid) BOOL valid;
@end

@interface NSThread : NSObject
@property(class, readonly) BOOL isMainThread QV_AVAILABLE(10.5);
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue QV_AVAILABLE(10.6);
@end

@interface NSNotification : NSObject
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)obj
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block QV_AVAILABLE(10.6);
- (void)removeObserver:(id)observer;
- (void)postNotificationName:(NSNotificationName)aName object:(nullable id)anObject;
@end

@interface NSAttributedString : NSObject
- (instancetype)initWithString:(NSString*)str
                    attributes:(nullable NSDictionary<NSAttributedStringKey, id>*)attrs;
@end

QV_NONNULL_END
