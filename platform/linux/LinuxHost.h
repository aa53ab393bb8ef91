#pragma once

#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/desktop/DisplayServer.h"
#include "platform/linux/desktop/GraphicsCard.h"
#include "platform/linux/desktop/LinuxDesktop.h"
#include "platform/linux/instance/SingleInstance.h"
#include "platform/linux/instance/StopRunning.h"
#include "platform/linux/system/TerminationSignals.h"

/// The Linux platform, under the names that main.cpp uses.
namespace quorvane::Host {

using Desktop = LinuxDesktop;
using DisplayServer = quorvane::DisplayServer;
using Platform = LinuxPlatform;
using SingleInstance = quorvane::SingleInstance;
using TerminationSignals = quorvane::TerminationSignals;
using quorvane::hasGraphicsCard;
using quorvane::stopRunning;

} // namespace quorvane::Host
