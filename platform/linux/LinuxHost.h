#pragma once

#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/desktop/DisplayServer.h"
#include "platform/linux/desktop/GraphicsCard.h"
#include "platform/linux/desktop/LinuxDesktop.h"
#include "platform/linux/system/TerminationSignals.h"

/// The machine that the program runs on, under the names by which the main program knows it.
namespace quorvane::Host {

using Desktop = LinuxDesktop;
using DisplayServer = quorvane::DisplayServer;
using Platform = LinuxPlatform;
using TerminationSignals = quorvane::TerminationSignals;
using quorvane::hasGraphicsCard;

} // namespace quorvane::Host
