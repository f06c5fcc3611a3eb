#pragma once

#include <QtGlobal>

namespace zuvi {

// The boolean of the published interface and of the host contracts: 16 bits,
// true is -1 (all bits set), false is 0. Inside the code plain bool is used.
using VBool = qint16;
inline constexpr VBool VTrue = -1;
inline constexpr VBool VFalse = 0;

constexpr VBool toVBool(bool b)
{
    return b ? VTrue : VFalse;
}
// Any non-zero value counts as true, as hosts written in other languages send 1.
constexpr bool fromVBool(VBool v)
{
    return v != 0;
}

} // namespace zuvi

static_assert(sizeof(zuvi::VBool) == 2 && zuvi::toVBool(true) == -1 && zuvi::toVBool(false) == 0);
static_assert(zuvi::fromVBool(1) && zuvi::fromVBool(zuvi::VTrue) && !zuvi::fromVBool(zuvi::VFalse));
