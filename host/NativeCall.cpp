#include "NativeCall.h"

#include <cstring>

#include "Value.h"

namespace host {

#if defined(__x86_64__)

static_assert(sizeof(long) == sizeof(void*));

void NativeCall::AddStackWord(long word) {
  if (stackCount_ == kMostOnStack) throw Error("a method with so many parameters cannot be called");
  stack_[stackCount_++] = word;
}

void NativeCall::AddInteger(std::int32_t value) {
  if (wordCount_ < words_.size()) {
    words_[wordCount_++] = value;
  } else {
    AddStackWord(value);
  }
}

void NativeCall::AddWord(std::uint32_t value) {
  AddPointer(reinterpret_cast<const void*>(std::uintptr_t{value}));
}

void NativeCall::AddPointer(const void* value) {
  const long word = reinterpret_cast<long>(value);
  if (wordCount_ < words_.size()) {
    words_[wordCount_++] = word;
  } else {
    AddStackWord(word);
  }
}

void NativeCall::AddDouble(double value) {
  if (doubleCount_ < doubles_.size()) {
    doubles_[doubleCount_++] = value;
    return;
  }
  long word;
  std::memcpy(&word, &value, sizeof word);
  AddStackWord(word);
}

// Passes all registers to every method: a callee reads the ones it knows and ignores the rest. The
// function's real type is a different one, on purpose.
template <class Result>
#if defined(__clang__)
__attribute__((no_sanitize("function")))
#endif
Result
NativeCall::CallAs(Function function) const {
  using L = long;
  using D = double;
  using Universal = Result(L, L, L, L, L, L, D, D, D, D, D, D, D, D, L, L, L, L, L, L, L, L, L, L, L, L, L, L, L, L);
  const auto& w = words_;
  const auto& d = doubles_;
  const auto& s = stack_;
  return reinterpret_cast<Universal*>(function)(w[0], w[1], w[2], w[3], w[4], w[5], d[0], d[1], d[2], d[3], d[4], d[5],
                                                d[6], d[7], s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], s[8], s[9],
                                                s[10], s[11], s[12], s[13], s[14], s[15]);
}

std::uint64_t NativeCall::Call(Function function, unsigned) const {
  return CallAs<std::uint64_t>(function);
}
double NativeCall::CallDouble(Function function, unsigned) const {
  return CallAs<double>(function);
}

#elif defined(__i386__)

void NativeCall::AddInteger(std::int32_t value) {
  stack_.push_back(static_cast<std::uint32_t>(value));
}
void NativeCall::AddWord(std::uint32_t value) {
  stack_.push_back(value);
}
void NativeCall::AddPointer(const void* value) {
  stack_.push_back(reinterpret_cast<std::uintptr_t>(value));
}

void NativeCall::AddDouble(double value) {
  std::uint32_t words[2];
  std::memcpy(words, &value, sizeof words);
  stack_.insert(stack_.end(), words, words + 2);
}

// lmx_host_call(function, words, count, misalignment) copies the words to the stack, sets the stack
// pointer to `misalignment` modulo 16, and calls. It keeps the result registers.
// lmx_host_call_double is the same code for functions that return a double: one name declared with
// two types would let the compiler read the wrong register. ebp holds the frame from the first push
// to the last pop, so exceptions can be unwound whatever the stack pointer is.
asm(R"(
  .pushsection .text, "ax", @progbits
  .p2align 4
  .globl lmx_host_call
  .hidden lmx_host_call
  .type lmx_host_call, @function
lmx_host_call:
  .cfi_startproc
  pushl %ebp
  .cfi_def_cfa_offset 8
  .cfi_offset %ebp, -8
  movl %esp, %ebp
  .cfi_def_cfa_register %ebp
  pushl %esi
  .cfi_offset %esi, -12
  pushl %edi
  .cfi_offset %edi, -16
  movl 16(%ebp), %ecx
  leal 16(,%ecx,4), %edx
  subl %edx, %esp
  andl $-16, %esp
  addl 20(%ebp), %esp
  movl 12(%ebp), %esi
  movl %esp, %edi
  cld
  rep movsl
  call *8(%ebp)
  leal -8(%ebp), %esp
  popl %edi
  .cfi_restore %edi
  popl %esi
  .cfi_restore %esi
  popl %ebp
  .cfi_restore %ebp
  .cfi_def_cfa %esp, 4
  ret
  .cfi_endproc
  .size lmx_host_call, . - lmx_host_call
  .globl lmx_host_call_double
  .hidden lmx_host_call_double
  .set lmx_host_call_double, lmx_host_call
  .popsection
)");

#pragma GCC visibility push(hidden)
extern "C" {
std::uint64_t lmx_host_call(NativeCall::Function function, const std::uint32_t* words, std::size_t count,
                            unsigned misalignment);
double lmx_host_call_double(NativeCall::Function function, const std::uint32_t* words, std::size_t count,
                            unsigned misalignment);
}
#pragma GCC visibility pop

std::uint64_t NativeCall::Call(Function function, unsigned misalignment) const {
  return lmx_host_call(function, stack_.data(), stack_.size(), misalignment);
}

double NativeCall::CallDouble(Function function, unsigned misalignment) const {
  return lmx_host_call_double(function, stack_.data(), stack_.size(), misalignment);
}

#endif

}  // namespace host
