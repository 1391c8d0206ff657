#pragma once

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>
#include <InkoraKit/virtual/VirtualClock.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace InkoraKit {

// The main run loop by a virtual clock, and a note of what happened in it.
class RunLoopTest : public testing::Test {
protected:
    void SetUp() override {
        loop.setClock(clock);
        loop.runOnce();  // of what an earlier test has left
    }

    void note(const char* word) { order += word; }
    auto noting(const char* word) {
        return [this, word] { note(word); };
    }

    std::shared_ptr<VirtualClock> clock = std::make_shared<VirtualClock>();
    RunLoop& loop = RunLoop::main();
    std::string order;
};

}  // namespace InkoraKit
