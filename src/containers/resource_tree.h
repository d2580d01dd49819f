// The resources of a program image: a tree of three levels, type, name and language.
//
// Layout, little-endian; places are relative to the tree's start, data addresses to the image's start:
//   directory    16 bytes: u32 characteristics, u32 time, u16 major, u16 minor version, u16 named, u16 numbered
//   entries;
//                then 8 bytes an entry, the named ones first: u32 key (high bit: place of a string, else a number),
//                u32 place (high bit: of a directory, else of a data entry)
//   string       u16 characters, then UTF-16
//   data entry   16 bytes: u32 address, u32 size, u32 code page, u32 reserved
// Loaders search each directory by halving, so names stand in order of their characters and numbers in ascending order.
#pragma once

#include "containers/pe_file.h"

#include <compare>

namespace pelorin {

/// Numbers of the types that carry icons, and of the name table of an icon library.
inline constexpr std::uint16_t kResourceIcon = 3;
inline constexpr std::uint16_t kResourceGroupIcon = 14;
inline constexpr std::uint16_t kResourceLibraryNames = 301;

/// What a type or a resource goes by: a number, or a name, which sorts before all numbers.
struct ResourceKey {
    ResourceKey(std::uint16_t number) : id(number) {} // NOLINT: a number is a key
    explicit ResourceKey(std::u16string text) : named(true), name(std::move(text)) {}

    bool named = false;
    std::uint16_t id = 0;
    std::u16string name;

    friend bool operator==(const ResourceKey&, const ResourceKey&) = default;
    friend std::strong_ordering operator<=>(const ResourceKey& a, const ResourceKey& b) {
        if (a.named != b.named) return b.named <=> a.named;
        return a.named ? a.name <=> b.name : a.id <=> b.id;
    }
};

/// What an icon's group goes by: its number, or, with a negative one, its name.
[[nodiscard]] inline ResourceKey GroupKey(int id, const std::u16string& name) {
    return id >= 0 ? ResourceKey(static_cast<std::uint16_t>(id)) : ResourceKey(name);
}

/// The 12 bytes of a directory that no loader looks at; they are carried along.
struct ResourceStamp {
    std::uint32_t characteristics = 0, time = 0;
    std::uint16_t major = 0, minor = 0;
};

/// One resource in one language. The bytes belong to the file, or to whoever put them in.
struct ResourceData {
    std::uint16_t language = 0;
    std::uint32_t codePage = 0, reserved = 0;
    ByteSpan bytes;
    /// Set when the file does not hold the bytes: packers let an entry lead to memory that the program fills itself.
    PeRange unheld = {};
};

struct ResourceName {
    ResourceKey key;
    ResourceStamp stamp;
    std::vector<ResourceData> languages;
};

struct ResourceType {
    ResourceKey key;
    ResourceStamp stamp;
    std::vector<ResourceName> names;

    [[nodiscard]] const ResourceName* Find(const ResourceKey& name) const;
};

class ResourceTree {
public:
    ResourceStamp stamp;
    std::vector<ResourceType> types;

    /// Null when there is none.
    [[nodiscard]] const ResourceType* Find(const ResourceKey& type) const;
    [[nodiscard]] const ResourceData* Find(const ResourceKey& type, const ResourceKey& name,
                                           std::uint16_t language) const;
    /// Adds or replaces; the code page and stamps of what is replaced stay. The tree must be sorted.
    void Set(const ResourceKey& type, const ResourceKey& name, std::uint16_t language, ByteSpan bytes);
    /// Takes one resource out; `Prune` takes the directories away that this leaves empty. False when there was none.
    /// The tree must be sorted.
    bool Remove(const ResourceKey& type, const ResourceKey& name, std::uint16_t language);
    /// Takes empty directories out.
    void Prune();
    /// Brings every directory into the order that loaders need.
    void Sort();
};

/// What the tree of a file turned out to be, for those who mean to write it again.
struct ResourceTreeFacts {
    /// Everything in it has its place in a `ResourceTree`: three levels, numbered languages, no key twice, all inside
    /// the file. If not, writing the tree again would lose something.
    bool whole = true;
    /// False when the reading ended early, because entries that share their directories multiply beyond all sense.
    bool complete = true;
    /// Parts of the file that the tree takes up, in no order.
    std::vector<PeRange> used;
};

/// Reads the tree of an image, in the file's order; an empty one when there is none. What is damaged is left out.
/// A directory that several entries lead to is read once for each of them, within reason.
[[nodiscard]] ResourceTree ReadResourceTree(const PeImage& image, ResourceTreeFacts* facts = nullptr);

/// The same for a tree that stands at the start of a section, whatever the directories of the image say.
[[nodiscard]] ResourceTree ReadResourceTreeOf(const PeImage& image, const PeSection& section);

/// Bytes that `LayOutResourceTree` needs.
[[nodiscard]] std::uint64_t ResourceTreeSize(const ResourceTree& tree);
/// The tree as the contents of a section at address `rva`. The tree must be sorted and its size below 2 GiB.
[[nodiscard]] Bytes LayOutResourceTree(const ResourceTree& tree, std::uint32_t rva);

} // namespace pelorin
