#include "base/archive.h"
#include "base/bytes.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

TEST(ByteReader, APastEndReadLatches) {
    const Bytes bytes = {1, 2, 3};
    ByteReader in(bytes);
    EXPECT_EQ(in.U16LE(), 0x0201);
    EXPECT_EQ(in.U16LE(), 0);
    EXPECT_FALSE(in.Ok());
    EXPECT_EQ(in.U8(), 0) << "a byte is left, but the reader has failed";
    EXPECT_TRUE(in.Rest().empty());
    EXPECT_TRUE(in.AtEnd()) << "a loop over what is left ends";
}

TEST(ByteReader, SubIsCheckedIn64Bits) {
    const Bytes bytes(10);
    const ByteReader in(bytes);
    EXPECT_TRUE(in.Sub(10, 0).Ok());
    EXPECT_TRUE(in.Sub(2, 8).Ok());
    EXPECT_FALSE(in.Sub(2, 9).Ok());
    EXPECT_FALSE(in.Sub(11, 0).Ok());
    EXPECT_FALSE(in.Sub(UINT64_MAX, 2).Ok());
    EXPECT_FALSE(in.Sub(2, UINT64_MAX).Ok());
}

TEST(Archive, StringLengthsOfAllThreeForms) {
    for (const std::size_t length : {0u, 254u, 255u, 65534u, 65535u, 70000u}) {
        ArchiveWriter out;
        out.String(std::string(length, 'x'));
        const std::size_t prefix = length < 255 ? 1 : length < 65535 ? 3 : 7;
        EXPECT_EQ(out.View().size(), prefix + length);
        ArchiveReader in(out.View());
        EXPECT_EQ(in.String().size(), length);
    }
}

TEST(Archive, ALengthThatTheBytesCannotHoldThrows) {
    const Bytes bytes = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 'a'};
    ArchiveReader in(bytes);
    EXPECT_THROW((void)in.String(), ArchiveException);
}

} // namespace
} // namespace pelorin
