#include "Base64Vector.h"

namespace vmk {

size_t EncodeGroupsByVector(const char*, size_t, char*)
{
    return 0;
}

size_t DecodeGroupsByVector(const char*, size_t, char*)
{
    return 0;
}

} // namespace vmk
