#include "platform/registry.h"

#include <charconv>

namespace pelorin {

std::optional<std::uint32_t> Registry::ReadNumber(RegistryRoot root, std::string_view key,
                                                  std::string_view name) const {
    const auto text = ReadText(root, key, name);
    std::uint32_t number = 0;
    if (!text) return std::nullopt;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
    if (error != std::errc{} || end != text->data() + text->size()) return std::nullopt;
    return number;
}

bool Registry::WriteNumber(RegistryRoot root, std::string_view key, std::string_view name, std::uint32_t number) {
    return WriteText(root, key, name, std::to_string(number));
}

} // namespace pelorin
