#pragma once

// Framework: AppKit.

#include "AppKit/Drawing.h"
#include "AppKit/Views.h"
#include "AppKit/Windows.h"
#include "Foundation/Foundation.h"

QV_NONNULL_BEGIN

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion QV_AVAILABLE(10.12);
@end

QV_EXTERN const NSNotificationName NSWorkspaceDidWakeNotification;
QV_EXTERN const NSNotificationName NSWorkspaceScreensDidSleepNotification QV_AVAILABLE(10.6);
QV_EXTERN const NSNotificationName NSWorkspaceScreensDidWakeNotification QV_AVAILABLE(10.6);
QV_EXTERN const NSNotificationName NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
    QV_AVAILABLE(10.10);

QV_AVAILABLE(10.6)
@interface NSRunningApplication : NSObject
@property(class, readonly, strong) NSRunningApplication* currentApplication;
@property(readonly, getter=isActive) BOOL active;
@property(readonly, getter=isTerminated) BOOL terminated;
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:
    (NSString*)bundleIdentifier;
- (BOOL)terminate;
- (BOOL)forceTerminate;
@end

QV_ENUM(NSInteger, NSHapticFeedbackPattern){
    NSHapticFeedbackPatternGeneric = 0,
    NSHapticFeedbackPatternAlignment,
    NSHapticFeedbackPatternLevelChange,
} QV_AVAILABLE(10.11);

QV_ENUM(NSUInteger, NSHapticFeedbackPerformanceTime){
    NSHapticFeedbackPerformanceTimeDefault = 0,
    NSHapticFeedbackPerformanceTimeNow,
    NSHapticFeedbackPerformanceTimeDrawCompleted,
} QV_AVAILABLE(10.11);

QV_AVAILABLE(10.11)
@protocol NSHapticFeedbackPerformer <NSObject>
- (void)performFeedbackPattern:(NSHapticFeedbackPattern)pattern
               performanceTime:(NSHapticFeedbackPerformanceTime)performanceTime;
@end

QV_AVAILABLE(10.11)
@interface NSHapticFeedbackManager : NSObject
@property(class, readonly, strong) id<NSHapticFeedbackPerformer> defaultPerformer;
@end

QV_NONNULL_END
