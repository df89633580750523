#include "Host.h"

#include <algorithm>

#include "BitmapContext.h"
#include "HostState.h"

namespace host {
namespace {

constexpr const char* kEntry = "REALPluginMain";

LiveObject Report(const Object& object) {
  LiveObject report{object.id, "string", true, object.references, object.PluginReferences(), 0};
  if (object.kind == Object::Kind::Picture) {
    const auto& picture = static_cast<const PictureObject&>(object);
    report.kind = "picture";
    report.constructed = picture.memory != nullptr;
    report.locks = picture.locks;
  }
  return report;
}

}  // namespace

void HostState::ThrowNewComplaints() {
  if (!options.throwComplaints || thrownComplaints >= complaints.size()) return;
  std::string text;
  for (; thrownComplaints < complaints.size(); ++thrownComplaints) {
    text += (text.empty() ? "" : "\n") + complaints[thrownComplaints];
  }
  throw Misuse(text);
}

void HostState::CheckModule(const REALmoduleDefinition& definition) {
  const auto isNil = [](const void* word) { return word == nullptr; };
  if (definition.version != kPluginInterfaceVersion) {
    Complain("the module's version is " + std::to_string(definition.version));
  }
  if (definition.name == nullptr || *definition.name == '\0') Complain("the module has no name");
  if (definition.methods == nullptr || definition.methodCount == 0) return Complain("the module has no methods");
  if (!std::all_of(std::begin(definition.unused), std::end(definition.unused), isNil)) {
    Complain("the module's unused words are not all nil");
  }
  for (std::uint32_t i = 0; i < definition.methodCount; ++i) {
    const REALmethodDefinition& record = definition.methods[i];
    const std::string which = "method record " + std::to_string(i + 1);
    if (record.setter != nullptr) Complain(which + " has a setter");
    if (record.flags != kMethodFlags) Complain(which + " has flags " + std::to_string(record.flags));
    if (!std::all_of(std::begin(record.unused), std::end(record.unused), isNil)) {
      Complain(which + " has unused words that are not nil");
    }
    if (record.entry == nullptr || record.declaration == nullptr) {
      Complain(which + (record.entry == nullptr ? " has no function" : " has no declaration"));
      continue;
    }
    try {
      Method method = ParseDeclaration(record.declaration);
      method.entry = record.entry;
      for (const Method& earlier : methods) {
        if (SameName(earlier.name, method.name)) Complain(which + " declares " + method.name + " a second time");
      }
      methods.push_back(std::move(method));
    } catch (const Error& error) {
      Complain(which + ": " + error.what());
    }
  }
}

Host::Host(const Options& options) : newPictures(options.newPictures) {
  if (HostState::current != nullptr) throw Error("another Host lives");
  SetContextKeeper(DescribeContext);
  state_ = std::make_unique<HostState>(*this, options);
  HostState::current = state_.get();
}

Host::~Host() {
  state_->library.Unload();
  DropLeaks();
  HostState::current = nullptr;
}

void Host::Load(const std::string& path) {
  state_->library.Load(path);
  Start(reinterpret_cast<REALPluginMainFunction*>(state_->library.Symbol(kEntry)));
}

void Host::Start(REALPluginMainFunction* entry) {
  state_->entry = entry;
  CallPluginMainAgain();
}

void Host::CallPluginMainAgain() {
  if (state_->entry == nullptr) throw Error("no plug-in has been started");
  Table().ProtectAll();
  state_->entry(&Resolve);
  state_->ThrowNewComplaints();
}

bool Host::IsLoaded(const std::string& path) {
  return Library::IsResident(path);
}

void Host::KeepLoaded(const std::string& path) {
  Library::KeepResident(path);
}

const REALmoduleDefinition* Host::Module() const {
  return state_->module;
}
const std::vector<Method>& Host::Methods() const {
  return state_->methods;
}
const std::vector<int>& Host::PluginVersions() const {
  return state_->pluginVersions;
}
void Host::SetStackMisalignment(std::optional<unsigned> bytes) {
  if (bytes.value_or(0) % 4 != 0 || bytes.value_or(0) > 12) throw Error("a stack is misaligned by 0, 4, 8 or 12 bytes");
  state_->misalignment = bytes;
}

void Host::Withhold(Service service, int fromLookup) {
  state_->Book(service).withheldFrom = fromLookup;
}
void Host::FailAt(Service service, int call) {
  state_->Book(service).failing.insert(call);
}
void Host::ThrowAt(Service service, int call) {
  state_->Book(service).throwing.insert(call);
}

void Host::ClearFaults() {
  for (ServiceBook& book : state_->books) {
    book.withheldFrom = 0;
    book.failing.clear();
    book.throwing.clear();
  }
}

int Host::Lookups(Service service) const {
  return state_->Book(service).lookups;
}
int Host::Calls(Service service) const {
  return state_->Book(service).calls;
}
const std::vector<ServiceCall>& Host::Log() const {
  return state_->log;
}

void Host::ResetCounts() {
  for (ServiceBook& book : state_->books) book.lookups = book.calls = 0;
  state_->log.clear();
  state_->newPictures = 0;
}

const std::vector<std::string>& Host::Complaints() const {
  return state_->complaints;
}

void Host::ClearComplaints() {
  state_->complaints.clear();
  state_->thrownComplaints = 0;
}

std::vector<LiveObject> Host::LiveObjects() const {
  std::vector<LiveObject> reports;
  for (const Object* object : Table().Objects()) {
    if (object->kind != Object::Kind::Class) reports.push_back(Report(*object));
  }
  return reports;
}

std::vector<LiveObject> Host::Leaks() const {
  std::vector<LiveObject> leaks = LiveObjects();
  const auto isProgramsOwn = [](const LiveObject& object) { return object.pluginReferences == 0 && object.locks == 0; };
  leaks.erase(std::remove_if(leaks.begin(), leaks.end(), isProgramsOwn), leaks.end());
  return leaks;
}

int Host::AbandonedObjects() const {
  const std::vector<LiveObject> objects = LiveObjects();
  return static_cast<int>(
      std::count_if(objects.begin(), objects.end(), [](const LiveObject& object) { return !object.constructed; }));
}

void Host::DropLeaks() {
  for (PictureObject* picture : Table().Pictures()) {
    while (picture->locks > 0) Table().Unlock(*picture);
  }
  for (Object* object : Table().Objects()) {
    for (int left = object->PluginReferences(); left > 0; --left) Table().Release(*object);
  }
}

}  // namespace host
