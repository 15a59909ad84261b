// The client library, connected to a controller whose answers come from the input.
#include <InstrumentClient.h>
#include <RemoteObjects.h>

#include <cstring>
#include <set>

#include "MakeMessage.h"
#include "Require.h"
#include "ScriptedSocket.h"

namespace {

/// Statuses after which none of the caller's data may have changed.
bool isBroken(unsigned long aStatus) {
  return aStatus >= eLibraryNotStarted && aStatus <= eArgumentInvalid;
}

using Transfer = unsigned long (*)(unsigned long, ParamList*, unsigned long);

void transfer(Input& input, ScriptedSocket& socket, Transfer aTransfer, unsigned long aHandle) {
  wire::Batch asked;
  make(input, asked);
  wire::Batch told;
  make(input, told);
  if (input.flag()) {
    told.records.resize(asked.records.size());
  }
  std::vector<ParamList> records = asked.records;
  const eAnswer answer = socket.answer(input, told);
  const unsigned long status = aTransfer(aHandle, records.data(), records.size());
  const bool isRefusal =
      told.records.empty() && told.status != eSuccess && told.status != eBatchIncomplete;
  const bool fits = told.records.size() == asked.records.size();
  wire::Batch seen;
  seen.records = records;
  if (socket.wasAsked() && answer == eAnswer::eUnclear) {
    return;
  }
  if (socket.wasAsked() && answer == eAnswer::eGood && (fits || isRefusal)) {
    require(status == told.status, "the status is the controller's");
    told.status = asked.status = 0;
    require(isSame(seen, fits ? told : asked), "the records are the controller's");
  } else {
    asked.status = 0;
    require(isBroken(status) && isSame(seen, asked), "a broken answer changes no record");
  }
}

void command(Input& input, ScriptedSocket& socket, unsigned long aHandle) {
  wire::StatusReply told;
  make(input, told);
  const eAnswer answer = socket.answer(input, told);
  const unsigned long status = ExecuteCommand(aHandle, 0, input.octet());
  if (!socket.wasAsked() || answer == eAnswer::eBroken) {
    require(isBroken(status), "without an answer the status says so");
  } else {
    require(answer == eAnswer::eUnclear || status == told.status, "the status is the controller's");
  }
}

void object(Input& input, ScriptedSocket& socket, unsigned long aHandle) {
  const std::string text = input.text();
  const std::string texts[] = {text, "b", "", "d"};
  const bool isTag = input.flag();
  wire::ObjectReply told;
  if (input.flag()) {
    make(input, told);
  } else {
    told.className = isTag ? wire::cSiteInfoTag : wire::cColumnDescriptions;
    told.contents = wire::marshalTexts(texts, isTag ? 1 : 4);
  }
  socket.answer(input, told);
  RemoteObject* object = nullptr;
  const unsigned long status = ReadObject(aHandle, input.octet(), object);
  require((status == eSuccess) == (object != nullptr), "an object comes with success");
  if (const auto* tag = dynamic_cast<const SiteInfoTag*>(object)) {
    require(tag->getTagName().length() <= wire::cMaxText, "a text is within its bound");
  } else if (const auto* columns = dynamic_cast<const ColumnDescriptions*>(object)) {
    require(columns->getDescriptionColumn4().length() <= wire::cMaxText,
            "a text is within its bound");
  } else {
    require(object == nullptr, "an object is of a class that was registered");
  }
}

void programInfo(Input& input, ScriptedSocket& socket, unsigned long aHandle) {
  wire::ProgramInfoReply told;
  make(input, told);
  const eAnswer answer = socket.answer(input, told);
  unsigned long first = 1234;
  unsigned long second = 5678;
  const unsigned long status = ReadProgramInfo(aHandle, 0, 1, 1, &first, &second);
  const bool fits = static_cast<unsigned long>(told.first) == told.first &&
                    static_cast<unsigned long>(told.second) == told.second;
  if (status != eSuccess) {
    require(first == 1234 && second == 5678, "without an answer no count changes");
  } else {
    require(socket.wasAsked() && answer != eAnswer::eBroken, "counts come with an answer");
    require(answer == eAnswer::eUnclear || (fits && first == told.first && second == told.second),
            "the counts are the controller's");
  }
}

void registerClasses() {
  static bool done = false;
  if (!done) {
    auto* factory = ACE_Singleton<CloneFactory, ACE_Thread_Mutex>::instance();
    factory->registerObject(SiteInfoTag());
    factory->registerObject(ColumnDescriptions());
    done = true;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  registerClasses();
  Input input(aOctets, aSize);
  ScriptedSocket socket;
  require(startupGC(1, 0x0100007F, 0, 0, 1, "") == eSuccess, "the library starts");
  unsigned long handle = 0;
  wire::StatusReply welcome;
  make(input, welcome);
  const eAnswer answer = socket.answer(input, welcome);
  const unsigned long status = EstablishConnection(1, "fuzz", "", &handle);
  require(answer == eAnswer::eUnclear ||
              (status == eSuccess) == (answer == eAnswer::eGood && welcome.status == eSuccess),
          "the controller decides whether there is a connection");
  require((status == eSuccess) == (handle != 0), "a handle comes with success");
  for (int calls = 0; calls < 20 && input.left() > 0; ++calls) {
    switch (input.below(6)) {
      case 0:
        transfer(input, socket, &WriteParamList, handle);
        break;
      case 1:
        command(input, socket, handle);
        break;
      case 2:
        object(input, socket, handle);
        break;
      case 3:
        programInfo(input, socket, handle);
        break;
      default:
        transfer(input, socket, &ReadParamList, handle);
        break;
    }
  }
  socket.answer(input, wire::StatusReply());
  BreakConnection(handle);
  require(shutdownGC() == eSuccess, "the library stops");
  require(socket.isClosed(), "no socket stays open");
  return 0;
}
