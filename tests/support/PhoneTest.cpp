#include "tests/support/PhoneTest.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>
#include <system_error>

namespace desk {

using NS_CALLLOG::CCallLogController;

TemporaryDirectory::TemporaryDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "calllog-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), name);
  }
  path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
  ASSERT_TRUE(file.flush()) << path;
}

std::string Repeat(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

PhoneTest::PhoneTest() : startedIn_(std::filesystem::current_path()) {
  setenv("TZ", "UTC0", 1);
  tzset();
  std::filesystem::create_directories(root.path() / "config/data");
  std::filesystem::create_directories(root.path() / "tmp");
  std::filesystem::current_path(root.path());
  Profile profile;
  profile.config = {{"HistorySavedSwitch", 1}};
  profile.accounts = {Account(7, "anna", "sip.example.org")};
  platform = std::make_unique<Platform>(profile, std::make_unique<ManualClock>(kNow));
}

PhoneTest::~PhoneTest() {
  CCallLogController::ReleaseInstance();
  platform.reset();
  std::filesystem::current_path(startedIn_);
}

CCallLogController& PhoneTest::Controller() { return *CCallLogController::GetInstance(); }

void PhoneTest::PowerCycle() {
  CCallLogController::ReleaseInstance();
  platform->PowerCycle();
  CCallLogController::GetInstance();
}

void PhoneTest::WaitForSave() { platform->Advance(Milliseconds(5000)); }

CallLogAddItemData PhoneTest::MakeCall(int type, const std::string& number, int time) {
  CallLogAddItemData call;
  call.type = type;
  call.born_tick = time;
  call.duration = 5;
  call.local_sip_name = "anna";
  call.local_sip_server = "sip.example.org";
  call.remote_sip_name = number;
  call.remote_sip_server = "pbx.example.org";
  return call;
}

int PhoneTest::Add(int type, const std::string& number, int time) {
  return CallLog_AddLog(MakeCall(type, number, time));
}

std::string PhoneTest::Action(int type) {
  return "OpenSubPage(call_log_" + std::to_string(type) + ")";
}

Strings PhoneTest::Names(int type) {
  CallLogSimpleListData page;
  page.request_count = 1000;
  EXPECT_EQ(Controller().GetLogListByClickAction(&page, Action(type)), 1);
  EXPECT_EQ(page.total, static_cast<int>(page.items.size()));
  Strings names;
  for (const CallLogSimpleData& row : page.items) names.push_back(row.display_name);
  return names;
}

CallLogDetailData PhoneTest::Detail(int type, int row) {
  CallLogDetailData detail;
  EXPECT_EQ(Controller().GetLogDetailByClickAction(&detail, Action(type), row), 1);
  return detail;
}

int PhoneTest::Size() {
  CallLogSimpleListData page;
  page.request_count = 1;
  EXPECT_EQ(Controller().GetLogListByClickAction(&page, Action(0)), 1);
  return page.total;
}

Strings PhoneTest::TakeJournal(const Strings& prefixes) {
  Strings taken;
  for (const std::string& line : platform->journal.Lines()) {
    const auto begins = [&](const std::string& prefix) { return line.rfind(prefix, 0) == 0; };
    if (std::any_of(prefixes.begin(), prefixes.end(), begins)) taken.push_back(line);
  }
  platform->journal.Clear();
  return taken;
}

}  // namespace desk
