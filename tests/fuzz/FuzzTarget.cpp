// The libFuzzer program of one entry, named by ZARVI_FUZZ_TARGET at build time.
#include "fuzz/FuzzEntries.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const zarvi::fuzz::FuzzEntry* entry = zarvi::fuzz::findFuzzEntry(ZARVI_FUZZ_TARGET);
    if (!entry)
        std::abort();
    entry->run(data, size);
    return 0;
}
