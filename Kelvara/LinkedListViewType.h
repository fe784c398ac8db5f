#pragma once

#include "Kelvara/LinkedListViewTypeIndex.h"
#include "Kelvara/LinkedListViewTypeNode.h"
#include "Platform/Foundation/FatalError.h"

#include <QDebug>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <utility>

namespace kelvara {

namespace detail {

/// How a value reads inside a list's description: its own `description`, if its namespace has one.
template<typename T> [[nodiscard]] QString interpolated(const T& value)
{
    if constexpr (requires {
                      {
                          description(value)
                          } -> std::convertible_to<QString>;
                  })
        return description(value);
    else if constexpr (std::is_convertible_v<const T&, QString>)
        return value;
    else if constexpr (std::is_convertible_v<const T&, std::string>)
        return QString::fromStdString(value);
    else
        return QDebug::toString(value);
}

} // namespace detail

/// A doubly linked list and a read-only forward collection of its values. It is one object, not a value: it can be
/// moved but not copied, and nodes may be shared with another list (see `insert`). `count`, `last`, `node` and
/// `endIndex` walk the chain. Duplicates stay. No locking: one thread.
///
/// What cannot be (a position outside, the last of none) stops the program; see `precondition`.
template<typename T> class LinkedListViewType
{
public:
    using Node = LinkedListViewTypeNode<T>;
    using Index = LinkedListViewTypeIndex<T>;
    using value_type = T;

    /// Walks the values. Like positions, iterators are compared by their number alone.
    class Iterator
    {
    public:
        using iterator_concept = std::forward_iterator_tag;
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        Iterator() = default;
        reference operator*() const { return m_node->value; }
        pointer operator->() const { return &m_node->value; }
        Iterator& operator++()
        {
            m_node = m_node->next.get();
            ++m_tag;
            return *this;
        }
        Iterator operator++(int)
        {
            Iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) { return a.m_tag == b.m_tag; }

    private:
        friend class LinkedListViewType;
        Iterator(const Node* node, std::ptrdiff_t tag) : m_node(node), m_tag(tag) { }

        const Node* m_node = nullptr;
        std::ptrdiff_t m_tag = 0;
    };
    using const_iterator = Iterator;

    LinkedListViewType() = default;
    explicit LinkedListViewType(std::span<const T> array)
    {
        // Appending at a remembered end: looking it up anew for every value would make long arrays quadratic.
        std::shared_ptr<Node> end;
        for (const T& value : array)
            end = linkBehind(end, std::make_shared<Node>(value));
    }
    LinkedListViewType(std::initializer_list<T> values)
        : LinkedListViewType(std::span<const T>(values.begin(), values.size()))
    { }
    LinkedListViewType(LinkedListViewType&&) noexcept = default;
    LinkedListViewType& operator=(LinkedListViewType&&) noexcept = default;
    LinkedListViewType(const LinkedListViewType&) = delete;
    LinkedListViewType& operator=(const LinkedListViewType&) = delete;
    ~LinkedListViewType() = default;

    /// The first node; null when the list is empty.
    [[nodiscard]] const std::shared_ptr<Node>& head() const { return m_head; }
    [[nodiscard]] bool isEmpty() const { return !m_head; }
    [[nodiscard]] std::ptrdiff_t count() const
    {
        std::ptrdiff_t count = 0;
        for (const Node* node = m_head.get(); node; node = node->next.get())
            ++count;
        return count;
    }
    /// The last node; null when the list is empty.
    [[nodiscard]] std::shared_ptr<Node> last() const
    {
        std::shared_ptr<Node> node = m_head;
        while (node && node->next)
            node = node->next;
        return node;
    }
    [[nodiscard]] std::shared_ptr<Node> node(std::ptrdiff_t index) const
    {
        precondition(m_head != nullptr, "List is empty");
        precondition(index >= 0, "index must be greater or equal to 0");
        std::shared_ptr<Node> node = m_head;
        for (; index > 0 && node; --index)
            node = node->next;
        precondition(node != nullptr, "index is out of bounds.");
        return node;
    }
    [[nodiscard]] const T& operator[](std::ptrdiff_t index) const { return node(index)->value; }

    void append(T value) { append(std::make_shared<Node>(std::move(value))); }
    /// Links a node that belongs to no list.
    void append(std::shared_ptr<Node> node) { linkBehind(last(), std::move(node)); }
    /// Copies the other list's values; no node is shared.
    void append(const LinkedListViewType& list)
    {
        // The end as it was, so that a list can be appended to itself.
        const std::shared_ptr<Node> lastToCopy = list.last();
        std::shared_ptr<Node> end = last();
        for (const Node* node = list.m_head.get(); node; node = node->next.get()) {
            end = linkBehind(end, std::make_shared<Node>(node->value));
            if (node == lastToCopy.get())
                break;
        }
    }

    void insert(T value, std::ptrdiff_t index) { insert(std::make_shared<Node>(std::move(value)), index); }
    /// Links a node that belongs to no list in front of the given position; at `count()` it is appended.
    void insert(std::shared_ptr<Node> inserted, std::ptrdiff_t index)
    {
        if (index == 0) {
            inserted->next = m_head;
            if (m_head)
                m_head->previous = inserted;
            m_head = std::move(inserted);
            return;
        }
        const std::shared_ptr<Node> before = node(index - 1);
        std::shared_ptr<Node> after = std::move(before->next);
        inserted->previous = before;
        if (after)
            after->previous = inserted;
        inserted->next = std::move(after);
        before->next = std::move(inserted);
    }
    /// Links the nodes of another list in front of the given position; from then on both lists share them, and the
    /// other one runs on into this one. At position 0 the former head is not told of its new predecessor: removing it
    /// or reversing the list afterwards drops what was inserted.
    void insert(const LinkedListViewType& list, std::ptrdiff_t index)
    {
        if (list.isEmpty())
            return;
        precondition(&list != this, "a list cannot be inserted into itself");
        const std::shared_ptr<Node> otherLast = list.last();
        if (index == 0) {
            otherLast->next = m_head;
            m_head = list.m_head;
            return;
        }
        const std::shared_ptr<Node> before = node(index - 1);
        const std::shared_ptr<Node> after = before->next;
        before->next = list.m_head;
        list.m_head->previous = before;
        otherLast->next = after;
        if (after)
            after->previous = otherLast;
    }

    void removeAll() { m_head.reset(); }
    /// Unlinks a node of this list and gives back its value.
    T remove(const std::shared_ptr<Node>& node)
    {
        const std::shared_ptr<Node> removed = node; // The argument may be the very link that is rewritten below.
        const std::shared_ptr<Node> before = removed->previous.lock();
        const std::shared_ptr<Node> after = removed->next;
        (before ? before->next : m_head) = after;
        if (after)
            after->previous = before;
        removed->previous.reset();
        removed->next.reset();
        return removed->value;
    }
    T remove(std::ptrdiff_t index) { return remove(node(index)); }
    T removeLast()
    {
        precondition(!isEmpty(), "");
        return remove(last());
    }
    void reverse()
    {
        std::shared_ptr<Node> node = m_head;
        while (node) {
            const std::shared_ptr<Node> following = node->next;
            node->next = node->previous.lock();
            node->previous = following;
            m_head = node;
            node = following;
        }
    }

    template<typename Transform> [[nodiscard]] auto map(Transform transform) const
    {
        using U = std::remove_cvref_t<std::invoke_result_t<Transform&, const T&>>;
        LinkedListViewType<U> result;
        std::shared_ptr<LinkedListViewTypeNode<U>> end;
        for (const T& value : *this)
            end = result.linkBehind(end, std::make_shared<LinkedListViewTypeNode<U>>(std::invoke(transform, value)));
        return result;
    }
    template<typename Predicate> [[nodiscard]] LinkedListViewType filter(Predicate predicate) const
    {
        LinkedListViewType result;
        std::shared_ptr<Node> end;
        for (const T& value : *this) {
            if (std::invoke(predicate, value))
                end = result.linkBehind(end, std::make_shared<Node>(value));
        }
        return result;
    }

    /// "[a, b, c]"
    [[nodiscard]] QString description() const
    {
        QStringList values;
        for (const T& value : *this)
            values.append(detail::interpolated(value));
        return QLatin1Char('[') + values.join(QLatin1String(", ")) + QLatin1Char(']');
    }

    [[nodiscard]] Index startIndex() const { return Index(m_head, 0); }
    /// One past the last position. Carries the head as its node; only its number counts.
    [[nodiscard]] Index endIndex() const { return Index(m_head, count()); }
    [[nodiscard]] Index index(const Index& after) const
    {
        return Index(after.m_node ? after.m_node->next : nullptr, after.m_tag + 1);
    }
    [[nodiscard]] const T& operator[](const Index& index) const
    {
        if (!index.m_node)
            fatalError("A position without a node was read.");
        return index.m_node->value;
    }
    [[nodiscard]] Iterator begin() const { return Iterator(m_head.get(), 0); }
    [[nodiscard]] Iterator end() const { return Iterator(nullptr, count()); }

private:
    template<typename> friend class LinkedListViewType;

    /// Links a node behind the last one (null: the list is empty) and gives it back as the new last one.
    std::shared_ptr<Node> linkBehind(const std::shared_ptr<Node>& end, std::shared_ptr<Node> node)
    {
        if (end)
            node->previous = end;
        return (end ? end->next : m_head) = std::move(node);
    }

    std::shared_ptr<Node> m_head;
};

} // namespace kelvara
