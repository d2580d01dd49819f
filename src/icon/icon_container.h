// What holds an icon that is open for editing: a library, a program file, the Librarian.
#pragma once

#include "icon/icon_group.h"

namespace pelorin {

enum class ContainerKind { Library, Program, Librarian };

/// The icon's document keeps a pointer to it; the container outlives the document or closes it first.
class IIconContainer {
public:
    virtual ~IIconContainer() = default;

    [[nodiscard]] virtual ContainerKind GetContainerKind() const = 0;
    /// For titles: the container's file name.
    [[nodiscard]] virtual std::string GetContainerName() const = 0;
    /// Takes an edited icon back in place of the one at `index`. False when it no longer has that icon or may not be
    /// changed; the container has told what is wrong.
    [[nodiscard]] virtual bool UpdateIcon(int index, const CIconGroup& icon) = 0;
};

} // namespace pelorin
