#include <InkoraKit/JSON.h>

#include "Aside.h"
#include "Conversion.h"
#include "platform/foundation/process/Fatal.h"
#include "platform/foundation/values/Storage.h"

#include <array>
#include <span>
#include <vector>

namespace InkoraKit {

const Any* JSON::element(const Any& container, std::string_view key) noexcept {
    return container.slot().tag() == AnySlot::dictionary ? Storage::member(container, key)
                                                         : nullptr;
}

const Any* JSON::element(const Any& container, const Step& step, JSON& converted) {
    const Any* const found = element(container, step);
    if (!found || isPlain(found)) return found;
    converted = JSON(*found);
    return &converted.contents();
}

JSON JSON::unusual(const Any* found, const Step& step) const {
    return found ? JSON(*found) : missing(step);
}

JSON JSON::atPath(const JSONPath& path) const {
    if (path.empty()) return *this;
    const Any* place = &contents();
    JSON converted;
    for (const JSONKey& key : path) {
        const Any* const next = element(*place, stepFrom(key), converted);
        if (!next) {
            if (place == &contents()) return missing(stepFrom(key));
            JSON container;
            container.value_ = *place;
            return container.missing(stepFrom(key));
        }
        place = next;
    }
    JSON result;
    result.value_ = *place;
    return result;
}

/// Null, with the error that this value has already, or else the one of the step.
JSON JSON::missing(const Step& step) const {
    JSON result;
    if (const Aside* const aside = this->aside(); aside && aside->code != 0) {
        result.value_ = Aside{
            .contents = NSNull(), .code = aside->code, .step = aside->step, .formerArray = {}};
        return result;
    }
    const bool isIndex = step.kind == Step::Kind::index;
    std::int64_t code = ErrorWrongType;
    if (type() == Type::unknown) code = ErrorUnsupportedType;
    if (type() == Type::array && isIndex) code = ErrorIndexOutOfBounds;
    if (type() == Type::dictionary && !isIndex) code = ErrorNotExist;
    result.value_ = Aside{.contents = NSNull(),
                          .code = code,
                          .step = isIndex ? JSONKey(step.index) : JSONKey(step.key),
                          .formerArray = {}};
    return result;
}

JSON JSON::operator[](const JSONPath& path) const& {
    return atPath(path);
}

JSONPlace JSON::operator[](const JSONPath& path) & {
    return JSONPlace(*this, path);
}

/// Writes where the steps lead to, or does nothing: everything before the last step has to be
/// there, and the last step has to be one that can be taken.
void JSON::write(std::span<const Step> steps, Any object) {
    const Any* place = &contents();
    JSON converted;
    for (const Step& step : steps.first(steps.size() - 1)) {
        place = element(*place, step, converted);
        if (!place) return;
    }
    const Step& last = steps.back();
    if (last.kind == Step::Kind::key) {
        if (Storage::tag(*place) != AnySlot::dictionary) return;
    } else {
        if (Storage::tag(*place) != AnySlot::array) return;
        if (last.index >= static_cast<std::int64_t>(Storage::count(*place))) return;
        if (last.index < 0) fatalError("Index out of range");
    }
    converted = JSON();  // or else what is to change would be shared, and so copied

    const auto placeIn = [](Any& container, const Step& step) -> Any& {
        if (step.kind == Step::Kind::key) return Storage::writableMember(container, step.key);
        return Storage::writableElement(container, static_cast<std::size_t>(step.index));
    };
    Any formerArray = takeFormerArray();
    Any* target = &value_;
    for (const Step& step : steps.first(steps.size() - 1)) {
        target = &placeIn(*target, step);
        if (!isPlain(target)) *target = JSON(*target).value_;
    }
    placeIn(*target, last) = std::move(object);
    putFormerArray(std::move(formerArray));
}

void JSONPlace::write(JSON value) {
    Any object = value.object();
    value = {};
    std::size_t count = 0;
    for (JSONPlace* place = this; place; place = place->parent_) {
        place->value_ = {};  // or else what is to change would be shared, and so copied
        count += place->step_.kind == Step::Kind::path ? place->step_.path->size() : 1;
    }
    std::array<Step, 8> few;
    std::vector<Step> many(count > few.size() ? count : 0);
    const std::span<Step> steps = many.empty() ? std::span(few).first(count) : std::span(many);
    auto next = steps.rbegin();
    for (const JSONPlace* place = this; place; place = place->parent_) {
        if (place->step_.kind != Step::Kind::path) {
            *next++ = place->step_;
            continue;
        }
        for (auto key = place->step_.path->end(); key != place->step_.path->begin();)
            *next++ = stepFrom(*--key);
    }
    if (steps.empty()) return;
    root_->JSON::write(steps, std::move(object));
}

}  // namespace InkoraKit
