#include "Workloads.h"

#include <simdjson.h>

namespace InkoraKit {
namespace {

/// A document with the parser that owns it. The root refers to the parser, so both stay in place.
struct SimdjsonDocument {
    explicit SimdjsonDocument(std::string_view text)
        : root(parser.parse(text.data(), text.size())) {}
    SimdjsonDocument(const SimdjsonDocument&) = delete;

    simdjson::dom::parser parser;
    simdjson::dom::element root;
};

/// Its documents cannot be changed.
struct Simdjson {
    static constexpr std::string_view name = "simdjson DOM";
    using Value = SimdjsonDocument;

    static Value parse(std::string_view text) { return Value(text); }
    static std::string compact(const Value& value) { return simdjson::minify(value.root); }
    static std::string_view view(const std::string& text) { return text; }

    template <class Visitor>
    static void visit(const Value& value, Visitor& visitor) {
        visit(value.root, visitor);
    }

    template <class A, class B, class C>
    static std::int64_t lookup(const Value& value, A first, B second, C third) {
        return at(at(at(value.root, first), second), third);
    }

private:
    using Element = simdjson::dom::element;

    static Element at(Element element, std::string_view key) { return element.at_key(key); }
    static Element at(Element element, std::size_t index) { return element.at(index); }

    template <class Visitor>
    static void visit(Element element, Visitor& visitor) {
        visitor.node();
        switch (element.type()) {
            case simdjson::dom::element_type::OBJECT:
                for (const auto member : simdjson::dom::object(element)) {
                    visitor.text(member.key.size());
                    visit(member.value, visitor);
                }
                break;
            case simdjson::dom::element_type::ARRAY:
                for (const Element child : simdjson::dom::array(element)) visit(child, visitor);
                break;
            case simdjson::dom::element_type::STRING:
                visitor.text(std::string_view(element).size());
                break;
            case simdjson::dom::element_type::INT64:
            case simdjson::dom::element_type::UINT64:
            case simdjson::dom::element_type::DOUBLE:
                visitor.number(double(element));
                break;
            default:
                break;
        }
    }
};

[[maybe_unused]] const bool isAdded = addLibrary<Simdjson>();

}  // namespace
}  // namespace InkoraKit
