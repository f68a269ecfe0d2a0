// The settings file may contain any bytes. Settings that were read must be unchanged after they are written
// and read again.

#include "SettingsRecord.h"

#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::optional<vmk::SettingsRecord> record = vmk::DecodeSettings(bytes);
    if (record && vmk::DecodeSettings(vmk::EncodeSettings(*record)) != record)
        std::abort();
    return 0;
}
