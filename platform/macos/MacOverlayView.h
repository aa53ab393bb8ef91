#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "platform/Screens.h"

namespace quorvane {

/// A view of that size that draws `view` and what changes in it.
[[nodiscard]] NSView* makeMacOverlayView(std::shared_ptr<const OverlayView> view, NSSize size);

} // namespace quorvane
