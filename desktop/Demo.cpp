// Which directory the demonstration may have, and whom its server lets in.
#include "desktop/Demo.h"

#include <stdlib.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "CallLog.h"
#include "desktop/console/Signals.h"
#include "desktop/phone/RootDirectory.h"
#include "desktop/server/LogServer.h"

namespace desk {
namespace {

namespace fs = std::filesystem;

constexpr char kData[] = "config/data";  // where a phone keeps its history

// As on real servers, the user id and the password hold what other URLs may not.
constexpr char kUser[] = "anna@example.org";
constexpr char kPassword[] = "p@ss:1";

fs::path MakeTemporary() {
  std::string path = fs::temp_directory_path() / "deskphone-demo-XXXXXX";
  if (mkdtemp(path.data()) == nullptr) {
    throw RootError("cannot make " + path + ": " + std::generic_category().message(errno));
  }
  return path;
}

// With links followed as far as the paths exist; below a mount of its own a directory has two.
bool IsSame(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return fs::weakly_canonical(a, ignored) == fs::weakly_canonical(b, ignored) ||
         fs::equivalent(a, b, ignored);
}

// The history, or what the guard has kept of one.
bool HoldsHistory(const fs::path& root) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(root / kData, ignored)) {
    if (entry.path().filename().string().rfind("call_data.xml", 0) == 0) return true;
  }
  return false;
}

}  // namespace

DemoRoot::DemoRoot(const fs::path& named, Use use)
    : path_(named), goes_(named.empty() && use != Use::kKept) {
  const fs::path own = fs::absolute(RootDirectory::Default());
  if (named.empty()) path_ = goes_ ? MakeTemporary() : fs::path(own.string() + "-demo");
  const auto refuse = [this](const char* why) {
    throw RootError("cannot use " + path_.string() + ": " + why);
  };
  if (IsSame(path_ / kData, own / kData)) {
    refuse("it is your own phone's directory, which the demonstration never touches");
  }
  if (use == Use::kScenario && HoldsHistory(path_)) {
    refuse("it holds a history, which the demonstration's scenario would remove");
  }
}

DemoRoot::~DemoRoot() {
  std::error_code ignored;
  if (goes_) fs::remove_all(path_, ignored);
}

std::unique_ptr<LogServer> ServeDocuments(const fs::path& directory) {
  auto server = std::make_unique<LogServer>(
      LogServer::Settings{fs::absolute(directory), kUser, kPassword, 0});
  const SignalsBlocked inItsThreads;
  server->Start();
  return server;
}

void SetUpSources(const LogServer& server) {
  auto& controller = *NS_CALLLOG::CBSCallLogController::GetInstance();
  int index = 0;
  for (const std::string document : {"Missed", "Placed", "Received"}) {
    BroadSoftConfigItem source;
    source.name = document + " on the server";
    source.server = std::string("127.0.0.1/com.broadsoft.xsi-actions/v2.0/user/") + kUser +
                    "/directories/CallLogs/" + document;
    source.port = std::to_string(server.port());
    source.user_name = kUser;
    source.password = kPassword;
    controller.SetConfigDataByIndex(index++, source);
  }
}

}  // namespace desk
