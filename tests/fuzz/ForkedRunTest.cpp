#include "fuzz/ForkedRun.h"
#include "fuzz/FuzzEntries.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include <unistd.h>

using zarvi::fuzz::ForkedRun;
using zarvi::fuzz::ForkedRunEnd;

// The four ways a child can end, each made by a real child process.
TEST(ForkedRun, ReportsHowTheChildEnded)
{
    const auto finished = ForkedRun::run([] { return QByteArray("classified", 10); }, 60000);
    EXPECT_EQ(finished.end, ForkedRunEnd::Finished);
    EXPECT_EQ(finished.output, QByteArray("classified"));

    const auto aborted = ForkedRun::run([]() -> QByteArray { std::abort(); }, 60000);
    EXPECT_EQ(aborted.end, ForkedRunEnd::Signalled);
    EXPECT_EQ(aborted.code, SIGABRT);
    EXPECT_TRUE(aborted.output.isEmpty());

    const auto exited = ForkedRun::run([]() -> QByteArray { _exit(3); }, 60000);
    EXPECT_EQ(exited.end, ForkedRunEnd::Exited);
    EXPECT_EQ(exited.code, 3);

    const auto hung = ForkedRun::run(
        []() -> QByteArray {
            for (;;)
                pause();
        },
        100);
    EXPECT_EQ(hung.end, ForkedRunEnd::TimedOut);
}

// Report stacks as AddressSanitizer prints them: the first frame that is neither an
// interceptor nor the C library decides, and only the fault's own stack counts; a stack
// overflow is the library's only when no frame of ours shows.
TEST(ForkedRun, BlamesTheLibraryOnlyForFaultsThatStartInIt)
{
    const char* program = "/build/fuzz_datafile";
    const char* throughInterceptor =
        "==1==ERROR: AddressSanitizer: memcpy-param-overlap: memory ranges overlap\n"
        "    #0 0x55 in __interceptor_memcpy (/build/fuzz_datafile+0x188895)\n"
        "    #1 0x7f in H5HG_read (/lib/x86_64-linux-gnu/libhdf5_serial.so.103+0x167b8d)\n"
        "    #2 0x55 in zarvi::readStrings(long) /src/datafile/HDF5AttributeValue.cpp:68:40\n";
    EXPECT_TRUE(ForkedRun::faultIsInLibrary(throughInterceptor, program));

    const char* insideCLibrary =
        "==1==ERROR: AddressSanitizer: SEGV on unknown address\n"
        "    #0 0x7f in __memcpy_avx512_unaligned_erms "
        "string/../sysdeps/x86_64/multiarch/memmove-vec-unaligned-erms.S:362\n"
        "    #1 0x55 in __interceptor_memcpy (/build/fuzz_datafile+0x188895)\n"
        "    #2 0x7f in H5T__conv_vlen (/lib/x86_64-linux-gnu/libhdf5_serial.so.103+0x24d924)\n";
    EXPECT_TRUE(ForkedRun::faultIsInLibrary(insideCLibrary, program));

    const char* runtimeFrames =
        "==1==ERROR: AddressSanitizer: heap-buffer-overflow on address 0x60\n"
        "    #0 0x55 in __sanitizer::internal_strlen(char const*) (/build/fuzz_datafile+0x21af99)\n"
        "    #1 0x55 in strdup (/build/fuzz_datafile+0x1dc095)\n"
        "    #2 0x7f in H5MM_xstrdup (/lib/x86_64-linux-gnu/libhdf5_serial.so.103+0x1842ad)\n";
    EXPECT_TRUE(ForkedRun::faultIsInLibrary(runtimeFrames, program));

    const char* ours = "==1==ERROR: AddressSanitizer: heap-buffer-overflow on address 0x60\n"
                       "    #0 0x55 in __asan_memcpy (/build/fuzz_datafile+0x1a0000)\n"
                       "    #1 0x55 in zarvi::readStrings(long) /src/datafile/HDF5AttributeValue.cpp:70:5\n"
                       "    #2 0x7f in H5Aiterate2 (/lib/x86_64-linux-gnu/libhdf5_serial.so.103+0x5a000)\n"
                       "\n"
                       "0x60 is located 0 bytes to the right of 16-byte region\n"
                       "allocated by thread T0 here:\n"
                       "    #0 0x7f in H5MM_malloc (/lib/x86_64-linux-gnu/libhdf5_serial.so.103+0x1000)\n";
    EXPECT_FALSE(ForkedRun::faultIsInLibrary(ours, program));
    EXPECT_FALSE(
        ForkedRun::faultIsInLibrary("==1==ERROR: AddressSanitizer: SEGV on unknown address\n", program));

    const char* libraryRecursion = "==1==ERROR: AddressSanitizer: stack-overflow on address 0x7ff\n"
                                   "    #0 0x7f in H5G__obj_iterate (/lib/libhdf5_serial.so.103+0x100)\n"
                                   "    #1 0x7f in H5G_iterate (/lib/libhdf5_serial.so.103+0x200)\n";
    EXPECT_TRUE(ForkedRun::faultIsInLibrary(libraryRecursion, program));
    const char* ourRecursion = "==1==ERROR: AddressSanitizer: stack-overflow on address 0x7ff\n"
                               "    #0 0x7f in H5G__obj_iterate (/lib/libhdf5_serial.so.103+0x100)\n"
                               "    #1 0x7f in H5Literate2 (/lib/libhdf5_serial.so.103+0x300)\n"
                               "    #2 0x55 in zarvi::walk(long) /src/datafile/DataFileTree.cpp:10:5\n"
                               "    #3 0x55 in zarvi::walk(long) /src/datafile/DataFileTree.cpp:21:13\n";
    EXPECT_FALSE(ForkedRun::faultIsInLibrary(ourRecursion, program));
}

// The data files that crash or hang the HDF5 library itself go through the datafile entry
// like any other input: the library reads them in a child, which they end, and this
// process goes on.
TEST(ForkedRun, DataFileEntryOutlivesTheLibraryFaults)
{
    const zarvi::fuzz::FuzzEntry* entry = zarvi::fuzz::findFuzzEntry("datafile");
    ASSERT_NE(entry, nullptr);
    const QDir faults(QStringLiteral(ZARVI_FUZZ_LIBRARY_FAULTS));
    const QStringList names = faults.entryList({QStringLiteral("*.bin")}, QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        QFile file(faults.filePath(name));
        ASSERT_TRUE(file.open(QFile::ReadOnly));
        const QByteArray bytes = file.readAll();
        SCOPED_TRACE(name.toStdString());
        entry->run(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                   static_cast<std::size_t>(bytes.size()));
    }
}
