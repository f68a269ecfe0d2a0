// Any text: the decoder agrees with the plain one, and encoded text decodes to the original.

#include "Base64.h"
#include "PlainBase64.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (vmk::Base64Decode(bytes) != vmk::reference::Base64Decode(bytes))
        std::abort();
    const std::string text = vmk::Base64Encode(bytes);
    if (text != vmk::reference::Base64Encode(bytes) || vmk::Base64Decode(text) != bytes)
        std::abort();
    return 0;
}
