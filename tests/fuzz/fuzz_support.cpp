#include "fuzz_support.h"

#include "platform/message.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <glib.h>

const std::string& fuzz_scratch()
{
    // Never destroyed: the exit handler that removes the folder still needs its name.
    static const std::string* scratch = [] {
        const char* base = std::getenv("KESTRELLE_FUZZ_SCRATCH");
        auto* dir = new std::string(std::string(base && *base ? base : "/tmp") + "/kestrelle-fuzz.XXXXXX");
        if (!mkdtemp(dir->data()))
            std::abort();
        std::atexit([] { std::error_code ignored; std::filesystem::remove_all(fuzz_scratch(), ignored); });
        return dir;
    }();
    return *scratch;
}

void fuzz_write_file(const std::string& path, const std::string& text)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!(out << text))
        std::abort();
}

std::string fuzz_written(const std::function<void(FILE*)>& write)
{
    char* buffer = nullptr;
    size_t size = 0;
    FILE* stream = open_memstream(&buffer, &size);
    write(stream);
    std::fclose(stream);
    std::string text(buffer, size);
    std::free(buffer);
    return text;
}

void fuzz_fail(const char* what, const std::string& expected, const std::string& got)
{
    gchar* want = g_strescape(expected.c_str(), nullptr);
    gchar* have = g_strescape(got.c_str(), nullptr);
    std::fprintf(stderr, "Broken: %s\nexpected: \"%s\"\n     got: \"%s\"\n", what, want, have);
    std::abort();
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    set_message_handlers({[](const std::string&) {}, [] {}});
    fuzz_setup();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz_one(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
