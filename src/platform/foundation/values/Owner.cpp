#include <InkoraKit/platform/Owner.h>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace InkoraKit {

#if __has_include(<sys/single_threaded.h>)
constinit const char* const Owner::isSingleThreaded_ = &__libc_single_threaded;
#else
static constexpr char never = 0;
constinit const char* const Owner::isSingleThreaded_ = &never;
#endif

}  // namespace InkoraKit
