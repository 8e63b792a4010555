// Click actions, which menus and pages pass on as text: the id is the one that a regular
// expression finds.
#include <charconv>
#include <regex>

#include "platform/CommonAPI.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

int IdByExpression(const std::string& action, const std::regex& expression) {
  for (std::sregex_iterator match(action.begin(), action.end(), expression), end; match != end;
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
  static const std::pair<const char*, std::regex> kPatterns[] = {
      {"call_log_x", std::regex("\\bcall_log_(\\d+)\\b")},
      {"broadsoft_calllog_x", std::regex("\\bbroadsoft_calllog_(\\d+)\\b")},
      {"x", std::regex("\\b(\\d+)\\b")}};
  for (const auto& [pattern, expression] : kPatterns) {
    EXPECT_EQ(CommonAPI_ParseIdByClickAction(input, pattern), IdByExpression(input, expression))
        << pattern;
  }
  // Any text as the pattern: only one that ends in "x" names an id.
  const std::size_t cut = input.find('\n');
  if (cut == std::string::npos) return;
  const std::string pattern = input.substr(cut + 1);
  const int id = CommonAPI_ParseIdByClickAction(input.substr(0, cut), pattern);
  EXPECT_GE(id, -1);
  if (pattern.empty() || pattern.back() != 'x') EXPECT_EQ(id, -1);
}

}  // namespace desk
