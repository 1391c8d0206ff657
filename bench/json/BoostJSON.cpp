#include "Workloads.h"

// The library itself, compiled here with this program's flags.
#include <boost/json/src.hpp>

#include <memory>
#include <span>

namespace InkoraKit {
namespace {

boost::json::value parsed(std::string_view text, boost::json::storage_ptr storage) {
    boost::json::parse_options options;
    options.max_depth = 1024;  // 32 unless told otherwise
    return boost::json::parse(text, std::move(storage), options);
}

struct BoostJSON {
    static constexpr std::string_view name = "Boost.JSON";
    using Value = boost::json::value;

    static Value parse(std::string_view text) { return parsed(text, {}); }
    static std::string compact(const Value& value) { return boost::json::serialize(value); }
    static std::string_view view(const std::string& text) { return text; }

    template <class Visitor>
    static void visit(const Value& value, Visitor& visitor) {
        visitor.node();
        switch (value.kind()) {
            case boost::json::kind::object:
                for (const auto& member : value.get_object()) {
                    visitor.text(member.key().size());
                    visit(member.value(), visitor);
                }
                break;
            case boost::json::kind::array:
                for (const Value& element : value.get_array()) visit(element, visitor);
                break;
            case boost::json::kind::string:
                visitor.text(value.get_string().size());
                break;
            case boost::json::kind::int64:
                visitor.number(static_cast<double>(value.get_int64()));
                break;
            case boost::json::kind::uint64:
                visitor.number(static_cast<double>(value.get_uint64()));
                break;
            case boost::json::kind::double_:
                visitor.number(value.get_double());
                break;
            default:
                break;
        }
    }

    template <class A, class B, class C>
    static std::int64_t lookup(const Value& value, A first, B second, C third) {
        return at(at(at(value, first), second), third).get_int64();
    }

    static void change(Value& value, std::span<const Step> place, int number) {
        Value* target = &value;
        for (const Step& step : place) {
            target =
                step.isKey ? &target->get_object()[step.key] : &target->get_array()[step.index];
        }
        *target = number;
    }

    static void merge(Value& value, const Value& patch) {
        merge(value.get_object(), patch.get_object());
    }

private:
    static const Value& at(const Value& value, std::string_view key) {
        return value.get_object().find(key)->value();
    }
    static const Value& at(const Value& value, std::size_t index) {
        return value.get_array()[index];
    }

    static void merge(boost::json::object& target, const boost::json::object& patch) {
        for (const auto& member : patch) {
            auto* const found = target.find(member.key());
            if (found == target.end()) {
                target.emplace(member.key(), member.value());
            } else if (found->value().is_object() && member.value().is_object()) {
                merge(found->value().get_object(), member.value().get_object());
            } else {
                found->value() = member.value();
            }
        }
    }
};

/// A document in a resource of its own, which gives everything back at once.
class MonotonicDocument {
public:
    explicit MonotonicDocument(std::string_view text) : root(parsed(text, storage_.get())) {}
    MonotonicDocument(const MonotonicDocument& other) : root(other.root, storage_.get()) {}

private:
    std::unique_ptr<boost::json::monotonic_resource> storage_ =
        std::make_unique<boost::json::monotonic_resource>();

public:
    boost::json::value root;
};

/// Only what differs by the resource.
struct MonotonicBoostJSON {
    static constexpr std::string_view name = "Boost monotonic";
    using Value = MonotonicDocument;

    static Value parse(std::string_view text) { return Value(text); }
    static void change(Value& value, std::span<const Step> place, int number) {
        BoostJSON::change(value.root, place, number);
    }
    static void merge(Value& value, const Value& patch) {
        BoostJSON::merge(value.root, patch.root);
    }
};

[[maybe_unused]] const bool areAdded = addLibrary<BoostJSON>() && addLibrary<MonotonicBoostJSON>();

}  // namespace
}  // namespace InkoraKit
