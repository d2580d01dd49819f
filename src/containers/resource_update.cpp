#include "containers/resource_update.h"

namespace pelorin {

namespace {

void Tell(std::string* reason, std::string_view text) {
    if (reason) *reason = text;
}

} // namespace

void ResourceUpdate::OpenTarget() {
    if (!m_copy) m_copy = std::make_unique<CopyAhead>(m_target, m_path, m_file.Data());
}

void ResourceUpdate::BeginToWrite() {
    try {
        OpenTarget();
        m_copy->Start();
    } catch (const FileException&) {
        return; // the end of the update tries once more
    }
}

std::unique_ptr<ResourceUpdate> ResourceUpdater::BeginUpdateResource(std::string_view path, bool dropSignature,
                                                                     std::string* reason) {
    auto update = std::make_unique<ResourceUpdate>();
    update->m_path = update->m_target = path;
    update->m_dropSignature = dropSignature;
    try {
        update->m_file = FileView::Open(path);
    } catch (const FileException& e) {
        Tell(reason, e.what());
        return nullptr;
    }
    update->m_image = PeImage::Parse(update->m_file.Data());
    auto change = ResourceChange::NotAnImage;
    if (update->m_image) {
        ResourceTreeFacts facts;
        update->m_tree = ReadResourceTree(*update->m_image, &facts);
        update->m_tree.Sort();
        change = !facts.whole                                   ? ResourceChange::Damaged
                 : IsSigned(*update->m_image) && !dropSignature ? ResourceChange::Signed
                                                                : ResourceChange::Done;
    }
    if (change == ResourceChange::Done) return update;
    Tell(reason, DescribeResourceChange(change));
    return nullptr;
}

bool ResourceUpdater::UpdateResource(ResourceUpdate& update, const ResourceKey& type, const ResourceKey& name,
                                     std::uint16_t language, ByteSpan data) {
    if (data.empty()) {
        update.m_tree.Remove(type, name, language);
        return true;
    }
    update.m_added.emplace_back(data.begin(), data.end());
    update.m_tree.Set(type, name, language, update.m_added.back());
    return true;
}

bool ResourceUpdater::EndUpdateResource(std::unique_ptr<ResourceUpdate> update, bool discard, std::string* reason) {
    if (discard) return true;
    update->m_tree.Prune();
    FileSplice splice(update->m_file.Data());
    const auto change = ReplaceResources(*update->m_image, update->m_tree, update->m_dropSignature, splice);
    if (change != ResourceChange::Done) {
        Tell(reason, DescribeResourceChange(change));
        return false;
    }
    update->OpenTarget();
    update->m_copy->Finish(splice.Pieces());
    return true;
}

} // namespace pelorin
