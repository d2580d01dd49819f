// The undo list of one image format: 32 slots, each a whole state.
//
// Slot `Top()` is the newest, `Pos()` the state that is shown; they are equal while nothing is undone. The 33rd step
// drops the oldest, so 31 steps can be undone.
#pragma once

#include "base/geometry.h"
#include "pixel/surface.h"

#include <array>
#include <optional>

namespace pelorin {

/// Everything that a step can change. The floating planes are empty when no selection floats.
struct IconState {
    Surface image, mask;
    Surface floatingImage, floatingMask;
    CPalette palette;
    InclusiveRect selection;
};

class UndoList {
public:
    static constexpr int kSlots = 32;

    [[nodiscard]] int Top() const { return m_nUndoTop; }
    [[nodiscard]] int Pos() const { return m_nUndoPos; }
    [[nodiscard]] bool CanUndo() const { return m_nUndoPos > 0; }
    [[nodiscard]] bool CanRedo() const { return m_nUndoPos < m_nUndoTop; }

    /// Keeps the state before a change; steps that were undone are gone.
    void Push(IconState state) { Store(std::move(state), false); }
    /// One step back: `present` is kept for redo, and the state to show is returned. Null when there is none.
    [[nodiscard]] const IconState* Undo(const IconState& present);
    [[nodiscard]] const IconState* Redo();
    void Clear();

private:
    void Store(IconState state, bool keepPosition);

    std::array<std::optional<IconState>, kSlots> m_slots;
    int m_nUndoTop = 0, m_nUndoPos = 0;
};

} // namespace pelorin
