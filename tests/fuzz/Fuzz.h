// What the fuzz targets share. Their checks are the tests' EXPECT macros: the first that does not
// hold ends the run, and the fuzzer keeps the input.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/PhoneTest.h"

namespace desk {

// What a target does with one input.
void FuzzOne(const std::string& input);

// The test fixture as a phone that stays from one input to the next.
class FuzzPhone : public PhoneTest {
 public:
  void TestBody() override {}
  using PhoneTest::HistoryFile;
  using PhoneTest::Names;
  using PhoneTest::platform;
};

// The attributes of the root's children "item", read by a strict parser. Nothing when `bytes` are
// no well-formed XML, or have another root.
using Items = std::vector<std::map<std::string, std::string>>;
std::optional<Items> StrictItems(const std::string& bytes, const std::string& root);

// True when `text` is UTF-8 without control characters, but for line feeds.
bool IsPrintableText(const std::string& text);

}  // namespace desk
