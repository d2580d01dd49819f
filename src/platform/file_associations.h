// Which program the system opens a kind of file with.
//
// A file name's extension leads to a class of files; the class has a description, a picture and commands.
#pragma once

#include <string>
#include <string_view>

namespace pelorin {

struct FileClass {
    std::string description;
    std::string defaultIcon; ///< "file,index"; "%1" when each file is its own picture; empty for none
    std::string openCommand; ///< with "%1" for the file
    std::string editCommand;
};

/// Extensions are without the dot. What is not there reads as empty texts.
class FileAssociations {
public:
    virtual ~FileAssociations() = default;
    [[nodiscard]] virtual std::string ClassOf(std::string_view extension) const = 0;
    [[nodiscard]] virtual FileClass Read(std::string_view className) const = 0;
    /// False when the system refused; nothing is half done then.
    virtual bool SetClassOf(std::string_view extension, std::string_view className) = 0;
    virtual bool Write(std::string_view className, const FileClass& facts) = 0;
};

} // namespace pelorin
