#pragma once

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/RunLoopSource.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <system_error>
#include <utility>

/// An open file that is closed at its end, and that the run loop waits for.
class Descriptor : public InkoraKit::RunLoopSource {
public:
    /// @throws std::system_error where `number` is what a failed call returned
    Descriptor(int number, const char* what, std::function<void()> whenReadable)
        : number_(number), whenReadable_(std::move(whenReadable)) {
        if (number < 0) throw std::system_error(errno, std::generic_category(), what);
        InkoraKit::RunLoop::main().addSource(*this);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() override {
        InkoraKit::RunLoop::main().removeSource(*this);
        ::close(number_);
    }

    int descriptor() const override { return number_; }
    void service() override { whenReadable_(); }

private:
    int number_;
    std::function<void()> whenReadable_;
};
