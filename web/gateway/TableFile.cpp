// Converts the report of a table into the file of a download.
#include "TableFile.h"

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <iterator>

#include "Json.h"

namespace gateway {

namespace {

// The other members of a calibration row belong to the instrument, and would make a large table
// longer than the limit for a body.
constexpr const char* cAmountKeys[] = {"Channel", "ID", "Level_amt"};

// Document, list of rows, row.
constexpr int cLevelOfRows = 3;

/// Copies what it reads, except members of rows that a download does not take.
class TableFilter : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, TableFilter> {
 public:
  using Size = rapidjson::SizeType;

  TableFilter(rapidjson::StringBuffer& output, bool aOnlyAmounts)
      : mWriter(output), mOnlyAmounts(aOnlyAmounts) {}

  bool Null() {
    return value([this] { return mWriter.Null(); });
  }
  bool Bool(bool aValue) {
    return value([&] { return mWriter.Bool(aValue); });
  }
  bool RawNumber(const char* aText, Size aLength, bool) {
    return value([&] { return mWriter.RawValue(aText, aLength, rapidjson::kNumberType); });
  }
  bool String(const char* aText, Size aLength, bool) {
    return value([&] { return mWriter.String(aText, aLength); });
  }
  bool Key(const char* aText, Size aLength, bool) {
    if (mSkipped > 0) {
      return true;
    }
    const std::string key(aText, aLength);
    const bool isTaken =
        !mOnlyAmounts || mLevel != cLevelOfRows ||
        std::find(std::begin(cAmountKeys), std::end(cAmountKeys), key) != std::end(cAmountKeys);
    if (!isTaken) {
      mSkipped = mLevel;
      return true;
    }
    return mWriter.Key(aText, aLength);
  }
  bool StartObject() {
    return start([this] { return mWriter.StartObject(); });
  }
  bool StartArray() {
    return start([this] { return mWriter.StartArray(); });
  }
  bool EndObject(Size) {
    return end([this] { return mWriter.EndObject(); });
  }
  bool EndArray(Size) {
    return end([this] { return mWriter.EndArray(); });
  }

 private:
  /// When a member is skipped, the value just read may complete it.
  bool isWritten() {
    const bool isKept = mSkipped == 0;
    if (mSkipped == mLevel) {
      mSkipped = 0;
    }
    return isKept;
  }
  template <typename tWrite>
  bool value(const tWrite& aWrite) {
    return !isWritten() || aWrite();
  }
  template <typename tWrite>
  bool start(const tWrite& aWrite) {
    ++mLevel;
    return mSkipped > 0 || aWrite();
  }
  template <typename tWrite>
  bool end(const tWrite& aWrite) {
    --mLevel;
    return value(aWrite);
  }

  rapidjson::Writer<rapidjson::StringBuffer> mWriter;
  const bool mOnlyAmounts;
  int mLevel = 0;
  int mSkipped = 0;  ///< level of the object whose member is being skipped; 0 if none
};

}  // namespace

std::optional<std::string> tableFileOf(eOperation aTable, const std::string& aReport) {
  rapidjson::StringBuffer output;
  TableFilter filter(output, aTable == eOperation::eCalibration);
  rapidjson::Reader reader;
  rapidjson::MemoryStream input(aReport.data(), aReport.size());
  const bool isGood =
      !reader.Parse<cParseFlags | rapidjson::kParseNumbersAsStringsFlag>(input, filter).IsError();
  const std::string file = output.GetString();
  return isGood && file.front() == '{' ? std::optional(file) : std::nullopt;
}

}  // namespace gateway
