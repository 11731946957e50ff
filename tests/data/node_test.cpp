#include <BrindleBaseCore/data/UT_Node.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

// Records its destruction so that ownership can be checked.
struct Counted : UT_Node
{
    explicit Counted(std::vector<int>* log = nullptr, int id = 0)
        : log(log)
        , id(id)
    {}
    ~Counted() override
    {
        if (log)
            log->push_back(id);
    }
    std::vector<int>* log;
    int id;
};

std::vector<quint32> indexes(UT_Node const& parent)
{
    std::vector<quint32> result;
    for (UT_Node const* n = parent.GetChild(); n; n = n->GetNext())
        result.push_back(n->GetPosition());
    return result;
}

// top -> a(a0, a1), b(b0, b1)
struct Tree
{
    Counted top;
    UT_Node *a = new Counted, *b = new Counted, *a0 = new Counted, *a1 = new Counted,
            *b0 = new Counted, *b1 = new Counted;
    Tree()
    {
        top.AppendChild(a);
        top.AppendChild(b);
        a->AppendChild(a0);
        a->AppendChild(a1);
        b->AppendChild(b0);
        b->AppendChild(b1);
    }
};

UT_NodePosition position(std::initializer_list<quint32> list)
{
    UT_NodePosition p;
    for (quint32 i : list)
        p.Append(i);
    return p;
}

} // namespace

TEST(UT_Node, LinkingKeepsIndexes)
{
    Counted parent;
    UT_Node *first = new Counted, *middle = new Counted, *last = new Counted;
    parent.AppendChild(first);
    parent.AppendChild(middle);
    parent.AppendChild(last);
    EXPECT_EQ(indexes(parent), (std::vector<quint32>{0, 1, 2}));

    middle->DetachFromGraph();
    EXPECT_EQ(indexes(parent), (std::vector<quint32>{0, 1}));
    EXPECT_EQ(middle->GetParent(), nullptr);
    EXPECT_EQ(middle->GetPosition(), 0u);
    EXPECT_EQ(first->GetNext(), last);
    EXPECT_EQ(last->GetPrevious(), first);

    first->AddBefore(middle); // becomes the first child
    EXPECT_EQ(parent.GetChild(), middle);
    EXPECT_EQ(indexes(parent), (std::vector<quint32>{0, 1, 2}));

    UT_Node* front = new Counted;
    parent.PreAppendChild(front);
    UT_Node* after = new Counted;
    front->AddAfter(after);
    EXPECT_EQ(indexes(parent), (std::vector<quint32>{0, 1, 2, 3, 4}));
    EXPECT_EQ(parent.GetChildAt(1), after);
    EXPECT_EQ(parent.GetChildAt(4), last);
    EXPECT_EQ(parent.GetChildAt(5), nullptr);
    EXPECT_EQ(parent.CountImmediateChildren(), 5u);
    EXPECT_EQ(after->GetParent(), &parent);

    parent.GetChild()->DetachFromGraph(); // detaching the first child moves the parent's link
    EXPECT_EQ(parent.GetChild(), after);
    EXPECT_EQ(after->GetPrevious(), nullptr);
    EXPECT_EQ(indexes(parent), (std::vector<quint32>{0, 1, 2, 3}));
    delete front;
    delete parent.GetChildAt(3); // deleting a child unlinks it
    EXPECT_EQ(indexes(parent), (std::vector<quint32>{0, 1, 2}));
    EXPECT_EQ(first->GetLastNext(), first);
}

TEST(UT_Node, OwnershipAndCopies)
{
    std::vector<int> log;
    auto* top = new Counted(&log, 0);
    auto* child = new Counted(&log, 1);
    top->AppendChild(child);
    child->AppendChild(new Counted(&log, 11));
    top->AppendChild(new Counted(&log, 2));
    top->AppendChild(new Counted(&log, 3));

    UT_Node copy(*child); // shallow: points into the tree, not linked in
    EXPECT_EQ(copy.GetParent(), top);
    EXPECT_EQ(copy.GetNext(), top->GetChildAt(1));
    EXPECT_EQ(top->GetChild(), child);
    copy = UT_Node();
    EXPECT_EQ(copy.GetParent(), nullptr);

    top->GetChildAt(1)->DeleteChildren(); // no children: nothing happens
    delete top;
    EXPECT_EQ(log, (std::vector<int>{0, 1, 11, 2, 3}));
}

TEST(UT_Node, NavigationAndLeaves)
{
    Tree t;
    EXPECT_EQ(t.b1->GetRootnode(), &t.top);
    EXPECT_EQ(t.top.GetRootnode(), &t.top);
    EXPECT_EQ(t.b1->GetLevel(), 2u);
    EXPECT_EQ(t.top.GetLevel(), 0u);

    EXPECT_EQ(t.top.GetNextLeaf(), t.a0);
    EXPECT_EQ(t.a0->GetNextLeaf(), t.a1);
    EXPECT_EQ(t.a1->GetNextLeaf(), t.b0); // climbs to a, goes on from b
    EXPECT_EQ(t.b1->GetNextLeaf(), nullptr);
    EXPECT_EQ(t.b->GetNextLeaf(), t.b0);

    EXPECT_EQ(t.top.GetPreviousLeaf(), t.b1); // a node with children: its last leaf
    EXPECT_EQ(t.a->GetPreviousLeaf(), t.a1);
    EXPECT_EQ(t.b0->GetPreviousLeaf(), t.a1);
    EXPECT_EQ(t.b1->GetPreviousLeaf(), t.b0);
    EXPECT_EQ(t.a0->GetPreviousLeaf(), nullptr);
}

TEST(UT_NodePosition, AddressesNodes)
{
    Tree t;
    UT_NodePosition const p(t.b1);
    EXPECT_EQ(p, position({0, 1, 1}));
    EXPECT_EQ(p.GetNode(&t.top), t.b1);
    EXPECT_EQ(static_cast<UT_Node const*>(p.GetNode(static_cast<UT_Node const*>(&t.top))), t.b1);
    EXPECT_EQ(UT_NodePosition(t.a).GetNode(&t.top), t.a);
    EXPECT_EQ(UT_NodePosition(nullptr).Size(), 0u);
    UT_NodePosition reused(t.b1);
    reused.Set(t.a);
    EXPECT_EQ(reused, position({0, 0}));
    reused.Set(nullptr);
    EXPECT_FALSE(reused.IsValid());
    EXPECT_EQ(UT_NodePosition().GetNode(&t.top), nullptr);

    EXPECT_EQ(position({0, 2}).GetNode(&t.top), nullptr);       // runs off the children
    EXPECT_EQ(position({0, 0, 0, 0}).GetNode(&t.top), nullptr); // a0 has no children
    // After running off a list the walk restarts from the top node (intended).
    EXPECT_EQ(position({1, 0}).GetNode(&t.top), &t.top);
    EXPECT_EQ(position({0, 2, 0}).GetNode(&t.top), &t.top);
    EXPECT_EQ(position({1, 0, 1}).GetNode(&t.top), t.b);
}

TEST(UT_NodePosition, ValueOperations)
{
    UT_NodePosition a = position({0, 1});
    UT_NodePosition const longer = position({0, 1, 0});
    EXPECT_LT(a, longer);
    EXPECT_GT(longer, a);
    EXPECT_FALSE(a < a);
    EXPECT_LT(position({0, 0, 9}), a);
    EXPECT_NE(a, longer);
    EXPECT_EQ(position({0, 1, 2}).EqualityLevel(position({0, 1, 5})), 2u);
    EXPECT_EQ(a.EqualityLevel(UT_NodePosition()), 0u);
    EXPECT_EQ(a.EqualityLevel(longer), 2u);

    a.Append(longer);
    EXPECT_EQ(a, position({0, 1, 0, 1, 0}));
    a(4) = 7;
    EXPECT_EQ(a(4), 7u);

    UT_NodePosition moved(std::move(a));
    EXPECT_EQ(moved.Size(), 5u);
    EXPECT_FALSE(a.IsValid());
    a = std::move(moved);
    EXPECT_FALSE(moved.IsValid());
    EXPECT_TRUE(a.IsValid());
    a.Clear();
    EXPECT_EQ(a.Size(), 0u);

    EXPECT_EXIT(position({1})(1), testing::ExitedWithCode(1), "index 1 out of range");
}
