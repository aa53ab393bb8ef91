#pragma once

// Framework: ServiceManagement.

#include "Foundation/Foundation.h"

QV_NONNULL_BEGIN

QV_ENUM(NSInteger, SMAppServiceStatus){
    SMAppServiceStatusNotRegistered = 0,
    SMAppServiceStatusEnabled = 1,
    SMAppServiceStatusRequiresApproval = 2,
    SMAppServiceStatusNotFound = 3,
} QV_AVAILABLE(13.0);

QV_AVAILABLE(13.0)
@interface SMAppService : NSObject
@property(class, readonly) SMAppService* mainAppService;
@property(readonly) SMAppServiceStatus status;
@end

QV_NONNULL_END
