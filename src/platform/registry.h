// The key-value tree of the system, where shell settings of all programs stand: keys like paths, values by name, the
// default value under the empty name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin {

enum class RegistryRoot { ClassesRoot, CurrentUser, LocalMachine };

/// Keys are written with backslashes, without one at either end; names compare without case.
class Registry {
public:
    virtual ~Registry() = default;
    /// A number reads as its decimal text.
    [[nodiscard]] virtual std::optional<std::string> ReadText(RegistryRoot root, std::string_view key,
                                                              std::string_view name) const = 0;
    /// Nothing for a text that is no decimal number.
    [[nodiscard]] std::optional<std::uint32_t> ReadNumber(RegistryRoot root, std::string_view key,
                                                          std::string_view name) const;
    /// False when the system refused; nothing has changed then. Keys on the way are made.
    virtual bool WriteText(RegistryRoot root, std::string_view key, std::string_view name, std::string_view text) = 0;
    bool WriteNumber(RegistryRoot root, std::string_view key, std::string_view name, std::uint32_t number);
    /// True when it was there and is gone.
    virtual bool DeleteValue(RegistryRoot root, std::string_view key, std::string_view name) = 0;
    /// The key with all its values; keys below it stay. True when it was there and is gone.
    virtual bool DeleteKey(RegistryRoot root, std::string_view key) = 0;
};

} // namespace pelorin
