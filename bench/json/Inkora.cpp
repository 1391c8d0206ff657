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
                for (const auto& [key, member] : value) {
                    visitor.text(key.size());
                    visit(member, visitor);
                }
                break;
            case Type::array:
                for (const auto& [position, element] : value) visit(element, visitor);
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
        return value[first][second][third].intValue();
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

[[maybe_unused]] const bool isAdded = addLibrary<Inkora>();

}  // namespace
}  // namespace InkoraKit
