#include "icon/undo.h"

#include <algorithm>
#include <utility>

namespace pelorin {

namespace {

std::size_t At(int slot) {
    return static_cast<std::size_t>(slot);
}

} // namespace

void UndoList::Store(IconState state, bool keepPosition) {
    for (int slot = m_nUndoPos; slot <= m_nUndoTop; ++slot) m_slots[At(slot)].reset();
    m_nUndoTop = m_nUndoPos;
    if (m_nUndoTop == kSlots - 1 && !keepPosition) {
        std::rotate(m_slots.begin(), m_slots.begin() + 1, m_slots.end());
        m_slots.back().reset();
        --m_nUndoTop;
        --m_nUndoPos;
    }
    m_slots[At(m_nUndoTop)] = std::move(state);
    if (!keepPosition) {
        ++m_nUndoTop;
        ++m_nUndoPos;
    }
}

const IconState* UndoList::Undo(const IconState& present) {
    if (!CanUndo()) return nullptr;
    if (m_nUndoPos == m_nUndoTop) Store(present, true);
    --m_nUndoPos;
    const auto& slot = m_slots[At(m_nUndoPos)];
    return slot ? &*slot : nullptr;
}

const IconState* UndoList::Redo() {
    if (!CanRedo()) return nullptr;
    ++m_nUndoPos;
    const auto& slot = m_slots[At(m_nUndoPos)];
    return slot ? &*slot : nullptr;
}

void UndoList::Clear() {
    for (auto& slot : m_slots) slot.reset();
    m_nUndoTop = m_nUndoPos = 0;
}

} // namespace pelorin
