#include "icon/undo.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

// A state that is told apart by its one pixel.
IconState Numbered(std::uint32_t number) {
    IconState state;
    state.image = Surface(1, 1);
    state.image.Put(0, 0, number);
    return state;
}

std::uint32_t NumberOf(const IconState* state) {
    return state ? state->image.At(0, 0) : 0xDEAD;
}

TEST(Undo, GoesBackAndForth) {
    UndoList undo;
    undo.Push(Numbered(1));
    undo.Push(Numbered(2));
    EXPECT_EQ(NumberOf(undo.Undo(Numbered(3))), 2u);
    EXPECT_EQ(NumberOf(undo.Undo(Numbered(2))), 1u);
    EXPECT_FALSE(undo.CanUndo());
    EXPECT_EQ(NumberOf(undo.Redo()), 2u);
    EXPECT_EQ(NumberOf(undo.Redo()), 3u) << "the state that was shown when undo began";
    EXPECT_FALSE(undo.CanRedo());
}

TEST(Undo, AChangeDropsWhatWasUndone) {
    UndoList undo;
    undo.Push(Numbered(1));
    undo.Push(Numbered(2));
    (void)undo.Undo(Numbered(3));
    undo.Push(Numbered(4));
    EXPECT_FALSE(undo.CanRedo());
    EXPECT_EQ(NumberOf(undo.Undo(Numbered(5))), 4u);
    EXPECT_EQ(NumberOf(undo.Undo(Numbered(4))), 1u);
}

TEST(Undo, KeepsThirtyOneSteps) {
    UndoList undo;
    for (std::uint32_t i = 1; i <= 40; ++i) undo.Push(Numbered(i));
    int steps = 0;
    std::uint32_t last = 0;
    while (undo.CanUndo()) {
        last = NumberOf(undo.Undo(Numbered(41)));
        ++steps;
    }
    EXPECT_EQ(steps, 31);
    EXPECT_EQ(last, 10u);
    while (undo.CanRedo()) last = NumberOf(undo.Redo());
    EXPECT_EQ(last, 41u);
}

} // namespace
} // namespace pelorin
