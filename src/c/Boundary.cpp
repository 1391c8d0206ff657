#include "c/Boundary.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <new>
#include <string>
#include <thread>

namespace InkoraKit {
namespace {

// Of a fixed size, so that there is room for it when memory has run out.
thread_local std::array<char, 256> lastError{};

std::atomic<std::thread::id> threadInside;
int depthOfThreadInside = 0;  // that thread's own

void keep(const char* text) {
    std::snprintf(lastError.data(), lastError.size(), "%s", text);
}

}  // namespace

void expectWithin(double least, double value, double most, const char* what) {
    if (value >= least && value <= most) return;  // NaN is not
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), "%s is %g, and not from %g to %g", what, value, least,
                  most);
    throw Refusal(INKORA_INVALID_ARGUMENT, text.data());
}

OneThread::OneThread() {
    const auto self = std::this_thread::get_id();
    std::thread::id inside;
    if (!threadInside.compare_exchange_strong(inside, self) && inside != self)
        throw Refusal(INKORA_WRONG_THREAD,
                      "another thread is inside the kit; have it do this with inkora_loop_post");
    ++depthOfThreadInside;
}

OneThread::~OneThread() {
    if (--depthOfThreadInside == 0) threadInside = std::thread::id();
}

inkora_status statusOfException() noexcept {
    try {
        throw;
    } catch (const Refusal& refusal) {
        keep(refusal.what());
        return refusal.status();
    } catch (const std::bad_alloc&) {
        keep(inkora_status_text(INKORA_OUT_OF_MEMORY));
        return INKORA_OUT_OF_MEMORY;
    } catch (const std::exception& thrown) {
        keep(thrown.what());
    } catch (...) {
        keep(inkora_status_text(INKORA_EXCEPTION));
    }
    return INKORA_EXCEPTION;
}

}  // namespace InkoraKit

extern "C" {

const char* inkora_status_text(int status) {
    switch (status) {
        case INKORA_OK:
            return "done";
        case INKORA_INVALID_ARGUMENT:
            return "an argument is null, of a wrong size, or out of range";
        case INKORA_TOO_EARLY:
            return "the battery cannot be asked yet";
        case INKORA_TOO_LATE:
            return "the kit was started before";
        case INKORA_ALREADY_DONE:
            return "it was done already";
        case INKORA_NOT_FOUND:
            return "there is no such virtual pen, or no virtual radio";
        case INKORA_WRONG_THREAD:
            return "another thread is inside the kit";
        case INKORA_OUT_OF_MEMORY:
            return "out of memory";
        case INKORA_EXCEPTION:
            return "C++ code that the loop ran has thrown";
    }
    return "a status of another version";
}

const char* inkora_last_error(void) {
    return InkoraKit::lastError.data();
}

const char* inkora_version(void) {
    return INKORA_VERSION;
}
}
