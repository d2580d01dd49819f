// Where the system wants a program's and a person's files to lie.
#pragma once

#include <string>

namespace pelorin {

/// All paths end with a slash and need not exist; an empty one means that the system has no such place.
class StandardFolders {
public:
    virtual ~StandardFolders() = default;
    [[nodiscard]] virtual std::string Program() const = 0;   ///< where the program file lies
    [[nodiscard]] virtual std::string Config() const = 0;    ///< a person's settings
    [[nodiscard]] virtual std::string Data() const = 0;      ///< a person's application data
    [[nodiscard]] virtual std::string LocalData() const = 0; ///< application data that may be lost and made again
    [[nodiscard]] virtual std::string Temp() const = 0;      ///< the system's temporary folder
    [[nodiscard]] virtual std::string Documents() const = 0; ///< a person's documents
};

} // namespace pelorin
