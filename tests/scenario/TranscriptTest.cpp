#include "support/PenScript.h"

#include <gtest/gtest.h>

namespace InkoraKit {
namespace {

TEST(TranscriptTest, EveryStepStoreCommandAndCallbackComesInItsOrder) {
    expectTranscripts(INKORA_TESTS "/scenario/transcripts",
                      [] { return std::make_unique<PenScript>(); });
}

}  // namespace
}  // namespace InkoraKit
