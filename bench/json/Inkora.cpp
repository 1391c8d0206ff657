#include "Workloads.h"

#include <InkoraKit/JSON.h>

#include <span>
#include <stdexcept>

namespace InkoraKit {
namespace {

struct Inkora {
    static constexpr std::string_view name = "InkoraKit";
    using Value = JSON;

    static Value parse(std::string_view text) {
        Value value = JSON::parse(text);
        if (value.type() == Type::null) throw std::runtime_error("the text cannot be read");
        return value;
    }

    static Data compact(const Value& value) { return value.rawData(); }
    static std::string pretty(const Value& value) { return *value.rawString(); }
    static std::string_view view(const std::string& text) { return text; }
    static std::string_view view(const Data& text) {
        return {reinterpret_cast<const char*>(text.data()), text.size()};
    }

    template <class Visitor>
    static void visit(const Value& value, Visitor& visitor) {
        visitor.node();
        switch (value.type()) {
            case Type::dictionary:
                for (const auto& [key, member] : value.members()) {
                    visitor.text(key.size());
                    visit(member, visitor);
                }
                break;
            case Type::array:
                for (const JSON& element : value.elements()) visit(element, visitor);
                break;
            case Type::string:
                visitor.text(value.stringView().size());
                break;
            case Type::number:
                visitor.number(value.doubleValue());
                break;
            default:
                break;
        }
    }

    template <class A, class B, class C>
    static std::int64_t lookup(const Value& value, A first, B second, C third) {
        return value.find(first, second, third)->intValue();
    }

    static void change(Value& value, std::span<const Step> place, int number) {
        const Step& first = place.front();
        set(first.isKey ? value[first.key] : value[first.index], place.subspan(1), number);
    }

    static void merge(Value& value, const Value& patch) { value.merge(patch); }

private:
    /// What `value["a"][0]["b"] = number` does, for a way that is known at run time only.
    static void set(JSONPlace&& target, std::span<const Step> rest, int number) {
        if (rest.empty()) {
            std::move(target) = number;
            return;
        }
        const Step& step = rest.front();
        set(step.isKey ? std::move(target)[step.key] : std::move(target)[step.index],
            rest.subspan(1), number);
    }
};

/// Values of their own at each step, as most hosts read.
struct Owning {
    static constexpr std::string_view name = "InkoraKit owning";
    static constexpr bool isAnotherWay = true;
    using Value = JSON;

    static Value parse(std::string_view text) { return Inkora::parse(text); }

    template <class Visitor>
    static void visit(const Value& value, Visitor& visitor) {
        const bool isArray = value.type() == Type::array;
        if (!isArray && value.type() != Type::dictionary) return Inkora::visit(value, visitor);
        visitor.node();
        for (const auto& [key, part] : value) {
            if (!isArray) visitor.text(key.size());
            visit(part, visitor);
        }
    }

    template <class A, class B, class C>
    static std::int64_t lookup(const Value& value, A first, B second, C third) {
        return value[first][second][third].intValue();
    }
};

/// The same of a value that may change, where each step knows its place.
struct Places {
    static constexpr std::string_view name = "InkoraKit places";
    static constexpr bool isAnotherWay = true;
    using Value = JSON;

    static Value parse(std::string_view text) { return Inkora::parse(text); }

    template <class A, class B, class C>
    static std::int64_t lookup(const Value& value, A first, B second, C third) {
        auto& changeable = const_cast<Value&>(value);  // and is none that was made constant
        return changeable[first][second][third].intValue();
    }
};

[[maybe_unused]] const bool areAdded =
    addLibrary<Inkora>() && addLibrary<Owning>() && addLibrary<Places>();

}  // namespace
}  // namespace InkoraKit
