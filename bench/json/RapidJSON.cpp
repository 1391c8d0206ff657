#include "Workloads.h"

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <span>
#include <stdexcept>

namespace InkoraKit {
namespace {

/// A document that can be copied.
struct RapidDocument {
    RapidDocument() = default;
    RapidDocument(const RapidDocument& other) { root.CopyFrom(other.root, root.GetAllocator()); }
    RapidDocument(RapidDocument&&) = default;

    rapidjson::Document root;
};

struct RapidJSON {
    static constexpr std::string_view name = "RapidJSON";
    using Value = RapidDocument;
    using Node = rapidjson::Value;

    static Value parse(std::string_view text) {
        // Doubles are exact and texts are UTF-8 with the other libraries in any case.
        constexpr unsigned flags =
            rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag;
        Value value;
        value.root.Parse<flags>(text.data(), text.size());
        if (value.root.HasParseError()) throw std::runtime_error("the text cannot be read");
        return value;
    }

    static rapidjson::StringBuffer compact(const Value& value) {
        rapidjson::StringBuffer text;
        rapidjson::Writer<rapidjson::StringBuffer> writer(text);
        value.root.Accept(writer);
        return text;
    }
    static rapidjson::StringBuffer pretty(const Value& value) {
        rapidjson::StringBuffer text;
        rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(text);
        writer.SetIndent(' ', 2);
        value.root.Accept(writer);
        return text;
    }
    static std::string_view view(const rapidjson::StringBuffer& text) {
        return {text.GetString(), text.GetSize()};
    }

    template <class Visitor>
    static void visit(const Value& value, Visitor& visitor) {
        visit(value.root, visitor);
    }

    template <class A, class B, class C>
    static std::int64_t lookup(const Value& value, A first, B second, C third) {
        return at(at(at(value.root, first), second), third).GetInt64();
    }

    static void change(Value& value, std::span<const Step> place, int number) {
        Node* target = &value.root;
        for (const Step& step : place) {
            target = step.isKey ? &(*target)[reference(step.key)]
                                : &(*target)[static_cast<rapidjson::SizeType>(step.index)];
        }
        target->SetInt(number);
    }

    static void merge(Value& value, const Value& patch) {
        merge(value.root, patch.root, value.root.GetAllocator());
    }

private:
    using Allocator = rapidjson::Document::AllocatorType;

    static Node reference(std::string_view text) {
        return Node(
            rapidjson::StringRef(text.data(), static_cast<rapidjson::SizeType>(text.size())));
    }
    static const Node& at(const Node& node, std::string_view key) { return node[reference(key)]; }
    static const Node& at(const Node& node, std::size_t index) {
        return node[static_cast<rapidjson::SizeType>(index)];
    }

    template <class Visitor>
    static void visit(const Node& node, Visitor& visitor) {
        visitor.node();
        switch (node.GetType()) {
            case rapidjson::kObjectType:
                for (const auto& member : node.GetObject()) {
                    visitor.text(member.name.GetStringLength());
                    visit(member.value, visitor);
                }
                break;
            case rapidjson::kArrayType:
                for (const Node& element : node.GetArray()) visit(element, visitor);
                break;
            case rapidjson::kStringType:
                visitor.text(node.GetStringLength());
                break;
            case rapidjson::kNumberType:
                visitor.number(node.GetDouble());
                break;
            default:
                break;
        }
    }

    static void merge(Node& target, const Node& patch, Allocator& allocator) {
        for (const auto& member : patch.GetObject()) {
            const auto found = target.FindMember(member.name);
            // Not by ==, which is ambiguous for these iterators since C++20.
            if (target.MemberEnd() - found == 0) {
                target.AddMember(Node(member.name, allocator), Node(member.value, allocator),
                                 allocator);
            } else if (found->value.IsObject() && member.value.IsObject()) {
                merge(found->value, member.value, allocator);
            } else {
                found->value.CopyFrom(member.value, allocator);
            }
        }
    }
};

[[maybe_unused]] const bool isAdded = addLibrary<RapidJSON>();

}  // namespace
}  // namespace InkoraKit
