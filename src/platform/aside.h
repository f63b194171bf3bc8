#pragma once

#include <cstdint>
#include <string>

/// What is learned beside everything else, so that a drive that takes its time keeps nobody waiting.
namespace platform {

/// Opens `device` with no access, sends one control request and closes it. From any thread; touches nothing of the
/// program's. False when any of that failed; `returned` are the bytes that came.
bool control_aside(const char* device, std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
                   std::uint32_t out_bytes, std::uint32_t* returned);

/// Calls `learn` with 0 to `count` - 1 on a thread of its own, and `learned` with each number and text where a press
/// would call its handler. `learn` may use control_aside() and nothing of the program's that changes. Once in a
/// process.
void learn_aside(int count, std::string (*learn)(int number), void (*learned)(int number, const std::string& text));

}  // namespace platform
