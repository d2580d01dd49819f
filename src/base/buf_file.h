// CBufFile: a file read byte by byte through a buffer.
#pragma once

#include "base/files.h"

#include <array>

namespace pelorin {

/// Where a position is counted from.
enum class SeekFrom { Begin, Current, End };

/// A file with a buffer for `ReadByte`, which knows no end: behind the file there are zeros. The other operations work
/// on the file's own position, which stands behind what was last taken into the buffer.
class CBufFile {
public:
    static constexpr std::size_t kBufferSize = 32'767;

    /// Throws `FileException` when the file cannot be opened.
    explicit CBufFile(std::string_view path, std::uint32_t sharingFlag = 0)
        : m_nSharingFlag(sharingFlag), m_file(FileView::Open(path)) {}

    /// The next byte of the buffer, which is filled again where it ends.
    std::uint8_t ReadByte() {
        if (m_nPos >= kBufferSize) Refill();
        return m_buffer[m_nPos++];
    }

    /// Empties the buffer and moves; a place outside the file becomes its start or its end.
    void Seek(std::int64_t offset, SeekFrom origin) {
        m_buffer.fill(0);
        m_nPos = kBufferSize;
        const std::int64_t bases[] = {0, static_cast<std::int64_t>(m_position), static_cast<std::int64_t>(GetLength())};
        const std::int64_t base = bases[static_cast<std::size_t>(origin)];
        const auto length = static_cast<std::int64_t>(GetLength());
        m_position = static_cast<std::uint64_t>(std::clamp(offset, -base, length - base) + base);
    }

    /// Past the buffer: as many of the bytes at the file's position as there are.
    std::size_t Read(MutableByteSpan to) {
        const auto rest = m_file.Data().subspan(static_cast<std::size_t>(m_position));
        const auto count = std::min(rest.size(), to.size());
        std::copy_n(rest.begin(), count, to.begin());
        m_position += count;
        return count;
    }
    [[nodiscard]] std::uint64_t GetPosition() const { return m_position; }
    [[nodiscard]] std::uint64_t GetLength() const { return m_file.Data().size(); }

    const std::uint32_t m_nSharingFlag;

private:
    void Refill() {
        m_buffer.fill(0);
        (void)Read(m_buffer);
        m_nPos = 0;
    }

    FileView m_file;
    std::uint64_t m_position = 0;
    std::array<std::uint8_t, kBufferSize> m_buffer{};
    std::size_t m_nPos = kBufferSize;
};

} // namespace pelorin
