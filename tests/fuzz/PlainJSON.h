#pragma once

#include <InkoraKit/JSON.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// A JSON value as simple as can be, which the kit's is held against: a tree that copies copy in
/// full, and a reader of its own. It shares no code with the kit.
struct PlainJSON {
    struct Member;

    Type type = Type::null;
    double number = 0;  // 1 or 0 of a truth value
    std::string text;
    std::vector<Member> members;  // of an array with empty keys

    /// The value of a text in UTF-8, if it is one.
    static std::optional<PlainJSON> parse(std::string_view utf8);

    /// The value of a member or element, or null.
    PlainJSON* child(const JSONKey& step);
    const PlainJSON* child(const JSONKey& step) const {
        return const_cast<PlainJSON*>(this)->child(step);
    }
    void set(const std::string& key, PlainJSON value);

    /// How many values it consists of.
    std::size_t size() const;

    /// Whether this is the value, however one looks at it.
    bool matches(const JSON& json) const;

    /// As the kit defines it for whole values.
    friend bool operator==(const PlainJSON& left, const PlainJSON& right) {
        return left.type == right.type && left.isEqual(right);
    }

private:
    /// As the kit defines it within arrays and dictionaries, where true is 1.
    bool isEqual(const PlainJSON& other) const;
};

struct PlainJSON::Member {
    std::string key;
    PlainJSON value;
};

/// The characters of a text in UTF-8, if it is well-formed.
std::optional<std::u32string> charactersOf(std::string_view utf8);

/// Ends the process, which is how a fuzzer knows, where a condition does not hold.
void require(bool condition, const char* what);

}  // namespace InkoraKit
