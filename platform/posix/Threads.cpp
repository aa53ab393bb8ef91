#include "platform/posix/Threads.h"

#include <array>
#include <cstdlib>
#include <exception>
#include <new>
#include <pthread.h>
#include <string>
#include <system_error>
#include <utility>

#include "platform/posix/StandardError.h"

namespace quorvane {

namespace {

void name(const char* thread) {
#ifdef __APPLE__
    pthread_setname_np(thread);
#else
    pthread_setname_np(pthread_self(), thread);
#endif
}

std::string ownName() {
    std::array<char, 16> text{};
    pthread_getname_np(pthread_self(), text.data(), text.size());
    return text.data();
}

/// Of the exception that is being handled.
std::string explanation() {
    try {
        throw;
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "an exception of an unknown type";
    }
}

[[noreturn]] void tellAndAbort() {
    printError("fatal: thread \"" + ownName() + "\": " +
               (std::current_exception() ? explanation() : "terminated without an exception"));
    std::abort();
}

void run(const char* thread, const std::function<void()>& body) {
    name(thread);
    try {
        body();
    } catch (const std::bad_alloc& error) {
        printError("the thread \"" + std::string(thread) + "\" ended: " + error.what());
    }
}

} // namespace

std::thread startThread(const char* name, std::function<void()> body) {
    try {
        return std::thread(run, name, std::move(body));
    } catch (const std::exception& error) {
        printError("the thread \"" + std::string(name) + "\" cannot be started: " + error.what());
        return {};
    }
}

void tellUncaughtExceptions() {
    std::set_terminate(tellAndAbort);
}

} // namespace quorvane
