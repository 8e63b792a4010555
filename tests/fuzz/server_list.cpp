// The document that a server sends. Whatever it is, its list is there or it is not; what is there
// has rows and details that agree, and is the same when it is sent again in another form, but for
// the times, which are time_stamp's.
#include <cctype>

#include "desktop/platform/Transfer.h"
#include "platform/TaskAction.h"
#include "tests/fuzz/Fuzz.h"

// The transfers of this program: each has succeeded when it starts, with the document that is in
// place. They stand before those of the platform's library.
static desk::Transfer transfer;

NS_TA::CNetworkFileAction* TaskAction_CreateNetworkFileAction(const char* localPath,
                                                              const char* remoteUrl) {
  transfer.localPath = localPath;
  transfer.remoteUrl = remoteUrl;
  return &transfer;
}

bool TaskAction_ExecAction(NS_TA::CTaskAction* /*action*/) {
  transfer.state = desk::Transfer::State::kSucceeded;
  return true;
}

void TaskAction_DestroyNetworkFileAction(NS_TA::CNetworkFileAction* /*action*/) {}

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;
using Entries = std::vector<std::vector<std::string>>;  // name, number, country code
constexpr char kAction[] = "OpenSubPage(broadsoft_calllog_0)";

CBSCallLogController& Lists() { return *CBSCallLogController::GetInstance(); }

class ServerPhone : public FuzzPhone {
 public:
  ServerPhone() {
    BroadSoftConfigItem source;
    source.name = source.server = "server.example.org";
    Lists().SetConfigDataByIndex(0, source);
  }

  // The entries of a document; false when it cannot be loaded.
  bool Load(const std::string& document, Entries* entries) {
    platform->journal.Clear();
    WriteFile("tmp/BroadSoftCallLog.xml", document);
    CallLogSimpleListData page;
    page.request_count = 1'000'000;
    const int started = Lists().GetLogListByClickAction(&page, kAction, "", true);
    EXPECT_EQ(started, NS_CALLLOG::BS_LIST_DOWNLOADING);
    transfer.callback->OnTaskActionCallback(&transfer);
    if (platform->loop.TakeAppMessages().at(0).lParam != 0) return false;
    EXPECT_EQ(Lists().GetLogListByClickAction(&page, kAction, "", false), NS_CALLLOG::BS_LIST_OK);
    EXPECT_EQ(page.total, static_cast<int>(page.items.size()));
    CallLogDetailData detail;
    for (const CallLogSimpleData& row : page.items) {
      EXPECT_TRUE(Lists().GetLogDetailByIndex(&detail, static_cast<int>(entries->size())));
      EXPECT_EQ(row.display_name,
                detail.display_name.empty() ? detail.number : detail.display_name);
      EXPECT_EQ(row.time_text, detail.time_text);
      entries->push_back({detail.display_name, detail.number, detail.country_code});
    }
    EXPECT_FALSE(Lists().GetLogDetailByIndex(&detail, page.total));
    return true;
  }
};

// One element, with every sign and blank as a reference, so that no reader can take it otherwise.
std::string Element(const std::string& name, const std::string& text) {
  std::string xml = "<" + name + ">";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    xml += std::isalnum(byte) != 0 || byte >= 0x80 ? std::string(1, c)
                                                   : "&#" + std::to_string(byte) + ";";
  }
  return xml + "</" + name + ">";
}

}  // namespace

void FuzzOne(const std::string& input) {
  static ServerPhone phone;
  Entries entries;
  if (!phone.Load(input, &entries)) return;
  std::string document = "<again>";
  for (const auto& entry : entries) {
    document += "<callLogsEntry>" + Element("name", entry[0]) + Element("phoneNumber", entry[1]) +
                Element("countryCode", entry[2]) + "</callLogsEntry>";
  }
  document += "</again>";
  Entries again;
  EXPECT_TRUE(phone.Load(document, &again));
  EXPECT_EQ(again, entries);
}

}  // namespace desk
