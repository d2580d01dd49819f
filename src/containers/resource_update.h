// Changing the resources of a program file, in three steps: begin, any number of updates, end.
#pragma once

#include "containers/copy_ahead.h"
#include "containers/pe_resources.h"

#include <list>
#include <memory>

namespace pelorin {

/// An update that is on its way. Nothing is written before its end.
class ResourceUpdate {
public:
    /// The changed file goes to this path, with the mode bits of the one that was read, which stays as it is.
    void WriteTo(std::string_view path) { m_target = path; }
    /// Begins to write what will not change, while the caller still makes what will. What fails is told at the end.
    void BeginToWrite();

private:
    friend class ResourceUpdater;

    void OpenTarget();

    std::string m_path, m_target;
    FileView m_file;
    std::optional<PeImage> m_image;
    ResourceTree m_tree;
    std::list<Bytes> m_added; // what the tree's spans point to
    bool m_dropSignature = false;
    std::unique_ptr<CopyAhead> m_copy;
};

/// The three operations. Virtual, so that a test can make any of them fail.
class ResourceUpdater {
public:
    virtual ~ResourceUpdater() = default;

    /// Reads the file's resources. Null when it cannot be read or its resources could not be written again safely;
    /// `reason`, where given, tells why. A signed file is refused unless `dropSignature`.
    [[nodiscard]] virtual std::unique_ptr<ResourceUpdate>
    BeginUpdateResource(std::string_view path, bool dropSignature = false, std::string* reason = nullptr);
    /// Adds or replaces one resource; with empty `data` it is deleted, and it is no failure if there was none. The
    /// bytes are copied.
    virtual bool UpdateResource(ResourceUpdate& update, const ResourceKey& type, const ResourceKey& name,
                                std::uint16_t language, ByteSpan data);
    /// Writes the file, beside the old one and then over it, or forgets the update. False when the resources cannot be
    /// written; throws `FileException` when the file cannot. In both cases the old file is as it was.
    virtual bool EndUpdateResource(std::unique_ptr<ResourceUpdate> update, bool discard, std::string* reason = nullptr);
    /// Whether an update leaves what stands behind the image where it was.
    [[nodiscard]] virtual bool KeepsDataBehindImage() const { return true; }
};

} // namespace pelorin
