// The services that the stand-in host offers, as tests name them.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace host {

/// One for each entry name that the resolver knows.
enum class Service {
  RegisterPluginVersion,     // "RegisterPluginVersion"
  GetRBVersion,              // "REALGetRBVersion"
  BuildString,               // "REALBuildString"
  MessageBox,                // "RuntimeMsgBox"
  RegisterModule,            // "PluginRegisterModule"
  GetClassRef,               // "pluginObjectType"
  NewInstance,               // "CreateInstance"
  LoadObjectMethod,          // "REALLoadObjectMethod"
  UnlockObject,              // "REALUnlockObject"
  LockPictureDescription,    // "lockPictureDescription"
  UnlockPictureDescription,  // "unlockPictureDescription"
  YieldToRB,                 // "REALYieldToRB"
};

constexpr std::size_t kServiceCount = 12;

/// All services.
constexpr std::array<Service, kServiceCount> kServices = {
    Service::RegisterPluginVersion,
    Service::GetRBVersion,
    Service::BuildString,
    Service::MessageBox,
    Service::RegisterModule,
    Service::GetClassRef,
    Service::NewInstance,
    Service::LoadObjectMethod,
    Service::UnlockObject,
    Service::LockPictureDescription,
    Service::UnlockPictureDescription,
    Service::YieldToRB,
};

/// The name by which the resolver knows the service.
const char* EntryName(Service service);

/// Thrown by a service that Host::ThrowAt has told to.
class Thrown : public std::runtime_error {
 public:
  explicit Thrown(Service service)
      : std::runtime_error(std::string("thrown by ") + EntryName(service)), service_(service) {}
  Service service() const { return service_; }

 private:
  Service service_;
};

/// How one call of a service ended.
enum class ServiceOutcome { Done, Failed, Threw };

/// One line of the host's log.
struct ServiceCall {
  const char* name;        ///< the entry name, or "Constructor" for the method of the picture class
  std::uint32_t object;    ///< Picture::Id of the picture, or number of the text; 0: none or unknown
  ServiceOutcome outcome;  ///< Failed and Threw only by FailAt and ThrowAt
  bool operator==(const ServiceCall& other) const {
    return std::string(name) == other.name && object == other.object && outcome == other.outcome;
  }
};

}  // namespace host
