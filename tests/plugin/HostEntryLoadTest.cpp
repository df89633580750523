// Loading the plug-in: the services that it asks for, in which order, and its behaviour in hosts
// that are too old or lack a service.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "host/Host.h"
#include "host/HostState.h"
#include "host/Library.h"
#include "host/NativeCall.h"
#include "support/PluginTest.h"

namespace {

using host::Service;
using support::LibraryPath;

std::vector<std::string> CallNames(const host::Host& host) {
  std::vector<std::string> names;
  for (const host::ServiceCall& call : host.Log()) names.emplace_back(call.name);
  return names;
}

host::Options OfVersion(double version) {
  host::Options options;
  options.version = version;
  return options;
}

TEST(HostEntryLoad, RegistersOnce) {
  host::Host host;
  host.Load(LibraryPath());
  EXPECT_EQ(host.PluginVersions(), std::vector<int>({10}));
  const std::vector<std::string> expected = {"RegisterPluginVersion", "pluginObjectType", "REALGetRBVersion",
                                             "PluginRegisterModule"};
  EXPECT_EQ(CallNames(host), expected);
  EXPECT_NE(host.Module(), nullptr);
  EXPECT_TRUE(host.messageBoxes.empty());
}

TEST(HostEntryLoad, AsksOnlyForWhatItNeedsThen) {
  host::Host host;
  host.Load(LibraryPath());
  for (const Service service : host::kServices) {
    const bool needed = service == Service::RegisterPluginVersion || service == Service::GetClassRef ||
                        service == Service::GetRBVersion || service == Service::RegisterModule;
    EXPECT_EQ(host.Lookups(service), needed ? 1 : 0) << host::EntryName(service);
    EXPECT_EQ(host.Calls(service), needed ? 1 : 0) << host::EntryName(service);
  }
}

// ---------------------------------------------------------------------------------------- versions

TEST(HostEntryLoad, WorksFromTheFirstVersionOn) {
  const double first = 2011.04;
  for (const double version :
       {first, std::nextafter(first, 3000.0), 2011.041, 2012.0, 1e308, std::numeric_limits<double>::infinity()}) {
    SCOPED_TRACE(version);
    host::Host host(OfVersion(version));
    host.Load(LibraryPath());
    EXPECT_EQ(host.Methods().size(), support::Methods().size());
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_EQ(host.Lookups(Service::MessageBox), 0);
    EXPECT_EQ(host.Lookups(Service::BuildString), 0);
  }
}

// The message, limited by a buffer of 200 bytes.
std::string MessageFor(double version) {
  char number[400];
  std::snprintf(number, sizeof number, "%f", version);
  const std::string text =
      std::string("This verion of Lumavex requires Real Studio 2011r4 or later.\nReal Studio version: ") + number;
  return text.substr(0, 199);
}

TEST(HostEntryLoad, TellsOlderHosts) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double version : {std::nextafter(2011.04, 0.0), 2011.03, 2011.0, 1.0, 0.0, -0.0, -2011.04, -1e308,
                               -std::numeric_limits<double>::max(), -kInfinity, std::nan(""), -std::nan("")}) {
    SCOPED_TRACE(version);
    host::Host host(OfVersion(version));
    host.Load(LibraryPath());
    EXPECT_EQ(host.messageBoxes, std::vector<std::string>({MessageFor(version)}));
    EXPECT_EQ(host.Module(), nullptr);
    EXPECT_EQ(host.Lookups(Service::RegisterModule), 0);
    const std::vector<std::string> expected = {"RegisterPluginVersion", "pluginObjectType", "REALGetRBVersion",
                                               "REALBuildString", "RuntimeMsgBox"};
    EXPECT_EQ(CallNames(host), expected);
    EXPECT_TRUE(host.Methods().empty());
  }
}

TEST(HostEntryLoad, TheMessageHasTheseWords) {
  host::Host host(OfVersion(2011.03));
  host.Load(LibraryPath());
  EXPECT_EQ(host.messageBoxes,
            std::vector<std::string>({"This verion of Lumavex requires Real Studio 2011r4 or later.\n"
                                      "Real Studio version: 2011.030000"}));
}

// A locale with another decimal mark. localedef makes it from the character maps of the package
// `locales`, because a machine need not have any locale but C.
class Locale {
 public:
  explicit Locale(const std::string& mark) : folder_(testing::TempDir() + "lmx-locale-XXXXXX") {
    if (mkdtemp(folder_.data()) == nullptr) return;
    std::ofstream(folder_ + "/source") << "comment_char %\nescape_char /\nLC_NUMERIC\ndecimal_point \"" << mark
                                       << "\"\nthousands_sep \"\"\ngrouping -1\nEND LC_NUMERIC\n";
    const std::string make = "localedef -c -f UTF-8 -i " + folder_ + "/source " + folder_ + "/odd >/dev/null 2>&1";
    const int status = std::system(make.c_str());  // not 0, because only one category is there
    static_cast<void>(status);
    setenv("LOCPATH", folder_.c_str(), 1);
    isSet_ = std::setlocale(LC_NUMERIC, "odd") != nullptr;
  }
  ~Locale() {
    std::setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
    std::filesystem::remove_all(folder_);
  }
  Locale(const Locale&) = delete;
  Locale& operator=(const Locale&) = delete;

  bool IsSet() const { return isSet_; }

 private:
  std::string folder_;
  bool isSet_ = false;
};

TEST(HostEntryLoad, TheMessageHasAPointInEveryLocale) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  // The longest numbers fill the message before, within or after their decimals.
  std::vector<std::pair<double, std::string>> expected;
  for (const double version : {2011.03,
                               0.0,
                               -0.0,
                               0.5e-6,
                               -12.9999999,
                               -1e15 - 0.125,
                               -1e107,
                               -1e108,
                               -1e109,
                               -1e110,
                               -1e111,
                               -1e112,
                               -1e113,
                               -1e114,
                               -1e115,
                               -1e116,
                               -1e117,
                               -1e308,
                               -std::numeric_limits<double>::max(),
                               -kInfinity,
                               std::nan(""),
                               -std::nan("")}) {
    expected.emplace_back(version, MessageFor(version));
  }
  const std::pair<const char*, const char*> marks[] = {{",", ","}, {"<U066B>", "\u066B"}};
  for (const auto& [mark, bytes] : marks) {
    const Locale locale(mark);
    ASSERT_TRUE(locale.IsSet()) << "localedef is missing, or the character maps of the package `locales`";
    char half[16];
    std::snprintf(half, sizeof half, "%.1f", 0.5);
    ASSERT_EQ(half, std::string("0") + bytes + "5");
    for (const auto& [version, message] : expected) {
      SCOPED_TRACE(testing::Message() << mark << " " << version);
      host::Host host(OfVersion(version));
      host.Load(LibraryPath());
      EXPECT_EQ(host.messageBoxes, std::vector<std::string>({message}));
    }
  }
}

// -------------------------------------------------------------------------------- missing services

TEST(HostEntryLoad, NeedsToBeToldTheVersion) {
  host::Host host;
  host.Withhold(Service::GetRBVersion);
  host.Load(LibraryPath());
  EXPECT_EQ(host.messageBoxes, std::vector<std::string>({MessageFor(0.0)}));
  EXPECT_EQ(host.Module(), nullptr);
}

TEST(HostEntryLoad, WorksWithoutThePictureClass) {
  host::Host host;
  host.Withhold(Service::GetClassRef);
  host.Load(LibraryPath());
  EXPECT_EQ(host.Methods().size(), support::Methods().size());
  EXPECT_EQ(host.Lookups(Service::GetClassRef), 1);
}

TEST(HostEntryLoad, CannotRegisterWithoutTheService) {
  host::Host host;
  host.Withhold(Service::RegisterModule);
  host.Load(LibraryPath());
  EXPECT_EQ(host.Module(), nullptr);
  EXPECT_EQ(host.Lookups(Service::RegisterModule), 1);
  EXPECT_TRUE(host.messageBoxes.empty());
}

TEST(HostEntryLoad, StaysSilentWhereNothingCanBeShown) {
  for (const Service service : {Service::BuildString, Service::MessageBox}) {
    SCOPED_TRACE(host::EntryName(service));
    host::Options options = OfVersion(2011.03);
    options.throwComplaints = false;  // a box without a text is up to the host
    host::Host host(options);
    host.Withhold(service);
    host.Load(LibraryPath());
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_EQ(host.Lookups(service), 1);
    EXPECT_EQ(host.Module(), nullptr);
  }
}

TEST(HostEntryLoad, DoesWithoutServicesThatItDoesNotNeedThen) {
  host::Host host;
  for (const Service service : {Service::BuildString, Service::MessageBox, Service::NewInstance,
                                Service::LoadObjectMethod, Service::UnlockObject, Service::LockPictureDescription,
                                Service::UnlockPictureDescription, Service::YieldToRB}) {
    host.Withhold(service);
  }
  host.Load(LibraryPath());
  EXPECT_EQ(host.Methods().size(), support::Methods().size());
}

// ------------------------------------------------------------------------------------ loaded twice

TEST(HostEntryLoadDeathTest, ASecondStartStopsTheProcess) {
  EXPECT_EXIT(
      {
        host::Host host;
        host.Load(LibraryPath());
        host.CallPluginMainAgain();
      },
      testing::KilledBySignal(SIGABRT),
      "!gResolver && \"Plugin loaded twice\\?\".*REALPluginMain.*Glue Code/PluginMain.*1922");
}

// The process ends in abort(). The handler checks that the host got no lookup and no call.
TEST(HostEntryLoadDeathTest, ASecondStartAsksForNothing) {
  static const host::Host* loaded;
  constexpr int kNothing = 7;
  EXPECT_EXIT(
      {
        host::Host host;
        host.Load(LibraryPath());
        host.ResetCounts();
        loaded = &host;
        std::signal(SIGABRT, [](int) {
          int lookups = 0;
          for (const Service service : host::kServices) lookups += loaded->Lookups(service);
          std::exit(lookups == 0 && loaded->Log().empty() ? kNothing : 1);
        });
        host.CallPluginMainAgain();
      },
      testing::ExitedWithCode(kNothing), "Plugin loaded twice");
}

// --------------------------------------------------------------------------------- stack alignment

// A host that is too old makes the plug-in format a number, which uses vector registers.
TEST(HostEntryLoad, StartsOnAnyStack) {
  for (const double version : {2011.04, 2011.03}) {
    for (const unsigned misalignment : {0u, 4u, 8u, 12u}) {
      SCOPED_TRACE(testing::Message() << "version " << version << ", misalignment " << misalignment);
      host::Host host(OfVersion(version));
      host::Library library;
      library.Load(LibraryPath());
      host::NativeCall start;
      start.AddPointer(reinterpret_cast<const void*>(&host::Resolve));
      start.Call(reinterpret_cast<host::NativeCall::Function>(library.Symbol("REALPluginMain")), misalignment);
      EXPECT_EQ(host.PluginVersions(), std::vector<int>({10}));
      EXPECT_EQ(host.messageBoxes.size(), version < 2011.04 ? 1u : 0u);
    }
  }
}

}  // namespace
