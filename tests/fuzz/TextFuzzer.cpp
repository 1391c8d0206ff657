// A fuzzer of what its target names: INKORA_FUZZED of INKORA_FUZZED_HEADER, which takes a text.
#include INKORA_FUZZED_HEADER

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    InkoraKit::INKORA_FUZZED({reinterpret_cast<const char*>(bytes), size});
    return 0;
}
