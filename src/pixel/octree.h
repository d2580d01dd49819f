// The octree behind the quantiser.
#pragma once

#include "pixel/palettes.h"

#include <vector>

namespace pelorin {

/// Counts colours in a tree of eight children a node, one bit of each channel a level. Nodes live in a pool that never
/// grows: a tree of 256 leaves has at most that many inner nodes on each of its six levels.
class OctreeQuantizer {
public:
    /// `maxColors` is 1 to 256.
    explicit OctreeQuantizer(unsigned maxColors);

    /// Counts one pixel and reduces the tree until it has no more than `maxColors` leaves.
    void Add(unsigned red, unsigned green, unsigned blue) {
        const unsigned cell = (red & 0xF8) << 7 | (green & 0xF8) << 2 | blue >> 3;
        NodeId leaf = m_leafOfCell[cell];
        if ((cell & m_nodes[leaf].mask) != m_nodes[leaf].leafOf) leaf = FindLeaf(red, green, blue, cell);
        auto& sums = m_sums[leaf];
        ++sums.pixels;
        sums.red += red;
        sums.green += green;
        sums.blue += blue;
        if (m_leafCount > m_maxColors) Reduce();
    }

    [[nodiscard]] unsigned LeafCount() const { return m_leafCount; }
    /// The mean colour of each leaf, depth first; black behind.
    [[nodiscard]] ColorTable Table() const;

private:
    using NodeId = std::uint16_t; // 0 is no node
    static constexpr unsigned kLevels = 6;
    static constexpr std::uint16_t kNoCells = 0xFFFF;

    struct Node {
        std::array<NodeId, 8> child{};
        NodeId next = 0; // the list of inner nodes of a level, newest first, or the list of free nodes
        bool leaf = false;
        // The cells of 5 bits a channel under this node, down to the fifth level: those with cell & mask == path.
        std::uint16_t mask = 0, path = 0;
        std::uint16_t leafOf = kNoCells; // path where the node is a leaf, and a value that no cell has elsewhere
    };
    // 64 bits, so that no picture of the permitted size overflows them.
    struct Sums {
        std::uint64_t pixels = 0, red = 0, green = 0, blue = 0;
    };

    NodeId NewNode(unsigned level, unsigned cell);
    NodeId FindLeaf(unsigned red, unsigned green, unsigned blue, unsigned cell);
    void Reduce();
    bool MergeNewestOfDeepestLevel();

    std::vector<Node> m_nodes;
    std::vector<Sums> m_sums;
    std::array<NodeId, kLevels> m_reducible{};
    // The leaf last met in each cell. It need not be one any longer: the node itself tells.
    std::vector<NodeId> m_leafOfCell;
    NodeId m_free = 0, m_root = 0;
    unsigned m_leafCount = 0, m_maxColors;
};

} // namespace pelorin
