#pragma once

#include <InkoraKit/c/inkorakit.h>

#include <stdexcept>

namespace InkoraKit {

// A call that is refused: its status, and what is wrong in words.
class Refusal : public std::runtime_error {
public:
    Refusal(inkora_status status, const char* what) : std::runtime_error(what), status_(status) {}
    inkora_status status() const noexcept { return status_; }

private:
    inkora_status status_;
};

// Refuses a number outside of a range, and what is none.
void expectWithin(double least, double value, double most, const char* what);

// Every moment and interval that a C host may name, so that the sums stay exact.
inline constexpr double longestSeconds = 1e9;

// Lets one thread at a time into the kit, which locks nothing, and that one again from its
// callbacks. Refuses others.
class OneThread {
public:
    OneThread();
    ~OneThread();
    OneThread(const OneThread&) = delete;
    OneThread& operator=(const OneThread&) = delete;
};

// Keeps the text of the exception under way for inkora_last_error, and gives its status.
inkora_status statusOfException() noexcept;

// What a C function does that any thread may call: no exception leaves it.
template <class Work>
inkora_status onAnyThread(Work work) noexcept {
    try {
        work();
        return INKORA_OK;
    } catch (...) {
        return statusOfException();
    }
}

// The same for a function that belongs on the loop's thread.
template <class Work>
inkora_status onLoopThread(Work work) noexcept {
    return onAnyThread([&work] {
        const OneThread inside;
        work();
    });
}

}  // namespace InkoraKit
