#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/web/ChoosePen.h>

#include "platform/bluetooth/RadioErrors.h"

#include <memory>
#include <utility>

namespace {

using Answered = std::function<void(const std::optional<InkoraKit::NSError>&)>;

}  // namespace

extern "C" {
void inkora_web_choose(Answered* answered);

/// The script's answer; without a text a pen was chosen.
[[gnu::used]] void inkora_web_chosen(Answered* answered, const char* failure) {
    using namespace InkoraKit;
    std::optional<NSError> error;
    if (failure) error = radioErrors::error(CBError::unknown, failure);
    RunLoop::main().post(
        [answered = std::shared_ptr<Answered>(answered), error] { (*answered)(error); });
}
}

namespace InkoraKit {

void choosePen(std::function<void(const std::optional<NSError>&)> answered) {
    inkora_web_choose(std::make_unique<Answered>(std::move(answered)).release());
}

}  // namespace InkoraKit
