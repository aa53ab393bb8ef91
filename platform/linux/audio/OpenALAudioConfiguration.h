#pragma once

namespace quorvane {

/// Hands OpenAL Soft this program's settings, through the environment that it reads when it is
/// first used. A person's explicit ALSOFT_CONF is left to say everything; their own configuration
/// files win over ours, line by line. Sets environment variables, so it is to be called while the
/// program has one thread; repeating it does nothing.
void configureOpenALAudio();

} // namespace quorvane
