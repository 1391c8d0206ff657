#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/Array.h>
#include <InkoraKit/platform/Dictionary.h>

#include "platform/foundation/values/DictionaryIndex.h"
#include "platform/foundation/values/Storage.h"

#include <algorithm>
#include <set>
#include <vector>

namespace InkoraKit {

namespace {

/// Pairs of containers that remain to be compared.
class Pairs {
public:
    void add(const Any& left, const Any& right) {
        // Where parts are shared, there can be far more ways to them than parts. Most values are
        // compared before it would pay to look out for that.
        constexpr std::size_t many = 1'000;
        if (++count_ > many &&
            !seen_.emplace(Storage::slot(left).pointer(), Storage::slot(right).pointer()).second)
            return;
        rest_.emplace_back(&left, &right);
    }
    bool isEmpty() const noexcept { return rest_.empty(); }
    std::pair<const Any*, const Any*> take() {
        const auto pair = rest_.back();
        rest_.pop_back();
        return pair;
    }

private:
    std::vector<std::pair<const Any*, const Any*>> rest_;
    std::size_t count_ = 0;  // of all pairs so far
    std::set<std::pair<const std::byte*, const std::byte*>> seen_;
};

/// Compares a pair, except for the contents of two containers that may be equal, which it puts off.
bool mayBeEqual(const Any& left, const Any& right, Pairs& pending);

bool haveEqualElements(const Any& left, const Any& right, Pairs& pending) {
    const auto lefts = Storage::elements(left);
    const auto rights = Storage::elements(right);
    return std::equal(lefts.begin(), lefts.end(), rights.begin(), rights.end(),
                      [&](const Any& l, const Any& r) { return mayBeEqual(l, r, pending); });
}

bool haveEqualMembers(const Any& left, const Any& right, Pairs& pending) {
    if (Storage::count(left) != Storage::count(right)) return false;
    const auto members = Storage::members(left);
    return std::all_of(members.begin(), members.end(), [&](const MemberSlots& member) {
        const Any* const same = Storage::member(right, member.key.text());
        return same && mayBeEqual(Storage::asAny(member.value), *same, pending);
    });
}

}  // namespace

bool Storage::areEqualLeaves(const Any& left, const Any& right) {
    const AnySlot& l = left.slot_;
    const AnySlot& r = right.slot_;
    if (l.isNumber()) return r.isNumber() && left.number().isEqual(right.number());
    if (l.tag() != r.tag()) return false;
    switch (l.tag()) {
        case AnySlot::absent:
        case AnySlot::null:
            return true;
        case AnySlot::object:
            return l.pointer() == r.pointer() || left.object()->equals(*right.object());
        default:
            return l.text() == r.text();
    }
}

namespace {

bool mayBeEqual(const Any& left, const Any& right, Pairs& pending) {
    const AnySlot& l = Storage::slot(left);
    const AnySlot& r = Storage::slot(right);
    if (!l.isContainer()) return Storage::areEqualLeaves(left, right);
    if (l.tag() != r.tag() || Storage::count(left) != Storage::count(right)) return false;
    if (l.pointer() != r.pointer()) pending.add(left, right);
    return true;
}

}  // namespace

bool operator==(const Any& left, const Any& right) {
    Pairs pending;
    if (!mayBeEqual(left, right, pending)) return false;
    while (!pending.isEmpty()) {
        const auto [l, r] = pending.take();
        const bool areAlike = Storage::tag(*l) == AnySlot::array
                                  ? haveEqualElements(*l, *r, pending)
                                  : haveEqualMembers(*l, *r, pending);
        if (!areAlike) return false;
    }
    return true;
}

Any::Kind Any::kind() const noexcept {
    switch (slot_.tag()) {
        case AnySlot::absent:
            return Kind::absent;
        case AnySlot::null:
            return Kind::null;
        case AnySlot::shortText:
        case AnySlot::longText:
            return Kind::text;
        case AnySlot::array:
            return Kind::array;
        case AnySlot::dictionary:
            return Kind::dictionary;
        case AnySlot::malformedText:
        case AnySlot::object:
            return Kind::object;
        default:
            return Kind::number;
    }
}

namespace {

/// Of what can be told without going into containers, which keeps hashing quick and its depth flat.
std::size_t hashOfLeaf(const Any& value) {
    if (const auto number = value.as<NSNumber>()) return number->hash();
    if (const auto text = value.as<std::string_view>()) return std::hash<std::string_view>{}(*text);
    const auto kind = static_cast<std::size_t>(value.kind());
    return Storage::slot(value).isContainer() ? kind + std::size_t{31} * Storage::count(value)
                                              : kind;
}

}  // namespace

std::size_t Any::hash() const {
    std::size_t result = hashOfLeaf(*this);
    if (slot_.tag() == AnySlot::array) {
        for (const Any& element : Storage::elements(*this))
            result = result * 31 + hashOfLeaf(element);
    } else if (slot_.tag() == AnySlot::dictionary) {
        for (const MemberSlots& member : Storage::members(*this))  // in whatever order
            result += hashOfLeaf(Storage::asAny(member.key)) * 31 +
                      hashOfLeaf(Storage::asAny(member.value));
    }
    return result;
}

Array::Array() : contents_(Storage::emptyArray()) {}

Array::Array(std::initializer_list<Any> elements) : Array() {
    reserve(elements.size());
    for (const Any& element : elements) append(element);
}

std::size_t Array::size() const noexcept {
    return Storage::count(contents_);
}

const Any* Array::begin() const noexcept {
    return Storage::elements(contents_).data();
}

void Array::reserve(std::size_t count) {
    Storage::reserve(contents_, count);
}

void Array::append(Any element) {
    Storage::append(contents_, std::move(element));
}

void Array::set(std::size_t position, Any element) {
    Storage::set(contents_, position, std::move(element));
}

Dictionary::Dictionary() : contents_(Storage::emptyDictionary()) {}

Dictionary::Dictionary(std::initializer_list<std::pair<std::string_view, Any>> members)
    : Dictionary() {
    reserve(members.size());
    for (const auto& [key, value] : members) set(key, value);
}

std::size_t Dictionary::size() const noexcept {
    return Storage::count(contents_);
}

Dictionary::const_iterator Dictionary::begin() const noexcept {
    const auto members = Storage::members(contents_);
    return const_iterator(reinterpret_cast<const Any*>(members.data()));
}

Dictionary::const_iterator Dictionary::end() const noexcept {
    const auto members = Storage::members(contents_);
    return const_iterator(reinterpret_cast<const Any*>(members.data() + members.size()));
}

Dictionary::const_iterator Dictionary::find(std::string_view key) const noexcept {
    const Any* const value = Storage::member(contents_, key);
    return value ? const_iterator(value - 1) : end();
}

void Dictionary::reserve(std::size_t count) {
    Storage::reserve(contents_, count);
}

void Dictionary::set(std::string_view key, Any value) {
    Storage::set(contents_, key, std::move(value));
}

bool Dictionary::erase(std::string_view key) {
    if (!contains(key)) return false;
    Dictionary others;
    others.reserve(size() - 1);
    for (const auto& [other, value] : *this)
        if (other != key) others.set(other, value);
    *this = std::move(others);
    return true;
}

}  // namespace InkoraKit
