#include "fuzz/file_readers.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace hr;
using namespace hr::tests;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto *text = reinterpret_cast<const char *>(data);
    if (const char *fault = ReadAsEveryFile(QByteArray(text, static_cast<qsizetype>(size)))) {
        std::fprintf(stderr, "%s\n", fault);
        std::abort();
    }
    return 0;
}
