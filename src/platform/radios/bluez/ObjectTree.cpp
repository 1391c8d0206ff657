#include "platform/radios/bluez/ObjectTree.h"

#include <algorithm>
#include <utility>

namespace InkoraKit {

void ObjectTree::add(const std::string& path, const std::string& interface, Properties properties) {
    objects_[path].insert_or_assign(interface, std::move(properties));
}

void ObjectTree::remove(const std::string& path, const std::string& interface) {
    const auto object = objects_.find(path);
    if (object == objects_.end()) return;
    object->second.erase(interface);
    if (object->second.empty()) objects_.erase(object);
}

Properties ObjectTree::change(const std::string& path, const std::string& interface,
                              Properties&& changed, const std::vector<std::string>& invalidated) {
    Properties before;
    const auto object = objects_.find(path);
    if (object == objects_.end()) return before;
    const auto entry = object->second.find(interface);
    if (entry == object->second.end()) return before;
    Properties& properties = entry->second;
    for (auto& [name, value] : changed)
        before[name] = std::exchange(properties[name], std::move(value));
    for (const std::string& name : invalidated) {
        const auto property = properties.extract(name);
        before[name] = property ? property.mapped() : Variant();
    }
    return before;
}

void ObjectTree::forget(std::string_view interface, std::string_view property) {
    for (auto& [path, interfaces] : objects_) {
        const auto entry = interfaces.find(interface);
        if (entry == interfaces.end()) continue;
        const auto forgotten = entry->second.find(property);
        if (forgotten != entry->second.end()) entry->second.erase(forgotten);
    }
}

const Properties* ObjectTree::properties(std::string_view path, std::string_view interface) const {
    const auto object = objects_.find(path);
    if (object == objects_.end()) return nullptr;
    const auto entry = object->second.find(interface);
    return entry == object->second.end() ? nullptr : &entry->second;
}

bool ObjectTree::isPowered(std::string_view path) const {
    return valueOf<bool>(path, adapter, "Powered");
}

bool ObjectTree::mayBe(std::string_view role, std::string_view path) const {
    const auto* roles = property<std::vector<std::string>>(path, adapter, "Roles");
    return !roles || std::find(roles->begin(), roles->end(), role) != roles->end();
}

std::vector<std::string> ObjectTree::below(const std::string& path,
                                           std::string_view interface) const {
    const std::string prefix = path + "/";
    std::vector<std::string> found;
    for (auto object = objects_.lower_bound(prefix); object != objects_.end(); ++object) {
        if (!object->first.starts_with(prefix)) break;
        if (object->second.contains(interface)) found.push_back(object->first);
    }
    return found;
}

std::string deviceOf(std::string_view path) {
    constexpr std::string_view marker = "/dev_";
    const auto begin = path.find(marker);
    if (begin == std::string_view::npos) return {};
    return std::string(path.substr(0, path.find('/', begin + marker.size())));
}

std::string nameOfObject(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

}  // namespace InkoraKit
