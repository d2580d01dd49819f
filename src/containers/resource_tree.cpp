#include "containers/resource_tree.h"

namespace pelorin {

namespace {

template <typename List, typename Key>
auto FindByKey(List& list, const Key& key) {
    return std::find_if(list.begin(), list.end(), [&](const auto& item) { return item.key == key; });
}

template <typename List>
auto PlaceOf(List& list, const ResourceKey& key) {
    return std::lower_bound(list.begin(), list.end(), key,
                            [](const auto& item, const auto& k) { return item.key < k; });
}

template <typename List>
auto FindSorted(List& list, const ResourceKey& key) {
    const auto at = PlaceOf(list, key);
    return at != list.end() && at->key == key ? at : list.end();
}

/// The entry of this key, put in at its sorted place when it was not there.
template <typename List>
auto& FindOrInsert(List& list, const ResourceKey& key) {
    auto at = PlaceOf(list, key);
    if (at == list.end() || at->key != key) at = list.insert(at, typename List::value_type{key, {}, {}});
    return *at;
}

constexpr auto kByKey = [](const auto& a, const auto& b) { return a.key < b.key; };
constexpr auto kByLanguage = [](const ResourceData& a, const ResourceData& b) { return a.language < b.language; };

} // namespace

const ResourceName* ResourceType::Find(const ResourceKey& name) const {
    const auto at = FindByKey(names, name);
    return at == names.end() ? nullptr : &*at;
}

const ResourceType* ResourceTree::Find(const ResourceKey& type) const {
    const auto at = FindByKey(types, type);
    return at == types.end() ? nullptr : &*at;
}

const ResourceData* ResourceTree::Find(const ResourceKey& type, const ResourceKey& name, std::uint16_t language) const {
    const auto* found = Find(type);
    const auto* named = found ? found->Find(name) : nullptr;
    if (!named) return nullptr;
    for (const auto& data : named->languages) {
        if (data.language == language) return &data;
    }
    return nullptr;
}

void ResourceTree::Set(const ResourceKey& type, const ResourceKey& name, std::uint16_t language, ByteSpan bytes) {
    auto& languages = FindOrInsert(FindOrInsert(types, type).names, name).languages;
    const ResourceData wanted{language, 0, 0, bytes, {}};
    const auto at = std::lower_bound(languages.begin(), languages.end(), wanted, kByLanguage);
    if (at != languages.end() && at->language == language) {
        at->bytes = bytes;
        at->unheld = {};
    } else {
        languages.insert(at, wanted);
    }
}

bool ResourceTree::Remove(const ResourceKey& type, const ResourceKey& name, std::uint16_t language) {
    const auto inTypes = FindSorted(types, type);
    if (inTypes == types.end()) return false;
    const auto inNames = FindSorted(inTypes->names, name);
    if (inNames == inTypes->names.end()) return false;
    return std::erase_if(inNames->languages, [&](const auto& data) { return data.language == language; }) != 0;
}

// In one pass, whatever was removed: a program can have sixty thousand images.
void ResourceTree::Prune() {
    for (auto& type : types) std::erase_if(type.names, [](const auto& name) { return name.languages.empty(); });
    std::erase_if(types, [](const auto& type) { return type.names.empty(); });
}

void ResourceTree::Sort() {
    std::stable_sort(types.begin(), types.end(), kByKey);
    for (auto& type : types) {
        std::stable_sort(type.names.begin(), type.names.end(), kByKey);
        for (auto& name : type.names) std::stable_sort(name.languages.begin(), name.languages.end(), kByLanguage);
    }
}

} // namespace pelorin
