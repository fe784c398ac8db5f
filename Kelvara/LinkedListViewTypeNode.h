#pragma once

#include <memory>
#include <utility>

namespace kelvara {

/// One link of a `LinkedListViewType`. The chain of `next` links alone owns the nodes: a node lives as long as its
/// predecessor (or the list, for the head) or whoever else holds it. Any one thread.
template<typename T> class LinkedListViewTypeNode
{
public:
    explicit LinkedListViewTypeNode(T initialValue) : value(std::move(initialValue)) { }
    LinkedListViewTypeNode(const LinkedListViewTypeNode&) = delete;
    LinkedListViewTypeNode& operator=(const LinkedListViewTypeNode&) = delete;

    /// Releases the chain behind it link by link: letting each node release its successor would nest as deep as the
    /// chain is long. Stops at the first node that somebody else holds.
    ~LinkedListViewTypeNode()
    {
        std::shared_ptr<LinkedListViewTypeNode> rest = std::move(next);
        while (rest && rest.use_count() == 1)
            rest = std::move(rest->next);
    }

    T value;
    std::shared_ptr<LinkedListViewTypeNode> next; ///< Owned; null at the end of the chain.
    std::weak_ptr<LinkedListViewTypeNode> previous; ///< Not owned; empty at the head.
};

} // namespace kelvara
