#include "containers/copy_ahead.h"
#include "support/icon_builder.h"
#include "support/pe_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::ReadBytes;
using test::SomeBytes;
using test::TestFolder;

const Bytes kOld = SomeBytes((5u << 20) + 3, 2), kNew = SomeBytes(5000, 3);

/// How far the copying may have come when the pieces are known.
enum class Progressed { NotBegun, Somewhere, ToTheEnd };

TEST(CopyAhead, TheFileIsThePiecesHoweverFarTheCopyCame) {
    const ByteSpan old(kOld), fresh(kNew);
    const auto from = [&](std::size_t place) { return old.subspan(place); };
    const struct {
        const char* name;
        std::vector<ByteSpan> pieces;
    } cases[] = {
        {"nothing changes", {old}},
        {"a part is replaced by one of its size", {old.first(1000), fresh, from(6000)}},
        {"a part goes in", {old.first(2'000'000), fresh, from(2'000'000)}},
        {"a part goes out", {old.first(3'000'000), from(4'000'000)}},
        {"the end goes", {old.first(1'500'000)}},
        {"the end grows", {old, fresh}},
        {"all is new", {fresh}},
        {"nothing is left", {}},
    };
    for (const auto& c : cases) {
        Bytes wanted;
        for (const auto piece : c.pieces) wanted.insert(wanted.end(), piece.begin(), piece.end());
        for (const auto progressed : {Progressed::NotBegun, Progressed::Somewhere, Progressed::ToTheEnd}) {
            const TestFolder folder;
            CopyAhead copy(folder / "new", folder / "old", kOld);
            if (progressed != Progressed::NotBegun) copy.Start();
            if (progressed == Progressed::ToTheEnd) std::this_thread::sleep_for(std::chrono::milliseconds(30));
            copy.Finish(c.pieces);
            EXPECT_EQ(ReadBytes(folder / "new"), wanted) << c.name;
            EXPECT_EQ(ListFolder(folder.Path()).size(), 1u);
        }
    }
}

TEST(CopyAhead, WithoutAnEndNothingIsLeft) {
    const TestFolder folder;
    WriteFileSafely(folder / "file", AsBytes("precious"));
    {
        CopyAhead copy(folder / "file", folder / "file", kOld);
        copy.Start();
    }
    EXPECT_EQ(AsText(ReadBytes(folder / "file")), "precious");
    EXPECT_EQ(ListFolder(folder.Path()).size(), 1u);
    EXPECT_THROW(CopyAhead(folder / "no/file", "", kOld), FileException);
}

} // namespace
} // namespace pelorin
