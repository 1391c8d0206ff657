#include <InkoraKit/JSON.h>

#include "Aside.h"
#include "platform/foundation/process/Fatal.h"
#include "platform/foundation/values/Storage.h"

#include <span>
#include <utility>
#include <vector>

namespace InkoraKit {

const AnySlot* JSON::partOfObject(AnySlot value, AnySlot step) noexcept {
    return part(shownContentsOfObject(Storage::asAny(value)).slot(), step);
}

JSON JSON::otherPart(AnySlot value, AnySlot step) {
    const JSON& container = shown(value);
    const AnySlot* const found = part(container.contents().slot(), step);
    return found ? JSON(Storage::asAny(*found)) : missing(container, step);
}

JSON JSON::missing(const JSON& container, AnySlot step) {
    const bool isIndex = step.tag() == AnySlot::int64;
    Aside error{.contents = NSNull(),
                .code = ErrorWrongType,
                .step = isIndex ? JSONKey(step.integer()) : JSONKey(step.text()),
                .formerArray = {},
                .shown = {}};
    if (const Aside* const aside = container.aside(); aside && aside->code != 0) {
        error.code = aside->code;
        error.step = aside->step;
    } else if (container.type() == Type::unknown) {
        error.code = ErrorUnsupportedType;
    } else if (container.type() == Type::array && isIndex) {
        error.code = ErrorIndexOutOfBounds;
    } else if (container.type() == Type::dictionary && !isIndex) {
        error.code = ErrorNotExist;
    }
    JSON result;
    result.value_ = std::move(error);
    return result;
}

JSON JSON::operator[](const JSONPath& path) const& {
    const AnySlot* place = &value_.slot();
    for (const JSONKey& step : path) {
        const AnySlot* const next = shownPart(*place, stepView(step));
        if (!next) return missing(shown(*place), stepView(step));
        place = next;
    }
    return shown(*place);
}

JSONPlace JSON::operator[](const JSONPath& path) & {
    return JSONPlace(*this, path);
}

/// Writes where the steps lead to, or does nothing: everything before the last step has to be
/// there, and the last step has to be one that can be taken.
void JSON::write(std::span<const AnySlot> steps, Any object) {
    const AnySlot& last = steps.back();
    steps = steps.first(steps.size() - 1);

    const AnySlot* place = &contents().slot();
    JSON converted;
    for (const AnySlot& step : steps) {
        place = part(*place, step);
        if (!place) return;
        if (!place->isForeign()) continue;
        converted = JSON(Storage::asAny(*place));
        place = &converted.contents().slot();
    }
    if (last.tag() == AnySlot::int64) {
        if (!place->isArray() || last.integer() >= std::int64_t{place->header().count}) return;
        if (last.integer() < 0) fatalError("Index out of range");
    } else if (place->tag() != AnySlot::dictionary) {
        return;
    }
    converted = {};  // or else what is to change would be shared, and so copied

    const auto placeIn = [](Any& outer, const AnySlot& step) -> Any& {
        if (step.tag() != AnySlot::int64) return Storage::writableMember(outer, step.text());
        return Storage::writableElement(outer, static_cast<std::size_t>(step.integer()));
    };
    Any formerArray = takeFormerArray();
    Any* target = &value_;
    for (const AnySlot& step : steps) {
        if (object.slot().isForeign()) Storage::slot(*target).setForeign();
        target = &placeIn(*target, step);
        if (target->slot().isForeign()) *target = JSON(*target).contents();
    }
    Any& written = placeIn(*target, last);
    Storage::slot(*target).note(object.slot());
    written = std::move(object);
    settle(std::move(formerArray));
}

JSONPlace::JSONPlace(JSON& root, const JSONPath& path)
    : JSON(std::as_const(root)[path]), root_(&root) {
    Array steps;
    for (const JSONKey& step : path) steps.append(Any::owned(stepView(step)));
    step_ = std::move(steps);
}

std::vector<AnySlot> JSONPlace::steps() const {
    std::vector<AnySlot> steps;
    for (const JSONPlace* place = this; place; place = place->before_) {
        const AnySlot& step = place->step_.slot();
        if (step.tag() == AnySlot::array) {
            steps.insert(steps.begin(), step.parts(), step.parts() + step.header().count);
        } else {
            steps.insert(steps.begin(), step);
        }
    }
    return steps;
}

void JSONPlace::standAlone() {
    Array all;
    for (const AnySlot& step : steps()) all.append(Storage::asAny(step));
    step_ = std::move(all);
    before_ = nullptr;
}

void JSONPlace::write(JSON value) {
    if (!root_) {
        JSON::operator=(std::move(value));
        return;
    }
    // Or else what is to change would be shared, and so copied.
    for (JSONPlace* place = this; place; place = place->before_) place->value_ = {};
    const std::vector<AnySlot> steps = this->steps();
    if (!steps.empty()) root_->JSON::write(steps, value.object());
}

void JSONPlace::merge(const JSON& other) && {
    // A copy, since it may be what changes. NOLINTNEXTLINE(performance-unnecessary-copy-init*)
    const JSON others = other;
    JSON value = static_cast<JSON&&>(*this);
    if (value.type() == others.type()) write({});  // or else the value would be shared, and copied
    value.merge(others);
    write(std::move(value));
}

}  // namespace InkoraKit
