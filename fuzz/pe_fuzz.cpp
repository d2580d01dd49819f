// Program images: read both ways, then change the resources and read what was written; last the way that a save under
// another name takes, from file to file.
#include "base/files.h"
#include "containers/exe_doc.h"
#include "containers/pe_resources.h"
#include "containers/program_file.h"
#include "core/services.h"
#include "core/user_prompt.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

using namespace pelorin;

namespace {

// The line tells which promise was broken.
void Expect(bool holds, int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "line %d\n", line);
    std::abort();
}

bool SameResources(const ResourceTree& a, const ResourceTree& b) {
    if (a.types.size() != b.types.size()) return false;
    for (std::size_t t = 0; t < a.types.size(); ++t) {
        if (a.types[t].key != b.types[t].key || a.types[t].names.size() != b.types[t].names.size()) return false;
        for (std::size_t n = 0; n < a.types[t].names.size(); ++n) {
            const auto &left = a.types[t].names[n], &right = b.types[t].names[n];
            const auto same = [](const ResourceData& x, const ResourceData& y) {
                return x.language == y.language && x.codePage == y.codePage &&
                       std::equal(x.bytes.begin(), x.bytes.end(), y.bytes.begin(), y.bytes.end());
            };
            if (left.key != right.key || !std::equal(left.languages.begin(), left.languages.end(),
                                                     right.languages.begin(), right.languages.end(), same)) {
                return false;
            }
        }
    }
    return true;
}

void ChangeAndReadAgain(const PeImage& image, std::size_t added) {
    auto tree = ReadResourceTree(image);
    tree.Sort();
    const Bytes bytes(added, 0x41);
    tree.Set(kResourceIcon, 0xFFFE, 0x407, bytes);
    FileSplice splice(image.File());
    if (ReplaceResources(image, tree, true, splice) != ResourceChange::Done) return;
    Bytes file;
    for (const auto piece : splice.Pieces()) file.insert(file.end(), piece.begin(), piece.end());

    const auto after = PeImage::Parse(file);
    Expect(after.has_value() && !IsSigned(*after));
    ResourceTreeFacts facts;
    const auto read = ReadResourceTree(*after, &facts);
    Expect(facts.whole && SameResources(tree, read));
    // The data behind the image is there once, and all sections but the resources' are what they were.
    Expect(image.RawEnd() > image.File().size() || IsSigned(image) ||
           file.size() - after->RawEnd() == image.File().size() - image.RawEnd());
    const auto old = image.SectionAt(image.Directory(PeDirectory::Resources).address);
    for (std::size_t i = 0; i < image.Sections().size(); ++i) {
        Expect(after->Sections()[i].virtualAddress == image.Sections()[i].virtualAddress);
        Expect(static_cast<int>(i) == old || after->Sections()[i].rawSize == image.Sections()[i].rawSize);
    }
    // Directories that point behind the old image may now point into the new section, which is not touched then.
    FileSplice again(file);
    const auto second = ReplaceResources(*after, read, false, again);
    Expect(second == ResourceChange::Done || second == ResourceChange::NoRoom);
}

bool SameBytes(ByteSpan a, ByteSpan b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

/// A group that named an image which is not there may come to it, since the next free number is given to a new image.
bool KeepsImages(const IconGroupRef& before, const IconGroupRef& after) {
    const auto kept = [&](const IconImageRef& image) {
        return std::ranges::any_of(after.images, [&](const IconImageRef& other) {
            return image.id == other.id && image.language == other.language && SameBytes(image.data, other.data);
        });
    };
    return before.id == after.id && before.name == after.name && before.language == after.language &&
           std::ranges::all_of(before.images, kept);
}

/// The first icon gets one new image. All other icons are the same afterwards, and so is the file that was read.
void ReplaceAndSaveAs(ByteSpan file) {
    const auto source = "/dev/shm/pelorin-fuzz-" + std::to_string(getpid()) + ".exe", target = source + ".new";
    WriteFileSafely(source, file);
    ScriptedPrompt prompt;
    Services services;
    services.prompt = &prompt;
    CFileExeDoc document(services);
    document.m_pixels = Pixels::None;
    document.m_bDropSignature = true;
    ByteWriter block;
    for (const std::uint32_t field : {40u, 16u, 32u, 4u << 16 | 1u}) block.U32LE(field);
    block.Zeros(CVnIcon::BlockSize(16, 16, 16, false) - block.Size());
    CIconGroup fresh;
    CVnIcon image;
    Expect(image.ReadFromMemory(block.View(), 0, 0));
    fresh.Append(std::move(image));
    if (document.OnOpenDocument(source) && document.GetMode() >= ProgramMode::Full) {
        document.SetPathName(source, false);
        document.OpenInFullMode();
        const auto before = FindIcons(file);
        const int id = document.GetIcon(0)->m_nResourceId;
        Expect(document.ReplaceIcon(0, fresh));
        if (document.OnSaveDocument(target)) {
            const auto view = FileView::Open(target);
            const auto after = FindIcons(view.Data());
            Expect(after.groups.size() >= before.groups.size());
            for (const auto& group : before.groups) {
                const auto same = [&](const auto& other) { return KeepsImages(group, other); };
                Expect(&group == &before.groups.front() || std::ranges::any_of(after.groups, same));
            }
            Expect(std::ranges::any_of(after.groups, [&](const auto& group) {
                return group.id == id && group.images.size() == 1 && group.images[0].width == 16;
            }));
        } else {
            Expect(SameBytes(FileView::Open(target).Data(), file)); // what a save that fails leaves
        }
        Expect(SameBytes(FileView::Open(source).Data(), file));
    }
    DeleteFile(source);
    DeleteFile(target);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteSpan file(data, size);
    const auto found = FindIcons(file);
    (void)LoadIcons(found, "fuzz");
    for (const auto& icon : found.groups) (void)CopyAsIco(icon);
    (void)LoadIcons(FindIcons(file, false), {});
    if (const auto image = PeImage::Parse(file)) {
        ChangeAndReadAgain(*image, 3);
        ChangeAndReadAgain(*image, 20000);
        if (!found.groups.empty()) ReplaceAndSaveAs(file);
    }
    return 0;
}
