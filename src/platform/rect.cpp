#include "vx/platform/rect.h"

#include <algorithm>

namespace {

bool IsEmpty(const RECT& r)
{
    return r.left >= r.right || r.top >= r.bottom;
}

LONG WrappingSum(LONG a, LONG b)
{
    return LONG(uint32_t(a) + uint32_t(b));
}

LONG WrappingDifference(LONG a, LONG b)
{
    return LONG(uint32_t(a) - uint32_t(b));
}

// An empty result is all zeros, wherever the arguments stood.
BOOL Store(RECT* out, const RECT& result)
{
    const bool empty = IsEmpty(result);
    *out = empty ? RECT{} : result;
    return empty ? FALSE : TRUE;
}

RECT CommonPart(const RECT& a, const RECT& b)
{
    if (IsEmpty(a) || IsEmpty(b))
        return {};
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

RECT Without(const RECT& a, const RECT& cut)
{
    RECT rest = a;
    if (cut.top <= a.top && cut.bottom >= a.bottom) {
        if (cut.left <= a.left)
            rest.left = cut.right;
        else if (cut.right >= a.right)
            rest.right = cut.left;
    } else if (cut.left <= a.left && cut.right >= a.right) {
        if (cut.top <= a.top)
            rest.top = cut.bottom;
        else if (cut.bottom >= a.bottom)
            rest.bottom = cut.top;
    }
    return rest;
}

} // namespace

BOOL SetRect(RECT* rect, INT left, INT top, INT right, INT bottom)
{
    if (!rect)
        return FALSE;
    *rect = {left, top, right, bottom};
    return TRUE;
}

BOOL SetRectEmpty(RECT* rect)
{
    return SetRect(rect, 0, 0, 0, 0);
}

BOOL CopyRect(RECT* out, const RECT* rect)
{
    if (!out || !rect)
        return FALSE;
    *out = *rect;
    return TRUE;
}

BOOL OffsetRect(RECT* rect, INT dx, INT dy)
{
    if (!rect)
        return FALSE;
    return SetRect(rect, WrappingSum(rect->left, dx), WrappingSum(rect->top, dy),
                   WrappingSum(rect->right, dx), WrappingSum(rect->bottom, dy));
}

BOOL InflateRect(RECT* rect, INT dx, INT dy)
{
    if (!rect)
        return FALSE;
    return SetRect(rect, WrappingDifference(rect->left, dx), WrappingDifference(rect->top, dy),
                   WrappingSum(rect->right, dx), WrappingSum(rect->bottom, dy));
}

BOOL IsRectEmpty(const RECT* rect)
{
    return !rect || IsEmpty(*rect);
}

BOOL EqualRect(const RECT* a, const RECT* b)
{
    return a && b && a->left == b->left && a->top == b->top && a->right == b->right && a->bottom == b->bottom;
}

BOOL PtInRect(const RECT* rect, POINT point)
{
    return rect && point.x >= rect->left && point.x < rect->right && point.y >= rect->top &&
           point.y < rect->bottom;
}

BOOL IntersectRect(RECT* out, const RECT* a, const RECT* b)
{
    if (!out || !a || !b)
        return FALSE;
    return Store(out, CommonPart(*a, *b));
}

BOOL UnionRect(RECT* out, const RECT* a, const RECT* b)
{
    if (!out || !a || !b)
        return FALSE;
    if (IsEmpty(*a))
        return Store(out, *b);
    if (IsEmpty(*b))
        return Store(out, *a);
    return Store(out, {std::min(a->left, b->left), std::min(a->top, b->top), std::max(a->right, b->right),
                       std::max(a->bottom, b->bottom)});
}

BOOL SubtractRect(RECT* out, const RECT* a, const RECT* b)
{
    if (!out || !a || !b)
        return FALSE;
    const RECT cut = CommonPart(*a, *b);
    return Store(out, IsEmpty(cut) ? *a : Without(*a, cut));
}
