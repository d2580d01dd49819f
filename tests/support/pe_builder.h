// Program images made to measure: headers, a few sections, and whatever stands behind them.
#pragma once

#include "containers/resource_tree.h"

namespace pelorin::test {

struct PeSpec {
    struct Section {
        std::string name;
        Bytes bytes;
        std::uint32_t flags = 0x40000040;
    };
    bool is64Bit = false;
    std::uint32_t fileAlignment = 0x200, sectionAlignment = 0x1000, sizeOfHeaders = 0x400;
    std::vector<Section> sections;
    Bytes tail; ///< behind the image

    struct Directory {
        PeDirectory number;
        std::uint32_t address, size;
    };
    std::vector<Directory> directories;
    std::uint32_t symbolTable = 0;
    Bytes behindSectionTable;
};

inline std::uint32_t AlignedTo(std::size_t value, std::uint32_t unit) {
    return static_cast<std::uint32_t>((value + unit - 1) / unit * unit);
}

/// Address that section `index` gets.
inline std::uint32_t AddressOf(const PeSpec& spec, std::size_t index) {
    auto address = AlignedTo(spec.sizeOfHeaders, spec.sectionAlignment);
    for (std::size_t i = 0; i < index; ++i) address += AlignedTo(spec.sections[i].bytes.size(), spec.sectionAlignment);
    return address;
}
/// Place in the file that section `index` gets; that of the tail for an index behind the last one.
inline std::uint32_t PlaceOf(const PeSpec& spec, std::size_t index) {
    auto place = spec.sizeOfHeaders;
    for (std::size_t i = 0; i < index; ++i) place += AlignedTo(spec.sections[i].bytes.size(), spec.fileAlignment);
    return place;
}

inline Bytes BuildPe(const PeSpec& spec) {
    ByteWriter out;
    out.Text("MZ");
    out.Zeros(0x3A);
    out.U32LE(0x80);
    out.Zeros(0x40);
    out.Text(std::string_view("PE\0\0", 4));
    out.U16LE(spec.is64Bit ? 0x8664 : 0x14C);
    out.U16LE(static_cast<std::uint32_t>(spec.sections.size()));
    out.U32LE(0);
    out.U32LE(spec.symbolTable);
    out.U32LE(0);
    const std::uint32_t fixed = spec.is64Bit ? 112 : 96;
    out.U16LE(fixed + 128);
    out.U16LE(0x2102);
    const auto optional = out.Size();
    out.Zeros(fixed + 128);
    std::uint32_t initialized = 0;
    for (const auto& section : spec.sections) initialized += AlignedTo(section.bytes.size(), spec.fileAlignment);
    out.PatchU16LE(optional, spec.is64Bit ? 0x20B : 0x10B);
    out.PatchU32LE(optional + 8, initialized);
    out.PatchU32LE(optional + 32, spec.sectionAlignment);
    out.PatchU32LE(optional + 36, spec.fileAlignment);
    out.PatchU32LE(optional + 56, AddressOf(spec, spec.sections.size()));
    out.PatchU32LE(optional + 60, spec.sizeOfHeaders);
    out.PatchU32LE(optional + fixed - 4, 16);
    for (const auto& directory : spec.directories) {
        out.PatchU32LE(optional + fixed + static_cast<std::size_t>(directory.number) * 8, directory.address);
        out.PatchU32LE(optional + fixed + static_cast<std::size_t>(directory.number) * 8 + 4, directory.size);
    }
    for (std::size_t i = 0; i < spec.sections.size(); ++i) {
        const auto& section = spec.sections[i];
        auto name = section.name;
        name.resize(8);
        out.Text(name);
        out.U32LE(static_cast<std::uint32_t>(section.bytes.size()));
        out.U32LE(AddressOf(spec, i));
        out.U32LE(AlignedTo(section.bytes.size(), spec.fileAlignment));
        out.U32LE(PlaceOf(spec, i));
        out.Zeros(12);
        out.U32LE(section.flags);
    }
    out.Raw(spec.behindSectionTable);
    out.Zeros(spec.sizeOfHeaders - out.Size());
    for (const auto& section : spec.sections) {
        out.Raw(section.bytes);
        out.AlignTo(spec.fileAlignment);
    }
    out.Raw(spec.tail);
    return out.Take();
}

/// Adds a section ".rsrc" with this tree, and the directory entry that names it.
inline void AddResources(PeSpec& spec, const ResourceTree& tree) {
    const auto address = AddressOf(spec, spec.sections.size());
    auto bytes = LayOutResourceTree(tree, address);
    spec.directories.push_back({PeDirectory::Resources, address, static_cast<std::uint32_t>(bytes.size())});
    spec.sections.push_back({".rsrc", std::move(bytes)});
}

/// `count` bytes that do not repeat soon.
inline Bytes SomeBytes(std::size_t count, std::uint32_t seed = 1) {
    Bytes bytes(count);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
    return bytes;
}

} // namespace pelorin::test
