#include "scan/active_order.h"

#include "scan/wide_math.h"

namespace kryn {

int32_t compareEdgesAt(const Edge& a, const Edge& b, int64_t y) {
    const int64_t dyA = static_cast<int64_t>(a.yBottom) - a.yTop;
    const int64_t dyB = static_cast<int64_t>(b.yBottom) - b.yTop;
    const int64_t dxA = static_cast<int64_t>(a.xBottom) - a.xTop;
    const int64_t dxB = static_cast<int64_t>(b.xBottom) - b.xTop;
    // xA(y) * dyA = xTopA * dyA + dxA * (y - yTopA); |n| < 2^65, dy < 2^33.
    const Int128 nA = mul128(a.xTop, dyA) + mul128(dxA, y - a.yTop);
    const Int128 nB = mul128(b.xTop, dyB) + mul128(dxB, y - b.yTop);
    const int32_t c = sign128(nA * dyB - nB * dyA);
    return c != 0 ? c : sign128(mul128(dxA, dyB) - mul128(dxB, dyA));
}

namespace {

// Replaces `from` by `to` in from's parent (or as the root).
void replaceChild(ActiveOrder* order, OrderSlot* from, OrderSlot* to) {
    OrderSlot* p = from->parent;
    if (p == nullptr) {
        order->root = to;
    } else if (p->left == from) {
        p->left = to;
    } else {
        p->right = to;
    }
    if (to != nullptr) {
        to->parent = p;
    }
}

// Lifts s above its parent.
void rotateUp(ActiveOrder* order, OrderSlot* s) {
    OrderSlot* p = s->parent;
    replaceChild(order, p, s);
    if (p->left == s) {
        p->left = s->right;
        if (s->right != nullptr) {
            s->right->parent = p;
        }
        s->right = p;
    } else {
        p->right = s->left;
        if (s->left != nullptr) {
            s->left->parent = p;
        }
        s->left = p;
    }
    p->parent = s;
}

} // namespace

void ActiveOrder::connect(SweepNode* a, SweepNode* b) {
    if (a != nullptr) {
        a->next = b;
        walk[a->tableIndex].next = b != nullptr ? b->tableIndex : -1;
    } else {
        first = b;
        firstIndex = b != nullptr ? b->tableIndex : -1;
    }
    if (b != nullptr) {
        b->prev = a;
    }
}

void ActiveOrder::insert(SweepNode* node, OrderSlot* slot, int64_t y) {
    seed ^= seed << 13;
    seed ^= seed >> 17;
    seed ^= seed << 5;
    *slot = OrderSlot();
    slot->node = node;
    slot->priority = seed;
    node->slot = slot;
    SweepNode* before = nullptr; // the last node passed on the left
    SweepNode* after = nullptr;
    OrderSlot** link = &root;
    OrderSlot* parent = nullptr;
    while (*link != nullptr) {
        parent = *link;
        if (nodeBefore(*node, *parent->node, y)) {
            after = parent->node;
            link = &parent->left;
        } else {
            before = parent->node;
            link = &parent->right;
        }
    }
    *link = slot;
    slot->parent = parent;
    while (slot->parent != nullptr && slot->parent->priority < slot->priority) {
        rotateUp(this, slot);
    }
    connect(before, node);
    connect(node, after);
    ++count;
}

void ActiveOrder::remove(SweepNode* node) {
    OrderSlot* s = node->slot;
    while (s->left != nullptr || s->right != nullptr) {
        OrderSlot* child =
            s->left == nullptr
                ? s->right
                : (s->right == nullptr || s->left->priority > s->right->priority ? s->left
                                                                                 : s->right);
        rotateUp(this, child);
    }
    replaceChild(this, s, nullptr);
    node->slot = nullptr;
    connect(node->prev, node->next);
    node->prev = node->next = nullptr;
    --count;
}

void ActiveOrder::swapWithNext(SweepNode* a) {
    SweepNode* b = a->next;
    OrderSlot* sa = a->slot;
    OrderSlot* sb = b->slot;
    sa->node = b;
    sb->node = a;
    a->slot = sb;
    b->slot = sa;
    SweepNode* p = a->prev;
    SweepNode* n = b->next;
    connect(p, b);
    connect(b, a);
    connect(a, n);
}

} // namespace kryn
