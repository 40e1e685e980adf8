#pragma once

// What the fuzz targets share. A target is one function that feeds the library with the bytes it is
// given and ends the process where the library breaks a promise.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The entry point of libFuzzer; returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the process, naming the promise and what it was broken with, unless it is kept.
void promise(bool isKept, std::string_view promise, std::string_view broken);

/// The bytes as text.
std::string_view textOf(const std::uint8_t* data, std::size_t size);

/// The lines of a text, none with its end; empty ones follow where there are fewer than `atLeast`.
std::vector<std::string> linesOf(std::string_view text, std::size_t atLeast = 1, char end = '\n');
