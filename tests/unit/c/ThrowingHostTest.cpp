#include <InkoraKit/c/inkorakit.h>
#include <gtest/gtest.h>

#include <stdexcept>

// A host in C++ behind the C interface: what it throws comes back as a status, and nothing is lost.
TEST(CInterface, HostThrowsFromWhatTheLoopRuns) {
    inkora_callbacks throwing{};
    throwing.size = sizeof throwing;
    throwing.information = [](void*, const char*, const char*) { throw 1; };
    throwing.released = [](void*) { throw std::runtime_error("released"); };
    ASSERT_EQ(inkora_register(&throwing, nullptr), INKORA_OK);
    ASSERT_EQ(inkora_loop_run_pending(1, nullptr), INKORA_OK);

    EXPECT_EQ(inkora_request_information(), INKORA_OK);
    EXPECT_EQ(inkora_loop_run(), INKORA_EXCEPTION);
    EXPECT_STREQ(inkora_last_error(), inkora_status_text(INKORA_EXCEPTION));

    inkora_loop_post([](void*) { throw std::runtime_error("posted"); }, nullptr);
    ASSERT_EQ(inkora_unregister(), INKORA_OK);
    for (const char* thrown : {"posted", "released"}) {
        EXPECT_EQ(inkora_loop_run(), INKORA_EXCEPTION);
        EXPECT_STREQ(inkora_last_error(), thrown);
    }
    bool was_busy = true;
    EXPECT_EQ(inkora_loop_run_once(0, &was_busy), INKORA_OK);
    EXPECT_FALSE(was_busy);
}
