#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/JSON.h>

#include <array>
#include <cstddef>
#include <utility>

namespace InkoraKit {

/// What a subscript gives on a `JSON` that may change: the value, and the place that it came from.
/// Assigning to the result of the subscript writes to that place; kept in a variable it is a value
/// of its own like any other, and so are its copies.
///
///     json["pens"][0]["name"] = "desk";   // writes to json
///     auto pen = json["pens"][0];         // a copy
///
/// It keeps the steps that lead to the place. The `JSON` that they start from has to be there when
/// something is written.
class INKORA_EXPORT JSONPlace final : public JSON {
public:
    /// The value, without the place.
    JSONPlace(const JSONPlace& other) noexcept : JSON(static_cast<const JSON&>(other)) {}
    /// The value, which is null afterwards, without the place.
    JSONPlace(JSONPlace&& other) noexcept : JSON(static_cast<JSON&&>(other)) {}
    ~JSONPlace() = default;

    // What is written is gone from here, so nothing is returned; JSON minds assigning to itself.
    // NOLINTBEGIN(misc-unconventional-assign-operator, bugprone-unhandled-self-assignment)

    /// Writes to the place. Does nothing where that cannot be written: see `JSON`.
    void operator=(JSON value) && { write(std::move(value)); }
    /// The same.
    void operator=(const JSONPlace& other) && { write(static_cast<const JSON&>(other)); }

    /// Replaces the value, which forgets its place.
    JSONPlace& operator=(JSON value) & {
        JSON::operator=(std::move(value));
        root_ = nullptr;
        return *this;
    }
    /// The same.
    JSONPlace& operator=(const JSONPlace& other) & {
        return *this = static_cast<const JSON&>(other);
    }
    // NOLINTEND(misc-unconventional-assign-operator, bugprone-unhandled-self-assignment)

    using JSON::operator[];
    /// The place one step further.
    template <JSONSubscriptType Step>
    JSONPlace operator[](const Step& step) && {
        const AnySlot view = stepView(step);
        return JSONPlace(std::move(*this), part(value_.slot(), view), view);
    }

    using JSON::setObject;
    /// Decides the type of the value at the place anew. See `JSON::setObject`.
    void setObject(Any object) && {
        JSON value = static_cast<const JSON&>(*this);
        value.setObject(std::move(object));
        write(std::move(value));
    }

    using JSON::merge;
    /// Merges into the place, without copying what is there.
    /// @throws NSError as `JSON::merge` does
    void merge(const JSON& other) &&;

private:
    friend class JSON;
    /// @param found what is at the step; or null
    JSONPlace(JSON& root, const AnySlot* found, AnySlot step)
        : JSON(found ? shown(*found) : missing(root.value_.slot(), step)),
          root_(&root),
          stepCount_(1),
          steps_{Any::owned(step)} {}
    JSONPlace(JSONPlace&& parent, const AnySlot* found, AnySlot step)
        : JSON(found ? JSON(std::move(parent), *found) : missing(parent.value_.slot(), step)),
          root_(parent.root_),
          stepCount_(parent.stepCount_),
          steps_(std::move(parent.steps_)) {
        parent.value_ = {};  // which, while it lives, would share what is to be written to
        if (stepCount_ == steps_.size()) joinSteps();
        steps_[stepCount_++] = Any::owned(step);
    }
    JSONPlace(JSON& root, const JSONPath& path);

    void joinSteps();
    void write(JSON value);

    JSON* root_ = nullptr;  // none for a value without a place
    std::size_t stepCount_ = 0;
    /// Positions and keys. The first of them may be an array of such, so that there is room for
    /// any number.
    std::array<Any, 4> steps_;
};

template <JSONSubscriptType Step>
JSONPlace JSON::operator[](const Step& step) & {
    const AnySlot view = stepView(step);
    return JSONPlace(*this, part(value_.slot(), view), view);
}

template <>
struct KeptAs<JSONPlace> {
    using type = JSON;
};

}  // namespace InkoraKit
