#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/JSON.h>

#include <utility>
#include <vector>

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
    ~JSONPlace() { forgetPlace(); }

    // What is written is gone from here, so nothing is returned; JSON minds assigning to itself.
    // NOLINTBEGIN(misc-unconventional-assign-operator, bugprone-unhandled-self-assignment)

    /// Writes to the place. Does nothing where that cannot be written: see `JSON`.
    void operator=(JSON value) && { write(std::move(value)); }
    /// The same.
    void operator=(const JSONPlace& other) && { write(static_cast<const JSON&>(other)); }

    /// Replaces the value, which forgets its place.
    JSONPlace& operator=(JSON value) & {
        JSON::operator=(std::move(value));
        forgetPlace();
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
    [[gnu::always_inline]] JSONPlace(JSON& root, const AnySlot* found, AnySlot step)
        : JSON(found ? shown(*found) : otherPart(root.value_.slot(), step)),
          root_(&root),
          step_(Any::owned(step)) {}
    // Only what it has as a JSON is moved. NOLINTBEGIN(bugprone-use-after-move)
    [[gnu::always_inline]] JSONPlace(JSONPlace&& before, const AnySlot* found, AnySlot step)
        : JSON(found ? JSON(std::move(before), *found) : otherPart(before.value_.slot(), step)),
          root_(before.root_),
          before_(&before),
          step_(Any::owned(step)) {
        if (before.next_) before.next_->standAlone();
        before.next_ = this;
    }
    // NOLINTEND(bugprone-use-after-move)
    JSONPlace(JSON& root, const JSONPath& path);

    /// All steps from the root, as long as the places before this one live.
    std::vector<AnySlot> steps() const;
    /// Takes over the steps of the places before it, which most often live until it is gone.
    [[gnu::cold]] void standAlone();
    void forgetPlace() {
        if (next_) next_->standAlone();
        if (before_) before_->next_ = nullptr;
        root_ = nullptr;
        before_ = next_ = nullptr;
    }
    void write(JSON value);

    JSON* root_ = nullptr;         // none for a value without a place
    JSONPlace* before_ = nullptr;  // one step nearer to the root
    JSONPlace* next_ = nullptr;    // one step further, if there is such a place
    Any step_;                     // a position or a key; or an array of such
};

/// @cond internal

template <JSONSubscriptType Step>
JSONPlace JSON::operator[](const Step& step) & {
    const AnySlot view = stepView(step);
    return JSONPlace(*this, part(value_.slot(), view), view);
}

template <>
struct KeptAs<JSONPlace> {
    using type = JSON;
};

/// @endcond

}  // namespace InkoraKit
