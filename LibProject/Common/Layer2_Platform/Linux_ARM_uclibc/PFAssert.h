// PFAssert.h: the assertion that ends the process, in every build type.
//
// For mistakes of this project's own code only. What a peer, a camera, the host or the kernel can bring about is a
// result, never a PF_ASSERT.
#pragma once

/// Prints the failed expression with its place to standard error and ends the process with SIGABRT. Any thread.
[[noreturn]] void PF_AssertFail(const char* expression, const char* file, int line, const char* function);

#define PF_ASSERT(expression) PF_ASSERT_TEXT(expression, #expression)

/// The same under an established text, by which the failure is known wherever the expression may have moved since.
#define PF_ASSERT_TEXT(expression, text)                                                                               \
    (static_cast<bool>(expression) ? static_cast<void>(0) : PF_AssertFail(text, __FILE__, __LINE__, __func__))
