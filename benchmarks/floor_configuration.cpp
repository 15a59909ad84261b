// The configuration.
#include "floor.h"
#include "floor_objects.h"

template class ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;

namespace bench {

namespace {

constexpr Place cConfiguration[] = {
    {201, 3}, {200, 3}, {201, 4}, {826, 4}, {200, 2}, {827, 1}, {502},    {602},
    {827, 2}, {524},    {200, 1}, {827, 3}, {827, 4}, {505},    {826, 1}, {525},
    {601},    {826, 3}, {503},    {201, 1}, {200, 4}, {504},    {201, 2}, {826, 2},
};

constexpr const char* cGases[] = {"Helium", "Hydrogen", "Nitrogen", "Argon"};

constexpr decltype(&ColumnDescriptions::getDescriptionColumn1) cDescriptions[] = {
    &ColumnDescriptions::getDescriptionColumn1, &ColumnDescriptions::getDescriptionColumn2,
    &ColumnDescriptions::getDescriptionColumn3, &ColumnDescriptions::getDescriptionColumn4};

}  // namespace

void addReport(Writer& writer, unsigned long handle) {
  const auto records = readBatch(handle, cConfiguration);
  addText(writer, "Inst_name", fetch<SiteInfoTag>(handle, 5).getTagName().c_str());
  addText(writer, "Site_info", fetch<SiteInfoTag>(handle, 2).getTagName().c_str());
  addInt(writer, "Inst_serial", find(records, 601).intvalue);
  addFlag(writer, "Stream_configured", find(records, 525).intvalue);
  addInt(writer, "Stream_max", find(records, 524).intvalue);
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    const auto of = [&](std::uint32_t id) { return find(records, id, channel).intvalue; };
    startChannel(writer, channel);
    addFlag(writer, "Installed", find(records, 501 + channel).intvalue);
    addFlag(writer, "Disabled", of(200));
    addInt(writer, "Serial", of(826));
    addInt(writer, "PN", of(827));
    const auto& descriptions = fetch<ColumnDescriptions>(handle, 6);
    addText(writer, "Description", (descriptions.*cDescriptions[channel - 1])().c_str());
    addText(writer, "Gas", cGases[of(201)]);
    writer.EndObject();
  }
}

}  // namespace bench
