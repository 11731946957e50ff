#include <BrindleBaseCore/data/UT_Node.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

// Logs its id when destroyed, so that ownership and order can be checked.
struct Counted : UT_Node
{
    Counted(std::vector<int>& log, int id)
        : log(log)
        , id(id)
    {}
    ~Counted() override { log.push_back(id); }
    std::vector<int>& log;
    int id;
};

// The children of `parent` in order, checking the links and indexes of each.
std::vector<UT_Node*> children(UT_Node& parent)
{
    std::vector<UT_Node*> result;
    for (UT_Node* n = parent.GetChild(); n; n = n->GetNext()) {
        EXPECT_EQ(n->GetPosition(), result.size());
        EXPECT_EQ(n->GetPrevious(), result.empty() ? nullptr : result.back());
        EXPECT_EQ(n->GetParent(), &parent);
        result.push_back(n);
    }
    return result;
}
using Nodes = std::vector<UT_Node*>;

// top -> a(a0, a1), b(b0, b1)
struct Tree
{
    UT_Node top;
    UT_Node *a = new UT_Node, *b = new UT_Node, *a0 = new UT_Node, *a1 = new UT_Node,
            *b0 = new UT_Node, *b1 = new UT_Node;
    Tree()
    {
        for (UT_Node* n : {a, b})
            top.AppendChild(n);
        for (UT_Node* n : {a0, a1})
            a->AppendChild(n);
        for (UT_Node* n : {b0, b1})
            b->AppendChild(n);
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
    UT_Node parent;
    UT_Node *first = new UT_Node, *middle = new UT_Node, *last = new UT_Node;
    for (UT_Node* n : {first, middle, last})
        parent.AppendChild(n);
    EXPECT_EQ(children(parent), (Nodes{first, middle, last}));

    middle->DetachFromGraph();
    EXPECT_EQ(children(parent), (Nodes{first, last}));
    EXPECT_EQ(middle->GetParent(), nullptr);
    EXPECT_EQ(middle->GetPosition(), 0u);

    first->AddBefore(middle); // becomes the first child
    UT_Node *front = new UT_Node, *after = new UT_Node;
    parent.PreAppendChild(front);
    front->AddAfter(after);
    EXPECT_EQ(children(parent), (Nodes{front, after, middle, first, last}));
    EXPECT_EQ(parent.GetChildAt(4), last);
    EXPECT_EQ(parent.GetChildAt(5), nullptr);
    EXPECT_EQ(parent.CountImmediateChildren(), 5u);

    front->DetachFromGraph(); // detaching the first child moves the parent's link
    delete front;
    delete last; // deleting a child unlinks it
    EXPECT_EQ(children(parent), (Nodes{after, middle, first}));
    EXPECT_EQ(first->GetLastNext(), first);
}

TEST(UT_Node, OwnershipAndCopies)
{
    std::vector<int> log;
    auto* top = new Counted(log, 0);
    auto* child = new Counted(log, 1);
    top->AppendChild(child);
    child->AppendChild(new Counted(log, 11));
    top->AppendChild(new Counted(log, 2));
    top->AppendChild(new Counted(log, 3));

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

    // {next leaf, previous leaf}; a node with children gives its first and its
    // last leaf (intended, not mirrored).
    auto leaves = [](UT_Node const* n) { return Nodes{n->GetNextLeaf(), n->GetPreviousLeaf()}; };
    EXPECT_EQ(leaves(&t.top), (Nodes{t.a0, t.b1}));
    EXPECT_EQ(leaves(t.a), (Nodes{t.a0, t.a1}));
    EXPECT_EQ(leaves(t.b), (Nodes{t.b0, t.b1}));
    EXPECT_EQ(leaves(t.a0), (Nodes{t.a1, nullptr}));
    EXPECT_EQ(leaves(t.a1), (Nodes{t.b0, t.a0})); // climbs to a, goes on from b
    EXPECT_EQ(leaves(t.b0), (Nodes{t.b1, t.a1}));
    EXPECT_EQ(leaves(t.b1), (Nodes{nullptr, t.b0}));
}

TEST(UT_NodePosition, AddressesNodes)
{
    Tree t;
    UT_NodePosition const p(t.b1);
    EXPECT_EQ(p, position({0, 1, 1}));
    EXPECT_EQ(p.GetNode(&t.top), t.b1);
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
    EXPECT_FALSE(a < a);
    EXPECT_LT(position({0, 0, 9}), a);
    EXPECT_EQ(position({0, 1, 2}).EqualityLevel(position({0, 1, 5})), 2u);
    EXPECT_EQ(a.EqualityLevel(UT_NodePosition()), 0u);
    EXPECT_EQ(a.EqualityLevel(longer), 2u);

    a.Append(longer);
    EXPECT_EQ(a, position({0, 1, 0, 1, 0}));

    UT_NodePosition moved(std::move(a));
    EXPECT_EQ(moved.Size(), 5u);
    EXPECT_FALSE(a.IsValid());
    a = std::move(moved);
    EXPECT_FALSE(moved.IsValid());
    EXPECT_TRUE(a.IsValid());

    EXPECT_EXIT(position({1})(1), testing::ExitedWithCode(1), "index 1 out of range");
}
