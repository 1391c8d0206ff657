#include "platform/foundation/values/Storage.h"

#include "platform/foundation/text/TextEncoding.h"
#include "platform/foundation/values/DictionaryIndex.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace InkoraKit {

namespace {

// With their index, members take less than 64 bytes each: the size of all is no more than fits.
constexpr std::size_t mostElements = std::min<std::size_t>(
    std::numeric_limits<std::uint32_t>::max() / 2, std::numeric_limits<std::size_t>::max() / 64);

/// A node of its own, followed by its elements or members.
struct HeapNode {
    Owner owner;
    Region* region = nullptr;  // where the children live that are not counted
    bool hasCountedChildren = true;
    NodeHeader header{0, 0, {&owner}};

    explicit constexpr HeapNode(Owner::Kind kind) noexcept : owner(kind) {}
};

/// A text or a decimal, which follows.
struct HeapBlock {
    Owner owner{Owner::Kind::block};
    OwnerLink link{&owner};
};

static_assert(sizeof(HeapNode) % 16 == 0 && offsetof(HeapNode, owner) == 0);

template <class Block>
Block* allocated(std::size_t size) {
    void* const memory = std::malloc(sizeof(Block) + size);
    if (!memory) throw std::bad_alloc();
    return static_cast<Block*>(memory);
}

AnySlot blockSlot(AnySlot::Tag tag, const void* contents, std::size_t size) {
    if (size > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("A text is limited to 4 GiB.");
    auto* const block = new (allocated<HeapBlock>(size + Region::slack)) HeapBlock;
    std::memcpy(reinterpret_cast<std::byte*>(block + 1), contents, size);
    AnySlot slot(tag, block + 1, static_cast<std::uint32_t>(size));
    slot.setCounted();
    return slot;
}

AnySlot textSlot(std::string_view text) {
    return text.size() > AnySlot::longestShortText
               ? blockSlot(AnySlot::longText, text.data(), text.size())
               : AnySlot::view(text);
}

Owner::Kind kindOf(const AnySlot& container) {
    return container.tag() == AnySlot::array ? Owner::Kind::array : Owner::Kind::dictionary;
}

std::size_t contentSize(Owner::Kind kind, std::uint32_t capacity) {
    return kind == Owner::Kind::array ? capacity * sizeof(AnySlot)
                                      : DictionaryIndex::size(capacity);
}

std::size_t slotsOf(Owner::Kind kind, std::uint32_t count) {
    return kind == Owner::Kind::array ? count : std::size_t{count} * 2;
}

HeapNode& nodeOf(const AnySlot& container) {
    return reinterpret_cast<HeapNode*>(container.pointer())[-1];
}

bool isOwn(const AnySlot& container) {
    const Owner& owner = Storage::owner(container);
    return container.isCounted() && owner.kind() != Owner::Kind::region && owner.hasOneUser();
}

/// Makes the container a node of its own, with room for `capacity`, that shares the children.
void copyNode(AnySlot& container, std::uint32_t capacity) {
    const Owner::Kind kind = kindOf(container);
    const NodeHeader& original = Storage::header(container);
    Owner& originalOwner = Storage::owner(container);

    auto* const node = new (allocated<HeapNode>(contentSize(kind, capacity))) HeapNode(kind);
    node->header.count = original.count;
    node->header.capacity = capacity;
    auto* const slots = reinterpret_cast<AnySlot*>(node + 1);
    const bool isSameLayout = capacity == original.capacity;
    std::memcpy(slots, container.pointer(),
                isSameLayout ? contentSize(kind, capacity)
                             : slotsOf(kind, original.count) * sizeof(AnySlot));
    if (!isSameLayout && kind == Owner::Kind::dictionary)
        DictionaryIndex::build(reinterpret_cast<MemberSlots*>(slots), node->header);

    const bool isFromRegion = originalOwner.kind() == Owner::Kind::region;
    node->hasCountedChildren = !isFromRegion && nodeOf(container).hasCountedChildren;
    node->region = isFromRegion ? static_cast<Region*>(&originalOwner) : nodeOf(container).region;
    if (node->hasCountedChildren) {
        for (std::size_t i = 0; i < slotsOf(kind, original.count); ++i)
            if (slots[i].isCounted()) Storage::owner(slots[i]).retain();
    }
    // The user that the container was of its region, the node becomes.
    const bool takesOver = isFromRegion && container.isCounted();
    if (node->region && !takesOver) node->region->retain();

    AnySlot copy = container;
    copy.setPointer(slots);
    copy.setCounted();
    if (container.isCounted() && !takesOver && originalOwner.release())
        Storage::destroy(&originalOwner);
    container = copy;
}

void makeOwn(AnySlot& container) {
    if (!isOwn(container)) copyNode(container, Storage::header(container).count);
}

/// Makes the container its own, with room for more.
void makeRoom(AnySlot& container, std::size_t count) {
    if (count > mostElements) throw std::length_error("Too many elements or members.");
    const std::size_t capacity = Storage::header(container).capacity;
    if (count <= capacity && isOwn(container)) return;
    const std::size_t more = std::max<std::size_t>(capacity + capacity / 2, 4);
    const std::size_t wanted = count <= capacity ? capacity : std::max(count, more);
    copyNode(container, static_cast<std::uint32_t>(std::min(wanted, mostElements)));
}

constinit HeapNode emptyArrayNode(Owner::Kind::array);
constinit HeapNode emptyDictionaryNode(Owner::Kind::dictionary);

/// One of the nodes above, which are never their own users' alone.
Any emptyContainer(AnySlot::Tag tag, HeapNode& node) noexcept {
    node.owner.retain();
    Any result;
    Storage::slot(result) = AnySlot(tag, &node + 1);
    Storage::slot(result).setCounted();
    return result;
}

}  // namespace

Any Storage::emptyArray() noexcept {
    return emptyContainer(AnySlot::array, emptyArrayNode);
}

Any Storage::emptyDictionary() noexcept {
    return emptyContainer(AnySlot::dictionary, emptyDictionaryNode);
}

const AnySlot* AnySlot::member(AnySlot dictionary, AnySlot key) noexcept {
    const auto* const members = reinterpret_cast<const MemberSlots*>(dictionary.pointer());
    const MemberSlots* const member = DictionaryIndex::find(members, dictionary.header(), key);
    return member ? &member->value : nullptr;
}

Any& Storage::writableElement(Any& array, std::size_t position) {
    return writablePart(array, position);
}

Any& Storage::writablePart(Any& container, std::size_t position) {
    makeOwn(container.slot_);
    nodeOf(container.slot_).hasCountedChildren = true;
    auto* const slots = reinterpret_cast<AnySlot*>(container.slot_.pointer());
    const bool hasKeys = container.slot_.tag() == AnySlot::dictionary;
    return asAny(slots[hasKeys ? 2 * position + 1 : position]);
}

void Storage::noteParts(Any& container) noexcept {
    const AnySlot* part = container.slot_.parts();
    const AnySlot* const end = part + slotsOf(kindOf(container.slot_), count(container));
    container.slot_.copyNotes({});
    for (; part != end; ++part) container.slot_.note(*part);
}

Any& Storage::writableMember(Any& dictionary, std::string_view key) {
    AnySlot& container = dictionary.slot_;
    const auto memberAt = [&](std::uint32_t position) -> MemberSlots& {
        return reinterpret_cast<MemberSlots*>(container.pointer())[position];
    };
    const MemberSlots* const known =
        DictionaryIndex::find(&memberAt(0), header(container), AnySlot::view(key));
    if (known) return writablePart(dictionary, static_cast<std::size_t>(known - &memberAt(0)));
    Any ownKey(key);
    const std::uint32_t count = header(container).count;
    makeRoom(container, std::size_t{count} + 1);
    nodeOf(container).hasCountedChildren = true;
    memberAt(count) = {std::exchange(ownKey.slot_, {}), {}};
    header(container).count = count + 1;
    DictionaryIndex::insert(&memberAt(0), header(container), count);
    return asAny(memberAt(count).value);
}

void Storage::append(Any& array, Any element) {
    const std::uint32_t count = header(array.slot_).count;
    makeRoom(array.slot_, std::size_t{count} + 1);
    nodeOf(array.slot_).hasCountedChildren = true;
    array.slot_.note(element.slot_);
    reinterpret_cast<AnySlot*>(array.slot_.pointer())[count] = std::exchange(element.slot_, {});
    header(array.slot_).count = count + 1;
}

void Storage::set(Any& array, std::size_t position, Any element) {
    array.slot_.note(element.slot_);
    writableElement(array, position) = std::move(element);
}

void Storage::set(Any& dictionary, std::string_view key, Any value) {
    Any& place = writableMember(dictionary, key);
    dictionary.slot_.note(value.slot_);
    place = std::move(value);
}

void Storage::reserve(Any& container, std::size_t count) {
    if (count > header(container.slot_).capacity) makeRoom(container.slot_, count);
}

void Storage::destroy(Owner* first) noexcept {
    first->setNext(nullptr);
    for (Owner* rest = first; rest;) {
        Owner* const owner = std::exchange(rest, rest->next());
        const auto drop = [&rest](Owner& user) {
            if (!user.release()) return;
            user.setNext(rest);
            rest = &user;
        };
        switch (owner->kind()) {
            case Owner::Kind::region:
                static_cast<Region*>(owner)->destroy();
                break;
            case Owner::Kind::array:
            case Owner::Kind::dictionary: {
                auto* const node = reinterpret_cast<HeapNode*>(owner);
                const auto* const slots = reinterpret_cast<AnySlot*>(node + 1);
                const std::size_t count =
                    node->hasCountedChildren ? slotsOf(owner->kind(), node->header.count) : 0;
                for (std::size_t i = 0; i < count; ++i)
                    if (slots[i].isCounted()) drop(Storage::owner(slots[i]));
                if (node->region) drop(*node->region);
                std::free(node);
                break;
            }
            case Owner::Kind::block:
                std::free(owner);
                break;
            case Owner::Kind::object:
                destroyObject(owner);
                break;
        }
    }
}

// Any, as far as it is storage

namespace {

/// Anything that is not the platform's own, which follows as seen through a pointer.
template <class Object>
struct HeapObject {
    Owner owner{Owner::Kind::object};
    std::unique_ptr<Object> object;
    OwnerLink link{&owner};
};

}  // namespace

void Storage::destroyObject(Owner* owner) noexcept {
    delete reinterpret_cast<HeapObject<Any::Object>*>(owner);
}

void Any::keepText(std::string_view text) {
    if (isUtf8(text)) {
        slot_ = textSlot(text);
    } else {
        slot_ = blockSlot(AnySlot::malformedText, text.data(), text.size());
        slot_.setForeign();
    }
}

void Any::keepDecimal(const NSDecimalNumber& decimal) {
    slot_ = blockSlot(AnySlot::decimal, &decimal, sizeof decimal);
}

void Any::keepObject(std::unique_ptr<Object> object) {
    auto* const block = new HeapObject<Object>;
    block->object = std::move(object);
    slot_ = AnySlot(AnySlot::object, block + 1);
    slot_.setCounted();
    slot_.setForeign();
}

const Any::Object* Any::object() const noexcept {
    if (slot_.tag() != AnySlot::object) return nullptr;
    return reinterpret_cast<HeapObject<Object>*>(slot_.pointer())[-1].object.get();
}

NSNumber Any::number() const noexcept {
    if (slot_.tag() == AnySlot::decimal) {
        NSDecimalNumber decimal = NSDecimalNumber::zero();
        std::memcpy(&decimal, slot_.pointer(), sizeof decimal);
        return decimal;
    }
    NSNumber result;
    result.kind_ = static_cast<NSNumber::Kind>(slot_.tag() - AnySlot::boolean);
    if (result.isReal()) {
        result.real_ = slot_.real();
    } else {
        result.integer_ = slot_.integer();
    }
    return result;
}

void Any::takeDown(Owner* owner) noexcept {
    Storage::destroy(owner);
}

}  // namespace InkoraKit
