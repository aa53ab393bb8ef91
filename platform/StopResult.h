#pragma once

namespace quorvane {

/// What has become of the instance that was to end.
enum class StopResult {
    NothingRuns,
    Stopped,
    /// It still runs.
    Failed
};

} // namespace quorvane
