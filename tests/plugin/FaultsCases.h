// Every method of the plug-in with arguments that lead through all of its passes, with what it asks
// of the host and what becomes of it when the host does not deliver.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "host/Host.h"

namespace faults {

enum class Role { Source, Temporary, Result };

/// What happens when the picture of one role cannot be used.
struct Failure {
  int code = 0;
  bool returnsResult = false;  ///< the result, untouched, instead of nil
};

struct MethodCase {
  std::string name;
  std::vector<host::Value> arguments;  ///< after the source, and before `yield`
  bool hasSource = true;
  bool inPlace = false;
  std::vector<Role> made;  ///< new pictures, in order
  Failure source;          ///< not lockable
  Failure temporary;       ///< not made, or not lockable
  Failure result;          ///< not made
  Failure resultLock;      ///< made, but not lockable
  Failure empty;           ///< a source without pixels
  int yields = 0;          ///< of a call that yields whenever it may
  int firstLine = 0;       ///< in place: the first row that a yield follows
  /// All service calls but yields, with the pictures as S, R and T1 to T3.
  std::vector<std::string> sequence;

  bool MakesResult() const { return !made.empty(); }
};

/// The fourteen methods that work on pictures; some more than once.
const std::vector<MethodCase>& Methods();

/// The storage forms of the source and of new pictures.
struct Forms {
  host::Storage source;
  host::Storage made;
};
constexpr Forms kAllForms[] = {
    {host::Storage::BitmapContext, host::Storage::BitmapContext},
    {host::Storage::BitmapContext, host::Storage::Buffer},
    {host::Storage::Buffer, host::Storage::BitmapContext},
    {host::Storage::Buffer, host::Storage::Buffer},
};
std::ostream& operator<<(std::ostream& out, const Forms& forms);

/// The shape of the source that the methods' arguments are for.
host::PictureShape SourceShape(host::Storage storage);
/// A picture of stored words that are the same every time, some of them translucent.
host::Picture Numbered(const host::PictureShape& shape);

/// What one call did.
struct Ran {
  host::Picture source;
  host::Snapshot before;  ///< of the source
  host::Picture result;
  std::vector<host::Value> arguments;    ///< like those of the case, with what ByRef ones hold now
  std::optional<host::Service> thrower;  ///< the service whose exception left the method
  int code = 0;
  std::vector<host::LiveObject> leaks;  ///< given up since
  std::vector<host::ServiceCall> log;

  int Calls(host::Service service) const;
};

/// The log with the pictures as S, R and T1 to T3; yields are left out.
std::vector<std::string> Sequence(const MethodCase& method, const Ran& ran);

/// Services that the methods call.
constexpr host::Service kCallServices[] = {
    host::Service::NewInstance,
    host::Service::LoadObjectMethod,
    host::Service::LockPictureDescription,
    host::Service::UnlockPictureDescription,
    host::Service::UnlockObject,
    host::Service::YieldToRB,
};

/// Calls methods on one host and compares what they did with a call without faults.
class FaultsTest : public testing::Test {
 protected:
  using Inject = std::function<void()>;
  static constexpr int kEveryLine = 1;  // a yield after every line

  FaultsTest() { Restart(); }

  /// Goes on with a new host and a plug-in that has just been loaded.
  void Restart(const host::Options& options = {});

  /// Calls the method; `inject` is run before, when all counts are 0, and its faults end with the
  /// call. The code that was there before is 2.
  Ran Run(const MethodCase& method, const Forms& forms, const Inject& inject = nullptr, int yield = kEveryLine);
  Ran Run(const MethodCase& method, const host::Picture& source, const Inject& inject = nullptr,
          int yield = kEveryLine);

  /// What a call without faults gives.
  const Ran& Clean(const MethodCase& method, const Forms& forms);

  /// Expects that the method did all of its work.
  void ExpectClean(const MethodCase& method, const Forms& forms, const Ran& ran);
  /// Expects that it failed and touched neither the source nor the variables of the caller.
  void ExpectFailure(const MethodCase& method, const Failure& failure, const Ran& ran);
  /// Expects the same of one that an exception left; the source may be excepted.
  void ExpectThrown(const MethodCase& method, host::Service service, const Ran& ran, bool sourceUntouched);

  /// Runs `body` for every method and all forms that make a difference to it.
  void ForEveryMethod(const std::function<void(const MethodCase& method, const Forms& forms)>& body);

  std::unique_ptr<host::Host> host_;

 private:
  std::map<std::tuple<const MethodCase*, host::Storage, host::Storage>, Ran> clean_;
};

}  // namespace faults
