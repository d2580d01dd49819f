// Icons, folders and failing doors for the tests of icon files.
#pragma once

#include "base/files.h"
#include "containers/resource_update.h"
#include "core/temp_files.h"
#include "icon/icon_format.h"
#include "icon/icon_group.h"
#include "support/temp_folder.h"

namespace pelorin::test {

/// Temporary files go into the test's folder as well.
class TestFolder : public TempFolder {
public:
    TestFolder() : m_oldTemp(g_szTempFolder) { g_szTempFolder = Path(); }
    ~TestFolder() { g_szTempFolder = m_oldTemp; }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    std::string operator/(std::string_view name) const { return Path(name); }

private:
    std::string m_oldTemp;
};

inline Bytes ReadBytes(const std::string& path) {
    const auto view = FileView::Open(path);
    return {view.Data().begin(), view.Data().end()};
}

using Icons = std::vector<std::unique_ptr<CIconGroup>>;

/// An icon with these formats; `seed` varies the pixels.
inline std::unique_ptr<CIconGroup> MakeIcon(std::string name, const std::vector<IconFormat>& formats, int seed = 0) {
    auto group = std::make_unique<CIconGroup>();
    group->m_strName = std::move(name);
    for (const auto& format : formats) {
        CVnIcon icon;
        icon.Create(format.width, format.height, format.bits <= 8 ? 1 << format.bits : 0, format.bits == 32);
        auto* p = icon.m_hImage.data();
        StoreU32LE(p, 40);
        StoreU32LE(p + 4, static_cast<std::uint32_t>(format.width));
        StoreU32LE(p + 8, static_cast<std::uint32_t>(format.height * 2));
        StoreU16LE(p + 12, 1);
        StoreU16LE(p + 14, static_cast<std::uint16_t>(format.bits));
        for (std::size_t i = 40; i < icon.m_hImage.size(); ++i) {
            p[i] = static_cast<std::uint8_t>(i * 7 + static_cast<std::size_t>(seed) * 31 +
                                             static_cast<std::size_t>(format.width));
        }
        group->Add(icon);
    }
    return group;
}

inline std::vector<CIconGroup*> Pointers(const Icons& icons) {
    std::vector<CIconGroup*> out;
    for (const auto& icon : icons) out.push_back(icon.get());
    return out;
}

/// Same name, kind and blocks.
inline bool SameIcon(const CIconGroup& a, const CIconGroup& b) {
    if (a.m_strName != b.m_strName || a.m_nInfo != b.m_nInfo || a.GetCount() != b.GetCount()) return false;
    for (int i = 0; i < a.GetCount(); ++i) {
        if (a.GetIcon(i)->m_hImage != b.GetIcon(i)->m_hImage) return false;
    }
    return true;
}

/// Fails where it is told to; counts what was discarded.
class FailingUpdater final : public ResourceUpdater {
public:
    struct Fault {
        bool begin = false, end = false, write = false;
        int update = 0; ///< the nth call; 0: none
    };
    explicit FailingUpdater(Fault fault) : m_fault(fault) {}
    [[nodiscard]] int Discards() const { return m_discards; }

    std::unique_ptr<ResourceUpdate> BeginUpdateResource(std::string_view path, bool dropSignature,
                                                        std::string* reason) override {
        return m_fault.begin ? nullptr : ResourceUpdater::BeginUpdateResource(path, dropSignature, reason);
    }
    bool UpdateResource(ResourceUpdate& update, const ResourceKey& type, const ResourceKey& name,
                        std::uint16_t language, ByteSpan data) override {
        return ++m_calls != m_fault.update && ResourceUpdater::UpdateResource(update, type, name, language, data);
    }
    bool EndUpdateResource(std::unique_ptr<ResourceUpdate> update, bool discard, std::string* reason) override {
        m_discards += discard ? 1 : 0;
        if (!discard && m_fault.write) throw FileException("the disk is full");
        return (discard || !m_fault.end) && ResourceUpdater::EndUpdateResource(std::move(update), discard, reason);
    }

private:
    Fault m_fault;
    int m_calls = 0, m_discards = 0;
};

} // namespace pelorin::test
