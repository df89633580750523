// The methods: a call with any arguments on any picture, in a host with or without a fault,
// compared with the reference model.
#include "Finding.h"
#include "InputCall.h"
#include "host/Host.h"
#include "support/PluginTest.h"

namespace fuzz {
namespace {

class CleanCall : public support::PluginTest {
 public:
  void Check(const MethodInput& input) { CheckCall({MethodOf(input), Arguments(input)}, SettingOf(input)); }

 private:
  void TestBody() override {}
};

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  host::Host::KeepLoaded(support::LibraryPath());
  fuzz::ReportFailedAssertions();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const fuzz::MethodInput input = fuzz::Decode(bytes, size);
  if (fuzz::ConcernsLoading(input)) {
    fuzz::CheckLoad(input);
  } else if (fuzz::HostFaultOf(input.fault).kind == support::FaultKind::None && !fuzz::HasDefects(input) &&
             fuzz::MethodOf(input).byModel) {
    fuzz::CleanCall().Check(input);
  } else {
    fuzz::CheckInputCall(input);
  }
  return 0;
}
