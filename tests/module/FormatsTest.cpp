// The examples of docs/FORMATS.md are what the module writes.
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;

class FormatsTest : public PhoneTest {
 protected:
  ~FormatsTest() override { CBSCallLogController::ReleaseInstance(); }

  // The code block behind this mark.
  static std::string Example(const std::string& name) {
    const auto document = std::filesystem::path(__FILE__).parent_path() / "../../docs/FORMATS.md";
    const std::string text = ReadFile(document);
    const std::string fence = "```xml\n";
    const std::size_t begin = text.find(fence, text.find("<!-- example: " + name)) + fence.size();
    return text.substr(begin, text.find("```", begin) - begin);
  }

  std::filesystem::path SourcesFile() const {
    return root.path() / "config/data/broadsoft_calllog_list.xml";
  }
};

TEST_F(FormatsTest, TheHistoryIsWrittenAsDocumented) {
  CallLogAddItemData call = MakeCall(2, "+12025550107", kNow);
  call.remote_sip_server.clear();
  call.remote_display_name = "Zo\u00EB \"Zed\" O'Hara";
  call.duration = 0;
  CallLog_AddLog(call);
  call = MakeCall(1, "612", kNow + 60);
  call.remote_display_name = "St\u00E9phane & Co";
  call.duration = 95;
  CallLog_AddLog(call);
  WaitForSave();
  EXPECT_EQ(ReadFile(HistoryFile()), Example("history"));
}

TEST_F(FormatsTest, TheSourcesAreWrittenAsDocumented) {
  WriteFile(SourcesFile(),
            "<root_broadsoft_calllog display_name='Head office'><item/><item/>"
            "</root_broadsoft_calllog>");
  BroadSoftConfigItem source;
  source.name = "Missed";
  source.server = "xsp.example.org/calls/Missed";
  source.port = "8080";
  source.user_name = "anna@example.org";
  source.password = "p@ss\"1'&";
  CBSCallLogController::GetInstance()->SetConfigDataByIndex(0, source);
  EXPECT_EQ(ReadFile(SourcesFile()), Example("sources"));
}

}  // namespace
}  // namespace desk
