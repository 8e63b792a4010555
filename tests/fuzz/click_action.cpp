// Click actions, which menus and pages pass on as text: the id is the one that a regular
// expression finds.
#include <charconv>
#include <regex>

#include "platform/CommonAPI.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

int IdByExpression(const std::string& action, const std::regex& expression) {
  const std::sregex_iterator none;
  for (std::sregex_iterator match(action.begin(), action.end(), expression); match != none;
       ++match) {
    const std::string digits = (*match)[1];
    int id = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (result.ec == std::errc()) return id;
  }
  return -1;
}

}  // namespace

void FuzzOne(const std::string& input) {
  for (const std::string stem : {"call_log_", "broadsoft_calllog_", ""}) {
    EXPECT_EQ(CommonAPI_ParseIdByClickAction(input, stem + "x"),
              IdByExpression(input, std::regex("\\b" + stem + "(\\d+)\\b")))
        << stem;
  }
  const std::size_t cut = std::min(input.find('\n'), input.size());
  EXPECT_GE(CommonAPI_ParseIdByClickAction(input.substr(0, cut), input.substr(cut)), -1);
}

}  // namespace desk
