#include "containers/container_sources.h"

#include "base/text.h"
#include "containers/pe_resources.h"
#include "containers/program_file.h"

#include <fmt/format.h>

#include <array>

namespace pelorin {

namespace {

/// An icon of a program file: told from its headers, decoded only when it is asked for.
class ProgramIcon final : public LazyIcon {
public:
    explicit ProgramIcon(const IconGroupRef& ref) : m_ref(ref) {}

    [[nodiscard]] IconOutline Outline() const override {
        IconOutline outline{m_ref.name, m_ref.macintosh, {}};
        for (const auto& image : m_ref.images) {
            outline.formats.push_back({{image.width, image.height, image.ShownBits()},
                                       image.colors,
                                       image.compressed,
                                       static_cast<std::uint32_t>(image.StoredSize())});
        }
        return outline;
    }
    [[nodiscard]] std::unique_ptr<CIconGroup> Load() const override { return LoadIcon(m_ref); }
    [[nodiscard]] Bytes IcoFile() const override { return CopyAsIco(m_ref); }
    [[nodiscard]] bool LoadFormat(std::size_t index, CVnIcon& icon) const override {
        return LoadImage(m_ref.images.at(index), icon);
    }
    [[nodiscard]] ByteSpan PngFile(std::size_t index) const override {
        const auto& image = m_ref.images.at(index);
        return image.compressed && image.alpha ? image.data : ByteSpan{};
    }

private:
    const IconGroupRef& m_ref;
};

bool VisitLazily(ByteSpan file, const LazyIconVisitor& visitor) {
    const auto found = FindIcons(file);
    for (const auto& ref : found.groups) {
        if (!visitor(ProgramIcon(ref))) break;
    }
    return found.complete && (!found.groups.empty() || PeImage::Parse(file) || found.mode == ProgramMode::NeFile);
}

bool Visit(ByteSpan file, const IconVisitor& visitor) {
    return VisitLazily(file, [&](const LazyIcon& icon) {
        auto group = icon.Load();
        return !group || visitor(*group);
    });
}

bool IsProgram(ByteSpan file) {
    return AsText(file).starts_with("MZ") && FindExecutableSignature(file).kind != ExecutableKind::None;
}

const char* DescribeMode(ProgramMode mode) {
    constexpr std::array kTexts = {"replace only (16-bit)", "replace only", "full",
                                   "restricted (data behind the image)"};
    return kTexts[static_cast<std::size_t>(mode)];
}

void Inspect(ByteSpan file, IconFileReport& report) {
    const auto found = FindIcons(file);
    const auto fact = [&](const char* name, auto value) { report.facts.emplace_back(name, std::move(value)); };
    const auto image = PeImage::Parse(file);
    fact("form", !image ? "NE" : image->Is64Bit() ? "PE32+" : "PE32");
    fact("mode", DescribeMode(found.mode));
    fact("icon_count", found.groups.size());
    fact("image_count", found.idTable.size());
    fact("library_names", found.hasLibraryNames ? "yes" : "no");
    if (!found.complete) report.oddities.emplace_back("the images ask for more memory than the file could account for");
    if (!found.unreadIds.empty()) {
        report.oddities.push_back("icons name " + Counted(found.unreadIds.size(), "image") + " that cannot be read");
    }
    if (!image) return;
    fact("extra_bytes", FindExtraData(*image).size());
    fact("signed", IsSigned(*image) ? "yes" : "no");
    ResourceTreeFacts facts;
    (void)ReadResourceTree(*image, &facts);
    if (!facts.whole) report.oddities.emplace_back("the resource tree is damaged or of an unusual shape");
    if (image->RawEnd() > file.size()) report.oddities.emplace_back("the file ends before its last section");
}

constexpr IconSource Row(FileKind kind, std::string_view name, bool (*matches)(ByteSpan)) {
    return {kind, name, matches, Visit, Inspect, VisitLazily};
}

// All of them look alike inside: the file's name decides, and a file of another name counts as a program.
constexpr std::array kRows = {
    Row(kKindExe, "exe", IsProgram), Row(kKindIconLibrary, "icl", IsProgram), Row(kKindDll, "dll", IsProgram),
    Row(kKindOcx, "ocx", IsProgram), Row(kKindDrv, "drv", IsProgram),         Row(kKindCpl, "cpl", IsProgram),
    Row(kKindScr, "scr", IsProgram),
};

} // namespace

std::span<const IconSource> ContainerIconSources() {
    return kRows;
}

} // namespace pelorin
