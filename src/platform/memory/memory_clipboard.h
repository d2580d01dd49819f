// A clipboard of this process alone.
#pragma once

#include "platform/clipboard.h"

#include <map>
#include <string>

namespace pelorin {

class MemoryClipboard final : public Clipboard {
public:
    [[nodiscard]] bool Has(std::string_view format) const override { return m_formats.contains(format); }
    [[nodiscard]] Bytes Get(std::string_view format) const override {
        const auto found = m_formats.find(format);
        return found == m_formats.end() ? Bytes() : found->second;
    }
    void Clear() override { m_formats.clear(); }
    void Put(std::string_view format, ByteSpan bytes) override {
        m_formats[std::string(format)] = Bytes(bytes.begin(), bytes.end());
    }

private:
    std::map<std::string, Bytes, std::less<>> m_formats;
};

} // namespace pelorin
