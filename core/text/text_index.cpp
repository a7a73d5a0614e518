#include "core/text/text_index.h"

#include "core/common/containers.h"

#include <algorithm>
#include <cassert>

namespace pellux {
namespace {

template <typename Node>
Node* make_node() {
    return make_owned<Node>().release();
}

IndexLeaf& leaf_of(IndexNode& node) {
    return static_cast<IndexLeaf&>(node);
}

IndexInner& inner_of(IndexNode& node) {
    return static_cast<IndexInner&>(node);
}

void set_parent(TextBlock& block, IndexLeaf& leaf) {
    block.leaf = &leaf;
}

void set_parent(IndexNode& node, IndexInner& inner) {
    node.parent = &inner;
}

template <typename Node>
int slot_of(const Node& node, const typename Node::Child& child) {
    if (child.slot >= node.count || node.children[child.slot] != &child) {
        child.slot = 0;
        while (node.children[child.slot] != &child)
            ++child.slot;
    }
    return child.slot;
}

template <typename Node>
TextCounts counts_at(const Node& node, int slot) {
    return {node.bytes[slot], node.line_ends[slot], node.continuations[slot]};
}

template <typename Count>
std::int64_t sum(const Count* counts, int count) {
    std::int64_t all = 0;
    for (int i = 0; i < count; ++i)
        all += counts[i];
    return all;
}

template <typename Node>
TextCounts counts_up_to(const Node& node, int slot) {
    return {sum(node.bytes, slot), sum(node.line_ends, slot), sum(node.continuations, slot)};
}

template <typename Node>
void set_counts(Node& node, int slot, const TextCounts& counts) {
    using Count = std::remove_reference_t<decltype(node.bytes[0])>;
    node.bytes[slot] = static_cast<Count>(counts.bytes);
    node.line_ends[slot] = static_cast<Count>(counts.line_ends);
    node.continuations[slot] = static_cast<Count>(counts.continuations);
}

/// Makes room for `count` children at `slot`, or, with a negative count, closes the gap of as many
/// that stood there.
template <typename Node>
void shift_children(Node& node, int slot, int count) {
    const auto shift = [&](auto* from) {
        if (count > 0)
            std::copy_backward(from + slot, from + node.count, from + node.count + count);
        else
            std::copy(from + slot - count, from + node.count, from + slot);
    };
    shift(node.bytes);
    shift(node.line_ends);
    shift(node.continuations);
    shift(node.children);
    node.count += count;
}

template <typename Node>
void put_child(Node& node, int slot, typename Node::Child& child, const TextCounts& counts) {
    shift_children(node, slot, 1);
    set_counts(node, slot, counts);
    node.children[slot] = &child;
    set_parent(child, node);
}

/// Moves `count` children of `from` to the end, or the start, of another node.
template <typename Node>
void move_children(Node& from, int slot, int count, Node& to, bool to_its_start) {
    const int at = to_its_start ? 0 : to.count;
    shift_children(to, at, count);
    for (int i = 0; i < count; ++i) {
        set_counts(to, at + i, counts_at(from, slot + i));
        to.children[at + i] = from.children[slot + i];
        set_parent(*to.children[at + i], to);
    }
    shift_children(from, slot, -count);
}

/// Adds to what is counted of a node in all that are above it.
void add_above(const IndexNode& node, const TextCounts& change) {
    const IndexNode* child = &node;
    for (IndexInner* above = node.parent; above != nullptr; above = above->parent) {
        const int slot = slot_of(*above, *child);
        above->bytes[slot] += change.bytes;
        above->line_ends[slot] += change.line_ends;
        above->continuations[slot] += change.continuations;
        child = above;
    }
}

void add_root(TextIndex& index) {
    auto* root = make_node<IndexInner>();
    root->is_above_leaves = index.height == 0;
    put_child(*root, 0, *index.root, index.total);
    index.root = root;
    ++index.height;
}

/// Enters a child that is counted in no node above yet; `index.total` counts it.
template <typename Node>
void insert_child(TextIndex& index, Node& node, int slot, typename Node::Child& child,
                  const TextCounts& counts) {
    if (node.count < Node::k_width) {
        put_child(node, slot, child, counts);
        add_above(node, counts);
        return;
    }
    index.total -= counts;
    if (node.parent == nullptr)
        add_root(index);
    index.total += counts;
    auto* right = make_node<Node>();
    if constexpr (std::is_same_v<Node, IndexInner>)
        right->is_above_leaves = node.is_above_leaves;
    // A text that grows at its end leaves full nodes behind.
    const int moved = slot == node.count ? 0 : node.count / 2;
    const int kept = node.count - moved;
    const TextCounts taken = counts_up_to(node, node.count) - counts_up_to(node, kept);
    move_children(node, kept, moved, *right, true);
    IndexInner& parent = *node.parent;
    const int place = slot_of(parent, node);
    add_above(node, TextCounts{} - taken);
    if (slot <= kept && moved > 0) {
        put_child(node, slot, child, counts);
        add_above(node, counts);
        insert_child(index, parent, place + 1, *right, taken);
    } else {
        put_child(*right, slot - kept, child, counts);
        TextCounts all = taken;
        insert_child(index, parent, place + 1, *right, all += counts);
    }
}

/// Takes a child out whose counts are 0 in all that is above.
template <typename Node>
void remove_child(TextIndex& index, Node& node, int slot) {
    shift_children(node, slot, -1);
    IndexInner* parent = node.parent;
    if (parent == nullptr) {
        if constexpr (std::is_same_v<Node, IndexInner>) {
            if (node.count == 1) {
                index.root = node.children[0];
                index.root->parent = nullptr;
                --index.height;
                release(&node);
            }
        }
        return;
    }
    const int place = slot_of(*parent, node);
    if (node.count == 0) {
        release(&node);
        remove_child(index, *parent, place);
        return;
    }
    if (node.count > Node::k_width / 4 || parent->count == 1)
        return;
    const int left = place > 0 ? place - 1 : 0;
    auto& first = static_cast<Node&>(*parent->children[left]);
    auto& second = static_cast<Node&>(*parent->children[left + 1]);
    if (first.count + second.count > Node::k_width * 3 / 4)
        return;
    TextCounts both = counts_at(*parent, left);
    both += counts_at(*parent, left + 1);
    move_children(second, 0, second.count, first, false);
    set_counts(*parent, left, both);
    release(&second);
    remove_child(index, *parent, left + 1);
}

void free_nodes(IndexNode* node, int height) {
    if (height > 0)
        for (int i = 0; i < node->count; ++i)
            free_nodes(inner_of(*node).children[i], height - 1);
    release(node);
}

/// Fetches what will be read of a leaf to find a child that lies so far in it.
void prefetch_leaf(const IndexLeaf& leaf, std::int64_t rest, std::int64_t all) {
    constexpr int k_cache_line = 64;
    const auto* first = reinterpret_cast<const char*>(&leaf);
    const auto* end = reinterpret_cast<const char*>(leaf.continuations);
    for (const char* at = first; at < end; at += k_cache_line)
        __builtin_prefetch(at);
    // Leaves are seldom less than half full.
    const std::int64_t slot = all > 0 ? rest * (IndexLeaf::k_width - 1) / all : 0;
    __builtin_prefetch(&leaf.children[slot]);
}

/// Goes down to the block at which `rest`, of what `count` says of a child, is used up; counts what
/// it passes.
template <IndexSums sums, typename Count>
IndexPlace descend(const TextIndex& index, std::int64_t rest, const Count& count) {
    IndexPlace place;
    const auto slot_in = [&](const auto& node) {
        int slot = 0;
        for (const int last = node.count - 1; slot < last; ++slot) {
            const std::int64_t here = count(node, slot);
            if (rest < here)
                break;
            rest -= here;
        }
        place.before.bytes += sum(node.bytes, slot);
        place.before.line_ends += sum(node.line_ends, slot);
        if constexpr (sums == IndexSums::all)
            place.before.continuations += sum(node.continuations, slot);
        return slot;
    };
    IndexNode* node = index.root;
    for (int height = index.height; height > 0; --height) {
        const IndexInner& inner = inner_of(*node);
        const int slot = slot_in(inner);
        node = inner.children[slot];
        if (height == 1)
            prefetch_leaf(leaf_of(*node), rest, count(inner, slot));
    }
    const IndexLeaf& leaf = leaf_of(*node);
    const int slot = slot_in(leaf);
    place.block = leaf.children[slot];
    place.counts.bytes = leaf.bytes[slot];
    place.counts.line_ends = leaf.line_ends[slot];
    if constexpr (sums == IndexSums::all)
        place.counts.continuations = leaf.continuations[slot];
    return place;
}

bool check_node(const IndexNode& node, int height, TextCounts& counts, const TextBlock*& next) {
    const auto check_children = [&](const auto& typed, const auto& check_child) {
        for (int i = 0; i < typed.count; ++i) {
            TextCounts below;
            if (!check_child(typed, i, below) || !(counts_at(typed, i) == below))
                return false;
            counts += below;
        }
        return typed.count > 0;
    };
    if (height > 0)
        return check_children(static_cast<const IndexInner&>(node), [&](const IndexInner& inner,
                                                                        int i, TextCounts& below) {
            return inner.children[i]->parent == &inner && inner.is_above_leaves == (height == 1) &&
                   check_node(*inner.children[i], height - 1, below, next);
        });
    return check_children(static_cast<const IndexLeaf&>(node),
                          [&](const IndexLeaf& leaf, int i, TextCounts& below) {
                              const TextBlock* block = leaf.children[i];
                              if (block != next || block->leaf != &leaf)
                                  return false;
                              next = block->next;
                              below = count_text(text_before_gap(*block));
                              below += count_text(text_behind_gap(*block));
                              return true;
                          });
}

} // namespace

TextIndex::TextIndex() : root(make_node<IndexLeaf>()) {}

TextIndex::~TextIndex() {
    free_nodes(root, height);
}

void index_insert(TextIndex& index, TextBlock* known, TextBlock& block, const TextCounts& counts) {
    index.total += counts;
    IndexNode* node = index.root;
    if (known != nullptr) {
        insert_child(index, *known->leaf, slot_of(*known->leaf, *known) + 1, block, counts);
        return;
    }
    for (int height = index.height; height > 0; --height)
        node = inner_of(*node).children[0];
    insert_child(index, leaf_of(*node), 0, block, counts);
}

void index_remove(TextIndex& index, TextBlock& block) {
    index_add(index, block, TextCounts{} - counts_of(block));
    remove_child(index, *block.leaf, slot_of(*block.leaf, block));
    block.leaf = nullptr;
}

void index_add(TextIndex& index, const TextBlock& block, const TextCounts& change) {
    IndexLeaf& leaf = *block.leaf;
    const int slot = slot_of(leaf, block);
    TextCounts counts = counts_at(leaf, slot);
    set_counts(leaf, slot, counts += change);
    add_above(leaf, change);
    index.total += change;
}

TextCounts counts_before(const TextBlock& block) {
    const IndexLeaf& leaf = *block.leaf;
    TextCounts counts = counts_up_to(leaf, slot_of(leaf, block));
    const IndexNode* child = &leaf;
    for (const IndexInner* above = leaf.parent; above != nullptr; above = above->parent) {
        counts += counts_up_to(*above, slot_of(*above, *child));
        child = above;
    }
    return counts;
}

TextCounts counts_of(const TextBlock& block) {
    return counts_at(*block.leaf, slot_of(*block.leaf, block));
}

IndexPlace find_byte(const TextIndex& index, ByteOffset offset, IndexSums sums) {
    const auto count = [](const auto& node, int slot) { return node.bytes[slot]; };
    return sums == IndexSums::all ? descend<IndexSums::all>(index, offset, count)
                                  : descend<IndexSums::bytes_and_line_ends>(index, offset, count);
}

IndexPlace find_line_end(const TextIndex& index, std::int64_t number) {
    return descend<IndexSums::bytes_and_line_ends>(
        index, number, [](const auto& node, int slot) { return node.line_ends[slot]; });
}

IndexPlace find_character(const TextIndex& index, std::int64_t number) {
    return descend<IndexSums::all>(index, number, [](const auto& node, int slot) {
        return node.bytes[slot] - node.continuations[slot];
    });
}

bool check_index(const TextIndex& index, const TextBlock* first) {
    TextCounts counts;
    return check_node(*index.root, index.height, counts, first) && first == nullptr &&
           counts == index.total && index.root->parent == nullptr;
}

} // namespace pellux
