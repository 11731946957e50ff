#include <BrindleBaseCore/data/UT_Node.h>

#include <BrindleBaseCore/app/TUMessage.h>

#include <algorithm>

UT_Node::~UT_Node()
{
    DetachFromGraph();
    DeleteChildren();
}

GR_LayerNode* UT_Node::toLayerNode()
{
    return nullptr;
}

GR_LayerNode const* UT_Node::toLayerNode() const
{
    return nullptr;
}

void UT_Node::ReassignIndexes()
{
    quint32 index = m_pPrevious ? m_pPrevious->m_nIndex + 1 : 0;
    for (UT_Node* node = this; node; node = node->m_pNext)
        node->m_nIndex = index++;
}

void UT_Node::AppendChild(UT_Node* node)
{
    if (!m_pChild) {
        node->m_pParent = this;
        m_pChild = node;
    } else {
        m_pChild->GetLastNext()->AddAfter(node);
    }
    node->ReassignIndexes();
}

void UT_Node::PreAppendChild(UT_Node* node)
{
    if (!m_pChild) {
        node->m_pParent = this;
        m_pChild = node;
    } else {
        m_pChild->AddBefore(node);
    }
    node->ReassignIndexes();
}

void UT_Node::AddAfter(UT_Node* node)
{
    node->m_pParent = m_pParent;
    node->m_pPrevious = this;
    node->m_pNext = m_pNext;
    if (m_pNext)
        m_pNext->m_pPrevious = node;
    m_pNext = node;
    node->ReassignIndexes();
}

void UT_Node::AddBefore(UT_Node* node)
{
    Q_ASSERT(m_pParent);
    node->m_pParent = m_pParent;
    node->m_pNext = this;
    node->m_pPrevious = m_pPrevious;
    if (m_pPrevious)
        m_pPrevious->m_pNext = node;
    m_pPrevious = node;
    if (m_pParent->m_pChild == this)
        m_pParent->m_pChild = node;
    node->ReassignIndexes();
}

void UT_Node::DetachFromGraph()
{
    if (m_pParent && m_pParent->m_pChild == this)
        m_pParent->m_pChild = m_pNext;
    if (m_pPrevious)
        m_pPrevious->m_pNext = m_pNext;
    UT_Node* const next = m_pNext;
    if (next)
        next->m_pPrevious = m_pPrevious;
    m_pParent = m_pNext = m_pPrevious = nullptr;
    m_nIndex = 0;
    if (next)
        next->ReassignIndexes();
}

void UT_Node::DeleteChildren()
{
    // Each child's destructor unlinks it, so the next one becomes the first.
    while (m_pChild)
        delete m_pChild;
}

UT_Node* UT_Node::GetChildAt(quint32 i) const
{
    UT_Node* node = m_pChild;
    for (; node && i > 0; --i)
        node = node->m_pNext;
    return node;
}

quint32 UT_Node::CountImmediateChildren() const
{
    quint32 count = 0;
    for (UT_Node const* node = m_pChild; node; node = node->m_pNext)
        ++count;
    return count;
}

UT_Node* UT_Node::GetLastNext() const
{
    auto* node = const_cast<UT_Node*>(this);
    while (node->m_pNext)
        node = node->m_pNext;
    return node;
}

UT_Node* UT_Node::GetRootnode() const
{
    auto* node = const_cast<UT_Node*>(this);
    while (node->m_pParent)
        node = node->m_pParent;
    return node;
}

quint32 UT_Node::GetLevel() const
{
    quint32 level = 0;
    for (UT_Node const* node = m_pParent; node; node = node->m_pParent)
        ++level;
    return level;
}

UT_Node* UT_Node::GetNextLeaf() const
{
    auto* node = const_cast<UT_Node*>(this);
    if (!node->m_pChild) {
        while (node && !node->m_pNext)
            node = node->m_pParent;
        if (!node)
            return nullptr;
        node = node->m_pNext;
    }
    while (node->m_pChild)
        node = node->m_pChild;
    return node;
}

UT_Node* UT_Node::GetPreviousLeaf() const
{
    auto* node = const_cast<UT_Node*>(this);
    if (!node->m_pChild) {
        while (node && !node->m_pPrevious)
            node = node->m_pParent;
        if (!node)
            return nullptr;
        node = node->m_pPrevious;
    }
    while (node->m_pChild)
        node = node->m_pChild->GetLastNext();
    return node;
}

UT_NodePosition::UT_NodePosition(UT_Node const* node)
{
    Set(node);
}

UT_NodePosition::UT_NodePosition(UT_NodePosition&& other) noexcept
    : m_indexes(std::move(other.m_indexes))
{
    other.m_indexes.clear();
}

UT_NodePosition& UT_NodePosition::operator=(UT_NodePosition&& other) noexcept
{
    if (this != &other) {
        m_indexes = std::move(other.m_indexes);
        other.m_indexes.clear();
    }
    return *this;
}

void UT_NodePosition::Set(UT_Node const* node)
{
    if (!node) {
        m_indexes.clear();
        return;
    }
    m_indexes.resize(node->GetLevel() + 1);
    for (auto it = m_indexes.rbegin(); it != m_indexes.rend(); ++it, node = node->GetParent())
        *it = node->GetPosition();
}

UT_Node* UT_NodePosition::GetNode(UT_Node* top) const
{
    UT_Node* found = nullptr;
    for (quint32 index : m_indexes) {
        UT_Node* node = found ? found->GetChild() : top;
        for (quint32 k = 0; k < index && node; ++k)
            node = node->GetNext();
        found = node;
    }
    return found;
}

UT_Node const* UT_NodePosition::GetNode(UT_Node const* top) const
{
    return GetNode(const_cast<UT_Node*>(top));
}

void UT_NodePosition::Append(UT_NodePosition const& other)
{
    m_indexes.insert(m_indexes.end(), other.m_indexes.begin(), other.m_indexes.end());
}

quint32& UT_NodePosition::operator()(quint32 i)
{
    if (i >= m_indexes.size()) {
        MSG_Scope fatal(
            QStringLiteral("UT_NodePosition: index %1 out of range (size %2)").arg(i).arg(Size()),
            MSG_Scope::FatalError);
    }
    return m_indexes[i];
}

quint32 const& UT_NodePosition::operator()(quint32 i) const
{
    return const_cast<UT_NodePosition&>(*this)(i);
}

quint32 UT_NodePosition::EqualityLevel(UT_NodePosition const& other) const
{
    auto const mismatch = std::mismatch(m_indexes.begin(), m_indexes.end(), other.m_indexes.begin(),
                                        other.m_indexes.end());
    return quint32(mismatch.first - m_indexes.begin());
}

bool UT_NodePosition::operator<(UT_NodePosition const& other) const
{
    return std::lexicographical_compare(m_indexes.begin(), m_indexes.end(), other.m_indexes.begin(),
                                        other.m_indexes.end());
}
