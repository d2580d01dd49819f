#include "base/files.h"
#include "core/media_types.h"
#include "platform/file_associations.h"

#include <algorithm>
#include <array>

namespace pelorin {

namespace {

constexpr std::string_view kSignature = "VNPL";
constexpr std::string_view kFileName = "MediaFiles.vnd";

struct BuiltInType {
    FileKind kind;
    std::array<std::string_view, 8> extensions; ///< the main one first; empty ones at the end mean nothing
};

constexpr BuiltInType kBuiltInTypes[] = {
    {kKindIco, {"ico"}},
    {kKindIcns, {"icns", "rsc", "rsrc", "bin"}},
    {kKindIconLibrary, {"icl", "icontainer"}},
    {kKindAni, {"ani"}},
    {kKindAsp, {"asp"}},
    {kKindBmp, {"bmp", "rle", "dib"}},
    {kKindCur, {"cur"}},
    {kKindFlashPix, {"fpx"}},
    {kKindGif, {"gif"}},
    {kKindHtml, {"htm", "html", "htx", "alx", "stm", "shtml", "shtm", "dhtml"}},
    {kKindIff, {"iff"}},
    {kKindJpeg, {"jpg", "jpe", "jpeg"}},
    {kKindJpeg2000, {"jp2", "jpc", "j2k"}},
    {kKindLbm, {"lbm"}},
    {kKindPcd, {"pcd"}},
    {kKindPcx, {"pcx"}},
    {kKindPict, {"pic", "pict"}},
    {kKindPng, {"png"}},
    {kKindPsd, {"psd"}},
    {kKindQuickTime, {"qti", "qtif"}},
    {kKindTga, {"tga"}},
    {kKindTiff, {"tif", "tiff"}},
};

// The program's icons stand in the order of the kinds' pictures, behind the program's own; an icon file shows itself.
int IconIndexOf(FileKind kind) {
    constexpr int kFirstPicture = 99;
    return kind == kKindIco ? -1 : KindInfo(kind).resource - kFirstPicture;
}

} // namespace

void CMediaTypeTable::SetPlace(std::string folder, const FileAssociations* system, std::string programFile) {
    m_folder = std::move(folder);
    m_system = system;
    m_programFile = std::move(programFile);
}

std::string CMediaTypeTable::FilePath() const {
    return JoinPath(m_folder, kFileName);
}

Bytes CMediaTypeTable::Write(const std::vector<CMediaType>& types) {
    ArchiveWriter ar;
    ar.String(kSignature);
    ar.U32(static_cast<std::uint32_t>(types.size()));
    for (const auto& type : types) type.Serialize(ar);
    return ar.Take();
}

std::vector<CMediaType> CMediaTypeTable::Read(ByteSpan file) {
    std::vector<CMediaType> types;
    try {
        ArchiveReader ar(file);
        if (ar.String() != kSignature) return types;
        for (auto left = ar.U32(); left > 0; --left) {
            CMediaType type;
            type.Serialize(ar);
            types.push_back(std::move(type));
        }
    } catch (const ArchiveException&) {
        // What was whole is kept: it holds what the system had before this program changed it.
    }
    return types;
}

void CMediaTypeTable::LoadMediaTypes() {
    constexpr std::uint64_t kLargestTable = 1u << 20;
    m_arrTypes.clear();
    try {
        if (FileExists(FilePath())) m_arrTypes = Read(FileView::Open(FilePath(), kLargestTable).Data());
    } catch (const FileException&) {
        m_arrTypes.clear();
    }
    std::vector<CMediaType> kept;
    for (auto& type : m_arrTypes) {
        if (std::ranges::find(kept, type.m_nKind, &CMediaType::m_nKind) != kept.end()) continue;
        type.ReadSystem(m_system);
        kept.push_back(std::move(type));
    }
    // Tables of earlier programs knew one extension of libraries; the type is made anew with both.
    std::erase_if(kept, [](const CMediaType& type) {
        return type.m_nKind == kKindIconLibrary && type.m_arrExtensions.size() == 1;
    });
    m_arrTypes = std::move(kept);
    AddBuiltInTypes();
}

void CMediaTypeTable::AddBuiltInTypes() {
    for (const auto& row : kBuiltInTypes) {
        if (FindMediaType(row.kind)) continue;
        CMediaType type(row.kind, std::string(row.extensions[0]), IconIndexOf(row.kind), m_system, m_programFile);
        for (std::size_t i = 1; i < row.extensions.size() && !row.extensions[i].empty(); ++i) {
            type.m_arrExtensions.emplace_back(row.extensions[i]);
        }
        m_arrTypes.push_back(std::move(type));
    }
}

void CMediaTypeTable::SaveMediaTypes() const {
    (void)CreateFolders(m_folder);
    WriteFileSafely(FilePath(), Write(m_arrTypes));
}

const CMediaType* CMediaTypeTable::GetMediaType(int kind) const {
    const auto type = std::ranges::find(m_arrTypes, kind, &CMediaType::m_nKind);
    return type == m_arrTypes.end() ? nullptr : &*type;
}

bool CMediaTypeTable::AreAssociationsOurs() const {
    return std::ranges::all_of(std::array{kKindIco, kKindIcns, kKindIconLibrary}, [&](FileKind kind) {
        const auto* type = GetMediaType(kind);
        return type != nullptr && type->IsOurs();
    });
}

bool CMediaTypeTable::Associate(FileAssociations& system, bool icons, bool macIcons, bool libraries) {
    const struct {
        FileKind kind;
        bool wanted;
    } rows[] = {{kKindIco, icons}, {kKindIcns, macIcons}, {kKindIconLibrary, libraries}};
    bool done = true;
    for (const auto& row : rows) {
        const auto* type = GetMediaType(row.kind);
        if (row.wanted && type != nullptr) done = type->WriteSystem(system) && done;
    }
    SaveMediaTypes();
    return done;
}

} // namespace pelorin
