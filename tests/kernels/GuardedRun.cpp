#include "GuardedRun.h"

#include <csetjmp>
#include <csignal>

#include "host/Value.h"

namespace {

sigjmp_buf gBeforeFault;
const void* volatile gFaultAddress;

extern "C" void LeaveFault(int, siginfo_t* info, void*) {
  gFaultAddress = info->si_addr;
  siglongjmp(gBeforeFault, 1);
}

// Directs memory faults to LeaveFault while it lives.
class FaultRoute {
 public:
  FaultRoute() {
    struct sigaction action = {};
    action.sa_sigaction = LeaveFault;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, &segv_);
    sigaction(SIGBUS, &action, &bus_);
  }
  ~FaultRoute() {
    sigaction(SIGSEGV, &segv_, nullptr);
    sigaction(SIGBUS, &bus_, nullptr);
  }
  FaultRoute(const FaultRoute&) = delete;
  FaultRoute& operator=(const FaultRoute&) = delete;

 private:
  struct sigaction segv_ = {};
  struct sigaction bus_ = {};
};

// Out of line, so that the caller's variables are not in the frame to which sigsetjmp returns
// twice.
__attribute__((noinline)) void CallUntilFault(void (*work)(void*), void* context) {
  if (sigsetjmp(gBeforeFault, 1) == 0) work(context);
}

}  // namespace

const void* FaultIn(void (*work)(void* context), void* context) {
  const FaultRoute route;
  gFaultAddress = nullptr;
  CallUntilFault(work, context);
  return gFaultAddress;
}

GuardedRun::GuardedRun(std::size_t largest)
    : largest_(largest),
      end_(1, largest + 2 * kRing, host::Flush::End, host::GuardedMemory::Where::Anywhere),
      start_(1, largest + 2 * kRing, host::Flush::Start, host::GuardedMemory::Where::Anywhere) {}

std::uint8_t GuardedRun::PatternByte(std::uint8_t pattern, std::size_t index) {
  return static_cast<std::uint8_t>(pattern + index * 37);
}

std::size_t GuardedRun::RingFrom(std::size_t index) const {
  return first_ + index == run_ ? index + size_ : index;
}

void* GuardedRun::Place(std::size_t size, host::Flush flush, std::size_t shift, std::uint8_t pattern) {
  if (size > largest_ || shift > kRing) throw host::Error("a run that does not fit its guarded memory");
  size_ = size;
  pattern_ = pattern;
  watched_ = size + shift + kRing;
  if (flush == host::Flush::End) {
    first_ = end_.Block(0) + end_.BlockSize() - watched_;
    run_ = first_ + kRing;
  } else {
    first_ = start_.Block(0);
    run_ = first_ + shift;
  }
  for (std::size_t i = RingFrom(0); i < watched_; i = RingFrom(i + 1)) first_[i] = PatternByte(pattern, i);
  return run_;
}

std::string GuardedRun::RingDamage() const {
  for (std::size_t i = RingFrom(0); i < watched_; i = RingFrom(i + 1)) {
    if (first_[i] != PatternByte(pattern_, i)) return Locate(first_ + i);
  }
  return {};
}

std::string GuardedRun::Locate(const void* address) const {
  constexpr std::size_t kNear = 1 << 16;
  const auto at = reinterpret_cast<std::uintptr_t>(address);
  const auto first = reinterpret_cast<std::uintptr_t>(run_);
  const std::uintptr_t end = first + size_;
  if (at < first && first - at < kNear) return std::to_string(first - at) + " bytes before its first byte";
  if (at >= end && at - end < kNear) return std::to_string(at - end + 1) + " bytes past its last byte";
  return at >= first && at < end ? "inside" : "";
}
