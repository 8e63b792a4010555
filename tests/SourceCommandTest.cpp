// The sources of server call logs as a user of the desktop phone meets them: what is shown of their
// passwords.
#include <sstream>

#include "Commands.h"
#include "Phone.h"
#include "PhoneTest.h"

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;

class SourceCommandTest : public testing::Test {
 protected:
  SourceCommandTest() {
    std::filesystem::create_directory(documents());
    WriteFile(documents() / "Missed.xml", "<Missed/>");
    phone.platform().trace.SetLevel(3);
    EXPECT_TRUE(phone.platform().trace.SetFile(traceFile()));
  }
  ~SourceCommandTest() override { CBSCallLogController::ReleaseInstance(); }

  std::filesystem::path documents() const { return root.path() / "documents"; }
  std::filesystem::path traceFile() const { return root.path() / "trace"; }

  // What the phone answers.
  std::string Do(const std::string& line) {
    out.str("");
    RunCommand(phone, line);
    return out.str();
  }
  static CBSCallLogController& Logs() { return *CBSCallLogController::GetInstance(); }

  TemporaryDirectory root;
  std::ostringstream out;
  Phone phone{root.path(), Profile(), std::make_unique<ManualClock>(0), out};
};

// Such sources come from a file that a hand wrote; none of them reaches a server that answers.
TEST_F(SourceCommandTest, NothingOfAPasswordIsShown) {
  const std::string server = "127.0.0.1:1/user/anna@localhost/Missed";
  const std::string again =
      "anna@localhost";  // the path repeats it: what is shown begins at the host
  const std::pair<std::string, std::string> kRows[] = {
      {"u", "s3cret"},
      {again, "s3cret"},
      {again, "s3 \t#?\"]'@:cret"},
      {again, "s3@localhost/cret"},
      {again, "s3/cret"},
      {again, "3/s3cret"},
      {"localhost", "3/s3cret"},
      {"u", "s3@localhost/cret"},
      {"u", "s3@localhost?name=cret"},
      {"u", "s3://cret"},
      {"u", "s3@localhost/http://cret"},
      {"u", "s3\ncret"},
      {"u/x", "s3cret"},
      {"x@localhost/y", "s3cret"},
      {"a:b@localhost/y", "s3cret"},
      {"u", "s3" + std::string(2 * Journal::kLineBytes, 'x') + "cret"},
  };
  for (const auto& [user, password] : kRows) {
    SCOPED_TRACE(user + " " + password);
    BroadSoftConfigItem source;
    source.server = server;
    source.user_name = user;
    source.password = password;
    Logs().SetConfigDataByIndex(0, source);
    phone.platform().journal.Clear();
    std::filesystem::resize_file(traceFile(), 0);
    std::string shown;
    for (const char* line : {"server 0", "await", "journal"}) shown += Do(line);
    shown += ReadFile(traceFile());
    EXPECT_NE(shown.find("remoteUrl[http://***@"), shown.npos) << shown;
    for (const char* part : {"s3", "cret"}) EXPECT_EQ(shown.find(part), shown.npos) << shown;
    EXPECT_EQ(shown.find("[http://***@" + server) != shown.npos, user == again) << shown;
  }
}

}  // namespace
}  // namespace desk
