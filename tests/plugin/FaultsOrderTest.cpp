// What every method asks of the host when nothing goes wrong: which services, in which order, how often.
//
//   LMX_SERVICE_TABLE=<file>   writes the number of service calls of every method, as a table for documentation
#include <climits>
#include <cstdlib>
#include <fstream>

#include "FaultsCases.h"
#include "support/PluginTest.h"

namespace faults {

using host::Service;

class FaultsOrder : public FaultsTest {};

TEST_F(FaultsOrder, ServicesAreCalledInOrder) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran& ran = Clean(method, forms);
    EXPECT_EQ(Sequence(method, ran), method.sequence);
    EXPECT_EQ(ran.code, 0);
    EXPECT_EQ(!ran.result.IsNil(), method.MakesResult());
    EXPECT_TRUE(ran.leaks.empty());
  });
}

TEST_F(FaultsOrder, PicturesHaveTheReferencesOfTheirOwners) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran ran = Run(method, forms);
    if (ran.result) {
      EXPECT_EQ(ran.result.References(), 1);
      EXPECT_EQ(ran.result.PluginReferences(), 0);
      EXPECT_EQ(ran.result.Locks(), 0);
    }
    if (ran.source) {
      EXPECT_EQ(ran.source.PluginReferences(), 0);
      EXPECT_EQ(ran.source.Locks(), 0);
      EXPECT_TRUE(ran.source.PaddingIntact());
      EXPECT_EQ(ran.source.TakeSnapshot() == ran.before, !method.inPlace);
    }
  });
}

TEST_F(FaultsOrder, YieldsAreAsManyAsThePaceSays) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    EXPECT_EQ(Clean(method, forms).Calls(Service::YieldToRB), method.yields);
    for (const int never : {0, -1, INT_MIN, INT_MAX}) {
      const Ran ran = Run(method, forms, nullptr, never);
      EXPECT_EQ(ran.Calls(Service::YieldToRB), 0) << "yield " << never;
      ExpectClean(method, forms, ran);
    }
  });
}

TEST_F(FaultsOrder, ServicesAreLookedUpOnFirstUse) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    Restart();
    for (const bool again : {false, true}) {
      Ran ran;
      const auto count = [&](Service service) { return ran.Calls(service) > 0 && !again ? 1 : 0; };
      ran = Run(method, forms);
      for (const Service service : host::kServices) {
        EXPECT_EQ(host_->Lookups(service), count(service)) << host::EntryName(service) << (again ? ", again" : "");
      }
    }
  });
}

TEST_F(FaultsOrder, ErrorMethodsAskForTextsOnly) {
  for (int call = 0; call < 2; ++call) {
    host_->ResetCounts();
    host_->Call("GetLastError", {});
    EXPECT_TRUE(host_->Log().empty());
    host_->Call("GetErrorMessage", {2});
    EXPECT_EQ(host_->Log().size(), 1u);
    for (const Service service : host::kServices) {
      const bool text = service == Service::BuildString;
      EXPECT_EQ(host_->Calls(service), text ? 1 : 0) << host::EntryName(service);
      EXPECT_EQ(host_->Lookups(service), text && call == 0 ? 1 : 0) << host::EntryName(service);
    }
  }
}

// What a method does before it has accepted its arguments.
TEST_F(FaultsOrder, RefusedArgumentsAskForNothing) {
  for (const MethodCase& method : Methods()) {
    if (!method.hasSource) continue;
    SCOPED_TRACE(method.name);
    Restart();
    const Ran ran = Run(method, host::Picture());
    EXPECT_EQ(ran.code, 2);
    EXPECT_TRUE(ran.result.IsNil());
    EXPECT_TRUE(ran.log.empty());
    for (const Service service : host::kServices) EXPECT_EQ(host_->Lookups(service), 0) << host::EntryName(service);
  }
}

// ---------------------------------------------------------------------------------------------------------- the table

// The rows of the table: calls of each service, with a yield after every line.
std::string ServiceTable(const std::vector<Ran>& rans) {
  std::string table = "| Method |";
  std::string rule = "|---|";
  for (const Service service : kCallServices) {
    table += std::string(" `") + host::EntryName(service) + "` |";
    rule += "---|";
  }
  table += "\n" + rule + "\n";
  for (std::size_t i = 0; i < rans.size(); ++i) {
    if (i > 0 && Methods()[i].name == Methods()[i - 1].name) continue;
    table += "| `" + Methods()[i].name + "` |";
    for (const Service service : kCallServices) table += " " + std::to_string(rans[i].Calls(service)) + " |";
    table += "\n";
  }
  return table;
}

TEST_F(FaultsOrder, NoServiceIsCalledThatTheTableLacks) {
  std::vector<Ran> rans;
  for (const MethodCase& method : Methods()) {
    rans.push_back(Run(method, kAllForms[0]));
    int listed = rans.back().Calls(Service::LoadObjectMethod);  // each followed by a constructor
    for (const Service service : kCallServices) listed += rans.back().Calls(service);
    EXPECT_EQ(rans.back().log.size(), static_cast<std::size_t>(listed)) << method.name;
  }
  if (const char* file = std::getenv("LMX_SERVICE_TABLE")) {
    std::ofstream out(file);
    EXPECT_TRUE(out << ServiceTable(rans)) << file;
  }
}

}  // namespace faults
