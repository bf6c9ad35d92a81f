#pragma once
// The harness of the fuzz targets. It defines libFuzzer's entry points: messages for the
// error dialog are dropped (the run has no display), fuzz_setup runs once, then fuzz_one
// for each input. Each target defines those two.
#include <cstdio>
#include <functional>
#include <string>

void fuzz_setup();
void fuzz_one(const std::string& input);

// A folder of this process (under $KESTRELLE_FUZZ_SCRATCH or /tmp), removed at exit.
const std::string& fuzz_scratch();
void fuzz_write_file(const std::string& path, const std::string& text);
// What write puts into a stream, as a file would hold it.
std::string fuzz_written(const std::function<void(FILE*)>& write);
// A broken check: says what broke, shows both texts escaped and aborts, so that libFuzzer
// keeps the input.
[[noreturn]] void fuzz_fail(const char* what, const std::string& expected = "", const std::string& got = "");
