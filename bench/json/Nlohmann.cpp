#include "Workloads.h"

#include <nlohmann/json.hpp>

#include <span>

namespace InkoraKit {
namespace {

struct Nlohmann {
    static constexpr std::string_view name = "nlohmann";
    using Value = nlohmann::json;

    static Value parse(std::string_view text) { return Value::parse(text); }
    static std::string compact(const Value& value) { return value.dump(); }
    static std::string pretty(const Value& value) { return value.dump(2); }
    static std::string_view view(const std::string& text) { return text; }

    template <class Visitor>
    static void visit(const Value& value, Visitor& visitor) {
        visitor.node();
        switch (value.type()) {
            case Value::value_t::object:
                for (const auto& [key, member] : value.get_ref<const Value::object_t&>()) {
                    visitor.text(key.size());
                    visit(member, visitor);
                }
                break;
            case Value::value_t::array:
                for (const Value& element : value) visit(element, visitor);
                break;
            case Value::value_t::string:
                visitor.text(value.get_ref<const std::string&>().size());
                break;
            case Value::value_t::number_integer:
            case Value::value_t::number_unsigned:
            case Value::value_t::number_float:
                visitor.number(value.get<double>());
                break;
            default:
                break;
        }
    }

    template <class A, class B, class C>
    static std::int64_t lookup(const Value& value, A first, B second, C third) {
        return value[first][second][third].template get<std::int64_t>();
    }

    static void change(Value& value, std::span<const Step> place, int number) {
        Value* target = &value;
        for (const Step& step : place) {
            target = step.isKey ? &(*target)[step.key] : &(*target)[step.index];
        }
        *target = number;
    }

    static void merge(Value& value, const Value& patch) { value.update(patch, true); }
};

[[maybe_unused]] const bool isAdded = addLibrary<Nlohmann>();

}  // namespace
}  // namespace InkoraKit
