// File associations over the MIME types of the desktop.
//
// A class is a MIME type. Its extensions stand in "mime/globs2" of the data folders ("50:image/gif:*.gif"), its
// description in "mime/TYPE.xml", its program in the "mimeapps.list" files: the name of a desktop entry below
// "applications". A class name without a slash ("icofile") is the type "application/x-vantrel-icofile", which is made
// when it is first needed.
//
// What is written is the person's own: a desktop entry of ours with the command, named in the person's "mimeapps.list".
// No other program's entry is touched.
#pragma once

#include "platform/file_associations.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace pelorin {

class MimeAssociations final : public FileAssociations {
public:
    struct Places {
        std::string config;                    ///< the person's; each folder ends with a slash
        std::string data;                      ///< the person's
        std::vector<std::string> systemConfig; ///< the most important first
        std::vector<std::string> systemData;
    };
    explicit MimeAssociations(Places places) : m_places(std::move(places)) {}

    [[nodiscard]] std::string ClassOf(std::string_view extension) const override;
    [[nodiscard]] FileClass Read(std::string_view className) const override;
    bool SetClassOf(std::string_view extension, std::string_view className) override;
    bool Write(std::string_view className, const FileClass& facts) override;

private:
    using TypesByExtension = std::map<std::string, std::string, std::less<>>;
    [[nodiscard]] const TypesByExtension& Types() const;
    [[nodiscard]] std::string Description(const std::string& type) const;
    [[nodiscard]] std::string DefaultEntry(const std::string& type) const;
    [[nodiscard]] std::string EntryPath(const std::string& entry) const;

    Places m_places;
    mutable std::optional<TypesByExtension> m_types; ///< by lower-case extension; read once
};

/// The places of this process's environment.
[[nodiscard]] MimeAssociations::Places MimePlaces();

} // namespace pelorin
