#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QtGlobal>

#include <vector>

class GR_LayerNode;

/// A node of an intrusive ordered tree: derive from it to take part in a tree
/// (parent, first child, siblings) in which every node knows its index among
/// its siblings. A node owns its children, which must be heap objects: the
/// destructor unlinks the node, then deletes its children first to last.
///
/// Copies are deliberately shallow: the copy constructor and operator= copy the
/// five link fields as they are, so a copy points into the tree without being
/// linked into it. Destroying such a copy deletes the children it points to:
/// assign a default node to it first. Not thread-safe.
class BRINDLE_EXPORT UT_Node
{
public:
    UT_Node() = default;
    /// Shallow copy of the links (see the class).
    UT_Node(UT_Node const&) = default;
    /// Shallow copy of the links (see the class).
    UT_Node& operator=(UT_Node const&) = default;
    virtual ~UT_Node();

    /// Hooks for the application's layer nodes; null here.
    virtual GR_LayerNode* toLayerNode();
    /// Const form of toLayerNode().
    virtual GR_LayerNode const* toLayerNode() const;

    /// The node given to the four linking operations must be unlinked.
    void AppendChild(UT_Node* node);
    /// Inserts `node` as the first child.
    void PreAppendChild(UT_Node* node);
    /// Inserts `node` as the next sibling.
    void AddAfter(UT_Node* node);
    /// This node must have a parent (its first-child link is updated unchecked).
    void AddBefore(UT_Node* node);
    /// Unlinks this node from its parent and siblings; its children stay.
    void DetachFromGraph();
    /// Deletes all children (and their subtrees).
    void DeleteChildren();

    /// @name Links
    /// The neighbours of the node; null where there is none.
    ///@{

    /// The parent, or null.
    UT_Node* GetParent() { return m_pParent; }
    /// The parent, or null.
    UT_Node const* GetParent() const { return m_pParent; }
    /// The first child, or null.
    UT_Node* GetChild() { return m_pChild; }
    /// The first child, or null.
    UT_Node const* GetChild() const { return m_pChild; }
    /// The next sibling, or null.
    UT_Node* GetNext() { return m_pNext; }
    /// The next sibling, or null.
    UT_Node const* GetNext() const { return m_pNext; }
    /// The previous sibling, or null.
    UT_Node* GetPrevious() { return m_pPrevious; }
    /// The previous sibling, or null.
    UT_Node const* GetPrevious() const { return m_pPrevious; }
    ///@}

    /// The i-th child, or null when there are fewer.
    UT_Node* GetChildAt(quint32 i) const;
    /// Number of children (not descendants).
    quint32 CountImmediateChildren() const;
    /// The last sibling following next links (this node when it is the last).
    UT_Node* GetLastNext() const;
    /// The topmost ancestor (this node when it has no parent).
    UT_Node* GetRootnode() const;
    /// Number of ancestors.
    quint32 GetLevel() const;
    /// Index among the siblings, 0 for the first.
    quint32 GetPosition() const { return m_nIndex; }

    /// For a node with children: its first leaf. Otherwise the first leaf
    /// after it (null at the end of the tree).
    UT_Node* GetNextLeaf() const;
    /// For a node with children: its last leaf (intended; this is not the
    /// mirror of GetNextLeaf). Otherwise the last leaf before it, or null.
    UT_Node* GetPreviousLeaf() const;

private:
    /// Renumbers from this node to the end of its sibling list.
    void ReassignIndexes();

    UT_Node* m_pParent = nullptr;
    UT_Node* m_pChild = nullptr;
    UT_Node* m_pNext = nullptr;
    UT_Node* m_pPrevious = nullptr;
    quint32 m_nIndex = 0;
};

/// The address of a node: the sibling indexes on the path from the top node
/// (element 0) down to the node (last element).
class BRINDLE_EXPORT UT_NodePosition
{
public:
    UT_NodePosition() = default;
    /// The position of the node (see Set()).
    explicit UT_NodePosition(UT_Node const* node);
    /// Copy.
    UT_NodePosition(UT_NodePosition const&) = default;
    /// Move; `other` is left empty.
    UT_NodePosition(UT_NodePosition&& other) noexcept;
    /// Copy.
    UT_NodePosition& operator=(UT_NodePosition const&) = default;
    /// Move; `other` is left empty.
    UT_NodePosition& operator=(UT_NodePosition&& other) noexcept;

    /// The position of the node; empty for null.
    void Set(UT_Node const* node);
    /// Walks the position from `top` and its siblings. A level that runs off
    /// its sibling list yields null there, and the next level starts again
    /// from `top` (intended). Null for an empty position.
    UT_Node* GetNode(UT_Node* top) const;
    /// Const form of GetNode().
    UT_Node const* GetNode(UT_Node const* top) const;

    /// Adds one level below.
    void Append(quint32 index) { m_indexes.push_back(index); }
    /// Adds the levels of `other` below.
    void Append(UT_NodePosition const& other);
    /// Empties the position.
    void Clear() { m_indexes.clear(); }
    /// Number of levels.
    quint32 Size() const { return quint32(m_indexes.size()); }
    /// True when not empty.
    bool IsValid() const { return !m_indexes.empty(); }

    /// The i-th index; i at or past Size() is a fatal error.
    quint32& operator()(quint32 i);
    /// Const form.
    quint32 const& operator()(quint32 i) const;

    /// Length of the common leading run of equal indexes.
    quint32 EqualityLevel(UT_NodePosition const& other) const;

    /// Same indexes.
    bool operator==(UT_NodePosition const& other) const { return m_indexes == other.m_indexes; }
    /// Different indexes.
    bool operator!=(UT_NodePosition const& other) const { return !(*this == other); }
    /// Lexicographic; a proper prefix is less than the longer position.
    bool operator<(UT_NodePosition const& other) const;
    /// Reverse of operator<.
    bool operator>(UT_NodePosition const& other) const { return other < *this; }

private:
    std::vector<quint32> m_indexes;
};
