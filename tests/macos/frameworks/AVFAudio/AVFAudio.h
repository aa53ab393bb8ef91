#pragma once

// Framework: AVFAudio.

#include "Foundation/Foundation.h"

QV_NONNULL_BEGIN

typedef std::uint32_t AVAudioFrameCount;
typedef std::int64_t AVAudioFramePosition;
typedef std::uint32_t AVAudioChannelCount;

QV_AVAILABLE(10.10)
@interface AVAudioFormat : NSObject
- (nullable instancetype)initStandardFormatWithSampleRate:(double)sampleRate
                                                 channels:(AVAudioChannelCount)channels;
@property(nonatomic, readonly) AVAudioChannelCount channelCount;
@property(nonatomic, readonly) double sampleRate;
@end

QV_AVAILABLE(10.10)
@interface AVAudioPCMBuffer : NSObject
- (nullable instancetype)initWithPCMFormat:(AVAudioFormat*)format
                             frameCapacity:(AVAudioFrameCount)frameCapacity;
@property(nonatomic, readonly) AVAudioFormat* format;
@property(nonatomic) AVAudioFrameCount frameLength;
// One array a channel; none unless the samples are floats.
@property(nonatomic, readonly) float* _Nonnull const* _Nullable floatChannelData;
@end

QV_AVAILABLE(10.10)
@interface AVAudioFile : NSObject
- (nullable instancetype)initForReading:(NSURL*)fileURL
                                  error:(NSError* _Nullable* _Nullable)outError;
- (BOOL)readIntoBuffer:(AVAudioPCMBuffer*)buffer error:(NSError* _Nullable* _Nullable)outError;
@property(nonatomic, readonly) AVAudioFormat* processingFormat;
@property(nonatomic, readonly) AVAudioFramePosition length;
@property(nonatomic) AVAudioFramePosition framePosition;
@end

@class AVAudioEngine;

QV_AVAILABLE(10.10)
@interface AVAudioNode : NSObject
@property(nonatomic, readonly, nullable) AVAudioEngine* engine;
@end

QV_AVAILABLE(10.10)
@interface AVAudioMixerNode : AVAudioNode
@end

@class AVAudioTime;

typedef void (^AVAudioNodeCompletionHandler)(void);

QV_OPTIONS(NSUInteger, AVAudioPlayerNodeBufferOptions){
    AVAudioPlayerNodeBufferLoops = 1UL << 0,
    AVAudioPlayerNodeBufferInterrupts = 1UL << 1,
    AVAudioPlayerNodeBufferInterruptsAtLoop = 1UL << 2,
};

QV_AVAILABLE(10.10)
@interface AVAudioPlayerNode : AVAudioNode
- (instancetype)init;
- (void)scheduleBuffer:(AVAudioPCMBuffer*)buffer
                atTime:(nullable AVAudioTime*)when
               options:(AVAudioPlayerNodeBufferOptions)options
     completionHandler:(nullable AVAudioNodeCompletionHandler)completionHandler;
- (void)play;
- (void)pause;
- (void)stop;
// Of the protocol AVAudioMixing.
@property(nonatomic) float volume;
@end

QV_EXTERN const NSNotificationName AVAudioEngineConfigurationChangeNotification QV_AVAILABLE(10.10);

QV_AVAILABLE(10.10)
@interface AVAudioEngine : NSObject
- (instancetype)init;
- (void)attachNode:(AVAudioNode*)node;
- (void)detachNode:(AVAudioNode*)node;
- (void)connect:(AVAudioNode*)node1 to:(AVAudioNode*)node2 format:(nullable AVAudioFormat*)format;
- (BOOL)startAndReturnError:(NSError* _Nullable* _Nullable)outError;
- (void)stop;
@property(readonly, nonatomic) AVAudioMixerNode* mainMixerNode;
@property(readonly, nonatomic, getter=isRunning) BOOL running;
@property(readonly, nonatomic) NSSet<AVAudioNode*>* attachedNodes QV_AVAILABLE(10.15);
@end

QV_AVAILABLE(10.7)
@interface AVAudioPlayer : NSObject
- (nullable instancetype)initWithContentsOfURL:(NSURL*)url
                                         error:(NSError* _Nullable* _Nullable)outError;
- (BOOL)prepareToPlay;
- (BOOL)play;
- (void)stop;
@property(readonly, getter=isPlaying) BOOL playing;
@property(readonly) NSTimeInterval duration;
@property float volume;
@property NSTimeInterval currentTime;
@property NSInteger numberOfLoops;
@end

QV_NONNULL_END
