#pragma once

#include "Kelvara/LinkedListViewTypeNode.h"

#include <compare>
#include <cstddef>
#include <memory>
#include <utility>

namespace kelvara {

template<typename T> class LinkedListViewType;

/// A position in a `LinkedListViewType`, counted from 0. Only the list makes positions. Positions are compared by
/// their number alone, whatever their nodes; one made before the list changed may still hold a node that has left it.
template<typename T> class LinkedListViewTypeIndex
{
public:
    /// The node at this position; null past the end.
    [[nodiscard]] const std::shared_ptr<LinkedListViewTypeNode<T>>& node() const { return m_node; }
    [[nodiscard]] std::ptrdiff_t tag() const { return m_tag; }

    friend bool operator==(const LinkedListViewTypeIndex& a, const LinkedListViewTypeIndex& b)
    {
        return a.m_tag == b.m_tag;
    }
    friend std::strong_ordering operator<=>(const LinkedListViewTypeIndex& a, const LinkedListViewTypeIndex& b)
    {
        return a.m_tag <=> b.m_tag;
    }

private:
    friend class LinkedListViewType<T>;
    LinkedListViewTypeIndex(std::shared_ptr<LinkedListViewTypeNode<T>> node, std::ptrdiff_t tag)
        : m_node(std::move(node)), m_tag(tag)
    { }

    std::shared_ptr<LinkedListViewTypeNode<T>> m_node;
    std::ptrdiff_t m_tag;
};

} // namespace kelvara
