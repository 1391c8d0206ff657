#pragma once

#include <InkoraKit/platform/Integer.h>

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace InkoraKit {

/// One step of a path into a `JSON` value: a position in an array, or a key of a dictionary.
class JSONKey {
public:
    /// Implicit, so that a path is written as `{"pens", 0}`. A position above `INT64_MAX` is out of
    /// bounds of every array.
    template <Integer Position>
    JSONKey(Position position) noexcept : step_(clamped(position)) {}
    template <std::convertible_to<std::string_view> Text>
    JSONKey(const Text& key) : step_(std::string(std::string_view(key))) {}

    /// The position, if the step is one.
    std::optional<std::int64_t> index() const noexcept {
        const auto* position = std::get_if<std::int64_t>(&step_);
        return position ? std::optional(*position) : std::nullopt;
    }
    /// The key, if the step is one; else null.
    const std::string* key() const noexcept { return std::get_if<std::string>(&step_); }

    /// A position never equals a key, 0 and "0" included.
    friend bool operator==(const JSONKey&, const JSONKey&) = default;

private:
    friend class JSON;

    /// A position beyond the signed range is out of bounds of every array, and has to stay so.
    template <Integer Position>
    static constexpr std::int64_t clamped(Position position) noexcept {
        return std::in_range<std::int64_t>(position) ? static_cast<std::int64_t>(position)
                                                     : INT64_MAX;
    }

    std::variant<std::int64_t, std::string> step_;
};

/// What can be a step of a path: integers and texts.
template <class Step>
concept JSONSubscriptType = Integer<Step> || std::convertible_to<const Step&, std::string_view>;

/// The step as a `JSONKey`.
template <JSONSubscriptType Step>
JSONKey jsonKey(const Step& step) {
    return JSONKey(step);
}

/// A path of steps that are known at run time only: `JSONPath{"pens", 0, "name"}`.
class JSONPath {
public:
    /// The steps in their order; without any it leads to the value itself.
    JSONPath() = default;
    JSONPath(std::initializer_list<JSONKey> steps) : steps_(steps) {}
    explicit JSONPath(std::vector<JSONKey> steps) noexcept : steps_(std::move(steps)) {}

    /// Adds a step at the end.
    void append(JSONKey step) { steps_.push_back(std::move(step)); }

    /// The steps, each a `JSONKey`, as a range.
    std::size_t size() const noexcept { return steps_.size(); }
    bool empty() const noexcept { return steps_.empty(); }
    auto begin() const noexcept { return steps_.begin(); }
    auto end() const noexcept { return steps_.end(); }

    /// Whether both have the same steps.
    friend bool operator==(const JSONPath&, const JSONPath&) = default;

private:
    std::vector<JSONKey> steps_;
};

}  // namespace InkoraKit
