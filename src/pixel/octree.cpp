#include "pixel/octree.h"

#include <utility>

namespace pelorin {

namespace {

// The highest `level` of 5 bits in each channel of a cell.
unsigned CellMask(unsigned level) {
    const unsigned channel = 0x1F & ~(0x1Fu >> level);
    return channel << 10 | channel << 5 | channel;
}

} // namespace

OctreeQuantizer::OctreeQuantizer(unsigned maxColors) : m_leafOfCell(std::size_t{1} << 15), m_maxColors(maxColors) {
    const std::size_t capacity = 1 + (kLevels + 1) * (std::size_t{maxColors} + 1);
    m_nodes.resize(capacity);
    m_sums.resize(capacity);
    for (std::size_t i = 1; i + 1 < capacity; ++i) m_nodes[i].next = static_cast<NodeId>(i + 1);
    m_free = 1;
    m_root = NewNode(0, 0);
}

OctreeQuantizer::NodeId OctreeQuantizer::NewNode(unsigned level, unsigned cell) {
    const NodeId id = m_free;
    m_free = std::exchange(m_nodes[id], Node{}).next;
    m_sums[id] = Sums{};
    auto& node = m_nodes[id];
    if (level == kLevels) {
        node.leaf = true;
        ++m_leafCount;
    } else {
        node.next = std::exchange(m_reducible[level], id);
        node.mask = static_cast<std::uint16_t>(CellMask(level));
        node.path = static_cast<std::uint16_t>(cell & node.mask);
    }
    return id;
}

OctreeQuantizer::NodeId OctreeQuantizer::FindLeaf(unsigned red, unsigned green, unsigned blue, unsigned cell) {
    NodeId at = m_root;
    for (unsigned level = 0; !m_nodes[at].leaf; ++level) {
        const unsigned bit = 7 - level;
        auto& child = m_nodes[at].child[(red >> bit & 1) << 2 | (green >> bit & 1) << 1 | (blue >> bit & 1)];
        if (child == 0) child = NewNode(level + 1, cell);
        at = child;
    }
    m_leafOfCell[cell] = at;
    return at;
}

bool OctreeQuantizer::MergeNewestOfDeepestLevel() {
    unsigned level = kLevels - 1;
    while (level > 0 && m_reducible[level] == 0) --level;
    const NodeId id = m_reducible[level];
    if (id == 0) return false;
    auto& node = m_nodes[id];
    m_reducible[level] = std::exchange(node.next, NodeId{0});
    auto& sums = m_sums[id];
    for (auto& child : node.child) {
        if (child == 0) continue;
        const auto& part = m_sums[child];
        sums.pixels += part.pixels;
        sums.red += part.red;
        sums.green += part.green;
        sums.blue += part.blue;
        m_nodes[child].leafOf = kNoCells;
        m_nodes[child].next = std::exchange(m_free, child);
        child = 0;
        --m_leafCount;
    }
    node.leaf = true;
    node.leafOf = node.path;
    ++m_leafCount;
    return true;
}

void OctreeQuantizer::Reduce() {
    while (m_leafCount > m_maxColors && MergeNewestOfDeepestLevel()) {
    }
}

ColorTable OctreeQuantizer::Table() const {
    ColorTable table{};
    std::size_t next = 0;
    const auto collect = [&](const auto& self, NodeId id) -> void {
        const auto& node = m_nodes[id];
        if (node.leaf && next < table.size()) {
            const auto& sums = m_sums[id];
            const auto mean = [&](std::uint64_t sum) { return static_cast<Rgb>(sum / sums.pixels); };
            table[next++] = mean(sums.red) << 16 | mean(sums.green) << 8 | mean(sums.blue);
        }
        for (const NodeId child : node.child) {
            if (child != 0) self(self, child);
        }
    };
    collect(collect, m_root);
    return table;
}

} // namespace pelorin
