// The sanitizer sees the locks of the libraries below but not their atomics, since they are built
// without it, and so takes their own lock-free hand-overs for races. Only what goes through them is
// left out; `called_from_lib` would be narrower, but ends the program when OpenAL is unloaded.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for it by this name.
extern "C" const char* __tsan_default_suppressions();

// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __tsan_default_suppressions() {
    return "race:libopenal.so\n"
           "race:libpulse.so\n"
           "race:libpulsecommon-\n";
}
